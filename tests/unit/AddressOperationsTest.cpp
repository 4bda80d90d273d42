#include <map>
#include <memory>

#include "base/Text.h"
#include "tcpip/AddressOperations.h"
#include "tests/unit/StackSupport.h"
#include "tests/unit/WindowCommandSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kLabKey =
    "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + std::string(kSecondId);
constexpr std::uint32_t kLabIndex = 3;

std::string Quad(const Ipv4Bytes& octets) { return DottedQuad(octets.data()); }

/// Tells of every call with all that it was given, and lets a test say what a call comes to.
class TellingIpHelper : public FakeIpHelper {
 public:
    explicit TellingIpHelper(std::vector<std::string>& order) : order_(order) {}

    std::map<std::string, Win32Error> results;  ///< By name of the call; others succeed.
    std::vector<IpForwardRow> askedRoutes;      ///< Rows of routes as they were given.

    Win32Error AddIPAddress(const Ipv4Bytes& address, const Ipv4Bytes& mask, std::uint32_t ifIndex,
                            std::uint32_t& nteContext) override {
        nteContext = 7;
        return Told("AddIPAddress", Quad(address) + " " + Quad(mask) + " on " + std::to_string(ifIndex));
    }
    Win32Error DeleteIPAddress(std::uint32_t nteContext) override {
        return Told("DeleteIPAddress", std::to_string(nteContext));
    }
    Win32Error CreateIpForwardEntry(const IpForwardRow& row) override {
        askedRoutes.push_back(row);
        return Told("CreateIpForwardEntry", Quad(row.nextHop));
    }
    Win32Error DeleteIpForwardEntry(const IpForwardRow& row) override {
        askedRoutes.push_back(row);
        return Told("DeleteIpForwardEntry", Quad(row.nextHop));
    }

 private:
    Win32Error Told(const std::string& call, const std::string& arguments) {
        order_.push_back(call + " " + arguments);
        const auto result = results.find(call);
        return result == results.end() ? Win32Error::kSuccess : result->second;
    }

    std::vector<std::string>& order_;
};

/// Lab has the live interface 3, two static addresses and two gateways. The diary tells of the IP Helper's
/// calls too.
class AddressOperationsTest : public WindowCommandTest {
 protected:
    AddressOperationsTest() {
        CurrentPlatform().ipHelper = ipHelper;
        ipHelper->texts[Win32Error::kInvalidParameter] = "The parameter is incorrect.";
        Nics[0].IfIndex = 2;
        Nics[1].IfIndex = kLabIndex;
        machine.registry->SetMulti(kLabKey, "IPAddress", {"10.0.0.5", "10.0.0.6"});
        machine.registry->SetMulti(kLabKey, "SubnetMask", {"255.0.0.0", "255.255.0.0"});
        machine.registry->SetMulti(kLabKey, "DefaultGateway", {"10.0.0.1", "10.0.0.2"});
        machine.registry->SetMulti(kLabKey, "DefaultGatewayMetric", {"1", "20"});
    }

    static RegistryValue List(const std::vector<std::string>& entries) {
        return MultiSz(Join(entries, kNul) + kNul + kNul);
    }
    [[nodiscard]] std::vector<NamedValue> Writes() const { return WritesTo(*machine.registry, kLabKey); }
    /// Both lists were written, in this order, and nothing else anywhere.
    void ExpectWritten(const std::string& first, const std::vector<std::string>& firstEntries,
                       const std::string& second, const std::vector<std::string>& secondEntries) const {
        EXPECT_THAT(Writes(), ElementsAre(NamedValue(first, List(firstEntries)),
                                          NamedValue(second, List(secondEntries))));
        EXPECT_EQ(machine.registry->writes.size(), 2U);
    }
    void ExpectAddressesWritten(const std::vector<std::string>& addresses,
                                const std::vector<std::string>& masks) const {
        ExpectWritten("IPAddress", addresses, "SubnetMask", masks);
    }
    void ExpectGatewaysWritten(const std::vector<std::string>& gateways,
                               const std::vector<std::string>& metrics) const {
        ExpectWritten("DefaultGateway", gateways, "DefaultGatewayMetric", metrics);
    }
    /// Neither read nor written.
    void ExpectRegistryUntouched() const { EXPECT_THAT(machine.registry->diary, IsEmpty()); }
    /// The latest route that was asked for, every field of it.
    void ExpectRoute(const Ipv4Bytes& gateway, std::uint32_t metric) const {
        ASSERT_FALSE(ipHelper->askedRoutes.empty());
        ExpectDefaultRoute(ipHelper->askedRoutes.back(), gateway, kLabIndex, metric);
    }

