#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/windows/WindowsShell.h"
#include "tests/wine/contract/ShellDescription.h"

/// What only this shell has: a connections folder that the Control Panel may or may not list, connections
/// that take their time, and calls that fail.
namespace corvane {
namespace {

using contract::ShellDescription;
using Kind = ShellDescription::Kind;
using Texts = std::vector<std::string>;

class WindowsShellTest : public testing::Test {
 protected:
    /// Names in the Control Panel, folders with a separator at the end.
    Texts Panel() {
        std::vector<ShellItem> items;
        std::string failure;
        EXPECT_TRUE(shell_.ControlPanelItems(items, failure)) << failure;
        Texts names;
        for (const ShellItem& item : items) names.push_back(item.name + (item.isFolder ? "\\" : ""));
        return names;
    }
    Texts Items(std::size_t panelItem) {
        Texts names;
        std::string failure;
        EXPECT_TRUE(shell_.FolderItems(panelItem, names, failure)) << failure;
        return names;
    }
    /// What a connection offers to change its state.
    Texts Changes(std::size_t panelItem, std::size_t item) {
        Texts verbs;
        std::string failure;
        EXPECT_TRUE(shell_.ItemVerbs(panelItem, item, verbs, failure)) << failure;
        std::erase_if(verbs, [](const std::string& verb) { return verb != "Disa&ble" && verb != "En&able"; });
        return verbs;
    }
    /// Has the verb after "&Status" done.
    void Change(std::size_t panelItem, std::size_t item) {
        Texts verbs;
        std::string failure;
        EXPECT_TRUE(shell_.ItemVerbs(panelItem, item, verbs, failure)) << failure;
        EXPECT_TRUE(shell_.DoVerb(panelItem, item, 1, failure)) << failure;
    }

