#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The vendor list: who makes the adapters whose addresses begin with a prefix. Read once from
/// "VendorNumbers.log".
namespace corvane {

/// Name of the vendor list's file in the program folder.
inline constexpr char kVendorFileName[] = "VendorNumbers.log";

/// One manufacturer's prefix, as UTF-8 text.
struct VendorRecord {
    std::string Prefix;   ///< The first three octets of an address, six upper-case hexadecimal digits.
    std::string Name;     ///< The manufacturer.
    std::string Address;  ///< The manufacturer's postal address; may be empty.

    bool operator==(const VendorRecord&) const = default;
};

/// The records of a vendor file in the order of the file. Holds the texts as the file has them,
/// those of one maker once for all its prefixes, and an index by prefix; texts are converted when they are
/// asked for.
///
/// File format, integers little-endian: record count n (signed, 32 bits), then n records of prefix (6 bytes),
/// length of the name (16 bits), the name, length of the address (16 bits), the address. Texts are in the
/// single-byte code page. Bytes after the last record are not looked at.
class VendorTable {
 public:
    /// A table of one record without name and address, whose prefix is six NULs and so matches no adapter:
    /// what the program works with as long as no file is loaded.
    static VendorTable Empty();

    /// The table in the bytes of a vendor file. Throws RunTimeError: kInputPastEndOfFile when `contents` is
    /// shorter than its count says, kSubscriptOutOfRange when the count is 0 or less. `path` is for the
    /// words.
    static VendorTable Parse(std::string_view contents, const std::string& path);

    /// Number of records, at least one.
    [[nodiscard]] std::size_t Size() const { return starts_.size(); }

    /// Whether this is the table that Empty() makes, whose one record is no vendor.
    [[nodiscard]] bool IsPlaceholder() const;

    /// Fields of record `i`; RunTimeError kSubscriptOutOfRange when there is no such record. The prefix is
    /// the six bytes of the file, valid until the table is moved, assigned to or destroyed.
    [[nodiscard]] std::string_view Prefix(std::size_t i) const;
    [[nodiscard]] std::string Name(std::size_t i) const;
    [[nodiscard]] std::string Address(std::size_t i) const;
    [[nodiscard]] VendorRecord Record(std::size_t i) const;

    /// Name and address of record `i` without a copy: the bytes of the file, in the code page. Valid, and out
    /// of range, as Prefix is.
    [[nodiscard]] std::string_view NameBytes(std::size_t i) const;
    [[nodiscard]] std::string_view AddressBytes(std::size_t i) const;

    /// The first record whose prefix is `prefix`, letter for letter (case counts); nothing when there is
    /// none.
    [[nodiscard]] std::optional<std::size_t> FindVendor(std::string_view prefix) const;

 private:
    VendorTable() = default;

    [[nodiscard]] std::string_view TextAt(std::size_t offset) const;
    /// RunTimeError kSubscriptOutOfRange unless there is a record `i`.
    void Check(std::size_t i) const;
    /// `start` is the offset of the record's name in texts_.
    void AddRecord(std::string_view prefix, std::uint32_t start);
    /// The slot that holds the first record with this prefix or, when there is none, the one where it
    /// belongs.
    [[nodiscard]] std::size_t SlotOf(std::uint64_t key) const;

    std::string prefixes_;               ///< Six bytes for each record.
    std::string texts_;                  ///< Names and addresses with their lengths, each pair once.
    std::vector<std::uint32_t> starts_;  ///< Offset of each record's name in texts_.
    std::vector<std::uint32_t>
        slots_;  ///< Hash table, 0 = free, else a record's number + 1; a power of two long.
};

/// Reads "VendorNumbers.log" from `programFolder`, which ends in the separator. Throws RunTimeError with
/// words that name the file, the reason and a remedy: kFileNotFound, kPermissionDenied, kPathFileAccess,
/// kDeviceIoError, kOutOfMemory (larger than 256 MiB, a hundred times the registry of all prefixes there
/// are), and those of VendorTable::Parse.
VendorTable LoadVendorList(const std::string& programFolder);

/// The process-wide vendor list; VendorTable::Empty() until a loaded one is assigned.
VendorTable& Vendors();

/// Process-wide: vendors are shown by their names only. Set at start-up by the option -sv.
inline bool ShortVendorList = false;

/// What stands between name and address where both are shown.
inline constexpr char kAddressLabel[] = "   Address: ";

/// How record `i` is shown: its name, kAddressLabel and its address, or the name alone when ShortVendorList
/// is set.
std::string VendorText(const VendorTable& table, std::size_t i);

/// VendorTable::FindVendor on the process-wide list.
std::optional<std::size_t> FindVendor(std::string_view prefix);

}  // namespace corvane
