#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "base/Address.h"
#include "netns/AnsweringTransport.h"
#include "netns/NetnsSupport.h"
#include "platform/RegistryKeys.h"
#include "platform/linux/owners/LinkControl.h"

namespace corvane {
namespace {

using netns::Ip;
using netns::IpJson;
using namespace std::string_literals;

constexpr char kWanted[] = "000C294F8E35";

/// What the kernel refuses or only pretends to do, which cannot be had from the links that can be made here.
struct Refusals {
    std::optional<int> addressRefusal;  ///< Of kWanted.
    int upRefusals = 0;                 ///< How many times "up" is still refused.
    bool ignoresAddresses = false;
    bool ignoresSetUp = false;  ///< Says yes to IPv4 addresses and routes and does nothing.
    bool ignoresDown = false;
    bool losesRoutes = false;  ///< IPv4 route dumps fail.
};

/// The kernel, but for these refusals.
class RefusingTransport : public netns::AnsweringTransport {
 public:
    explicit RefusingTransport(Refusals& refusals) : refusals_(refusals) {}

 private:
    std::optional<Answer> AnswerTo(const nlmsghdr& header, ByteSpan payload) override {
        const unsigned type = header.nlmsg_type;
        const bool ipv4 = payload[0] == AF_INET;
        if (type == RTM_NEWLINK) return AnswerToLink(payload);
        if ((type == RTM_NEWADDR || type == RTM_NEWROUTE) && ipv4 && refusals_.ignoresSetUp) return Answer{};
        if (type == RTM_GETROUTE && ipv4 && refusals_.losesRoutes) return Answer{ENOBUFS, ""};
        return std::nullopt;
    }

    std::optional<Answer> AnswerToLink(ByteSpan payload) {
        ifinfomsg link{};
        EXPECT_TRUE(ReadRecord(payload, link));
        std::optional<MacBytes> address;
        ForEachAttribute(After(payload, sizeof link), [&](std::uint16_t type, ByteSpan value) {
            MacBytes bytes{};
            if (type == IFLA_ADDRESS && ReadRecord(value, bytes)) address = bytes;
        });
        if (address && MacDigits(*address) == kWanted && refusals_.addressRefusal)
            return Answer{*refusals_.addressRefusal, "the driver says no"};
        if (address && refusals_.ignoresAddresses) return Answer{};
        if ((link.ifi_change & IFF_UP) == 0) return std::nullopt;
        const bool up = (link.ifi_flags & IFF_UP) != 0;
        if (up && refusals_.upRefusals > 0) {
            --refusals_.upRefusals;
            return Answer{EADDRINUSE, ""};
        }
        if (!up && refusals_.ignoresDown) return Answer{};
        return std::nullopt;
    }

    Refusals& refusals_;
};

class LinkControlTest : public testing::Test {
 protected:
    LinkControlTest() {
        Ip("address add 10.91.0.5/24 dev " + link_.Name());
        link_.BringUp();
        original_ = Address();
        EXPECT_TRUE(machine_->Update().Ok());
    }
    ~LinkControlTest() override { std::filesystem::remove_all(folder_); }

    std::string Address() { return IpJson("link show dev " + link_.Name())[0]["address"].get<std::string>(); }
    bool Up() {
        const auto flags = IpJson("link show dev " + link_.Name())[0]["flags"];
        return std::find(flags.begin(), flags.end(), "UP") != flags.end();
    }
    std::size_t AddressCount() {
        return IpJson("-4 address show dev " + link_.Name())[0]["addr_info"].size();
    }
    const LinkRow& Row() {
        EXPECT_TRUE(machine_->Update().Ok());
        return *machine_->RowOfName(link_.Name());
    }
    void SetOverride(const std::string& digits) {
        ASSERT_EQ(machine_->Store().WriteValue(kHkeyLocalMachine, DriverKeyPath(Row().driverKey),
                                               "NetworkAddress", {kRegSz, {digits.begin(), digits.end()}}),
                  Win32Error::kSuccess);
    }
    bool Disable() { return Done(control_.Disable(link_.Name())); }
    bool Enable() { return Done(control_.Enable(link_.Name())); }
    bool Done(const Refusal& refusal) {
        failure_ = refusal.Words();
        return !refusal;
    }

