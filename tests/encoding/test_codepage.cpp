// Code page tables, the module's profile reader, and the application code
// page.  The module reads its profile copies once, when the library is
// loaded, so every case that needs particular files runs in a child of this
// program (CodePageChild.AnswersQueries) started with ODBCINI, ODBCINST and
// HOME pointing into a scratch folder; the child prints one answer a query.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "core/errorlist.h"
#include "encoding/codepage.h"
#include "platform/ramfault.h"
#include "support/subprocess.h"

namespace {
const unsigned short* u16(const std::u16string& s) { return reinterpret_cast<const unsigned short*>(s.data()); }

struct Read {
    int length;
    std::string value;  // the buffer up to the returned length
};

// Reads from an exact heap copy of `text` (no terminator), so that a read
// past textSize is a sanitizer report; checks nothing is written past `size`.
Read readProfile(const std::string& text, const char* section, const char* entry, int size = 64,
                 const char* defaultValue = "dflt", long textSize = -1)
{
    std::unique_ptr<char[]> copy(new char[text.size()]);
    std::memcpy(copy.get(), text.data(), text.size());
    std::vector<char> buffer(static_cast<size_t>(size) + 8, '#');
    int n = ucnvNWGetProfileString(copy.get(), textSize < 0 ? static_cast<long>(text.size()) : textSize, section,
                                   entry, defaultValue, buffer.data(), size);
    EXPECT_TRUE(std::all_of(buffer.begin() + size, buffer.end(), [](char c) { return c == '#'; }));
    EXPECT_TRUE(n >= 0 && n <= size);
    return {n, std::string(buffer.data(), static_cast<size_t>(std::max(n, 0)))};
}
}  // namespace

// The row counts and the order are checked where the tables are defined, at
// compile time; here every search must find every row of its own table.
TEST(CodePageTables, EverySearchFindsEveryRowAndTheNameTableInvertsTheNumberTable)
{
    for (const auto& row : IANAtoICUTable) {
        EXPECT_EQ(ucnvMapToName(row.id, IANAtoICUTable, 341), row.name) << row.id;
        // Inverted, but for the null name, ibm-1388, ibm-1025 renamed and 1015.
        long back = ucnvMapToID(row.name, ICUtoIANATable, 338);
        if (row.name == nullptr || std::strcmp(row.name, "ibm-1388") == 0 || std::strcmp(row.name, "ibm-1025") == 0)
            EXPECT_EQ(back, ZU_CP_ICU_DEFAULT) << row.id;
        else
            EXPECT_EQ(back, row.id == ZU_CP_UTF16_ANY ? ZU_CP_UTF16BE : row.id) << row.name;
    }
    for (const auto& row : ICUtoIANATable) {
        EXPECT_EQ(ucnvMapToID(row.name, ICUtoIANATable, 338), row.id) << row.name;
        const char* forth = ucnvIANAidToICUname(row.id);
        EXPECT_STREQ(row.id == 2000001025 ? "ibm-1025_P100-1995" : forth, row.name);
    }
    for (const auto& row : IANAtoICUTableExport)
        EXPECT_EQ(ucnvMapToName(row.id, IANAtoICUTableExport, 78), row.name) << row.id;
    for (const auto& row : DocumentedICUtoIANATable)
        EXPECT_EQ(ucnvMapToID(row.name, DocumentedICUtoIANATable, 81), row.id) << row.name;
    for (const auto& row : UnilibToIANATable)
        EXPECT_EQ(ucnvUnilibToIANA(row.from), row.to) << row.from;
    for (const auto& row : WindowsToIANATable)
        EXPECT_EQ(ucnvWindowsToIANA(row.from), row.to) << row.from;
}

