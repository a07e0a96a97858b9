// Multi-byte character primitives: UTF-8 stepping; the locale's view of a
// character in C.UTF-8 and in real ISO-8859-1 and EUC-KR locales; case
// mapping in place; 16-bit twins; lead-byte maps from real ICU converters.
// Texts that end in a cut character live in exact-size heap blocks, so a
// read past the end trips ASan.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unicode/ucnv.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "core/errorlist.h"
#include "encoding/icucache.h"
#include "encoding/mbchar.h"
#include "platform/ramfault.h"

namespace {
std::unique_ptr<char[]> exact(const char* s, std::size_t n)  // no terminator unless among the n
{
    std::unique_ptr<char[]> p(new char[n == 0 ? 1 : n]);
    std::memcpy(p.get(), s, n);
    return p;
}
const unsigned char* u8(const char* s) { return reinterpret_cast<const unsigned char*>(s); }

// Runs a test under a locale and puts the old one back.  A locale the
// machine lacks (only C, C.UTF-8 and POSIX are installed here) is compiled
// once with localedef into the build tree, renamed into place when complete
// so parallel test processes never see half of one, and read via LOCPATH.
class Locale : public ::testing::Test {
protected:
    void SetUp() override { saved_ = std::setlocale(LC_ALL, nullptr); }
    void TearDown() override { std::setlocale(LC_ALL, saved_.c_str()); }
    bool use(const char* name, const char* source = nullptr, const char* charmap = nullptr)
    {
        if (std::setlocale(LC_ALL, name) != nullptr)
            return true;
        if (source == nullptr)
            return false;
        const std::string dir = std::string(HNSYB_BINARY_DIR) + "/test-locales";
        struct stat st;
        if (stat((dir + "/" + name).c_str(), &st) != 0) {
            mkdir(dir.c_str(), 0755);
            std::string temp = dir + "/build.XXXXXX";
            if (mkdtemp(temp.data()) == nullptr)
                return false;
            const std::string built = temp + "/" + name;
            if (std::system(("localedef -i " + std::string(source) + " -f " + charmap + " " + built + " >/dev/null 2>&1").c_str()) >= 0)
                std::rename(built.c_str(), (dir + "/" + name).c_str());
            if (std::system(("rm -rf " + temp).c_str()) != 0)
                return false;
        }
        setenv("LOCPATH", dir.c_str(), 1);
        const bool ok = std::setlocale(LC_ALL, name) != nullptr;
        unsetenv("LOCPATH");
        return ok;
    }
    std::string saved_;
};
#define USE_LOCALE(...) \
    if (!use(__VA_ARGS__)) GTEST_SKIP() << "locale " #__VA_ARGS__ " is not installed and localedef could not build it"

const char kMixed[] = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";  // "aé€😀": 0, 1, 3, 6; 10 bytes
}  // namespace

