#include "platform/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

/// Names of the files in which new contents are made ready: this, sixteen hexadecimal digits, kTemporaryEnd.
constexpr std::string_view kTemporaryStart = ".corvane-";
constexpr std::string_view kTemporaryEnd = ".new";

/// Links followed before a chain counts as a loop; the kernel's own limit (MAXSYMLINKS,
/// include/linux/namei.h).
constexpr int kMostLinks = 40;

std::error_code FromNumber(int errnoValue) { return {errnoValue, std::generic_category()}; }
std::error_code LastError() { return FromNumber(errno); }

/// An open file descriptor, closed at the end of the scope.
class OpenFile {
 public:
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    ~OpenFile() { Close(); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    [[nodiscard]] int Get() const { return descriptor_; }
    [[nodiscard]] bool IsOpen() const { return descriptor_ >= 0; }
    void Reset(int descriptor) {
        Close();
        descriptor_ = descriptor;
    }

 private:
    void Close() const {
        if (descriptor_ >= 0) close(descriptor_);
    }

    int descriptor_;
};

/// An open folder, closed at the end of the scope.
class OpenFolder {
 public:
    explicit OpenFolder(const std::string& path) : stream_(opendir(path.c_str())) {}
    ~OpenFolder() {
        if (stream_ != nullptr) closedir(stream_);
    }
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;

    [[nodiscard]] DIR* Get() const { return stream_; }

