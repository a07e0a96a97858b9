// String classes: views, exact growth, borrowed buffers, replacement,
// numbered parameters, and the wide twin's conversions.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "core/array.h"
#include "core/errorlist.h"
#include "core/paramstring.h"
#include "core/replacestring.h"
#include "core/substringupper.h"
#include "platform/ramfault.h"

namespace {
class Strings : public ::testing::Test {
protected:
    void SetUp() override { ZuErrorKeeper::setErrorList(&errors); }
    void TearDown() override
    {
        ramFaultFailNth(0);
        ZuErrorKeeper::giveUpErrorList();
    }
    static std::string text(const ZuSubString& s) { return std::string(s.getData(), s.getLength()); }
    ZuErrorList errors{nullptr, 1};
};
const unsigned short* w(const char16_t* s) { return reinterpret_cast<const unsigned short*>(s); }
}  // namespace

TEST_F(Strings, ViewsCompareCaseBlindAndHashByTheirFirstBytes)
{
    ZuSubString a("Key"), b("kEY"), c("keys");
    EXPECT_EQ(a.compare(&b), 0);
    EXPECT_EQ(a.hash(), b.hash());
    EXPECT_LT(a.compare(&c), 0);
    ZuSubString longA("ABCDExyz"), longB("abcdeQQQ");
    EXPECT_EQ(longA.hash(), longB.hash()) << "only the first 5 bytes count";
    ZuSubStringW wa(w(u"Name")), wb(w(u"nAME"));
    EXPECT_EQ(wa.compare(&wb), 0);
    EXPECT_EQ(wa.hash(), wb.hash());

    // Searching steps by characters: a trail byte is never a match.
    ZuSubString utf8("x\xC3\xA9y", ZU_CP_UTF8);
    EXPECT_EQ(utf8.findChar('\xA9'), utf8.getLength());
    EXPECT_EQ(utf8.findChar('y'), 3u);
    EXPECT_EQ(utf8.findSubString("\xA9y"), utf8.getLength());
    EXPECT_EQ(utf8.findSubString("\xC3\xA9"), 1u);
    ZuSubString padded("abc  \t");
    padded.rightBlankTrim();
    EXPECT_EQ(padded.getLength(), 3u);
    const char* table[] = {"alpha", "BETA", "gamma"};
    EXPECT_EQ(ZuSubString("beta").indexInSet(table, 3), 3u);
    EXPECT_EQ(ZuSubString("beta").indexInSetCi(table, 3), 1u);
}

TEST_F(Strings, GrowthIsExactAndBorrowedBuffersNeverGrow)
{
    ZuString s;
    ASSERT_EQ(s.initialize("ab"), 0);
    EXPECT_EQ(s.getCapacity(), 3u);
    ASSERT_EQ(s.concat('c'), 0);
    EXPECT_EQ(s.getCapacity(), 4u) << "length + 2, no growth factor";
    ASSERT_EQ(s.concat(12345ul), 0);
    ASSERT_EQ(s.concat(-7l), 0);
    EXPECT_EQ(text(s), "abc12345-7");

    char buffer[8] = "xy";
    ZuString borrowed;
    borrowed.initializeWithBuffer(buffer, sizeof buffer, 2);
    ASSERT_EQ(borrowed.concat("1234"), 0) << "room enough";
    EXPECT_EQ(text(borrowed), "xy1234");
    EXPECT_EQ(borrowed.concat("toolong"), 1);
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), ZU_MSG_STRING_BORROWED);
    EXPECT_EQ(text(borrowed), "xy1234") << "the text is left alone";
    EXPECT_EQ(borrowed.getData(), buffer);

    // A failed allocation leaves the string as it was.
    ZuString t;
    ASSERT_EQ(t.initialize("keep"), 0);
    ramFaultFailNth(1);
    EXPECT_EQ(t.concat("more text"), 1);
    EXPECT_EQ(text(t), "keep");
    EXPECT_TRUE(errors.isMemoryErrorPending());
}

