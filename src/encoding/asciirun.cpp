#include "asciirun_impl.h"

#include <unicode/ucnv.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zu_ascii {

namespace {
constexpr uint64_t kHighBits = 0x8080808080808080ull;

uint64_t load8(const unsigned char* p)
{
    uint64_t w;
    std::memcpy(&w, p, 8);
    return w;
}
}  // namespace

size_t copyRun(unsigned char* target, const unsigned char* source, size_t count)
{
    size_t i = 0;
#if defined(__SSE2__)
    for (; i + 16 <= count; i += 16) {
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + i));
        if (_mm_movemask_epi8(v) != 0)
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + i), v);
    }
#endif
    for (; i + 8 <= count; i += 8) {
        uint64_t w = load8(source + i);
        if ((w & kHighBits) != 0)
            break;
        std::memcpy(target + i, &w, 8);
    }
    for (; i < count && source[i] < 0x80; ++i)
        target[i] = source[i];
    return i;
}

size_t widenRun(unsigned short* target, const unsigned char* source, size_t count)
{
    size_t i = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    for (; i + 32 <= count; i += 32) {
        __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + i));
        __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + i + 16));
        if (_mm_movemask_epi8(_mm_or_si128(a, b)) != 0)
            break;
        auto* t = reinterpret_cast<__m128i*>(target + i);
        _mm_storeu_si128(t, _mm_unpacklo_epi8(a, zero));
        _mm_storeu_si128(t + 1, _mm_unpackhi_epi8(a, zero));
        _mm_storeu_si128(t + 2, _mm_unpacklo_epi8(b, zero));
        _mm_storeu_si128(t + 3, _mm_unpackhi_epi8(b, zero));
    }
    for (; i + 16 <= count; i += 16) {
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + i));
        if (_mm_movemask_epi8(v) != 0)
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + i), _mm_unpacklo_epi8(v, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + i + 8), _mm_unpackhi_epi8(v, zero));
    }
#endif
    for (; i < count && source[i] < 0x80; ++i)
        target[i] = source[i];
    return i;
}

void widenLatin1(unsigned short* target, const unsigned char* source, size_t count)
{
    size_t i = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    for (; i + 16 <= count; i += 16) {
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + i));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + i), _mm_unpacklo_epi8(v, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + i + 8), _mm_unpackhi_epi8(v, zero));
    }
#endif
    for (; i < count; ++i)
        target[i] = source[i];
}

size_t narrowRun(unsigned char* target, const unsigned short* source, size_t count)
{
    size_t i = 0;
#if defined(__SSE2__)
    const __m128i high = _mm_set1_epi16(static_cast<short>(0xFF80));
    for (; i + 16 <= count; i += 16) {
        __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + i));
        __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + i + 8));
        __m128i any = _mm_and_si128(_mm_or_si128(a, b), high);
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(any, _mm_setzero_si128())) != 0xFFFF)
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + i), _mm_packus_epi16(a, b));
    }
#endif
    for (; i < count && source[i] < 0x80; ++i)
        target[i] = static_cast<unsigned char>(source[i]);
    return i;
}

namespace {

// Converter kinds are told apart by the name ICU reports, which points into
// ICU's shared, never-freed converter data: the pointer is the key.
struct KindEntry {
    std::atomic<const char*> name{nullptr};
    std::atomic<int> transparent{0};
};
constexpr int kKinds = 64;
KindEntry gKinds[kKinds];
std::mutex gKindsLock;

bool statefulType(UConverterType type)
{
    switch (type) {
    case UCNV_SBCS:
    case UCNV_DBCS:
    case UCNV_MBCS:
    case UCNV_LATIN_1:
    case UCNV_UTF8:
    case UCNV_US_ASCII:
    case UCNV_CESU8:
        return false;
    default:
        return true;  // UTF-16/32, EBCDIC shift states, ISO-2022, HZ, UTF-7, SCSU, ...
    }
}

bool probe(const char* name)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter* c = ucnv_open(name, &status);
    if (U_FAILURE(status))
        return false;
    bool ok = !statefulType(ucnv_getType(c));
    if (ok) {
        char bytes[128];
        UChar units[128];
        for (int i = 0; i < 128; ++i) {
            bytes[i] = static_cast<char>(i);
            units[i] = static_cast<UChar>(i);
        }
        UChar back[256];
        char out[512];
        status = U_ZERO_ERROR;
        int32_t n = ucnv_toUChars(c, back, 256, bytes, 128, &status);
        ok = U_SUCCESS(status) && n == 128 && std::memcmp(back, units, sizeof units) == 0;
        if (ok) {
            status = U_ZERO_ERROR;
            n = ucnv_fromUChars(c, out, 512, units, 128, &status);
            ok = U_SUCCESS(status) && n == 128 && std::memcmp(out, bytes, 128) == 0;
        }
    }
    ucnv_close(c);
    return ok;
}

}  // namespace

bool transparent(UConverter* converter)
{
    // Stateful kinds are never transparent; deciding that first keeps names
    // that some of them build per instance out of the table.
    if (statefulType(ucnv_getType(converter)))
        return false;
    UErrorCode status = U_ZERO_ERROR;
    const char* name = ucnv_getName(converter, &status);
    if (U_FAILURE(status) || name == nullptr)
        return false;
    for (KindEntry& e : gKinds) {
        const char* n = e.name.load(std::memory_order_acquire);
        if (n == nullptr)
            break;
        if (n == name)
            return e.transparent.load(std::memory_order_relaxed) != 0;
    }
    const bool result = probe(name);
    std::lock_guard<std::mutex> guard(gKindsLock);
    for (KindEntry& e : gKinds) {
        const char* n = e.name.load(std::memory_order_relaxed);
        if (n == name)
            return result;
        if (n == nullptr) {
            e.transparent.store(result ? 1 : 0, std::memory_order_relaxed);
            e.name.store(name, std::memory_order_release);
            return result;
        }
    }
    return result;  // table full: answered, not remembered
}

}  // namespace zu_ascii
