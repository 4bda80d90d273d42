#include "mac/NetworkFolderDialog.h"
#include "mac/SetConnectionState.h"
#include "tests/unit/CoreSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kProgramKey[] = "SOFTWARE\\Orvella\\Corvane_v4";

/// Control Panel of a system in another language. Verbs done and waits stand in the seat's diary.
class NetworkFolderDialogTest : public testing::Test {
 protected:
    NetworkFolderDialogTest() {
        machine.shell->panel = {{"Drucker", true, {}},
                                {"Maus", false, {}},
                                {"&Netzwerkverbindungen", true, {{"Office", {"Disa&ble"}}}}};
        machine.clock->onSleep = [this](std::uint32_t milliseconds) {
            diary.push_back("sleep " + std::to_string(milliseconds));
        };
        machine.shell->onVerb = [this](FakeShell::Connection& connection, const std::string& verb) {
            diary.push_back("verb " + verb);
            connection.verbs = {verb == "Disa&ble" ? "En&able" : "Disa&ble"};
        };
    }

    void Browse(bool enable, bool restart) {
        std::vector<ShellItem> items;
        ASSERT_EQ(machine.shell->ControlPanelItems(items), Refusal());
        BrowseNetworkFolder(items, {"Office", enable, restart});
    }

    [[nodiscard]] static FakeSeat::Box WriteFailure() {
        return Critical(
            "Error! Cannot Write Registry",
            "Error while writing windows registry.\r\n\r\nRegistry Path: "
            "HKEY_LOCAL_MACHINE\\SOFTWARE\\Orvella\\Corvane_v4\\NetworkFolderName\r\n\r\nError: (5) "
            "Access to this key is denied\r\n\r\nClick OK to continue");
    }

    FakeMachine machine;
    std::vector<std::string>& diary = machine.seat.diary;
};

/// Remembers the words of the dialog.
class WordsSeat : public NullSeat {
 public:
    std::optional<std::size_t> PickFolder(const std::string& title, const std::string& heading,
                                          const std::string& instruction,
                                          const std::vector<std::string>& names) override {
        words = {title, heading, instruction};
        offered = names;
        return std::nullopt;
    }
    std::vector<std::string> words;
    std::vector<std::string> offered;
};

TEST_F(NetworkFolderDialogTest, OffersTheFoldersInTheShellsOrderWithItsWords) {
    WordsSeat seat;
    const ScopedSeat installed(seat);
    Browse(false, false);
    EXPECT_THAT(seat.words,
                ElementsAre("Browse Network Folder", "Control Pannel Folders",
                            "Please Manually Select 'Network Connections' or 'Network and dial-up "
                            "connections' Folder From The List Below. Orvella Corvane Will Remember The "
                            "Folder You Selected."));
    EXPECT_THAT(seat.offered, ElementsAre("Drucker", "Netzwerkverbindungen"));
}

TEST_F(NetworkFolderDialogTest, CancelDoesNothingElse) {
    Browse(false, false);
    EXPECT_THAT(diary, ElementsAre("pick Browse Network Folder"));
    EXPECT_THAT(machine.registry->diary, IsEmpty());
    EXPECT_EQ(NetworkFolderName, "");
}

TEST_F(NetworkFolderDialogTest, ChoiceThatWasNotOfferedCountsAsCancel) {
    machine.seat.folderChoice = 2;
    Browse(false, false);
    EXPECT_THAT(diary, ElementsAre("pick Browse Network Folder"));
    EXPECT_THAT(machine.registry->diary, IsEmpty());
}

TEST_F(NetworkFolderDialogTest, SelectRemembersTheNameInLowerCase) {
    machine.seat.folderChoice = 1;
    Browse(false, false);
    EXPECT_EQ(NetworkFolderName, "netzwerkverbindungen");
    EXPECT_THAT(machine.registry->diary,
                ElementsAre("create " + std::string(kProgramKey),
                            "write " + std::string(kProgramKey) + "\\NetworkFolderName"));
    ASSERT_EQ(machine.registry->writes.size(), 1U);
    EXPECT_EQ(machine.registry->writes[0].value, Sz("netzwerkverbindungen"));
}

