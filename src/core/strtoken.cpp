#include "strtoken.h"

#include <cctype>
#include <cstring>

#include "../core/errorlist.h"
#include "../encoding/mbchar.h"
#include "../platform/ram.h"
#include "strchar_impl.h"

namespace {
inline int sizeAt(const char* p, zuCPType type) { return zu_str::charSizeZ(p, type); }
inline int sizeAt(const unsigned short*, zuCPType) { return 1; }

inline bool isSpaceUnit(const char* p, int size)
{
    const auto c = static_cast<unsigned char>(*p);
    return size == 1 && c < 0x80 && std::isspace(c) != 0;
}
inline bool isSpaceUnit(const unsigned short* p, int)
{
    if (*p < 0x80)
        return std::isspace(*p) != 0;
    const unsigned short one[2] = {*p, 0};
    return zuIsWhiteSpace(one) != 0;
}

// A letter of one unit: ASCII, or the locale's (narrow single byte) or
// ICU's (16-bit) letters above it.
inline bool isLetter(char c)
{
    const auto b = static_cast<unsigned char>(c);
    return (b < 0x80) ? (std::isalpha(b) != 0) : (MB_CUR_MAX == 1 && std::isalpha(b) != 0);
}
inline bool isLetter(unsigned short c)
{
    if (c < 0x80)
        return std::isalpha(c) != 0;
    const unsigned short one[2] = {c, 0};
    return zuIsAlpha(one) != 0;
}
template <typename Unit>
inline bool isDigit(Unit c) { return c >= '0' && c <= '9'; }
template <typename Unit>
inline bool oneOf(Unit c, const char* set)
{
    for (; *set != 0; ++set)
        if (c == static_cast<Unit>(*set))
            return true;
    return false;
}

inline unsigned long restLength(const char* p) { return std::strlen(p); }
inline unsigned long restLength(const unsigned short* p)
{
    unsigned long n = 0;
    while (p[n] != 0)
        ++n;
    return n;
}

// The error with the token, as far as it was read, as its parameter.
template <typename Unit>
void report(unsigned short number, const Unit* token, long length)
{
    ZuError& e = addError(number);
    if constexpr (sizeof(Unit) == 1)
        e << ZuSubString(reinterpret_cast<const char*>(token), static_cast<unsigned long>(length));
    else
        e << ZuSubStringW(reinterpret_cast<const unsigned short*>(token), static_cast<unsigned long>(length));
}

// The token being built: in the caller's buffer, or after growing in a
// block of its own.
template <typename Unit>
struct Builder {
    Unit* token;
    long size;
    int flags;
    int mode;
    Unit* out;
    long length = 0;
    long capacity;
    bool grown = false;
    bool failed = false;

    Builder(Unit* t, long s, int f) : token(t), size(s), flags(f), mode(f & ZU_TOKEN_MODE_MASK), out(t), capacity(s - 1) {}

    // Appends n units from p (n > 1 only for a multi-byte character, which
    // is taken whole or not at all).  False when the token must end here:
    // cut silently, or failed.
    bool put(const Unit* p, int n)
    {
        if (length + n > capacity && !grown) {
            if ((flags & ZU_TOKEN_GROW) != 0 && (size - 2) * static_cast<long>(sizeof(Unit)) >= static_cast<long>(sizeof(void*))) {
                // Room for what is built, the whole rest of the text, and
                // the terminator: the token can never outgrow it.
                const auto room = static_cast<long>(restLength(p)) + size + 1;
                auto* block = static_cast<Unit*>(ramAllocC(static_cast<std::size_t>(room) * sizeof(Unit)));
                if (block == nullptr) {
                    failed = true;
                    return false;
                }
                std::memcpy(block, out, static_cast<std::size_t>(length) * sizeof(Unit));
                out = block;
                capacity = room - 1;
                grown = true;
            } else if ((flags & ZU_TOKEN_CUT) != 0 || mode == 4 || mode == 6) {
                return false;
            } else {
                report(ZU_MSG_TOKEN_TOO_LONG, out, length);
                failed = true;
                return false;
            }
        }
        for (int k = 0; k < n; ++k)
            out[length++] = p[k];
        return true;
    }

    void finish(bool word)
    {
        out[length] = 0;
        if (word && (flags & ZU_TOKEN_KEEP_CASE) == 0)
            strUpper(out, length);
        if (grown) {
            token[0] = out[0];
            token[1] = 0;
            std::memcpy(token + 2, &out, sizeof out);
        }
    }

