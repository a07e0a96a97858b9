// The connection string of Test Connect and the one connection it makes
// (see testconnect_impl.h).

#include "testconnect_impl.h"

#include <sqlext.h>

#include <clocale>
#include <cstring>

#include "../core/strcmp.h"
#include "../core/zustring.h"
#include "../platform/catalog.h"
#include "../platform/ram.h"
#include "backend_impl.h"
#include "messages_impl.h"
#include "msgbox_impl.h"
#include "protect_impl.h"

namespace {

// Keys whose value Test Connect replaces, so that a test reaches the primary
// server once: no failover list, no balancing, no retries.
struct ForcedValue {
    const char* key;
    const char* value;
};
constexpr ForcedValue kForced[] = {
    {"AlternateServers", ""},
    {"LoadBalancing", "0"},
    {"ConnectionRetryCount", "0"},
    {"ConnectionRetryDelay", "3"},
};
constexpr const char* kPasswordKeys[] = {"TrustStorePassword", "KeyStorePassword", "KeyPassword"};

// Appends key=value; (1 when the string could not grow).
int appendPair(ZuString& text, const char* key, const char* value)
{
    return text.concat(key) || text.concat('=') || text.concat(value) || text.concat(';');
}

// Appends what the node contributes to the string; 1 on failure.
int appendNode(ZuString& text, const nd* node)
{
    if (strCompareCi(node->key, "IANAAppCodePage") == 0)
        return 0;  // the code page is the driver's business, not the test's
    for (const ForcedValue& forced : kForced)
        if (strCompareCi(node->key, forced.key) == 0)
            return appendPair(text, node->key, forced.value);
    for (const char* password : kPasswordKeys) {
        if (strCompareCi(node->key, password) != 0)
            continue;
        unsigned char* clear = nullptr;
        if (getDehexifiedDecryptedValue(reinterpret_cast<unsigned char*>(const_cast<char*>(node->value)), &clear) != 0)
            return 1;
        int failed = 0;
        if (clear != nullptr && clear[0] != 0)
            failed = appendPair(text, node->key, reinterpret_cast<char*>(clear));
        ramFreeC(clear);
        return failed;
    }
    if (node->value[0] == 0)
        return 0;
    return appendPair(text, node->key, node->value);
}

}  // namespace

char* createConnectionString()
{
    if (driDsnNameL == nullptr)
        return nullptr;
    ZuString text;
    if (text.concat("DRIVER={") || text.concat(driDsnNameL->driverName) || text.concat("};"))
        return nullptr;
    for (const nd* node = keyValNodeHeadL; node != nullptr; node = node->next)
        if (appendNode(text, node) != 0)
            return nullptr;
    const unsigned long length = text.getLength();
    char* result = static_cast<char*>(ramAllocC(length + 1));
    if (result == nullptr)
        return nullptr;
    if (length != 0)
        std::memcpy(result, text.getData(), length);
    result[length] = 0;
    return result;
}

TestConnect::TestConnect(DSNInfoStruct* infoStruct)
    : info(infoStruct), parentWindow(infoStruct != nullptr ? *reinterpret_cast<void**>(infoStruct) : nullptr),
      cancelled(0), unusedFlag(0)
{
    errorMsg[0] = 0;
}

TestConnect::TestConnect(void* window, char* text)
    : parentWindow(window), connectString(text), cancelled(0), unusedFlag(0)
{
    errorMsg[0] = 0;
}

int TestConnect::testInit()
{
    // Only SQL_ERROR fails: every other return, taken unsigned, is below it.
    if (SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &henv) == SQL_ERROR ||
        SQLSetEnvAttr(henv, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), SQL_IS_INTEGER) ==
            SQL_ERROR ||
        SQLAllocHandle(SQL_HANDLE_DBC, henv, &hdbc) == SQL_ERROR) {
        testError();
        return 0;
    }
    return 1;
}

