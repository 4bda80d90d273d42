#include "tests/unit/WindowCommandSupport.h"
#include "ui/logic/MacChange.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;

class EnableOrDisableTest : public WindowCommandTest {
 protected:
    void Enable() { EnableOrDisable(1, true); }
    void Disable() { EnableOrDisable(1, false); }
};

const FakeSeat::Box kNotEnabled =
    Critical("Connection Cound Not Be Enabled",
             "Network connection could not be enabled or probably is taking some time. Please try again.");
const FakeSeat::Box kNotDisabled =
    Critical("Connection Cound Not Be Disabled",
             "Network connection could not be disabled or probably is taking some time. Please try again.");

TEST_F(EnableOrDisableTest, EnablesWaitsReportsAndRefreshes) {
    SetLabVerbs({"En&able"});
    Enable();
    EXPECT_THAT(diary, ElementsAre("row 1 ", "row 2 ", "row 3 Enabling ...", "row 4  ", "events",
                                   "verb En&able of Lab", "sleep 5000", "box Connection Enabled", "refresh"));
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(Information("Connection Enabled", "Network connection enabled successfully.")));
}

TEST_F(EnableOrDisableTest, DisablesWaitsReportsAndRefreshes) {
    Disable();
    EXPECT_THAT(diary,
                ElementsAre("row 1 ", "row 2 ", "row 3 Disabling ...", "row 4  ", "events",
                            "verb Disa&ble of Lab", "sleep 5000", "box Connection Disabled", "refresh"));
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(Information("Connection Disabled", "Network connection disabled successfully.")));
}

TEST_F(EnableOrDisableTest, ConnectionThatIsEnabledAlreadyCannotBeEnabled) {
    Enable();
    EXPECT_THAT(diary, ElementsAre("row 1 ", "row 2 ", "row 3 Enabling ...", "row 4  ", "events",
                                   "row 3 Enabling Attempt Failed", "box Connection Cound Not Be Enabled"));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(kNotEnabled));
}

TEST_F(EnableOrDisableTest, ConnectionThatIsDisabledAlreadyCannotBeDisabled) {
    SetLabVerbs({"En&able"});
    Disable();
    EXPECT_THAT(diary, ElementsAre("row 1 ", "row 2 ", "row 3 Disabling ...", "row 4  ", "events",
                                   "row 3 Disabling Attempt Failed", "box Connection Cound Not Be Disabled"));
    EXPECT_THAT(machine.seat.boxes, ElementsAre(kNotDisabled));
}

TEST_F(EnableOrDisableTest, ShellFailureIsAFailedAttempt) {
    machine.shell->failingCall = "DoVerb";
    Disable();
    EXPECT_THAT(diary, ElementsAre("row 1 ", "row 2 ", "row 3 Disabling ...", "row 4  ", "events",
                                   "box Orvella Corvane", "row 3 Disabling Attempt Failed",
                                   "box Connection Cound Not Be Disabled"));
    EXPECT_EQ(machine.seat.boxes.at(1), kNotDisabled);
}

TEST_F(EnableOrDisableTest, ConnectionThatIsNotFoundIsAFailedAttempt) {
    Nics[1].Name = "Gone";
    Enable();
    ASSERT_EQ(machine.seat.boxes.size(), 2U);
    EXPECT_EQ(machine.seat.boxes[0].title, "Unable To Locate Network Connection");
    EXPECT_EQ(machine.seat.boxes[1], kNotEnabled);
}

TEST_F(EnableOrDisableTest, FolderDialogReportsItsOwnSuccessAndCountsAsAFailedAttempt) {
    SetLabVerbs({"En&able"});
    LoseFolderAndAdapters();
    Enable();
    EXPECT_THAT(diary, ElementsAre("row 1 ", "row 2 ", "row 3 Enabling ...", "row 4  ", "events",
                                   "pick Browse Network Folder", "write NetworkFolderName", "row 1 ",
                                   "row 2 ", "row 3 Enabling ...", "row 4  ", "events", "verb En&able of Lab",
                                   "sleep 5000", "box Network Connection Enabled", "refresh",
                                   "row 3 Enabling Attempt Failed", "box Connection Cound Not Be Enabled"));
}

}  // namespace
}  // namespace corvane
