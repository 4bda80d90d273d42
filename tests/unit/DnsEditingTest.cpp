#include "tests/unit/AddressEditingSupport.h"

/// Adding, removing and ordering DNS servers with the panel `fAddDNS` and the list `ListDNS`.
namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

/// Lab has three DNS servers.
class DnsEditingTest : public AddressEditingTest {
 protected:
    DnsEditingTest() {
        machine.registry->SetText(kLabKey, "NameServer", "as it was");
        Nics[0].DnsServers = {"9.9.9.9"};
        ShowServers({"10.0.0.1", "10.0.0.2", "10.0.0.3"});
    }

    void ShowServers(const std::vector<std::string>& servers) {
        list.rows.clear();
        for (const std::string& server : servers) list.rows.push_back({server, "", list.rows.size()});
        list.header = "DNS Server (" + std::to_string(servers.size()) + ")";
        list.selected.reset();
        Nics[1].DnsServers = servers.empty() ? std::vector<std::string>{""} : servers;
    }
    void Add(const EditingTarget& target, const std::string& server) {
        panel.address.entry.SetText(server);
        editing.Add(target);
    }
    void Remove(const EditingTarget& target, std::size_t row, BoxAnswer answer = BoxAnswer::kYes) {
        list.selected = row;
        machine.seat.answers = {answer};
        editing.Remove(target);
    }
    void MoveUp(const EditingTarget& target, std::size_t row) {
        list.selected = row;
        editing.MoveUp(target);
    }
    void MoveDown(const EditingTarget& target, std::size_t row) {
        list.selected = row;
        editing.MoveDown(target);
    }
    [[nodiscard]] std::vector<std::string> Servers() const {
        std::vector<std::string> servers;
        for (const DetailsRow& row : list.rows) servers.push_back(row.text);
        return servers;
    }
    /// The value was written once with exactly these bytes, and nothing else; the record says the same.
    void ExpectWritten(const std::string& bytes, const std::vector<std::string>& record) const {
        EXPECT_THAT(WritesTo(*machine.registry, kLabKey), ElementsAre(NamedValue("NameServer", Sz(bytes))));
        EXPECT_THAT(machine.registry->diary, ElementsAre("write " + kLabKey + "\\NameServer"));
        EXPECT_EQ(Nics[1].DnsServers, record);
        EXPECT_THAT(ipHelper->diary, IsEmpty());
        EXPECT_THAT(Nics[0].DnsServers, ElementsAre("9.9.9.9"));
    }
    void ExpectNothingWritten() const {
        ExpectMachineUntouched();
        EXPECT_THAT(Nics[1].DnsServers, ElementsAre("10.0.0.1", "10.0.0.2", "10.0.0.3"));
    }
    void ExpectListAsBefore() const {
        EXPECT_THAT(Servers(), ElementsAre("10.0.0.1", "10.0.0.2", "10.0.0.3"));
        EXPECT_EQ(list.header, "DNS Server (3)");
    }

    DnsPanel panel{diary};
    DnsEditing editing{panel, list};
    const FakeSeat::Box question =
        Question("Remove Selected DNS Server?", "Are you sure to remove '10.0.0.2' DNS server address ?");
    const FakeSeat::Box failure =
        Critical("Error! Cannot Write Into Registry",
                 "Error while writing into windows registry.\r\n\r\nKey: HKEY_LOCAL_MACHINE\\" + kLabKey +
                     "\r\nValue: NameServer\r\n\r\nError: (5) Access to this key is denied\r\nClick OK to "
                     "continue");
};

// ---- opening

TEST_F(DnsEditingTest, PanelIsShownGivenItsDefaultButtonEmptiedAndGivenTheFocus) {
    panel.address.entry.SetText("8.8.8.8");
    editing.Open();
    EXPECT_THAT(diary, ElementsAre("show", "default Add DNS", "focus DNSAddress"));
    EXPECT_EQ(panel.address.entry.Text(), "");
    ExpectListAsBefore();
    ExpectNothingWritten();
}

// ---- adding

TEST_F(DnsEditingTest, EmptyBoxAddsNothingAndGetsTheFocus) {
    for (const EditingTarget& target : {kLab, kPreset}) {
        diary.clear();
        Add(target, "");
        EXPECT_THAT(diary, ElementsAre("focus DNSAddress"));
    }
    ExpectListAsBefore();
    ExpectNothingWritten();
}

