// Quoting and text clean-ups of ZuString and ZuStringW.
#include <cstring>

#include "strcopy.h"
#include "zustring.h"

namespace {

// Quote tracking of the clean-ups.  q1 of 0 turns it off.
template <class Unit>
struct QuoteTracker {
    Unit q1, q2, q3;
    Unit open = 0;
    bool inside = false;
    // Feeds one unit; true when it lies outside quotes (a unit that opens or
    // closes a quote counts as inside).
    bool outside(Unit c)
    {
        if (q1 == 0)
            return true;
        if (inside) {
            if (c == open)
                inside = false;
            return false;
        }
        if (c == q1 || c == q2 || c == q3) {
            inside = true;
            open = c;
            return false;
        }
        return true;
    }
};

// Each run of breaking units outside quotes becomes one blank, or nothing at
// the end of the text.  A text without a breaking unit is left untouched.
template <class Str, class Unit, class IsBreak>
int collapseBreaks(Str& s, Unit q1, Unit q2, Unit q3, IsBreak isBreak)
{
    const Unit* data = s.getData();
    const unsigned long length = s.getLength();
    bool any = false;
    for (unsigned long i = 0; i < length && !any; ++i)
        any = isBreak(data[i]);
    if (!any)
        return 0;
    Str out;
    if (out.initialize(length) != 0)
        return 1;
    QuoteTracker<Unit> q{q1, q2, q3};
    for (unsigned long i = 0; i < length; ++i) {
        const Unit c = data[i];
        if (q.outside(c) && isBreak(c)) {
            const bool last = i + 1 >= length || data[i + 1] == 0 || isBreak(data[i + 1]);
            if (!last && out.concat(static_cast<Unit>(' ')) != 0)
                return 1;
            continue;
        }
        if (out.concat(c) != 0)
            return 1;
    }
    return s.replaceAll(out);
}

template <class Str, class Unit>
int lineBreaks(Str& s, unsigned long width, Unit q1, Unit q2, Unit q3)
{
    const unsigned long length = s.getLength();
    if (length <= width)
        return 0;
    Str out;
    if (out.initialize(length + 100) != 0)
        return 1;
    QuoteTracker<Unit> q{q1, q2, q3};
    const Unit* data = s.getData();
    unsigned long lineStart = 0;
    long lastBlank = -1;
    for (unsigned long i = 0; i < length; ++i) {
        const Unit c = data[i];
        const bool outside = q.outside(c);
        if (out.concat(c) != 0)
            return 1;
        const unsigned long end = out.getLength();
        if (c == '\n') {
            lineStart = end;
            lastBlank = -1;
        } else if (c == ' ' && outside) {
            lastBlank = static_cast<long>(end - 1);
        }
        if (end - lineStart > width && lastBlank >= static_cast<long>(lineStart)) {
            out.getWritableData()[lastBlank] = '\n';
            lineStart = static_cast<unsigned long>(lastBlank) + 1;
            lastBlank = -1;
        }
    }
    return s.replaceAll(out);
}

}  // namespace

// ---- ZuString --------------------------------------------------------------

int ZuString::replaceAll(const ZuString& other)
{
    return changeBytes(0, length_, other.getLength() == 0 ? nullptr : other.getData(), other.getLength());
}

int ZuString::addQuotes(char quote)
{
    ZuString out;
    if (out.initialize(2 * static_cast<unsigned long>(length_) + 2) != 0)
        return 1;
    strCopyQuoted(out.data_, data_ == nullptr ? "" : data_, static_cast<long>(length_), type_, quote);
    out.length_ = out.length2_ = static_cast<uint32_t>(std::strlen(out.data_));
    return replaceAll(out);
}

int ZuString::removeQuotes()
{
    if (data_ == nullptr || length_ < 2)
        return 0;
    length_ = length2_ = static_cast<uint32_t>(strRemoveQuotes(data_, static_cast<long>(length_), data_[0], type_));
    data_[length_] = 0;
    return 0;
}

