// Message catalogs and the installation directory: the locale choice with
// its fallbacks, lookups that never fail, and the trimming of the directory.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/catalog.h"
#include "support/subprocess.h"

namespace {
// An install directory with catalogs in two locales, built with gencat.
struct TwoLocales {
    std::string dir;
    TwoLocales()
    {
        char tmpl[] = "/tmp/hnsyb-cat-XXXXXX";
        dir = mkdtemp(tmpl);
        make("de_DE", "1 \"Hallo\"\n");
        make("en_US", "1 \"Hello\"\n2 \"Only in English\"\n");
    }
    ~TwoLocales() { runProgram({"rm", "-rf", dir}); }
    void make(const std::string& locale, const std::string& messages)
    {
        const std::string folder = dir + "/locale/" + locale + "/LC_MESSAGES";
        ASSERT_EQ(runProgram({"mkdir", "-p", folder}).exitCode, 0);
        const std::string src = folder + "/t.msg";
        ASSERT_EQ(runProgram({"sh", "-c", "printf '$set 1\\n$quote \"\\n%s' \"$1\" > \"$0\"", src, messages}).exitCode, 0);
        ASSERT_EQ(runProgram({"gencat", folder + "/test.mo", src}).exitCode, 0);
    }
};

struct Env {
    std::string name;
    std::string old;
    bool had;
    Env(const char* n, const char* value) : name(n)
    {
        const char* o = std::getenv(n);
        had = o != nullptr;
        old = had ? o : "";
        if (value)
            setenv(n, value, 1);
        else
            unsetenv(n);
    }
    ~Env()
    {
        if (had)
            setenv(name.c_str(), old.c_str(), 1);
        else
            unsetenv(name.c_str());
    }
};

std::string load(nl_catd cat, unsigned id, int size = 256)
{
    char text[256];
    LoadStringFromOpenFile(cat, id, text, size);
    return text;
}
}  // namespace

TEST(Catalogs, LocaleChoiceAndFallbackToEnglish)
{
    TwoLocales install;
    ASSERT_EQ(bosSetInstallDir(install.dir.c_str()), 0);
    {
        Env lc("LC_MESSAGES", "C"), lang("LANG", "de_DE");
        char locale[64];
        EXPECT_STREQ(bosMessageLocale(locale, sizeof locale), "de_DE") << "LC_MESSAGES=C is passed over";
        nl_catd cat = OpenStrings("test", nullptr);
        ASSERT_NE(cat, ZU_NO_CATALOG);
        EXPECT_EQ(load(cat, 1), "Hallo");
        EXPECT_EQ(load(cat, 2), "2") << "a message the catalog lacks comes back as its number";
        CloseStrings(cat);
    }
    {
        Env lc("LC_MESSAGES", nullptr), lang("LANG", "fr_FR");
        nl_catd cat = OpenStrings(nullptr, "test.mo");
        ASSERT_NE(cat, ZU_NO_CATALOG) << "no French catalog: English";
        EXPECT_EQ(load(cat, 2), "Only in English");
        EXPECT_EQ(load(cat, 2, 5), "Only") << "always terminated within the size";
        char whole[64];
        EXPECT_EQ(LoadStringFromOpenFile(cat, 2, whole, 0), 15) << "size 0: the whole text";
        CloseStrings(cat);
        EXPECT_EQ(OpenStrings("absent", nullptr), ZU_NO_CATALOG);
    }
    EXPECT_EQ(load(ZU_NO_CATALOG, 1234), "1234");
    EXPECT_EQ(load(ZU_NO_CATALOG, static_cast<unsigned>(-5)), "-5") << "the id as signed decimal";
}

TEST(Catalogs, ProcessWideCatalogIsCountedAndWideTextsConverted)
{
    ASSERT_EQ(bosSetInstallDir(HNSYB_BINARY_DIR), 0);
    int uses = 0;
    bosLoadResourceDLL("uxutl24", 0, nullptr, &uses);
    bosLoadResourceDLL("uxutl24", 0, nullptr, &uses);
    EXPECT_EQ(uses, 2);
    ASSERT_NE(CatFD, ZU_NO_CATALOG);
    unsigned short wide[64];
    EXPECT_EQ(LoadStringW(nullptr, 30190, wide, 64), 13);
    EXPECT_EQ(wide[0], 'O');
    EXPECT_EQ(wide[13], 0);
    bosFreeResourceDLL(0, &uses);
    EXPECT_NE(CatFD, ZU_NO_CATALOG) << "still in use once";
    bosFreeResourceDLL(0, &uses);
    EXPECT_EQ(CatFD, ZU_NO_CATALOG);
    char text[1024];  // the two-argument form writes up to 1,024 bytes
    EXPECT_EQ(winGetString(text, 30190), 5) << "closed: the digits";
}

TEST(Catalogs, InstallDirectoryLosesWhiteSpaceThenOneSlash)
{
    {
        Env env("PF_INSTALLDIR", "/opt/x/ ");
        EXPECT_EQ(bosSetInstallDir(nullptr), 0);
        EXPECT_STREQ(InstallDirLocation, "/opt/x");
    }
    EXPECT_EQ(bosSetInstallDir("/opt/y//"), 0);
    EXPECT_STREQ(InstallDirLocation, "/opt/y/");
    EXPECT_EQ(bosSetInstallDir("/"), 1) << "a directory of just / becomes empty";
    EXPECT_EQ(bosSetInstallDir(" "), 0) << "the first byte is never tested";
    Env env("PF_INSTALLDIR", nullptr);
    EXPECT_EQ(bosSetInstallDir(nullptr), 1);
}
