#include "platform/linux/system/FileLock.h"

#include <cerrno>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>

namespace corvane {

int FileLock::Take(const std::string& path, std::chrono::milliseconds patience) {
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds kTurn(2);
    file_.Reset(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file_.IsOpen()) return errno;
    const bool limited = patience != kNoLimit;
    const Clock::time_point begin = Clock::now();
    while (flock(file_.Get(), limited ? LOCK_EX | LOCK_NB : LOCK_EX) != 0) {
        int error = errno;
        if (error == EINTR && !limited) continue;
        if (error == EWOULDBLOCK || error == EINTR) {
            if (Clock::now() - begin < patience) {
                std::this_thread::sleep_for(kTurn);
                continue;
            }
            error = EBUSY;
        }
        file_.Reset();
        return error;
    }
    return 0;
}

}  // namespace corvane