TEST_F(DnsEditingTest, LiveServerIsAddedAsTheLastOneWrittenAndTheWindowIsRefreshed) {
    Add(kLab, "8.8.8.8");
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.1", "10.0.0.2", "10.0.0.3", "8.8.8.8"));
    EXPECT_EQ(list.header, "DNS Server (4)");
    EXPECT_EQ(list.selected, 3U);
    ExpectWritten("10.0.0.1,10.0.0.2,10.0.0.3,8.8.8.8", {"10.0.0.1", "10.0.0.2", "10.0.0.3", "8.8.8.8"});
    EXPECT_THAT(diary, ElementsAre("write NameServer", "refresh", "focus DNSAddress"));
    EXPECT_EQ(panel.address.entry.Text(), "");
}

TEST_F(DnsEditingTest, FirstServerIsWrittenWithoutAComma) {
    ShowServers({});
    Add(kLab, "8.8.8.8");
    ExpectWritten("8.8.8.8", {"8.8.8.8"});
}

TEST_F(DnsEditingTest, BoxIsEmptyAndTheRecordFollowsWhenTheWindowIsRefreshed) {
    std::string text = "not refreshed";
    std::vector<std::string> record;
    machine.seat.onRefresh = [&] {
        text = panel.address.entry.Text();
        record = Nics[1].DnsServers;
        Nics.assign(1, NicInfo());
    };
    Add(kLab, "8.8.8.8");
    EXPECT_EQ(text, "");
    EXPECT_THAT(record, ElementsAre("10.0.0.1", "10.0.0.2", "10.0.0.3", "8.8.8.8"));
}

TEST_F(DnsEditingTest, AdapterWithoutALiveInterfaceGetsItsServersAllTheSame) {
    TakeLabDown();
    Add(kLab, "8.8.8.8");
    ExpectWritten("10.0.0.1,10.0.0.2,10.0.0.3,8.8.8.8", {"10.0.0.1", "10.0.0.2", "10.0.0.3", "8.8.8.8"});
}

TEST_F(DnsEditingTest, ServerThatIsThereAlreadyIsRefusedInABoxWhereverItStands) {
    for (const std::string server : {"10.0.0.1", "10.0.0.2", "10.0.0.3"}) {
        machine.seat.boxes.clear();
        diary.clear();
        Add(kLab, server);
        EXPECT_THAT(machine.seat.boxes,
                    ElementsAre(Exclamation(
                        "DNS Server IP Already Exists",
                        "DNS Server IP '" + server + "' already exists in the list for selected NIC.")));
        EXPECT_THAT(diary, ElementsAre("box DNS Server IP Already Exists", "focus DNSAddress"));
        EXPECT_EQ(panel.address.entry.Text(), server);
    }
    ExpectListAsBefore();
    ExpectNothingWritten();
}

TEST_F(DnsEditingTest, IncompleteLiveServerIsStoredAsTypedAndWarnedOf) {
    panel.address.texts = {"10", "1", "", ""};
    editing.Add(kLab);
    ExpectWritten("10.0.0.1,10.0.0.2,10.0.0.3,10.1..", {"10.0.0.1", "10.0.0.2", "10.0.0.3", "10.1.."});
    EXPECT_THAT(machine.seat.warnings,
                ElementsAre("DNS server '10.1..' is stored as typed but cannot take effect: it is not four "
                            "numbers 0 to 255 joined by '.'"));
}

TEST_F(DnsEditingTest, LiveServerThatNoHostMayBeIsStoredAndWarnedOf) {
    Add(kLab, "224.0.0.1");
    ExpectWritten("10.0.0.1,10.0.0.2,10.0.0.3,224.0.0.1", {"10.0.0.1", "10.0.0.2", "10.0.0.3", "224.0.0.1"});
    EXPECT_THAT(
        machine.seat.warnings,
        ElementsAre("DNS server '224.0.0.1' is stored as typed but cannot take effect: addresses from "
                    "224.0.0.0 to 239.255.255.255 are multicast groups"));
}

