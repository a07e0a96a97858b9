#include "mbchar.h"

#include <unicode/uchar.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <limits>

#include "../core/tablecopy_impl.h"
#include "../platform/ram.h"
#include "icucache.h"

// The locale is asked through the restartable calls (mbrlen, mbrtowc,
// wcrtomb) with a fresh state each time: for the stateless encodings that
// these primitives support they answer as mblen, mbtowc and wctomb do, and
// they keep no hidden state shared between threads.

namespace {
using uchar = unsigned char;

inline uchar byteAt(const char* p) { return static_cast<uchar>(*p); }

// UTF-8 size by the first byte, as zuCharSize gives it for type 3.
inline int utf8Size(uchar lead)
{
    if (lead < 192)
        return 1;
    if (lead < 224)
        return 2;
    if (lead < 240)
        return 3;
    return 4;
}

inline bool isContinuation(uchar byte) { return byte >= 0x80 && byte < 0xC0; }

// mblen(text, n) == 2, with n at most 2.
inline bool leadByte(const char* text, std::size_t available)
{
    std::mbstate_t state{};
    return std::mbrlen(text, available < 2 ? available : 2, &state) == 2;
}

// Size of the character at p when `remaining` bytes are left; a character
// cut by the end counts as the rest.
int boundedSize(const char* p, long remaining, zuCPType type)
{
    if (type == ZU_CP_UTF8) {
        const int size = utf8Size(byteAt(p));
        return size < remaining ? size : static_cast<int>(remaining);
    }
    return leadByte(p, static_cast<std::size_t>(remaining)) ? 2 : 1;
}

// One character of a terminated text decoded by the locale: its length (0
// for the NUL), or -1 when the bytes are no character.
int decode(const char* text, std::size_t available, wchar_t* code)
{
    std::mbstate_t state{};
    const std::size_t n = std::mbrtowc(code, text, available, &state);
    if (n == static_cast<std::size_t>(-1) || n == static_cast<std::size_t>(-2))
        return -1;
    return static_cast<int>(n);
}

int localeClass(const char* text, int (*test)(std::wint_t))
{
    wchar_t code = 0;
    if (decode(text, MB_CUR_MAX, &code) < 0)
        return 0;
    return test(static_cast<std::wint_t>(code)) != 0 ? 1 : 0;
}

int isSpace(std::wint_t c) { return std::iswspace(c); }
int isAlpha(std::wint_t c) { return std::iswalpha(c); }
int isAlnum(std::wint_t c) { return std::iswalnum(c); }

// The case walk of strUpper and strLower over [text, text + length).
char* mapCase(char* text, std::size_t length, int (*map)(int))
{
    char* p = text;
    char* const end = text + length;
    while (p < end) {
        const auto left = static_cast<std::size_t>(end - p);
        wchar_t code = 0;
        std::mbstate_t state{};
        const std::size_t used = std::mbrtowc(&code, p, left < MB_CUR_MAX ? left : MB_CUR_MAX, &state);
        if (used == static_cast<std::size_t>(-2))
            break;  // the character would pass the end
        if (used != static_cast<std::size_t>(-1)) {
            char encoded[MB_LEN_MAX];
            std::mbstate_t outState{};
            const std::size_t written = std::wcrtomb(encoded, static_cast<wchar_t>(map(static_cast<int>(code))), &outState);
            // Written in place even when its length differs from the
            // original's (the walk then goes on out of step, as intended),
            // but never past the end of the text.
            if (written != static_cast<std::size_t>(-1) && written <= left)
                std::memcpy(p, encoded, written);
        }
        p += leadByte(p, static_cast<std::size_t>(end - p)) ? 2 : 1;
    }
    return text;
}

template <typename Unit>
Unit* mapUnits(Unit* text, long length, int (*map)(int))
{
    for (long i = 0; i < length; ++i)
        text[i] = static_cast<Unit>(map(text[i]));
    return text;
}

long unitLength(const unsigned short* text)
{
    long n = 0;
    while (text[n] != 0)
        ++n;
    return n;
}

inline unsigned short swapUnit(unsigned short unit) { return static_cast<unsigned short>((unit >> 8) | (unit << 8)); }
}  // namespace

