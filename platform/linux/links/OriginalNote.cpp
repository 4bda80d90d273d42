#include "platform/linux/links/OriginalNote.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "base/Address.h"
#include "platform/Files.h"
#include "platform/linux/system/RuntimeFolder.h"

namespace corvane {

namespace {

std::string NotePath(std::string incarnation) {
    std::replace(incarnation.begin(), incarnation.end(), ':', '-');
    return RuntimeFolder() + "/original-" + incarnation;
}

}  // namespace

void NoteOriginal(const std::string& incarnation, const std::string& digits) {
    std::error_code error;
    std::filesystem::create_directories(RuntimeFolder(), error);
    static_cast<void>(ReplaceFileContents(NotePath(incarnation), digits));
}

std::string NotedOriginal(const std::string& incarnation) {
    std::string digits;
    static_cast<void>(ReadFileContents(NotePath(incarnation), digits));
    return ParseMacDigits(digits) ? digits : std::string();
}

void ForgetOriginal(const std::string& incarnation) {
    std::error_code error;
    std::filesystem::remove(NotePath(incarnation), error);
}

}  // namespace corvane
