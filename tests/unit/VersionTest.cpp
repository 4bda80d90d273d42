#include <ostream>

#include <gtest/gtest.h>

#include "startup/Version.h"

namespace corvane {
namespace {

OsIdentity Os(std::uint32_t platform, std::uint32_t major, std::uint32_t minor, std::uint32_t build,
              const std::string& servicePack = "") {
    OsIdentity os;
    os.platformId = platform;
    os.majorVersion = major;
    os.minorVersion = minor;
    os.buildNumber = build;
    os.csdVersion = servicePack;
    return os;
}

TEST(VersionTest, ServicePackStandsBeforeTheVersion) {
    EXPECT_EQ(Version(Os(2, 5, 1, 2600, "Service Pack 2")).description,
              "Windows XP Service Pack 2  (v5.1, Build 2600)");
}

TEST(VersionTest, ServicePackFieldEndsAtItsFirstNul) {
    std::string field = "Service Pack 2";
    field.resize(128, '\0');
    field[20] = 'x';
    EXPECT_EQ(Version(Os(2, 5, 1, 2600, field)).description, "Windows XP Service Pack 2  (v5.1, Build 2600)");
}

TEST(VersionTest, OneCharacterServicePackIsKept) {
    EXPECT_EQ(Version(Os(2, 5, 1, 2600, std::string("A\0rest", 6))).description,
              "Windows XP A  (v5.1, Build 2600)");
}

TEST(VersionTest, ServicePackFieldThatBeginsWithNulIsEmpty) {
    EXPECT_EQ(Version(Os(2, 5, 1, 2600, std::string("\0Service Pack", 13))).description,
              "Windows XP   (v5.1, Build 2600)");
}

TEST(VersionTest, ServicePackFieldWithoutNulIsTakenWhole) {
    const std::string field(128, 's');
    EXPECT_EQ(Version(Os(2, 5, 0, 2195, field)).description,
              "Windows 2000 " + field + "  (v5.0, Build 2195)");
}

TEST(VersionTest, ReadyDescriptionIsTakenAsItIs) {
    OsIdentity os = Os(1, 4, 0, 1111);
    os.readyDescription = "Debian GNU/Linux 12 (Linux 6.1.0)";
    EXPECT_EQ(Version(os).description, "Debian GNU/Linux 12 (Linux 6.1.0)");
    EXPECT_FALSE(Version(os).unsupported);
}

struct Naming {
    std::string label;
    OsIdentity os;
    std::string description;
    bool unsupported;
};

void PrintTo(const Naming& naming, std::ostream* out) { *out << naming.description; }

class VersionNameTest : public testing::TestWithParam<Naming> {};

TEST_P(VersionNameTest, IsDescribed) {
    const OsVersion version = Version(GetParam().os);
    EXPECT_EQ(version.description, GetParam().description);
    EXPECT_EQ(version.unsupported, GetParam().unsupported);
}

INSTANTIATE_TEST_SUITE_P(
    Of, VersionNameTest,
    testing::Values(
        Naming{"Windows95", Os(1, 4, 0, 950), "Windows 95   (v4.0, Build 950)", true},
        Naming{"Windows95B", Os(1, 4, 0, 1111, " B"), "Windows 95B  B  (v4.0, Build 1111)", true},
        Naming{"BuildOf9xIsItsLowWordInTheNameOnly", Os(1, 4, 0, 0x04000457),
               "Windows 95B   (v4.0, Build 67109975)", true},
        Naming{"Windows98", Os(1, 4, 10, 1998), "Windows 98   (v4.10, Build 1998)", true},
        Naming{"Windows98SE", Os(1, 4, 10, 0x040A08AE), "Windows 98SE   (v4.10, Build 67766446)", true},
        Naming{"WindowsME", Os(1, 4, 90, 0x045A0BB8), "Windows ME   (v4.90, Build 73010104)", true},
        Naming{"Minor90OfAnotherBuild", Os(1, 4, 90, 3001), "Windows 9x   (v4.90, Build 3001)", true},
        Naming{"Another9x", Os(1, 4, 3, 1111), "Windows 9x   (v4.3, Build 1111)", true},
        Naming{"Nt3", Os(2, 3, 51, 1057), "Windows NT 3   (v3.51, Build 1057)", false},
        Naming{"Nt4", Os(2, 4, 0, 1381), "Windows NT 4   (v4.0, Build 1381)", false},
        Naming{"Windows2000", Os(2, 5, 0, 2195), "Windows 2000   (v5.0, Build 2195)", false},
        Naming{"WindowsXp", Os(2, 5, 1, 2600), "Windows XP   (v5.1, Build 2600)", false},
        Naming{"Server2003", Os(2, 5, 2, 3790), "Windows Server 2003   (v5.2, Build 3790)", false},
        Naming{"Major5OfAnotherMinor", Os(2, 5, 3, 1), "Windows    (v5.3, Build 1)", false},
        Naming{"Major6IsPlainNt", Os(2, 6, 1, 7601), "Windows NT   (v6.1, Build 7601)", false},
        Naming{"Major10IsPlainNt", Os(2, 10, 0, 19045), "Windows NT   (v10.0, Build 19045)", false},
        Naming{"Major2IsPlainNt", Os(2, 2, 0, 1), "Windows NT   (v2.0, Build 1)", false},
        Naming{"BuildOfNtIsWritten32BitsWide", Os(2, 5, 1, 4294967295U),
               "Windows XP   (v5.1, Build 4294967295)", false},
        Naming{"Platform0", Os(0, 3, 10, 103), "Windows Vista   (v3.10, Build 103)", false},
        Naming{"Platform3", Os(3, 5, 1, 1), "Windows Vista   (v5.1, Build 1)", false}),
    [](const auto& naming) { return naming.param.label; });

}  // namespace
}  // namespace corvane
