#include "vendors/RandomMac.h"

#include <cmath>
#include <limits>

#include "base/RunTimeError.h"
#include "base/Text.h"

namespace corvane {

namespace {

/// A random number times 10000, to the nearest integer; ties go to even, as the default rounding mode has it.
std::size_t DrawUpToTenThousand(UniformRandom& random) {
    return static_cast<std::size_t>(std::nearbyint(random.Next() * 10000.0));
}

[[noreturn]] void FailWithoutVendors() {
    throw RunTimeError(
        RunTimeError::kSubscriptOutOfRange,
        "There is no vendor to make a random address of: the vendor list is empty. Put back the file "
        "VendorNumbers.log that came with the program and start it again.");
}

}  // namespace

double UniformRandom::Next() { return static_cast<double>(generator_()) / 4294967296.0; }

std::size_t DrawVendorIndex(UniformRandom& random, std::size_t upperBound) {
    if (upperBound == std::numeric_limits<std::size_t>::max()) FailWithoutVendors();
    std::size_t index = 0;
    do {
        index = DrawUpToTenThousand(random);
    } while (index > upperBound);
    return index;
}

std::string RandomOctetText(UniformRandom& random) {
    const std::string text = std::to_string(DrawUpToTenThousand(random) & 255U);
    return text.size() < 2 ? "0" + text : text;
}

std::string CutToOctetBox(const std::string& text) { return text.substr(0, 2); }

std::string RandomPresetMac(UniformRandom& random, const VendorTable& table) {
    if (table.IsPlaceholder()) FailWithoutVendors();
    // A random number has 32 bits and a table fewer records than 2^32: each is reached, the size itself is
    // not.
    const auto index = static_cast<std::size_t>(random.Next() * static_cast<double>(table.Size()));
    std::string address(table.Prefix(index));
    for (int i = 0; i < 3; ++i) address += ByteToHex2(static_cast<std::uint8_t>(random.Next() * 256.0));
    return address;
}

}  // namespace corvane
