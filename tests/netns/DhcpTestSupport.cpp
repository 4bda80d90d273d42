#include "tests/netns/DhcpTestSupport.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/RegistryKeys.h"
#include "platform/RegistryValues.h"
#include "platform/linux/dhcp/DhcpControl.h"
#include "platform/linux/system/RuntimeFolder.h"

namespace corvane::netns {

namespace {

constexpr char kFolder[] = "/run/dhcp-test";

std::string NamespaceFile(pid_t process) { return "/proc/" + std::to_string(process) + "/ns/net"; }

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string LinkTarget(const std::string& path) {
    std::error_code error;
    return std::filesystem::read_symlink(path, error).string();
}

/// Children of the test process that did not end yet; those that did are collected.
std::vector<pid_t> LivingChildren() {
    while (waitpid(-1, nullptr, WNOHANG) > 0) {
    }
    std::istringstream text(ReadFile("/proc/self/task/" + std::to_string(getpid()) + "/children"));
    std::vector<pid_t> children;
    for (pid_t child = 0; text >> child;) children.push_back(child);
    return children;
}

}  // namespace

void ScopedProcess::Run(const std::vector<std::string>& arguments, pid_t namespaceOf,
                        const std::string& log) {
    Kill();
    std::vector<char*> pointers;
    for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    const std::string spaceFile = NamespaceFile(namespaceOf);
    process_ = fork();
    ASSERT_GE(process_, 0);
    if (process_ != 0) return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    const int space = namespaceOf == 0 ? -1 : open(spaceFile.c_str(), O_RDONLY | O_CLOEXEC);
    if (namespaceOf != 0 && setns(space, CLONE_NEWNET) != 0) _exit(126);
    execvp(pointers[0], pointers.data());
    _exit(127);
}

void ScopedProcess::HoldNamespace() {
    Kill();
    process_ = fork();
    ASSERT_GE(process_, 0);
    if (process_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (unshare(CLONE_NEWNET) != 0) _exit(126);
        for (;;) pause();
    }
    const std::string own = LinkTarget("/proc/self/ns/net");
    ASSERT_TRUE(WaitUntil([&] {
        const std::string its = LinkTarget(NamespaceFile(process_));
        return !its.empty() && its != own;
    }));
}

void ScopedProcess::Kill() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = 0;
}

DhcpNetwork::DhcpNetwork(std::string clientName)
    : client_(std::move(clientName)), serverEnd_(NewLinkName("srv")) {
    files_ = std::string(kFolder) + "/" + serverEnd_;
    namespace_.HoldNamespace();
    Ip("link add " + client_ + " type veth peer name " + serverEnd_ + " netns " +
       std::to_string(Namespace()));
    ServerIp("address add 10.77.0.1/24 dev " + serverEnd_);
    ServerIp("link set lo up");
    ServerIp("link set " + serverEnd_ + " up");
}

DhcpNetwork::~DhcpNetwork() {
    server_.Kill();
    if (LinkIndex(client_) != 0) RunCommand({"ip", "link", "del", client_});
}

void DhcpNetwork::ServerIp(std::string_view arguments) const {
    std::vector<std::string> command = {"nsenter", "-n", "-t", std::to_string(Namespace()), "ip"};
    for (const std::string& word : Words(arguments)) command.push_back(word);
    const CommandResult result = RunCommand(command);
    EXPECT_EQ(result.exitCode, 0) << "ip " << arguments << "\n" << result.errors;
}

void DhcpNetwork::StartServer(const std::vector<std::string>& options, const std::string& range) {
    std::filesystem::create_directories(files_);
    std::filesystem::remove(files_ + "/log");
    std::vector<std::string> command = {"dnsmasq",
                                        "--keep-in-foreground",
                                        "--conf-file=/dev/null",
                                        "--port=0",
                                        "--no-ping",
                                        "--user=",
                                        "--group=",
                                        "--log-dhcp",
                                        "--log-facility=-",
                                        "--interface=" + serverEnd_,
                                        "--dhcp-leasefile=" + files_ + "/leases",
                                        "--pid-file=" + files_ + "/pid",
                                        "--dhcp-range=" + range,
                                        "--dhcp-option=option:dns-server,10.77.0.1,10.77.0.2",
                                        "--dhcp-option=option:domain-name,example.test"};
    command.insert(command.end(), options.begin(), options.end());
    server_.Run(command, Namespace(), files_ + "/log");
    ASSERT_TRUE(WaitUntil([&] { return ServerLog().find("DHCP, IP range") != std::string::npos; }))
        << ServerLog();
}

std::string DhcpNetwork::LeaseTable() const { return ReadFile(files_ + "/leases"); }

std::string DhcpNetwork::ServerLog() const { return ReadFile(files_ + "/log"); }

void DhcpFixture::SetUp() {
    std::filesystem::remove_all(kFolder);
    std::filesystem::create_directories(kFolder);
    setenv("NICX_REGISTRY", (std::string(kFolder) + "/registry.db").c_str(), 1);
    setenv("NICX_RUNTIME", (std::string(kFolder) + "/run").c_str(), 1);
    unsetenv("NICX_DHCP_CLIENT");
    prctl(PR_SET_CHILD_SUBREAPER, 1);
}

