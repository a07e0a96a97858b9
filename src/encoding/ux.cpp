// The code page transforms over ICU converters.
#include "ux.h"

#include <unicode/ustring.h>

#include <cstring>

#include "../platform/ram.h"
#include "asciirun_impl.h"

namespace {

constexpr int kPivotUnits = 2000;

bool badFrame(const void* target, long targetSize, const void* source)
{
    return target == nullptr || targetSize <= 0 || source == nullptr;
}

long byteLength(const unsigned char* source, long length)
{
    return length == -1 ? static_cast<long>(std::strlen(reinterpret_cast<const char*>(source))) : length;
}

void setOut(long* out, long value)
{
    if (out != nullptr)
        *out = value;
}

bool isAligned(const void* p, size_t a) { return (reinterpret_cast<uintptr_t>(p) & (a - 1)) == 0; }

// The result of a from-Unicode step.  When the substitution callback lets a
// conversion fail at a character the target code page cannot hold, ICU says
// "invalid character" (10); to the caller that is the character it could
// not take, result 2, as for an illegal one.  Everywhere else status 10 (for
// example ill-formed UTF-8 given to ICU's UTF-8 functions) is a failure.
ZuConvertReturn mapFromUnicode(UErrorCode status)
{
    return status == U_INVALID_CHAR_FOUND ? ZU_CONV_ILLEGAL_CHAR : mapICUreturn(status);
}

// Code page -> UTF-16 -> code page through a stack buffer of kPivotUnits.
// The buffer filling up is no error: it is emptied into the target and the
// loop goes on.  Leaves both converters reset when it fails.
ZuConvertReturn pivotLoop(char*& t, char* tEnd, const char*& s, const char* sEnd, UConverter* from, UConverter* to)
{
    UChar pivot[kPivotUnits];
    for (;;) {
        UChar* pEnd = pivot;
        UErrorCode status = U_ZERO_ERROR;
        ucnv_toUnicode(from, &pEnd, pivot + kPivotUnits, &s, sEnd, nullptr, true, &status);
        const bool pivotFull = status == U_BUFFER_OVERFLOW_ERROR;
        if (pivotFull)
            status = U_ZERO_ERROR;
        if (U_FAILURE(status)) {
            ucnv_resetToUnicode(from);
            ucnv_resetFromUnicode(to);
            return mapICUreturn(status);
        }
        const UChar* p = pivot;
        ucnv_fromUnicode(to, &t, tEnd, &p, pEnd, nullptr, !pivotFull, &status);
        if (status == U_BUFFER_OVERFLOW_ERROR || status == U_STRING_NOT_TERMINATED_WARNING) {
            ucnv_resetToUnicode(from);
            ucnv_resetFromUnicode(to);
            return ZU_CONV_TRUNCATED;
        }
        if (U_FAILURE(status)) {
            ucnv_resetToUnicode(from);
            ucnv_resetFromUnicode(to);
            return mapFromUnicode(status);
        }
        if (!pivotFull && s >= sEnd)
            return ZU_CONV_SUCCESS;
    }
}

// The frame of the three byte-to-byte transforms.  With `asciiStep` 7-bit
// runs are copied before ICU is asked, as long as both converters pass
// them through unchanged.
ZuConvertReturn byteTransform(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                              long* written, long* consumed, UConverter* from, UConverter* to, bool asciiStep)
{
    if (badFrame(target, targetSize, source) || from == nullptr || to == nullptr)
        return ZU_CONV_FAILURE;
    const long length = byteLength(source, sourceLength);
    if (length < 0)
        return ZU_CONV_FAILURE;
    long done = 0;
    if (asciiStep && zu_ascii::transparent(from) && zu_ascii::transparent(to)) {
        const long n = length < targetSize ? length : targetSize;
        done = static_cast<long>(zu_ascii::copyRun(target, source, static_cast<size_t>(n)));
        if (done == length || done == targetSize) {
            setOut(written, done);
            setOut(consumed, done);
            if (done < targetSize)
                target[done] = 0;
            return done == length ? ZU_CONV_SUCCESS : ZU_CONV_TRUNCATED;
        }
    }
    char* t = reinterpret_cast<char*>(target) + done;
    const char* s = reinterpret_cast<const char*>(source) + done;
    const ZuConvertReturn rc = pivotLoop(t, reinterpret_cast<char*>(target) + targetSize, s,
                                         reinterpret_cast<const char*>(source) + length, from, to);
    const long out = t - reinterpret_cast<char*>(target);
    setOut(written, out);
    setOut(consumed, s - reinterpret_cast<const char*>(source));
    if (out < targetSize)
        target[out] = 0;
    return rc;
}

// Appends the bytes of `units` converted by `to` to the target while they
// fit, and counts them always.  `flush` ends the converter's state.
ZuConvertReturn countOut(UConverter* to, const UChar* units, int32_t count, bool flush, unsigned char* target,
                         long targetSize, long& total, bool& overflow)
{
    char buf[64];
    char* b = buf;
    const UChar* u = units;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(to, &b, buf + sizeof buf, &u, units + count, nullptr, flush, &status);
    if (U_FAILURE(status)) {
        ucnv_resetFromUnicode(to);
        return mapICUreturn(status);
    }
    const long n = b - buf;
    if (!overflow && total + n <= targetSize)
        std::memcpy(target + total, buf, static_cast<size_t>(n));
    else
        overflow = true;
    total += n;
    return ZU_CONV_SUCCESS;
}

ZuConvertReturn finishCounted(ZuConvertReturn rc, unsigned char* target, long targetSize, long total, bool overflow,
                              long* written)
{
    setOut(written, total);
    const long inTarget = overflow ? (total < targetSize ? total : targetSize) : total;
    if (rc == ZU_CONV_SUCCESS && !overflow && inTarget < targetSize)
        target[inTarget] = 0;
    if (rc != ZU_CONV_SUCCESS)
        return rc;
    return overflow ? ZU_CONV_TRUNCATED : ZU_CONV_SUCCESS;
}

// Character by character through ucnv_getNextUChar, counting past the end.
// Note that after the first character that does not fit, nothing more is
// stored, so that the target never holds a later character without an
// earlier one.
ZuConvertReturn countingTransform(unsigned char* target, long targetSize, const unsigned char* source,
                                  long sourceLength, long* written, UConverter* from, UConverter* to)
{
    if (badFrame(target, targetSize, source) || from == nullptr || to == nullptr)
        return ZU_CONV_FAILURE;
    const long length = byteLength(source, sourceLength);
    const char* s = reinterpret_cast<const char*>(source);
    const char* sEnd = s + length;
    long total = 0;
    bool overflow = false;
    ZuConvertReturn rc = ZU_CONV_SUCCESS;
    while (s < sEnd && rc == ZU_CONV_SUCCESS) {
        UErrorCode status = U_ZERO_ERROR;
        const UChar32 c = ucnv_getNextUChar(from, &s, sEnd, &status);
        if (status == U_INDEX_OUTOFBOUNDS_ERROR)
            break;
        if (U_FAILURE(status)) {
            ucnv_resetToUnicode(from);
            rc = mapICUreturn(status);
            break;
        }
        UChar units[2];
        int32_t n = 0;
        U16_APPEND_UNSAFE(units, n, c);
        rc = countOut(to, units, n, false, target, targetSize, total, overflow);
    }
    if (rc == ZU_CONV_SUCCESS)
        rc = countOut(to, nullptr, 0, true, target, targetSize, total, overflow);
    ucnv_resetToUnicode(from);
    return finishCounted(rc, target, targetSize, total, overflow, written);
}

// A UTF-16 source that is odd-aligned or must be swapped is copied: to the
// stack up to kStackUnits, to the heap above.
constexpr long kStackUnits = 4000;
struct AlignedUnits {
    UChar stack[kStackUnits];
    UChar* heap = nullptr;
    const UChar* data = nullptr;
    ~AlignedUnits() { ramFreeC(heap); }
    bool take(const unsigned short* source, long units, bool swap)
    {
        if (isAligned(source, alignof(UChar)) && !swap) {
            data = reinterpret_cast<const UChar*>(source);
            return true;
        }
        UChar* into = stack;
        if (units > kStackUnits) {
            heap = static_cast<UChar*>(ramAllocC(static_cast<size_t>(units) * sizeof(UChar)));
            if (heap == nullptr)
                return false;
            into = heap;
        }
        std::memcpy(into, source, static_cast<size_t>(units) * sizeof(UChar));
        if (swap)
            uxUCS2Swap(reinterpret_cast<unsigned short*>(into), reinterpret_cast<unsigned short*>(into), units);
        data = into;
        return true;
    }
};

long unitLength(const unsigned short* source, long units)
{
    if (units == -3 || units == -1) {
        // A terminated source, possibly odd-aligned: find the end bytewise.
        const auto* b = reinterpret_cast<const unsigned char*>(source);
        long n = 0;
        while (b[2 * n] != 0 || b[2 * n + 1] != 0)
            ++n;
        return n;
    }
    return units;
}

ZuConvertReturn utf16ToUtf8(unsigned char* target, long targetSize, const unsigned short* source, long sourceUnits,
                            long* written, int swap, bool reqLen)
{
    if (badFrame(target, targetSize, source))
        return ZU_CONV_FAILURE;
    const long units = unitLength(source, sourceUnits);
    if (units < 0)
        return ZU_CONV_FAILURE;
    AlignedUnits in;
    if (!in.take(source, units, swap != 0))
        return ZU_CONV_FAILURE;
    long capacity = targetSize;
    if (reqLen) {
        // Room is kept for the terminator, which is always written.
        std::memset(target + (targetSize >= 4 ? targetSize - 4 : 0), 0, static_cast<size_t>(targetSize >= 4 ? 4 : targetSize));
        capacity = targetSize - 1;
    }
    const size_t limit = static_cast<size_t>(units < capacity ? units : capacity);
    const long ascii = static_cast<long>(zu_ascii::narrowRun(target, reinterpret_cast<const unsigned short*>(in.data), limit));
    int32_t rest = 0;
    UErrorCode status = U_ZERO_ERROR;
    if (ascii < units) {
        u_strToUTF8(reinterpret_cast<char*>(target) + ascii, static_cast<int32_t>(capacity - ascii), &rest,
                    in.data + ascii, static_cast<int32_t>(units - ascii), &status);
    }
    const long needed = ascii + rest;
    if (status == U_STRING_NOT_TERMINATED_WARNING)
        status = U_ZERO_ERROR;
    if (U_SUCCESS(status) && needed > capacity)
        status = U_BUFFER_OVERFLOW_ERROR;
    setOut(written, reqLen ? needed : (needed < capacity ? needed : capacity));
    if (needed < targetSize)
        target[needed] = 0;
    return mapICUreturn(status);
}

ZuConvertReturn utf8ToUtf16(unsigned short* target, long targetUnits, const unsigned char* source, long sourceBytes,
                            long* written, int swap, bool reqLen)
{
    if (badFrame(target, targetUnits, source))
        return ZU_CONV_FAILURE;
    const long length = byteLength(source, sourceBytes);
    if (length < 0)
        return ZU_CONV_FAILURE;
    long capacity = targetUnits;
    if (reqLen) {
        const long clear = targetUnits >= 2 ? 2 : targetUnits;
        std::memset(target + targetUnits - clear, 0, static_cast<size_t>(clear) * 2);
        capacity = targetUnits - 1;
    }
    const size_t limit = static_cast<size_t>(length < capacity ? length : capacity);
    const long ascii = static_cast<long>(zu_ascii::widenRun(target, source, limit));
    int32_t rest = 0;
    UErrorCode status = U_ZERO_ERROR;
    if (ascii < length) {
        u_strFromUTF8(reinterpret_cast<UChar*>(target) + ascii, static_cast<int32_t>(capacity - ascii), &rest,
                      reinterpret_cast<const char*>(source) + ascii, static_cast<int32_t>(length - ascii), &status);
    }
    const long needed = ascii + rest;
    if (status == U_STRING_NOT_TERMINATED_WARNING)
        status = U_ZERO_ERROR;
    if (U_SUCCESS(status) && needed > capacity)
        status = U_BUFFER_OVERFLOW_ERROR;
    const long inTarget = needed < capacity ? needed : capacity;
    if (swap != 0)
        uxUCS2Swap(target, target, inTarget);
    setOut(written, reqLen ? needed : inTarget);
    if (needed < targetUnits)
        target[needed] = 0;
    return mapICUreturn(status);
}

}  // namespace

