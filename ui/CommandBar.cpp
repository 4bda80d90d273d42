#include "ui/CommandBar.h"

#include <wx/button.h>
#include <wx/wrapsizer.h>

#include "ui/ControlNames.h"
#include "ui/Icons.h"
#include "ui/MainMenu.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

void SetCaption(wxButton* button, const std::string& caption) {
    const wxString text = Wx(caption);
    if (button->GetLabel() != text) button->SetLabel(text);
}

}  // namespace

CommandBar::CommandBar(wxWindow* parent)
    : wxPanel(parent), row_(new wxWrapSizer(wxHORIZONTAL, wxREMOVE_LEADING_SPACES)) {
    const Details cleared;
    SetSizer(row_);
    refresh_ = Add(mnuRefresh, "&Refresh", "refresh", "Read the connections anew (F5)");
    changeMac_ = Add(mnuChangeMAC, "Chan&ge MAC", "change_mac", "Change the MAC address (Ctrl+M)");
    enable_ = Add(mnuEnable, cleared.enableButton, "enable", "Enable or disable the connection (Ctrl+E)");
    dhcp_ = Named("Command7",
                  Add(mnuEnableDHCP, cleared.mnuEnableDHCP, "dhcp", "Switch DHCP on or off (Ctrl+D)"));
    release_ =
        Named("Command5", Add(mnuReleaseIP, "Re&lease IP", "release", "Give the DHCP lease back (Ctrl+L)"));
    renew_ = Named("Command6", Add(mnuRenewIP, "Re&new IP", "renew", "Renew the DHCP lease (Ctrl+R)"));
    Add(mnuExportTextReportAs, "E&xport", "export", "Write a text report to a file (Ctrl+S)");
}

wxButton* CommandBar::Add(int id, const std::string& caption, const std::string& icon, const char* tip) {
    auto* const button = new wxButton(this, id, Wx(caption));
    button->SetBitmap(Icon(icon));
    button->SetToolTip(tip);
    row_->Add(button, 0, wxRIGHT | wxBOTTOM, 4);
    return button;
}

void CommandBar::Update(const Details& details, const CommandStates& states) {
    SetCaption(enable_, details.enableButton);
    enable_->SetBitmap(Icon(details.enables ? "enable" : "disable"));
    SetCaption(dhcp_, details.mnuEnableDHCP);
    changeMac_->Enable(states.changeMac);
    enable_->Enable(states.enable);
    dhcp_->Enable(states.dhcp);
    release_->Enable(states.release);
    renew_->Enable(states.renew);
    Layout();
}

void CommandBar::EnableRefresh(bool enable) { refresh_->Enable(enable); }
void CommandBar::EnableDhcpButton(bool enable) { dhcp_->Enable(enable); }

}  // namespace corvane
