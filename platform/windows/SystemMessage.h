#pragma once

#include <cstdint>
#include <string>

namespace corvane {

/// The system's message for an error number (FormatMessageA), with the line break that such texts end in;
/// empty when it has none.
std::string SystemMessage(std::uint32_t code);

/// Same without line breaks.
std::string SystemMessageLine(std::uint32_t code);

}  // namespace corvane
