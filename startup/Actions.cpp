#include "startup/Actions.h"

#include <algorithm>

#include "base/Text.h"
#include "inventory/GetNicInfo.h"
#include "inventory/NicInfo.h"
#include "mac/RestartConnection.h"
#include "platform/IphlpApi.h"
#include "platform/Seat.h"
#include "presets/Advice.h"
#include "presets/ApplyPreset.h"
#include "presets/PresetsFile.h"
#include "startup/CommandSeat.h"
#include "startup/Startup.h"
#include "vendors/VendorList.h"

namespace corvane {

namespace {

constexpr char kTitleEnd[] = "- Orvella Corvane v4";

void Show(const std::string& title, const std::string& text, BoxIcon icon) {
    CurrentSeat().ShowBox(title + kTitleEnd, text, icon, BoxButtons::kOk);
}

/// The first preset whose trimmed, lower-cased name contains `name`.
void TakePreset(const std::string& name, PresetRecord& record) {
    ReadPresets(ProgramFolder);
    const auto found = std::find_if(Presets().begin(), Presets().end(), [&](const PresetRecord& preset) {
        return ToLower(Trim(preset.Name)).find(name) != std::string::npos;
    });
    if (found != Presets().end()) record = *found;
}

void Disable(const std::string& name) {
    CurrentSeat().Progress("Disabling '" + name + "' ...");
    if (RestartConnection(name, true, true)) {
        Show("Disabled ", "Network connection '" + name + "' was disabled successfully.",
             BoxIcon::kInformation);
    } else {
        Show("Disable Attempt Failed ",
             "ERROR ! Network connection '" + name + "' was not disabled successfully.", BoxIcon::kCritical);
    }
}

void Restart(const std::string& name) {
    CurrentSeat().Progress("Restarting '" + name + "' (about 10 seconds) ...");
    if (RestartConnection(name, true, false)) {
        Show("Restarted ", "Network connection '" + name + "' was restarted successfully.",
             BoxIcon::kInformation);
    } else {
        Show("Restarted Attempt Failed ",
             "ERROR ! Network connection '" + name + "' was not restarted successfully.", BoxIcon::kCritical);
    }
}

/// `operation` is "Release" or "Renew"; `done` the word for its success.
void ReportLease(Win32Error code, const std::string& name, const std::string& operation,
                 const std::string& done) {
    if (Ok(code)) {
        Show(
            "IP " + done + " ",
            "IP " + operation + " operation was performed on network connection '" + name + "' successfully.",
            BoxIcon::kInformation);
        return;
    }
    IphlpApiError(code, "IP" + operation + "Address");
    Show("IP " + operation + " Attempt Failed ",
         "ERROR ! IP " + operation + " operation on network connection '" + name + "' failed.",
         BoxIcon::kCritical);
}

}  // namespace

int RunActions(const CommandLine& line) {
    if (line.connectionName.empty()) return kExitUsage;
    CommandSeat seat(CurrentSeat(), line.silent);
    const ScopedSeat installed(seat);

    Vendors() = VendorTable::Empty();
    RefreshNicInfo();
    const auto nic = std::find_if(Nics.begin(), Nics.end(), [&](const NicInfo& candidate) {
        return ToLower(Trim(candidate.Name)).find(line.connectionName) != std::string::npos;
    });
    if (nic == Nics.end()) {
        Show("NIC Not Found", "ERROR! Network connection '" + line.connectionName + "' was not found.",
             BoxIcon::kCritical);
        return kExitNotFound;
    }
    const std::string name = nic->Name;
    const std::uint32_t ifIndex = nic->IfIndex;

    PresetRecord record = line.record;
    if (!line.presetName.empty()) TakePreset(line.presetName, record);
    if (record.Flags != 0) {
        for (const std::string& sentence : Advice(*nic, record, "-h was not given; give -h to keep it"))
            seat.Warn(sentence);
        if ((record.Flags & kPresetRandomMac) != 0) Vendors() = LoadVendorList(ProgramFolder);
        ApplyPreset(static_cast<std::size_t>(nic - Nics.begin()), record);
    }
    if (line.disable) Disable(name);
    if (line.restart) Restart(name);
    if (line.release) ReportLease(ReleaseByIndex(ifIndex), name, "Release", "Released");
    if (line.renew) ReportLease(RenewByIndex(ifIndex), name, "Renew", "Renewed");
    Show("Done ",
         "Done! Command line parameter(s) were applied to '" + name + "' network connection successfully.",
         BoxIcon::kInformation);
    return seat.SawFailure() ? kExitActionFailed : kExitDone;
}

}  // namespace corvane
