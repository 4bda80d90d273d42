#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <wx/frame.h>
#include <wx/infobar.h>
#include <wx/timer.h>

#include "ui/ChangesWatch.h"
#include "ui/PanelHosts.h"
#include "ui/RowList.h"
#include "ui/logic/CommandGate.h"
#include "ui/logic/Commands.h"
#include "ui/logic/ConnectionList.h"
#include "ui/logic/Traffic.h"

class wxMenu;
class wxSplitterWindow;

/// `frmMain`: the list of connections, the details of the selected one, and the commands.
namespace corvane {

class CommandBar;
class DetailsPanel;
class FactText;
class frmTray;

/// What the window is told at start.
struct ProgramFacts {
    std::string folder;         ///< Program folder, ending in the separator.
    std::string osDescription;  ///< For the about box.
};

class frmMain : public wxFrame, private ConnectionListView, private RowListHost, private WindowHost {
 public:
    /// Loads the window: fills the vendor list and the connection list. Shows nothing yet.
    explicit frmMain(ProgramFacts facts);
    ~frmMain() override;

    /// Reads the adapters anew and shows them.
    void RefreshConnections();

    // What the seat does in this window.
    void ShowRowProgress(int subItem, const std::string& text);
    void ShowWarning(const std::string& text);
    /// What was done last, in words.
    void ShowStatus(const std::string& text);

 private:
    // ConnectionListView
    void ShowPlaceholder(const ConnectionRow& row) override;
    void ShowRows(const std::vector<ConnectionRow>& rows) override;
    void SelectRow(std::size_t row) override;
    void ShowDetails(const Details& details) override;

    // RowListHost, of the list of connections.
    void RowSelected(std::size_t row) override;
    void RowActivated() override;
    void ListMenuAsked() override;

    // WindowHost
    void Run(const std::function<void()>& command) override;
    [[nodiscard]] std::optional<std::size_t> SelectedAdapter() const override;
    [[nodiscard]] const std::string& PresetsFolder() const override { return facts_.folder; }
    void UpdateCommands() override;
    void UpdateListCommands() override;
    void EditingPreset(bool editing) override;
    void EntryClosed() override;
    void ChangeMacClosed() override;

    void MakeControls();
    void BindCommands();
    /// Runs a command for a menu item or a button, one at a time; nothing while another runs.
    void BindCommand(int id, std::function<void()> command);
    /// Same for a command that acts on the selected connection; nothing without one.
    void BindConnectionCommand(int id, std::function<void(std::size_t adapter)> command);

    void ApplyDetails();
    void ShowInTray();
    void BindTcpip();
    void BindPresets();
    void OpenChangeMacPanel(std::size_t adapter);
    void ExportReport();
    void ShowAbout();
    void TrafficTick();
    /// Refreshes for changes from outside, if there are any and nothing is in the way.
    void RefreshForChanges();
    /// Something was closed that a refresh for changes from outside has waited for.
    void RefreshSoon();
    void OnEscape(wxKeyEvent& event);
    void OnClose(wxCloseEvent& event);
    void OnThemeChanged();
    [[nodiscard]] const NicInfo* SelectedNic() const;

    ProgramFacts facts_;
    CommandGate gate_;
    ConnectionList connections_{*this};
    TrafficMonitor traffic_;
    Details details_;
    std::string shownId_;  ///< Id of the connection whose traffic is shown.
    std::optional<TrafficTexts> trafficTexts_;
    bool refreshing_ = false;

    wxWindow* ground_ = nullptr;  ///< What the controls lie on.
    wxSplitterWindow* splitter_ = nullptr;
    bool sashMoved_ = false;
    wxInfoBar* infoBar_ = nullptr;
    CommandBar* commandBar_ = nullptr;
    RowList* list_ = nullptr;
    DetailsPanel* fDetails_ = nullptr;
    FactText* labDone_ = nullptr;
    FactText* labCount_ = nullptr;
    wxTimer trafficTimer_;
    wxTimer settle_;
    std::unique_ptr<ChangesWatch> changes_;
    std::unique_ptr<frmTray> tray_;
};

}  // namespace corvane
