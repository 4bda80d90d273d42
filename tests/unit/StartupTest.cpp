#include <new>

#include "base/RunTimeError.h"
#include "mac/SetConnectionState.h"
#include "platform/RegistryKeys.h"
#include "platform/RegistryValues.h"
#include "presets/PresetsFile.h"
#include "startup/CommandLine.h"
#include "startup/Startup.h"
#include "tests/unit/CoreSupport.h"
#include "tests/unit/TempFolder.h"
#include "vendors/VendorList.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kFolderNameRead[] = "read SOFTWARE\\Orvella\\Corvane_v4\\NetworkFolderName";

/// One connection, both data files in the program folder. The main window and the help stand in the seat's
/// diary.
class StartupTest : public testing::Test {
 protected:
    StartupTest() {
        machine.AddAdapter(kFirstId, "Office", "0003");
        machine.host->folder = folder.Path();
        machine.host->identity.readyDescription = "Linux";
        PresetRecord preset;
        preset.Name = "Home";
        preset.Flags = kPresetDhcp;
        WriteBytes(folder / "presets.npf", PresetBytes({preset}));
        WriteBytes(folder / "VendorNumbers.log", VendorBytes({{"00000C", "Cisco", "Somewhere"}}));
    }

    int Run(const std::string& text) {
        return RunStartup(text, {[this](const std::string& help) {
                                     diary.emplace_back("help");
                                     shownHelp = help;
                                 },
                                 [this] {
                                     diary.emplace_back("main window");
                                     if (onMainWindow) onMainWindow();
                                 }});
    }

    void BecomeWindows98() {
        machine.host->identity.readyDescription.clear();
        machine.host->identity.platformId = 1;
        machine.host->identity.majorVersion = 4;
        machine.host->identity.minorVersion = 10;
        machine.host->identity.buildNumber = 2222;
    }

    [[nodiscard]] static FakeSeat::Box ErrorBox(const std::string& description, int number) {
        return {"ERROR",
                "ERROR! This may be caused due to invalid command line parameters. Please check command line "
                "paramaters if passed.\r\n\r\nDescription: " +
                    description + " (" + std::to_string(number) + ")\r\n\r\nClick OK to Quit",
                BoxIcon::kCritical, BoxButtons::kOk, true};
    }

    /// The one box shown is the "ERROR" box of a missing file of the program folder.
    void ExpectMissingFile(const std::string& name) {
        ASSERT_EQ(machine.seat.boxes.size(), 1U);
        const FakeSeat::Box& box = machine.seat.boxes[0];
        EXPECT_EQ(box.title, "ERROR");
        EXPECT_TRUE(box.unsilenced);
        EXPECT_EQ(box.icon, BoxIcon::kCritical);
        EXPECT_THAT(box.text, testing::StartsWith("ERROR! This may be caused due to invalid command line "
                                                  "parameters. Please check command line paramaters if "
                                                  "passed.\r\n\r\nDescription: "));
        EXPECT_THAT(box.text, testing::HasSubstr(folder / name));
        EXPECT_THAT(box.text, testing::EndsWith(" (53)\r\n\r\nClick OK to Quit"));
    }

    FakeMachine machine;
    TempFolder folder;
    std::vector<std::string>& diary = machine.seat.diary;
    std::string shownHelp;
    std::function<void()> onMainWindow;
};

TEST_F(StartupTest, WindowModeGoesThroughItsStepsInOrder) {
    EXPECT_EQ(Run(""), 0);
    EXPECT_THAT(diary, ElementsAre("system  System: Linux", "splash", "events", "status Loading Data ...",
                                   "events", "main window", "events"));
    EXPECT_THAT(machine.registry->diary, ElementsAre(kFolderNameRead));
}

