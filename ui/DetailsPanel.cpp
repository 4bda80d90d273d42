#include "ui/DetailsPanel.h"

#include <algorithm>

#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/utils.h>

#include "ui/ChangeMacPanel.h"
#include "ui/ControlNames.h"
#include "ui/Desktop.h"
#include "ui/Facts.h"
#include "ui/PresetsPanel.h"
#include "ui/Spacing.h"
#include "ui/TcpipPanel.h"
#include "ui/TrafficGraph.h"
#include "ui/WxText.h"

namespace corvane {

DetailsPanel::DetailsPanel(wxWindow* parent, WindowHost& window)
    : wxScrolledWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                       wxTAB_TRAVERSAL | wxVSCROLL | wxHSCROLL),
      window_(window) {
    SetControlName(*this, "fDetails");
    title_ = new wxStaticText(this, wxID_ANY, "");
    title_->SetFont(title_->GetFont().Bold());
    left_ = new wxBoxSizer(wxVERTICAL);
    left_->Add(MakeConnection(), 0, wxEXPAND);
    left_->Add(MakeTraffic(), 0, wxEXPAND | wxTOP, 2 * kGap);
    presets_ = new PresetsPanel(this, window_, *this);
    left_->Add(presets_, 0, wxEXPAND | wxTOP, kGap);
    tcpip_ = new TcpipPanel(this, window_, *this);
    Bind(wxEVT_CHILD_FOCUS, [this](wxChildFocusEvent& event) {
        event.Skip();
        if (event.GetWindow() != this) ShowFocused(*event.GetWindow());
    });

    columns_ = new wxBoxSizer(wxHORIZONTAL);
    columns_->Add(left_, 6, wxRIGHT, 3 * kGap);
    columns_->Add(tcpip_, 5, wxEXPAND);
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(title_, 0, wxEXPAND | wxALL, kGap);
    sizer->Add(columns_, 1, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, kGap);
    SetSizer(sizer);
    SetScrollRate(GetCharWidth(), GetCharHeight());
    UsePlainScrollBars(this);
    Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        event.Skip();
        Arrange();
    });
}

void DetailsPanel::ShowChild(const wxWindow& child) {
    const wxPoint position = ScreenToClient(child.GetScreenPosition());
    const wxRect area(CalcUnscrolledPosition(position), child.GetSize());
    int unit = 0;
    GetScrollPixelsPerUnit(nullptr, &unit);
    const int top = CalcUnscrolledPosition(wxPoint(0, 0)).y;
    const int height = GetClientSize().y;
    if (area.GetTop() < top || area.height >= height) {
        Scroll(-1, area.GetTop() / unit);
    } else if (area.GetBottom() > top + height) {
        Scroll(-1, (area.GetBottom() - height) / unit + 1);
    }
}

void DetailsPanel::ShowFocused(const wxWindow& child) {
    // Not from under the pointer: the click would miss it.
    if (!wxGetMouseState().LeftIsDown()) ShowChild(child);
}

void DetailsPanel::Arrange() {
    // Side by side where there is room, else one below the other.
    columns_->SetOrientation(wxHORIZONTAL);
    if (columns_->CalcMin().x + 2 * kGap > GetClientSize().x) columns_->SetOrientation(wxVERTICAL);
    // The graph takes what is left of the height.
    const int graph = graph_->GetMinSize().y;
    const int room = GetClientSize().y - left_->CalcMin().y - title_->GetSize().y - 3 * kGap;
    const int height = std::clamp(graph + room, GetCharHeight() * 5, GetCharHeight() * 10);
    graph_->SetMinSize(wxSize(graph_->GetMinSize().x, height));
    FitInside();
    Layout();
}

void DetailsPanel::Rearrange() {
    Arrange();
    // What has moved at once with what was shown or hidden leaves its traces where it was, on some desktops.
    Refresh();
}

