#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/Paths.h"
#include "tests/fuzz/Damage.h"
#include "tests/fuzz/Targets.h"
#include "tests/unit/FileSupport.h"

/// The fuzzers' checks over their seeds and over copies of them that are damaged in the same way in every
/// run, unless CORVANE_SEED says otherwise. Needs no clang, and finds at once what a run of the fuzzers found
/// before.
namespace corvane::fuzz {
namespace {

constexpr int kRounds = 6000;
constexpr std::size_t kLongestToCut = 4096;

struct Target {
    const char* name;
    bool (*check)(std::string_view);
    bool hasHead;  ///< Begins with words that bytes by chance do not begin with.
};

constexpr Target kTargets[] = {
    {"vendor_file", CheckVendorFile, false},
    {"presets_file", CheckPresetsFile, false},
    {"reg_file", CheckRegFile, true},
    {"command_line", CheckCommandLine, false},
    {"netlink_answer", CheckNetlinkAnswer, false},
    {"dhcp_hook", CheckDhcpHook, true},
    {"dhcp_request", CheckDhcpRequest, true},
};

const std::filesystem::path kFolder = CORVANE_SOURCE_DIR "/tests/fuzz";

void PrintTo(const Target& target, std::ostream* out) { *out << target.name; }

/// The words of a dictionary as libFuzzer reads it: one in quotation marks a line, "\xNN", "\\" and "\"".
std::vector<std::string> Words(const std::string& target) {
    std::vector<std::string> words;
    std::ifstream file(kFolder / "dictionaries" / (target + ".dict"));
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with('"')) continue;
        std::string word;
        for (std::size_t i = 1; i + 1 < line.size(); ++i) {
            if (line[i] != '\\') {
                word += line[i];
            } else if (line[i + 1] == 'x') {
                word += static_cast<char>(std::stoi(line.substr(i + 2, 2), nullptr, 16));
                i += 3;
            } else {
                word += line[++i];
            }
        }
        words.push_back(word);
    }
    return words;
}

class Seeds : public testing::TestWithParam<Target> {
 protected:
    void SetUp() override {
        for (const auto& entry : std::filesystem::directory_iterator(kFolder / "seeds" / GetParam().name))
            seeds_[entry.path().filename()] = test::ReadBytes(entry.path());
        ASSERT_GE(seeds_.size(), 3U);
    }

    bool Check(std::string_view bytes) { return GetParam().check(guarded_.Place(bytes)); }

    std::map<std::string, std::string> seeds_;  ///< By file name.
    GuardedBytes guarded_;
};

TEST_P(Seeds, AreReadOrRefusedAsTheirNamesSay) {
    for (const auto& [name, bytes] : seeds_) {
        SCOPED_TRACE(name);
        const bool read = name.starts_with("read-");
        ASSERT_TRUE(read || name.starts_with("refused-"));
        EXPECT_EQ(Check(bytes), read);
    }
}

TEST_P(Seeds, CutAtEveryByteTheyObeyTheRules) {
    for (const auto& [name, bytes] : seeds_) {
        SCOPED_TRACE(name);
        for (std::size_t size = 0; size <= std::min(bytes.size(), kLongestToCut); ++size)
            ASSERT_NO_THROW(Check(bytes.substr(0, size))) << "the first " << size << " bytes";
    }
}

TEST_P(Seeds, DamagedTheyObeyTheRules) {
    Damager damager(test::TestSeed(20220827), Words(GetParam().name));
    // Most of what is refused stays refused whatever the damage.
    std::erase_if(seeds_, [](const auto& seed) { return seed.first.starts_with("refused-"); });
    int read = 0;
    for (int round = 0; round < kRounds; ++round) {
        const auto seed = std::next(seeds_.begin(), round % static_cast<int>(seeds_.size()));
        const std::string bytes = damager.Damage(seed->second);
        ASSERT_NO_THROW(read += Check(bytes)) << seed->first << " in round " << round;
    }
    EXPECT_GT(read, kRounds / 50) << "the damage must be small enough to be read at times";
    EXPECT_LT(read, kRounds - kRounds / 50) << "and large enough to be refused at times";
}

TEST_P(Seeds, RandomBytesObeyTheRules) {
    Damager damager(test::TestSeed(20220828), {});
    for (int round = 0; round < kRounds; ++round) {
        const std::string bytes = damager.RandomBytes();
        bool read = false;
        ASSERT_NO_THROW(read = Check(bytes)) << testing::PrintToString(bytes);
        ASSERT_FALSE(read && GetParam().hasHead) << testing::PrintToString(bytes);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Seeds, testing::ValuesIn(kTargets),
                         [](const auto& target) { return std::string(target.param.name); });

}  // namespace
}  // namespace corvane::fuzz