int TestConnect::testTerm()
{
    int result = 1;
    if (hdbc != nullptr) {
        if (SQLFreeHandle(SQL_HANDLE_DBC, hdbc) == SQL_ERROR) {
            testError();
            result = 0;
        }
        hdbc = nullptr;
    }
    if (henv != nullptr) {
        if (SQLFreeHandle(SQL_HANDLE_ENV, henv) == SQL_ERROR) {
            testError();
            result = 0;
        }
        henv = nullptr;
    }
    return result;
}

void TestConnect::testError()
{
    SQLSMALLINT type = SQL_HANDLE_DBC;
    SQLHANDLE handle = hdbc;
    if (handle == nullptr) {
        type = SQL_HANDLE_ENV;
        handle = henv;
    }
    if (handle == nullptr)
        return;
    SQLCHAR state[6];
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    // Only the first record, and only its text, reaches the user.
    SQLRETURN rc = SQLGetDiagRec(type, handle, 1, state, &native, reinterpret_cast<SQLCHAR*>(errorMsg),
                                 sizeof errorMsg, &length);
    if (!SQL_SUCCEEDED(rc))
        errorMsg[0] = 0;
}

int TestConnect::testConnect(unsigned long flags)
{
    if (flags & TEST_CONNECT) {
        if (!testInit()) {
            testTerm();
            return 0;
        }
        SQLCHAR out[1024];
        SQLSMALLINT outLength = 0;
        const std::size_t length = connectString != nullptr ? std::strlen(connectString) : 0;
        const SQLRETURN rc = SQLDriverConnect(hdbc, reinterpret_cast<SQLHWND>(parentWindow),
                                              reinterpret_cast<SQLCHAR*>(connectString),
                                              static_cast<SQLSMALLINT>(length), out, sizeof out, &outLength,
                                              SQL_DRIVER_COMPLETE);
        if (rc == SQL_ERROR) {
            testError();
            testTerm();
            return 0;
        }
        // SQL_NO_DATA (a prompt the user cancelled) and anything else above
        // SQL_SUCCESS_WITH_INFO: cancelled, with no message.
        if (static_cast<unsigned short>(rc) > SQL_SUCCESS_WITH_INFO) {
            cancelled = 1;
            testTerm();
            return 0;
        }
    }
    if (!(flags & TEST_DISCONNECT))
        return 1;  // the connection stays open for the caller
    if (hdbc != nullptr && SQLDisconnect(hdbc) == SQL_ERROR) {
        testError();
        testTerm();
        return 0;
    }
    testTerm();
    return 1;
}

void testConnectClicked(Widget shell, Widget dsnText)
{
    if (applyAction(dsnText, shell) == 0)
        return;  // a DSN that cannot be saved cannot be tested
    char* text = createConnectionString();
    if (text == nullptr) {
        showOutOfMemoryError(shell);
        exit_code = 1;
        return;
    }
    TestConnect test(shell, text);
    const int connected = test.testConnect(TEST_CONNECT | TEST_DISCONNECT);
    // The driver just loaded may have changed the locale.
    std::setlocale(LC_CTYPE, "C");

    char title[512];
    char okLabel[512];
    LoadStringFromOpenFile(Rfile, MSG_TEST_CONNECT, title, sizeof title);
    LoadStringFromOpenFile(Rfile, MSG_OK, okLabel, sizeof okLabel);
    Widget box = nullptr;
    if (connected) {
        char message[512];
        LoadStringFromOpenFile(Rfile, MSG_CONNECTED, message, sizeof message);
        box = createMessageDialog(shell, DSN_BOX_INFORMATION, message, okLabel, const_cast<char*>(""), title);
    } else if (!test.wasCancelled() && test.getErrorMsgFromTestConnect()[0] != 0) {
        box = createMessageDialog(shell, DSN_BOX_ERROR, test.getErrorMsgFromTestConnect(), okLabel,
                                  const_cast<char*>(""), title);
    }
    if (box != nullptr)
        XtManageChild(box);
    ramFreeC(text);
}
