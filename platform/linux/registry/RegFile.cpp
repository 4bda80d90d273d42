#include "platform/linux/registry/RegFile.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/Text.h"
#include "base/Utf8.h"
#include "platform/CodePage.h"
#include "platform/RegistryValues.h"
#include "platform/linux/registry/Utf16.h"

namespace corvane {

namespace {

constexpr std::string_view kVersion5 = "Windows Registry Editor Version 5.00";
constexpr std::string_view kVersion4 = "REGEDIT4";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t";
constexpr std::uint32_t kRegExpandSz = 2;  ///< winnt.h
/// Columns of a line of hexadecimal data before its ",\", as the format's own editor breaks them.
constexpr std::size_t kHexColumns = 77;

bool IsText(std::uint32_t type) { return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz; }

std::string_view TrimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// One to `mostDigits` hexadecimal digits and nothing else.
std::optional<std::uint32_t> HexNumber(std::string_view text, std::size_t mostDigits) {
    if (text.empty() || text.size() > mostDigits) return std::nullopt;
    std::uint32_t number = 0;
    for (const char c : text) {
        if (HexDigit(c) < 0) return std::nullopt;
        number = number << 4U | static_cast<std::uint32_t>(HexDigit(c));
    }
    return number;
}

/// The file's text as UTF-8, or what keeps it from being read.
std::optional<std::string> DecodeFile(std::string_view bytes, std::string& text) {
    const bool marked = bytes.starts_with(kUtf16Mark);
    if (marked || bytes.starts_with(std::string_view("W\0", 2))) {
        if (marked) bytes.remove_prefix(kUtf16Mark.size());
        text = Utf8FromUtf16Le(bytes);
        if (bytes.size() % 2 != 0) return "the file ends in the middle of a character; it has been cut off";
    } else if (bytes.starts_with(kUtf8Mark)) {
        text = bytes.substr(kUtf8Mark.size());
    } else if (bytes.starts_with(kVersion4) || !IsUtf8(bytes)) {
        text = FromCodePage(bytes);
    } else {
        text = bytes;
    }
    return std::nullopt;
}

/// Reads the lines of a decoded file one after another.
class Parser {
 public:
    explicit Parser(std::string_view text) : rest_(text) {}

    RegFileContents Parse() {
        problem_ = Header();
        std::string_view line;
        while (!problem_ && NextLine(line)) {
            line = TrimBlanks(line);
            if (line.empty() || line.front() == ';') continue;
            problem_ = line.front() == '[' ? KeyLine(line) : ValueLine(line);
        }
        RegFileContents contents;
        if (problem_) {
            contents.problem = *problem_;
            contents.line = line_;
        } else {
            contents.changes = std::move(changes_);
        }
        return contents;
    }

 private:
    using Kind = RegistryStore::Change::Kind;
    using Problem = std::optional<std::string>;

    bool NextLine(std::string_view& line) {
        if (rest_.empty()) return false;
        const std::size_t end = std::min(rest_.find('\n'), rest_.size());
        ended_ = end < rest_.size();
        line = rest_.substr(0, end);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        ++line_;
        return true;
    }

    Problem Header() {
        std::string_view line;
        if (!NextLine(line)) {
            line_ = 1;
            return "the file is empty";
        }
        line = TrimBlanks(line);
        version4_ = line == kVersion4;
        if (version4_ || line == kVersion5) return std::nullopt;
        return "the first line is neither \"" + std::string(kVersion5) + "\" nor \"" +
               std::string(kVersion4) + "\"";
    }

    Problem KeyLine(std::string_view line) {
        if (!line.ends_with(']') || line.size() < 2) return "the key has no \"]\" at its end";
        line = line.substr(1, line.size() - 2);
        const bool remove = line.starts_with('-');
        if (remove) line.remove_prefix(1);
        const std::optional<std::string> subkey = StripRoot(line);
        if (!subkey) {
            return "the key does not start with \"" + std::string(kLocalMachine) +
                   "\", the only root that is kept";
        }
        key_ = *subkey;
        if (remove && Without(key_, '\\').empty()) return "the root itself cannot be deleted";
        inKey_ = !remove;
        changes_.push_back({remove ? Kind::kDeleteKey : Kind::kCreateKey, key_, {}, {}});
        return std::nullopt;
    }

