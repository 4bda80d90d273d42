#include "platform/linux/registry/RegistryStore.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <new>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/registry/RegistryTables.h"
#include "platform/linux/registry/SqliteErrors.h"
#include "platform/linux/registry/TablesEditor.h"
#include "platform/linux/system/Errors.h"

namespace corvane {

namespace {

constexpr char kDefaultPath[] = "/var/lib/nicx/registry.db";
constexpr mode_t kFolderMode = 0755;
constexpr mode_t kFileMode = 0644;

/// A journal that is emptied, not deleted, after each write needs no second write to the folder. Write-ahead
/// logging would keep a program without rights from reading.
constexpr char kWriteSafely[] = "PRAGMA journal_mode = TRUNCATE; PRAGMA synchronous = FULL;";

/// Room for the pages of a store with a thousand links, so that reading does not go back to the file.
constexpr char kCachePages[] = "PRAGMA cache_size = -16384;";

std::string FolderOf(const std::string& path) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    return folder.empty() ? "." : folder.string();
}

/// errno of an access check with the effective rights, 0 when granted.
int AccessFailure(const std::string& path, int mode) {
    return faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0 ? 0 : errno;
}

/// Makes an empty file and the folders above it, with modes that do not depend on the umask. 0 when the file
/// is there, made by whom it may be; else errno.
int MakeFile(const std::string& path) {
    const std::string folder = FolderOf(path);
    std::error_code failure;
    std::filesystem::create_directories(FolderOf(folder), failure);
    if (failure) return failure.value();
    if (mkdir(folder.c_str(), kFolderMode) == 0) {
        if (chmod(folder.c_str(), kFolderMode) != 0) return errno;
    } else if (errno != EEXIST) {
        return errno;
    }
    const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode);
    if (descriptor < 0) return errno == EEXIST ? 0 : errno;
    const int result = fchmod(descriptor, kFileMode) == 0 ? 0 : errno;
    close(descriptor);
    return result;
}

}  // namespace

struct RegistryStore::Impl {
    /// Which file a path led to.
    struct FileIdentity {
        dev_t device = 0;
        ino_t inode = 0;
        bool operator==(const FileIdentity&) const = default;
    };

    static FileIdentity IdentityOf(const std::string& path) {
        struct stat status {};
        if (stat(path.c_str(), &status) != 0) return {};
        return {status.st_dev, status.st_ino};
    }

    enum class State {
        kClosed,  ///< Not opened yet, or a passing failure: the next operation tries.
        kOpen,
        kNoFile,  ///< There is none and none may be made; `image` stands for it.
        kBroken,  ///< `brokenCode` answers every operation.
    };

    Impl(std::string thePath, int theTimeout) : path(std::move(thePath)), busyTimeoutMs(theTimeout) {}

    /// Runs one operation alone, with a usable store; no exception gets out.
    template <class Operation>
    Win32Error Run(RegistryRoot root, Operation operation) noexcept {
        try {
            const std::lock_guard lock(mutex);
            if (root != kHkeyLocalMachine) return Win32Error::kInvalidHandle;
            Win32Error code = Ready();
            if (Ok(code)) code = operation();
            ChangePatience(code);
            if (code == Win32Error::kRegistryCorrupt || code == Win32Error::kBadDatabase) return Break();
            return code;
        } catch (const std::bad_alloc&) {
            return Win32Error::kNotEnoughMemory;
        } catch (...) {
            return Win32Error::kGenFailure;
        }
    }

    /// A program that has waited in vain for a locked file does not wait again, operation for operation,
    /// until it got through once.
    void ChangePatience(Win32Error code) {
        const bool waited = code == Win32Error::kCantRead || code == Win32Error::kCantWrite;
        if (waited != patient) return;
        patient = !waited;
        file.database.SetBusyTimeout(Patience());
    }

    [[nodiscard]] int Patience() const { return patient ? busyTimeoutMs : 0; }

    /// As Run, for writes to the file.
    template <class Operation>
    Win32Error RunWrite(RegistryRoot root, Operation operation) noexcept {
        return Run(root, [&] {
            const Win32Error code = ReadyToWrite();
            return Ok(code) ? operation() : code;
        });
    }

    RegistryTables& Reading() { return image ? *image : file; }

    Win32Error Ready() {
        if (state == State::kClosed) return Open();
        if (readingRun && !readTransaction && state == State::kOpen && !image &&
            !file.database.InTransaction()) {
            readTransaction = file.database.Execute("BEGIN") == kSqliteOk;
        }
        return state == State::kBroken ? brokenCode : Win32Error::kSuccess;
    }

    Win32Error ReadyToWrite() {
        const Win32Error code = LookAgain();
        if (!Ok(code)) return code;
        return readOnly ? Win32Error::kAccessDenied : WriteSafely();
    }