    static FakeSeat::Box ReadWriteFailure(const std::string& valueName, const std::string& error) {
        return Critical("Error! Cannot Read/Write Registry",
                        "Error while reading/writing in windows registry.\r\n\r\nRegistry Path: "
                        "HKEY_LOCAL_MACHINE\\" +
                            kLabKey + "\\" + valueName + "\r\n\r\nError: " + error +
                            "\r\n\r\nClick OK to continue");
    }

    std::shared_ptr<TellingIpHelper> ipHelper = std::make_shared<TellingIpHelper>(diary);
    const std::vector<std::string> addressWrites = {"write IPAddress", "write SubnetMask"};
    const std::vector<std::string> gatewayWrites = {"write DefaultGateway", "write DefaultGatewayMetric"};
};

// ---- adding an address

class AddIPAddressTest : public AddressOperationsTest {
 protected:
    [[nodiscard]] bool Add(bool persistent) const { return AddIPAddress(1, address, mask, persistent); }

    const EnteredQuad address{"10.0.0.7", {10, 0, 0, 7}};
    const EnteredQuad mask{"255.255.255.0", {255, 255, 255, 0}};
    const std::string liveCall = "AddIPAddress 10.0.0.7 255.255.255.0 on 3";
};

TEST_F(AddIPAddressTest, PersistentAddressGoesToTheStackAndThenToTheRegistry) {
    EXPECT_TRUE(Add(true));
    EXPECT_EQ(diary, Lines({{liveCall}, addressWrites}));
    ExpectAddressesWritten({"10.0.0.5", "10.0.0.6", "10.0.0.7"},
                           {"255.0.0.0", "255.255.0.0", "255.255.255.0"});
}

TEST_F(AddIPAddressTest, AddressThatIsNotPersistentGoesToTheStackAlone) {
    EXPECT_TRUE(Add(false));
    EXPECT_THAT(diary, ElementsAre(liveCall));
    ExpectRegistryUntouched();
}

TEST_F(AddIPAddressTest, AdapterWithoutALiveInterfaceWritesOnlyTheRegistryAndReportsNoError) {
    Nics[1].IfIndex = 0;
    EXPECT_TRUE(Add(true));
    EXPECT_EQ(diary, addressWrites);
    ExpectAddressesWritten({"10.0.0.5", "10.0.0.6", "10.0.0.7"},
                           {"255.0.0.0", "255.255.0.0", "255.255.255.0"});
}

TEST_F(AddIPAddressTest, AdapterWithoutALiveInterfaceAndAnAddressThatIsNotPersistentDoNothing) {
    Nics[1].IfIndex = 0;
    EXPECT_TRUE(Add(false));
    EXPECT_THAT(diary, IsEmpty());
    ExpectRegistryUntouched();
}

TEST_F(AddIPAddressTest, FailedLiveAddIsReportedByTheNameOfTheCallAndWritesNothing) {
    ipHelper->results["AddIPAddress"] = Win32Error::kInvalidParameter;
    EXPECT_FALSE(Add(true));
    EXPECT_THAT(diary, ElementsAre(liveCall, "box Orvella Corvane"));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(InvalidParameter("AddIPAddress")));
    ExpectRegistryUntouched();
}

TEST_F(AddIPAddressTest, IncompleteQuadsGoToTheStackAsOctetsAndToTheRegistryAsTheyStand) {
    EXPECT_TRUE(AddIPAddress(1, {"10.1..", {10, 1, 0, 0}}, {"255...", {255, 0, 0, 0}}, true));
    EXPECT_EQ(diary, Lines({{"AddIPAddress 10.1.0.0 255.0.0.0 on 3"}, addressWrites}));
    ExpectAddressesWritten({"10.0.0.5", "10.0.0.6", "10.1.."}, {"255.0.0.0", "255.255.0.0", "255..."});
}

TEST_F(AddIPAddressTest, RegistryFailureAfterTheLiveAddIsShownAndCountsAsAdded) {
    FailAt("IPAddress", Win32Error::kAccessDenied);
    EXPECT_TRUE(Add(true));
    EXPECT_THAT(diary, ElementsAre(liveCall, "write IPAddress", "box Error! Cannot Read/Write Registry"));
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(ReadWriteFailure("IPAddress", "(5) Access to this key is denied")));
}

