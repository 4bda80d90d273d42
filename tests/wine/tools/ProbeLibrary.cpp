#include <cstring>
#include <string>

#include "tests/wine/tools/Probe.h"
#include "tests/wine/tools/ProbeWindows.h"
#include "tests/wine/tools/System.h"

namespace corvane::test {

namespace {

void Answer() {
    const HANDLE memory = OpenFileMappingW(FILE_MAP_WRITE, FALSE, kProbeMemory);
    if (memory == nullptr) return;
    void* const place = MapViewOfFile(memory, FILE_MAP_WRITE, 0, 0, kProbeMemorySize);
    if (place != nullptr) {
        const std::string text = DescribeThread();
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
    if (code == HC_ACTION && reinterpret_cast<const CWPSTRUCT*>(lParam)->message == message) Answer();
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

}  // namespace corvane::test
