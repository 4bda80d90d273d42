#include "platform/linux/ConnectionsFolder.h"

namespace corvane {

namespace {

Refusal NoSuchFolder() { return Refusal("There is no such folder in the Control Panel."); }

}  // namespace

Refusal ConnectionsFolder::ControlPanelItems(std::vector<ShellItem>& items) {
    items = {{"Network Connections", true}};
    return {};
}

Refusal ConnectionsFolder::FolderItems(std::size_t panelItem, std::vector<std::string>& names) {
    if (panelItem != 0) return NoSuchFolder();
    const KernelAnswer answer = machine_->Update();
    if (!answer.Ok()) return Refusal("The links cannot be listed: " + answer.Words());
    links_.clear();
    for (const KernelLink& link : machine_->Picture().links) links_.push_back(link.name);
    names = links_;
    return {};
}

Refusal ConnectionsFolder::ItemVerbs(std::size_t panelItem, std::size_t item,
                                     std::vector<std::string>& verbs) {
    if (panelItem != 0) return NoSuchFolder();
    if (item >= links_.size()) return Refusal("There is no such network connection.");
    KernelLink link;
    const KernelAnswer answer = machine_->Kernel().GetLinkByName(links_[item], link);
    if (!answer.Ok()) return Refusal("'" + links_[item] + "': the link is gone: " + answer.Words());
    offersDisable_ = link.Up();
    verbs = {offersDisable_ ? "Disa&ble" : "En&able"};
    return {};
}

Refusal ConnectionsFolder::DoVerb(std::size_t panelItem, std::size_t item, std::size_t verb) {
    if (panelItem != 0) return NoSuchFolder();
    if (item >= links_.size() || verb != 0) {
        return Refusal("There is no such network connection or verb.");
    }
    return offersDisable_ ? control_.Disable(links_[item]) : control_.Enable(links_[item]);
}

Refusal ConnectionsFolder::OpenDocument(const std::string& target) { return opener_.Open(target); }

}  // namespace corvane
