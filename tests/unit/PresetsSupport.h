#pragma once

#include <string>
#include <vector>

#include "platform/Seat.h"
#include "presets/PresetsFile.h"

namespace corvane::test {

/// Remembers the boxes that were shown.
class BoxSeat : public NullSeat {
 public:
    struct Box {
        std::string title;
        std::string text;
        BoxIcon icon;
        BoxButtons buttons;
    };

    BoxAnswer ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                      BoxButtons buttons) override {
        boxes.push_back({title, text, icon, buttons});
        return BoxAnswer::kOk;
    }

    std::vector<Box> boxes;
};

/// Puts the process-wide list back to one unused slot at both ends of a scope.
class FreshPresets {
 public:
    FreshPresets() { Presets().assign(1, PresetRecord()); }
    ~FreshPresets() { Presets().assign(1, PresetRecord()); }
    FreshPresets(const FreshPresets&) = delete;
    FreshPresets& operator=(const FreshPresets&) = delete;
};

/// A preset with a fixed address.
inline PresetRecord OfficePreset() {
    PresetRecord record;
    record.Name = "Office";
    record.Flags = kPresetMac | kPresetIp | kPresetGateway | kPresetDns;
    record.Mac = "00-0C-29-12-AB-FF";
    record.IpAddresses = {"192.168.1.10", "10.0.0.7"};
    record.SubnetMasks = {"255.255.255.0", "255.0.0.0"};
    record.Gateways = {"192.168.1.1"};
    record.GatewayMetrics = {"20"};
    record.DnsServers = {"192.168.1.1", "9.9.9.9"};
    return record;
}

/// A preset that asks for DHCP, as the editor saves it.
inline PresetRecord DhcpPreset() {
    PresetRecord record;
    record.Name = "At home";
    record.Flags = kPresetDhcp;
    record.IpAddresses = {"0.0.0.0"};
    record.SubnetMasks = {"0.0.0.0"};
    record.Gateways = {""};
    record.GatewayMetrics = {""};
    record.DnsServers = {""};
    return record;
}

/// The text of the box that reports a failed save.
inline std::string SaveFailureText(int number, const std::string& description, const std::string& path) {
    return "ERROR ! Presets file could not be saved.\r\n\r\nError : " + std::to_string(number) +
           "\r\nDescription : " + description + ": " + path + "\r\n\r\nClick OK to continue";
}

}  // namespace corvane::test
