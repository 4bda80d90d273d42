#pragma once

#include <cstddef>
#include <string>

#include "ui/logic/Traffic.h"

/// Rules of the tray icon.
namespace corvane {

/// Length of the tip in characters, as in the record of Shell_NotifyIconA (shellapi.h) before version 5.
inline constexpr std::size_t kTrayTipLength = 64;

/// "Orvella Corvane v4.5 - " followed by `text`, cut to 64 characters. Padding it, and cutting it further for
/// a closing NUL, is the business of a system that wants a fixed length.
std::string TrayTip(const std::string& text);

/// What the tip says of the selected connection: its name and, when it has one, its address, such as
/// "eth0, 00-0C-29-4F-8E-35". Without a name, that there is no connection.
std::string TrayTipFor(const std::string& connectionName, const std::string& mac);

enum class TrayFrame { kIdle, kSending, kReceiving, kBoth };

/// The frame for the rates of the latest tick. A negative rate is traffic too: the counter wrapped.
TrayFrame TrayFrameFor(const TrafficRates& rates);

/// What a click on the icon does with the main window: a hidden or minimized one is shown, any other is
/// hidden.
enum class TrayAction { kShow, kHide };
TrayAction TrayClick(bool shown, bool minimized);

}  // namespace corvane