    Problem ValueLine(std::string_view line) {
        std::string name;
        if (line.front() == '@') {
            line.remove_prefix(1);
        } else if (line.front() != '"') {
            return "the line is neither a key in \"[]\" nor a value that starts with a quoted name or \"@\"";
        } else if (Problem problem = Quoted(line, name)) {
            return problem;
        }
        line = TrimBlanks(line);
        if (!line.starts_with('=')) return "there is no \"=\" behind the value's name";
        if (!inKey_) return "the value belongs to no key";
        line = TrimBlanks(line.substr(1));

        RegistryStore::Change change{Kind::kSetValue, key_, std::move(name), {}};
        Problem problem;
        if (line.starts_with('"')) {
            std::string text;
            problem = Quoted(line, text);
            if (!problem) problem = NothingBehind(line);
            change.value = TextValue(text);
        } else if (line.starts_with('-')) {
            change.kind = Kind::kDeleteValue;
            problem = NothingBehind(line.substr(1));
        } else {
            problem = NumberOrHex(line, change.value);
            // Quotes and brackets show where they end; digits do not.
            if (!problem && !ended_)
                problem = "the last line has no line break at its end; it may have been cut off";
        }
        if (!problem) changes_.push_back(std::move(change));
        return problem;
    }

    /// Takes the quoted text at the start of `line` off it.
    static Problem Quoted(std::string_view& line, std::string& text) {
        for (std::size_t i = 1; i < line.size(); ++i) {
            if (line[i] == '"') {
                line.remove_prefix(i + 1);
                return std::nullopt;
            }
            if (line[i] == '\\') {
                ++i;
                if (i == line.size()) break;
                if (line[i] != '\\' && line[i] != '"')
                    return R"(in quotes a "\" must be followed by "\" or a quote)";
            }
            text += line[i];
        }
        return "a quoted text is not closed on its line";
    }

    static Problem NothingBehind(std::string_view line) {
        line = TrimBlanks(line);
        if (line.empty() || line.front() == ';') return std::nullopt;
        return "there is more behind the value than belongs to it";
    }

    Problem NumberOrHex(std::string_view line, RegistryValue& value) {
        const std::size_t colon = std::min(line.find(':'), line.size());
        const std::string kind = ToLower(line.substr(0, colon));
        std::string_view data = line.substr(std::min(colon + 1, line.size()));
        const Problem unknown = "the value is neither quoted text nor dword:, hex: or hex(type):";
        if (colon == line.size()) return unknown;
        if (kind == "dword") return Dword(data, value);
        if (kind == "hex") {
            value.type = kRegBinary;
        } else {
            if (!kind.starts_with("hex(") || !kind.ends_with(')')) return unknown;
            const auto type = HexNumber(std::string_view(kind).substr(4, kind.size() - 5), 8);
            if (!type) return "the type in \"hex(type):\" is not a hexadecimal number";
            value.type = *type;
        }
        return Hex(data, value);
    }

    static Problem Dword(std::string_view data, RegistryValue& value) {
        const auto number = HexNumber(TrimBlanks(data.substr(0, std::min(data.find(';'), data.size()))), 8);
        if (!number) return "there are not one to eight hexadecimal digits behind \"dword:\"";
        value.type = kRegDword;
        for (unsigned shift = 0; shift < 32; shift += 8) {
            value.data.push_back(static_cast<std::uint8_t>(*number >> shift & 0xFFU));
        }
        return std::nullopt;
    }

    /// Bytes divided by commas; a "\" at the end of a line continues them on the next.
    Problem Hex(std::string_view data, RegistryValue& value) {
        bool pending = false;  // A comma stands before what comes next.
        for (;;) {
            data = TrimBlanks(data.substr(0, std::min(data.find(';'), data.size())));
            const bool continues = data.ends_with('\\');
            if (continues) data = TrimBlanks(data.substr(0, data.size() - 1));
            while (!data.empty()) {
                const std::size_t comma = std::min(data.find(','), data.size());
                const auto byte = HexNumber(TrimBlanks(data.substr(0, comma)), 2);
                if (!byte) return "the data are not hexadecimal bytes divided by commas";
                value.data.push_back(static_cast<std::uint8_t>(*byte));
                pending = comma < data.size();
                data.remove_prefix(std::min(comma + 1, data.size()));
            }
            if (!continues) break;
            if (!pending && !value.data.empty())
                return "there is no comma before the \"\\\" at the end of the line";
            if (!NextLine(data)) return "the file ends where the data should go on; it has been cut off";
        }
        if (pending) return "the data end in a comma; the file may have been cut off";
        return TextFromHex(value);
    }

