#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Registry.h"
#include "platform/RegistryValues.h"
#include "platform/windows/WideText.h"
#include "platform/windows/WindowsRegistry.h"
#include "tests/wine/contract/ImportedFunction.h"

/// What the system's registry functions are handed, and what is made of their answers. The functions are the
/// system's own, with a diary before them.
namespace corvane {
namespace {

using contract::ImportedFunction;
using Bytes = std::vector<std::uint8_t>;
using Lines = std::vector<std::string>;

constexpr RegistryRoot kRoot = kHkeyLocalMachine;
constexpr char kKey[] = "SOFTWARE\\CorvaneCalls";

/// The registry functions of this program, each with a line in the diary. Keys are numbered as they are
/// opened.
class RegistryCalls {
 public:
    /// Answers for calls that shall not do their work, by the beginning of their lines. A key is closed
    /// nevertheless.
    std::map<std::string, LSTATUS> answers;
    std::function<void()> afterSize;  ///< Run once a value's size has been told.

    /// The lines since the last time. Numbers begin with 1 again.
    Lines Take() {
        EXPECT_EQ(keys_.size(), 0U) << "every key is closed";
        keys_.clear();
        latest_ = 0;
        return std::exchange(diary_, {});
    }

 private:
    std::string KeyText(HKEY key) {
        if (key == HKEY_LOCAL_MACHINE) return "HKLM";
        const auto number = keys_.find(key);
        return number == keys_.end() ? "no open key" : "key " + std::to_string(number->second);
    }
    std::string Opened(HKEY key) {
        keys_[key] = ++latest_;
        return ": " + KeyText(key);
    }
    static std::string DataText(const BYTE* data, DWORD size) {
        std::string text;
        for (DWORD i = 0; i < size; ++i) text += (i == 0 ? "" : " ") + std::to_string(data[i]);
        return "[" + text + "]";
    }

    /// Has a call made, or answered instead, and writes its line: `made` with what `result` says of a call
    /// that succeeded, or with the error.
    LSTATUS Note(
        const std::string& made, const std::function<LSTATUS()>& call,
        const std::function<std::string()>& result = [] { return std::string(); }) {
        const auto answer = std::find_if(answers.begin(), answers.end(),
                                         [&](const auto& each) { return made.starts_with(each.first); });
        const LSTATUS status = answer == answers.end() ? call() : answer->second;
        const std::string error = ": error " + std::to_string(status);
        diary_.push_back(made + (status == ERROR_SUCCESS ? result() : error));
        return status;
    }

