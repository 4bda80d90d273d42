#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

#include "vendors/VendorList.h"

/// Random addresses that begin with a manufacturer's prefix.
namespace corvane {

/// Uniform random numbers in [0, 1); the same seed gives the same numbers.
class UniformRandom {
 public:
    explicit UniformRandom(std::uint32_t seed) : generator_(seed) {}

    double Next();

 private:
    std::mt19937 generator_;
};

/// A record number from 0 to `upperBound` for the button that picks a manufacturer: a random number times
/// 10000, rounded to the nearest integer (ties to even), drawn anew until it is not above `upperBound`. Of a
/// table with more than 10001 records the later ones are never picked. Throws RunTimeError
/// kSubscriptOutOfRange for the upper bound of an empty table, which no number is within (0 - 1, the largest
/// std::size_t).
std::size_t DrawVendorIndex(UniformRandom& random, std::size_t upperBound);

/// One random octet as the address boxes receive it: a random number times 10000, rounded to the nearest
/// integer (ties to even), AND 255, with a leading "0" below ten. In decimal, two or three digits: the first
/// two, which the box keeps, are hexadecimal digits too.
std::string RandomOctetText(UniformRandom& random);

/// What an address box keeps of a text: its first two characters.
std::string CutToOctetBox(const std::string& text);

/// A random address for a preset, 12 digits without separators: the prefix of any record of `table`, all
/// equally likely, and three random bytes in upper-case hexadecimal. Throws RunTimeError kSubscriptOutOfRange
/// when `table` is VendorTable::Empty(), which has no manufacturer to pick.
std::string RandomPresetMac(UniformRandom& random, const VendorTable& table);

}  // namespace corvane
