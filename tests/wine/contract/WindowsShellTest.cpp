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
        EXPECT_EQ(shell_.ControlPanelItems(items), Refusal());
        Texts names;
        for (const ShellItem& item : items) names.push_back(item.name + (item.isFolder ? "\\" : ""));
        return names;
    }
    Texts Items(std::size_t panelItem) {
        Texts names;
        EXPECT_EQ(shell_.FolderItems(panelItem, names), Refusal());
        return names;
    }
    /// What a connection offers to change its state.
    Texts Changes(std::size_t panelItem, std::size_t item) {
        Texts verbs;
        EXPECT_EQ(shell_.ItemVerbs(panelItem, item, verbs), Refusal());
        std::erase_if(verbs, [](const std::string& verb) { return verb != "Disa&ble" && verb != "En&able"; });
        return verbs;
    }
    /// Has the verb after "&Status" done.
    void Change(std::size_t panelItem, std::size_t item) {
        Texts verbs;
        EXPECT_EQ(shell_.ItemVerbs(panelItem, item, verbs), Refusal());
        EXPECT_EQ(shell_.DoVerb(panelItem, item, 1), Refusal());
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
    EXPECT_TRUE(shell_.FolderItems(0, names));
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
        Refusal refusal = shell.ControlPanelItems(items);
        if (step > kPanel) {
            EXPECT_EQ(refusal.Words(), "");
            refusal = shell.FolderItems(0, names);
        }
        if (step > kItems) {
            EXPECT_EQ(refusal.Words(), "");
            refusal = shell.ItemVerbs(0, 0, names);
        }
        if (step > kVerbs) {
            EXPECT_EQ(refusal.Words(), "");
            refusal = shell.DoVerb(0, 0, 1);
        }
        EXPECT_NE(refusal.Words().find("denied"), std::string::npos) << refusal.Words();
        EXPECT_TRUE(ShellDescription::Diary().empty());
    }
}

TEST_F(WindowsShellTest, AFailureWithoutATextIsNamedByItsNumber) {
    description_.Fail(L"Shell.NameSpace", static_cast<HRESULT>(0x8BADF00DU));
    std::vector<ShellItem> items;
    const Refusal refusal = shell_.ControlPanelItems(items);
    EXPECT_NE(refusal.Words().find("8BADF00D"), std::string::npos) << refusal.Words();
}

TEST_F(WindowsShellTest, ADocumentThatIsNotThereCannotBeOpened) {
    EXPECT_TRUE(shell_.OpenDocument("C:\\no such folder\\no such file.txt"));
}

}  // namespace
}  // namespace corvane
