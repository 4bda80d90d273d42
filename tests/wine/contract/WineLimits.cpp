#include "tests/wine/contract/WineLimits.h"

#include <algorithm>
#include <iterator>

#include "platform/windows/Windows.h"

namespace corvane::contract {

const Limit* WineLimit(const std::string& what) {
    const HMODULE system = GetModuleHandleW(L"ntdll.dll");
    if (system == nullptr || GetProcAddress(system, "wine_get_version") == nullptr) return nullptr;
    const auto* const found = std::find_if(std::begin(kWineLimits), std::end(kWineLimits),
                                           [&](const Limit& limit) { return limit.what == what; });
    return found == std::end(kWineLimits) ? nullptr : found;
}

}  // namespace corvane::contract
