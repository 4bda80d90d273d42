#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

/// Helpers for tests that work on real links. Linking this file in makes the whole run fail at its start
/// unless it is root in a network namespace without a real device.
namespace corvane::netns {

struct CommandResult {
    int exitCode = -1;  ///< 128 + signal number when a signal ended it; 127 when it could not be started.
    std::string output;
    std::string errors;
};

/// Runs a program (looked up in PATH, no shell, no input) to its end.
CommandResult RunCommand(const std::vector<std::string>& arguments);

/// The text cut at blanks.
std::vector<std::string> Words(std::string_view text);

/// Runs `ip` with these blank-separated arguments. A non-zero exit is a test failure that shows the command
/// and its errors; the standard output is handed back.
std::string Ip(std::string_view arguments);

/// `ip -j` with these arguments, read as JSON; an empty array when it prints nothing or fails (a test
/// failure).
nlohmann::json IpJson(std::string_view arguments);

/// A link name that this process has not handed out before, at most 12 characters: `prefix` and a number.
std::string NewLinkName(std::string_view prefix);

/// Index of a link, 0 when there is none.
std::uint32_t LinkIndex(const std::string& name);

/// Writes a file below /proc/sys, such as "net/ipv6/conf/default/accept_dad"; a failure is a test failure.
void SetSysctl(const std::string& path, const std::string& value);

/// Asks `condition` every few milliseconds until it holds; false when it did not within `milliseconds`.
bool WaitUntil(const std::function<bool()>& condition, int milliseconds = 30000);

/// A link made by `ip link add NAME ARGUMENTS` and removed at the end of the scope if it is still there.
class ScopedLink {
 public:
    ScopedLink(std::string name, std::string_view arguments);
    ~ScopedLink();
    ScopedLink(const ScopedLink&) = delete;
    ScopedLink& operator=(const ScopedLink&) = delete;

    [[nodiscard]] const std::string& Name() const { return name_; }
    [[nodiscard]] std::uint32_t Index() const { return index_; }
    /// `ip link set NAME up` or `down`.
    void SetUp(bool up) const;

 protected:
    /// Takes over a link that is there.
    explicit ScopedLink(std::string name);

 private:
    std::string name_;
    std::uint32_t index_;
};

/// A veth pair with names of its own, both ends down.
class ScopedVeth : public ScopedLink {
 public:
    ScopedVeth();

    [[nodiscard]] const std::string& Peer() const { return peer_; }
    [[nodiscard]] std::uint32_t PeerIndex() const { return LinkIndex(peer_); }
    /// Brings both ends up, so that the link has carrier; returns when the kernel says so.
    void BringUp() const;

 private:
    explicit ScopedVeth(std::string peer);

    std::string peer_;
};

/// A link made by `ip tuntap add`, removed at the end of the scope.
class ScopedTun : public ScopedLink {
 public:
    /// `mode` is "tun" or "tap".
    explicit ScopedTun(const std::string& mode);

 private:
    static std::string Make(const std::string& mode);
};

}  // namespace corvane::netns
