#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "presets/PresetRecord.h"

/// The list of presets and its file, "presets.npf" in the program folder.
///
/// File format, integers little-endian: record count N (signed, 32 bits), then N records without padding. A
/// record is the name, the flags (1 byte), the MAC address and the five lists in the order of PresetRecord. A
/// text is its length (16 bits) and that many bytes in the single-byte code page. A list is its number of
/// dimensions (16 bits): 0 for one that is not allocated; or 1, followed by the number of texts (32 bits),
/// the lower bound (32 bits, written as 0 and ignored when read) and the texts. Bytes after the last record
/// belong to nothing.
namespace corvane {

inline constexpr char kPresetsFileName[] = "presets.npf";

/// Longest text in the file, in bytes of the code page. Longer texts are cut when they are written.
inline constexpr std::size_t kLongestPresetText = 65535;

/// Most bytes of a presets file that are read or written: room for more than 10000 presets, and a bound to
/// what a damaged file can make the program take (a list of a few hundred MiB).
inline constexpr std::size_t kLargestPresetsFile = std::size_t{16} * 1024 * 1024;

/// Of the records that the count announces but the file does not hold, those from this number on are not
/// kept.
inline constexpr std::size_t kMostMissingPresets = 65536;

/// The process-wide list of presets. Always at least one element; at start one unused slot.
std::vector<PresetRecord>& Presets();

/// The records in `bytes`, the beginning of a presets file (the whole file if it is not `cut`). At least one:
/// a count of 0 gives one unused slot. A record that does not lie whole within the file reads as an unused
/// slot, as do those after it; the list then ends at the count or at kMostMissingPresets, whichever comes
/// first. Throws RunTimeError: kSubscriptOutOfRange for a negative count, kBadFileFormat for a list of more
/// than one dimension, kOutOfMemory when records lie beyond the end of `bytes` and the file is `cut`. `path`
/// is for the words.
std::vector<PresetRecord> ParsePresets(std::string_view bytes, bool cut, const std::string& path);

/// The bytes of a presets file that holds `presets`. What the code page does not hold becomes "?".
std::string BuildPresets(const std::vector<PresetRecord>& presets);

/// Replaces the process-wide list by the file's content. `programFolder` ends in the separator. Throws
/// RunTimeError with words that name the file, the reason and a remedy, and leaves the list as it was:
/// kFileNotFound, kPermissionDenied, kPathFileAccess, kDeviceIoError, and those of ParsePresets.
void ReadPresets(const std::string& programFolder);

/// Writes the process-wide list over the beginning of the file; what the old file had beyond it stays behind
/// the last record (up to kLargestPresetsFile bytes in all). The file is made when it is missing. It is
/// replaced in one step, so a save that is cut off leaves the old file whole. False after a failure, which
/// has then been shown in a box; the list stays as it is.
bool SavePresets(const std::string& programFolder);

}  // namespace corvane
