#include "ui/logic/GatewayEditing.h"

#include <utility>
#include <vector>

#include "base/Address.h"
#include "inventory/NicInfo.h"
#include "platform/Seat.h"
#include "presets/Advice.h"
#include "presets/PresetRecord.h"

namespace corvane {

void GatewayEditing::Open() {
    panel_.ShowPanel();
    panel_.MakeDefault();
    panel_.Gateway().SetText("");
    panel_.SetMetric("");
    panel_.TickAutoMetric(false);
    panel_.EnableMetric(true);
    panel_.FocusGateway();
}

void GatewayEditing::AutoMetricClicked(const EditingTarget& target) {
    const bool automatic = panel_.AutoMetricTicked();
    panel_.EnableMetric(!automatic);
    if (automatic) {
        panel_.SetMetric(std::to_string(target.adapter ? Nics.at(*target.adapter).InterfaceMetric : 0));
    } else {
        panel_.SetMetric("");
        panel_.FocusMetric();
    }
}

void GatewayEditing::Add(const EditingTarget& target) {
    IPAddressEntry& box = panel_.Gateway();
    if (box.Text().empty()) box.SetText("0.0.0.0");
    const EnteredQuad gateway = Entered(box);
    const std::uint32_t metric = MetricFrom(panel_.Metric());
    if (!target.live) {
        FindOrAddRow(list_, kGatewayTitle, gateway.text,
                     panel_.AutoMetricTicked() ? kAutomaticMetric : std::to_string(metric));
        Done(target);
    } else if (target.adapter) {
        if (AddGateway(*target.adapter, gateway, metric, panel_.PersistentTicked())) {
            std::vector<std::string> sentences;
            if (panel_.PersistentTicked()) AdviseAddress("gateway", gateway.text, sentences);
            WarnOf(std::move(sentences));
            Done(target);
            CurrentSeat().Refresh();
        } else if (const Refusal refusal = HostAddressRefusal(gateway.octets)) {
            CurrentSeat().Warn("Gateway '" + gateway.text + "' cannot be used: " + refusal.Words());
        }
    }
    panel_.FocusGateway();
    panel_.MakeDefault();
}

void GatewayEditing::Done(const EditingTarget& target) {
    panel_.Gateway().SetText("");
    AutoMetricClicked(target);
}

void GatewayEditing::Remove(const EditingTarget& target) {
    const std::optional<std::size_t> selected = list_.SelectedRow();
    if (!selected) return;
    // A copy: the refresh at the end replaces the rows.
    const std::string gateway = list_.Rows().at(*selected).text;
    if (!UserSaysYes("Remove Selected Gateway ?",
                     "Are you sure to remove '" + gateway + "' gateway address ?")) {
        return;
    }
    if (!target.live) {
        RemoveRow(list_, kGatewayTitle, *selected);
    } else if (target.adapter) {
        RemoveGateway(*target.adapter, gateway);
    }
}

}  // namespace corvane
