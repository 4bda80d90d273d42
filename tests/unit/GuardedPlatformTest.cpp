#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "platform/GuardedPlatform.h"

namespace corvane {
namespace {

/// What every call of the roles below throws.
class Thrower {
 public:
    enum class What { kNoMemory, kWords, kNoWords, kNumber };
    static inline What what = What::kWords;

    [[noreturn]] static void Throw() {
        switch (what) {
            case What::kNoMemory:
                throw std::bad_alloc();
            case What::kWords:
                throw std::runtime_error("the disk is on fire");
            case What::kNoWords:
                throw std::runtime_error("");
            default:
                throw 17;
        }
    }
};

class ThrowingRegistry : public RegistryApi {
    RegistryRead ReadValue(RegistryRoot, const std::string&, const std::string&) override {
        Thrower::Throw();
    }
    Win32Error WriteValue(RegistryRoot, const std::string&, const std::string&,
                          const RegistryValue&) override {
        Thrower::Throw();
    }
    Win32Error DeleteValue(RegistryRoot, const std::string&, const std::string&) override {
        Thrower::Throw();
    }
    Win32Error CreateKey(RegistryRoot, const std::string&) override { Thrower::Throw(); }
    Win32Error EnumSubkeys(RegistryRoot, const std::string&, std::vector<std::string>&) override {
        Thrower::Throw();
    }
    void BeginReading() override { Thrower::Throw(); }
    void EndReading() override { Thrower::Throw(); }
};

class ThrowingIpHelper : public IpHelperApi {
    TableRead<InterfaceEntry> GetInterfaceInfo() override { Thrower::Throw(); }
    Win32Error GetIfEntry(std::uint32_t, IfRow&) override { Thrower::Throw(); }
    TableRead<IpAddrRow> GetIpAddrTable() override { Thrower::Throw(); }
    TableRead<IpForwardRow> GetIpForwardTable() override { Thrower::Throw(); }
    Win32Error AddIPAddress(const Ipv4Bytes&, const Ipv4Bytes&, std::uint32_t, std::uint32_t&) override {
        Thrower::Throw();
    }
    Win32Error DeleteIPAddress(std::uint32_t) override { Thrower::Throw(); }
    Win32Error CreateIpForwardEntry(const IpForwardRow&) override { Thrower::Throw(); }
    Win32Error DeleteIpForwardEntry(const IpForwardRow&) override { Thrower::Throw(); }
    Win32Error IpReleaseAddress(const InterfaceEntry&) override { Thrower::Throw(); }
    Win32Error IpRenewAddress(const InterfaceEntry&) override { Thrower::Throw(); }
    std::string SystemText(Win32Error) override { Thrower::Throw(); }
};

class ThrowingShell : public ShellApi {
    Refusal ControlPanelItems(std::vector<ShellItem>&) override { Thrower::Throw(); }
    Refusal FolderItems(std::size_t, std::vector<std::string>&) override { Thrower::Throw(); }
    Refusal ItemVerbs(std::size_t, std::size_t, std::vector<std::string>&) override { Thrower::Throw(); }
    Refusal DoVerb(std::size_t, std::size_t, std::size_t) override { Thrower::Throw(); }
    Refusal OpenDocument(const std::string&) override { Thrower::Throw(); }
};

class ThrowingClock : public ClockApi {
    void Sleep(std::uint32_t) override { Thrower::Throw(); }
    DateTime LocalTime() override { Thrower::Throw(); }
    std::uint32_t Seed() override { Thrower::Throw(); }
};

class ThrowingHost : public HostApi {
    OsIdentity Os() override { Thrower::Throw(); }
    std::string ProgramFolder() override { Thrower::Throw(); }
    char Separator() override { Thrower::Throw(); }
    std::string GeneralDate(const DateTime&) override { Thrower::Throw(); }
};

class ThrowingNameServers : public NameServersApi {
    Refusal PutInForce(const std::string&) override { Thrower::Throw(); }
};

struct Thrown {
    Thrower::What what;
    Win32Error code;
    std::string words;
};

class GuardedPlatformTest : public testing::TestWithParam<Thrown> {
 protected:
    GuardedPlatformTest() { Thrower::what = GetParam().what; }

    template <class Row>
    static void ExpectFailed(const TableRead<Row>& table) {
        EXPECT_EQ(table.outcome, TableRead<Row>::Outcome::kFailed);
        EXPECT_EQ(table.code, GetParam().code);
        EXPECT_TRUE(table.rows.empty());
    }

