#include "platform/Files.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "platform/windows/Handle.h"
#include "platform/windows/WideText.h"
#include "platform/windows/Windows.h"

namespace corvane {

namespace {

/// Names of the files in which new contents are made ready: this, sixteen hexadecimal digits, kTemporaryEnd.
constexpr wchar_t kTemporaryStart[] = L".corvane-";
constexpr wchar_t kTemporaryEnd[] = L".new";
constexpr std::size_t kTemporaryDigits = 16;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

struct KnownError {
    DWORD code;
    std::errc condition;
};

/// The system's numbers (winerror.h) that have a portable condition; all others are input/output errors.
constexpr std::array kKnownErrors = {
    KnownError{ERROR_FILE_NOT_FOUND, std::errc::no_such_file_or_directory},
    KnownError{ERROR_PATH_NOT_FOUND, std::errc::no_such_file_or_directory},
    KnownError{ERROR_BAD_NETPATH, std::errc::no_such_file_or_directory},
    KnownError{ERROR_INVALID_NAME, std::errc::no_such_file_or_directory},
    KnownError{ERROR_ACCESS_DENIED, std::errc::permission_denied},
    KnownError{ERROR_SHARING_VIOLATION, std::errc::device_or_resource_busy},
    KnownError{ERROR_LOCK_VIOLATION, std::errc::device_or_resource_busy},
    KnownError{ERROR_DISK_FULL, std::errc::no_space_on_device},
    KnownError{ERROR_HANDLE_DISK_FULL, std::errc::no_space_on_device},
    KnownError{ERROR_WRITE_PROTECT, std::errc::read_only_file_system},
    KnownError{ERROR_FILENAME_EXCED_RANGE, std::errc::filename_too_long},
    KnownError{ERROR_DIRECTORY, std::errc::not_a_directory},
    KnownError{ERROR_NOT_ENOUGH_MEMORY, std::errc::not_enough_memory},
    KnownError{ERROR_OUTOFMEMORY, std::errc::not_enough_memory},
};

std::error_code FromNumber(DWORD code) {
    const auto* const known = std::find_if(kKnownErrors.begin(), kKnownErrors.end(),
                                           [&](const KnownError& error) { return error.code == code; });
    return std::make_error_code(known == kKnownErrors.end() ? std::errc::io_error : known->condition);
}
std::error_code LastError() { return FromNumber(GetLastError()); }

bool HasAttribute(const std::wstring& path, DWORD attribute) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & attribute) != 0;
}
bool IsFolder(const std::wstring& path) { return HasAttribute(path, FILE_ATTRIBUTE_DIRECTORY); }
bool IsWriteProtected(const std::wstring& path) { return HasAttribute(path, FILE_ATTRIBUTE_READONLY); }

/// The file itself where `path` is a link to it; `path` where there is none yet.
std::wstring FollowLinks(const std::wstring& path) {
    const FileHandle file(CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file.IsOpen()) return path;
    const DWORD room = GetFinalPathNameByHandleW(file.Get(), nullptr, 0, 0);
    std::wstring target(room, L'\0');
    const DWORD length = room == 0 ? 0 : GetFinalPathNameByHandleW(file.Get(), target.data(), room, 0);
    if (length == 0 || length >= room) return path;
    target.resize(length);
    return target;
}

std::wstring FolderOf(const std::wstring& path) { return path.substr(0, path.find_last_of(L'\\') + 1); }

bool IsTemporaryName(const std::wstring& name) {
    const std::size_t ends = std::size(kTemporaryStart) - 1 + std::size(kTemporaryEnd) - 1;
    return name.size() == ends + kTemporaryDigits && name.starts_with(kTemporaryStart) &&
           name.ends_with(kTemporaryEnd);
}

/// Removes what killed replacements left behind in `folder`. A replacement under way shares its file with
/// nobody, so whatever can be removed belongs to nobody.
void RemoveAbandoned(const std::wstring& folder) {
    WIN32_FIND_DATAW entry{};
    const std::wstring pattern = folder + kTemporaryStart + L"*" + kTemporaryEnd;
    const FindHandle search(FindFirstFileW(pattern.c_str(), &entry));
    if (!search.IsOpen()) return;
    do {
        if (IsTemporaryName(entry.cFileName)) DeleteFileW((folder + entry.cFileName).c_str());
    } while (FindNextFileW(search.Get(), &entry) != 0);
}

std::wstring TemporaryName() {
    std::random_device random;
    std::array<wchar_t, kTemporaryDigits + 1> digits{};
    std::swprintf(digits.data(), digits.size(), L"%08x%08x", static_cast<unsigned>(random()),
                  static_cast<unsigned>(random()));
    return std::wstring(kTemporaryStart) + digits.data() + kTemporaryEnd;
}

