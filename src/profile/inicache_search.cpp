// The two searches over a cached profile text.  The text is never parsed
// into anything: each search walks the raw bytes from where it is told to
// start, and ends at the text's NUL.
//
// The format, as these searches read it:
//
//   text     := { line EOL } [ line ]
//   header   := "[" name "]" ...      a "[" that is the text's first byte or
//                                     follows EOL, and not just after ";" or "#"
//   comment  := blanks (";" | "#") ...
//   entry    := blanks name blanks "=" { " " | "\t" | "=" } value
//   blanks   := { " " | "\t" }
//
// A section's range runs from its "[" to the next "[" anywhere after its
// "]" (inside a value too), or to the end of the text.  An entry's name scan
// stops only at "=": a line without "=" runs on into the next line, so the
// two become one name that matches nothing.
#include <cstring>

#include "../core/strcmp.h"
#include "../core/strfind.h"
#include "../platform/trace.h"
#include "inicache.h"
#include "inicache_impl.h"

namespace {
inline bool atEol(const char* p) { return std::memcmp(p, ZU_INI_EOL, ZU_INI_EOL_LEN) == 0; }
}  // namespace

// 1 when `open`, a "[" of the text, begins a header: the text's first byte,
// or just after an end of line, and not just after ";" or "#".
bool ZuIniFileCache::isHeaderStart(const char* open) const
{
    if (open == text_)
        return true;
    const char before = open[-1];
    if (before == ';' || before == '#')
        return false;
    return open - text_ >= ZU_INI_EOL_LEN && atEol(open - ZU_INI_EOL_LEN);
}

int ZuIniFileCache::getSection(const char* bracketedName, char** start, char** next)
{
    if (text_ == nullptr || bracketedName == nullptr)
        return 1;
    const long nameLength = static_cast<long>(std::strlen(bracketedName));
    char* from = text_;
    for (;;) {
        char* open = strFind(from, '[', ZU_CP_LOCALE);
        if (open == nullptr)
            break;
        char* close = strFind(open, ']', ZU_CP_LOCALE);
        if (close == nullptr)
            break;
        // A name never spans lines: a "[" whose line has no "]" is no header,
        // and the search goes on right behind it, so that a stray "[" in a
        // value cannot hide the next real header.
        if (std::memchr(open, '\n', static_cast<std::size_t>(close - open)) != nullptr) {
            from = open + 1;
            continue;
        }
        if (isHeaderStart(open) &&
            strCompareCi(open, static_cast<long>(close - open + 1), bracketedName, nameLength, ZU_CP_LOCALE) == 0) {
            *start = open;
            char* after = strFind(close, '[', ZU_CP_LOCALE);
            *next = after != nullptr ? after : text_ + cachedSize_;
            bosTrace(ZU_TRACE_PROFILE_READ, "%s Section %s found.\n", "getSection:", bracketedName);
            return 0;
        }
        from = close;
    }
    bosTrace(ZU_TRACE_PROFILE_READ, "%s Section %s not found.\n", "getSection:", bracketedName);
    return 1;
}

int ZuIniFileCache::getEntry(const char* name, char** position, char** valueStart, char** valueEnd)
{
    if (name == nullptr || position == nullptr || *position == nullptr)
        return 1;
    const long wanted = static_cast<long>(std::strlen(name));
    char* p = *position;
    for (;;) {
        // To the end of this line, past any run of ends of line, past blanks.
        while (*p != 0 && !atEol(p))
            ++p;
        while (*p != 0 && atEol(p))
            p += ZU_INI_EOL_LEN;
        while (iniIsBlank(*p))
            ++p;
        if (*p == 0 || *p == '[')
            break;
        if (*p == ';' || *p == '#')
            continue;
        char* nameStart = p;
        char* cut = nullptr;  // where the last run of blanks began
        while (*p != 0 && *p != '=') {
            if (iniIsBlank(*p)) {
                if (cut == nullptr)
                    cut = p;
            } else {
                cut = nullptr;
            }
            ++p;
        }
        if (*p == 0)
            break;
        char* nameEnd = cut != nullptr ? cut : p;
        // The compared length is kept in 16 bits, as the name buffer's
        // length always was.
        const long length = static_cast<long>((nameEnd - nameStart) & 0xFFFF);
        if (strCompareCi(nameStart, length, name, wanted, ZU_CP_LOCALE) != 0)
            continue;
        while (*p == ' ' || *p == '\t' || *p == '=')
            ++p;
        *position = nameStart;
        *valueStart = p;
        while (*p != 0 && !atEol(p))
            ++p;
        *valueEnd = p;
        bosTrace(ZU_TRACE_PROFILE_READ, "%s Entry %s found.\n", "getEntry:", name);
        return 0;
    }
    bosTrace(ZU_TRACE_PROFILE_READ, "%s Entry %s not found.\n", "getEntry:", name);
    return 1;
}