TEST(MbCharUtf8, SizesByFirstByteAndWalksBothWaysOverOneToFourByteCharacters)
{
    const int sizes[][2] = {{'a', 1}, {0x80, 1}, {0xBF, 1}, {0xC3, 2}, {0xDF, 2}, {0xE2, 3}, {0xEF, 3}, {0xF0, 4}, {0xFF, 4}};
    for (const auto& s : sizes) {
        const char c[2] = {static_cast<char>(s[0]), 0};
        EXPECT_EQ(zuCharSize(c, ZU_CP_UTF8), s[1]) << "byte " << s[0];
    }
    std::vector<long> forward{0}, backward{10};
    while (forward.back() < 10)
        forward.push_back(zuCharNext(kMixed, forward.back(), ZU_CP_UTF8));
    while (backward.back() > 0)
        backward.push_back(zuCharPrev(kMixed, backward.back(), ZU_CP_UTF8));
    EXPECT_EQ(forward, (std::vector<long>{0, 1, 3, 6, 10}));
    EXPECT_EQ(backward, (std::vector<long>{10, 6, 3, 1, 0}));
    EXPECT_EQ(zuCharPrev(kMixed + 4, kMixed + 6, ZU_CP_UTF8), kMixed + 5);  // never below start
    EXPECT_EQ(zuCharPrev("\xC3\xA9" "a", 3, ZU_CP_UTF8), 2);                 // ASCII after é is its own character

    EXPECT_EQ(zuCharLen(kMixed, ZU_CP_UTF8), 4);
    EXPECT_EQ(zuCharLen(kMixed, 8L, ZU_CP_UTF8), 4);  // the cut emoji counts
    EXPECT_EQ(zuCharLast(kMixed, ZU_CP_UTF8), kMixed + 6);
    EXPECT_EQ(zuCharLast(kMixed, 5L, ZU_CP_UTF8), 3);
    EXPECT_EQ(zuUTF8CharLen(kMixed + 6, 2), 2);
    EXPECT_EQ(zuCharEqual("\xE2\x82\xAC!", "\xE2\x82\xAC?", ZU_CP_UTF8), 1);
    EXPECT_EQ(zuCharEqual("\xC3\xA9", "\xC3", ZU_CP_UTF8) + zuCharEqual(kMixed, 3, "\xE2\x82\xAD", 0, ZU_CP_UTF8), 0);
    EXPECT_EQ(zuCharLen("a\0b\0\0\0", ZU_CP_UTF16), 2);  // type 2 counts 16-bit units
    EXPECT_EQ(zuCharLen("a\0b\0c", 5L, ZU_CP_UTF16), 2);
}

TEST(MbCharUtf8, CharactersCutByTheTerminatorOrTheLengthAreNeverReadPast)
{
    auto cut = exact("a\xF0\x9F", 4);  // "a", 2 of 4 bytes, NUL
    EXPECT_EQ(zuCharNext(cut.get() + 1, ZU_CP_UTF8), cut.get() + 3);
    EXPECT_EQ(zuCharLen(cut.get(), ZU_CP_UTF8), 2);
    EXPECT_EQ(zuCharEqual(cut.get() + 1, cut.get() + 1, ZU_CP_UTF8), 1);
    auto bounded = exact("ab\xF0", 3);  // no terminator at all
    EXPECT_EQ(zuCharLen(bounded.get(), 3L, ZU_CP_UTF8), 3);
    EXPECT_EQ(zuCharLast(bounded.get(), 3L, ZU_CP_UTF8), 2);
    strUpper(bounded.get(), 3L);
    EXPECT_EQ(std::memcmp(bounded.get(), "AB\xF0", 3), 0);

    const char* utf8[][2] = {{"", ""}, {"abc", "abc"}, {"\xE3", ""}, {"a\xC3", "a"}, {"\xC3\xA9", "\xC3\xA9"},
                             {"a\xE2\x82", "a"}, {"\xE2\x82\xAC", "\xE2\x82\xAC"}, {"\xF0\x9F\x98", ""},
                             {"xy\xF0\x9F\x98\x80", "xy\xF0\x9F\x98\x80"}, {"xy\xF0\x9F\x98", "xy"},
                             {"x\x80\x80\x80\x80", "x\x80\x80\x80\x80"}};  // no lead in reach: passes
    for (const auto& c : utf8) {
        auto text = exact(c[0], std::strlen(c[0]));
        EXPECT_EQ(getCountOfUTF8Bytes(u8(text.get()), std::strlen(c[0])), std::strlen(c[1])) << testing::PrintToString(c[0]);
    }
}

