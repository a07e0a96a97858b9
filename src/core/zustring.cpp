#include "../encoding/uxreport_impl.h"
#include "zustring.h"

#include <unicode/ustring.h>

#include <cstdio>
#include <cstring>
#include <cwchar>
#include <type_traits>

#include "../encoding/codepage.h"
#include "../encoding/mbchar.h"
#include "../encoding/ux.h"
#include "../platform/ram.h"
#include "errorlist.h"
#include "strcopy.h"

namespace {

void reportBorrowed() { ZuErrorKeeper::addError(new ZuError(ZU_MSG_STRING_BORROWED, ErrTypeError)); }

// A copy of `n` units of `text` when it lies inside [begin, end): the buffer
// it points into may move when the string grows.
template <class Unit>
struct StableSource {
    Unit* copy = nullptr;
    const Unit* text;
    StableSource(const Unit* t, unsigned long n, const Unit* begin, const Unit* end) : text(t)
    {
        if (t != nullptr && begin != nullptr && t >= begin && t < end) {
            copy = static_cast<Unit*>(ramAllocC((n + 1) * sizeof(Unit)));
            if (copy != nullptr)
                std::memcpy(copy, t, n * sizeof(Unit));
            text = copy;
        }
    }
    ~StableSource() { ramFreeC(copy); }
    bool failed(const Unit* original) const { return original != nullptr && text == nullptr; }
};

template <class Unit>
unsigned long unitLength(const Unit* text)
{
    unsigned long n = 0;
    while (text[n] != 0)
        ++n;
    return n;
}

// Reallocates a string buffer to exactly `capacity` units, keeping what
// fits.  The shared part of both widths' resize.
template <class Unit>
int resizeBuffer(Unit*& data, uint32_t& capacity, int& owner, uint32_t& length, unsigned long wanted)
{
    if (data != nullptr && owner == 0) {
        reportBorrowed();
        return 1;
    }
    if (wanted == 0)
        wanted = 1;
    if (wanted > 0xFFFFFFFFul) {
        ramAddMemoryError();
        return 1;
    }
    auto* grown = static_cast<Unit*>(ramAllocC(wanted * sizeof(Unit)));
    if (grown == nullptr)
        return 1;
    const unsigned long keep = data == nullptr ? 0 : (length < wanted ? length : wanted - 1);
    if (keep > 0)
        std::memcpy(grown, data, keep * sizeof(Unit));
    grown[keep] = 0;
    ramFreeC(data);
    data = grown;
    capacity = static_cast<uint32_t>(wanted);
    owner = 1;
    if (length > keep)
        length = static_cast<uint32_t>(keep);
    return 0;
}

// The stretch replacement of both widths.  The tail behind the stretch and
// the number of units copied are taken from the low 16 bits of their
// lengths, as callers of this family have always seen: in a text longer than
// 64 KB a change in the middle moves only part of the tail.  Both counts are
// bounded by the real ones, so nothing is read or written outside the text,
// and units that the shortened copy leaves unset are cleared.
template <class Str, class Unit>
int changeUnits(Str& s, Unit*& data, uint32_t& length, unsigned long position, unsigned long oldLength,
                const Unit* text, unsigned long newLength)
{
    if (text != nullptr && newLength == 0)
        newLength = unitLength(text);
    if (position > length)
        position = length;
    if (oldLength > length - position)
        oldLength = length - position;
    StableSource<Unit> source(text, newLength, data, data + length);
    if (source.failed(text))
        return 1;
    if (newLength > oldLength && s.ensureRoom(length + (newLength - oldLength) + 1) != 0)
        return 1;
    const unsigned long realTail = length - position - oldLength;
    if (newLength != oldLength && realTail > 0) {
        const unsigned long shortTail = ((length & 0xFFFFu) - position - oldLength) & 0xFFFFu;
        const unsigned long tail = shortTail < realTail ? shortTail : realTail;
        std::memmove(data + position + newLength, data + position + oldLength, tail * sizeof(Unit));
    }
    const unsigned long copied = (newLength & 0xFFFFu) < newLength ? (newLength & 0xFFFFu) : newLength;
    if (source.text != nullptr)
        std::memcpy(data + position, source.text, copied * sizeof(Unit));
    if (source.text == nullptr || copied < newLength) {
        const unsigned long from = source.text == nullptr ? 0 : copied;
        std::memset(data + position + from, 0, (newLength - from) * sizeof(Unit));
    }
    length = static_cast<uint32_t>(length - oldLength + newLength);
    if (data != nullptr)
        data[length] = 0;
    return 0;
}

// Every occurrence of `oldText` replaced, from position 0, going on behind
// each replacement so that replacement text is not searched again.  The
// shared loop of both widths; `change` is changeBytes or changeChars.
template <class Str, class Unit, class Change>
int replaceEvery(Str& s, const Unit* oldText, unsigned long oldLength, const Unit* newText, unsigned long newLength,
                 Change change)
{
    if (s.getLength() == 0 || oldText == nullptr || *oldText == 0)
        return 0;
    if (newText != nullptr && newLength == 0)
        newLength = unitLength(newText);
    unsigned long pos = 0;
    while (pos < s.getLength()) {
        const unsigned long found = s.findSubString(oldText, pos);
        if (found >= s.getLength())
            break;
        if ((s.*change)(found, oldLength, newText, newLength) != 0)
            return 1;
        pos = found + newLength;
    }
    return 0;
}

// A number in decimal appended, for both widths.
template <class Str, class Number>
int concatNumber(Str& s, Number value)
{
    char digits[24];
    const int n = std::is_signed_v<Number> ? std::snprintf(digits, sizeof digits, "%lld", static_cast<long long>(value))
                                           : std::snprintf(digits, sizeof digits, "%llu",
                                                           static_cast<unsigned long long>(value));
    return s.concat(digits, static_cast<unsigned long>(n));
}

}  // namespace