// ---- removing an address

class RemoveIPAddressTest : public AddressOperationsTest {
 protected:
    void StackKeepsTheAddress() { ipHelper->results["DeleteIPAddress"] = Win32Error::kGenFailure; }
    void ExpectRemovedFromTheRegistry() const { ExpectAddressesWritten({"10.0.0.6"}, {"255.255.0.0"}); }

    const std::string liveCall = "DeleteIPAddress 65531";
    const std::string questionLine = "box Restart Network Connection Now ?";
    const std::string doneLine = "box Network Connection Restarted";
    const FakeSeat::Box question =
        Question("Restart Network Connection Now ?",
                 "You must restart the selected network connection in order to remove the IP address "
                 "'10.0.0.5'\r\n\r\nAre you sure to restart network connection 'Lab' now ?\r\n\r\nWARNING : "
                 "There will be loss of network connectivity while the network connection restarts.");
    const FakeSeat::Box done =
        Information("Network Connection Restarted", "Network connection restarted successfully.");
};

TEST_F(RemoveIPAddressTest, AddressLeavesTheStackByItsContextThenTheRegistryAndTheWindowIsRefreshed) {
    RemoveIPAddress(1, "10.0.0.5", 65531);
    EXPECT_EQ(diary, Lines({{liveCall}, addressWrites, {"refresh"}}));
    ExpectRemovedFromTheRegistry();
}

TEST_F(RemoveIPAddressTest, AdapterWithoutALiveInterfaceLosesItInTheRegistryOnly) {
    Nics[1].IfIndex = 0;
    StackKeepsTheAddress();
    RemoveIPAddress(1, "10.0.0.5", 65531);
    EXPECT_EQ(diary, Lines({addressWrites, {"refresh"}}));
    ExpectRemovedFromTheRegistry();
}

TEST_F(RemoveIPAddressTest, StaticallyConfiguredAddressLeavesTheRegistryBeforeTheRestartQuestion) {
    StackKeepsTheAddress();
    RemoveIPAddress(1, "10.0.0.5", 65531);
    EXPECT_EQ(diary, Lines({{liveCall}, addressWrites, {questionLine, "refresh"}}));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
    ExpectRemovedFromTheRegistry();
}

TEST_F(RemoveIPAddressTest, YesToTheRestartQuestionRestartsSaysSoAndRefreshes) {
    StackKeepsTheAddress();
    machine.seat.answers = {BoxAnswer::kYes};
    RemoveIPAddress(1, "10.0.0.5", 65531);
    EXPECT_EQ(diary,
              Lines({{liveCall}, addressWrites, {questionLine}, kRestartOfLab, {doneLine, "refresh"}}));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question, done));
}

TEST_F(RemoveIPAddressTest, FailedRestartShowsNothingMoreAndRefreshes) {
    StackKeepsTheAddress();
    OfferEnableAtAttempt(3);
    machine.seat.answers = {BoxAnswer::kYes};
    RemoveIPAddress(1, "10.0.0.5", 65531);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
    ASSERT_GE(diary.size(), 2U);
    EXPECT_EQ(diary[diary.size() - 2], "row 3 Restart Failed (Attempt 3)");
    EXPECT_EQ(diary.back(), "refresh");
}

TEST_F(RemoveIPAddressTest, NoAndCancelToTheRestartQuestionRefreshWithoutARestart) {
    StackKeepsTheAddress();
    for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) {
        diary.clear();
        machine.seat.answers = {answer};
        RemoveIPAddress(1, "10.0.0.5", 65531);
        EXPECT_EQ(diary, Lines({{liveCall}, addressWrites, {questionLine, "refresh"}}));
    }
}

TEST_F(RemoveIPAddressTest, AdaptersReadAnewWhileItRestartsLeaveItTheSameConnection) {
    StackKeepsTheAddress();
    machine.clock->onSleep = [](std::uint32_t) { Nics.assign(2, NicInfo()); };
    machine.seat.answers = {BoxAnswer::kYes};
    RemoveIPAddress(1, "10.0.0.5", 65531);
    EXPECT_THAT(machine.shell->diary, ElementsAre("verb Disa&ble of Lab", "verb En&able of Lab"));
    EXPECT_EQ(machine.seat.boxes.back(), done);
}