TEST_F(StartupTest, MainWindowFindsEverythingLoaded) {
    machine.registry->SetText(kProgramKey, kNetworkFolderValue, "netzwerkverbindungen");
    onMainWindow = [this] {
        EXPECT_EQ(ProgramFolder, folder / "");
        EXPECT_EQ(OsDescription.description, "Linux");
        EXPECT_EQ(NetworkFolderName, "netzwerkverbindungen");
        ASSERT_EQ(Presets().size(), 1U);
        EXPECT_EQ(Presets()[0].Name, "Home");
        ASSERT_EQ(Vendors().Size(), 1U);
        EXPECT_EQ(Vendors().Record(0), (VendorRecord{"00000C", "Cisco", "Somewhere"}));
        EXPECT_FALSE(ShortVendorList);
        EXPECT_FALSE(ResetOriginalMac);
    };
    EXPECT_EQ(Run(""), 0);
    EXPECT_THAT(diary, testing::Contains("main window"));
}

TEST_F(StartupTest, ProgramFolderGetsASeparator) {
    machine.host->folder = "C:\\Program Files\\NICX";
    machine.host->separator = '\\';
    Run("-s");
    EXPECT_EQ(ProgramFolder, "C:\\Program Files\\NICX\\");
}

TEST_F(StartupTest, ProgramFolderOfADriveRootGetsNoSecondSeparator) {
    machine.host->folder = "C:\\";
    machine.host->separator = '\\';
    Run("-s");
    EXPECT_EQ(ProgramFolder, "C:\\");
}

TEST_F(StartupTest, ProgramFolderOfTheFileSystemRootGetsNoSecondSeparator) {
    machine.host->folder = "/";
    Run("-s");
    EXPECT_EQ(ProgramFolder, "/");
}

TEST_F(StartupTest, HelpIsShownAndNothingElseHappens) {
    for (const std::string form : {"-help", "help", "/help", "?", "/?", "/", "-"}) {
        diary.clear();
        shownHelp.clear();
        EXPECT_EQ(Run(form), 0) << form;
        EXPECT_THAT(diary, ElementsAre("help")) << form;
        EXPECT_EQ(shownHelp, CommandLineHelp()) << form;
    }
    EXPECT_THAT(machine.registry->diary, IsEmpty());
}

TEST_F(StartupTest, InvalidParameterEndsTheRun) {
    EXPECT_EQ(Run("-n office -h -Foo bar -re"), 2);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(FakeSeat::Box{"Invalid Parameter - Orvella Corvane v4",
                                                              "ERROR! Invalid paramater : Foo",
                                                              BoxIcon::kCritical, BoxButtons::kOk, true}));
    EXPECT_EQ(diary.size(), 1U);
    EXPECT_THAT(machine.registry->diary, IsEmpty());
}

TEST_F(StartupTest, InvalidParameterIsShownInSilentModeToo) {
    EXPECT_EQ(Run("-s -m 00-11-22-33-44-55"), 2);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(FakeSeat::Box{"Invalid Parameter - Orvella Corvane v4",
                                                              "ERROR! Invalid paramater : 11",
                                                              BoxIcon::kCritical, BoxButtons::kOk, true}));
}

TEST_F(StartupTest, InvalidParameterEndsAWindowRunToo) {
    EXPECT_EQ(Run("-sv -ro -foo"), 2);
    EXPECT_THAT(diary, ElementsAre("box Invalid Parameter - Orvella Corvane v4"));
}

TEST_F(StartupTest, ActionModeNeverShowsTheSplashWindow) {
    EXPECT_EQ(Run("-n office"), 0);
    EXPECT_THAT(diary, ElementsAre("system  System: Linux", "status Loading Data ...", "events",
                                   "box Done - Orvella Corvane v4"));
}

TEST_F(StartupTest, ActionModeReadsTheFolderNameFirst) {
    machine.registry->SetText(kProgramKey, kNetworkFolderValue, "netzwerkverbindungen");
    machine.shell->panel = {{"Netzwerkverbindungen", true, {{"Office", {"Disa&ble"}}}}};
    EXPECT_EQ(Run("-n office -di"), 0);
    EXPECT_EQ(machine.registry->diary.front(), kFolderNameRead);
    EXPECT_THAT(machine.shell->diary, ElementsAre("verb Disa&ble of Office"));
}

TEST_F(StartupTest, ActionModeHandsItsExitCodeOn) {
    EXPECT_EQ(Run("-s"), 2);
    EXPECT_EQ(Run("-n garage"), 3);
    machine.registry->readOnly = true;
    EXPECT_EQ(Run("-n office -h"), 1);
}

