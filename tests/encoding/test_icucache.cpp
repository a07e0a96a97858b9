// The converter pool: rows per code page, idle converters lent last in first
// out, at most three kept, converters outside the pool when rows run out.
#include <gtest/gtest.h>

#include <vector>

#include "core/errorlist.h"
#include "encoding/icucache.h"
#include "encoding/ux.h"

namespace {
class Pool : public ::testing::Test {
protected:
    void SetUp() override { ZuErrorKeeper::setErrorList(&errors); }
    void TearDown() override { ZuErrorKeeper::giveUpErrorList(); }
    ZuErrorList errors{nullptr, 1};
};
}  // namespace

TEST_F(Pool, LendsLastInFirstOutAndKeepsAtMostThree)
{
    ZuICUHandleCache pool;
    std::vector<UConverter*> lent;
    for (int i = 0; i < 4; ++i)
        lent.push_back(pool.getHandleForKey(2252, nullptr));
    for (UConverter* c : lent)
        ASSERT_NE(c, nullptr);
    EXPECT_EQ(pool.getRowCount(), 1);
    for (UConverter* c : lent)
        pool.addAssoc(2252, c, nullptr);  // the fourth is closed (ASan sees a double close otherwise)
    EXPECT_EQ(pool.getIdleCount(2252), 3);
    EXPECT_EQ(pool.getHandleForKey(2252, nullptr), lent[2]) << "last in, first out";
    pool.addAssoc(2252, lent[2], nullptr);
    pool.clearCache();
    EXPECT_EQ(pool.getIdleCount(2252), 0);
    EXPECT_FALSE(errors.isExistingError());
}

TEST_F(Pool, SizesOfUtf16NeedNoRowAndFullRowsOpenOutsideThePool)
{
    ZuICUHandleCache pool;
    int mx = 0, mn = 0;
    pool.getCharSizes(1014, &mx, &mn);
    EXPECT_EQ(mx, 2);
    EXPECT_EQ(mn, 2);
    EXPECT_EQ(pool.getRowCount(), 0) << "nothing opened for UTF-16";

    pool.getCharSizes(106, &mx, &mn);
    EXPECT_EQ(mx, 3);
    EXPECT_EQ(mn, 1);
    EXPECT_EQ(pool.getIdleCount(106), 1) << "the converter opened for the sizes stays idle";

    const long pages[] = {4, 5, 6, 7, 8, 2250, 2251};
    for (long cp : pages) {
        UConverter* c = pool.getHandleForKey(cp, nullptr);
        ASSERT_NE(c, nullptr) << cp;
        pool.addAssoc(cp, c, nullptr);
    }
    EXPECT_EQ(pool.getRowCount(), 8);
    UConverter* outside = pool.getHandleForKey(38, nullptr);  // EUC-KR: no row left
    ASSERT_NE(outside, nullptr);
    EXPECT_EQ(pool.getRowCount(), 8);
    pool.addAssoc(38, outside, nullptr);  // closed, not kept
    EXPECT_EQ(pool.getIdleCount(38), 0);
    pool.getCharSizes(38, &mx, &mn);
    EXPECT_EQ(mx, 2);
    EXPECT_EQ(mn, 2) << "rows full: the largest size for both";
}

TEST_F(Pool, SubstitutionContextsTravelWithTheirConverters)
{
    ZuICUHandleCache pool(2);
    ICUSubstitutionErrorInfo* info = nullptr;
    UConverter* latin = pool.getHandleForKey(4, &info);
    ASSERT_NE(latin, nullptr);
    ASSERT_NE(info, nullptr);
    unsigned short euro[] = {0x20AC};
    unsigned char out[4];
    long written = 0;
    EXPECT_EQ(uxUCS2ToAnsi(out, 4, euro, 1, &written, nullptr, latin, 0), ZU_CONV_SUCCESS);
    EXPECT_EQ(info->substituted, 1);
    pool.addAssoc(4, latin, info);
    ICUSubstitutionErrorInfo* again = nullptr;
    EXPECT_EQ(pool.getHandleForKey(4, &again), latin);
    EXPECT_EQ(again, info);
    EXPECT_EQ(again->substituted, 0) << "a returned converter comes back clean";
    pool.addAssoc(4, latin, again);

    ZuICUHandleCache quiet;
    UConverter* plain = quiet.getHandleForKey(4, &info);
    EXPECT_EQ(info, nullptr) << "mode 0 installs no callback";
    quiet.addAssoc(4, plain, info);
}
