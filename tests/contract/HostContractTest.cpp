#include <chrono>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "platform/Platform.h"
#include "tests/fakes/Fakes.h"

/// The clock, the host and the changes of this system, and where they promise something definite, of the
/// fakes.
namespace corvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

struct Roles {
    const char* name;
    Platform (*make)();
};

void PrintTo(const Roles& roles, std::ostream* out) { *out << roles.name; }

Platform MakeFakePlatform() {
    Platform platform;
    const auto host = std::make_shared<FakeHost>();
    host->identity.readyDescription = "Fake OS";
    platform.host = host;
    platform.clock = std::make_shared<FakeClock>();
    platform.changes = std::make_shared<FakeChanges>();
    return platform;
}

/// Seconds since 1970 of a date and time of day, wherever it is that time.
std::chrono::seconds SecondsOf(const DateTime& date) {
    const std::chrono::year_month_day day{std::chrono::year(date.year),
                                          std::chrono::month(static_cast<unsigned>(date.month)),
                                          std::chrono::day(static_cast<unsigned>(date.day))};
    EXPECT_TRUE(day.ok());
    EXPECT_EQ(std::chrono::weekday(std::chrono::sys_days(day)).c_encoding(),
              static_cast<unsigned>(date.weekday));
    return std::chrono::sys_days(day).time_since_epoch() + std::chrono::hours(date.hour) +
           std::chrono::minutes(date.minute) + std::chrono::seconds(date.second);
}

std::chrono::seconds UniversalTime() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch());
}

class HostContract : public testing::TestWithParam<Roles> {
 protected:
    Platform platform_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(BackEnds, HostContract,
                         testing::Values(Roles{"Fake", MakeFakePlatform},
                                         Roles{"System", MakeSystemPlatform}),
                         [](const auto& roles) { return std::string(roles.param.name); });

TEST_P(HostContract, TheSystemSaysWhatItIs) {
    const OsIdentity identity = platform_.host->Os();
    EXPECT_TRUE(!identity.readyDescription.empty() || identity.majorVersion > 0);
}

TEST_P(HostContract, TheGeneralDateNamesEveryFigure) {
    const std::string text = platform_.host->GeneralDate({2026, 12, 28, 1, 9, 35, 47});
    for (const char* figure : {"26", "12", "28", "9", "35", "47"}) {
        EXPECT_NE(text.find(figure), std::string::npos) << figure << " is not in " << text;
    }
    EXPECT_NE(text, platform_.host->GeneralDate({2026, 12, 28, 1, 21, 35, 47})) << "before and after noon";
}

TEST_P(HostContract, NothingHasChangedWhenNothingHappened) {
    platform_.changes->TakeChanges();
    EXPECT_FALSE(platform_.changes->TakeChanges());
    EXPECT_FALSE(platform_.changes->TakeChanges());
}

TEST(SystemHostContract, TheProgramFolderIsAnAbsolutePathOfAFolder) {
    const Platform platform = MakeSystemPlatform();
    const std::string folder = platform.host->ProgramFolder();
    const std::filesystem::path path(std::u8string(folder.begin(), folder.end()));
    EXPECT_TRUE(path.is_absolute()) << folder;
    EXPECT_TRUE(std::filesystem::is_directory(path)) << folder;
    EXPECT_NE(folder.find(platform.host->Separator()), std::string::npos) << folder;
}

TEST(SystemHostContract, TheSeparatorIsThatOfTheSystemsPaths) {
    EXPECT_EQ(std::filesystem::path::value_type(MakeSystemPlatform().host->Separator()),
              std::filesystem::path::preferred_separator);
}

TEST(SystemClockContract, LocalTimeIsUniversalTimeMovedByWholeQuartersOfAnHour) {
    const Platform platform = MakeSystemPlatform();
    const std::chrono::seconds before = UniversalTime();
    const std::chrono::seconds local = SecondsOf(platform.clock->LocalTime());
    const std::chrono::seconds after = UniversalTime();
    const bool found = [&] {
        for (std::chrono::seconds zone = -14h; zone <= 14h; zone += 15min) {
            if (local - zone >= before && local - zone <= after) return true;
        }
        return false;
    }();
    EXPECT_TRUE(found) << local.count() << " at " << before.count();
}

TEST(SystemClockContract, SleepTakesAsLongAsAsked) {
    const Platform platform = MakeSystemPlatform();
    const auto before = steady_clock::now();
    platform.clock->Sleep(100);
    // The system's own clock may go by steps of some milliseconds.
    EXPECT_GE(steady_clock::now() - before, 80ms);
}

TEST(SystemClockContract, TheSeedMovesOnWithTheTime) {
    const Platform platform = MakeSystemPlatform();
    const std::uint32_t first = platform.clock->Seed();
    const auto deadline = steady_clock::now() + 5s;
    while (platform.clock->Seed() == first && steady_clock::now() < deadline) {
    }
    EXPECT_NE(platform.clock->Seed(), first);
}

}  // namespace
}  // namespace corvane
