/*
 * The application code page: the connection-string keys, the DSN and the
 * [ODBC] profile entries, and this module's own read-only copies of
 * .odbc.ini and .odbcinst.ini with the small reader that searches them.
 *
 * What this file keeps true:
 *  - the two copies are read once, by the static IniInitialize object while
 *    the library is loaded, and freed (pointers back to null) when it is
 *    unloaded; nothing writes them in between, so no lock exists;
 *  - .odbcinst.ini is read only when .odbc.ini could be opened;
 *  - every search over a profile text stops at its first NUL or at the size
 *    it was given, whichever comes first, and every copy into a caller's
 *    buffer stays inside `size` bytes;
 *  - the result of the code page functions is always a usable number:
 *    4 (ISO-8859-1) when nothing is configured.
 *
 * Memory: the copies belong to this file.  A DSN name handed out by
 * ucnvGetAppCodePage(W) and ucnvAnsi/UnicodeIANAAppCodePage comes from
 * ramAllocC and belongs to the caller, who frees it with ucnv_free.  A failed
 * allocation is reported by ramAllocC (ramAddMemoryError) and nothing else
 * here reports to the error list.
 */
#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include "../platform/ram.h"
#include "codepage.h"

namespace {
// The text of .odbc.ini and its file size + 1; the same for .odbcinst.ini.
char* GRAVO_UCNV_INI_Buf = nullptr;
long GRAVO_UCNV_INI_BufSize = 0;
char* GRAVO_UCNV_INST_Buf = nullptr;
long GRAVO_UCNV_INST_BufSize = 0;

// The file named by the first variable that is set and not empty, else
// $HOME/<homeName>; null when there is neither or the path does not fit.
const char* profilePath(const char* variable, const char* fallback, const char* homeName, char* path,
                        std::size_t capacity)
{
    const char* name = std::getenv(variable);
    if (name == nullptr || *name == 0)
        name = std::getenv(fallback);
    if (name != nullptr && *name != 0)
        return name;
    const char* home = std::getenv("HOME");
    if (home == nullptr)
        return nullptr;
    int n = std::snprintf(path, capacity, "%s/%s", home, homeName);
    return (n < 0 || static_cast<std::size_t>(n) >= capacity) ? nullptr : path;
}

// Reads the whole file into a new block with a NUL after the bytes read.
// False only when the file cannot be opened; a file opened but not read
// (stat or allocation failed) leaves *text null.
bool loadProfile(const char* path, char** text, long* size)
{
    if (path == nullptr)
        return false;
    int fd = ::open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat st {};
    if (::fstat(fd, &st) == 0 && st.st_size >= 0 && st.st_size < LONG_MAX) {
        auto fileSize = static_cast<std::size_t>(st.st_size);
        auto* block = static_cast<char*>(ramAllocC(fileSize + 1));
        if (block != nullptr) {
            std::size_t done = 0;
            while (done < fileSize) {
                ssize_t n = ::read(fd, block + done, fileSize - done);
                if (n < 0 && errno == EINTR)
                    continue;
                if (n <= 0)
                    break;
                done += static_cast<std::size_t>(n);
            }
            block[done] = 0;
            *text = block;
            *size = static_cast<long>(fileSize) + 1;
        }
    }
    ::close(fd);
    return true;
}
}  // namespace

// Fills the module's copies of the two profiles when the library is loaded
// and frees them at unload.
class IniInitialize {
public:
    IniInitialize()
    {
        char path[PATH_MAX];
        if (!loadProfile(profilePath("ODBCINI", "ODBC_INI", ".odbc.ini", path, sizeof path), &GRAVO_UCNV_INI_Buf,
                         &GRAVO_UCNV_INI_BufSize))
            return;
        loadProfile(profilePath("ODBCINST", "ODBCINSTINI", ".odbcinst.ini", path, sizeof path),
                    &GRAVO_UCNV_INST_Buf, &GRAVO_UCNV_INST_BufSize);
    }
    ~IniInitialize()
    {
        ramFreeC(GRAVO_UCNV_INI_Buf);
        ramFreeC(GRAVO_UCNV_INST_Buf);
        GRAVO_UCNV_INI_Buf = GRAVO_UCNV_INST_Buf = nullptr;
        GRAVO_UCNV_INI_BufSize = GRAVO_UCNV_INST_BufSize = 0;
    }
    IniInitialize(const IniInitialize&) = delete;
    IniInitialize& operator=(const IniInitialize&) = delete;
};

