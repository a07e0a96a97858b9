// Every code page of the number table that ICU here can open, converted by
// our transforms and by ICU's own command-line converter (uconv) from the
// same corpus: the bytes must be identical both ways.  Names this ICU cannot
// open must take the error path of the converter pool.
#include <gtest/gtest.h>
#include <unicode/ucnv.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "core/errorlist.h"
#include "encoding/codepage.h"
#include "encoding/icucache.h"
#include "encoding/ux.h"
#include "platform/catalog.h"
#include "support/subprocess.h"

namespace {

const std::string kCorpus =
    "Plain ASCII: The quick brown fox jumps over the lazy dog 0123456789 !\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~\n"
    "Latin: caf\xC3\xA9 na\xC3\xAFve \xC3\x85ngstr\xC3\xB6m Stra\xC3\x9F" "e \xC3\xB1 \xC3\xA6\xC3\xB8 \xC5\x93 \xC5\x81\xC3\xB3" "d\xC5\xBA\n"
    "Greek \xCE\x91\xCE\xB8\xCE\xAE\xCE\xBD\xCE\xB1 Cyrillic \xD0\x9C\xD0\xBE\xD1\x81\xD0\xBA\xD0\xB2\xD0\xB0 "
    "Hebrew \xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D Arabic \xD8\xB3\xD9\x84\xD8\xA7\xD9\x85\n"
    "CJK \xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E \xE4\xB8\xAD\xE6\x96\x87 \xED\x95\x9C\xEA\xB5\xAD\xEC\x96\xB4 "
    "\xEF\xBD\xB6\xEF\xBE\x80\xEF\xBD\xB6\xEF\xBE\x85\n"
    "Symbols \xE2\x82\xAC \xC2\xA3 \xC2\xA5 \xC2\xA9 \xE2\x84\xA2 \xE2\x80\x94 Emoji \xF0\x9F\x98\x80\xF0\x9F\x8C\x8D\n";

struct TempDir {
    TempDir()
    {
        char tmpl[] = "/tmp/hnsyb-ref-XXXXXX";
        path = mkdtemp(tmpl);
    }
    ~TempDir() { runProgram({"rm", "-rf", path}); }
    std::string file(const std::string& name) const { return path + "/" + name; }
    std::string path;
};

void writeFile(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// uconv with ICU's default behaviour of an opened converter: substitute,
// no fallback mappings.
bool uconv(const TempDir& dir, const char* from, const char* to, const std::string& in, std::string& out)
{
    writeFile(dir.file("in"), in);
    const RunResult r = runProgram({"uconv", "--callback", "substitute", "--no-fallback", "-f", from, "-t", to,
                                    "-o", dir.file("out"), dir.file("in")});
    out = readFile(dir.file("out"));
    return r.exitCode == 0;
}

struct Converter {
    explicit Converter(const char* name)
    {
        UErrorCode s = U_ZERO_ERROR;
        c = ucnv_open(name, &s);
        if (U_FAILURE(s)) {
            ucnv_close(c);
            c = nullptr;
        }
    }
    ~Converter() { ucnv_close(c); }
    UConverter* c;
};

std::string ours(ZuConvertReturn (*fn)(unsigned char*, long, const unsigned char*, long, long*, long*, UConverter*,
                                       UConverter*),
                 const std::string& in, UConverter* a, UConverter* b, ZuConvertReturn* rc)
{
    std::vector<unsigned char> out(in.size() * 8 + 16);
    long written = 0;
    *rc = fn(out.data(), static_cast<long>(out.size()), reinterpret_cast<const unsigned char*>(in.data()),
             static_cast<long>(in.size()), &written, nullptr, a, b);
    return std::string(reinterpret_cast<char*>(out.data()), static_cast<size_t>(written));
}

}  // namespace

TEST(ReferenceConversion, EveryOpenableCodePageAgreesWithUconv)
{
    if (runProgram({"uconv", "--version"}).exitCode != 0)
        GTEST_FAIL() << "uconv (icu-devtools) is needed";
    TempDir dir;
    Converter utf8("UTF-8");
    std::vector<std::string> unopenable;
    int compared = 0;
    std::string allBytes;
    for (int i = 0; i < 256; ++i)
        allBytes.push_back(static_cast<char>(i));

    for (const ZuCodePageName& row : IANAtoICUTable) {
        if (row.name == nullptr)
            continue;
        Converter page(row.name);
        if (page.c == nullptr) {
            unopenable.push_back(std::to_string(row.id) + "=" + row.name);
            continue;
        }
        ++compared;
        SCOPED_TRACE(std::to_string(row.id) + " " + row.name);
        ZuConvertReturn rc;

        std::string expected;
        ASSERT_TRUE(uconv(dir, "UTF-8", row.name, kCorpus, expected));
        EXPECT_EQ(ours(uxUTF8ToAnsi, kCorpus, utf8.c, page.c, &rc), expected) << "UTF-8 to the page";
        EXPECT_EQ(rc, ZU_CONV_SUCCESS);

        std::string back;
        if (uconv(dir, row.name, "UTF-8", expected, back)) {
            EXPECT_EQ(ours(uxAnsiToUTF8, expected, page.c, utf8.c, &rc), back) << "the page to UTF-8";
        }
        if (ucnv_getMaxCharSize(page.c) == 1 && uconv(dir, row.name, "UTF-8", allBytes, back)) {
            EXPECT_EQ(ours(uxAnsiToUTF8, allBytes, page.c, utf8.c, &rc), back) << "every byte value";
        }
    }
    EXPECT_GT(compared, 100) << "most of the table opens in any ICU build";
    std::string list;
    for (const std::string& u : unopenable)
        list += u + " ";
    RecordProperty("unopenable", list);
    std::printf("code pages compared: %d; names this ICU cannot open (%zu): %s\n", compared, unopenable.size(),
                list.c_str());
}

TEST(ReferenceConversion, NamesIcuCannotOpenTakeTheErrorPath)
{
    ZuErrorList errors(nullptr, 1);
    ZuErrorKeeper::setErrorList(&errors);
    ASSERT_EQ(bosSetInstallDir(HNSYB_BINARY_DIR), 0);
    int uses = 0;
    bosLoadResourceDLL("uxutl24", 0, nullptr, &uses);
    ZuICUHandleCache pool;
    int checked = 0;
    for (const ZuCodePageName& row : IANAtoICUTable) {
        if (row.name == nullptr || Converter(row.name).c != nullptr)
            continue;
        ++checked;
        ICUSubstitutionErrorInfo* info = nullptr;
        EXPECT_EQ(pool.getHandleForKey(row.id, &info), nullptr) << row.name;
        ZuError* e = errors.getLastError();
        ASSERT_NE(e, nullptr) << row.name;
        EXPECT_TRUE(e->getErrorNumber() == ZU_MSG_CONV_NO_TABLE || e->getErrorNumber() == ZU_MSG_CONV_FAILED)
            << row.name << " gave " << e->getErrorNumber();
        if (e->getErrorNumber() == ZU_MSG_CONV_NO_TABLE) {
            EXPECT_TRUE(std::string(e->getErrorText()).ends_with(" " + std::to_string(row.id))) << e->getErrorText();
        }
        EXPECT_EQ(uxMaxCharSize(row.id), 0) << row.name;
        EXPECT_EQ(VerifyCodePage(row.id), 0) << row.name;
    }
    EXPECT_GT(checked, 0) << "the table names converters that this ICU lacks";
    bosFreeResourceDLL(0, &uses);
    ZuErrorKeeper::giveUpErrorList();
}
