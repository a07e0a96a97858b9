// Code page transforms against ICU and glibc iconv on the same 16 MB, in one
// run, with memcpy of the same bytes as the floor.  Rates are source bytes
// per second.
//   pure ASCII and mixed text (30% of the characters CJK):
//     UTF-8 -> UTF-16: uxUTF8ToUTF16 | ucnv_toUChars | u_strFromUTF8 | iconv
//     UTF-16 -> UTF-8: uxUTF16ToUTF8 | ucnv_fromUChars | u_strToUTF8 | iconv
//   ISO-8859-1 -> UTF-16: uxAnsiToUCS2 | ucnv_toUChars | iconv
//   ISO-8859-1 -> UTF-8:  uxAnsiToUTF8 | ucnv_convertEx | iconv
#include <benchmark/benchmark.h>
#include <iconv.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "encoding/ux.h"

namespace {

constexpr size_t kBytes = 16u << 20;

struct Corpus {
    std::string utf8;
    std::u16string utf16;
    std::string latin1;
};

Corpus makeCorpus(bool mixed)
{
    Corpus c;
    std::mt19937 rng(42);
    while (c.utf8.size() < kBytes) {
        if (mixed && rng() % 100 < 30) {
            const char32_t cjk = 0x4E00 + rng() % 0x5000;
            c.utf8 += static_cast<char>(0xE0 | (cjk >> 12));
            c.utf8 += static_cast<char>(0x80 | ((cjk >> 6) & 0x3F));
            c.utf8 += static_cast<char>(0x80 | (cjk & 0x3F));
            c.utf16 += static_cast<char16_t>(cjk);
        } else {
            const char a = static_cast<char>(' ' + rng() % 95);
            c.utf8 += a;
            c.utf16 += static_cast<char16_t>(a);
        }
    }
    for (size_t i = 0; i < kBytes; ++i)
        c.latin1 += static_cast<char>(mixed ? 0x20 + rng() % 0xE0 : ' ' + rng() % 95);
    return c;
}

const Corpus& corpus(bool mixed)
{
    static const Corpus ascii = makeCorpus(false), cjk = makeCorpus(true);
    return mixed ? cjk : ascii;
}

struct Cnv {
    explicit Cnv(const char* name)
    {
        UErrorCode s = U_ZERO_ERROR;
        c = ucnv_open(name, &s);
    }
    ~Cnv() { ucnv_close(c); }
    UConverter* c;
};

void finish(benchmark::State& state, size_t bytes) { state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes)); }

// ---- UTF-8 -> UTF-16 -------------------------------------------------------

void Utf8ToUtf16_Ours(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    std::vector<unsigned short> out(c.utf8.size() + 1);
    for (auto _ : state) {
        long w = 0;
        uxUTF8ToUTF16(out.data(), static_cast<long>(out.size()), reinterpret_cast<const unsigned char*>(c.utf8.data()),
                      static_cast<long>(c.utf8.size()), &w, 0);
        benchmark::DoNotOptimize(w);
    }
    finish(state, c.utf8.size());
}

void Utf8ToUtf16_IcuToUChars(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    Cnv utf8("UTF-8");
    std::vector<UChar> out(c.utf8.size() + 1);
    for (auto _ : state) {
        UErrorCode s = U_ZERO_ERROR;
        benchmark::DoNotOptimize(ucnv_toUChars(utf8.c, out.data(), static_cast<int32_t>(out.size()), c.utf8.data(),
                                               static_cast<int32_t>(c.utf8.size()), &s));
    }
    finish(state, c.utf8.size());
}

void Utf8ToUtf16_IcuStrFromUTF8(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    std::vector<UChar> out(c.utf8.size() + 1);
    for (auto _ : state) {
        UErrorCode s = U_ZERO_ERROR;
        int32_t n = 0;
        u_strFromUTF8(out.data(), static_cast<int32_t>(out.size()), &n, c.utf8.data(),
                      static_cast<int32_t>(c.utf8.size()), &s);
        benchmark::DoNotOptimize(n);
    }
    finish(state, c.utf8.size());
}

void runIconv(benchmark::State& state, const char* to, const char* from, const char* in, size_t inBytes,
              size_t outBytes)
{
    iconv_t cd = iconv_open(to, from);
    std::vector<char> out(outBytes);
    for (auto _ : state) {
        char* src = const_cast<char*>(in);
        size_t left = inBytes;
        char* dst = out.data();
        size_t room = out.size();
        iconv(cd, &src, &left, &dst, &room);
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(room);
    }
    iconv_close(cd);
    finish(state, inBytes);
}

void Utf8ToUtf16_Iconv(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    runIconv(state, "UTF-16LE", "UTF-8", c.utf8.data(), c.utf8.size(), c.utf8.size() * 2 + 2);
}

// ---- UTF-16 -> UTF-8 -------------------------------------------------------

void Utf16ToUtf8_Ours(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    std::vector<unsigned char> out(c.utf16.size() * 3 + 1);
    for (auto _ : state) {
        long w = 0;
        uxUTF16ToUTF8(out.data(), static_cast<long>(out.size()), reinterpret_cast<const unsigned short*>(c.utf16.data()),
                      static_cast<long>(c.utf16.size()), &w, 0);
        benchmark::DoNotOptimize(w);
    }
    finish(state, c.utf16.size() * 2);
}

