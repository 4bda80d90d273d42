#include <sstream>

#include "startup/CommandSeat.h"
#include "startup/ConsoleSeat.h"
#include "tests/unit/CoreSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

/// A console on texts.
class ConsoleSeatTest : public testing::Test {
 protected:
    ConsoleSeat& Console(bool interactive, const std::string& typed = "") {
        in.str(typed);
        seat = std::make_unique<ConsoleSeat>(in, out, err, interactive);
        return *seat;
    }

    BoxAnswer Ask(const std::string& typed) {
        return Console(true, typed)
            .ShowBox("Sure ?", "Really?", BoxIcon::kQuestion, BoxButtons::kYesNoCancel);
    }

    std::optional<std::size_t> Pick(const std::string& typed) {
        return Console(true, typed).PickFolder("Browse", "Folders", "Select one.", {"Printers", "Network"});
    }

    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    std::unique_ptr<ConsoleSeat> seat;
};

TEST_F(ConsoleSeatTest, InformationGoesToStandardOutput) {
    const BoxAnswer answer = Console(false).ShowBox("Done - Orvella Corvane v4", "First\r\n\r\nSecond",
                                                    BoxIcon::kInformation, BoxButtons::kOk);
    EXPECT_EQ(answer, BoxAnswer::kOk);
    EXPECT_EQ(out.str(), "Done - Orvella Corvane v4\nFirst\n\nSecond\n\n");
    EXPECT_EQ(err.str(), "");
}

TEST_F(ConsoleSeatTest, EveryOtherIconGoesToStandardError) {
    for (const BoxIcon icon : {BoxIcon::kCritical, BoxIcon::kExclamation, BoxIcon::kQuestion}) {
        err.str("");
        EXPECT_EQ(Console(false).ShowBox("Title", "Text", icon, BoxButtons::kOk), BoxAnswer::kOk);
        EXPECT_EQ(err.str(), "Title\nText\n\n");
    }
    EXPECT_EQ(out.str(), "");
}

TEST_F(ConsoleSeatTest, LineEndsAtTheEndOfTheTextAreLeftOut) {
    Console(false).ShowBox("Title", "Text\r\n\r\n", BoxIcon::kInformation, BoxButtons::kOk);
    EXPECT_EQ(out.str(), "Title\nText\n\n");
}

TEST_F(ConsoleSeatTest, UnsilencedBoxIsShownAsAnyOther) {
    Console(false).ShowUnsilencedBox("ERROR", "Text", BoxIcon::kCritical);
    EXPECT_EQ(err.str(), "ERROR\nText\n\n");
}

TEST_F(ConsoleSeatTest, QuestionAwayFromATerminalIsShownAndAnsweredNo) {
    EXPECT_EQ(
        Console(false, "yes\n").ShowBox("Sure ?", "Really?", BoxIcon::kQuestion, BoxButtons::kYesNoCancel),
        BoxAnswer::kNo);
    EXPECT_EQ(err.str(), "Sure ?\nReally?\n\n");
    EXPECT_EQ(in.tellg(), 0);
}

TEST_F(ConsoleSeatTest, QuestionOnATerminalIsAsked) {
    EXPECT_EQ(Ask("yes\n"), BoxAnswer::kYes);
    EXPECT_EQ(err.str(), "Sure ?\nReally?\n\n[Yes/No/Cancel] ");
}

TEST_F(ConsoleSeatTest, AnswersMayBeShortAndInAnyCase) {
    EXPECT_EQ(Ask("Y\n"), BoxAnswer::kYes);
    EXPECT_EQ(Ask(" YES \r\n"), BoxAnswer::kYes);
    EXPECT_EQ(Ask("n\n"), BoxAnswer::kNo);
    EXPECT_EQ(Ask("No\n"), BoxAnswer::kNo);
    EXPECT_EQ(Ask("c\n"), BoxAnswer::kCancel);
    EXPECT_EQ(Ask("CANCEL\n"), BoxAnswer::kCancel);
}

TEST_F(ConsoleSeatTest, AnythingElseIsAskedAgain) {
    EXPECT_EQ(Ask("maybe\n\nyes\n"), BoxAnswer::kYes);
    EXPECT_EQ(err.str(),
              "Sure ?\nReally?\n\n[Yes/No/Cancel] Please answer yes, no or cancel.\n"
              "[Yes/No/Cancel] Please answer yes, no or cancel.\n[Yes/No/Cancel] ");
}