TEST_F(Locale, Utf8LocaleTypeOneSeesOnlyTwoByteCharactersAndStepsBackByTheOneAtText)
{
    USE_LOCALE("C.UTF-8");
    EXPECT_EQ(zuIsLeadByte("\xC3\xA9"), 1);
    EXPECT_EQ(zuIsLeadByte("\xE2\x82\xAC"), 0);  // mblen(text, 2) cannot complete 3 bytes
    EXPECT_EQ(zuCharLen("\xE2\x82\xAC", ZU_CP_LOCALE), 3);
    EXPECT_EQ(zuCharSize("\xC3\xA9", ZU_CP_SBCS), 2);  // every type but 3 asks the locale

    const char text[] = "x\xC3\xA9" "a";
    EXPECT_EQ(zuCharPrev(text, 3, ZU_CP_LOCALE), 2);  // 'a' is 1 byte: back 1, onto é's trail
    EXPECT_EQ(zuCharPrev(text, 1, ZU_CP_LOCALE), 0);  // é is 2: back 2 would pass start
    EXPECT_EQ(zuIs2ndByte(text, text + 2), 1);
    EXPECT_EQ(zuIs2ndByte(text + 2, text + 1), 1);  // before start
    EXPECT_EQ(zuStrSBCSChar(text, text + 2, '\xA9'), 0);
    EXPECT_EQ(zuStrSBCSChar(text, text + 3, 'a'), 1);

    EXPECT_EQ(zuIsAlpha("\xC3\xA9") + zuIsAlphaNumeric("1") + zuIsWhiteSpace("\xE2\x80\x83"), 3);  // EM SPACE
    EXPECT_EQ(zuIsAlpha("1") + zuIsWhiteSpace("\xA0") + zuIsAlpha("\xC3"), 0);  // no character: 0
    const char blanks[] = " \t\xE2\x80\x83x";
    EXPECT_EQ(zuSkipBlanks(blanks), blanks + 5);

    std::setlocale(LC_ALL, "C");  // the same bytes are nothing in C
    EXPECT_EQ(zuIsLeadByte("\xC3\xA9") + zuIsAlpha("\xC3\xA9"), 0);
}

TEST_F(Locale, Utf8LocaleCaseMappingWritesInPlaceAndMayLeaveTheTextOutOfStep)
{
    USE_LOCALE("C.UTF-8");
    char text[] = "stra\xC3\x9F" "e \xC3\xA9\xC3\xBF";  // "straße éÿ"
    EXPECT_EQ(strUpper(text), text);
    EXPECT_STREQ(text, "STRA\xC3\x9F" "E \xC3\x89\xC5\xB8");  // ß stays; ÿ -> U+0178 through ICU
    strLower(text);
    EXPECT_STREQ(text, "stra\xC3\x9F" "e \xC3\xA9\xC3\xBF");
    char shorter[] = "\xC4\xB1!";  // ı -> I: one byte written, the old trail byte stays
    EXPECT_STREQ(strUpper(shorter), "I\xB1!");
    char longer[] = "\xC9\x90z";  // ɐ -> U+2C6F: three bytes, over the 'z'
    EXPECT_STREQ(strUpper(longer), "\xE2\xB1\xAF");
    auto atEnd = exact("a\xC9\x90", 3);  // no room for a third byte: left alone
    strUpper(atEnd.get(), 3L);
    EXPECT_EQ(std::memcmp(atEnd.get(), "A\xC9\x90", 3), 0);
    char cut[] = "ab\xC3\xA9";  // the length ends inside é
    EXPECT_STREQ(strUpper(cut, 3L), "AB\xC3\xA9");
}

TEST_F(Locale, EightBitLocaleMapsEveryByteAsOneCharacter)
{
    USE_LOCALE("en_US.ISO-8859-1", "en_US", "ISO-8859-1");
    char text[] = "stra\xDF" "e \xF7\xFF\xE9";  // "straße ÷ÿé"
    EXPECT_STREQ(strUpper(text), "STRA\xDF" "E \xD7\xFF\xC9");  // ß alone; ÷ -> ×; Ÿ has no Latin-1 byte
    EXPECT_EQ(zuCharLen("\xC3\xA9\xE2\x82\xAC", ZU_CP_LOCALE), 5);
    EXPECT_EQ(zuIsAlpha("\xE9") - zuIsAlpha("\xF7"), 1);
}

