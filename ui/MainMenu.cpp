#include "ui/MainMenu.h"

#include <wx/menu.h>

#include "ui/WxText.h"
#include "ui/logic/Details.h"

namespace corvane {

void AddConnectionCommands(wxMenu& menu, const Details& details) {
    menu.Append(mnuChangeMAC, "&Change MAC Address\tCtrl+M",
                "Give the selected connection another MAC address");
    menu.Append(mnuEnable, Wx(details.mnuEnable) + "\tCtrl+E", "Enable or disable the selected connection");
}

wxMenuBar* MakeMainMenu() {
    const Details cleared;
    auto* const file = new wxMenu;
    file->Append(mnuRefresh, "&Refresh\tF5", "Read the connections anew");
    file->AppendSeparator();
    file->Append(mnuExportTextReportAs, "&Export Text Report As ...\tCtrl+S",
                 "Write a text report of every connection to a file");
    file->AppendSeparator();
    file->Append(mnuExit, "E&xit\tCtrl+Q", "End the program");

    auto* const connection = new wxMenu;
    AddConnectionCommands(*connection, cleared);

    auto* const tcpip = new wxMenu;
    tcpip->Append(mnuEnableDHCP, Wx(cleared.mnuEnableDHCP) + "\tCtrl+D",
                  "Switch the selected connection between DHCP and a static set-up");
    tcpip->Append(mnuReleaseIP, "Re&lease IP\tCtrl+L", "Give the DHCP lease back");
    tcpip->Append(mnuRenewIP, "Re&new IP\tCtrl+R", "Renew the DHCP lease");
    tcpip->AppendSeparator();
    tcpip->Append(mnuAddIPAddress, "&Add IP Address", "Give the selected connection an IP address more");
    tcpip->Append(mnuRemoveIPAddress, "&Remove IP Address", "Remove the selected IP address");
    tcpip->AppendSeparator();
    tcpip->Append(mnuAddGateway, "Add &Gateway", "Give the selected connection a gateway more");
    tcpip->Append(mnuRemoveGateway, "Remo&ve Gateway", "Remove the selected gateway");
    tcpip->AppendSeparator();
    tcpip->Append(mnuAddDNSServer, "Add &DNS Server", "Give the selected connection a DNS server more");
    tcpip->Append(mnuRemoveDNSServer, "Remove DN&S Server", "Remove the selected DNS server");
    tcpip->Append(mnuDNSServerUp, "DNS Server &Up", "Ask the selected DNS server earlier");
    tcpip->Append(mnuDNSServerDown, "DNS Server Do&wn", "Ask the selected DNS server later");
    tcpip->AppendSeparator();
    tcpip->Append(mnuInterfaceMetric, "&Interface Metric", "Set the metric of the selected connection");

    auto* const presets = new wxMenu;
    presets->Append(mnuCreatePreset, "&Create / Edit Configuration Preset\tCtrl+T",
                    "Save settings under a name, or change a preset");
    presets->AppendSeparator();
    presets->Append(mnuApplyPreset, "&Apply Preset", "Apply the selected preset to the selected connection");
    presets->Append(mnuEditPreset, "&Edit Preset", "Change the selected preset");
    presets->Append(mnuDeletePreset, "&Delete Preset", "Delete the selected preset");

    auto* const help = new wxMenu;
    help->Append(mnuShowHelp, "&Help\tF1", "Open the help page");
    help->AppendSeparator();
    help->Append(mnuOrvellaWebsite, "Orvella &Website", "Open the maker's web site");
    help->AppendSeparator();
    help->Append(mnuAboutUs, "&About Us", "About this program");

    auto* const bar = new wxMenuBar;
    bar->Append(file, "&File");
    bar->Append(connection, "&Connection");
    bar->Append(tcpip, "&TCP/IP");
    bar->Append(presets, "Pre&sets");
    bar->Append(help, "&Help");
    return bar;
}

void AddTrayCommands(wxMenu& menu) {
    menu.Append(mnuShowHide, "&Show/Hide");
    menu.AppendSeparator();
    menu.Append(mnuHelp, "&Help");
    menu.Append(mnuCheckUpdates, "Check For &Updates");
    menu.Append(mnuDonate, "&Donate");
    menu.Append(mnuRAboutUs, "&About Us");
    menu.AppendSeparator();
    menu.Append(mnuRExit, "E&xit");
}

}  // namespace corvane