    Platform platform_ =
        GuardedPlatform({std::make_shared<ThrowingRegistry>(), std::make_shared<ThrowingIpHelper>(),
                         std::make_shared<ThrowingShell>(), std::make_shared<ThrowingClock>(),
                         std::make_shared<ThrowingHost>(), std::make_shared<FakeChanges>(),
                         std::make_shared<ThrowingNameServers>()});
};

TEST_P(GuardedPlatformTest, EveryCallOfTheRegistryEndsInANumber) {
    const Win32Error code = GetParam().code;
    RegistryApi& registry = *platform_.registry;
    std::vector<std::string> names;
    const RegistryRead read = registry.ReadValue(kHkeyLocalMachine, "", "");
    EXPECT_EQ(read.code, code);
    EXPECT_FALSE(read.keyOpened);
    EXPECT_EQ(registry.WriteValue(kHkeyLocalMachine, "", "", {}), code);
    EXPECT_EQ(registry.DeleteValue(kHkeyLocalMachine, "", ""), code);
    EXPECT_EQ(registry.CreateKey(kHkeyLocalMachine, ""), code);
    EXPECT_EQ(registry.EnumSubkeys(kHkeyLocalMachine, "", names), code);
    EXPECT_NO_THROW(registry.BeginReading());
    EXPECT_NO_THROW(registry.EndReading());
}

TEST_P(GuardedPlatformTest, EveryCallOfTheIpHelperEndsInANumber) {
    const Win32Error code = GetParam().code;
    IpHelperApi& helper = *platform_.ipHelper;
    IfRow row;
    std::uint32_t context = 0;
    ExpectFailed(helper.GetInterfaceInfo());
    ExpectFailed(helper.GetIpAddrTable());
    ExpectFailed(helper.GetIpForwardTable());
    EXPECT_EQ(helper.GetIfEntry(1, row), code);
    EXPECT_EQ(helper.AddIPAddress({}, {}, 1, context), code);
    EXPECT_EQ(helper.DeleteIPAddress(1), code);
    EXPECT_EQ(helper.CreateIpForwardEntry({}), code);
    EXPECT_EQ(helper.DeleteIpForwardEntry({}), code);
    EXPECT_EQ(helper.IpReleaseAddress({}), code);
    EXPECT_EQ(helper.IpRenewAddress({}), code);
    EXPECT_EQ(helper.SystemText(code), "");
}

TEST_P(GuardedPlatformTest, EveryCallOfShellAndNameServersEndsInARefusal) {
    const Refusal refusal(GetParam().words);
    ShellApi& shell = *platform_.shell;
    std::vector<ShellItem> items;
    std::vector<std::string> names;
    EXPECT_EQ(shell.ControlPanelItems(items), refusal);
    EXPECT_EQ(shell.FolderItems(0, names), refusal);
    EXPECT_EQ(shell.ItemVerbs(0, 0, names), refusal);
    EXPECT_EQ(shell.DoVerb(0, 0, 0), refusal);
    EXPECT_EQ(shell.OpenDocument(""), refusal);
    EXPECT_EQ(platform_.nameServers->PutInForce(""), refusal);
}

TEST_P(GuardedPlatformTest, ClockAndHostAnswerWithoutASystem) {
    EXPECT_NO_THROW(platform_.clock->Sleep(1));
    EXPECT_EQ(platform_.clock->LocalTime().year, 1970);
    EXPECT_EQ(platform_.clock->Seed(), 0U);
    EXPECT_EQ(platform_.host->Os().readyDescription, "");
    EXPECT_EQ(platform_.host->ProgramFolder(), ".");
    EXPECT_EQ(platform_.host->Separator(), '/');
    EXPECT_EQ(platform_.host->GeneralDate({}), "");
}

INSTANTIATE_TEST_SUITE_P(
    EachKind, GuardedPlatformTest,
    testing::Values(Thrown{Thrower::What::kNoMemory, Win32Error::kNotEnoughMemory, "out of memory"},
                    Thrown{Thrower::What::kWords, Win32Error::kGenFailure, "the disk is on fire"},
                    Thrown{Thrower::What::kNoWords, Win32Error::kGenFailure, "unknown failure"},
                    Thrown{Thrower::What::kNumber, Win32Error::kGenFailure, "unknown failure"}),
    [](const auto& thrown) { return std::to_string(thrown.index); });

TEST(GuardedPlatform, ARoleThatWorksIsHandedOn) {
    const auto shell = std::make_shared<FakeShell>();
    const auto clock = std::make_shared<FakeClock>();
    const auto changes = std::make_shared<FakeChanges>();
    Platform plain;
    plain.shell = shell;
    plain.clock = clock;
    plain.changes = changes;
    const Platform guarded = GuardedPlatform(plain);
    EXPECT_EQ(guarded.shell->OpenDocument("page"), Refusal());
    EXPECT_EQ(shell->diary, std::vector<std::string>{"open page"});
    guarded.clock->Sleep(5);
    EXPECT_EQ(clock->sleeps, std::vector<std::uint32_t>{5});
    EXPECT_EQ(guarded.changes, changes);
    EXPECT_EQ(guarded.registry->CreateKey(kHkeyLocalMachine, "Key"), Win32Error::kCantWrite);
}

}  // namespace
}  // namespace corvane
