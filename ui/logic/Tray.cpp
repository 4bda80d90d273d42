#include "ui/logic/Tray.h"

#include <algorithm>

#include "ui/logic/ConnectionList.h"

namespace corvane {

namespace {

bool ContinuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

}  // namespace

std::string TrayTip(const std::string& text) {
    std::string tip = "Orvella Corvane v4.5 - " + text;
    std::size_t characters = 0;
    const auto end = std::find_if(tip.begin(), tip.end(), [&characters](char byte) {
        return !ContinuesCharacter(byte) && ++characters > kTrayTipLength;
    });
    tip.erase(end, tip.end());
    return tip;
}

std::string TrayTipFor(const std::string& connectionName, const std::string& mac) {
    if (connectionName.empty()) return kNoConnections;
    return mac.empty() ? connectionName : connectionName + ", " + mac;
}

TrayFrame TrayFrameFor(const TrafficRates& rates) {
    const bool sending = rates.sent != 0;
    const bool receiving = rates.received != 0;
    if (sending && receiving) return TrayFrame::kBoth;
    if (sending) return TrayFrame::kSending;
    return receiving ? TrayFrame::kReceiving : TrayFrame::kIdle;
}

TrayAction TrayClick(bool shown, bool minimized) {
    return shown && !minimized ? TrayAction::kHide : TrayAction::kShow;
}

}  // namespace corvane
