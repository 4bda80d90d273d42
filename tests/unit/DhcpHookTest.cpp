#include <array>
#include <future>
#include <string>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/linux/dhcp/DhcpHook.h"
#include "platform/linux/dhcp/DhcpLease.h"
#include "platform/linux/system/Descriptor.h"

namespace corvane {
namespace {

const char* const kEnvironment[] = {"ip=10.0.0.7", "lease=60", nullptr};

class DhcpHook : public ::testing::Test {
 protected:
    void SetUp() override {
        std::array<int, 2> ends{};
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
        supervisor_.Reset(ends[0]);
        hook_.Reset(ends[1]);
        result_ = std::async(std::launch::async,
                             [this] { return RunHook(std::to_string(hook_.Get()), "bound", kEnvironment); });
    }

    HookReport Receive() {
        std::array<char, 4096> text{};
        const ssize_t size = recv(supervisor_.Get(), text.data(), text.size(), 0);
        EXPECT_GT(size, 0);
        const auto report =
            DecodeReport(std::string_view(text.data(), size > 0 ? static_cast<std::size_t>(size) : 0));
        EXPECT_TRUE(report);
        return report.value_or(HookReport{});
    }

    void Send(const std::string& text) {
        EXPECT_EQ(send(supervisor_.Get(), text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    }

    Descriptor supervisor_;
    Descriptor hook_;
    std::future<int> result_;
};

TEST_F(DhcpHook, SendsItsEnvironmentAndTakesTheAnswer) {
    const HookReport report = Receive();
    EXPECT_EQ(report.event, "bound");
    EXPECT_EQ(report.variables, (std::map<std::string, std::string>{{"ip", "10.0.0.7"}, {"lease", "60"}}));
    Send(report.token + " 0");
    EXPECT_EQ(result_.get(), 0);
}

TEST_F(DhcpHook, WaitsUntilItIsAnswered) {
    const HookReport report = Receive();
    EXPECT_EQ(result_.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    Send(report.token + " 0");
    EXPECT_EQ(result_.get(), 0);
}

TEST_F(DhcpHook, FailsWhenTheLeaseCannotBeUsed) {
    Send(Receive().token + " 1");
    EXPECT_EQ(result_.get(), 1);
}

TEST_F(DhcpHook, SkipsTheAnswerToAnotherHook) {
    const HookReport report = Receive();
    Send("1 1");
    Send("nonsense");
    Send(report.token + " 0");
    EXPECT_EQ(result_.get(), 0);
}

TEST_F(DhcpHook, FailsWhenTheSupervisorEnds) {
    Receive();
    supervisor_.Reset();
    EXPECT_EQ(result_.get(), 1);
}

TEST(DhcpHookDescriptor, OnlyASequencedPacketSocketWillDo) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    const Descriptor one(ends[0]);
    const Descriptor other(ends[1]);
    for (const std::string& text : {std::to_string(one.Get()), std::string("9999"), std::string(""),
                                    std::string("-1"), std::string("3x"), std::string("0")}) {
        EXPECT_EQ(RunHook(text, "bound", kEnvironment), 1) << text;
    }
}

}  // namespace
}  // namespace corvane
