#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "fakes/Fakes.h"
#include "netns/NetnsSupport.h"
#include "platform/linux/ConnectionsFolder.h"
#include "platform/linux/Machine.h"

namespace corvane {
namespace {

/// A machine with one connection, which is enabled.
class ShellWorld {
 public:
    virtual ~ShellWorld() = default;
    virtual ShellApi& Api() = 0;
    [[nodiscard]] virtual std::string Name() const = 0;
};

class FakeShellWorld : public ShellWorld {
 public:
    FakeShellWorld() { shell_.panel = {{"Network Connections", true, {{"eth0", {"Disa&ble"}}}}}; }
    ShellApi& Api() override { return shell_; }
    [[nodiscard]] std::string Name() const override { return "eth0"; }

 private:
    FakeShell shell_;
};

class LinuxShellWorld : public ShellWorld {
 public:
    LinuxShellWorld() { link_.BringUp(); }
    ~LinuxShellWorld() override { std::filesystem::remove_all(folder_); }
    ShellApi& Api() override { return shell_; }
    [[nodiscard]] std::string Name() const override { return link_.Name(); }

 private:
    std::string folder_ = "/run/" + netns::NewLinkName("contract");
    netns::ScopedVeth link_;
    ConnectionsFolder shell_{std::make_shared<Machine>(folder_ + "/registry.db")};
};

class ShellContract : public testing::TestWithParam<std::string> {
 protected:
    void SetUp() override {
        if (GetParam() == "Fake") {
            world_ = std::make_unique<FakeShellWorld>();
        } else {
            world_ = std::make_unique<LinuxShellWorld>();
        }
    }

    ShellApi& Api() { return world_->Api(); }

    /// Position of the folder in the Control Panel.
    std::size_t Folder() {
        std::vector<ShellItem> items;
        std::string failure;
        EXPECT_TRUE(Api().ControlPanelItems(items, failure)) << failure;
        const auto found = std::find_if(items.begin(), items.end(), [](const ShellItem& item) {
            return item.name == "Network Connections";
        });
        EXPECT_TRUE(found != items.end() && found->isFolder);
        return static_cast<std::size_t>(found - items.begin());
    }
    std::size_t Connection(std::size_t folder) {
        std::vector<std::string> names;
        std::string failure;
        EXPECT_TRUE(Api().FolderItems(folder, names, failure)) << failure;
        const auto found = std::find(names.begin(), names.end(), world_->Name());
        EXPECT_TRUE(found != names.end());
        return static_cast<std::size_t>(found - names.begin());
    }
    std::vector<std::string> Verbs(std::size_t folder, std::size_t connection) {
        std::vector<std::string> verbs;
        std::string failure;
        EXPECT_TRUE(Api().ItemVerbs(folder, connection, verbs, failure)) << failure;
        return verbs;
    }

    std::unique_ptr<ShellWorld> world_;
};

INSTANTIATE_TEST_SUITE_P(BackEnds, ShellContract, testing::Values("Fake", "Linux"),
                         [](const auto& instance) { return instance.param; });

TEST_P(ShellContract, AnEnabledConnectionOffersToBeDisabledAndTheOtherWayRound) {
    const std::size_t folder = Folder();
    const std::size_t connection = Connection(folder);
    ASSERT_EQ(Verbs(folder, connection), std::vector<std::string>{"Disa&ble"});
    std::string failure;
    ASSERT_TRUE(Api().DoVerb(folder, connection, 0, failure)) << failure;
    ASSERT_EQ(Verbs(folder, connection), std::vector<std::string>{"En&able"});
    ASSERT_TRUE(Api().DoVerb(folder, connection, 0, failure)) << failure;
    EXPECT_EQ(Verbs(folder, connection), std::vector<std::string>{"Disa&ble"});
}

TEST_P(ShellContract, ListsReplaceWhatTheCallerHad) {
    std::vector<ShellItem> items(9);
    std::vector<std::string> names(9, "old");
    std::vector<std::string> verbs(9, "old");
    std::string failure;
    const std::size_t folder = Folder();
    const std::size_t connection = Connection(folder);
    ASSERT_TRUE(Api().ControlPanelItems(items, failure));
    ASSERT_TRUE(Api().FolderItems(folder, names, failure));
    ASSERT_TRUE(Api().ItemVerbs(folder, connection, verbs, failure));
    EXPECT_LT(items.size(), 9U);
    EXPECT_EQ(std::count(names.begin(), names.end(), "old"), 0);
    EXPECT_EQ(verbs.size(), 1U);
}

}  // namespace
}  // namespace corvane
