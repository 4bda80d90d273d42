#include <utility>

#include "tests/unit/AddressEditingSupport.h"

/// Adding and removing gateways with the panel `fAddGateway` and the list `ListGateway`.
namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> kGatewayWrites = {"write DefaultGateway", "write DefaultGatewayMetric"};
const std::vector<std::string> kGatewayPanelReady = {"focus Gateway", "default Add Gateway"};

/// Lab has two static gateways.
class GatewayEditingTest : public AddressEditingTest {
 protected:
    GatewayEditingTest() {
        machine.registry->SetMulti(kLabKey, "DefaultGateway", {"10.0.0.1", "10.0.0.2"});
        machine.registry->SetMulti(kLabKey, "DefaultGatewayMetric", {"1", "20"});
        list.rows = {{"10.0.0.1", "1", 0}, {"10.0.0.2", "20", 1}};
        list.header = "Gateway (2)";
    }

    void Add(const EditingTarget& target, const std::string& gateway, const std::string& metric) {
        panel.gateway.entry.SetText(gateway);
        panel.metric = metric;
        editing.Add(target);
    }
    void Remove(const EditingTarget& target, std::size_t row, BoxAnswer answer = BoxAnswer::kYes) {
        list.selected = row;
        machine.seat.answers = {answer};
        editing.Remove(target);
    }
    void Tick(const EditingTarget& target, bool ticked) {
        panel.autoMetric = ticked;
        editing.AutoMetricClicked(target);
    }
    void ExpectStored(const std::vector<std::string>& gateways,
                      const std::vector<std::string>& metrics) const {
        EXPECT_EQ(Stored("DefaultGateway"), List(gateways));
        EXPECT_EQ(Stored("DefaultGatewayMetric"), List(metrics));
    }
    void ExpectStoredAsBefore() const {
        ExpectStored({"10.0.0.1", "10.0.0.2"}, {"1", "20"});
        EXPECT_THAT(machine.registry->writes, IsEmpty());
    }
    /// The list is for the refresh to fill.
    void ExpectListAsBefore() const {
        EXPECT_THAT(list.rows, ElementsAre(DetailsRow{"10.0.0.1", "1", 0}, DetailsRow{"10.0.0.2", "20", 1}));
        EXPECT_EQ(list.header, "Gateway (2)");
    }
    /// The only route, every field of it.
    void ExpectRoute(const Ipv4Bytes& gateway, std::uint32_t metric) const {
        ASSERT_EQ(ipHelper->routes.size(), 1U);
        ExpectDefaultRoute(ipHelper->routes[0], gateway, kLabIndex, metric);
    }

    GatewayPanel panel{diary};
    GatewayEditing editing{panel, list};
    const FakeSeat::Box question =
        Question("Remove Selected Gateway ?", "Are you sure to remove '10.0.0.2' gateway address ?");
};

// ---- opening

TEST_F(GatewayEditingTest, PanelIsShownGivenItsDefaultButtonEmptiedAndGivenTheFocus) {
    panel.gateway.entry.SetText("10.0.0.3");
    Tick(kLab, true);
    editing.Open();
    EXPECT_THAT(diary, ElementsAre("show", "default Add Gateway", "focus Gateway"));
    EXPECT_EQ(panel.gateway.entry.Text(), "");
    EXPECT_EQ(panel.metric, "");
    EXPECT_FALSE(panel.autoMetric);
    EXPECT_TRUE(panel.metricEnabled);
}

TEST_F(GatewayEditingTest, OpeningLeavesTheChoiceOfPersistence) {
    panel.persistent = true;
    editing.Open();
    EXPECT_TRUE(panel.persistent);
    ExpectMachineUntouched();
}

// ---- the automatic metric

TEST_F(GatewayEditingTest, AutomaticMetricIsTheInterfaceMetricAndCannotBeTyped) {
    panel.metric = "7";
    Tick(kLab, true);
    EXPECT_EQ(panel.metric, "25");
    EXPECT_FALSE(panel.metricEnabled);
    EXPECT_THAT(diary, IsEmpty());
}

TEST_F(GatewayEditingTest, AutomaticMetricTakenBackEmptiesTheBoxAndGivesItTheFocus) {
    Tick(kLab, true);
    Tick(kLab, false);
    EXPECT_EQ(panel.metric, "");
    EXPECT_TRUE(panel.metricEnabled);
    EXPECT_THAT(diary, ElementsAre("focus txtMetric"));
}

TEST_F(GatewayEditingTest, InterfaceWithoutAMetricOfItsOwnHasTheMetricZero) {
    Nics[1].InterfaceMetric = 0;
    Tick(kLab, true);
    EXPECT_EQ(panel.metric, "0");
}

