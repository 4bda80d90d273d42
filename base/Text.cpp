#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace corvane {

namespace {

char LowerOf(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
char UpperOf(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

}  // namespace

std::string ToLower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), LowerOf);
    return result;
}

std::string ToUpper(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), UpperOf);
    return result;
}

std::string Trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string Without(std::string_view text, char drop) {
    std::string result(text);
    std::erase(result, drop);
    return result;
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    std::size_t start = 0;
    for (std::size_t at = text.find(separator); at != std::string_view::npos;
         at = text.find(separator, start)) {
        pieces.emplace_back(text.substr(start, at - start));
        start = at + 1;
    }
    pieces.emplace_back(text.substr(start));
    return pieces;
}

std::string Join(const std::vector<std::string>& pieces, std::string_view separator) {
    std::string result;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) result += separator;
        result += pieces[i];
    }
    return result;
}

double NumericValue(std::string_view text) {
    const std::string compact = Without(text, ' ');
    const char* first = compact.data();
    const char* const last = first + compact.size();
    const char* const digits = first != last && (*first == '+' || *first == '-') ? first + 1 : first;
    // from_chars also reads "inf" and "nan", which are no numbers here, and does not know the sign "+".
    if (first != last && *first == '+') ++first;
    if (digits == last || !((*digits >= '0' && *digits <= '9') || *digits == '.')) return 0;
    double value = 0;
    const auto [end, error] = std::from_chars(first, last, value);
    return error == std::errc() ? value : 0;
}

std::string ShortestDecimal(double value, int decimals) {
    char text[64];
    const auto [end, error] =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
    if (error != std::errc()) return "0";
    std::string result(text, end);
    if (result.find('.') != std::string::npos) {
        result.erase(result.find_last_not_of('0') + 1);
        if (result.back() == '.') result.pop_back();
    }
    return result == "-0" ? "0" : result;
}

std::string ByteToHex2(std::uint8_t byte) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    return {kDigits[byte >> 4], kDigits[byte & 15]};
}

std::string DottedQuad(const std::uint8_t* fourBytes) {
    std::string text;
    for (int i = 0; i < 4; ++i) {
        if (i > 0) text += '.';
        text += std::to_string(fourBytes[i]);
    }
    return text;
}

}  // namespace corvane
