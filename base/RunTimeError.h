#pragma once

#include <stdexcept>
#include <string>
#include <system_error>

namespace corvane {

/// A failure that ends the start-up or the command-line run in its "ERROR" box, where the number stands in
/// parentheses behind the description. Thrown by the file readers and by subscript checks; never crosses
/// platform/.
class RunTimeError : public std::runtime_error {
 public:
    // What the numbers say to a user of the "ERROR" box. They are fixed: each keeps its meaning.
    static constexpr int kOverflow = 6;     ///< A calculation has no result, such as the part that 0 is of 0.
    static constexpr int kOutOfMemory = 7;  ///< The memory does not suffice, or a file is too large.
    static constexpr int kSubscriptOutOfRange = 9;  ///< A list has no such entry, or a count is negative.
    static constexpr int kDivisionByZero = 11;      ///< A number is divided by 0.
    static constexpr int kInternalError = 51;       ///< Anything that has no number of its own.
    static constexpr int kFileNotFound = 53;        ///< A data file is missing.
    static constexpr int kDeviceIoError = 57;       ///< The device failed while a data file was read.
    static constexpr int kInputPastEndOfFile = 62;  ///< A data file ends before its contents do.
    static constexpr int kPermissionDenied = 70;    ///< A data file may not be read.
    static constexpr int kPathFileAccess = 75;      ///< A data file cannot be read for another reason.
    static constexpr int kBadFileFormat = 321;      ///< A data file is damaged.

    /// `description` names the file or option, the reason and the remedy.
    RunTimeError(int number, const std::string& description)
        : std::runtime_error(description), number_(number) {}

    [[nodiscard]] int Number() const { return number_; }

 private:
    int number_;
};

/// For a data file that the system would not read, for this reason. `file` begins a sentence ("The list X"),
/// `remedy` is one.
[[nodiscard]] RunTimeError UnreadableFile(const std::string& file, const std::error_code& reason,
                                          const std::string& remedy);

/// An exception in words for the user.
struct Fault {
    int number;  ///< One of RunTimeError's.
    std::string description;

    bool operator==(const Fault&) const = default;
};

/// The exception that is being handled; to be called in a catch block only.
Fault CurrentFault();

}  // namespace corvane
