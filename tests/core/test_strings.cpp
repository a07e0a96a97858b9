// Byte operations, comparisons, copies and searches, checked against glibc
// (strlen, strcmp, memcmp, memmem, strcoll, memmove) on exhaustive short
// inputs at every alignment and on random ones, in exact-size heap blocks so
// that ASan builds catch any read or write outside a size.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/but.h"
#include "core/strcmp.h"
#include "core/strcopy.h"
#include "core/strfind.h"
#include "platform/ram.h"

namespace {
int sign(int v) { return (v > 0) - (v < 0); }

// An exact-size heap block: nothing addressable before or after it.
struct Block {
    char* p;
    explicit Block(std::size_t n) : p(static_cast<char*>(std::malloc(n == 0 ? 1 : n))) {}
    ~Block() { std::free(p); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
};

// Bytes from a small alphabet with values at and above 0x80 mixed in.
std::string randomBytes(std::mt19937& rng, std::size_t n, const std::string& alphabet)
{
    std::string s(n, 'a');
    for (auto& c : s)
        c = alphabet[rng() % alphabet.size()];
    return s;
}
const std::string kHighMix = std::string("ab\x80\xff\xc3\xa9 ") + '\x7f';
}  // namespace

TEST(ByteOps, LengthMatchesStrlenAtEveryLengthAndAlignment)
{
    std::mt19937 rng(1);
    for (std::size_t align = 0; align < 16; ++align) {
        for (std::size_t len = 0; len <= 64; ++len) {
            Block b(align + len + 1);  // the terminator is the block's last byte
            std::string s = randomBytes(rng, len, "xy\x80\xfe\x01");
            std::memcpy(b.p + align, s.data(), len);
            b.p[align + len] = 0;
            ASSERT_EQ(BUTSTLEN(b.p + align), std::strlen(b.p + align)) << align << " " << len;
        }
    }
}

TEST(ByteOps, LengthNeverCrossesIntoAnUnmappedPage)
{
    const long page = sysconf(_SC_PAGESIZE);
    auto* map = static_cast<char*>(mmap(nullptr, static_cast<std::size_t>(page) * 2, PROT_READ | PROT_WRITE,
                                        MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(map, MAP_FAILED);
    ASSERT_EQ(mprotect(map + page, static_cast<std::size_t>(page), PROT_NONE), 0);
    std::memset(map, 'q', static_cast<std::size_t>(page));
    char* end = map + page;  // first unreadable byte
    for (long len = 0; len < 200; ++len) {
        end[-1] = 0;
        EXPECT_EQ(BUTSTLEN(end - 1 - len), static_cast<unsigned long>(len));
    }
    munmap(map, static_cast<std::size_t>(page) * 2);
}

TEST(ByteOps, CopyConcatCompareAgreeWithGlibc)
{
    std::mt19937 rng(2);
    for (int round = 0; round < 2000; ++round) {
        const std::string a = randomBytes(rng, rng() % 20, kHighMix);
        const std::string b = randomBytes(rng, rng() % 20, kHighMix);
        EXPECT_EQ(BUTSTCMP(a.c_str(), b.c_str()), sign(std::strcmp(a.c_str(), b.c_str())));
        Block t(a.size() + b.size() + 1);
        EXPECT_EQ(BUTSTCPY(t.p, a.c_str()), t.p);
        BUTSTCAT(t.p, b.c_str());
        EXPECT_EQ(std::string(t.p), a + b);
    }
    const unsigned short wa[] = {'a', 0x100, 0}, wb[] = {'a', 0xFF, 0};
    EXPECT_EQ(BUTSTCMP(wa, wb), 1);
    EXPECT_EQ(BUTSTLEN(wa), 2u);
    unsigned short wt[5];
    BUTSTCAT(BUTSTCPY(wt, wa), wb);
    EXPECT_EQ(BUTSTLEN(wt), 4u);
    EXPECT_EQ(wt[3], 0xFF);
}

TEST(ByteOps, BlockCompareAndEqualityAgreeWithMemcmp)
{
    std::mt19937 rng(3);
    for (std::size_t align = 0; align < 16; ++align) {
        for (std::size_t len = 0; len <= 64; ++len) {
            Block x(align + len);
            Block y(len);
            const std::string s = randomBytes(rng, len, kHighMix);
            std::memcpy(x.p + align, s.data(), len);
            std::memcpy(y.p, s.data(), len);
            ASSERT_EQ(memEqual(x.p + align, y.p, len), 1);
            ASSERT_EQ(BUTMMCMP(x.p + align, y.p, len), 0);
            // A difference at every place, upward and downward.
            for (std::size_t at = 0; at < len; ++at) {
                const char saved = y.p[at];
                y.p[at] = static_cast<char>(saved ^ 0x81);
                ASSERT_EQ(memEqual(x.p + align, y.p, len), 0) << len << " " << at;
                ASSERT_EQ(BUTMMCMP(x.p + align, y.p, len), sign(std::memcmp(x.p + align, y.p, len)));
                y.p[at] = saved;
            }
        }
    }
    // Long blocks take the widest loops: a single difference anywhere, the
    // overlapping tail included, is seen.
    for (std::size_t len : {255u, 256u, 257u, 300u, 383u, 384u, 511u, 1000u}) {
        Block x(len + 1), y(len);
        const std::string s = randomBytes(rng, len, kHighMix);
        std::memcpy(x.p + 1, s.data(), len);
        std::memcpy(y.p, s.data(), len);
        ASSERT_EQ(memEqual(x.p + 1, y.p, len), 1) << len;
        for (std::size_t at = 0; at < len; ++at) {
            y.p[at] ^= 0x01;
            ASSERT_EQ(memEqual(x.p + 1, y.p, len), 0) << len << " " << at;
            y.p[at] ^= 0x01;
        }
    }
    std::vector<unsigned char> big(70000, 0xAB), other(big);
    other[69999] = 0xAC;
    EXPECT_EQ(memEqual(big.data(), other.data(), big.size()), 0);
    EXPECT_EQ(memCompareHuge(big.data(), other.data(), big.size()), -1);
    EXPECT_EQ(memCompareHuge(big.data(), other.data(), big.size() - 1), 0);
}

TEST(ByteOps, OverlappingCopiesInEitherSense)
{
    std::string base = "0123456789";
    std::string up = base, down = base, expectUp = base, expectDown = base;
    // Target below the source: the upward copy is memmove.
    BUTMEMCP(&up[0], &up[3], 6);
    std::memmove(&expectUp[0], &expectUp[3], 6);
    EXPECT_EQ(up, expectUp);
    // Target above the source: the downward copy is memmove.
    BUTMMCPD(&down[3], &down[0], 6);
    std::memmove(&expectDown[3], &expectDown[0], 6);
    EXPECT_EQ(down, expectDown);
    // The other senses walk as named and repeat bytes.
    std::string smear = base;
    BUTMEMCP(&smear[1], &smear[0], 5);
    EXPECT_EQ(smear, "0000006789");
    smear = base;
    BUTMMCPD(&smear[0], &smear[1], 5);
    EXPECT_EQ(smear, "5555556789");
}

TEST(ByteOps, FillSwapClearAndCaseMask)
{
    Block b(10);
    BUTU8FIL(b.p, 10, 0xEE);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(static_cast<unsigned char>(b.p[i]), 0xEE);
    memZero4Byte(b.p, 2);  // 8 bytes, not 2
    EXPECT_EQ(b.p[7], 0);
    EXPECT_EQ(static_cast<unsigned char>(b.p[8]), 0xEE);
    for (std::size_t size : {1u, 7u, 300u, 700u}) {
        std::vector<unsigned char> arr(size * 3);
        for (std::size_t i = 0; i < arr.size(); ++i)
            arr[i] = static_cast<unsigned char>(i * 7 / size);
        auto expected = arr;
        std::swap_ranges(expected.begin(), expected.begin() + static_cast<long>(size), expected.begin() + 2 * static_cast<long>(size));
        butswap(arr.data(), 0, 2, size);
        EXPECT_EQ(arr, expected) << size;
    }
    EXPECT_EQ(memEqualCi("HeLLo", "HELLO", "hello", 5), 1);
    EXPECT_EQ(memEqualCi("HeLLx", "HELLO", "hello", 5), 0);
}

TEST(ByteOps, BufferGrowthInStepsOf512AndTheSixteenBitLimit)
{
    char* buffer = nullptr;
    char* position = nullptr;
    unsigned short capacity = 0;
    ASSERT_EQ(butxpand(&buffer, &position, &capacity, 600), 0);
    EXPECT_EQ(capacity, 1024);
    EXPECT_EQ(position, buffer);
    std::memset(buffer, 'z', 1000);
    position = buffer + 1000;
    ASSERT_EQ(butxpand(&buffer, &position, &capacity, 20), 0);  // 24 left is enough
    EXPECT_EQ(capacity, 1024);
    ASSERT_EQ(butxpand(&buffer, &position, &capacity, 100), 0);
    EXPECT_EQ(capacity, 1024 + 512);
    EXPECT_EQ(position - buffer, 1000);
    EXPECT_EQ(buffer[999], 'z');
    position = buffer + capacity;
    EXPECT_EQ(butxpand(&buffer, &position, &capacity, 65000), 1);  // would pass 65,535
    EXPECT_EQ(capacity, 1536);
    ramFreeC(buffer);
}

TEST(Compare, CaseFoldingPaddingAndMaxLength)
{
    EXPECT_EQ(strCompareCi("Hello", "hELLO"), 0);
    EXPECT_EQ(strCompareCi("abc", "ABD"), -1);
    EXPECT_EQ(strCompareCi("abcd", "ABC"), 1);
    EXPECT_EQ(strEqualCi("MiXeD", 5, "mixed", 5), 1);
    EXPECT_EQ(strEqualCi("MiXeD", 5, "mixe", 4), 0);
    // UTF-8: a multi-byte character must match byte for byte, never folded.
    EXPECT_EQ(strCompareCi("\xc3\xa9", "\xc3\x89", ZU_CP_UTF8), 1);
    EXPECT_EQ(strComparePad("ab", "ab  "), 0);
    EXPECT_EQ(strComparePad("ab", "ab !"), -1);
    EXPECT_EQ(strComparePad("ab\x01", "ab"), -1);
    EXPECT_EQ(strComparePad("abc", 3, "abb  ", 5), 1);
    EXPECT_EQ(strCompareWithMaxLength("abcX", "abcY", 3), 0);
    EXPECT_EQ(strCompareWithMaxLength("abcX", "abcY", 4), -1);
    EXPECT_EQ(strCompare("ab", 2, "abc", 3), -1);
    EXPECT_EQ(strCompare("ab\0c", 4, "ab\0b", 4), 1);  // NUL is an ordinary byte here
    EXPECT_EQ(strEqualSameLens("xyz", "xyz", 3), 1);
    const unsigned short w1[] = {'a', 'B', 0}, w2[] = {'A', 'b', 0};
    EXPECT_EQ(strCompareCi(w1, w2), 0);
    EXPECT_EQ(strCompare(w1, w2), 1);
}

TEST(Compare, CollationAgreesWithStrcollIncludingHeapCopies)
{
    const char* old = std::setlocale(LC_COLLATE, nullptr);
    const std::string saved = old != nullptr ? old : "C";
    std::setlocale(LC_COLLATE, "C.UTF-8");
    std::mt19937 rng(4);
    for (int round = 0; round < 500; ++round) {
        const std::size_t la = round % 10 == 0 ? 600 + rng() % 100 : rng() % 30;
        const std::string a = randomBytes(rng, la, "aAbB \xc3\xa9");
        const std::string b = round % 3 == 0 ? a : randomBytes(rng, la, "aAbB \xc3\xa9");
        Block x(a.size()), y(b.size());  // unterminated: the copies add the NUL
        std::memcpy(x.p, a.data(), a.size());
        std::memcpy(y.p, b.data(), b.size());
        const int expected = sign(std::strcoll(a.c_str(), b.c_str()));
        EXPECT_EQ(strCompareIntl(x.p, static_cast<long>(a.size()), y.p, static_cast<long>(b.size())), expected);
        EXPECT_EQ(strCompareCiIntl(x.p, static_cast<long>(a.size()), y.p, static_cast<long>(b.size())), expected);
        EXPECT_EQ(strCompareIntl(a.c_str(), b.c_str()), expected);
    }
    std::setlocale(LC_COLLATE, saved.c_str());
}

TEST(Compare, StoredDoublesOrderAsTheirValues)
{
    auto store = [](double d, unsigned char* out) {
        unsigned char raw[8];
        std::memcpy(raw, &d, 8);
        for (int i = 0; i < 8; ++i)
            out[i] = raw[7 - i];  // big-endian
    };
    std::mt19937_64 rng(5);
    std::uniform_real_distribution<double> dist(-1e6, 1e6);
    std::vector<double> values = {0.0, 1.0, -1.0, 1e-300, -1e-300, 1e300, -1e300, 2.5, -2.5};
    for (int i = 0; i < 300; ++i)
        values.push_back(dist(rng));
    for (double a : values) {
        for (double b : {values[rng() % values.size()], a, -a}) {
            unsigned char x[8], y[8];
            store(a, x);
            store(b, y);
            if (a == 0.0 && b == 0.0)
                continue;  // -0 and +0 differ in sign only
            EXPECT_EQ(floatCompare(x, y), (a > b) - (a < b)) << a << " " << b;
        }
    }
}

TEST(Copy, BoundedAndExactCopiesStayInsideTheirSizes)
{
    Block one(1);
    strCopy(one.p, 1, "x");
    EXPECT_EQ(one.p[0], 0);
    Block four(4);
    strCopy(four.p, 4, "abcdef");
    EXPECT_STREQ(four.p, "abc");
    strCopy(four.p, 4, "abcdef", 2);
    EXPECT_STREQ(four.p, "ab");
    strCopy(four.p, 4, "ab\0cd", 5);  // length-governed: copies past the NUL, stops at the size
    EXPECT_EQ(four.p[2], 0);
    EXPECT_EQ(four.p[3], 0);
    strCopy(four.p, 0, "zz");  // size 0 writes nothing
    EXPECT_EQ(four.p[0], 'a');
    Block exact(4);
    char* nul = strCopy(exact.p, "abc", 3);
    EXPECT_EQ(nul, exact.p + 3);
    EXPECT_STREQ(exact.p, "abc");
    unsigned short wide[4];
    strCopy(wide, 4, "\xe9xyz");
    EXPECT_EQ(wide[0], 0xE9);  // widened, not sign-extended
    EXPECT_EQ(wide[3], 0);
    const unsigned short src[] = {0x1241, 'b', 0};
    char narrow[3];
    strCopy(narrow, 3, src);
    EXPECT_EQ(narrow[0], 0x41);
    Block cat(6);
    std::strcpy(cat.p, "ab");
    strCat(cat.p, 6, "cdefgh");
    EXPECT_STREQ(cat.p, "abcde");
    strCat(cat.p, 6, "zz");  // full: unchanged
    EXPECT_STREQ(cat.p, "abcde");
}

TEST(Copy, QuotingRoundTripsAndUnquotesInPlace)
{
    std::mt19937 rng(6);
    for (int round = 0; round < 500; ++round) {
        const std::string s = randomBytes(rng, rng() % 12, "a'b\" ");
        Block q(2 * s.size() + 3);
        char* end = strCopyQuoted(q.p, s.data(), static_cast<long>(s.size()), ZU_CP_SBCS, '\'');
        const long ql = end - q.p;
        EXPECT_EQ(static_cast<std::size_t>(ql), std::strlen(q.p));
        // Unquoting in place gives the source back; strRemoveQuotes agrees.
        std::string copy(q.p, static_cast<std::size_t>(ql));
        char* nul = strCopyUnquoted(q.p, q.p, ql);
        EXPECT_EQ(std::string(q.p, static_cast<std::size_t>(nul - q.p)), s);
        const long newLength = strRemoveQuotes(&copy[0], static_cast<long>(copy.size()), '\'', ZU_CP_SBCS);
        EXPECT_EQ(copy.substr(0, static_cast<std::size_t>(newLength)), s);
    }
    std::string bad = "'a'b'";
    EXPECT_EQ(strRemoveQuotes(&bad[0], 5, '\'', ZU_CP_SBCS), 5);
    EXPECT_EQ(bad, "'a'b'");
    std::string tiny = "'";
    EXPECT_EQ(strRemoveQuotes(&tiny[0], 1, '\'', ZU_CP_SBCS), 1);
    // A character that would run past the length ends the copy.
    char out[16];
    strCopyQuoted(out, "a\xc3\xa9", 2, ZU_CP_UTF8, '"');
    EXPECT_STREQ(out, "\"a\"");
    // A quote at the last inner place has nothing of the text after it.
    char un[8];
    strCopyUnquoted(un, "'ab''", 5);
    EXPECT_STREQ(un, "ab");
}

TEST(Copy, TrimmingAndTruth)
{
    char t[] = "abc \t\n ";
    EXPECT_EQ(strRightTrim("abc \t ", 6), 3);
    EXPECT_STREQ(strRightTrim(t), "abc");
    EXPECT_EQ(strRightTrimBlanks("ab \t ", 5), 4);
    EXPECT_EQ(strRightTrimBlanks("   ", 3), 0);
    const unsigned short w[] = {'x', ' ', '\t', 0};
    EXPECT_EQ(strRightTrim(w, 3), 1);
    const unsigned short swapped[] = {0x7800, 0x2000, 0x0900};
    EXPECT_EQ(strRightTrimUTF16Swap(swapped, 3), 1);
    unsigned short back[4];
    strCopyUTF16Swap(back, swapped, 3);
    EXPECT_EQ(back[0], 'x');
    EXPECT_EQ(back[3], 0);
    for (const char* yes : {"1", "TRUE", "t", "on", "ON", "oN"})
        EXPECT_EQ(isTrueStr(yes), 1) << yes;
    for (const char* no : {"Yes", "0", "off", "o", ""})
        EXPECT_EQ(isTrueStr(no), 0) << no;
}

TEST(Find, PatternSearchAgreesWithMemmem)
{
    std::mt19937 rng(7);
    for (int round = 0; round < 6000; ++round) {
        const std::size_t n = rng() % 70;
        const std::size_t m = rng() % 6;
        const std::string text = randomBytes(rng, n, "ab\x80");
        std::string pattern = randomBytes(rng, m, "ab\x80");
        if (m > 0 && n >= m && rng() % 2 == 0)
            pattern = text.substr(rng() % (n - m + 1), m);
        Block t(n), p(m);
        std::memcpy(t.p, text.data(), n);
        std::memcpy(p.p, pattern.data(), m);
        const void* expected = m == 0 ? nullptr : memmem(t.p, n, p.p, m);
        for (zuCPType type : {ZU_CP_SBCS, ZU_CP_LOCALE})
            ASSERT_EQ(static_cast<const void*>(strFind(t.p, static_cast<long>(n), p.p, static_cast<long>(m), type)), expected);
    }
    // 16-bit twin.
    const unsigned short wt[] = {1, 2, 1, 2, 3, 0}, wp[] = {2, 3, 0};
    EXPECT_EQ(strFind(wt, 5, wp, 2, ZU_CP_UTF16), wt + 3);
    EXPECT_EQ(strFind(wt, wp, ZU_CP_UTF16), wt + 3);
}

TEST(Find, CharactersQuotesCaseAndClasses)
{
    const char* text = "a,'b,c',d";
    EXPECT_EQ(strFind(text, ',', ZU_CP_SBCS), text + 1);
    EXPECT_EQ(strFindReverse(text, ',', ZU_CP_SBCS), text + 7);
    EXPECT_EQ(strFind(text + 2, ',', '\'', '"', 0, ZU_CP_SBCS), text + 7);
    EXPECT_EQ(strFindAnsi(text, 'z'), nullptr);
    // UTF-8: 0xA9 inside "é" is a trail byte and is not found there; the
    // stray 0xA9 at the end is a character of its own.
    const char* u = "\xc3\xa9x\xa9";
    EXPECT_EQ(strFind(u, '\xa9', ZU_CP_UTF8), u + 3);
    EXPECT_EQ(strFind(u, '\xa9', ZU_CP_SBCS), u + 1);
    EXPECT_EQ(strFindReverse(u, '\xa9', ZU_CP_UTF8), u + 3);
    EXPECT_EQ(strFind(u, "x", ZU_CP_UTF8), u + 2);
    EXPECT_EQ(strFind(u, 4, "\xa9", 1, ZU_CP_UTF8), u + 3);
    EXPECT_EQ(strFind(u, 3, "\xa9", 1, ZU_CP_UTF8), nullptr);
    EXPECT_EQ(strFind(u, 4, "\xa9", 1, ZU_CP_SBCS), u + 1);
    EXPECT_EQ(strFind("abc", 3, "abcd", 4, ZU_CP_SBCS), nullptr);
    EXPECT_EQ(strFind("abc", 3, "", 0, ZU_CP_SBCS), nullptr);
    const char* hay = "xxHeLLo";
    EXPECT_EQ(strFindCi(hay, 7, "hello", 5, ZU_CP_SBCS), hay + 2);
    EXPECT_EQ(strFindCi(hay, 7, "HELLO", "hello", 5, ZU_CP_SBCS), hay + 2);
    EXPECT_EQ(strFindCi(hay, 6, "HELLO", "hello", 5, ZU_CP_SBCS), nullptr);
    EXPECT_STREQ(strFindAnyChar("hello world", "wo", ZU_CP_SBCS), "o world");
    EXPECT_EQ(strFindAnyChar("hello", "xyz", ZU_CP_SBCS), nullptr);
    EXPECT_STREQ(strFindAnyChar("hello world", "wd", ZU_CP_SBCS), "world");
    EXPECT_EQ(strContains("abc123", 6, nullptr, ZU_CLASS_LOWER | ZU_CLASS_DIGIT, ZU_CP_SBCS), 1);
    EXPECT_EQ(strContains("abC123", 6, nullptr, ZU_CLASS_LOWER | ZU_CLASS_DIGIT, ZU_CP_SBCS), 0);
    EXPECT_EQ(strContains("a-b", 3, "-", ZU_CLASS_LOWER, ZU_CP_SBCS), 1);
    EXPECT_EQ(strDoesNotContain("ABC", 3, "x", ZU_CLASS_LOWER, ZU_CP_SBCS), 1);
    EXPECT_EQ(strDoesNotContain("ABx", 3, "x", 0, ZU_CP_SBCS), 0);
    EXPECT_EQ(strContains("", 0, nullptr, 0, ZU_CP_SBCS), 1);
}
