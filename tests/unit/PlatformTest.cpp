#include <memory>
#include <string>
#include <vector>

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

TEST(InstalledPlatform, RolesThatNobodyInstalledSayThatThereIsNoPlatform) {
    const ScopedPlatform scope(Platform{});
    const Platform& none = CurrentPlatform();
    EXPECT_EQ(none.registry->ReadValue(kHkeyLocalMachine, "", "").code, Win32Error::kCantRead);
    EXPECT_EQ(none.registry->WriteValue(kHkeyLocalMachine, "", "", {}), Win32Error::kCantWrite);
    EXPECT_EQ(none.registry->DeleteValue(kHkeyLocalMachine, "", ""), Win32Error::kCantWrite);
    EXPECT_EQ(none.registry->CreateKey(kHkeyLocalMachine, ""), Win32Error::kCantWrite);
    std::vector<std::string> names;
    EXPECT_EQ(none.registry->EnumSubkeys(kHkeyLocalMachine, "", names), Win32Error::kCantRead);
    { const RegistryReading reading; }
    EXPECT_EQ(none.ipHelper->GetInterfaceInfo().outcome, TableRead<InterfaceEntry>::Outcome::kFailed);
    EXPECT_EQ(none.ipHelper->GetIpAddrTable().code, Win32Error::kNotSupported);
    EXPECT_EQ(none.ipHelper->GetIpForwardTable().code, Win32Error::kNotSupported);
    EXPECT_EQ(none.ipHelper->DeleteIPAddress(1), Win32Error::kNotSupported);
    EXPECT_EQ(none.ipHelper->SystemText(Win32Error::kSuccess), "");
    std::vector<ShellItem> items;
    EXPECT_EQ(none.shell->ControlPanelItems(items), Refusal("No platform is installed."));
    EXPECT_EQ(none.nameServers->PutInForce(""), Refusal("No platform is installed."));
    none.clock->Sleep(60000);
    EXPECT_EQ(none.clock->LocalTime().year, 1970);
    EXPECT_EQ(none.host->ProgramFolder(), ".");
    EXPECT_FALSE(none.changes->TakeChanges());
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
