#pragma once

#include <wx/defs.h>

class wxMenu;
class wxMenuBar;

/// The menu bar of the main window and the identifiers of its commands.
namespace corvane {

struct Details;

enum MainCommand : int {
    mnuRefresh = wxID_HIGHEST + 1,
    mnuExportTextReportAs,
    mnuExit,
    mnuChangeMAC,
    mnuEnable,
    mnuEnableDHCP,
    mnuReleaseIP,
    mnuRenewIP,
    mnuAddIPAddress,
    mnuRemoveIPAddress,
    mnuAddGateway,
    mnuRemoveGateway,
    mnuAddDNSServer,
    mnuRemoveDNSServer,
    mnuDNSServerUp,
    mnuDNSServerDown,
    mnuInterfaceMetric,
    mnuCreatePreset,
    mnuApplyPreset,
    mnuEditPreset,
    mnuDeletePreset,
    mnuShowHelp,
    mnuOrvellaWebsite,
    mnuCheckUpdates,
    mnuDonate,
    mnuAboutUs,
    mnuShowHide,
    mnuHelp,
    mnuRAboutUs,
    mnuRExit
};

/// The commands of the lists of addresses, gateways and DNS servers, in the menu's order.
inline constexpr MainCommand kListCommands[] = {mnuAddIPAddress,  mnuRemoveIPAddress, mnuAddGateway,
                                                mnuRemoveGateway, mnuAddDNSServer,    mnuRemoveDNSServer,
                                                mnuDNSServerUp,   mnuDNSServerDown};

wxMenuBar* MakeMainMenu();

/// The commands of one connection, for the list's own menu; captions as `details` has them.
void AddConnectionCommands(wxMenu& menu, const Details& details);

/// The menu of the tray icon.
void AddTrayCommands(wxMenu& menu);

}  // namespace corvane