// ---- Byte to byte ----------------------------------------------------------

ZuConvertReturn uxAnsiToUTF8(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                             long* written, long* consumed, UConverter* from, UConverter* utf8)
{
    return byteTransform(target, targetSize, source, sourceLength, written, consumed, from, utf8, true);
}

ZuConvertReturn uxUTF8ToAnsi(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                             long* written, long* consumed, UConverter* utf8, UConverter* to)
{
    return byteTransform(target, targetSize, source, sourceLength, written, consumed, utf8, to, true);
}

ZuConvertReturn uxCpgToCpg(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                           long* written, long* consumed, UConverter* from, UConverter* to)
{
    return byteTransform(target, targetSize, source, sourceLength, written, consumed, from, to, false);
}

ZuConvertReturn uxAnsiToUTF8(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                             long* written, UConverter* from, UConverter* utf8)
{
    return countingTransform(target, targetSize, source, sourceLength, written, from, utf8);
}

ZuConvertReturn uxUTF8ToAnsi(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                             long* written, UConverter* utf8, UConverter* to)
{
    return countingTransform(target, targetSize, source, sourceLength, written, utf8, to);
}

ZuConvertReturn uxCpgToCpg(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                           long* written, UConverter* from, UConverter* to)
{
    return countingTransform(target, targetSize, source, sourceLength, written, from, to);
}