TEST_F(NetworkFolderDialogTest, SelectThenDisablesTheConnection) {
    machine.seat.folderChoice = 1;
    Browse(false, false);
    EXPECT_THAT(diary, ElementsAre("pick Browse Network Folder", "row 1 ", "row 2 ", "row 3 Disabling ...",
                                   "row 4  ", "events", "verb Disa&ble", "sleep 5000",
                                   "box Network Connection Disabled", "refresh"));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(Information("Network Connection Disabled",
                                                            "Network connection disabled successfully.")));
}

TEST_F(NetworkFolderDialogTest, SelectThenEnablesTheConnection) {
    machine.shell->panel[2].connections[0].verbs = {"En&able"};
    machine.seat.folderChoice = 1;
    Browse(true, false);
    EXPECT_THAT(diary, ElementsAre("pick Browse Network Folder", "row 1 ", "row 2 ", "row 3 Enabling ...",
                                   "row 4  ", "events", "verb En&able", "sleep 5000",
                                   "box Network Connection Enabled", "refresh"));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(Information("Network Connection Enabled",
                                                            "Network connection enabled successfully.")));
}

TEST_F(NetworkFolderDialogTest, ConnectionWithoutTheVerbEndsWithoutABox) {
    machine.seat.folderChoice = 1;
    Browse(true, false);
    EXPECT_THAT(diary, ElementsAre("pick Browse Network Folder", "row 1 ", "row 2 ", "row 3 Enabling ...",
                                   "row 4  ", "events"));
    EXPECT_THAT(machine.clock->sleeps, IsEmpty());
}

TEST_F(NetworkFolderDialogTest, WrongFolderLeadsToTheQuestionAboutTheConnection) {
    machine.seat.folderChoice = 0;
    machine.seat.answers = {BoxAnswer::kNo};
    Browse(false, false);
    EXPECT_THAT(diary, ElementsAre("pick Browse Network Folder", "row 1 ", "row 2 ", "row 3 Disabling ...",
                                   "row 4  ", "events", "box Unable To Locate Network Connection"));
}

TEST_F(NetworkFolderDialogTest, RestartRequestRestartsAndRefreshes) {
    machine.seat.folderChoice = 1;
    Browse(false, true);
    EXPECT_THAT(diary, ElementsAre("pick Browse Network Folder", "row 1 ", "row 2 ", "row 3 Disabling ...",
                                   "row 4  ", "events", "verb Disa&ble", "sleep 5000",
                                   "row 3 Enabling (Attempt 1) ...", "events", "verb En&able", "events",
                                   "sleep 5000", "box Network Connection Restarted", "refresh"));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(Information("Network Connection Restarted",
                                                            "Network connection restarted successfully.")));
}

TEST_F(NetworkFolderDialogTest, FailedRestartShowsNoBoxAndDoesNotRefresh) {
    machine.shell->beforeVerbs = [](FakeShell::Connection& connection) { connection.verbs = {"Stat&us"}; };
    machine.seat.folderChoice = 1;
    Browse(false, true);
    EXPECT_EQ(diary.back(), "row 3 Restart Failed (Attempt 3)");
    EXPECT_THAT(machine.seat.boxes, IsEmpty());
}

TEST_F(NetworkFolderDialogTest, FailedWriteIsShownAndTheOperationGoesOn) {
    machine.registry->fail = [](const std::string& operation, const std::string&,
                                const std::string&) -> std::optional<Win32Error> {
        if (operation == "write") return Win32Error::kAccessDenied;
        return std::nullopt;
    };
    machine.seat.folderChoice = 1;
    Browse(false, false);
    ASSERT_EQ(machine.seat.boxes.size(), 2U);
    EXPECT_EQ(machine.seat.boxes[0], WriteFailure());
    EXPECT_EQ(machine.seat.boxes[1].title, "Network Connection Disabled");
    EXPECT_EQ(NetworkFolderName, "netzwerkverbindungen");
}

TEST_F(NetworkFolderDialogTest, FailedCreationOfTheKeyIsShownOnceAndTheOperationGoesOn) {
    machine.registry->readOnly = true;
    machine.seat.folderChoice = 1;
    Browse(false, false);
    EXPECT_THAT(machine.registry->diary, ElementsAre("create " + std::string(kProgramKey)));
    ASSERT_EQ(machine.seat.boxes.size(), 2U);
    EXPECT_EQ(machine.seat.boxes[0], WriteFailure());
    EXPECT_EQ(machine.seat.boxes[1].title, "Network Connection Disabled");
}

}  // namespace
}  // namespace corvane
