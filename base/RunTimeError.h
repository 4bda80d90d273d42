#pragma once

#include <stdexcept>
#include <string>

namespace corvane {

/// A failure that ends the start-up or the command-line run in its "ERROR" box. Thrown by the file readers
/// and by subscript checks; never crosses platform/. Numbers follow the run-time errors of the Basic language
/// family.
class RunTimeError : public std::runtime_error {
 public:
    static constexpr int kOverflow = 6;
    static constexpr int kOutOfMemory = 7;
    static constexpr int kSubscriptOutOfRange = 9;
    static constexpr int kDivisionByZero = 11;
    static constexpr int kFileNotFound = 53;
    static constexpr int kDeviceIoError = 57;
    static constexpr int kInputPastEndOfFile = 62;
    static constexpr int kPermissionDenied = 70;
    static constexpr int kPathFileAccess = 75;
    static constexpr int kBadFileFormat = 321;

    /// `description` names the file or option, the reason and the remedy.
    RunTimeError(int number, const std::string& description)
        : std::runtime_error(description), number_(number) {}

    [[nodiscard]] int Number() const { return number_; }

 private:
    int number_;
};

}  // namespace corvane