TEST_F(Strings, ReplacementDoesNotRescanAndNullDeletes)
{
    ZuString s;
    ASSERT_EQ(s.initialize("aaa"), 0);
    ASSERT_EQ(s.replaceSubString("a", "aa"), 0);
    EXPECT_EQ(text(s), "aaaaaa");
    EXPECT_EQ(s.getData()[6], 0);
    ASSERT_EQ(s.initialize("one, two, three"), 0);
    ASSERT_EQ(s.replaceSubString(", ", nullptr), 0);
    EXPECT_EQ(text(s), "onetwothree");

    // A stretch replaced by text taken from the string itself, while growing.
    ASSERT_EQ(s.initialize("[mid]"), 0);
    ASSERT_EQ(s.changeBytes(1, 3, s.getData(), 5), 0);
    EXPECT_EQ(text(s), "[[mid]]");
    ZuSubString view(s.getData() + 2, 3);
    ASSERT_EQ(s.replaceSubString(view, "X", 1), 0);
    EXPECT_EQ(text(s), "[[X]]");
    ASSERT_EQ(s.forceEol(2), 0);
    ASSERT_EQ(s.forceEol(1), 0);
    EXPECT_EQ(text(s), "[[X]]\n\n");

    ZuArray lines;
    ZuString multi;
    ASSERT_EQ(multi.initialize("first\n\nsecond\nthird"), 0);
    ASSERT_EQ(multi.getLines(&lines), 0);
    ASSERT_EQ(lines.getCount(), 3u) << "empty lines are dropped";
    EXPECT_EQ(text(*static_cast<ZuString*>(lines.at(2))), "third");
    lines.deleteContents();
}

TEST_F(Strings, NumberedParametersFillEveryOccurrence)
{
    ZuParamString m;
    ASSERT_EQ(m.initialize("%s1 <%d2> %s1 %s4"), 0);
    m << "file" << 42ul << "unused" << "last";
    EXPECT_EQ(text(m), "file <42> file last");

    ZuParamString ten;
    ASSERT_EQ(ten.initialize("%sx10|%s1"), 0);
    for (int i = 1; i <= 10; ++i)
        ten << std::to_string(i).c_str();
    EXPECT_EQ(text(ten), "10|1") << "from the tenth on the placeholder carries an x";

    ZuParamString failing;
    ASSERT_EQ(failing.initialize("%s1 %s2"), 0);
    ramFaultFailNth(1);
    failing << "a much longer parameter than the message";
    EXPECT_TRUE(failing.hasFailed());
    failing << "b";
    EXPECT_EQ(text(failing), "%s1 %s2") << "nothing after the failure";

    ZuParamStringW wm;
    ASSERT_EQ(wm.initialize(w(u"[%s1] %d2")), 0);
    wm << w(u"\u00E9t\u00E9") << -3l;
    EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t*>(wm.getData()), wm.getLength()), u"[\u00E9t\u00E9] -3");
    ZuParamString quoted;
    ASSERT_EQ(quoted.initialize("name %s1"), 0);
    quoted.setQuotedParam("it's", '\'');
    EXPECT_EQ(text(quoted), "name 'it''s'");
}

TEST_F(Strings, WideStringsFromNarrowText)
{
    ZuStringW s;
    ASSERT_EQ(s.initialize("\xC3\xA9\xC3\xA8", 4, ZU_CP_UTF8), 0);
    EXPECT_EQ(s.getLength(), 4u) << "the byte count, as users of these strings expect";
    EXPECT_EQ(s.getData()[0], 0xE9);
    EXPECT_EQ(s.getData()[1], 0xE8);
    EXPECT_EQ(s.getData()[2], 0);
    EXPECT_EQ(s.initialize("\xC3", 1, ZU_CP_UTF8), 1);
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), 2737);

    ZuStringW latin;
    ASSERT_EQ(latin.initialize("caf\xE9", 4, 4L), 0);
    EXPECT_EQ(latin.getLength(), 4u);
    EXPECT_EQ(latin.getData()[3], 0xE9);
    EXPECT_STREQ(latin.asCStr(ZU_CP_UTF8), "caf\xC3\xA9");
    ASSERT_EQ(latin.concat("!?", 2), 0);
    EXPECT_STREQ(latin.asCStr(ZU_CP_UTF8), "caf\xC3\xA9!?");

    ZuStringW units;
    ASSERT_EQ(units.initialize("a\0b\0", 2, ZU_CP_UTF16), 0);
    EXPECT_EQ(units.getLength(), 2u);
}

