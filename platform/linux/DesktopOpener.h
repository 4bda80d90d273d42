#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

#include "base/Refusal.h"

namespace corvane {

/// Opens documents and addresses with the user's own programs, through xdg-open (package xdg-utils).
class DesktopOpener {
 public:
    /// Refused when xdg-open is not there or says that it failed. Some desktops keep it
    /// running for as long as the opened program runs: one that has not failed after a second has done its
    /// work.
    Refusal Open(const std::string& target);

 private:
    void ReapEnded();

    std::vector<pid_t> running_;  ///< Those that were not waited for to their end.
};

}  // namespace corvane
