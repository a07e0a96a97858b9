// Reads from a cached profile: one value, the list of section names, the
// list of a section's entry names, a number, and the 16-bit twin.  Reads
// never report: whatever fails gives the default.
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "../platform/trace.h"
#include "inicache.h"
#include "inicache_impl.h"
#include "profile.h"

namespace {
inline bool atEol(const char* p) { return std::memcmp(p, ZU_INI_EOL, ZU_INI_EOL_LEN) == 0; }

// The default rule: the default (or nothing) into the buffer, cut to its
// size, and the length copied.
int giveDefault(const char* defaultValue, char* buffer, int size)
{
    const int length = zustrlcpy(buffer, defaultValue != nullptr ? defaultValue : "", size);
    bosTrace(ZU_TRACE_PROFILE_READ, "%s Return Len=%d returnBuf=%s\n", "bosGetProfileString:", length,
             size > 0 ? buffer : "");
    return length;
}
}  // namespace

// Names between the brackets of every header, each closed by a NUL, then a
// closing NUL; count + 1.  Names are cut so that everything stays within
// size - 1 bytes plus the closing NUL.
int ZuIniFileCache::sectionNames(char* buffer, int size)
{
    int count = 0;
    const char* from = text_;
    while (count < size - 1) {
        const char* open = std::strchr(from, '[');
        if (open == nullptr)
            break;
        const char* close = std::strchr(open, ']');
        if (close == nullptr)
            break;
        if (std::memchr(open, '\n', static_cast<std::size_t>(close - open)) != nullptr) {
            from = open + 1;  // no name spans lines (see getSection)
            continue;
        }
        // A header starts the text or follows a newline (which also rules
        // out a ";" or "#" just before it).
        if (open == text_ || open[-1] == '\n') {
            for (const char* q = open + 1; q < close && count < size - 2; ++q)
                buffer[count++] = *q;
            buffer[count++] = 0;
        }
        from = close;
    }
    buffer[count] = 0;
    return count + 1;
}

// The entry names of the section whose header is at `start`, up to `next`:
// each line's bytes up to its "=", closed by a NUL; comment lines (";" or
// "#" just after an end of line) dropped; a line without "=" runs on into
// the next.  Blanks before "=" stay, and so do the blanks that begin the
// second and later lines.  At most size - 1 bytes, a closing NUL; count + 1.
int ZuIniFileCache::entryNames(const char* start, const char* next, char* buffer, int size)
{
    const char* end = text_ + cachedSize_;
    if (next > end)
        next = end;
    const char* p = start;
    while (p < next && *p != 0 && !atEol(p))
        ++p;
    if (p < next && *p != 0)
        p += ZU_INI_EOL_LEN;
    while (p < next && iniIsBlank(*p))
        ++p;
    int count = 0;
    while (p < next && *p != 0 && count < size - 1) {
        if (*p == '=') {
            buffer[count++] = 0;
            while (p < next && *p != 0 && !atEol(p))
                ++p;
            continue;
        }
        if ((*p == ';' || *p == '#') && p - text_ >= ZU_INI_EOL_LEN && atEol(p - ZU_INI_EOL_LEN)) {
            while (p < next && *p != 0 && !atEol(p))
                ++p;
            continue;
        }
        if (atEol(p)) {
            p += ZU_INI_EOL_LEN;
            continue;
        }
        buffer[count++] = *p++;
    }
    buffer[count] = 0;
    return count + 1;
}

int ZuIniFileCache::bosGetProfileString(const char* section, const char* entry, const char* defaultValue,
                                        char* buffer, int size)
{
    if (buffer == nullptr || size <= 0)
        return 0;
    if (section == nullptr) {
        if (lockUsable() != 0)
            return giveDefault(defaultValue, buffer, size);
        const int length = sectionNames(buffer, size);
        lock_.post();
        return length;
    }
    char bracketed[ZU_INI_NAME_MAX];
    if (iniBracket(section, bracketed) < 0)
        return giveDefault(defaultValue, buffer, size);
    if (lockUsable() != 0)
        return giveDefault(defaultValue, buffer, size);

    char* start = nullptr;
    char* next = nullptr;
    if (getSection(bracketed, &start, &next) != 0) {
        lock_.post();
        return giveDefault(defaultValue, buffer, size);
    }
    if (entry == nullptr) {
        // A header followed straight by the next section is an empty section.
        const std::size_t headerLength = std::strlen(bracketed);
        if (next == start + headerLength + ZU_INI_EOL_LEN) {
            lock_.post();
            return giveDefault(defaultValue, buffer, size);
        }
        bosTrace(ZU_TRACE_PROFILE_READ, "%s Multi-Entry Output Requested.\n", "bosGetProfileString:");
        const int length = entryNames(start, next, buffer, size);
        lock_.post();
        return length;
    }

    char* position = start;
    char* valueStart = nullptr;
    char* valueEnd = nullptr;
    if (getEntry(entry, &position, &valueStart, &valueEnd) != 0 || valueEnd == valueStart) {
        // An entry whose value is empty gives the default, deliberately.
        lock_.post();
        return giveDefault(defaultValue, buffer, size);
    }
    // Copied straight from the text to the caller, under the semaphore.  A
    // value that does not fit gives size - 1 bytes and the result `size`.
    const long length = valueEnd - valueStart;
    int result;
    if (length < size) {
        std::memcpy(buffer, valueStart, static_cast<std::size_t>(length));
        buffer[length] = 0;
        result = static_cast<int>(length);
    } else {
        std::memcpy(buffer, valueStart, static_cast<std::size_t>(size - 1));
        buffer[size - 1] = 0;
        result = size;
    }
    lock_.post();
    bosTrace(ZU_TRACE_PROFILE_READ, "%s Return Len=%d returnBuf=%s\n", "bosGetProfileString:", result, buffer);
    return result;
}