wxSizer* DetailsPanel::MakeConnection() {
    auto* const grid = new wxFlexGridSizer(2, 1, 2 * kGap);
    grid->AddGrowableCol(1);
    txtConnName_ = AddFact(this, grid, "txtConnName", "Connection Name:");
    txtDevName_ = AddFact(this, grid, "txtDevName", "Device Name:");
    txtHardID_ = AddFact(this, grid, "txtHardID", "Hardware ID:");
    txtConfigID_ = AddFact(this, grid, "txtConfigID", "Configuration ID:");
    txtMAC_ = AddFact(this, grid, "txtMAC", "MAC Address:");
    txtManufac_ = AddFact(this, grid, "txtManufac", "Manufacturer:");
    labStatus_ = AddFact(this, grid, "labStatus", "Link Status:");
    labSpeed_ = AddFact(this, grid, "labSpeed", "Speed:");
    return grid;
}

wxSizer* DetailsPanel::MakeTraffic() {
    auto* const grid = new wxFlexGridSizer(4, 1, 2 * kGap);
    grid->AddGrowableCol(1, 2);
    grid->AddGrowableCol(3, 1);
    labRecv_ = AddFact(this, grid, "labRecv", "Received:");
    labRecvSpeed_ = AddFact(this, grid, "labRecvSpeed", "Rate:", "Receiving Rate:");
    labSent_ = AddFact(this, grid, "labSent", "Sent:");
    labSentSpeed_ = AddFact(this, grid, "labSentSpeed", "Rate:", "Sending Rate:");
    graph_ = new TrafficGraph(this);
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(grid, 0, wxEXPAND);
    sizer->Add(graph_, 1, wxEXPAND | wxTOP, kGap);
    return sizer;
}

void DetailsPanel::Fill(const Details& details, bool sameConnection) {
    title_->SetLabelText(Wx(details.title));
    txtConnName_->SetText(details.txtConnName);
    txtDevName_->SetText(details.txtDevName);
    txtHardID_->SetText(details.txtHardID);
    txtConfigID_->SetText(details.txtConfigID);
    txtMAC_->SetText(details.txtMAC);
    txtManufac_->SetText(details.txtManufac);
    labStatus_->SetText(details.labStatus);
    labSpeed_->SetText(details.labSpeed);
    FillTraffic({details.labSent, details.labRecv, details.labSentSpeed, details.labRecvSpeed});
    tcpip_->Fill(details, sameConnection);
}

void DetailsPanel::FillTraffic(const TrafficTexts& texts) {
    labSent_->SetText(texts.labSent);
    labRecv_->SetText(texts.labRecv);
    labSentSpeed_->SetText(texts.labSentSpeed);
    labRecvSpeed_->SetText(texts.labRecvSpeed);
}

void DetailsPanel::AddToGraph(const TrafficRates& rates) { graph_->Add(rates); }

bool DetailsPanel::ChangeMacIsOpen() const { return fChangeMAC_ != nullptr && fChangeMAC_->IsOpen(); }

bool DetailsPanel::Entering() const {
    return ChangeMacIsOpen() || tcpip_->PanelIsOpen() || tcpip_->EditsPreset();
}

bool DetailsPanel::Escape() {
    const wxWindow* const focused = FindFocus();
    const bool macFirst = ChangeMacIsOpen() && fChangeMAC_->IsDescendant(const_cast<wxWindow*>(focused));
    if (!macFirst && tcpip_->Escape()) return true;
    if (!ChangeMacIsOpen()) return false;
    fChangeMAC_->Escape();
    return true;
}

ChangeMacPanel& DetailsPanel::ChangeMac() {
    if (fChangeMAC_ != nullptr) return *fChangeMAC_;
    fChangeMAC_ = new ChangeMacPanel(this, window_, *this);
    // Below the facts, above the traffic.
    left_->Insert(1, fChangeMAC_, 0, wxEXPAND | wxTOP, 2 * kGap);
    return *fChangeMAC_;
}

void DetailsPanel::PresetsChanged() { presets_->RefreshList(); }

void DetailsPanel::ClearGraph() { graph_->Clear(); }

}  // namespace corvane
