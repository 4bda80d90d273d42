#include "mac/SetConnectionState.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "base/Text.h"
#include "mac/NetworkFolderDialog.h"
#include "platform/Platform.h"
#include "platform/Seat.h"

namespace corvane {

namespace {

/// A shown name as it is compared: without "&", in lower case.
std::string Plain(const std::string& name) { return ToLower(Without(name, '&')); }

bool IsConnectionsFolder(const ShellItem& item) {
    const std::string name = Plain(item.name);
    return name == NetworkFolderName || name == "network and dial-up connections" ||
           name == "network connections";
}

StateResult ShowShellFailure(const Refusal& refusal) {
    CurrentSeat().ShowBox(kApplicationTitle,
                          std::string("Error! There was an error while accessing shell32.dll") + kCrLf +
                              kCrLf + "Description: " + refusal.Words(),
                          BoxIcon::kCritical, BoxButtons::kOk);
    return StateResult::kGivenUp;
}

/// Position of the first element that `matches`, or nothing.
template <class Element, class Predicate>
std::optional<std::size_t> FirstWhere(const std::vector<Element>& elements, Predicate matches) {
    const auto found = std::find_if(elements.begin(), elements.end(), matches);
    if (found == elements.end()) return std::nullopt;
    return static_cast<std::size_t>(found - elements.begin());
}

bool UserWantsToBrowse(const std::string& name) {
    const std::string text =
        "Error! Could not locate network connection '" + name +
        "' to be enabled/disabled. Please, enable/disable your network connection manually. This may happen "
        "if the "
        "'Network Connections' or 'Network and dial-up connections' folder is not found by Orvella Corvane." +
        kCrLf + kCrLf +
        "Do you want to manually browse and set the network connection folder in control pannel ?";
    return CurrentSeat().ShowBox("Unable To Locate Network Connection", text, BoxIcon::kExclamation,
                                 BoxButtons::kYesNoCancel) == BoxAnswer::kYes;
}

}  // namespace

StateResult SetConnectionState(const std::string& name, bool enable, bool partOfRestart) {
    ShellApi& shell = *CurrentPlatform().shell;
    std::vector<ShellItem> panel;
    if (const Refusal refusal = shell.ControlPanelItems(panel)) return ShowShellFailure(refusal);

    const std::optional<std::size_t> folder = FirstWhere(panel, IsConnectionsFolder);
    if (folder) {
        std::vector<std::string> connections;
        if (const Refusal refusal = shell.FolderItems(*folder, connections)) return ShowShellFailure(refusal);
        const std::string wanted = ToLower(name);
        const std::optional<std::size_t> connection =
            FirstWhere(connections, [&](const std::string& item) { return ToLower(item) == wanted; });
        if (connection) {
            std::vector<std::string> verbs;
            if (const Refusal refusal = shell.ItemVerbs(*folder, *connection, verbs))
                return ShowShellFailure(refusal);
            const std::string wantedVerb = enable ? "enable" : "disable";
            const std::optional<std::size_t> verb =
                FirstWhere(verbs, [&](const std::string& item) { return Plain(item) == wantedVerb; });
            if (!verb) return StateResult::kNoVerb;
            if (const Refusal refusal = shell.DoVerb(*folder, *connection, *verb))
                return ShowShellFailure(refusal);
            return StateResult::kDone;
        }
        if (!UserWantsToBrowse(name)) return StateResult::kGivenUp;
    }
    BrowseNetworkFolder(panel, {name, enable, partOfRestart});
    return StateResult::kDialogShown;
}

}  // namespace corvane
