#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// UTF-8 taken apart and put together (RFC 3629: no overlong forms, no surrogates, nothing above U+10FFFF).
namespace corvane {

/// The character at the start of `text`, which must not be empty, and its length in bytes; length 0 when the
/// first byte begins no valid sequence.
std::size_t DecodeUtf8(std::string_view text, char32_t& character);

/// `character` must be a valid one.
void AppendUtf8(std::string& text, char32_t character);

bool IsUtf8(std::string_view bytes);

/// Number of bytes at the start of `text` that are ASCII. Quick, since nearly all text is.
std::size_t AsciiRun(std::string_view text);

}  // namespace corvane
