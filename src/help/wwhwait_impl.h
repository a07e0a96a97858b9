/*
 * Bounded waits of the browser layer (internal).
 *
 * Every wait of this layer, on the X server or on a child, ends at a
 * deadline taken from the wait limit (private_WWHelp_Platform_SetWaitLimit).
 * WWHelpXErrorTrap turns X protocol errors on one display into a count
 * instead of Xlib's default, which ends the process: a browser window may go
 * away at any moment between two requests.  The trap is process-wide while
 * it lives (Xlib has one handler); errors of other displays go on to the
 * handler that was there before.  Nothing here owns memory.
 */
#ifndef HNSYB_HELP_WWHWAIT_IMPL_H
#define HNSYB_HELP_WWHWAIT_IMPL_H

#include <X11/Xlib.h>

#include <chrono>

namespace wwhelp {

using Clock = std::chrono::steady_clock;

// Now plus the wait limit.
Clock::time_point deadline();
// Milliseconds left until `end`, 0 when past.
int millisecondsLeft(Clock::time_point end);

// The next event of `display` before `end`: 1 with *event set, 0 at the
// deadline, -1 when the connection fails.
int nextEvent(Display* display, XEvent* event, Clock::time_point end);

class XErrorTrap {
public:
    explicit XErrorTrap(Display* display);
    ~XErrorTrap();
    XErrorTrap(const XErrorTrap&) = delete;
    XErrorTrap& operator=(const XErrorTrap&) = delete;
    // Errors of the trapped display since the trap was set (after an
    // XSync that fetches the outstanding ones when sync is true).
    unsigned long errors(bool sync = false) const;

private:
    Display* display_;
    Display* previousDisplay_;
    XErrorHandler previousHandler_;
    unsigned long start_;
};

}  // namespace wwhelp

#endif
