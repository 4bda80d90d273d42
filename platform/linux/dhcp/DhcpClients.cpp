#include "platform/linux/dhcp/DhcpClients.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/Text.h"
#include "platform/Files.h"
#include "platform/linux/dhcp/DhcpHook.h"
#include "platform/linux/system/Descriptor.h"

namespace corvane {

namespace {

constexpr std::array kKinds = {DhcpClientKind::kUdhcpc, DhcpClientKind::kDhcpcd, DhcpClientKind::kDhclient};

bool IsProgram(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

/// Path of a program, empty when it is in none of the folders.
std::string FindProgram(const std::string& name, const std::vector<std::string>& folders) {
    for (const std::string& folder : folders) {
        std::string path = folder;
        path.append("/").append(name);
        if (folder.starts_with('/') && IsProgram(path)) return path;
    }
    return {};
}

/// Everything that `busybox --list` prints; empty when it cannot be run.
std::string AppletsOf(const std::string& busybox) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return {};
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, writing.Get(), STDOUT_FILENO);
    std::string option = "--list";
    std::string program = busybox;
    std::array<char*, 3> arguments{program.data(), option.data(), nullptr};
    std::array<char*, 1> environment{nullptr};
    pid_t child = 0;
    const int failure =
        posix_spawn(&child, busybox.c_str(), &actions, nullptr, arguments.data(), environment.data());
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) return {};
    writing.Reset();
    std::string text;
    std::array<char, 4096> chunk{};
    for (;;) {
        const ssize_t count = read(reading.Get(), chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        text.append(chunk.data(), static_cast<std::size_t>(count));
    }
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return text;
}

std::optional<DhcpClient> FindKind(DhcpClientKind kind, const std::vector<std::string>& folders) {
    const std::string path = FindProgram(NameOf(kind), folders);
    if (!path.empty()) return DhcpClient{kind, {path}};
    if (kind != DhcpClientKind::kUdhcpc) return std::nullopt;
    const std::string busybox = FindProgram("busybox", folders);
    if (busybox.empty()) return std::nullopt;
    const std::vector<std::string> applets = Split(AppletsOf(busybox), '\n');
    if (std::find(applets.begin(), applets.end(), "udhcpc") == applets.end()) return std::nullopt;
    return DhcpClient{kind, {busybox, "udhcpc"}};
}

std::vector<std::string> Concat(std::vector<std::string> head, const std::vector<std::string>& tail) {
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
}

/// Passed on to the hook by the clients that clean its environment.
std::string HookSetting() { return std::string(kHookVariable) + "=" + std::to_string(kHookDescriptor); }

/// Four requests two seconds apart, then a pause of three seconds, again and again. Option 121 is sent only
/// on request. A renewal that the server answers before udhcpc has closed its sending socket, as one on the
/// same machine may, is lost, and asked for again by broadcast two seconds later (busybox,
/// networking/udhcp/packet.c).
DhcpClientPlan PlanUdhcpc(const DhcpClient& client, const std::string& linkName,
                          const std::string& hookPath) {
    DhcpClientPlan plan;
    plan.run = Concat(client.command, {"-f", "-i", linkName, "-s", hookPath, "-t", "4", "-T", "2", "-A", "3",
                                       "-O", "staticroutes"});
    plan.renewSignal = SIGUSR1;
    plan.releaseSignal = SIGUSR2;
    plan.repeatsRelease = true;
    plan.staysAfterRelease = true;
    return plan;
}

/// It would take every configuration file's word otherwise, and set the address itself. The signals are those
/// of its -n and -k (dhcpcd(8)); it forgets one that comes while it waits for its hook's end (9.4, privilege
/// separation).
DhcpClientPlan PlanDhcpcd(const DhcpClient& client, const std::string& linkName, const std::string& hookPath,
                          const std::string& fileStem) {
    DhcpClientPlan plan;
    plan.configurationPath = fileStem + ".conf";
    plan.configurationText =
        "ipv4only\nnoipv4ll\nnoarp\nnodelay\nclientid\n"
        "option subnet_mask, routers, classless_static_routes, domain_name_servers, domain_name\n";
    plan.run = Concat(client.command, {"-4", "-B", "--noconfigure", "-f", plan.configurationPath, "-c",
                                       hookPath, "-e", HookSetting(), linkName});
    plan.renewSignal = SIGHUP;
    plan.releaseSignal = SIGALRM;
    plan.repeatsRelease = true;
    plan.files = {plan.configurationPath};
    return plan;
}

/// It has no signals: ended and run anew it asks for the address in its lease file, which it writes when the
/// hook that reported the lease has ended; -r gives that one back.
DhcpClientPlan PlanDhclient(const DhcpClient& client, const std::string& linkName,
                            const std::string& hookPath, const std::string& fileStem) {
    DhcpClientPlan plan;
    plan.configurationPath = fileStem + ".conf";
    plan.configurationText =
        "option rfc3442-classless-static-routes code 121 = array of unsigned integer 8;\n"
        "request subnet-mask, routers, rfc3442-classless-static-routes, domain-name-servers, domain-name;\n"
        "timeout 8;\nretry 3;\n";
    const std::string leases = fileStem + ".leases";
    const std::vector<std::string> common = {"-4",  "--no-pid",    "-cf",   plan.configurationPath,
                                             "-lf", leases,        "-sf",   hookPath,
                                             "-e",  HookSetting(), linkName};
    plan.run = Concat(Concat(client.command, {"-d", "-q"}), common);
    plan.release = Concat(Concat(client.command, {"-r", "-q"}), common);
    plan.endsToRenew = true;
    plan.leaseFile = leases;
    plan.files = {plan.configurationPath, leases, leases + "~"};
    return plan;
}

}  // namespace