TEST_F(GatewayEditingTest, LargestInterfaceMetricIsShownInDecimal) {
    Nics[1].InterfaceMetric = 4294967295U;
    Tick(kPreset, true);
    EXPECT_EQ(panel.metric, "4294967295");
}

TEST_F(GatewayEditingTest, WithoutAConnectionTheAutomaticMetricIsZero) {
    Tick(kNoConnection, true);
    EXPECT_EQ(panel.metric, "0");
}

// ---- adding, live

TEST_F(GatewayEditingTest, GatewayIsAddedAsADefaultRouteWithTheTypedMetric) {
    Add(kLab, "10.0.0.3", "30");
    ExpectRoute({10, 0, 0, 3}, 30);
}

TEST_F(GatewayEditingTest, MetricIsTheNumericValueRoundedToTheNearestWholeNumber) {
    const std::vector<std::pair<std::string, std::uint32_t>> cases = {
        {"", 0},      {"abc", 0}, {"007", 7},           {"20.4", 20},
        {"20.6", 21}, {"2.5", 2}, {"3.5", 4},           {"12 x", 12},
        {"1e2", 100}, {"-3", 0},  {"5e9", 4294967295U}, {"4294967295", 4294967295U},
    };
    for (const auto& [text, metric] : cases) {
        SCOPED_TRACE(text);
        ipHelper->routes.clear();
        Add(kLab, "10.0.0.3", text);
        ExpectRoute({10, 0, 0, 3}, metric);
    }
}

TEST_F(GatewayEditingTest, AutomaticMetricIsAConcreteNumberOnTheStackAndInTheRegistry) {
    panel.persistent = true;
    Tick(kLab, true);
    panel.gateway.entry.SetText("10.0.0.3");
    editing.Add(kLab);
    ExpectRoute({10, 0, 0, 3}, 25);
    ExpectStored({"10.0.0.1", "10.0.0.2", "10.0.0.3"}, {"1", "20", "25"});
}

TEST_F(GatewayEditingTest, PersistentGatewayIsWrittenWithItsMetricInDecimal) {
    panel.persistent = true;
    Add(kLab, "10.0.0.3", "030.2");
    ExpectStored({"10.0.0.1", "10.0.0.2", "10.0.0.3"}, {"1", "20", "30"});
    EXPECT_EQ(diary, Lines({kGatewayWrites, {"focus txtMetric", "refresh"}, kGatewayPanelReady}));
}

TEST_F(GatewayEditingTest, GatewayThatIsNotPersistentLosesItsRegistryEntry) {
    Add(kLab, "10.0.0.2", "30");
    ExpectRoute({10, 0, 0, 2}, 30);
    ExpectStored({"10.0.0.1"}, {"1"});
    EXPECT_EQ(diary, Lines({kGatewayWrites, {"focus txtMetric", "refresh"}, kGatewayPanelReady}));
}

TEST_F(GatewayEditingTest, AdapterWithoutALiveInterfaceWritesOnlyTheRegistryAndReportsNoError) {
    TakeLabDown();
    panel.persistent = true;
    Add(kLab, "10.0.0.3", "30");
    EXPECT_THAT(ipHelper->diary, IsEmpty());
    ExpectStored({"10.0.0.1", "10.0.0.2", "10.0.0.3"}, {"1", "20", "30"});
    EXPECT_THAT(machine.seat.boxes, IsEmpty());
    EXPECT_EQ(panel.gateway.entry.Text(), "");
}

TEST_F(GatewayEditingTest, AdapterWithoutALiveInterfaceLosesTheEntryOfAGatewayThatIsNotPersistent) {
    TakeLabDown();
    Add(kLab, "10.0.0.1", "30");
    EXPECT_THAT(ipHelper->diary, IsEmpty());
    ExpectStored({"10.0.0.2"}, {"20"});
}

TEST_F(GatewayEditingTest, BoxesAreReadyForTheNextGatewayWhenTheWindowIsRefreshed) {
    std::string gateway = "not refreshed";
    std::string metric = gateway;
    machine.seat.onRefresh = [&] {
        gateway = panel.gateway.entry.Text();
        metric = panel.metric;
    };
    Add(kLab, "10.0.0.3", "30");
    EXPECT_EQ(gateway, "");
    EXPECT_EQ(metric, "");
    EXPECT_TRUE(panel.metricEnabled);
}

TEST_F(GatewayEditingTest, AutomaticMetricStaysForTheNextGateway) {
    Tick(kLab, true);
    panel.gateway.entry.SetText("10.0.0.3");
    panel.metric = "somehow another";
    editing.Add(kLab);
    EXPECT_TRUE(panel.autoMetric);
    EXPECT_EQ(panel.metric, "25");
    EXPECT_FALSE(panel.metricEnabled);
    EXPECT_EQ(diary, Lines({kGatewayWrites, {"refresh"}, kGatewayPanelReady}));
}

