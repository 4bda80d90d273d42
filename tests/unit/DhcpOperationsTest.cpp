#include "tcpip/DhcpOperations.h"
#include "tests/unit/WindowCommandSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kLabKey =
    "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + std::string(kSecondId);
const FakeSeat::Box kRestarted =
    Information("Network Connection Restarted", "Network connection restarted successfully.");

class DhcpOperationsTest : public WindowCommandTest {
 protected:
    DhcpOperationsTest() {
        Nics[0].IfIndex = 2;
        Nics[1].IfIndex = 3;
        machine.ipHelper->AddInterface(2, kFirstId);
        machine.ipHelper->AddInterface(3, kSecondId);
    }

    [[nodiscard]] std::vector<NamedValue> Writes() const { return WritesTo(*machine.registry, kLabKey); }
    /// All writes were to the key of Lab.
    [[nodiscard]] bool OnlyLabWasWritten() const {
        return machine.registry->writes.size() == Writes().size();
    }
};

// ---- switching DHCP

class SwitchDhcpTest : public DhcpOperationsTest {
 protected:
    static std::vector<NamedValue> Expected(char enableDhcp) {
        return {{"EnableDHCP", Dword(enableDhcp)},
                {"IPAddress", MultiSz("0.0.0.0" + kNul + kNul)},
                {"SubnetMask", MultiSz("0.0.0.0" + kNul + kNul)},
                {"DefaultGateway", MultiSz(kNul)},
                {"DefaultGatewayMetric", MultiSz(kNul)}};
    }
    const std::vector<std::string> writeLines = {"write EnableDHCP", "write IPAddress", "write SubnetMask",
                                                 "write DefaultGateway", "write DefaultGatewayMetric"};
    const FakeSeat::Box question =
        Question("Restart Network Connection ?",
                 "You must restart network connection to apply changes. Do you want to "
                 "enable and disable network connection now ?");
};

TEST_F(SwitchDhcpTest, OnWritesOneAndResetsTheLists) {
    SwitchDhcp(1, true);
    EXPECT_EQ(Writes(), Expected(1));
    EXPECT_TRUE(OnlyLabWasWritten());
}

TEST_F(SwitchDhcpTest, OffWritesZeroAndResetsTheSameLists) {
    SwitchDhcp(1, false);
    EXPECT_EQ(Writes(), Expected(0));
    EXPECT_TRUE(OnlyLabWasWritten());
}

TEST_F(SwitchDhcpTest, NameServersAreNotTouched) {
    machine.registry->SetText(kLabKey, "NameServer", "8.8.8.8,1.1.1.1");
    SwitchDhcp(1, true);
    SwitchDhcp(1, false);
    EXPECT_EQ(machine.registry->Text(kLabKey, "NameServer"), "8.8.8.8,1.1.1.1");
}

TEST_F(SwitchDhcpTest, YesRestartsReportsAndRefreshes) {
    machine.seat.answers = {BoxAnswer::kYes};
    SwitchDhcp(1, true);
    EXPECT_EQ(diary, Lines({writeLines,
                            {"box Restart Network Connection ?"},
                            kRestartOfLab,
                            {"box Network Connection Restarted", "refresh"}}));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question, kRestarted));
}

TEST_F(SwitchDhcpTest, NoAndCancelRefreshWithoutARestart) {
    for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) {
        diary.clear();
        machine.seat.answers = {answer};
        SwitchDhcp(1, true);
        EXPECT_EQ(diary, Lines({writeLines, {"box Restart Network Connection ?", "refresh"}}));
    }
}

TEST_F(SwitchDhcpTest, FailedRestartShowsNothingAndRefreshes) {
    OfferEnableAtAttempt(3);
    machine.seat.answers = {BoxAnswer::kYes};
    SwitchDhcp(1, false);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
    ASSERT_GE(diary.size(), 2U);
    EXPECT_EQ(diary[diary.size() - 2], "row 3 Restart Failed (Attempt 3)");
    EXPECT_EQ(diary.back(), "refresh");
}