int ZuIniFileCache::bosGetProfileSection(const char* section, char* buffer, int size)
{
    if (buffer == nullptr || size <= 0)
        return 0;
    buffer[0] = 0;
    char bracketed[ZU_INI_NAME_MAX];
    if (section == nullptr || iniBracket(section, bracketed) < 0)
        return 0;
    bosTrace(ZU_TRACE_PROFILE_WRITE, "%s Fecthing all entries for %s\n", "bosGetProfileSection:", section);
    if (lockUsable() != 0)
        return 0;
    char* start = nullptr;
    char* next = nullptr;
    int result = 0;
    if (getSection(bracketed, &start, &next) == 0 &&
        next != start + std::strlen(bracketed) + ZU_INI_EOL_LEN) {
        result = entryNames(start, next, buffer, size);
    } else {
        bosTrace(ZU_TRACE_PROFILE_WRITE, "%s No data found.\n", "bosGetProfileSection:");
    }
    lock_.post();
    return result;
}

unsigned int ZuIniFileCache::bosGetProfileInt(const char* section, const char* entry, unsigned int defaultValue)
{
    char value[20];
    if (bosGetProfileString(section, entry, "", value, sizeof value) == 0)
        return defaultValue;
    std::size_t digits = 0;
    while (value[digits] >= '0' && value[digits] <= '9')
        ++digits;
    value[digits] = 0;
    if (digits == 0)
        return defaultValue;
    errno = 0;
    char* end = nullptr;
    const unsigned long long number = std::strtoull(value, &end, 10);
    if (errno != 0 || number > 0xFFFFFFFFull)
        return defaultValue;
    return static_cast<unsigned int>(number);
}

int ZuIniFileCache::bosGetProfileStringW(const unsigned short* section, const unsigned short* entry,
                                         const unsigned short* defaultValue, unsigned short* buffer, int size)
{
    if (buffer == nullptr || size <= 0)
        return 0;
    char narrowSection[ZU_INI_PATH_MAX];
    char narrowEntry[ZU_INI_PATH_MAX];
    char narrowDefault[ZU_INI_PATH_MAX];
    char result[512] = {};
    bool ok = true;
    if (section != nullptr)
        ok = zuGetANSIStrFromUTF16Str(section, narrowSection, sizeof narrowSection) >= 0;
    if (ok && entry != nullptr)
        ok = zuGetANSIStrFromUTF16Str(entry, narrowEntry, sizeof narrowEntry) >= 0;
    if (ok && defaultValue != nullptr)
        ok = zuGetANSIStrFromUTF16Str(defaultValue, narrowDefault, sizeof narrowDefault) >= 0;
    int length = 0;
    if (ok)
        length = bosGetProfileString(section != nullptr ? narrowSection : nullptr,
                                     entry != nullptr ? narrowEntry : nullptr,
                                     defaultValue != nullptr ? narrowDefault : nullptr, result, 511);
    if (length > 0 && result[0] != 0) {
        const int units = zuGetUTF16StrFromANSIStr(result, buffer, size);
        if (units > 0)
            return units;
    }
    // The default by its length in 16-bit units, without a terminator: an
    // empty default gives a single 0 unit.  Kept within the buffer.
    int units = 0;
    if (defaultValue != nullptr)
        while (defaultValue[units] != 0)
            ++units;
    if (units == 0) {
        buffer[0] = 0;
        return 0;
    }
    const int copied = units < size ? units : size;
    std::memcpy(buffer, defaultValue, static_cast<std::size_t>(copied) * sizeof(unsigned short));
    return copied;
}
