#include "tests/fakes/FakeRegistry.h"

#include "base/Text.h"
#include "platform/CodePage.h"

namespace corvane {

namespace {

/// Upper case of the ASCII letters and of the letters of UTF-8's two-byte Latin-1 range.
std::string Fold(const std::string& text) {
    std::string folded = text;
    for (std::size_t i = 0; i < folded.size(); ++i) {
        const auto byte = static_cast<unsigned char>(folded[i]);
        if (byte >= 'a' && byte <= 'z') folded[i] = static_cast<char>(byte - 0x20);
        const bool afterLead = i > 0 && static_cast<unsigned char>(folded[i - 1]) == 0xC3;
        if (afterLead && byte >= 0xA0 && byte <= 0xBE && byte != 0xB7)
            folded[i] = static_cast<char>(byte - 0x20);
    }
    return folded;
}

std::string ParentOf(const std::string& path) {
    const std::size_t slash = path.rfind('\\');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::string LastOf(const std::string& path) {
    const std::size_t slash = path.rfind('\\');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

RegistryRead FakeRegistry::ReadValue(RegistryRoot root, const std::string& subkey, const std::string& name) {
    diary.push_back("read " + subkey + "\\" + name);
    RegistryRead read;
    read.code = Open(root, subkey);
    if (!Ok(read.code)) return read;
    read.keyOpened = true;
    if (const auto failure = Failure("read", subkey, name)) {
        read.code = *failure;
        return read;
    }
    if (const auto value = Value(subkey, name)) {
        read.value = *value;
    } else {
        read.code = Win32Error::kFileNotFound;
    }
    return read;
}

Win32Error FakeRegistry::WriteValue(RegistryRoot root, const std::string& subkey, const std::string& name,
                                    const RegistryValue& value) {
    diary.push_back("write " + subkey + "\\" + name);
    writes.push_back({subkey, name, value});
    if (readOnly && root == kHkeyLocalMachine) return Win32Error::kAccessDenied;
    if (const Win32Error code = Open(root, subkey); !Ok(code)) return code;
    if (const auto failure = Failure("write", subkey, name)) return *failure;
    RegistryValue stored = value;
    const bool isText = value.type == kRegSz || value.type == kRegMultiSz;
    if (isText && !stored.data.empty() && stored.data.back() != 0) stored.data.push_back(0);
    SetValue(subkey, name, stored);
    return Win32Error::kSuccess;
}

Win32Error FakeRegistry::DeleteValue(RegistryRoot root, const std::string& subkey, const std::string& name) {
    diary.push_back("delete " + subkey + "\\" + name);
    if (readOnly && root == kHkeyLocalMachine) return Win32Error::kAccessDenied;
    if (const Win32Error code = Open(root, subkey); !Ok(code)) return code;
    if (const auto failure = Failure("delete", subkey, name)) return *failure;
    return keys_[Fold(subkey)].values.erase(Fold(name)) > 0 ? Win32Error::kSuccess
                                                            : Win32Error::kFileNotFound;
}

Win32Error FakeRegistry::CreateKey(RegistryRoot root, const std::string& subkey) {
    diary.push_back("create " + subkey);
    if (root != kHkeyLocalMachine) return Win32Error::kInvalidHandle;
    if (const auto failure = Failure("create", subkey, "")) return *failure;
    if (HasKey(subkey)) return Win32Error::kSuccess;
    if (readOnly) return Win32Error::kAccessDenied;
    MakeKey(subkey);
    return Win32Error::kSuccess;
}

Win32Error FakeRegistry::EnumSubkeys(RegistryRoot root, const std::string& subkey,
                                     std::vector<std::string>& names) {
    diary.push_back("enum " + subkey);
    if (const Win32Error code = Open(root, subkey); !Ok(code)) return code;
    if (const auto failure = Failure("enum", subkey, "")) return *failure;
    std::map<std::string, std::string> found;
    const std::string parent = Fold(subkey);
    for (const auto& [path, key] : keys_) {
        if (!path.empty() && ParentOf(path) == parent) found[LastOf(path)] = key.name;
    }
    if (found.empty()) return Win32Error::kSuccess;
    names.clear();
    for (const auto& [folded, name] : found) names.push_back(name);
    return Win32Error::kSuccess;
}

void FakeRegistry::MakeKey(const std::string& key) {
    if (HasKey(key)) return;
    MakeKey(ParentOf(key));
    keys_[Fold(key)].name = LastOf(key);
}

void FakeRegistry::RemoveKey(const std::string& key) {
    const std::string folded = Fold(key);
    std::erase_if(keys_, [&](const auto& entry) {
        return !entry.first.empty() && (entry.first == folded || entry.first.starts_with(folded + "\\"));
    });
}

void FakeRegistry::SetValue(const std::string& key, const std::string& name, const RegistryValue& value) {
    MakeKey(key);
    auto& values = keys_[Fold(key)].values;
    const auto [entry, isNew] = values.try_emplace(Fold(name));
    if (isNew) entry->second.name = name;
    entry->second.value = value;
}

void FakeRegistry::SetText(const std::string& key, const std::string& name, const std::string& text) {
    const std::string bytes = ToCodePage(text);
    RegistryValue value{kRegSz, {bytes.begin(), bytes.end()}};
    value.data.push_back(0);
    SetValue(key, name, value);
}

void FakeRegistry::SetMulti(const std::string& key, const std::string& name,
                            const std::vector<std::string>& texts) {
    RegistryValue value{kRegMultiSz, {}};
    for (const std::string& text : texts) {
        const std::string bytes = ToCodePage(text);
        value.data.insert(value.data.end(), bytes.begin(), bytes.end());
        value.data.push_back(0);
    }
    if (texts.empty()) value.data.push_back(0);
    value.data.push_back(0);
    SetValue(key, name, value);
}

void FakeRegistry::SetDword(const std::string& key, const std::string& name, std::uint32_t number) {
    RegistryValue value{kRegDword, {}};
    for (unsigned shift = 0; shift < 32; shift += 8) {
        value.data.push_back(static_cast<std::uint8_t>((number >> shift) & 0xFFU));
    }
    SetValue(key, name, value);
}

void FakeRegistry::SetBinary(const std::string& key, const std::string& name,
                             const std::vector<std::uint8_t>& bytes) {
    SetValue(key, name, RegistryValue{kRegBinary, bytes});
}

void FakeRegistry::RemoveValue(const std::string& key, const std::string& name) {
    if (const auto entry = keys_.find(Fold(key)); entry != keys_.end())
        entry->second.values.erase(Fold(name));
}

bool FakeRegistry::HasKey(const std::string& key) const { return Find(key) != nullptr; }

std::optional<RegistryValue> FakeRegistry::Value(const std::string& key, const std::string& name) const {
    const Key* found = Find(key);
    if (found == nullptr) return std::nullopt;
    const auto entry = found->values.find(Fold(name));
    if (entry == found->values.end()) return std::nullopt;
    return entry->second.value;
}

bool FakeRegistry::HasValue(const std::string& key, const std::string& name) const {
    return Value(key, name).has_value();
}

std::vector<std::uint8_t> FakeRegistry::RawBytes(const std::string& key, const std::string& name) const {
    const auto value = Value(key, name);
    return value ? value->data : std::vector<std::uint8_t>();
}

std::string FakeRegistry::Text(const std::string& key, const std::string& name) const {
    const std::vector<std::uint8_t> bytes = RawBytes(key, name);
    std::string text(bytes.begin(), bytes.end());
    while (!text.empty() && text.back() == '\0') text.pop_back();
    return FromCodePage(text);
}

std::vector<std::string> FakeRegistry::Diary(const std::string& prefix) const {
    std::vector<std::string> lines;
    for (const std::string& line : diary) {
        if (line.starts_with(prefix)) lines.push_back(line);
    }
    return lines;
}

const FakeRegistry::Key* FakeRegistry::Find(const std::string& key) const {
    const auto entry = keys_.find(Fold(key));
    return entry == keys_.end() ? nullptr : &entry->second;
}

std::optional<Win32Error> FakeRegistry::Failure(const std::string& operation, const std::string& subkey,
                                                const std::string& name) const {
    return fail ? fail(operation, subkey, name) : std::nullopt;
}

Win32Error FakeRegistry::Open(RegistryRoot root, const std::string& subkey) const {
    if (root != kHkeyLocalMachine) return Win32Error::kInvalidHandle;
    if (const auto failure = Failure("open", subkey, "")) return *failure;
    return HasKey(subkey) ? Win32Error::kSuccess : Win32Error::kFileNotFound;
}

}  // namespace corvane
