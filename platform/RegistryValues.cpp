#include "platform/RegistryValues.h"

#include <algorithm>
#include <cstddef>

#include "base/Text.h"
#include "platform/CodePage.h"

namespace corvane {

namespace {

std::string_view CharactersOf(const RegistryBytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

RegistryBytes TextBytes(std::string_view text) {
    const std::string bytes = ToCodePage(text);
    return {bytes.begin(), bytes.end()};
}

RegistryValue TextValue(std::string_view text) {
    RegistryValue value{kRegSz, TextBytes(text)};
    value.data.push_back(0);
    return value;
}

std::string TextBeforeLastByte(const RegistryBytes& bytes) {
    return FromCodePage(CharactersOf(bytes).substr(0, std::max<std::size_t>(bytes.size(), 1) - 1));
}

std::string TextBeforeNul(const RegistryBytes& bytes) {
    const std::string_view characters = CharactersOf(bytes);
    return FromCodePage(characters.substr(0, characters.find('\0')));
}

std::string TextWithoutNuls(const RegistryBytes& bytes) {
    return Without(FromCodePage(CharactersOf(bytes)), '\0');
}

RegistryValue ListValue(const std::vector<std::string>& entries) {
    return {kRegMultiSz, TextBytes(entries.empty() ? kEmptyListText : ListText(entries))};
}

std::vector<std::string> ListFrom(const RegistryBytes& bytes) {
    std::vector<std::string> entries = Split(FromCodePage(CharactersOf(bytes)), '\0');
    while (!entries.empty() && entries.back().empty()) entries.pop_back();
    return entries;
}

std::string ListText(const std::vector<std::string>& entries) {
    static const std::string kNul(1, '\0');
    return Join(entries, kNul) + kNul + kNul;
}

std::vector<std::string> ListPieces(std::string_view text) { return Split(text, '\0'); }

std::vector<std::string> ListEntries(std::string_view text) {
    if (text.ends_with('\0')) text.remove_suffix(1);
    return Split(text, '\0');
}

RegistryBytes DwordBytes(std::uint32_t value) {
    RegistryBytes bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift & 0xFFU));
    return bytes;
}

RegistryValue DwordValue(std::uint32_t value) { return {kRegDword, DwordBytes(value)}; }

std::uint32_t DwordFrom(const RegistryBytes& bytes) {
    std::uint32_t number = 0;
    for (std::size_t i = std::min<std::size_t>(bytes.size(), 4); i > 0; --i)
        number = number << 8U | bytes[i - 1];
    return number;
}

bool FlagFrom(const RegistryBytes& bytes) { return !bytes.empty() && bytes[0] != 0; }

}  // namespace corvane
