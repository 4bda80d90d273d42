#pragma once

#include <string>

namespace corvane {

/// Disables a connection and enables it again, with the program's fixed waits of 5000 ms; with `disableOnly`
/// stops after the first step. `quiet` leaves out the progress texts. Success is told by the number of enable
/// attempts alone: one that succeeds at the third attempt is reported as failed, and a result other than "no
/// verb" before it counts as success. Both are intended.
bool RestartConnection(const std::string& name, bool quiet, bool disableOnly);

}  // namespace corvane
