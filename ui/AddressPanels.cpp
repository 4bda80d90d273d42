#include "ui/AddressPanels.h"

#include <wx/checkbox.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/utils.h>

#include "ui/Desktop.h"
#include "ui/IPAddress.h"
#include "ui/Spacing.h"
#include "ui/TextBox.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

constexpr int kNoteCharacters = 40;

constexpr EntryPanelKind kAddIp{.panel = "fAddIP",
                                .add = "Command16",
                                .close = "Command17",
                                .caption = "Enter IP Address Below",
                                .addLabel = "Add IP"};
constexpr EntryPanelKind kAddGateway{.panel = "fAddGateway",
                                     .add = "Command19",
                                     .close = "Command18",
                                     .caption = "Enter Gateway IP Address Below",
                                     .addLabel = "Add Gateway"};
constexpr EntryPanelKind kAddDns{.panel = "fAddDNS",
                                 .add = "Command15",
                                 .close = "Command14",
                                 .caption = "Enter DNS Server IP Below",
                                 .addLabel = "Add DNS"};

/// A box for a number of up to `digits` digits, whose whole text is selected when it gets the focus.
wxTextCtrl* MakeNumberBox(wxWindow* parent, int digits) {
    wxTextCtrl* const box = MakeTextBox(parent, digits);
    box->Bind(wxEVT_SET_FOCUS, [box](wxFocusEvent& event) {
        event.Skip();
        box->SelectAll();
    });
    box->Bind(wxEVT_LEFT_DOWN, [box](wxMouseEvent& event) {
        event.Skip();
        // A click that brings the focus places the caret behind the focus event.
        if (!box->HasFocus()) box->CallAfter([box] { box->SelectAll(); });
    });
    return box;
}

wxSizer* Row(std::initializer_list<wxWindow*> windows) {
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    for (wxWindow* const window : windows) row->Add(window, 0, wxALIGN_CENTER_VERTICAL | wxRIGHT, kGap);
    return row;
}

wxStaticText* Label(wxWindow* parent, const char* text) { return new wxStaticText(parent, wxID_ANY, text); }

}  // namespace

AddIPPanel::AddIPPanel(wxWindow* parent, EntryPanelHost& host, AddressListView& listIp)
    : EntryPanel(parent, host, kAddIp), editing_(*this, listIp) {
    auto* const ipLabel = Label(this, "IP . . . . . . .");
    ipAddress_ = Named("IPAddress", corvane::IPAddress::Make(this, "IP address"));
    auto* const maskLabel = Label(this, "Mas&k . . . . .");
    subnetMask_ = Named("SubnetMask", corvane::IPAddress::Make(this, "Subnet mask", maskEvents_));
    FocusByMnemonic(subnetMask_);
    auto* const slash = Label(this, "/");
    txtCIDR_ = Named("txtCIDR", MakeNumberBox(this, 3));
    SetAccessibleName(txtCIDR_, "Prefix length");
    txtCIDR_->SetToolTip("Prefix length: the number of one bits in the mask");
    persistent_ = Named("Check2", new wxCheckBox(this, wxID_ANY, "Persistant IP Address"));
    auto* const note = Label(this,
                             "Persistant IP address will be saved in registry and would persist across "
                             "system reboots.");
    note->Wrap(GetCharWidth() * kNoteCharacters);

    auto* const grid = new wxFlexGridSizer(2, kGap, kGap);
    grid->Add(ipLabel, 0, wxALIGN_CENTER_VERTICAL);
    grid->Add(ipAddress_);
    grid->Add(maskLabel, 0, wxALIGN_CENTER_VERTICAL);
    grid->Add(Row({subnetMask_, slash, txtCIDR_}));
    content_->Add(grid, 0, wxBOTTOM, kGap);
    content_->Add(persistent_, 0, wxBOTTOM, 2);
    content_->Add(note);

    txtCIDR_->Bind(wxEVT_SET_FOCUS, [this](wxFocusEvent& event) {
        event.Skip();
        editing_.CidrFocused();
    });
    txtCIDR_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { editing_.CidrChanged(); });
}

AddIPPanel::~AddIPPanel() {
    // The mask tells of its changes even now.
    DestroyChildren();
}

IPAddressEntry& AddIPPanel::IPAddress() { return ipAddress_->Entry(); }
IPAddressEntry& AddIPPanel::SubnetMask() { return subnetMask_->Entry(); }
void AddIPPanel::FocusIPAddress() { ipAddress_->SetFocus(); }
std::string AddIPPanel::Cidr() const { return Utf8(txtCIDR_->GetValue()); }

void AddIPPanel::SetCidr(const std::string& text) {
    if (Cidr() != text) txtCIDR_->SetValue(Wx(text));
}

bool AddIPPanel::PersistentTicked() const { return persistent_->GetValue(); }
void AddIPPanel::Beep() { wxBell(); }

AddGatewayPanel::AddGatewayPanel(wxWindow* parent, EntryPanelHost& host, AddressListView& listGateway)
    : EntryPanel(parent, host, kAddGateway), editing_(*this, listGateway) {
    gateway_ = Named("Gateway", corvane::IPAddress::Make(this, "Gateway"));
    auto* const label = Label(this, "Metric . . . .");
    txtMetric_ = Named("txtMetric", MakeNumberBox(this, 10));
    LabelFor(label, txtMetric_);
    autoMetric_ = Named("Check4", new wxCheckBox(this, wxID_ANY, "Auto Metric"));
    persistent_ = Named("Check3", new wxCheckBox(this, wxID_ANY, "Persistant Gateway"));
    content_->Add(gateway_, 0, wxBOTTOM, kGap);
    content_->Add(Row({label, txtMetric_, autoMetric_}), 0, wxBOTTOM, kGap);
    content_->Add(persistent_);
    autoMetric_->Bind(wxEVT_CHECKBOX,
                      [this](wxCommandEvent&) { editing_.AutoMetricClicked(host_.Target()); });
}

IPAddressEntry& AddGatewayPanel::Gateway() { return gateway_->Entry(); }
void AddGatewayPanel::FocusGateway() { gateway_->SetFocus(); }
std::string AddGatewayPanel::Metric() const { return Utf8(txtMetric_->GetValue()); }
void AddGatewayPanel::SetMetric(const std::string& text) { txtMetric_->ChangeValue(Wx(text)); }
void AddGatewayPanel::EnableMetric(bool enable) { txtMetric_->Enable(enable); }
void AddGatewayPanel::FocusMetric() { txtMetric_->SetFocus(); }
bool AddGatewayPanel::AutoMetricTicked() const { return autoMetric_->GetValue(); }
void AddGatewayPanel::TickAutoMetric(bool ticked) { autoMetric_->SetValue(ticked); }
bool AddGatewayPanel::PersistentTicked() const { return persistent_->GetValue(); }

AddDNSPanel::AddDNSPanel(wxWindow* parent, EntryPanelHost& host, AddressListView& listDns)
    : EntryPanel(parent, host, kAddDns), editing_(*this, listDns) {
    dnsAddress_ = Named("DNSAddress", corvane::IPAddress::Make(this, "DNS server"));
    content_->Add(dnsAddress_);
}

IPAddressEntry& AddDNSPanel::DNSAddress() { return dnsAddress_->Entry(); }
void AddDNSPanel::FocusDNSAddress() { dnsAddress_->SetFocus(); }

}  // namespace corvane