    ImportedFunction<"RegOpenKeyExA", decltype(RegOpenKeyExA)> open_{
        [this](HKEY root, LPCSTR subkey, DWORD options, REGSAM access, PHKEY key) {
            std::ostringstream made;
            made << "open " << KeyText(root) << "\\" << subkey << " " << options << " for 0x" << std::hex
                 << access;
            return Note(
                made.str(), [&] { return open_.System(root, subkey, options, access, key); },
                [&] { return Opened(*key); });
        }};
    ImportedFunction<"RegCreateKeyA", decltype(RegCreateKeyA)> create_{
        [this](HKEY root, LPCSTR subkey, PHKEY key) {
            return Note(
                "create " + KeyText(root) + "\\" + subkey, [&] { return create_.System(root, subkey, key); },
                [&] { return Opened(*key); });
        }};
    ImportedFunction<"RegCloseKey", decltype(RegCloseKey)> close_{[this](HKEY key) {
        const std::string made = "close " + KeyText(key);
        keys_.erase(key);
        const LSTATUS closed = close_.System(key);
        return Note(made, [&] { return closed; });
    }};
    ImportedFunction<"RegQueryValueExA", decltype(RegQueryValueExA)> query_{
        [this](HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
            const std::string value = KeyText(key) + "\\" + name;
            const LSTATUS status = Note(
                data == nullptr ? "size of " + value : "read " + value + " into " + std::to_string(*size),
                [&] { return query_.System(key, name, reserved, type, data, size); },
                [&] { return ": " + std::to_string(*size); });
            if (data == nullptr && afterSize) afterSize();
            return status;
        }};
    ImportedFunction<"RegSetValueExA", decltype(RegSetValueExA)> set_{
        [this](HKEY key, LPCSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
            return Note("set " + KeyText(key) + "\\" + name + " type " + std::to_string(type) + " " +
                            DataText(data, size),
                        [&] { return set_.System(key, name, reserved, type, data, size); });
        }};
    ImportedFunction<"RegDeleteValueA", decltype(RegDeleteValueA)> delete_{[this](HKEY key, LPCSTR name) {
        return Note("delete " + KeyText(key) + "\\" + name, [&] { return delete_.System(key, name); });
    }};
    ImportedFunction<"RegQueryInfoKeyA", decltype(RegQueryInfoKeyA)> info_{
        [this](HKEY key, LPSTR className, LPDWORD classLength, LPDWORD reserved, LPDWORD count,
               LPDWORD longestName, LPDWORD longestClass, LPDWORD values, LPDWORD longestValue,
               LPDWORD longestData, LPDWORD security, PFILETIME written) {
            return Note(
                "count subkeys of " + KeyText(key),
                [&] {
                    return info_.System(key, className, classLength, reserved, count, longestName,
                                        longestClass, values, longestValue, longestData, security, written);
                },
                [&] { return ": " + std::to_string(*count); });
        }};
    ImportedFunction<"RegEnumKeyExA", decltype(RegEnumKeyExA)> enumerate_{
        [this](HKEY key, DWORD index, LPSTR name, LPDWORD nameLength, LPDWORD reserved, LPSTR className,
               LPDWORD classLength, PFILETIME written) {
            return Note("subkey " + std::to_string(index) + " of " + KeyText(key) + " into " +
                            std::to_string(*nameLength) + " and " + std::to_string(*classLength),
                        [&] {
                            return enumerate_.System(key, index, name, nameLength, reserved, className,
                                                     classLength, written);
                        });
        }};

    std::map<HKEY, int> keys_;  ///< Those that are open.
    int latest_ = 0;
    Lines diary_;
};

Platform WithWindowsRegistry() {
    Platform platform;
    platform.registry = std::make_shared<WindowsRegistry>();
    return platform;
}

class WindowsRegistryCalls : public testing::Test {
 protected:
    WindowsRegistryCalls() {
        RemoveKey();
        MakeSubkey("");
    }
    ~WindowsRegistryCalls() override {
        calls_.Take();
        RemoveKey();
    }

    // Through the functions for wide characters, which have no diary.
    static void RemoveKey() { RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\CorvaneCalls"); }
    static void Set(const std::string& subkey, const Bytes& data) {
        const std::wstring key = Wide(kKey + subkey);
        EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"value", REG_BINARY, data.data(),
                                  static_cast<DWORD>(data.size())),
                  ERROR_SUCCESS);
    }
    static void SetValue(const Bytes& data) { Set("", data); }
    static void MakeSubkey(const std::string& name) { Set(name.empty() ? "" : "\\" + name, {}); }

    static Win32Error Query(Bytes& data) {
        std::uint32_t type = 0;
        return RegQueryBinary(kRoot, kKey, "value", data, type);
    }
    static Win32Error QueryText(std::string& text) { return RegQueryString(kRoot, kKey, "value", text); }
    static Win32Error SubkeysOf(Lines& names) { return RegEnumSubkeys(kRoot, kKey, names); }

