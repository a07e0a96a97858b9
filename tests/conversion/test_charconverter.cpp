// The one-shot converter front end: handles opened once and kept, the
// special code pages, substitution turned into a warning, lead-byte maps.
#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <cstring>
#include <string>

#include "conversion/charconverter.h"
#include "core/errorlist.h"

namespace {
class Converting : public ::testing::Test {
protected:
    void SetUp() override
    {
        ZuErrorKeeper::setErrorList(&errors);
        ASSERT_EQ(cc.initialize(2), 0);
    }
    void TearDown() override { ZuErrorKeeper::giveUpErrorList(); }
    unsigned short lastError() { return ZuErrorKeeper::getLastErrorNumber(); }
    ZuErrorList errors{nullptr, 1};
    CharacterConverter cc;
};
const unsigned char* u8(const char* s) { return reinterpret_cast<const unsigned char*>(s); }
std::string str(const unsigned char* p, long n) { return std::string(reinterpret_cast<const char*>(p), static_cast<size_t>(n)); }
}  // namespace

TEST_F(Converting, HandlesAreOpenedOnceAndKept)
{
    UConverter *a = nullptr, *b = nullptr, *c = nullptr;
    ASSERT_EQ(cc.getHandle(2252, &a), 0);
    ASSERT_EQ(cc.getHandle(4, &b), 0);
    ASSERT_EQ(cc.getHandle(2252, &c), 0);
    EXPECT_EQ(a, c) << "found again in the cache behind the last-used handle";
    EXPECT_NE(a, b);
    for (long cp : {5L, 6L, 7L})  // past the initial size of 2: the cache grows
        ASSERT_EQ(cc.getHandle(cp, &c), 0);
    ASSERT_EQ(cc.getHandle(2252, &c), 0);
    EXPECT_EQ(a, c);

    UErrorCode s = U_ZERO_ERROR;
    ASSERT_EQ(cc.getHandle(0, &c), 0);
    EXPECT_STREQ(ucnv_getName(c, &s), ucnv_getDefaultName()) << "0 opens ICU's default converter";

    UConverter *n1 = nullptr, *n2 = nullptr, *n3 = nullptr;
    ASSERT_EQ(cc.getHandle(u8("windows-1251"), 12, &n1), 0);
    ASSERT_EQ(cc.getHandle(u8("WINDOWS-1251"), 12, &n2), 0);
    ASSERT_EQ(cc.getHandle(u8("windows-1251xyz"), 12, &n3), 0) << "only the given length counts";
    EXPECT_NE(n1, n2) << "names that differ in case are different keys";
    EXPECT_EQ(n1, n3);

    EXPECT_EQ(cc.getHandle(u8("no-such-converter"), 17, &n1), 1);
    EXPECT_EQ(lastError(), ZU_MSG_CONV_NO_TABLE);
    EXPECT_EQ(cc.uxMaxCharSize(106), 3);
    EXPECT_EQ(cc.uxMinCharSize(1013), 2);
}

TEST_F(Converting, Utf8ItselfIsACopyCutWithAWarning)
{
    unsigned char out[6];
    long written = 0, consumed = 0;
    EXPECT_EQ(cc.uxAnsiToUTF8(out, 6, u8("abc"), -1, &written, &consumed, 106), 0);
    EXPECT_EQ(written, 3);
    EXPECT_EQ(out[3], 0);
    EXPECT_FALSE(errors.isExistingError());
    EXPECT_EQ(cc.uxAnsiToUTF8(out, 6, u8("abcdefgh"), 8, &written, &consumed, 106), 0);
    EXPECT_EQ(str(out, written), "abcdef");
    EXPECT_EQ(lastError(), ZU_MSG_CONV_TRUNCATED);
    EXPECT_TRUE(errors.getLastError()->isWarning());
}

TEST_F(Converting, Utf16BigEndianCountsTheSourceBytesUsed)
{
    const unsigned char be[] = {0x00, 'A', 0xD8, 0x3D, 0xDE, 0x00, 0x00, 0xE9};
    unsigned char out[16];
    long written = 0, consumed = 0;
    ASSERT_EQ(cc.uxAnsiToUTF8(out, 16, be, 8, &written, &consumed, 1013), 0);
    EXPECT_EQ(str(out, written), "A\xF0\x9F\x98\x80\xC3\xA9");
    EXPECT_EQ(consumed, 8);
    ASSERT_EQ(cc.uxAnsiToUTF8(out, 5, be, 8, &written, &consumed, 1013), 0);  // room for A + emoji
    EXPECT_EQ(consumed, 6);
}

