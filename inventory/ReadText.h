#pragma once

#include <string>

#include "platform/Registry.h"

namespace corvane {

/// A value under HKEY_LOCAL_MACHINE as text; empty when it is missing or cannot be read.
inline std::string ReadText(const std::string& key, const std::string& name) {
    std::string text;
    static_cast<void>(RegQueryString(kHkeyLocalMachine, key, name, text));
    return text;
}

}  // namespace corvane
