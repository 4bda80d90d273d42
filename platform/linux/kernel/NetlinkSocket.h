#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/kernel/NetlinkParse.h"

/// Question and answer over a netlink socket.
namespace corvane {

/// One request under construction: struct nlmsghdr, a fixed header and attributes.
class NetlinkRequest {
 public:
    /// A request with a fixed header (struct ifinfomsg, ifaddrmsg, rtmsg, ndmsg).
    template <class Header>
    requires std::is_trivially_copyable_v<Header> NetlinkRequest(std::uint16_t type, std::uint16_t flags,
                                                                 const Header& header)
        : NetlinkRequest(type, flags,
                         ByteSpan(reinterpret_cast<const std::uint8_t*>(&header), sizeof header)) {}

    /// A request with everything after struct nlmsghdr ready.
    NetlinkRequest(std::uint16_t type, std::uint16_t flags, ByteSpan payload);

    /// Appends an attribute; at most 256 bytes of them, headers included, fit into one request.
    void Put(std::uint16_t type, ByteSpan value);
    void Put(std::uint16_t type, std::uint32_t value);

    /// The message with this sequence number; valid until the request is changed.
    [[nodiscard]] ByteSpan Message(std::uint32_t sequence);

 private:
    [[nodiscard]] nlmsghdr* Header() { return reinterpret_cast<nlmsghdr*>(buffer_.data()); }

    std::vector<std::uint8_t> buffer_;
};

/// The way to the kernel and back. Both give an errno value, 0 on success. It is the one place where tests
/// stand in for the kernel: a body of theirs answers some requests or all of them itself, with messages as
/// they come over the socket, and passes the others on to OpenNetlinkTransport's. So what is tested is all of
/// what runs above the socket.
class NetlinkTransport {
 public:
    virtual ~NetlinkTransport() = default;
    virtual int Send(ByteSpan message) = 0;
    /// Waits for one datagram, ten seconds at most (EAGAIN). `size` receives its length.
    virtual int Receive(std::span<std::uint8_t> buffer, std::size_t& size) = 0;
};

/// A NETLINK_ROUTE socket of libmnl in the current namespace, with extended acknowledgements that leave the
/// request's payload out, and strict checking of dump requests. Null with `errnoValue` set when there is none
/// to be had. Kernels that lack one of the options do without it.
std::unique_ptr<NetlinkTransport> OpenNetlinkTransport(int& errnoValue);

class NetlinkSocket {
 public:
    /// Over OpenNetlinkTransport; when that fails every call answers with its error.
    NetlinkSocket();
    explicit NetlinkSocket(std::unique_ptr<NetlinkTransport> transport);

    using Take = std::function<void(std::uint16_t type, ByteSpan payload)>;

    /// Sends a dump request and hands out each message of the answer. `restart` is called before each
    /// attempt: what was taken before is void then. EAGAIN when ten attempts were interrupted, EBADMSG for an
    /// answer that does not hold together.
    KernelAnswer Dump(NetlinkRequest& request, const std::function<void()>& restart, const Take& take);

    /// Sends a request that is answered by an acknowledgement.
    KernelAnswer Execute(NetlinkRequest& request);

    /// Sends a request that is answered by one message, or by an error.
    KernelAnswer Query(NetlinkRequest& request, const Take& take);

 private:
    /// What one attempt came to. `interrupted`: the tables changed while they were dumped.
    struct Outcome {
        KernelAnswer answer;
        bool interrupted = false;
    };
    Outcome Converse(NetlinkRequest& request, const Take& take, bool oneMessage);

    std::unique_ptr<NetlinkTransport> transport_;
    int openError_ = 0;
    std::uint32_t sequence_ = 0;
    std::vector<std::uint8_t> buffer_;
};

}  // namespace corvane
