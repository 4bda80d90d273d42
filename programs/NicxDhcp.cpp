#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <getopt.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include "base/Refusal.h"
#include "platform/linux/dhcp/DhcpClients.h"
#include "platform/linux/dhcp/DhcpExit.h"
#include "platform/linux/dhcp/DhcpHook.h"
#include "platform/linux/dhcp/DhcpSocket.h"
#include "platform/linux/dhcp/DhcpSupervisor.h"
#include "platform/linux/kernel/Netlink.h"
#include "platform/linux/system/Descriptor.h"
#include "startup/Version.h"

/// nicx-dhcp: supervisor of the DHCP client of one link, and the client's hook.

extern char** environ;

namespace {

using namespace corvane;

constexpr char kHelp[] =
    "Usage: nicx-dhcp --interface NAME --id {GUID} [--index NUMBER] [OPTIONS]\n"
    "Keeps a DHCP lease on one network link. It is started and stopped by nicx.\n"
    "\n"
    "  --interface NAME  the link\n"
    "  --index NUMBER    the link's index; it must be NAME's\n"
    "  --id {GUID}       configuration id of the connection, for the registry\n"
    "  --client CLIENT   udhcpc, dhcpcd or dhclient; without it the first that is installed\n"
    "  --foreground      stay in the foreground, messages on standard error\n"
    "  --help            this text\n"
    "  --version         the version\n"
    "\n"
    "Exit codes: 0 done, 1 failed, 2 wrong arguments, 3 not root, 4 no DHCP client, 5 no such link.\n"
    "Environment: NICX_REGISTRY (registry file), NICX_RUNTIME (folder of the control sockets), "
    "NICX_DHCP_CLIENT\n"
    "(as --client).\n";

struct Arguments {
    std::string interface;
    std::string id;
    std::optional<std::uint32_t> index;
    std::optional<DhcpClientKind> client;
    bool foreground = false;
    bool help = false;
    bool version = false;
};

Refusal ReadIndex(const std::string& text, Arguments& arguments) {
    std::uint32_t index = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), index);
    if (error != std::errc() || *end != '\0' || index == 0) return Refusal("--index needs a number from 1");
    arguments.index = index;
    return {};
}

/// `source` is the option or the variable that holds `name`.
Refusal ReadClient(const std::string& source, const std::string& name, Arguments& arguments) {
    arguments.client = DhcpClientKindFrom(name);
    if (arguments.client) return {};
    return Refusal(source + " is udhcpc, dhcpcd or dhclient, not " + name);
}

Refusal ReadOptions(int count, char** words, Arguments& arguments) {
    // Above every character, so that they are told from short options.
    enum : int { kInterface = 256, kIndex, kId, kClient, kForeground, kHelpWanted, kVersion };
    static constexpr option kOptions[] = {{"interface", required_argument, nullptr, kInterface},
                                          {"index", required_argument, nullptr, kIndex},
                                          {"id", required_argument, nullptr, kId},
                                          {"client", required_argument, nullptr, kClient},
                                          {"foreground", no_argument, nullptr, kForeground},
                                          {"help", no_argument, nullptr, kHelpWanted},
                                          {"version", no_argument, nullptr, kVersion},
                                          {}};
    opterr = 0;
    for (;;) {
        // "-": what is no option comes in its place, so that this is the word that is read next. ":": a
        // missing value is told apart.
        const char* const word = words[optind];
        const int found = getopt_long(count, words, "-:", kOptions, nullptr);
        if (found == -1) break;
        Refusal refusal;
        switch (found) {
            case kInterface:
                arguments.interface = optarg;
                break;
            case kIndex:
                refusal = ReadIndex(optarg, arguments);
                break;
            case kId:
                arguments.id = optarg;
                break;
            case kClient:
                refusal = ReadClient("--client", optarg, arguments);
                break;
            case kForeground:
                arguments.foreground = true;
                break;
            case kHelpWanted:
                arguments.help = true;
                break;
            case kVersion:
                arguments.version = true;
                break;
            case ':':
                refusal = Refusal(std::string(word) + " needs a value");
                break;
            default:
                refusal = Refusal("unknown argument " + std::string(word));
                break;
        }
        if (refusal) return refusal;
    }
    if (optind < count) return Refusal("unknown argument " + std::string(words[optind]));
    return {};
}

Refusal ReadArguments(int count, char** words, Arguments& arguments) {
    if (Refusal refusal = ReadOptions(count, words, arguments)) return refusal;
    if (arguments.help || arguments.version) return {};
    const char* const client = std::getenv("NICX_DHCP_CLIENT");
    if (!arguments.client && client != nullptr && *client != '\0') {
        if (Refusal refusal = ReadClient("NICX_DHCP_CLIENT", client, arguments)) return refusal;
    }
    if (arguments.interface.empty()) return Refusal("--interface is missing");
    if (arguments.id.empty()) return Refusal("--id is missing");
    if (arguments.id.find('\\') != std::string::npos)
        return Refusal("--id is no configuration id: " + arguments.id);
    return {};
}

int Complain(int exitCode, const std::string& words) {
    std::fprintf(stderr, "nicx-dhcp: %s\n", words.c_str());
    return exitCode;
}

/// Forgets what the starter left: open descriptors, signal dispositions and the signal mask. The signals that
/// end the supervisor are blocked, for its loop to read.
void TidyProcess() {
    close_range(3, ~0U, 0);
    for (const int number : {SIGCHLD, SIGPIPE, SIGTERM, SIGINT, SIGHUP, SIGALRM, SIGUSR1, SIGUSR2}) {
        signal(number, SIG_DFL);
    }
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&set, number);
    sigprocmask(SIG_SETMASK, &set, nullptr);
    umask(022);
}

