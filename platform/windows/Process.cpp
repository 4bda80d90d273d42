#include "platform/windows/Process.h"

#include "platform/windows/WideText.h"
#include "platform/windows/Windows.h"

namespace corvane {

std::vector<std::string> ProgramArguments() {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> texts;
    if (arguments == nullptr) return texts;
    for (int i = 1; i < count; ++i) texts.push_back(Narrow(arguments[i]));
    LocalFree(arguments);
    return texts;
}

void TellDebugger(const std::string& words) { OutputDebugStringW(Wide(words + '\n').c_str()); }

}  // namespace corvane
