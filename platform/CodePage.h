#pragma once

#include <string>
#include <string_view>

/// The door between UTF-8 (inside) and the single-byte code page (registry values, data files).
namespace corvane {

/// UTF-8 to the system's single-byte code page (the ANSI code page on Windows, 1252 elsewhere). A character
/// that it does not hold, and each invalid byte, becomes "?". NUL passes through. Defined by the back-end.
std::string ToCodePage(std::string_view utf8);

/// The single-byte code page to UTF-8. Every byte sequence is accepted; the five bytes that 1252 leaves open
/// map to the C1 control of the same number. Defined by the back-end.
std::string FromCodePage(std::string_view bytes);

}  // namespace corvane
