#pragma once

#include <string>
#include <utility>
#include <vector>

#include <wx/scrolwin.h>

#include "ui/logic/Details.h"
#include "ui/logic/Traffic.h"

class wxBoxSizer;
class wxFlexGridSizer;
class wxStaticText;

/// `fDetails`: the facts of the selected connection, its traffic, its TCP/IP set-up. Scrolls where the window
/// is too small for it.
namespace corvane {

class ChangeMacPanel;
class FactText;
class RowList;
class TrafficGraph;

class DetailsPanel : public wxScrolledWindow {
 public:
    explicit DetailsPanel(wxWindow* parent);

    void Fill(const Details& details);
    void FillTraffic(const TrafficTexts& texts);
    void AddToGraph(const TrafficRates& rates);
    /// Another connection is shown: the picture begins anew.
    void ClearGraph();

    /// Makes the panel when it is asked for the first time.
    ChangeMacPanel& ChangeMac();
    [[nodiscard]] bool ChangeMacIsOpen() const;

 private:
    /// A fact with its label in front of it; `name` is the accessible name where the label does not say
    /// enough.
    FactText* AddFact(wxFlexGridSizer* grid, const char* label, const char* name = "");
    /// Lays the two columns out for the width that there is.
    void Arrange();
    /// Scrolls a control into view.
    void ShowChild(const wxWindow& child);
    wxSizer* MakeConnection();
    wxSizer* MakeTraffic();
    wxSizer* MakeTcpip();
    RowList* AddList(wxSizer* sizer, const char* name, const char* second, int rows);

    wxStaticText* title_ = nullptr;
    FactText* txtConnName_ = nullptr;
    FactText* txtDevName_ = nullptr;
    FactText* txtHardID_ = nullptr;
    FactText* txtConfigID_ = nullptr;
    FactText* txtMAC_ = nullptr;
    FactText* txtManufac_ = nullptr;
    FactText* labStatus_ = nullptr;
    FactText* labSpeed_ = nullptr;
    FactText* labSent_ = nullptr;
    FactText* labRecv_ = nullptr;
    FactText* labSentSpeed_ = nullptr;
    FactText* labRecvSpeed_ = nullptr;
    FactText* labTCPIP_ = nullptr;
    FactText* labDHCP_ = nullptr;
    FactText* labLeaseObtained_ = nullptr;
    FactText* labLeaseExpires_ = nullptr;
    TrafficGraph* graph_ = nullptr;
    wxBoxSizer* columns_ = nullptr;
    wxSizer* left_ = nullptr;
    ChangeMacPanel* fChangeMAC_ = nullptr;
    RowList* listIP_ = nullptr;
    RowList* listGateway_ = nullptr;
    RowList* listDNS_ = nullptr;
};

}  // namespace corvane
