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

TEST(CommandGate, WithoutAChangeThereIsNothingToTake) {
    CommandGate gate;
    EXPECT_FALSE(gate.TakeChange(kNoPanel));
}

TEST(CommandGate, ChangesAreTakenOnceTogether) {
    CommandGate gate;
    gate.NoteChange();
    gate.NoteChange();
    EXPECT_TRUE(gate.TakeChange(kNoPanel));
    EXPECT_FALSE(gate.TakeChange(kNoPanel));
}

TEST(CommandGate, ChangeWaitsForTheEndOfACommand) {
    CommandGate gate;
    {
        const CommandGate::Scope command(gate);
        gate.NoteChange();
        EXPECT_FALSE(gate.TakeChange(kNoPanel));
    }
    EXPECT_TRUE(gate.TakeChange(kNoPanel));
}

TEST(CommandGate, ChangeWaitsUntilThePanelIsClosed) {
    CommandGate gate;
    gate.NoteChange();
    EXPECT_FALSE(gate.TakeChange(kPanelOpen));
    EXPECT_TRUE(gate.TakeChange(kNoPanel));
}

TEST(CommandGate, ForgottenChangeIsNotTakenButALaterOneIs) {
    CommandGate gate;
    gate.NoteChange();
    gate.ForgetChange();
    EXPECT_FALSE(gate.TakeChange(kNoPanel));
    gate.NoteChange();
    EXPECT_TRUE(gate.TakeChange(kNoPanel));
}

}  // namespace
}  // namespace corvane
