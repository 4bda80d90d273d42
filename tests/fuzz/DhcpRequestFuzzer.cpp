#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/linux/dhcp/DhcpControllers.h"
#include "platform/linux/dhcp/DhcpSocket.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/Targets.h"

namespace corvane::fuzz {

namespace {

constexpr std::uint32_t kLink = 7;
constexpr const char* kWaiting[] = {kAskRenew, kAskRelease, kAskStop};

/// A folder for the sockets of this process.
class RuntimeFolder {
 public:
    RuntimeFolder() {
        Require(mkdtemp(folder_.data()) != nullptr, "there is a folder for the sockets");
        setenv("NICX_RUNTIME", folder_.c_str(), 1);
    }
    ~RuntimeFolder() {
        unlink((folder_ + "/lock").c_str());
        rmdir(folder_.c_str());
    }
    RuntimeFolder(const RuntimeFolder&) = delete;
    RuntimeFolder& operator=(const RuntimeFolder&) = delete;

 private:
    std::string folder_ = "/tmp/corvane-fuzz-XXXXXX";
};

/// A supervisor's end, for all inputs of the process.
struct Supervisor {
    RuntimeFolder folder;
    DhcpListener listener;
    DhcpControllers controllers{listener};

    Supervisor() {
        const DhcpListener::Opening opening = listener.Open(kLink);
        Require(opening.outcome == DhcpListener::Outcome::kListening, "the supervisor listens");
    }

    /// Takes all that there is to take now.
    void Take() {
        for (;;) {
            std::vector<pollfd> waits;
            controllers.AddWaits(waits);
            if (poll(waits.data(), waits.size(), 0) <= 0) return;
            controllers.Take(waits, DhcpAnswer{Win32Error::kSuccess, "asking"});
        }
    }
};

Supervisor& TheSupervisor() {
    static Supervisor supervisor;
    return supervisor;
}

Descriptor Connection() {
    const std::string path = DhcpSocketPath(kLink);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    Require(path.size() < sizeof address.sun_path, "the path fits");
    std::memcpy(address.sun_path, path.data(), path.size());
    Descriptor connection(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    Require(connect(connection.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
            "the supervisor takes connections");
    return connection;
}

/// The answer's bytes; "closed" when the supervisor has let go of the connection, empty when nothing has
/// come.
std::string Answer(const Descriptor& connection) {
    std::array<char, 2048> text{};
    const ssize_t size = recv(connection.Get(), text.data(), text.size(), MSG_DONTWAIT);
    if (size < 0) return errno == EAGAIN ? "" : "closed";
    return size == 0 ? "closed" : std::string(text.data(), static_cast<std::size_t>(size));
}

bool AsksForMore(std::string_view question) {
    for (const char* waiting : kWaiting) {
        if (question == waiting) return true;
    }
    return false;
}

}  // namespace

bool CheckDhcpRequest(std::string_view bytes) {
    Supervisor& supervisor = TheSupervisor();
    const Descriptor connection = Connection();
    const ssize_t sent = send(connection.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    Require(sent == static_cast<ssize_t>(bytes.size()), "a connection takes a question");
    supervisor.Take();

    const bool waits = AsksForMore(bytes);
    for (const char* waiting : kWaiting)
        Require(supervisor.controllers.Asked(waiting) == (bytes == waiting),
                "what is asked is what was sent");
    const std::string answer = Answer(connection);
    if (waits) {
        Require(answer.empty(), "a question that takes time is answered when it is carried out");
        supervisor.controllers.AnswerAll(std::string(bytes), {Win32Error::kSuccess, "done"});
        Require(Answer(connection) == "0 done", "who waits is answered");
        Require(!supervisor.controllers.Asked(std::string(bytes).c_str()), "a question is answered once");
    } else if (bytes == kAskStatus) {
        Require(answer == "0 asking", "the state is told");
    } else if (bytes.empty()) {
        Require(answer == "closed", "who asks nothing is let go of");
    } else {
        Require(answer == "87 unknown request", "what is no question is refused");
    }
    Require(Answer(connection) == "closed", "a connection is for one question");
    return waits || bytes == kAskStatus;
}

}  // namespace corvane::fuzz
