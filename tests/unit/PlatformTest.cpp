#include <memory>

#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "platform/Platform.h"
#include "platform/Seat.h"

namespace corvane {
namespace {

Platform PlatformWithClock(std::shared_ptr<ClockApi> clock) {
    Platform platform;
    platform.clock = std::move(clock);
    return platform;
}

TEST(InstalledPlatform, AScopePutsTheFormerOneBack) {
    const auto outer = std::make_shared<FakeClock>();
    const auto inner = std::make_shared<FakeClock>();
    const ScopedPlatform outerScope(PlatformWithClock(outer));
    {
        const ScopedPlatform innerScope(PlatformWithClock(inner));
        EXPECT_EQ(CurrentPlatform().clock, inner);
    }
    EXPECT_EQ(CurrentPlatform().clock, outer);
}

TEST(InstalledPlatform, AScopeEndsWhateverWasInstalledInIt) {
    const auto former = CurrentPlatform().clock;
    const auto installed = std::make_shared<FakeClock>();
    {
        const ScopedPlatform scope(Platform{});
        InstallPlatform(PlatformWithClock(installed));
        EXPECT_EQ(CurrentPlatform().clock, installed);
    }
    EXPECT_EQ(CurrentPlatform().clock, former);
}

TEST(InstalledSeat, InstallingReturnsTheFormerSeat) {
    FakeSeat first;
    FakeSeat second;
    Seat* const original = InstallSeat(&first);
    EXPECT_EQ(InstallSeat(&second), &first);
    EXPECT_EQ(&CurrentSeat(), &second);
    EXPECT_EQ(InstallSeat(original), &second);
    EXPECT_EQ(&CurrentSeat(), original);
}

TEST(InstalledSeat, AScopePutsTheFormerOneBack) {
    Seat* const original = &CurrentSeat();
    FakeSeat seat;
    {
        const ScopedSeat scope(seat);
        EXPECT_EQ(&CurrentSeat(), &seat);
    }
    EXPECT_EQ(&CurrentSeat(), original);
}

TEST(InstalledSeat, WithoutASeatThereIsNobodyWhoAnswersNo) {
    EXPECT_EQ(CurrentSeat().ShowBox("", "", BoxIcon::kQuestion, BoxButtons::kYesNoCancel), BoxAnswer::kNo);
    EXPECT_EQ(CurrentSeat().ShowBox("", "", BoxIcon::kCritical, BoxButtons::kOk), BoxAnswer::kOk);
    EXPECT_EQ(CurrentSeat().AskText("", "", "preset"), std::nullopt);
    EXPECT_EQ(CurrentSeat().PickFolder("", "", "", {"folder"}), std::nullopt);
}

TEST(InstalledSeat, AnUnsilencedBoxIsAnOkBoxUnlessTheSeatSaysOtherwise) {
    struct PlainSeat : NullSeat {
        BoxAnswer ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                          BoxButtons buttons) override {
            shown = {title, text, icon, buttons};
            return BoxAnswer::kOk;
        }
        FakeSeat::Box shown;
    } seat;
    seat.ShowUnsilencedBox("Title", "Text", BoxIcon::kExclamation);
    EXPECT_EQ(seat.shown, (FakeSeat::Box{"Title", "Text", BoxIcon::kExclamation, BoxButtons::kOk, false}));
}

}  // namespace
}  // namespace corvane
