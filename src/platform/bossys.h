/*
 * The process and its host, seen through the operating-system layer: the
 * command name, host and user names, environment, local time and sleeping.
 *
 * Every buffer belongs to the caller; nothing here keeps state.  Names are
 * copied within the size the caller gives (cut and terminated inside it
 * when they do not fit).
 */
#ifndef HNSYB_PLATFORM_BOSSYS_H
#define HNSYB_PLATFORM_BOSSYS_H

#include "export.h"

// Local time, as bosdate fills it.
struct os_time {
    unsigned short day;
    unsigned short month;   // 1 to 12
    unsigned short year;    // four digits
    unsigned short hour;
    unsigned short minute;
    unsigned short second;
};

// The process's command name (as the kernel keeps it) into `buffer`; the
// buffer, or null when the name cannot be read.  `unused` is ignored.
ZU_EXPORT char* bosGetCommand(int unused, char* buffer, unsigned long size);
// The host name; the real user's login name.  A null buffer or size 0
// does nothing and gives 0; 1 (reported) when the name cannot be read.
ZU_EXPORT int bosGetMachineName(char* buffer, unsigned long size);
ZU_EXPORT int bosGetHostUser(char* buffer, unsigned long size);
// The value of a variable, or null; owned by the environment.
ZU_EXPORT const char* bosGetEnv(const char* name);
ZU_EXPORT void bosdate(os_time* now);
// Sleeps; 0 does nothing.
ZU_EXPORT void bossleep(unsigned long milliseconds);

#endif
