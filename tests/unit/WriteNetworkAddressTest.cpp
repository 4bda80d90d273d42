#include "mac/WriteNetworkAddress.h"
#include "tests/unit/CoreSupport.h"

namespace corvane {
namespace {

using namespace test;

constexpr char kDriverKey[] =
    "SYSTEM\\CurrentControlSet\\Control\\Class\\{4D36E972-E325-11CE-BFC1-08002bE10318}\\0007";

class WriteNetworkAddressTest : public testing::Test {
 protected:
    WriteNetworkAddressTest() {
        machine.AddAdapter(kFirstId, "Office", "0003");
        machine.AddAdapter(kSecondId, "Lab", "0007");
        Nics = {NicRecord(kFirstId, "Office", "0003"), NicRecord(kSecondId, "Lab", "0007")};
    }

    [[nodiscard]] static FakeSeat::Box FailureBox(const std::string& error) {
        return Critical("Error! Cannot Write Registry",
                        "Error while writing in windows registry.\r\n\r\n"
                        "Registry Path: HKEY_LOCAL_MACHINE\\" +
                            std::string(kDriverKey) + "\\NetworkAddress\r\n\r\nError: " + error +
                            "\r\n\r\nClick OK to continue");
    }

    FakeMachine machine;
};

TEST_F(WriteNetworkAddressTest, TextIsWrittenAsRegSzInTheDriverKeyOfThatAdapter) {
    EXPECT_TRUE(WriteNetworkAddress(1, "0A0003445566"));
    ASSERT_EQ(machine.registry->writes.size(), 1U);
    EXPECT_EQ(machine.registry->writes[0].subkey, kDriverKey);
    EXPECT_EQ(machine.registry->writes[0].name, "NetworkAddress");
    EXPECT_EQ(machine.registry->writes[0].value, Sz("0A0003445566"));
    EXPECT_THAT(machine.seat.diary, testing::IsEmpty());
}

TEST_F(WriteNetworkAddressTest, FirstAdapterHasItsOwnDriverKey) {
    EXPECT_TRUE(WriteNetworkAddress(0, "020304050607"));
    EXPECT_EQ(machine.registry->Text(DriverKeyPath("0003"), "NetworkAddress"), "020304050607");
    EXPECT_FALSE(machine.registry->HasValue(kDriverKey, "NetworkAddress"));
}

TEST_F(WriteNetworkAddressTest, OldOverrideIsReplaced) {
    machine.registry->SetText(kDriverKey, "NetworkAddress", "02AAAAAAAAAA");
    EXPECT_TRUE(WriteNetworkAddress(1, "02BBBBBBBBBB"));
    EXPECT_EQ(machine.registry->Text(kDriverKey, "NetworkAddress"), "02BBBBBBBBBB");
}

TEST_F(WriteNetworkAddressTest, WritingReadsAndDeletesNothing) {
    EXPECT_TRUE(WriteNetworkAddress(1, "02BBBBBBBBBB"));
    EXPECT_THAT(machine.registry->diary,
                testing::ElementsAre("write " + std::string(kDriverKey) + "\\NetworkAddress"));
}

TEST_F(WriteNetworkAddressTest, EmptyTextWithoutAnOverrideIsSuccessAndDeletesNothing) {
    EXPECT_TRUE(WriteNetworkAddress(1, ""));
    EXPECT_THAT(machine.registry->diary,
                testing::ElementsAre("read " + std::string(kDriverKey) + "\\NetworkAddress"));
    EXPECT_THAT(machine.seat.diary, testing::IsEmpty());
}

TEST_F(WriteNetworkAddressTest, EmptyTextDeletesTheOverride) {
    machine.registry->SetText(kDriverKey, "NetworkAddress", "02AAAAAAAAAA");
    EXPECT_TRUE(WriteNetworkAddress(1, ""));
    EXPECT_FALSE(machine.registry->HasValue(kDriverKey, "NetworkAddress"));
    EXPECT_THAT(machine.registry->diary,
                testing::ElementsAre("read " + std::string(kDriverKey) + "\\NetworkAddress",
                                     "delete " + std::string(kDriverKey) + "\\NetworkAddress"));
    EXPECT_THAT(machine.seat.diary, testing::IsEmpty());
}

TEST_F(WriteNetworkAddressTest, EmptyTextDeletesAnOverrideOfZeroBytesToo) {
    machine.registry->SetValue(kDriverKey, "NetworkAddress", Sz(""));
    EXPECT_TRUE(WriteNetworkAddress(1, ""));
    EXPECT_FALSE(machine.registry->HasValue(kDriverKey, "NetworkAddress"));
}

TEST_F(WriteNetworkAddressTest, EmptyTextIsSuccessWhenTheOverrideCannotBeRead) {
    machine.registry->SetText(kDriverKey, "NetworkAddress", "02AAAAAAAAAA");
    machine.registry->fail = [](const std::string& operation, const std::string&,
                                const std::string&) -> std::optional<Win32Error> {
        if (operation == "read") return Win32Error::kAccessDenied;
        return std::nullopt;
    };
    EXPECT_TRUE(WriteNetworkAddress(1, ""));
    EXPECT_TRUE(machine.registry->HasValue(kDriverKey, "NetworkAddress"));
    EXPECT_THAT(machine.seat.boxes, testing::IsEmpty());
}

TEST_F(WriteNetworkAddressTest, FailingWriteIsShownInABox) {
    machine.registry->readOnly = true;
    EXPECT_FALSE(WriteNetworkAddress(1, "02BBBBBBBBBB"));
    EXPECT_THAT(machine.seat.boxes, testing::ElementsAre(FailureBox("(5) Access to this key is denied")));
}

TEST_F(WriteNetworkAddressTest, FailingDeleteIsShownInABox) {
    machine.registry->SetText(kDriverKey, "NetworkAddress", "02AAAAAAAAAA");
    machine.registry->readOnly = true;
    EXPECT_FALSE(WriteNetworkAddress(1, ""));
    EXPECT_THAT(machine.seat.boxes, testing::ElementsAre(FailureBox("(5) Access to this key is denied")));
    EXPECT_TRUE(machine.registry->HasValue(kDriverKey, "NetworkAddress"));
}

TEST_F(WriteNetworkAddressTest, MissingDriverKeyIsAFailedWrite) {
    machine.registry->RemoveKey(kDriverKey);
    EXPECT_FALSE(WriteNetworkAddress(1, "02BBBBBBBBBB"));
    EXPECT_THAT(machine.seat.boxes, testing::ElementsAre(FailureBox("(2) Bad Key Name")));
}

}  // namespace
}  // namespace corvane
