#include <filesystem>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include "platform/Files.h"
#include "platform/windows/Handle.h"
#include "platform/windows/WideText.h"
#include "platform/windows/Windows.h"
#include "tests/unit/TempFolder.h"

/// The file operations on this system's own hazards: letters outside the code page, long paths, files that
/// are in use or protected.
namespace corvane {
namespace {

using test::ReadBytes;
using test::TempFolder;
using test::WriteBytes;
using Names = std::set<std::string>;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

FileHandle OpenFile(const std::string& path, DWORD access, DWORD share) {
    FileHandle file(CreateFileW(SystemPath(path).c_str(), access, share, nullptr, OPEN_ALWAYS, 0, nullptr));
    EXPECT_TRUE(file.IsOpen()) << path;
    return file;
}

std::string Read(const std::string& path) {
    std::string contents = "what was there";
    EXPECT_EQ(ReadFileContents(path, contents), std::error_code());
    return contents;
}

TEST(WindowsReadFileContents, HandsBackEveryByteAndNoMoreThanAskedFor) {
    const TempFolder folder;
    std::string bytes = "\r\n\x1A";  // What text files would be changed at, and end at.
    for (int i = 0; i < 200000; ++i) bytes += static_cast<char>(i * 7);
    WriteBytes(folder / "file", bytes);
    EXPECT_EQ(Read(folder / "file"), bytes);
    std::string contents;
    EXPECT_EQ(ReadFileContents(folder / "file", contents, 70000), std::error_code());
    EXPECT_EQ(contents, bytes.substr(0, 70000));
    std::uintmax_t size = 0;
    EXPECT_EQ(FileSize(folder / "file", size), std::error_code());
    EXPECT_EQ(size, bytes.size());
}

TEST(WindowsReadFileContents, WhatIsMissingOrAFolderHasItsOwnCondition) {
    const TempFolder folder;
    std::string contents = "what was there";
    EXPECT_EQ(ReadFileContents(folder / "none", contents), std::errc::no_such_file_or_directory);
    EXPECT_EQ(contents, "");
    EXPECT_EQ(ReadFileContents(folder / "none/none", contents), std::errc::no_such_file_or_directory);
    EXPECT_EQ(ReadFileContents(folder.Path(), contents), std::errc::is_a_directory);
}

TEST(WindowsReadFileContents, AFileThatAnotherProgramKeepsToItselfIsBusy) {
    const TempFolder folder;
    const FileHandle other = OpenFile(folder / "file", GENERIC_READ, 0);
    std::string contents = "what was there";
    EXPECT_EQ(ReadFileContents(folder / "file", contents), std::errc::device_or_resource_busy);
    EXPECT_EQ(contents, "");
}

TEST(WindowsReplaceFileContents, MakesAndReplacesFilesAndLeavesNothingElse) {
    const TempFolder folder;
    for (const std::string& contents :
         {std::string("a\0b\r\n\x1A", 6), std::string(3000000, 'x'), std::string()}) {
        EXPECT_EQ(ReplaceFileContents(folder / "file", contents), std::error_code());
        EXPECT_EQ(ReadBytes(folder / "file"), contents);
        EXPECT_EQ(folder.Names(), Names{"file"});
    }
}

TEST(WindowsReplaceFileContents, NamesMayHaveLettersThatTheCodePageHasNot) {
    const TempFolder folder;
    const std::string name = "B\u00FCro \u20AC \u4E2D \u041F \U0001F600.npf";
    EXPECT_EQ(ReplaceFileContents(folder / name, "new"), std::error_code());
    EXPECT_EQ(folder.Names(), Names{name});
    EXPECT_EQ(Read(folder / name), "new");
}

TEST(WindowsReplaceFileContents, PathsMayBeLongerThanTheUsualBuffers) {
    const TempFolder folder;
    const std::string deep = folder.Path() + "/" + std::string(150, 'a') + "/" + std::string(150, 'b');
    ASSERT_NE(CreateDirectoryW(SystemPath(deep.substr(0, deep.rfind('/'))).c_str(), nullptr), 0);
    ASSERT_NE(CreateDirectoryW(SystemPath(deep).c_str(), nullptr), 0);
    for (const char* contents : {"old", "new"}) {
        EXPECT_EQ(ReplaceFileContents(deep + "/presets.npf", contents), std::error_code());
        EXPECT_EQ(Read(deep + "/presets.npf"), contents);
    }
    EXPECT_NE(DeleteFileW(SystemPath(deep + "/presets.npf").c_str()), 0);
    EXPECT_NE(RemoveDirectoryW(SystemPath(deep).c_str()), 0);
    EXPECT_NE(RemoveDirectoryW(SystemPath(deep.substr(0, deep.rfind('/'))).c_str()), 0);
}

TEST(WindowsReplaceFileContents, MissingFolderAndAFolderInTheFilesPlaceHaveTheirOwnConditions) {
    const TempFolder folder;
    EXPECT_EQ(ReplaceFileContents(folder / "none/file", "new"), std::errc::no_such_file_or_directory);
    std::filesystem::create_directory(test::PathOf(folder / "file"));
    EXPECT_EQ(ReplaceFileContents(folder / "file", "new"), std::errc::is_a_directory);
    EXPECT_EQ(folder.Names(), Names{"file"});
}

TEST(WindowsReplaceFileContents, AFileThatAnotherProgramKeepsToItselfStaysAsItWas) {
    const TempFolder folder;
    WriteBytes(folder / "file", "old");
    {
        const FileHandle other = OpenFile(folder / "file", GENERIC_READ, FILE_SHARE_READ);
        EXPECT_NE(ReplaceFileContents(folder / "file", "new"), std::error_code());
    }
    EXPECT_EQ(ReadBytes(folder / "file"), "old");
    EXPECT_EQ(folder.Names(), Names{"file"});
}

TEST(WindowsReplaceFileContents, AWriteProtectedFileStaysAsItWas) {
    const TempFolder folder;
    WriteBytes(folder / "file", "old");
    const std::wstring path = SystemPath(folder / "file");
    ASSERT_NE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY), 0);
    EXPECT_EQ(ReplaceFileContents(folder / "file", "new"), std::errc::permission_denied);
    EXPECT_EQ(ReadBytes(folder / "file"), "old");
    EXPECT_EQ(folder.Names(), Names{"file"});
    EXPECT_NE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL), 0);
}

