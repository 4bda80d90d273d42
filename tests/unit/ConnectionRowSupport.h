#pragma once

#include <optional>
#include <ostream>
#include <string>

#include "ui/logic/ConnectionList.h"

namespace corvane {

// Readable failures.
inline void PrintTo(const ConnectionRow& row, std::ostream* out) {
    for (const std::string& text : row.texts) *out << '[' << text << "] ";
    *out << (row.tag ? "tag " + std::to_string(*row.tag) : "no tag");
}

namespace test {

inline constexpr char kMac[] = "00-0C-29-4F-8E-35";
inline constexpr char kOther[] = "00-12-AB-34-CD-56";
inline constexpr char kThird[] = "02-00-00-00-00-01";

inline const ConnectionRow kNotFoundRow{{"NIC Not Found", "", "", " ", " "}, std::nullopt};

}  // namespace test
}  // namespace corvane