// ---------------------------------------------------------------------------
// Characters of a narrow text

int zuCharSize(const char* text, zuCPType type)
{
    if (type == ZU_CP_UTF8)
        return utf8Size(byteAt(text));
    return zuIsLeadByte(text) ? 2 : 1;
}

int zuUTF8CharLen(const char* text, long length)
{
    if (length <= 0)
        return 0;
    return boundedSize(text, length, ZU_CP_UTF8);
}

int zuIsLeadByte(const char* text) { return leadByte(text, 2) ? 1 : 0; }

int zuIsLeadByte(const char* text, long index) { return zuIsLeadByte(text + index); }

const char* zuCharNext(const char* text, zuCPType type)
{
    const int size = zuCharSize(text, type);
    // A UTF-8 lead byte promises trail bytes that a cut text does not have:
    // stop at the terminator rather than step over it.  (For the locale a
    // lead byte is one whose next byte completes it, so no NUL follows.)
    for (int i = 1; i < size; ++i)
        if (text[i] == 0)
            return text + i;
    return text + size;
}

long zuCharNext(const char* text, long index, zuCPType type) { return zuCharNext(text + index, type) - text; }

const char* zuCharPrev(const char* start, const char* text, zuCPType type)
{
    if (text <= start)
        return start;
    if (type == ZU_CP_UTF8) {
        // Back over up to three continuation bytes to a lead byte whose
        // character covers them; anything else is a character of one byte.
        // The scan stops at start, and at an ASCII byte, which no multi-byte
        // character contains.
        if (isContinuation(byteAt(text - 1))) {
            for (long back = 2; back <= 4 && text - back >= start; ++back) {
                const uchar b = byteAt(text - back);
                if (b >= 0xC0)
                    return utf8Size(b) >= back ? text - back : text - 1;
                if (b < 0x80)
                    break;
            }
        }
        return text - 1;
    }
    // The character at text decides, not the one before it.
    const long step = zuIsLeadByte(text) ? 2 : 1;
    return text - start < step ? start : text - step;
}

long zuCharPrev(const char* text, long index, zuCPType type)
{
    if (index <= 0)
        return 0;
    return zuCharPrev(text, text + index, type) - text;
}

const char* zuCharLast(const char* text, zuCPType type)
{
    const char* last = text;
    for (const char* p = text; *p != 0; p = zuCharNext(p, type))
        last = p;
    return last;
}

long zuCharLast(const char* text, long length, zuCPType type)
{
    long last = 0;
    for (long i = 0; i < length; i += boundedSize(text + i, length - i, type))
        last = i;
    return last;
}

int zuCharEqual(const char* a, const char* b, zuCPType type)
{
    const int size = zuCharSize(a, type);
    if (size != zuCharSize(b, type))
        return 0;
    // Byte by byte, so that a character cut by the terminator in both texts
    // is not compared past it.
    for (int i = 0; i < size; ++i) {
        if (a[i] != b[i])
            return 0;
        if (a[i] == 0)
            break;
    }
    return 1;
}

int zuCharEqual(const char* a, long indexA, const char* b, long indexB, zuCPType type)
{
    return zuCharEqual(a + indexA, b + indexB, type);
}

long zuCharLen(const char* text, zuCPType type)
{
    long count = 0;
    if (type == ZU_CP_UTF16) {
        // Units are read as byte pairs: the text need not be aligned.
        for (const char* p = text; p[0] != 0 || p[1] != 0; p += 2)
            ++count;
        return count;
    }
    for (const char* p = text; *p != 0; p = zuCharNext(p, type))
        ++count;
    return count;
}

long zuCharLen(const char* text, long length, zuCPType type)
{
    if (length <= 0)
        return 0;
    if (type == ZU_CP_UTF16)
        return length / 2;
    long count = 0;
    for (long i = 0; i < length; i += boundedSize(text + i, length - i, type))
        ++count;
    return count;
}

int zuIsWhiteSpace(const char* text) { return localeClass(text, isSpace); }
int zuIsAlpha(const char* text) { return localeClass(text, isAlpha); }
int zuIsAlphaNumeric(const char* text) { return localeClass(text, isAlnum); }