// ---- UTF-16 and a code page ------------------------------------------------

ZuConvertReturn uxUCS2ToAnsi(unsigned char* target, long targetSize, unsigned short* source, long sourceUnits,
                             long* written, long* consumed, UConverter* to, int swap)
{
    if (badFrame(target, targetSize, source) || to == nullptr)
        return ZU_CONV_FAILURE;
    const long units = unitLength(source, sourceUnits);
    if (units < 0)
        return ZU_CONV_FAILURE;
    if (swap != 0 && units > 0)
        uxUCS2Swap(source, source, units);

    char* t = reinterpret_cast<char*>(target);
    char* const tEnd = t + targetSize;
    long used = 0;
    UErrorCode status = U_ZERO_ERROR;
    if (isAligned(source, alignof(UChar))) {
        const auto* s = reinterpret_cast<const UChar*>(source);
        if (zu_ascii::transparent(to)) {
            const size_t n = static_cast<size_t>(units < targetSize ? units : targetSize);
            const long ascii = static_cast<long>(zu_ascii::narrowRun(target, source, n));
            t += ascii;
            s += ascii;
        }
        ucnv_fromUnicode(to, &t, tEnd, &s, reinterpret_cast<const UChar*>(source) + units, nullptr, true, &status);
        used = s - reinterpret_cast<const UChar*>(source);
    } else {
        // Odd-aligned units go through an aligned buffer, a chunk at a time;
        // only the last chunk flushes.
        UChar chunk[kPivotUnits];
        const auto* bytes = reinterpret_cast<const unsigned char*>(source);
        while (used < units && U_SUCCESS(status)) {
            const long n = units - used < kPivotUnits ? units - used : kPivotUnits;
            std::memcpy(chunk, bytes + 2 * used, static_cast<size_t>(n) * 2);
            const UChar* s = chunk;
            ucnv_fromUnicode(to, &t, tEnd, &s, chunk + n, nullptr, used + n == units, &status);
            used += s - chunk;
            if (s < chunk + n && U_SUCCESS(status))
                break;
        }
    }
    if (U_FAILURE(status))
        ucnv_resetFromUnicode(to);
    const long out = t - reinterpret_cast<char*>(target);
    setOut(written, out);
    setOut(consumed, used);
    if (out < targetSize)
        target[out] = 0;
    return mapFromUnicode(status);
}

