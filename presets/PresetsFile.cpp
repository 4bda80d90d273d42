#include "presets/PresetsFile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <system_error>
#include <utility>

#include "base/RunTimeError.h"
#include "base/Text.h"
#include "platform/CodePage.h"
#include "platform/Files.h"
#include "platform/Seat.h"

namespace corvane {

namespace {

constexpr char kRemedy[] = "Put back a good copy of the file, or one of four zero bytes for an empty list.";

/// The lists of a record in the order of the file.
constexpr std::array kLists = {&PresetRecord::IpAddresses, &PresetRecord::SubnetMasks,
                               &PresetRecord::Gateways, &PresetRecord::GatewayMetrics,
                               &PresetRecord::DnsServers};

/// Takes values off the front of a file's bytes. Every call gives nothing once the bytes have run out.
class Reader {
 public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    /// An unsigned number of `size` bytes, at most four.
    std::optional<std::uint32_t> Number(std::size_t size) {
        const std::optional<std::string_view> bytes = Take(size);
        if (!bytes) return std::nullopt;
        std::uint32_t value = 0;
        for (std::size_t i = size; i-- > 0;) value = (value << 8U) | static_cast<unsigned char>((*bytes)[i]);
        return value;
    }

    std::optional<std::string> Text() {
        const std::optional<std::uint32_t> length = Number(2);
        const std::optional<std::string_view> bytes = length ? Take(*length) : std::nullopt;
        if (!bytes) return std::nullopt;
        return FromCodePage(*bytes);
    }

    [[nodiscard]] std::size_t Left() const { return bytes_.size(); }

 private:
    std::optional<std::string_view> Take(std::size_t size) {
        if (size > bytes_.size()) {
            bytes_ = {};
            return std::nullopt;
        }
        const std::string_view taken = bytes_.substr(0, size);
        bytes_.remove_prefix(size);
        return taken;
    }

    std::string_view bytes_;
};

std::optional<PresetList> ReadList(Reader& reader, const std::string& path) {
    const std::optional<std::uint32_t> dimensions = reader.Number(2);
    if (!dimensions) return std::nullopt;
    if (*dimensions == 0) return PresetList();
    if (*dimensions != 1) {
        throw RunTimeError(RunTimeError::kBadFileFormat,
                           "The presets file " + path + " is damaged: a list has " +
                               std::to_string(*dimensions) + " dimensions. " + kRemedy);
    }
    const std::optional<std::uint32_t> count = reader.Number(4);
    const std::optional<std::uint32_t> lowerBound = reader.Number(4);
    // Each text takes two bytes at least: a damaged count ends here, before anything is made of it.
    if (!count || !lowerBound || *count > reader.Left() / 2) return std::nullopt;
    PresetList list(std::vector<std::string>{});
    for (std::uint32_t i = 0; i < *count; ++i) {
        std::optional<std::string> text = reader.Text();
        if (!text) return std::nullopt;
        list.Items.push_back(std::move(*text));
    }
    return list;
}

std::optional<PresetRecord> ReadRecord(Reader& reader, const std::string& path) {
    PresetRecord record;
    std::optional<std::string> name = reader.Text();
    const std::optional<std::uint32_t> flags = reader.Number(1);
    std::optional<std::string> mac = reader.Text();
    if (!name || !flags || !mac) return std::nullopt;
    record.Name = std::move(*name);
    record.Flags = static_cast<std::uint8_t>(*flags);
    record.Mac = std::move(*mac);
    for (const auto member : kLists) {
        std::optional<PresetList> list = ReadList(reader, path);
        if (!list) return std::nullopt;
        record.*member = std::move(*list);
    }
    return record;
}

void AppendNumber(std::string& bytes, std::size_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8U * i));
}

void AppendText(std::string& bytes, const std::string& text) {
    const std::string converted = ToCodePage(text).substr(0, kLongestPresetText);
    AppendNumber(bytes, converted.size(), 2);
    bytes += converted;
}