int zuIs2ndByte(const char* start, const char* position)
{
    const char* p = start;
    // mblen looks at most at p + 1, which is at or before position.
    while (p < position)
        p += zuIsLeadByte(p) ? 2 : 1;
    return p > position ? 1 : 0;
}

const char* zuSkipBlanks(const char* text)
{
    const char* p = text;
    for (;;) {
        wchar_t code = 0;
        const int n = decode(p, MB_CUR_MAX, &code);
        if (n <= 0 || std::iswspace(static_cast<std::wint_t>(code)) == 0)
            return p;
        p += n;
    }
}

int zuStrSBCSChar(const char* start, const char* position, char byte)
{
    // The trail-byte test comes first: it also rejects a position before
    // start, which must not be read.
    if (zuIs2ndByte(start, position) != 0)
        return 0;
    return *position == byte ? 1 : 0;
}

char* strUpper(char* text) { return mapCase(text, std::strlen(text), javaToUpper); }
char* strUpper(char* text, long length) { return length <= 0 ? text : mapCase(text, static_cast<std::size_t>(length), javaToUpper); }
char* strLower(char* text) { return mapCase(text, std::strlen(text), javaToLower); }
char* strLower(char* text, long length) { return length <= 0 ? text : mapCase(text, static_cast<std::size_t>(length), javaToLower); }

int javaToUpper(int code)
{
    if ((code >= 97 && code <= 122) || (code >= 224 && code <= 254))
        return code - 32;
    if (code < 255)
        return code;
    return static_cast<int>(u_toupper(static_cast<UChar32>(code)));
}

int javaToLower(int code)
{
    if ((code >= 65 && code <= 90) || (code >= 192 && code <= 222))
        return code + 32;
    if (code < 255)
        return code;
    return static_cast<int>(u_tolower(static_cast<UChar32>(code)));
}

// ---------------------------------------------------------------------------
// 16-bit twins

const unsigned short* zuCharNext(const unsigned short* text, zuCPType) { return text + 1; }
long zuCharNext(const unsigned short*, long index, zuCPType) { return index + 1; }

const unsigned short* zuCharPrev(const unsigned short* start, const unsigned short* text, zuCPType)
{
    return text <= start ? start : text - 1;
}

long zuCharPrev(const unsigned short*, long index, zuCPType) { return index <= 0 ? 0 : index - 1; }

const unsigned short* zuCharLast(const unsigned short* text, zuCPType)
{
    const long n = unitLength(text);
    return n == 0 ? text : text + n - 1;
}

long zuCharLast(const unsigned short*, long length, zuCPType) { return length <= 0 ? 0 : length - 1; }
long zuCharLen(const unsigned short* text, zuCPType) { return unitLength(text); }
long zuCharLen(const unsigned short*, long length, zuCPType) { return length <= 0 ? 0 : length; }

int zuIsWhiteSpace(const unsigned short* text) { return std::iswspace(*text) != 0 ? 1 : 0; }
int zuIsAlpha(const unsigned short* text) { return std::iswalpha(*text) != 0 ? 1 : 0; }
int zuIsAlphaNumeric(const unsigned short* text) { return std::iswalnum(*text) != 0 ? 1 : 0; }

int zuIsWhiteSpaceUTF16Swap(const unsigned short* text)
{
    const unsigned short unit = swapUnit(*text);
    return zuIsWhiteSpace(&unit);
}

const unsigned short* zuSkipBlanks(const unsigned short* text)
{
    while (*text != 0 && std::iswspace(*text) != 0)
        ++text;
    return text;
}

unsigned short* strUpper(unsigned short* text) { return mapUnits(text, unitLength(text), javaToUpper); }
unsigned short* strUpper(unsigned short* text, long length) { return mapUnits(text, length, javaToUpper); }
unsigned short* strLower(unsigned short* text) { return mapUnits(text, unitLength(text), javaToLower); }
unsigned short* strLower(unsigned short* text, long length) { return mapUnits(text, length, javaToLower); }

