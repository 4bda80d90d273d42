#pragma once

#include <cstddef>
#include <cstdint>

/// How observer.exe and probe.dll work together. Menus, list views and icons can be read only by the process
/// that owns them; so the observer hooks a window's thread (WH_CALLWNDPROC), which brings probe.dll into that
/// process, and sends the window a message of its own. The hook sees the message before the window does, and
/// writes what it finds as JSON to memory that both share.
namespace corvane::test {

inline constexpr wchar_t kProbeLibrary[] = L"probe.dll";
inline constexpr char kProbeProcedure[] = "ProbeProcedure";
/// Name of the registered message. Its first word is the ProbeQuestion.
inline constexpr wchar_t kProbeMessage[] = L"CorvaneProbe";
/// kInput is answered at once; describing all windows takes its time, and whoever waits asks often.
enum class ProbeQuestion : std::uint8_t { kWindows, kInput };
/// Name of the shared memory.
inline constexpr wchar_t kProbeMemory[] = L"CorvaneProbeMemory";

/// What the memory begins with; `size` bytes of UTF-8 JSON follow.
struct ProbeHeader {
    std::uint32_t answered;  ///< 0 when a question is asked, 1 when it has been answered.
    std::uint32_t size;
};
inline constexpr std::size_t kProbeMemorySize = 4U << 20U;

}  // namespace corvane::test
