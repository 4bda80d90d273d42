#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "base/Address.h"
#include "inventory/GetNicInfo.h"
#include "inventory/NicInfo.h"
#include "netns/NetnsSupport.h"
#include "platform/Platform.h"
#include "platform/RegistryKeys.h"
#include "platform/linux/links/TcpipKey.h"
#include "platform/linux/owners/LinkControl.h"
#include "tcpip/RegistryWriters.h"

namespace corvane {
namespace {

using netns::Ip;
using netns::IpJson;
using namespace std::string_literals;
using Texts = std::vector<std::string>;
using Gateways = std::vector<std::pair<std::string, std::uint32_t>>;

constexpr Ipv4Bytes kMask{255, 255, 255, 0};

/// What the commands of the window do: IP Helper, then the registry routines; a restart by another program.
class RunTimeAddress : public testing::Test {
 protected:
    RunTimeAddress() {
        std::filesystem::create_directory(folder_);
        setenv("NICX_REGISTRY", (folder_ + "/registry.db").c_str(), 1);
        InstallPlatform(MakeSystemPlatform());
        link_.BringUp();
    }
    ~RunTimeAddress() override {
        InstallPlatform(Platform());
        while (umount2(folder_.c_str(), MNT_DETACH) == 0) {
        }
        std::filesystem::remove_all(folder_);
        unsetenv("NICX_REGISTRY");
    }

    void Has(const std::string& address) const {
        Ip("address add " + address + " dev " + link_.Name());
        Notice();
    }
    /// Brings the registry in step, as any look at it does.
    static void Notice() { RefreshNicInfo(); }

    std::int16_t Nic() const {
        Notice();
        for (std::size_t i = 0; i < Nics.size(); ++i) {
            if (Nics[i].Name == link_.Name()) return static_cast<std::int16_t>(i);
        }
        ADD_FAILURE() << link_.Name() << " is not in the inventory";
        return 0;
    }
    const NicInfo& Info() const { return Nics[static_cast<std::size_t>(Nic())]; }

    Win32Error Add(const Ipv4Bytes& address, std::uint32_t* nteContext = nullptr) const {
        std::uint32_t context = 0;
        const Win32Error code =
            CurrentPlatform().ipHelper->AddIPAddress(address, kMask, link_.Index(), context);
        if (nteContext != nullptr) *nteContext = context;
        Notice();
        return code;
    }
    Win32Error Delete(const Ipv4Bytes& address) const {
        for (const IpAddrRow& row : CurrentPlatform().ipHelper->GetIpAddrTable().rows) {
            if (row.index == link_.Index() && row.address == address)
                return CurrentPlatform().ipHelper->DeleteIPAddress(row.nteContext);
        }
        ADD_FAILURE() << DottedQuad(address.data()) << " is not in the table";
        return Win32Error::kNotFound;
    }
    IpForwardRow Route(const Ipv4Bytes& gateway, std::uint32_t metric) const {
        IpForwardRow row;
        row.nextHop = gateway;
        row.ifIndex = link_.Index();
        row.metric1 = metric;
        return row;
    }
    void AddGateway(const Ipv4Bytes& gateway, std::uint32_t metric) const {
        ASSERT_EQ(CurrentPlatform().ipHelper->CreateIpForwardEntry(Route(gateway, metric)),
                  Win32Error::kSuccess);
        Notice();
    }

    void Restart() {
        LinkControl control(std::make_shared<Machine>());
        ASSERT_EQ(control.Disable(link_.Name()).Words(), "");
        ASSERT_TRUE(LiveAddresses().empty());
        ASSERT_EQ(control.Enable(link_.Name()).Words(), "");
    }

    Texts LiveAddresses() const {
        Texts found;
        for (const auto& entry : IpJson("-4 address show dev " + link_.Name())) {
            for (const auto& info : entry.value("addr_info", nlohmann::json::array()))
                found.push_back(info["local"].get<std::string>());
        }
        return found;
    }
    Gateways LiveGateways() const {
        Gateways found;
        for (const auto& route : IpJson("-4 route show default dev " + link_.Name())) {
            found.emplace_back(route["gateway"].get<std::string>(), route.value("metric", 0U));
        }
        return found;
    }
    std::string Stored(const std::string& name) const {
        const RegistryRead read =
            CurrentPlatform().registry->ReadValue(kHkeyLocalMachine, TcpipKey(Info().Id), name);
        return Ok(read.code) ? std::string(read.value.data.begin(), read.value.data.end()) : "missing";
    }