namespace {
IniInitialize iniInitialize;

// ---- The profile reader ----------------------------------------------------

bool isBlank(char c) { return c == ' ' || c == '\t'; }

// The first `c` in [p, end), or end.
const char* findByte(const char* p, const char* end, char c)
{
    const void* hit = std::memchr(p, c, static_cast<std::size_t>(end - p));
    return hit != nullptr ? static_cast<const char*>(hit) : end;
}

// The end-of-line text that the entry search of one section uses.
struct LineEnd {
    const char* text;
    std::size_t length;

    bool at(const char* p, const char* end) const
    {
        return static_cast<std::size_t>(end - p) >= length && std::memcmp(p, text, length) == 0;
    }
    // The next end of line at or after p, or end.
    const char* next(const char* p, const char* end) const
    {
        for (p = findByte(p, end, text[0]); p < end; p = findByte(p + 1, end, text[0]))
            if (at(p, end))
                return p;
        return end;
    }
};

// "\r\n" when a carriage return is met before a newline, "\n" otherwise.
// The look steps two bytes at a time from the section's '[', so only bytes at
// an even distance are seen: a CR (or LF) at an odd distance is stepped over.
// That step is how this reader has always behaved and is kept; the look is
// bounded by the end of the text, which the step could otherwise jump past.
LineEnd lineEndOfSection(const char* section, const char* end)
{
    auto length = static_cast<std::size_t>(end - section);
    for (std::size_t i = 0; i < length; i += 2) {
        if (section[i] == '\n')
            break;
        if (section[i] == '\r')
            return {"\r\n", 2};
    }
    return {"\n", 1};
}

// Finds the header [section]: a '[' at the text's start or just after a
// newline, up to the first ']', compared case-blind.  *next is the next '['
// after that ']' (header or not), or end.
bool findSection(const char* text, const char* end, const char* section, const char** start, const char** next)
{
    std::size_t sectionLength = std::strlen(section);
    const char* p = text;
    for (;;) {
        const char* open = findByte(p, end, '[');
        if (open == end)
            return false;
        const char* close = findByte(open + 1, end, ']');
        if (close == end)
            return false;
        if ((open == text || open[-1] == '\n') && static_cast<std::size_t>(close - open - 1) == sectionLength &&
            strncasecmp(open + 1, section, sectionLength) == 0) {
            *start = open;
            *next = findByte(close + 1, end, '[');
            return true;
        }
        p = close;
    }
}

// Finds `entry` in the section that starts at `section`: the lines after the
// header, up to a line whose first non-blank byte is '['.  A name runs from
// the line's first non-blank byte to the '=' with nothing trimmed (so
// "key =1" is the entry "key "); a line without '=' runs into the next one.
bool findEntry(const char* section, const char* end, const char* entry, const LineEnd& eol, const char** valueStart,
               const char** valueEnd)
{
    std::size_t entryLength = std::strlen(entry);
    const char* p = section;
    for (;;) {
        p = eol.next(p, end);
        while (eol.at(p, end))
            p += eol.length;
        while (p < end && isBlank(*p))
            ++p;
        if (p == end || *p == '[')
            return false;
        if (*p == ';' || *p == '#')
            continue;
        const char* name = p;
        const char* equals = findByte(p, end, '=');
        if (equals == end)
            return false;
        // The name's length is taken modulo 65,536, as the reader always has.
        std::size_t nameLength = static_cast<std::size_t>(equals - name) & 0xFFFF;
        if (nameLength == entryLength && strncasecmp(name, entry, nameLength) == 0) {
            p = equals;
            while (p < end && (isBlank(*p) || *p == '='))
                ++p;
            *valueStart = p;
            *valueEnd = eol.next(p, end);
            return true;
        }
        p = equals;
    }
}

// The entry names of the section, each closed by a NUL, then a closing NUL;
// returns the bytes stored + 1.  Lines start after the header's line, with
// its blanks skipped; a line whose first byte is ';' or '#' is left out; a
// line without '=' runs together with the next.
int listEntries(const char* text, const char* section, const char* next, const char* end, char* buffer, int size)
{
    const char* p = findByte(section, end, '\n');
    if (p < end)
        ++p;
    while (p < end && isBlank(*p))
        ++p;
    int count = 0;
    while (p < next && count < size - 1) {
        char c = *p;
        if (c == '\n') {
            ++p;
        } else if ((c == ';' || c == '#') && p > text && p[-1] == '\n') {
            p = findByte(p, end, '\n');
        } else if (c == '=') {
            buffer[count++] = 0;
            p = findByte(p, end, '\n');
        } else {
            buffer[count++] = c;
            ++p;
        }
    }
    buffer[count] = 0;
    return count + 1;
}

// The default, copied within `size` bytes.  The profile cache's reader
// copies a default without any limit; here one that does not fit is cut to
// size - 1 bytes like a value, and that length returned.
int copyDefault(const char* defaultValue, char* buffer, int size)
{
    if (buffer == nullptr || size <= 0)
        return 0;
    std::size_t length = defaultValue != nullptr ? std::strlen(defaultValue) : 0;
    if (length > static_cast<std::size_t>(size - 1))
        length = static_cast<std::size_t>(size - 1);
    if (length > 0)
        std::memcpy(buffer, defaultValue, length);
    buffer[length] = 0;
    return static_cast<int>(length);
}

int readCopy(const char* text, long textSize, const char* section, const char* entry, const char* defaultValue,
             char* buffer, int size)
{
    if (text == nullptr || textSize <= 0)
        return copyDefault(defaultValue, buffer, size);
    return ucnvNWGetProfileString(text, textSize, section, entry, defaultValue, buffer, size);
}

// ---- Connection strings ----------------------------------------------------

const unsigned short* skipWhiteSpace(const unsigned short* p, const unsigned short* end)
{
    while (p < end) {
        UChar32 c = *p;
        int step = 1;
        if (U16_IS_LEAD(c) && end - p >= 2 && U16_IS_TRAIL(p[1])) {
            c = U16_GET_SUPPLEMENTARY(c, p[1]);
            step = 2;
        }
        if (!u_isWhitespace(c))
            break;
        p += step;
    }
    return p;
}

// A terminated 8-bit copy of a 16-bit string in the default code page, in a
// block of 4 * units + 1 bytes; null when the allocation fails.
char* narrowCopy(const unsigned short* wide)
{
    int32_t units = u_strlen(reinterpret_cast<const UChar*>(wide));
    if (units > (INT32_MAX - 1) / 4) {
        ramAddMemoryError();
        return nullptr;
    }
    int32_t capacity = 4 * units;
    auto* narrow = static_cast<char*>(ramAllocC(static_cast<std::size_t>(capacity) + 1));
    if (narrow == nullptr)
        return nullptr;
    // The bounded form of u_austrcpy: 4 bytes a unit hold any character of
    // the usual default code pages, and a stateful one cannot run over.
    u_austrncpy(narrow, reinterpret_cast<const UChar*>(wide), capacity);
    narrow[capacity] = 0;
    return narrow;
}

bool counts(long value) { return value != ZU_CP_PROFILE_MISSING && value != -1; }

long appCodePageFromProfile(long (*readInt)(const char*, const char*, long), const char* section)
{
    long value = readInt(section, "IANAAppCodePage", ZU_CP_PROFILE_MISSING);
    if (counts(value))
        return value;
    value = readInt(section, "AppCodePage", ZU_CP_PROFILE_MISSING);
    return counts(value) ? ucnvUnilibToIANA(value) : ZU_CP_NONE;
}

long parseProfileInt(const char* value, long defaultValue)
{
    if (value[0] == '&')
        return defaultValue;
    while (*value == ' ')
        ++value;
    bool negative = *value == '-';
    if (negative)
        ++value;
    // Unsigned arithmetic: an overlong number wraps instead of overflowing.
    unsigned long total = 0;
    for (; *value >= '0' && *value <= '9'; ++value)
        total = total * 10 + static_cast<unsigned long>(*value - '0');
    return static_cast<long>(negative ? 0 - total : total);
}
}  // namespace

