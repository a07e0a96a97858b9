// Finding the browser, the process signature and starting a new browser.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "../core/errorlist.h"
#include "wwhplatform.h"

namespace {

// Searched in each directory of PATH, in this order.
const char* const kCandidates[] = {"netscape6", "netscape", "mozilla", "iexplorer", "firefox"};

// Tried in this order when PATH gives nothing.
const char* const kFixedPaths[] = {
    "/opt/netscape/netscape",   "/usr/local/bin/netscape", "/usr/local/netscape/netscape",
    "/usr/bin/netscape",        "/usr/dt/bin/netscape",    "/opt/mozilla/mozilla",
    "/usr/local/bin/mozilla",   "/usr/local/mozilla/mozilla", "/usr/bin/mozilla",
    "/usr/dt/bin/mozilla",      "/usr/local/microsoft/bin/iexplorer", "/usr/bin/firefox",
    "/usr/local/bin/firefox"};

bool findAlongPath(WWHelp_BrowserInfo* record)
{
    const char* path = std::getenv("PATH");
    if (path == nullptr)
        return false;
    // Directories are separated by ':'; empty ones are skipped.
    const char* p = path;
    while (*p != 0) {
        const char* colon = std::strchr(p, ':');
        const size_t length = colon != nullptr ? static_cast<size_t>(colon - p) : std::strlen(p);
        for (const char* name : kCandidates) {
            if (length == 0 || length + 1 + std::strlen(name) >= sizeof record->browserPath)
                break;
            char candidate[sizeof record->browserPath];
            std::snprintf(candidate, sizeof candidate, "%.*s/%s", static_cast<int>(length), p, name);
            if (private_WWHelp_Platform_FileIsExecutable(candidate) == 0) {
                std::memcpy(record->browserPath, candidate, std::strlen(candidate) + 1);
                return true;
            }
        }
        if (colon == nullptr)
            break;
        p = colon + 1;
    }
    return false;
}

bool findFixed(WWHelp_BrowserInfo* record)
{
    for (const char* path : kFixedPaths) {
        if (private_WWHelp_Platform_FileIsExecutable(path) == 0) {
            std::snprintf(record->browserPath, sizeof record->browserPath, "%s", path);
            return true;
        }
    }
    return false;
}

// The netscape and mozilla names speak the property protocol; firefox and
// iexplorer are started anew each time.
bool isRemoteFamily(const char* path)
{
    for (const char* name : {"netscape6", "netscape", "mozilla"})
        if (std::strcmp(path, name) == 0)
            return true;
    for (const char* name : {"/netscape6", "/netscape", "/mozilla"})
        if (std::strstr(path, name) != nullptr)
            return true;
    return false;
}

}  // namespace

int WWHelp_Platform_Startup() { return 0; }
int WWHelp_Platform_Shutdown() { return 0; }

int private_WWHelp_Platform_FileIsExecutable(const char* path)
{
    struct stat info {};
    return path != nullptr && stat(path, &info) == 0 ? 0 : -1;
}

int private_WWHelp_Platform_SetProcessSignature(char* buffer)
{
    if (buffer == nullptr)
        return -1;
    const int n = std::snprintf(buffer, 256, "pid%d@", static_cast<int>(getpid()));
    if (n < 0 || n >= 255)
        return -1;
    // gethostname need not terminate a name it had to cut.
    if (gethostname(buffer + n, static_cast<size_t>(255 - n)) != 0)
        buffer[n] = 0;
    buffer[255] = 0;
    return 0;
}

int WWHelp_Platform_SetDefaultBrowserInfo(WWHelp_BrowserInfo* record)
{
    if (record == nullptr)
        return -1;
    std::memset(record, 0, sizeof *record);
    record->smartURL = 0;
    if (!findAlongPath(record))
        findFixed(record);
    if (record->browserPath[0] == 0)
        return 0;  // no browser: the launch will fail, nothing else does
    if (isRemoteFamily(record->browserPath)) {
        record->remoteControl = 1;
        if (private_WWHelp_Platform_SetProcessSignature(record->processSignature) != 0)
            return -1;
    }
    record->remoteFlagAccepted = private_WWHelp_Platform_Command(1, record->browserPath, "-remote", nullptr) == 0;
    return 0;
}

int WWHelp_Platform_LaunchWithURL(WWHelp_BrowserInfo* record, const char* url, long length)
{
    if (record == nullptr || url == nullptr || length <= 0)
        return -1;
    if (length > WWHelp_MaxURL) {
        addError(1527) << length << WWHelp_MaxURL;
        return -1;
    }
    if (record->browserPath[0] == 0)
        return -1;  // nothing was found to start
    char argument[WWHelp_MaxURL + 1];
    std::memcpy(argument, url, static_cast<size_t>(length));
    argument[length] = 0;
    return private_WWHelp_Platform_Command(0, record->browserPath, argument, nullptr);
}
