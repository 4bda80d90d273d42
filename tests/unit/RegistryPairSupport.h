#pragma once

#include <optional>
#include <string>
#include <utility>

#include "tcpip/RegistryWriters.h"
#include "tests/unit/CoreSupport.h"

namespace corvane::test {

/// Shared by the tests of the two list pairs of an adapter's TCP/IP key: addresses with masks, gateways with
/// metrics.
class RegistryPairTest : public testing::Test {
 protected:
    RegistryPairTest(std::string firstName, std::string secondName)
        : first(std::move(firstName)), second(std::move(secondName)) {
        machine.AddAdapter(kFirstId, "Office", "0003");
        machine.AddAdapter(kSecondId, "Lab", "0007");
        Nics = {NicRecord(kFirstId, "Office", "0003"), NicRecord(kSecondId, "Lab", "0007")};
    }

    /// Stores both values with exactly these bytes.
    void Store(const std::string& firstBytes, const std::string& secondBytes) {
        machine.registry->SetValue(key, first, MultiSz(firstBytes));
        machine.registry->SetValue(key, second, MultiSz(secondBytes));
    }

    void FailAt(const std::string& operation, const std::string& valueName, Win32Error code) {
        machine.registry->fail = [=](const std::string& step, const std::string&,
                                     const std::string& name) -> std::optional<Win32Error> {
            if (step == operation && name == valueName) return code;
            return std::nullopt;
        };
    }

    /// Both values were written, in order, with exactly these bytes, and nothing was shown.
    void ExpectWritten(const std::string& firstBytes, const std::string& secondBytes) {
        EXPECT_THAT(WritesTo(*machine.registry, key),
                    testing::ElementsAre(NamedValue(first, MultiSz(firstBytes)),
                                         NamedValue(second, MultiSz(secondBytes))));
        EXPECT_EQ(machine.registry->writes.size(), 2U);
        EXPECT_THAT(machine.seat.diary, testing::IsEmpty());
    }

    void ExpectFailureBox(const std::string& valueName, const std::string& error) {
        EXPECT_THAT(
            machine.seat.boxes,
            testing::ElementsAre(Critical(
                "Error! Cannot Read/Write Registry",
                "Error while reading/writing in windows registry.\r\n\r\nRegistry Path: "
                "HKEY_LOCAL_MACHINE\\" +
                    key + "\\" + valueName + "\r\n\r\nError: " + error + "\r\n\r\nClick OK to continue")));
    }

    FakeMachine machine;
    const std::string first;
    const std::string second;
    const std::string key =
        "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + std::string(kSecondId);
};

/// The bytes of a list: each entry with a NUL after it, then one more NUL.
inline std::string List(const std::vector<std::string>& entries) {
    std::string bytes;
    for (const std::string& entry : entries) bytes += entry + kNul;
    return bytes + kNul;
}

}  // namespace corvane::test
