#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "base/Text.h"

namespace corvane {

/// A metric as the user typed it: its numeric value rounded to the nearest whole number (ties to even), 0
/// when it is none, one outside a DWORD's range as the range's nearer end.
inline std::uint32_t MetricFrom(const std::string& text) {
    constexpr double kLargest = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::clamp(std::nearbyint(NumericValue(text)), 0.0, kLargest));
}

}  // namespace corvane