// ---- ZuString --------------------------------------------------------------

ZuString::~ZuString() { unInitialize(); }

int ZuString::resize(unsigned long capacity)
{
    return resizeBuffer(data_, capacity_, owner_, length_, capacity) == 0 ? (length2_ = length_, 0) : 1;
}

int ZuString::ensure(unsigned long need)
{
    if (data_ != nullptr && capacity_ >= need)
        return 0;
    return resize(need);
}

int ZuString::initialize(const char* text) { return initialize(text, text == nullptr ? 0 : std::strlen(text), ZU_CP_LOCALE); }
int ZuString::initialize(const char* text, unsigned long length) { return initialize(text, length, ZU_CP_LOCALE); }
int ZuString::initialize(const char* text, zuCPType type)
{
    return initialize(text, text == nullptr ? 0 : std::strlen(text), type);
}

int ZuString::initialize(const char* text, unsigned long length, zuCPType type)
{
    auto* buffer = static_cast<char*>(ramAllocC(length + 1));
    if (buffer == nullptr)
        return 1;
    if (text != nullptr && length > 0)
        std::memcpy(buffer, text, length);
    buffer[length] = 0;
    unInitialize();
    data_ = buffer;
    capacity_ = static_cast<uint32_t>(length + 1);
    owner_ = 1;
    ZuSubString::initialize(buffer, length, type);
    return 0;
}

int ZuString::initialize(unsigned long capacity) { return initialize(capacity, ZU_CP_LOCALE); }

int ZuString::initialize(unsigned long capacity, zuCPType type)
{
    auto* buffer = static_cast<char*>(ramAllocC(capacity + 1));
    if (buffer == nullptr)
        return 1;
    buffer[0] = 0;
    unInitialize();
    ZuSubString::initialize(buffer, 0, type);
    capacity_ = static_cast<uint32_t>(capacity + 1);
    owner_ = 1;
    return 0;
}

void ZuString::initializeWithBuffer(char* buffer, unsigned long capacity, unsigned long length)
{
    initializeWithBuffer(buffer, capacity, ZU_CP_LOCALE, length);
}

void ZuString::initializeWithBuffer(char* buffer, unsigned long capacity, zuCPType type, unsigned long length)
{
    unInitialize();
    ZuSubString::initialize(buffer, length, type);
    capacity_ = static_cast<uint32_t>(capacity);
    owner_ = 0;
}

