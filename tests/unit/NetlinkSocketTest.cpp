#include <cerrno>
#include <deque>
#include <functional>

#include <gtest/gtest.h>
#include <linux/rtnetlink.h>
#include <sys/resource.h>

#include "platform/linux/kernel/NetlinkSocket.h"
#include "tests/unit/NetlinkMessages.h"

namespace corvane {
namespace {

using messages::Bytes;
using messages::Join;
using messages::Message;
using messages::Number;

constexpr unsigned kItem = RTM_NEWLINK;

/// A kernel that answers each request by a script.
struct Script {
    int sendError = 0;
    int requests = 0;
    /// Answers to the request with this sequence number; nothing left = EAGAIN.
    std::function<std::vector<Bytes>(std::uint32_t sequence)> answer;
    std::deque<Bytes> pending;
};

class ScriptedTransport : public NetlinkTransport {
 public:
    explicit ScriptedTransport(Script& script) : script_(script) {}

    int Send(ByteSpan message) override {
        nlmsghdr header{};
        if (script_.sendError != 0 || !ReadRecord(message, header)) return script_.sendError;
        ++script_.requests;
        for (Bytes& datagram : script_.answer(header.nlmsg_seq))
            script_.pending.push_back(std::move(datagram));
        return 0;
    }

    int Receive(std::span<std::uint8_t> buffer, std::size_t& size) override {
        if (script_.pending.empty()) return EAGAIN;
        std::copy(script_.pending.front().begin(), script_.pending.front().end(), buffer.begin());
        size = script_.pending.front().size();
        script_.pending.pop_front();
        return 0;
    }

 private:
    Script& script_;
};

class NetlinkSocketScript : public ::testing::Test {
 protected:
    KernelAnswer Dump() {
        NetlinkRequest request(RTM_GETLINK, NLM_F_DUMP, ifinfomsg{});
        return socket_.Dump(
            request, [this] { taken_ = 0; }, [this](std::uint16_t, ByteSpan) { ++taken_; });
    }

    KernelAnswer Execute() {
        NetlinkRequest request(RTM_NEWLINK, NLM_F_ACK, ifinfomsg{});
        return socket_.Execute(request);
    }