TEST_F(ConsoleSeatTest, EndOfTheInputIsNo) {
    EXPECT_EQ(Ask(""), BoxAnswer::kNo);
    EXPECT_EQ(Ask("maybe"), BoxAnswer::kNo);
}

TEST_F(ConsoleSeatTest, LastLineWithoutALineEndIsAnAnswer) { EXPECT_EQ(Ask("yes"), BoxAnswer::kYes); }

TEST_F(ConsoleSeatTest, TextIsAskedForWithItsPreset) {
    EXPECT_EQ(Console(true, "25\n").AskText("Metric", "Give one.\r\nNow.", "10"), "25");
    EXPECT_EQ(err.str(), "Metric\nGive one.\nNow.\n[10] ");
}

TEST_F(ConsoleSeatTest, EmptyLineTakesThePreset) {
    EXPECT_EQ(Console(true, "\n").AskText("Metric", "Give one.", "10"), "10");
}

TEST_F(ConsoleSeatTest, EmptyLineWithoutAPresetCancels) {
    EXPECT_EQ(Console(true, "\n").AskText("Metric", "Give one.", ""), std::nullopt);
    EXPECT_EQ(err.str(), "Metric\nGive one.\n");
}

TEST_F(ConsoleSeatTest, TextIsCancelledAtTheEndOfTheInput) {
    EXPECT_EQ(Console(true, "").AskText("Metric", "Give one.", "10"), std::nullopt);
}

TEST_F(ConsoleSeatTest, TextIsNotAskedForAwayFromATerminal) {
    EXPECT_EQ(Console(false, "25\n").AskText("Metric", "Give one.", "10"), std::nullopt);
    EXPECT_EQ(err.str(), "");
}

TEST_F(ConsoleSeatTest, FolderIsPickedByItsNumber) {
    EXPECT_EQ(Pick("2\n"), 1U);
    EXPECT_EQ(err.str(), "Browse\nFolders\nSelect one.\n  1. Printers\n  2. Network\nNumber (0 to cancel): ");
}

TEST_F(ConsoleSeatTest, PickIsCancelledByZeroAnEmptyLineAndTheEndOfTheInput) {
    EXPECT_EQ(Pick("0\n"), std::nullopt);
    EXPECT_EQ(Pick("\n"), std::nullopt);
    EXPECT_EQ(Pick(""), std::nullopt);
}

TEST_F(ConsoleSeatTest, NumbersThatWereNotOfferedAreAskedForAgain) {
    EXPECT_EQ(Pick("3\n-1\n1x\n99999999999999999999999\nNetwork\n1\n"), 0U);
    const std::string again = "Number (0 to cancel): Please give a number from 0 to 2.\n";
    EXPECT_THAT(err.str(),
                testing::HasSubstr(again + again + again + again + again + "Number (0 to cancel): "));
}

TEST_F(ConsoleSeatTest, FolderIsNotPickedAwayFromATerminal) {
    EXPECT_EQ(Console(false, "1\n").PickFolder("Browse", "Folders", "Select one.", {"Printers"}),
              std::nullopt);
    EXPECT_EQ(err.str(), "");
}

TEST_F(ConsoleSeatTest, WarningsGoToStandardError) {
    Console(false).Warn("the mask is odd");
    EXPECT_EQ(err.str(), "nicx: warning: the mask is odd\n");
    EXPECT_EQ(out.str(), "");
}

TEST_F(ConsoleSeatTest, ProgressIsForATerminalOnly) {
    Console(false).Progress("Restarting ...");
    EXPECT_EQ(err.str(), "");
    Console(true).Progress("Restarting ...");
    EXPECT_EQ(err.str(), "Restarting ...\n");
    EXPECT_EQ(out.str(), "");
}

TEST_F(ConsoleSeatTest, RowsSplashAndEventsPrintNothing) {
    ConsoleSeat& console = Console(true);
    console.RowProgress(3, "Disabling ...");
    console.ShowSplash();
    console.SplashSystem(" System: x");
    console.SplashStatus("Loading Data ...");
    console.SplashProgress("0% Done");
    console.LetEventsRun();
    console.Refresh();
    EXPECT_EQ(out.str() + err.str(), "");
}

class CommandSeatTest : public testing::Test {
 protected:
    FakeSeat inner;
};

