#pragma once

#include <cstdint>
#include <string>

#include <sys/types.h>

#include "platform/linux/dhcp/DhcpControl.h"
#include "platform/linux/system/Descriptor.h"

/// The control socket of a supervisor: both ends. One question (a word) and one answer per connection.
namespace corvane {

/// The questions. Each is answered when it is carried out.
inline constexpr char kAskStatus[] = "status";
inline constexpr char kAskRenew[] = "renew";
inline constexpr char kAskRelease[] = "release";
inline constexpr char kAskStop[] = "stop";

/// How long a supervisor may take to say that it is there.
inline constexpr int kDhcpStatusMilliseconds = 5000;

/// The controlling end.
class DhcpCaller {
 public:
    enum class Outcome {
        kAnswered,
        kNobody,  ///< No supervisor takes questions, or it ended before it answered.
        kDenied,  ///< No right to ask.
        kLate,    ///< There is one, but it did not answer in time.
    };

    /// Opens a connection to the supervisor of a link of this network namespace; kAnswered when there is one.
    Outcome Connect(std::uint32_t linkIndex);

    /// Asks over the connection and waits for the answer.
    Outcome Ask(const std::string& question, int milliseconds, DhcpAnswer& answer);

    /// A process descriptor of the supervisor; not open when it cannot be had.
    [[nodiscard]] const Descriptor& Process() const { return process_; }

 private:
    Descriptor socket_;
    Descriptor process_;
};

/// The supervisor's end. The socket's file is there as long as questions are taken; only its owner may
/// connect.
class DhcpListener {
 public:
    enum class Outcome {
        kListening,
        kAnotherRuns,  ///< Another supervisor takes questions for the link.
        kFailed,
    };
    struct [[nodiscard]] Opening {
        Outcome outcome = Outcome::kFailed;
        std::string words;  ///< Why it failed.
    };

    ~DhcpListener() { Close(); }
    DhcpListener() = default;
    DhcpListener(const DhcpListener&) = delete;
    DhcpListener& operator=(const DhcpListener&) = delete;

    /// Makes the run-time folder (mode 0755) if need be and the socket in it (mode 0600). A file that a
    /// killed supervisor left is replaced. Of several processes that try at once for one link exactly one
    /// gets kListening. A supervisor that is ending is waited for, at most ten seconds.
    Opening Open(std::uint32_t linkIndex);

    /// Stops listening and removes the file.
    void Close();

    [[nodiscard]] int Get() const { return socket_.Get(); }

    /// One waiting connection; not open when there is none.
    [[nodiscard]] Descriptor Accept() const;

 private:
    Descriptor socket_;
    std::string path_;
};

/// Sends the answer over a connection that Accept gave.
void SendDhcpAnswer(const Descriptor& connection, const DhcpAnswer& answer);

}  // namespace corvane