TEST(CodePageLookups, NumbersNamesAndOlderNumberings)
{
    for (long none : {107L, 108L, 0L, -1L, 115L, ZU_CP_ICU_DEFAULT, ZU_CP_NONE})
        EXPECT_EQ(ucnvIANAidToICUname(none), nullptr) << none;
    EXPECT_STREQ(ucnvIANAidToICUname(ZU_CP_UTF16_ANY), "UTF-16BE");
    EXPECT_STREQ(ucnvIANAidToICUnameExport(4), "iso-8859-1");
    EXPECT_STREQ(ucnvIANAidToICUnameExport(2016), "cp838");  // no documented name: the ICU one
    EXPECT_EQ(ucnvIANAidToICUnameExport(ZU_CP_ICU_DEFAULT), nullptr);
    struct { const char* name; long number; } names[] = {
        {"utf-8", 106}, {"UTF-8", 106}, {"uTf-8", 106}, {"x", ZU_CP_ICU_DEFAULT}, {"", ZU_CP_ICU_DEFAULT},
        {nullptr, ZU_CP_ICU_DEFAULT}, {"IBM-5035", 2000000939}, {"ibm-939", 2000000939}, {"GB_1988-80", 56},
        {"gbk", 113}, {"UTF-16BE", ZU_CP_UTF16BE}, {"ibm-1025", ZU_CP_ICU_DEFAULT}, {"IBM-1025_p100-1995", 2000001025},
        {"ibm-1388", ZU_CP_ICU_DEFAULT}};
    for (const auto& n : names)
        EXPECT_EQ(ucnvICUnameToIANAid(n.name), n.number) << (n.name ? n.name : "(null)");
    EXPECT_EQ(ucnvUnilibToIANA(8), ZU_CP_NONE);
    EXPECT_EQ(ucnvWindowsToIANA(0), ZU_CP_NONE);
    EXPECT_EQ(ucnvMapToName(4, nullptr, 341), nullptr);
    EXPECT_EQ(ucnvMapToID("UTF-8", DocumentedICUtoIANATable, 0), ZU_CP_ICU_DEFAULT);
}

TEST(ProfileReader, ReadsValuesWithItsOwnRulesAndStaysInBounds)
{
    const std::string sect = "[other]\nk=wrong\n[Sect]\n; k=c\n  K =spaced\nkey=1\nx= =b\nempty=\nv=a[b\nlast=2\n";
    const std::string even = "[ab]\r\nk=v\r\n\r\nm=w\r\n";  // CR at distance 4 from '['
    const std::string odd = "[abc]\r\nk=v\r\n\r\nm=w\r\n";  // CR at 5 is stepped over, LF at 6 seen
    struct { std::string text; const char* section; const char* entry; int size; long textSize; std::string value; }
    cases[] = {
        {sect, "sect", "KEY", 64, -1, "1"}, {sect, "Sect", "k", 64, -1, "dflt"}, {sect, "Sect", "k ", 64, -1, "spaced"},
        {sect, "Sect", "x", 64, -1, "b"}, {sect, "Sect", "last", 64, -1, "2"}, {sect, "Sect", "empty", 64, -1, "dflt"},
        {sect, "Sect", "none", 64, -1, "dflt"}, {sect, "Sect ", "key", 64, -1, "dflt"}, {sect, nullptr, "key", 64, -1, "dflt"},
        {"x[s]\nk=1", "s", "k", 64, -1, "dflt"}, {"[a]\n  [b]\nk=1\n", "a", "k", 64, -1, "dflt"},
        {even, "ab", "k", 64, -1, "v"}, {even, "ab", "m", 64, -1, "w"},
        {odd, "abc", "k", 64, -1, "v\r"}, {odd, "abc", "m", 64, -1, "dflt"},  // "\r\nm" runs into one name
        {"[s]\nk=abcdef", "s", "k", 7, -1, "abcdef"}, {"[s]\nk=abcdef", "s", "k", 6, -1, "abcde"},
        {"[s]\nk=abcdef", "s", "k", 1, -1, ""}, {"[s]\nk=abcdef", "s", "k", 0, -1, ""}, {"[s]", "s", "k", 3, -1, "df"},
        {"[abc]", "abc", "k", 64, -1, "dflt"}, {"[s]\nk", "s", "k", 64, -1, "dflt"},
        {"[s]\nk=value", "s", "k", 64, 8, "va"}, {std::string("[s]\nk=1\n\0[t]\nm=2\n", 18), "t", "m", 64, -1, "dflt"},
        // The name's length counts modulo 65,536: a 65,537-byte name "kx..." is "k".
        {"[s]\nk" + std::string(65536, 'x') + "=long\n", "s", "k", 64, -1, "long"}};
    for (size_t i = 0; i < std::size(cases); ++i) {
        const auto& c = cases[i];
        Read r = readProfile(c.text, c.section, c.entry, c.size, "dflt", c.textSize);
        EXPECT_EQ(r.value, c.value) << "case " << i;
        EXPECT_EQ(r.length, static_cast<int>(c.value.size())) << "case " << i;
    }
    EXPECT_EQ(ucnvNWGetProfileString("[s]\nk=1\n", 8, "s", "k", "d", nullptr, 10), 0);
}

