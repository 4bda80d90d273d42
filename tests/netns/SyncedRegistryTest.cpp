#include <cctype>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "fakes/Fakes.h"
#include "netns/NetnsSupport.h"
#include "platform/RegistryKeys.h"
#include "platform/linux/SyncedRegistry.h"
#include "platform/linux/owners/LinkControl.h"

namespace corvane {
namespace {

using netns::Ip;
using namespace std::string_literals;

constexpr char kResolvConf[] = "/etc/resolv.conf";
constexpr char kBefore[] = "# kept by hand\nnameserver 192.0.2.53\n";

std::string Block(const std::string& lines) {
    return "# Orvella Corvane: name servers of the network connections, do not edit\n" + lines +
           "# Orvella Corvane: end\n";
}

class SyncedRegistryTest : public testing::Test {
 protected:
    SyncedRegistryTest() {
        Put(kBefore);
        link_.BringUp();
        machine_->Update();
        key_ = TcpipKey(machine_->RowOfName(link_.Name())->id);
    }
    ~SyncedRegistryTest() override { std::filesystem::remove_all(folder_); }

    static void Put(const std::string& contents) { std::ofstream(kResolvConf) << contents; }
    static std::string Resolver() {
        std::ifstream file(kResolvConf);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    Win32Error Write(const std::string& key, const std::string& name, const std::string& text) {
        return registry_.WriteValue(kHkeyLocalMachine, key, name, {kRegSz, {text.begin(), text.end()}});
    }
    Win32Error Write(const std::string& servers) { return Write(key_, "NameServer", servers); }

    std::string folder_ = "/run/" + netns::NewLinkName("synced");
    netns::ScopedVeth link_;
    std::shared_ptr<Machine> machine_ = std::make_shared<Machine>(folder_ + "/registry.db");
    SyncedRegistry registry_{machine_};
    std::string key_;
    FakeSeat seat_;
    ScopedSeat scopedSeat_{seat_};
};

TEST_F(SyncedRegistryTest, TheResolverFollowsTheNameServersOfALinkThatIsUp) {
    ASSERT_EQ(Write("10.91.0.54,10.91.0.53"), Win32Error::kSuccess);
    EXPECT_EQ(Resolver(), Block("nameserver 10.91.0.54\nnameserver 10.91.0.53\n") + kBefore);
    ASSERT_EQ(Write("10.91.0.53"), Win32Error::kSuccess);
    EXPECT_EQ(Resolver(), Block("nameserver 10.91.0.53\n") + kBefore);
    ASSERT_EQ(registry_.DeleteValue(kHkeyLocalMachine, key_, "NameServer"), Win32Error::kSuccess);
    EXPECT_EQ(Resolver(), kBefore);
    EXPECT_TRUE(seat_.diary.empty());
}

TEST_F(SyncedRegistryTest, KeyAndNameMayBeWrittenInAnyCase) {
    std::string key = "\\" + key_;
    for (char& c : key) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    ASSERT_EQ(Write(key, "nameSERVER", "10.91.0.53"), Win32Error::kSuccess);
    EXPECT_EQ(Resolver(), Block("nameserver 10.91.0.53\n") + kBefore);
}

TEST_F(SyncedRegistryTest, TheNameServersOfALinkThatIsDownWaitForItsNextStart) {
    const netns::ScopedVeth other;
    other.BringUp();
    machine_->Update();
    ASSERT_EQ(Write(TcpipKey(machine_->RowOfName(other.Name())->id), "NameServer", "10.92.0.53"),
              Win32Error::kSuccess);
    LinkControl control(machine_);
    std::string failure;
    ASSERT_TRUE(control.Disable(link_.Name(), failure)) << failure;
    // Whoever looked at it would write the other link's block anew.
    Put(kBefore);
    ASSERT_EQ(Write("10.91.0.53"), Win32Error::kSuccess);
    EXPECT_EQ(Resolver(), kBefore);
    ASSERT_TRUE(control.Enable(link_.Name(), failure)) << failure;
    EXPECT_EQ(Resolver(), Block("nameserver 10.91.0.53\nnameserver 10.92.0.53\n") + kBefore);
}

TEST_F(SyncedRegistryTest, OtherWritesLeaveTheResolverAlone) {
    ASSERT_EQ(Write("10.91.0.53"), Win32Error::kSuccess);
    // Whoever looked at it would write the block anew.
    Put(kBefore);
    const std::string foreign = kInterfacesKey + "\\{0A0A0A0A-0000-0000-0000-000000000000}"s;
    ASSERT_EQ(registry_.CreateKey(kHkeyLocalMachine, foreign), Win32Error::kSuccess);
    EXPECT_EQ(Write(foreign, "NameServer", "10.91.0.99"), Win32Error::kSuccess);
    EXPECT_EQ(Write(key_, "NameServers", "10.91.0.99"), Win32Error::kSuccess);
    EXPECT_EQ(Write(key_, "Domain", "example.org"), Win32Error::kSuccess);
    EXPECT_EQ(Write(key_ + "\\below", "NameServer", "10.91.0.99"), Win32Error::kFileNotFound);
    EXPECT_EQ(registry_.DeleteValue(kHkeyLocalMachine, key_, "Domain"), Win32Error::kSuccess);
    EXPECT_EQ(registry_.ReadValue(kHkeyLocalMachine, key_, "NameServer").code, Win32Error::kSuccess);
    EXPECT_EQ(Resolver(), kBefore);
}

TEST_F(SyncedRegistryTest, AWriteThatFailedLeavesTheResolverAlone) {
    ASSERT_EQ(Write("10.91.0.53"), Win32Error::kSuccess);
    Put(kBefore);
    EXPECT_EQ(registry_.WriteValue(0x80000001U, key_, "NameServer", {kRegSz, {}}),
              Win32Error::kInvalidHandle);
    EXPECT_EQ(registry_.DeleteValue(0x80000001U, key_, "NameServer"), Win32Error::kInvalidHandle);
    EXPECT_EQ(Resolver(), kBefore);
}

TEST_F(SyncedRegistryTest, NothingIsWrittenWhenNothingChanges) {
    ASSERT_EQ(Write("10.91.0.53"), Win32Error::kSuccess);
    const auto early = std::filesystem::last_write_time(kResolvConf) - std::chrono::hours(1);
    std::filesystem::last_write_time(kResolvConf, early);
    ASSERT_EQ(Write("10.91.0.53"), Win32Error::kSuccess);
    EXPECT_EQ(std::filesystem::last_write_time(kResolvConf), early);
}

TEST_F(SyncedRegistryTest, AResolverThatCannotFollowIsToldAndTheWriteStands) {
    ASSERT_EQ(mount(nullptr, kResolvConf, nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    EXPECT_EQ(Write("10.91.0.53"), Win32Error::kSuccess);
    ASSERT_EQ(mount(nullptr, kResolvConf, nullptr, MS_REMOUNT | MS_BIND, nullptr), 0);
    ASSERT_EQ(seat_.warnings.size(), 1U);
    EXPECT_TRUE(seat_.warnings[0].starts_with("/etc/resolv.conf was left as it is: Read-only file system"))
        << seat_.warnings[0];
    EXPECT_EQ(Resolver(), kBefore);
    EXPECT_EQ(registry_.ReadValue(kHkeyLocalMachine, key_, "NameServer").code, Win32Error::kSuccess);
}

}  // namespace
}  // namespace corvane