TEST_F(GatewayEditingTest, EmptyGatewayIsAddedAsZeros) {
    panel.persistent = true;
    Add(kLab, "", "30");
    ExpectRoute({0, 0, 0, 0}, 30);
    ExpectStored({"10.0.0.1", "10.0.0.2", "0.0.0.0"}, {"1", "20", "30"});
}

TEST_F(GatewayEditingTest, RefusedAddIsReportedWritesNothingAndLeavesTheBoxes) {
    ipHelper->refusal = Win32Error::kObjectAlreadyExists;
    for (const bool persistent : {true, false}) {
        machine.seat.boxes.clear();
        diary.clear();
        panel.persistent = persistent;
        Add(kLab, "10.0.0.2", "30");
        EXPECT_THAT(machine.seat.boxes, ElementsAre(RefusalBox(5010, "CreateIpForwardEntry", "unknown")));
        EXPECT_EQ(diary, Lines({{"box Orvella Corvane"}, kGatewayPanelReady}));
        EXPECT_EQ(panel.gateway.entry.Text(), "10.0.0.2");
        EXPECT_EQ(panel.metric, "30");
    }
    ExpectStoredAsBefore();
    ExpectListAsBefore();
}

TEST_F(GatewayEditingTest, RefusedGatewayThatNoHostMayHaveIsExplainedAfterTheBox) {
    ipHelper->refusal = Win32Error::kInvalidParameter;
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"0.0.0.0", "addresses that begin with 0 mean 'this network'"},
        {"127.0.0.1", "addresses that begin with 127 are the host's loopback"},
        {"224.0.0.1", "addresses from 224.0.0.0 to 239.255.255.255 are multicast groups"},
        {"255.255.255.255", "addresses from 240.0.0.0 up are reserved or broadcast"},
    };
    for (const auto& [gateway, reason] : cases) {
        diary.clear();
        Add(kLab, gateway, "30");
        const std::string sentence = "Gateway '" + gateway + "' cannot be used: " + reason;
        EXPECT_EQ(diary, Lines({{"box Orvella Corvane", "warn " + sentence}, kGatewayPanelReady}));
    }
}

TEST_F(GatewayEditingTest, RegistryFailureAfterTheLiveAddIsShownAndTheAddIsDone) {
    machine.registry->RemoveValue(kLabKey, "DefaultGateway");
    panel.persistent = true;
    Add(kLab, "10.0.0.3", "30");
    EXPECT_EQ(diary, Lines({{"box Error! Cannot Read/Write Registry", "focus txtMetric", "refresh"},
                            kGatewayPanelReady}));
    EXPECT_EQ(panel.gateway.entry.Text(), "");
}

TEST_F(GatewayEditingTest, LiveAddLeavesTheListToTheRefresh) {
    Add(kLab, "10.0.0.3", "30");
    ExpectListAsBefore();
}

TEST_F(GatewayEditingTest, WithoutAConnectionNothingIsAdded) {
    Add(kNoConnection, "10.0.0.3", "30");
    ExpectMachineUntouched();
    ExpectListAsBefore();
    EXPECT_EQ(diary, kGatewayPanelReady);
}

// ---- adding, to a preset

TEST_F(GatewayEditingTest, GatewayOfAPresetIsAddedAsTheLastRowCountedAndSelected) {
    panel.persistent = true;
    Add(kPreset, "10.0.0.3", "030");
    ASSERT_EQ(list.rows.size(), 3U);
    EXPECT_EQ(list.rows[2].text, "10.0.0.3");
    EXPECT_EQ(list.rows[2].subItem, "30");
    EXPECT_EQ(list.header, "Gateway (3)");
    EXPECT_EQ(list.selected, 2U);
    EXPECT_EQ(panel.gateway.entry.Text(), "");
    EXPECT_EQ(panel.metric, "");
    ExpectMachineUntouched();
    EXPECT_EQ(diary, Lines({{"focus txtMetric"}, kGatewayPanelReady}));
}

TEST_F(GatewayEditingTest, MetricOfAPresetThatIsNoNumberIsZero) {
    for (const std::string metric : {"", "abc"}) {
        Add(kPreset, "10.0.0.2", metric);
        EXPECT_EQ(list.rows.at(1).subItem, "0");
        list.rows[1].subItem = "20";
    }
}

TEST_F(GatewayEditingTest, AutomaticMetricOfAPresetIsRecordedInAWord) {
    Tick(kPreset, true);
    panel.gateway.entry.SetText("10.0.0.3");
    editing.Add(kPreset);
    EXPECT_EQ(list.rows.at(2).subItem, "Automatic");
    EXPECT_TRUE(panel.autoMetric);
    EXPECT_EQ(panel.metric, "25");
    EXPECT_FALSE(panel.metricEnabled);
    EXPECT_EQ(diary, kGatewayPanelReady);
}

