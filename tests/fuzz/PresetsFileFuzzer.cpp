#include <optional>
#include <string>
#include <vector>

#include "base/RunTimeError.h"
#include "presets/PresetsFile.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/Targets.h"

namespace corvane::fuzz {

namespace {

/// Nothing when the bytes were refused.
std::optional<std::vector<PresetRecord>> Parse(std::string_view bytes, bool cut) {
    try {
        return ParsePresets(bytes, cut, "presets");
    } catch (const RunTimeError& error) {
        const int number = error.Number();
        Require(number == RunTimeError::kSubscriptOutOfRange || number == RunTimeError::kBadFileFormat ||
                    (cut && number == RunTimeError::kOutOfMemory),
                "a file is refused with one of the numbers of its contract");
        return std::nullopt;
    }
}

/// A list of tens of thousands of unused slots takes its time. It is made only of a file that is a count
/// alone; of others the count becomes one that is soon reached, unless it is negative.
std::string WithNearCount(std::string_view given) {
    constexpr std::size_t kCountAlone = 4;
    std::string bytes(given);
    if (bytes.size() > kCountAlone && (bytes[3] & 0x80) == 0) bytes.replace(1, 3, 3, '\0');
    return bytes;
}

}  // namespace

bool CheckPresetsFile(std::string_view given) {
    const std::string bytes = WithNearCount(given);
    std::optional<std::vector<PresetRecord>> presets = Parse(bytes, false);
    const std::optional<std::vector<PresetRecord>> ofTheBeginning = Parse(bytes, true);
    Require(!ofTheBeginning || ofTheBeginning == presets, "the beginning of a file reads as the file");
    if (!presets) return false;
    Require(!presets->empty() && presets->size() <= kMostMissingPresets + bytes.size(),
            "a list has a slot, and no more than its limit beyond the file");
    while (!presets->empty() && presets->back() == PresetRecord()) presets->pop_back();
    if (presets->empty()) return true;
    const std::string written = BuildPresets(*presets);
    Require(written.size() <= bytes.size(), "no more is read than the file holds");
    Require(Parse(written, false) == presets, "what is written reads the same");
    return true;
}

}  // namespace corvane::fuzz