// ---- Profile reading -------------------------------------------------------

int ucnvNWGetProfileString(const char* text, long textSize, const char* section, const char* entry,
                           const char* defaultValue, char* buffer, int size)
{
    // A null buffer, or one with no room for a terminator, can take nothing.
    if (buffer == nullptr || size <= 0)
        return 0;
    if (text == nullptr || textSize <= 0 || section == nullptr)
        return copyDefault(defaultValue, buffer, size);
    // The text ends at its first NUL or at textSize, whichever comes first.
    const char* end = findByte(text, text + textSize, 0);

    const char* start = nullptr;
    const char* next = nullptr;
    if (!findSection(text, end, section, &start, &next))
        return copyDefault(defaultValue, buffer, size);

    if (entry == nullptr) {
        // A header followed directly by its end of line and the next section
        // (or the end) is an empty section.
        if (static_cast<std::size_t>(next - start) == std::strlen(section) + 3)
            return copyDefault(defaultValue, buffer, size);
        return listEntries(text, start, next, end, buffer, size);
    }

    const char* valueStart = nullptr;
    const char* valueEnd = nullptr;
    if (!findEntry(start, end, entry, lineEndOfSection(start, end), &valueStart, &valueEnd) ||
        valueEnd == valueStart)
        return copyDefault(defaultValue, buffer, size);
    auto length = static_cast<std::size_t>(valueEnd - valueStart);
    // A value of exactly `size` bytes would need size + 1 with its
    // terminator: it is cut to size - 1 like a longer one.
    if (length > static_cast<std::size_t>(size - 1))
        length = static_cast<std::size_t>(size - 1);
    std::memcpy(buffer, valueStart, length);
    buffer[length] = 0;
    return static_cast<int>(length);
}

