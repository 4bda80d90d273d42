#include "platform/windows/WindowsIpHelper.h"
#include "tests/contract/IpHelperWorld.h"
#include "tests/wine/contract/Links.h"
#include "tests/wine/contract/WineLimits.h"

namespace corvane::contract {

namespace {

class WindowsIpHelperWorld : public IpHelperWorld {
 public:
    IpHelperApi& Api() override { return helper_; }
    [[nodiscard]] std::uint32_t Live() const override { return LinkIndex("CORVANE_LIVE"); }
    [[nodiscard]] std::uint32_t Down() const override { return LinkIndex("CORVANE_DOWN"); }
    [[nodiscard]] const Limit* LimitOf(const std::string& what) const override { return WineLimit(what); }

 private:
    WindowsIpHelper helper_;
};

}  // namespace

std::vector<NamedWorld<IpHelperWorld>> SystemIpHelperWorlds() {
    return {{"Windows", [] { return std::make_unique<WindowsIpHelperWorld>(); }}};
}

}  // namespace corvane::contract
