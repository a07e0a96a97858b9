#include "substring.h"

#include <cctype>
#include <cstring>

#include "../encoding/ux.h"

#include "../encoding/mbchar.h"
#include "../platform/ram.h"
#include "array.h"
#include "strcmp.h"
#include "strcopy.h"
#include "zustring.h"

namespace {
unsigned long unitLength(const unsigned short* text) { return static_cast<unsigned long>(uxUnicodeLen(text)); }
// Size of the character at `pos` of a view of `length` bytes, never past
// the view: the locale's test looks at two bytes, which at the last byte
// would be the byte behind the view.
unsigned long charStep(const char* data, unsigned long pos, unsigned long length, zuCPType type)
{
    if (pos + 1 >= length)
        return 1;
    const unsigned long size = static_cast<unsigned long>(zuCharSize(data + pos, type));
    if (size == 0)
        return 1;
    return pos + size > length ? length - pos : size;
}

}  // namespace

// ---- ZuSubString -----------------------------------------------------------

ZuSubString::ZuSubString(const char* text, unsigned long length, zuCPType type) { initialize(text, length, type); }

ZuSubString::ZuSubString(const char* text, zuCPType type)
{
    initialize(text, text == nullptr ? 0 : std::strlen(text), type);
}

ZuSubString::~ZuSubString() = default;

void ZuSubString::initialize(const char* text, unsigned long length) { initialize(text, length, ZU_CP_LOCALE); }

void ZuSubString::initialize(const char* text, unsigned long length, zuCPType type)
{
    data_ = const_cast<char*>(text);
    length_ = length2_ = static_cast<uint32_t>(length);
    type_ = type;
}

unsigned long ZuSubString::findChar(char c, unsigned long start) const
{
    if (data_ == nullptr)
        return length_;
    for (unsigned long pos = start; pos < length_; pos += charStep(data_, pos, length_, type_))
        if (data_[pos] == c)
            return pos;
    return length_;
}

unsigned long ZuSubString::findSubString(const char* text, unsigned long start) const
{
    if (data_ == nullptr || text == nullptr)
        return length_;
    const unsigned long n = std::strlen(text);
    if (n == 0 || n > length_)
        return length_;
    for (unsigned long pos = start; pos + n <= length_; pos += charStep(data_, pos, length_, type_))
        if (std::memcmp(data_ + pos, text, n) == 0)
            return pos;
    return length_;
}

unsigned short ZuSubString::countChar(char c) const
{
    unsigned short count = 0;
    for (unsigned long i = 0; i < length_ && data_[i] != 0; ++i)
        if (data_[i] == c)
            ++count;
    return count;
}

unsigned long ZuSubString::hash() const
{
    char head[6] = {};
    const unsigned long n = length_ < 5 ? length_ : 5;
    if (n > 0)
        std::memcpy(head, data_, n);
    strUpper(head, static_cast<long>(n));
    unsigned long sum = 0;
    for (unsigned long i = 0; i < n; ++i)
        sum += static_cast<unsigned char>(head[i]);
    return sum;
}

int ZuSubString::compare(const ZuObject* other) const
{
    const auto* o = static_cast<const ZuSubString*>(other);
    const int r = strCompareCi(data_, static_cast<long>(length_), o->data_, static_cast<long>(o->length_), type_);
    return static_cast<short>(r);
}

unsigned long ZuSubString::indexInSet(const char* const* table, unsigned long count) const
{
    for (unsigned long i = 0; i < count; ++i)
        if (table[i] != nullptr && std::strlen(table[i]) == length_ && std::memcmp(table[i], data_, length_) == 0)
            return i;
    return count;
}

unsigned long ZuSubString::indexInSetCi(const char* const* table, unsigned long count) const
{
    for (unsigned long i = 0; i < count; ++i)
        if (table[i] != nullptr &&
            strEqualCi(table[i], static_cast<long>(std::strlen(table[i])), data_, static_cast<long>(length_), type_))
            return i;
    return count;
}

void ZuSubString::rightBlankTrim()
{
    while (length_ > 0 && std::isspace(static_cast<unsigned char>(data_[length_ - 1])))
        --length_;
    length2_ = length_;
}

char* ZuSubString::getCopyUnquoted(char* buffer) const
{
    strCopyUnquoted(buffer, data_, static_cast<long>(length_));
    return buffer;
}

char* ZuSubString::getCopyQuoted(char* buffer, char quote) const
{
    strCopyQuoted(buffer, data_, static_cast<long>(length_), type_, quote);
    return buffer;
}

