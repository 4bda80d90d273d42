#include <gtest/gtest.h>

#include "ui/logic/Commands.h"

namespace corvane {
namespace {

NicInfo LiveNic() {
    NicInfo nic;
    nic.Name = "lan0";
    nic.IfIndex = 3;
    nic.TcpipBound = true;
    nic.DhcpEnabled = true;
    nic.Status = "Up, Operational";
    return nic;
}

TEST(CommandStates, WithoutAConnectionNoCommandCanBeGiven) { EXPECT_EQ(StatesFor(nullptr), CommandStates{}); }

TEST(CommandStates, ALiveConnectionWithDhcpOffersAll) {
    const NicInfo nic = LiveNic();
    EXPECT_EQ(StatesFor(&nic), (CommandStates{true, true, true, true, true, true, true, true}));
}

TEST(CommandStates, WithoutDhcpThereIsNoLeaseToReleaseOrRenew) {
    NicInfo nic = LiveNic();
    nic.DhcpEnabled = false;
    EXPECT_EQ(StatesFor(&nic), (CommandStates{true, true, true, false, false, true, true, true}));
}

TEST(CommandStates, ADisabledConnectionHasNoLeaseToReleaseOrRenew) {
    NicInfo nic = LiveNic();
    nic.IfIndex = 0;
    EXPECT_EQ(StatesFor(&nic), (CommandStates{true, true, true, false, false, true, true, true}));
}

TEST(CommandStates, WithoutTcpipOnlyMacAddressAndStateCanBeChangedAndPresetsApplied) {
    NicInfo nic = LiveNic();
    nic.TcpipBound = false;
    EXPECT_EQ(StatesFor(&nic), (CommandStates{true, true, false, false, false, false, false, true}));
}

TEST(StateIcon, TellsDisabledUpAndDownApart) {
    NicInfo nic = LiveNic();
    EXPECT_EQ(StateIcon(nic), "link_up");
    nic.Status = "Up, Connected";
    EXPECT_EQ(StateIcon(nic), "link_up");
    for (const char* status : {"Up, Disconnected", "Up, Unreachable", "Up, Connecting",
                               "Down, Non Operational", "Up, Non Operational", "Disabled", ""}) {
        nic.Status = status;
        EXPECT_EQ(StateIcon(nic), "link_down") << status;
    }
    nic.IfIndex = 0;
    nic.Status = "Up, Operational";
    EXPECT_EQ(StateIcon(nic), "link_disabled");
}

}  // namespace
}  // namespace corvane
