// The profile interface: sharing of caches through the task's list, ZuIni,
// the families' fallbacks when no cache can be had, the conversions, the
// Windows-named shims, and the install directory found through the profiles.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/catalog.h"
#include "profile/profile.h"
#include "profile_dir.h"

namespace {
class ProfileApi : public ProfileDir {};
}  // namespace

TEST_F(ProfileApi, CachesAreSharedByResolvedPathAndCountedByUse)
{
    writeText(dsnFile, "[d]\nk=v\n");
    ZuIniFileCacheList* list = zuGetIniFileCacheList();
    ASSERT_NE(list, nullptr);
    const unsigned before = list->getCount();
    ZuIni first;
    ZuIni second;
    ASSERT_EQ(first.open(".odbc.ini"), 0);
    ASSERT_EQ(second.open(dsnFile.c_str()), 0) << "the name and the path it resolves to";
    EXPECT_EQ(first.getCache(), second.getCache()) << "one cache for both";
    EXPECT_EQ(list->getCount(), before + 1);
    EXPECT_STREQ(first.getCache()->getPath(), dsnFile.c_str()) << "the cache keeps the resolved path";
    EXPECT_EQ(first.getCache()->getUseCount(), 2);
    first.close();
    char value[16];
    second.getEntry("d", "k", value, sizeof value, "");
    EXPECT_STREQ(value, "v") << "closing one leaves the other working";
    writeText(file("other.ini"), "[o]\nn=12\n");
    ASSERT_EQ(second.open(file("other.ini").c_str()), 0);
    EXPECT_EQ(list->getCount(), before + 1) << "a second open releases the first file";
    short number = 0;
    second.getEntry("o", "n", &number, 5);
    EXPECT_EQ(number, 12);
    EXPECT_EQ(second.getEntryWithLen("o", "n", value, sizeof value, ""), 2);
    EXPECT_EQ(second.writeEntry("o", "m", "3"), 0);
    EXPECT_EQ(second.deleteEntry("o", "n"), 0);
    EXPECT_EQ(readText(file("other.ini")), "[o]\nm=3\n");
    char names[64] = {};
    second.getSectionWithValues("o", names, sizeof names, "");
    EXPECT_STREQ(names, "m");
    second.close();
    EXPECT_EQ(list->getCount(), before + 1) << "the section read keeps its reference: the file stays cached";
    EXPECT_EQ(errors.getCount(), 0u);
}

TEST_F(ProfileApi, AZuIniThatNeverOpenedGivesTheDefaultAndError2717)
{
    ASSERT_EQ(bosSetInstallDir(HNSYB_BINARY_DIR), 0);
    int uses = 0;
    bosLoadResourceDLL("uxutl24", 0, nullptr, &uses);
    ZuIni ini;
    char value[16];
    EXPECT_EQ(ini.getEntry("s", "e", value, sizeof value, "dflt"), 0);
    EXPECT_STREQ(value, "dflt");
    EXPECT_EQ(ZuErrorKeeper::getLastErrorNumber(), ZU_MSG_INI_NOT_OPEN);
    EXPECT_NE(std::string(ZuErrorKeeper::getLastError()->getErrorText()).find("not open"), std::string::npos)
        << "the message has its text in the catalog";
    short number = 0;
    ini.getEntry("s", "e", &number, 9);
    EXPECT_EQ(number, 9);
    EXPECT_EQ(ini.getEntryWithLen("s", "e", value, sizeof value, "x"), 0);
    EXPECT_EQ(ini.open(nullptr), 1);
    bosFreeResourceDLL(0, &uses);
}

TEST_F(ProfileApi, WithoutACacheTheFamiliesFallBack)
{
    env.set("ODBCINI", file("absent.ini"));  // the DSN file's variable names a missing file
    char value[8];
    EXPECT_EQ(zuGetProfileString("s", "e", "a long default", value, sizeof value, ".odbc.ini"), 7)
        << "the default's length, cut by the size";
    EXPECT_STREQ(value, "a long ");
    EXPECT_EQ(zuWriteProfileString("s", "e", "v", ".odbc.ini"), 0);
    EXPECT_EQ(zuGetProfileInt("s", "e", 33, ".odbc.ini"), 33u);
    EXPECT_EQ(zuGetPrivateProfileString("s", "e", "d", value, sizeof value, static_cast<const char*>(nullptr)), 1);
    EXPECT_EQ(zuGetPrivateProfileSection("s", value, sizeof value, ".odbc.ini"), 0);
    EXPECT_STREQ(value, "");
}

TEST_F(ProfileApi, KeepingAndPrivateFamiliesReadAndWrite)
{
    const std::string path = file("p.ini");
    ASSERT_EQ(zuWritePrivateProfileString("sec", "num", "77", path.c_str()), 1) << "mode 4 creates the file";
    EXPECT_EQ(zuGetPrivateProfileInt("sec", "num", 0, path.c_str()), 77u);
    ASSERT_EQ(zuWriteProfileString("sec", "str", "text", path.c_str()), 1);
    char value[16];
    EXPECT_EQ(zuGetProfileString("sec", "str", "", value, sizeof value, path.c_str()), 4);
    EXPECT_EQ(zuGetProfileInt("sec", "num", 0, path.c_str()), 77u);
    const unsigned short wsec[] = {'s', 'e', 'c', 0};
    const unsigned short wentry[] = {'w', 0};
    const unsigned short wvalue[] = {'w', 0xfc, 0};
    unsigned short wpath[256];
    ASSERT_GT(zuGetUTF16StrFromANSIStr(path.c_str(), wpath, 256), 0);
    ASSERT_EQ(zuWritePrivateProfileStringW(wsec, wentry, wvalue, wpath), 1);
    EXPECT_EQ(readText(path), "[sec]\nw=w\xfc\nstr=text\nnum=77\n") << "ISO-8859-1 on disk";
    unsigned short wout[16];
    EXPECT_EQ(zuGetPrivateProfileStringW(wsec, wentry, nullptr, wout, 16, wpath), 2);
    EXPECT_EQ(wout[1], 0xfc);
    const unsigned short wnum[] = {'n', 'u', 'm', 0};
    EXPECT_EQ(zuGetPrivateProfileIntW(wsec, wnum, 0, wpath), 77u);
    // A null value through the wide form writes an empty value.
    ASSERT_EQ(zuWritePrivateProfileStringW(wsec, wentry, nullptr, wpath), 1);
    EXPECT_NE(readText(path).find("w=\n"), std::string::npos);
}

