#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "base/RunTimeError.h"
#include "tests/unit/FileSupport.h"
#include "vendors/VendorList.h"

/// The vendor list where the system's rights and its account of the memory come in.
namespace corvane {
namespace {

using test::TempFolder;
using test::WriteBytes;

/// The number of the failure; 0 when there is none.
int NumberOfFailure(const std::function<void()>& action) {
    try {
        action();
    } catch (const RunTimeError& error) {
        return error.Number();
    }
    return 0;
}

TEST(LoadVendorList, UnreadableFileIsError70) {
    const TempFolder folder;
    WriteBytes(folder / "VendorNumbers.log", std::string("\1\0\0\0", 4) + "00000C" + std::string(4, '\0'));
    std::filesystem::permissions(folder / "VendorNumbers.log", std::filesystem::perms::none);
    EXPECT_EQ(test::WithoutPrivileges([&] { return NumberOfFailure([&] { LoadVendorList(folder / ""); }); }),
              70);
}

/// The most address space in KiB that this process has had.
long PeakAddressSpace() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmPeak:", 0) == 0) return std::stol(line.substr(7));
    }
    throw std::runtime_error("no VmPeak");
}

TEST(VendorTable, CountOfTwoBillionIsError62WithoutMemoryForIt) {
    const int code = test::WithoutPrivileges([] {
        const long before = PeakAddressSpace();
        const std::string twoBillion("\x00\x94\x35\x77", 4);
        const int failure =
            NumberOfFailure([&] { VendorTable::Parse(twoBillion + std::string(1000, '\0'), "list"); });
        return PeakAddressSpace() - before < 64 * 1024 ? failure : 120;
    });
    EXPECT_EQ(code, 62);
}

}  // namespace
}  // namespace corvane
