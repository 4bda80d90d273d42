#include "platform/windows/AddressContexts.h"

#include <algorithm>

namespace corvane {

void AddressContexts::Renew(std::map<Address, std::uint32_t> contexts) {
    contexts_ = std::move(contexts);
    standIns_.clear();
    latest_ = 0;
}

bool AddressContexts::IsContext(std::uint32_t number) const {
    return std::any_of(contexts_.begin(), contexts_.end(),
                       [&](const auto& known) { return known.second == number; });
}

std::uint16_t AddressContexts::WordFor(const Address& address, std::uint16_t rowWord) {
    const auto known = contexts_.find(address);
    if (known == contexts_.end() || known->second == rowWord) return rowWord;
    const std::uint32_t context = known->second;
    const auto standIn = std::find_if(standIns_.begin(), standIns_.end(),
                                      [&](const auto& entry) { return entry.second == context; });
    if (standIn != standIns_.end()) return static_cast<std::uint16_t>(standIn->first);
    do {
        ++latest_;
    } while (latest_ == 0 || IsContext(latest_) || standIns_.contains(latest_));
    standIns_.emplace(latest_, context);
    return latest_;
}

std::uint32_t AddressContexts::ContextOf(std::uint32_t word) const {
    const auto standIn = standIns_.find(word);
    return standIn == standIns_.end() ? word : standIn->second;
}

}  // namespace corvane
