#include "platform/linux/resolver/Dns.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <map>
#include <string_view>
#include <system_error>

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Text.h"
#include "platform/Files.h"
#include "platform/RegistryKeys.h"
#include "platform/RegistryValues.h"
#include "platform/linux/system/Descriptor.h"
#include "platform/linux/system/FileLock.h"

namespace corvane {

namespace {

constexpr std::string_view kBegin = "# Orvella Corvane: name servers of the network connections, do not edit";
constexpr std::string_view kEnd = "# Orvella Corvane: end";
constexpr char kResolvConf[] = "/etc/resolv.conf";
constexpr std::chrono::seconds kLockPatience{5};

/// Takes the lock that keeps the programs that change one resolv.conf apart. Its file stands beside the copy.
Refusal Lock(const std::string& copyPath, FileLock& lock) {
    const std::filesystem::path path = copyPath + ".lock";
    std::error_code ignored;
    if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), ignored);
    const int error = lock.Take(path.string(), kLockPatience);
    if (error == 0) return {};
    return Refusal(path.string() + ": " +
                   (error == EBUSY ? "another program has the lock" : std::strerror(error)));
}

/// The line that starts at `from`, without its end (LF or CR LF); `next` receives where the line after it
/// starts.
std::string_view LineAt(std::string_view text, std::size_t from, std::size_t& next) {
    const std::size_t feed = text.find('\n', from);
    next = feed == std::string_view::npos ? text.size() : feed + 1;
    std::string_view line = text.substr(from, (feed == std::string_view::npos ? text.size() : feed) - from);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

/// `text` without the program's blocks. A block whose end somebody took away ends before the first line that
/// is no name server.
std::string WithoutBlocks(std::string_view text, bool& hadBlock) {
    std::string rest;
    hadBlock = false;
    std::size_t next = 0;
    for (std::size_t at = 0; at < text.size(); at = next) {
        if (LineAt(text, at, next) != kBegin) {
            rest += text.substr(at, next - at);
            continue;
        }
        hadBlock = true;
        while (next < text.size()) {
            std::size_t after = 0;
            const std::string_view line = LineAt(text, next, after);
            if (line != kEnd && !line.starts_with("nameserver ")) break;
            next = after;
            if (line == kEnd) break;
        }
    }
    return rest;
}

std::string Block(const std::vector<std::string>& servers) {
    if (servers.empty()) return {};
    std::string block(kBegin);
    block += '\n';
    for (const std::string& server : servers) block += "nameserver " + server + "\n";
    block.append(kEnd);
    return block + '\n';
}

/// Writes over the contents of an existing file: shorter contents are cut last, so that what is read
/// meanwhile begins with whole lines of the new ones.
/// One write and, for a file that gets shorter, a cut. The write covers the whole old contents, with empty
/// lines at its end, so that a program killed in between leaves no line of them.
std::error_code WriteInPlace(const std::string& path, std::string contents) {
    const auto lastError = [] { return std::error_code(errno, std::generic_category()); };
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW));
    if (!file.IsOpen()) return lastError();
    const auto size = static_cast<off_t>(contents.size());
    struct stat status {};
    if (fstat(file.Get(), &status) != 0) return lastError();
    if (status.st_size > size) contents.resize(static_cast<std::size_t>(status.st_size), '\n');
    for (std::size_t done = 0; done < contents.size();) {
        const ssize_t count =
            pwrite(file.Get(), contents.data() + done, contents.size() - done, static_cast<off_t>(done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastError();
        done += static_cast<std::size_t>(count);
    }
    if (ftruncate(file.Get(), size) != 0 || fsync(file.Get()) != 0) return lastError();
    return {};
}

/// A mount point cannot be renamed over (EBUSY), and a file bound into a read-only folder has no room beside
/// it.
std::error_code WriteFile(const std::string& path, const std::string& contents, bool exists) {
    const std::error_code error = ReplaceFileContents(path, contents);
    const bool inPlace =
        exists && (error == std::errc::device_or_resource_busy || error == std::errc::read_only_file_system ||
                   error == std::errc::permission_denied || error == std::errc::cross_device_link);
    return inPlace ? WriteInPlace(path, contents) : error;
}

/// UpdateResolvConf under the lock.
Refusal Update(const std::string& path, const std::string& copyPath,
               const std::vector<std::string>& servers) {
    const auto refuse = [&](const std::string& reason) {
        return Refusal(path + " was left as it is: " + reason);
    };
    struct stat status {};
    const bool exists = lstat(path.c_str(), &status) == 0;
    if (!exists && errno != ENOENT) return refuse(std::strerror(errno));
    if (exists && S_ISLNK(status.st_mode)) {
        // Nothing of the program's is in it, as the program never writes through a link.
        if (servers.empty()) return {};
        std::error_code ignored;
        return refuse(
            "it is a symbolic link to " + std::filesystem::read_symlink(path, ignored).string() +
            ", which another program keeps; set the DNS servers there, or replace the link by a file");
    }
    if (exists && !S_ISREG(status.st_mode)) return refuse("it is no plain file; replace it by one");
    std::string before;
    if (exists) {
        if (const std::error_code error = ReadFileContents(path, before)) return refuse(error.message());
    }
    bool hadBlock = false;
    const std::string foreign = WithoutBlocks(before, hadBlock);
    const std::string after = Block(servers) + foreign;
    if (after == before) return {};
    if (exists && access(path.c_str(), W_OK) != 0) {
        return refuse(std::string(std::strerror(errno)) +
                      "; make it writable or set the DNS servers in it by hand");
    }
    if (exists && !hadBlock) {
        if (const std::error_code error = ReplaceFileContents(copyPath, before)) {
            return refuse("no copy of it could be kept at " + copyPath + ": " + error.message());
        }
    }
    if (const std::error_code error = WriteFile(path, after, exists)) {
        return refuse(error.message() + "; make it writable or set the DNS servers in it by hand");
    }
    return {};
}

/// A text value without its terminator, empty when there is none.
Win32Error ReadText(RegistryStore& store, const std::string& key, const char* name, std::string& text) {
    const RegistryRead read = store.ReadValue(kHkeyLocalMachine, key, name);
    text.clear();
    if (read.code == Win32Error::kFileNotFound) return Win32Error::kSuccess;
    if (!Ok(read.code)) return read.code;
    text = TextBeforeNul(read.value.data);
    return Win32Error::kSuccess;
}

bool IsServer(const std::string& text) {
    in6_addr address{};
    return inet_pton(AF_INET, text.c_str(), &address) == 1 ||
           inet_pton(AF_INET6, text.c_str(), &address) == 1;
}

/// MergedDnsServers, told apart from a store or a kernel that could not be read.
Refusal Collect(RegistryStore& store, Netlink& netlink, std::vector<std::string>& servers) {
    const auto unreadable = [](Win32Error code) {
        return Refusal("the DNS servers cannot be read from the registry: error " +
                       std::to_string(Number(code)));
    };
    servers.clear();
    std::vector<LinkRow> rows;
    std::vector<KernelLink> links;
    if (const Win32Error code = store.LoadLinks(rows); !Ok(code)) return unreadable(code);
    if (const KernelAnswer answer = netlink.DumpLinks(links); !answer.Ok()) {
        return Refusal("the links cannot be listed: " + answer.Words());
    }
    std::map<std::uint32_t, std::string> upIds;
    for (const KernelLink& link : links) {
        if (!link.Up()) continue;
        for (const LinkRow& row : rows) {
            if (row.present && row.index == link.index) upIds[link.index] = row.id;
        }
    }
    for (const auto& [index, id] : upIds) {
        std::string text;
        char separator = ',';
        Win32Error code = ReadText(store, TcpipKey(id), kNameServerValue, text);
        if (Ok(code) && text.empty()) {
            separator = ' ';
            code = ReadText(store, TcpipKey(id), kDhcpNameServerValue, text);
        }
        if (!Ok(code)) {
            servers.clear();
            return unreadable(code);
        }
        for (const std::string& piece : Split(text, separator)) {
            const std::string server = Trim(piece);
            const bool known = std::find(servers.begin(), servers.end(), server) != servers.end();
            if (!known && IsServer(server)) servers.push_back(server);
        }
    }
    return {};
}

}  // namespace

std::vector<std::string> MergedDnsServers(RegistryStore& store, Netlink& netlink) {
    std::vector<std::string> servers;
    static_cast<void>(Collect(store, netlink, servers));
    return servers;
}

Refusal UpdateResolvConf(const std::string& path, const std::string& copyPath,
                         const std::vector<std::string>& servers) {
    FileLock lock;
    if (Refusal refusal = Lock(copyPath, lock)) return refusal;
    return Update(path, copyPath, servers);
}

Refusal ApplyDns(RegistryStore& store, Netlink& netlink) {
    const std::filesystem::path folder = std::filesystem::path(RegistryStore::DefaultPath()).parent_path();
    const std::string copyPath = (folder / "resolv.conf.before").string();
    // The lock spans the reading too: a program that read earlier must not write later.
    FileLock lock;
    if (Refusal refusal = Lock(copyPath, lock)) return refusal;
    std::vector<std::string> servers;
    if (Refusal refusal = Collect(store, netlink, servers)) return refusal;
    return Update(kResolvConf, copyPath, servers);
}

}  // namespace corvane
