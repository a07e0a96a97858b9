#include "but.h"

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "../platform/ram.h"

// Whether AddressSanitizer instruments this file (GCC and clang spell it
// differently).
#if defined(__SANITIZE_ADDRESS__)
#define HNSYB_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HNSYB_ASAN 1
#endif
#endif

#if defined(__SANITIZE_THREAD__)
#define HNSYB_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define HNSYB_TSAN 1
#endif
#endif

// The terminator scan of BUTSTLEN reads whole aligned words, and the word
// holding the terminator usually runs past the end of the string's block.
// That read is harmless (an aligned word never crosses a page), but the
// sanitizers would report it: the scan is left uninstrumented, and under
// AddressSanitizer the bytes that really belong to the string are checked
// afterwards (see BUTSTLEN).
#if defined(HNSYB_ASAN)
#define HNSYB_WORD_SCAN __attribute__((no_sanitize_address))
#include <sanitizer/asan_interface.h>
#elif defined(HNSYB_TSAN)
#define HNSYB_WORD_SCAN __attribute__((no_sanitize_thread))
#else
#define HNSYB_WORD_SCAN
#endif

namespace {
inline int sign(int value) { return (value > 0) - (value < 0); }

#if defined(__SSE2__)
HNSYB_WORD_SCAN inline unsigned zeroMask(const __m128i* word)
{
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_load_si128(word), _mm_setzero_si128())));
}

// Index of the terminator.  Only aligned 16-byte words are read, and the
// 128-byte strides keep to aligned 128-byte blocks, so no read leaves the page
// that holds the last byte of the string.
HNSYB_WORD_SCAN unsigned long scanLength(const char* text)
{
    const auto start = reinterpret_cast<std::uintptr_t>(text);
    const unsigned offset = static_cast<unsigned>(start & 15);
    const auto* word = reinterpret_cast<const __m128i*>(start - offset);
    unsigned mask = zeroMask(word) >> offset;
    if (mask != 0)
        return static_cast<unsigned long>(__builtin_ctz(mask));
    ++word;
    while ((reinterpret_cast<std::uintptr_t>(word) & 127) != 0) {
        mask = zeroMask(word);
        if (mask != 0)
            return static_cast<unsigned long>(reinterpret_cast<const char*>(word) - text) + static_cast<unsigned long>(__builtin_ctz(mask));
        ++word;
    }
    const __m128i zero = _mm_setzero_si128();
    for (;;) {
        const __m128i a = _mm_load_si128(word);
        const __m128i b = _mm_load_si128(word + 1);
        const __m128i c = _mm_load_si128(word + 2);
        const __m128i d = _mm_load_si128(word + 3);
        const __m128i e = _mm_load_si128(word + 4);
        const __m128i f = _mm_load_si128(word + 5);
        const __m128i g = _mm_load_si128(word + 6);
        const __m128i h = _mm_load_si128(word + 7);
        const __m128i least = _mm_min_epu8(_mm_min_epu8(_mm_min_epu8(a, b), _mm_min_epu8(c, d)),
                                           _mm_min_epu8(_mm_min_epu8(e, f), _mm_min_epu8(g, h)));
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(least, zero)) != 0)
            break;
        word += 8;
    }
    for (;; ++word) {
        mask = zeroMask(word);
        if (mask != 0)
            return static_cast<unsigned long>(reinterpret_cast<const char*>(word) - text) + static_cast<unsigned long>(__builtin_ctz(mask));
    }
}
#else
// Portable form: bytes up to an 8-byte boundary, then aligned 8-byte words
// (which cannot cross a page either) with the usual zero-byte test.
HNSYB_WORD_SCAN unsigned long scanLength(const char* text)
{
    const char* p = text;
    while ((reinterpret_cast<std::uintptr_t>(p) & 7) != 0) {
        if (*p == 0)
            return static_cast<unsigned long>(p - text);
        ++p;
    }
    typedef std::uint64_t __attribute__((may_alias)) Word;
    const auto* w = reinterpret_cast<const Word*>(p);
    constexpr std::uint64_t ones = 0x0101010101010101ull;
    constexpr std::uint64_t highs = 0x8080808080808080ull;
    while (((*w - ones) & ~*w & highs) == 0)
        ++w;
    p = reinterpret_cast<const char*>(w);
    while (*p != 0)
        ++p;
    return static_cast<unsigned long>(p - text);
}
#endif

