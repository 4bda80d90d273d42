#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "platform/linux/system/HeldMessage.h"

namespace corvane {

struct NamedValue {
    std::string name;
    RegistryValue value;
};

/// What the store remembers of a link beside its registry keys.
struct LinkRow {
    std::string id;           ///< GUID text in braces; the row's key.
    std::string name;         ///< Interface name when last seen.
    std::uint32_t index = 0;  ///< Kernel's index when last seen.
    std::string incarnation;  ///< Boot, namespace and index: the same text = the same kernel object.
    std::string permanent;    ///< Driver's permanent address, twelve digits; empty when it reports none.
    std::string original;  ///< Address to give back, twelve digits: the permanent or else the first-seen one.
    std::string
        applied;  ///< Override that the program set last, twelve digits; empty when the link has its own.
    std::string driverKey;  ///< Subkey under the class key, four digits or more.
    std::string signature;  ///< Digest of what the registry was last brought in step with.
    bool present = false;   ///< The kernel has it now.
    bool held = false;      ///< Disabled by the program: its kernel-given values stand until it is enabled.

    bool operator==(const LinkRow&) const = default;
};

/// The registry of a system without one: a SQLite file, machine-wide, readable by all, written by its owner.
/// Every operation is one transaction that is on disk when it returns; several programs may work at once
/// (each waits up to five seconds for another's write).
///
/// Without a file and without the right to make one, the store is empty, in memory and read-only; a file of
/// no length counts as none. A file that cannot be written (or whose folder cannot, which a safe write needs)
/// is read-only: RegistryApi writes then give kAccessDenied, before anything else is looked at; only making a
/// key that exists succeeds. A file that cannot be read gives kAccessDenied, a damaged file or another
/// program's database kRegistryCorrupt, one that a newer version made kCantOpen: for every operation, and it
/// is never touched. A store that is busy for longer than the timeout gives kCantRead or kCantWrite; later
/// operations try anew, without waiting until one of them got through.
///
/// Each value knows who set it: RegistryApi writes are the user's; Editor::SetFromKernel records what the
/// system showed and never replaces a value that the user set.
///
/// Names compare without regard to case for the letters of ASCII and Latin-1. Any bytes may be in a name but
/// "\" in a key's; empty pieces of a path do not count, and the empty path is the root itself.
///
/// An object may be used by several threads, which take turns. It must not be carried over a fork.
class RegistryStore : public RegistryApi {
 public:
    /// NICX_REGISTRY if set and not empty, else /var/lib/nicx/registry.db.
    static std::string DefaultPath();

    /// Touches nothing yet: the first operation opens the file, or makes it (folder 0755, file 0644). Never
    /// throws: a failure shows in every operation's code. `busyTimeoutMs`: longest wait for another program's
    /// write, in milliseconds.
    explicit RegistryStore(std::string path, int busyTimeoutMs = 5000);
    ~RegistryStore() override;

    RegistryRead ReadValue(RegistryRoot root, const std::string& subkey, const std::string& name) override;
    Win32Error WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                          const RegistryValue& value) override;
    Win32Error DeleteValue(RegistryRoot root, const std::string& subkey, const std::string& name) override;
    Win32Error CreateKey(RegistryRoot root, const std::string& subkey) override;
    Win32Error EnumSubkeys(RegistryRoot root, const std::string& subkey,
                           std::vector<std::string>& names) override;

    /// One read transaction over the operations in between, so that the file is locked and looked at once.
    /// Other programs' writes wait for its end; an own write ends it early.
    void BeginReading() override;
    void EndReading() override;

    /// The values of a key in order of name, without regard to case; `values` is replaced on success only.
    Win32Error EnumValues(RegistryRoot root, const std::string& subkey, std::vector<NamedValue>& values);

    /// Deletes a key with everything below it. The root itself cannot be deleted (kAccessDenied).
    Win32Error DeleteKey(RegistryRoot root, const std::string& subkey);

    /// Writes several keys and values at once: all or nothing.
    struct Change {
        enum class Kind { kCreateKey, kDeleteKey, kSetValue, kDeleteValue };
        Kind kind = Kind::kCreateKey;
        std::string subkey;
        std::string name;
        RegistryValue value;
    };
    /// In order, as the user's. Deleting what is not there is no error; keys of set values are made. Unlike
    /// WriteValue it stores text as it is given, so that exported values come back byte for byte.
    Win32Error Apply(RegistryRoot root, const std::vector<Change>& changes);

    [[nodiscard]] const std::string& Path() const;

    /// True when RegistryApi writes would be refused.
    [[nodiscard]] bool ReadOnly() const;

    /// Reads the bookkeeping rows of all links, in order of id. On a read-only store it first lets go of a
    /// private image (see Transact) that another program's writes have made out of date.
    Win32Error LoadLinks(std::vector<LinkRow>& links);

    /// Runs `edit` in one write transaction; nothing of it stays when it returns a failure. On a read-only
    /// store the edit is made to a private image in memory that this object reads from then on, so that a
    /// program without rights shows the machine as it is; nothing is stored. An image that another program's
    /// writes have made out of date is made anew first. The object's own operations, called from within
    /// `edit`, take part in the transaction.
    class Editor;
    Win32Error Transact(const std::function<Win32Error(Editor&)>& edit);

    /// Messages kept for a link, in the order they were put.
    Win32Error LoadHeld(const std::string& linkId, std::vector<HeldMessage>& messages);

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

/// The reads and writes of one transaction (root is always HKEY_LOCAL_MACHINE). Each returns the first
/// failure; reads see the writes before them.
class RegistryStore::Editor {
 public:
    virtual ~Editor() = default;

    /// As the store's own.
    virtual RegistryRead ReadValue(const std::string& subkey, const std::string& name) = 0;
    virtual Win32Error EnumSubkeys(const std::string& subkey, std::vector<std::string>& names) = 0;
    virtual Win32Error EnumValues(const std::string& subkey, std::vector<NamedValue>& values) = 0;

    virtual Win32Error LoadLinks(std::vector<LinkRow>& links) = 0;
    /// Inserts or replaces the row with this id.
    virtual Win32Error SaveLink(const LinkRow& link) = 0;
    /// With the messages kept for it. No error when it is not there.
    virtual Win32Error DeleteLink(const std::string& id) = 0;

    virtual Win32Error CreateKey(const std::string& subkey) = 0;
    /// No error when it is not there.
    virtual Win32Error DeleteKey(const std::string& subkey) = 0;

    /// Records what the system shows. A value that the user set stays; the key is made if missing.
    virtual Win32Error SetFromKernel(const std::string& subkey, const std::string& name,
                                     const RegistryValue& value) = 0;
    /// True when there is such a value and the user set it.
    virtual bool UserSet(const std::string& subkey, const std::string& name) = 0;
    /// As RegistryApi::WriteValue, but makes the key; from then on the value is the user's.
    virtual Win32Error SetFromUser(const std::string& subkey, const std::string& name,
                                   const RegistryValue& value) = 0;

    /// Whoever set it. No error when it is not there.
    virtual Win32Error DeleteValue(const std::string& subkey, const std::string& name) = 0;

    /// Replaces the messages kept for a link; an empty list forgets them.
    virtual Win32Error SaveHeld(const std::string& linkId, const std::vector<HeldMessage>& messages) = 0;
};

}  // namespace corvane