ZuConvertReturn uxUCS2ToAnsi(unsigned char* target, long targetSize, unsigned short* source, long sourceUnits,
                             long* written, UConverter* to, int swap)
{
    if (badFrame(target, targetSize, source) || to == nullptr)
        return ZU_CONV_FAILURE;
    const long units = unitLength(source, sourceUnits);
    if (swap != 0 && units > 0)
        uxUCS2Swap(source, source, units);
    const auto* bytes = reinterpret_cast<const unsigned char*>(source);
    long total = 0;
    bool overflow = false;
    ZuConvertReturn rc = ZU_CONV_SUCCESS;
    for (long i = 0; i < units && rc == ZU_CONV_SUCCESS;) {
        UChar u[2];
        std::memcpy(&u[0], bytes + 2 * i, 2);
        int32_t n = 1;
        if (U16_IS_LEAD(u[0]) && i + 1 < units) {
            std::memcpy(&u[1], bytes + 2 * i + 2, 2);
            if (U16_IS_TRAIL(u[1]))
                n = 2;
        }
        rc = countOut(to, u, n, false, target, targetSize, total, overflow);
        i += n;
    }
    if (rc == ZU_CONV_SUCCESS)
        rc = countOut(to, nullptr, 0, true, target, targetSize, total, overflow);
    return finishCounted(rc, target, targetSize, total, overflow, written);
}

