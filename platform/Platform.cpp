#include "platform/Platform.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace corvane {

namespace {

/// The platform, if it is whole. Stands in every build: a role that is missing would end the program later,
/// at a place that says nothing of the cause.
Platform Whole(Platform platform) {
    const auto check = [](bool present, const char* role) {
        if (present) return;
        std::fprintf(stderr, "The platform to install has no %s.\n", role);
        std::abort();
    };
    check(platform.registry != nullptr, "registry");
    check(platform.ipHelper != nullptr, "IP Helper");
    check(platform.shell != nullptr, "shell");
    check(platform.clock != nullptr, "clock");
    check(platform.host != nullptr, "host");
    check(platform.changes != nullptr, "changes");
    check(platform.nameServers != nullptr, "name servers");
    return platform;
}

}  // namespace

Platform::Platform(std::shared_ptr<RegistryApi> itsRegistry, std::shared_ptr<IpHelperApi> itsIpHelper,
                   std::shared_ptr<ShellApi> itsShell, std::shared_ptr<ClockApi> itsClock,
                   std::shared_ptr<HostApi> itsHost, std::shared_ptr<ChangesApi> itsChanges,
                   std::shared_ptr<NameServersApi> itsNameServers)
    : registry(std::move(itsRegistry)),
      ipHelper(std::move(itsIpHelper)),
      shell(std::move(itsShell)),
      clock(std::move(itsClock)),
      host(std::move(itsHost)),
      changes(std::move(itsChanges)),
      nameServers(std::move(itsNameServers)) {}

Platform& CurrentPlatform() {
    static Platform platform;
    return platform;
}

void InstallPlatform(Platform platform) { CurrentPlatform() = Whole(std::move(platform)); }

RegistryReading::RegistryReading() : registry_(CurrentPlatform().registry) { registry_->BeginReading(); }

RegistryReading::~RegistryReading() { registry_->EndReading(); }

ScopedPlatform::ScopedPlatform(Platform platform)
    : former_(std::exchange(CurrentPlatform(), Whole(std::move(platform)))) {}

ScopedPlatform::~ScopedPlatform() { CurrentPlatform() = std::move(former_); }

}  // namespace corvane