    /// Opens the file anew when the path leads to another one now, and lets go of an image that is out of
    /// date.
    Win32Error LookAgain() {
        EndReadTransaction();
        if (state == State::kOpen && file.database.InTransaction()) return Win32Error::kSuccess;
        const FileIdentity now = IdentityOf(path);
        if (now != identity) {
            Close();
            return Open();
        }
        if (image && state == State::kOpen && file.DataVersion() != imageVersion) image.reset();
        return Win32Error::kSuccess;
    }

    /// Makes the private image if there is none.
    Win32Error Imagine() {
        if (image) return Win32Error::kSuccess;
        auto copy = std::make_unique<RegistryTables>();
        int result = copy->database.Open({}, Database::Mode::kMemory, busyTimeoutMs);
        if (result != kSqliteOk) return FromSqlite(result, false);
        if (state == State::kOpen) {
            // Asked before copying: a write in between makes the image look old, not new.
            imageVersion = file.DataVersion();
            result = copy->database.CopyFrom(file.database);
            if (result != kSqliteOk) return FromSqlite(result, false);
        } else if (const Win32Error code = copy->MakeSchema(); !Ok(code)) {
            return code;
        }
        image = std::move(copy);
        return Win32Error::kSuccess;
    }

    Win32Error WriteSafely() {
        if (writesSafely) return Win32Error::kSuccess;
        const int result = file.database.Execute(kWriteSafely);
        writesSafely = result == kSqliteOk;
        return FromSqlite(result, true);
    }

    Win32Error Open() {
        const Win32Error code = OpenFile();
        if (!Ok(code)) Close();
        if (code == Win32Error::kRegistryCorrupt || code == Win32Error::kBadDatabase) return Break();
        return code;
    }

    /// Every later operation gives the same. The connection stays, since a transaction may be under way.
    Win32Error Break() {
        state = State::kBroken;
        brokenCode = Win32Error::kRegistryCorrupt;
        return brokenCode;
    }

    void EndReadTransaction() {
        if (!readTransaction) return;
        readTransaction = false;
        // A transaction that only read has nothing to lose.
        static_cast<void>(file.database.Execute("COMMIT"));
    }

    void Close() {
        EndReadTransaction();
        image.reset();
        file.Close();
        writesSafely = false;
        readOnly = true;
        state = State::kClosed;
    }

    Win32Error OpenFile() {
        // Made first: opening a file that another program makes at this moment could fail, or end in one that
        // is only read (SQLite tries that when it finds none to write).
        if (AccessFailure(path, F_OK) == ENOENT) {
            const int unmade = MakeFile(path);
            if (Denied(unmade)) return UseNoFile();
            if (unmade != 0) return Win32Error::kCantOpen;
        }
        const int result = file.database.Open(path, Database::Mode::kReadWrite, Patience());
        if (result != kSqliteOk) {
            return Denied(AccessFailure(path, R_OK)) ? Win32Error::kAccessDenied : FromSqlite(result, false);
        }
        identity = IdentityOf(path);
        readOnly = file.database.ReadOnly() || AccessFailure(FolderOf(path), W_OK) != 0;
        return UseFile();
    }

    Win32Error UseFile() {
        Win32Error code = FromSqlite(file.database.Execute(kCachePages), false);
        if (!Ok(code)) return code;
        RegistryTables::Schema schema = file.LookAtSchema(code);
        if (schema == RegistryTables::Schema::kEmpty) {
            if (readOnly) {
                file.Close();
                return UseNoFile();
            }
            code = WriteSafely();
            if (Ok(code)) code = file.MakeSchema();
            if (!Ok(code)) return code;
            schema = file.LookAtSchema(code);
        }
        switch (schema) {
            case RegistryTables::Schema::kReady:
                if (CutOff()) return Win32Error::kRegistryCorrupt;
                state = State::kOpen;
                return Win32Error::kSuccess;
            case RegistryTables::Schema::kNewer:
                return Win32Error::kCantOpen;
            case RegistryTables::Schema::kFailed:
                return code;
            case RegistryTables::Schema::kEmpty:
            case RegistryTables::Schema::kForeign:
                break;
        }
        return Win32Error::kRegistryCorrupt;
    }

    /// SQLite takes what is missing of the last page for zeros.
    bool CutOff() {
        struct stat status {};
        const std::int64_t pageSize = file.PageSize();
        return pageSize > 0 && stat(path.c_str(), &status) == 0 && status.st_size % pageSize != 0;
    }

    Win32Error UseNoFile() {
        readOnly = true;
        state = State::kNoFile;
        identity = IdentityOf(path);
        return Imagine();
    }

    static bool Denied(int errnoValue) { return FromErrno(errnoValue) == Win32Error::kAccessDenied; }

