#include "vendors/VendorList.h"

#include <bit>
#include <cstring>
#include <functional>
#include <system_error>
#include <utility>

#include "base/RunTimeError.h"
#include "base/Text.h"
#include "platform/CodePage.h"
#include "platform/Files.h"

namespace corvane {

namespace {

constexpr std::size_t kCountBytes = 4;
constexpr std::size_t kPrefixBytes = 6;
constexpr std::size_t kLengthBytes = 2;
/// A record with two empty texts.
constexpr std::size_t kSmallestRecord = kPrefixBytes + 2 * kLengthBytes;

/// Larger files are refused, which also keeps every offset within 32 bits.
constexpr std::uintmax_t kLargestFile = std::uintmax_t{256} * 1024 * 1024;

constexpr char kRemedy[] = "Put back the file that came with the program.";

std::uint8_t ByteAt(std::string_view bytes, std::size_t offset) {
    return static_cast<std::uint8_t>(bytes[offset]);
}

std::size_t LengthAt(std::string_view bytes, std::size_t offset) {
    return ByteAt(bytes, offset) + (std::size_t{ByteAt(bytes, offset + 1)} << 8U);
}

std::int32_t CountAt(std::string_view bytes) {
    std::uint32_t count = 0;
    for (std::size_t i = kCountBytes; i-- > 0;) count = (count << 8U) | ByteAt(bytes, i);
    return static_cast<std::int32_t>(count);
}

/// The six bytes of a prefix as a number. Two overlapping reads of four bytes do it without a loop.
std::uint64_t KeyOf(const char* prefix) {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    std::memcpy(&first, prefix, sizeof first);
    std::memcpy(&last, prefix + kPrefixBytes - sizeof last, sizeof last);
    return first | (std::uint64_t{last} << 32U);
}

/// Spreads the keys: hexadecimal digits differ in a few bits only. Multiplication moves them to the top,
/// which is then folded onto the bits that pick the slot. The factor is 2^64 divided by the golden ratio.
std::size_t HashOf(std::uint64_t key) {
    key *= 0x9E3779B97F4A7C15U;
    key ^= key >> 32U;
    key *= 0x9E3779B97F4A7C15U;
    return static_cast<std::size_t>(key >> 32U);
}

/// Texts of records one after the other, each kept once: a maker has up to a thousand prefixes with the same
/// name and address.
class TextPool {
 public:
    /// For up to `texts` texts of together up to `bytes` bytes.
    TextPool(std::size_t texts, std::size_t bytes) : slots_(std::bit_ceil(texts * 2), kFree) {
        bytes_.reserve(bytes);
    }

    /// Where the text begins among the bytes; it is added when it is new.
    std::uint32_t Place(std::string_view text) {
        const std::size_t mask = slots_.size() - 1;
        std::size_t slot = std::hash<std::string_view>{}(text)&mask;
        while (slots_[slot] != kFree) {
            if (std::string_view(bytes_).substr(slots_[slot], text.size()) == text) return slots_[slot];
            slot = (slot + 1) & mask;
        }
        slots_[slot] = static_cast<std::uint32_t>(bytes_.size());
        bytes_ += text;
        return slots_[slot];
    }

    [[nodiscard]] std::string TakeBytes() { return std::move(bytes_); }

 private:
    static constexpr std::uint32_t kFree = 0xFFFFFFFF;

