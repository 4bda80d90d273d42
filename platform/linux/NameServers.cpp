#include "platform/linux/NameServers.h"

#include <algorithm>
#include <vector>

#include "platform/linux/resolver/Dns.h"

namespace corvane {

Refusal NameServers::PutInForce(const std::string& adapterId) {
    const KernelAnswer answer = machine_->Update();
    if (!answer.Ok()) return Refusal("the links cannot be listed: " + answer.Words());
    const auto& rows = machine_->Rows();
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const LinkRow& candidate) {
        return candidate.present && candidate.id == adapterId;
    });
    if (row == rows.end()) return {};
    const auto& links = machine_->Picture().links;
    const bool up = std::any_of(links.begin(), links.end(), [&](const KernelLink& link) {
        return link.index == row->index && link.Up();
    });
    return up ? ApplyDns(machine_->Store(), machine_->Kernel()) : Refusal();
}

}  // namespace corvane
