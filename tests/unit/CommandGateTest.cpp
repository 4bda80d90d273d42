#include <functional>
#include <optional>
#include <stdexcept>

#include <gtest/gtest.h>

#include "ui/logic/CommandGate.h"

namespace corvane {
namespace {

constexpr bool kNoPanel = false;
constexpr bool kPanelOpen = true;

TEST(CommandGate, LetsOneCommandInAtATime) {
    CommandGate gate;
    EXPECT_FALSE(gate.Busy());
    {
        const CommandGate::Scope first(gate);
        EXPECT_TRUE(first);
        EXPECT_TRUE(gate.Busy());
        const CommandGate::Scope second(gate);
        EXPECT_FALSE(second);
    }
    EXPECT_FALSE(gate.Busy());
    EXPECT_TRUE(CommandGate::Scope(gate));
}

TEST(CommandGate, StaysHeldWhenARefusedCommandEnds) {
    CommandGate gate;
    const CommandGate::Scope first(gate);
    std::optional<CommandGate::Scope> second(std::in_place, gate);
    second.reset();
    EXPECT_TRUE(gate.Busy());
    EXPECT_FALSE(CommandGate::Scope(gate));
}

TEST(CommandGate, OpensAgainWhenACommandFails) {
    CommandGate gate;
    EXPECT_THROW(
        {
            const CommandGate::Scope command(gate);
            throw std::runtime_error("failed");
        },
        std::runtime_error);
    EXPECT_FALSE(gate.Busy());
}

/// Counts the refreshes that the gate lets run.
class CommandGateRefresh : public testing::Test {
 protected:
    bool Ask(bool panelOpen = kNoPanel) {
        return gate_.RefreshForChange(panelOpen, [this] {
            ++refreshes_;
            if (onRefresh_) onRefresh_();
        });
    }

    CommandGate gate_;
    int refreshes_ = 0;
    std::function<void()> onRefresh_;
};

TEST_F(CommandGateRefresh, DoesNotRunWithoutAChange) {
    EXPECT_FALSE(Ask());
    EXPECT_EQ(refreshes_, 0);
}

TEST_F(CommandGateRefresh, RunsOnceForChangesTogether) {
    gate_.NoteChange();
    gate_.NoteChange();
    EXPECT_FALSE(Ask());
    EXPECT_FALSE(Ask());
    EXPECT_EQ(refreshes_, 1);
}

TEST_F(CommandGateRefresh, WaitsForTheEndOfACommand) {
    {
        const CommandGate::Scope command(gate_);
        gate_.NoteChange();
        EXPECT_FALSE(Ask());
        EXPECT_EQ(refreshes_, 0);
        EXPECT_TRUE(gate_.Busy());
    }
    EXPECT_FALSE(Ask());
    EXPECT_EQ(refreshes_, 1);
}

TEST_F(CommandGateRefresh, WaitsUntilThePanelIsClosed) {
    gate_.NoteChange();
    EXPECT_FALSE(Ask(kPanelOpen));
    EXPECT_EQ(refreshes_, 0);
    EXPECT_FALSE(gate_.Busy());
    EXPECT_FALSE(Ask());
    EXPECT_EQ(refreshes_, 1);
}

TEST_F(CommandGateRefresh, HoldsTheGateWhileItRuns) {
    onRefresh_ = [this] {
        EXPECT_TRUE(gate_.Busy());
        EXPECT_FALSE(CommandGate::Scope(gate_));
    };
    gate_.NoteChange();
    EXPECT_FALSE(Ask());
    EXPECT_EQ(refreshes_, 1);
    EXPECT_FALSE(gate_.Busy());
}

TEST_F(CommandGateRefresh, DoesNotStartInsideItselfButAfterIt) {
    onRefresh_ = [this] {
        // What a timer does while a box of the refresh is open.
        gate_.NoteChange();
        EXPECT_FALSE(Ask());
    };
    gate_.NoteChange();
    EXPECT_TRUE(Ask());
    EXPECT_EQ(refreshes_, 1);
    onRefresh_ = nullptr;
    EXPECT_FALSE(Ask());
    EXPECT_EQ(refreshes_, 2);
}

TEST_F(CommandGateRefresh, ThatFailsOpensTheGate) {
    onRefresh_ = [] { throw std::runtime_error("failed"); };
    gate_.NoteChange();
    EXPECT_THROW(static_cast<void>(Ask()), std::runtime_error);
    EXPECT_FALSE(gate_.Busy());
}

TEST_F(CommandGateRefresh, RunsForALaterChangeThanTheForgottenOne) {
    gate_.NoteChange();
    gate_.ForgetChange();
    EXPECT_FALSE(Ask());
    EXPECT_EQ(refreshes_, 0);
    gate_.NoteChange();
    EXPECT_FALSE(Ask());
    EXPECT_EQ(refreshes_, 1);
}

}  // namespace
}  // namespace corvane
