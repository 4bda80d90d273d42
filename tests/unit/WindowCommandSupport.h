#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/unit/CoreSupport.h"

/// What the tests of the window's commands share.
namespace corvane::test {

/// A machine with the connections Office (record 0) and Lab (record 1), both enabled. The seat's diary also
/// tells of registry writes ("write NetworkAddress", "delete NetworkAddress"), verbs ("verb Disa&ble of Lab")
/// and waits ("sleep 5000"), so that it gives the order of everything.
class WindowCommandTest : public testing::Test {
 protected:
    WindowCommandTest() {
        machine.AddAdapter(kFirstId, "Office", "0003");
        machine.AddAdapter(kSecondId, "Lab", "0007");
        Nics = {NicRecord(kFirstId, "Office", "0003"), NicRecord(kSecondId, "Lab", "0007")};
        machine.shell->panel = {
            {"Network Connections", true, {{"Office", {"Disa&ble"}}, {"Lab", {"Disa&ble"}}}}};
        machine.shell->onVerb = [this](FakeShell::Connection& connection, const std::string& verb) {
            diary.push_back("verb " + verb + " of " + connection.name);
            connection.verbs = {verb == "Disa&ble" ? "En&able" : "Disa&ble"};
        };
        machine.clock->onSleep = [this](std::uint32_t milliseconds) {
            diary.push_back("sleep " + std::to_string(milliseconds));
        };
        FailAt("", Win32Error::kSuccess);
    }

    /// Makes the write or deletion of one value fail.
    void FailAt(const std::string& valueName, Win32Error code) {
        machine.registry->fail = [=, this](const std::string& operation, const std::string&,
                                           const std::string& name) -> std::optional<Win32Error> {
            if (operation != "write" && operation != "delete") return std::nullopt;
            diary.push_back(operation + " " + name);
            if (name == valueName) return code;
            return std::nullopt;
        };
    }

    /// Lab's verbs from now on: those of a connection that is disabled, or that is about to change.
    void SetLabVerbs(const std::vector<std::string>& verbs) {
        machine.shell->panel[0].connections[1].verbs = verbs;
    }

    /// After the disable, Lab offers "enable" at the given attempt and not before.
    void OfferEnableAtAttempt(int attempt) {
        machine.shell->beforeVerbs = [attempt, calls = 0](FakeShell::Connection& connection) mutable {
            const int enableAttempt = calls++;
            if (enableAttempt > 0) connection.verbs = {enableAttempt >= attempt ? "En&able" : "Stat&us"};
        };
    }

    /// The folder of connections is not known, and the user picks it; the refresh at the end of the folder
    /// dialog finds other adapters.
    void LoseFolderAndAdapters() {
        machine.shell->panel[0].name = "Verbindungen";
        machine.seat.folderChoice = 0;
        machine.seat.onRefresh = [] { Nics.assign(2, NicInfo()); };
    }

    FakeMachine machine;
    std::vector<std::string>& diary = machine.seat.diary;
};

inline FakeSeat::Box Question(const std::string& title, const std::string& text) {
    return {title, text, BoxIcon::kQuestion, BoxButtons::kYesNoCancel, false};
}
inline FakeSeat::Box Exclamation(const std::string& title, const std::string& text) {
    return OkBox(BoxIcon::kExclamation, title, text);
}

/// The box of a failed registry write.
inline FakeSeat::Box WriteFailure(const std::string& path, const std::string& error) {
    return Critical("Error! Cannot Write Registry",
                    "Error while writing in windows registry.\r\n\r\nRegistry Path: HKEY_LOCAL_MACHINE\\" +
                        path + "\r\n\r\nError: " + error + "\r\n\r\nClick OK to continue");
}

/// A diary in one piece.
inline std::vector<std::string> Lines(std::vector<std::vector<std::string>> parts) {
    std::vector<std::string> all;
    for (const std::vector<std::string>& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

/// What a restart of Lab leaves in the diary when nothing goes wrong.
inline const std::vector<std::string> kRestartOfLab = {"row 1 ",
                                                       "row 2 ",
                                                       "row 3 Disabling ...",
                                                       "row 4  ",
                                                       "events",
                                                       "verb Disa&ble of Lab",
                                                       "sleep 5000",
                                                       "row 3 Enabling (Attempt 1) ...",
                                                       "events",
                                                       "verb En&able of Lab",
                                                       "events",
                                                       "sleep 5000"};

}  // namespace corvane::test
