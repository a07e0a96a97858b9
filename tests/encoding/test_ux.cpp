// The code page transforms: truncation and termination, the 7-bit shortcut
// against ICU itself, substitution modes, UTF-8/UTF-16 edge cases, and the
// reporting of results to the thread's error list.
#include <gtest/gtest.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/errorlist.h"
#include "encoding/ux.h"

namespace {
struct Cnv {
    explicit Cnv(const char* name)
    {
        UErrorCode s = U_ZERO_ERROR;
        c = ucnv_open(name, &s);
        EXPECT_TRUE(U_SUCCESS(s)) << name;
    }
    ~Cnv() { ucnv_close(c); }
    operator UConverter*() const { return c; }
    UConverter* c;
};

// What ICU alone makes of `in` from one converter to another.
std::string icuConvert(const char* to, const char* from, const std::string& in)
{
    UErrorCode s = U_ZERO_ERROR;
    std::vector<char> out(in.size() * 4 + 16);
    int32_t n = ucnv_convert(to, from, out.data(), static_cast<int32_t>(out.size()), in.data(),
                             static_cast<int32_t>(in.size()), &s);
    EXPECT_TRUE(U_SUCCESS(s)) << u_errorName(s);
    return std::string(out.data(), static_cast<size_t>(n));
}

const unsigned char* u8(const char* s) { return reinterpret_cast<const unsigned char*>(s); }
}  // namespace

TEST(ByteTransforms, TruncationCopiesWhatFitsAndTerminatesOnlyWithRoom)
{
    Cnv latin("ISO-8859-1"), utf8("UTF-8");
    unsigned char out[8];
    std::memset(out, 'x', sizeof out);
    long written = -1, consumed = -1;
    EXPECT_EQ(uxAnsiToUTF8(out, 3, u8("hello"), 5, &written, &consumed, latin, utf8), ZU_CONV_TRUNCATED);
    EXPECT_EQ(written, 3);
    EXPECT_EQ(consumed, 3);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(out), 4), "helx") << "no terminator past the target";

    // Exactly as long as the output: success, and still no terminator.
    std::memset(out, 'x', sizeof out);
    EXPECT_EQ(uxAnsiToUTF8(out, 5, u8("hello"), 5, &written, nullptr, latin, utf8), ZU_CONV_SUCCESS);
    EXPECT_EQ(out[5], 'x');
    // With room, a terminator that is not counted.
    EXPECT_EQ(uxAnsiToUTF8(out, 8, u8("hello"), -1, &written, nullptr, latin, utf8), ZU_CONV_SUCCESS);
    EXPECT_EQ(written, 5);
    EXPECT_EQ(out[5], 0);

    EXPECT_EQ(uxAnsiToUTF8(nullptr, 5, u8("a"), 1, &written, nullptr, latin, utf8), ZU_CONV_FAILURE);
    EXPECT_EQ(uxAnsiToUTF8(out, 0, u8("a"), 1, &written, nullptr, latin, utf8), ZU_CONV_FAILURE);
    EXPECT_EQ(uxAnsiToUTF8(out, 5, nullptr, 1, &written, nullptr, latin, utf8), ZU_CONV_FAILURE);
}

TEST(ByteTransforms, SevenBitShortcutNeverChangesTheBytes)
{
    // EBCDIC and stateful encodings do not map 7-bit bytes to themselves: the
    // shortcut must stand aside and the result be ICU's.
    const std::string text = "Plain ASCII, then ISO-2022: \xE6\x97\xA5\xE6\x9C\xAC and back. ";
    for (const char* name : {"ibm-37", "ISO-2022-JP", "UTF-16BE", "ibm-943_P15A-2003", "windows-1252", "UTF-7"}) {
        Cnv page(name), utf8("UTF-8");
        const std::string expected = icuConvert(name, "UTF-8", text);
        std::vector<unsigned char> out(text.size() * 4 + 8);
        long written = 0;
        EXPECT_EQ(uxUTF8ToAnsi(out.data(), static_cast<long>(out.size()), u8(text.c_str()),
                               static_cast<long>(text.size()), &written, nullptr, utf8, page), ZU_CONV_SUCCESS)
            << name;
        EXPECT_EQ(std::string(reinterpret_cast<char*>(out.data()), static_cast<size_t>(written)), expected) << name;

        std::vector<unsigned char> back(text.size() * 4 + 8);
        EXPECT_EQ(uxAnsiToUTF8(back.data(), static_cast<long>(back.size()), out.data(), written, &written, nullptr,
                               page, utf8), ZU_CONV_SUCCESS) << name;
        EXPECT_EQ(std::string(reinterpret_cast<char*>(back.data()), static_cast<size_t>(written)),
                  icuConvert("UTF-8", name, expected)) << name;
    }
}