// ---------------------------------------------------------------------------
// ZuPCU8Cache

void* ZuPCU8Cache::operator new(std::size_t size) noexcept { return ramAllocC(size); }
void ZuPCU8Cache::operator delete(void* pointer) noexcept { ramFreeC(pointer); }

ZuPCU8Cache::~ZuPCU8Cache()
{
    for (unsigned long i = 0; i < count_; ++i)
        ramFreeC(maps_[i]);
    ramFreeC(keys_);
    ramFreeC(maps_);
}

int ZuPCU8Cache::grow(unsigned long capacity)
{
    auto* keys = static_cast<int32_t*>(zuCopyTable(keys_, sizeof(int32_t), count_, capacity));
    if (keys == nullptr)
        return 1;
    auto* maps = static_cast<unsigned char**>(zuCopyTable(maps_, sizeof(unsigned char*), count_, capacity));
    if (maps == nullptr) {
        ramFreeC(keys);
        return 1;
    }
    ramFreeC(keys_);
    ramFreeC(maps_);
    keys_ = keys;
    maps_ = maps;
    capacity_ = capacity;
    return 0;
}

int ZuPCU8Cache::initialize(unsigned long capacity) { return capacity <= capacity_ ? 0 : grow(capacity); }

int ZuPCU8Cache::addAssoc(long codePage, unsigned char* map)
{
    if (count_ == capacity_ && grow(zuDoubledCapacity(capacity_)) != 0)
        return 1;
    keys_[count_] = static_cast<int32_t>(codePage);
    maps_[count_] = map;
    ++count_;
    return 0;
}

const unsigned char* ZuPCU8Cache::getHandleForKey(long codePage) const
{
    const auto key = static_cast<int32_t>(codePage);
    for (unsigned long i = 0; i < count_; ++i)
        if (keys_[i] == key)
            return maps_[i];
    return nullptr;
}

// ---------------------------------------------------------------------------
// Lead-byte maps and counting

namespace {
// Installs ICU's stop callback for the life of the object, so that a byte
// that is no character shows as a failing status: the default callback
// would substitute it and report success.  The previous callback and the
// to-Unicode state are restored at the end.
class StopToUnicode {
public:
    explicit StopToUnicode(UConverter* converter) : converter_(converter)
    {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_resetToUnicode(converter_);
        ucnv_setToUCallBack(converter_, UCNV_TO_U_CALLBACK_STOP, nullptr, &previous_, &previousContext_, &status);
        installed_ = U_SUCCESS(status);
    }
    ~StopToUnicode()
    {
        ucnv_resetToUnicode(converter_);
        if (installed_) {
            UErrorCode status = U_ZERO_ERROR;
            UConverterToUCallback ignored = nullptr;
            const void* ignoredContext = nullptr;
            ucnv_setToUCallBack(converter_, previous_, previousContext_, &ignored, &ignoredContext, &status);
        }
    }
    StopToUnicode(const StopToUnicode&) = delete;
    StopToUnicode& operator=(const StopToUnicode&) = delete;

private:
    UConverter* converter_;
    UConverterToUCallback previous_ = nullptr;
    const void* previousContext_ = nullptr;
    bool installed_ = false;
};
}  // namespace

int generateLeadByteMap(UConverter* converter, unsigned char** map)
{
    auto* result = static_cast<unsigned char*>(ramAllocC(256));
    if (result == nullptr)
        return 1;
    StopToUnicode stop(converter);
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        const char* source = &byte;
        UChar target[4];
        UChar* out = target;
        UErrorCode status = U_ZERO_ERROR;
        ucnv_toUnicode(converter, &out, target + 4, &source, source + 1, nullptr, true, &status);
        if (status > U_ZERO_ERROR) {
            result[value] = 1;
            ucnv_resetToUnicode(converter);
        } else {
            result[value] = 0;
        }
    }
    *map = result;
    return 0;
}

