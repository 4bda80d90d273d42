#pragma once

#include <string>

namespace corvane {

/// The folder of sockets, locks and notes that live until the next boot: NICX_RUNTIME if set and not empty,
/// else /run/nicx. It need not exist yet.
std::string RuntimeFolder();

}  // namespace corvane
