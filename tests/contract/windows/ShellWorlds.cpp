#include "platform/windows/WindowsShell.h"
#include "tests/contract/ShellWorld.h"
#include "tests/wine/contract/ShellDescription.h"

namespace corvane::contract {

namespace {

/// The tests' shell (tests/wine/shell), which must be registered in the place of the system's.
class WindowsShellWorld : public ShellWorld {
 public:
    WindowsShellWorld() {
        description_.AddPanelItem(L"Display", ShellDescription::Kind::kNoFolder);
        description_.AddPanelItem(L"Fonts", ShellDescription::Kind::kFolder);
        description_.AddConnection(L"Wireless Network", true);
        description_.AddConnection(L"Local Area Connection", true);
    }
    ShellApi& Api() override { return shell_; }
    [[nodiscard]] std::string Name() const override { return "Local Area Connection"; }
    [[nodiscard]] std::vector<std::string> Verbs(bool enabled) const override {
        return {"&Status", enabled ? "Disa&ble" : "En&able", "&Rename", "P&roperties"};
    }

 private:
    ShellDescription description_;
    WindowsShell shell_;
};

}  // namespace

std::vector<NamedWorld<ShellWorld>> SystemShellWorlds() {
    return {{"Windows", [] { return std::make_unique<WindowsShellWorld>(); }}};
}

}  // namespace corvane::contract
