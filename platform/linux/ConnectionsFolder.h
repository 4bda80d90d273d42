#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "platform/linux/DesktopOpener.h"
#include "platform/linux/links/Machine.h"
#include "platform/linux/owners/LinkControl.h"

namespace corvane {

/// The shell role: a Control Panel whose one item is the folder "Network Connections"; its items are the
/// links. A link that is up offers "Disa&ble", one that is down "En&able".
class ConnectionsFolder : public ShellApi {
 public:
    explicit ConnectionsFolder(std::shared_ptr<Machine> machine)
        : machine_(machine), control_(std::move(machine)) {}

    Refusal ControlPanelItems(std::vector<ShellItem>& items) override;
    Refusal FolderItems(std::size_t panelItem, std::vector<std::string>& names) override;
    Refusal ItemVerbs(std::size_t panelItem, std::size_t item, std::vector<std::string>& verbs) override;
    Refusal DoVerb(std::size_t panelItem, std::size_t item, std::size_t verb) override;
    Refusal OpenDocument(const std::string& target) override;

 private:
    std::shared_ptr<Machine> machine_;
    LinkControl control_;
    DesktopOpener opener_;
    std::vector<std::string> links_;  ///< Of the latest FolderItems.
    bool offersDisable_ = false;      ///< Of the latest ItemVerbs.
};

}  // namespace corvane