TEST(ProfileReader, NullEntryListsTheNamesOfTheSection)
{
    const std::string text = "[s]\n  a=1\n;c=2\nb =2\nnoeq\nc=3\n[t]\nx=1\n";
    Read all = readProfile(text, "s", nullptr);
    EXPECT_EQ(all.length, 12);
    EXPECT_EQ(all.value, std::string("a\0b \0noeqc\0\0", 12));
    EXPECT_EQ(readProfile(text, "s", nullptr, 4).value, std::string("a\0b\0", 4));
    EXPECT_EQ(readProfile("[s]\n[t]\nx=1\n", "s", nullptr).value, "dflt");  // an empty section
}

TEST(ConnectionString, IanaKeysWinAndStopWhileOlderNumbersAreMapped)
{
    struct { std::u16string text; long number; } cases[] = {
        {u"IACP=2252;ACP=1", 2252}, {u"ACP=1;IACP=2252", 2252}, {u"ACP=1", 4}, {u"AppCodePage=5", 2027},
        {u"IANAAppCodePage=2250;IACP=1", 2250}, {u" \t iacp = 2251 ; x", 2251}, {u"\u3000IACP=7", 7},
        {u"ACP=999", ZU_CP_NONE}, {u"ACP=1;ACP=999", ZU_CP_NONE}, {u"IACP=-12", -12}, {u"IACP=;ACP=1", 0},
        {u"IACPX=5;ACP=1", 4}, {u"UID=a;PWD=b", ZU_CP_NONE}, {u"", ZU_CP_NONE}, {u"\U0001F600IACP=5", ZU_CP_NONE},
        {u"IA\xD800" u"CP=5;ACP=1", 4}};
    for (const auto& c : cases) {
        EXPECT_EQ(ucnvUnicodeIANAAppCodePage(u16(c.text), static_cast<long>(c.text.size()), nullptr), c.number);
        std::string narrow(c.text.begin(), c.text.end());
        if (std::all_of(c.text.begin(), c.text.end(), [](char16_t ch) { return ch < 0x80; })) {
            EXPECT_EQ(ucnvAnsiIANAAppCodePage(narrow.c_str(), static_cast<long>(narrow.size()), nullptr), c.number)
                << narrow;
        }
    }
    EXPECT_EQ(ucnvUnicodeIANAAppCodePage(u16(u"IACP=2252"), 7, nullptr), 22);
    EXPECT_EQ(ucnvUnicodeIANAAppCodePage(u16(u"IACP=2252"), -1, nullptr), 2252);
    EXPECT_EQ(ucnvAnsiIANAAppCodePage("IACP=2252", 6, nullptr), 2);
    EXPECT_EQ(ucnvAnsiIANAAppCodePage(nullptr, 5, nullptr), ZU_CP_NONE);
}

