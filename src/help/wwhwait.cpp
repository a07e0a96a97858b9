// Deadlines, the bounded event wait and the X error trap of the browser layer.
#include <poll.h>

#include <atomic>
#include <cerrno>

#include "wwhplatform.h"
#include "wwhwait_impl.h"

namespace {

std::atomic<long> gWaitLimit{10000};
std::atomic<unsigned long> gErrors{0};
Display* gTrapped = nullptr;
XErrorHandler gForward = nullptr;

int countError(Display* display, XErrorEvent* event)
{
    if (display != gTrapped && gForward != nullptr)
        return gForward(display, event);
    gErrors.fetch_add(1);
    return 0;
}

}  // namespace

long private_WWHelp_Platform_SetWaitLimit(long milliseconds)
{
    return gWaitLimit.exchange(milliseconds < 1 ? 1 : milliseconds);
}

namespace wwhelp {

Clock::time_point deadline() { return Clock::now() + std::chrono::milliseconds(gWaitLimit.load()); }

int millisecondsLeft(Clock::time_point end)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    return left <= 0 ? 0 : static_cast<int>(left);
}

int nextEvent(Display* display, XEvent* event, Clock::time_point end)
{
    // XPending flushes our requests and reads what the server has sent;
    // only when nothing is queued do we sleep on the connection.
    while (XPending(display) == 0) {
        const int left = millisecondsLeft(end);
        if (left == 0)
            return 0;
        pollfd p{ConnectionNumber(display), POLLIN, 0};
        const int r = poll(&p, 1, left);
        if (r < 0 && errno != EINTR)
            return -1;
    }
    XNextEvent(display, event);
    return 1;
}

XErrorTrap::XErrorTrap(Display* display)
    : display_(display), previousDisplay_(gTrapped), previousHandler_(nullptr), start_(gErrors.load())
{
    gTrapped = display;
    previousHandler_ = XSetErrorHandler(countError);
    // When traps nest, the outer one's handler is ours: forward to the one
    // that was there before the outermost trap.
    if (previousHandler_ != countError)
        gForward = previousHandler_;
}

XErrorTrap::~XErrorTrap()
{
    XSync(display_, False);
    gTrapped = previousDisplay_;
    XSetErrorHandler(previousHandler_);
}

unsigned long XErrorTrap::errors(bool sync) const
{
    if (sync)
        XSync(display_, False);
    return gErrors.load() - start_;
}

}  // namespace wwhelp
