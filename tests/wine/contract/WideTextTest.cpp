#include <string>

#include <gtest/gtest.h>

#include "platform/windows/WideText.h"
#include "platform/windows/Windows.h"

namespace corvane {
namespace {

using std::string_literals::operator""s;

TEST(WideText, EveryCharacterSurvivesTheWayThereAndBack) {
    const std::string text = "a\0b \u00E9\u20AC\u4E2D\uFFFF \U00010000\U0001F600\U0010FFFF"s;
    EXPECT_EQ(Wide(text), L"a\0b \u00E9\u20AC\u4E2D\uFFFF \U00010000\U0001F600\U0010FFFF"s);
    EXPECT_EQ(Narrow(Wide(text)), text);
    EXPECT_EQ(Wide(""), L"");
    EXPECT_EQ(Narrow(L""), "");
}

TEST(WideText, EachInvalidByteBecomesAQuestionMark) {
    EXPECT_EQ(Wide("a\xFF\xFEz"), L"a??z");
    EXPECT_EQ(Wide("\xE2\x82z"), L"??z");          // cut in the middle
    EXPECT_EQ(Wide("z\xF0\x9F\x98"), L"z???");     // cut at the end
    EXPECT_EQ(Wide("\xED\xA0\x80"), L"???");       // surrogate
    EXPECT_EQ(Wide("\xF4\x90\x80\x80"), L"????");  // above U+10FFFF
}

TEST(WideText, ASurrogateWithoutItsPartnerBecomesTheReplacementCharacter) {
    const std::wstring high(1, wchar_t{0xD83D});
    const std::wstring low(1, wchar_t{0xDE00});
    EXPECT_EQ(Narrow(high), "\uFFFD");
    EXPECT_EQ(Narrow(L"a" + low + L"z"), "a\uFFFDz");
    EXPECT_EQ(Narrow(high + L"z"), "\uFFFDz");
    EXPECT_EQ(Narrow(low + high), "\uFFFD\uFFFD");
    EXPECT_EQ(Narrow(high + high + low), "\uFFFD\U0001F600");
}

TEST(SystemPath, IsAbsoluteAndHasTheSystemsSeparators) {
    EXPECT_EQ(SystemPath("C:\\windows/system32\\..\\win.ini"), L"\\\\?\\C:\\windows\\win.ini");
    EXPECT_EQ(SystemPath("C:/B\u00FCro/\u4E2D.npf"), L"\\\\?\\C:\\B\u00FCro\\\u4E2D.npf");
    wchar_t folder[MAX_PATH];
    ASSERT_GT(GetCurrentDirectoryW(MAX_PATH, folder), 0U);
    std::wstring expected = std::wstring(L"\\\\?\\") + folder;
    if (!expected.ends_with(L'\\')) expected += L'\\';
    EXPECT_EQ(SystemPath("presets.npf"), expected + L"presets.npf");
}

TEST(SystemPath, NamesOfOtherComputersHaveTheirOwnForm) {
    EXPECT_EQ(SystemPath("\\\\server\\share/file"), L"\\\\?\\UNC\\server\\share\\file");
}

TEST(SystemPath, DevicesAndWhatIsVerbatimStay) {
    EXPECT_EQ(SystemPath("\\\\.\\PhysicalDrive0"), L"\\\\.\\PhysicalDrive0");
    EXPECT_EQ(SystemPath("\\\\?\\C:\\a\\..\\b"), L"\\\\?\\C:\\a\\..\\b");
    EXPECT_EQ(SystemPath("\\\\?\\UNC\\server\\share"), L"\\\\?\\UNC\\server\\share");
}

TEST(SystemPath, PathsMayBeLong) {
    const std::string name(200, 'n');
    const std::wstring wideName(200, L'n');
    EXPECT_EQ(SystemPath("C:\\" + name + "\\" + name), L"\\\\?\\C:\\" + wideName + L"\\" + wideName);
}

}  // namespace
}  // namespace corvane
