#include "programs/registry/RegistryArguments.h"

#include <map>
#include <set>

#include "base/Text.h"

namespace corvane {

namespace {

using Command = RegistryArguments::Command;

struct CommandForm {
    Command command;
    std::size_t positionals;        ///< Keys and files.
    std::set<std::string> options;  ///< Without their leading character.
};

const std::map<std::string, CommandForm>& CommandForms() {
    static const std::map<std::string, CommandForm> forms = {
        {"query", {Command::kQuery, 1, {"v", "ve", "s"}}},
        {"add", {Command::kAdd, 1, {"v", "ve", "t", "d", "s", "f"}}},
        {"delete", {Command::kDelete, 1, {"v", "ve", "va", "f"}}},
        {"export", {Command::kExport, 2, {"y"}}},
        {"import", {Command::kImport, 1, {}}},
    };
    return forms;
}

bool LooksLikeOption(const std::string& argument) {
    return argument.size() > 1 && (argument.front() == '/' || argument.front() == '-');
}

bool IsHelp(const std::string& argument) {
    static const std::set<std::string> forms = {"--help", "-h", "/h", "-?", "/?", "help"};
    return forms.contains(ToLower(argument));
}

/// Takes in what an option says.
Refusal TakeOption(const std::string& option, const std::string& value, RegistryArguments& result) {
    if (option == "v" || option == "ve") {
        if (result.name) return Refusal("one of /v and /ve may be given, once");
        result.name = value;
    } else if (option == "t") {
        result.type = ToUpper(value);
    } else if (option == "d") {
        result.data = value;
    } else if (option == "s" && result.command == Command::kAdd) {
        if (value.empty()) return Refusal("the separator behind /s is empty");
        result.separator = value;
    } else if (option == "s") {
        result.below = true;
    } else if (option == "va") {
        result.allValues = true;
    } else {
        result.force = true;
    }
    return {};
}

Refusal TakePositionals(const std::vector<std::string>& positionals, const CommandForm& form,
                        RegistryArguments& result) {
    const bool hasKey = form.command != Command::kImport;
    if (positionals.size() < form.positionals) {
        return Refusal(positionals.empty() && hasKey ? "the key is missing" : "the file is missing");
    }
    for (const std::string& positional : positionals) {
        if (positional.empty()) return Refusal("an argument is empty");
    }
    if (hasKey) result.key = positionals.front();
    if (form.command == Command::kExport || form.command == Command::kImport)
        result.file = positionals.back();
    return {};
}

/// Options that exclude or need each other.
Refusal CheckTogether(const RegistryArguments& result) {
    if (result.allValues && result.name) return Refusal("/va stands alone, without /v and /ve");
    if (result.command == Command::kAdd && !result.name && (result.type || result.data)) {
        return Refusal("/t and /d need the name of the value: /v NAME or /ve");
    }
    return {};
}

}  // namespace

Refusal ParseRegistryArguments(const std::vector<std::string>& arguments, RegistryArguments& result) {
    if (arguments.empty()) return Refusal("no command is given");
    if (IsHelp(arguments.front())) return {};
    if (ToLower(arguments.front()) == "--version") {
        result.command = Command::kVersion;
        return {};
    }
    const auto entry = CommandForms().find(ToLower(arguments.front()));
    if (entry == CommandForms().end()) return Refusal("unknown command \"" + arguments.front() + "\"");
    const CommandForm& form = entry->second;
    result.command = form.command;

    std::vector<std::string> positionals;
    std::set<std::string> seen;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const std::string option = LooksLikeOption(argument) ? ToLower(argument.substr(1)) : std::string();
        if (form.options.contains(option)) {
            if (!seen.insert(option).second) return Refusal(argument + " is given twice");
            const bool separator = option == "s" && form.command == Command::kAdd;
            const bool takesValue = option == "v" || option == "t" || option == "d" || separator;
            if (takesValue && i + 1 == arguments.size())
                return Refusal("there is nothing behind " + argument);
            if (Refusal refusal = TakeOption(option, takesValue ? arguments[++i] : std::string(), result))
                return refusal;
            continue;
        }
        // A file may start with "/", a key may not.
        const bool isFile =
            form.command == Command::kImport || (form.command == Command::kExport && !positionals.empty());
        if (LooksLikeOption(argument)) {
            if (IsHelp(argument)) {
                result.command = Command::kHelp;
                return {};
            }
            if (!isFile || argument.front() == '-') return Refusal("unknown option " + argument);
        }
        if (positionals.size() == form.positionals)
            return Refusal("\"" + argument + "\" is one argument too many");
        positionals.push_back(argument);
    }
    if (Refusal refusal = TakePositionals(positionals, form, result)) return refusal;
    return CheckTogether(result);
}

}  // namespace corvane
