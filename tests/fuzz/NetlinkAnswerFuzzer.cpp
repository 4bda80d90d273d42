#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <set>
#include <vector>

#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include "platform/linux/kernel/NetlinkParse.h"
#include "platform/linux/kernel/NetlinkRestore.h"
#include "platform/linux/kernel/NetlinkSocket.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/Targets.h"

namespace corvane::fuzz {

namespace {

constexpr std::uint8_t kFamilies[] = {AF_INET, AF_INET6};

/// Answers every request with one datagram, whose messages get the request's number; after that with nothing.
class OneDatagram : public NetlinkTransport {
 public:
    explicit OneDatagram(ByteSpan datagram) : datagram_(datagram.begin(), datagram.end()) {}

    int Send(ByteSpan message) override {
        nlmsghdr request{};
        if (!ReadRecord(message, request)) return EINVAL;
        std::size_t at = 0;
        (void)ForEachMessage(datagram_, [&](const nlmsghdr& header, ByteSpan) {
            nlmsghdr answer = header;
            answer.nlmsg_seq = request.nlmsg_seq;
            std::memcpy(datagram_.data() + at, &answer, sizeof answer);
            at += MNL_ALIGN(header.nlmsg_len);
        });
        sent_ = true;
        return 0;
    }

    int Receive(std::span<std::uint8_t> buffer, std::size_t& size) override {
        if (!sent_) return EAGAIN;
        sent_ = false;
        size = std::min(buffer.size(), datagram_.size());
        std::copy_n(datagram_.begin(), size, buffer.begin());
        return 0;
    }

 private:
    std::vector<std::uint8_t> datagram_;
    bool sent_ = false;
};

/// The small numbers in the bytes, among which is that of the link.
std::set<std::uint32_t> LinkNumbers(ByteSpan payload) {
    constexpr std::size_t kMost = 16;
    constexpr std::uint32_t kLargest = 0xFFFF;
    std::set<std::uint32_t> numbers;
    for (std::uint32_t number = 0; ReadRecord(payload, number) && numbers.size() < kMost;
         payload = After(payload, sizeof number)) {
        if (number >= 1 && number <= kLargest) numbers.insert(number);
    }
    return numbers;
}

/// The attributes of what was saved end exactly at its end.
void RequireWhole(const HeldMessage& saved) {
    const std::size_t header = HeaderSize(saved.type);
    Require(header != 0 && saved.payload.size() >= header, "a saved message has its type's header");
    const ByteSpan attributes = After(saved.payload, header);
    std::size_t walked = 0;
    ForEachAttribute(attributes, [&](std::uint16_t, ByteSpan value) {
        walked += MNL_ATTR_HDRLEN + MNL_ALIGN(value.size());
    });
    Require(walked == attributes.size(), "a saved message holds together");
}

using Save = std::function<std::optional<HeldMessage>(ByteSpan)>;

/// Something is saved of the payload, and of that the same.
bool CheckSaved(ByteSpan payload, const Save& save) {
    const std::optional<HeldMessage> saved = save(payload);
    if (!saved) return false;
    RequireWhole(*saved);
    const std::optional<HeldMessage> again = save(saved->payload);
    Require(again && again->type == saved->type && again->payload == saved->payload,
            "what was saved is saved again as it is");
    return true;
}

/// Something can be saved of the payload.
bool CheckSaved(ByteSpan payload) {
    bool any = false;
    for (const std::uint32_t index : LinkNumbers(payload)) {
        for (const std::uint8_t family : kFamilies) {
            any |= CheckSaved(payload, [&](ByteSpan bytes) { return SavedRoute(bytes, family, index); });
            any |= CheckSaved(payload, [&](ByteSpan bytes) { return SavedNeighbour(bytes, family, index); });
            const std::optional<HeldMessage> route = SavedRoute(payload, family, index);
            if (route)
                Require(!HasGateway(*route) || payload.size() > sizeof(rtmsg), "no gateway is invented");
        }
        // The flag that makes an address permanent is the kernel's to set: what is saved has none.
        if (const std::optional<HeldMessage> address = SavedAddress(payload, index)) {
            any = true;
            RequireWhole(*address);
        }
    }
    return any;
}

/// Something is read from the message.
bool CheckMessage(const nlmsghdr& header, ByteSpan payload) {
    KernelLink link;
    const bool isLink = ParseLink(payload, link);
    if (isLink) {
        Require(!link.name.empty(), "a link has a name");
        Require(link.name.size() <= payload.size() && link.kind.size() <= payload.size(),
                "no text is invented");
    }
    KernelAddress address;
    const bool isAddress = ParseAddress(payload, address);
    std::vector<KernelRoute> routes;
    ParseRoute(payload, routes);
    Require(routes.size() <= 1 + payload.size() / sizeof(rtnexthop), "no next hop is invented");
    const KernelAnswer answer = ParseAnswer(header, payload);
    Require(answer.text.size() <= payload.size(), "no words are invented");
    return CheckSaved(payload) || isLink || isAddress || !routes.empty() || !answer.text.empty();
}

void CheckDump(ByteSpan datagram) {
    NetlinkSocket socket(std::make_unique<OneDatagram>(datagram));
    NetlinkRequest request(RTM_GETLINK, NLM_F_DUMP, ifinfomsg{});
    int attempts = 0;
    std::size_t taken = 0;
    const KernelAnswer answer = socket.Dump(
        request,
        [&] {
            ++attempts;
            taken = 0;
        },
        [&](std::uint16_t type, ByteSpan payload) {
            Require(type >= NLMSG_MIN_TYPE, "control messages are not handed out");
            taken += payload.size() + NLMSG_HDRLEN;
        });
    Require(attempts >= 1 && attempts <= 10, "a dump is tried ten times at most");
    Require(taken <= datagram.size(), "no more is handed out than came");
    Require(answer.text.size() <= datagram.size(), "no words are invented");
}

}  // namespace

bool CheckNetlinkAnswer(std::string_view bytes) {
    const ByteSpan datagram(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    bool any = false;
    (void)ForEachMessage(datagram, [&](const nlmsghdr& header, ByteSpan payload) {
        if (CheckMessage(header, payload)) any = true;
    });
    CheckDump(datagram);
    return any;
}

}  // namespace corvane::fuzz
