#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "platform/linux/registry/Utf16.h"
#include "tests/unit/FileSupport.h"
#include "tests/unit/RegistryToolSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::HasSubstr;

/// nicx-registry with .reg files, and on stores that do not work.
class RegistryToolFiles : public RegistryToolTest {};

// ---- export and import ----

TEST_F(RegistryToolFiles, ExportAndImportBringEverythingBack) {
    const std::string file = folder_ / "k.reg";
    ASSERT_EQ(store_.Apply(kRoot, {{Kind::kSetValue, "K\\One", "bare", {kRegSz, {'x'}}},
                                   {Kind::kSetValue, "K\\One", "none", {kRegSz, {}}}}),
              Win32Error::kSuccess);
    const std::string before = Run({"query", "HKLM\\K", "/s"}).out;
    EXPECT_EQ(Run({"export", "HKLM\\K", file}).code, 0);
    EXPECT_EQ(Run({"delete", "HKLM\\K", "/f"}).code, 0);
    EXPECT_EQ(Run({"import", file}).code, 0);
    EXPECT_EQ(Run({"query", "HKLM\\K", "/s"}).out, before);
    EXPECT_EQ(Read("K\\One", "bare").value, (RegistryValue{kRegSz, {'x'}}));
    EXPECT_EQ(Read("K\\One", "none").value, (RegistryValue{kRegSz, {}}));
    const std::string bytes = test::ReadBytes(file);
    EXPECT_TRUE(
        Utf8FromUtf16Le(std::string_view(bytes).substr(2))
            .starts_with(
                "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\K]\r\n@=\"d\"\r\n"));
}

TEST_F(RegistryToolFiles, ExportOverwritesOnlyWithConsent) {
    const std::string file = folder_ / "k.reg";
    test::WriteBytes(file, "old");
    const Outcome refused = Run({"export", "HKLM\\K", file});
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(refused.err, HasSubstr("Add /y"));
    EXPECT_EQ(test::ReadBytes(file), "old");
    EXPECT_EQ(Run({"export", "HKLM\\K", file, "/Y"}).code, 0);
    EXPECT_NE(test::ReadBytes(file), "old");
}

TEST_F(RegistryToolFiles, ExportFailsWhereItCannotWrite) {
    EXPECT_THAT(Run({"export", "HKLM\\K", folder_.Path()}).err, HasSubstr("is a folder"));
    const Outcome outcome = Run({"export", "HKLM\\K", folder_ / "no/k.reg"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("could not be written"));
    EXPECT_EQ(Run({"export", "HKLM\\No", folder_ / "k.reg"}).code, 1);
    EXPECT_FALSE(std::filesystem::exists(folder_ / "k.reg"));
}

TEST_F(RegistryToolFiles, ExportSaysWhenNamesHadToBeChanged) {
    ASSERT_EQ(store_.CreateKey(kRoot, "K\\a\nb"), Win32Error::kSuccess);
    const Outcome outcome = Run({"export", "HKLM\\K", folder_ / "k.reg"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("1 names hold characters"));
}

TEST_F(RegistryToolFiles, ImportOfAMalformedFileNamesTheLineAndChangesNothing) {
    const std::string file = folder_ / "k.reg";
    test::WriteBytes(file, "REGEDIT4\n[HKEY_LOCAL_MACHINE\\New]\n\"a\"=\"b\"\n\"c\"=hex:0\n\"d\"=hex:zz\n");
    const Outcome outcome = Run({"import", file});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("line 5: "));
    EXPECT_THAT(outcome.err, HasSubstr("Nothing was imported."));
    EXPECT_FALSE(Read("New", "").keyOpened);
}

TEST_F(RegistryToolFiles, ImportDeletesWhatTheFileSays) {
    const std::string file = folder_ / "k.reg";
    test::WriteBytes(file, "REGEDIT4\n[-HKLM\\K\\One]\n[-HKLM\\Never]\n[HKLM\\K]\n\"Text\"=-\n\"Never\"=-\n");
    EXPECT_EQ(Run({"import", file}).code, 0);
    EXPECT_FALSE(Read("K\\One", "").keyOpened);
    EXPECT_EQ(Read("K", "Text").code, Win32Error::kFileNotFound);
}

TEST_F(RegistryToolFiles, ImportRefusesWhatIsNoFile) {
    EXPECT_THAT(Run({"import", folder_ / "no.reg"}).err, HasSubstr("there is no file"));
    EXPECT_THAT(Run({"import", folder_.Path()}).err, HasSubstr("is a folder"));
    const std::string huge = folder_ / "huge.reg";
    test::WriteBytes(huge, "REGEDIT4\n");
    std::filesystem::resize_file(huge, kLargestRegFile + 1);
    const Outcome outcome = Run({"import", huge});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("larger than 64 MiB"));
    EXPECT_EQ(Run({"import", "/dev/null"}).code, 1);
}

// ---- stores that do not work ----

TEST_F(RegistryToolFiles, ADamagedStoreIsNamedWithItsRemedy) {
    const std::string path = folder_ / "damaged.db";
    test::WriteBytes(path, std::string(5000, 'x'));
    RegistryStore damaged(path);
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"query", "HKLM"},
                                               {"query", "HKLM", "/ve"},
                                               {"add", "HKLM\\A"},
                                               {"add", "HKLM\\A", "/ve"},
                                               {"delete", "HKLM\\A", "/f"},
                                               {"export", "HKLM", folder_ / "k.reg"}}) {
        const Outcome outcome = RunOn(damaged, arguments);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, HasSubstr("'" + path + "' is damaged"));
        EXPECT_THAT(outcome.err, HasSubstr("move it away"));
    }
    EXPECT_FALSE(std::filesystem::exists(folder_ / "k.reg"));
}

TEST_F(RegistryToolFiles, ABusyStoreSaysSo) {
    const std::string path = folder_ / "registry.db";
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    RegistryStore busy(path, 10);
    EXPECT_THAT(RunOn(busy, {"query", "HKLM\\K"}).err, HasSubstr("in use by another program"));
    EXPECT_THAT(RunOn(busy, {"add", "HKLM\\New"}).err, HasSubstr("in use by another program"));
    sqlite3_close(other);
}

TEST_F(RegistryToolFiles, WithoutRightsReadingWorksAndWritingSaysHow) {
    const std::string path = folder_ / "registry.db";
    const std::string file = folder_ / "k.reg";
    test::WriteBytes(file, "REGEDIT4\n[HKLM\\New]\n");
    EXPECT_EQ(
        test::WithoutPrivileges([&] {
            RegistryStore store(path);
            if (RunOn(store, {"query", "HKLM\\K", "/ve"}).out !=
                "\nHKEY_LOCAL_MACHINE\\K\n    (Default)    REG_SZ    d\n")
                return 1;
            int line = 2;
            for (const std::vector<std::string>& arguments :
                 std::vector<std::vector<std::string>>{{"add", "HKLM\\New"},
                                                       {"add", "HKLM\\K", "/ve", "/f"},
                                                       {"delete", "HKLM\\K", "/ve", "/f"},
                                                       {"delete", "HKLM\\K", "/f"},
                                                       {"import", file}}) {
                const Outcome outcome = RunOn(store, arguments);
                if (outcome.code != 1 || outcome.err.find("Run the command as root") == std::string::npos)
                    return line;
                ++line;
            }
            return 0;
        }),
        0);
}

}  // namespace
}  // namespace corvane