TEST_F(Locale, DoubleByteLocaleStepsByTwoAndHidesTrailBytes)
{
    USE_LOCALE("ko_KR.EUC-KR", "ko_KR", "EUC-KR");
    const char text[] = "a\xB0\xA1" "b";  // a, 가, b
    EXPECT_EQ(zuCharSize(text + 1, ZU_CP_LOCALE), 2);
    EXPECT_EQ(zuCharLen(text, ZU_CP_LOCALE), 3);
    EXPECT_EQ(zuCharLast(text, 4L, ZU_CP_LOCALE), 3);
    EXPECT_EQ(zuCharPrev(text, 3, ZU_CP_LOCALE), 2);  // 'b' decides: back 1, into 가
    EXPECT_EQ(zuCharPrev(text, 1, ZU_CP_LOCALE), 0);
    const char pairs[] = "\xB0\xA1\xA1\xB0";  // A1 once as a trail byte, once as a lead
    EXPECT_EQ(zuStrSBCSChar(pairs, pairs + 1, '\xA1'), 0);
    EXPECT_EQ(zuStrSBCSChar(pairs, pairs + 2, '\xA1'), 1);
    char mixed[] = "a\xB0\xA1\xA3\xE1z";  // a, 가, fullwidth ａ, z
    EXPECT_STREQ(strUpper(mixed), "A\xB0\xA1\xA3\xC1Z");  // ａ -> Ａ through u_toupper
}

TEST(MbCharCase, JavaCaseRulesAndTheSixteenBitTwins)
{
    const int upper[][2] = {{'a', 'A'}, {'{', '{'}, {224, 192}, {247, 215}, {254, 222}, {223, 223}, {255, 0x178}, {0x3B1, 0x391}};
    for (const auto& c : upper)
        EXPECT_EQ(javaToUpper(c[0]), c[1]) << c[0];
    const int lower[][2] = {{'A', 'a'}, {'@', '@'}, {215, 247}, {222, 254}, {223, 223}, {0x178, 0xFF}};
    for (const auto& c : lower)
        EXPECT_EQ(javaToLower(c[0]), c[1]) << c[0];

    using W = std::vector<unsigned short>;
    unsigned short wide[] = {'s', 0xDF, 0xFF, 0xE9, 0xD83D, 0xDE00, 'x', 0};
    strUpper(wide, 6L);
    EXPECT_EQ(W(wide, wide + 8), (W{'S', 0xDF, 0x178, 0xC9, 0xD83D, 0xDE00, 'x', 0}));
    strLower(wide);
    EXPECT_EQ(W(wide, wide + 8), (W{'s', 0xDF, 0xFF, 0xE9, 0xD83D, 0xDE00, 'x', 0}));
    EXPECT_EQ(zuCharLen(wide, ZU_CP_UTF16), 7);  // a surrogate is a unit like any other
    EXPECT_EQ(zuCharPrev(wide, 5, ZU_CP_UTF16), 4);
    EXPECT_EQ(zuCharLast(wide, ZU_CP_UTF16), wide + 6);
    const unsigned short swapped[] = {0x0900, 0x4100, 0x0009, 0};  // tab, 'A', then a tab not swapped
    EXPECT_EQ(zuIsWhiteSpaceUTF16Swap(swapped), 1);
    EXPECT_EQ(zuIsWhiteSpaceUTF16Swap(swapped + 1) + zuIsWhiteSpaceUTF16Swap(swapped + 2), 0);
    EXPECT_EQ(zuSkipBlanks(swapped + 2), swapped + 3);
}

