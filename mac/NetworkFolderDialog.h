#pragma once

#include <string>
#include <vector>

#include "platform/Platform.h"

namespace corvane {

/// What the folder dialog carries out once the folder is known.
struct FolderRequest {
    std::string connectionName;
    bool enable = false;
    bool restart = false;
};

/// Lets the user point at the Network Connections folder among the Control Panel items that are folders,
/// remembers its name, and carries the request out. Does nothing when the user cancels.
void BrowseNetworkFolder(const std::vector<ShellItem>& panel, const FolderRequest& request);

}  // namespace corvane
