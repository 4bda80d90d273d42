// Measures the window program from outside, as the X server sees it.
//
//   bench_window start RUNS TITLE PROGRAM TITLE PROGRAM
// starts two programs in turn and takes the time from the start of the process until its window is on the
// screen and answers events (_NET_WM_PING, Extended Window Manager Hints), and what memory it has then.
//
//   bench_window refresh RUNS TITLE PROGRAM
// starts one program and presses F5 in its window: the time until the window answers events again, and the
// processor time that it has used when it has painted (/proc/PID/schedstat).
//
// Prints medians: milliseconds, and VmRSS in KiB. Run it on a display of its own.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kPatienceMilliseconds = 20000;
/// Long enough for what a program puts off until it is idle.
constexpr auto kSettle = std::chrono::milliseconds(1500);
/// Long enough for painting, shorter than the time between two ticks of the traffic monitor.
constexpr auto kPainted = std::chrono::milliseconds(300);

struct Program {
    std::string title;
    std::string path;
    std::vector<double> milliseconds;
    std::vector<long> kibibytes;
};

[[noreturn]] void Fail(const std::string& words) {
    std::fprintf(stderr, "bench_window: %s\n", words.c_str());
    std::exit(1);
}

class Watcher {
 public:
    Watcher() : display_(XOpenDisplay(nullptr)) {
        if (display_ == nullptr) Fail("there is no display");
        root_ = DefaultRootWindow(display_);
        protocols_ = XInternAtom(display_, "WM_PROTOCOLS", False);
        ping_ = XInternAtom(display_, "_NET_WM_PING", False);
        // A window may be gone by the time it is looked at.
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        clients_ = XInternAtom(display_, "_NET_CLIENT_LIST", False);
        XSelectInput(display_, root_, SubstructureNotifyMask | PropertyChangeMask);
        XSync(display_, False);
    }
    ~Watcher() { XCloseDisplay(display_); }
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    void ForgetEvents() { XSync(display_, True); }

    /// Waits until a window with this title has been mapped and has answered a ping.
    void AwaitWindow(const std::string& title) { AwaitAnswer(title); }

    /// Presses F5 in the window that answered last and waits until it answers again.
    void PressF5() {
        XSetInputFocus(display_, window_, RevertToParent, CurrentTime);
        const KeyCode key = XKeysymToKeycode(display_, XK_F5);
        XTestFakeKeyEvent(display_, key, True, CurrentTime);
        XTestFakeKeyEvent(display_, key, False, CurrentTime);
        XSync(display_, False);
        Ping(window_);
        AwaitAnswer("");
    }

 private:
    void AwaitAnswer(const std::string& title) {
        const auto deadline = Clock::now() + std::chrono::milliseconds(kPatienceMilliseconds);
        while (Clock::now() < deadline) {
            XFlush(display_);
            pollfd watched{ConnectionNumber(display_), POLLIN, 0};
            if (XPending(display_) == 0 && poll(&watched, 1, kPatienceMilliseconds) <= 0) break;
            while (XPending(display_) > 0) {
                XEvent event;
                XNextEvent(display_, &event);
                // Without a window manager, and with one, which maps a frame around the window.
                if (event.type == MapNotify && TitleOf(event.xmap.window) == title) Ping(event.xmap.window);
                if (event.type == PropertyNotify && event.xproperty.atom == clients_) PingClient(title);
                if (event.type == ClientMessage && event.xclient.message_type == protocols_) return;
            }
        }
        Fail("the window '" + title + "' does not answer");
    }
    std::string TitleOf(Window window) {
        char* name = nullptr;
        if (XFetchName(display_, window, &name) == 0 || name == nullptr) return {};
        const std::string title = name;
        XFree(name);
        return title;
    }
    void PingClient(const std::string& title) {
        Atom type = 0;
        int format = 0;
        unsigned long count = 0;
        unsigned long rest = 0;
        unsigned char* data = nullptr;
        const int done = XGetWindowProperty(display_, root_, clients_, 0, 1024, False, XA_WINDOW, &type,
                                            &format, &count, &rest, &data);
        if (done != Success || data == nullptr) return;
        const auto* const windows = reinterpret_cast<const Window*>(data);
        for (unsigned long i = 0; i < count; ++i) {
            if (TitleOf(windows[i]) == title) Ping(windows[i]);
        }
        XFree(data);
    }
    void Ping(Window window) {
        window_ = window;
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = protocols_;
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(ping_);
        event.xclient.data.l[1] = 1;
        event.xclient.data.l[2] = static_cast<long>(window);
        XSendEvent(display_, window, False, NoEventMask, &event);
    }

