#include "mac/NetworkFolderDialog.h"

#include <optional>

#include "base/Text.h"
#include "mac/RestartConnection.h"
#include "mac/SetConnectionState.h"
#include "platform/Registry.h"
#include "platform/RegistryKeys.h"
#include "platform/RegistryValues.h"
#include "platform/Seat.h"

namespace corvane {

namespace {

/// In memory at once, and in the registry. A failure is shown; the operation goes on.
void RememberFolder(const std::string& name) {
    NetworkFolderName = ToLower(name);
    Win32Error code = RegCreateKey(kHkeyLocalMachine, kProgramKey);
    if (Ok(code)) {
        code = RegSetString(kHkeyLocalMachine, kProgramKey, kNetworkFolderValue, NetworkFolderName, kRegSz);
    }
    if (Ok(code)) return;
    ShowRegistryError("Error! Cannot Write Registry", "Error while writing windows registry.",
                      std::string(kProgramKey) + "\\" + kNetworkFolderValue, code);
}

}  // namespace

void BrowseNetworkFolder(const std::vector<ShellItem>& panel, const FolderRequest& request) {
    Seat& seat = CurrentSeat();
    std::vector<std::string> folders;
    for (const ShellItem& item : panel) {
        if (item.isFolder) folders.push_back(Without(item.name, '&'));
    }
    const std::optional<std::size_t> choice =
        seat.PickFolder("Browse Network Folder", "Control Pannel Folders",
                        "Please Manually Select 'Network Connections' or 'Network and dial-up connections' "
                        "Folder From The List "
                        "Below. Orvella Corvane Will Remember The Folder You Selected.",
                        folders);
    if (!choice || *choice >= folders.size()) return;
    RememberFolder(folders[*choice]);

    if (request.restart) {
        if (!RestartConnection(request.connectionName, false, false)) return;
        ShowInformation("Network Connection Restarted", "Network connection restarted successfully.");
        seat.Refresh();
        return;
    }
    BeginRowProgress(request.enable ? "Enabling ..." : "Disabling ...");
    if (SetConnectionState(request.connectionName, request.enable, false) != StateResult::kDone) return;
    static constexpr std::uint32_t kWaitMilliseconds = 5000;
    CurrentPlatform().clock->Sleep(kWaitMilliseconds);
    if (request.enable) {
        ShowInformation("Network Connection Enabled", "Network connection enabled successfully.");
    } else {
        ShowInformation("Network Connection Disabled", "Network connection disabled successfully.");
    }
    seat.Refresh();
}

}  // namespace corvane
