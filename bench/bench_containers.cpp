// Containers against their standard-library peers, in one run:
//   append of N pointers: ZuArray (step 16 and doubling) vs std::vector;
//   sorted insertion of N random keys: ZuSortedArray vs std::multiset;
//   queue churn: ZuDList append/removeFirstNode vs std::list.
#include <benchmark/benchmark.h>

#include <list>
#include <random>
#include <set>
#include <vector>

#include "core/list.h"
#include "core/sortedarray.h"

namespace {
struct Key : ZuObject {
    unsigned v = 0;
    int compare(const ZuObject* o) const override
    {
        unsigned w = static_cast<const Key*>(o)->v;
        return v < w ? -1 : (v > w ? 1 : 0);
    }
};

std::vector<Key> makeKeys(size_t n)
{
    std::vector<Key> keys(n);
    std::mt19937 rng(7);
    for (Key& k : keys)
        k.v = static_cast<unsigned>(rng());
    return keys;
}

void ZuArrayAppend(benchmark::State& state)
{
    const auto n = static_cast<unsigned>(state.range(0));
    const unsigned step = static_cast<unsigned>(state.range(1));
    Key k;
    for (auto _ : state) {
        ZuArray a(step);
        for (unsigned i = 0; i < n; ++i)
            a.add(&k);
        benchmark::DoNotOptimize(a.getTable());
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(ZuArrayAppend)->Args({1000, 16})->Args({1000, 0})->Args({100000, 0});

void StdVectorAppend(benchmark::State& state)
{
    const auto n = static_cast<size_t>(state.range(0));
    Key k;
    for (auto _ : state) {
        std::vector<void*> v;
        for (size_t i = 0; i < n; ++i)
            v.push_back(&k);
        benchmark::DoNotOptimize(v.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(n));
}
BENCHMARK(StdVectorAppend)->Arg(1000)->Arg(100000);

void ZuSortedArrayAdd(benchmark::State& state)
{
    auto keys = makeKeys(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        ZuSortedArray a(0);
        for (Key& k : keys)
            a.add(&k);
        benchmark::DoNotOptimize(a.getTable());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ZuSortedArrayAdd)->Arg(1000)->Arg(20000);

void StdMultisetInsert(benchmark::State& state)
{
    auto keys = makeKeys(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        std::multiset<unsigned> s;
        for (Key& k : keys)
            s.insert(k.v);
        benchmark::DoNotOptimize(s.size());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(StdMultisetInsert)->Arg(1000)->Arg(20000);

void ZuDListChurn(benchmark::State& state)
{
    std::vector<ZuDNode> nodes(64);
    ZuDList list;
    for (ZuDNode& n : nodes)
        list.append(&n);
    for (auto _ : state) {
        ZuDNode* n = list.removeFirstNode();
        list.append(n);
        benchmark::DoNotOptimize(n);
    }
    while (list.removeFirstNode() != nullptr) {
    }
}
BENCHMARK(ZuDListChurn);

void StdListChurn(benchmark::State& state)
{
    std::list<int> list(64);
    for (auto _ : state) {
        list.splice(list.end(), list, list.begin());
        benchmark::DoNotOptimize(list.front());
    }
}
BENCHMARK(StdListChurn);
}  // namespace