const char* NameOf(DhcpClientKind kind) {
    switch (kind) {
        case DhcpClientKind::kUdhcpc:
            return "udhcpc";
        case DhcpClientKind::kDhcpcd:
            return "dhcpcd";
        case DhcpClientKind::kDhclient:
            return "dhclient";
    }
    return "";
}

std::optional<DhcpClientKind> DhcpClientKindFrom(std::string_view name) {
    for (const DhcpClientKind kind : kKinds) {
        if (name == NameOf(kind)) return kind;
    }
    return std::nullopt;
}

std::optional<DhcpClient> FindDhcpClient(std::optional<DhcpClientKind> wanted, std::string_view searchPath) {
    const std::vector<std::string> folders =
        Concat(Split(searchPath, ':'), {"/usr/sbin", "/sbin", "/usr/bin", "/bin"});
    for (const DhcpClientKind kind : kKinds) {
        if (wanted && *wanted != kind) continue;
        if (std::optional<DhcpClient> client = FindKind(kind, folders)) return client;
    }
    return std::nullopt;
}

DhcpClientPlan PlanDhcpClient(const DhcpClient& client, const std::string& linkName,
                              const std::string& hookPath, const std::string& fileStem) {
    switch (client.kind) {
        case DhcpClientKind::kUdhcpc:
            return PlanUdhcpc(client, linkName, hookPath);
        case DhcpClientKind::kDhcpcd:
            return PlanDhcpcd(client, linkName, hookPath, fileStem);
        case DhcpClientKind::kDhclient:
            return PlanDhclient(client, linkName, hookPath, fileStem);
    }
    return {};
}

bool HasWrittenLease(const DhcpClientPlan& plan, const Ipv4Bytes& address) {
    if (plan.leaseFile.empty()) return true;
    const std::string line = "fixed-address " + DottedQuad(address.data()) + ";";
    std::string text;
    return !ReadFileContents(plan.leaseFile, text) && text.find(line) != std::string::npos;
}

}  // namespace corvane
