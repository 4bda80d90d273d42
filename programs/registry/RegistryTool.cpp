#include "programs/registry/RegistryTool.h"

#include <filesystem>
#include <istream>
#include <optional>
#include <ostream>
#include <system_error>

#include "base/Refusal.h"
#include "base/Text.h"
#include "platform/Files.h"
#include "platform/linux/registry/RegFile.h"
#include "platform/linux/system/Errors.h"
#include "programs/registry/RegistryArguments.h"
#include "programs/registry/RegistryData.h"
#include "startup/Version.h"

namespace corvane {

namespace {

constexpr char kUsage[] =
    "Usage: nicx-registry query KEY [/v NAME | /ve] [/s]\n"
    "       nicx-registry add KEY [/v NAME | /ve] [/t TYPE] [/d DATA] [/s SEPARATOR] [/f]\n"
    "       nicx-registry delete KEY [/v NAME | /ve | /va] [/f]\n"
    "       nicx-registry export KEY FILE [/y]\n"
    "       nicx-registry import FILE\n"
    "Reads and changes the registry in which network connections are described.\n"
    "  KEY     HKLM\\... or HKEY_LOCAL_MACHINE\\...\n"
    "  /v      the value with this name; /ve the value without a name; /va all values\n"
    "  /t      REG_SZ (the default), REG_MULTI_SZ, REG_EXPAND_SZ, REG_DWORD, REG_QWORD, REG_BINARY or "
    "REG_NONE\n"
    "  /d      the data; numbers decimal or 0x..., bytes as pairs of hexadecimal digits\n"
    "  /s      query: with everything below the key. add: what divides the entries of REG_MULTI_SZ, \\0 by "
    "default\n"
    "  /f, /y  do not ask before something is overwritten or deleted\n"
    "Options may also be led by \"-\". Files are .reg files of version 5 or REGEDIT4. The registry is the "
    "file that\n"
    "NICX_REGISTRY names, else /var/lib/nicx/registry.db; everybody may read it, writing takes its owner's "
    "rights.\n"
    "Exit codes: 0 done, 1 failed, 2 wrong arguments.\n";

std::string FullName(const std::string& key) {
    return key.empty() ? std::string(kLocalMachine) : std::string(kLocalMachine) + "\\" + key;
}

std::string Below(const std::string& key, const std::string& name) {
    return key.empty() ? name : key + "\\" + name;
}

std::string ShownName(const std::string& name) { return name.empty() ? "(Default)" : name; }

/// Leaves the part of a typed key that is below the root.
Refusal TakeRootOff(std::string& key) {
    if (key.empty()) return {};
    const std::optional<std::string> subkey = StripRoot(key);
    if (!subkey) return Refusal("\"" + key + "\" is no key: keys start with HKLM or HKEY_LOCAL_MACHINE");
    key = *subkey;
    while (key.ends_with('\\')) key.pop_back();
    return {};
}

class Tool {
 public:
    Tool(const RegistryArguments& arguments, RegistryStore& store, RegistryConsole& console)
        : arguments_(arguments), store_(store), console_(console) {}

    int Run() {
        using Verb = RegistryArguments::Command;
        switch (arguments_.command) {
            case Verb::kQuery:
                return arguments_.name ? QueryValue() : QueryKey();
            case Verb::kAdd:
                return arguments_.name ? AddValue() : AddKey();
            case Verb::kDelete:
                return Delete();
            case Verb::kExport:
                return Export();
            case Verb::kImport:
                return Import();
            case Verb::kHelp:
            case Verb::kVersion:
                break;
        }
        return kRegistryToolWrongArguments;
    }

 private:
    int Fail(const std::string& message) {
        console_.err << "nicx-registry: " << message << "\n";
        return kRegistryToolFailed;
    }

    /// Says what a failed operation means and what helps.
    int Fail(Win32Error code, bool writing) {
        const std::string file = "'" + store_.Path() + "'";
        switch (code) {
            case Win32Error::kFileNotFound:
                return Fail("there is no such key: " + FullName(arguments_.key));
            case Win32Error::kAccessDenied:
                if (writing) return Fail("no right to change this in " + file + ". Run the command as root.");
                return Fail("no right to read " + file + ". Run the command as root.");
            case Win32Error::kRegistryCorrupt:
                return Fail(file +
                            " is damaged or no registry. Put a copy in its place, or move it away: the next "
                            "command run as root makes a new one.");
            case Win32Error::kCantOpen:
                return Fail(file +
                            " cannot be opened: a newer version has made it, or its folder cannot be used. "
                            "Install that version, or name another file in NICX_REGISTRY.");
            case Win32Error::kCantRead:
            case Win32Error::kCantWrite:
                return Fail(file +
                            " is in use by another program, or its disk is full or failing. Try again.");
            default:
                return Fail(file + ": (" + std::to_string(Number(code)) + ") " +
                            Trim(FirstLine(Win32Text(code))));
        }
    }

    static std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\r')); }

    int Done(Win32Error code) {
        if (!Ok(code)) return Fail(code, true);
        console_.err << FirstLine(Win32Text(Win32Error::kSuccess)) << "\n";
        return kRegistryToolDone;
    }