TEST_F(ProfileApi, ConversionsCutToTheBufferAndKeepCharactersWhole)
{
    const unsigned short latin[] = {'a', 0xe9, 'b', 0x20ac, 0};
    char narrow[16];
    EXPECT_EQ(zuGetANSIStrFromUTF16Str(latin, narrow, sizeof narrow), 4);
    EXPECT_EQ(std::string(narrow, 3), "a\xe9" "b") << "an unmappable character is substituted";
    EXPECT_EQ(zuGetANSIStrFromUTF16Str(latin, narrow, 3), 2);
    EXPECT_STREQ(narrow, "a\xe9");
    unsigned short wide[4];
    EXPECT_EQ(zuGetUTF16StrFromANSIStr("\xe9xyz", wide, 4), 3);
    EXPECT_EQ(wide[0], 0xe9);
    EXPECT_EQ(wide[3], 0);
    char utf8[8];
    const unsigned short euros[] = {0x20ac, 0x20ac, 0xd83d, 0xde00, 0};
    EXPECT_EQ(zuGetUTF8StrFromUTF16Str(euros, utf8, sizeof utf8), 6) << "a character that does not fit is left out";
    EXPECT_STREQ(utf8, "\xe2\x82\xac\xe2\x82\xac");
    char big[16];
    EXPECT_EQ(zuGetUTF8StrFromUTF16Str(euros, big, sizeof big), 10);
    EXPECT_STREQ(big + 6, "\xf0\x9f\x98\x80");
    char small[4];
    EXPECT_EQ(zustrlcpy(small, "abcdef", sizeof small), 3);
    EXPECT_STREQ(small, "abc");
    EXPECT_EQ(zustrlcpy(small, nullptr, sizeof small), 0);
    unsigned short module[16];
    EXPECT_EQ(zuGetModName("libx", module, 16), 7);
    EXPECT_EQ(module[4], '.');
    EXPECT_EQ(zuGetModName("a-name-too-long", module, 16), 0);
}

TEST_F(ProfileApi, WindowsNamedShimsUseTheDiskAlone)
{
    const std::string path = file("win.ini");
    char value[16] = "untouched";
    EXPECT_EQ(GetPrivateProfileString("s", "e", "d", value, sizeof value, path.c_str()), 1)
        << "a file that cannot be loaded gives the load's result";
    EXPECT_STREQ(value, "untouched") << "and no default";
    EXPECT_EQ(GetPrivateProfileInt("s", "e", 5, path.c_str()), 1u);
    EXPECT_EQ(WritePrivateProfileString("s", "e", "42", path.c_str()), 1);
    EXPECT_EQ(GetPrivateProfileInt("s", "e", 5, path.c_str()), 42u);
    EXPECT_EQ(GetPrivateProfileString("s", "e", "d", value, sizeof value, path.c_str()), 2);
    testing::internal::CaptureStdout();
    EXPECT_EQ(MessageBox(nullptr, "text", "Caption", 1), 2);
    EXPECT_EQ(MessageBox(nullptr, "only", "Caption", 0), 2);
    EXPECT_EQ(guiMessageBox(nullptr, "gui", nullptr, 3), 2);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Caption:\ntext\n\nonly\n\ngui\n");
    EXPECT_EQ(SetWindowPos(nullptr, nullptr, 0, 0, 1, 1, 0), 0);
}

TEST_F(ProfileApi, TheInstallDirectoryComesFromTheDsnFileThenTheDriverFile)
{
    writeText(dsnFile, "[ODBC]\nInstallDir=/opt/from-dsn/\n");
    writeText(driverFile, "[ODBC]\nInstallDir=/opt/from-driver\n");
    EXPECT_EQ(bosSetInstallDir(nullptr), 0);
    EXPECT_STREQ(InstallDirLocation, "/opt/from-dsn") << "one trailing slash is cut";
    writeText(dsnFile, "[ODBC]\nOther=1\n");
    EXPECT_EQ(bosSetInstallDir(nullptr), 0);
    EXPECT_STREQ(InstallDirLocation, "/opt/from-driver");
    writeText(driverFile, "[Other]\nInstallDir=/nowhere\n");
    EXPECT_EQ(bosSetInstallDir(nullptr), 1);
    EXPECT_STREQ(InstallDirLocation, "");
    env.set("PF_INSTALLDIR", "/opt/from-variable");
    EXPECT_EQ(bosSetInstallDir(nullptr), 0);
    EXPECT_STREQ(InstallDirLocation, "/opt/from-variable");
    bosSetInstallDir(HNSYB_BINARY_DIR);
}
