#pragma once

#include <string>

namespace corvane {

/// The character that the backspace key types (ASCII BS).
inline constexpr int kBackspace = 8;

/// Number of characters of a box that holds ASCII only; what carets and selections count in.
inline int LengthOf(const std::string& text) { return static_cast<int>(text.size()); }

}  // namespace corvane
