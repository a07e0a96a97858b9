/*
 * Test Connect: a connection string from the saved attributes and one
 * connection through the ODBC driver manager.
 *
 * The string names the driver by its section, then each non-empty attribute
 * of keyValNodeHeadL as key=value; failover and balancing are forced off so
 * that a test reaches the primary server once, "IANAAppCodePage" is left
 * out, and protected passwords are revealed.
 *
 * TestConnect holds its handles from testInit to testTerm; the string it is
 * given stays the caller's.
 */
#ifndef HNSYB_DSN_TESTCONNECT_IMPL_H
#define HNSYB_DSN_TESTCONNECT_IMPL_H

#include <X11/Intrinsic.h>

#include "../platform/export.h"
#include <sql.h>

struct DSNInfoStruct;  // only its first word, a window handle, is known

// Flags of TestConnect::testConnect.
enum : unsigned long { TEST_CONNECT = 1, TEST_DISCONNECT = 2 };

class ZU_EXPORT TestConnect {
public:
    explicit TestConnect(DSNInfoStruct* info);
    TestConnect(void* window, char* connectString);
    ~TestConnect() {}

    // Bit 1 connects (the driver may prompt through the window), bit 2
    // disconnects and frees the handles.  1 on success, 0 on failure.
    int testConnect(unsigned long flags);
    int testInit();
    int testTerm();
    void testError();
    char* getErrorMsgFromTestConnect() { return errorMsg; }
    bool wasCancelled() const { return cancelled != 0; }

private:
    DSNInfoStruct* info = nullptr;
    void* parentWindow = nullptr;
    SQLHENV henv = nullptr;
    SQLHDBC hdbc = nullptr;
    char* connectString = nullptr;
    unsigned cancelled : 1;
    unsigned unusedFlag : 1;
    char errorMsg[256];
};

// "DRIVER={name};key=value;..." in a malloc'ed string; null on failure.
ZU_EXPORT char* createConnectionString();
// Saves, then connects and shows the result (success box 24094, or the
// driver's first diagnostic in an error box; nothing for a cancelled prompt).
ZU_EXPORT void testConnectClicked(Widget shell, Widget dsnText);

#endif
