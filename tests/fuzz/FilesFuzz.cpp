#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/RunTimeError.h"
#include "base/Text.h"
#include "platform/CodePage.h"
#include "presets/PresetsFile.h"
#include "support/Paths.h"
#include "tests/unit/FileSupport.h"
#include "vendors/VendorList.h"

/// Damaged copies of good files. Whatever the damage, a file is read or refused with one of the expected
/// numbers, and what is read obeys the rules of its format. The damage is the same in every run unless
/// CORVANE_SEED says otherwise.
namespace corvane {
namespace {

constexpr int kRounds = 20000;
constexpr int kPresetsRounds = 6000;

/// Makes copies of bytes with one to four damages.
class Damager {
 public:
    explicit Damager(std::uint32_t seed) : random_(seed) {}

    std::string Damage(std::string bytes) {
        const std::size_t times = 1 + Below(4);
        for (std::size_t i = 0; i < times; ++i) DamageOnce(bytes);
        return bytes;
    }

 private:
    std::size_t Below(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
    }

    void DamageOnce(std::string& bytes) {
        if (bytes.empty()) {
            bytes.assign(Below(30), static_cast<char>(Below(256)));
            return;
        }
        // The count, at the beginning, decides most: it is hit more often than other places.
        const std::size_t place =
            Below(4) == 0 ? Below(std::min<std::size_t>(bytes.size(), 4)) : Below(bytes.size());
        switch (Below(6)) {
            case 0:
                bytes[place] = static_cast<char>(bytes[place] ^ (1 << Below(8)));
                break;
            case 1:
                bytes[place] = static_cast<char>(Below(256));
                break;
            case 2:
                bytes.resize(place);
                break;
            case 3:
                bytes.erase(place, 1 + Below(8));
                break;
            case 4:
                bytes.insert(place, bytes.substr(Below(bytes.size()), 1 + Below(40)));
                break;
            default:
                PutNumber(bytes, place);
        }
    }

