// ZuSet, ZuDictionary(W) and ZuSeqDictionary(W): sizing and growth, the
// downward probe, replacement, the limits of a table, allocation failure,
// key comparison by double dispatch, and random runs against standard maps.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <deque>
#include <set>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/dictionary.h"
#include "core/errorlist.h"
#include "core/set.h"
#include "platform/ramfault.h"

namespace {
// Counts live instances: a missed delete leaves it high, a double delete low.
struct Tracked : ZuObject {
    static inline int live = 0;
    Tracked() { ++live; }
    ~Tracked() override { --live; }
};

struct CurrentErrorList {
    ZuErrorList list{nullptr, 1};
    CurrentErrorList() { ZuErrorKeeper::setErrorList(&list); }
    ~CurrentErrorList() { ramFaultFailNth(0), ZuErrorKeeper::giveUpErrorList(); }
};

// A set of integers held in caller storage; `hashAll` forces one hash.
struct Item {
    unsigned long key;
};
struct IntSet : ZuSet {
    long hashAll = -1;
    unsigned long doHash(const void* e) const override
    {
        return hashAll >= 0 ? static_cast<unsigned long>(hashAll) : static_cast<const Item*>(e)->key;
    }
    int areEqual(const void* a, const void* b) const override
    {
        return static_cast<const Item*>(a)->key == static_cast<const Item*>(b)->key;
    }
    std::vector<void*> slots() const
    {
        std::vector<void*> s;
        for (unsigned i = 0; i < getTableSize(); ++i)
            s.push_back(getEntry(i));
        return s;
    }
};

std::string upper(std::string s)
{
    for (char& c : s)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}
}  // namespace

TEST(ZuSetSizing, InitializeGrowthPercentagesAndReset)
{
    std::vector<Item> items(200);
    IntSet s;
    ASSERT_EQ(s.initialize(75), 0);
    EXPECT_EQ(s.getTableSize(), 101u);
    EXPECT_EQ(s.getCapacity(), 75u);
    for (unsigned long i = 0; i < 75; ++i)
    {
        items[i].key = i * 7;
        ASSERT_EQ(s.add(&items[i]), 0);
    }
    EXPECT_EQ(s.getTableSize(), 101u);  // full to 75 percent, no growth yet
    items[75].key = 9999;
    ASSERT_EQ(s.add(&items[75]), 0);
    EXPECT_EQ(s.getCapacity(), 94u);  // 75 + 75 * 25 / 100 + 1
    EXPECT_EQ(s.getTableSize(), 126u);
    for (unsigned i = 0; i <= 75; ++i)
        EXPECT_EQ(s.getEntry(s.findIndexOf(&items[i])), &items[i]);
    EXPECT_EQ(s.getHighestCount(), 76u);

    s.setGrowthPercent(100);
    s.reset();
    EXPECT_EQ(s.getFillPercent(), 75);
    EXPECT_EQ(s.getGrowthPercent(), 25);
    EXPECT_EQ(s.getTableSize() + s.getCount() + s.getHighestCount(), 0u);
    // Without a table: lookups end at once, and an add makes the table.
    EXPECT_EQ(s.findIndexOf(&items[0]), 0u);
    std::vector<unsigned> capacities;
    for (unsigned i = 0; i < 8; ++i) {
        ASSERT_EQ(s.add(&items[i]), 0);
        capacities.push_back(s.getCapacity());
    }
    EXPECT_EQ(capacities, (std::vector<unsigned>{1, 2, 3, 4, 6, 6, 8, 8}));
    for (unsigned i = 0; i < 8; ++i)
        EXPECT_EQ(s.getEntry(s.findIndexOf(&items[i])), &items[i]);
}

TEST(ZuSetProbe, DownwardFromTheStartSlotWrappingAndReplacingEqualKeys)
{
    Item a{1}, b{2}, c{3}, a2{1};
    IntSet s;
    s.hashAll = 0;  // start slot 0 for everything
    ASSERT_EQ(s.initialize(6), 0);  // 9 slots
    ASSERT_EQ(s.startIndex(0), 0u);
    EXPECT_EQ(s.startIndex(12345), (12345ul * 0x9E3779B9ul) % 9);
    s.add(&a), s.add(&b), s.add(&c);
    std::vector<void*> expected(9, nullptr);
    expected[0] = &a, expected[8] = &b, expected[7] = &c;
    EXPECT_EQ(s.slots(), expected);

    ASSERT_EQ(s.add(&a2), 0);  // same key: takes a's slot, count still rises
    expected[0] = &a2;
    EXPECT_EQ(s.slots(), expected);
    EXPECT_EQ(s.getCount(), 4u);
    // A resize counts the entries again and keeps them all.
    ASSERT_EQ(s.resize(1), 0);  // too small: raised to the 3 entries held
    EXPECT_EQ(s.getCount(), 3u);
    EXPECT_EQ(s.getTableSize(), 5u);
    for (Item* e : {&a2, &b, &c})
        EXPECT_EQ(s.getEntry(s.findIndexOf(e)), e);
}

