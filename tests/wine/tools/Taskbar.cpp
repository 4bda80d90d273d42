/// taskbar.exe: a taskbar that shows nothing and remembers everything. Programs' calls of Shell_NotifyIcon
/// come to it instead of to the one that Wine's desktop has: it lies above that, and the uppermost is called.
/// It is asked and told what to do on standard input, one question per line, its parts separated by tabs; one
/// line of JSON on standard output answers each, and one comes by itself as soon as programs can find it. It
/// ends with its input, and with exit code 3 when it gets no window.
///
///   icons           the icons that it has (TaskbarIcons.h)
///   diary LINE      what programs called it for, from this line on
///   picture NUMBER  a picture that an icon has or had
///   place           {"first": whether programs find it and not another, "others": how many more there are}
///   send CODE       posts the icon's message with this code to the icon's window, as a taskbar does for what
///                   the mouse does there; there must be one icon
///   restart         forgets all icons and tells every program that there is a new taskbar

#include <iostream>
#include <string>
#include <thread>

#include "tests/wine/tools/Json.h"
#include "tests/wine/tools/System.h"
#include "tests/wine/tools/TaskbarIcons.h"

namespace corvane::test {

namespace {

constexpr wchar_t kTaskbarClass[] = L"Shell_TrayWnd";
/// From the thread that reads to the taskbar's window; with it goes an Exchange.
constexpr UINT kQuestion = WM_APP;

/// Exit code when Wine gives the taskbar no window.
constexpr int kNoWindow = 3;

struct Exchange {
    std::string Line;
    Json Answer;
};

Json DescribePlace(HWND taskbar) {
    const HWND first = FindWindowExW(nullptr, nullptr, kTaskbarClass, nullptr);
    int all = 0;
    for (HWND found = first; found != nullptr; ++all) {
        found = FindWindowExW(nullptr, found, kTaskbarClass, nullptr);
    }
    return Json::object({{"first", first == taskbar}, {"others", all - 1}});
}

Json Send(const TaskbarIcons& icons, LPARAM code) {
    if (icons.All().size() != 1) return Error("there are " + std::to_string(icons.All().size()) + " icons");
    const TaskbarIcon& icon = icons.All().front();
    if (icon.Message == 0) return Error("the icon wants no messages");
    if (PostMessageW(icon.Window, icon.Message, icon.Id, code) != FALSE) return nullptr;
    return Error("code " + std::to_string(GetLastError()));
}

Json Restart(TaskbarIcons& icons) {
    icons.Forget();
    const UINT message = RegisterWindowMessageW(L"TaskbarCreated");
    if (PostMessageW(HWND_BROADCAST, message, 0, 0) != FALSE) return nullptr;
    return Error("code " + std::to_string(GetLastError()));
}

Json Answer(HWND taskbar, TaskbarIcons& icons, const std::string& line) {
    const std::size_t end = line.find('\t');
    const std::string question = line.substr(0, end);
    if (question == "icons") return icons.Describe();
    if (question == "place") return DescribePlace(taskbar);
    if (question == "restart") return Restart(icons);
    if (end == std::string::npos) return Error("unknown question " + line);
    const int number = std::stoi(line.substr(end + 1));
    if (question == "diary") return icons.Diary(static_cast<std::size_t>(number));
    if (question == "picture") return icons.Picture(static_cast<std::size_t>(number));
    if (question == "send") return Send(icons, number);
    return Error("unknown question " + line);
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    static TaskbarIcons icons;
    switch (message) {
        case WM_COPYDATA: {
            const auto& call = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
            return icons.Take(call.dwData, call.lpData, call.cbData) ? TRUE : FALSE;
        }
        case kQuestion: {
            auto& exchange = *reinterpret_cast<Exchange*>(lParam);
            exchange.Answer = Answer(window, icons, exchange.Line);
            return 0;
        }
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcW(window, message, wParam, lParam);
    }
}

void AnswerLines(HWND taskbar) {
    Exchange exchange;
    while (std::getline(std::cin, exchange.Line)) {
        if (!exchange.Line.empty() && exchange.Line.back() == '\r') exchange.Line.pop_back();
        SendMessageW(taskbar, kQuestion, 0, reinterpret_cast<LPARAM>(&exchange));
        std::cout << OneLine(exchange.Answer) << std::endl;
    }
    PostMessageW(taskbar, WM_CLOSE, 0, 0);
}

}  // namespace

}  // namespace corvane::test

int main() {
    using namespace corvane::test;
    WNDCLASSW info{};
    info.lpfnWndProc = Procedure;
    info.lpszClassName = kTaskbarClass;
    RegisterClassW(&info);
    // Never shown. Wine's own taskbar is not among the topmost windows as long as it has no icons.
    const HWND taskbar = CreateWindowExW(WS_EX_TOPMOST | WS_EX_NOACTIVATE | WS_EX_TOOLWINDOW, kTaskbarClass,
                                         L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    if (taskbar == nullptr) return kNoWindow;
    std::cout << OneLine(nullptr) << std::endl;
    std::thread reader(AnswerLines, taskbar);
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    reader.join();
    return 0;
}
