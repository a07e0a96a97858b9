// The bulk test driver through the real driver manager: unixODBC loads it
// from a private odbcinst.ini, connects, answers SQLGetInfo, reports its
// diagnostics; the driver's own connection handle and library come back
// from SQL_DRIVER_HDBC and SQL_DRIVER_HLIB, and the bulk entries are found
// by re-opening the already loaded library without loading it again.
#include <gtest/gtest.h>
#include <dlfcn.h>
#include <sql.h>
#include <sqlext.h>

#include <cstring>
#include <string>

#include "driver/bulkdriver_env.h"
#include "odbcenv.h"

namespace {

// The file name libltdl keeps for a handle it opened: its lt_dlinfo starts
// with that name.
const char* ltdlFileName(void* handle)
{
    using GetInfo = const char* const* (*)(void*);
    auto getInfo = reinterpret_cast<GetInfo>(dlsym(RTLD_DEFAULT, "lt_dlgetinfo"));
    if (getInfo == nullptr || handle == nullptr)
        return nullptr;
    const char* const* info = getInfo(handle);
    return info != nullptr ? info[0] : nullptr;
}

struct Connection {
    SQLHENV env = nullptr;
    SQLHDBC dbc = nullptr;
    SQLRETURN rc = SQL_ERROR;
    explicit Connection(const std::string& string)
    {
        SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env);
        SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
        SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc);
        rc = SQLDriverConnect(dbc, nullptr, (SQLCHAR*)string.c_str(), SQL_NTS, nullptr, 0, nullptr,
                              SQL_DRIVER_NOPROMPT);
    }
    ~Connection()
    {
        if (SQL_SUCCEEDED(rc))
            SQLDisconnect(dbc);
        SQLFreeHandle(SQL_HANDLE_DBC, dbc);
        SQLFreeHandle(SQL_HANDLE_ENV, env);
    }
    std::string info(SQLUSMALLINT type) const
    {
        char buffer[256] = "";
        SQLSMALLINT length = 0;
        SQLGetInfo(dbc, type, buffer, sizeof buffer, &length);
        return buffer;
    }
    void* handleInfo(SQLUSMALLINT type) const
    {
        void* value = nullptr;
        return SQL_SUCCEEDED(SQLGetInfo(dbc, type, &value, 0, nullptr)) ? value : nullptr;
    }
};

using LoadTable = SQLRETURN (*)(SQLHDBC, const char*, const char*, int, int, const char*, const char*,
                                const char*, unsigned, unsigned, unsigned);
using ValidateTable = SQLRETURN (*)(SQLHDBC, const char*, const char*, char*, int, int*);
using GetErrors = char* (*)(SQLHDBC);