TEST_F(DnsEditingTest, FailedWriteIsShownAndTheListKeepsItsNewState) {
    FailAt("NameServer", Win32Error::kAccessDenied);
    Add(kLab, "8.8.8.8");
    EXPECT_THAT(machine.seat.boxes, ElementsAre(failure));
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.1", "10.0.0.2", "10.0.0.3", "8.8.8.8"));
    EXPECT_THAT(Nics[1].DnsServers, ElementsAre("10.0.0.1", "10.0.0.2", "10.0.0.3", "8.8.8.8"));
    EXPECT_EQ(machine.registry->Text(kLabKey, "NameServer"), "as it was");
    EXPECT_THAT(diary, ElementsAre("write NameServer", "box Error! Cannot Write Into Registry", "refresh",
                                   "focus DNSAddress"));
}

TEST_F(DnsEditingTest, WithoutAConnectionNothingIsAdded) {
    Add(kNoConnection, "8.8.8.8");
    ExpectListAsBefore();
    ExpectNothingWritten();
    EXPECT_THAT(diary, ElementsAre("focus DNSAddress"));
}

TEST_F(DnsEditingTest, ServerOfAPresetIsAddedAsTheLastRowCountedAndSelected) {
    Add(kPreset, "8.8.8.8");
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.1", "10.0.0.2", "10.0.0.3", "8.8.8.8"));
    EXPECT_EQ(list.header, "DNS Server (4)");
    EXPECT_EQ(list.selected, 3U);
    EXPECT_EQ(panel.address.entry.Text(), "");
    EXPECT_THAT(diary, ElementsAre("focus DNSAddress"));
    ExpectNothingWritten();
}

TEST_F(DnsEditingTest, ServerThatThePresetHasIsSkippedSilentlyAndTheBoxEmptied) {
    for (const std::string server : {"10.0.0.1", "10.0.0.3"}) {
        diary.clear();
        Add(kPreset, server);
        EXPECT_EQ(panel.address.entry.Text(), "");
        EXPECT_THAT(diary, ElementsAre("focus DNSAddress"));
    }
    ExpectListAsBefore();
    ExpectNothingWritten();
}

// ---- removing

TEST_F(DnsEditingTest, NothingIsAskedOfAnEmptyListOrWithoutASelection) {
    for (const EditingTarget& target : {kLab, kPreset}) {
        editing.Remove(target);
        ExpectListAsBefore();
    }
    ShowServers({});
    for (const EditingTarget& target : {kLab, kPreset}) editing.Remove(target);
    EXPECT_THAT(diary, IsEmpty());
    ExpectMachineUntouched();
    EXPECT_THAT(Nics[1].DnsServers, ElementsAre(""));
}

TEST_F(DnsEditingTest, RemovalIsAskedAndNoAndCancelLeaveEverything) {
    for (const EditingTarget& target : {kLab, kPreset}) {
        for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) {
            machine.seat.boxes.clear();
            Remove(target, 1, answer);
            EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
        }
    }
    ExpectListAsBefore();
    EXPECT_EQ(list.selected, 1U);
    ExpectNothingWritten();
}

TEST_F(DnsEditingTest, LiveRemovalTakesTheRowAwayWritesTheOthersAndRefreshes) {
    Remove(kLab, 1);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.1", "10.0.0.3"));
    EXPECT_EQ(list.header, "DNS Server (2)");
    EXPECT_EQ(list.selected, 1U);
    ExpectWritten("10.0.0.1,10.0.0.3", {"10.0.0.1", "10.0.0.3"});
    EXPECT_THAT(diary, ElementsAre("box Remove Selected DNS Server?", "write NameServer", "refresh"));
}

TEST_F(DnsEditingTest, LiveRemovalOfTheOnlyServerWritesAnEmptyValue) {
    ShowServers({"10.0.0.1"});
    Remove(kLab, 0);
    EXPECT_THAT(list.rows, IsEmpty());
    EXPECT_EQ(list.selected, std::nullopt);
    EXPECT_EQ(list.header, "DNS Server (0)");
    ExpectWritten("", {""});
}

TEST_F(DnsEditingTest, RemovalWhoseWriteFailsKeepsTheRowAway) {
    FailAt("NameServer", Win32Error::kAccessDenied);
    Remove(kLab, 1);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question, failure));
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.1", "10.0.0.3"));
    EXPECT_THAT(Nics[1].DnsServers, ElementsAre("10.0.0.1", "10.0.0.3"));
}

TEST_F(DnsEditingTest, RemovalFromAPresetIsAskedAndTakesTheRowAway) {
    Remove(kPreset, 1);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.1", "10.0.0.3"));
    EXPECT_EQ(list.header, "DNS Server (2)");
    EXPECT_THAT(diary, ElementsAre("box Remove Selected DNS Server?"));
    ExpectNothingWritten();
}