TEST(ByteTransforms, CountingFormsTellTheFullLengthNeeded)
{
    Cnv latin("ISO-8859-1"), utf8("UTF-8");
    unsigned char out[4];
    long written = 0;
    // 6 characters of which 3 need 2 bytes in UTF-8: 9 bytes needed.
    EXPECT_EQ(uxAnsiToUTF8(out, 4, u8("\xE9t\xE9t\xE9t"), 6, &written, latin, utf8), ZU_CONV_TRUNCATED);
    EXPECT_EQ(written, 9);
    EXPECT_EQ(std::memcmp(out, "\xC3\xA9t", 3), 0) << "whole characters only, in order";
    unsigned char big[16];
    EXPECT_EQ(uxUTF8ToAnsi(big, 16, u8("\xC3\xA9t"), 3, &written, utf8, latin), ZU_CONV_SUCCESS);
    EXPECT_EQ(written, 2);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(big)), "\xE9t");

    unsigned short wide[] = {'a', 0xD83D, 0xDE00, 'b'};
    Cnv u8c("UTF-8");
    EXPECT_EQ(uxUCS2ToAnsi(out, 4, wide, 4, &written, u8c, 0), ZU_CONV_TRUNCATED);
    EXPECT_EQ(written, 6) << "a + 4-byte emoji + b";
}

TEST(Substitution, ModesFailRecordOrStayQuiet)
{
    const unsigned short euro[] = {'a', 0x20AC, 'b'};
    for (int mode : {0, 1, 2}) {
        Cnv latin("ISO-8859-1");
        ICUSubstitutionErrorInfo info{mode, 0, nullptr, nullptr};
        ASSERT_EQ(installSubstitutionCallback(latin, &info), 0);
        unsigned short src[3];
        std::memcpy(src, euro, sizeof src);
        unsigned char out[8];
        long written = 0;
        const ZuConvertReturn rc = uxUCS2ToAnsi(out, 8, src, 3, &written, nullptr, latin, 0);
        if (mode == 1) {
            EXPECT_EQ(rc, ZU_CONV_ILLEGAL_CHAR) << "fail mode stops at the character";
            EXPECT_EQ(info.substituted, 0);
        } else {
            EXPECT_EQ(rc, ZU_CONV_SUCCESS);
            EXPECT_EQ(written, 3);
            EXPECT_EQ(out[1], 0x1A) << "ICU's own substitute still happens";
            EXPECT_EQ(info.substituted, mode == 2 ? 1 : 0);
        }
    }
}

TEST(Utf16Transforms, SwapOddAlignmentAndOddByteCounts)
{
    const std::u16string text = u"Gr\u00FC\u00DFe \U0001F600 \u65E5\u672C";
    std::vector<unsigned char> storage(text.size() * 2 + 3);
    // An odd address, big-endian units when swapped.
    unsigned char* odd = storage.data() + 1;
    std::memcpy(odd, text.data(), text.size() * 2);
    unsigned char out[64];
    long written = 0;
    ASSERT_EQ(uxUTF16ToUTF8(out, 64, reinterpret_cast<unsigned short*>(odd), static_cast<long>(text.size()),
                            &written, 0), ZU_CONV_SUCCESS);
    const std::string expected = "Gr\xC3\xBC\xC3\x9F" "e \xF0\x9F\x98\x80 \xE6\x97\xA5\xE6\x9C\xAC";
    EXPECT_EQ(std::string(reinterpret_cast<char*>(out), static_cast<size_t>(written)), expected);

    uxUCS2Swap(reinterpret_cast<unsigned short*>(odd), reinterpret_cast<unsigned short*>(odd),
               static_cast<long>(text.size()));
    ASSERT_EQ(uxUTF16ToUTF8(out, 64, reinterpret_cast<unsigned short*>(odd), static_cast<long>(text.size()),
                            &written, 1), ZU_CONV_SUCCESS);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(out), static_cast<size_t>(written)), expected);

    unsigned short back[32];
    ASSERT_EQ(uxUTF8ToUTF16(back, 32, u8(expected.c_str()), -1, &written, 1), ZU_CONV_SUCCESS);
    EXPECT_EQ(written, static_cast<long>(text.size()));
    EXPECT_EQ(back[0], 0x4700) << "swapped output";
    EXPECT_EQ(back[written], 0);
}