TEST_F(SwitchDhcpTest, FailedWriteEndsItInOneBoxThatNamesTheValue) {
    for (std::size_t i = 0; i < writeLines.size(); ++i) {
        const std::string name = writeLines[i].substr(std::string("write ").size());
        FailAt(name, Win32Error::kAccessDenied);
        diary.clear();
        machine.seat.boxes.clear();
        SwitchDhcp(1, true);
        std::vector<std::string> expected(writeLines.begin(),
                                          writeLines.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        expected.emplace_back("box Error! Cannot Write Registry");
        EXPECT_EQ(diary, expected);
        EXPECT_THAT(machine.seat.boxes,
                    ElementsAre(WriteFailure(kLabKey + "\\" + name, "(5) Access to this key is denied")));
    }
}

// ---- leases

class LeaseTest : public DhcpOperationsTest {
 protected:
    static FakeSeat::Box LeaseQuestion(const std::string& title, const std::string& verb) {
        return Question(title,
                        "Are you sure to " + verb +
                            " IP address obtained from DHCP server ?\r\n\r\nNOTE: Orvella Corvane will not "
                            "respond till the operation is complete or a time out has occured during this "
                            "operation.");
    }
    static FakeSeat::Box ApiFailure(const std::string& apiName) {
        return Critical("Orvella Corvane",
                        "DLL : IphlpApi.dll\r\n\r\nError Code : 121\r\nAPI: " + apiName +
                            "\r\nError Description : No server answered.\r\n\r\nClick OK To "
                            "Continue");
    }
    const FakeSeat::Box releaseQuestion = LeaseQuestion("Release IP ?", "RELEASE");
    const FakeSeat::Box renewQuestion = LeaseQuestion("Renew IP ?", "RENEW");
};

TEST_F(LeaseTest, ReleaseGivesTheLeaseBackReportsAndRefreshes) {
    machine.seat.answers = {BoxAnswer::kYes};
    ReleaseLease(1);
    EXPECT_THAT(
        machine.ipHelper->diary,
        ElementsAre("GetInterfaceInfo", "IpReleaseAddress 3 \\DEVICE\\TCPIP_" + std::string(kSecondId)));
    EXPECT_THAT(
        machine.seat.boxes,
        ElementsAre(releaseQuestion, Information("IP Released Successfully",
                                                 "DHCP IP Release operation was successfully performed.")));
    EXPECT_THAT(diary, ElementsAre("box Release IP ?", "box IP Released Successfully", "refresh"));
}

TEST_F(LeaseTest, RenewAsksForTheLeaseAnewReportsAndRefreshes) {
    machine.seat.answers = {BoxAnswer::kYes};
    RenewLease(1);
    EXPECT_THAT(machine.ipHelper->diary, ElementsAre("GetInterfaceInfo", "IpRenewAddress 3 \\DEVICE\\TCPIP_" +
                                                                             std::string(kSecondId)));
    EXPECT_THAT(
        machine.seat.boxes,
        ElementsAre(renewQuestion, Information("IP Renewed Successfully",
                                               "DHCP IP Renew operation was successfully performed.")));
    EXPECT_THAT(diary, ElementsAre("box Renew IP ?", "box IP Renewed Successfully", "refresh"));
}

TEST_F(LeaseTest, OnlyYesGoesOn) {
    for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) {
        machine.seat.answers = {answer, answer};
        ReleaseLease(1);
        RenewLease(1);
    }
    EXPECT_THAT(machine.ipHelper->diary, IsEmpty());
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(releaseQuestion, renewQuestion, releaseQuestion, renewQuestion));
    EXPECT_THAT(diary, testing::Each(testing::StartsWith("box ")));
}

TEST_F(LeaseTest, FailuresAreReportedByTheNameOfTheCall) {
    machine.ipHelper->texts[Win32Error::kSemTimeout] = "No server answered.";
    machine.ipHelper->releaseResult = Win32Error::kSemTimeout;
    machine.ipHelper->renewResult = Win32Error::kSemTimeout;
    machine.seat.answers = {BoxAnswer::kYes, BoxAnswer::kYes};
    ReleaseLease(1);
    RenewLease(1);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(releaseQuestion, ApiFailure("IPReleaseAddress"),
                                                renewQuestion, ApiFailure("IPRenewAddress")));
    EXPECT_THAT(diary, ElementsAre("box Release IP ?", "box Orvella Corvane", "box Renew IP ?",
                                   "box Orvella Corvane"));
}

// ---- metric

class InterfaceMetricTest : public DhcpOperationsTest {
 protected:
    void Answer(const std::string& answer) {
        machine.seat.textAnswer = answer;
        SetInterfaceMetric(1);
    }
    /// The bytes that an answer writes as a REG_DWORD.
    RegistryValue Written(const std::string& answer) {
        machine.registry->writes.clear();
        Answer(answer);
        const std::vector<NamedValue> writes = Writes();
        if (writes.size() != 1 || writes[0].first != "InterfaceMetric" || !OnlyLabWasWritten()) return {};
        return writes[0].second;
    }
    static RegistryValue Number(std::uint32_t number) { return ValueOf(kRegDword, Little(number, 4)); }

    const FakeSeat::Box question = Question(
        "Restart Network Connection Now ?",
        "You must restart the selected network connection in order to apply Interface Metric "
        "changes\r\n\r\nAre you sure to restart network connection 'Lab' now ?\r\n\r\nWARNING : There "
        "will be loss of network connectivity while the network connection restarts.");
};

/// Remembers the words of the input box.
class AskingSeat : public NullSeat {
 public:
    std::optional<std::string> AskText(const std::string& title, const std::string& prompt,
                                       const std::string& preset) override {
        words = {title, prompt, preset};
        return std::nullopt;
    }
    std::vector<std::string> words;
};

