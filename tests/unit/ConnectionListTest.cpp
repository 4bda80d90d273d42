#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "inventory/NicInfo.h"
#include "tests/unit/ConnectionRowSupport.h"
#include "ui/logic/ConnectionList.h"

namespace corvane {

namespace {

using test::kNotFoundRow;
using testing::ElementsAre;
using testing::Optional;
using testing::SizeIs;

/// The window: what it was told, in order, and what it shows.
class RecordingView : public ConnectionListView {
 public:
    std::vector<std::string> diary;
    std::vector<ConnectionRow> shownRows;
    Details shownDetails;
    std::function<void(const std::string& call)> onCall;

    void ShowPlaceholder(const ConnectionRow& row) override {
        shownRows.push_back(row);
        Note("placeholder", row.texts[0]);
    }
    void ShowRows(const std::vector<ConnectionRow>& rows) override {
        shownRows = rows;
        Note("rows", std::to_string(rows.size()));
    }
    void SelectRow(std::size_t row) override { Note("select", std::to_string(row)); }
    void ShowDetails(const Details& details) override {
        shownDetails = details;
        Note("details", details == Details() ? "cleared" : details.txtConnName);
    }

 private:
    void Note(const std::string& call, const std::string& what) {
        diary.push_back(call + " " + what);
        if (onCall) onCall(call);
    }
};

class ConnectionListTest : public testing::Test {
 protected:
    /// An adapter whose record number follows from the order of the ids.
    void Add(const std::string& letter, const std::string& name) {
        machine_.AddAdapter("{" + letter + "}", name, "000" + std::to_string(++driverKeys_));
    }
    void Remove(const std::string& letter) {
        machine_.registry->RemoveKey(kAdaptersKey + ("\\{" + letter + "}"));
    }
    void AddFour() {
        for (const char* letter : {"B", "C", "D", "E"}) Add(letter, std::string("eth") + letter);
    }
    /// Refreshes and gives what the window was told.
    std::vector<std::string> Refresh() {
        view_.diary.clear();
        list_.Refresh();
        return view_.diary;
    }

    FakeMachine machine_;
    RecordingView view_;
    ConnectionList list_{view_};

