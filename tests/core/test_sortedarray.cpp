// ZuSortedArray and ZuSortedArrayZUSIZE_T: stable insertion, lazy sort,
// binary search results, duplicate removal, and random models.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

#include "core/sortedarray.h"

namespace {
// Ordered by key only; seq tells equal keys apart.
struct Keyed : ZuObject {
    static inline int live = 0;
    int key, seq;
    Keyed(int k, int s = 0) : key(k), seq(s) { ++live; }
    ~Keyed() override { --live; }
    int compare(const ZuObject* other) const override
    {
        const int k = static_cast<const Keyed*>(other)->key;
        return (key > k) - (key < k);
    }
};

using V = std::vector<int>;
const Keyed* at(const ZuSortedArray& a, unsigned i) { return static_cast<const Keyed*>(a.at(i)); }
V seqs(const ZuSortedArray& a)
{
    V out;
    for (unsigned i = 0; i < a.getCount(); ++i)
        out.push_back(at(a, i)->seq);
    return out;
}

// findIndexOf and findIndexOfLastKey checked against a sorted model of the
// array: a hit is an equal element and its last equal; a miss is the point
// with everything before it less and everything from it greater.
template <class T, class Find, class Last>
void expectSearch(const std::vector<T>& model, T probe, Find find, Last last)
{
    unsigned idx = 12345;
    const auto lower = static_cast<unsigned>(std::lower_bound(model.begin(), model.end(), probe) - model.begin());
    const auto upper = static_cast<unsigned>(std::upper_bound(model.begin(), model.end(), probe) - model.begin());
    if (find(probe, &idx) != 0) {
        ASSERT_LT(lower, upper) << "hit on an absent value";
        EXPECT_EQ(model[idx], probe);
        EXPECT_EQ(last(probe, idx), upper - 1);
    } else {
        EXPECT_EQ(lower, upper) << "miss on a present value";
        EXPECT_EQ(idx, lower);
    }
}
}  // namespace

TEST(ZuSortedArrayAdd, EqualKeysKeepArrivalOrderAndLazySortAppendsWhateverTheValues)
{
    for (int lazy : {0, 1}) {
        Keyed e[] = {{5, 0}, {1, 1}, {5, 2}, {9, 3}, {5, 4}};
        ZuSortedArray a;
        a.setLazySort(lazy);
        EXPECT_EQ(a.isLazySort(), lazy);
        for (auto& k : e)
            ASSERT_EQ(a.add(&k), 0);
        EXPECT_EQ(seqs(a), lazy ? (V{0, 1, 2, 3, 4}) : (V{1, 0, 2, 4, 3}));
    }
}

TEST(ZuSortedArraySearch, FindIndexOfHitsAndInsertionPointsAndFindIndexOfLastKey)
{
    // 0..12 elements keyed 0,0,2,2,4,4,...; probes cover every gap, every
    // run and both ends.
    for (int n = 0; n <= 12; ++n) {
        std::vector<Keyed> keys;
        keys.reserve(static_cast<size_t>(n));
        ZuSortedArray a;
        V model;
        for (int i = 0; i < n; ++i)
            a.add(&keys.emplace_back(2 * (i / 2))), model.push_back(2 * (i / 2));
        for (int probe = -1; probe <= n + 1; ++probe) {
            SCOPED_TRACE(testing::Message() << "n " << n << " probe " << probe);
            const Keyed p(probe);
            expectSearch(model, probe, [&](int, unsigned* i) { return a.findIndexOf(&p, i); },
                         [&](int, unsigned i) { return a.findIndexOfLastKey(&p, i); });
        }
    }
}

TEST(ZuSortedArraySearch, SeqFindIndexOfFindsTheFirstEqualEvenUnsorted)
{
    Keyed e[] = {{9, 0}, {3, 1}, {3, 2}, {5, 3}, {3, 4}};
    ZuSortedArray a;
    a.setLazySort(1);
    for (auto& k : e)
        a.add(&k);
    unsigned idx = 999;
    const Keyed three(3), seven(7);
    ASSERT_EQ(a.seqFindIndexOf(&three, &idx), 1);
    EXPECT_EQ(idx, 1u);
    EXPECT_EQ(a.seqFindIndexOf(&seven, &idx), 0);
}

TEST(ZuSortedArrayDuplicates, DeleteAndRemoveDuplicatesMatchStdUnique)
{
    std::mt19937 rng(777);
    for (bool destroy : {true, false}) {
        Keyed::live = 0;
        ZuSortedArray a;
        a.setLazySort(destroy ? 0 : 1);  // unsorted: only adjacent equals go
        std::vector<Keyed*> all;
        for (int i = 0; i < 60; ++i)
            a.add(all.emplace_back(new Keyed(static_cast<int>(rng() % 6), i)));
        std::vector<Keyed*> model;
        for (unsigned i = 0; i < a.getCount(); ++i)
            model.push_back(static_cast<Keyed*>(a.at(i)));
        model.erase(std::unique(model.begin(), model.end(), [](Keyed* x, Keyed* y) { return x->key == y->key; }),
                    model.end());
        destroy ? a.deleteDuplicates() : a.removeDuplicates();
        std::vector<Keyed*> got;
        for (unsigned i = 0; i < a.getCount(); ++i)
            got.push_back(static_cast<Keyed*>(a.at(i)));
        EXPECT_EQ(got, model);  // the first of each run stays
        EXPECT_EQ(Keyed::live, destroy ? static_cast<int>(model.size()) : 60);
        if (destroy)
            a.deleteContents();
        else
            for (Keyed* k : all)
                delete k;
    }
}

TEST(ZuSortedArrayModel, RandomAddsMatchMultimapInsertionOrder)
{
    std::mt19937 rng(4242);
    std::vector<Keyed> keys;
    keys.reserve(1500);
    std::multimap<int, int> model;  // an equal key goes after those present
    ZuSortedArray a;
    for (int i = 0; i < 1500; ++i) {
        ASSERT_EQ(a.add(&keys.emplace_back(static_cast<int>(rng() % 40) - 20, i)), 0);
        model.emplace(keys.back().key, i);
        V expected;
        for (const auto& kv : model)
            expected.push_back(kv.second);
        ASSERT_EQ(seqs(a), expected) << "after add " << i;
    }
}

TEST(ZuSortedArrayModel, SizeTAddsAndSearchesMatchASortedModelAbove2To63)
{
    std::mt19937_64 rng(99);
    const size_t high = size_t{1} << 63;
    const size_t pool[] = {0, 1, high - 1, high, high + 1, SIZE_MAX - 1, SIZE_MAX};
    ZuSortedArrayZUSIZE_T a;
    std::vector<size_t> model;
    for (int i = 0; i < 1500; ++i) {
        const size_t v = rng() % 3 == 0 ? rng() : pool[rng() % 7];
        ASSERT_EQ(a.add(v), 0);
        model.insert(std::upper_bound(model.begin(), model.end(), v), v);
        std::vector<size_t> got;
        for (unsigned j = 0; j < a.getCount(); ++j)
            got.push_back(a[j]);
        ASSERT_EQ(got, model) << "after add " << i;
    }
    for (size_t probe : {size_t{2}, high - 2, high, high + 2, SIZE_MAX}) {
        SCOPED_TRACE(probe);
        expectSearch(model, probe, [&](size_t v, unsigned* i) { return a.findIndexOf(v, i); },
                     [&](size_t v, unsigned i) { return a.findIndexOfLastKey(v, i); });
    }
}
