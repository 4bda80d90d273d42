#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <linux/netlink.h>

#include "platform/linux/kernel/NetlinkSocket.h"
#include "tests/unit/NetlinkMessages.h"

namespace corvane::netns {

/// The kernel, but for requests that are answered in its place.
class AnsweringTransport : public NetlinkTransport {
 public:
    AnsweringTransport() {
        int error = 0;
        kernel_ = OpenNetlinkTransport(error);
        EXPECT_EQ(error, 0);
    }

    int Send(ByteSpan message) override {
        nlmsghdr header{};
        EXPECT_TRUE(ReadRecord(message, header));
        const std::optional<Answer> answer =
            AnswerTo(header, message.subspan(sizeof header, header.nlmsg_len - sizeof header));
        if (!answer) return kernel_->Send(message);
        nlmsgerr error{};
        error.error = -answer->errnoValue;
        error.msg = header;
        const std::uint32_t flags = NLM_F_CAPPED | (answer->text.empty() ? 0U : NLM_F_ACK_TLVS);
        const messages::Bytes text =
            answer->text.empty() ? messages::Bytes()
                                 : messages::Attribute(NLMSGERR_ATTR_MSG, messages::Text(answer->text));
        pending_ = messages::Message(NLMSG_ERROR, flags, header.nlmsg_seq,
                                     messages::Join({messages::Raw(error), text}));
        return 0;
    }

    int Receive(std::span<std::uint8_t> buffer, std::size_t& size) override {
        if (pending_.empty()) return kernel_->Receive(buffer, size);
        size = pending_.size();
        std::copy(pending_.begin(), pending_.end(), buffer.begin());
        pending_.clear();
        return 0;
    }

 protected:
    struct Answer {
        int errnoValue = 0;  ///< 0: done.
        std::string text;    ///< The kernel's own words; empty when it has none.
    };

    /// Nothing for what the kernel is to answer.
    virtual std::optional<Answer> AnswerTo(const nlmsghdr& header, ByteSpan payload) = 0;

 private:
    std::unique_ptr<NetlinkTransport> kernel_;
    messages::Bytes pending_;
};

}  // namespace corvane::netns
