#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// The list of presets and its commands.
namespace corvane {

/// One entry of the list of presets.
struct PresetEntry {
    std::string name;
    std::size_t index = 0;  ///< Position in Presets().

    bool operator==(const PresetEntry&) const = default;
};

/// The presets that have a name, in the order of Presets(). Unused slots do not show.
std::vector<PresetEntry> PresetEntries();

/// The button and menu item that delete a preset: asks, removes the preset and writes the presets file. A
/// file that cannot be written has been reported in a box; the list in memory keeps the change. True when the
/// preset is gone: the list is to be shown anew.
bool DeletePreset(const PresetEntry& entry, const std::string& programFolder);

/// The button and menu item that apply a preset: asks, applies the preset to the connection, offers a restart
/// and refreshes. `showStatus` shows a text in the status bar.
void ApplySelectedPreset(const PresetEntry& entry, std::size_t adapter,
                         const std::function<void(const std::string& text)>& showStatus);

}  // namespace corvane
