#pragma once

#include <string>
#include <string_view>

/// UTF-8 to and from the system's UTF-16.
namespace corvane {

/// Each byte that is not part of valid UTF-8 becomes "?". NUL passes through.
std::wstring Wide(std::string_view utf8);

/// A surrogate without its partner becomes U+FFFD. NUL passes through.
std::string Narrow(std::wstring_view wide);

/// A path as the file functions want it: absolute and, so that it may be longer than MAX_PATH (winnt.h),
/// in the form that begins with "\\?\". The path as it is when the system cannot make it absolute.
std::wstring SystemPath(std::string_view utf8);

}  // namespace corvane