TEST_F(Strings, CleanUpsWorkOutsideQuotesOnly)
{
    ZuString s;
    ASSERT_EQ(s.initialize("a\t\tb 'c\td'\t"), 0);
    ASSERT_EQ(s.removeTabs('\'', 0, 0), 0);
    EXPECT_EQ(text(s), "a b 'c\td'") << "a run becomes one blank, a run at the end vanishes";
    ASSERT_EQ(s.initialize("x\r\ny\n\n"), 0);
    ASSERT_EQ(s.removeLineFeeds(0, 0, 0), 0);
    EXPECT_EQ(text(s), "x y");
    ASSERT_EQ(s.initialize("no breaks"), 0);
    const char* before = s.getData();
    ASSERT_EQ(s.removeLineBreaks(0, 0, 0), 0);
    EXPECT_EQ(s.getData(), before) << "untouched";

    const std::string unbroken(200, 'w');
    ASSERT_EQ(s.initialize(unbroken.c_str()), 0);
    ASSERT_EQ(s.insertLineBreaks(10, 0, 0, 0), 0);
    EXPECT_EQ(text(s), unbroken) << "a line without a blank is not cut";
    ASSERT_EQ(s.initialize("aaaa bbbb 'c c c c' dddd"), 0);
    ASSERT_EQ(s.insertLineBreaks(8, '\'', 0, 0), 0);
    EXPECT_EQ(text(s), "aaaa\nbbbb\n'c c c c'\ndddd");

    ASSERT_EQ(s.initialize("select 1 -- note\nfrom /* x */t /* open"), 0);
    ASSERT_EQ(s.removeComments(), 0);
    EXPECT_EQ(text(s), "select 1 \nfrom ") << "an unclosed /* cuts the text two bytes before it";

    ASSERT_EQ(s.initialize("it's"), 0);
    ASSERT_EQ(s.addQuotes('\''), 0);
    EXPECT_EQ(text(s), "'it''s'");
    ASSERT_EQ(s.removeQuotes(), 0);
    EXPECT_EQ(text(s), "it's");
    ASSERT_EQ(s.initialize("'a'b'"), 0);
    ASSERT_EQ(s.removeQuotes(), 0);
    EXPECT_EQ(text(s), "'a'b'") << "not well quoted: left alone";
}

TEST_F(Strings, RewritingThroughAGapGrowsAndClosesIt)
{
    ZuString target;
    ASSERT_EQ(target.initialize("a,b,c"), 0);
    {
        ZuReplaceString r(&target);
        while (r.getLength() > 0) {
            const char c = r.getData()[0];
            r.consume(1);
            if (c == ',') {
                ASSERT_EQ(r.concat("<comma>", 7), 0);
            } else {
                // The text written comes from the unread part of the target itself.
                ASSERT_EQ(r.concat(r.getData() - 1, 1), 0);
            }
        }
        ASSERT_EQ(r.addQuotedBytes("q'", 2, '\''), 0);
    }
    EXPECT_EQ(text(target), "a<comma>b<comma>c'q'''");
    EXPECT_EQ(target.getData()[target.getLength()], 0);
    EXPECT_EQ(target.getCapacity(), target.getLength() + 1) << "the gap is given back";
}

TEST_F(Strings, KeywordComparisonUpperCasesTheViewOnce)
{
    ZuSubString token("Select");
    ZuSubStringUpper upper(&token);
    EXPECT_EQ(upper.isEqualUpper("INSERT", 6), 0);
    EXPECT_EQ(upper.isEqualUpper("SELECT", 6), 1);
    EXPECT_EQ(upper.isEqualUpper("SELECTS", 7), 0);
    const std::string longWord(30, 'k');
    const std::string longUpper(30, 'K');
    ZuSubString big(longWord.c_str());
    ZuSubStringUpper bigUpper(&big);
    EXPECT_EQ(bigUpper.isEqualUpper(longUpper.c_str(), 30), 1) << "longer than the buffer: compared case-blind";

    ZuSubStringW wtoken(w(u"from"));
    ZuSubStringUpperW wupper(&wtoken);
    EXPECT_EQ(wupper.isEqualUpper(w(u"FROM"), 4), 1);
    EXPECT_LT(wupper.compareUpper(w(u"GROUP"), 5), 0);
    EXPECT_EQ(wupper.getFirstChar(), 'F');
    ZuSubStringW empty;
    EXPECT_EQ(ZuSubStringUpperW(&empty).getFirstChar(), 0);
}
