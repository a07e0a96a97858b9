// Process, host and user names; time and sleep.
#include "bossys.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "bosfile.h"

namespace {
// Copies `text` into `buffer` of `size` bytes, cut and terminated inside it.
void copyName(char* buffer, unsigned long size, const char* text)
{
    size_t length = std::strlen(text);
    if (length + 1 > size)
        length = size - 1;
    std::memcpy(buffer, text, length);
    buffer[length] = 0;
}
}  // namespace

char* bosGetCommand(int, char* buffer, unsigned long size)
{
    if (buffer == nullptr || size == 0)
        return nullptr;
    // The kernel's own record of the command name, which is what ps shows
    // for "comm": no program needs to be started for it.
    FILE* comm = std::fopen("/proc/self/comm", "re");
    if (comm == nullptr)
        return nullptr;
    char line[256];
    bool got = std::fgets(line, sizeof line, comm) != nullptr;
    std::fclose(comm);
    if (!got)
        return nullptr;
    line[std::strcspn(line, "\n")] = 0;
    copyName(buffer, size, line);
    return buffer;
}

int bosGetMachineName(char* buffer, unsigned long size)
{
    if (buffer == nullptr || size == 0)
        return 0;
    char host[257];
    if (gethostname(host, 256) != 0) {
        bosMapError(errno, "");
        return 1;
    }
    host[256] = 0;
    copyName(buffer, size, host);
    return 0;
}

int bosGetHostUser(char* buffer, unsigned long size)
{
    if (buffer == nullptr || size == 0)
        return 0;
    passwd entry;
    passwd* found = nullptr;
    char work[1024];
    int error = getpwuid_r(getuid(), &entry, work, sizeof work, &found);
    if (found == nullptr) {
        bosMapError(error != 0 ? error : ENOENT, "");
        return 1;
    }
    copyName(buffer, size, entry.pw_name);
    return 0;
}

const char* bosGetEnv(const char* name)
{
    return name != nullptr ? std::getenv(name) : nullptr;
}

void bosdate(os_time* now)
{
    if (now == nullptr)
        return;
    std::time_t seconds = std::time(nullptr);
    std::tm local {};
    localtime_r(&seconds, &local);
    now->day = static_cast<unsigned short>(local.tm_mday);
    now->month = static_cast<unsigned short>(local.tm_mon + 1);
    now->year = static_cast<unsigned short>(local.tm_year + 1900);
    now->hour = static_cast<unsigned short>(local.tm_hour);
    now->minute = static_cast<unsigned short>(local.tm_min);
    now->second = static_cast<unsigned short>(local.tm_sec);
}

void bossleep(unsigned long milliseconds)
{
    if (milliseconds == 0)
        return;
    timespec wait {static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1000000L};
    while (nanosleep(&wait, &wait) != 0 && errno == EINTR) {
    }
}