void ZuString::initializeTakeBuffer(char* buffer, unsigned long capacity, zuCPType type, unsigned long length)
{
    initializeWithBuffer(buffer, capacity, type, length);
    owner_ = 1;
}

void ZuString::unInitialize()
{
    if (owner_ != 0)
        ramFreeC(data_);
    data_ = nullptr;
    length_ = length2_ = 0;
    capacity_ = 0;
    owner_ = 0;
}

int ZuString::concat(char byte)
{
    if (ensure(static_cast<unsigned long>(length_) + 2) != 0)
        return 1;
    data_[length_++] = byte;
    length2_ = length_;
    return 0;
}

int ZuString::concat(const char* text) { return text == nullptr ? 0 : concat(text, std::strlen(text)); }

int ZuString::concat(const char* text, unsigned long length)
{
    if (text == nullptr || length == 0)
        return 0;
    StableSource<char> source(text, length, data_, data_ + capacity_);
    if (source.failed(text) || ensure(static_cast<unsigned long>(length_) + length + 1) != 0)
        return 1;
    std::memcpy(data_ + length_, source.text, length);
    length_ = length2_ = static_cast<uint32_t>(length_ + length);
    return 0;
}

int ZuString::concat(unsigned long number) { return concatNumber(*this, number); }

int ZuString::concat(long number) { return concatNumber(*this, number); }

int ZuString::changeBytes(unsigned long position, unsigned long oldLength, const char* text, unsigned long newLength)
{
    struct Room {
        ZuString* self;
        int ensureRoom(unsigned long need) { return self->ensure(need); }
    } room{this};
    const int rc = changeUnits(room, data_, length_, position, oldLength, text, newLength);
    length2_ = length_;
    return rc;
}

int ZuString::replaceSubString(const char* oldText, unsigned long oldLength, const char* newText,
                               unsigned long newLength)
{
    return replaceEvery(*this, oldText, oldLength, newText, newLength, &ZuString::changeBytes);
}

int ZuString::replaceSubString(const char* oldText, const char* newText)
{
    return replaceSubString(oldText, oldText == nullptr ? 0 : std::strlen(oldText), newText,
                            newText == nullptr ? 0 : std::strlen(newText));
}

int ZuString::replaceSubString(const ZuSubString& view, const char* text, unsigned long length)
{
    if (view.getData() < data_ || view.getData() > data_ + length_)
        return 1;
    return changeBytes(static_cast<unsigned long>(view.getData() - data_), view.getLength(), text, length);
}

int ZuString::forceEol(unsigned long count)
{
    unsigned long have = 0;
    while (have < length_ && data_[length_ - 1 - have] == '\n')
        ++have;
    for (; have < count; ++have)
        if (concat('\n') != 0)
            return 1;
    if (data_ != nullptr)
        data_[length_] = 0;
    return 0;
}

// ---- ZuStringW -------------------------------------------------------------

ZuStringW::~ZuStringW()
{
    unInitialize();
    ramFreeC(narrow_);
}

int ZuStringW::resize(unsigned long capacity) { return resizeBuffer(data_, capacity_, owner_, length_, capacity); }

int ZuStringW::ensure(unsigned long need)
{
    if (data_ != nullptr && capacity_ >= need)
        return 0;
    return resize(need);
}

int ZuStringW::initialize(const unsigned short* text)
{
    return initialize(text, text == nullptr ? 0 : unitLength(text));
}

int ZuStringW::initialize(const unsigned short* text, unsigned long length)
{
    auto* buffer = static_cast<unsigned short*>(ramAllocC((length + 1) * 2));
    if (buffer == nullptr)
        return 1;
    if (text != nullptr && length > 0)
        std::memcpy(buffer, text, length * 2);
    buffer[length] = 0;
    unInitialize();
    ZuSubStringW::initialize(buffer, length);
    capacity_ = static_cast<uint32_t>(length + 1);
    owner_ = 1;
    return 0;
}

int ZuStringW::initialize(unsigned long capacity)
{
    auto* buffer = static_cast<unsigned short*>(ramAllocC((capacity + 1) * 2));
    if (buffer == nullptr)
        return 1;
    buffer[0] = 0;
    unInitialize();
    ZuSubStringW::initialize(buffer, 0);
    capacity_ = static_cast<uint32_t>(capacity + 1);
    owner_ = 1;
    return 0;
}

