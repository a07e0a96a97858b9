// The window property protocol of the remote-control browsers, over Xlib.
//
// Lock:    create _MOZILLA_LOCK = signature under a server grab; if another
//          client holds it, wait for its PropertyDelete and try again.
// Command: set _MOZILLA_COMMAND, wait for PropertyNewValue of
//          _MOZILLA_RESPONSE: "200..." done, "1..." interim, else failed.
// Unlock:  delete the lock if it still carries our signature.
// Every wait ends at the wait limit; a window that is destroyed, or that an
// X error shows to be gone, ends it with -1.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xmu/WinUtil.h>

#include <cstring>

#include "wwhplatform.h"
#include "wwhwait_impl.h"

namespace {

constexpr long kEventMask = PropertyChangeMask | StructureNotifyMask;  // 0x420000

Display* asDisplay(_XDisplay* display) { return reinterpret_cast<Display*>(display); }

// 1 when the property holds a value, 0 when it has none, -1 when it cannot
// be read (the window is gone).  Up to `size` - 1 bytes of the value go to
// `buffer` when it is given.
int readProperty(Display* display, Window window, Atom atom, Bool remove, char* buffer, long size)
{
    wwhelp::XErrorTrap trap(display);
    Atom type = None;
    int format = 0;
    unsigned long items = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    const int status = XGetWindowProperty(display, window, atom, 0, 16384, remove, XA_STRING, &type, &format,
                                          &items, &after, &data);
    if (status != Success || trap.errors() != 0) {
        if (data != nullptr)
            XFree(data);
        return -1;
    }
    const int result = type != None ? 1 : 0;
    if (result == 1 && buffer != nullptr && size > 1 && data != nullptr)
        std::strncpy(buffer, reinterpret_cast<const char*>(data), static_cast<size_t>(size - 1));
    if (data != nullptr)
        XFree(data);
    return result;
}

}  // namespace

int private_WWHelp_Platform_WindowPropertyExists(_XDisplay* display, unsigned long window, unsigned long atom)
{
    if (display == nullptr)
        return -1;
    return readProperty(asDisplay(display), window, atom, False, nullptr, 0) == 1 ? 0 : -1;
}

int private_WWHelp_Platform_WindowPropertyGet(_XDisplay* display, unsigned long window, unsigned long atom,
                                              char* buffer, long size)
{
    if (display == nullptr || buffer == nullptr || size <= 1)
        return -1;
    return readProperty(asDisplay(display), window, atom, False, buffer, size) == 1 ? 0 : -1;
}

int private_WWHelp_Platform_WindowPropertyCreate(_XDisplay* display, unsigned long window, unsigned long atom,
                                                 const char* value)
{
    if (display == nullptr || value == nullptr)
        return -1;
    Display* d = asDisplay(display);
    // A window that cannot be read is not one to write to either.
    if (readProperty(d, window, atom, False, nullptr, 0) != 0)
        return -1;
    wwhelp::XErrorTrap trap(d);
    XChangeProperty(d, window, atom, XA_STRING, 8, PropModeReplace, reinterpret_cast<const unsigned char*>(value),
                    static_cast<int>(std::strlen(value)));
    return trap.errors(true) == 0 ? 0 : -1;
}

int private_WWHelp_Platform_WindowPropertyDestroy(_XDisplay* display, unsigned long window, unsigned long atom)
{
    if (display == nullptr)
        return -1;
    return readProperty(asDisplay(display), window, atom, True, nullptr, 0) >= 0 ? 0 : -1;
}

int private_WWHelp_Platform_WaitForPropertyDelete(_XDisplay* display, unsigned long window, unsigned long atom)
{
    if (display == nullptr)
        return -1;
    Display* d = asDisplay(display);
    const auto end = wwhelp::deadline();
    {
        wwhelp::XErrorTrap trap(d);
        XSelectInput(d, window, kEventMask);
        if (trap.errors(true) != 0)
            return -1;
    }
    // The holder may have let go between our attempt and the selection, in
    // which case no event is coming: look once more now that we listen.
    const int state = readProperty(d, window, atom, False, nullptr, 0);
    if (state != 1)
        return state == 0 ? 0 : -1;
    XEvent event;
    while (wwhelp::nextEvent(d, &event, end) == 1) {
        if (event.type == DestroyNotify && event.xdestroywindow.window == window)
            return -1;
        if (event.type == PropertyNotify && event.xproperty.window == window &&
            event.xproperty.state == PropertyDelete && event.xproperty.atom == atom)
            return 0;
    }
    return -1;  // the wait limit, or the connection failed
}