TEST_F(RemoveIPAddressTest, OtherFailureIsReportedByTheNameOfTheCallAfterTheRegistryWasUpdated) {
    ipHelper->results["DeleteIPAddress"] = Win32Error::kInvalidParameter;
    RemoveIPAddress(1, "10.0.0.5", 65531);
    EXPECT_EQ(diary, Lines({{liveCall}, addressWrites, {"box Orvella Corvane"}}));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(InvalidParameter("DeleteIPAddress")));
    ExpectRemovedFromTheRegistry();
}

TEST_F(RemoveIPAddressTest, RegistryFailureIsShownAndTheWindowIsRefreshedForTheLiveRemoval) {
    machine.registry->RemoveValue(kLabKey, "IPAddress");
    RemoveIPAddress(1, "10.0.0.5", 65531);
    EXPECT_THAT(diary, ElementsAre(liveCall, "box Error! Cannot Read/Write Registry", "refresh"));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(ReadWriteFailure("IPAddress", "(2) Bad Key Name")));
}

TEST_F(RemoveIPAddressTest, RegistryFailureDoesNotKeepTheRestartQuestionAway) {
    StackKeepsTheAddress();
    machine.registry->RemoveValue(kLabKey, "IPAddress");
    RemoveIPAddress(1, "10.0.0.5", 65531);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(ReadWriteFailure("IPAddress", "(2) Bad Key Name"), question));
}

// ---- adding a gateway

class AddGatewayTest : public AddressOperationsTest {
 protected:
    [[nodiscard]] static EnteredQuad Gateway(std::uint8_t last) {
        return {"10.0.0." + std::to_string(last), {10, 0, 0, last}};
    }
};

TEST_F(AddGatewayTest, PersistentGatewayIsMadeADefaultRouteAndThenWrittenWithItsMetricInDecimal) {
    EXPECT_TRUE(AddGateway(1, Gateway(3), 4294967295U, true));
    EXPECT_EQ(diary, Lines({{"CreateIpForwardEntry 10.0.0.3"}, gatewayWrites}));
    ExpectRoute({10, 0, 0, 3}, 4294967295U);
    ExpectGatewaysWritten({"10.0.0.1", "10.0.0.2", "10.0.0.3"}, {"1", "20", "4294967295"});
}

TEST_F(AddGatewayTest, PersistentGatewayThatTheRegistryHasGetsTheNewMetric) {
    EXPECT_TRUE(AddGateway(1, Gateway(2), 25, true));
    ExpectRoute({10, 0, 0, 2}, 25);
    ExpectGatewaysWritten({"10.0.0.1", "10.0.0.2"}, {"1", "25"});
}

TEST_F(AddGatewayTest, GatewayThatIsNotPersistentLosesItsRegistryEntryAfterTheLiveAdd) {
    EXPECT_TRUE(AddGateway(1, Gateway(2), 25, false));
    EXPECT_EQ(diary, Lines({{"CreateIpForwardEntry 10.0.0.2"}, gatewayWrites}));
    ExpectRoute({10, 0, 0, 2}, 25);
    ExpectGatewaysWritten({"10.0.0.1"}, {"1"});
}

TEST_F(AddGatewayTest, AdapterWithoutALiveInterfaceWritesOnlyTheRegistryAndReportsNoError) {
    Nics[1].IfIndex = 0;
    EXPECT_TRUE(AddGateway(1, Gateway(3), 25, true));
    EXPECT_EQ(diary, gatewayWrites);
    ExpectGatewaysWritten({"10.0.0.1", "10.0.0.2", "10.0.0.3"}, {"1", "20", "25"});
}

TEST_F(AddGatewayTest, AdapterWithoutALiveInterfaceLosesTheRegistryEntryOfAGatewayThatIsNotPersistent) {
    Nics[1].IfIndex = 0;
    EXPECT_TRUE(AddGateway(1, Gateway(1), 25, false));
    EXPECT_EQ(diary, gatewayWrites);
    ExpectGatewaysWritten({"10.0.0.2"}, {"20"});
}

TEST_F(AddGatewayTest, FailedLiveAddIsReportedByTheNameOfTheCallAndWritesNothing) {
    ipHelper->results["CreateIpForwardEntry"] = Win32Error::kInvalidParameter;
    for (const bool persistent : {true, false}) {
        diary.clear();
        machine.seat.boxes.clear();
        EXPECT_FALSE(AddGateway(1, Gateway(1), 25, persistent));
        EXPECT_THAT(diary, ElementsAre("CreateIpForwardEntry 10.0.0.1", "box Orvella Corvane"));
        EXPECT_THAT(machine.seat.boxes, ElementsAre(InvalidParameter("CreateIpForwardEntry")));
    }
    ExpectRegistryUntouched();
}

