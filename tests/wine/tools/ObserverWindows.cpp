#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "tests/wine/tools/Observer.h"
#include "tests/wine/tools/Probe.h"
#include "tests/wine/tools/System.h"

namespace corvane::test {

namespace {

constexpr UINT kPatienceMilliseconds = 1000;

/// File name of the program that a process runs, in lower case.
std::string ProgramName(DWORD process) {
    const HANDLE handle = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process);
    if (handle == nullptr) return {};
    std::wstring path(MAX_PATH, L'\0');
    auto size = static_cast<DWORD>(path.size());
    if (QueryFullProcessImageNameW(handle, 0, path.data(), &size) == FALSE) size = 0;
    CloseHandle(handle);
    path.resize(size);
    std::string name = Utf8(path.substr(path.find_last_of(L'\\') + 1));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return name;
}

struct Search {
    std::string program;
    std::map<DWORD, std::string> names;           ///< By process.
    std::vector<std::pair<DWORD, HWND>> threads;  ///< Threads with visible windows, and one of each.
};

BOOL CALLBACK NoteThread(HWND window, LPARAM data) {
    Search& search = *reinterpret_cast<Search*>(data);
    DWORD process = 0;
    const DWORD thread = GetWindowThreadProcessId(window, &process);
    if (IsWindowVisible(window) == FALSE) return TRUE;
    if (search.names.count(process) == 0) search.names[process] = ProgramName(process);
    if (search.names[process] != search.program) return TRUE;
    for (const auto& [known, first] : search.threads) {
        if (known == thread) return TRUE;
    }
    search.threads.emplace_back(thread, window);
    return TRUE;
}

/// The memory in which probe.dll answers.
class ProbeMemory {
 public:
    ProbeMemory()
        : memory_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kProbeMemorySize,
                                     kProbeMemory)),
          place_(MapViewOfFile(memory_, FILE_MAP_ALL_ACCESS, 0, 0, kProbeMemorySize)) {}
    ~ProbeMemory() {
        UnmapViewOfFile(place_);
        CloseHandle(memory_);
    }
    ProbeMemory(const ProbeMemory&) = delete;
    ProbeMemory& operator=(const ProbeMemory&) = delete;

    void Clear() { std::memset(place_, 0, sizeof(ProbeHeader)); }

    /// The answer, or nothing when there is none.
    [[nodiscard]] std::string Text() const {
        ProbeHeader header{};
        std::memcpy(&header, place_, sizeof header);
        if (header.answered == 0) return {};
        return {static_cast<const char*>(place_) + sizeof header, header.size};
    }

 private:
    HANDLE memory_;
    void* place_;
};

/// A thread's answer (ProbeWindows.h) as JSON text, or nothing when it does not answer.
std::string AskThread(DWORD thread, HWND window, ProbeQuestion question) {
    static ProbeMemory memory;
    static const HMODULE library = LoadLibraryW(kProbeLibrary);
    static const auto procedure =
        reinterpret_cast<HOOKPROC>(reinterpret_cast<void*>(GetProcAddress(library, kProbeProcedure)));
    static const UINT message = RegisterWindowMessageW(kProbeMessage);
    memory.Clear();
    const HHOOK hook = SetWindowsHookExW(WH_CALLWNDPROC, procedure, library, thread);
    if (hook == nullptr) return {};
    DWORD_PTR result = 0;
    SendMessageTimeoutW(window, message, static_cast<WPARAM>(question), 0, SMTO_ABORTIFHUNG,
                        kPatienceMilliseconds, &result);
    UnhookWindowsHookEx(hook);
    return memory.Text();
}

/// The answers of all threads of a program, as a JSON array.
Json AskProgram(const Arguments& arguments, ProbeQuestion question) {
    if (arguments.size() != 1) return Error("the question needs the name of a program");
    Search search;
    search.program = arguments.front();
    EnumWindows(NoteThread, reinterpret_cast<LPARAM>(&search));
    Json answers = Json::array();
    for (const auto& [thread, window] : search.threads) {
        const std::string answer = AskThread(thread, window, question);
        if (answer.empty()) return Error("the program is busy");
        answers.push_back(Json::parse(answer));
    }
    return answers;
}

}  // namespace

Json Windows(const Arguments& arguments) { return AskProgram(arguments, ProbeQuestion::kWindows); }
Json Input(const Arguments& arguments) { return AskProgram(arguments, ProbeQuestion::kInput); }

}  // namespace corvane::test