int ucnvGetProfileString(const char* section, const char* entry, const char* defaultValue, char* buffer, int size)
{
    return readCopy(GRAVO_UCNV_INI_Buf, GRAVO_UCNV_INI_BufSize, section, entry, defaultValue, buffer, size);
}

int ucnvGetProfileStringInst(const char* section, const char* entry, const char* defaultValue, char* buffer,
                             int size)
{
    return readCopy(GRAVO_UCNV_INST_Buf, GRAVO_UCNV_INST_BufSize, section, entry, defaultValue, buffer, size);
}

long ucnvGetProfileInt(const char* section, const char* entry, long defaultValue)
{
    char value[100];
    ucnvGetProfileString(section, entry, "&", value, sizeof value);
    return parseProfileInt(value, defaultValue);
}

long ucnvGetProfileIntInst(const char* section, const char* entry, long defaultValue)
{
    char value[100];
    ucnvGetProfileStringInst(section, entry, "&", value, sizeof value);
    return parseProfileInt(value, defaultValue);
}

// ---- The application code page ---------------------------------------------

long ucnvGetAppCodePageFromDSN(const char* dsn)
{
    if (dsn != nullptr) {
        long number = appCodePageFromProfile(ucnvGetProfileInt, dsn);
        if (number != ZU_CP_NONE)
            return number;
    }
    long number = appCodePageFromProfile(ucnvGetProfileInt, "ODBC");
    if (number != ZU_CP_NONE)
        return number;
    number = appCodePageFromProfile(ucnvGetProfileIntInst, "ODBC");
    if (number != ZU_CP_NONE)
        return number;
    return ZU_CP_ISO_8859_1;
}

int ucnvEquals(const unsigned short* text, const unsigned short* end, const char* upper, const char* lower)
{
    if (text == nullptr || upper == nullptr || lower == nullptr)
        return 0;
    bool lowerEnded = false;
    for (std::size_t i = 0; upper[i] != 0; ++i) {
        if (static_cast<std::size_t>(end - text) <= i)
            return 0;
        unsigned short c = text[i];
        if (U16_IS_SURROGATE(c))
            return 0;
        lowerEnded = lowerEnded || lower[i] == 0;
        if (c != static_cast<unsigned char>(upper[i]) && (lowerEnded || c != static_cast<unsigned char>(lower[i])))
            return 0;
    }
    return 1;
}

long ucnvGetNumericValue(const unsigned short** position, const unsigned short* end)
{
    if (position == nullptr || *position == nullptr)
        return ZU_CP_NONE;
    const unsigned short* p = skipWhiteSpace(*position, end);
    if (p == end || *p != '=') {
        *position = p;
        return ZU_CP_NONE;
    }
    p = skipWhiteSpace(p + 1, end);
    bool negative = p < end && *p == '-';
    if (negative)
        ++p;
    unsigned long total = 0;  // wraps on an overlong number
    for (; p < end && *p != ';' && !U16_IS_SURROGATE(*p) && u_isdigit(*p); ++p)
        total = total * 10 + static_cast<unsigned long>(u_charDigitValue(*p));
    *position = p;
    return static_cast<long>(negative ? 0 - total : total);
}

