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
    mnuInterfaceMetric,
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

wxMenuBar* MakeMainMenu();

/// The commands of one connection, for the list's own menu; captions as `details` has them.
void AddConnectionCommands(wxMenu& menu, const Details& details);

/// The menu of the tray icon.
void AddTrayCommands(wxMenu& menu);

}  // namespace corvane
