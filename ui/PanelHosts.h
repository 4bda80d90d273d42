#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

class wxWindow;

/// What the panels of the main window ask of what they lie in. A host outlives the panels that it is given
/// to.
namespace corvane {

/// What panels ask of the main window.
class WindowHost {
 public:
    /// Runs a command, one at a time: nothing while another runs.
    virtual void Run(const std::function<void()>& command) = 0;
    /// The selected connection, a position in Nics; nothing when there is none.
    [[nodiscard]] virtual std::optional<std::size_t> SelectedAdapter() const = 0;
    /// Folder of the presets file, ending in the separator.
    [[nodiscard]] virtual const std::string& PresetsFolder() const = 0;
    /// Another preset was selected: what can be done with it follows.
    virtual void UpdateCommands() = 0;
    /// The commands of the address lists were enabled or disabled: the menu follows.
    virtual void UpdateListCommands() = 0;
    /// The preset editor was entered or left: the connection's details and commands follow.
    virtual void EditingPreset(bool editing) = 0;
    /// An entry panel was closed.
    virtual void EntryClosed() = 0;
    /// The panel that changes a MAC address was closed.
    virtual void ChangeMacClosed() = 0;

 protected:
    ~WindowHost() = default;
};

/// What panels ask of the details that they are part of.
class DetailsHost {
 public:
    /// A part's size has changed: everything is laid out anew.
    virtual void Rearrange() = 0;
    /// Scrolls a panel that was opened into view.
    virtual void ShowPart(const wxWindow& panel) = 0;
    /// A list got the focus, of which lists do not tell as other controls do: it is scrolled into view.
    virtual void ListFocused(const wxWindow& list) = 0;
    /// The presets are other ones than before.
    virtual void PresetsChanged() = 0;

 protected:
    ~DetailsHost() = default;
};

}  // namespace corvane