/// The file in which the new contents are made ready. It goes with its handle unless it has taken its place.
class NewFile {
 public:
    std::error_code Make(const std::wstring& folder) {
        static constexpr int kAttempts = 16;
        for (int i = 0; i < kAttempts; ++i) {
            const std::wstring path = folder + TemporaryName();
            file_.Reset(CreateFileW(path.c_str(), GENERIC_WRITE | DELETE | WRITE_DAC, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
            if (file_.IsOpen()) return {};
            if (GetLastError() != ERROR_FILE_EXISTS) return LastError();
        }
        return LastError();
    }
    ~NewFile() {
        if (!file_.IsOpen() || placed_) return;
        FILE_DISPOSITION_INFO gone{TRUE};
        SetFileInformationByHandle(file_.Get(), FileDispositionInfo, &gone, sizeof gone);
    }
    NewFile() = default;
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    std::error_code Write(const std::string& contents) {
        static constexpr std::size_t kLargestPiece = 1U << 20U;
        for (std::size_t at = 0; at < contents.size();) {
            DWORD written = 0;
            const auto piece = static_cast<DWORD>(std::min(contents.size() - at, kLargestPiece));
            if (WriteFile(file_.Get(), contents.data() + at, piece, &written, nullptr) == 0)
                return LastError();
            at += written;
        }
        return FlushFileBuffers(file_.Get()) == 0 ? LastError() : std::error_code();
    }

    /// Takes over who may do what with the old file, and its attributes. Where the system refuses, the file
    /// keeps those that its folder gave it.
    void TakeRightsFrom(const std::wstring& old) {
        DWORD needed = 0;
        GetFileSecurityW(old.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &needed);
        std::vector<std::uint8_t> rights(needed);
        if (needed > 0 &&
            GetFileSecurityW(old.c_str(), DACL_SECURITY_INFORMATION, rights.data(), needed, &needed) != 0) {
            SetKernelObjectSecurity(file_.Get(), DACL_SECURITY_INFORMATION, rights.data());
        }
        const DWORD attributes = GetFileAttributesW(old.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) return;
        FILE_BASIC_INFO info{};
        info.FileAttributes = attributes;
        SetFileInformationByHandle(file_.Get(), FileBasicInfo, &info, sizeof info);
    }

    /// Puts the file in the place of `target`, in one step.
    std::error_code TakePlace(const std::wstring& target) {
        const std::size_t bytes = target.size() * sizeof(wchar_t);
        std::vector<std::uint64_t> room((sizeof(FILE_RENAME_INFO) + bytes) / sizeof(std::uint64_t) + 1);
        auto* const rename = reinterpret_cast<FILE_RENAME_INFO*>(room.data());
        rename->ReplaceIfExists = TRUE;
        rename->FileNameLength = static_cast<DWORD>(bytes);
        std::memcpy(rename->FileName, target.data(), bytes);
        const auto size = static_cast<DWORD>(room.size() * sizeof(std::uint64_t));
        if (SetFileInformationByHandle(file_.Get(), FileRenameInfo, rename, size) == 0) return LastError();
        placed_ = true;
        return FlushFileBuffers(file_.Get()) == 0 ? LastError() : std::error_code();
    }

 private:
    FileHandle file_;
    bool placed_ = false;
};

std::error_code Replace(const std::string& path, const std::string& contents) {
    const std::wstring target = FollowLinks(SystemPath(path));
    if (IsFolder(target)) return std::make_error_code(std::errc::is_a_directory);
    if (IsWriteProtected(target)) return std::make_error_code(std::errc::permission_denied);
    const std::wstring folder = FolderOf(target);
    RemoveAbandoned(folder);
    NewFile file;
    if (const std::error_code failure = file.Make(folder)) return failure;
    if (const std::error_code failure = file.Write(contents)) return failure;
    file.TakeRightsFrom(target);
    return file.TakePlace(target);
}

std::error_code OpenToRead(const std::string& path, FileHandle& file) {
    const std::wstring source = SystemPath(path);
    file.Reset(CreateFileW(source.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                           FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.IsOpen()) return {};
    const DWORD code = GetLastError();
    return IsFolder(source) ? std::make_error_code(std::errc::is_a_directory) : FromNumber(code);
}

std::error_code Read(const std::string& path, std::string& contents, std::uintmax_t atMost) {
    FileHandle file;
    if (const std::error_code failure = OpenToRead(path, file)) return failure;
    std::vector<char> piece(1U << 16U);
    while (contents.size() < atMost) {
        const auto wanted =
            static_cast<DWORD>(std::min<std::uintmax_t>(piece.size(), atMost - contents.size()));
        DWORD read = 0;
        if (ReadFile(file.Get(), piece.data(), wanted, &read, nullptr) == 0) return LastError();
        if (read == 0) break;
        contents.append(piece.data(), read);
    }
    return {};
}

}  // namespace

std::error_code ReplaceFileContents(const std::string& path, const std::string& contents) {
    try {
        return Replace(path, contents);
    } catch (const std::bad_alloc&) {
        return std::make_error_code(std::errc::not_enough_memory);
    }
}

std::error_code ReadFileContents(const std::string& path, std::string& contents, std::uintmax_t atMost) {
    contents.clear();
    std::error_code failure;
    try {
        failure = Read(path, contents, atMost);
    } catch (const std::bad_alloc&) {
        failure = std::make_error_code(std::errc::not_enough_memory);
    }
    if (failure) contents.clear();
    return failure;
}

std::error_code FileSize(const std::string& path, std::uintmax_t& size) {
    FileHandle file;
    if (const std::error_code failure = OpenToRead(path, file)) return failure;
    LARGE_INTEGER bytes{};
    if (GetFileSizeEx(file.Get(), &bytes) == 0) return LastError();
    size = static_cast<std::uintmax_t>(bytes.QuadPart);
    return {};
}

}  // namespace corvane