void ZuStringW::initializeWithBuffer(unsigned short* buffer, unsigned long capacity, unsigned long length)
{
    unInitialize();
    ZuSubStringW::initialize(buffer, length);
    capacity_ = static_cast<uint32_t>(capacity);
    owner_ = 0;
}

void ZuStringW::initializeTakeBuffer(unsigned short* buffer, unsigned long capacity, unsigned long length)
{
    initializeWithBuffer(buffer, capacity, length);
    owner_ = 1;
}

void ZuStringW::unInitialize()
{
    if (owner_ != 0)
        ramFreeC(data_);
    data_ = nullptr;
    length_ = 0;
    capacity_ = 0;
    owner_ = 0;
}

int ZuStringW::initialize(const char* text, unsigned long length, zuCPType type)
{
    if (type == ZU_CP_UTF16)  // the bytes are UTF-16 already: `length` units
        return initialize(reinterpret_cast<const unsigned short*>(text), length);
    if (type == ZU_CP_LOCALE) {
        if (initialize(2 * length + 1) != 0)
            return 1;
        unsigned long in = 0, out = 0;
        std::mbstate_t state{};
        while (in < length) {
            const auto b = static_cast<unsigned char>(text[in]);
            if (b < 0x80) {
                data_[out++] = b;
                ++in;
                continue;
            }
            const unsigned long size = in + 1 < length ? static_cast<unsigned long>(zuCharSize(text + in, type)) : 1;
            if (size == 0 || size > length - in)
                break;
            wchar_t wc = 0;
            state = std::mbstate_t{};
            const size_t used = std::mbrtowc(&wc, text + in, size, &state);
            if (used == static_cast<size_t>(-1) || used == static_cast<size_t>(-2))
                break;
            const auto code = static_cast<uint32_t>(wc);
            if (code >= 0x10000) {
                data_[out++] = static_cast<unsigned short>(0xD7C0 + (code >> 10));
                data_[out++] = static_cast<unsigned short>(0xDC00 | (code & 0x3FF));
            } else {
                data_[out++] = static_cast<unsigned short>(code);
            }
            in += size;
        }
        data_[out] = 0;
        length_ = static_cast<uint32_t>(out);
        return 0;
    }
    // UTF-8.
    if (initialize(length + 1) != 0)
        return 1;
    UErrorCode status = U_ZERO_ERROR;
    int32_t produced = 0;
    u_strFromUTF8(reinterpret_cast<UChar*>(data_), static_cast<int32_t>(capacity_), &produced, text,
                  static_cast<int32_t>(length), &status);
    if (U_FAILURE(status)) {
        ZuErrorKeeper::addError(new ZuError(ZU_MSG_CONV_FAILED, ErrTypeError, ZU_STATE_01004));
        return 1;
    }
    // The length stays the input's byte count, as users of these strings
    // terminate by it; the units behind what ICU produced are cleared
    // rather than left undefined.
    for (unsigned long i = static_cast<unsigned long>(produced); i < length; ++i)
        data_[i] = 0;
    length_ = static_cast<uint32_t>(length);
    data_[length_] = 0;
    return 0;
}

int ZuStringW::initialize(const char* text, unsigned long length, UConverter* converter)
{
    if (initialize(length + 1) != 0)
        return 1;
    long written = 0;
    const ZuConvertReturn rc = uxAnsiToUCS2(data_, static_cast<long>(capacity_),
                                            reinterpret_cast<const unsigned char*>(text), static_cast<long>(length),
                                            &written, nullptr, converter, 0);
    length_ = static_cast<uint32_t>(written);
    data_[length_] = 0;
    return checkUXreturn(rc);
}

int ZuStringW::initialize(const char* text, unsigned long length, long codePage)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter* c = ucnv_open(ucnvIANAidToICUname(codePage), &status);
    if (U_FAILURE(status)) {
        ucnv_close(c);
        return reportOpenFailure(status, codePage);
    }
    const int rc = initialize(text, length, c);
    ucnv_close(c);
    return rc;
}

