#include "ui/logic/PresetEditing.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "platform/CodePage.h"
#include "platform/Seat.h"
#include "presets/PresetsFile.h"
#include "tcpip/InterfaceKey.h"
#include "ui/logic/MacEntry.h"

namespace corvane {

namespace {

using enum PresetCheck;

constexpr PresetCheck kChecks[] = {ckCPMAC, ckCPRanMAC, ckCPDefMAC, ckCPDHCP, ckCPIP, ckCPGateway, ckCPDNS};
/// Boxes of the editor.
constexpr int kFirstBox = 6;
constexpr int kLastMacBox = 11;

std::optional<std::size_t> FindPreset(const std::string& name) {
    const std::string wanted = ToLower(name);
    const std::vector<PresetRecord>& presets = Presets();
    const auto found = std::find_if(presets.begin(), presets.end(), [&](const PresetRecord& preset) {
        return ToLower(preset.Name) == wanted;
    });
    if (found == presets.end()) return std::nullopt;
    return static_cast<std::size_t>(found - presets.begin());
}

/// Copies a list's rows; an empty list leaves the preset's lists as they are.
void CopyRows(const AddressListView& list, PresetList& texts, PresetList* subItems = nullptr) {
    if (list.Rows().empty()) return;
    texts.Items.clear();
    if (subItems != nullptr) subItems->Items.clear();
    for (const DetailsRow& row : list.Rows()) {
        texts.Items.push_back(row.text);
        if (subItems != nullptr) subItems->Items.push_back(row.subItem);
    }
}

/// The presets file has a single-byte code page.
void WarnOfLostCharacters(const std::string& name) {
    const std::string stored = FromCodePage(ToCodePage(name));
    if (stored == name) return;
    CurrentSeat().Warn(
        "The name '" + name +
        "' has characters that the presets file cannot hold: from the next start on it reads '" + stored +
        "'");
}

}  // namespace

void PresetEditing::Enter(const std::string& name) {
    active_ = true;
    editor_.ShowEditor(true);
    editor_.SetPresetName("");
    Reset();
    editor_.SetPresetName(name);
    editor_.FocusPresetName();
}

void PresetEditing::Leave() {
    active_ = false;
    editor_.ShowEditor(false);
}

void PresetEditing::Reset() {
    for (const PresetCheck check : kChecks) editor_.SetTicked(check, false);
    for (int box = kFirstBox; box <= kLastMacBox; ++box) editor_.MacBoxes().SetText(box, "");
    FillRows(editor_.ListIP(), kIpTitle, {});
    FillRows(editor_.ListGateway(), kGatewayTitle, {});
    FillRows(editor_.ListDNS(), kDnsTitle, {});
    UpdateEnabled();
}

void PresetEditing::NameChanged() {
    const std::string name = editor_.PresetName();
    if (!active_ || name.empty()) return;
    if (const auto preset = FindPreset(name)) Fill(Presets()[*preset]);
}

void PresetEditing::Fill(const PresetRecord& preset) {
    Reset();
    const std::uint8_t flags = preset.Flags;
    editor_.SetTicked(ckCPDHCP, (flags & kPresetDhcp) != 0);
    editor_.SetTicked(ckCPMAC, (flags & kPresetMac) != 0);
    editor_.SetTicked(ckCPIP, (flags & kPresetIp) != 0);
    editor_.SetTicked(ckCPGateway, (flags & kPresetGateway) != 0);
    editor_.SetTicked(ckCPDNS, (flags & kPresetDns) != 0);
    if ((flags & kPresetMac) != 0) {
        if ((flags & kPresetRandomMac) != 0) {
            editor_.SetTicked(ckCPRanMAC, true);
        } else if (preset.Mac.empty()) {
            editor_.SetTicked(ckCPDefMAC, true);
        } else {
            FillMac(preset.Mac);
        }
    }
    FillRows(editor_.ListIP(), kIpTitle, ListRows(preset.IpAddresses.Items, preset.SubnetMasks.Items));
    FillRows(editor_.ListGateway(), kGatewayTitle,
             ListRows(preset.Gateways.Items, preset.GatewayMetrics.Items));
    FillRows(editor_.ListDNS(), kDnsTitle, ListRows(preset.DnsServers.Items));
    UpdateEnabled();
}

void PresetEditing::FillMac(const std::string& mac) {
    const std::vector<std::string> octets = Split(mac, '-');
    for (std::size_t i = 0; i < octets.size() && kFirstBox + static_cast<int>(i) <= kLastMacBox; ++i)
        editor_.MacBoxes().SetText(kFirstBox + static_cast<int>(i), octets[i]);
}

void PresetEditing::Clicked(PresetCheck check) {
    if (editor_.Ticked(check)) {
        if (check == ckCPRanMAC) editor_.SetTicked(ckCPDefMAC, false);
        if (check == ckCPDefMAC) editor_.SetTicked(ckCPRanMAC, false);
    }
    UpdateEnabled();
}

void PresetEditing::UpdateEnabled() {
    const auto ticked = [this](PresetCheck check) { return editor_.Ticked(check); };
    editor_.EnableCheck(ckCPRanMAC, ticked(ckCPMAC));
    editor_.EnableCheck(ckCPDefMAC, ticked(ckCPMAC));
    editor_.EnableMacBoxes(ticked(ckCPMAC) && !ticked(ckCPRanMAC) && !ticked(ckCPDefMAC));
    for (const PresetCheck fixed : {ckCPIP, ckCPGateway}) {
        editor_.EnableCheck(fixed, !ticked(ckCPDHCP));
        editor_.EnableListCommands(fixed, ticked(fixed) && !ticked(ckCPDHCP));
    }
    editor_.EnableListCommands(ckCPDNS, ticked(ckCPDNS));
}

std::optional<std::size_t> PresetEditing::Slot(const std::string& name) {
    std::vector<PresetRecord>& presets = Presets();
    if (const auto known = FindPreset(name)) {
        if (UserSaysYes("Overwrite Existing Preset ?",
                        "Preset with name '" + name + "' already exists. Do you want to overwrite it ?")) {
            return known;
        }
        editor_.SelectPresetName();
        return std::nullopt;
    }
    if (presets.size() == 1 && presets.front().Name.empty()) return 0;
    presets.emplace_back();
    return presets.size() - 1;
}

std::string PresetEditing::EnteredMac() const {
    MacBoxesView& boxes = editor_.MacBoxes();
    // As when an address is changed at once: no octets mean the original address, missing digits are zeros.
    if (JoinMacText(boxes, "", kFirstBox).empty()) return {};
    NormaliseOctets(boxes, kFirstBox, kLastMacBox);
    return JoinMacText(boxes, "-", kFirstBox);
}

PresetRecord PresetEditing::Record(const std::string& name) const {
    PresetRecord record;
    record.Name = name;
    if (editor_.Ticked(ckCPMAC)) {
        record.Flags |= kPresetMac;
        if (editor_.Ticked(ckCPRanMAC)) {
            record.Flags |= kPresetRandomMac;
        } else if (!editor_.Ticked(ckCPDefMAC)) {
            record.Mac = EnteredMac();
        }
    }
    record.IpAddresses = {kNoAddress};
    record.SubnetMasks = {kNoAddress};
    record.Gateways = {""};
    record.GatewayMetrics = {""};
    record.DnsServers = {""};
    if (editor_.Ticked(ckCPDHCP)) {
        record.Flags |= kPresetDhcp;
    } else {
        if (editor_.Ticked(ckCPIP)) {
            record.Flags |= kPresetIp;
            CopyRows(editor_.ListIP(), record.IpAddresses, &record.SubnetMasks);
        }
        if (editor_.Ticked(ckCPGateway)) {
            record.Flags |= kPresetGateway;
            CopyRows(editor_.ListGateway(), record.Gateways, &record.GatewayMetrics);
        }
    }
    if (editor_.Ticked(ckCPDNS)) {
        record.Flags |= kPresetDns;
        CopyRows(editor_.ListDNS(), record.DnsServers);
    }
    return record;
}

void PresetEditing::Save(const std::string& programFolder) {
    const std::string name = editor_.PresetName();
    if (name.empty()) {
        CurrentSeat().ShowBox("Preset Name Missing", "Please enter a name for the preset.",
                              BoxIcon::kExclamation, BoxButtons::kOk);
        editor_.FocusPresetName();
        return;
    }
    const std::optional<std::size_t> slot = Slot(name);
    if (!slot) return;
    Presets()[*slot] = Record(name);
    Leave();
    const bool saved = SavePresets(programFolder);
    editor_.RefreshPresetsList();
    if (!saved) return;
    WarnOfLostCharacters(name);
    ShowInformation("Preset Saved Successfully", "Preset '" + name + "' was saved successfully.");
}

}  // namespace corvane