TEST(ZuSetLimits, CapacityStopsAt65535AndTheLastFreeSlotIsNeverTaken)
{
    std::vector<Item> items(90000);
    IntSet s;
    ASSERT_EQ(s.initialize(60000), 0);
    unsigned added = 0;
    CurrentErrorList errors;
    while (added < items.size()) {
        items[added].key = added;
        if (s.add(&items[added]) != 0)
            break;
        ++added;
    }
    EXPECT_EQ(s.getCapacity(), 65535u);
    EXPECT_EQ(s.getTableSize(), 87381u);
    EXPECT_EQ(added, 87380u);  // one slot stays free
    EXPECT_EQ(s.getEntry(s.findIndexOf(&items[added])), nullptr);  // a miss still ends
    EXPECT_EQ(s.getEntry(s.findIndexOf(&items[12345])), &items[12345]);
    Item again{777};
    EXPECT_EQ(s.add(&again), 0);  // replacing needs no free slot
}

TEST(ZuSetFaults, FailedGrowthLeavesTheSetAsItWas)
{
    std::vector<Item> items(76);
    IntSet s;
    ASSERT_EQ(s.initialize(75), 0);
    for (unsigned long i = 0; i < 76; ++i)
        items[i].key = i * 31;
    for (unsigned i = 0; i < 75; ++i)
        s.add(&items[i]);
    const auto before = s.slots();
    {
        CurrentErrorList errors;
        ramFaultFailNth(1);
        EXPECT_EQ(s.add(&items[75]), 1);
        EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), 30190);
    }
    EXPECT_EQ(s.slots(), before);
    EXPECT_EQ(s.getCount(), 75u);
    EXPECT_EQ(s.getHighestCount(), 75u);
    EXPECT_EQ(s.add(&items[75]), 0);
    EXPECT_EQ(s.getCapacity(), 94u);
}

TEST(ZuDictionaryFaults, EveryAllocationOfAnAddCanFailCleanly)
{
    Tracked data[80];
    ZuDictionary d;
    d.initialize(75);
    for (int i = 0; i < 75; ++i)
        d.addAssoc(i, &data[i]);
    const int live = Tracked::live;
    for (unsigned long n = 1; n <= 2; ++n) {  // the association, then the table
        CurrentErrorList errors;
        ramFaultFailNth(n);
        EXPECT_EQ(d.addAssoc(1000, &data[75]), 1);
        EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), 30190);
        EXPECT_EQ(d.doesExist(1000), 0);
        EXPECT_EQ(d.getTableSize(), 101u);
        EXPECT_EQ(Tracked::live, live);  // the caller's data is not deleted
    }
    for (int i = 0; i < 75; ++i)
        EXPECT_EQ(d.getPtrForKey(i), &data[i]);

    ZuSeqDictionary q;
    for (int i = 0; i < 16; ++i)
        q.addAssoc(i, i);
    CurrentErrorList errors;
    ramFaultFailNth(2);
    EXPECT_EQ(q.addAssoc(16, 16), 1);
    EXPECT_EQ(q.getCount(), 16u);
    EXPECT_EQ(q.getIntForKey(15), 15u);
}  // the destructors destroy the associations only: data[] are stack objects

TEST(ZuAssociation, KeysCompareOnlyWithKeysOfTheirKind)
{
    char t1[] = "Name", t2[] = "NAME", t3[] = "Names";
    unsigned short w1[] = {'N', 'a', 'm', 'e'}, w2[] = {'N', 'A', 'M', 'E'};
    ZuSubString s1(t1, 4), s2(t2, 4), s3(t3, 5), s1x(t3, 4);
    ZuSubStringW v1(w1, 4), v2(w2, 4);
    ZuSubPtrKey a(&s1, nullptr), b(&s2, nullptr), c(&s3, nullptr), a2(&s1x, nullptr);
    ZuSubPtrKeyW wa(&v1, nullptr), wb(&v2, nullptr);
    ZuIntIntKey i5(5, 1), i5b(5, 2);
    ZuIntPtrKey p5(5, nullptr);

    EXPECT_EQ(s1.hash(), s2.hash());
    EXPECT_EQ((std::vector<int>{a.isEqual(&a2), a.isEqual(&b), a.isEqualCi(&b), a.isEqualCi(&c), a.isEqual(&c)}),
              (std::vector<int>{1, 0, 1, 0, 0}));
    EXPECT_EQ((std::vector<int>{wa.isEqual(&wb), wa.isEqualCi(&wb), wa.isEqualCi(&a), a.isEqualCi(&wa)}),
              (std::vector<int>{0, 1, 0, 0}));
    EXPECT_EQ((std::vector<int>{i5.isEqual(&i5b), i5.isEqual(&p5), p5.isEqualCi(&i5), i5.isEqual(&a), a.isEqualCi(&i5)}),
              (std::vector<int>{1, 1, 1, 0, 0}));
    EXPECT_EQ(i5.getPtrData(), nullptr);
    EXPECT_EQ(a.getIntData(), 0u);
    EXPECT_EQ(wa.getSubKey(), nullptr);
}

