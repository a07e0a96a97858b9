// Saving a data source through unixODBC's installer library, checked in a
// private ODBC configuration with unixODBC's own tools reading it back.
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <odbcinst.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/catalog.h"
#include "core/errorlist.h"
#include "dsn.h"
#include "dsn/backend_impl.h"
#include "dsn/dialog/controltable.h"
#include "dsn/installspy.h"
#include "dsn/odbcenv.h"
#include "support/subprocess.h"

namespace {

nd* node(const std::string& key, const std::string& value)
{
    nd* n = static_cast<nd*>(std::calloc(1, sizeof(nd)));
    std::strncpy(n->key, key.c_str(), sizeof n->key - 1);
    std::strncpy(n->value, value.c_str(), sizeof n->value - 1);
    return n;
}

// Value that the test gives the row at `index` of the control table.
std::string valueFor(int index, const std::string& dir)
{
    const std::string key = iniids[index];
    if (key == "DSN")
        return "";  // set per test
    if (key == "Description")
        return "Sales figures";
    if (key == "Database")
        return dir + "/sales.db";
    return "v" + std::to_string(index);
}

// A list of all 38 rows of the control table in table order.
nd* tableList(const std::string& dsnName, const std::string& dir)
{
    nd* head = nullptr;
    for (int i = 0; i < ZU_DSN_CONTROL_COUNT; ++i)
        AddNodeToList(&head, node(iniids[i], i == ZU_IDX_DSN ? dsnName : valueFor(i, dir)));
    return head;
}

driverDSNName* record(const std::string& dsnName, unsigned short request = DSN_REQUEST_ADD)
{
    return PopulateDriverDSNStruct(kTestDriver, nullptr, request, const_cast<char*>(dsnName.c_str()), nullptr, 0,
                                   nullptr);
}

std::vector<std::string> keysOf(const IniEntries& entries)
{
    std::vector<std::string> keys;
    for (const auto& e : entries)
        keys.push_back(e.first);
    return keys;
}

class Saving : public ::testing::Test {
protected:
    PrivateOdbc odbc;
};

}  // namespace

TEST_F(Saving, AllTableKeysAreWrittenInTableOrderWithDriverLastAndTheFirstValueEndsInALineFeed)
{
    driverDSNName* dsn = record("Sales");
    nd* list = tableList("Sales", odbc.dir());
    spyStart();
    ASSERT_NE(applyChanges(&list, &dsn), 0);
    const std::vector<ProfileWrite> writes = spyStop();

    // What the library handed the installer, before unixODBC normalised it.
    std::vector<ProfileWrite> userWrites;
    for (const auto& w : writes)
        if (w.file == ".odbc.ini")
            userWrites.push_back(w);
    ASSERT_EQ(userWrites.size(), 37u + 2u);
    for (int i = 1; i < ZU_DSN_CONTROL_COUNT; ++i) {
        const ProfileWrite& w = userWrites[i - 1];
        EXPECT_EQ(w.section, "Sales");
        EXPECT_EQ(w.key, iniids[i]);
        const std::string expected = valueFor(i, odbc.dir()) + (i == 1 ? "\n" : "");
        EXPECT_EQ(w.value, expected) << "row " << i;
    }
    EXPECT_EQ(userWrites[37].section, "ODBC Data Sources");
    EXPECT_EQ(userWrites[37].key, "Sales");
    EXPECT_EQ(userWrites[37].value, kTestDriver);
    EXPECT_EQ(userWrites[38].key, "Driver");
    EXPECT_EQ(userWrites[38].value, kSqliteDriverPath);

    // The file, read independently: 37 keys in table order, then Driver.
    std::vector<std::string> expectedKeys;
    for (int i = 1; i < ZU_DSN_CONTROL_COUNT; ++i)
        expectedKeys.push_back(iniids[i]);
    expectedKeys.push_back("Driver");
    EXPECT_EQ(keysOf(readSection(odbc.userFile(), "Sales")), expectedKeys);
    EXPECT_EQ(iniValue(odbc.userFile(), "ODBC Data Sources", "Sales"), kTestDriver);
    EXPECT_EQ(iniValue(odbc.userFile(), "Sales", "Driver"), kSqliteDriverPath);
    EXPECT_STREQ(dsn->previousDSN, "Sales");

    // unixODBC's tools read it back: the listing names it, and isql
    // connects through it to the SQLite database it names.
    RunResult listing = runProgram({"odbcinst", "-q", "-s"});
    EXPECT_EQ(listing.exitCode, 0) << listing.output;
    EXPECT_NE(listing.output.find("[Sales]"), std::string::npos) << listing.output;
    RunResult query = runProgram({"sh", "-c", "echo 'select 6*7;' | isql -b Sales"});
    EXPECT_EQ(query.exitCode, 0) << query.output;
    EXPECT_NE(query.output.find("42"), std::string::npos) << query.output;

    FreeLinkedList(list);
    FreeDriverDsnStruct(dsn);
}

