#include <filesystem>

#include "netns/NetnsSupport.h"
#include "platform/linux/IpHelper.h"
#include "platform/linux/links/Machine.h"
#include "tests/contract/IpHelperWorld.h"

namespace corvane::contract {

namespace {

class LinuxIpHelperWorld : public IpHelperWorld {
 public:
    LinuxIpHelperWorld() {
        netns::Ip("link set " + live_.Name() + " address 02:00:5e:00:53:01");
        live_.BringUp();
    }
    ~LinuxIpHelperWorld() override { std::filesystem::remove_all(folder_); }
    IpHelperApi& Api() override { return helper_; }
    [[nodiscard]] std::uint32_t Live() const override { return live_.Index(); }
    [[nodiscard]] std::uint32_t Down() const override { return down_.Index(); }

 private:
    std::string folder_ = "/run/" + netns::NewLinkName("contract");
    netns::ScopedVeth live_;
    netns::ScopedVeth down_;
    IpHelper helper_{std::make_shared<Machine>(folder_ + "/registry.db")};
};

}  // namespace

std::vector<NamedWorld<IpHelperWorld>> SystemIpHelperWorlds() {
    return {{"Linux", [] { return std::make_unique<LinuxIpHelperWorld>(); }}};
}

}  // namespace corvane::contract
