#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/registry/RegFile.h"
#include "platform/linux/registry/Utf16.h"
#include "tests/unit/FileSupport.h"

/// .reg files with random damage: every one is either understood in full or refused with a line and a reason.
namespace corvane {
namespace {

using Kind = RegistryStore::Change::Kind;

const std::string kVersion5 =
    "Windows Registry Editor Version 5.00\r\n\r\n; note\r\n[-HKEY_LOCAL_MACHINE\\A\\Gone]\r\n"
    "[HKEY_LOCAL_MACHINE\\A\\B]\r\n@=\"x\\\"y\\\\z\"\r\n\"n\"=dword:0000002a\r\n\"gone\"=-\r\n"
    "\"m\"=hex(7):61,00,00,00,62,00,00,00,\\\r\n  "
    "00,00\r\n\"b\"=hex:00,ff,80\r\n\"\xE2\x82\xAC\"=hex(b):01,02\r\n";
const std::string kVersion4 =
    "REGEDIT4\n\n[HKLM\\A]\n\"\x80\"=\"\xE4\"\n\"m\"=hex(7):61,00,00\n\"t\"=hex(1):61\n";

class Mutator {
 public:
    explicit Mutator(std::uint32_t seed) : random_(seed) {}

    std::size_t Below(std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_);
    }

    std::string Mutate(std::string bytes) {
        static const std::vector<std::string> pieces = {"\"",         "\\",
                                                        "[",          "]",
                                                        "[-",         "=",
                                                        "@",          ",",
                                                        ";",          "\r\n",
                                                        "\\\r\n",     "hex(",
                                                        "hex:",       "dword:",
                                                        "\xFF\xFE",   "\xEF\xBB\xBF",
                                                        "ffffffffff", "HKEY_LOCAL_MACHINE",
                                                        "REGEDIT4\n", std::string(1, '\0')};
        for (std::size_t count = 1 + Below(4); count > 0; --count) {
            const std::size_t at = Below(bytes.size() + 1);
            switch (Below(6)) {
                case 0:
                    bytes.resize(at);
                    break;
                case 1:
                    bytes.insert(at, pieces[Below(pieces.size())]);
                    break;
                case 2:
                    bytes.erase(at, Below(20));
                    break;
                case 3:
                    bytes.insert(at, bytes.substr(Below(bytes.size() + 1), Below(60)));
                    break;
                default:
                    if (at < bytes.size()) bytes[at] = static_cast<char>(Below(256));
                    break;
            }
        }
        return bytes;
    }

 private:
    std::mt19937 random_;
};

TEST(RegFileFuzz, DamagedFilesAreUnderstoodOrRefused) {
    Mutator mutator(test::TestSeed(20240607));
    const std::vector<std::string> originals = {kVersion5, "\xFF\xFE" + Utf16LeFromUtf8(kVersion5),
                                                "\xEF\xBB\xBF" + kVersion5, kVersion4};
    std::size_t understood = 0;
    std::size_t refused = 0;
    for (const std::string& original : originals) ASSERT_EQ(ParseRegFile(original).problem, "");
    for (int round = 0; round < 60000; ++round) {
        const std::string bytes = mutator.Mutate(originals[mutator.Below(originals.size())]);
        const RegFileContents contents = ParseRegFile(bytes);
        if (!contents.problem.empty()) {
            ++refused;
            ASSERT_TRUE(contents.changes.empty());
            ASSERT_GE(contents.line, 1U);
            ASSERT_LE(contents.line, bytes.size() + 1);
            continue;
        }
        ++understood;
        // What was understood comes back the same after being written.
        std::vector<RegFileKey> keys;
        for (const RegistryStore::Change& change : contents.changes) {
            if (change.kind == Kind::kSetValue)
                keys.push_back({change.subkey, {{change.name, change.value}}});
        }
        const RegFileText text = PrintRegFile(keys);
        const RegFileContents again = ParseRegFile(text.bytes);
        ASSERT_EQ(again.problem, "");
        ASSERT_EQ(again.changes.size(), keys.size() * 2);
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const RegistryStore::Change& change = again.changes[2 * i + 1];
            ASSERT_EQ(change.value, keys[i].values[0].value);
            if (text.changedNames == 0) {
                ASSERT_EQ(change.subkey, keys[i].path);
                ASSERT_EQ(change.name, keys[i].values[0].name);
            }
        }
    }
    EXPECT_GT(understood, 1000U);
    EXPECT_GT(refused, 1000U);
}

TEST(RegFileFuzz, RandomBytesAreRefused) {
    Mutator mutator(test::TestSeed(20240608));
    for (int round = 0; round < 20000; ++round) {
        std::string bytes(mutator.Below(300), '\0');
        for (char& byte : bytes) byte = static_cast<char>(mutator.Below(256));
        if (round % 2 == 0) bytes.insert(0, "\xFF\xFE");
        ASSERT_NE(ParseRegFile(bytes).problem, "");
    }
}

}  // namespace
}  // namespace corvane