TEST_F(Saving, ARenameRemovesTheOldSectionAndItsDataSourceEntry)
{
    driverDSNName* dsn = record("Alpha");
    nd* list = tableList("Alpha", odbc.dir());
    ASSERT_NE(applyChanges(&list, &dsn), 0);
    ASSERT_TRUE(hasSection(odbc.userFile(), "Alpha"));

    std::strcpy(dsn->dsnName, "Beta");  // as the name field gives it on the next save
    ASSERT_NE(applyChanges(&list, &dsn), 0);
    EXPECT_FALSE(hasSection(odbc.userFile(), "Alpha"));
    EXPECT_EQ(iniValue(odbc.userFile(), "ODBC Data Sources", "Alpha"), "\x01");
    EXPECT_TRUE(hasSection(odbc.userFile(), "Beta"));
    EXPECT_EQ(iniValue(odbc.userFile(), "ODBC Data Sources", "Beta"), kTestDriver);
    EXPECT_STREQ(dsn->previousDSN, "Beta");
    FreeLinkedList(list);
    FreeDriverDsnStruct(dsn);
}

TEST_F(Saving, ASaveRewritesTheSectionFromNothingSoKeysWithoutANodeAreLost)
{
    SQLWritePrivateProfileString("Kept", "Extra", "unknown", ".odbc.ini");
    SQLWritePrivateProfileString("Kept", "Database", "old", ".odbc.ini");
    driverDSNName* dsn = record("Kept", DSN_REQUEST_CONFIG);
    std::strcpy(dsn->previousDSN, "Kept");
    nd* list = nullptr;
    AddNodeToList(&list, node("DSN", "Kept"));
    AddNodeToList(&list, node("Description", ""));
    AddNodeToList(&list, node("Database", "new"));
    ASSERT_NE(applyChanges(&list, &dsn), 0);
    // Empty values are written like any other; "DSN" is never a key.
    EXPECT_EQ(readSection(odbc.userFile(), "Kept"),
              (IniEntries{{"Description", ""}, {"Database", "new"}, {"Driver", kSqliteDriverPath}}));
    // Twice in a row is the same save.
    ASSERT_NE(applyChanges(&list, &dsn), 0);
    EXPECT_EQ(keysOf(readSection(odbc.userFile(), "Kept")),
              (std::vector<std::string>{"Description", "Database", "Driver"}));
    FreeLinkedList(list);
    FreeDriverDsnStruct(dsn);
}

TEST_F(Saving, ARequestOtherThanAddOrConfigureTouchesNothingAndSucceeds)
{
    driverDSNName* dsn = record("Still");
    nd* list = tableList("Still", odbc.dir());
    ASSERT_NE(applyChanges(&list, &dsn), 0);
    const std::string before = readWholeFile(odbc.userFile());
    dsn->request = 3;  // ODBC_REMOVE_DSN
    std::strcpy(dsn->dsnName, "Other");
    spyStart();
    EXPECT_EQ(applyChanges(&list, &dsn), 1);
    EXPECT_TRUE(spyStop().empty());
    EXPECT_EQ(readWholeFile(odbc.userFile()), before);
    EXPECT_STREQ(dsn->previousDSN, "Still");
    nd* none = nullptr;
    driverDSNName* absent = nullptr;
    EXPECT_EQ(applyChanges(&none, &absent), 0);
    FreeLinkedList(list);
    FreeDriverDsnStruct(dsn);
}