 private:
    DIR* stream_;
};

/// Follows `path` while it is a link, also to a file that does not exist yet.
std::error_code FollowLinks(std::filesystem::path& path) {
    std::error_code failure;
    for (int hops = 0; std::filesystem::is_symlink(std::filesystem::symlink_status(path, failure)); ++hops) {
        if (hops == kMostLinks) return FromNumber(ELOOP);
        const std::filesystem::path link = std::filesystem::read_symlink(path, failure);
        if (failure) return failure;
        path = path.parent_path() / link;
    }
    return {};
}

bool IsTemporaryName(std::string_view name) {
    return name.size() == kTemporaryStart.size() + 16 + kTemporaryEnd.size() &&
           name.substr(0, kTemporaryStart.size()) == kTemporaryStart &&
           name.substr(name.size() - kTemporaryEnd.size()) == kTemporaryEnd;
}

/// Removes what killed replacements left behind in `folder`. A replacement under way holds a lock on its
/// file, so whatever can be locked belongs to nobody.
void RemoveAbandoned(const std::string& folder) {
    const OpenFolder listing(folder);
    if (listing.Get() == nullptr) return;
    while (const dirent* entry = readdir(listing.Get())) {
        if (!IsTemporaryName(entry->d_name)) continue;
        const int folderDescriptor = dirfd(listing.Get());
        const OpenFile file(
            openat(folderDescriptor, entry->d_name, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        struct stat status {};
        if (!file.IsOpen() || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
        if (flock(file.Get(), LOCK_EX | LOCK_NB) == 0) unlinkat(folderDescriptor, entry->d_name, 0);
    }
}

/// A new locked file in a folder; removed at the end of the scope unless it was renamed.
class TemporaryFile {
 public:
    TemporaryFile() = default;
    ~TemporaryFile() {
        if (file_.IsOpen() && !renamed_) unlink(path_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    std::error_code Create(const std::string& folder, mode_t mode) {
        for (int tries = 0; tries < 100; ++tries) {
            std::uint64_t number = 0;
            if (getrandom(&number, sizeof number, 0) != static_cast<ssize_t>(sizeof number))
                return LastError();
            char digits[17];
            std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(number));
            path_ = folder + "/" + std::string(kTemporaryStart) + digits + std::string(kTemporaryEnd);
            file_.Reset(open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode));
            if (!file_.IsOpen() && errno == EEXIST) continue;
            if (!file_.IsOpen()) return LastError();
            if (IsOurs()) return {};
        }
        file_.Reset(-1);
        return FromNumber(EEXIST);
    }

    std::error_code Write(std::string_view contents) const {
        while (!contents.empty()) {
            const ssize_t written = write(file_.Get(), contents.data(), contents.size());
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) return LastError();
            contents.remove_prefix(static_cast<std::size_t>(written));
        }
        return {};
    }

    /// Gives the file the owner and mode of another. The owner goes first: changing it clears mode bits.
    std::error_code TakeAttributes(const struct stat& other) const {
        struct stat mine {};
        if (fstat(file_.Get(), &mine) != 0) return LastError();
        const bool sameOwner = mine.st_uid == other.st_uid && mine.st_gid == other.st_gid;
        if (!sameOwner && fchown(file_.Get(), other.st_uid, other.st_gid) != 0) return LastError();
        if (fchmod(file_.Get(), other.st_mode & 07777U) != 0) return LastError();
        return {};
    }

    /// Puts the file in the place of `target`, on the disk before its name is.
    std::error_code MoveTo(const std::string& target) {
        if (fsync(file_.Get()) != 0) return LastError();
        if (rename(path_.c_str(), target.c_str()) != 0) return LastError();
        renamed_ = true;
        return {};
    }

 private:
    /// Locks the file. False when a clean-up got hold of it between its making and the lock. File systems
    /// without locks have no clean-up either.
    [[nodiscard]] bool IsOurs() const {
        if (flock(file_.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
        struct stat status {};
        return fstat(file_.Get(), &status) == 0 && status.st_nlink > 0;
    }

    std::string path_;
    OpenFile file_{-1};
    bool renamed_ = false;
};

std::error_code Replace(const std::string& path, std::string_view contents) {
    std::filesystem::path resolved = path;
    if (const std::error_code failure = FollowLinks(resolved)) return failure;
    const std::string target = resolved.string();
    const std::string folder = resolved.has_parent_path() ? resolved.parent_path().string() : ".";

    struct stat old {};
    const bool exists = stat(target.c_str(), &old) == 0;
    if (!exists && errno != ENOENT) return LastError();
    if (exists) {
        if (S_ISDIR(old.st_mode)) return FromNumber(EISDIR);
        if (!S_ISREG(old.st_mode)) return FromNumber(EINVAL);
        // The folder's rights would be enough to replace it; a write-protected file is respected all the
        // same.
        if (faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return LastError();
    }

    RemoveAbandoned(folder);
    TemporaryFile temporary;
    if (const std::error_code failure = temporary.Create(folder, exists ? 0600 : 0666)) return failure;
    if (const std::error_code failure = temporary.Write(contents)) return failure;
    if (exists) {
        if (const std::error_code failure = temporary.TakeAttributes(old)) return failure;
    }
    if (const std::error_code failure = temporary.MoveTo(target)) return failure;

    // The new file is in place. Some file systems cannot flush a folder, which is no reason to report a
    // failure.
    const OpenFile folderFile(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folderFile.IsOpen()) fsync(folderFile.Get());
    return {};
}

int OpenToRead(const std::string& path) {
    static constexpr int kFlags = O_RDONLY | O_CLOEXEC;
    // Without O_NONBLOCK opening a pipe would wait for its other end.
    const int descriptor = open(path.c_str(), kFlags | O_NONBLOCK);
    struct stat status {};
    if (descriptor >= 0 || errno != EWOULDBLOCK) return descriptor;
    // Somebody has a lease on the file (fcntl(2)), such as a file server, and is asked to give it back.
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return -1;
    return open(path.c_str(), kFlags);
}

std::error_code Read(const std::string& path, std::string& contents, std::uintmax_t atMost) {
    const OpenFile file(OpenToRead(path));
    struct stat status {};
    if (!file.IsOpen() || fstat(file.Get(), &status) != 0) return LastError();
    if (S_ISDIR(status.st_mode)) return FromNumber(EISDIR);
    if (!S_ISREG(status.st_mode)) return FromNumber(EINVAL);

    // One byte more than the size tells the end without growing. Files of /proc and /sys claim size 0 or one
    // page.
    std::size_t length = 0;
    const auto size = static_cast<std::uintmax_t>(status.st_size);
    contents.resize(static_cast<std::size_t>(std::min(size, atMost)) + 1);
    while (length < atMost) {
        if (length == contents.size()) contents.resize(length + length / 2 + 4096);
        const ssize_t got = read(file.Get(), contents.data() + length, contents.size() - length);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return LastError();
        if (got == 0) break;
        length += static_cast<std::size_t>(got);
    }
    contents.resize(static_cast<std::size_t>(std::min<std::uintmax_t>(length, atMost)));
    return {};
}

/// Runs `operation`, turning what the standard library throws into an error code.
template <class Operation>
std::error_code WithoutExceptions(Operation operation) {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        return FromNumber(ENOMEM);
    } catch (const std::length_error&) {
        return FromNumber(EFBIG);
    } catch (const std::system_error& failure) {
        return failure.code();
    }
}

}  // namespace

std::error_code ReplaceFileContents(const std::string& path, const std::string& contents) {
    return WithoutExceptions([&] { return Replace(path, contents); });
}

std::error_code ReadFileContents(const std::string& path, std::string& contents, std::uintmax_t atMost) {
    contents.clear();
    const std::error_code failure = WithoutExceptions([&] { return Read(path, contents, atMost); });
    if (failure) contents.clear();
    return failure;
}

std::error_code FileSize(const std::string& path, std::uintmax_t& size) {
    std::error_code failure;
    const std::uintmax_t found = std::filesystem::file_size(path, failure);
    if (!failure) size = found;
    return failure;
}

}  // namespace corvane