    Problem TextFromHex(RegistryValue& value) const {
        if (version4_ || !IsText(value.type)) return std::nullopt;
        if (value.data.size() % 2 != 0) return "UTF-16 text has an odd number of bytes";
        const std::string utf16(value.data.begin(), value.data.end());
        value.data = TextBytes(Utf8FromUtf16Le(utf16));
        return std::nullopt;
    }

    std::string_view rest_;
    std::size_t line_ = 0;
    bool ended_ = false;  ///< The present line has a line break at its end.
    bool version4_ = false;
    bool inKey_ = false;
    std::string key_;
    std::vector<RegistryStore::Change> changes_;
    Problem problem_;
};

/// Makes the text of a file.
class Printer {
 public:
    void Line(const std::string& line) { text_ += line + "\r\n"; }

    void Key(const RegFileKey& key) {
        Line("");
        Line("[" + std::string(kLocalMachine) + (key.path.empty() ? "" : "\\" + Name(key.path)) + "]");
        for (const NamedValue& named : key.values) {
            Value(named.name.empty() ? "@" : "\"" + Escaped(Name(named.name)) + "\"", named.value);
        }
    }

    RegFileText Finish() { return {std::string(kUtf16Mark) + Utf16LeFromUtf8(text_), changedNames_}; }

 private:
    static bool CanQuote(const RegistryValue& value) {
        const auto& data = value.data;
        if (value.type != kRegSz || data.empty() || data.back() != 0) return false;
        return std::none_of(data.begin(), data.end() - 1, [](std::uint8_t byte) { return byte < 0x20; });
    }

    static std::string Escaped(std::string_view text) {
        std::string escaped;
        for (const char c : text) {
            if (c == '\\' || c == '"') escaped += '\\';
            escaped += c;
        }
        return escaped;
    }

    std::string Name(const std::string& name) {
        std::string safe = name;
        for (std::size_t at = 0; (at = safe.find_first_of("\r\n", at)) != std::string::npos;) {
            safe.replace(at, 1, "\xEF\xBF\xBD");
        }
        if (safe != name || !IsUtf8(name)) ++changedNames_;
        return safe;
    }

    void Value(const std::string& name, const RegistryValue& value) {
        const std::string bytes(value.data.begin(), value.data.end());
        if (CanQuote(value)) {
            Line(name + "=\"" + Escaped(TextBeforeLastByte(value.data)) + "\"");
        } else if (value.type == kRegDword && value.data.size() == 4) {
            std::string line = name + "=dword:";
            for (std::size_t i = 4; i > 0; --i) line += LowerHex(value.data[i - 1]);
            Line(line);
        } else {
            const std::string data = IsText(value.type) ? Utf16LeFromUtf8(FromCodePage(bytes)) : bytes;
            Hex(name + (value.type == kRegBinary ? "=hex:" : "=hex(" + TypeNumber(value.type) + "):"), data);
        }
    }

    void Hex(std::string line, const std::string& data) {
        for (std::size_t i = 0; i < data.size(); ++i) {
            if (i > 0) line += ',';
            if (i > 0 && line.size() + 3 > kHexColumns) {
                Line(line + "\\");
                line = "  ";
            }
            line += LowerHex(static_cast<std::uint8_t>(data[i]));
        }
        Line(line);
    }

    static std::string LowerHex(std::uint8_t byte) { return ToLower(ByteToHex2(byte)); }

    static std::string TypeNumber(std::uint32_t type) {
        std::string digits;
        for (; type != 0 || digits.empty(); type >>= 4U) digits.insert(0, 1, "0123456789abcdef"[type & 15U]);
        return digits;
    }

    std::string text_;
    std::size_t changedNames_ = 0;
};

}  // namespace

RegFileContents ParseRegFile(std::string_view bytes) {
    std::string text;
    if (const auto problem = DecodeFile(bytes, text)) {
        const auto lines = std::count(text.begin(), text.end(), '\n');
        return {{}, *problem, static_cast<std::size_t>(lines) + 1};
    }
    return Parser(text).Parse();
}

RegFileText PrintRegFile(const std::vector<RegFileKey>& keys) {
    Printer printer;
    printer.Line(std::string(kVersion5));
    for (const RegFileKey& key : keys) printer.Key(key);
    printer.Line("");
    return printer.Finish();
}

std::optional<std::string> StripRoot(std::string_view fullName) {
    const std::size_t end = std::min(fullName.find('\\'), fullName.size());
    const std::string root = ToUpper(fullName.substr(0, end));
    if (root != kLocalMachine && root != "HKLM") return std::nullopt;
    return std::string(fullName.substr(std::min(end + 1, fullName.size())));
}

}  // namespace corvane
