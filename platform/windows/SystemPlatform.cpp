#include <memory>

#include "platform/GuardedPlatform.h"
#include "platform/Platform.h"
#include "platform/windows/WindowsHost.h"
#include "platform/windows/WindowsIpHelper.h"
#include "platform/windows/WindowsRegistry.h"
#include "platform/windows/WindowsShell.h"

namespace corvane {

Platform MakeSystemPlatform() {
    return GuardedPlatform({std::make_shared<WindowsRegistry>(), std::make_shared<WindowsIpHelper>(),
                            std::make_shared<WindowsShell>(), std::make_shared<WindowsClock>(),
                            std::make_shared<WindowsHost>(), std::make_shared<WindowsChanges>(),
                            std::make_shared<WindowsNameServers>()});
}

}  // namespace corvane
