#include "platform/windows/AddressContexts.h"

namespace corvane {

void AddressContexts::Renew(std::map<Address, std::uint32_t> contexts) {
    contexts_ = std::move(contexts);
    numbers_.clear();
    for (const auto& [address, context] : contexts_) numbers_.insert(context);
    words_.clear();
    standIns_.clear();
    latest_ = 0;
}

std::uint16_t AddressContexts::WordFor(const Address& address, std::uint16_t rowWord) {
    const auto known = contexts_.find(address);
    if (known == contexts_.end() || known->second == rowWord) return rowWord;
    const auto [word, isNew] = words_.try_emplace(known->second);
    if (!isNew) return word->second;
    // Words count up, so that none is given out twice.
    do {
        ++latest_;
    } while (numbers_.contains(latest_));
    standIns_.emplace(latest_, known->second);
    return word->second = latest_;
}

std::uint32_t AddressContexts::ContextOf(std::uint32_t word) const {
    const auto standIn = standIns_.find(word);
    return standIn == standIns_.end() ? word : standIn->second;
}

}  // namespace corvane
