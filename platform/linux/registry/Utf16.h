#pragma once

#include <string>
#include <string_view>

/// UTF-8 to and from UTF-16LE bytes, without marks. NUL passes through.
namespace corvane {

/// Each byte that is not part of valid UTF-8 becomes U+FFFD.
std::string Utf16LeFromUtf8(std::string_view utf8);

/// A surrogate without its partner becomes U+FFFD; a single byte at the end is left out.
std::string Utf8FromUtf16Le(std::string_view bytes);

}  // namespace corvane
