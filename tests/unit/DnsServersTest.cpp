#include <gtest/gtest.h>

#include "tcpip/RegistryWriters.h"
#include "tests/unit/CoreSupport.h"

namespace corvane {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class DnsServersTest : public testing::Test {
 protected:
    DnsServersTest() {
        machine.AddAdapter(kFirstId, "Office", "0003");
        Nics = {NicRecord(kFirstId, "Office", "0003")};
    }

    FakeMachine machine;
    const std::string key =
        "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + std::string(kFirstId);
};

TEST_F(DnsServersTest, ServersAreJoinedByCommasWithoutATerminator) {
    EXPECT_EQ(WriteDNSServers(0, {"8.8.8.8", "1.1.1.1"}), 0);
    EXPECT_THAT(WritesTo(*machine.registry, key),
                ElementsAre(NamedValue("NameServer", Sz("8.8.8.8,1.1.1.1"))));
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(DnsServersTest, WhatWasWrittenIsPutInForceOnceItStands) {
    std::string stored;
    machine.nameServers->onCall = [&] { stored = machine.registry->Text(key, "NameServer"); };
    EXPECT_EQ(WriteDNSServers(0, {"8.8.8.8"}), 0);
    EXPECT_THAT(machine.nameServers->diary, ElementsAre(kFirstId));
    EXPECT_EQ(stored, "8.8.8.8");
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

TEST_F(DnsServersTest, AResolverThatCannotFollowIsAWarningAndTheValueStands) {
    machine.nameServers->answer = Refusal("/etc/resolv.conf was left as it is.");
    EXPECT_EQ(WriteDNSServers(0, {"8.8.8.8"}), 0);
    EXPECT_THAT(machine.seat.diary, ElementsAre("warn /etc/resolv.conf was left as it is."));
    EXPECT_EQ(machine.registry->Text(key, "NameServer"), "8.8.8.8");
}

TEST_F(DnsServersTest, OneServerHasNoComma) {
    EXPECT_EQ(WriteDNSServers(0, {"9.9.9.9"}), 0);
    EXPECT_THAT(WritesTo(*machine.registry, key), ElementsAre(NamedValue("NameServer", Sz("9.9.9.9"))));
}

TEST_F(DnsServersTest, OrderIsKept) {
    EXPECT_EQ(WriteDNSServers(0, {"3.3.3.3", "1.1.1.1", "2.2.2.2"}), 0);
    EXPECT_EQ(machine.registry->Text(key, "NameServer"), "3.3.3.3,1.1.1.1,2.2.2.2");
}

TEST_F(DnsServersTest, EmptyListWritesAnEmptyValue) {
    machine.registry->SetText(key, "NameServer", "8.8.8.8");
    EXPECT_EQ(WriteDNSServers(0, {}), 0);
    EXPECT_THAT(WritesTo(*machine.registry, key), ElementsAre(NamedValue("NameServer", Sz(""))));
    EXPECT_EQ(machine.registry->Value(key, "NameServer"), Sz(""));
}

TEST_F(DnsServersTest, NothingElseIsReadOrWritten) {
    EXPECT_EQ(WriteDNSServers(0, {"8.8.8.8"}), 0);
    EXPECT_THAT(machine.registry->diary, ElementsAre("write " + key + "\\NameServer"));
}

TEST_F(DnsServersTest, FailureIsShownInItsOwnLayoutAndTheResultIsStillZero) {
    machine.registry->readOnly = true;
    EXPECT_EQ(WriteDNSServers(0, {"8.8.8.8"}), 0);
    EXPECT_THAT(machine.nameServers->diary, IsEmpty());
    EXPECT_THAT(machine.seat.boxes,
                ElementsAre(Critical("Error! Cannot Write Into Registry",
                                     "Error while writing into windows registry.\r\n\r\nKey: "
                                     "HKEY_LOCAL_MACHINE\\" +
                                         key +
                                         "\r\nValue: NameServer\r\n\r\nError: (5) Access to this key is "
                                         "denied\r\nClick OK to continue")));
}

TEST_F(DnsServersTest, AdapterThatDoesNotExistEndsQuietly) {
    EXPECT_EQ(WriteDNSServers(1, {"8.8.8.8"}), 0);
    EXPECT_EQ(WriteDNSServers(-1, {"8.8.8.8"}), 0);
    EXPECT_THAT(machine.registry->diary, IsEmpty());
    EXPECT_THAT(machine.seat.diary, IsEmpty());
}

}  // namespace
}  // namespace corvane