TEST(ZuDictionaryKeys, CaseDecidesEntriesMissingKeysGiveNullAndSeqFindsTheFirst)
{
    char t1[] = "Name", t2[] = "NAME", t3[] = "Other";
    ZuSubString s1(t1, 4), s2(t2, 4), s3(t3, 5);
    const int live0 = Tracked::live;
    Tracked x, y;
    for (unsigned flags : {0u, ZuDictionary::CaseBlind}) {
        ZuDictionary d(flags);
        d.initialize(4);
        d.addAssoc(&s1, &x), d.addAssoc(&s2, &y);
        unsigned held = 0;
        for (unsigned i = 0; i < d.getTableSize(); ++i)
            held += d.getAssocAt(i) != nullptr;
        EXPECT_EQ(held, flags != 0 ? 1u : 2u);
        EXPECT_EQ(d.getPtrForKey(&s1), flags != 0 ? &y : &x);
        EXPECT_EQ(d.getPtrForKey(&s2), &y);
        EXPECT_EQ(d.getPtrForKey(&s3), nullptr);
        EXPECT_EQ(d.getIntForKey(7), 0u);
        EXPECT_EQ(d.getAssocAt(d.getIndexForKey(&s3)), nullptr);
    }
    for (unsigned ci : {0u, 1u}) {
        ZuSeqDictionary q(ci);
        q.addAssoc(&s1, &x), q.addAssoc(&s2, &y), q.addAssoc(&s1, &y);
        EXPECT_EQ(q.getCount(), 3u);
        EXPECT_EQ(q.getIndexForKey(s2), ci != 0 ? 0u : 1u);
        EXPECT_EQ(q.getIndexForKey(&s3), 3u);
        EXPECT_EQ(q.changeData(s3, &x), 1);  // a missing key changes nothing
        EXPECT_EQ(q.changeData(s1, &y), 0);
        EXPECT_EQ(q.getPtrDataAtIndex(0), &y);
        EXPECT_EQ(q.getSubKeyAtIndex(2), &s1);
        q.addAssoc(-3, 9);
        EXPECT_EQ(q.changeData(-3, -8), 0);
        EXPECT_EQ(static_cast<int>(q.getIntDataAtIndex(3)), -8);
        EXPECT_EQ(static_cast<int>(q.getIntKeyAtIndex(3)), -3);
        EXPECT_EQ(q.doesExist(4), 0);
    }
    EXPECT_EQ(Tracked::live, live0 + 2);  // destructors left the data alone
}