    Display* display_;
    Window root_ = 0;
    Window window_ = 0;
    Atom protocols_ = 0;
    Atom ping_ = 0;
    Atom clients_ = 0;
};

long MemoryOf(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) return std::atol(line.c_str() + 6);
    }
    Fail("no VmRSS of a program that was started");
}

/// Processor time that a process has used, in milliseconds.
double ProcessorTimeOf(pid_t process) {
    std::ifstream schedstat("/proc/" + std::to_string(process) + "/schedstat");
    double nanoseconds = 0;
    if (!(schedstat >> nanoseconds)) Fail("no schedstat of a program that was started");
    return nanoseconds / 1e6;
}

pid_t Start(std::string& path) {
    char* arguments[] = {path.data(), nullptr};
    pid_t child = 0;
    if (posix_spawn(&child, path.c_str(), nullptr, nullptr, arguments, environ) != 0) {
        Fail("'" + path + "' could not be started");
    }
    return child;
}

void End(pid_t child) {
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
}

void RunOnce(Watcher& watcher, Program& program) {
    watcher.ForgetEvents();
    const auto start = Clock::now();
    const pid_t child = Start(program.path);
    watcher.AwaitWindow(program.title);
    program.milliseconds.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    std::this_thread::sleep_for(kSettle);
    program.kibibytes.push_back(MemoryOf(child));
    End(child);
}

template <class Number>
Number Median(std::vector<Number> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return numbers.at(numbers.size() / 2);
}

void CompareStarts(int runs, Program ours, Program peer) {
    Watcher watcher;
    // One of each first, so that the files are in memory for both.
    for (int run = 0; run <= runs; ++run) {
        if (run == 1) {
            for (Program* const program : {&ours, &peer}) *program = {program->title, program->path, {}, {}};
        }
        RunOnce(watcher, ours);
        RunOnce(watcher, peer);
    }
    for (const Program* const program : {&ours, &peer}) {
        std::printf("%-20s %8.1f ms %8ld KiB\n", program->title.c_str(), Median(program->milliseconds),
                    Median(program->kibibytes));
    }
    std::printf("ratio %.2f, %ld KiB more\n", Median(ours.milliseconds) / Median(peer.milliseconds),
                Median(ours.kibibytes) - Median(peer.kibibytes));
}

void MeasureRefresh(int runs, Program program) {
    Watcher watcher;
    const pid_t child = Start(program.path);
    watcher.AwaitWindow(program.title);
    std::this_thread::sleep_for(kSettle);
    std::vector<double> processor;
    for (int run = 0; run < runs; ++run) {
        const double before = ProcessorTimeOf(child);
        const auto start = Clock::now();
        watcher.PressF5();
        program.milliseconds.push_back(
            std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        std::this_thread::sleep_for(kPainted);
        processor.push_back(ProcessorTimeOf(child) - before);
    }
    End(child);
    std::printf("refresh: answers after %.1f ms, %.1f ms of processor time with the painting\n",
                Median(program.milliseconds), Median(processor));
}

}  // namespace

int main(int count, char** arguments) {
    const std::string mode = count > 2 ? arguments[1] : "";
    const int runs = count > 2 ? std::atoi(arguments[2]) : 0;
    if (runs >= 1 && mode == "start" && count == 7) {
        CompareStarts(runs, {arguments[3], arguments[4], {}, {}}, {arguments[5], arguments[6], {}, {}});
    } else if (runs >= 1 && mode == "refresh" && count == 5) {
        MeasureRefresh(runs, {arguments[3], arguments[4], {}, {}});
    } else {
        Fail("usage: see the head of its source");
    }
    return 0;
}