int ZuStringW::concat(unsigned short unit)
{
    if (ensure(static_cast<unsigned long>(length_) + 2) != 0)
        return 1;
    data_[length_++] = unit;
    return 0;
}

int ZuStringW::concat(const unsigned short* text) { return text == nullptr ? 0 : concat(text, unitLength(text)); }

int ZuStringW::concat(const unsigned short* text, unsigned long length)
{
    if (text == nullptr || length == 0)
        return 0;
    StableSource<unsigned short> source(text, length, data_, data_ + capacity_);
    if (source.failed(text) || ensure(static_cast<unsigned long>(length_) + length + 1) != 0)
        return 1;
    std::memcpy(data_ + length_, source.text, length * 2);
    length_ = static_cast<uint32_t>(length_ + length);
    return 0;
}

int ZuStringW::concat(const char* text, unsigned long length)
{
    if (text == nullptr || length == 0)
        return 0;
    if (ensure(static_cast<unsigned long>(length_) + length + 1) != 0)
        return 1;
    for (unsigned long i = 0; i < length; ++i)
        data_[length_ + i] = static_cast<unsigned char>(text[i]);
    length_ = static_cast<uint32_t>(length_ + length);
    return 0;
}

int ZuStringW::concat(unsigned long number) { return concatNumber(*this, number); }

int ZuStringW::concat(long number) { return concatNumber(*this, number); }

int ZuStringW::changeChars(unsigned long position, unsigned long oldLength, const unsigned short* text,
                           unsigned long newLength)
{
    struct Room {
        ZuStringW* self;
        int ensureRoom(unsigned long need) { return self->ensure(need); }
    } room{this};
    return changeUnits(room, data_, length_, position, oldLength, text, newLength);
}

int ZuStringW::replaceSubString(const unsigned short* oldText, unsigned long oldLength,
                                const unsigned short* newText, unsigned long newLength)
{
    return replaceEvery(*this, oldText, oldLength, newText, newLength, &ZuStringW::changeChars);
}

int ZuStringW::replaceSubString(const unsigned short* oldText, const unsigned short* newText)
{
    return replaceSubString(oldText, oldText == nullptr ? 0 : unitLength(oldText), newText,
                            newText == nullptr ? 0 : unitLength(newText));
}

int ZuStringW::forceEol(unsigned long count)
{
    unsigned long have = 0;
    while (have < length_ && data_[length_ - 1 - have] == '\n')
        ++have;
    for (; have < count; ++have)
        if (concat(static_cast<unsigned short>('\n')) != 0)
            return 1;
    if (data_ != nullptr)
        data_[length_] = 0;
    return 0;
}

const char* ZuStringW::asCStr(zuCPType type)
{
    ramFreeC(narrow_);
    narrow_ = static_cast<char*>(ramAllocC(3ul * length_ + 1));
    if (narrow_ == nullptr)
        return "Out Of Memory";
    if (type == ZU_CP_UTF8) {
        UErrorCode status = U_ZERO_ERROR;
        int32_t n = 0;
        u_strToUTF8(narrow_, static_cast<int32_t>(3 * length_ + 1), &n, reinterpret_cast<const UChar*>(data_),
                    static_cast<int32_t>(length_), &status);
        if (U_FAILURE(status))
            strCopy(narrow_, static_cast<long>(3 * length_ + 1), data_, static_cast<long>(length_));
        return narrow_;
    }
    unsigned long out = 0;
    for (unsigned long i = 0; i < length_; ++i) {
        uint32_t code = data_[i];
        if (code >= 0xD800 && code < 0xDC00 && i + 1 < length_ && data_[i + 1] >= 0xDC00 && data_[i + 1] < 0xE000)
            code = 0x10000 + ((code - 0xD800) << 10) + (data_[++i] - 0xDC00);
        char buf[MB_LEN_MAX];
        std::mbstate_t state{};
        const size_t n = std::wcrtomb(buf, static_cast<wchar_t>(code), &state);
        if (n == static_cast<size_t>(-1) || out + n > 3ul * length_)
            continue;  // a character the locale cannot write is left out
        std::memcpy(narrow_ + out, buf, n);
        out += n;
    }
    narrow_[out] = 0;
    return narrow_;
}
