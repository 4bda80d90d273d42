#include "startup/FaultReport.h"

#include <string>

#include "base/RunTimeError.h"
#include "platform/Seat.h"

namespace corvane {

void FaultReport::Show() noexcept {
    if (open_) return;
    open_ = true;
    try {
        const Fault fault = CurrentFault();
        CurrentSeat().ShowBox(kApplicationTitle,
                              std::string("ERROR! What was being done may not have been carried out to its "
                                          "end.") +
                                  kCrLf + kCrLf + "Description: " + fault.description + " (" +
                                  std::to_string(fault.number) + ")" + kCrLf + kCrLf + "Click OK to continue",
                              BoxIcon::kCritical, BoxButtons::kOk);
    } catch (...) {
        // The user cannot be told, and there is nobody else to tell.
    }
    open_ = false;
}

}  // namespace corvane
