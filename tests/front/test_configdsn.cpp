// ConfigDSN without a window, called the way administrators and programs
// call it: through unixODBC's SQLConfigDataSource, which finds our setup
// library as the driver's "Setup" in a private driver file.
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <odbcinst.h>
#include <stdlib.h>

#include <string>

#include "odbcconfig.h"
#include "support/subprocess.h"

namespace {

// An attribute string from pairs: each ended by a NUL, the run by another.
std::string attributes(std::initializer_list<const char*> pairs)
{
    std::string text;
    for (const char* pair : pairs) {
        text += pair;
        text += '\0';
    }
    text += '\0';
    return text;
}

BOOL configure(WORD request, const std::string& attrs, const char* driver = kTestDriver)
{
    return SQLConfigDataSource(nullptr, request, driver, attrs.c_str());
}

// The newest installer error, as "code: text" (the installer keeps earlier
// ones until SQLConfigDataSource clears them).
std::string installerError()
{
    std::string newest = "no error";
    for (WORD i = 1; i <= 64; ++i) {
        DWORD code = 0;
        char text[SQL_MAX_MESSAGE_LENGTH + 1] = "";
        WORD length = 0;
        if (SQLInstallerError(i, &code, text, sizeof text, &length) != SQL_SUCCESS)
            break;
        newest = std::to_string(code) + ": " + text;
    }
    return newest;
}

std::string listedDataSources()
{
    RunResult listing = runProgram({"odbcinst", "-q", "-s"}, 20000);
    EXPECT_EQ(listing.exitCode, 0) << listing.output;
    return listing.output;
}

std::vector<std::string> keyNames(const IniSection& section)
{
    std::vector<std::string> names;
    for (const auto& key : section.keys)
        names.push_back(key.first);
    return names;
}

}  // namespace

// Add writes the section in the order given, "Driver" (the driver's library)
// last, and lists it; configure changes and adds keys in place and keeps the
// others; add of an existing name replaces it; remove takes section and
// listing away.  unixODBC's own odbcinst sees each state.
TEST(ConfigDSNWithoutWindow, AddsConfiguresAndRemovesADataSource)
{
    PrivateOdbc odbc;
    // unixODBC's odbcinst fails on a file without data sources: one stays.
    odbc.writeDataSources("[ODBC Data Sources]\nother = HNSYB Test\n\n[other]\nServer = s\n");
    ASSERT_TRUE(configure(ODBC_ADD_DSN, attributes({"DSN=front1", "Description=first one", "Server=db1:5000"})))
        << installerError();
    IniFile file = readIni(odbc.dataSourceFile());
    const IniSection* section = findSection(file, "front1");
    ASSERT_NE(section, nullptr) << readText(odbc.dataSourceFile());
    EXPECT_EQ(keyNames(*section), (std::vector<std::string>{"Description", "Server", "Driver"}));
    EXPECT_EQ(*section->find("Description"), "first one");
    EXPECT_EQ(*section->find("Driver"), kDriverLibrary);
    const IniSection* listing = findSection(file, "ODBC Data Sources");
    ASSERT_NE(listing, nullptr);
    ASSERT_NE(listing->find("front1"), nullptr);
    EXPECT_EQ(*listing->find("front1"), kTestDriver);
    EXPECT_NE(listedDataSources().find("[front1]"), std::string::npos);
    // Nothing went to the system file.
    EXPECT_EQ(findSection(readIni(odbc.systemDataSourceFile()), "front1"), nullptr);

    ASSERT_TRUE(configure(ODBC_CONFIG_DSN, attributes({"DSN=front1", "Server=db2:5001", "Database=sales"})))
        << installerError();
    file = readIni(odbc.dataSourceFile());
    section = findSection(file, "front1");
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(*section->find("Description"), "first one");
    EXPECT_EQ(*section->find("Server"), "db2:5001");
    ASSERT_NE(section->find("Database"), nullptr);
    EXPECT_EQ(*section->find("Database"), "sales");
    EXPECT_EQ(*section->find("Driver"), kDriverLibrary);

    ASSERT_TRUE(configure(ODBC_ADD_DSN, attributes({"DSN=front1", "Server=db3:5002"}))) << installerError();
    section = findSection(file = readIni(odbc.dataSourceFile()), "front1");
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(keyNames(*section), (std::vector<std::string>{"Server", "Driver"}));

    ASSERT_TRUE(configure(ODBC_REMOVE_DSN, attributes({"DSN=front1"}))) << installerError();
    file = readIni(odbc.dataSourceFile());
    EXPECT_EQ(findSection(file, "front1"), nullptr);
    listing = findSection(file, "ODBC Data Sources");
    EXPECT_TRUE(listing == nullptr || listing->find("front1") == nullptr);
    EXPECT_EQ(listedDataSources().find("[front1]"), std::string::npos);
}

