#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/registry/RegistryStore.h"

/// The text files in which registries are exchanged (.reg): "Windows Registry Editor Version 5.00" and
/// "REGEDIT4". Registry text is single-byte in the store (see Text.h) and UTF-16 in files of version 5; it is
/// converted here.
namespace corvane {

inline constexpr char kLocalMachine[] = "HKEY_LOCAL_MACHINE";

struct RegFileContents {
    /// What the file orders, in its order. Meaningful only when `problem` is empty.
    std::vector<RegistryStore::Change> changes;
    /// What is wrong with the file, in words without a full stop, and the line (from 1) where it is.
    std::string problem;
    std::size_t line = 0;
};

/// Reads a file: version 5 as UTF-16LE, UTF-8 or (without a mark and not valid UTF-8) code page 1252,
/// REGEDIT4 as code page 1252. Any bytes are accepted; what is not understood in full is a problem, nothing
/// is skipped.
RegFileContents ParseRegFile(std::string_view bytes);

/// One key with its values; `path` starts below HKEY_LOCAL_MACHINE.
struct RegFileKey {
    std::string path;
    std::vector<NamedValue> values;
};

struct RegFileText {
    std::string bytes;
    /// Names that the format cannot hold as they are (line breaks, bytes that are not UTF-8); such characters
    /// were written as U+FFFD.
    std::size_t changedNames = 0;
};

/// Writes a file of version 5 in UTF-16LE with its mark and CR LF line ends. Parsing it gives the same
/// values, byte for byte: text that the quoted form would not reproduce is written as hex(1).
RegFileText PrintRegFile(const std::vector<RegFileKey>& keys);

/// Takes the root off a full key name: "HKLM" or "HKEY_LOCAL_MACHINE", in any case, alone or followed by "\".
/// Nothing when the name starts with something else.
std::optional<std::string> StripRoot(std::string_view fullName);

}  // namespace corvane