ZuConvertReturn uxAnsiToUCS2(unsigned short* target, long targetUnits, const unsigned char* source, long sourceBytes,
                             long* written, long* consumed, UConverter* from, int swap)
{
    if (badFrame(target, targetUnits, source) || from == nullptr)
        return ZU_CONV_FAILURE;
    const long length = byteLength(source, sourceBytes);
    if (length < 0)
        return ZU_CONV_FAILURE;
    UErrorCode status = U_ZERO_ERROR;
    long out = 0;
    long used = 0;
    if (ucnv_getType(from) == UCNV_LATIN_1) {
        // Every byte is the code point of the same value.
        used = length < targetUnits ? length : targetUnits;
        zu_ascii::widenLatin1(target, source, static_cast<size_t>(used));
        out = used;
        if (used < length)
            status = U_BUFFER_OVERFLOW_ERROR;
    } else {
        if (zu_ascii::transparent(from)) {
            const size_t n = static_cast<size_t>(length < targetUnits ? length : targetUnits);
            used = out = static_cast<long>(zu_ascii::widenRun(target, source, n));
        }
        auto* t = reinterpret_cast<UChar*>(target) + out;
        const char* s = reinterpret_cast<const char*>(source) + used;
        ucnv_toUnicode(from, &t, reinterpret_cast<UChar*>(target) + targetUnits, &s,
                       reinterpret_cast<const char*>(source) + length, nullptr, true, &status);
        out = t - reinterpret_cast<UChar*>(target);
        used = s - reinterpret_cast<const char*>(source);
        if (U_FAILURE(status))
            ucnv_resetToUnicode(from);
    }
    const ZuConvertReturn rc = mapICUreturn(status);
    setOut(written, out);
    setOut(consumed, used);
    if (rc <= ZU_CONV_ILLEGAL_CHAR) {
        if (out < targetUnits)
            target[out] = 0;
        if (swap != 0)
            uxUCS2Swap(target, target, out);
    }
    return rc;
}

// ---- UTF-16 and UTF-8 ------------------------------------------------------

ZuConvertReturn uxUTF16ToUTF8(unsigned char* target, long targetSize, const unsigned short* source, long sourceUnits,
                              long* written, int swap)
{
    return utf16ToUtf8(target, targetSize, source, sourceUnits, written, swap, false);
}

ZuConvertReturn uxUTF16ToUTF8ReqLen(unsigned char* target, long targetSize, const unsigned short* source,
                                    long sourceUnits, long* written, int swap)
{
    return utf16ToUtf8(target, targetSize, source, sourceUnits, written, swap, true);
}

ZuConvertReturn uxUTF8ToUTF16(unsigned short* target, long targetUnits, const unsigned char* source, long sourceBytes,
                              long* written, int swap)
{
    return utf8ToUtf16(target, targetUnits, source, sourceBytes, written, swap, false);
}

ZuConvertReturn uxUTF8ToUTF16ReqLen(unsigned short* target, long targetUnits, const unsigned char* source,
                                    long sourceBytes, long* written, int swap)
{
    return utf8ToUtf16(target, targetUnits, source, sourceBytes, written, swap, true);
}
