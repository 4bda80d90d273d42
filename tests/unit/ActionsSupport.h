#pragma once

#include <string>
#include <vector>

#include "base/RunTimeError.h"
#include "startup/Actions.h"
#include "startup/Startup.h"
#include "tests/unit/CoreSupport.h"
#include "tests/unit/TempFolder.h"

namespace corvane::test {

inline const FakeSeat::Box kDone = Information(
    "Done - Orvella Corvane v4",
    "Done! Command line parameter(s) were applied to 'Office LAN' network connection successfully.");

/// Two disabled connections and a program folder without files. Verbs done and waits stand in the seat's
/// diary.
class ActionsTest : public testing::Test {
 protected:
    ActionsTest() {
        machine.AddAdapter(kFirstId, "Office LAN", "0003");
        machine.AddAdapter(kSecondId, "Office Wireless", "0007");
        machine.shell->panel = {
            {"Network Connections", true, {{"Office LAN", {"Disa&ble"}}, {"Office Wireless", {"Disa&ble"}}}}};
        machine.clock->onSleep = [this](std::uint32_t milliseconds) {
            machine.seat.diary.push_back("sleep " + std::to_string(milliseconds));
        };
        machine.shell->onVerb = [this](FakeShell::Connection& connection, const std::string& verb) {
            machine.seat.diary.push_back("verb " + verb + " of " + connection.name);
            connection.verbs = {verb == "Disa&ble" ? "En&able" : "Disa&ble"};
        };
        ProgramFolder = folder / "";
    }

    int Run(const std::string& text) { return RunActions(ParseCommandLine(text)); }

    void WritePresets(const std::vector<PresetRecord>& presets) {
        WriteBytes(folder / "presets.npf", PresetBytes(presets));
    }
    void WriteVendors() {
        WriteBytes(folder / "VendorNumbers.log",
                   VendorBytes({{"00000C", "Cisco", ""}, {"00000D", "Acme", ""}}));
    }

    /// The number of the run-time error that ends the run.
    int ErrorNumber(const std::string& text) {
        try {
            Run(text);
        } catch (const RunTimeError& error) {
            return error.Number();
        }
        return 0;
    }

    [[nodiscard]] std::vector<NamedValue> DriverWrites() const {
        return WritesTo(*machine.registry, DriverKeyPath("0003"));
    }
    [[nodiscard]] std::vector<NamedValue> TcpipWrites() const {
        return WritesTo(*machine.registry, TcpipKey(kFirstId));
    }

    FakeMachine machine;
    TempFolder folder;
};

}  // namespace corvane::test
