#include "startup/ConsoleSeat.h"

#include <charconv>

#include "base/Text.h"

namespace corvane {

namespace {

/// Box text with the line ends of a terminal and none at its end.
std::string Lines(const std::string& text) {
    std::string lines = Without(text, '\r');
    while (!lines.empty() && lines.back() == '\n') lines.pop_back();
    return lines;
}

}  // namespace

std::optional<std::string> ConsoleSeat::ReadLine() {
    std::string line;
    err_.flush();
    if (!std::getline(in_, line)) {
        err_ << '\n';
        return std::nullopt;
    }
    return Trim(Without(line, '\r'));
}

BoxAnswer ConsoleSeat::ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                               BoxButtons buttons) {
    std::ostream& stream = icon == BoxIcon::kInformation ? out_ : err_;
    stream << title << '\n' << Lines(text) << "\n\n" << std::flush;
    if (buttons == BoxButtons::kOk) return BoxAnswer::kOk;
    while (interactive_) {
        err_ << "[Yes/No/Cancel] ";
        const std::optional<std::string> line = ReadLine();
        if (!line) break;
        const std::string answer = ToLower(*line);
        if (answer == "y" || answer == "yes") return BoxAnswer::kYes;
        if (answer == "n" || answer == "no") return BoxAnswer::kNo;
        if (answer == "c" || answer == "cancel") return BoxAnswer::kCancel;
        err_ << "Please answer yes, no or cancel.\n";
    }
    return BoxAnswer::kNo;
}

std::optional<std::string> ConsoleSeat::AskText(const std::string& title, const std::string& prompt,
                                                const std::string& preset) {
    if (!interactive_) return std::nullopt;
    err_ << title << '\n' << Lines(prompt) << '\n';
    if (!preset.empty()) err_ << '[' << preset << "] ";
    std::optional<std::string> line = ReadLine();
    if (line && line->empty()) return preset.empty() ? std::nullopt : std::optional(preset);
    return line;
}

std::optional<std::size_t> ConsoleSeat::PickFolder(const std::string& title, const std::string& heading,
                                                   const std::string& instruction,
                                                   const std::vector<std::string>& names) {
    if (!interactive_) return std::nullopt;
    err_ << title << '\n' << heading << '\n' << instruction << '\n';
    for (std::size_t i = 0; i < names.size(); ++i) err_ << "  " << i + 1 << ". " << names[i] << '\n';
    for (;;) {
        err_ << "Number (0 to cancel): ";
        const std::optional<std::string> line = ReadLine();
        if (!line || line->empty()) return std::nullopt;
        std::size_t number = 0;
        const char* const last = line->data() + line->size();
        const auto [end, error] = std::from_chars(line->data(), last, number);
        if (error == std::errc() && end == last) {
            if (number == 0) return std::nullopt;
            if (number <= names.size()) return number - 1;
        }
        err_ << "Please give a number from 0 to " << names.size() << ".\n";
    }
}

void ConsoleSeat::Warn(const std::string& text) { err_ << "nicx: warning: " << text << '\n' << std::flush; }

void ConsoleSeat::Progress(const std::string& text) {
    if (interactive_) err_ << text << '\n' << std::flush;
}

}  // namespace corvane