    std::string folder_ = "/run/" + netns::NewLinkName("runtime");
    netns::ScopedVeth link_;
};

TEST_F(RunTimeAddress, IsShownUntilTheRestartAndGoneAfterIt) {
    Has("10.91.0.5/24");
    ASSERT_EQ(Add({10, 91, 0, 6}), Win32Error::kSuccess);
    EXPECT_EQ(Info().IpAddresses, (Texts{"10.91.0.5", "10.91.0.6"}));
    EXPECT_EQ(Stored("IPAddress"), "10.91.0.5\0\0"s);
    EXPECT_EQ(Stored("SubnetMask"), "255.255.255.0\0\0"s);
    Restart();
    EXPECT_EQ(LiveAddresses(), Texts{"10.91.0.5"});
    EXPECT_EQ(Stored(kRunTimeAddresses), "missing");
}

TEST_F(RunTimeAddress, ComesBackWhenItWasWrittenToTheRegistryToo) {
    Has("10.91.0.5/24");
    ASSERT_EQ(Add({10, 91, 0, 6}), Win32Error::kSuccess);
    ASSERT_EQ(Add({10, 91, 0, 7}), Win32Error::kSuccess);
    AddRegistryIPAddress(Nic(), "10.91.0.7", "255.255.255.0");
    Restart();
    EXPECT_EQ(LiveAddresses(), (Texts{"10.91.0.5", "10.91.0.7"}));
}

TEST_F(RunTimeAddress, LeavesALinkThatHadNoneWithoutAny) {
    Notice();
    ASSERT_EQ(Add({10, 91, 0, 6}), Win32Error::kSuccess);
    EXPECT_EQ(Stored("IPAddress"), "0.0.0.0\0\0"s);
    Restart();
    EXPECT_EQ(LiveAddresses(), Texts{});
}

TEST_F(RunTimeAddress, LeavesWhatTheUserWroteAlone) {
    Notice();
    AddRegistryIPAddress(Nic(), "10.91.0.9", "255.255.255.0");
    ASSERT_EQ(Add({10, 91, 0, 6}), Win32Error::kSuccess);
    EXPECT_EQ(Stored("IPAddress"), "10.91.0.9\0\0"s);
    Restart();
    EXPECT_EQ(LiveAddresses(), Texts{"10.91.0.9"});
}

TEST_F(RunTimeAddress, IsNotTakenForTheSetUpThatALeaseLeavesBehind) {
    Ip("address add 10.91.0.5/24 dev " + link_.Name() + " valid_lft 100 preferred_lft 100");
    Notice();
    ASSERT_EQ(Add({10, 91, 0, 6}), Win32Error::kSuccess);
    EXPECT_EQ(Stored("EnableDHCP"), "\1\0\0\0"s);
    ASSERT_EQ(Delete({10, 91, 0, 5}), Win32Error::kSuccess);
    EXPECT_EQ(LiveAddresses(), Texts{"10.91.0.6"});
    EXPECT_EQ(Stored("EnableDHCP"), "\0\0\0\0"s);
    EXPECT_EQ(Stored("IPAddress"), "0.0.0.0\0\0"s);
}

TEST_F(RunTimeAddress, ThatIsTheLinksOwnAlreadyStaysItsOwn) {
    Has("10.91.0.5/24");
    EXPECT_EQ(Add({10, 91, 0, 5}), Win32Error::kObjectAlreadyExists);
    EXPECT_EQ(Stored(kRunTimeAddresses), "missing");
    Restart();
    EXPECT_EQ(LiveAddresses(), Texts{"10.91.0.5"});
}

TEST_F(RunTimeAddress, ThatWasDeletedAndComesFromElsewhereIsTheLinksOwn) {
    Has("10.91.0.5/24");
    ASSERT_EQ(Add({10, 91, 0, 6}), Win32Error::kSuccess);
    ASSERT_EQ(Add({10, 91, 0, 7}), Win32Error::kSuccess);
    ASSERT_EQ(Delete({10, 91, 0, 6}), Win32Error::kSuccess);
    Has("10.91.0.6/24");
    EXPECT_EQ(Stored("IPAddress"), "10.91.0.5\00010.91.0.6\0\0"s);
    Restart();
    EXPECT_EQ(LiveAddresses(), (Texts{"10.91.0.5", "10.91.0.6"}));
    Has("10.91.0.7/24");
    EXPECT_EQ(Stored("IPAddress"), "10.91.0.5\00010.91.0.6\00010.91.0.7\0\0"s);
}

TEST_F(RunTimeAddress, IsAddedWithAStoreThatMayNotBeWritten) {
    Has("10.91.0.5/24");
    ASSERT_EQ(mount(folder_.c_str(), folder_.c_str(), nullptr, MS_BIND, nullptr), 0);
    ASSERT_EQ(mount(nullptr, folder_.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    InstallPlatform(MakeSystemPlatform());
    ASSERT_EQ(Add({10, 91, 0, 6}), Win32Error::kSuccess);
    EXPECT_EQ(Info().IpAddresses, (Texts{"10.91.0.5", "10.91.0.6"}));
    const std::string id = Info().Id;
    RegistryStore stored(folder_ + "/registry.db");
    EXPECT_TRUE(stored.ReadValue(kHkeyLocalMachine, TcpipKey(id), "IPAddress").keyOpened);
    EXPECT_TRUE(ReadRunTimeAddresses(stored, id).empty());
}

TEST_F(RunTimeAddress, IsNotThereWhenItCouldNotBeNoted) {
    InstallPlatform(Platform());
    ASSERT_EQ(mount("tmpfs", folder_.c_str(), "tmpfs", 0, "size=256k"), 0);
    InstallPlatform(MakeSystemPlatform());
    Has("10.91.0.5/24");
    std::ofstream(folder_ + "/full") << std::string(1 << 20, 'x');
    ASSERT_EQ(std::filesystem::space(folder_).available, 0U);
    std::uint32_t context = 0;
    EXPECT_EQ(Add({10, 91, 0, 6}, &context), Win32Error::kCantWrite);
    EXPECT_EQ(context, 0U);
    EXPECT_EQ(LiveAddresses(), Texts{"10.91.0.5"});
}

TEST_F(RunTimeAddress, OneOfSeveralThatIsRemovedStaysAwayAndTheOthersComeBack) {
    for (const char* address : {"10.91.0.5/24", "10.91.0.6/24", "10.91.0.7/24"}) Has(address);
    Ip("route add default via 10.91.0.1 metric 20");
    ASSERT_EQ(Delete({10, 91, 0, 5}), Win32Error::kSuccess);
    RemoveRegistryIPAddress(Nic(), "10.91.0.5");
    EXPECT_EQ(LiveAddresses(), (Texts{"10.91.0.6", "10.91.0.7"}));
    EXPECT_EQ(LiveGateways(), (Gateways{{"10.91.0.1", 20}}));
    Restart();
    EXPECT_EQ(LiveAddresses(), (Texts{"10.91.0.6", "10.91.0.7"}));
    EXPECT_EQ(LiveGateways(), (Gateways{{"10.91.0.1", 20}}));
}

TEST_F(RunTimeAddress, OfGatewaysOnlyThoseThatTheRegistryHoldsComeBack) {
    Has("10.91.0.5/24");
    Ip("route add default via 10.91.0.1 metric 20");
    AddGateway({10, 91, 0, 2}, 30);
    RemoveRegistryGateway(Nic(), "10.91.0.2");
    EXPECT_EQ(LiveGateways(), (Gateways{{"10.91.0.1", 20}, {"10.91.0.2", 30}}));
    AddGateway({10, 91, 0, 3}, 40);
    AddRegistryGateway(Nic(), "10.91.0.3", "40");
    Restart();
    EXPECT_EQ(LiveGateways(), (Gateways{{"10.91.0.1", 20}, {"10.91.0.3", 40}}));
    ASSERT_EQ(CurrentPlatform().ipHelper->DeleteIpForwardEntry(Route({10, 91, 0, 1}, 0)),
              Win32Error::kSuccess);
    RemoveRegistryGateway(Nic(), "10.91.0.1");
    EXPECT_EQ(LiveGateways(), (Gateways{{"10.91.0.3", 40}}));
    Restart();
    EXPECT_EQ(LiveGateways(), (Gateways{{"10.91.0.3", 40}}));
}

}  // namespace
}  // namespace corvane
