#include <gtest/gtest.h>

#include "platform/Platform.h"

namespace corvane {
namespace {

/// In every build, asserts or none.
TEST(InstalledPlatformDeathTest, APlatformThatLacksARoleEndsTheProgramWithTheRolesName) {
    const auto without = [](auto role) {
        Platform platform;
        (platform.*role).reset();
        return platform;
    };
    EXPECT_DEATH(InstallPlatform(without(&Platform::registry)), "The platform to install has no registry");
    EXPECT_DEATH(InstallPlatform(without(&Platform::ipHelper)), "The platform to install has no IP Helper");
    EXPECT_DEATH(InstallPlatform(without(&Platform::shell)), "The platform to install has no shell");
    EXPECT_DEATH(InstallPlatform(without(&Platform::clock)), "The platform to install has no clock");
    EXPECT_DEATH(InstallPlatform(without(&Platform::host)), "The platform to install has no host");
    EXPECT_DEATH(InstallPlatform(without(&Platform::changes)), "The platform to install has no changes");
    EXPECT_DEATH(ScopedPlatform(without(&Platform::nameServers)),
                 "The platform to install has no name servers");
}

}  // namespace
}  // namespace corvane