TEST_F(StartupTest, SilentWithoutAConnectionEndsWithoutAnyMessage) {
    EXPECT_EQ(Run("-s"), 2);
    EXPECT_THAT(machine.seat.boxes, IsEmpty());
}

TEST_F(StartupTest, ShortVendorListOpensTheWindowAndActsOnNothingElse) {
    EXPECT_EQ(Run("-n office -h -m 021122334455 -re -sv"), 0);
    EXPECT_THAT(diary, ElementsAre("system  System: Linux", "splash", "events", "status Loading Data ...",
                                   "events", "main window", "events"));
    EXPECT_TRUE(ShortVendorList);
    EXPECT_FALSE(ResetOriginalMac);
    EXPECT_THAT(machine.registry->diary, ElementsAre(kFolderNameRead));
    EXPECT_THAT(machine.shell->diary, IsEmpty());
}

TEST_F(StartupTest, ResetOfTheOriginalAddressesOpensTheWindow) {
    EXPECT_EQ(Run("-ro -s -n office -h"), 0);
    EXPECT_THAT(diary, testing::Contains("splash"));
    EXPECT_THAT(diary, testing::Contains("main window"));
    EXPECT_TRUE(ResetOriginalMac);
    EXPECT_FALSE(ShortVendorList);
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(StartupTest, MissingFolderNameIsNoError) {
    NetworkFolderName = "as it was";
    EXPECT_EQ(Run(""), 0);
    EXPECT_EQ(NetworkFolderName, "as it was");
    EXPECT_THAT(machine.seat.boxes, IsEmpty());
}

TEST_F(StartupTest, UnreadableFolderNameIsNoError) {
    machine.registry->SetText(kProgramKey, kNetworkFolderValue, "x");
    machine.registry->fail = [](const std::string&, const std::string&, const std::string&) {
        return Win32Error::kRegistryCorrupt;
    };
    EXPECT_EQ(Run(""), 0);
    EXPECT_EQ(NetworkFolderName, "");
    EXPECT_THAT(machine.seat.boxes, IsEmpty());
}

TEST_F(StartupTest, Windows9xIsRefused) {
    BecomeWindows98();
    EXPECT_EQ(Run("-n office -h"), 4);
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(Critical(
                    "Current Windows Version Not Supported",
                    "We are sorry to inform you that Orvella Corvane (NICX) v4 cannot run on Windows 9X "
                    "versions.\r\n\r\nThe Windows version you are running is 'Windows 98SE   (v4.10, Build "
                    "2222)' is not supported.\r\n\r\nClick OK to quit.")));
    EXPECT_THAT(machine.registry->diary, IsEmpty());
}

TEST_F(StartupTest, Windows9xIsRefusedSilentlyInSilentMode) {
    BecomeWindows98();
    EXPECT_EQ(Run("-n office -h -s"), 4);
    EXPECT_THAT(diary, ElementsAre("system  System: Windows 98SE   (v4.10, Build 2222)"));
    EXPECT_THAT(machine.registry->diary, IsEmpty());
}

TEST_F(StartupTest, Windows9xIsRefusedBehindTheSplashWindow) {
    BecomeWindows98();
    EXPECT_EQ(Run(""), 4);
    EXPECT_THAT(diary, ElementsAre("system  System: Windows 98SE   (v4.10, Build 2222)", "splash", "events",
                                   "box Current Windows Version Not Supported"));
}

TEST_F(StartupTest, HelpIsShownOnWindows9xToo) {
    BecomeWindows98();
    EXPECT_EQ(Run("-help"), 0);
    EXPECT_THAT(diary, ElementsAre("help"));
}

TEST_F(StartupTest, PresetsFileOfNoPresetsGivesOneEmptyPreset) {
    WriteBytes(folder / "presets.npf", Little(0, 4));
    EXPECT_EQ(Run(""), 0);
    EXPECT_THAT(Presets(), ElementsAre(PresetRecord()));
    EXPECT_THAT(diary, testing::Contains("main window"));
}

