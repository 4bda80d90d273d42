#include "tests/unit/CoreSupport.h"
#include "ui/logic/OpenPages.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kSite[] = "https://orvella.example/";
constexpr char kUpdates[] = "https://orvella.example/corvane/updates";
constexpr char kDonations[] = "https://orvella.example/corvane/donate";

class OpenPagesTest : public testing::Test {
 protected:
    /// What was opened since the last call.
    std::vector<std::string> Opened() { return std::exchange(machine.shell->diary, {}); }

    static FakeSeat::Box Failure(const std::string& target, const std::string& remedy) {
        return Critical("Orvella Corvane", "Error! Could not open '" + target +
                                               "'.\r\n\r\nDescription: The shell did not answer.\r\n\r\n" +
                                               remedy);
    }
    static FakeSeat::Box PageFailure(const std::string& target) {
        return Failure(target, "Please open it by hand: start your web browser and enter '" + target + "'.");
    }

    FakeMachine machine;
};

TEST_F(OpenPagesTest, HelpIsTheFileInTheProgramFolder) {
    OpenHelp("/opt/nicx/");
    EXPECT_THAT(Opened(), ElementsAre("open /opt/nicx/help.html"));
    OpenHelp("C:\\Program Files\\Corvane\\");
    EXPECT_THAT(Opened(), ElementsAre("open C:\\Program Files\\Corvane\\help.html"));
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(OpenPagesTest, EachCommandOpensItsPage) {
    OpenWebsite();
    EXPECT_THAT(Opened(), ElementsAre(std::string("open ") + kSite));
    OpenUpdates();
    EXPECT_THAT(Opened(), ElementsAre(std::string("open ") + kUpdates));
    OpenDonations();
    EXPECT_THAT(Opened(), ElementsAre(std::string("open ") + kDonations));
    OpenMail();
    EXPECT_THAT(Opened(), ElementsAre("open mailto:corvane@orvella.example"));
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(OpenPagesTest, WhatCannotBeOpenedIsShownOnceWithTheReasonAndTheWayByHand) {
    machine.shell->failingCall = "OpenDocument";
    OpenHelp("/opt/nicx/");
    OpenWebsite();
    OpenUpdates();
    OpenDonations();
    OpenMail();
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(PageFailure("/opt/nicx/help.html"), PageFailure(kSite), PageFailure(kUpdates),
                            PageFailure(kDonations),
                            Failure("mailto:corvane@orvella.example",
                                    "Please write by hand: start your mail program and send your mail to "
                                    "'corvane@orvella.example'.")));
    EXPECT_EQ(Opened().size(), 5U);
}

}  // namespace
}  // namespace corvane