    void discard()
    {
        if (grown)
            ramFreeC(out);
        grown = false;
        out = token;
        length = 0;
        token[0] = 0;
    }
};

template <typename Unit>
int tokenize(Unit* token, const Unit** text, int flags, long size, zuCPType type)
{
    if (size <= 0) {
        report(ZU_MSG_TOKEN_TOO_LONG, *text, 0);
        return 1;
    }
    Builder<Unit> b(token, size, flags);
    const int mode = b.mode;
    const Unit* p = *text;
    while (*p != 0 && isSpaceUnit(p, sizeAt(p, type)))
        p += sizeAt(p, type);
    token[0] = 0;
    if (*p == 0) {
        *text = p;
        return 0;
    }

    const Unit c = *p;
    const int first = sizeAt(p, type);
    const bool single = first == 1;
    auto take = [&](int n) {
        if (!b.put(p, n))
            return false;
        p += n;
        return true;
    };
    // The word rule of a mode (0 for the basic one).
    auto word = [&](int rule, bool beganWithDot) {
        while (*p != 0) {
            const int n = sizeAt(p, type);
            const Unit u = *p;
            bool ok = n > 1 || isLetter(u) || isDigit(u) || u == '_';
            if (!ok && (rule == 2 || rule == 6)) {
                if (u == '#' || u == '$') {
                    ok = true;
                } else if (u == '\\' && oneOf(p[1], "-+*/")) {
                    if (!take(1))
                        return;
                    ok = true;  // the character after the backslash goes through
                }
            }
            if (!ok && rule == 3 && u == '.')
                ok = !beganWithDot;
            if (!ok && rule == 4 && (u == ':' || u == '.'))
                ok = true;
            if (!ok || !take(n))
                return;
        }
    };
    auto digits = [&]() {
        while (isDigit(*p))
            if (!take(1))
                return false;
        return true;
    };

    bool upper = false;
    int unclosed = 0;
    if (mode == 1 && !(single && oneOf(c, ",()|"))) {
        bool protectedRun = false;
        while (*p != 0) {
            const int n = sizeAt(p, type);
            if (n == 1 && *p == '`') {
                protectedRun = !protectedRun;
            } else if (!protectedRun && n == 1 && (isSpaceUnit(p, n) || oneOf(*p, ",()|"))) {
                break;
            }
            if (!take(n))
                break;
        }
        upper = true;
    } else if (single && (c == '\'' || c == '`' || c == '"')) {
        const Unit quote = c;
        if (take(1)) {
            for (;;) {
                if (*p == 0) {
                    unclosed = 1;
                    break;
                }
                const int n = sizeAt(p, type);
                if (n == 1 && *p == quote) {
                    if (p[1] == quote) {
                        if (!b.put(p, 1))
                            break;
                        p += 2;  // a doubled quote is one quote in the token
                        continue;
                    }
                    take(1);
                    break;
                }
                if (!take(n))
                    break;
            }
        }
    } else if (isDigit(c)) {
        if (mode == 4) {
            word(4, false);
            upper = true;
        } else if (digits() && *p == '.' && !(mode == 3 && isLetter(p[1])) && take(1)) {
            digits();
        }
    } else if (c == '.' && isDigit(p[1])) {
        if (take(1))
            digits();
    } else if (single && (isLetter(c) || c == '_' || (c == '#' && (mode == 2 || mode == 6)))) {
        if (take(1))
            word(mode, false);
        upper = true;
    } else if (c == '.' && mode == 3) {
        if (take(1))
            word(3, true);
        upper = true;
    } else if (c == '{') {
        for (;;) {
            if (*p == 0) {
                unclosed = 1;
                break;
            }
            const int n = sizeAt(p, type);
            const bool closing = n == 1 && *p == '}';
            if (!take(n) || closing)
                break;
        }
    } else if (c == ':' && mode == 4) {
        if (take(1))
            word(4, false);
        upper = true;
    } else if ((c == '|' && p[1] == '|') || (c == '<' && (p[1] == '=' || p[1] == '>')) || (c == '>' && p[1] == '=') ||
               (c == '!' && oneOf(p[1], "<=>")) || (c == '*' && (p[1] == '*' || p[1] == '=')) ||
               (c == '=' && p[1] == '*')) {
        take(2);
    } else if (c == '(' && p[1] == '+' && p[2] == ')') {
        take(3);
    } else if (c == '?' && isLetter(p[1])) {
        if (take(1))
            word(0, false);
    } else if (!single) {
        word(0, false);
        upper = true;
    } else {
        take(1);
    }

    if (b.failed) {
        b.discard();
        return 1;
    }
    if (unclosed) {
        b.finish(false);
        report(ZU_MSG_TOKEN_UNCLOSED, b.out, b.length);
        if (b.grown) {
            ramFreeC(b.out);
            token[0] = 0;
        }
        *text = p;
        return 1;
    }
    b.finish(upper);
    *text = p;
    return 0;
}
}  // namespace

int buttoken(char* token, const char** text, int flags, long size, zuCPType type)
{
    return tokenize(token, text, flags, size, type);
}
int buttoken(char* token, char** text, int flags, long size, zuCPType type)
{
    return tokenize(token, const_cast<const char**>(text), flags, size, type);
}
int buttoken(unsigned short* token, const unsigned short** text, int flags, long size, zuCPType type)
{
    return tokenize(token, text, flags, size, type);
}
int buttoken(unsigned short* token, unsigned short** text, int flags, long size, zuCPType type)
{
    return tokenize(token, const_cast<const unsigned short**>(text), flags, size, type);
}
