#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Text helpers. All text is UTF-8.
namespace corvane {

/// Lower and upper case of the ASCII letters; other bytes stay. Locale plays no part.
std::string ToLower(std::string_view text);
std::string ToUpper(std::string_view text);

/// `text` without blanks at either end.
std::string Trim(std::string_view text);

/// `text` without any `drop` in it.
std::string Without(std::string_view text, char drop);

/// The pieces between separators: at least one, empty ones included.
std::vector<std::string> Split(std::string_view text, char separator);

std::string Join(const std::vector<std::string>& pieces, std::string_view separator);

/// Number at the start of the text: blanks skipped, decimal digits with sign, fraction and exponent; 0 when
/// there is none.
double NumericValue(std::string_view text);

/// A value rounded to `decimals` places (0 to 9), in its shortest decimal text: no trailing zeros, no
/// exponent for magnitudes below 1e15, "." as the point.
std::string ShortestDecimal(double value, int decimals);

/// Upper-case hexadecimal with a leading "0" below 16.
std::string ByteToHex2(std::uint8_t byte);

/// Bytes in memory order as a dotted quad.
std::string DottedQuad(const std::uint8_t* fourBytes);

}  // namespace corvane
