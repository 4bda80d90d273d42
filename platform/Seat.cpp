#include "platform/Seat.h"

#include <utility>

namespace corvane {

namespace {

Seat*& Installed() {
    static NullSeat nobody;
    static Seat* seat = &nobody;
    return seat;
}

}  // namespace

Seat& CurrentSeat() { return *Installed(); }

Seat* InstallSeat(Seat* seat) { return std::exchange(Installed(), seat); }

}  // namespace corvane