DhcpFixture::~DhcpFixture() {
    const bool clean = WaitUntil([] { return LivingChildren().empty(); });
    EXPECT_TRUE(clean) << "processes were left behind";
    if (!clean) {
        for (const pid_t child : LivingChildren()) {
            ADD_FAILURE() << child << " " << ReadFile("/proc/" + std::to_string(child) + "/cmdline");
            kill(child, SIGKILL);
            waitpid(child, nullptr, 0);
        }
    }
    prctl(PR_SET_CHILD_SUBREAPER, 0);
}

void DhcpFixture::Introduce(const std::string& name, const std::string& id) const {
    LinkRow row;
    row.id = id;
    row.name = name;
    row.index = LinkIndex(name);
    row.present = true;
    RegistryStore store(RegistryStore::DefaultPath());
    ASSERT_TRUE(Ok(store.Transact([&](RegistryStore::Editor& editor) { return editor.SaveLink(row); })));
    ASSERT_TRUE(Ok(store.CreateKey(kHkeyLocalMachine, TcpipKey(id))));
    Ip("link set " + name + " up");
}

void DhcpFixture::Start(const DhcpNetwork& network) {
    const DhcpAnswer started = StartDhcp(network.Index(), network.Client(), kId);
    EXPECT_EQ(started.code, Win32Error::kSuccess) << started.words;
    EXPECT_EQ(started.words, "");
}

void DhcpFixture::StartWith(const DhcpNetwork& network, const std::string& client) {
    setenv("NICX_DHCP_CLIENT", client.c_str(), 1);
    Start(network);
    unsetenv("NICX_DHCP_CLIENT");
}

void DhcpFixture::Stop(const DhcpNetwork& network) {
    const DhcpAnswer stopped = StopDhcp(network.Index());
    EXPECT_EQ(stopped.code, Win32Error::kSuccess) << stopped.words;
}

nlohmann::json DhcpFixture::Addresses(const std::string& link) {
    if (LinkIndex(link) == 0) return nlohmann::json::array();
    const nlohmann::json links = IpJson("-4 address show dev " + link);
    return links.empty() ? nlohmann::json::array() : links[0].value("addr_info", nlohmann::json::array());
}

std::string DhcpFixture::Address(const std::string& link) {
    const nlohmann::json addresses = Addresses(link);
    return addresses.size() == 1 ? addresses[0].value("local", "") : "";
}

bool DhcpFixture::WaitForAddress(const std::string& link, int milliseconds) {
    // The lease is recorded after the address is on the link.
    return WaitUntil([&] { return !Address(link).empty() && Value("DhcpIPAddress") == Address(link); },
                     milliseconds);
}

bool DhcpFixture::WaitForNoAddress(const std::string& link, int milliseconds) {
    return WaitUntil([&] { return Addresses(link).empty(); }, milliseconds);
}

std::vector<std::string> DhcpFixture::Routes(const std::string& link) {
    std::vector<std::string> routes;
    for (const nlohmann::json& route : IpJson("-4 route show dev " + link)) {
        if (route.value("protocol", "") == "kernel") continue;
        routes.push_back(route.value("dst", "") + " " + route.value("gateway", "-") + " " +
                         std::to_string(route.value("metric", 0)) + " " + route.value("protocol", ""));
    }
    return routes;
}

std::string DhcpFixture::Value(const std::string& name, const std::string& id) {
    RegistryStore store(RegistryStore::DefaultPath());
    const RegistryRead read = store.ReadValue(kHkeyLocalMachine, TcpipKey(id), name);
    std::string text(read.value.data.begin(), read.value.data.end());
    if (!text.empty()) text.pop_back();
    std::replace(text.begin(), text.end(), '\0', '|');
    return text;
}

std::uint32_t DhcpFixture::Dword(const std::string& name, const std::string& id) {
    RegistryStore store(RegistryStore::DefaultPath());
    const RegistryRead read = store.ReadValue(kHkeyLocalMachine, TcpipKey(id), name);
    EXPECT_EQ(read.value.type, kRegDword) << name;
    EXPECT_EQ(read.value.data.size(), 4U) << name;
    return DwordFrom(read.value.data);
}

std::string DhcpFixture::File(const std::string& path) { return ReadFile(path); }

std::vector<std::string> DhcpFixture::RuntimeFiles() {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(RuntimeFolder(), error)) {
        const std::string name = entry.path().filename().string();
        if (name != "lock") names.push_back(name);
    }
    return names;
}

std::vector<pid_t> DhcpFixture::Processes(const std::string& text) {
    const std::string own = LinkTarget("/proc/self/ns/net");
    std::vector<pid_t> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        pid_t process = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
        if (error != std::errc() || end != name.data() + name.size() || process == getpid()) continue;
        if (LinkTarget(NamespaceFile(process)) != own) continue;
        std::string arguments = ReadFile("/proc/" + name + "/cmdline");
        std::replace(arguments.begin(), arguments.end(), '\0', ' ');
        if (arguments.find(text) != std::string::npos) found.push_back(process);
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<pid_t> DhcpFixture::Supervisors() {
    std::vector<pid_t> supervisors = Processes("nicx-dhcp --interface");
    std::erase_if(supervisors, [](pid_t process) { return getsid(process) != process; });
    return supervisors;
}

}  // namespace corvane::netns
