#include "platform/windows/SystemMessage.h"

#include "base/Text.h"
#include "platform/CodePage.h"
#include "platform/windows/Windows.h"

namespace corvane {

std::string SystemMessage(std::uint32_t code) {
    char text[1000];
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        code, 0, text, sizeof text, nullptr);
    return FromCodePage({text, length});
}

std::string SystemMessageLine(std::uint32_t code) {
    return Trim(Without(Without(SystemMessage(code), '\r'), '\n'));
}

}  // namespace corvane
