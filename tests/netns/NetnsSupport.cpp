#include "tests/netns/NetnsSupport.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane::netns {
namespace {

/// Refuses to run on the machine's own links. It ends the program, because a failure here would make
/// GoogleTest skip the cases, and a test driver may take that for less than a failure.
class SandboxCheck : public ::testing::Environment {
 public:
    void SetUp() override {
        if (geteuid() != 0) Refuse("these tests need root");
        const CommandResult links = RunCommand({"ip", "-j", "-d", "link", "show"});
        if (links.exitCode != 0) Refuse("ip does not work: " + links.errors);
        const nlohmann::json list = nlohmann::json::parse(links.output);
        for (const nlohmann::json& link : list) {
            const bool made = link.contains("linkinfo") || link.value("link_type", "") == "loopback";
            if (!made) Refuse("not a private network namespace, it has " + link.value("ifname", "?"));
        }
    }

 private:
    [[noreturn]] static void Refuse(const std::string& reason) {
        std::cerr << "sandbox check FAILED: " << reason << std::endl;
        std::_Exit(EXIT_FAILURE);
    }
};

const ::testing::Environment* const kSandboxCheck = ::testing::AddGlobalTestEnvironment(new SandboxCheck);

/// Reads both pipes until both are at their end.
void ReadBoth(int outputEnd, int errorEnd, CommandResult& result) {
    std::array<pollfd, 2> ends{{{outputEnd, POLLIN, 0}, {errorEnd, POLLIN, 0}}};
    std::array<std::string*, 2> texts{&result.output, &result.errors};
    std::array<char, 16384> chunk{};
    while (ends[0].fd >= 0 || ends[1].fd >= 0) {
        if (poll(ends.data(), ends.size(), -1) < 0 && errno != EINTR) return;
        for (std::size_t i = 0; i < ends.size(); ++i) {
            if (ends[i].fd < 0 || ends[i].revents == 0) continue;
            const ssize_t count = read(ends[i].fd, chunk.data(), chunk.size());
            if (count > 0) {
                texts[i]->append(chunk.data(), static_cast<std::size_t>(count));
            } else if (count == 0 || errno != EINTR) {
                ends[i].fd = -1;
            }
        }
    }
}

}  // namespace

CommandResult RunCommand(const std::vector<std::string>& arguments) {
    CommandResult result;
    std::array<int, 2> output{};
    std::array<int, 2> errors{};
    if (pipe2(output.data(), O_CLOEXEC) != 0) return result;
    if (pipe2(errors.data(), O_CLOEXEC) != 0) {
        close(output[0]);
        close(output[1]);
        return result;
    }
    std::vector<char*> pointers;
    for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);

    const pid_t child = fork();
    if (child == 0) {
        const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(nothing, STDIN_FILENO);
        dup2(output[1], STDOUT_FILENO);
        dup2(errors[1], STDERR_FILENO);
        execvp(pointers[0], pointers.data());
        _exit(127);
    }
    close(output[1]);
    close(errors[1]);
    if (child > 0) {
        ReadBoth(output[0], errors[0], result);
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    close(output[0]);
    close(errors[0]);
    return result;
}

std::vector<std::string> Words(std::string_view text) {
    std::istringstream stream{std::string(text)};
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

namespace {

CommandResult RunIp(std::vector<std::string> command, std::string_view arguments) {
    for (std::string& word : Words(arguments)) command.push_back(std::move(word));
    CommandResult result = RunCommand(command);
    EXPECT_EQ(result.exitCode, 0) << "ip " << arguments << "\n" << result.errors;
    return result;
}

}  // namespace

std::string Ip(std::string_view arguments) { return RunIp({"ip"}, arguments).output; }

nlohmann::json IpJson(std::string_view arguments) {
    const CommandResult result = RunIp({"ip", "-j"}, arguments);
    nlohmann::json parsed = nlohmann::json::parse(result.output, nullptr, false);
    if (!parsed.is_discarded()) return parsed;
    EXPECT_TRUE(result.output.find_first_not_of(" \n") == std::string::npos) << result.output;
    return nlohmann::json::array();
}

std::string NewLinkName(std::string_view prefix) {
    static int count = 0;
    return std::string(prefix) + std::to_string(++count);
}

std::uint32_t LinkIndex(const std::string& name) { return if_nametoindex(name.c_str()); }

void SetSysctl(const std::string& path, const std::string& value) {
    std::ofstream file("/proc/sys/" + path);
    file << value << std::flush;
    EXPECT_TRUE(file.good()) << path;
}

bool WaitUntil(const std::function<bool()>& condition, int milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) return condition();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

ScopedLink::ScopedLink(std::string name, std::string_view arguments) : name_(std::move(name)) {
    Ip("link add " + name_ + " " + std::string(arguments));
    index_ = LinkIndex(name_);
}

ScopedLink::ScopedLink(std::string name) : name_(std::move(name)), index_(LinkIndex(name_)) {}

ScopedLink::~ScopedLink() {
    if (LinkIndex(name_) != 0) RunCommand({"ip", "link", "del", name_});
}

void ScopedLink::SetUp(bool up) const { Ip("link set " + name_ + (up ? " up" : " down")); }

ScopedVeth::ScopedVeth() : ScopedVeth(NewLinkName("vp")) {}

ScopedVeth::ScopedVeth(std::string peer)
    : ScopedLink(NewLinkName("ve"), "type veth peer name " + peer), peer_(std::move(peer)) {}

void ScopedVeth::BringUp() const {
    SetUp(true);
    Ip("link set " + peer_ + " up");
    const bool carrier = WaitUntil([this] {
        const nlohmann::json links = IpJson("link show dev " + Name());
        return links.size() == 1 && links[0].value("operstate", "") == "UP";
    });
    EXPECT_TRUE(carrier) << Name() << " got no carrier";
}

ScopedTun::ScopedTun(const std::string& mode) : ScopedLink(Make(mode)) {}

std::string ScopedTun::Make(const std::string& mode) {
    std::string name = NewLinkName(mode);
    Ip("tuntap add dev " + name + " mode " + mode);
    return name;
}

}  // namespace corvane::netns
