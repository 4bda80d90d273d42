#include "platform/linux/ConnectionsFolder.h"

namespace corvane {

namespace {

bool IsFolder(std::size_t panelItem, std::string& failure) {
    if (panelItem == 0) return true;
    failure = "There is no such folder in the Control Panel.";
    return false;
}

}  // namespace

bool ConnectionsFolder::ControlPanelItems(std::vector<ShellItem>& items, std::string&) {
    items = {{"Network Connections", true}};
    return true;
}

bool ConnectionsFolder::FolderItems(std::size_t panelItem, std::vector<std::string>& names,
                                    std::string& failure) {
    if (!IsFolder(panelItem, failure)) return false;
    machine_->Update();
    links_.clear();
    for (const KernelLink& link : machine_->Picture().links) links_.push_back(link.name);
    names = links_;
    return true;
}

bool ConnectionsFolder::ItemVerbs(std::size_t panelItem, std::size_t item, std::vector<std::string>& verbs,
                                  std::string& failure) {
    if (!IsFolder(panelItem, failure)) return false;
    if (item >= links_.size()) {
        failure = "There is no such network connection.";
        return false;
    }
    KernelLink link;
    const KernelAnswer answer = machine_->Kernel().GetLinkByName(links_[item], link);
    if (!answer.Ok()) {
        failure = "'" + links_[item] + "': the link is gone: " + answer.Words();
        return false;
    }
    offersDisable_ = link.Up();
    verbs = {offersDisable_ ? "Disa&ble" : "En&able"};
    return true;
}

bool ConnectionsFolder::DoVerb(std::size_t panelItem, std::size_t item, std::size_t verb,
                               std::string& failure) {
    if (!IsFolder(panelItem, failure)) return false;
    if (item >= links_.size() || verb != 0) {
        failure = "There is no such network connection or verb.";
        return false;
    }
    return offersDisable_ ? control_.Disable(links_[item], failure) : control_.Enable(links_[item], failure);
}

bool ConnectionsFolder::OpenDocument(const std::string& target, std::string& failure) {
    return opener_.Open(target, failure);
}

}  // namespace corvane
