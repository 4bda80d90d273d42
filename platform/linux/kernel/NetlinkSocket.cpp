#include "platform/linux/kernel/NetlinkSocket.h"

#include <cerrno>
#include <utility>

#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace corvane {
namespace {

/// The kernel fills at most 32 kB of a dump's datagram (netlink_recvmsg); a single message may be longer.
constexpr std::size_t kReceiveBytes = 65536;
constexpr std::size_t kAttributeRoom = 256;
constexpr int kDumpAttempts = 10;
constexpr timeval kPatience{10, 0};

class MnlTransport : public NetlinkTransport {
 public:
    explicit MnlTransport(mnl_socket* socket) : socket_(socket) {}
    ~MnlTransport() override { mnl_socket_close(socket_); }
    MnlTransport(const MnlTransport&) = delete;
    MnlTransport& operator=(const MnlTransport&) = delete;

    int Send(ByteSpan message) override {
        while (mnl_socket_sendto(socket_, message.data(), message.size()) < 0) {
            if (errno != EINTR) return errno;
        }
        return 0;
    }

    int Receive(std::span<std::uint8_t> buffer, std::size_t& size) override {
        ssize_t count = 0;
        while ((count = mnl_socket_recvfrom(socket_, buffer.data(), buffer.size())) < 0) {
            if (errno != EINTR) return errno;
        }
        size = static_cast<std::size_t>(count);
        return 0;
    }

 private:
    mnl_socket* socket_;
};

}  // namespace

NetlinkRequest::NetlinkRequest(std::uint16_t type, std::uint16_t flags, ByteSpan payload)
    : buffer_(MNL_NLMSG_HDRLEN + MNL_ALIGN(payload.size()) + kAttributeRoom) {
    nlmsghdr* header = mnl_nlmsg_put_header(buffer_.data());
    header->nlmsg_type = type;
    header->nlmsg_flags = static_cast<std::uint16_t>(NLM_F_REQUEST | flags);
    std::memcpy(mnl_nlmsg_put_extra_header(header, payload.size()), payload.data(), payload.size());
}

void NetlinkRequest::Put(std::uint16_t type, ByteSpan value) {
    mnl_attr_put_check(Header(), buffer_.size(), type, value.size(), value.data());
}

void NetlinkRequest::Put(std::uint16_t type, std::uint32_t value) {
    mnl_attr_put_u32_check(Header(), buffer_.size(), type, value);
}

ByteSpan NetlinkRequest::Message(std::uint32_t sequence) {
    Header()->nlmsg_seq = sequence;
    return ByteSpan(buffer_).first(Header()->nlmsg_len);
}

std::unique_ptr<NetlinkTransport> OpenNetlinkTransport(int& errnoValue) {
    mnl_socket* socket = mnl_socket_open2(NETLINK_ROUTE, SOCK_CLOEXEC);
    if (socket == nullptr) {
        errnoValue = errno;
        return nullptr;
    }
    auto transport = std::make_unique<MnlTransport>(socket);
    int on = 1;
    for (const int option : {NETLINK_EXT_ACK, NETLINK_CAP_ACK, NETLINK_GET_STRICT_CHK}) {
        (void)mnl_socket_setsockopt(socket, option, &on, sizeof on);
    }
    const int descriptor = mnl_socket_get_fd(socket);
    if (setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience) != 0 ||
        mnl_socket_bind(socket, 0, MNL_SOCKET_AUTOPID) != 0) {
        errnoValue = errno;
        return nullptr;
    }
    return transport;
}

NetlinkSocket::NetlinkSocket() : buffer_(kReceiveBytes) { transport_ = OpenNetlinkTransport(openError_); }

NetlinkSocket::NetlinkSocket(std::unique_ptr<NetlinkTransport> transport)
    : transport_(std::move(transport)), buffer_(kReceiveBytes) {}

KernelAnswer NetlinkSocket::Dump(NetlinkRequest& request, const std::function<void()>& restart,
                                 const Take& take) {
    for (int attempt = 0; attempt < kDumpAttempts; ++attempt) {
        restart();
        Outcome outcome = Converse(request, take, false);
        if (!outcome.answer.Ok() || !outcome.interrupted) return std::move(outcome.answer);
    }
    return {EAGAIN, ""};
}

KernelAnswer NetlinkSocket::Execute(NetlinkRequest& request) {
    return Converse(
               request, [](std::uint16_t, ByteSpan) {}, false)
        .answer;
}

KernelAnswer NetlinkSocket::Query(NetlinkRequest& request, const Take& take) {
    return Converse(request, take, true).answer;
}

NetlinkSocket::Outcome NetlinkSocket::Converse(NetlinkRequest& request, const Take& take, bool oneMessage) {
    Outcome outcome;
    if (!transport_) return {{openError_, ""}, false};
    const std::uint32_t sequence = ++sequence_;
    if (const int error = transport_->Send(request.Message(sequence)); error != 0)
        return {{error, ""}, false};

    bool finished = false;
    while (!finished) {
        std::size_t size = 0;
        if (const int error = transport_->Receive(buffer_, size); error != 0) return {{error, ""}, false};
        const bool whole =
            ForEachMessage(ByteSpan(buffer_).first(size), [&](const nlmsghdr& header, ByteSpan payload) {
                // Left over from a request that was given up.
                if (finished || header.nlmsg_seq != sequence) return;
                outcome.interrupted |= (header.nlmsg_flags & NLM_F_DUMP_INTR) != 0;
                if (header.nlmsg_type == NLMSG_ERROR || header.nlmsg_type == NLMSG_DONE) {
                    outcome.answer = ParseAnswer(header, payload);
                    finished = true;
                } else if (header.nlmsg_type >= NLMSG_MIN_TYPE) {
                    take(header.nlmsg_type, payload);
                    finished = oneMessage;
                }
            });
        if (!whole) return {{EBADMSG, ""}, false};
    }
    return outcome;
}

}  // namespace corvane
