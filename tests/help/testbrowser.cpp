// A stand-in for a remote-controllable web browser, for the help tests.
//
// It owns a top-level window marked with _MOZILLA_VERSION and follows the
// property protocol from the browser's side: it answers each command set in
// _MOZILLA_COMMAND by setting _MOZILLA_RESPONSE, and writes what it sees to
// a log, one line per event:
//   locked <value>      _MOZILLA_LOCK was set
//   unlocked            _MOZILLA_LOCK was deleted
//   command <text>      a command arrived (the lock value at that moment follows
//   holder <value>      as its own line, "holder -" when nobody held the lock)
//   released            the foreign lock of --hold-lock was let go
// Options:
//   --log FILE          the log (required)
//   --respond A,B,...   responses to each command in turn (default 200); a
//                       pause of 200 ms lies between two of them
//   --silent            never answer
//   --hold-lock MS      start with a foreign lock "pid0@elsewhere" and delete
//                       it after MS milliseconds
//   --die MS            destroy the window after MS milliseconds and end
//   --frame             put the window in a frame window, as a window manager
//                       would, and mark it with WM_STATE
// It prints "ready <window id>" on standard output once the window is there,
// and ends on SIGTERM or after 60 seconds.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <poll.h>
#include <signal.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
volatile sig_atomic_t gStop = 0;
FILE* gLog = nullptr;

void logLine(const std::string& line)
{
    std::fprintf(gLog, "%s\n", line.c_str());
    std::fflush(gLog);
}

std::string readProperty(Display* d, Window w, Atom a, Bool remove)
{
    Atom type = None;
    int format = 0;
    unsigned long items = 0, after = 0;
    unsigned char* data = nullptr;
    std::string value = "-";
    if (XGetWindowProperty(d, w, a, 0, 65536, remove, XA_STRING, &type, &format, &items, &after, &data) ==
            Success && type != None && data != nullptr)
        value.assign(reinterpret_cast<char*>(data), items);
    if (data != nullptr)
        XFree(data);
    return value;
}

void setString(Display* d, Window w, Atom a, const std::string& value)
{
    XChangeProperty(d, w, a, XA_STRING, 8, PropModeReplace, reinterpret_cast<const unsigned char*>(value.data()),
                    static_cast<int>(value.size()));
    XFlush(d);
}

std::vector<std::string> split(const std::string& text)
{
    std::vector<std::string> parts;
    size_t start = 0;
    for (;;) {
        const size_t comma = text.find(',', start);
        parts.push_back(text.substr(start, comma - start));
        if (comma == std::string::npos)
            return parts;
        start = comma + 1;
    }
}

}  // namespace

int main(int argc, char** argv)
{
    const char* logPath = nullptr;
    std::vector<std::string> responses{"200"};
    bool silent = false, frame = false;
    long holdMs = -1, dieMs = -1;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const char* next = i + 1 < argc ? argv[i + 1] : "";
        if (arg == "--log") logPath = next, ++i;
        else if (arg == "--respond") responses = split(next), ++i;
        else if (arg == "--silent") silent = true;
        else if (arg == "--hold-lock") holdMs = std::atol(next), ++i;
        else if (arg == "--die") dieMs = std::atol(next), ++i;
        else if (arg == "--frame") frame = true;
        else {
            std::fprintf(stderr, "testbrowser: unknown option %s\n", arg.c_str());
            return 2;
        }
    }
    if (logPath == nullptr || (gLog = std::fopen(logPath, "a")) == nullptr) {
        std::fprintf(stderr, "testbrowser: --log FILE is needed\n");
        return 2;
    }
    signal(SIGTERM, [](int) { gStop = 1; });

    Display* d = XOpenDisplay(nullptr);
    if (d == nullptr) {
        std::fprintf(stderr, "testbrowser: no display\n");
        return 1;
    }
    const Atom version = XInternAtom(d, "_MOZILLA_VERSION", False);
    const Atom lock = XInternAtom(d, "_MOZILLA_LOCK", False);
    const Atom command = XInternAtom(d, "_MOZILLA_COMMAND", False);
    const Atom response = XInternAtom(d, "_MOZILLA_RESPONSE", False);
    const Window root = DefaultRootWindow(d);
    Window parent = root;
    if (frame)
        parent = XCreateSimpleWindow(d, root, 0, 0, 200, 150, 0, 0, 0);
    const Window w = XCreateSimpleWindow(d, parent, 0, 0, 200, 150, 0, 0, 0);
    if (frame) {
        const Atom wmState = XInternAtom(d, "WM_STATE", False);
        const long state[2] = {1, None};  // NormalState, no icon
        XChangeProperty(d, w, wmState, wmState, 32, PropModeReplace, reinterpret_cast<const unsigned char*>(state), 2);
    }
    XSelectInput(d, w, PropertyChangeMask | StructureNotifyMask);
    setString(d, w, version, "5.0");
    if (holdMs >= 0)
        setString(d, w, lock, "pid0@elsewhere");
    XMapWindow(d, w);
    if (frame)
        XMapWindow(d, parent);
    XSync(d, False);
    std::printf("ready %lu\n", static_cast<unsigned long>(w));
    std::fflush(stdout);

    const auto start = Clock::now();
    auto elapsed = [&] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    };
    while (!gStop && elapsed() < 60000) {
        if (holdMs >= 0 && elapsed() >= holdMs) {
            holdMs = -1;
            logLine("released");
            XDeleteProperty(d, w, lock);
            XFlush(d);
        }
        if (dieMs >= 0 && elapsed() >= dieMs) {
            logLine("destroyed");
            XDestroyWindow(d, w);
            XSync(d, False);
            break;
        }
        while (XPending(d) > 0) {
            XEvent event;
            XNextEvent(d, &event);
            if (event.type != PropertyNotify || event.xproperty.window != w)
                continue;
            const XPropertyEvent& p = event.xproperty;
            if (p.atom == lock) {
                logLine(p.state == PropertyDelete ? std::string("unlocked")
                                                  : "locked " + readProperty(d, w, lock, False));
            } else if (p.atom == command && p.state == PropertyNewValue) {
                logLine("command " + readProperty(d, w, command, True));
                logLine("holder " + readProperty(d, w, lock, False));
                if (silent)
                    continue;
                for (size_t i = 0; i < responses.size(); ++i) {
                    if (i > 0)
                        std::this_thread::sleep_for(std::chrono::milliseconds(200));
                    setString(d, w, response, responses[i]);
                }
            }
        }
        pollfd pfd{ConnectionNumber(d), POLLIN, 0};
        poll(&pfd, 1, 20);
    }
    XCloseDisplay(d);
    std::fclose(gLog);
    return 0;
}