TEST(WindowsReplaceFileContents, RemovesWhatAKilledReplacementLeftAndNothingOfOthers) {
    const TempFolder folder;
    const std::string abandoned = ".corvane-0123456789abcdef.new";
    const std::string underWay = ".corvane-aaaaaaaaaaaaaaaa.new";
    const Names others = {".corvane-.new", ".corvane-0123456789abcdef", "x.new"};
    for (const std::string& name : others) WriteBytes(folder / name, "");
    WriteBytes(folder / abandoned, "half of");
    const FileHandle other = OpenFile(folder / underWay, GENERIC_WRITE, 0);
    EXPECT_EQ(ReplaceFileContents(folder / "file", "new"), std::error_code());
    Names expected = others;
    expected.insert({"file", underWay});
    EXPECT_EQ(folder.Names(), expected);
}

TEST(WindowsReplaceFileContents, AReaderThatSharesTheFileDoesNotSeeAMixture) {
    const TempFolder folder;
    WriteBytes(folder / "file", "old contents");
    const FileHandle reader = OpenFile(folder / "file", GENERIC_READ, kShareAll);
    char bytes[64];
    DWORD length = 0;
    ASSERT_NE(ReadFile(reader.Get(), bytes, 4, &length, nullptr), 0);
    const std::error_code failure = ReplaceFileContents(folder / "file", "NEW");
    ASSERT_NE(ReadFile(reader.Get(), bytes + 4, sizeof bytes - 4, &length, nullptr), 0);
    EXPECT_EQ(std::string(bytes, 4 + length), "old contents");
    EXPECT_EQ(ReadBytes(folder / "file"), failure ? "old contents" : "NEW");
}

}  // namespace
}  // namespace corvane
