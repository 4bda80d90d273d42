#pragma once

#include <cstdint>
#include <string>
#include <system_error>

/// File operations that the standard library does not offer safely. Paths are UTF-8; errors compare with
/// std::errc and have readable messages. Defined by the back-end.
namespace corvane {

/// Replaces the file at `path` (made if missing, links followed) by `contents` in one step: whoever reads it,
/// and whoever looks after a crash, finds the old or the new contents whole. Keeps mode and owner of an old
/// file. On failure the old file is as it was.
std::error_code ReplaceFileContents(const std::string& path, const std::string& contents);

/// Reads a whole file, or its first `atMost` bytes. `contents` is empty on failure.
std::error_code ReadFileContents(const std::string& path, std::string& contents,
                                 std::uintmax_t atMost = UINTMAX_MAX);

/// Size of a regular file in bytes. On failure `size` is as it was.
std::error_code FileSize(const std::string& path, std::uintmax_t& size);

}  // namespace corvane
