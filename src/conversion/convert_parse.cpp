// Decimal text to integers (convert.h).
//
// One scanner serves every form: it reads units of either width up to a
// length or a NUL.  The unsigned base form accumulates in 64 bits and checks
// for overflow before each digit; the signed and narrower forms check the
// result against their type's limits.  A failure adds its error with the
// whole text as the parameter and leaves the caller's value alone.
#include "convert.h"

#include <climits>
#include <cstdint>
#include <limits>

#include "../core/errorlist.h"
#include "../core/substring.h"

namespace {

// Largest accumulator that one more digit cannot overflow, whatever the
// digit; equal to it, only digits up to 5 fit (2^64 - 1 ends in 5).
constexpr uint64_t kOverflowGuard = 1844674407370955161ull;
constexpr uint64_t kTwoTo63 = 9223372036854775808ull;

// Text of either width, ending at `length` or at a NUL before it.
template <class Unit>
struct Text {
    const Unit* data;
    unsigned long length;

    bool atEnd(unsigned long i) const { return i >= length || data[i] == 0; }
    unsigned unit(unsigned long i) const { return static_cast<unsigned>(data[i]); }
    // The six ASCII blanks.  zuIsWhiteSpace agrees on them in every locale;
    // a locale's further blanks are not taken, since the parse must not
    // depend on the locale (and a text with a length may have no NUL for the
    // locale's character functions to stop at).
    bool isBlank(unsigned long i) const
    {
        const unsigned c = unit(i);
        return c == ' ' || (c >= '\t' && c <= '\r');
    }
    unsigned long skipBlanks(unsigned long i) const
    {
        while (!atEnd(i) && isBlank(i))
            ++i;
        return i;
    }
    // The whole text, for the error's parameter.
    unsigned long extent() const
    {
        unsigned long n = 0;
        while (!atEnd(n))
            ++n;
        return n;
    }
};

template <class Unit>
Text<Unit> terminated(const Unit* text)
{
    return Text<Unit>{text, text == nullptr ? 0 : ULONG_MAX};
}

template <class Unit>
Text<Unit> bounded(const Unit* text, unsigned long length)
{
    return Text<Unit>{text, text == nullptr ? 0 : length};
}

void report(unsigned short number, const Text<unsigned char>& text)
{
    addError(number) << ZuSubString(reinterpret_cast<const char*>(text.data), text.extent());
}

void report(unsigned short number, const Text<unsigned short>& text)
{
    addError(number) << ZuSubStringW(text.data, text.extent());
}

// The base form from position i: blanks and '+' signs, digits, blanks, end.
template <class Unit>
int parseBase(const Text<Unit>& text, unsigned long i, uint64_t* value)
{
    while (!text.atEnd(i) && (text.isBlank(i) || text.unit(i) == '+'))
        ++i;
    uint64_t accumulator = 0;
    for (; !text.atEnd(i); ++i) {
        const unsigned c = text.unit(i);
        if (c < '0' || c > '9')
            break;
        const unsigned digit = c - '0';
        if (accumulator > kOverflowGuard || (accumulator == kOverflowGuard && digit > 5)) {
            report(ZU_MSG_VALUE_OUT_OF_RANGE, text);
            return 1;
        }
        accumulator = accumulator * 10 + digit;
    }
    i = text.skipBlanks(i);
    if (!text.atEnd(i)) {
        report(ZU_MSG_INVALID_CHARACTER, text);
        return 1;
    }
    *value = accumulator;
    return 0;
}

// Blanks, an optional '-', then the base form.  The magnitude may reach
// 2^63 only with the sign.
template <class Unit>
int parseSigned(const Text<Unit>& text, int64_t* value)
{
    unsigned long i = text.skipBlanks(0);
    const bool negative = !text.atEnd(i) && text.unit(i) == '-';
    if (negative)
        ++i;
    uint64_t magnitude = 0;
    if (parseBase(text, i, &magnitude) != 0)
        return 1;
    if (magnitude > (negative ? kTwoTo63 : kTwoTo63 - 1)) {
        report(ZU_MSG_VALUE_OUT_OF_RANGE, text);
        return 1;
    }
    *value = negative ? static_cast<int64_t>(0ull - magnitude) : static_cast<int64_t>(magnitude);
    return 0;
}

// Into any integer type: signed types through parseSigned, unsigned ones
// through the base form, then the type's own limits.
template <class T, class Unit>
int parseInto(const Text<Unit>& text, T* value)
{
    using Limits = std::numeric_limits<T>;
    if constexpr (Limits::is_signed) {
        int64_t wide = 0;
        if (parseSigned(text, &wide) != 0)
            return 1;
        if (wide < static_cast<int64_t>(Limits::min()) || wide > static_cast<int64_t>(Limits::max())) {
            report(ZU_MSG_VALUE_OUT_OF_RANGE, text);
            return 1;
        }
        if (value != nullptr)
            *value = static_cast<T>(wide);
    } else {
        uint64_t wide = 0;
        if (parseBase(text, 0, &wide) != 0)
            return 1;
        if (wide > static_cast<uint64_t>(Limits::max())) {
            report(ZU_MSG_VALUE_OUT_OF_RANGE, text);
            return 1;
        }
        if (value != nullptr)
            *value = static_cast<T>(wide);
    }
    return 0;
}

}  // namespace

