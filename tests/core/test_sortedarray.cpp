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
    int key;
    int seq;
    Keyed(int k, int s = 0) : key(k), seq(s) { ++live; }
    ~Keyed() override { --live; }
    int compare(const ZuObject* other) const override
    {
        const int k = static_cast<const Keyed*>(other)->key;
        return key < k ? -1 : (key > k ? 1 : 0);
    }
};

const Keyed* at(const ZuSortedArray& a, unsigned i) { return static_cast<const Keyed*>(a.at(i)); }

std::vector<int> seqs(const ZuSortedArray& a)
{
    std::vector<int> out;
    for (unsigned i = 0; i < a.getCount(); ++i)
        out.push_back(at(a, i)->seq);
    return out;
}
}  // namespace

TEST(ZuSortedArrayAdd, EqualKeysKeepArrivalOrder)
{
    Keyed e[] = {{5, 0}, {1, 1}, {5, 2}, {9, 3}, {5, 4}};
    ZuSortedArray a;
    for (auto& k : e)
        ASSERT_EQ(a.add(&k), 0);
    EXPECT_EQ(seqs(a), (std::vector<int>{1, 0, 2, 4, 3}));
}

TEST(ZuSortedArrayAdd, LazySortAppendsWhateverTheValues)
{
    Keyed e[] = {{9, 0}, {1, 1}, {5, 2}, {1, 3}};
    ZuSortedArray a;
    a.setLazySort(1);
    EXPECT_TRUE(a.isLazySort());
    for (auto& k : e)
        ASSERT_EQ(a.add(&k), 0);
    EXPECT_EQ(seqs(a), (std::vector<int>{0, 1, 2, 3}));
    a.setLazySort(0);
    EXPECT_FALSE(a.isLazySort());
}

TEST(ZuSortedArraySearch, FindIndexOfGivesInsertionPointOrEqualAndLastKeyTheLastEqual)
{
    // Arrays of 0..12 elements with keys 0,0,2,2,4,4,...; probes cover
    // every gap, every run and both ends.
    for (int n = 0; n <= 12; ++n) {
        std::vector<Keyed> keys;
        keys.reserve(static_cast<size_t>(n));
        std::vector<int> model;
        ZuSortedArray a;
        for (int i = 0; i < n; ++i) {
            keys.emplace_back(2 * (i / 2));
            model.push_back(2 * (i / 2));
            ASSERT_EQ(a.add(&keys.back()), 0);
        }
        for (int probe = -1; probe <= n + 1; ++probe) {
            const Keyed p(probe);
            unsigned idx = 999;
            const int hit = a.findIndexOf(&p, &idx);
            const auto lower = std::lower_bound(model.begin(), model.end(), probe);
            const auto upper = std::upper_bound(model.begin(), model.end(), probe);
            ASSERT_EQ(hit, lower != upper ? 1 : 0) << "n " << n << " probe " << probe;
            if (hit) {
                EXPECT_EQ(at(a, idx)->key, probe);
                EXPECT_EQ(a.findIndexOfLastKey(&p, idx), static_cast<unsigned>(upper - model.begin()) - 1);
            } else {
                EXPECT_EQ(idx, static_cast<unsigned>(lower - model.begin())) << "n " << n << " probe " << probe;
            }
        }
    }
}

TEST(ZuSortedArraySearch, SeqFindIndexOfFindsTheFirstEqualEvenUnsorted)
{
    Keyed e[] = {{9, 0}, {3, 1}, {5, 2}, {3, 3}};
    ZuSortedArray a;
    a.setLazySort(1);
    for (auto& k : e)
        a.add(&k);
    unsigned idx = 999;
    const Keyed three(3), seven(7);
    ASSERT_EQ(a.seqFindIndexOf(&three, &idx), 1);
    EXPECT_EQ(at(a, idx)->seq, 1);
    EXPECT_EQ(a.seqFindIndexOf(&seven, &idx), 0);
}