    RegistryCalls calls_;
    ScopedPlatform installed_{WithWindowsRegistry()};
};

constexpr char kOpenToRead[] = "open HKLM\\SOFTWARE\\CorvaneCalls 0 for 0x20019: key 1";
constexpr char kOpenToWrite[] = "open HKLM\\SOFTWARE\\CorvaneCalls 0 for 0x20006: key 1";
constexpr char kClose[] = "close key 1";

// ---- values ----

TEST_F(WindowsRegistryCalls, ReadingAsksForTheRightToReadAndForTheSizeFirst) {
    SetValue({'a', 'b', 'c', 0});
    const Lines reading = {kOpenToRead, "size of key 1\\value: 4", "read key 1\\value into 4: 4", kClose};
    Bytes data;
    EXPECT_EQ(Query(data), Win32Error::kSuccess);
    EXPECT_EQ(data, (Bytes{'a', 'b', 'c', 0}));
    EXPECT_EQ(calls_.Take(), reading);
    std::string text;
    EXPECT_EQ(QueryText(text), Win32Error::kSuccess);
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(calls_.Take(), reading);
}

TEST_F(WindowsRegistryCalls, WhatIsMissingOrHasNoBytesIsNotRead) {
    Bytes data;
    EXPECT_EQ(Query(data), Win32Error::kSuccess);
    EXPECT_EQ(calls_.Take(), (Lines{kOpenToRead, "size of key 1\\value: 0", kClose}));
    std::string text;
    EXPECT_EQ(RegQueryString(kRoot, kKey, "none", text), Win32Error::kFileNotFound);
    EXPECT_EQ(calls_.Take(), (Lines{kOpenToRead, "size of key 1\\none: error 2", kClose}));
}

TEST_F(WindowsRegistryCalls, AValueThatGrowsBetweenSizeAndReadingIsReadAgain) {
    SetValue({1, 2});
    calls_.afterSize = [] { SetValue({3, 4, 5}); };
    Bytes data;
    EXPECT_EQ(Query(data), Win32Error::kSuccess);
    EXPECT_EQ(data, (Bytes{3, 4, 5}));
    EXPECT_EQ(calls_.Take(),
              (Lines{kOpenToRead, "size of key 1\\value: 2", "read key 1\\value into 2: error 234",
                     "read key 1\\value into 3: 3", kClose}));
}

TEST_F(WindowsRegistryCalls, AValueThatShrinksBetweenSizeAndReadingHasItsNewSize) {
    SetValue({1, 2, 3});
    calls_.afterSize = [] { SetValue({4}); };
    Bytes data;
    EXPECT_EQ(Query(data), Win32Error::kSuccess);
    EXPECT_EQ(data, Bytes{4});
    EXPECT_EQ(calls_.Take(),
              (Lines{kOpenToRead, "size of key 1\\value: 3", "read key 1\\value into 3: 1", kClose}));
}

TEST_F(WindowsRegistryCalls, WritingAsksForTheRightToWriteAndHandsOverTheBytesAlone) {
    EXPECT_EQ(RegSetString(kRoot, kKey, "value", "ab", kRegSz), Win32Error::kSuccess);
    EXPECT_EQ(calls_.Take(), (Lines{kOpenToWrite, "set key 1\\value type 1 [97 98]", kClose}));
    EXPECT_EQ(RegSetString(kRoot, kKey, "value", "", kRegMultiSz), Win32Error::kSuccess);
    EXPECT_EQ(calls_.Take(), (Lines{kOpenToWrite, "set key 1\\value type 7 []", kClose}));
    EXPECT_EQ(RegSetBinary(kRoot, kKey, "value", DwordBytes(0x0102FF00), kRegDword), Win32Error::kSuccess);
    EXPECT_EQ(calls_.Take(), (Lines{kOpenToWrite, "set key 1\\value type 4 [0 255 2 1]", kClose}));
    EXPECT_EQ(RegSetBinary(kRoot, kKey, "value", {}, kRegBinary), Win32Error::kSuccess);
    EXPECT_EQ(calls_.Take(), (Lines{kOpenToWrite, "set key 1\\value type 3 []", kClose}));
}

TEST_F(WindowsRegistryCalls, DeletingAsksForTheRightToWrite) {
    EXPECT_EQ(RegDeleteValue(kRoot, kKey, "value"), Win32Error::kSuccess);
    EXPECT_EQ(calls_.Take(), (Lines{kOpenToWrite, "delete key 1\\value", kClose}));
    EXPECT_EQ(RegDeleteValue(kRoot, kKey, "value"), Win32Error::kFileNotFound);
    EXPECT_EQ(calls_.Take(), (Lines{kOpenToWrite, "delete key 1\\value: error 2", kClose}));
}

TEST_F(WindowsRegistryCalls, AKeyIsMadeWithAllItsParentsByOneCall) {
    EXPECT_EQ(RegCreateKey(kRoot, std::string(kKey) + "\\A\\B"), Win32Error::kSuccess);
    EXPECT_EQ(calls_.Take(), (Lines{"create HKLM\\SOFTWARE\\CorvaneCalls\\A\\B: key 1", kClose}));
    Lines names;
    EXPECT_EQ(RegEnumSubkeys(kRoot, std::string(kKey) + "\\A", names), Win32Error::kSuccess);
    EXPECT_EQ(names, Lines{"B"});
}

TEST_F(WindowsRegistryCalls, NamesAreHandedOverInTheCodePage) {
    MakeSubkey("B\u00FCro");
    EXPECT_EQ(RegSetString(kRoot, std::string(kKey) + "\\B\u00FCro", "\u20AC", "\u20AC", kRegSz),
              Win32Error::kSuccess);
    EXPECT_EQ(calls_.Take(), (Lines{"open HKLM\\SOFTWARE\\CorvaneCalls\\B\xFCro 0 for 0x20006: key 1",
                                    "set key 1\\\x80 type 1 [128]", kClose}));
}

// ---- subkeys ----

TEST_F(WindowsRegistryCalls, SubkeysAreCountedAndReadWithRoomFor32Characters) {
    for (const char* name : {"a", "b"}) MakeSubkey(name);
    Lines names;
    EXPECT_EQ(SubkeysOf(names), Win32Error::kSuccess);
    EXPECT_EQ(names, (Lines{"a", "b"}));
    EXPECT_EQ(calls_.Take(),
              (Lines{kOpenToRead, "count subkeys of key 1: 2", "subkey 0 of key 1 into 32 and 32",
                     "subkey 1 of key 1 into 32 and 32", kClose}));
}

TEST_F(WindowsRegistryCalls, WithoutSubkeysNoneIsRead) {
    Lines names;
    EXPECT_EQ(SubkeysOf(names), Win32Error::kSuccess);
    EXPECT_EQ(calls_.Take(), (Lines{kOpenToRead, "count subkeys of key 1: 0", kClose}));
}

TEST_F(WindowsRegistryCalls, RoomForNamesIsDoubledWhenANameIsLongerAndStaysSo) {
    const Lines made = {std::string(31, 'a'), std::string(32, 'b'), "c", std::string(200, 'd'), "e"};
    for (const std::string& name : made) MakeSubkey(name);
    Lines names;
    EXPECT_EQ(SubkeysOf(names), Win32Error::kSuccess);
    EXPECT_EQ(names, made);
    EXPECT_EQ(calls_.Take(),
              (Lines{kOpenToRead, "count subkeys of key 1: 5", "subkey 0 of key 1 into 32 and 32",
                     "subkey 1 of key 1 into 32 and 32: error 234", "subkey 1 of key 1 into 64 and 64",
                     "subkey 2 of key 1 into 64 and 64", "subkey 3 of key 1 into 64 and 64: error 234",
                     "subkey 3 of key 1 into 128 and 128: error 234", "subkey 3 of key 1 into 256 and 256",
                     "subkey 4 of key 1 into 256 and 256", kClose}));
}

TEST_F(WindowsRegistryCalls, RoomForNamesStaysBelow102400Characters) {
    MakeSubkey("a");
    calls_.answers["subkey"] = ERROR_MORE_DATA;
    Lines expected = {kOpenToRead, "count subkeys of key 1: 1"};
    for (int room = 32; room < 102400; room *= 2) {
        const std::string text = std::to_string(room);
        expected.push_back("subkey 0 of key 1 into " + text + " and " + text + ": error 234");
    }
    expected.emplace_back(kClose);
    Lines names;
    EXPECT_EQ(SubkeysOf(names), Win32Error::kMoreData);
    EXPECT_EQ(calls_.Take(), expected);
}

TEST_F(WindowsRegistryCalls, AnotherErrorEndsTheEnumerationAtThatSubkey) {
    for (const char* name : {"a", "b", "c"}) MakeSubkey(name);
    calls_.answers["subkey 1"] = ERROR_CANTREAD;
    Lines names;
    EXPECT_EQ(SubkeysOf(names), Win32Error::kCantRead);
    ASSERT_FALSE(names.empty());
    EXPECT_EQ(names[0], "a");
    EXPECT_EQ(calls_.Take(),
              (Lines{kOpenToRead, "count subkeys of key 1: 3", "subkey 0 of key 1 into 32 and 32",
                     "subkey 1 of key 1 into 32 and 32: error 1012", kClose}));
}

// ---- failures ----

/// One of the operations, the call that opens its key, and those of which each may fail afterwards.
struct Operation {
    const char* name;
    std::function<Win32Error()> run;
    const char* opening;
    Lines mains;
};

class EveryRegistryOperation : public WindowsRegistryCalls {
 protected:
    EveryRegistryOperation() {
        SetValue({1, 2, 3});
        MakeSubkey("a");
    }