 private:
    int driverKeys_ = 0;
};

TEST_F(ConnectionListTest, HasNoSelectionBeforeTheFirstRefresh) {
    EXPECT_EQ(list_.Selected(), std::nullopt);
    EXPECT_EQ(list_.SelectedRow(), std::nullopt);
    list_.Select(0);
    EXPECT_TRUE(view_.diary.empty());
    list_.ShowSelected();
    EXPECT_THAT(view_.diary, ElementsAre("details cleared"));
}

TEST_F(ConnectionListTest, ARefreshTellsTheWindowStepByStep) {
    AddFour();
    EXPECT_THAT(Refresh(), ElementsAre("placeholder Refreshing ...", "rows 4", "details cleared", "select 0",
                                       "details ethB"));
}

TEST_F(ConnectionListTest, ThePlaceholderIsARowForNoConnection) {
    std::optional<ConnectionRow> placeholder;
    view_.onCall = [&](const std::string& call) {
        if (call == "placeholder") placeholder = view_.shownRows.back();
    };
    Refresh();
    EXPECT_THAT(placeholder, Optional(ConnectionRow{{"Refreshing ...", "", "", " ", " "}, std::nullopt}));
}

TEST_F(ConnectionListTest, TheAdaptersAreReadOnceBetweenThePlaceholderAndTheRows) {
    AddFour();
    std::vector<std::string> seen;
    view_.onCall = [&](const std::string& call) {
        seen.push_back(call + " after " + std::to_string(machine_.ipHelper->diary.size()));
    };
    Refresh();
    ASSERT_THAT(machine_.ipHelper->diary, SizeIs(3));
    EXPECT_THAT(seen, ElementsAre("placeholder after 0", "rows after 3", "details after 3", "select after 3",
                                  "details after 3"));
}

TEST_F(ConnectionListTest, ARefreshReplacesTheRows) {
    AddFour();
    Refresh();
    Refresh();
    EXPECT_EQ(view_.shownRows, ConnectionRows());
    EXPECT_THAT(view_.shownRows, SizeIs(4));
}

TEST_F(ConnectionListTest, TheDetailsAreThoseOfTheRowsOwnRecord) {
    Add("B", "");
    Add("C", "ethC");
    Refresh();
    EXPECT_THAT(list_.Selected(), Optional(1U));
    EXPECT_THAT(list_.SelectedRow(), Optional(0U));
    EXPECT_EQ(view_.shownDetails, FillDetails(Nics[1]));
    EXPECT_EQ(view_.shownDetails.txtConnName, "ethC");
    EXPECT_EQ(view_.shownDetails.labSpeed, "Disabled");
    EXPECT_EQ(view_.shownDetails.title, "Network Connection Details");
}

TEST_F(ConnectionListTest, TheFirstConnectionIsSelectedAtFirst) {
    AddFour();
    Refresh();
    EXPECT_THAT(list_.Selected(), Optional(0U));
    EXPECT_THAT(list_.SelectedRow(), Optional(0U));
}

TEST_F(ConnectionListTest, AChosenRowShowsItsDetailsAndMovesNothing) {
    AddFour();
    Refresh();
    view_.diary.clear();
    list_.Select(2);
    EXPECT_THAT(view_.diary, ElementsAre("details ethD"));
    EXPECT_THAT(list_.Selected(), Optional(2U));
    EXPECT_THAT(list_.SelectedRow(), Optional(2U));
}

TEST_F(ConnectionListTest, AChosenRowIsNotARecordNumber) {
    Add("B", "");
    Add("C", "ethC");
    Add("D", "");
    Add("E", "ethE");
    Refresh();
    list_.Select(1);
    EXPECT_THAT(list_.Selected(), Optional(3U));
    EXPECT_THAT(list_.SelectedRow(), Optional(1U));
    EXPECT_EQ(view_.shownDetails.txtConnName, "ethE");
    EXPECT_EQ(Refresh().back(), "details ethE");
    EXPECT_THAT(list_.Selected(), Optional(3U));
}

TEST_F(ConnectionListTest, ARowBeyondTheLastChangesNothing) {
    AddFour();
    Refresh();
    list_.Select(1);
    view_.diary.clear();
    list_.Select(4);
    EXPECT_TRUE(view_.diary.empty());
    EXPECT_THAT(list_.Selected(), Optional(1U));
}

TEST_F(ConnectionListTest, ShowingTheSelectedAnewTakesNicsAsTheyAre) {
    AddFour();
    Refresh();
    list_.Select(1);
    view_.diary.clear();
    const std::size_t reads = machine_.registry->diary.size();
    Nics[1].DriverDesc = "Another Model";
    list_.ShowSelected();
    EXPECT_THAT(view_.diary, ElementsAre("details ethC"));
    EXPECT_EQ(view_.shownDetails.txtDevName, "Another Model");
    EXPECT_EQ(machine_.registry->diary.size(), reads);
}

// ---- keeping the selection

TEST_F(ConnectionListTest, TheSelectionOutlivesRefreshes) {
    AddFour();
    Refresh();
    list_.Select(2);
    for (int i = 0; i < 2; ++i) {
        EXPECT_THAT(Refresh(), ElementsAre("placeholder Refreshing ...", "rows 4", "details cleared",
                                           "select 2", "details ethD"));
        EXPECT_THAT(list_.Selected(), Optional(2U));
    }
}

TEST_F(ConnectionListTest, ALinkThatComesInFrontDoesNotMoveTheSelection) {
    AddFour();
    Refresh();
    list_.Select(2);
    Add("A", "ethA");
    for (int i = 0; i < 2; ++i) {
        Refresh();
        EXPECT_EQ(view_.shownDetails.txtConnName, "ethD");
        EXPECT_THAT(list_.Selected(), Optional(3U));
        EXPECT_THAT(list_.SelectedRow(), Optional(3U));
    }
}

TEST_F(ConnectionListTest, ALinkThatGoesInFrontDoesNotMoveTheSelection) {
    AddFour();
    Refresh();
    list_.Select(2);
    Remove("B");
    Refresh();
    EXPECT_EQ(view_.shownDetails.txtConnName, "ethD");
    EXPECT_THAT(list_.Selected(), Optional(1U));
}

TEST_F(ConnectionListTest, WhenTheSelectedLinkIsGoneTheRowOfItsRecordNumberIsSelected) {
    Add("A", "");
    AddFour();
    Refresh();
    list_.Select(1);
    ASSERT_THAT(list_.Selected(), Optional(2U));
    Remove("C");
    Refresh();
    EXPECT_EQ(view_.shownDetails.txtConnName, "ethD");
    EXPECT_THAT(list_.Selected(), Optional(2U));
    EXPECT_THAT(list_.SelectedRow(), Optional(1U));
}

TEST_F(ConnectionListTest, WhenTheSelectedLinkIsGoneWithItsRecordNumberTheFirstRowIsSelected) {
    AddFour();
    Refresh();
    list_.Select(3);
    Remove("E");
    Refresh();
    EXPECT_EQ(view_.shownDetails.txtConnName, "ethB");
    EXPECT_THAT(list_.Selected(), Optional(0U));
}

TEST_F(ConnectionListTest, WhenTheRecordNumberBelongsToNoNameTheFirstRowIsSelected) {
    AddFour();
    Refresh();
    list_.Select(1);
    Remove("C");
    machine_.registry->SetText(ConnectionKey("{D}"), "Name", "");
    Refresh();
    EXPECT_EQ(view_.shownDetails.txtConnName, "ethB");
    EXPECT_THAT(list_.Selected(), Optional(0U));
}

TEST_F(ConnectionListTest, ALinkThatLostItsNameIsGone) {
    AddFour();
    Refresh();
    list_.Select(3);
    machine_.registry->SetText(ConnectionKey("{E}"), "Name", "");
    Refresh();
    EXPECT_EQ(view_.shownDetails.txtConnName, "ethB");
}

TEST_F(ConnectionListTest, ARenamedLinkStaysSelected) {
    AddFour();
    Refresh();
    list_.Select(2);
    machine_.registry->SetText(ConnectionKey("{D}"), "Name", "renamed");
    Refresh();
    EXPECT_EQ(view_.shownDetails.txtConnName, "renamed");
}

TEST_F(ConnectionListTest, TheLinkThatTookOverTheSelectionKeepsItWhenTheFormerOneIsBack) {
    AddFour();
    Refresh();
    list_.Select(1);
    Remove("C");
    Refresh();
    ASSERT_EQ(view_.shownDetails.txtConnName, "ethD");
    Add("C", "ethC");
    Refresh();
    EXPECT_EQ(view_.shownDetails.txtConnName, "ethD");
    EXPECT_THAT(list_.Selected(), Optional(2U));
}

// ---- no connections

TEST_F(ConnectionListTest, WithoutConnectionsTheOneRowStandsForNothing) {
    EXPECT_THAT(Refresh(), ElementsAre("placeholder Refreshing ...", "rows 1", "details cleared", "select 0",
                                       "details cleared"));
    EXPECT_THAT(view_.shownRows, ElementsAre(kNotFoundRow));
    EXPECT_EQ(list_.Selected(), std::nullopt);
    EXPECT_EQ(list_.SelectedRow(), std::nullopt);
    view_.diary.clear();
    list_.Select(0);
    EXPECT_THAT(view_.diary, ElementsAre("details cleared"));
    EXPECT_EQ(list_.Selected(), std::nullopt);
}

TEST_F(ConnectionListTest, TheSelectionIsFoundAgainAfterAllConnectionsWereGone) {
    AddFour();
    Refresh();
    list_.Select(2);
    for (const char* letter : {"B", "C", "D", "E"}) Remove(letter);
    Refresh();
    EXPECT_THAT(view_.shownRows, ElementsAre(kNotFoundRow));
    EXPECT_EQ(view_.shownDetails, Details());
    EXPECT_EQ(list_.Selected(), std::nullopt);
    EXPECT_EQ(list_.SelectedRow(), std::nullopt);
    list_.Select(0);
    Add("A", "ethA");
    AddFour();
    Refresh();
    EXPECT_EQ(view_.shownDetails.txtConnName, "ethD");
    EXPECT_THAT(list_.Selected(), Optional(3U));
}

// ---- while the adapters are read

/// Lets things happen while an error box is up.
class BusySeat : public NullSeat {
 public:
    std::function<void()> onBox;
    int boxes = 0;