#if defined(__x86_64__)
// The same scans with 32-byte words on processors that have them, chosen
// once at run time.  Aligned 32-byte loads, strides kept to aligned 128-byte
// blocks: no read leaves the page of the string's last byte.
__attribute__((target("avx2"))) HNSYB_WORD_SCAN unsigned long scanLengthWide(const char* text)
{
    const auto start = reinterpret_cast<std::uintptr_t>(text);
    const unsigned offset = static_cast<unsigned>(start & 31);
    const auto* word = reinterpret_cast<const __m256i*>(start - offset);
    const __m256i zero = _mm256_setzero_si256();
#define zeros(w) static_cast<unsigned>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_load_si256(w), zero)))
    unsigned mask = zeros(word) >> offset;
    if (mask != 0)
        return static_cast<unsigned long>(__builtin_ctz(mask));
    for (++word; (reinterpret_cast<std::uintptr_t>(word) & 127) != 0; ++word)
        if ((mask = zeros(word)) != 0)
            return static_cast<unsigned long>(reinterpret_cast<const char*>(word) - text) + __builtin_ctz(mask);
    for (;; word += 4) {
        const __m256i least = _mm256_min_epu8(_mm256_min_epu8(_mm256_load_si256(word), _mm256_load_si256(word + 1)),
                                              _mm256_min_epu8(_mm256_load_si256(word + 2), _mm256_load_si256(word + 3)));
        if (_mm256_movemask_epi8(_mm256_cmpeq_epi8(least, zero)) != 0)
            break;
    }
    for (;; ++word)
        if ((mask = zeros(word)) != 0)
            return static_cast<unsigned long>(reinterpret_cast<const char*>(word) - text) + __builtin_ctz(mask);
#undef zeros
}

// Equality of two blocks of at least 32 bytes; the tail is the last whole
// word, overlapping the one before.
__attribute__((target("avx2"))) int equalWide(const unsigned char* x, const unsigned char* y, std::size_t count)
{
#define load(p) _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))
    std::size_t i = 0;
    for (; i + 128 <= count; i += 128) {
        const __m256i d = _mm256_or_si256(_mm256_or_si256(_mm256_xor_si256(load(x + i), load(y + i)),
                                                          _mm256_xor_si256(load(x + i + 32), load(y + i + 32))),
                                          _mm256_or_si256(_mm256_xor_si256(load(x + i + 64), load(y + i + 64)),
                                                          _mm256_xor_si256(load(x + i + 96), load(y + i + 96))));
        if (!_mm256_testz_si256(d, d))
            return 0;
    }
    for (; i + 32 <= count; i += 32) {
        const __m256i d = _mm256_xor_si256(load(x + i), load(y + i));
        if (!_mm256_testz_si256(d, d))
            return 0;
    }
    if (i < count) {
        const __m256i d = _mm256_xor_si256(load(x + count - 32), load(y + count - 32));
        if (!_mm256_testz_si256(d, d))
            return 0;
    }
#undef load
    return 1;
}

const bool kWide = __builtin_cpu_supports("avx2");
#endif

template <typename Unit>
unsigned long unitLength(const Unit* text)
{
    const Unit* p = text;
    while (*p != 0)
        ++p;
    return static_cast<unsigned long>(p - text);
}
}  // namespace

unsigned long BUTSTLEN(const char* text)
{
#if defined(__x86_64__)
    const unsigned long length = kWide ? scanLengthWide(text) : scanLength(text);
#else
    const unsigned long length = scanLength(text);
#endif
#if defined(HNSYB_ASAN)
    // The string itself, terminator included, must lie in addressable memory.
    if (__asan_region_is_poisoned(const_cast<char*>(text), length + 1) != nullptr)
        __asan_report_error(__builtin_return_address(0), __builtin_frame_address(0), __builtin_frame_address(0),
                            __asan_region_is_poisoned(const_cast<char*>(text), length + 1), 0, 1);
#endif
    return length;
}

unsigned long BUTSTLEN(const unsigned short* text) { return unitLength(text); }

char* BUTSTCPY(char* target, const char* source)
{
    std::memcpy(target, source, BUTSTLEN(source) + 1);
    return target;
}

