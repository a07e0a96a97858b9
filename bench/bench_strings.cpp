// String primitives against their glibc peers, in one run, on 16-byte and
// 64 KB inputs: BUTSTLEN vs strlen, memEqual vs memcmp, strFind (single-byte
// walk) vs memmem with an 8-byte pattern found at the very end.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/but.h"
#include "core/strfind.h"

namespace {
std::vector<char> letters(std::size_t n, unsigned seed)
{
    std::vector<char> v(n);
    std::mt19937 rng(seed);
    for (auto& c : v)
        c = static_cast<char>('a' + rng() % 26);
    return v;
}

std::vector<char> terminated(std::size_t n)
{
    auto v = letters(n + 1, 1);
    v[n] = 0;
    return v;
}

void OursStrlen(benchmark::State& state)
{
    const auto text = terminated(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(BUTSTLEN(text.data()));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}
void GlibcStrlen(benchmark::State& state)
{
    const auto text = terminated(static_cast<std::size_t>(state.range(0)));
    const char* volatile p = text.data();
    for (auto _ : state)
        benchmark::DoNotOptimize(std::strlen(p));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

void OursMemEqual(benchmark::State& state)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto a = letters(n, 2);
    const auto b = a;
    for (auto _ : state)
        benchmark::DoNotOptimize(memEqual(a.data(), b.data(), n));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}
void GlibcMemcmp(benchmark::State& state)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto a = letters(n, 2);
    const auto b = a;
    const char* volatile pa = a.data();
    for (auto _ : state)
        benchmark::DoNotOptimize(std::memcmp(pa, b.data(), n) == 0);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

// The pattern is the text's last 8 bytes, which appear nowhere earlier.
std::vector<char> haystack(std::size_t n)
{
    auto v = letters(n, 3);
    std::memcpy(v.data() + n - 8, "XYZXYZQQ", 8);
    return v;
}
void OursStrFind(benchmark::State& state)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto text = haystack(n);
    for (auto _ : state)
        benchmark::DoNotOptimize(strFind(text.data(), static_cast<long>(n), "XYZXYZQQ", 8, ZU_CP_SBCS));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}
void GlibcMemmem(benchmark::State& state)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto text = haystack(n);
    const char* volatile pattern = "XYZXYZQQ";
    for (auto _ : state)
        benchmark::DoNotOptimize(memmem(text.data(), n, pattern, 8));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}
}  // namespace

BENCHMARK(OursStrlen)->Arg(16)->Arg(65536);
BENCHMARK(GlibcStrlen)->Arg(16)->Arg(65536);
BENCHMARK(OursMemEqual)->Arg(16)->Arg(65536);
BENCHMARK(GlibcMemcmp)->Arg(16)->Arg(65536);
BENCHMARK(OursStrFind)->Arg(16)->Arg(65536);
BENCHMARK(GlibcMemmem)->Arg(16)->Arg(65536);