TEST_F(GatewayEditingTest, GatewayThatThePresetHasGetsTheNewMetricOnly) {
    Add(kPreset, "10.0.0.1", "99");
    EXPECT_THAT(list.rows, ElementsAre(DetailsRow{"10.0.0.1", "99", 0}, DetailsRow{"10.0.0.2", "20", 1}));
    EXPECT_EQ(list.header, "Gateway (2)");
    EXPECT_EQ(list.selected, 0U);
}

TEST_F(GatewayEditingTest, EmptyGatewayIsARowOfZeros) {
    list.rows.clear();
    Add(kPreset, "", "5");
    EXPECT_THAT(list.rows, ElementsAre(DetailsRow{"0.0.0.0", "5", 0}));
    EXPECT_EQ(list.header, "Gateway (1)");
}

// ---- removing

TEST_F(GatewayEditingTest, NothingIsAskedOfAnEmptyListOrWithoutASelection) {
    for (const EditingTarget& target : {kLab, kPreset}) {
        editing.Remove(target);
        ExpectListAsBefore();
    }
    list.rows.clear();
    for (const EditingTarget& target : {kLab, kPreset}) editing.Remove(target);
    EXPECT_THAT(diary, IsEmpty());
    ExpectMachineUntouched();
}

TEST_F(GatewayEditingTest, RemovalIsAskedAndNoAndCancelLeaveEverything) {
    for (const EditingTarget& target : {kLab, kPreset}) {
        for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) {
            machine.seat.boxes.clear();
            Remove(target, 1, answer);
            EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
        }
    }
    ExpectListAsBefore();
    EXPECT_EQ(list.selected, 1U);
    ExpectMachineUntouched();
}

TEST_F(GatewayEditingTest, RemovalFromAPresetIsAskedAndTakesTheRowAway) {
    Remove(kPreset, 1);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
    EXPECT_THAT(list.rows, ElementsAre(DetailsRow{"10.0.0.1", "1", 0}));
    EXPECT_EQ(list.header, "Gateway (1)");
    EXPECT_EQ(list.selected, 0U);
    ExpectMachineUntouched();
    EXPECT_THAT(diary, ElementsAre("box Remove Selected Gateway ?"));
}

TEST_F(GatewayEditingTest, PresetsLastGatewayLeavesAnEmptyListWithoutASelection) {
    list.rows.resize(1);
    Remove(kPreset, 0);
    EXPECT_THAT(list.rows, IsEmpty());
    EXPECT_EQ(list.header, "Gateway (0)");
    EXPECT_EQ(list.selected, std::nullopt);
}

TEST_F(GatewayEditingTest, LiveRemovalTakesTheRouteOfTheRowsTextWhateverItsMetricAndTheRegistryEntry) {
    Add(kLab, "10.0.0.9", "20");
    ipHelper->routes[0].nextHop = {10, 0, 0, 2};
    ipHelper->diary.clear();
    diary.clear();
    Remove(kLab, 1);
    EXPECT_THAT(ipHelper->diary, ElementsAre("DeleteIpForwardEntry 3"));
    EXPECT_THAT(ipHelper->routes, IsEmpty());
    ExpectStored({"10.0.0.1"}, {"1"});
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
    EXPECT_EQ(diary, Lines({{"box Remove Selected Gateway ?"}, kGatewayWrites, {"refresh"}}));
    ExpectListAsBefore();
}

TEST_F(GatewayEditingTest, AdapterWithoutALiveInterfaceLosesTheGatewayInTheRegistryOnly) {
    TakeLabDown();
    Remove(kLab, 1);
    EXPECT_THAT(ipHelper->diary, IsEmpty());
    ExpectStored({"10.0.0.1"}, {"1"});
    EXPECT_EQ(diary.back(), "refresh");
}

TEST_F(GatewayEditingTest, FailedRemovalIsReportedAfterTheRegistryWasUpdatedAndNothingIsRefreshed) {
    ipHelper->refusal = Win32Error::kInvalidParameter;
    Remove(kLab, 1);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question, InvalidParameter("DeleteIpForwardEntry")));
    ExpectStored({"10.0.0.1"}, {"1"});
    EXPECT_EQ(diary, Lines({{"box Remove Selected Gateway ?"}, kGatewayWrites, {"box Orvella Corvane"}}));
}

TEST_F(GatewayEditingTest, GatewayThatTheStackDoesNotPartWithOffersNoRestart) {
    ipHelper->refusal = Win32Error::kGenFailure;
    Remove(kLab, 1);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question, RefusalBox(31, "DeleteIpForwardEntry", "unknown")));
}

}  // namespace
}  // namespace corvane