TEST(ConnectionString, DsnIsTheFirstOneUpToItsSemicolon)
{
    struct { std::u16string text; const char16_t* dsn; long number; } cases[] = {
        {u"DSN=a;DSN=b", u"a", ZU_CP_NONE}, {u"dsn = my dsn ;ACP=1", u"my dsn ", 4},
        {u"IACP=5;DSN=a", nullptr, 5}, {u"DSNX=a;Dsn=b", u"b", ZU_CP_NONE}, {u"DSN=", u"", ZU_CP_NONE}};
    for (const auto& c : cases) {
        unsigned short stale = 0;
        unsigned short* dsn = &stale;  // the call starts it at null
        EXPECT_EQ(ucnvUnicodeIANAAppCodePage(u16(c.text), static_cast<long>(c.text.size()), &dsn), c.number);
        ASSERT_NE(dsn, &stale);
        EXPECT_EQ(dsn ? std::u16string(reinterpret_cast<char16_t*>(dsn)) : u"(null)", c.dsn ? c.dsn : u"(null)");
        ucnv_free(dsn);
    }
    char* dsn = nullptr;
    EXPECT_EQ(ucnvAnsiIANAAppCodePage("DRIVER={x};DSN=abc;ACP=5", -1, &dsn), 2027);
    EXPECT_STREQ(dsn, "abc");
    ucnv_free(dsn);
}

TEST(ConnectionString, PrefixCompareAndNumberReading)
{
    std::u16string t = u"aCp=1";
    EXPECT_EQ(ucnvEquals(u16(t), u16(t) + t.size(), "ACP", "acp"), 1);
    EXPECT_EQ(ucnvEquals(u16(t), u16(t) + 2, "ACP", "acp"), 0);  // the end comes first
    struct { std::u16string text; long number; size_t stop; } numbers[] = {
        {u" = 12x", 12, 5}, {u"=\t-7;8", -7, 4}, {u"x=1", ZU_CP_NONE, 0}, {u"  ;", ZU_CP_NONE, 2}, {u"=", 0, 1},
        {u"=-", 0, 2}, {u"=4\xD83D\xDE00", 4, 2}, {u"=\u0661\u0662", 12, 3}};  // decimal digits of any script
    for (const auto& n : numbers) {
        const unsigned short* p = u16(n.text);
        EXPECT_EQ(ucnvGetNumericValue(&p, u16(n.text) + n.text.size()), n.number);
        EXPECT_EQ(static_cast<size_t>(p - u16(n.text)), n.stop);
    }
}

TEST(ConnectionString, FailedAllocationsGiveNoNumberOrNoDsn)
{
    ZuErrorList list(nullptr, 1);
    ZuErrorKeeper::setErrorList(&list);
    char* dsn = nullptr;
    ramFaultFailNth(1);  // the UTF-16 copy of the string
    EXPECT_EQ(ucnvAnsiIANAAppCodePage("DSN=abc;ACP=1", -1, &dsn), ZU_CP_NONE);
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), ZU_MEMORY_ERROR_NUMBER);
    ramFaultFailNth(2);  // the 16-bit DSN: parsing goes on without it
    EXPECT_EQ(ucnvAnsiIANAAppCodePage("DSN=abc;ACP=1", -1, &dsn), 4);
    EXPECT_EQ(dsn, nullptr);
    ramFaultFailNth(3);  // the 8-bit DSN
    EXPECT_EQ(ucnvAnsiIANAAppCodePage("DSN=abc;ACP=1", -1, &dsn), ZU_CP_NONE);
    EXPECT_EQ(dsn, nullptr);
    EXPECT_FALSE(ramFaultPending());
    ramFaultFailNth(0);
    ZuErrorKeeper::giveUpErrorList();
}

// ---- Cases that need particular profile files ------------------------------

