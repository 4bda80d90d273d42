#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/linux/kernel/Ethtool.h"
#include "platform/linux/kernel/LinkMonitor.h"
#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/links/LinkSync.h"
#include "platform/linux/registry/RegistryStore.h"

namespace corvane {

/// What the Linux roles share: the kernel's links and the store that is kept in step with them. One picture
/// of links, addresses and routes serves until the kernel reports a change. Not thread-safe.
class Machine {
 public:
    /// `kernel` is for tests whose transport refuses something.
    explicit Machine(std::string storePath = RegistryStore::DefaultPath(),
                     std::unique_ptr<Netlink> kernel = std::make_unique<Netlink>());
    ~Machine();

    /// Brings picture and store up to date if the kernel reported changes since the last call. Cheap when it
    /// did not. What a kernel that could not be read answered: picture and store are then the former ones,
    /// which may be out of date, and the next call tries again. A store that cannot be brought in step shows
    /// in the store's own codes.
    KernelAnswer Update();

    /// Makes the next Update read everything anew.
    void Forget() { known_ = false; }

    /// The picture as of the last Update.
    [[nodiscard]] const KernelPicture& Picture() const { return picture_; }
    /// The store's rows of links as of the last Update.
    [[nodiscard]] const std::vector<LinkRow>& Rows() const { return rows_; }
    /// Row of the present link with this index or name, or nullptr.
    [[nodiscard]] const LinkRow* RowOfIndex(std::uint32_t index) const;
    [[nodiscard]] const LinkRow* RowOfName(const std::string& name) const;

    RegistryStore& Store() { return store_; }
    Netlink& Kernel() { return *netlink_; }
    Ethtool& Drivers() { return ethtool_; }

 private:
    RegistryStore store_;
    LinkMonitor monitor_;
    std::unique_ptr<Netlink> netlink_;
    Ethtool ethtool_;
    TimeZone zone_;
    KernelPicture picture_;
    std::vector<LinkRow> rows_;
    bool known_ = false;
};

}  // namespace corvane