    int Output() {
        console_.out.flush();
        return console_.out ? kRegistryToolDone : Fail("standard output could not be written");
    }

    /// True when the user agrees, or had agreed with the option. Nobody to ask is a no.
    bool Agreed(const std::string& what, const std::string& option) {
        if (arguments_.force) return true;
        if (!console_.interactive) {
            Fail(what + " needs your word. Add " + option + " to do it without a question.");
            return false;
        }
        console_.err << what << " (Yes/No)? " << std::flush;
        std::string answer;
        std::getline(console_.in, answer);
        answer = ToLower(Trim(answer));
        if (answer == "y" || answer == "yes") return true;
        Fail("nothing was changed");
        return false;
    }

    // ---- query ----

    void PrintKey(const std::string& key) { console_.out << "\n" << FullName(key) << "\n"; }

    void PrintValue(const std::string& name, const RegistryValue& value) {
        console_.out << "    " << ShownName(name) << "    " << RegistryTypeName(value.type) << "    "
                     << RegistryDataText(value) << "\n";
    }

    int QueryKey() {
        const Win32Error code = QueryKeyBelow(arguments_.key, true);
        const int output = Output();
        return Ok(code) ? output : Fail(code, false);
    }

    Win32Error QueryKeyBelow(const std::string& key, bool top) {
        std::vector<NamedValue> values;
        std::vector<std::string> names;
        Win32Error code = store_.EnumValues(kHkeyLocalMachine, key, values);
        if (Ok(code)) code = store_.EnumSubkeys(kHkeyLocalMachine, key, names);
        if (!Ok(code)) return code;
        if (!values.empty() || names.empty() || !top) PrintKey(key);
        for (const NamedValue& value : values) PrintValue(value.name, value.value);
        if (!arguments_.below && !names.empty()) console_.out << "\n";
        for (const std::string& name : names) {
            if (!arguments_.below) {
                console_.out << FullName(Below(key, name)) << "\n";
                continue;
            }
            code = QueryKeyBelow(Below(key, name), false);
            // Another program may have deleted it since it was listed.
            if (!Ok(code) && code != Win32Error::kFileNotFound) return code;
        }
        return Win32Error::kSuccess;
    }

    int QueryValue() {
        std::size_t matches = 0;
        const Win32Error code = QueryValueBelow(arguments_.key, matches);
        const int output = Output();
        if (!Ok(code)) return Fail(code, false);
        if (matches > 0) return output;
        return Fail("there is no such value: " + ShownName(*arguments_.name) + " in " +
                    FullName(arguments_.key));
    }

    Win32Error QueryValueBelow(const std::string& key, std::size_t& matches) {
        const RegistryRead read = store_.ReadValue(kHkeyLocalMachine, key, *arguments_.name);
        if (Ok(read.code)) {
            PrintKey(key);
            PrintValue(*arguments_.name, read.value);
            ++matches;
        } else if (read.code != Win32Error::kFileNotFound || !read.keyOpened) {
            return read.code;
        }
        if (!arguments_.below) return Win32Error::kSuccess;
        std::vector<std::string> names;
        Win32Error code = store_.EnumSubkeys(kHkeyLocalMachine, key, names);
        for (std::size_t i = 0; Ok(code) && i < names.size(); ++i) {
            code = QueryValueBelow(Below(key, names[i]), matches);
            if (code == Win32Error::kFileNotFound) code = Win32Error::kSuccess;
        }
        return code;
    }

    // ---- add and delete ----

    int AddKey() { return Done(store_.CreateKey(kHkeyLocalMachine, arguments_.key)); }

    /// What /t and /d say.
    Refusal TypedValue(RegistryValue& value) const {
        const std::optional<std::uint32_t> type =
            arguments_.type ? RegistryTypeFromName(*arguments_.type) : kRegSz;
        if (!type) return Refusal("unknown type \"" + *arguments_.type + "\"");
        return RegistryDataFromText(*type, arguments_.data.value_or(""), arguments_.separator, value);
    }

    int AddValue() {
        RegistryStore::Change change{
            RegistryStore::Change::Kind::kSetValue, arguments_.key, *arguments_.name, {}};
        if (const Refusal refusal = TypedValue(change.value)) {
            Fail(refusal.Words());
            return kRegistryToolWrongArguments;
        }
        const RegistryRead old = store_.ReadValue(kHkeyLocalMachine, arguments_.key, *arguments_.name);
        if (!Ok(old.code) && old.code != Win32Error::kFileNotFound) return Fail(old.code, true);
        const std::string question = "Overwriting the value " + ShownName(*arguments_.name);
        if (Ok(old.code) && !Agreed(question, "/f")) return kRegistryToolFailed;
        return Done(store_.Apply(kHkeyLocalMachine, {change}));
    }

