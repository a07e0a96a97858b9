// The help layer's link to the browser layer: checks, then the platform.
#include <cstdlib>
#include <cstring>

#include "../platform/ram.h"
#include "wwhcomm.h"
#include "wwhelp.h"

// Set while the platform layer is up (WWHelp_Comm_Startup to _Shutdown).
int sgWWHelp_APIInitialized = 0;

int WWHelp_Comm_Startup()
{
    if (WWHelp_Platform_Startup() != 0)
        return -1;
    sgWWHelp_APIInitialized = 1;
    return 0;
}

int WWHelp_Comm_Shutdown()
{
    if (!sgWWHelp_APIInitialized)
        return -1;
    sgWWHelp_APIInitialized = 0;
    return WWHelp_Platform_Shutdown() == 0 ? 0 : -1;
}

int WWHelp_Comm_ClearBrowserInfo(WWHelp_BrowserInfo* record)
{
    if (!sgWWHelp_APIInitialized || record == nullptr)
        return -1;
    // The two flags and the first byte of the path: the path reads as empty.
    std::memset(record, 0, 9);
    record->remoteFlagAccepted = 0;
    return 0;
}

int WWHelp_Comm_NewBrowserInfo(WWHelp_BrowserInfo* record) { return WWHelp_Comm_ClearBrowserInfo(record); }
int WWHelp_Comm_DeleteBrowserInfo(WWHelp_BrowserInfo* record) { return WWHelp_Comm_ClearBrowserInfo(record); }

int WWHelp_Comm_SetDefaultBrowserInfo(WWHelp_BrowserInfo* record)
{
    if (!sgWWHelp_APIInitialized || record == nullptr)
        return -1;
    return WWHelp_Platform_SetDefaultBrowserInfo(record) == 0 ? 0 : -1;
}

char* private_WWHelp_Comm_CopyURL(const char* url, long length)
{
    if (url == nullptr || length <= 0)
        return nullptr;
    char* copy = static_cast<char*>(ramAllocC(static_cast<size_t>(length)));
    if (copy != nullptr)
        std::memcpy(copy, url, static_cast<size_t>(length));
    return copy;
}

int private_WWHelp_Comm_SendURLOrLaunchWithURL(WWHelp_BrowserInfo* record, int mode, const char* url, long length)
{
    if (!sgWWHelp_APIInitialized || record == nullptr || url == nullptr || length <= 0)
        return -1;
    int sent = -1;
    if (WWHelp_Platform_CheckBrowserRunning(record) == 0) {
        char* toSend = nullptr;
        long sendLength = 0;
        if (mode == 1 && record->smartURL && WWHelp_URL_BuildSmartURL(url, length, &toSend, &sendLength) == 0) {
            // the "javascript:" form keeps the open help window
        } else {
            toSend = private_WWHelp_Comm_CopyURL(url, length);
            sendLength = length;
        }
        if (toSend != nullptr) {
            sent = WWHelp_Platform_SendURL(record, toSend, sendLength);
            std::free(toSend);
        }
    }
    if (sent == 0)
        return 0;
    return WWHelp_Platform_LaunchWithURL(record, url, length) == 0 ? 0 : -1;
}

int WWHelp_Comm_DisplayURL(WWHelp_BrowserInfo* record, const char* url, long length)
{
    return private_WWHelp_Comm_SendURLOrLaunchWithURL(record, 0, url, length);
}

int WWHelp_Comm_DisplayHelpURL(WWHelp_BrowserInfo* record, const char* url, long length)
{
    return private_WWHelp_Comm_SendURLOrLaunchWithURL(record, 1, url, length);
}
