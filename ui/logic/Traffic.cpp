#include "ui/logic/Traffic.h"

#include <algorithm>

#include "base/Text.h"
#include "platform/Platform.h"

namespace corvane {

namespace {

constexpr double kUnitStep = 1024;

std::string CountText(double count) {
    const std::string bytes = ShortestDecimal(count, 0) + " Bytes";
    // Not from 1000 on as in FormatBytes: 1000 alone has no bracket.
    return count > 1000 ? bytes + " (" + FormatBytes(count) + ")" : bytes;
}

double Rate(double previous, double count) { return previous > 0 ? count - previous : 0; }

}  // namespace

std::string FormatBytes(double bytes) {
    double value = bytes;
    std::string text = ShortestDecimal(value, 9) + " Bytes";
    for (const char* unit : {" KB", " MB", " GB"}) {
        if (value < 1000) break;
        value /= kUnitStep;
        text = ShortestDecimal(value, 2) + unit;
    }
    return text;
}

std::optional<TrafficMonitor::Tick> TrafficMonitor::Read(std::uint32_t ifIndex) {
    IfRow row;
    if (!Ok(CurrentPlatform().ipHelper->GetIfEntry(ifIndex, row))) {
        Reset();
        return std::nullopt;
    }
    const double sent = row.outOctets;
    const double received = row.inOctets;
    const TrafficRates rates{Rate(previousSent_, sent), Rate(previousReceived_, received)};
    previousSent_ = sent;
    previousReceived_ = received;
    return Tick{{CountText(sent), CountText(received), FormatBytes(rates.sent) + "/s",
                 FormatBytes(rates.received) + "/s"},
                rates};
}

void TrafficMonitor::Reset() {
    previousSent_ = 0;
    previousReceived_ = 0;
}

void TrafficHistory::Add(const TrafficRates& rates) {
    ticks_.push_back({std::max(rates.sent, 0.0), std::max(rates.received, 0.0)});
    if (ticks_.size() > kTicks) ticks_.pop_front();
}

double TrafficHistory::ScaleTop() const {
    double highest = 0;
    for (const TrafficRates& tick : ticks_) highest = std::max({highest, tick.sent, tick.received});
    double unit = kUnitStep;
    for (int power = 1; power <= 3; ++power, unit *= kUnitStep) {
        for (const double steps : {1, 2, 5, 10, 20, 50, 100, 200, 500}) {
            if (highest <= steps * unit) return steps * unit;
        }
    }
    return highest;
}

}  // namespace corvane
