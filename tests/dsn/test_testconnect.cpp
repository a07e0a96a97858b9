// The connection string of Test Connect and its one connection through
// unixODBC's driver manager to the SQLite ODBC driver.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "dsn/attrlist.h"
#include "dsn/backend_impl.h"
#include "dsn/odbcenv.h"
#include "dsn/protect_impl.h"
#include "dsn/testconnect_impl.h"
#include "support/subprocess.h"

namespace {

nd* node(const std::string& key, const std::string& value)
{
    nd* n = static_cast<nd*>(std::calloc(1, sizeof(nd)));
    std::strncpy(n->key, key.c_str(), sizeof n->key - 1);
    std::strncpy(n->value, value.c_str(), sizeof n->value - 1);
    return n;
}

std::string protect(const char* clear)
{
    unsigned char* out = nullptr;
    getEncryptedHexifiedValue(reinterpret_cast<unsigned char*>(const_cast<char*>(clear)), &out);
    std::string text = reinterpret_cast<char*>(out);
    std::free(out);
    return text;
}

// Installs a record and a list as the dialog's, and frees them afterwards.
class DialogState : public ::testing::Test {
protected:
    void SetUp() override
    {
        driDsnNameL = PopulateDriverDSNStruct(kTestDriver, nullptr, DSN_REQUEST_ADD, nullptr, nullptr, 0, nullptr);
        keyValNodeHeadL = nullptr;
    }
    void TearDown() override
    {
        keyValNodeHeadL = FreeLinkedList(keyValNodeHeadL);
        FreeDriverDsnStruct(driDsnNameL);
        driDsnNameL = nullptr;
    }
    void add(const std::string& key, const std::string& value) { AddNodeToList(&keyValNodeHeadL, node(key, value)); }
    std::string connectionString()
    {
        char* text = createConnectionString();
        std::string result = text != nullptr ? text : "(null)";
        std::free(text);
        return result;
    }
    PrivateOdbc odbc;
};

}  // namespace

TEST_F(DialogState, TheStringNamesTheDriverForcesFailoverOffRevealsPasswordsAndLeavesOutTheCodePage)
{
    add("DSN", "Sales");
    add("Description", "");
    add("Database", "/data/sales.db");
    add("IANAAppCodePage", "4");
    add("AlternateServers", "backup:5000");
    add("LoadBalancing", "1");
    add("ConnectionRetryCount", "5");
    add("ConnectionRetryDelay", "9");
    add("TrustStorePassword", protect("tsp"));
    add("keypassword", "");  // keys match case-insensitively; empty passwords give nothing
    add("ianaappcodepage", "106");
    add("LoginTimeout", "15");
    EXPECT_EQ(connectionString(),
              "DRIVER={HNTest};DSN=Sales;Database=/data/sales.db;AlternateServers=;LoadBalancing=0;"
              "ConnectionRetryCount=0;ConnectionRetryDelay=3;TrustStorePassword=tsp;LoginTimeout=15;");
    EXPECT_EQ(connectionString().find("IANAAppCodePage"), std::string::npos);
}

TEST_F(DialogState, APlainOrEmptyTrustStorePasswordAndABadOneDecide)
{
    add("TrustStorePassword", "");
    EXPECT_EQ(connectionString(), "DRIVER={HNTest};");
    keyValNodeHeadL = FreeLinkedList(keyValNodeHeadL);
    add("TrustStorePassword", "plain");
    EXPECT_EQ(connectionString(), "DRIVER={HNTest};TrustStorePassword=plain;");
    keyValNodeHeadL = FreeLinkedList(keyValNodeHeadL);
    // A stored value that does not decode gives no string at all.
    add("KeyStorePassword", "\xFFZZ");
    EXPECT_EQ(connectionString(), "(null)");
}

TEST_F(DialogState, TheSavedDataSourceConnectsWhenItsDatabaseIsWritable)
{
    const std::string db = odbc.dir() + "/connect.db";
    add("DSN", "Sales");
    add("Database", db);
    add("LoginTimeout", "15");
    char* text = createConnectionString();
    ASSERT_NE(text, nullptr);
    TestConnect test(nullptr, text);
    EXPECT_EQ(test.testConnect(TEST_CONNECT | TEST_DISCONNECT), 1);
    EXPECT_STREQ(test.getErrorMsgFromTestConnect(), "");
    EXPECT_FALSE(test.wasCancelled());
    struct stat st{};
    EXPECT_EQ(stat(db.c_str(), &st), 0) << "the driver made the database file";

    // Connect alone leaves the connection open; disconnect alone ends it.
    TestConnect open(nullptr, text);
    EXPECT_EQ(open.testConnect(TEST_CONNECT), 1);
    EXPECT_EQ(open.testConnect(TEST_DISCONNECT), 1);
    std::free(text);
}

TEST_F(DialogState, AFailedConnectionKeepsTheDriversOwnDiagnosticText)
{
    const std::string db = "/nonexistent-folder/none.db";
    add("Database", db);
    char* text = createConnectionString();
    ASSERT_NE(text, nullptr);
    TestConnect test(nullptr, text);
    EXPECT_EQ(test.testConnect(TEST_CONNECT | TEST_DISCONNECT), 0);
    const std::string message = test.getErrorMsgFromTestConnect();
    EXPECT_FALSE(message.empty());
    EXPECT_FALSE(test.wasCancelled());
    // The same text as the driver manager's own client shows for it.
    RunResult peer = runProgram({"isql", "-b", "-v", "-k", text});
    EXPECT_NE(peer.exitCode, 0);
    EXPECT_NE(peer.output.find(message), std::string::npos) << "isql: " << peer.output << "\nours: " << message;
    std::free(text);
}