TEST(BulkTestDriver, ConnectsThroughTheDriverManagerAndRecordsTheEntriesCalls)
{
    PrivateOdbc odbc;
    BulkDriverEnv driver(odbc);
    Connection c(std::string("DRIVER={") + kBulkDriver + "};UID=me;Table=t1");
    ASSERT_TRUE(SQL_SUCCEEDED(c.rc)) << c.rc;
    auto connects = driver.calls("SQLDriverConnect");
    ASSERT_EQ(connects.size(), 1u);
    EXPECT_NE(connects[0][1].find("UID=me;Table=t1"), std::string::npos) << connects[0][1];
    EXPECT_EQ(c.info(SQL_DBMS_NAME), "HNTestDBMS") << "the manager passes SQLGetInfo on to the driver";

    void* driverConnection = c.handleInfo(SQL_DRIVER_HDBC);
    void* driverLibrary = c.handleInfo(SQL_DRIVER_HLIB);
    ASSERT_NE(driverConnection, nullptr);
    ASSERT_NE(driverLibrary, nullptr);
    EXPECT_NE(driverConnection, static_cast<void*>(c.dbc)) << "the driver's handle, not the manager's";

    // The library handle is libltdl's; the file it names is our driver,
    // already loaded, so RTLD_NOLOAD opens it without loading anything.
    const char* file = ltdlFileName(driverLibrary);
    ASSERT_NE(file, nullptr);
    EXPECT_STREQ(file, HNSYB_TESTDRIVER_PATH);
    void* again = dlopen(file, RTLD_NOLOAD | RTLD_LAZY);
    ASSERT_NE(again, nullptr) << dlerror();
    EXPECT_NE(again, driverLibrary) << "libltdl's handle is not a dlopen handle";
    for (const char* name : {"LoadTableFromFile", "ValidateTableFromFile", "ExportTableToFile", "getConnectionErrors"})
        EXPECT_NE(dlsym(again, name), nullptr) << name;

    auto load = reinterpret_cast<LoadTable>(dlsym(again, "LoadTableFromFile"));
    driver.answer(SQL_SUCCESS_WITH_INFO);
    EXPECT_EQ(load(driverConnection, "t1", "d.csv", -1, 5, "d.xml", "d.log", "", 1, 4294967295u, 2048),
              SQL_SUCCESS_WITH_INFO);
    auto loads = driver.calls("LoadTableFromFile");
    ASSERT_EQ(loads.size(), 1u);
    const std::vector<std::string> want = {"LoadTableFromFile", "conn=driver", "t1", "d.csv", "-1", "5",
                                           "d.xml", "d.log", "", "1", "4294967295", "2048"};
    EXPECT_EQ(loads[0], want);
    // The manager's handle is not the driver's connection.
    load(c.dbc, "t1", "d.csv", 0, 0, "", "", "", 1, 1, 1);
    EXPECT_EQ(driver.calls("LoadTableFromFile").back()[1], "conn=other");

    auto validate = reinterpret_cast<ValidateTable>(dlsym(again, "ValidateTableFromFile"));
    driver.verifyMessages("first|second");
    char messages[4096];
    messages[0] = 1;
    int count = -1;
    driver.answer(SQL_SUCCESS);
    EXPECT_EQ(validate(driverConnection, "t1", "c.xml", messages, 4096, &count), SQL_SUCCESS);
    EXPECT_EQ(count, 2);
    EXPECT_STREQ(messages, "first");
    EXPECT_STREQ(messages + 6, "second");

    auto errors = reinterpret_cast<GetErrors>(dlsym(again, "getConnectionErrors"));
    driver.answer(SQL_ERROR, "line 1 rejected");
    char* text = errors(driverConnection);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text, "line 1 rejected");
    free(text);
    driver.answer(SQL_ERROR, "(null)");
    EXPECT_EQ(errors(driverConnection), nullptr);
    dlclose(again);
}

TEST(BulkTestDriver, FailedConnectReportsItsDiagnosticThroughTheManager)
{
    PrivateOdbc odbc;
    BulkDriverEnv driver(odbc);
    driver.failConnect(true);
    Connection c(std::string("DRIVER={") + kBulkDriver + "}");
    EXPECT_EQ(c.rc, SQL_ERROR);
    SQLCHAR state[6] = "";
    SQLINTEGER native = 0;
    SQLCHAR message[256] = "";
    SQLSMALLINT length = 0;
    ASSERT_TRUE(SQL_SUCCEEDED(SQLGetDiagRec(SQL_HANDLE_DBC, c.dbc, 1, state, &native, message, sizeof message, &length)));
    EXPECT_STREQ(reinterpret_cast<char*>(state), "08001");
    EXPECT_NE(std::string(reinterpret_cast<char*>(message)).find("the test asked the connection to fail"),
              std::string::npos)
        << message;
}

TEST(BulkTestDriver, DriverWithoutTheEntriesHasNoneToFind)
{
    PrivateOdbc odbc;
    BulkDriverEnv driver(odbc);
    Connection c(std::string("DRIVER={") + kPlainDriver + "}");
    ASSERT_TRUE(SQL_SUCCEEDED(c.rc));
    const char* file = ltdlFileName(c.handleInfo(SQL_DRIVER_HLIB));
    ASSERT_NE(file, nullptr);
    EXPECT_STREQ(file, HNSYB_TESTDRIVER_PLAIN_PATH);
    void* again = dlopen(file, RTLD_NOLOAD | RTLD_LAZY);
    ASSERT_NE(again, nullptr) << dlerror();
    EXPECT_NE(dlsym(again, "SQLDriverConnect"), nullptr);
    for (const char* name : {"LoadTableFromFile", "ValidateTableFromFile", "ExportTableToFile", "getConnectionErrors"})
        EXPECT_EQ(dlsym(again, name), nullptr) << name;
    dlclose(again);
}

}  // namespace
