#include <cstring>
#include <string>

#include "tests/wine/tools/Probe.h"
#include "tests/wine/tools/ProbeWindows.h"
#include "tests/wine/tools/System.h"

namespace corvane::test {

namespace {

void Answer(ProbeQuestion question) {
    const HANDLE memory = OpenFileMappingW(FILE_MAP_WRITE, FALSE, kProbeMemory);
    if (memory == nullptr) return;
    void* const place = MapViewOfFile(memory, FILE_MAP_WRITE, 0, 0, kProbeMemorySize);
    if (place != nullptr) {
        const std::string text =
            OneLine(question == ProbeQuestion::kInput ? DescribeInput() : DescribeThread());
        ProbeHeader header{1, 0};
        if (text.size() <= kProbeMemorySize - sizeof header)
            header.size = static_cast<std::uint32_t>(text.size());
        std::memcpy(static_cast<char*>(place) + sizeof header, text.data(), header.size);
        std::memcpy(place, &header, sizeof header);
        UnmapViewOfFile(place);
    }
    CloseHandle(memory);
}

}  // namespace

extern "C" __declspec(dllexport) LRESULT CALLBACK ProbeProcedure(int code, WPARAM wParam, LPARAM lParam) {
    static const UINT message = RegisterWindowMessageW(kProbeMessage);
    const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code == HC_ACTION && sent.message == message) Answer(static_cast<ProbeQuestion>(sent.wParam));
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

}  // namespace corvane::test