long ucnvUnicodeIANAAppCodePage(const unsigned short* connection, long units, unsigned short** dsn)
{
    if (dsn != nullptr)
        *dsn = nullptr;
    if (connection == nullptr)
        return ZU_CP_NONE;
    // A negative length is taken as a terminated string.
    if (units < 0)
        units = u_strlen(reinterpret_cast<const UChar*>(connection));
    const unsigned short* p = connection;
    const unsigned short* end = connection + units;
    long result = ZU_CP_NONE;
    while (p < end) {
        p = skipWhiteSpace(p, end);
        enum { None, Iana, Unilib, Dsn } key = None;
        std::size_t keyLength = 0;
        if (ucnvEquals(p, end, "IANAAPPCODEPAGE", "ianaappcodepage")) {
            key = Iana;
            keyLength = 15;
        } else if (ucnvEquals(p, end, "IACP", "iacp")) {
            key = Iana;
            keyLength = 4;
        } else if (ucnvEquals(p, end, "APPCODEPAGE", "appcodepage")) {
            key = Unilib;
            keyLength = 11;
        } else if (ucnvEquals(p, end, "ACP", "acp")) {
            key = Unilib;
            keyLength = 3;
        } else if (dsn != nullptr && *dsn == nullptr && ucnvEquals(p, end, "DSN", "dsn")) {
            key = Dsn;
            keyLength = 3;
        }
        p += keyLength;

        if (key == Iana) {
            long number = ucnvGetNumericValue(&p, end);
            if (number != ZU_CP_NONE)
                return number;
        } else if (key == Unilib) {
            long number = ucnvGetNumericValue(&p, end);
            if (number != ZU_CP_NONE)
                result = ucnvUnilibToIANA(number);  // a later IANA key still wins
        } else if (key == Dsn) {
            p = skipWhiteSpace(p, end);
            if (p < end && *p == '=') {
                p = skipWhiteSpace(p + 1, end);
                const unsigned short* stop = p;
                while (stop < end && *stop != ';')
                    ++stop;
                auto length = static_cast<std::size_t>(stop - p);
                auto* name = static_cast<unsigned short*>(ramAllocC((length + 1) * sizeof(unsigned short)));
                if (name != nullptr) {
                    std::memcpy(name, p, length * sizeof(unsigned short));
                    name[length] = 0;
                    *dsn = name;
                }
                p = stop;
            }
        }
        while (p < end && *p != ';')
            ++p;
        if (p < end)
            ++p;
    }
    return result;
}

long ucnvAnsiIANAAppCodePage(const char* connection, long length, char** dsn)
{
    if (dsn != nullptr)
        *dsn = nullptr;
    if (connection == nullptr)
        return ZU_CP_NONE;
    if (length < 0)
        length = static_cast<long>(std::strlen(connection));
    if (static_cast<unsigned long>(length) > (INT32_MAX / 4))
        return ZU_CP_NONE;

    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(nullptr, &status);
    if (U_FAILURE(status))
        return ZU_CP_NONE;
    // 4 * length bytes: two UTF-16 units a byte.
    auto* wide = static_cast<UChar*>(ramAllocC(4 * static_cast<std::size_t>(length)));
    if (wide == nullptr) {
        ucnv_close(converter);
        return ZU_CP_NONE;
    }
    UChar* target = wide;
    const char* source = connection;
    ucnv_toUnicode(converter, &target, wide + 2 * length, &source, connection + length, nullptr, true, &status);
    ucnv_close(converter);
    if (U_FAILURE(status)) {
        ramFreeC(wide);
        return ZU_CP_NONE;
    }

    unsigned short* wideDsn = nullptr;
    long result = ucnvUnicodeIANAAppCodePage(reinterpret_cast<unsigned short*>(wide), target - wide,
                                             dsn != nullptr ? &wideDsn : nullptr);
    ramFreeC(wide);
    if (wideDsn != nullptr) {
        char* narrow = narrowCopy(wideDsn);
        ramFreeC(wideDsn);
        if (narrow == nullptr)
            return ZU_CP_NONE;
        *dsn = narrow;
    }
    return result;
}

long ucnvGetAppCodePage(const char* connection, long length, char** dsn)
{
    char* own = nullptr;  // the DSN when the caller does not take it
    char** name = dsn != nullptr ? dsn : &own;
    long number = ucnvAnsiIANAAppCodePage(connection, length, name);
    if (number == ZU_CP_NONE)
        number = ucnvGetAppCodePageFromDSN(*name);
    ramFreeC(own);
    return number;
}

long ucnvGetAppCodePageW(const unsigned short* connection, long units, unsigned short** dsn)
{
    unsigned short* own = nullptr;
    unsigned short** name = dsn != nullptr ? dsn : &own;
    long number = ucnvUnicodeIANAAppCodePage(connection, units, name);
    if (number == ZU_CP_NONE) {
        // Without memory for the 8-bit copy the lookup goes on with no DSN.
        char* narrow = *name != nullptr ? narrowCopy(*name) : nullptr;
        number = ucnvGetAppCodePageFromDSN(narrow);
        ramFreeC(narrow);
    }
    ramFreeC(own);
    return number;
}

void ucnv_free(void* dsn) { ramFreeC(dsn); }