/// The way in which the detached process tells its starter how it went: an exit code's digit, then words.
class Starter {
 public:
    /// Forks. The child goes on in a session of its own; the parent does not come back: it ends with what the
    /// child tells it.
    bool Detach() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
        const Descriptor reading(ends[0]);
        writing_.Reset(ends[1]);
        const pid_t child = fork();
        if (child < 0) return false;
        if (child == 0) {
            setsid();
            return true;
        }
        writing_.Reset();
        std::string told;
        std::array<char, 1024> chunk{};
        for (;;) {
            const ssize_t count = read(reading.Get(), chunk.data(), chunk.size());
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) break;
            told.append(chunk.data(), static_cast<std::size_t>(count));
        }
        if (told.empty()) std::_Exit(Complain(kDhcpExitFailed, "the supervisor ended at once"));
        if (told.size() > 1) Complain(0, told.substr(1));
        std::_Exit(told[0] - '0');
    }

    /// Lets the starter go, if there is one, and leaves its terminal.
    void Tell(int exitCode, const std::string& words) {
        if (!writing_.IsOpen()) return;
        const Descriptor nothing(open("/dev/null", O_RDWR | O_CLOEXEC));
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nothing.Get(), standard);
        const std::string text = std::to_string(exitCode) + words;
        [[maybe_unused]] const ssize_t told = write(writing_.Get(), text.data(), text.size());
        writing_.Reset();
    }

 private:
    Descriptor writing_;
};

int Supervise(const Arguments& arguments) {
    if (geteuid() != 0) return Complain(kDhcpExitNoRight, "only root may keep a DHCP lease; run it as root");
    const char* const searchPath = std::getenv("PATH");
    const std::optional<DhcpClient> client =
        FindDhcpClient(arguments.client, searchPath == nullptr ? "" : searchPath);
    if (!client) {
        return Complain(kDhcpExitNoClient,
                        arguments.client
                            ? std::string(NameOf(*arguments.client)) + " is not installed"
                            : "no DHCP client is installed; install busybox, dhcpcd or dhclient");
    }
    KernelLink link;
    {
        Netlink netlink;
        const KernelAnswer answer = netlink.GetLinkByName(arguments.interface, link);
        if (answer.errnoValue == ENODEV)
            return Complain(kDhcpExitNoLink, "there is no link " + arguments.interface);
        if (!answer.Ok()) return Complain(kDhcpExitFailed, arguments.interface + ": " + answer.Words());
    }
    if (arguments.index && *arguments.index != link.index) {
        return Complain(kDhcpExitNoLink, arguments.interface + " has index " + std::to_string(link.index) +
                                             ", not " + std::to_string(*arguments.index));
    }
    std::error_code error;
    const std::string self = std::filesystem::read_symlink("/proc/self/exe", error).string();
    if (error) return Complain(kDhcpExitFailed, "/proc/self/exe: " + error.message());

    Starter starter;
    if (!arguments.foreground && !starter.Detach()) {
        return Complain(kDhcpExitFailed, std::string("cannot detach: ") + std::strerror(errno));
    }
    if (chdir("/") != 0) return kDhcpExitFailed;
    DhcpListener listener;
    const DhcpListener::Opening opening = listener.Open(link.index);
    switch (opening.outcome) {
        case DhcpListener::Outcome::kListening:
            break;
        case DhcpListener::Outcome::kAnotherRuns:
            if (arguments.foreground)
                return Complain(kDhcpExitFailed, "a supervisor runs for " + arguments.interface);
            starter.Tell(kDhcpExitDone, {});
            return kDhcpExitDone;
        case DhcpListener::Outcome::kFailed:
            if (arguments.foreground) return Complain(kDhcpExitFailed, opening.words);
            starter.Tell(kDhcpExitFailed, opening.words);
            return kDhcpExitFailed;
    }
    starter.Tell(kDhcpExitDone, {});
    if (!arguments.foreground) openlog("nicx-dhcp", LOG_PID, LOG_DAEMON);

    DhcpOptions options;
    options.linkIndex = link.index;
    options.linkId = arguments.id;
    options.hookPath = self;
    options.client = *client;
    options.talk = arguments.foreground;
    options.say = [&arguments](const std::string& words) {
        if (arguments.foreground) {
            Complain(0, arguments.interface + ": " + words);
        } else {
            syslog(LOG_NOTICE, "%s: %s", arguments.interface.c_str(), words.c_str());
        }
    };
    DhcpSupervisor(std::move(options), listener).Run();
    return kDhcpExitDone;
}

}  // namespace

int main(int argc, char** argv) {
    if (const char* const hook = std::getenv(kHookVariable))
        return RunHook(hook, argc > 1 ? argv[1] : "", environ);
    Arguments arguments;
    if (const Refusal refusal = ReadArguments(argc, argv, arguments)) {
        return Complain(kDhcpExitUsage, refusal.Words() + "; see nicx-dhcp --help");
    }
    if (arguments.help) return std::fputs(kHelp, stdout) < 0 ? kDhcpExitFailed : kDhcpExitDone;
    if (arguments.version)
        return std::printf("nicx-dhcp %s\n", kProgramVersion) < 0 ? kDhcpExitFailed : kDhcpExitDone;
    TidyProcess();
    return Supervise(arguments);
}