TEST(Utf16Transforms, ReqLenTellsTheNeedAndAlwaysTerminates)
{
    const std::string text(100, 'a');
    unsigned short out[10];
    long written = 0;
    EXPECT_EQ(uxUTF8ToUTF16ReqLen(out, 10, u8(text.c_str()), 100, &written, 0), ZU_CONV_TRUNCATED);
    EXPECT_EQ(written, 100);
    EXPECT_EQ(out[9], 0);
    EXPECT_EQ(uxUTF8ToUTF16(out, 10, u8(text.c_str()), 100, &written, 0), ZU_CONV_TRUNCATED);
    EXPECT_EQ(written, 10) << "the plain form counts what is in the target";

    const unsigned short wide[] = {0x65E5, 0x672C, 0x8A9E, 0};
    unsigned char narrow[5];
    EXPECT_EQ(uxUTF16ToUTF8ReqLen(narrow, 5, wide, -3, &written, 0), ZU_CONV_TRUNCATED);
    EXPECT_EQ(written, 9);
    EXPECT_EQ(narrow[3], 0) << "one whole character, then the terminator";
}

TEST(Utf16Transforms, MalformedUtf8IsRefusedWithoutOverrun)
{
    for (const char* bad : {"ab\xC3", "\xED\xA0\x80", "\xC0\xAF", "a\xFF" "b", "\xF4\x90\x80\x80"}) {
        std::vector<unsigned short> out(8);
        long written = 0;
        EXPECT_EQ(uxUTF8ToUTF16(out.data(), 8, u8(bad), static_cast<long>(std::strlen(bad)), &written, 0),
                  ZU_CONV_FAILURE) << bad;
    }
}

TEST(PositionReporting, Utf8EndingInsideACharacterCanBeResumed)
{
    const char text[] = "ab\xE6\x97";  // 日 cut after 2 of its 3 bytes
    UChar buf[8];
    UChar* t = buf;
    const char* s = text;
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    ConvUTF8ToUTF16(&t, 8, &length, &s, 4, &status);
    EXPECT_EQ(status, U_TRUNCATED_CHAR_FOUND);
    EXPECT_EQ(s, text + 2) << "left before the cut character";
    EXPECT_EQ(t, buf + 2);

    // The caller adds the missing byte and goes on.
    const char rest[] = "\xE6\x97\xA5z";
    s = rest;
    status = U_ZERO_ERROR;
    ConvUTF8ToUTF16(&t, 6, &length, &s, 4, &status);
    EXPECT_TRUE(U_SUCCESS(status));
    EXPECT_EQ(buf[2], 0x65E5);
    EXPECT_EQ(buf[3], 'z');

    // Output full: the position reached is reported and the rest counted.
    t = buf;
    s = "abcdef";
    status = U_ZERO_ERROR;
    ConvUTF8ToUTF16(&t, 3, &length, &s, -1, &status);
    EXPECT_EQ(status, U_BUFFER_OVERFLOW_ERROR);
    EXPECT_EQ(length, 6);
    EXPECT_STREQ(s, "def");

    status = U_ILLEGAL_ARGUMENT_ERROR;  // a failing status returns at once
    EXPECT_EQ(ConvUTF8ToUTF16(&t, 3, &length, &s, -1, &status), nullptr);
    status = U_ZERO_ERROR;
    EXPECT_EQ(ConvUTF8ToUTF16(&t, -1, &length, &s, -1, &status), nullptr);
    EXPECT_EQ(status, U_ILLEGAL_ARGUMENT_ERROR);
}

TEST(PositionReporting, Utf16SurrogatesMustPair)
{
    char buf[16];
    int32_t length = 0;
    const UChar lone_low[] = {'a', 0xDC00, 'b'};
    const UChar lone_high[] = {'a', 0xD800};
    const UChar pair[] = {0xD83D, 0xDE00};
    for (auto [src, n, ok] : {std::tuple{lone_low, 3, false}, {lone_high, 2, false}, {pair, 2, true}}) {
        char* t = buf;
        const UChar* s = src;
        UErrorCode status = U_ZERO_ERROR;
        ConvUTF16ToUTF8(&t, 16, &length, &s, n, &status);
        if (ok) {
            EXPECT_TRUE(U_SUCCESS(status));
            EXPECT_EQ(std::string(buf, 4), "\xF0\x9F\x98\x80");
        } else {
            EXPECT_EQ(status, U_INVALID_CHAR_FOUND);
            EXPECT_EQ(s, src + 1) << "stops at the unpaired surrogate";
        }
    }
}