    BoxAnswer ShowBox(const std::string&, const std::string&, BoxIcon, BoxButtons) override {
        ++boxes;
        onBox();
        return BoxAnswer::kOk;
    }
};

TEST_F(ConnectionListTest, NothingIsSelectedNorCanBeWhileTheAdaptersAreRead) {
    AddFour();
    Refresh();
    list_.Select(2);
    BusySeat seat;
    seat.onBox = [&] {
        EXPECT_EQ(list_.Selected(), std::nullopt);
        EXPECT_EQ(list_.SelectedRow(), std::nullopt);
        list_.Select(1);
        EXPECT_EQ(list_.Selected(), std::nullopt);
    };
    const ScopedSeat scope(seat);
    machine_.ipHelper->interfacesOutcome = FakeIpHelper::Outcome::kFailed;
    EXPECT_THAT(Refresh(), ElementsAre("placeholder Refreshing ...", "rows 4", "details cleared", "select 2",
                                       "details ethD"));
    EXPECT_EQ(seat.boxes, 1);
    EXPECT_THAT(list_.Selected(), Optional(2U));
}

TEST_F(ConnectionListTest, AChoiceMadeWhileThePlaceholderIsPaintedCounts) {
    AddFour();
    Refresh();
    view_.onCall = [&](const std::string& call) {
        if (call == "placeholder") list_.Select(3);
    };
    Refresh();
    EXPECT_THAT(list_.Selected(), Optional(3U));
    EXPECT_EQ(view_.shownDetails.txtConnName, "ethE");
}

}  // namespace
}  // namespace corvane
