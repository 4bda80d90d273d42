#include "platform/Platform.h"

#include <utility>

namespace corvane {

Platform& CurrentPlatform() {
    static Platform platform;
    return platform;
}

void InstallPlatform(Platform platform) { CurrentPlatform() = std::move(platform); }

RegistryReading::RegistryReading() : registry_(CurrentPlatform().registry) { registry_->BeginReading(); }

RegistryReading::~RegistryReading() { registry_->EndReading(); }

ScopedPlatform::ScopedPlatform(Platform platform)
    : former_(std::exchange(CurrentPlatform(), std::move(platform))) {}

ScopedPlatform::~ScopedPlatform() { CurrentPlatform() = std::move(former_); }

}  // namespace corvane