    std::string bytes_;
    std::vector<std::uint32_t> slots_;
};

[[noreturn]] void FailShort(const std::string& path) {
    throw RunTimeError(RunTimeError::kInputPastEndOfFile,
                       "The vendor list " + path + " is shorter than its record count says. " + kRemedy);
}

}  // namespace

VendorTable VendorTable::Empty() {
    VendorTable table;
    table.texts_.assign(2 * kLengthBytes, '\0');
    table.slots_.assign(2, 0);
    table.AddRecord(std::string_view("\0\0\0\0\0\0", kPrefixBytes), 0);
    return table;
}

bool VendorTable::IsPlaceholder() const {
    return Size() == 1 && Prefix(0) == std::string_view("\0\0\0\0\0\0", 6);
}

VendorTable VendorTable::Parse(std::string_view bytes, const std::string& path) {
    if (bytes.size() < kCountBytes) FailShort(path);
    const std::int32_t count = CountAt(bytes);
    if (count <= 0) {
        throw RunTimeError(
            RunTimeError::kSubscriptOutOfRange,
            "The vendor list " + path + " has the record count " + std::to_string(count) + ". " + kRemedy);
    }
    const auto records = static_cast<std::size_t>(count);
    // Before any memory is asked for: a damaged count may be in the billions.
    if (records > (bytes.size() - kCountBytes) / kSmallestRecord) FailShort(path);

    VendorTable table;
    table.prefixes_.reserve(records * kPrefixBytes);
    table.starts_.reserve(records);
    table.slots_.assign(std::bit_ceil(records * 2), 0);
    TextPool pool(records, bytes.size());
    std::size_t offset = kCountBytes;
    for (std::size_t i = 0; i < records; ++i) {
        if (bytes.size() - offset < kSmallestRecord) FailShort(path);
        const std::string_view prefix = bytes.substr(offset, kPrefixBytes);
        offset += kPrefixBytes;
        const std::size_t start = offset;
        const std::size_t nameLength = LengthAt(bytes, offset);
        offset += kLengthBytes;
        if (bytes.size() - offset < nameLength + kLengthBytes) FailShort(path);
        offset += nameLength;
        const std::size_t addressLength = LengthAt(bytes, offset);
        offset += kLengthBytes;
        if (bytes.size() - offset < addressLength) FailShort(path);
        offset += addressLength;
        table.AddRecord(prefix, pool.Place(bytes.substr(start, offset - start)));
    }
    table.texts_ = pool.TakeBytes();
    return table;
}

void VendorTable::AddRecord(std::string_view prefix, std::uint32_t start) {
    prefixes_ += prefix;
    starts_.push_back(start);
    const std::uint64_t key = KeyOf(prefix.data());
    const std::size_t slot = SlotOf(key);
    if (slots_[slot] == 0) slots_[slot] = static_cast<std::uint32_t>(starts_.size());
}

std::size_t VendorTable::SlotOf(std::uint64_t key) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = HashOf(key) & mask;
    while (slots_[slot] != 0 && KeyOf(prefixes_.data() + (slots_[slot] - 1) * kPrefixBytes) != key)
        slot = (slot + 1) & mask;
    return slot;
}

std::optional<std::size_t> VendorTable::FindVendor(std::string_view prefix) const {
    if (prefix.size() != kPrefixBytes) return std::nullopt;
    const std::uint32_t found = slots_[SlotOf(KeyOf(prefix.data()))];
    if (found == 0) return std::nullopt;
    return found - 1;
}

void VendorTable::Check(std::size_t i) const {
    if (i < starts_.size()) return;
    throw RunTimeError(RunTimeError::kSubscriptOutOfRange,
                       "The vendor list has no record " + std::to_string(i) + "; choose one of the " +
                           std::to_string(starts_.size()) + " that it has.");
}

std::string_view VendorTable::TextAt(std::size_t offset) const {
    return std::string_view(texts_).substr(offset + kLengthBytes, LengthAt(texts_, offset));
}

std::string_view VendorTable::Prefix(std::size_t i) const {
    Check(i);
    return std::string_view(prefixes_).substr(i * kPrefixBytes, kPrefixBytes);
}

std::string_view VendorTable::NameBytes(std::size_t i) const {
    Check(i);
    return TextAt(starts_[i]);
}

std::string_view VendorTable::AddressBytes(std::size_t i) const {
    const std::size_t nameLength = NameBytes(i).size();
    return TextAt(starts_[i] + kLengthBytes + nameLength);
}

std::string VendorTable::Name(std::size_t i) const { return FromCodePage(NameBytes(i)); }

std::string VendorTable::Address(std::size_t i) const { return FromCodePage(AddressBytes(i)); }

VendorRecord VendorTable::Record(std::size_t i) const {
    return {.Prefix = FromCodePage(Prefix(i)), .Name = Name(i), .Address = Address(i)};
}

VendorTable LoadVendorList(const std::string& programFolder) {
    const std::string path = programFolder + kVendorFileName;
    std::uintmax_t size = 0;
    std::error_code failure = FileSize(path, size);
    if (failure) throw UnreadableFile("The vendor list " + path, failure, kRemedy);
    if (size > kLargestFile) {
        throw RunTimeError(RunTimeError::kOutOfMemory, "The vendor list " + path + " is too large: " +
                                                           std::to_string(size) + " bytes. " + kRemedy);
    }
    std::string contents;
    failure = ReadFileContents(path, contents);
    if (failure) throw UnreadableFile("The vendor list " + path, failure, kRemedy);
    return VendorTable::Parse(contents, path);
}

VendorTable& Vendors() {
    static VendorTable table = VendorTable::Empty();
    return table;
}

std::string VendorText(const VendorTable& table, std::size_t i) {
    if (ShortVendorList) return table.Name(i);
    return table.Name(i) + kAddressLabel + table.Address(i);
}

std::optional<std::size_t> FindVendor(std::string_view prefix) { return Vendors().FindVendor(prefix); }

}  // namespace corvane
