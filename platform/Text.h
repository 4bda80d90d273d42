#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Text helpers and the door between UTF-8 (inside) and the single-byte code page (registry values, data
/// files).
namespace corvane {

/// UTF-8 to the system's single-byte code page (the ANSI code page on Windows, 1252 elsewhere). A character
/// that it does not hold, and each invalid byte, becomes "?". NUL passes through. Defined by the back-end.
std::string ToCodePage(std::string_view utf8);

/// The single-byte code page to UTF-8. Every byte sequence is accepted; the five bytes that 1252 leaves open
/// map to the C1 control of the same number. Defined by the back-end.
std::string FromCodePage(std::string_view bytes);

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

/// Number at the start of the text as Val reads it: blanks skipped, decimal digits with sign, fraction and
/// exponent; 0 when there is none.
double NumericValue(std::string_view text);

/// A value rounded to `decimals` places (0 to 9), in its shortest decimal text: no trailing zeros, no
/// exponent for magnitudes below 1e15, "." as the point.
std::string ShortestDecimal(double value, int decimals);

/// Upper-case hexadecimal with a leading "0" below 16.
std::string ByteToHex2(std::uint8_t byte);

/// Bytes in memory order as a dotted quad.
std::string DottedQuad(const std::uint8_t* fourBytes);

}  // namespace corvane
