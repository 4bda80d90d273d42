#pragma once

#include <string>
#include <utility>
#include <vector>

#include <wx/scrolwin.h>

#include "ui/PanelHosts.h"
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
class PresetsPanel;
class TcpipPanel;
class TrafficGraph;

class DetailsPanel : public wxScrolledWindow, private DetailsHost {
 public:
    DetailsPanel(wxWindow* parent, WindowHost& window);

    /// Another connection's addresses lose their selection.
    void Fill(const Details& details, bool sameConnection);
    void FillTraffic(const TrafficTexts& texts);
    void AddToGraph(const TrafficRates& rates);
    /// Another connection is shown: the picture begins anew.
    void ClearGraph();

    /// Makes the panel when it is asked for the first time.
    ChangeMacPanel& ChangeMac();
    [[nodiscard]] bool ChangeMacIsOpen() const;
    TcpipPanel& Tcpip() { return *tcpip_; }
    PresetsPanel& Presets() { return *presets_; }
    /// Whether something is being entered: a refresh would come in the way.
    [[nodiscard]] bool Entering() const;
    /// Closes the entry panel that has the focus, else one that is open. False when there is none.
    bool Escape();

 private:
    // DetailsHost
    void Rearrange() override;
    void ShowPart(const wxWindow& panel) override { ShowChild(panel); }
    void ListFocused(const wxWindow& list) override { ShowFocused(list); }
    void PresetsChanged() override;

    /// Lays the two columns out for the width that there is.
    void Arrange();
    /// Scrolls a control into view, or as much of it from its top as there is room for.
    void ShowChild(const wxWindow& child);
    /// Same for one that got the focus, unless by the mouse: it was in sight then.
    void ShowFocused(const wxWindow& child);
    /// The toolkit would scroll to the large panel that a control lies in.
    bool ShouldScrollToChildOnFocus(wxWindow*) override { return false; }
    wxSizer* MakeConnection();
    wxSizer* MakeTraffic();

    WindowHost& window_;
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
    TrafficGraph* graph_ = nullptr;
    wxBoxSizer* columns_ = nullptr;
    wxSizer* left_ = nullptr;
    ChangeMacPanel* fChangeMAC_ = nullptr;
    TcpipPanel* tcpip_ = nullptr;
    PresetsPanel* presets_ = nullptr;
};

}  // namespace corvane