void Utf16ToUtf8_IcuFromUChars(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    Cnv utf8("UTF-8");
    std::vector<char> out(c.utf16.size() * 3 + 1);
    for (auto _ : state) {
        UErrorCode s = U_ZERO_ERROR;
        benchmark::DoNotOptimize(ucnv_fromUChars(utf8.c, out.data(), static_cast<int32_t>(out.size()),
                                                 c.utf16.data(), static_cast<int32_t>(c.utf16.size()), &s));
    }
    finish(state, c.utf16.size() * 2);
}

void Utf16ToUtf8_IcuStrToUTF8(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    std::vector<char> out(c.utf16.size() * 3 + 1);
    for (auto _ : state) {
        UErrorCode s = U_ZERO_ERROR;
        int32_t n = 0;
        u_strToUTF8(out.data(), static_cast<int32_t>(out.size()), &n, c.utf16.data(),
                    static_cast<int32_t>(c.utf16.size()), &s);
        benchmark::DoNotOptimize(n);
    }
    finish(state, c.utf16.size() * 2);
}

void Utf16ToUtf8_Iconv(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    runIconv(state, "UTF-8", "UTF-16LE", reinterpret_cast<const char*>(c.utf16.data()), c.utf16.size() * 2,
             c.utf16.size() * 3 + 1);
}

// ---- ISO-8859-1 -> UTF-16 / UTF-8 -----------------------------------------

void Latin1ToUtf16_Ours(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    Cnv latin("ISO-8859-1");
    std::vector<unsigned short> out(c.latin1.size() + 1);
    for (auto _ : state) {
        long w = 0;
        uxAnsiToUCS2(out.data(), static_cast<long>(out.size()), reinterpret_cast<const unsigned char*>(c.latin1.data()),
                     static_cast<long>(c.latin1.size()), &w, nullptr, latin.c, 0);
        benchmark::DoNotOptimize(w);
    }
    finish(state, c.latin1.size());
}

void Latin1ToUtf16_IcuToUChars(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    Cnv latin("ISO-8859-1");
    std::vector<UChar> out(c.latin1.size() + 1);
    for (auto _ : state) {
        UErrorCode s = U_ZERO_ERROR;
        benchmark::DoNotOptimize(ucnv_toUChars(latin.c, out.data(), static_cast<int32_t>(out.size()),
                                               c.latin1.data(), static_cast<int32_t>(c.latin1.size()), &s));
    }
    finish(state, c.latin1.size());
}

void Latin1ToUtf16_Iconv(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    runIconv(state, "UTF-16LE", "ISO-8859-1", c.latin1.data(), c.latin1.size(), c.latin1.size() * 2 + 2);
}

void Latin1ToUtf8_Ours(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    Cnv latin("ISO-8859-1"), utf8("UTF-8");
    std::vector<unsigned char> out(c.latin1.size() * 2 + 1);
    for (auto _ : state) {
        long w = 0;
        uxAnsiToUTF8(out.data(), static_cast<long>(out.size()), reinterpret_cast<const unsigned char*>(c.latin1.data()),
                     static_cast<long>(c.latin1.size()), &w, nullptr, latin.c, utf8.c);
        benchmark::DoNotOptimize(w);
    }
    finish(state, c.latin1.size());
}

void Latin1ToUtf8_IcuConvertEx(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    Cnv latin("ISO-8859-1"), utf8("UTF-8");
    std::vector<char> out(c.latin1.size() * 2 + 1);
    for (auto _ : state) {
        UErrorCode s = U_ZERO_ERROR;
        char* t = out.data();
        const char* src = c.latin1.data();
        ucnv_convertEx(utf8.c, latin.c, &t, out.data() + out.size(), &src, src + c.latin1.size(), nullptr, nullptr,
                       nullptr, nullptr, true, true, &s);
        benchmark::DoNotOptimize(t);
    }
    finish(state, c.latin1.size());
}

void Latin1ToUtf8_Iconv(benchmark::State& state)
{
    const Corpus& c = corpus(state.range(0) != 0);
    runIconv(state, "UTF-8", "ISO-8859-1", c.latin1.data(), c.latin1.size(), c.latin1.size() * 2 + 1);
}

void Memcpy(benchmark::State& state)
{
    const Corpus& c = corpus(false);
    std::vector<char> out(c.utf8.size());
    for (auto _ : state) {
        std::memcpy(out.data(), c.utf8.data(), c.utf8.size());
        benchmark::ClobberMemory();
    }
    finish(state, c.utf8.size());
}

// Argument: 0 pure ASCII, 1 mixed (30% CJK; for ISO-8859-1, the upper half too).
#define BOTH(fn) BENCHMARK(fn)->ArgName("mixed")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)
BOTH(Utf8ToUtf16_Ours);
BOTH(Utf8ToUtf16_IcuToUChars);
BOTH(Utf8ToUtf16_IcuStrFromUTF8);
BOTH(Utf8ToUtf16_Iconv);
BOTH(Utf16ToUtf8_Ours);
BOTH(Utf16ToUtf8_IcuFromUChars);
BOTH(Utf16ToUtf8_IcuStrToUTF8);
BOTH(Utf16ToUtf8_Iconv);
BOTH(Latin1ToUtf16_Ours);
BOTH(Latin1ToUtf16_IcuToUChars);
BOTH(Latin1ToUtf16_Iconv);
BOTH(Latin1ToUtf8_Ours);
BOTH(Latin1ToUtf8_IcuConvertEx);
BOTH(Latin1ToUtf8_Iconv);
BENCHMARK(Memcpy)->Unit(benchmark::kMillisecond);

}  // namespace
