#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

/// The traffic monitor: totals and rates of the selected connection, and the picture of the last two minutes.
namespace corvane {

/// Interval of the ticks. The rates are differences of two readings, so this makes them rates per second.
inline constexpr int kTrafficIntervalMilliseconds = 1000;

/// "999 Bytes", "0.98 KB", "1.5 MB": scaled up to GB from 1000 upward in steps of 1024, two decimals at most.
/// The test against 1000 and the divisor 1024 are intended, so 1000 bytes are 0.98 KB. Negative values stay
/// bytes.
std::string FormatBytes(double bytes);

/// Texts of the four traffic labels.
struct TrafficTexts {
    std::string labSent;
    std::string labRecv;
    std::string labSentSpeed;
    std::string labRecvSpeed;

    bool operator==(const TrafficTexts&) const = default;
};

/// Rates of one tick in bytes per second. Negative when a counter wrapped.
struct TrafficRates {
    double sent = 0;
    double received = 0;

    bool operator==(const TrafficRates&) const = default;
};

class TrafficMonitor {
 public:
    /// What one tick gives. Nothing when the interface could not be read: the labels keep their texts.
    struct Tick {
        TrafficTexts texts;
        TrafficRates rates;
    };

    /// Reads the counters of an interface (IfIndex; 0 and unknown ones cannot be read). The rates are 0 when
    /// the former reading failed or counted nothing yet.
    std::optional<Tick> Read(std::uint32_t ifIndex);

    /// Another connection was selected: its first rates are 0, not the difference of two connections.
    void Reset();

 private:
    double previousSent_ = 0;
    double previousReceived_ = 0;
};

/// The rates of the last 120 ticks, for the graph.
class TrafficHistory {
 public:
    static constexpr std::size_t kTicks = 120;

    /// Adds a tick; the oldest goes. Negative rates (a wrapped counter) count as 0.
    void Add(const TrafficRates& rates);
    void Clear() { ticks_.clear(); }

    [[nodiscard]] const std::deque<TrafficRates>& Ticks() const { return ticks_; }

    /// Top of the graph's scale in bytes per second: the first of 1, 2, 5, 10, 20, 50, 100, 200 and 500 KB,
    /// then as many MB, then GB (in steps of 1024) that is not below the highest rate kept, be it sent or
    /// received. FormatBytes gives each of them as a round number; 1000 of a unit it would not. A rate above
    /// 500 GB is its own top.
    [[nodiscard]] double ScaleTop() const;

 private:
    std::deque<TrafficRates> ticks_;
};

}  // namespace corvane
