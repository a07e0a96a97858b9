// Functions with the names of the Windows profile and window API, so that
// code shared with that platform compiles unchanged.  The profile shims use
// a private cache each: no list, no sharing, the disk alone.
#include <cstdio>

#include "profile.h"

int GetPrivateProfileString(const char* section, const char* entry, const char* defaultValue, char* buffer,
                            int size, const char* file)
{
    ZuIniFileCache cache;
    if (const int failed = cache.bosZuIniOpen(file, 0))
        return failed;
    return cache.bosGetProfileString(section, entry, defaultValue, buffer, size);
}

unsigned int GetPrivateProfileInt(const char* section, const char* entry, unsigned int defaultValue, const char* file)
{
    ZuIniFileCache cache;
    if (const int failed = cache.bosZuIniOpen(file, 0))
        return static_cast<unsigned int>(failed);
    return cache.bosGetProfileInt(section, entry, defaultValue);
}

int WritePrivateProfileString(const char* section, const char* entry, const char* value, const char* file)
{
    ZuIniFileCache cache;
    // Mode 4: the file is created when missing.
    if (const int failed = cache.bosZuIniOpen(file, 4))
        return failed;
    return cache.bosPutProfileString(section, entry, value);
}

void GetWindowRect(void*, void*) {}

void winCenterBox(void*) {}

int SetWindowPos(void*, void*, int, int, int, int, unsigned int) { return 0; }

int MessageBox(void*, const char* text, const char* caption, unsigned int type)
{
    if (caption != nullptr && type != 0)
        std::printf("%s:\n%s\n", caption, text != nullptr ? text : "");
    else
        std::printf("\n%s\n", text != nullptr ? text : "");
    std::fflush(stdout);
    return 2;
}

short guiMessageBox(void* window, const char* text, const char* caption, unsigned int type)
{
    return static_cast<short>(MessageBox(window, text, caption, type));
}
