#include <string>

#include "base/RunTimeError.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/Targets.h"
#include "vendors/VendorList.h"

namespace corvane::fuzz {

namespace {

void AppendText(std::string& bytes, std::string_view text) {
    bytes += static_cast<char>(text.size() & 0xFFU);
    bytes += static_cast<char>(text.size() >> 8U);
    bytes.append(text);
}

/// The bytes that a table was made of: its records are written anew.
std::string Rewritten(const VendorTable& table) {
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>((table.Size() >> shift) & 0xFFU);
    for (std::size_t i = 0; i < table.Size(); ++i) {
        bytes.append(table.Prefix(i));
        AppendText(bytes, table.NameBytes(i));
        AppendText(bytes, table.AddressBytes(i));
    }
    return bytes;
}

}  // namespace

bool CheckVendorFile(std::string_view bytes) {
    try {
        const VendorTable table = VendorTable::Parse(bytes, "list");
        Require(table.Size() >= 1, "a table has a record");
        const std::string rewritten = Rewritten(table);
        Require(bytes.substr(0, rewritten.size()) == rewritten, "a table holds what the file holds");
        for (std::size_t i = 0; i < table.Size(); ++i) {
            const auto found = table.FindVendor(table.Prefix(i));
            Require(found && *found <= i && table.Prefix(*found) == table.Prefix(i),
                    "the first record with a prefix is found");
            const VendorRecord record = table.Record(i);
            Require(record.Name == table.Name(i) && record.Address == table.Address(i),
                    "a record is made of its fields");
            Require(VendorText(table, i).starts_with(record.Name), "a vendor is shown by its name");
        }
        return true;
    } catch (const RunTimeError& error) {
        Require(error.Number() == RunTimeError::kSubscriptOutOfRange ||
                    error.Number() == RunTimeError::kInputPastEndOfFile,
                "a file is refused with one of two numbers");
        return false;
    }
}

}  // namespace corvane::fuzz