int getPossibleLeadByteMap(ZuPCU8Cache* cache, ZuICUHandleCache* pool, long codePage, const unsigned char** map)
{
    if (const unsigned char* cached = cache->getHandleForKey(codePage)) {
        *map = cached;
        return 0;
    }
    ICUSubstitutionErrorInfo* info = nullptr;
    UConverter* converter = pool->getHandleForKey(codePage, &info);
    if (converter == nullptr)
        return 1;
    unsigned char* made = nullptr;
    const int failed = generateLeadByteMap(converter, &made);
    pool->addAssoc(codePage, converter, info);
    if (failed != 0)
        return 1;
    if (cache->addAssoc(codePage, made) != 0) {
        ramFreeC(made);
        return 1;
    }
    *map = made;
    return 0;
}

int isPossibleLeadByte(ZuPCU8Cache* cache, long codePage, unsigned char byte, int* result)
{
    const unsigned char* map = cache->getHandleForKey(codePage);
    if (map == nullptr)
        return 1;
    *result = map[byte];
    return 0;
}

int getCountOfChars(ZuPCU8Cache* cache, long codePage, const unsigned char* text, unsigned long length,
                    unsigned long* count)
{
    const unsigned char* map = cache->getHandleForKey(codePage);
    if (map == nullptr)
        return 1;
    unsigned long chars = 0;
    for (unsigned long i = 0; i < length; i += map[text[i]] + 1ul)
        ++chars;
    *count = chars;
    return 0;
}

int getCountOfBytes(ZuPCU8Cache* cache, long codePage, const unsigned char* text, unsigned long length,
                    unsigned long* count)
{
    const unsigned char* map = cache->getHandleForKey(codePage);
    if (map == nullptr)
        return 1;
    if (length == 0)
        *count = 0;
    else if (length == 1)
        *count = map[text[0]] != 0 ? 0 : 1;
    else
        *count = map[text[length - 1]] != 0 ? length - 1 : length;
    return 0;
}

int getCountOfBytes(UConverter* converter, const unsigned char* text, unsigned long length, unsigned long* count)
{
    if (converter == nullptr)
        return 1;
    unsigned long result = length;
    if (ucnv_getMaxCharSize(converter) > 1 && length > 0) {
        // Decoded from the first byte on.  Looking only at the last few bytes
        // cannot tell a trail byte from a lead byte in pages where the two
        // ranges overlap (EUC, GBK, GB18030 double-byte forms), so the walk
        // goes through the text, one character per ucnv_getNextUChar.  A
        // character that the end cuts ends the count before its first byte;
        // bytes that are no character are passed over.
        StopToUnicode stop(converter);
        const char* const begin = reinterpret_cast<const char*>(text);
        const char* const end = begin + length;
        const char* p = begin;
        while (p < end) {
            const char* next = p;
            UErrorCode status = U_ZERO_ERROR;
            ucnv_getNextUChar(converter, &next, end, &status);
            if (status == U_TRUNCATED_CHAR_FOUND) {
                result = static_cast<unsigned long>(p - begin);
                break;
            }
            if (U_FAILURE(status))
                ucnv_resetToUnicode(converter);
            p = next > p ? next : p + 1;
        }
    }
    *count = result;
    return 0;
}

unsigned long getCountOfUTF8Bytes(const unsigned char* text, unsigned long length)
{
    if (length == 0 || text[length - 1] < 0x80)
        return length;
    // Back over the continuation bytes to the lead of the last character.
    unsigned long back = 1;
    while (back < 4 && back < length && isContinuation(text[length - back]))
        ++back;
    const uchar lead = text[length - back];
    if (isContinuation(lead))
        return length;  // no lead in reach: not a cut character, let it pass
    return static_cast<unsigned long>(utf8Size(lead)) > back ? length - back : length;
}

int getCounts(ZuPCU8Cache* cache, long codePage, const unsigned char* text, unsigned long length,
              unsigned long* bytes, unsigned long* chars)
{
    const unsigned char* map = cache->getHandleForKey(codePage);
    if (map == nullptr)
        return 1;
    unsigned long i = 0;
    unsigned long n = 0;
    while (i < length) {
        const unsigned long step = map[text[i]] + 1ul;
        if (step > length - i)
            break;
        i += step;
        ++n;
    }
    *bytes = i;
    *chars = n;
    return 0;
}
