#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace corvane {

/// Opens documents and addresses with the user's own programs, through xdg-open (package xdg-utils).
class DesktopOpener {
 public:
    /// False with words in `failure` when xdg-open is not there or says that it failed. Some desktops keep it
    /// running for as long as the opened program runs: one that has not failed after a second has done its
    /// work.
    bool Open(const std::string& target, std::string& failure);

 private:
    void ReapEnded();

    std::vector<pid_t> running_;  ///< Those that were not waited for to their end.
};

}  // namespace corvane