int ZuString::addQuotedBytes(const ZuSubString& view, char quote)
{
    if (concat(quote) != 0)
        return 1;
    for (unsigned long i = 0; i < view.getLength(); ++i) {
        const char c = view.getData()[i];
        if ((c == quote && concat(quote) != 0) || concat(c) != 0)
            return 1;
    }
    return concat(quote);
}

int ZuString::insertLineBreaks(unsigned long width, char q1, char q2, char q3)
{
    return lineBreaks(*this, width, q1, q2, q3);
}

int ZuString::removeLineBreaks(char q1, char q2, char q3)
{
    return collapseBreaks(*this, q1, q2, q3, [](char c) { return c == '\n'; });
}

int ZuString::removeTabs(char q1, char q2, char q3)
{
    return collapseBreaks(*this, q1, q2, q3, [](char c) { return c == '\t'; });
}

int ZuString::removeLineFeeds(char q1, char q2, char q3)
{
    return collapseBreaks(*this, q1, q2, q3, [](char c) { return c == '\r' || c == '\n'; });
}

int ZuString::removeComments()
{
    for (;;) {
        const unsigned long dash = findSubString("--");
        if (dash >= length_)
            break;
        unsigned long end = dash + 2;
        while (end < length_ && data_[end] != '\n')
            ++end;
        if (changeBytes(dash, end - dash, nullptr, 0) != 0)
            return 1;
    }
    for (;;) {
        const unsigned long open = findSubString("/*");
        if (open >= length_)
            break;
        const unsigned long close = findSubString("*/", open + 2);
        if (close >= length_) {
            // No closing mark: the delete counts two bytes past the end, so
            // the text ends two bytes before the opening mark.
            length_ = length2_ = static_cast<uint32_t>(open >= 2 ? open - 2 : 0);
            data_[length_] = 0;
            break;
        }
        if (changeBytes(open, close + 2 - open, nullptr, 0) != 0)
            return 1;
    }
    return 0;
}

// ---- ZuStringW -------------------------------------------------------------

int ZuStringW::replaceAll(const ZuStringW& other)
{
    return changeChars(0, length_, other.getLength() == 0 ? nullptr : other.getData(), other.getLength());
}

int ZuStringW::addQuotes(unsigned short quote)
{
    ZuStringW out;
    if (out.initialize(2 * static_cast<unsigned long>(length_) + 2) != 0 || out.addQuotedChars(*this, quote) != 0)
        return 1;
    return replaceAll(out);
}

int ZuStringW::removeQuotes()
{
    if (data_ == nullptr || length_ < 2)
        return 0;
    length_ = static_cast<uint32_t>(strRemoveQuotes(data_, static_cast<long>(length_), data_[0], ZU_CP_UTF16));
    data_[length_] = 0;
    return 0;
}

int ZuStringW::addQuotedChars(const ZuSubStringW& view, unsigned short quote)
{
    if (concat(quote) != 0)
        return 1;
    for (unsigned long i = 0; i < view.getLength(); ++i) {
        const unsigned short c = view.getData()[i];
        if ((c == quote && concat(quote) != 0) || concat(c) != 0)
            return 1;
    }
    return concat(quote);
}

int ZuStringW::insertLineBreaks(unsigned long width, unsigned short q1, unsigned short q2, unsigned short q3)
{
    return lineBreaks(*this, width, q1, q2, q3);
}

int ZuStringW::removeLineBreaks(unsigned short q1, unsigned short q2, unsigned short q3)
{
    return collapseBreaks(*this, q1, q2, q3, [](unsigned short c) { return c == '\n'; });
}

int ZuStringW::removeTabs(unsigned short q1, unsigned short q2, unsigned short q3)
{
    return collapseBreaks(*this, q1, q2, q3, [](unsigned short c) { return c == '\t'; });
}

int ZuStringW::removeLineFeeds(unsigned short q1, unsigned short q2, unsigned short q3)
{
    return collapseBreaks(*this, q1, q2, q3, [](unsigned short c) { return c == '\r' || c == '\n'; });
}
