#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace corvane {

/// A registry in memory with the behaviour that RegistryApi promises, for tests. It keeps a diary of what was
/// asked and can be told to fail. The seeding and inspecting helpers write no diary, ask no failure and make
/// missing keys.
class FakeRegistry : public RegistryApi {
 public:
    /// One line for each call, in order, made before the call can fail: "read KEY\NAME", "write KEY\NAME",
    /// "delete KEY\NAME", "create KEY", "enum KEY". The text is as the caller gave it.
    std::vector<std::string> diary;

    /// What was asked to be written, byte for byte as the caller gave it, in order.
    struct Write {
        std::string subkey;
        std::string name;
        RegistryValue value;
    };
    std::vector<Write> writes;

    /// When set, asked before each step; a number ends the call with that number. `operation` is "open" (not
    /// for "create"; `name` is then empty, and a failing read says that the key was not opened), then "read",
    /// "write", "delete", "create" or "enum".
    std::function<std::optional<Win32Error>(const std::string& operation, const std::string& subkey,
                                            const std::string& name)>
        fail;

    /// True: writes give kAccessDenied, as for a user without rights.
    bool readOnly = false;

    RegistryRead ReadValue(RegistryRoot root, const std::string& subkey, const std::string& name) override;
    Win32Error WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                          const RegistryValue& value) override;
    Win32Error DeleteValue(RegistryRoot root, const std::string& subkey, const std::string& name) override;
    Win32Error CreateKey(RegistryRoot root, const std::string& subkey) override;
    Win32Error EnumSubkeys(RegistryRoot root, const std::string& subkey,
                           std::vector<std::string>& names) override;

    // Seeding.
    void MakeKey(const std::string& key);
    void RemoveKey(const std::string& key);  ///< With everything below it.
    void SetValue(const std::string& key, const std::string& name, const RegistryValue& value);
    /// REG_SZ in the single-byte code page with its terminating NUL.
    void SetText(const std::string& key, const std::string& name, const std::string& text);
    /// REG_MULTI_SZ: each text with a NUL after it, then one more NUL; an empty list gives two NULs.
    void SetMulti(const std::string& key, const std::string& name, const std::vector<std::string>& texts);
    void SetDword(const std::string& key, const std::string& name, std::uint32_t number);
    void SetBinary(const std::string& key, const std::string& name, const std::vector<std::uint8_t>& bytes);
    void RemoveValue(const std::string& key, const std::string& name);

    // Inspecting.
    [[nodiscard]] bool HasKey(const std::string& key) const;
    [[nodiscard]] std::optional<RegistryValue> Value(const std::string& key, const std::string& name) const;
    [[nodiscard]] bool HasValue(const std::string& key, const std::string& name) const;
    /// The value's bytes; empty when there is no such value (see HasValue).
    [[nodiscard]] std::vector<std::uint8_t> RawBytes(const std::string& key, const std::string& name) const;
    /// The value's bytes as UTF-8 text without the NULs at the end; NULs inside stay.
    [[nodiscard]] std::string Text(const std::string& key, const std::string& name) const;
    /// The diary's lines that start with `prefix`, such as "write ".
    [[nodiscard]] std::vector<std::string> Diary(const std::string& prefix) const;

 private:
    struct NamedEntry {
        std::string name;
        RegistryValue value;
    };
    struct Key {
        std::string name;  ///< Last piece of the path in the case it was made with.
        std::map<std::string, NamedEntry> values;
    };

    [[nodiscard]] const Key* Find(const std::string& key) const;
    [[nodiscard]] std::optional<Win32Error> Failure(const std::string& operation, const std::string& subkey,
                                                    const std::string& name) const;
    /// kSuccess when the root is known, no failure was ordered and the key is there.
    [[nodiscard]] Win32Error Open(RegistryRoot root, const std::string& subkey) const;

    std::map<std::string, Key> keys_{{std::string(), Key{}}};  ///< By folded path.
};

}  // namespace corvane