    /// Puts a number of two or four bytes that lies at a border.
    void PutNumber(std::string& bytes, std::size_t place) {
        constexpr std::array<std::uint32_t, 10> kBorders = {
            0, 1, 2, 0x7FFF, 0xFFFF, 0x10000, 0x77359400, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
        const std::uint32_t number = kBorders[Below(kBorders.size())];
        const std::size_t size = std::min<std::size_t>(Below(2) == 0 ? 2 : 4, bytes.size() - place);
        for (std::size_t i = 0; i < size; ++i) bytes[place + i] = static_cast<char>(number >> (8 * i));
    }

    std::mt19937 random_;
};

std::string Golden(const std::string& name) {
    return test::ReadBytes(CORVANE_SOURCE_DIR "/tests/data/presets/" + name);
}

std::string LengthBytes(const std::string& text) {
    return {static_cast<char>(text.size() & 0xFFU), static_cast<char>(text.size() >> 8U)};
}

std::string VendorFile() {
    std::string bytes("\4\0\0\0", 4);
    for (const char* text : {"Cisco Systems, Inc", "", "M\xFCller \x80\x81", "x"}) {
        const std::string name = text;
        const std::string address(name.size() * 9, 'a');
        bytes += name.size() == 1 ? "00000C" : "0000" + std::to_string(10 + name.size());
        bytes += LengthBytes(name) + name + LengthBytes(address) + address;
    }
    return bytes;
}

/// The bytes that a table was made of: its records are written anew.
std::string Rewritten(const VendorTable& table) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>((table.Size() >> (8 * i)) & 0xFFU);
    for (std::size_t i = 0; i < table.Size(); ++i) {
        const std::string name = ToCodePage(table.Name(i));
        const std::string address = ToCodePage(table.Address(i));
        bytes.append(table.Prefix(i)).append(LengthBytes(name)).append(name);
        bytes.append(LengthBytes(address)).append(address);
    }
    return bytes;
}

TEST(VendorFileFuzz, DamagedFileIsRefusedOrReadAsItIs) {
    Damager damager(test::TestSeed(20220827));
    const std::string good = VendorFile();
    int read = 0;
    int refused = 0;
    for (int round = 0; round < kRounds; ++round) {
        const std::string bytes = damager.Damage(good);
        SCOPED_TRACE("round " + std::to_string(round));
        try {
            const VendorTable table = VendorTable::Parse(bytes, "list");
            ++read;
            const std::string rewritten = Rewritten(table);
            ASSERT_EQ(bytes.substr(0, rewritten.size()), rewritten);
            for (std::size_t i = 0; i < table.Size(); ++i) {
                const auto found = table.FindVendor(table.Prefix(i));
                ASSERT_TRUE(found && *found <= i && table.Prefix(*found) == table.Prefix(i));
            }
        } catch (const RunTimeError& error) {
            ++refused;
            ASSERT_TRUE(error.Number() == 9 || error.Number() == 62) << error.Number();
        }
    }
    EXPECT_GT(read, kRounds / 10) << "the damage must be small enough to be read at times";
    EXPECT_GT(refused, kRounds / 10) << "and large enough to be refused at times";
}

TEST(PresetsFileFuzz, DamagedFileIsRefusedOrReadAsAListThatRoundTrips) {
    Damager damager(test::TestSeed(20220827));
    const std::array<std::string, 3> good = {Golden("several.npf"), Golden("office.npf"),
                                             Golden("letters.npf")};
    int read = 0;
    int refused = 0;
    for (int round = 0; round < kPresetsRounds; ++round) {
        const std::string& whole = good[static_cast<std::size_t>(round) % good.size()];
        // A damaged count mostly makes a list of the largest size, which takes its time: one round in ten is
        // enough.
        const std::string bytes =
            round % 10 == 0 ? damager.Damage(whole) : whole.substr(0, 4) + damager.Damage(whole.substr(4));
        SCOPED_TRACE("round " + std::to_string(round));
        try {
            std::vector<PresetRecord> presets = ParsePresets(bytes, false, "presets");
            ++read;
            ASSERT_GE(presets.size(), 1U);
            ASSERT_LE(presets.size(), kMostMissingPresets);
            while (!presets.empty() && presets.back() == PresetRecord()) presets.pop_back();
            if (presets.empty()) continue;
            const std::string written = BuildPresets(presets);
            ASSERT_LE(written.size(), bytes.size()) << "more was read than the file holds";
            ASSERT_EQ(ParsePresets(written, false, "presets"), presets);
        } catch (const RunTimeError& error) {
            ++refused;
            ASSERT_TRUE(error.Number() == 9 || error.Number() == 321) << error.Number();
        }
    }
    EXPECT_GT(read, kPresetsRounds / 10) << "the damage must be small enough to be read at times";
    EXPECT_GT(refused, kPresetsRounds / 100) << "and large enough to be refused at times";
}

TEST(PresetsFileFuzz, RandomBytesAreRefusedOrRead) {
    std::mt19937 random(test::TestSeed(20220827));
    int read = 0;
    for (int round = 0; round < kRounds; ++round) {
        // Small numbers: lengths and dimensions that fit are then frequent.
        std::string bytes(std::uniform_int_distribution<std::size_t>(4, 200)(random), '\0');
        const int largest = round % 2 == 0 ? 2 : 255;
        for (char& byte : bytes)
            byte = static_cast<char>(std::uniform_int_distribution<int>(0, largest)(random));
        bytes.replace(1, 3, 3, '\0');
        try {
            const std::vector<PresetRecord> presets = ParsePresets(bytes, false, "presets");
            ++read;
            ASSERT_EQ(presets.size(), std::max<std::size_t>(static_cast<unsigned char>(bytes[0]), 1));
        } catch (const RunTimeError& error) {
            ASSERT_EQ(error.Number(), 321);
        }
    }
    EXPECT_GT(read, 0);
}

}  // namespace
}  // namespace corvane
