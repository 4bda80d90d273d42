#include "mac/RestartConnection.h"

#include "mac/SetConnectionState.h"
#include "platform/Platform.h"
#include "platform/Seat.h"

namespace corvane {

bool RestartConnection(const std::string& name, bool quiet, bool disableOnly) {
    static constexpr std::uint32_t kWaitMilliseconds = 5000;
    static constexpr int kMaxAttempts = 3;
    Seat& seat = CurrentSeat();
    const auto progress = [&](int subItem, const std::string& text) {
        if (!quiet) seat.RowProgress(subItem, text);
    };
    const auto letEventsRun = [&] {
        if (!quiet) seat.LetEventsRun();
    };
    const auto wait = [] { CurrentPlatform().clock->Sleep(kWaitMilliseconds); };

    if (!quiet) BeginRowProgress("Disabling ...");
    StateResult result = SetConnectionState(name, false, true);
    if (result != StateResult::kDone && result != StateResult::kNoVerb) {
        progress(3, "Disabling Attempt Failed");
        return false;
    }
    if (disableOnly) return true;
    if (result != StateResult::kNoVerb) wait();

    int attempt = 0;
    for (;;) {
        ++attempt;
        progress(3, "Enabling (Attempt " + std::to_string(attempt) + ") ...");
        letEventsRun();
        result = SetConnectionState(name, true, false);
        if (result != StateResult::kNoVerb || attempt >= kMaxAttempts) break;
        wait();
    }
    if (attempt < kMaxAttempts) {
        seat.LetEventsRun();
        wait();
        return true;
    }
    progress(3, "Restart Failed (Attempt " + std::to_string(attempt) + ")");
    return false;
}

}  // namespace corvane
