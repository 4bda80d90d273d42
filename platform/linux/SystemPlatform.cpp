#include <memory>

#include "platform/Platform.h"
#include "platform/linux/ConnectionsFolder.h"
#include "platform/linux/Host.h"
#include "platform/linux/IpHelper.h"
#include "platform/linux/Machine.h"
#include "platform/linux/SyncedRegistry.h"

namespace corvane {

Platform MakeSystemPlatform() {
    const auto machine = std::make_shared<Machine>();
    return {std::make_shared<SyncedRegistry>(machine), std::make_shared<IpHelper>(machine),
            std::make_shared<ConnectionsFolder>(machine), std::make_shared<SystemClock>(),
            std::make_shared<SystemHost>()};
}

}  // namespace corvane
