// LIKE matching (against SQLite's LIKE ... ESCAPE), the tokenizer, and
// hexadecimal text (against xxd).
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "core/errorlist.h"
#include "core/strhex.h"
#include "core/strlike.h"
#include "core/strtoken.h"
#include "platform/ram.h"
#include "platform/ramfault.h"
#include "support/subprocess.h"

namespace {
// The thread's error list for one test.
struct ErrorScope {
    ZuErrorList list{nullptr, 1};
    ErrorScope() { ZuErrorKeeper::setErrorList(&list); }
    ~ErrorScope() { ZuErrorKeeper::giveUpErrorList(); }
    unsigned short last() const { return ZuErrorKeeper::getLastErrorNumber(); }
};

// strLike over exact-size copies, so that any read past a length is caught.
int like(const std::string& text, const std::string& pattern, char escape, int caseFlag, int padFlag = 1,
         zuCPType type = ZU_CP_SBCS)
{
    std::vector<char> t(text.begin(), text.end()), p(pattern.begin(), pattern.end());
    t.shrink_to_fit();
    p.shrink_to_fit();
    return strLike(t.data(), static_cast<long>(t.size()), p.data(), static_cast<long>(p.size()), '%', '_', escape,
                   caseFlag, padFlag, type);
}

struct Sqlite {
    sqlite3* db = nullptr;
    sqlite3_stmt* withEscape = nullptr;
    sqlite3_stmt* plain = nullptr;
    // The pragma redefines LIKE, so it comes before the statements.
    explicit Sqlite(bool caseSensitive)
    {
        sqlite3_open(":memory:", &db);
        sqlite3_exec(db, caseSensitive ? "PRAGMA case_sensitive_like=ON" : "PRAGMA case_sensitive_like=OFF", nullptr,
                     nullptr, nullptr);
        sqlite3_prepare_v2(db, "SELECT ?1 LIKE ?2 ESCAPE '\\'", -1, &withEscape, nullptr);
        sqlite3_prepare_v2(db, "SELECT ?1 LIKE ?2", -1, &plain, nullptr);
    }
    ~Sqlite()
    {
        sqlite3_finalize(withEscape);
        sqlite3_finalize(plain);
        sqlite3_close(db);
    }
    int match(sqlite3_stmt* s, const std::string& text, const std::string& pattern)
    {
        sqlite3_reset(s);
        sqlite3_bind_text(s, 1, text.c_str(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(s, 2, pattern.c_str(), static_cast<int>(pattern.size()), SQLITE_TRANSIENT);
        EXPECT_EQ(sqlite3_step(s), SQLITE_ROW);
        return sqlite3_column_int(s, 0);
    }
};

std::string randomOf(std::mt19937& rng, std::size_t n, const char* alphabet)
{
    const std::size_t k = std::strlen(alphabet);
    std::string s(n, ' ');
    for (auto& c : s)
        c = alphabet[rng() % k];
    return s;
}

std::string token(const char*& text, int flags, long size = 64, zuCPType type = ZU_CP_SBCS)
{
    std::vector<char> buffer(static_cast<std::size_t>(size));
    EXPECT_EQ(buttoken(buffer.data(), &text, flags, size, type), 0);
    return buffer.data();
}

std::vector<std::string> tokens(const char* text, int flags, zuCPType type = ZU_CP_SBCS)
{
    std::vector<std::string> out;
    for (;;) {
        std::string t = token(text, flags, 64, type);
        if (t.empty())
            return out;
        out.push_back(t);
    }
}
}  // namespace

TEST(Like, DescribedCasesAndEdges)
{
    EXPECT_EQ(like("abc", "a%c", 0, 1, 0), 1);
    EXPECT_EQ(like("abc", "a%%c", 0, 1, 0), 1);
    EXPECT_EQ(like("abc", "a_", 0, 1, 0), 0);
    EXPECT_EQ(like("", "", 0, 1), 1);
    EXPECT_EQ(like("", "%%", 0, 1), 1);
    EXPECT_EQ(like("", "_", 0, 1), 0);
    EXPECT_EQ(like("a", "%__", 0, 1), 0);
    EXPECT_EQ(like("ABC", "a%", 0, 1), 0);
    EXPECT_EQ(like("ABC", "a%", 0, 0), 1);  // caseFlag 0 folds
    EXPECT_EQ(like("abc  ", "abc", 0, 1, 0), 1);  // padFlag 0 trims both
    EXPECT_EQ(like("abc  ", "abc", 0, 1, 1), 0);
    EXPECT_EQ(like("a%", "a!%", '!', 1), 1);
    EXPECT_EQ(like("ab", "a!%", '!', 1), 0);
    EXPECT_EQ(like("a!", "a!", '!', 1), 0);  // an escape that ends the pattern matches nothing
    // UTF-8: one mark takes a whole character; a trail byte never matches alone.
    EXPECT_EQ(like("\xc3\xa9", "_", 0, 1, 1, ZU_CP_UTF8), 1);
    EXPECT_EQ(like("\xc3\xa9", "__", 0, 1, 1, ZU_CP_UTF8), 0);
    EXPECT_EQ(like("\xc3\xa9", "__", 0, 1, 1, ZU_CP_SBCS), 1);
    EXPECT_EQ(like("x\xc3\xa9", "%\xa9", 0, 1, 1, ZU_CP_UTF8), 0);
    EXPECT_EQ(isCharEqual("\xc3\xa9", "\xc3\x89", 0, ZU_CP_UTF8), 0);
    EXPECT_EQ(isCharEqual("q", "Q", 0), 1);
    EXPECT_EQ(isCharEqual("q", "Q", 1), 0);
    const unsigned short wt[] = {'a', 0x100, 'c'}, wp[] = {'a', '_', 'C'};
    EXPECT_EQ(strLike(wt, 3, wp, 3, '%', '_', 0, 0, 1, ZU_CP_UTF16), 1);
    EXPECT_EQ(strLike(wt, 3, wp, 3, '%', '_', 0, 1, 1, ZU_CP_UTF16), 0);
}

TEST(Like, AgreesWithSqliteLikeEscape)
{
    Sqlite db(true);
    std::mt19937 rng(11);
    for (int round = 0; round < 20000; ++round) {
        const std::string text = randomOf(rng, rng() % 9, "abA%_\\");
        const std::string pattern = randomOf(rng, rng() % 8, "abA%_\\");
        ASSERT_EQ(like(text, pattern, '\\', 1), db.match(db.withEscape, text, pattern))
            << "'" << text << "' LIKE '" << pattern << "'";
    }
    // Case folded and no escape: SQLite's default LIKE folds ASCII letters.
    Sqlite folding(false);
    for (int round = 0; round < 20000; ++round) {
        const std::string text = randomOf(rng, rng() % 9, "abAB");
        const std::string pattern = randomOf(rng, rng() % 8, "aAbB%_");
        ASSERT_EQ(like(text, pattern, 0, 0), folding.match(folding.plain, text, pattern))
            << "'" << text << "' LIKE '" << pattern << "'";
    }
}

TEST(Token, ModesDecideWhatAWordHolds)
{
    const char* t = "a.b";
    EXPECT_EQ(token(t, 3), "A.B");
    t = "a.b";
    EXPECT_EQ(token(t, 2), "A");
    EXPECT_STREQ(t, ".b");
    EXPECT_EQ(tokens(".x.y z", 3), (std::vector<std::string>{".X", ".Y", "Z"}));
    EXPECT_EQ(tokens("#tmp$1 a\\-b", 2), (std::vector<std::string>{"#TMP$1", "A\\-B"}));
    EXPECT_EQ(tokens("#tmp", 5), (std::vector<std::string>{"#", "TMP"}));
    EXPECT_EQ(tokens(":host.var 12:3", 4), (std::vector<std::string>{":HOST.VAR", "12:3"}));
    EXPECT_EQ(tokens("abc,d(e)|f g", 1), (std::vector<std::string>{"ABC", ",", "D", "(", "E", ")", "|", "F", "G"}));
    EXPECT_EQ(tokens("`a,b` c", 1), (std::vector<std::string>{"`A,B`", "C"}));
    EXPECT_EQ(tokens("MiXed", 2 | ZU_TOKEN_KEEP_CASE), (std::vector<std::string>{"MiXed"}));
}

TEST(Token, QuotesNumbersOperatorsAndBraces)
{
    EXPECT_EQ(tokens("'it''s' \"Q\"", 2), (std::vector<std::string>{"'it's'", "\"Q\""}));
    EXPECT_EQ(tokens("12.5x .5 1.a", 2), (std::vector<std::string>{"12.5", "X", ".5", "1.", "A"}));
    EXPECT_EQ(tokens("1.a", 3), (std::vector<std::string>{"1", ".A"}));
    EXPECT_EQ(tokens("a<=b<>c!=d||e*=f(+)", 2),
              (std::vector<std::string>{"A", "<=", "B", "<>", "C", "!=", "D", "||", "E", "*=", "F", "(+)"}));
    EXPECT_EQ(tokens("{fn now()} ?p1 ? x", 2), (std::vector<std::string>{"{fn now()}", "?p1", "?", "X"}));
    EXPECT_EQ(tokens("  \t ", 2), std::vector<std::string>{});
    // A UTF-8 lead byte starts a word of its own kind and takes its trail bytes.
    EXPECT_EQ(tokens("\xc3\xa9t\xc3\xa9,x", 2, ZU_CP_UTF8), (std::vector<std::string>{"\xc3\xa9T\xc3\xa9", ",", "X"}));
}

TEST(Token, UnclosedAndTooLongTokens)
{
    ErrorScope errors;
    char buffer[32];
    const char* t = "'open";
    EXPECT_EQ(buttoken(buffer, &t, 2, 32, ZU_CP_SBCS), 1);
    EXPECT_EQ(errors.last(), ZU_MSG_TOKEN_UNCLOSED);
    t = "{open";
    EXPECT_EQ(buttoken(buffer, &t, 2, 32, ZU_CP_SBCS), 1);

    std::vector<char> small(4);  // exact size: room for 3 and the NUL
    t = "abc";
    EXPECT_EQ(buttoken(small.data(), &t, 2, 4, ZU_CP_SBCS), 0);
    EXPECT_STREQ(small.data(), "ABC");
    t = "abcdef";
    EXPECT_EQ(buttoken(small.data(), &t, 2, 4, ZU_CP_SBCS), 1);
    EXPECT_EQ(errors.last(), ZU_MSG_TOKEN_TOO_LONG);
    t = "abcdef";
    EXPECT_EQ(buttoken(small.data(), &t, 2 | ZU_TOKEN_CUT, 4, ZU_CP_SBCS), 0);
    EXPECT_STREQ(small.data(), "ABC");
    EXPECT_STREQ(t, "def");
    t = "abcdef";
    EXPECT_EQ(buttoken(small.data(), &t, 6, 4, ZU_CP_SBCS), 0);  // modes 4 and 6 cut silently
    EXPECT_STREQ(small.data(), "ABC");

    std::vector<char> grow(16);
    t = "abcdefghijklmnopqrstuvwxyz rest";
    EXPECT_EQ(buttoken(grow.data(), &t, 2 | ZU_TOKEN_GROW, 16, ZU_CP_SBCS), 0);
    EXPECT_EQ(grow[0], 'A');
    EXPECT_EQ(grow[1], 0);
    char* block = nullptr;
    std::memcpy(&block, grow.data() + 2, sizeof block);
    EXPECT_STREQ(block, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    EXPECT_STREQ(t, " rest");
    ramFreeC(block);
#ifdef HNSYB_FAULT_INJECTION
    t = "abcdefghijklmnopqrstuvwxyz";
    ramFaultFailNth(1);
    EXPECT_EQ(buttoken(grow.data(), &t, 2 | ZU_TOKEN_GROW, 16, ZU_CP_SBCS), 1);
    ramFaultFailNth(0);
#endif
    // A lead byte needs room for both of its bytes.
    t = "ab\xc3\xa9";
    EXPECT_EQ(buttoken(small.data(), &t, 2 | ZU_TOKEN_CUT, 4, ZU_CP_UTF8), 0);
    EXPECT_STREQ(small.data(), "AB");
}

TEST(Token, SixteenBitTwin)
{
    const unsigned short text[] = {'a', 'b', ' ', '<', '=', ' ', '\'', 'x', '\'', 0};
    const unsigned short* t = text;
    unsigned short tok[8];
    ASSERT_EQ(buttoken(tok, &t, 2, 8), 0);
    EXPECT_EQ(tok[0], 'A');
    EXPECT_EQ(tok[2], 0);
    ASSERT_EQ(buttoken(tok, &t, 2, 8), 0);
    EXPECT_EQ(tok[1], '=');
    ASSERT_EQ(buttoken(tok, &t, 2, 8), 0);
    EXPECT_EQ(tok[1], 'x');
    EXPECT_EQ(tok[3], 0);
}

TEST(Hex, NumbersAndEdgeCases)
{
    char out[80];
    EXPECT_EQ(hexify(out, 255, 4), 4);
    EXPECT_STREQ(out, "00FF");
    EXPECT_EQ(hexify(out, 0, 0), 1);
    EXPECT_STREQ(out, "0");
    EXPECT_EQ(hexify(out, 0xDEADBEEFCAFEull, 2), 12);
    EXPECT_STREQ(out, "DEADBEEFCAFE");
    // In place: the digits grow from the end over the bytes.
    char same[9] = {'\x01', '\xAB', '\x7F', '\xFF'};
    EXPECT_EQ(hexify(same, reinterpret_cast<unsigned char*>(same), 4), 8);
    EXPECT_STREQ(same, "01AB7FFF");
    unsigned short wide[5];
    const unsigned char two[] = {0x0A, 0xF0};
    EXPECT_EQ(wideHexify(wide, two, 2), 4);
    EXPECT_EQ(wide[0], '0');
    EXPECT_EQ(wide[3], '0');
    EXPECT_EQ(wide[4], 0);
    unsigned char bytes[4] = {};
    EXPECT_EQ(dehexify(bytes, "aBc", 3), 0);  // odd: the last digit fills a high half
    EXPECT_EQ(bytes[0], 0xAB);
    EXPECT_EQ(bytes[1], 0xC0);
    const unsigned short wdigits[] = {'f', 'F'};
    EXPECT_EQ(wideDehexify(bytes, wdigits, 2), 0);
    EXPECT_EQ(bytes[0], 0xFF);
    ErrorScope errors;
    EXPECT_EQ(dehexify(bytes, "1G", 2), 1);
    EXPECT_EQ(errors.last(), ZU_MSG_BAD_HEX_DIGIT);
    unsigned char doubled[16];
    long length = -1;
    EXPECT_EQ(dehexify(doubled, "27412727", 8, 0x27, &length), 0);
    EXPECT_EQ(doubled[0], 0x27);
    EXPECT_EQ(doubled[1], 0x27);
    EXPECT_EQ(doubled[2], 0x41);
    EXPECT_EQ(length, 7 / 4);  // seven bytes written, reported as a quarter
    EXPECT_EQ(isHexString("09afAF", 6), 1);
    EXPECT_EQ(isHexString("09ag", 4), 0);
    EXPECT_EQ(isHexString("", 0), 1);
}

TEST(Hex, AgreesWithXxd)
{
    std::mt19937 rng(12);
    char path[] = "/tmp/zu-hex-XXXXXX";
    const int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    for (int round = 0; round < 20; ++round) {
        std::string data(rng() % 400 + 1, '\0');
        for (auto& c : data)
            c = static_cast<char>(rng());
        std::ofstream(path, std::ios::binary).write(data.data(), static_cast<std::streamsize>(data.size()));
        RunResult upper = runProgram({"xxd", "-p", "-u", path});
        RunResult lower = runProgram({"xxd", "-p", path});
        ASSERT_EQ(upper.exitCode, 0) << upper.output;
        std::string expected, lowerDigits;
        for (char c : upper.output)
            if (c != '\n')
                expected += c;
        for (char c : lower.output)
            if (c != '\n')
                lowerDigits += c;
        std::vector<char> out(2 * data.size() + 1);
        std::vector<unsigned char> source(data.begin(), data.end());
        EXPECT_EQ(hexify(out.data(), source.data(), static_cast<long>(source.size())), static_cast<long>(expected.size()));
        EXPECT_EQ(std::string(out.data()), expected);
        std::vector<char> huge(2 * data.size() + 1);
        hexifyHuge(huge.data(), source.data(), source.size());
        EXPECT_EQ(std::string(huge.data()), expected);
        std::vector<unsigned char> back(data.size());
        ASSERT_EQ(dehexify(back.data(), lowerDigits.data(), static_cast<long>(lowerDigits.size())), 0);
        EXPECT_EQ(std::string(back.begin(), back.end()), data);
        ASSERT_EQ(dehexifyHuge(back.data(), expected.data(), expected.size()), 0);
        EXPECT_EQ(std::string(back.begin(), back.end()), data);
    }
    unlink(path);
}
