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
    tcpip->Append(mnuInterfaceMetric, "&Interface Metric", "Set the metric of the selected connection");

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