TEST_F(AddGatewayTest, IncompleteQuadGoesToTheStackAsOctetsAndToTheRegistryAsItStands) {
    EXPECT_TRUE(AddGateway(1, {"10.1..", {10, 1, 0, 0}}, 25, true));
    ExpectRoute({10, 1, 0, 0}, 25);
    ExpectGatewaysWritten({"10.0.0.1", "10.0.0.2", "10.1.."}, {"1", "20", "25"});
}

TEST_F(AddGatewayTest, RegistryFailureAfterTheLiveAddIsShownAndCountsAsAdded) {
    machine.registry->RemoveValue(kLabKey, "DefaultGateway");
    EXPECT_TRUE(AddGateway(1, Gateway(3), 25, true));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(ReadWriteFailure("DefaultGateway", "(2) Bad Key Name")));
}

// ---- removing a gateway

class RemoveGatewayTest : public AddressOperationsTest {};

TEST_F(RemoveGatewayTest, DefaultRouteWithMetricZeroGoesThenTheRegistryEntryAndTheWindowIsRefreshed) {
    RemoveGateway(1, "10.0.0.2");
    EXPECT_EQ(diary, Lines({{"DeleteIpForwardEntry 10.0.0.2"}, gatewayWrites, {"refresh"}}));
    ExpectRoute({10, 0, 0, 2}, 0);
    ExpectGatewaysWritten({"10.0.0.1"}, {"1"});
}

TEST_F(RemoveGatewayTest, AdapterWithoutALiveInterfaceLosesItInTheRegistryOnly) {
    Nics[1].IfIndex = 0;
    RemoveGateway(1, "10.0.0.2");
    EXPECT_EQ(diary, Lines({gatewayWrites, {"refresh"}}));
    ExpectGatewaysWritten({"10.0.0.1"}, {"1"});
}

TEST_F(RemoveGatewayTest, FailureIsReportedByTheNameOfTheCallAfterTheRegistryWasUpdated) {
    ipHelper->results["DeleteIpForwardEntry"] = Win32Error::kInvalidParameter;
    RemoveGateway(1, "10.0.0.2");
    EXPECT_EQ(diary, Lines({{"DeleteIpForwardEntry 10.0.0.2"}, gatewayWrites, {"box Orvella Corvane"}}));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(InvalidParameter("DeleteIpForwardEntry")));
    ExpectGatewaysWritten({"10.0.0.1"}, {"1"});
}

TEST_F(RemoveGatewayTest, Result31IsReportedAsAnyOtherAndOffersNoRestart) {
    ipHelper->results["DeleteIpForwardEntry"] = Win32Error::kGenFailure;
    RemoveGateway(1, "10.0.0.2");
    EXPECT_EQ(diary, Lines({{"DeleteIpForwardEntry 10.0.0.2"}, gatewayWrites, {"box Orvella Corvane"}}));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(RefusalBox(31, "DeleteIpForwardEntry", "unknown")));
}

TEST_F(RemoveGatewayTest, RegistryFailureIsShownAndTheWindowIsRefreshedForTheLiveRemoval) {
    FailAt("DefaultGateway", Win32Error::kAccessDenied);
    RemoveGateway(1, "10.0.0.2");
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(ReadWriteFailure("DefaultGateway", "(5) Access to this key is denied")));
    EXPECT_EQ(diary.back(), "refresh");
}

TEST_F(RemoveGatewayTest, NextHopIsTheTextsPartsAsBytes) {
    const std::vector<std::pair<std::string, Ipv4Bytes>> cases = {
        {"192.168.001.254", {192, 168, 1, 254}},
        {"10.1..", {10, 1, 0, 0}},
        {"10", {10, 0, 0, 0}},
        {"", {0, 0, 0, 0}},
        {"x.7y. 8 .z9", {0, 7, 8, 0}},
        {"255.256.-1.1e300", {255, 255, 0, 255}},
        {"1.2.3.4.5", {1, 2, 3, 4}},
    };
    for (const auto& [text, octets] : cases) {
        SCOPED_TRACE(text);
        RemoveGateway(1, text);
        ExpectRoute(octets, 0);
    }
}

}  // namespace
}  // namespace corvane