int ZuSubString::copyQuotedStr(ZuString* string) const
{
    // The first byte is the quote.  A quote inside is dropped and the byte
    // behind it taken whatever it is, so a doubled quote gives one; a quote
    // as the last byte ends the copy.  A lead byte brings its trail byte.
    if (data_ == nullptr || length_ == 0)
        return 0;
    const char quote = data_[0];
    unsigned long i = 1;
    while (i < length_) {
        if (data_[i] == quote) {
            if (i + 1 >= length_)
                break;
            ++i;
            if (string->concat(data_[i]) != 0)
                return 1;
            ++i;
            continue;
        }
        const unsigned long step = charStep(data_, i, length_, type_);
        if (string->concat(data_ + i, step) != 0)
            return 1;
        i += step;
    }
    return 0;
}

int ZuSubString::getLines(ZuArray* lines)
{
    if (data_ == nullptr || length_ == 0)
        return 0;
    // The lines are cut by the length alone: no terminator is written, as a
    // view over someone else's text may have no byte to spare behind it.
    unsigned long start = 0;
    for (unsigned long i = 0; i <= length_; ++i) {
        if (i < length_ && data_[i] != '\n')
            continue;
        if (i > start) {
            auto* line = new ZuString;
            if (line == nullptr)
                return 1;
            if (line->initialize(data_ + start, i - start, type_) != 0 || lines->add(line) != 0) {
                delete line;
                return 1;
            }
        }
        start = i + 1;
    }
    return 0;
}

// ---- ZuSubStringW ----------------------------------------------------------

ZuSubStringW::ZuSubStringW(const unsigned short* text, unsigned long length) { initialize(text, length); }
ZuSubStringW::ZuSubStringW(const unsigned short* text) { initialize(text, text == nullptr ? 0 : unitLength(text)); }
ZuSubStringW::~ZuSubStringW() = default;

void ZuSubStringW::initialize(const unsigned short* text, unsigned long length)
{
    data_ = const_cast<unsigned short*>(text);
    length_ = static_cast<uint32_t>(length);
}

unsigned long ZuSubStringW::findChar(unsigned short c, unsigned long start) const
{
    if (data_ == nullptr)
        return length_;
    for (unsigned long pos = start; pos < length_; ++pos)
        if (data_[pos] == c)
            return pos;
    return length_;
}

unsigned long ZuSubStringW::findSubString(const unsigned short* text, unsigned long start) const
{
    if (data_ == nullptr || text == nullptr)
        return length_;
    const unsigned long n = unitLength(text);
    if (n == 0 || n > length_)
        return length_;
    for (unsigned long pos = start; pos + n <= length_; ++pos)
        if (std::memcmp(data_ + pos, text, n * 2) == 0)
            return pos;
    return length_;
}

unsigned short ZuSubStringW::countChar(unsigned short c) const
{
    unsigned short count = 0;
    for (unsigned long i = 0; i < length_ && data_[i] != 0; ++i)
        if (data_[i] == c)
            ++count;
    return count;
}

unsigned long ZuSubStringW::hash() const
{
    unsigned short head[7] = {};
    const unsigned long n = length_ < 6 ? length_ : 6;
    if (n > 0)
        std::memcpy(head, data_, n * 2);
    strUpper(head, static_cast<long>(n));
    unsigned long sum = 0;
    for (unsigned long i = 0; i < n; ++i)
        sum += static_cast<unsigned long>(head[i]) << (3 * i);
    return sum;
}

int ZuSubStringW::compare(const ZuObject* other) const
{
    const auto* o = static_cast<const ZuSubStringW*>(other);
    const int r = strCompareCi(data_, static_cast<long>(length_), o->data_, static_cast<long>(o->length_), ZU_CP_UTF16);
    return static_cast<short>(r);
}

unsigned long ZuSubStringW::indexInSet(const unsigned short* const* table, unsigned long count) const
{
    for (unsigned long i = 0; i < count; ++i)
        if (table[i] != nullptr && unitLength(table[i]) == length_ && std::memcmp(table[i], data_, length_ * 2) == 0)
            return i;
    return count;
}

unsigned long ZuSubStringW::indexInSetCi(const unsigned short* const* table, unsigned long count) const
{
    for (unsigned long i = 0; i < count; ++i)
        if (table[i] != nullptr && strEqualCi(table[i], static_cast<long>(unitLength(table[i])), data_,
                                              static_cast<long>(length_), ZU_CP_UTF16))
            return i;
    return count;
}

void ZuSubStringW::rightBlankTrim()
{
    while (length_ > 0 && data_[length_ - 1] < 0x80 && std::isspace(data_[length_ - 1]))
        --length_;
}