TEST_F(DnsEditingTest, AfterTheRemovalOfTheLastRowTheOneAboveIsSelected) {
    Remove(kPreset, 2);
    EXPECT_EQ(list.selected, 1U);
}

TEST_F(DnsEditingTest, WithoutAConnectionNothingIsRemoved) {
    Remove(kNoConnection, 1);
    ExpectListAsBefore();
    ExpectNothingWritten();
}

// ---- the order

TEST_F(DnsEditingTest, ServerOneUpChangesPlacesWithTheOneAboveIsWrittenAndStaysSelected) {
    MoveUp(kLab, 2);
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.1", "10.0.0.3", "10.0.0.2"));
    EXPECT_EQ(list.selected, 1U);
    EXPECT_EQ(list.header, "DNS Server (3)");
    ExpectWritten("10.0.0.1,10.0.0.3,10.0.0.2", {"10.0.0.1", "10.0.0.3", "10.0.0.2"});
    EXPECT_THAT(diary, ElementsAre("write NameServer"));
}

TEST_F(DnsEditingTest, ServerOneDownChangesPlacesWithTheOneBelowIsWrittenAndStaysSelected) {
    MoveDown(kLab, 0);
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.2", "10.0.0.1", "10.0.0.3"));
    EXPECT_EQ(list.selected, 1U);
    ExpectWritten("10.0.0.2,10.0.0.1,10.0.0.3", {"10.0.0.2", "10.0.0.1", "10.0.0.3"});
    EXPECT_THAT(diary, ElementsAre("write NameServer"));
}

TEST_F(DnsEditingTest, ServerThatIsMovedAgainGoesOn) {
    MoveUp(kLab, 2);
    editing.MoveUp(kLab);
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.3", "10.0.0.1", "10.0.0.2"));
    EXPECT_EQ(list.selected, 0U);
    editing.MoveDown(kLab);
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.1", "10.0.0.3", "10.0.0.2"));
    EXPECT_EQ(list.selected, 1U);
}

TEST_F(DnsEditingTest, FirstServerUpAndLastServerDownDoNothingAndWriteNothing) {
    for (const EditingTarget& target : {kLab, kPreset}) {
        MoveUp(target, 0);
        EXPECT_EQ(list.selected, 0U);
        MoveDown(target, 2);
        EXPECT_EQ(list.selected, 2U);
    }
    ExpectListAsBefore();
    ExpectNothingWritten();
    EXPECT_THAT(diary, IsEmpty());
}

TEST_F(DnsEditingTest, OnlyServerGoesNowhere) {
    ShowServers({"10.0.0.1"});
    MoveUp(kLab, 0);
    MoveDown(kLab, 0);
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.1"));
    ExpectMachineUntouched();
}

TEST_F(DnsEditingTest, EmptyListAndNoSelectionHaveNothingToMove) {
    for (const std::vector<std::string>& servers :
         {std::vector<std::string>{}, std::vector<std::string>{"10.0.0.1", "10.0.0.2"}}) {
        ShowServers(servers);
        editing.MoveUp(kLab);
        editing.MoveDown(kLab);
        EXPECT_EQ(Servers(), servers);
    }
    ExpectMachineUntouched();
    EXPECT_THAT(diary, IsEmpty());
}

TEST_F(DnsEditingTest, MovesInAPresetChangeTheRowsAlone) {
    MoveUp(kPreset, 2);
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.1", "10.0.0.3", "10.0.0.2"));
    EXPECT_EQ(list.selected, 1U);
    MoveDown(kPreset, 0);
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.3", "10.0.0.1", "10.0.0.2"));
    EXPECT_EQ(list.selected, 1U);
    ExpectNothingWritten();
    EXPECT_THAT(diary, IsEmpty());
}

TEST_F(DnsEditingTest, MoveWhoseWriteFailsIsShownAndStays) {
    FailAt("NameServer", Win32Error::kAccessDenied);
    MoveUp(kLab, 2);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(failure));
    EXPECT_THAT(Servers(), ElementsAre("10.0.0.1", "10.0.0.3", "10.0.0.2"));
    EXPECT_THAT(Nics[1].DnsServers, ElementsAre("10.0.0.1", "10.0.0.3", "10.0.0.2"));
    EXPECT_EQ(list.selected, 1U);
}

}  // namespace
}  // namespace corvane