TEST(ZuSortedArrayDuplicates, DeleteAndRemoveDuplicatesMatchStdUnique)
{
    std::mt19937 rng(777);
    for (bool destroy : {true, false}) {
        Keyed::live = 0;
        ZuSortedArray a;
        a.setLazySort(destroy ? 0 : 1);  // the unsorted case drops adjacent runs only
        std::vector<Keyed*> all;
        for (int i = 0; i < 60; ++i) {
            all.push_back(new Keyed(static_cast<int>(rng() % 6), i));
            ASSERT_EQ(a.add(all.back()), 0);
        }
        std::vector<Keyed*> model;
        for (unsigned i = 0; i < a.getCount(); ++i)
            model.push_back(static_cast<Keyed*>(a.at(i)));
        model.erase(std::unique(model.begin(), model.end(), [](Keyed* x, Keyed* y) { return x->key == y->key; }),
                    model.end());
        destroy ? a.deleteDuplicates() : a.removeDuplicates();
        ASSERT_EQ(a.getCount(), model.size());
        for (unsigned i = 0; i < model.size(); ++i)
            EXPECT_EQ(a.at(i), model[i]) << "index " << i;  // the first of each run stays
        EXPECT_EQ(Keyed::live, destroy ? static_cast<int>(model.size()) : 60);
        if (destroy) {
            a.deleteContents();
        } else {
            for (Keyed* k : all)
                delete k;
        }
        EXPECT_EQ(Keyed::live, 0);
    }
}

TEST(ZuSortedArrayModel, RandomAddsMatchMultimapInsertionOrder)
{
    std::mt19937 rng(4242);
    std::vector<Keyed> keys;
    keys.reserve(1500);
    std::multimap<int, int> model;  // equal keys go after the existing ones
    ZuSortedArray a;
    for (int i = 0; i < 1500; ++i) {
        keys.emplace_back(static_cast<int>(rng() % 40) - 20, i);
        ASSERT_EQ(a.add(&keys.back()), 0);
        model.emplace(keys.back().key, i);
        std::vector<int> expected;
        for (const auto& kv : model)
            expected.push_back(kv.second);
        ASSERT_EQ(seqs(a), expected) << "after add " << i;
    }
}

TEST(ZuSortedArrayModel, SizeTAddsAndSearchesMatchASortedModelAbove2To63)
{
    std::mt19937_64 rng(99);
    const size_t pool[] = {0, 1, (size_t{1} << 63) - 1, size_t{1} << 63, (size_t{1} << 63) + 1, SIZE_MAX - 1, SIZE_MAX};
    ZuSortedArrayZUSIZE_T a;
    std::vector<size_t> model;
    for (int i = 0; i < 1500; ++i) {
        const size_t v = rng() % 3 == 0 ? rng() : pool[rng() % 7];
        ASSERT_EQ(a.add(v), 0);
        model.insert(std::upper_bound(model.begin(), model.end(), v), v);
        ASSERT_EQ(a.getCount(), model.size());
        for (unsigned j = 0; j < model.size(); ++j)
            ASSERT_EQ(a[j], model[j]) << "after add " << i << " index " << j;
    }
    for (size_t probe : {size_t{2}, size_t{1} << 63, (size_t{1} << 63) + 2, SIZE_MAX}) {
        unsigned idx = 0;
        const auto lower = std::lower_bound(model.begin(), model.end(), probe);
        const auto upper = std::upper_bound(model.begin(), model.end(), probe);
        if (a.findIndexOf(probe, &idx)) {
            ASSERT_NE(lower, upper);
            EXPECT_EQ(a[idx], probe);
            EXPECT_EQ(a.findIndexOfLastKey(probe, idx), static_cast<unsigned>(upper - model.begin()) - 1);
        } else {
            EXPECT_EQ(lower, upper);
            EXPECT_EQ(idx, static_cast<unsigned>(lower - model.begin()));
        }
    }
}