unsigned long private_WWHelp_Platform_FindMozillaWindow(_XDisplay* display, unsigned long versionAtom)
{
    if (display == nullptr)
        return 0;
    Display* d = asDisplay(display);
    wwhelp::XErrorTrap trap(d);
    const Window root = RootWindow(d, DefaultScreen(d));
    Window rootReturned = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    if (XQueryTree(d, root, &rootReturned, &parent, &children, &count) == 0)
        return 0;
    Window found = 0;
    if (rootReturned == root && parent == 0) {
        // Children in stacking order, bottom first; each through the client
        // window a window manager may have wrapped in a frame.
        for (unsigned int i = 0; i < count && found == 0; ++i) {
            const Window client = XmuClientWindow(d, children[i]);
            if (readProperty(d, client, versionAtom, False, nullptr, 0) == 1)
                found = client;
        }
    }
    if (children != nullptr)
        XFree(children);
    return found;
}

int private_WWHelp_Platform_LockMozillaWindow(_XDisplay* display, unsigned long window, unsigned long lockAtom,
                                              const char* signature)
{
    if (display == nullptr || signature == nullptr)
        return -1;
    Display* d = asDisplay(display);
    const auto end = wwhelp::deadline();
    for (;;) {
        XGrabServer(d);
        const int created = private_WWHelp_Platform_WindowPropertyCreate(display, window, lockAtom, signature);
        XUngrabServer(d);
        XSync(d, False);
        if (created == 0)
            return 0;
        // Not created: held by another, or the window is gone (the wait
        // finds that out).  The whole lock takes at most the wait limit.
        if (wwhelp::millisecondsLeft(end) == 0 ||
            private_WWHelp_Platform_WaitForPropertyDelete(display, window, lockAtom) != 0)
            return -1;
    }
}

int private_WWHelp_Platform_UnlockMozillaWindow(_XDisplay* display, unsigned long window, unsigned long lockAtom,
                                                const char* signature)
{
    if (display == nullptr || signature == nullptr)
        return -1;
    char holder[256] = {};
    const int read = private_WWHelp_Platform_WindowPropertyGet(display, window, lockAtom, holder, sizeof holder);
    if (read != 0)
        return read;
    if (const int differs = std::strcmp(holder, signature))
        return differs;  // another client's lock: not ours to remove
    return private_WWHelp_Platform_WindowPropertyDestroy(display, window, lockAtom);
}

int private_WWHelp_Platform_SendMozillaRemoteCommand(_XDisplay* display, unsigned long window,
                                                     unsigned long commandAtom, unsigned long responseAtom,
                                                     const char* signature, const char* command)
{
    if (display == nullptr || command == nullptr)
        return -1;
    Display* d = asDisplay(display);
    const auto end = wwhelp::deadline();
    {
        wwhelp::XErrorTrap trap(d);
        XSelectInput(d, window, kEventMask);
        XChangeProperty(d, window, commandAtom, XA_STRING, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(command), static_cast<int>(std::strlen(command)));
        if (trap.errors(true) != 0)
            return -1;
    }
    XEvent event;
    while (wwhelp::nextEvent(d, &event, end) == 1) {
        if (event.type == DestroyNotify && event.xdestroywindow.window == window)
            return -1;
        if (event.type != PropertyNotify || event.xproperty.window != window ||
            event.xproperty.state != PropertyNewValue || event.xproperty.atom != responseAtom)
            continue;
        char response[257] = {};
        if (private_WWHelp_Platform_WindowPropertyGet(display, window, responseAtom, response, 257) != 0)
            return -1;
        if (std::strncmp(response, "200", 3) == 0)
            return 0;
        if (response[0] != '1')
            return -1;
        // "1xx": the browser is still at it; wait on.
    }
    return -1;
}