int convert(const unsigned char* text, unsigned long long* value) { return parseInto(terminated(text), value); }
int convert(const unsigned char* text, long long* value) { return parseInto(terminated(text), value); }
int convert(const unsigned char* text, unsigned long* value) { return parseInto(terminated(text), value); }
int convert(const unsigned char* text, long* value) { return parseInto(terminated(text), value); }
int convert(const unsigned char* text, unsigned short* value) { return parseInto(terminated(text), value); }
int convert(const unsigned char* text, short* value) { return parseInto(terminated(text), value); }
int convert(const unsigned char* text, unsigned char* value) { return parseInto(terminated(text), value); }
int convert(const unsigned char* text, char* value) { return parseInto(terminated(text), value); }

int convert(const unsigned char* text, unsigned short length, unsigned long long* value)
{
    return parseInto(bounded(text, length), value);
}

int convert(const unsigned char* text, unsigned short length, long long* value)
{
    return parseInto(bounded(text, length), value);
}

int convert(const unsigned char* text, unsigned short length, unsigned long* value)
{
    return parseInto(bounded(text, length), value);
}

int convert(const unsigned char* text, unsigned short length, long* value)
{
    return parseInto(bounded(text, length), value);
}

int convert(const unsigned char* text, unsigned short length, unsigned short* value)
{
    return parseInto(bounded(text, length), value);
}

int convert(const unsigned char* text, unsigned short length, short* value)
{
    return parseInto(bounded(text, length), value);
}

int convert(const unsigned short* text, unsigned long long* value) { return parseInto(terminated(text), value); }
int convert(const unsigned short* text, long long* value) { return parseInto(terminated(text), value); }
int convert(const unsigned short* text, unsigned long* value) { return parseInto(terminated(text), value); }
int convert(const unsigned short* text, long* value) { return parseInto(terminated(text), value); }
int convert(const unsigned short* text, unsigned short* value) { return parseInto(terminated(text), value); }

int convert(const unsigned short* text, unsigned long length, unsigned long long* value)
{
    return parseInto(bounded(text, length), value);
}

int convert(const unsigned short* text, unsigned long length, long long* value)
{
    return parseInto(bounded(text, length), value);
}

int convert(const unsigned short* text, unsigned long length, unsigned long* value)
{
    return parseInto(bounded(text, length), value);
}

int convert(const unsigned short* text, unsigned long length, long* value)
{
    return parseInto(bounded(text, length), value);
}

int convert(const unsigned short* text, unsigned long length, unsigned short* value)
{
    return parseInto(bounded(text, length), value);
}