TEST_F(Converting, SubstitutionBecomesWarning2736OrFailsInFailMode)
{
    unsigned char out[16];
    long written = 0;
    EXPECT_EQ(cc.uxUTF8ToAnsi(out, 16, u8("price \xE2\x82\xAC 5"), -1, &written, 4), 0);
    EXPECT_EQ(lastError(), ZU_MSG_CONV_SUBSTITUTED);
    EXPECT_EQ(out[6], 0x1A);
    delete errors.removeLastError();
    EXPECT_EQ(cc.uxUTF8ToAnsi(out, 16, u8("price 5"), -1, &written, 4), 0);
    EXPECT_EQ(errors.getCount(), 0u) << "the flag was cleared after the first call";

    CharacterConverter strict(1);
    ASSERT_EQ(strict.initialize(2), 0);
    strict.uxUTF8ToAnsi(out, 16, u8("price \xE2\x82\xAC 5"), -1, &written, 4);
    EXPECT_EQ(written, 6) << "fail mode stops at the character";
}

TEST_F(Converting, CodePageToCodePageMatchesIcu)
{
    // Japanese text from Shift_JIS (2024) to EUC-JP (18), by number and by name.
    const char sjis[] = "\x93\xfa\x96\x7b\x8c\xea ABC";
    char expected[32];
    UErrorCode s = U_ZERO_ERROR;
    const int32_t n = ucnv_convert("Extended_UNIX_Code_Packed_Format_for_Japanese", "ibm-943_P15A-2003", expected,
                                   32, sjis, 10, &s);
    ASSERT_TRUE(U_SUCCESS(s));
    unsigned char out[32];
    long written = 0, consumed = 0;
    ASSERT_EQ(cc.uxCpgToCpg(out, 32, u8(sjis), 10, &written, &consumed, 2024, 18), 0);
    EXPECT_EQ(str(out, written), std::string(expected, static_cast<size_t>(n)));
    ASSERT_EQ(cc.uxCpgToCpg(out, 32, u8(sjis), 10, &written, &consumed, u8("ibm-943_P15A-2003"), 17,
                            u8("Extended_UNIX_Code_Packed_Format_for_Japanese"), 45), 0);
    EXPECT_EQ(str(out, written), std::string(expected, static_cast<size_t>(n)));
    EXPECT_EQ(cc.uxCpgToCpg(out, 32, u8("abc"), 3, &written, &consumed, 2252, 2252), 0);
    EXPECT_EQ(str(out, written), "abc");

    unsigned short wide[8];
    ASSERT_EQ(cc.uxAnsiToUCS2(wide, 8, u8(sjis), 6, &written, &consumed, 2024, 0), 0);
    EXPECT_EQ(written, 3);
    EXPECT_EQ(wide[0], 0x65E5);
    ASSERT_EQ(cc.uxUCS2ToAnsi(out, 32, wide, 3, &written, &consumed, 2024, 0), 0);
    EXPECT_EQ(str(out, written), std::string(sjis, 6));
}

TEST_F(Converting, LeadByteMapsAreMadeOncePerCodePage)
{
    int lead = -1;
    ASSERT_EQ(cc.isPossibleLeadByte(2024, 0x82, &lead), 0);
    EXPECT_EQ(lead, 1);
    ASSERT_EQ(cc.isPossibleLeadByte(2024, 'A', &lead), 0);
    EXPECT_EQ(lead, 0);
    const unsigned char *m1 = nullptr, *m2 = nullptr, *latin = nullptr;
    ASSERT_EQ(cc.getPossibleLeadByteMap(2024, &m1), 0);
    ASSERT_EQ(cc.getPossibleLeadByteMap(4, &latin), 0);
    ASSERT_EQ(cc.getPossibleLeadByteMap(2024, &m2), 0);
    EXPECT_EQ(m1, m2);
    for (int b = 0; b < 256; ++b)
        ASSERT_EQ(latin[b], 0) << b;
}
