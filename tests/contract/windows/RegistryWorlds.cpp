#include <string>

#include "platform/windows/Windows.h"
#include "platform/windows/WindowsRegistry.h"
#include "tests/contract/RegistryWorld.h"
#include "tests/wine/contract/WineLimits.h"

namespace corvane::contract {

namespace {

/// This machine's registry, of which the world uses two keys.
class WindowsRegistryWorld : public RegistryWorld {
 public:
    WindowsRegistryWorld() { RemoveKeys(); }
    ~WindowsRegistryWorld() override { RemoveKeys(); }

    std::shared_ptr<RegistryApi> Registry() override { return registry_; }

    std::vector<std::string> RootKeys() override {
        std::vector<std::string> keys;
        char name[256];
        for (DWORD i = 0; RegEnumKeyA(HKEY_LOCAL_MACHINE, i, name, sizeof name) == ERROR_SUCCESS; ++i)
            keys.emplace_back(name);
        return keys;
    }
    /// 0x80000001 is the user's part.
    [[nodiscard]] RegistryRoot UnknownRoot() const override { return 0x80000099U; }
    /// Type 2 is a text to the single-byte functions.
    [[nodiscard]] std::vector<std::uint32_t> TypesOfBytes() const override {
        return {0, 3, 4, 11, 0xFFFFFFFFU};
    }
    [[nodiscard]] bool NamesMayHoldNul() const override { return false; }
    /// The single-byte functions convert paths in a buffer of MAX_PATH characters (winnt.h).
    [[nodiscard]] std::size_t LongestPath() const override { return MAX_PATH - 1; }
    [[nodiscard]] std::size_t LongestKeyName() const override { return 255; }
    [[nodiscard]] const Limit* LimitOf(const std::string& what) const override { return WineLimit(what); }

 private:
    static void RemoveKeys() {
        for (const char* key : {"SOFTWARE\\Test", "SOFTWARE\\Missing"})
            RegDeleteTreeA(HKEY_LOCAL_MACHINE, key);
    }

    std::shared_ptr<RegistryApi> registry_ = std::make_shared<WindowsRegistry>();
};

}  // namespace

std::vector<NamedWorld<RegistryWorld>> SystemRegistryWorlds() {
    return {{"Windows", [] { return std::make_unique<WindowsRegistryWorld>(); }}};
}

}  // namespace corvane::contract
