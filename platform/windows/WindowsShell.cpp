#include "platform/windows/WindowsShell.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/Text.h"
#include "platform/CodePage.h"
#include "platform/Guarded.h"
#include "platform/windows/SystemMessage.h"

namespace corvane {

namespace {

/// Numbers of the shell's name spaces (CSIDL_CONTROLS and CSIDL_CONNECTIONS, shlobj.h).
constexpr int kControlPanel = 3;
constexpr int kConnections = 0x31;

constexpr char kConnectionsName[] = "Network Connections";

/// Turns a failing shell call into the answer that the callers know.
template <class Action>
Refusal WithoutExceptions(const Action& action) {
    const auto done = [&] {
        action();
        return Refusal();
    };
    return Guarded(done, RefusalOf);
}

std::vector<std::string> Names(const std::vector<ShellVerb>& verbs) {
    std::vector<std::string> names;
    for (const ShellVerb& verb : verbs) names.push_back(verb.Name());
    return names;
}

/// ShellExecuteA's answers up to 32 are error codes of their own (shellapi.h); they have the system's texts.
std::string FailureOf(std::uint32_t code) {
    const std::string said = SystemMessageLine(code);
    return said.empty() ? "error " + std::to_string(code) : said;
}

}  // namespace

Refusal WindowsShell::ControlPanelItems(std::vector<ShellItem>& items) {
    return WithoutExceptions([&] {
        const ShellFolder panel = ShellNameSpace(kControlPanel);
        if (!panel.Exists()) throw ShellFailure("The shell has no Control Panel.");
        std::vector<ShellFolderItem> found = panel.Items();
        std::vector<ShellItem> listed;
        for (const ShellFolderItem& item : found) listed.push_back({item.Name(), item.IsFolder()});
        ShellFolder connections = ShellNameSpace(kConnections);
        if (connections.Exists()) {
            const std::string title = connections.Title();
            const bool isListed = std::any_of(listed.begin(), listed.end(), [&](const ShellItem& item) {
                const std::string name = ToLower(Without(item.name, '&'));
                return name == ToLower(title) || name == ToLower(kConnectionsName);
            });
            if (isListed) {
                connections = {};
            } else {
                listed.push_back({kConnectionsName, true});
            }
        }
        panel_ = std::move(found);
        connections_ = std::move(connections);
        items = std::move(listed);
    });
}

Refusal WindowsShell::FolderItems(std::size_t panelItem, std::vector<std::string>& names) {
    return WithoutExceptions([&] {
        ShellFolder folder;
        if (panelItem < panel_.size()) folder = panel_[panelItem].Open();
        if (panelItem == panel_.size()) folder = connections_;
        if (!folder.Exists()) throw ShellFailure("The Control Panel has no such folder.");
        std::vector<ShellFolderItem> found = folder.Items();
        std::vector<std::string> listed;
        for (const ShellFolderItem& item : found) listed.push_back(item.Name());
        items_ = std::move(found);
        openFolder_ = panelItem;
        names = std::move(listed);
    });
}

Refusal WindowsShell::ItemVerbs(std::size_t panelItem, std::size_t item, std::vector<std::string>& verbs) {
    return WithoutExceptions([&] {
        if (panelItem != openFolder_) throw ShellFailure("The folder is not the one that was opened.");
        verbs_ = items_.at(item).Verbs();
        verbs = Names(verbs_);
    });
}

Refusal WindowsShell::DoVerb(std::size_t, std::size_t, std::size_t verb) {
    return WithoutExceptions([&] { verbs_.at(verb).Do(); });
}

Refusal WindowsShell::OpenDocument(const std::string& target) {
    const HINSTANCE answer =
        ShellExecuteA(nullptr, "open", ToCodePage(target).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    const auto code = static_cast<DWORD>(reinterpret_cast<INT_PTR>(answer));
    static constexpr DWORD kLastFailure = 32;
    return code > kLastFailure ? Refusal() : Refusal(FailureOf(code));
}

}  // namespace corvane
