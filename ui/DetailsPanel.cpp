#include "ui/DetailsPanel.h"

#include <wx/sizer.h>
#include <wx/stattext.h>

#include "ui/ChangeMacPanel.h"
#include "ui/Desktop.h"
#include "ui/FactText.h"
#include "ui/RowList.h"
#include "ui/TrafficGraph.h"
#include "ui/WxText.h"

namespace corvane {

namespace {

constexpr int kGap = 6;

void FillList(RowList* list, const std::string& header, const std::vector<DetailsRow>& rows,
              bool withSubItem) {
    list->SetTitle(0, header);
    std::vector<ListRow> shown;
    shown.reserve(rows.size());
    for (const DetailsRow& row : rows) {
        shown.push_back({withSubItem ? std::vector{row.text, row.subItem} : std::vector{row.text}, ""});
    }
    list->SetRows(std::move(shown));
}

}  // namespace

DetailsPanel::DetailsPanel(wxWindow* parent)
    : wxScrolledWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                       wxTAB_TRAVERSAL | wxVSCROLL | wxHSCROLL) {
    title_ = new wxStaticText(this, wxID_ANY, "");
    title_->SetFont(title_->GetFont().Bold());
    left_ = new wxBoxSizer(wxVERTICAL);
    left_->Add(MakeConnection(), 0, wxEXPAND);
    left_->Add(MakeTraffic(), 1, wxEXPAND | wxTOP, 2 * kGap);

    columns_ = new wxBoxSizer(wxHORIZONTAL);
    columns_->Add(left_, 6, wxEXPAND | wxRIGHT, 3 * kGap);
    columns_->Add(MakeTcpip(), 5, wxEXPAND);
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
    const wxRect area(CalcUnscrolledPosition(child.GetPosition()), child.GetSize());
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

void DetailsPanel::Arrange() {
    // Side by side where there is room, else one below the other.
    columns_->SetOrientation(wxHORIZONTAL);
    if (columns_->CalcMin().x + 2 * kGap > GetClientSize().x) columns_->SetOrientation(wxVERTICAL);
    FitInside();
    Layout();
}

FactText* DetailsPanel::AddFact(wxFlexGridSizer* grid, const char* label, const char* name) {
    grid->Add(new wxStaticText(this, wxID_ANY, label), 0, wxALIGN_CENTER_VERTICAL);
    auto* const fact = new FactText(this, *name == '\0' ? label : name);
    grid->Add(fact, 1, wxEXPAND);
    return fact;
}

wxSizer* DetailsPanel::MakeConnection() {
    auto* const grid = new wxFlexGridSizer(2, 1, 2 * kGap);
    grid->AddGrowableCol(1);
    txtConnName_ = AddFact(grid, "Connection Name:");
    txtDevName_ = AddFact(grid, "Device Name:");
    txtHardID_ = AddFact(grid, "Hardware ID:");
    txtConfigID_ = AddFact(grid, "Configuration ID:");
    txtMAC_ = AddFact(grid, "MAC Address:");
    txtManufac_ = AddFact(grid, "Manufacturer:");
    labStatus_ = AddFact(grid, "Link Status:");
    labSpeed_ = AddFact(grid, "Speed:");
    return grid;
}

wxSizer* DetailsPanel::MakeTraffic() {
    auto* const grid = new wxFlexGridSizer(4, 1, 2 * kGap);
    grid->AddGrowableCol(1, 2);
    grid->AddGrowableCol(3, 1);
    labRecv_ = AddFact(grid, "Received:");
    labRecvSpeed_ = AddFact(grid, "Rate:", "Receiving Rate:");
    labSent_ = AddFact(grid, "Sent:");
    labSentSpeed_ = AddFact(grid, "Rate:", "Sending Rate:");
    graph_ = new TrafficGraph(this);
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(grid, 0, wxEXPAND);
    sizer->Add(graph_, 1, wxEXPAND | wxTOP, kGap);
    return sizer;
}

RowList* DetailsPanel::AddList(wxSizer* sizer, const char* name, const char* second, int rows) {
    std::vector<ListColumn> columns{{name, 18}};
    if (*second != '\0') columns.push_back({second, 16});
    auto* const list = new RowList(this, name, columns, false);
    list->SetVisibleRows(rows);
    // The toolkit scrolls to every other control that gets the focus.
    list->OnFocus = [this, list] { ShowChild(*list); };
    sizer->Add(list, rows, wxEXPAND | wxTOP, kGap);
    return list;
}

wxSizer* DetailsPanel::MakeTcpip() {
    auto* const grid = new wxFlexGridSizer(2, 1, 2 * kGap);
    grid->AddGrowableCol(1);
    labTCPIP_ = AddFact(grid, "TCP/IP:");
    labDHCP_ = AddFact(grid, "DHCP:");
    labLeaseObtained_ = AddFact(grid, "Lease Obtained:");
    labLeaseExpires_ = AddFact(grid, "Lease Expires:");
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(grid, 0, wxEXPAND);
    listIP_ = AddList(sizer, "IP Address", "Subnet Mask", 3);
    listGateway_ = AddList(sizer, "Gateway", "Metric", 2);
    listDNS_ = AddList(sizer, "DNS Server", "", 2);
    return sizer;
}

void DetailsPanel::Fill(const Details& details) {
    title_->SetLabelText(Wx(details.title));
    txtConnName_->SetText(details.txtConnName);
    txtDevName_->SetText(details.txtDevName);
    txtHardID_->SetText(details.txtHardID);
    txtConfigID_->SetText(details.txtConfigID);
    txtMAC_->SetText(details.txtMAC);
    txtManufac_->SetText(details.txtManufac);
    labStatus_->SetText(details.labStatus);
    labSpeed_->SetText(details.labSpeed);
    labTCPIP_->SetText(details.labTCPIP);
    labDHCP_->SetText(details.labDHCP);
    labLeaseObtained_->SetText(details.labLeaseObtained);
    labLeaseExpires_->SetText(details.labLeaseExpires);
    FillTraffic({details.labSent, details.labRecv, details.labSentSpeed, details.labRecvSpeed});
    FillList(listIP_, details.headerIP, details.ListIP, true);
    FillList(listGateway_, details.headerGateway, details.ListGateway, true);
    FillList(listDNS_, details.headerDNS, details.ListDNS, false);
}

void DetailsPanel::FillTraffic(const TrafficTexts& texts) {
    labSent_->SetText(texts.labSent);
    labRecv_->SetText(texts.labRecv);
    labSentSpeed_->SetText(texts.labSentSpeed);
    labRecvSpeed_->SetText(texts.labRecvSpeed);
}

void DetailsPanel::AddToGraph(const TrafficRates& rates) { graph_->Add(rates); }

bool DetailsPanel::ChangeMacIsOpen() const { return fChangeMAC_ != nullptr && fChangeMAC_->IsOpen(); }

ChangeMacPanel& DetailsPanel::ChangeMac() {
    if (fChangeMAC_ != nullptr) return *fChangeMAC_;
    fChangeMAC_ = new ChangeMacPanel(this);
    // Below the facts, above the traffic.
    left_->Insert(1, fChangeMAC_, 0, wxEXPAND | wxTOP, 2 * kGap);
    fChangeMAC_->OnLayout = [this] { Arrange(); };
    return *fChangeMAC_;
}

void DetailsPanel::ClearGraph() { graph_->Clear(); }

}  // namespace corvane