// A system request goes to the system data source file, not the user's.
TEST(ConfigDSNWithoutWindow, SystemRequestsUseTheSystemFile)
{
    PrivateOdbc odbc;
    ASSERT_TRUE(configure(ODBC_ADD_SYS_DSN, attributes({"DSN=shared", "Description=for all"}))) << installerError();
    IniFile system = readIni(odbc.systemDataSourceFile());
    const IniSection* section = findSection(system, "shared");
    ASSERT_NE(section, nullptr) << readText(odbc.systemDataSourceFile());
    ASSERT_NE(section->find("Description"), nullptr);
    EXPECT_EQ(*section->find("Description"), "for all");
    EXPECT_EQ(findSection(readIni(odbc.dataSourceFile()), "shared"), nullptr);
    ASSERT_TRUE(configure(ODBC_REMOVE_SYS_DSN, attributes({"DSN=shared"}))) << installerError();
    EXPECT_EQ(findSection(readIni(odbc.systemDataSourceFile()), "shared"), nullptr);
}

// Requests that cannot be done fail with an installer error that names the
// cause, and leave the data source file as it was.
TEST(ConfigDSNWithoutWindow, RefusedRequestsPostAnErrorAndWriteNothing)
{
    PrivateOdbc odbc;
    odbc.writeDataSources("[ODBC Data Sources]\nkept = HNSYB Test\n\n[kept]\nServer = s\n");
    std::string before = readText(odbc.dataSourceFile());

    EXPECT_FALSE(configure(ODBC_ADD_DSN, attributes({"DSN=bad[name]", "Server=x"})));
    EXPECT_EQ(installerError(), std::to_string(ODBC_ERROR_INVALID_DSN) +
                                    ": \"bad[name]\" is not a valid data source name");
    EXPECT_FALSE(configure(ODBC_ADD_DSN, attributes({"Server=x"})));
    EXPECT_EQ(installerError().substr(0, 2), std::to_string(ODBC_ERROR_INVALID_KEYWORD_VALUE) + ":");
    EXPECT_FALSE(configure(ODBC_ADD_DSN, attributes({"DSN=new", "no equals sign"})));
    EXPECT_NE(installerError().find("has no '='"), std::string::npos);
    EXPECT_FALSE(configure(ODBC_ADD_DSN, attributes({"DSN=new", "=value"})));
    EXPECT_NE(installerError().find("empty keyword"), std::string::npos);
    std::string tooLong = "Server=" + std::string(1024, 'x');
    EXPECT_FALSE(configure(ODBC_ADD_DSN, attributes({"DSN=new", tooLong.c_str()})));
    EXPECT_NE(installerError().find("too long"), std::string::npos);
    EXPECT_FALSE(configure(ODBC_CONFIG_DSN, attributes({"DSN=missing", "Server=x"})));
    EXPECT_EQ(installerError(), std::to_string(ODBC_ERROR_INVALID_DSN) + ": there is no data source missing");
    EXPECT_FALSE(configure(ODBC_REMOVE_DSN, attributes({"DSN=missing"})));
    EXPECT_EQ(installerError(), std::to_string(ODBC_ERROR_INVALID_DSN) + ": there is no data source missing");

    EXPECT_EQ(readText(odbc.dataSourceFile()), before);
}

// Called directly, as a setup library is by any loader: a driver that is not
// registered and a request the installer does not know are refused.
TEST(ConfigDSNWithoutWindow, DirectCallsCheckDriverAndRequest)
{
    PrivateOdbc odbc;
    void* library = dlopen(HNSYBS_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    using Entry = BOOL (*)(HWND, WORD, LPCSTR, LPCSTR);
    auto configDSN = reinterpret_cast<Entry>(dlsym(library, "ConfigDSN"));
    ASSERT_NE(configDSN, nullptr);
    std::string attrs = attributes({"DSN=orphan", "Server=x"});

    EXPECT_FALSE(configDSN(nullptr, ODBC_ADD_DSN, "No Such Driver", attrs.c_str()));
    EXPECT_EQ(installerError(), std::to_string(ODBC_ERROR_INVALID_NAME) + ": driver No Such Driver is not registered");
    EXPECT_FALSE(configDSN(nullptr, 42, kTestDriver, attrs.c_str()));
    EXPECT_EQ(installerError(), std::to_string(ODBC_ERROR_INVALID_REQUEST_TYPE) + ": request 42 is not known");
    EXPECT_FALSE(configDSN(nullptr, ODBC_ADD_DSN, "", attrs.c_str()));
    EXPECT_EQ(installerError().substr(0, 2), std::to_string(ODBC_ERROR_INVALID_NAME) + ":");
    EXPECT_EQ(findSection(readIni(odbc.dataSourceFile()), "orphan"), nullptr);

    // The driver file where the driver is registered becomes ODBCINST for the
    // dialog library's own profile layer, unless the caller set it.
    EXPECT_TRUE(configDSN(nullptr, ODBC_ADD_DSN, kTestDriver, attrs.c_str())) << installerError();
    const char* odbcinst = getenv("ODBCINST");
    ASSERT_NE(odbcinst, nullptr);
    EXPECT_EQ(std::string(odbcinst), odbc.driverFile());
    dlclose(library);
}