TEST_F(CommandSeatTest, PassesEverythingOn) {
    CommandSeat seat(inner, false);
    inner.answers = {BoxAnswer::kYes};
    inner.folderChoice = 4;
    inner.textAnswer = "text";
    EXPECT_EQ(seat.ShowBox("a", "b", BoxIcon::kQuestion, BoxButtons::kYesNoCancel), BoxAnswer::kYes);
    EXPECT_EQ(seat.PickFolder("t", "h", "i", {}), 4U);
    EXPECT_EQ(seat.AskText("t", "p", ""), "text");
    seat.ShowUnsilencedBox("c", "d", BoxIcon::kInformation);
    seat.Warn("w");
    seat.Progress("p");
    seat.RowProgress(3, "r");
    seat.ShowSplash();
    seat.SplashSystem("s");
    seat.SplashStatus("t");
    seat.SplashProgress("u");
    seat.LetEventsRun();
    seat.Refresh();
    EXPECT_THAT(inner.diary,
                ElementsAre("box a", "pick t", "ask", "box c", "warn w", "progress p", "row 3 r", "splash",
                            "system s", "status t", "splash-progress u", "events", "refresh"));
    EXPECT_THAT(inner.boxes,
                ElementsAre(FakeSeat::Box{"a", "b", BoxIcon::kQuestion, BoxButtons::kYesNoCancel, false},
                            FakeSeat::Box{"c", "d", BoxIcon::kInformation, BoxButtons::kOk, true}));
}

TEST_F(CommandSeatTest, SilentModeShowsNothingAndAnswersNo) {
    CommandSeat seat(inner, true);
    inner.answers = {BoxAnswer::kYes};
    inner.folderChoice = 4;
    inner.textAnswer = "text";
    EXPECT_EQ(seat.ShowBox("a", "b", BoxIcon::kQuestion, BoxButtons::kYesNoCancel), BoxAnswer::kNo);
    EXPECT_EQ(seat.ShowBox("a", "b", BoxIcon::kCritical, BoxButtons::kOk), BoxAnswer::kOk);
    EXPECT_EQ(seat.PickFolder("t", "h", "i", {}), std::nullopt);
    EXPECT_EQ(seat.AskText("t", "p", ""), std::nullopt);
    seat.Warn("w");
    seat.Progress("p");
    EXPECT_THAT(inner.diary, IsEmpty());
}

TEST_F(CommandSeatTest, SilentModeShowsUnsilencedBoxes) {
    CommandSeat seat(inner, true);
    seat.ShowUnsilencedBox("ERROR", "text", BoxIcon::kCritical);
    EXPECT_THAT(inner.boxes,
                ElementsAre(FakeSeat::Box{"ERROR", "text", BoxIcon::kCritical, BoxButtons::kOk, true}));
}

TEST_F(CommandSeatTest, CriticalBoxesAreFailuresShownOrNot) {
    CommandSeat loud(inner, false);
    CommandSeat silent(inner, true);
    EXPECT_FALSE(loud.SawFailure());
    EXPECT_FALSE(silent.SawFailure());
    loud.ShowBox("a", "b", BoxIcon::kCritical, BoxButtons::kOk);
    silent.ShowBox("a", "b", BoxIcon::kCritical, BoxButtons::kOk);
    EXPECT_TRUE(loud.SawFailure());
    EXPECT_TRUE(silent.SawFailure());
}

TEST_F(CommandSeatTest, ARefusalIsAFailure) {
    CommandSeat seat(inner, true);
    seat.ShowBox("a", "b", BoxIcon::kExclamation, BoxButtons::kYesNoCancel);
    EXPECT_TRUE(seat.SawFailure());
}

TEST_F(CommandSeatTest, OtherBoxesAreNoFailures) {
    CommandSeat seat(inner, false);
    seat.ShowBox("a", "b", BoxIcon::kInformation, BoxButtons::kOk);
    seat.ShowBox("a", "b", BoxIcon::kQuestion, BoxButtons::kYesNoCancel);
    seat.ShowUnsilencedBox("a", "b", BoxIcon::kInformation);
    EXPECT_FALSE(seat.SawFailure());
    seat.ShowUnsilencedBox("a", "b", BoxIcon::kCritical);
    EXPECT_TRUE(seat.SawFailure());
}

}  // namespace
}  // namespace corvane
