// ZuIntHandleCache and ZuStrHandleCache over real ICU converters: doubling
// growth, insertion-order lookup, exact name keys, fallback switching, and
// failed growth that must leave every row in place.  Under ASan a converter
// the destructor forgets to close shows up as a leak.
#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <cstring>
#include <vector>

#include "core/errorlist.h"
#include "core/handlecache.h"
#include "platform/ramfault.h"

namespace {
UConverter* open(const char* name)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter* c = ucnv_open(name, &status);
    EXPECT_TRUE(U_SUCCESS(status)) << name;
    return c;
}
const unsigned char* bytes(const char* s) { return reinterpret_cast<const unsigned char*>(s); }
UConverter* find(const ZuStrHandleCache& c, const char* name)
{
    const unsigned char* key = bytes(name);
    return c.getHandleForKey(&key, std::strlen(name));
}

class HandleCache : public ::testing::Test {
protected:
    void SetUp() override { ZuErrorKeeper::setErrorList(&errors); }
    void TearDown() override { ramFaultFailNth(0), ZuErrorKeeper::giveUpErrorList(); }
    ZuErrorList errors{nullptr, 1};
};
}  // namespace

TEST_F(HandleCache, IntCacheDoublesFromOneFindsTheFirstRowOfAKeyAndSwitchesFallback)
{
    ZuIntHandleCache cache;
    EXPECT_EQ(cache.getHandleForKey(4), nullptr);  // empty, no tables yet
    ASSERT_EQ(cache.initialize(1), 0);
    const long pages[] = {4, 106, 2024, 4, -2147483647L - 1};
    const char* names[] = {"ISO-8859-1", "UTF-8", "ibm-943_P15A-2003", "windows-1252", "US-ASCII"};
    std::vector<UConverter*> handles;
    std::vector<unsigned long> capacities;
    for (int i = 0; i < 5; ++i) {
        handles.push_back(open(names[i]));
        ASSERT_EQ(cache.addAssoc(pages[i], handles.back()), 0);
        capacities.push_back(cache.getCapacity());
    }
    EXPECT_EQ(capacities, (std::vector<unsigned long>{1, 2, 4, 4, 8}));
    EXPECT_EQ(cache.getHandleForKey(4), handles[0]);  // no duplicate check: the first row wins
    EXPECT_EQ(cache.getHandleForKey(2024), handles[2]);
    EXPECT_EQ(cache.getHandleForKey(-2147483647L - 1), handles[4]);
    EXPECT_EQ(cache.getHandleForKey(0), nullptr);

    cache.setEnableFallbackMapping(7);  // any non-zero value
    for (UConverter* h : handles)
        EXPECT_TRUE(ucnv_usesFallback(h));
    cache.setEnableFallbackMapping(0);
    EXPECT_FALSE(ucnv_usesFallback(handles[0]) || ucnv_usesFallback(handles[4]));
}

TEST_F(HandleCache, NamesAreExactLengthAndCaseAndAHitHandsOutTheCacheCopy)
{
    ZuStrHandleCache cache;
    ASSERT_EQ(cache.initialize(1), 0);
    UConverter* lower = open("utf-8");
    UConverter* upper = open("UTF-8");
    char name[] = "utf-8";
    ASSERT_EQ(cache.addAssoc(bytes(name), 5, lower) + cache.addAssoc(bytes("UTF-8"), 5, upper), 0);
    std::memset(name, 'x', 5);  // the cache keeps a copy, not the caller's buffer
    EXPECT_EQ(find(cache, "utf-8"), lower);
    EXPECT_EQ(find(cache, "Utf-8"), nullptr);
    EXPECT_EQ(find(cache, "UTF-"), nullptr);  // a prefix is another key

    const unsigned char* key = bytes("UTF-8!");
    EXPECT_EQ(cache.getHandleForKey(&key, 6), nullptr);
    EXPECT_EQ(key, bytes("UTF-8!"));  // a miss leaves the pointer alone
    EXPECT_EQ(cache.getHandleForKey(&key, 5), upper);
    const unsigned char* copy = key;
    EXPECT_EQ(std::memcmp(copy, "UTF-8", 6), 0);  // the cache's own, terminated copy
    EXPECT_NE(copy, bytes("UTF-8!"));
    for (int i = 0; i < 5; ++i)  // which survives growth
        ASSERT_EQ(cache.addAssoc(bytes("ISO-8859-1"), 10, open("ISO-8859-1")), 0);
    key = bytes("UTF-8");
    EXPECT_EQ(cache.getHandleForKey(&key, 5), upper);
    EXPECT_EQ(key, copy);
    cache.setEnableFallbackMapping(1);
    EXPECT_TRUE(ucnv_usesFallback(lower) && ucnv_usesFallback(find(cache, "ISO-8859-1")));
}

TEST_F(HandleCache, EachFailedAllocationOfAGrowingAddLeavesTheOldRows)
{
    // Both full at capacity 2.  Growing the int cache allocates two tables,
    // an add to the string cache a name copy and three tables.
    ZuIntHandleCache ints;
    ZuStrHandleCache strs;
    UConverter* rows[4] = {open("UTF-8"), open("ISO-8859-1"), open("UTF-8"), open("ISO-8859-1")};
    ASSERT_EQ(ints.initialize(2) + ints.addAssoc(106, rows[0]) + ints.addAssoc(4, rows[1]), 0);
    ASSERT_EQ(strs.initialize(2) + strs.addAssoc(bytes("UTF-8"), 5, rows[2]) +
                  strs.addAssoc(bytes("ISO-8859-1"), 10, rows[3]), 0);
    UConverter* extra[2] = {open("UTF-16LE"), open("UTF-16LE")};
    auto failed = [&](unsigned long n, int result) {
        EXPECT_EQ(result, 1) << n;
        EXPECT_FALSE(ramFaultPending()) << n;
        EXPECT_NE(errors.removeLastError(), nullptr) << "no memory error for " << n;
    };
    for (unsigned long n = 1; n <= 4; ++n) {
        if (n <= 2)
            ramFaultFailNth(n), failed(n, ints.addAssoc(1014, extra[0]));
        ramFaultFailNth(n), failed(n, strs.addAssoc(bytes("UTF-16LE"), 8, extra[1]));
        EXPECT_EQ(ints.getCount() + ints.getCapacity() + strs.getCount() + strs.getCapacity(), 8u);
        EXPECT_TRUE(ints.getHandleForKey(106) == rows[0] && ints.getHandleForKey(4) == rows[1]);
        EXPECT_TRUE(find(strs, "UTF-8") == rows[2] && find(strs, "ISO-8859-1") == rows[3]);
        EXPECT_TRUE(ints.getHandleForKey(1014) == nullptr && find(strs, "UTF-16LE") == nullptr);
    }
    ramFaultFailNth(0);
    ASSERT_EQ(ints.addAssoc(1014, extra[0]) + strs.addAssoc(bytes("UTF-16LE"), 8, extra[1]), 0);
    EXPECT_TRUE(find(strs, "UTF-16LE") == extra[1] && find(strs, "UTF-8") == rows[2]);

    ramFaultFailNth(1);
    EXPECT_EQ(new ZuStrHandleCache, nullptr);  // class new reports instead of throwing
    EXPECT_TRUE(errors.isMemoryErrorPending());
}