namespace {
struct Close {
    void operator()(UConverter* c) const { ucnv_close(c); }
};
std::unique_ptr<UConverter, Close> openNamed(const char* name)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter* c = ucnv_open(name, &status);
    EXPECT_TRUE(U_SUCCESS(status)) << name;
    return std::unique_ptr<UConverter, Close>(c);
}
std::string marked(const unsigned char* map)  // the marked bytes as ranges, "80-A0 E0-FF"
{
    std::string out;
    for (int b = 0, e; b < 256; b = e + 1) {
        for (e = b; map[b] != 0 && e < 255 && map[e + 1] != 0;)
            ++e;
        char range[16];
        std::snprintf(range, sizeof range, "%s%02X-%02X", out.empty() ? "" : " ", b, e);
        out += map[b] != 0 ? range : "";
    }
    return out;
}
class LeadByteMaps : public ::testing::Test {
protected:
    void SetUp() override { ZuErrorKeeper::setErrorList(&errors); }
    void TearDown() override { ramFaultFailNth(0), ZuErrorKeeper::giveUpErrorList(); }
    ZuErrorList errors{nullptr, 1};
    ZuPCU8Cache cache;
    ZuICUHandleCache pool;
};
}  // namespace

TEST_F(LeadByteMaps, GeneratedFromRealConvertersWhichKeepTheirOwnCallback)
{
    auto sjis = openNamed("ibm-943_P15A-2003");
    auto latin1 = openNamed("ISO-8859-1");
    unsigned char* map = nullptr;
    ASSERT_EQ(generateLeadByteMap(sjis.get(), &map), 0);
    EXPECT_EQ(marked(map), "80-A0 E0-FF");  // double-byte leads, and the unassigned 80, A0, FD-FF
    std::free(map);
    ASSERT_EQ(generateLeadByteMap(latin1.get(), &map), 0);
    EXPECT_EQ(marked(map), "");
    std::free(map);

    // The stop callback used for the map is gone: a lone lead byte is
    // substituted again, not reported.
    const char* source = "\x81";
    UChar out[4], *target = out;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(sjis.get(), &target, out + 4, &source, source + 1, nullptr, true, &status);
    EXPECT_EQ(status, U_ZERO_ERROR);
    EXPECT_EQ(target - out, 1);

    unsigned char untouched = 0;
    map = &untouched;
    ramFaultFailNth(1);
    EXPECT_EQ(generateLeadByteMap(sjis.get(), &map), 1);
    EXPECT_EQ(map, &untouched);
    EXPECT_TRUE(errors.isMemoryErrorPending());
}

TEST_F(LeadByteMaps, CachedPerCodePageThroughThePoolAndCountedWithTheMap)
{
    int lead = -1;
    unsigned long n = 99, whole = 99, chars = 99;
    const unsigned char* text = u8("a\x82\xA2" "b\x82");  // a, い, b, then a lead byte alone
    EXPECT_EQ(isPossibleLeadByte(&cache, 2024, 0x81, &lead) + getCountOfBytes(&cache, 2024, text, 5, &n), 2);
    EXPECT_EQ(lead + n, 98u);  // nothing generated yet: out-arguments left alone

    const std::pair<long, const char*> pages[] = {{2024, "80-A0 E0-FF"}, {38, "8E-8F A0-FF"}, {113, "81-FE"}, {4, ""}};
    std::vector<const unsigned char*> maps;
    for (const auto& [number, marks] : pages) {
        const unsigned char* map = nullptr;
        ASSERT_EQ(getPossibleLeadByteMap(&cache, &pool, number, &map), 0) << number;
        EXPECT_EQ(marked(map), marks) << number;
        EXPECT_EQ(pool.getIdleCount(number), 1) << number;  // the converter went back
        maps.push_back(map);
    }
    const unsigned char* again = nullptr;
    ASSERT_EQ(getPossibleLeadByteMap(&cache, &pool, 38, &again), 0);
    EXPECT_EQ(again, maps[1]);
    ASSERT_EQ(isPossibleLeadByte(&cache, 2024, 0xB1, &lead), 0);  // half-width katakana stands alone
    EXPECT_EQ(lead, 0);

    EXPECT_EQ(getCountOfChars(&cache, 2024, text, 5, &n) + getCounts(&cache, 2024, text, 5, &whole, &chars), 0);
    EXPECT_EQ(n, 4u);  // the cut character counts here,
    EXPECT_EQ(whole, 4u);  // and not in getCounts
    EXPECT_EQ(chars, 3u);
    const unsigned long cuts[][2] = {{0, 0}, {1, 1}, {2, 1}, {3, 3}};
    for (const auto& c : cuts) {
        ASSERT_EQ(getCountOfBytes(&cache, 2024, text, c[0], &n), 0);
        EXPECT_EQ(n, c[1]) << "length " << c[0];
    }
    // Only the last byte is looked at: ａ (82 81) ends in a byte that may
    // also lead, so the cut comes one early; the walk of getCounts is right.
    EXPECT_EQ(getCountOfBytes(&cache, 2024, u8("\x82\x81"), 2, &n) + getCounts(&cache, 2024, u8("\x82\x81"), 2, &whole, &chars), 0);
    EXPECT_EQ(n, 1u);
    EXPECT_EQ(whole, 2u);
}

