#include <algorithm>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/contract/ShellWorld.h"
#include "tests/fakes/Fakes.h"

namespace corvane {
namespace {

class FakeShellWorld : public contract::ShellWorld {
 public:
    FakeShellWorld() { shell_.panel = {{"Network Connections", true, {{"eth0", {"Disa&ble"}}}}}; }
    ShellApi& Api() override { return shell_; }
    [[nodiscard]] std::string Name() const override { return "eth0"; }

 private:
    FakeShell shell_;
};

using ShellCase = contract::NamedWorld<contract::ShellWorld>;

class ShellContract : public testing::TestWithParam<ShellCase> {
 protected:
    ShellApi& Api() { return world_->Api(); }

    /// Position of the folder in the Control Panel.
    std::size_t Folder() {
        std::vector<ShellItem> items;
        EXPECT_EQ(Api().ControlPanelItems(items), Refusal());
        const auto found = std::find_if(items.begin(), items.end(), [](const ShellItem& item) {
            return item.name == "Network Connections";
        });
        EXPECT_TRUE(found != items.end() && found->isFolder);
        return static_cast<std::size_t>(found - items.begin());
    }
    std::size_t Connection(std::size_t folder) {
        std::vector<std::string> names;
        EXPECT_EQ(Api().FolderItems(folder, names), Refusal());
        const auto found = std::find(names.begin(), names.end(), world_->Name());
        EXPECT_TRUE(found != names.end());
        return static_cast<std::size_t>(found - names.begin());
    }
    std::vector<std::string> Verbs(std::size_t folder, std::size_t connection) {
        std::vector<std::string> verbs;
        EXPECT_EQ(Api().ItemVerbs(folder, connection, verbs), Refusal());
        return verbs;
    }

    /// Position of the verb among what the connection offers.
    std::size_t Place(bool enabled, const std::string& verb) {
        const std::vector<std::string> verbs = world_->Verbs(enabled);
        return static_cast<std::size_t>(std::find(verbs.begin(), verbs.end(), verb) - verbs.begin());
    }

    std::unique_ptr<contract::ShellWorld> world_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(BackEnds, ShellContract,
                         testing::ValuesIn(contract::WithFake<FakeShellWorld>(contract::SystemShellWorlds())),
                         [](const auto& world) { return world.param.name; });

TEST_P(ShellContract, AnEnabledConnectionOffersToBeDisabledAndTheOtherWayRound) {
    const std::size_t folder = Folder();
    const std::size_t connection = Connection(folder);
    ASSERT_EQ(Verbs(folder, connection), world_->Verbs(true));
    ASSERT_EQ(Api().DoVerb(folder, connection, Place(true, "Disa&ble")), Refusal());
    ASSERT_EQ(Verbs(folder, connection), world_->Verbs(false));
    ASSERT_EQ(Api().DoVerb(folder, connection, Place(false, "En&able")), Refusal());
    EXPECT_EQ(Verbs(folder, connection), world_->Verbs(true));
}

TEST_P(ShellContract, ListsReplaceWhatTheCallerHad) {
    std::vector<ShellItem> items(9);
    std::vector<std::string> names(9, "old");
    std::vector<std::string> verbs(9, "old");
    const std::size_t folder = Folder();
    const std::size_t connection = Connection(folder);
    ASSERT_EQ(Api().ControlPanelItems(items), Refusal());
    ASSERT_EQ(Api().FolderItems(folder, names), Refusal());
    ASSERT_EQ(Api().ItemVerbs(folder, connection, verbs), Refusal());
    EXPECT_LT(items.size(), 9U);
    EXPECT_EQ(std::count(names.begin(), names.end(), "old"), 0);
    EXPECT_EQ(verbs, world_->Verbs(true));
}

}  // namespace
}  // namespace corvane