TEST_F(Saving, PoolKeysGoToTheDriversSectionAndLeaveTheList)
{
    driverDSNName* dsn = record("Pooled");
    nd* list = nullptr;
    AddNodeToList(&list, node("Description", "d"));
    AddNodeToList(&list, node("Pooling", "1"));
    AddNodeToList(&list, node("Database", "db"));
    AddNodeToList(&list, node("MaxPoolSize", "12"));
    ASSERT_NE(applyChanges(&list, &dsn), 0);
    EXPECT_EQ(iniValue(odbc.driverFile(), kTestDriver, "Pooling"), "1");
    EXPECT_EQ(iniValue(odbc.driverFile(), kTestDriver, "MaxPoolSize"), "12");
    EXPECT_EQ(keysOf(readSection(odbc.userFile(), "Pooled")),
              (std::vector<std::string>{"Description", "Database", "Driver"}));
    std::vector<std::string> left;
    for (nd* n = list; n != nullptr; n = n->next)
        left.push_back(n->key);
    EXPECT_EQ(left, (std::vector<std::string>{"Description", "Database"}));
    FreeLinkedList(list);
    FreeDriverDsnStruct(dsn);
}

TEST_F(Saving, AFileDataSourceFillsSectionOdbcOfItsFileWithoutLineFeedsAndNamesTheDriverBySection)
{
    const std::string path = odbc.dir() + "/orders.dsn";
    writeWholeFile(path, "[ODBC]\nOld=1\n");
    driverDSNName* dsn = PopulateDriverDSNStruct(kTestDriver, nullptr, DSN_REQUEST_ADD, nullptr, nullptr, 1,
                                                 path.c_str());
    nd* list = nullptr;
    AddNodeToList(&list, node("DSN", path));
    AddNodeToList(&list, node("Description", "file one"));
    AddNodeToList(&list, node("Database", odbc.dir() + "/orders.db"));
    spyStart();
    ASSERT_NE(applyChanges(&list, &dsn), 0);
    for (const ProfileWrite& w : spyStop()) {
        EXPECT_NE(w.file, ".odbc.ini") << w.key;
        EXPECT_EQ(w.value.find('\n'), std::string::npos) << w.key;
    }
    EXPECT_EQ(readSection(path, "ODBC"), (IniEntries{{"Description", "file one"},
                                                     {"Database", odbc.dir() + "/orders.db"},
                                                     {"Driver", kTestDriver}}));
    EXPECT_EQ(readWholeFile(odbc.userFile()).find("Description"), std::string::npos);
    // The driver manager connects through the file.
    RunResult query = runProgram({"sh", "-c", "echo 'select 6*7;' | isql -b -k 'FILEDSN=" + path + "'"});
    EXPECT_NE(query.output.find("42"), std::string::npos) << query.output;
    FreeLinkedList(list);
    FreeDriverDsnStruct(dsn);
}

TEST_F(Saving, AWriteTheInstallerRefusesEndsTheSaveWithZero)
{
    // The user file is a folder, and there is no system file for unixODBC
    // to fall back on: every write of a data source key fails.
    const std::string folder = odbc.dir() + "/not-a-file";
    mkdir(folder.c_str(), 0700);
    setenv("ODBCINI", folder.c_str(), 1);
    unlink(odbc.systemFile().c_str());
    odbc.clearInstallerCache();
    driverDSNName* dsn = record("Nowhere");
    nd* list = tableList("Nowhere", odbc.dir());
    spyStart();
    EXPECT_EQ(applyChanges(&list, &dsn), 0);
    // It stopped at the first refused key.
    const std::vector<ProfileWrite> writes = spyStop();
    ASSERT_FALSE(writes.empty());
    EXPECT_EQ(writes.back().key, "Description");
    FreeLinkedList(list);
    FreeDriverDsnStruct(dsn);
}

namespace {
std::vector<std::pair<std::string, std::string>> gEntryList;
int gEntryResult = 0;
int gEntryCalls = 0;

int fakeEntry(void*, driverDSNName*, nd* list)
{
    ++gEntryCalls;
    gEntryList.clear();
    for (nd* n = list; n != nullptr; n = n->next)
        gEntryList.emplace_back(n->key, n->value);
    FreeLinkedList(list);
    return gEntryResult;
}

// Restores the process-wide back-end binding after a test.
struct BackendBinding {
    void* handle = BACKEND_HANDLE_CFG;
    BackendEntry entry = CONNECT_BACK_DLG;
    ~BackendBinding()
    {
        BACKEND_HANDLE_CFG = handle;
        CONNECT_BACK_DLG = entry;
    }
};
}  // namespace

