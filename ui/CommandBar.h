#pragma once

#include <string>

#include <wx/panel.h>

#include "ui/logic/Commands.h"
#include "ui/logic/Details.h"

class wxButton;
class wxSizer;

/// The common commands as buttons, with the identifiers of the menu's commands.
namespace corvane {

class CommandBar : public wxPanel {
 public:
    explicit CommandBar(wxWindow* parent);

    /// Captions and what can be pressed, for the selected connection.
    void Update(const Details& details, const CommandStates& states);
    void EnableRefresh(bool enable);
    void EnableDhcpButton(bool enable);

 private:
    wxButton* Add(int id, const std::string& caption, const std::string& icon, const char* tip);

    wxSizer* row_;
    wxButton* refresh_;
    wxButton* changeMac_;
    wxButton* enable_;
    wxButton* dhcp_;
    wxButton* release_;
    wxButton* renew_;
};

}  // namespace corvane