// The child side: answers the queries of HNSYB_CODEPAGE_QUERIES, one a line,
// fields separated by '|', printing "CP> answer" for each.
TEST(CodePageChild, AnswersQueries)
{
    const char* queries = std::getenv("HNSYB_CODEPAGE_QUERIES");
    if (queries == nullptr)
        GTEST_SKIP() << "runs only as the child of the profile tests";
    std::istringstream lines(queries);
    for (std::string line; std::getline(lines, line);) {
        std::vector<std::string> f;
        std::istringstream fields(line);
        for (std::string field; std::getline(fields, field, '|');)
            f.push_back(field);
        f.resize(3);
        const char* a = f[1].c_str();
        const char* b = f[2].c_str();
        std::string answer;
        if (f[0] == "dsn") {
            answer = std::to_string(ucnvGetAppCodePageFromDSN(f[1].empty() ? nullptr : a));
        } else if (f[0] == "conn") {
            char* dsn = nullptr;
            long number = ucnvGetAppCodePage(a, static_cast<long>(f[1].size()), &dsn);
            answer = std::to_string(number) + " " + (dsn != nullptr ? dsn : "-");
            ucnv_free(dsn);
        } else if (f[0] == "connw") {
            std::u16string wide(f[1].begin(), f[1].end());
            answer = std::to_string(ucnvGetAppCodePageW(u16(wide), static_cast<long>(wide.size()), nullptr));
        } else if (f[0] == "int" || f[0] == "intinst") {
            answer = std::to_string(f[0] == "int" ? ucnvGetProfileInt(a, b, -99) : ucnvGetProfileIntInst(a, b, -99));
        } else if (f[0] == "str") {
            char buffer[8];
            int length = ucnvGetProfileString(a, b, "default", buffer, sizeof buffer);
            answer = std::to_string(length) + " " + buffer;
        } else if (f[0] == "write") {
            answer = (std::ofstream(f[1]) << f[2] << "\n") ? "written" : "not written";
        }
        std::printf("CP> %s\n", answer.c_str());
    }
    std::fflush(stdout);
}