TEST(UnicodeHelpers, PackingSwappingAndUpperCase)
{
    EXPECT_EQ(UTF16CharFromUTF8Char(0x41), 0x00410000u);
    EXPECT_EQ(UTF16CharFromUTF8Char(0x1F600), 0xD83DDE00u);
    EXPECT_EQ(UTF16CharFromUTF8Char(0x110000), 0u);
    EXPECT_EQ(UTF8CharFromUTF16Char(0x41), 0x41u);
    EXPECT_EQ(UTF8CharFromUTF16Char(0xE9), 0xC3A90000u);
    EXPECT_EQ(UTF8CharFromUTF16Char(0x20AC), 0xE282AC00u);
    EXPECT_EQ(UTF8CharFromUTF16Char(0x1F600), 0xF09F9880u);

    unsigned short u[] = {0x1234, 0xABCD, 0x00FF};
    uxUCS2Swap(u, u, 3);
    EXPECT_EQ(u[0], 0x3412);
    EXPECT_EQ(u[2], 0xFF00);

    unsigned char text[] = "stra\xC3\x9F" "e \xC3\xA9t\xC3\xA9";
    long n = uxUTF8Upper(text, static_cast<long>(std::strlen(reinterpret_cast<char*>(text))));
    EXPECT_EQ(std::string(reinterpret_cast<char*>(text), static_cast<size_t>(n)), "STRA\xC3\x9F" "E \xC3\x89T\xC3\x89");
    // A capital longer than its small letter: cut at a whole character.
    unsigned char grow[] = "\xC9\x90\xC9\x90";  // U+0250 twice, 2 bytes each; capital U+2C6F takes 3
    n = uxUTF8Upper(grow, 4);
    EXPECT_EQ(n, 3);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(grow), 3), "\xE2\xB1\xAF");

    EXPECT_EQ(uxAsciiLenOfUnicodeStr(reinterpret_cast<const unsigned short*>(u"a\u00E9\u65E5\U0001F600")), 10);
    unsigned short* dup = uxUnicodeDup(reinterpret_cast<const unsigned short*>(u"dup"));
    EXPECT_EQ(uxUnicodeLen(dup), 3);
    std::free(dup);
    EXPECT_EQ(uxMaxCharSize(106), 3);
    EXPECT_EQ(VerifyCodePage(2252), 1);
}

TEST(Reporting, ResultsBecomeErrorsAndWarningsOfTheThread)
{
    ZuErrorList list(nullptr, 1);
    ZuErrorKeeper::setErrorList(&list);
    EXPECT_EQ(checkUXreturn(ZU_CONV_SUCCESS), 0);
    EXPECT_EQ(list.getCount(), 0u);
    const struct { ZuConvertReturn rc; int result; unsigned short number; bool warning; unsigned short state; } cases[] = {
        {ZU_CONV_TRUNCATED, 0, 2735, true, 4},   {ZU_CONV_ILLEGAL_CHAR, 0, 2736, true, 2},
        {ZU_CONV_FAILURE, 1, 2737, false, 60},   {ZU_CONV_INVALID_TABLE, 1, 2738, false, 60},
        {ZU_CONV_FILE_NOT_FOUND, 1, 2739, false, 60}};
    for (const auto& c : cases) {
        EXPECT_EQ(checkUXreturn(c.rc), c.result);
        ZuError* e = list.getLastError();
        ASSERT_NE(e, nullptr);
        EXPECT_EQ(e->getErrorNumber(), c.number);
        EXPECT_EQ(e->isWarning() != 0, c.warning);
        EXPECT_EQ(e->getStateId(), c.state);
    }
    EXPECT_EQ(checkICUreturn(U_BUFFER_OVERFLOW_ERROR), 0);
    EXPECT_EQ(list.getLastError()->getErrorNumber(), 2735);
    EXPECT_EQ(checkICUreturn(U_INVALID_CHAR_FOUND), 1) << "status 10 is a failure when reported directly";
    EXPECT_EQ(list.getLastError()->getErrorNumber(), 2737);
    EXPECT_EQ(mapICUreturn(U_STRING_NOT_TERMINATED_WARNING), ZU_CONV_TRUNCATED);
    EXPECT_EQ(mapICUreturn(U_FILE_ACCESS_ERROR), ZU_CONV_FILE_NOT_FOUND);
    EXPECT_EQ(setConversionReturnLength(ZU_CONV_ILLEGAL_CHAR, 7), 7);
    EXPECT_EQ(setConversionReturnLength(ZU_CONV_FAILURE, 7), 0);
    ZuErrorKeeper::giveUpErrorList();
}