TEST_F(InterfaceMetricTest, InputBoxHasItsWordsAndNoPreset) {
    AskingSeat seat;
    const ScopedSeat installed(seat);
    SetInterfaceMetric(1);
    EXPECT_THAT(seat.words,
                ElementsAre("Enter Interface Metric",
                            "Enter New Interface Metric For Network Connection 'Lab' Below:\r\n\r\n"
                            "NOTE: For Automatic Metric, Enter Value 0 (Zero)",
                            ""));
}

TEST_F(InterfaceMetricTest, CancelAndAnEmptyAnswerEndIt) {
    SetInterfaceMetric(1);
    Answer("");
    EXPECT_THAT(diary, ElementsAre("ask", "ask"));
    EXPECT_THAT(machine.registry->diary, IsEmpty());
}

TEST_F(InterfaceMetricTest, NumberIsWrittenAndARestartOffered) {
    machine.seat.answers = {BoxAnswer::kYes};
    Answer("25");
    EXPECT_THAT(Writes(), ElementsAre(NamedValue("InterfaceMetric", Number(25))));
    EXPECT_TRUE(OnlyLabWasWritten());
    EXPECT_EQ(diary, Lines({{"ask", "write InterfaceMetric", "box Restart Network Connection Now ?"},
                            kRestartOfLab,
                            {"box Network Connection Restarted", "refresh"}}));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question, kRestarted));
}

TEST_F(InterfaceMetricTest, NoAndCancelRefreshWithoutARestart) {
    for (const BoxAnswer answer : {BoxAnswer::kNo, BoxAnswer::kCancel}) {
        diary.clear();
        machine.seat.answers = {answer};
        Answer("25");
        EXPECT_THAT(diary, ElementsAre("ask", "write InterfaceMetric", "box Restart Network Connection Now ?",
                                       "refresh"));
    }
}

TEST_F(InterfaceMetricTest, FailedRestartShowsNothing) {
    OfferEnableAtAttempt(3);
    machine.seat.answers = {BoxAnswer::kYes};
    Answer("25");
    EXPECT_THAT(machine.seat.boxes, ElementsAre(question));
}

TEST_F(InterfaceMetricTest, ZeroDeletesTheValue) {
    machine.registry->SetDword(kLabKey, "InterfaceMetric", 25);
    Answer("0");
    EXPECT_FALSE(machine.registry->HasValue(kLabKey, "InterfaceMetric"));
    EXPECT_THAT(diary, ElementsAre("ask", "delete InterfaceMetric", "box Restart Network Connection Now ?",
                                   "refresh"));
}

TEST_F(InterfaceMetricTest, ZeroWithoutAValueFailsToDeleteItAndOffersNoRestart) {
    Answer("0");
    EXPECT_THAT(diary, ElementsAre("ask", "delete InterfaceMetric", "box Error! Cannot Write Registry"));
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(WriteFailure(kLabKey + "\\InterfaceMetric", "(2) Bad Key Name")));
}

TEST_F(InterfaceMetricTest, FailedWriteIsShownAndOffersNoRestart) {
    FailAt("InterfaceMetric", Win32Error::kAccessDenied);
    Answer("25");
    EXPECT_THAT(diary, ElementsAre("ask", "write InterfaceMetric", "box Error! Cannot Write Registry"));
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(WriteFailure(kLabKey + "\\InterfaceMetric", "(5) Access to this key is denied")));
}

TEST_F(InterfaceMetricTest, AnswerIsTheNumberAtItsBeginning) {
    EXPECT_EQ(Written("0010"), Number(10));
    EXPECT_EQ(Written("300"), Number(300));
    EXPECT_EQ(Written("70000"), Number(70000));
    EXPECT_EQ(Written("12 ms"), Number(12));
}

TEST_F(InterfaceMetricTest, TextThatIsNoNumberAndOtherZerosWriteZeroInsteadOfDeleting) {
    for (const char* answer : {"abc", "00", " 0", "0 ", "0.0", "-0", " "}) {
        EXPECT_EQ(Written(answer), Number(0)) << answer;
    }
}

TEST_F(InterfaceMetricTest, FractionsAreRoundedWithTiesToEven) {
    EXPECT_EQ(Written("2.4"), Number(2));
    EXPECT_EQ(Written("2.5"), Number(2));
    EXPECT_EQ(Written("2.6"), Number(3));
    EXPECT_EQ(Written("3.5"), Number(4));
}

TEST_F(InterfaceMetricTest, NumberOutsideADwordsRangeBecomesTheNearerEnd) {
    EXPECT_EQ(Written("4294967295"), Number(0xFFFFFFFFU));
    EXPECT_EQ(Written("4294967296"), Number(0xFFFFFFFFU));
    EXPECT_EQ(Written("1e300"), Number(0xFFFFFFFFU));
    EXPECT_EQ(Written("-1"), Number(0));
    EXPECT_EQ(Written("-1e300"), Number(0));
}

}  // namespace
}  // namespace corvane