unsigned short* BUTSTCPY(unsigned short* target, const unsigned short* source)
{
    std::memcpy(target, source, (unitLength(source) + 1) * sizeof(unsigned short));
    return target;
}

char* BUTSTCAT(char* target, const char* source)
{
    BUTSTCPY(target + BUTSTLEN(target), source);
    return target;
}

unsigned short* BUTSTCAT(unsigned short* target, const unsigned short* source)
{
    BUTSTCPY(target + unitLength(target), source);
    return target;
}

int BUTSTCMP(const char* a, const char* b) { return sign(std::strcmp(a, b)); }

int BUTSTCMP(const unsigned short* a, const unsigned short* b)
{
    while (*a != 0 && *a == *b) {
        ++a;
        ++b;
    }
    return (*a > *b) - (*a < *b);
}

void* BUTMEMCP(void* target, const void* source, std::size_t count)
{
    auto* t = static_cast<unsigned char*>(target);
    const auto* s = static_cast<const unsigned char*>(source);
    if (t + count <= s || s + count <= t || t <= s) {
        // No overlap, or the target below the source: an upward walk and
        // memmove agree, so the library's fastest one is used.
        std::memmove(t, s, count);
        return target;
    }
    // Target above an overlapping source: the upward walk repeats the
    // source's leading bytes, which is what this walk gives.
    for (std::size_t i = 0; i < count; ++i)
        t[i] = s[i];
    return target;
}

void* BUTMMCPD(void* target, const void* source, std::size_t count)
{
    auto* t = static_cast<unsigned char*>(target);
    const auto* s = static_cast<const unsigned char*>(source);
    if (t + count <= s || s + count <= t || t >= s) {
        std::memmove(t, s, count);
        return target;
    }
    // Target below an overlapping source: the downward walk repeats the
    // source's trailing bytes.
    for (std::size_t i = count; i > 0; --i)
        t[i - 1] = s[i - 1];
    return target;
}

int BUTMMCMP(const void* a, const void* b, std::size_t count) { return count == 0 ? 0 : sign(std::memcmp(a, b, count)); }

void BUTU8FIL(void* target, std::size_t count, unsigned char byte) { std::memset(target, byte, count); }

void butswap(void* base, unsigned long i, unsigned long j, std::size_t size)
{
    if (i == j || size == 0)
        return;
    auto* a = static_cast<unsigned char*>(base) + i * size;
    auto* b = static_cast<unsigned char*>(base) + j * size;
    // A fixed stack block, used in pieces for large elements: the swap never
    // allocates and so cannot fail.
    unsigned char block[256];
    for (std::size_t done = 0; done < size;) {
        const std::size_t piece = size - done < sizeof block ? size - done : sizeof block;
        std::memcpy(block, a + done, piece);
        std::memcpy(a + done, b + done, piece);
        std::memcpy(b + done, block, piece);
        done += piece;
    }
}

int butxpand(char** buffer, char** position, unsigned short* capacity, unsigned short needed)
{
    const unsigned long step = (static_cast<unsigned long>(needed) & ~511ul) + 512;
    if (*buffer == nullptr) {
        if (step > 0xFFFF)
            return 1;
        auto* block = static_cast<char*>(ramAllocC(step));
        if (block == nullptr)
            return 1;
        *buffer = block;
        *position = block;
        *capacity = static_cast<unsigned short>(step);
        return 0;
    }
    const auto used = static_cast<unsigned long>(*position - *buffer);
    if (*capacity - used >= needed)
        return 0;
    const unsigned long grown = *capacity + step;
    // The capacity is kept in 16 bits; a larger buffer could not be told.
    if (grown > 0xFFFF)
        return 1;
    auto* block = static_cast<char*>(ramAllocC(grown));
    if (block == nullptr)
        return 1;
    std::memcpy(block, *buffer, *capacity);
    ramFreeC(*buffer);
    *buffer = block;
    *position = block + used;
    *capacity = static_cast<unsigned short>(grown);
    return 0;
}

