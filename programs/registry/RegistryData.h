#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/Refusal.h"
#include "platform/Platform.h"

/// Registry values as text, in the forms of reg.exe.
namespace corvane {

/// "REG_SZ" and the like; "REG_TYPE(0x...)" for a number without a name.
std::string RegistryTypeName(std::uint32_t type);

/// The number of a type name in capitals; nothing for another text.
std::optional<std::uint32_t> RegistryTypeFromName(const std::string& name);

/// A value for showing: text without one terminating NUL, REG_MULTI_SZ and other NULs inside text as "\0",
/// numbers of the proper length as 0x..., everything else as hexadecimal bytes in capitals.
std::string RegistryDataText(const RegistryValue& value);

/// Makes a value of `type` from typed text; `value` is meaningless when that is refused. REG_SZ gets its
/// terminating NUL; REG_MULTI_SZ is split at `separator`; numbers are decimal or 0x and hexadecimal;
/// REG_BINARY and REG_NONE are pairs of digits.
Refusal RegistryDataFromText(std::uint32_t type, const std::string& text, const std::string& separator,
                             RegistryValue& value);

}  // namespace corvane
