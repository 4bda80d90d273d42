#pragma once

#include <vector>

#include "platform/Platform.h"
#include "platform/windows/ShellObjects.h"

namespace corvane {

/// The Control Panel and the connections folder through the shell's automation objects (shldisp.h).
///
/// Up to Windows XP the connections folder is an item of the Control Panel. Later systems list it there no
/// more, but the shell's name space 0x31 (CSIDL_CONNECTIONS, shlobj.h) is that folder on all of them: where
/// the Control Panel has no item of that folder's title, it is added at the end of the items under the name
/// "Network Connections", whatever the system's language.
class WindowsShell : public ShellApi {
 public:
    Refusal ControlPanelItems(std::vector<ShellItem>& items) override;
    Refusal FolderItems(std::size_t panelItem, std::vector<std::string>& names) override;
    Refusal ItemVerbs(std::size_t panelItem, std::size_t item, std::vector<std::string>& verbs) override;
    /// Returns when the shell has taken the verb; the connection may still be on its way to the new state.
    Refusal DoVerb(std::size_t panelItem, std::size_t item, std::size_t verb) override;
    Refusal OpenDocument(const std::string& target) override;

 private:
    Apartment apartment_;  ///< Before what lives in it.
    std::vector<ShellFolderItem> panel_;
    ShellFolder connections_;  ///< Name space 0x31, when it stands at the end of the panel's items.
    std::size_t openFolder_ = 0;
    std::vector<ShellFolderItem> items_;  ///< Of folder `openFolder_`.
    std::vector<ShellVerb> verbs_;        ///< Of the item that was asked last.
};

}  // namespace corvane
