#include <memory>
#include <optional>

#include "platform/Guarded.h"
#include "platform/GuardedPlatform.h"
#include "platform/Platform.h"
#include "platform/linux/ChangesDescriptor.h"
#include "platform/linux/ConnectionsFolder.h"
#include "platform/linux/Host.h"
#include "platform/linux/IpHelper.h"
#include "platform/linux/NameServers.h"
#include "platform/linux/SyncedRegistry.h"
#include "platform/linux/kernel/LinkMonitor.h"
#include "platform/linux/links/Machine.h"

namespace corvane {

namespace {

/// The kernel's events. Watches from the first call on, so that a program that never asks opens no socket.
class KernelChanges : public DescribedChanges {
 public:
    bool TakeChanges() override {
        return Guarded([this] { return Monitor().TakeChanges(); },
                       [](Win32Error, const char*) { return true; });
    }
    int Descriptor() override {
        return Guarded([this] { return Monitor().Descriptor(); }, [](Win32Error, const char*) { return -1; });
    }

 private:
    LinkMonitor& Monitor() {
        if (!monitor_) monitor_.emplace();
        return *monitor_;
    }

    std::optional<LinkMonitor> monitor_;
};

}  // namespace

Platform MakeSystemPlatform() {
    const auto machine = std::make_shared<Machine>();
    return GuardedPlatform({std::make_shared<SyncedRegistry>(machine), std::make_shared<IpHelper>(machine),
                            std::make_shared<ConnectionsFolder>(machine), std::make_shared<SystemClock>(),
                            std::make_shared<SystemHost>(), std::make_shared<KernelChanges>(),
                            std::make_shared<NameServers>(machine)});
}

}  // namespace corvane
