#include "ui/logic/PresetCommands.h"

#include "inventory/NicInfo.h"
#include "mac/RestartConnection.h"
#include "platform/Seat.h"
#include "presets/Advice.h"
#include "presets/ApplyPreset.h"
#include "presets/PresetsFile.h"
#include "ui/logic/AddressList.h"

namespace corvane {

namespace {

void OfferRestart(const std::string& preset, const std::string& connection) {
    if (!UserSaysYes("Preset Applied Successfully, Restart Connection ?",
                     "Preset '" + preset + "' was applied to network connection '" + connection +
                         "' successfully." + kCrLf + kCrLf +
                         "Do you want to restart/enable the selected network connection now to apply "
                         "changes ?")) {
        return;
    }
    if (RestartConnection(connection, false, false)) {
        ShowInformation("Network Connection Restarted", "Network connection restarted successfully.");
        return;
    }
    CurrentSeat().ShowBox(
        "Could Not Restart Network Connection",
        "Network Connection '" + connection +
            "' you selected is taking too much time to restart and probably the restart operation has "
            "failed." +
            kCrLf + kCrLf + "You must manually disable and enable the network adapter '" + connection +
            "', or reboot your system to apply the changes.",
        BoxIcon::kExclamation, BoxButtons::kOk);
}

}  // namespace

std::vector<PresetEntry> PresetEntries() {
    std::vector<PresetEntry> entries;
    const std::vector<PresetRecord>& presets = Presets();
    for (std::size_t i = 0; i < presets.size(); ++i) {
        if (!presets[i].Name.empty()) entries.push_back({presets[i].Name, i});
    }
    return entries;
}

bool DeletePreset(const PresetEntry& entry, const std::string& programFolder) {
    if (entry.name.empty()) return false;
    if (!UserSaysYes("Delete Selected Preset ?",
                     "Are you sure to delete '" + entry.name + "' preset forever ?")) {
        return false;
    }
    std::vector<PresetRecord>& presets = Presets();
    presets.erase(presets.begin() + static_cast<std::ptrdiff_t>(entry.index));
    if (presets.empty()) presets.emplace_back();
    // A failure has been shown in a box.
    static_cast<void>(SavePresets(programFolder));
    return true;
}

void ApplySelectedPreset(const PresetEntry& entry, std::size_t adapter,
                         const std::function<void(const std::string& text)>& showStatus) {
    // Copies: the refresh reads the adapters anew.
    const std::string connection = Nics.at(adapter).Name;
    const PresetRecord preset = Presets().at(entry.index);
    if (!UserSaysYes("Apply Selected Preset ?",
                     "Are you sure to apply the preset '" + entry.name + "' to network connection '" +
                         connection + "' now ?" + kCrLf + kCrLf +
                         "NOTE: The selected network connection must be restarted later on to apply "
                         "settings. This operation may result in loss of connectivity.")) {
        return;
    }
    WarnOf(Advice(Nics.at(adapter), preset,
                  "the preset does not turn it on; tick DHCP in the preset to keep it"));
    showStatus("Applying Preset ...");
    CurrentSeat().LetEventsRun();
    ApplyPreset(adapter, preset);
    showStatus("Preset Applied");
    OfferRestart(entry.name, connection);
    CurrentSeat().Refresh();
}

}  // namespace corvane
