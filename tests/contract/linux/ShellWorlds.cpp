#include <filesystem>

#include "netns/NetnsSupport.h"
#include "platform/linux/ConnectionsFolder.h"
#include "platform/linux/links/Machine.h"
#include "tests/contract/ShellWorld.h"

namespace corvane::contract {

namespace {

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

}  // namespace

std::vector<NamedWorld<ShellWorld>> SystemShellWorlds() {
    return {{"Linux", [] { return std::make_unique<LinuxShellWorld>(); }}};
}

}  // namespace corvane::contract
