#pragma once

#include <chrono>
#include <string>

#include "platform/linux/system/Descriptor.h"

namespace corvane {

/// Keeps programs apart that do the same thing at once: one at a time has the lock of a file. The file stays;
/// the lock goes with its holder, however that ends. Only its owner may open the file, since whoever may open
/// it could hold the lock for ever.
class FileLock {
 public:
    /// Waits until the lock is free.
    static constexpr std::chrono::milliseconds kNoLimit = std::chrono::milliseconds::max();

    /// Makes the file if it is missing (its folder must exist) and takes its lock, waiting for it at most
    /// `patience`; a lock that is free is taken with any patience. 0, or the error number: EBUSY when
    /// somebody else had the lock all the time, otherwise what kept the file from being opened. A symbolic
    /// link is not followed (ELOOP).
    int Take(const std::string& path, std::chrono::milliseconds patience);

 private:
    Descriptor file_;
};

}  // namespace corvane
