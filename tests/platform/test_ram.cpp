// The C heap layer: sizes, the clearing rule of ramResizeZ, string widening.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "core/errorlist.h"
#include "platform/ram.h"

TEST(RamAlloc, ZeroSizeGivesUsableBlock)
{
    auto* p = static_cast<unsigned char*>(ramAllocC(0));
    ASSERT_NE(p, nullptr);
    p[0] = 0xAB;  // usable: ASan would report a write into a 0-byte block
    EXPECT_GE(ramSize(p), 1u);
    EXPECT_EQ(ramSize(nullptr), 0u);
    ramFreeC(p);
}

TEST(RamResizeZ, KeepsFirstWordAndClearsEverythingAfterIt)
{
    for (size_t oldSize : {8u, 64u}) {
        for (size_t newSize : {5u, 6u, 32u, 4096u}) {
            void* p = ramAllocC(oldSize);
            std::memset(p, 0x5A, oldSize);
            ASSERT_EQ(ramResizeZ(&p, newSize), 0);
            auto* b = static_cast<unsigned char*>(p);
            for (size_t i = 0; i < 4; ++i)
                EXPECT_EQ(b[i], 0x5A) << "first word lost at " << i;
            for (size_t i = 4; i < newSize; ++i)
                ASSERT_EQ(b[i], 0) << "old " << oldSize << " new " << newSize << " byte " << i;
            ramFreeC(p);
        }
    }
}

TEST(RamResizeZ, SmallSizesKeepTheirBytes)
{
    void* p = ramAllocC(4);
    std::memcpy(p, "abcd", 4);
    ASSERT_EQ(ramResizeZ(&p, 4), 0);
    EXPECT_EQ(std::memcmp(p, "abcd", 4), 0);
    ramFreeC(p);
}

TEST(RamAllocStr, WidenAndNarrowEveryByteValue)
{
    std::vector<char> narrow(256);
    for (int i = 0; i < 256; ++i)
        narrow[i] = static_cast<char>(i);
    unsigned short* w = ramAllocStrW(narrow.data(), 256ul);
    ASSERT_NE(w, nullptr);
    for (int i = 0; i < 256; ++i)
        ASSERT_EQ(w[i], i) << "bytes >= 0x80 must widen unsigned";
    EXPECT_EQ(w[256], 0);

    w[10] = 0x1234;  // narrowing keeps the low byte only
    char* back = ramAllocStr(w, 256ul);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(static_cast<unsigned char>(back[10]), 0x34);
    EXPECT_EQ(std::memcmp(back + 11, narrow.data() + 11, 245), 0);
    EXPECT_EQ(back[256], 0);
    ramFreeC(back);
    ramFreeC(w);
}

TEST(RamAllocStr, NegativeCountIsEmptyAndHugeCountFailsCleanly)
{
    ZuErrorList list(nullptr, 1);
    ZuErrorKeeper::setErrorList(&list);

    unsigned short* w = ramAllocStrW("abc", -5);
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(w[0], 0);
    ramFreeC(w);
    const unsigned short wide[] = {'x', 0};
    char* n = ramAllocStr(wide, -1);
    ASSERT_NE(n, nullptr);
    EXPECT_EQ(n[0], 0);
    ramFreeC(n);
    EXPECT_FALSE(list.isExistingError());

    // A count whose byte size wraps is exhaustion, never a short block.
    EXPECT_EQ(ramAllocStrW("abc", static_cast<unsigned long>(-1) / 2), nullptr);
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), ZU_MEMORY_ERROR_NUMBER);
    ZuErrorKeeper::giveUpErrorList();
}