    Script script_;
    NetlinkSocket socket_{std::make_unique<ScriptedTransport>(script_)};
    int taken_ = 0;
};

Bytes Item(std::uint32_t sequence, unsigned flags = 0) {
    return Message(kItem, NLM_F_MULTI | flags, sequence, Number(1));
}

Bytes Done(std::uint32_t sequence, unsigned flags = 0) {
    return Message(NLMSG_DONE, NLM_F_MULTI | flags, sequence, Number(0));
}

TEST_F(NetlinkSocketScript, DumpOverSeveralDatagramsEndsAtDone) {
    script_.answer = [](std::uint32_t sequence) {
        return std::vector<Bytes>{Join({Item(sequence), Item(sequence)}), Item(sequence), Done(sequence)};
    };
    EXPECT_TRUE(Dump().Ok());
    EXPECT_EQ(taken_, 3);
    EXPECT_EQ(script_.requests, 1);
}

TEST_F(NetlinkSocketScript, InterruptedDumpIsRepeatedFromTheStart) {
    for (const bool onDone : {false, true}) {
        script_.requests = 0;
        script_.answer = [&](std::uint32_t sequence) {
            const unsigned flags = script_.requests < 3 ? NLM_F_DUMP_INTR : 0;
            return std::vector<Bytes>{Join(
                {Item(sequence), Item(sequence, onDone ? 0 : flags), Done(sequence, onDone ? flags : 0)})};
        };
        EXPECT_TRUE(Dump().Ok());
        EXPECT_EQ(taken_, 2);
        EXPECT_EQ(script_.requests, 3);
    }
}

TEST_F(NetlinkSocketScript, DumpThatIsAlwaysInterruptedIsGivenUp) {
    script_.answer = [](std::uint32_t sequence) {
        return std::vector<Bytes>{Join({Item(sequence), Done(sequence, NLM_F_DUMP_INTR)})};
    };
    EXPECT_EQ(Dump().errnoValue, EAGAIN);
    EXPECT_EQ(script_.requests, 10);
}

TEST_F(NetlinkSocketScript, MessagesOfAnotherRequestArePassedOver) {
    script_.answer = [](std::uint32_t sequence) {
        return std::vector<Bytes>{Join({Item(sequence + 7), Done(sequence + 7)}),
                                  Join({Item(sequence), Done(sequence)})};
    };
    EXPECT_TRUE(Dump().Ok());
    EXPECT_EQ(taken_, 1);
}

TEST_F(NetlinkSocketScript, ErrorInsteadOfADumpIsTheAnswer) {
    script_.answer = [](std::uint32_t sequence) {
        return std::vector<Bytes>{
            Message(NLMSG_ERROR, 0, sequence, Number(static_cast<std::uint32_t>(-EPERM)))};
    };
    EXPECT_EQ(Dump().errnoValue, EPERM);
    EXPECT_EQ(script_.requests, 1);
}

TEST_F(NetlinkSocketScript, AnswerThatEndsInsideAMessageIsEbadmsg) {
    script_.answer = [](std::uint32_t sequence) {
        Bytes datagram = Join({Item(sequence), Item(sequence)});
        datagram.resize(datagram.size() - 2);
        return std::vector<Bytes>{datagram, Done(sequence)};
    };
    EXPECT_EQ(Dump().errnoValue, EBADMSG);
}

TEST_F(NetlinkSocketScript, SilenceAndSendFailureAreHandedOn) {
    script_.answer = [](std::uint32_t) { return std::vector<Bytes>{}; };
    EXPECT_EQ(Execute().errnoValue, EAGAIN);
    script_.sendError = ENOBUFS;
    EXPECT_EQ(Execute().errnoValue, ENOBUFS);
}

TEST_F(NetlinkSocketScript, AcknowledgementEndsAChange) {
    script_.answer = [](std::uint32_t sequence) {
        return std::vector<Bytes>{Message(NLMSG_ERROR, NLM_F_CAPPED, sequence, Number(0))};
    };
    EXPECT_TRUE(Execute().Ok());
}

TEST_F(NetlinkSocketScript, LateAnswerToAGivenUpRequestDoesNotAnswerTheNext) {
    script_.answer = [](std::uint32_t) { return std::vector<Bytes>{}; };
    EXPECT_EQ(Execute().errnoValue, EAGAIN);
    script_.answer = [](std::uint32_t sequence) {
        return std::vector<Bytes>{
            Message(NLMSG_ERROR, 0, sequence - 1, Number(0)),
            Message(NLMSG_ERROR, 0, sequence, Number(static_cast<std::uint32_t>(-EBUSY)))};
    };
    EXPECT_EQ(Execute().errnoValue, EBUSY);
}

TEST(NetlinkRequest, PutsHeaderAttributesAndSequence) {
    ifinfomsg header{};
    header.ifi_index = 3;
    NetlinkRequest request(RTM_NEWLINK, NLM_F_ACK, header);
    request.Put(IFLA_ADDRESS, ByteSpan(MacBytes{1, 2, 3, 4, 5, 6}));
    request.Put(IFLA_MTU, std::uint32_t{1500});
    const ByteSpan message = request.Message(99);
    EXPECT_EQ(Bytes(message.begin(), message.end()),
              Message(RTM_NEWLINK, NLM_F_REQUEST | NLM_F_ACK, 99,
                      Join({messages::Raw(header), messages::Attribute(IFLA_ADDRESS, {1, 2, 3, 4, 5, 6}),
                            messages::Attribute(IFLA_MTU, Number(1500))})));
}

TEST(NetlinkRequest, TakesAReadyPayloadAsItIs) {
    const Bytes payload{1, 2, 3, 4, 5, 6, 7, 8};
    NetlinkRequest request(RTM_NEWROUTE, 0, payload);
    const ByteSpan message = request.Message(1);
    EXPECT_EQ(Bytes(message.begin(), message.end()), Message(RTM_NEWROUTE, NLM_F_REQUEST, 1, payload));
}

TEST(NetlinkSocketWithoutADescriptor, EveryCallGivesTheReason) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 0;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    NetlinkSocket socket;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    const auto take = [](std::uint16_t, ByteSpan) { ADD_FAILURE() << "a message from nowhere"; };
    NetlinkRequest request(RTM_GETLINK, 0, ifinfomsg{});
    EXPECT_EQ(socket
                  .Dump(
                      request, [] {}, take)
                  .errnoValue,
              EMFILE);
    EXPECT_EQ(socket.Execute(request).errnoValue, EMFILE);
    EXPECT_EQ(socket.Query(request, take).errnoValue, EMFILE);
}

}  // namespace
}  // namespace corvane
