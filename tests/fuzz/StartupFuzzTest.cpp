#include <array>
#include <random>
#include <string>

#include "presets/PresetsFile.h"
#include "startup/Startup.h"
#include "tests/unit/CoreSupport.h"
#include "tests/unit/FileSupport.h"

namespace corvane {
namespace {

using namespace test;

/// Random argument texts. The same seed gives the same texts; CORVANE_SEED takes another one.
class ArgumentTexts {
 public:
    ArgumentTexts() : random_(TestSeed(20261120)) {}

    std::string Next() {
        std::string text;
        const std::size_t length = Below(Below(4) == 0 ? 200 : 30);
        while (text.size() < length) text += Below(3) == 0 ? Word() : Letter();
        return text;
    }

 private:
    std::size_t Below(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
    }

    std::string Letter() {
        static const std::string kLetters =
            "nmrhigdspevlo-/:,. 0123456789NMRHIGDSPEVLO?\t\x80\x9D\xC3\xBC\xFF";
        return kLetters.substr(Below(kLetters.size()), 1);
    }

    /// Pieces that lead deeper than single letters would.
    std::string Word() {
        static const std::array<std::string, 24> kWords = {"-n office", " -n of ",
                                                           "-s ",       " -re ",
                                                           "-di ",      "/rl ",
                                                           " -rn",      " -h ",
                                                           "-r ",       "-m 02:11:22:33:44:55 ",
                                                           "-m ",       "-i 10.0.0.5,10.0.0.6:255.0.0.0 ",
                                                           "-i :,,",    "-g 10.0.0.1:7 ",
                                                           "-g ",       "-d 9.9.9.9, ",
                                                           "-d ,,",     "-p home ",
                                                           "-p ",       "-sv",
                                                           " -ro ",     "-help",
                                                           "?",         "255.255.255.255"};
        return kWords[Below(kWords.size())];
    }

    std::mt19937 random_;
};

/// What the run left behind, to see that every way through was taken.
struct Tally {
    std::array<int, 5> codes{};
    int helps = 0;
    int windows = 0;
};

TEST(StartupFuzz, EveryRunEndsWithAnExitCode) {
    ArgumentTexts texts;
    const TempFolder full;
    const TempFolder empty;
    PresetRecord preset;
    preset.Name = "Home";
    preset.Flags = kPresetMac | kPresetRandomMac;
    WriteBytes(full / "presets.npf", PresetBytes({preset}));
    WriteBytes(full / "VendorNumbers.log", VendorBytes({{"00000C", "Cisco", ""}}));
    Tally tally;
    for (int i = 0; i < 10000; ++i) {
        const std::string text = texts.Next();
        FakeMachine machine;
        machine.AddAdapter(kFirstId, "Office", "0003");
        machine.ipHelper->AddInterface(5, kFirstId);
        machine.shell->panel = {{"Network Connections", true, {{"Office", {"Disa&ble"}}}}};
        machine.registry->readOnly = i % 5 == 0;
        machine.ipHelper->releaseResult = i % 3 == 0 ? Win32Error::kNotSupported : Win32Error::kSuccess;
        machine.host->folder = (i % 4 == 0 ? empty : full).Path();
        int code = -1;
        ASSERT_NO_THROW(
            code = RunStartup(text, {[&](const std::string&) { ++tally.helps; }, [&] { ++tally.windows; }}))
            << testing::PrintToString(text);
        ASSERT_GE(code, 0) << testing::PrintToString(text);
        ASSERT_LE(code, 4) << testing::PrintToString(text);
        ASSERT_EQ(&CurrentSeat(), &machine.seat) << testing::PrintToString(text);
        ++tally.codes[static_cast<std::size_t>(code)];
    }
    for (std::size_t code = 0; code < tally.codes.size(); ++code)
        EXPECT_GT(tally.codes[code], 0) << "exit code " << code;
    EXPECT_GT(tally.helps, 0);
    EXPECT_GT(tally.windows, 0);
}

}  // namespace
}  // namespace corvane