TEST(BackendEntry, TheDriversNonEmptyPoolKeysAreAddedInTheirOrderAndTheEntrysResultDecides)
{
    PrivateOdbc odbc("MinPoolSize=2\nMaxPoolSize=\nPooling=1\nLoadBalanceTimeout=30");
    BackendBinding keep;
    CONNECT_BACK_DLG = fakeEntry;
    driverDSNName* dsn = record("Pool");
    nd* list = nullptr;
    AddNodeToList(&list, node("DSN", "Pool"));
    gEntryResult = 0;
    EXPECT_EQ(callBackendFunc(nullptr, dsn, list), 0);
    EXPECT_EQ(gEntryList, (std::vector<std::pair<std::string, std::string>>{
                              {"DSN", "Pool"}, {"Pooling", "1"}, {"MinPoolSize", "2"}, {"LoadBalanceTimeout", "30"}}));
    gEntryResult = 7;
    EXPECT_EQ(callBackendFunc(nullptr, dsn, nullptr), 1);
    FreeDriverDsnStruct(dsn);
}

TEST(BackendEntry, TheLibraryNameRuleTurnsAFinalLowerCaseSIntoRAndTheFirstLibraryServesLaterCalls)
{
    BackendBinding keep;
    CONNECT_BACK_DLG = fakeEntry;
    gEntryResult = 0;
    const std::string dir = std::string(HNSYB_BINARY_DIR) + "/src/";
    const std::string ownLibrary = dir + "libhnsybr.so";
    void* own = dlopen(ownLibrary.c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(own, nullptr);

    // An upper-case S stays and gains the r: "libhnsybSr" does not exist.
    BACKEND_HANDLE_CFG = nullptr;
    std::string name = dir + "libhnsybS";
    EXPECT_EQ(motifbackend_invoke_dialog(nullptr, nullptr, nullptr, reinterpret_cast<unsigned char*>(name.data())), 1);
    EXPECT_EQ(BACKEND_HANDLE_CFG, nullptr);
    // A name without a final s gains the r: "libhnsyb" finds libhnsybr.
    name = dir + "libhnsyb";
    gEntryCalls = 0;
    EXPECT_EQ(motifbackend_invoke_dialog(nullptr, nullptr, nullptr, reinterpret_cast<unsigned char*>(name.data())), 0);
    EXPECT_EQ(gEntryCalls, 1);
    EXPECT_EQ(BACKEND_HANDLE_CFG, own);
    // The setup library's stem "libhnsybs" names the same back end.
    BACKEND_HANDLE_CFG = nullptr;
    name = dir + "libhnsybs";
    EXPECT_EQ(motifbackend_invoke_dialog(nullptr, nullptr, nullptr, reinterpret_cast<unsigned char*>(name.data())), 0);
    EXPECT_EQ(BACKEND_HANDLE_CFG, own);
    // Once loaded, any other name is served by the same library.
    name = dir + "no-such-library";
    EXPECT_EQ(motifbackend_invoke_dialog(nullptr, nullptr, nullptr, reinterpret_cast<unsigned char*>(name.data())), 0);
    EXPECT_EQ(gEntryCalls, 3);
    dlclose(own);
}

TEST(BackendEntry, ALibraryWithoutTheEntryReportsMessage7453)
{
    BackendBinding keep;
    bosSetInstallDir(HNSYB_BINARY_DIR);
    ZuErrorList errors(nullptr, 1);
    ZuErrorKeeper::setErrorList(&errors);
    void* other = dlopen("libodbcinst.so.2", RTLD_NOW);
    ASSERT_NE(other, nullptr);
    BACKEND_HANDLE_CFG = other;
    CONNECT_BACK_DLG = nullptr;
    EXPECT_EQ(callBackendFunc(nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(CONNECT_BACK_DLG, nullptr);
    ASSERT_TRUE(errors.isExistingError());
    EXPECT_EQ(errors.getLastError()->getNativeError(), 7453);
    // The text comes from the front end's catalog, with the entry's name.
    EXPECT_NE(std::string(errors.getLastError()->getErrorText()).find("could not find the dialog entry invokeBackend"),
              std::string::npos) << errors.getLastError()->getErrorText();
    ZuErrorKeeper::giveUpErrorList();
    dlclose(other);
}

TEST(BackendEntry, WithoutADisplayTheEntryReturnsOneAndLeavesRecordAndListToTheCaller)
{
    PrivateOdbc odbc;
    driverDSNName* dsn = record("NoDisplay");
    nd* list = nullptr;
    AddNodeToList(&list, node("DSN", "NoDisplay"));
    EXPECT_EQ(invokeBackend(nullptr, dsn, list), 1);
    // Both are still ours and intact.
    EXPECT_STREQ(dsn->dsnName, "NoDisplay");
    EXPECT_STREQ(list->value, "NoDisplay");
    FreeLinkedList(list);
    FreeDriverDsnStruct(dsn);
}
