#include "paramstring.h"

#include <cstdio>
#include <cstring>

#include "../encoding/ux.h"

namespace {
unsigned long unitLength(const unsigned short* text) { return static_cast<unsigned long>(uxUnicodeLen(text)); }
template <class Unit>
unsigned long placeholder(Unit* buffer, Unit letter, unsigned short ordinal)
{
    char text[16];
    const int n = std::snprintf(text, sizeof text, "%%%c%s%u", static_cast<char>(letter), ordinal > 9 ? "x" : "",
                                static_cast<unsigned>(ordinal));
    for (int i = 0; i <= n; ++i)
        buffer[i] = static_cast<Unit>(static_cast<unsigned char>(text[i]));
    return static_cast<unsigned long>(n);
}


// The quoted form of `text` (quote, text with its quotes doubled, quote) into
// a string of the same width.
template <class Str, class Unit>
int quoted(Str& out, const Unit* text, unsigned long length, Unit quote)
{
    if (out.concat(quote) != 0)
        return 1;
    for (unsigned long i = 0; i < length; ++i) {
        if (text[i] == quote && out.concat(quote) != 0)
            return 1;
        if (out.concat(text[i]) != 0)
            return 1;
    }
    return out.concat(quote);
}
}  // namespace

// ---- ZuParamString ---------------------------------------------------------

ZuParamString::~ZuParamString() = default;

int ZuParamString::initialize(const char* text) { return initialize(text, text == nullptr ? 0 : std::strlen(text)); }

int ZuParamString::initialize(const char* text, unsigned long length) { return initialize(text, length, ZU_CP_LOCALE); }

int ZuParamString::initialize(const char* text, unsigned long length, zuCPType type)
{
    ordinal_ = 0;
    flags_ = 0;
    if (ZuString::initialize(text, length, type) != 0) {
        flags_ |= FlagFailed;
        return 1;
    }
    return 0;
}

unsigned long ZuParamString::buildMatchString(char* buffer, char letter)
{
    return placeholder(buffer, letter, ++ordinal_);
}

int ZuParamString::replaceParam(char letter, const char* text, unsigned long length)
{
    char match[16];
    const unsigned long n = buildMatchString(match, letter);
    if (replaceSubString(match, n, length == 0 ? nullptr : text, length) != 0) {
        flags_ |= FlagFailed;
        return 1;
    }
    return 0;
}

int ZuParamString::setParam(const char* text) { return setParam(text, text == nullptr ? 0 : std::strlen(text)); }

int ZuParamString::setParam(const char* text, unsigned long length) { return replaceParam('s', text, length); }

int ZuParamString::setParam(const ZuSubString& view) { return setParam(view.getData(), view.getLength()); }

int ZuParamString::setParam(unsigned long number)
{
    char digits[24];
    const int n = std::snprintf(digits, sizeof digits, "%lu", number);
    return replaceParam('d', digits, static_cast<unsigned long>(n));
}

int ZuParamString::setParam(long number)
{
    char digits[24];
    const int n = std::snprintf(digits, sizeof digits, "%ld", number);
    return replaceParam('d', digits, static_cast<unsigned long>(n));
}

int ZuParamString::setQuotedParam(const char* text, char quote)
{
    ZuString q;
    if (quoted(q, text, text == nullptr ? 0 : std::strlen(text), quote) != 0) {
        flags_ |= FlagFailed;
        return 1;
    }
    return setParam(q.getData(), q.getLength());
}

ZuParamString& ZuParamString::operator<<(const char* text)
{
    if (!hasFailed())
        setParam(text);
    return *this;
}

ZuParamString& ZuParamString::operator<<(const ZuSubString& view)
{
    if (!hasFailed())
        setParam(view);
    return *this;
}

ZuParamString& ZuParamString::operator<<(unsigned long number)
{
    if (!hasFailed())
        setParam(number);
    return *this;
}

ZuParamString& ZuParamString::operator<<(long number)
{
    if (!hasFailed())
        setParam(number);
    return *this;
}

// ---- ZuParamStringW --------------------------------------------------------

ZuParamStringW::~ZuParamStringW() = default;

int ZuParamStringW::initialize(const unsigned short* text)
{
    return initialize(text, text == nullptr ? 0 : unitLength(text));
}

int ZuParamStringW::initialize(const unsigned short* text, unsigned long length)
{
    ordinal_ = 0;
    flags_ = 0;
    if (ZuStringW::initialize(text, length) != 0) {
        flags_ |= FlagFailed;
        return 1;
    }
    return 0;
}

unsigned long ZuParamStringW::buildMatchString(unsigned short* buffer, unsigned short letter)
{
    return placeholder(buffer, letter, ++ordinal_);
}

int ZuParamStringW::replaceParam(unsigned short letter, const unsigned short* text, unsigned long length)
{
    unsigned short match[16];
    const unsigned long n = buildMatchString(match, letter);
    if (replaceSubString(match, n, length == 0 ? nullptr : text, length) != 0) {
        flags_ |= FlagFailed;
        return 1;
    }
    return 0;
}

int ZuParamStringW::setParam(const unsigned short* text)
{
    return setParam(text, text == nullptr ? 0 : unitLength(text));
}

int ZuParamStringW::setParam(const unsigned short* text, unsigned long length) { return replaceParam('s', text, length); }

int ZuParamStringW::setParam(const ZuSubStringW& view) { return setParam(view.getData(), view.getLength()); }

int ZuParamStringW::setParam(unsigned long number)
{
    char digits[24];
    const int n = std::snprintf(digits, sizeof digits, "%lu", number);
    unsigned short wide[24];
    for (int i = 0; i <= n; ++i)
        wide[i] = static_cast<unsigned char>(digits[i]);
    return replaceParam('d', wide, static_cast<unsigned long>(n));
}

int ZuParamStringW::setParam(long number)
{
    char digits[24];
    const int n = std::snprintf(digits, sizeof digits, "%ld", number);
    unsigned short wide[24];
    for (int i = 0; i <= n; ++i)
        wide[i] = static_cast<unsigned char>(digits[i]);
    return replaceParam('d', wide, static_cast<unsigned long>(n));
}

int ZuParamStringW::setQuotedParam(const unsigned short* text, unsigned short quote)
{
    ZuStringW q;
    if (quoted(q, text, text == nullptr ? 0 : unitLength(text), quote) != 0) {
        flags_ |= FlagFailed;
        return 1;
    }
    return setParam(q.getData(), q.getLength());
}

ZuParamStringW& ZuParamStringW::operator<<(const unsigned short* text)
{
    if (!hasFailed())
        setParam(text);
    return *this;
}

ZuParamStringW& ZuParamStringW::operator<<(const ZuSubStringW& view)
{
    if (!hasFailed())
        setParam(view);
    return *this;
}

ZuParamStringW& ZuParamStringW::operator<<(unsigned long number)
{
    if (!hasFailed())
        setParam(number);
    return *this;
}

ZuParamStringW& ZuParamStringW::operator<<(long number)
{
    if (!hasFailed())
        setParam(number);
    return *this;
}