namespace {
class AppCodePageProfiles : public ::testing::Test {
protected:
    using Answers = std::vector<std::string>;
    void SetUp() override
    {
        char pattern[] = "/tmp/hnsyb-codepage-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir_ = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    std::string file(const std::string& name, const std::string& text)
    {
        std::ofstream(dir_ + "/" + name) << text;
        return dir_ + "/" + name;
    }
    // Runs the child with only the given profile variables set.
    Answers ask(const std::vector<std::string>& variables, const std::vector<std::string>& queries)
    {
        char self[4096];
        ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
        EXPECT_GT(n, 0);
        self[std::max<ssize_t>(n, 0)] = 0;
        std::vector<std::string> argv = {"env"};
        for (const char* v : {"ODBCINI", "ODBC_INI", "ODBCINST", "ODBCINSTINI", "HOME"})
            argv.insert(argv.end(), {"-u", v});
        argv.insert(argv.end(), variables.begin(), variables.end());
        std::string all;
        for (const auto& q : queries)
            all += q + "\n";
        argv.insert(argv.end(), {"HNSYB_CODEPAGE_QUERIES=" + all, self, "--gtest_filter=CodePageChild.*"});
        RunResult r = runProgram(argv, 60000);
        EXPECT_FALSE(r.timedOut);
        EXPECT_EQ(r.exitCode, 0) << r.output;
        Answers answers;
        std::istringstream out(r.output);
        for (std::string line; std::getline(out, line);)
            if (line.rfind("CP> ", 0) == 0)
                answers.push_back(line.substr(4));
        return answers;
    }
    std::string dir_;
};
}  // namespace

TEST_F(AppCodePageProfiles, DsnLookupTakesTheFirstOfSevenSteps)
{
    std::string inst = "ODBCINST=" + file("inst1", "[ODBC]\nIANAAppCodePage=2251\nAppCodePage=1\n");
    std::string ini = "ODBCINI=" + file("ini1", "[d1]\nIANAAppCodePage=2252\nAppCodePage=1\n[d2]\nIANAAppCodePage=-1\n"
                                                "AppCodePage=1\n[d3]\nAppCodePage=8\n[d4]\nIANAAppCodePage=\n"
                                                "[ODBC]\nIANAAppCodePage=2250\nAppCodePage=5\n");
    EXPECT_EQ(ask({ini, inst}, {"dsn|d1", "dsn|D1", "dsn|d2", "dsn|d3", "dsn|d4", "dsn|none", "dsn"}),
              (Answers{"2252", "2252", "4", "2250", "2250", "2250", "2250"}));
    // Steps 4 to 7, each with every earlier source missing or not a number.
    ini = "ODBCINI=" + file("ini2", "[ODBC]\nIANAAppCodePage=\nAppCodePage=5\n");
    EXPECT_EQ(ask({ini, inst}, {"dsn|d1"}), Answers{"2027"});
    ini = "ODBCINI=" + file("ini3", "[ODBC]\nIANAAppCodePage=-1\nAppCodePage=8\n");
    EXPECT_EQ(ask({ini, inst}, {"dsn|d1"}), Answers{"2251"});
    inst = "ODBCINST=" + file("inst2", "[ODBC]\nIANAAppCodePage=-1\nAppCodePage=34\n");
    EXPECT_EQ(ask({ini, inst}, {"dsn|d1"}), Answers{"2026"});
    inst = "ODBCINST=" + file("inst3", "[ODBC]\nAppCodePage=-1\n");
    EXPECT_EQ(ask({ini, inst}, {"dsn|d1", "dsn"}), (Answers{"4", "4"}));
}

TEST_F(AppCodePageProfiles, FilesComeFromTheEnvironmentAndNoDsnFileMeansNoDriverFile)
{
    std::string first = file("first", "[ODBC]\nIACP=1\n");
    std::string second = file("second", "[ODBC]\nIACP=2\n");
    file(".odbc.ini", "[ODBC]\nIACP=3\n");
    file(".odbcinst.ini", "[ODBC]\nIACP=4\nIANAAppCodePage=2251\n");
    std::vector<std::string> q = {"int|ODBC|IACP", "intinst|ODBC|IACP"};
    EXPECT_EQ(ask({"ODBCINI=" + first, "ODBC_INI=" + second, "HOME=" + dir_}, q), (Answers{"1", "4"}));
    EXPECT_EQ(ask({"ODBC_INI=" + second, "ODBCINST=" + first, "ODBCINSTINI=" + second}, q), (Answers{"2", "1"}));
    EXPECT_EQ(ask({"ODBCINSTINI=" + second, "HOME=" + dir_}, q), (Answers{"3", "2"}));
    EXPECT_EQ(ask({"ODBCINI=" + dir_ + "/missing", "HOME=" + dir_}, {"dsn|d1", "intinst|ODBC|IACP", "str|a|b"}),
              (Answers{"4", "-99", "7 default"}));
}

TEST_F(AppCodePageProfiles, IntegersAreParsedAndTheCopyIsNeverRefreshed)
{
    std::string path = file("ini", "[p]\na=  -12x\nb=12x\nc=-\nd=&5\ne=abc\nf=\ng=--3\nh=99999999999\ns=abcdefghij\n");
    EXPECT_EQ(ask({"ODBCINI=" + path}, {"int|p|a", "int|p|b", "int|p|c", "int|p|d", "int|p|e", "int|p|f", "int|p|g",
                                        "int|p|h", "str|p|s", "write|" + path + "|[p]", "int|p|b", "str|p|b"}),
              (Answers{"-12", "12", "0", "-99", "0", "-99", "0", "99999999999", "7 abcdefg", "written", "12",
                       "3 12x"}));
}

TEST_F(AppCodePageProfiles, ConnectionStringFallsBackToItsDsn)
{
    std::string ini = file("ini", "[d1]\nIANAAppCodePage=2252\n[ODBC]\nAppCodePage=1\n");
    EXPECT_EQ(ask({"ODBCINI=" + ini}, {"conn|DSN=d1", "conn|DSN=d1;IACP=5", "conn|ACP=999; dsn = d1", "conn|UID=x",
                                       "conn|DSN=zz", "connw|DSN=d1", "connw|DSN=d1;ACP=34", "connw|x"}),
              (Answers{"2252 d1", "5 d1", "2252 d1", "4 -", "4 zz", "2252", "2026", "4"}));
}
