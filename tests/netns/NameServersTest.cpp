#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "netns/NetnsSupport.h"
#include "platform/RegistryKeys.h"
#include "platform/linux/NameServers.h"
#include "platform/linux/SyncedRegistry.h"
#include "platform/linux/owners/LinkControl.h"

namespace corvane {
namespace {

using netns::Ip;

constexpr char kResolvConf[] = "/etc/resolv.conf";
constexpr char kBefore[] = "# kept by hand\nnameserver 192.0.2.53\n";

std::string Block(const std::string& lines) {
    return "# Orvella Corvane: name servers of the network connections, do not edit\n" + lines +
           "# Orvella Corvane: end\n";
}

class NameServersTest : public testing::Test {
 protected:
    NameServersTest() {
        Put(kBefore);
        link_.BringUp();
        EXPECT_TRUE(machine_->Update().Ok());
        id_ = machine_->RowOfName(link_.Name())->id;
    }
    ~NameServersTest() override { std::filesystem::remove_all(folder_); }

    static void Put(const std::string& contents) { std::ofstream(kResolvConf) << contents; }
    static std::string Resolver() {
        std::ifstream file(kResolvConf);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void Write(const std::string& id, const std::string& servers) {
        ASSERT_EQ(registry_.WriteValue(kHkeyLocalMachine, TcpipKey(id), "NameServer",
                                       {kRegSz, {servers.begin(), servers.end()}}),
                  Win32Error::kSuccess);
    }
    /// What keeps the servers from being in force; empty when they are.
    std::string PutInForce(const std::string& id) { return servers_.PutInForce(id).Words(); }
    /// Both, for the test's own link.
    std::string Set(const std::string& servers) {
        Write(id_, servers);
        return PutInForce(id_);
    }

    std::string folder_ = "/run/" + netns::NewLinkName("servers");
    netns::ScopedVeth link_;
    std::shared_ptr<Machine> machine_ = std::make_shared<Machine>(folder_ + "/registry.db");
    SyncedRegistry registry_{machine_};
    NameServers servers_{machine_};
    std::string id_;
};

TEST_F(NameServersTest, TheResolverFollowsTheNameServersOfALinkThatIsUp) {
    EXPECT_EQ(Set("10.91.0.54,10.91.0.53"), "");
    EXPECT_EQ(Resolver(), Block("nameserver 10.91.0.54\nnameserver 10.91.0.53\n") + kBefore);
    EXPECT_EQ(Set("10.91.0.53"), "");
    EXPECT_EQ(Resolver(), Block("nameserver 10.91.0.53\n") + kBefore);
    ASSERT_EQ(registry_.DeleteValue(kHkeyLocalMachine, TcpipKey(id_), "NameServer"), Win32Error::kSuccess);
    EXPECT_EQ(PutInForce(id_), "");
    EXPECT_EQ(Resolver(), kBefore);
}

TEST_F(NameServersTest, AWriteIntoTheRegistryAloneLeavesTheResolverAlone) {
    Write(id_, "10.91.0.53");
    EXPECT_EQ(Resolver(), kBefore);
    ASSERT_EQ(registry_.DeleteValue(kHkeyLocalMachine, TcpipKey(id_), "NameServer"), Win32Error::kSuccess);
    EXPECT_EQ(Resolver(), kBefore);
}

TEST_F(NameServersTest, TheNameServersOfALinkThatIsDownWaitForItsNextStart) {
    const netns::ScopedVeth other;
    other.BringUp();
    EXPECT_TRUE(machine_->Update().Ok());
    Write(machine_->RowOfName(other.Name())->id, "10.92.0.53");
    LinkControl control(machine_);
    ASSERT_EQ(control.Disable(link_.Name()).Words(), "");
    // Whoever looked at it would write the other link's block anew.
    Put(kBefore);
    EXPECT_EQ(Set("10.91.0.53"), "");
    EXPECT_EQ(Resolver(), kBefore);
    ASSERT_EQ(control.Enable(link_.Name()).Words(), "");
    EXPECT_EQ(Resolver(), Block("nameserver 10.91.0.53\nnameserver 10.92.0.53\n") + kBefore);
}

TEST_F(NameServersTest, AnAdapterThatIsNotPresentChangesNothing) {
    EXPECT_EQ(Set("10.91.0.53"), "");
    // Whoever looked at it would write the block anew.
    Put(kBefore);
    EXPECT_EQ(PutInForce("{0A0A0A0A-0000-0000-0000-000000000000}"), "");
    EXPECT_EQ(PutInForce(""), "");
    EXPECT_EQ(Resolver(), kBefore);
}

TEST_F(NameServersTest, NothingIsWrittenWhenNothingChanges) {
    EXPECT_EQ(Set("10.91.0.53"), "");
    const auto early = std::filesystem::last_write_time(kResolvConf) - std::chrono::hours(1);
    std::filesystem::last_write_time(kResolvConf, early);
    EXPECT_EQ(Set("10.91.0.53"), "");
    EXPECT_EQ(std::filesystem::last_write_time(kResolvConf), early);
}

TEST_F(NameServersTest, AResolverThatCannotFollowIsARefusalAndTheWriteStands) {
    ASSERT_EQ(mount(nullptr, kResolvConf, nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    const std::string refusal = Set("10.91.0.53");
    ASSERT_EQ(mount(nullptr, kResolvConf, nullptr, MS_REMOUNT | MS_BIND, nullptr), 0);
    EXPECT_TRUE(refusal.starts_with("/etc/resolv.conf was left as it is: Read-only file system")) << refusal;
    EXPECT_EQ(Resolver(), kBefore);
    EXPECT_EQ(registry_.ReadValue(kHkeyLocalMachine, TcpipKey(id_), "NameServer").code, Win32Error::kSuccess);
}

}  // namespace
}  // namespace corvane