// Compared in 16-byte words.  Loads of any alignment are taken, all inside
// the count: the tail is the last whole word, overlapping the one before,
// rather than a masked word that would read past the end; the result is the
// same, and nothing outside the blocks is touched.
int memEqual(const void* a, const void* b, std::size_t count)
{
    const auto* x = static_cast<const unsigned char*>(a);
    const auto* y = static_cast<const unsigned char*>(b);
#if defined(__x86_64__)
    if (count >= 256 && kWide)
        return equalWide(x, y, count);
#endif
#if defined(__SSE2__)
    if (count >= 16) {
        std::size_t i = 0;
        for (; i + 128 <= count; i += 128) {
            __m128i diff = _mm_setzero_si128();
            for (std::size_t k = 0; k < 128; k += 16)
                diff = _mm_or_si128(diff, _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x + i + k)),
                                                        _mm_loadu_si128(reinterpret_cast<const __m128i*>(y + i + k))));
            if (_mm_movemask_epi8(_mm_cmpeq_epi8(diff, _mm_setzero_si128())) != 0xFFFF)
                return 0;
        }
        for (; i + 64 <= count; i += 64) {
            const __m128i e0 = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x + i)),
                                              _mm_loadu_si128(reinterpret_cast<const __m128i*>(y + i)));
            const __m128i e1 = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x + i + 16)),
                                              _mm_loadu_si128(reinterpret_cast<const __m128i*>(y + i + 16)));
            const __m128i e2 = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x + i + 32)),
                                              _mm_loadu_si128(reinterpret_cast<const __m128i*>(y + i + 32)));
            const __m128i e3 = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x + i + 48)),
                                              _mm_loadu_si128(reinterpret_cast<const __m128i*>(y + i + 48)));
            if (_mm_movemask_epi8(_mm_and_si128(_mm_and_si128(e0, e1), _mm_and_si128(e2, e3))) != 0xFFFF)
                return 0;
        }
        for (; i + 16 <= count; i += 16) {
            if (_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x + i)),
                                                 _mm_loadu_si128(reinterpret_cast<const __m128i*>(y + i)))) != 0xFFFF)
                return 0;
        }
        if (i < count) {
            i = count - 16;
            if (_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(x + i)),
                                                 _mm_loadu_si128(reinterpret_cast<const __m128i*>(y + i)))) != 0xFFFF)
                return 0;
        }
        return 1;
    }
#endif
    if (count >= 8) {
        std::size_t i = 0;
        for (; i + 8 <= count; i += 8) {
            std::uint64_t u;
            std::uint64_t v;
            std::memcpy(&u, x + i, 8);
            std::memcpy(&v, y + i, 8);
            if (u != v)
                return 0;
        }
        if (i < count) {
            std::uint64_t u;
            std::uint64_t v;
            std::memcpy(&u, x + count - 8, 8);
            std::memcpy(&v, y + count - 8, 8);
            if (u != v)
                return 0;
        }
        return 1;
    }
    for (std::size_t i = 0; i < count; ++i)
        if (x[i] != y[i])
            return 0;
    return 1;
}

int memEqualCi(const void* text, const void* upper, const void* lower, std::size_t count)
{
    const auto* t = static_cast<const unsigned char*>(text);
    const auto* u = static_cast<const unsigned char*>(upper);
    const auto* l = static_cast<const unsigned char*>(lower);
    for (std::size_t i = 0; i < count; ++i)
        if (t[i] != u[i] && t[i] != l[i])
            return 0;
    return 1;
}

void memZero(void* target, std::size_t count) { std::memset(target, 0, count); }

void memZero4Byte(void* target, std::size_t words) { std::memset(target, 0, words * 4); }

void memCopyAligned(void* target, const void* source, std::size_t count) { std::memcpy(target, source, count); }

void fastMemCopy(void* target, const void* source, std::size_t count) { std::memcpy(target, source, count); }

int memCompareHuge(const void* a, const void* b, unsigned long long count)
{
    const auto* x = static_cast<const unsigned char*>(a);
    const auto* y = static_cast<const unsigned char*>(b);
    // In pieces, so that a count beyond size_t on a narrower system would
    // still be taken whole.
    constexpr unsigned long long piece = 1ull << 30;
    while (count > 0) {
        const auto n = static_cast<std::size_t>(count < piece ? count : piece);
        const int r = BUTMMCMP(x, y, n);
        if (r != 0)
            return r;
        x += n;
        y += n;
        count -= n;
    }
    return 0;
}