    std::string folder_ = "/run/" + netns::NewLinkName("control");
    netns::ScopedVeth link_;
    std::string original_;
    Refusals kernel_;
    std::shared_ptr<Machine> machine_ = std::make_shared<Machine>(
        folder_ + "/registry.db", std::make_unique<Netlink>(std::make_unique<RefusingTransport>(kernel_)));
    LinkControl control_{machine_};
    std::string failure_;
};

TEST_F(LinkControlTest, AnOverrideIsSetWithARestartAndGivenBackWithTheNext) {
    SetOverride(kWanted);
    ASSERT_TRUE(Disable()) << failure_;
    EXPECT_FALSE(Up());
    EXPECT_EQ(AddressCount(), 0U);
    ASSERT_TRUE(Enable()) << failure_;
    EXPECT_EQ(Address(), "00:0c:29:4f:8e:35");
    EXPECT_TRUE(Up());
    EXPECT_EQ(AddressCount(), 1U);
    SetOverride("");
    ASSERT_TRUE(Disable()) << failure_;
    ASSERT_TRUE(Enable()) << failure_;
    EXPECT_EQ(Address(), original_);
}

TEST_F(LinkControlTest, ADriverThatRefusesTheAddressIsQuotedAndTheLinkHasItsOriginal) {
    SetOverride(kWanted);
    kernel_.addressRefusal = EBUSY;
    ASSERT_TRUE(Disable()) << failure_;
    EXPECT_FALSE(Enable());
    EXPECT_NE(failure_.find("00-0C-29-4F-8E-35 was refused"), std::string::npos) << failure_;
    EXPECT_NE(failure_.find("the driver says no"), std::string::npos) << failure_;
    EXPECT_EQ(Address(), original_);
    EXPECT_TRUE(Up());
    EXPECT_EQ(AddressCount(), 1U);
    EXPECT_FALSE(Row().held);
}

TEST_F(LinkControlTest, AnAddressInUseThatShowsOnlyWhenTheLinkComesUpIsReplacedByTheOriginal) {
    SetOverride(kWanted);
    kernel_.upRefusals = 1;
    ASSERT_TRUE(Disable()) << failure_;
    EXPECT_FALSE(Enable());
    EXPECT_NE(failure_.find("was refused"), std::string::npos) << failure_;
    EXPECT_EQ(Address(), original_);
    EXPECT_TRUE(Up());
}

TEST_F(LinkControlTest, ALinkThatDoesNotComeUpIsReportedAndKeepsWhatWasKept) {
    Ip("route add 10.92.0.0/16 via 10.91.0.1");
    ASSERT_TRUE(Disable()) << failure_;
    kernel_.upRefusals = 2;
    EXPECT_FALSE(Enable());
    EXPECT_NE(failure_.find("could not be taken up"), std::string::npos) << failure_;
    EXPECT_TRUE(Row().held);
    kernel_.upRefusals = 0;
    ASSERT_TRUE(Enable()) << failure_;
    EXPECT_EQ(IpJson("route show 10.92.0.0/16").size(), 1U);
    EXPECT_FALSE(Row().held);
}

TEST_F(LinkControlTest, AnAddressThatTheDriverOnlyPretendsToTakeIsNoticed) {
    SetOverride(kWanted);
    kernel_.ignoresAddresses = true;
    ASSERT_TRUE(Disable()) << failure_;
    EXPECT_FALSE(Enable());
    EXPECT_NE(failure_.find("not 00-0C-29-4F-8E-35"), std::string::npos) << failure_;
}

TEST_F(LinkControlTest, AnAddressAndAGatewayThatTheKernelOnlyPretendsToTakeAreNoticed) {
    Ip("route add default via 10.91.0.1 dev " + link_.Name());
    ASSERT_TRUE(Disable()) << failure_;
    kernel_.ignoresSetUp = true;
    EXPECT_FALSE(Enable());
    EXPECT_NE(failure_.find("IP address 10.91.0.5 is not there"), std::string::npos) << failure_;
    EXPECT_NE(failure_.find("gateway 10.91.0.1 is not there"), std::string::npos) << failure_;
}

TEST_F(LinkControlTest, ALinkThatStaysUpIsNotSaidToBeDisabled) {
    kernel_.ignoresDown = true;
    EXPECT_FALSE(Disable());
    EXPECT_NE(failure_.find("still up"), std::string::npos) << failure_;
}

TEST_F(LinkControlTest, APictureThatCouldNotBeReadWholeLeavesTheFormerOneAndIsReadAgain) {
    kernel_.losesRoutes = true;
    Ip("address add 10.91.0.6/24 dev " + link_.Name());
    EXPECT_EQ(machine_->Update().errnoValue, ENOBUFS);
    EXPECT_EQ(std::count_if(machine_->Picture().addresses.begin(), machine_->Picture().addresses.end(),
                            [&](const KernelAddress& address) { return address.index == link_.Index(); }),
              1);
    kernel_.losesRoutes = false;
    EXPECT_TRUE(machine_->Update().Ok());
    EXPECT_EQ(std::count_if(machine_->Picture().addresses.begin(), machine_->Picture().addresses.end(),
                            [&](const KernelAddress& address) { return address.index == link_.Index(); }),
              2);
}

TEST_F(LinkControlTest, AVanishedLinkIsSaidToBeGone) {
    ASSERT_TRUE(Disable()) << failure_;
    Ip("link delete " + link_.Name());
    EXPECT_FALSE(Enable());
    EXPECT_NE(failure_.find("the link is gone"), std::string::npos) << failure_;
}

TEST_F(LinkControlTest, AnotherProgramSeesTheSetUpThatADisabledLinkWillHave) {
    ASSERT_TRUE(Disable()) << failure_;
    Machine other(folder_ + "/registry.db");
    EXPECT_TRUE(other.Update().Ok());
    const RegistryRead read = other.Store().ReadValue(kHkeyLocalMachine, TcpipKey(Row().id), "IPAddress");
    ASSERT_EQ(read.code, Win32Error::kSuccess);
    EXPECT_EQ(std::string(read.value.data.begin(), read.value.data.end()), "10.91.0.5\0\0"s);
}

TEST_F(LinkControlTest, EnablingReportsEachEntryThatNoHostCanHave) {
    const auto set = [&](const std::string& name, const std::string& bytes) {
        ASSERT_EQ(machine_->Store().WriteValue(kHkeyLocalMachine, TcpipKey(Row().id), name,
                                               {kRegMultiSz, {bytes.begin(), bytes.end()}}),
                  Win32Error::kSuccess);
    };
    set("IPAddress", "10.91.0.7\000224.0.0.9\0fool\00010.91.0.8\0\0"s);
    set("SubnetMask", "255.255.255.0\000255.0.0.0\000255.0.0.0\000255.0.255.0\0\0"s);
    set("DefaultGateway", "10.99.0.1\0\0"s);
    ASSERT_TRUE(Disable()) << failure_;
    EXPECT_FALSE(Enable());
    for (const char* text : {"'224.0.0.9' was not set", "'fool' was not set",
                             "'255.0.255.0' is no subnet mask", "gateway 10.99.0.1 was refused"}) {
        EXPECT_NE(failure_.find(text), std::string::npos) << text << " in " << failure_;
    }
    EXPECT_EQ(AddressCount(), 1U);
}

TEST_F(LinkControlTest, AMultiStringWithoutTerminatorsIsUnderstood) {
    const std::string address = "10.91.0.9";
    const std::string key = TcpipKey(Row().id);
    ASSERT_EQ(machine_->Store().Apply(kHkeyLocalMachine, {{RegistryStore::Change::Kind::kSetValue,
                                                           key,
                                                           "IPAddress",
                                                           {kRegMultiSz, {address.begin(), address.end()}}}}),
              Win32Error::kSuccess);
    ASSERT_TRUE(Disable()) << failure_;
    ASSERT_TRUE(Enable()) << failure_;
    EXPECT_EQ(IpJson("-4 address show dev " + link_.Name())[0]["addr_info"][0]["local"], "10.91.0.9");
}

/// The next ARP packet that arrives at a link, at most five seconds later; empty when none does.
std::vector<std::uint8_t> NextArp(int descriptor) {
    pollfd wait{descriptor, POLLIN, 0};
    std::vector<std::uint8_t> packet(64);
    if (poll(&wait, 1, 5000) <= 0) return {};
    const ssize_t size = recv(descriptor, packet.data(), packet.size(), 0);
    packet.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return packet;
}

TEST_F(LinkControlTest, NeighboursAreToldTheNewAddressByAnArpAnnouncement) {
    SetOverride(kWanted);
    ASSERT_TRUE(Disable()) << failure_;
    const int descriptor = socket(AF_PACKET, SOCK_DGRAM | SOCK_CLOEXEC, htons(ETH_P_ARP));
    ASSERT_GE(descriptor, 0);
    sockaddr_ll at{};
    at.sll_family = AF_PACKET;
    at.sll_protocol = htons(ETH_P_ARP);
    at.sll_ifindex = static_cast<int>(link_.PeerIndex());
    ASSERT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&at), sizeof at), 0);
    ASSERT_TRUE(Enable()) << failure_;
    const std::vector<std::uint8_t> packet = NextArp(descriptor);
    close(descriptor);
    ASSERT_GE(packet.size(), 28U);
    const std::vector<std::uint8_t> sender(packet.begin() + 8, packet.begin() + 18);
    const std::vector<std::uint8_t> target(packet.begin() + 24, packet.begin() + 28);
    EXPECT_EQ(sender, (std::vector<std::uint8_t>{0x00, 0x0c, 0x29, 0x4f, 0x8e, 0x35, 10, 91, 0, 5}));
    EXPECT_EQ(target, (std::vector<std::uint8_t>{10, 91, 0, 5}));
}

TEST_F(LinkControlTest, ALinkWithoutCarrierIsEnabledAllTheSame) {
    ASSERT_TRUE(Disable()) << failure_;
    Ip("link set " + link_.Peer() + " down");
    ASSERT_TRUE(Enable()) << failure_;
    EXPECT_TRUE(Up());
    EXPECT_EQ(AddressCount(), 1U);
}

}  // namespace
}  // namespace corvane
