#include "programs/registry/RegistryData.h"

#include <array>
#include <charconv>
#include <limits>
#include <string_view>
#include <utility>

#include "base/Text.h"
#include "platform/CodePage.h"
#include "platform/RegistryValues.h"

namespace corvane {

namespace {

// Value types beside those of Platform.h (winnt.h).
constexpr std::uint32_t kRegNone = 0;
constexpr std::uint32_t kRegExpandSz = 2;
constexpr std::uint32_t kRegDwordBigEndian = 5;
constexpr std::uint32_t kRegLink = 6;
constexpr std::uint32_t kRegQword = 11;

constexpr std::array<std::pair<std::uint32_t, std::string_view>, 9> kTypes = {{
    {kRegNone, "REG_NONE"},
    {kRegSz, "REG_SZ"},
    {kRegExpandSz, "REG_EXPAND_SZ"},
    {kRegBinary, "REG_BINARY"},
    {kRegDword, "REG_DWORD"},
    {kRegDwordBigEndian, "REG_DWORD_BIG_ENDIAN"},
    {kRegLink, "REG_LINK"},
    {kRegMultiSz, "REG_MULTI_SZ"},
    {kRegQword, "REG_QWORD"},
}};

std::string Hexadecimal(std::uint64_t number) {
    std::array<char, 16> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    return "0x" + std::string(digits.data(), end);
}

void AppendText(std::vector<std::uint8_t>& data, const std::string& text) {
    const RegistryBytes bytes = TextBytes(text);
    data.insert(data.end(), bytes.begin(), bytes.end());
    data.push_back(0);
}

Refusal MultiFromText(const std::string& text, const std::string& separator, RegistryValue& value) {
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = rest.find(separator);
        const std::string_view piece = rest.substr(0, end);
        if (piece.empty())
            return Refusal("REG_MULTI_SZ cannot hold an empty entry; take the doubled separator out");
        AppendText(value.data, std::string(piece));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + separator.size());
    }
    if (value.data.empty()) value.data.push_back(0);
    value.data.push_back(0);
    return {};
}

Refusal NumberFromText(const std::string& text, std::uint64_t most, std::size_t bytes, RegistryValue& value) {
    std::string_view digits = text;
    int base = 10;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        digits.remove_prefix(2);
        base = 16;
    }
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (error != std::errc() || end != digits.data() + digits.size() || number > most) {
        return Refusal("\"" + text + "\" is no number from 0 to " + std::to_string(most) +
                       ", decimal or 0x...");
    }
    for (std::size_t i = 0; i < bytes; ++i)
        value.data.push_back(static_cast<std::uint8_t>(number >> 8 * i & 0xFFU));
    return {};
}

Refusal BytesFromText(const std::string& text, RegistryValue& value) {
    Refusal refusal("\"" + text + "\" is not made of pairs of hexadecimal digits");
    if (text.size() % 2 != 0) return refusal;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        std::uint8_t byte = 0;
        const auto [end, error] = std::from_chars(text.data() + i, text.data() + i + 2, byte, 16);
        if (error != std::errc() || end != text.data() + i + 2) return refusal;
        value.data.push_back(byte);
    }
    return {};
}

}  // namespace

std::string RegistryTypeName(std::uint32_t type) {
    for (const auto& [number, name] : kTypes) {
        if (number == type) return std::string(name);
    }
    return "REG_TYPE(" + Hexadecimal(type) + ")";
}

std::optional<std::uint32_t> RegistryTypeFromName(const std::string& name) {
    for (const auto& [number, known] : kTypes) {
        if (known == name) return number;
    }
    return std::nullopt;
}

std::string RegistryDataText(const RegistryValue& value) {
    const std::vector<std::uint8_t>& data = value.data;
    if (value.type == kRegSz || value.type == kRegExpandSz || value.type == kRegMultiSz) {
        std::string bytes(data.begin(), data.end());
        if (bytes.ends_with('\0')) bytes.pop_back();
        if (value.type == kRegMultiSz && bytes.ends_with('\0')) bytes.pop_back();
        std::string text;
        for (const char c : FromCodePage(bytes)) c == '\0' ? text += "\\0" : text += c;
        return text;
    }
    const bool number =
        (value.type == kRegDword && data.size() == 4) || (value.type == kRegQword && data.size() == 8);
    if (number) {
        std::uint64_t sum = 0;
        for (std::size_t i = data.size(); i > 0; --i) sum = sum << 8U | data[i - 1];
        return Hexadecimal(sum);
    }
    std::string text;
    for (const std::uint8_t byte : data) text += ByteToHex2(byte);
    return text;
}

Refusal RegistryDataFromText(std::uint32_t type, const std::string& text, const std::string& separator,
                             RegistryValue& value) {
    value = {type, {}};
    switch (type) {
        case kRegSz:
        case kRegExpandSz:
            AppendText(value.data, text);
            return {};
        case kRegMultiSz:
            return MultiFromText(text, separator, value);
        case kRegDword:
            return NumberFromText(text, std::numeric_limits<std::uint32_t>::max(), 4, value);
        case kRegQword:
            return NumberFromText(text, std::numeric_limits<std::uint64_t>::max(), 8, value);
        case kRegNone:
        case kRegBinary:
            return BytesFromText(text, value);
        default:
            return Refusal("values of this type cannot be typed; import them from a file");
    }
}

}  // namespace corvane
