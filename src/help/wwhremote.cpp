// The running browser: is one there, and showing a URL in it.
#include <X11/Xlib.h>

#include <cstring>

#include "../core/errorlist.h"
#include "wwhplatform.h"
#include "wwhwait_impl.h"

namespace {

_XDisplay* asOpaque(Display* display) { return reinterpret_cast<_XDisplay*>(display); }

// Our own connection to the display named by DISPLAY, closed at the end of
// the request (the window and the lock live on the server, not in it).
class Connection {
public:
    Connection() : display_(XOpenDisplay("")) {}
    ~Connection()
    {
        if (display_ != nullptr)
            XCloseDisplay(display_);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    Display* get() const { return display_; }

private:
    Display* display_;
};

}  // namespace

int WWHelp_Platform_CheckBrowserRunning(WWHelp_BrowserInfo* record)
{
    if (record == nullptr || !record->remoteControl)
        return -1;
    Connection connection;
    if (connection.get() == nullptr)
        return -1;
    const Atom version = XInternAtom(connection.get(), "_MOZILLA_VERSION", False);
    return private_WWHelp_Platform_FindMozillaWindow(asOpaque(connection.get()), version) != 0 ? 0 : -1;
}

int WWHelp_Platform_SendURL(WWHelp_BrowserInfo* record, const char* url, long length)
{
    if (record == nullptr || !record->remoteControl || url == nullptr || length <= 0)
        return -1;
    if (length > WWHelp_MaxURL) {
        addError(1527) << length << WWHelp_MaxURL;
        return -1;
    }
    char command[WWHelp_MaxURL + 16];
    std::memcpy(command, "openURL(", 8);
    std::memcpy(command + 8, url, static_cast<size_t>(length));
    std::memcpy(command + 8 + length, ")", 2);

    Connection connection;
    Display* d = connection.get();
    if (d == nullptr)
        return -1;
    const Atom version = XInternAtom(d, "_MOZILLA_VERSION", False);
    const Atom lock = XInternAtom(d, "_MOZILLA_LOCK", False);
    const Atom commandAtom = XInternAtom(d, "_MOZILLA_COMMAND", False);
    const Atom response = XInternAtom(d, "_MOZILLA_RESPONSE", False);
    const Window window = private_WWHelp_Platform_FindMozillaWindow(asOpaque(d), version);
    if (window == 0)
        return -1;
    if (private_WWHelp_Platform_LockMozillaWindow(asOpaque(d), window, lock, record->processSignature) != 0)
        return -1;
    const int sent = private_WWHelp_Platform_SendMozillaRemoteCommand(asOpaque(d), window, commandAtom, response,
                                                                      record->processSignature, command);
    private_WWHelp_Platform_UnlockMozillaWindow(asOpaque(d), window, lock, record->processSignature);
    return sent;
}
