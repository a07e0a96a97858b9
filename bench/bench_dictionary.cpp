// ZuDictionary lookups against std::unordered_map with the same keys, in one
// run:
//   string keys, random letters (the 5-byte hash spreads them somewhat) and
//   keys sharing a prefix ("Attr0001"...: most of them hash alike);
//   integer keys, random.
// Every lookup hits; items are lookups.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/dictionary.h"

namespace {
std::vector<std::string> makeTexts(size_t n, bool sharedPrefix)
{
    std::vector<std::string> texts;
    std::mt19937 rng(3);
    for (size_t i = 0; i < n; ++i) {
        std::string t;
        if (sharedPrefix) {
            char buf[16];
            std::snprintf(buf, sizeof buf, "Attr%04u", static_cast<unsigned>(i % 10000));
            t = buf;
        } else {
            for (unsigned len = 6 + rng() % 7; len > 0; --len)
                t += static_cast<char>('a' + rng() % 26);
            t += std::to_string(i);  // distinct
        }
        texts.push_back(t);
    }
    return texts;
}

ZuObject value;

void ZuDictionaryStringLookup(benchmark::State& state)
{
    const auto texts = makeTexts(static_cast<size_t>(state.range(0)), state.range(1) != 0);
    std::vector<ZuSubString> keys;
    keys.reserve(texts.size());
    for (const std::string& t : texts)
        keys.emplace_back(t.data(), t.size());
    ZuDictionary d;
    d.initialize(static_cast<unsigned>(keys.size()));
    for (ZuSubString& k : keys)
        d.addAssoc(&k, &value);
    for (auto _ : state)
        for (const ZuSubString& k : keys)
            benchmark::DoNotOptimize(d.getPtrForKey(&k));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(keys.size()));
}  // the destructor destroys the associations; keys and value are ours
BENCHMARK(ZuDictionaryStringLookup)->Args({100, 0})->Args({1000, 0})->Args({100, 1})->Args({1000, 1});

void StdUnorderedMapStringLookup(benchmark::State& state)
{
    const auto texts = makeTexts(static_cast<size_t>(state.range(0)), state.range(1) != 0);
    std::unordered_map<std::string_view, ZuObject*> m;
    for (const std::string& t : texts)
        m.emplace(t, &value);
    std::vector<std::string_view> keys(texts.begin(), texts.end());
    for (auto _ : state)
        for (std::string_view k : keys)
            benchmark::DoNotOptimize(m.find(k)->second);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(keys.size()));
}
BENCHMARK(StdUnorderedMapStringLookup)->Args({100, 0})->Args({1000, 0})->Args({100, 1})->Args({1000, 1});

std::vector<int> makeInts(size_t n)
{
    std::vector<int> v;
    std::mt19937 rng(9);
    std::unordered_map<int, int> seen;
    while (v.size() < n) {
        const int k = static_cast<int>(rng() % 10000000);
        if (seen.emplace(k, 0).second)
            v.push_back(k);
    }
    return v;
}

void ZuDictionaryIntLookup(benchmark::State& state)
{
    const auto keys = makeInts(static_cast<size_t>(state.range(0)));
    ZuDictionary d;
    d.initialize(static_cast<unsigned>(keys.size()));
    for (int k : keys)
        d.addAssoc(k, k ^ 0x55);
    for (auto _ : state)
        for (int k : keys)
            benchmark::DoNotOptimize(d.getIntForKey(k));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(keys.size()));
}
BENCHMARK(ZuDictionaryIntLookup)->Arg(1000)->Arg(50000);

void StdUnorderedMapIntLookup(benchmark::State& state)
{
    const auto keys = makeInts(static_cast<size_t>(state.range(0)));
    std::unordered_map<int, int> m;
    for (int k : keys)
        m.emplace(k, k ^ 0x55);
    for (auto _ : state)
        for (int k : keys)
            benchmark::DoNotOptimize(m.find(k)->second);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(keys.size()));
}
BENCHMARK(StdUnorderedMapIntLookup)->Arg(1000)->Arg(50000);
}  // namespace