namespace {
// One random run of a hashed or sequential string dictionary against a
// model.  Keys share their first bytes, so most of them hash alike.
template <class Dict, class Sub, class Ch, bool Seq>
void stringModel(bool caseBlind, unsigned seed)
{
    std::mt19937 rng(seed);
    std::deque<std::basic_string<Ch>> texts;  // key storage outlives the dictionary
    struct Held {
        Sub* key;
        Tracked* data;
    };
    std::unordered_map<std::string, Held> hashed;  // normalised key -> entry
    std::vector<std::pair<std::string, Held>> seq;
    auto norm = [&](const std::string& k) { return caseBlind ? upper(k) : k; };
    auto randomKey = [&] {
        static const char* heads[] = {"ABCDE", "abcdf", "AbCdE", "AB", "ab"};
        std::string k = heads[rng() % 5];
        for (unsigned n = rng() % 4; n > 0; --n)
            k += "xyXY"[rng() % 4];
        return k;
    };
    const int startLive = Tracked::live;
    Dict d(caseBlind ? (Seq ? 1u : 0x80000000u) : 0u);
    for (int op = 0; op < 3000; ++op) {
        const std::string k = randomKey();
        texts.emplace_back(k.begin(), k.end());
        Sub probe(texts.back().data(), k.size());
        const unsigned r = rng() % 100;
        if (r < 50) {
            Held h{new Sub(probe), new Tracked};
            ASSERT_EQ(d.addAssoc(h.key, h.data), 0);
            if constexpr (Seq) {
                seq.emplace_back(norm(k), h);
            } else {
                auto it = hashed.find(norm(k));
                if (it != hashed.end()) {  // replaced: key and data are ours again
                    delete it->second.key;
                    delete it->second.data;
                    hashed.erase(it);
                }
                hashed.emplace(norm(k), h);
            }
        } else if (r < 97) {
            ZuObject* expected = nullptr;
            if constexpr (Seq) {
                auto it = std::find_if(seq.begin(), seq.end(), [&](auto& e) { return e.first == norm(k); });
                expected = it != seq.end() ? it->second.data : nullptr;
                ASSERT_EQ(d.getIndexForKey(probe), static_cast<unsigned>(it - seq.begin()));
                if (it != seq.end() && r % 3 == 0) {  // drop the found entry
                    d.deleteKeyAndDataAtIndex(static_cast<unsigned>(it - seq.begin()));
                    seq.erase(it);
                    continue;
                }
            } else {
                auto it = hashed.find(norm(k));
                expected = it != hashed.end() ? it->second.data : nullptr;
                if (expected != nullptr) {
                    ASSERT_EQ(d.getAssocAt(d.getIndexForKey(&probe))->getPtrData(), expected);
                }
            }
            ASSERT_EQ(d.getPtrForKey(&probe), expected) << k;
            ASSERT_EQ(d.doesExist(&probe), expected != nullptr ? 1 : 0);
        } else {
            d.deleteKeyAndData();
            hashed.clear(), seq.clear();
        }
        if constexpr (Seq) {
            ASSERT_EQ(d.getCount(), seq.size());
        } else {
            ASSERT_GE(d.getCount(), hashed.size());  // replacements count too
            ASSERT_TRUE(d.getTableSize() == 0 || d.getCount() < d.getTableSize());  // a free slot stays
        }
        ASSERT_EQ(Tracked::live - startLive, static_cast<int>(Seq ? seq.size() : hashed.size()));
    }
    if constexpr (!Seq) {  // the table holds exactly the model's entries
        std::multiset<const ZuObject*> table, model;
        for (unsigned i = 0; i < d.getTableSize(); ++i)
            if (ZuAssociation* a = d.getAssocAt(i))
                table.insert(a->getPtrData());
        for (auto& [key, h] : hashed)
            model.insert(h.data);
        EXPECT_EQ(table, model);
    }
    d.deleteKeyAndData();
    EXPECT_EQ(Tracked::live, startLive);
}
}  // namespace

TEST(ZuDictionaryModel, StringKeysExactAndCaseBlindNarrowAndWideHashedAndSequential)
{
    for (bool ci : {false, true}) {
        SCOPED_TRACE(ci ? "case-blind" : "exact");
        stringModel<ZuDictionary, ZuSubString, char, false>(ci, 11);
        stringModel<ZuDictionaryW, ZuSubStringW, unsigned short, false>(ci, 12);
        stringModel<ZuSeqDictionary, ZuSubString, char, true>(ci, 13);
        stringModel<ZuSeqDictionaryW, ZuSubStringW, unsigned short, true>(ci, 14);
    }
}

TEST(ZuDictionaryModel, IntegerKeysWithIntegerAndObjectData)
{
    std::mt19937 rng(5);
    std::unordered_map<int, std::pair<int, Tracked*>> model;
    const int startLive = Tracked::live;
    {
        ZuDictionary d;
        d.initialize(8);
        for (int op = 0; op < 4000; ++op) {
            const int k = static_cast<int>(rng() % 1200) - 600;
            const unsigned r = rng() % 100;
            auto it = model.find(k);
            if (r < 50) {
                if (it != model.end())
                    delete it->second.second;  // the replaced data is ours
                if (k % 2 == 0) {
                    const int v = static_cast<int>(rng()) - 1000;
                    ASSERT_EQ(d.addAssoc(k, v), 0);
                    model[k] = {v, nullptr};
                } else {
                    auto* t = new Tracked;
                    ASSERT_EQ(d.addAssoc(k, t), 0);
                    model[k] = {0, t};
                }
            } else if (r < 99) {
                const bool there = it != model.end();
                ASSERT_EQ(d.doesExist(k), there ? 1 : 0) << k;
                ASSERT_EQ(static_cast<int>(d.getIntForKey(k)), there ? it->second.first : 0);
                ASSERT_EQ(d.getPtrForKey(k), there ? it->second.second : nullptr);
            } else {
                d.deleteKeyAndData();
                model.clear();
                ASSERT_EQ(d.getCount(), 0u);
            }
        }
        EXPECT_GE(d.getHighestCount(), d.getCount());
        unsigned held = 0;
        for (unsigned i = 0; i < d.getTableSize(); ++i)
            if (ZuAssociation* a = d.getAssocAt(i)) {
                ++held;
                auto it = model.find(static_cast<int>(a->getIntKey()));
                ASSERT_NE(it, model.end());
                EXPECT_EQ(a->getPtrData(), it->second.second);
            }
        EXPECT_EQ(held, model.size());
        d.deleteKeyAndData();
    }
    EXPECT_EQ(Tracked::live, startLive);
}
