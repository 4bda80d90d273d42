#pragma once

#include <exception>
#include <new>

#include "base/Refusal.h"
#include "base/Win32Error.h"

namespace corvane {

/// What `action` gives. Nothing flies out: when something is thrown, what `failed` makes of its number
/// (kNotEnoughMemory or kGenFailure) and its words, which are not empty. `failed` itself must not throw.
template <class Action, class Failed>
auto Guarded(const Action& action, const Failed& failed) noexcept -> decltype(action()) {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        return failed(Win32Error::kNotEnoughMemory, "out of memory");
    } catch (const std::exception& error) {
        const char* const words = error.what();
        return failed(Win32Error::kGenFailure, *words == '\0' ? "unknown failure" : words);
    } catch (...) {
        return failed(Win32Error::kGenFailure, "unknown failure");
    }
}

/// The refusal for Guarded's words.
inline Refusal RefusalOf(Win32Error, const char* words) noexcept {
    try {
        return Refusal(words);
    } catch (...) {
        return Refusal("out of memory");  // Short enough to need none.
    }
}

}  // namespace corvane