void AppendList(std::string& bytes, const PresetList& list) {
    AppendNumber(bytes, list.Allocated ? 1 : 0, 2);
    if (!list.Allocated) return;
    AppendNumber(bytes, list.Items.size(), 4);
    AppendNumber(bytes, 0, 4);
    for (const std::string& item : list.Items) AppendText(bytes, item);
}

/// Reads up to kLargestPresetsFile bytes of a file. `size` becomes the size of the whole file.
std::error_code ReadBeginning(const std::string& path, std::string& bytes, std::uintmax_t& size) {
    const std::error_code failure = FileSize(path, size);
    return failure ? failure : ReadFileContents(path, bytes, kLargestPresetsFile);
}

std::error_code Save(const std::string& path) {
    std::string bytes = BuildPresets(Presets());
    // A larger file could not be read again.
    if (bytes.size() > kLargestPresetsFile) return std::make_error_code(std::errc::file_too_large);
    std::string old;
    std::uintmax_t oldSize = 0;
    const std::error_code failure = ReadBeginning(path, old, oldSize);
    if (failure && failure != std::errc::no_such_file_or_directory) return failure;
    if (old.size() > bytes.size()) bytes.append(old, bytes.size());
    return ReplaceFileContents(path, bytes);
}

}  // namespace

std::vector<PresetRecord>& Presets() {
    static std::vector<PresetRecord> presets(1);
    return presets;
}

std::vector<PresetRecord> ParsePresets(std::string_view bytes, bool cut, const std::string& path) {
    Reader reader(bytes);
    // A file that is too short even for its count holds no record.
    const auto count = static_cast<std::int32_t>(reader.Number(4).value_or(0));
    if (count < 0) {
        throw RunTimeError(
            RunTimeError::kSubscriptOutOfRange,
            "The presets file " + path + " has the record count " + std::to_string(count) + ". " + kRemedy);
    }
    const auto records = static_cast<std::size_t>(std::max(count, 1));
    std::vector<PresetRecord> presets;
    while (presets.size() < records) {
        std::optional<PresetRecord> record = ReadRecord(reader, path);
        if (!record) break;
        presets.push_back(std::move(*record));
    }
    if (presets.size() < records && cut) {
        throw RunTimeError(RunTimeError::kOutOfMemory, "The presets in " + path + " take more than " +
                                                           std::to_string(kLargestPresetsFile) + " bytes. " +
                                                           kRemedy);
    }
    presets.resize(std::max(presets.size(), std::min(records, kMostMissingPresets)));
    return presets;
}

std::string BuildPresets(const std::vector<PresetRecord>& presets) {
    std::string bytes;
    AppendNumber(bytes, presets.size(), 4);
    for (const PresetRecord& record : presets) {
        AppendText(bytes, record.Name);
        AppendNumber(bytes, record.Flags, 1);
        AppendText(bytes, record.Mac);
        for (const auto member : kLists) AppendList(bytes, record.*member);
    }
    return bytes;
}

void ReadPresets(const std::string& programFolder) {
    const std::string path = programFolder + kPresetsFileName;
    std::string bytes;
    std::uintmax_t size = 0;
    if (const std::error_code failure = ReadBeginning(path, bytes, size))
        throw UnreadableFile("The presets file " + path, failure, kRemedy);
    Presets() = ParsePresets(bytes, size > kLargestPresetsFile, path);
}

bool SavePresets(const std::string& programFolder) {
    const std::string path = programFolder + kPresetsFileName;
    const std::error_code failure = Save(path);
    if (!failure) return true;
    const std::string text =
        Join({"ERROR ! Presets file could not be saved.", "", "Error : " + std::to_string(failure.value()),
              "Description : " + failure.message() + ": " + path, "", "Click OK to continue"},
             kCrLf);
    CurrentSeat().ShowBox(kApplicationTitle, text, BoxIcon::kCritical, BoxButtons::kOk);
    return false;
}

}  // namespace corvane