    int Delete() {
        const std::string key = FullName(arguments_.key);
        const RegistryRead there =
            store_.ReadValue(kHkeyLocalMachine, arguments_.key, arguments_.name.value_or(""));
        if (!there.keyOpened) return Fail(there.code, false);
        if (arguments_.name) {
            const std::string name = ShownName(*arguments_.name);
            if (!Ok(there.code)) return Fail("there is no such value: " + name + " in " + key);
            if (!Agreed("Deleting the value " + name + " of " + key, "/f")) return kRegistryToolFailed;
            return Done(store_.DeleteValue(kHkeyLocalMachine, arguments_.key, *arguments_.name));
        }
        if (arguments_.allValues) return DeleteAllValues();
        if (arguments_.key.empty()) return Fail("the root itself cannot be deleted; name a key below it");
        if (!Agreed("Deleting " + key + " with everything below it", "/f")) return kRegistryToolFailed;
        return Done(store_.DeleteKey(kHkeyLocalMachine, arguments_.key));
    }

    int DeleteAllValues() {
        if (!Agreed("Deleting all values of " + FullName(arguments_.key), "/f")) return kRegistryToolFailed;
        std::vector<NamedValue> values;
        const Win32Error code = store_.EnumValues(kHkeyLocalMachine, arguments_.key, values);
        if (!Ok(code)) return Fail(code, false);
        std::vector<RegistryStore::Change> changes;
        for (const NamedValue& value : values) {
            changes.push_back({RegistryStore::Change::Kind::kDeleteValue, arguments_.key, value.name, {}});
        }
        return Done(store_.Apply(kHkeyLocalMachine, changes));
    }

    // ---- export and import ----

    static Win32Error Collect(RegistryStore::Editor& store, const std::string& key,
                              std::vector<RegFileKey>& keys) {
        std::vector<std::string> names;
        keys.push_back({key, {}});
        Win32Error code = store.EnumValues(key, keys.back().values);
        if (Ok(code)) code = store.EnumSubkeys(key, names);
        for (std::size_t i = 0; Ok(code) && i < names.size(); ++i)
            code = Collect(store, Below(key, names[i]), keys);
        return code;
    }

    int Export() {
        std::error_code ignored;
        const std::string& file = arguments_.file;
        if (std::filesystem::is_directory(file, ignored))
            return Fail("'" + file + "' is a folder; name a file");
        const bool exists = std::filesystem::exists(file, ignored);
        if (exists && !Agreed("Overwriting '" + file + "'", "/y")) return kRegistryToolFailed;
        std::vector<RegFileKey> keys;
        // In one transaction, so that the file shows one moment.
        const Win32Error code = store_.Transact(
            [&](RegistryStore::Editor& store) { return Collect(store, arguments_.key, keys); });
        if (!Ok(code)) return Fail(code, false);
        const RegFileText text = PrintRegFile(keys);
        if (const std::error_code failure = ReplaceFileContents(file, text.bytes)) {
            return Fail("'" + file + "' could not be written: " + failure.message() +
                        ". Name another file; an old one is as it was.");
        }
        if (text.changedNames > 0) {
            console_.err << "nicx-registry: " << text.changedNames
                         << " names hold characters that such a file cannot; they stand there as U+FFFD\n";
        }
        return Done(Win32Error::kSuccess);
    }

    int Import() {
        const std::string& file = arguments_.file;
        std::error_code failure;
        const auto status = std::filesystem::status(file, failure);
        if (std::filesystem::is_directory(status))
            return Fail("'" + file + "' is a folder; name a .reg file");
        if (status.type() == std::filesystem::file_type::not_found)
            return Fail("there is no file '" + file + "'");
        const std::uintmax_t size = std::filesystem::file_size(file, failure);
        if (failure) return Fail("'" + file + "' could not be read: " + failure.message());
        if (size > kLargestRegFile) {
            return Fail("'" + file +
                        "' is larger than 64 MiB, which is no .reg file of this program. Split it.");
        }
        std::string bytes;
        failure = ReadFileContents(file, bytes);
        if (failure) return Fail("'" + file + "' could not be read: " + failure.message());
        const RegFileContents contents = ParseRegFile(bytes);
        if (!contents.problem.empty()) {
            return Fail("'" + file + "', line " + std::to_string(contents.line) + ": " + contents.problem +
                        ". Nothing was imported.");
        }
        return Done(store_.Apply(kHkeyLocalMachine, contents.changes));
    }

    const RegistryArguments& arguments_;
    RegistryStore& store_;
    RegistryConsole& console_;
};

}  // namespace

int RunRegistryTool(const std::vector<std::string>& arguments, const std::function<RegistryStore&()>& store,
                    RegistryConsole& console) {
    RegistryArguments parsed;
    Refusal refusal = ParseRegistryArguments(arguments, parsed);
    if (!refusal) refusal = TakeRootOff(parsed.key);
    if (refusal) {
        console.err << "nicx-registry: " << refusal.Words() << "\nTry 'nicx-registry --help'.\n";
        return kRegistryToolWrongArguments;
    }
    if (parsed.command == RegistryArguments::Command::kHelp) {
        console.out << kUsage;
        return kRegistryToolDone;
    }
    if (parsed.command == RegistryArguments::Command::kVersion) {
        console.out << "nicx-registry " << kProgramVersion << "\n";
        return kRegistryToolDone;
    }
    return Tool(parsed, store(), console).Run();
}

}  // namespace corvane
