#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <utility>

#include "platform/Platform.h"

namespace corvane {

/// What DeleteIPAddress knows an address by. Up to Windows XP that is the 16-bit word in the address's table
/// row; later systems leave that word empty and tell the 32-bit context by GetAdaptersInfo alone. The words
/// that this class hands out serve on both: each is the row's own where that is the context, and otherwise a
/// number that stands for the context.
class AddressContexts {
 public:
    using Address = std::pair<std::uint32_t, Ipv4Bytes>;  ///< Interface index and address.

    /// The contexts that the system has now.
    void Renew(std::map<Address, std::uint32_t> contexts);

    /// The word for a row whose own word is `rowWord`; the same for the same address until Renew.
    std::uint16_t WordFor(const Address& address, std::uint16_t rowWord);

    /// The context that a word or context stands for.
    [[nodiscard]] std::uint32_t ContextOf(std::uint32_t word) const;

    /// A context that the system has made by now: no number stands for another one any more.
    void Made(std::uint32_t context) { standIns_.erase(context); }

 private:
    std::map<Address, std::uint32_t> contexts_;
    std::set<std::uint32_t> numbers_;                  ///< All contexts.
    std::map<std::uint32_t, std::uint16_t> words_;     ///< Context to the word that stands for it.
    std::map<std::uint32_t, std::uint32_t> standIns_;  ///< And back.
    std::uint16_t latest_ = 0;
};

}  // namespace corvane