TEST_F(StartupTest, MissingPresetsFileEndsWindowModeBeforeTheMainWindow) {
    std::filesystem::remove(folder / "presets.npf");
    EXPECT_EQ(Run(""), 4);
    ExpectMissingFile("presets.npf");
    EXPECT_THAT(diary, ElementsAre("system  System: Linux", "splash", "events", "status Loading Data ...",
                                   "events", "box ERROR"));
}

TEST_F(StartupTest, MissingVendorFileEndsWindowModeBeforeTheMainWindow) {
    std::filesystem::remove(folder / "VendorNumbers.log");
    EXPECT_EQ(Run("-sv"), 4);
    ExpectMissingFile("VendorNumbers.log");
    EXPECT_THAT(diary, testing::Not(testing::Contains("main window")));
}

TEST_F(StartupTest, VendorFileOfNoRecordsEndsWindowMode) {
    WriteBytes(folder / "VendorNumbers.log", Little(0, 4));
    EXPECT_EQ(Run(""), 4);
    ASSERT_EQ(machine.seat.boxes.size(), 1U);
    EXPECT_THAT(machine.seat.boxes[0].text, testing::HasSubstr(" (9)\r\n\r\nClick OK to Quit"));
}

TEST_F(StartupTest, ShortVendorFileEndsWindowMode) {
    WriteBytes(folder / "VendorNumbers.log", Little(2, 4) + "00000C" + Sized("Cisco") + Sized(""));
    EXPECT_EQ(Run(""), 4);
    ASSERT_EQ(machine.seat.boxes.size(), 1U);
    EXPECT_THAT(machine.seat.boxes[0].text, testing::HasSubstr(" (62)\r\n\r\nClick OK to Quit"));
}

TEST_F(StartupTest, MissingPresetsFileEndsARunWithAPresetInSilentModeToo) {
    std::filesystem::remove(folder / "presets.npf");
    EXPECT_EQ(Run("-s -n office -h -p home"), 4);
    ExpectMissingFile("presets.npf");
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(StartupTest, MissingVendorFileEndsARunWithARandomMacInSilentModeToo) {
    std::filesystem::remove(folder / "VendorNumbers.log");
    EXPECT_EQ(Run("-s -n office -r"), 4);
    ExpectMissingFile("VendorNumbers.log");
    EXPECT_THAT(machine.registry->writes, IsEmpty());
}

TEST_F(StartupTest, ActionModeNeedsNoDataFileOtherwise) {
    std::filesystem::remove(folder / "presets.npf");
    std::filesystem::remove(folder / "VendorNumbers.log");
    EXPECT_EQ(Run("-n office -h"), 0);
}

TEST_F(StartupTest, SeatIsPutBackAfterAnErrorInActionMode) {
    std::filesystem::remove(folder / "presets.npf");
    EXPECT_EQ(Run("-s -n office -p home"), 4);
    EXPECT_EQ(&CurrentSeat(), &machine.seat);
}

TEST_F(StartupTest, RunTimeErrorOfTheMainWindowEndsInTheErrorBox) {
    onMainWindow = [] { throw RunTimeError(RunTimeError::kDivisionByZero, "Division by zero"); };
    EXPECT_EQ(Run(""), 4);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(ErrorBox("Division by zero", 11)));
}

TEST_F(StartupTest, LackOfMemoryEndsInTheErrorBox) {
    onMainWindow = [] { throw std::bad_alloc(); };
    EXPECT_EQ(Run(""), 4);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(ErrorBox("Out of memory", 7)));
}

TEST_F(StartupTest, AnyOtherFaultEndsInTheErrorBox) {
    onMainWindow = [] { throw std::runtime_error("something else"); };
    EXPECT_EQ(Run(""), 4);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(ErrorBox("something else", 51)));
}

TEST_F(StartupTest, AFaultWithoutWordsEndsInTheErrorBox) {
    onMainWindow = [] { throw 7; };
    EXPECT_EQ(Run(""), 4);
    EXPECT_THAT(machine.seat.boxes, ElementsAre(ErrorBox("unknown", 51)));
}

}  // namespace
}  // namespace corvane
