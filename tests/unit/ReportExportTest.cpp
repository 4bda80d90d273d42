#include "base/Text.h"
#include "platform/CodePage.h"
#include "tests/unit/CoreSupport.h"
#include "tests/unit/FileSupport.h"
#include "tests/unit/SmallDisk.h"
#include "ui/logic/ReportExport.h"
#include "ui/logic/TextReport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Names = std::set<std::string>;

class ReportExportTest : public testing::Test {
 protected:
    ReportExportTest() { Nics = {NicRecord(kFirstId, "B\u00FCro", "0003")}; }

    static FakeSeat::Box Failure(const std::string& path, const std::string& reason) {
        return Critical(
            "Orvella Corvane",
            "Error! The text report could not be written to '" + path + "'.\r\n\r\nDescription: " + reason +
                "\r\n\r\nChoose another file, or remove what stands in the way, and export the report "
                "again. A file that was there before is as it was.");
    }
    void ExpectFailure(const std::string& path, const std::string& reason) {
        EXPECT_FALSE(ExportTextReport(path));
        EXPECT_THAT(machine.seat.boxes, ElementsAre(Failure(path, reason)));
    }

    FakeMachine machine;
    TempFolder folder;
};

TEST_F(ReportExportTest, DialogHasItsTitleAndFilter) {
    EXPECT_STREQ(kExportTitle, "Export Text Report As ...");
    EXPECT_STREQ(kExportFilter, "Text File (*.txt)|*.txt");
}

TEST_F(ReportExportTest, FileHoldsTheReportInTheCodePage) {
    EXPECT_TRUE(ExportTextReport(folder / "report.txt"));
    const std::string bytes = ReadBytes(folder / "report.txt");
    EXPECT_EQ(bytes, ToCodePage(TextReport()));
    EXPECT_THAT(bytes, StartsWith("Orvella Corvane v4.5 By Ollory\r\n====="));
    EXPECT_THAT(bytes, HasSubstr("\r\nConnection Name..........B\xFCro\r\n"));
    EXPECT_THAT(bytes, EndsWith("\r\n\r\nEOF\r\n"));
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(ReportExportTest, NothingIsQueriedAnew) {
    EXPECT_TRUE(ExportTextReport(folder / "report.txt"));
    EXPECT_THAT(machine.registry->diary, IsEmpty());
    EXPECT_THAT(machine.ipHelper->diary, IsEmpty());
}

TEST_F(ReportExportTest, ExistingFileIsReplacedWhole) {
    WriteBytes(folder / "report.txt", std::string(50000, 'o'));
    EXPECT_TRUE(ExportTextReport(folder / "report.txt"));
    EXPECT_EQ(ReadBytes(folder / "report.txt"), ToCodePage(TextReport()));
    EXPECT_EQ(folder.Names(), Names{"report.txt"});
}

TEST_F(ReportExportTest, NameIsKeptAsTyped) {
    for (const char* name : {"report", "report.log", "Ger\u00E4te.TXT", "two words.txt"}) {
        EXPECT_TRUE(ExportTextReport(folder / name));
    }
    EXPECT_EQ(folder.Names(), (Names{"report", "report.log", "Ger\u00E4te.TXT", "two words.txt"}));
}

TEST_F(ReportExportTest, CancelledDialogWritesNothingAndSaysNothing) {
    std::filesystem::current_path(folder.Path());
    EXPECT_FALSE(ExportTextReport(""));
    std::filesystem::current_path("/");
    EXPECT_THAT(machine.seat.diary, IsEmpty());
    EXPECT_EQ(folder.Names(), Names());
}

TEST_F(ReportExportTest, FolderThatDoesNotExistIsReported) {
    ExpectFailure(folder / "missing/report.txt", "No such file or directory");
    EXPECT_EQ(folder.Names(), Names());
}

TEST_F(ReportExportTest, PathOfAFolderIsReportedAndTheFolderStays) {
    std::filesystem::create_directory(folder / "reports");
    WriteBytes(folder / "reports/old.txt", "old");
    ExpectFailure(folder / "reports", "Is a directory");
    EXPECT_EQ(ReadBytes(folder / "reports/old.txt"), "old");
}

TEST_F(ReportExportTest, FolderWithoutRightsIsReported) {
    const std::string path = folder / "report.txt";
    EXPECT_EQ(WithoutPrivileges([&] {
                  if (ExportTextReport(path)) return 1;
                  const std::vector<FakeSeat::Box> expected = {Failure(path, "Permission denied")};
                  return machine.seat.boxes == expected ? 0 : 2;
              }),
              0);
    EXPECT_EQ(folder.Names(), Names());
}

TEST_F(ReportExportTest, FullDiskIsReportedAndTheOldFileStays) {
    const SmallDisk disk;
    ASSERT_TRUE(disk.Mounted());
    const std::string old(30000, 'o');
    WriteBytes(disk.Folder() / "report.txt", old);
    Nics.assign(200, Nics.at(0));
    ExpectFailure(disk.Folder() / "report.txt", "No space left on device");
    EXPECT_EQ(ReadBytes(disk.Folder() / "report.txt"), old);
    EXPECT_EQ(disk.Folder().Names(), Names{"report.txt"});
}

TEST_F(ReportExportTest, ReadOnlyDiskIsReported) {
    const SmallDisk disk;
    ASSERT_TRUE(disk.Mounted());
    ASSERT_TRUE(disk.MakeReadOnly());
    ExpectFailure(disk.Folder() / "report.txt", "Read-only file system");
}

}  // namespace
}  // namespace corvane