    ShellDescription description_;
    WindowsShell shell_;
};

TEST_F(WindowsShellTest, AnUnlistedConnectionsFolderStandsAtTheEndUnderItsUsualName) {
    description_.AddPanelItem(L"Display", Kind::kNoFolder);
    description_.AddPanelItem(L"Fonts", Kind::kFolder);
    description_.SetTitle(L"Netzwerkverbindungen");
    description_.AddConnection(L"LAN", true);
    EXPECT_EQ(Panel(), (Texts{"Display", "Fonts\\", "Network Connections\\"}));
    EXPECT_EQ(Items(1), Texts());
    EXPECT_EQ(Items(2), Texts{"LAN"});
}

TEST_F(WindowsShellTest, AListedConnectionsFolderIsNotAddedASecondTime) {
    description_.AddPanelItem(L"Network Connections", Kind::kConnections);
    description_.AddPanelItem(L"Display", Kind::kNoFolder);
    description_.AddConnection(L"LAN", true);
    EXPECT_EQ(Panel(), (Texts{"Network Connections\\", "Display"}));
    EXPECT_EQ(Items(0), Texts{"LAN"});
}

TEST_F(WindowsShellTest, AFolderThatIsListedUnderItsTitleInAnotherLanguageIsNotAddedEither) {
    description_.AddPanelItem(L"&Netzwerkverbindungen", Kind::kConnections);
    description_.SetTitle(L"Netzwerkverbindungen");
    EXPECT_EQ(Panel(), (Texts{"&Netzwerkverbindungen\\"}));
}

TEST_F(WindowsShellTest, WithoutTheNameSpaceThePanelIsAllThereIs) {
    description_.AddPanelItem(L"Display", Kind::kNoFolder);
    description_.RemoveSpace();
    EXPECT_EQ(Panel(), Texts{"Display"});
}

TEST_F(WindowsShellTest, NamesMayHaveAnyLetters) {
    description_.AddConnection(L"B\u00FCro \u20AC \u4E2D \u041F\u0440", true);
    ASSERT_EQ(Panel(), Texts{"Network Connections\\"});
    EXPECT_EQ(Items(0), (Texts{"B\u00FCro \u20AC \u4E2D \u041F\u0440"}));
}

TEST_F(WindowsShellTest, VerbsAreDoneInOrderToTheConnectionsThatWereNamed) {
    description_.AddConnection(L"First", true);
    description_.AddConnection(L"Second", false);
    Panel();
    ASSERT_EQ(Items(0), (Texts{"First", "Second"}));
    Change(0, 0);
    Change(0, 1);
    Change(0, 0);
    EXPECT_EQ(ShellDescription::Diary(),
              (std::vector<std::wstring>{L"disable First", L"enable Second", L"enable First"}));
    EXPECT_EQ(Changes(0, 0), Texts{"Disa&ble"});
    EXPECT_EQ(Changes(0, 1), Texts{"Disa&ble"});
}

TEST_F(WindowsShellTest, AConnectionThatTakesItsTimeOffersNoChangeUntilItIsReady) {
    description_.AddConnection(L"LAN", true, 2);
    Panel();
    Items(0);
    Change(0, 0);
    EXPECT_EQ(Changes(0, 0), Texts());
    EXPECT_EQ(Changes(0, 0), Texts());
    EXPECT_EQ(Changes(0, 0), Texts{"En&able"});
}

TEST_F(WindowsShellTest, AnItemThatIsNoFolderCannotBeOpened) {
    description_.AddPanelItem(L"Display", Kind::kNoFolder);
    Panel();
    Texts names{"former"};
    std::string failure;
    EXPECT_FALSE(shell_.FolderItems(0, names, failure));
    EXPECT_NE(failure, "");
}

TEST_F(WindowsShellTest, EveryCallThatFailsSaysWhatTheSystemSays) {
    enum Step { kPanel, kItems, kVerbs, kDo };
    const std::vector<std::pair<const wchar_t*, Step>> methods = {
        {L"Shell.NameSpace", kPanel},       {L"Folder.Items", kPanel},
        {L"FolderItems.Count", kPanel},     {L"FolderItems.Item", kPanel},
        {L"FolderItem.Name", kPanel},       {L"FolderItem.IsFolder", kPanel},
        {L"FolderItem.GetFolder", kItems},  {L"FolderItem.Verbs", kVerbs},
        {L"FolderItemVerbs.Count", kVerbs}, {L"FolderItemVerbs.Item", kVerbs},
        {L"FolderItemVerb.Name", kVerbs},   {L"FolderItemVerb.DoIt", kDo},
        {L"Folder.Title", kPanel},
    };
    for (const auto& [method, step] : methods) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(method)));
        ShellDescription description;
        description.AddPanelItem(L"Network Connections", Kind::kConnections);
        description.AddConnection(L"LAN", true);
        description.Fail(method, E_ACCESSDENIED);
        WindowsShell shell;
        std::vector<ShellItem> items;
        Texts names;
        std::string failure;
        EXPECT_EQ(shell.ControlPanelItems(items, failure), step != kPanel);
        EXPECT_TRUE(step == kPanel || shell.FolderItems(0, names, failure) == (step != kItems));
        EXPECT_TRUE(step <= kItems || shell.ItemVerbs(0, 0, names, failure) == (step != kVerbs));
        EXPECT_TRUE(step != kDo || !shell.DoVerb(0, 0, 1, failure));
        EXPECT_NE(failure.find("denied"), std::string::npos) << failure;
        EXPECT_TRUE(ShellDescription::Diary().empty());
    }
}

TEST_F(WindowsShellTest, AFailureWithoutATextIsNamedByItsNumber) {
    description_.Fail(L"Shell.NameSpace", static_cast<HRESULT>(0x8BADF00DU));
    std::vector<ShellItem> items;
    std::string failure;
    EXPECT_FALSE(shell_.ControlPanelItems(items, failure));
    EXPECT_NE(failure.find("8BADF00D"), std::string::npos) << failure;
}

TEST_F(WindowsShellTest, ADocumentThatIsNotThereCannotBeOpened) {
    std::string failure;
    EXPECT_FALSE(shell_.OpenDocument("C:\\no such folder\\no such file.txt", failure));
    EXPECT_NE(failure, "");
}

}  // namespace
}  // namespace corvane