    const std::string path;
    const int busyTimeoutMs;
    std::recursive_mutex mutex;  ///< Recursive: an edit may call the store's other operations.
    State state = State::kClosed;
    Win32Error brokenCode = Win32Error::kSuccess;
    bool readOnly = true;
    bool patient = true;  ///< See ChangePatience.
    bool writesSafely = false;
    bool readingRun = false;       ///< Between BeginReading and EndReading.
    bool readTransaction = false;  ///< The run's transaction is open.
    FileIdentity identity;         ///< Of the file that is open; empty when there is none.
    RegistryTables file;
    std::unique_ptr<RegistryTables> image;  ///< Read in the file's stead while it is there.
    std::int64_t imageVersion = 0;          ///< The file's data version when the image was made.
};

std::string RegistryStore::DefaultPath() {
    const char* path = std::getenv("NICX_REGISTRY");
    return path != nullptr && *path != '\0' ? path : kDefaultPath;
}

RegistryStore::RegistryStore(std::string path, int busyTimeoutMs)
    : impl_(std::make_unique<Impl>(std::move(path), busyTimeoutMs)) {}

RegistryStore::~RegistryStore() = default;

RegistryRead RegistryStore::ReadValue(RegistryRoot root, const std::string& subkey, const std::string& name) {
    RegistryRead read;
    const Win32Error code = impl_->Run(root, [&] {
        read = impl_->Reading().ReadValue(subkey, name);
        return read.code;
    });
    read.code = code;
    return read;
}

Win32Error RegistryStore::WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                                     const RegistryValue& value) {
    return impl_->RunWrite(root, [&] {
        return impl_->file.PutValue(subkey, name, Terminated(value), RegistryTables::Origin::kUser);
    });
}

Win32Error RegistryStore::DeleteValue(RegistryRoot root, const std::string& subkey, const std::string& name) {
    return impl_->RunWrite(root, [&] { return impl_->file.DeleteValue(subkey, name); });
}

Win32Error RegistryStore::CreateKey(RegistryRoot root, const std::string& subkey) {
    return impl_->Run(root, [&] {
        if (impl_->Reading().HasKey(subkey)) return Win32Error::kSuccess;
        const Win32Error code = impl_->ReadyToWrite();
        if (!Ok(code)) return code;
        return impl_->file.Transact([&] { return impl_->file.CreateKey(subkey); });
    });
}

Win32Error RegistryStore::EnumSubkeys(RegistryRoot root, const std::string& subkey,
                                      std::vector<std::string>& names) {
    return impl_->Run(root, [&] { return impl_->Reading().EnumSubkeys(subkey, names); });
}

void RegistryStore::BeginReading() {
    const std::lock_guard lock(impl_->mutex);
    impl_->readingRun = true;
}

void RegistryStore::EndReading() {
    const std::lock_guard lock(impl_->mutex);
    impl_->readingRun = false;
    impl_->EndReadTransaction();
}

Win32Error RegistryStore::EnumValues(RegistryRoot root, const std::string& subkey,
                                     std::vector<NamedValue>& values) {
    return impl_->Run(root, [&] { return impl_->Reading().EnumValues(subkey, values); });
}

Win32Error RegistryStore::DeleteKey(RegistryRoot root, const std::string& subkey) {
    return impl_->RunWrite(
        root, [&] { return impl_->file.Transact([&] { return impl_->file.DeleteKey(subkey); }); });
}

Win32Error RegistryStore::Apply(RegistryRoot root, const std::vector<Change>& changes) {
    return impl_->RunWrite(root, [&] {
        return impl_->file.Transact([&] {
            TablesEditor editor(impl_->file);
            for (const Change& change : changes) {
                if (const Win32Error code = editor.Make(change); !Ok(code)) return code;
            }
            return Win32Error::kSuccess;
        });
    });
}

const std::string& RegistryStore::Path() const { return impl_->path; }

bool RegistryStore::ReadOnly() const {
    return !Ok(impl_->Run(kHkeyLocalMachine, [this] {
        return impl_->readOnly ? Win32Error::kAccessDenied : Win32Error::kSuccess;
    }));
}

Win32Error RegistryStore::LoadLinks(std::vector<LinkRow>& links) {
    return impl_->Run(kHkeyLocalMachine, [&] {
        const Win32Error code = impl_->LookAgain();
        return Ok(code) ? impl_->Reading().LoadLinks(links) : code;
    });
}

Win32Error RegistryStore::Transact(const std::function<Win32Error(Editor&)>& edit) {
    return impl_->Run(kHkeyLocalMachine, [&] {
        Win32Error code = impl_->LookAgain();
        if (Ok(code)) code = impl_->readOnly ? impl_->Imagine() : impl_->WriteSafely();
        if (!Ok(code)) return code;
        RegistryTables& tables = impl_->Reading();
        return tables.Transact([&] {
            TablesEditor editor(tables);
            return edit(editor);
        });
    });
}

Win32Error RegistryStore::LoadHeld(const std::string& linkId, std::vector<HeldMessage>& messages) {
    return impl_->Run(kHkeyLocalMachine, [&] { return impl_->Reading().LoadHeld(linkId, messages); });
}

}  // namespace corvane