TEST_F(LeadByteMaps, ConverterCountEndsBeforeACutCharacterOfAnyLength)
{
    struct Case {
        const char *converter, *text;
        unsigned long length, expected;
    } const cases[] = {
        {"UTF-8", "a\xE3\x81", 3, 1}, {"UTF-8", "a\xE3\x81\x82", 4, 4}, {"UTF-8", "\x81\x82z", 3, 3},
        {"gb18030", "\x81\x30\x81", 3, 0}, {"gb18030", "\x81\x30\x81\x30", 4, 4},
        {"gb18030", "\xB0\xA1\xB0\xA1\xB0", 5, 4},  // trail and lead ranges overlap
        {"EUC-JP", "\xA4\xA2\xA4\xA2\xA4", 5, 4}, {"EUC-JP", "\x8F\xB0\xA1", 3, 3}, {"EUC-JP", "x\x8F\xB0", 3, 1},
        {"ISO-8859-1", "ab\xE3", 3, 3},
    };
    for (const Case& c : cases) {
        auto conv = openNamed(c.converter);
        auto text = exact(c.text, c.length);
        unsigned long n = 99;
        ASSERT_EQ(getCountOfBytes(conv.get(), u8(text.get()), c.length, &n), 0);
        EXPECT_EQ(n, c.expected) << c.converter << " " << testing::PrintToString(std::string(c.text, c.length));
    }
}

TEST_F(LeadByteMaps, FailedGrowthOfTheMapCacheKeepsEveryMap)
{
    const unsigned char* first = nullptr;
    ASSERT_EQ(cache.initialize(1) + getPossibleLeadByteMap(&cache, &pool, 2024, &first), 0);
    // A miss allocates the map, then the two grown tables; the pool, without
    // substitution, allocates nothing of ours.
    const unsigned char* map = nullptr;
    for (unsigned long n = 1; n <= 3; ++n) {
        ramFaultFailNth(n);
        EXPECT_EQ(getPossibleLeadByteMap(&cache, &pool, 38, &map), 1) << n;
        EXPECT_FALSE(ramFaultPending()) << n;
        EXPECT_EQ(map, nullptr);
        EXPECT_NE(errors.removeLastError(), nullptr) << "no memory error for " << n;
        EXPECT_EQ(cache.getCount() * 10 + cache.getCapacity(), 11u);
        EXPECT_EQ(cache.getHandleForKey(2024), first);
        EXPECT_EQ(cache.getHandleForKey(38), nullptr);
    }
    ramFaultFailNth(0);
    ASSERT_EQ(getPossibleLeadByteMap(&cache, &pool, 38, &map), 0);
    EXPECT_TRUE(cache.getHandleForKey(2024) == first && cache.getHandleForKey(38) == map);
    EXPECT_EQ(pool.getIdleCount(38), 1);  // every failure gave the converter back
}