    std::string text_;
    Bytes data_;
    Lines names_;
    const std::vector<Operation> operations_ = {
        {"RegQueryString", [&] { return QueryText(text_); }, "open", {"size", "read"}},
        {"RegQueryBinary", [&] { return Query(data_); }, "open", {"size", "read"}},
        {"RegSetString", [] { return RegSetString(kRoot, kKey, "new", "a", kRegSz); }, "open", {"set"}},
        {"RegSetBinary", [] { return RegSetBinary(kRoot, kKey, "new", {1}, kRegBinary); }, "open", {"set"}},
        {"RegDeleteValue", [] { return RegDeleteValue(kRoot, kKey, "new"); }, "open", {"delete"}},
        {"RegCreateKey", [] { return RegCreateKey(kRoot, kKey); }, "create", {}},
        {"RegEnumSubkeys", [&] { return SubkeysOf(names_); }, "open", {"count", "subkey"}},
    };
};

TEST_F(EveryRegistryOperation, EndsWithTheKeyThatCannotBeOpened) {
    for (const Operation& operation : operations_) {
        SCOPED_TRACE(operation.name);
        calls_.answers = {{operation.opening, ERROR_ACCESS_DENIED}};
        EXPECT_EQ(operation.run(), Win32Error::kAccessDenied);
        const Lines lines = calls_.Take();
        EXPECT_EQ(lines.size(), 1U);
        EXPECT_TRUE(lines.at(0).starts_with(operation.opening)) << lines.at(0);
    }
}

TEST_F(EveryRegistryOperation, ClosesItsKeyWhenItsOwnCallFailsAndGivesThatCallsError) {
    for (const Operation& operation : operations_) {
        for (const std::string& main : operation.mains) {
            for (const LSTATUS closed : {ERROR_SUCCESS, ERROR_INVALID_HANDLE}) {
                SCOPED_TRACE(operation.name + (" " + main));
                calls_.answers = {{main, ERROR_CANTWRITE}};
                if (closed != ERROR_SUCCESS) calls_.answers["close"] = closed;
                EXPECT_EQ(operation.run(), Win32Error::kCantWrite);
                const Lines lines = calls_.Take();
                EXPECT_TRUE(lines.back().starts_with(kClose)) << lines.back();
                EXPECT_TRUE(lines.at(lines.size() - 2).starts_with(main)) << lines.at(lines.size() - 2);
            }
        }
    }
}

TEST_F(EveryRegistryOperation, GivesTheErrorOfClosingWhenAllElseWentWell) {
    calls_.answers = {{"close", ERROR_INVALID_HANDLE}};
    for (const Operation& operation : operations_) {
        SCOPED_TRACE(operation.name);
        EXPECT_EQ(operation.run(), Win32Error::kInvalidHandle);
        EXPECT_EQ(calls_.Take().back(), "close key 1: error 6");
    }
}

}  // namespace
}  // namespace corvane
