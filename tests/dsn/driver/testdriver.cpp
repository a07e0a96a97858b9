// A small ODBC driver for the bulk operation tests: unixODBC's driver
// manager loads it like any driver registered in odbcinst.ini.  It answers
// just enough of the call interface to connect and to answer SQLGetInfo, and
// exports the four entries that the dialog's bulk operations call by name.
//
// What the test wants is read from the environment at each call:
//   HNSYB_TESTDRIVER_LOG       file to which every call appends one line:
//                              the call's name and its arguments, separated
//                              by tabs ("(null)" for a null string)
//   HNSYB_TESTDRIVER_RESULT    what the three bulk entries return (default 0)
//   HNSYB_TESTDRIVER_MESSAGES  what getConnectionErrors returns, in a malloc'ed
//                              copy; "(null)" makes it return null
//   HNSYB_TESTDRIVER_VERIFY    messages ValidateTableFromFile puts in the
//                              caller's buffer, separated by '|', each
//                              NUL-ended; the count is their number unless
//   HNSYB_TESTDRIVER_VERIFY_COUNT says otherwise
//   HNSYB_TESTDRIVER_CONNECT   "fail": SQLDriverConnect and SQLConnect fail
//                              with state 08001
//
// Built with HNSYB_TESTDRIVER_WITHOUT_BULK it is a driver without the four
// entries.
//
// A bulk entry records "conn=driver" when it was given a connection handle
// of this driver that is connected, else "conn=other": so a test sees that
// the caller passed the driver's own handle (SQL_DRIVER_HDBC), not the
// driver manager's.
#include <sql.h>
#include <sqlext.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#define DRIVER_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

constexpr unsigned kEnvMagic = 0x454e5631;   // "ENV1"
constexpr unsigned kDbcMagic = 0x44424331;   // "DBC1"
constexpr unsigned kStmtMagic = 0x53544d31;  // "STM1"

struct Diag {
    char state[6] = "";
    SQLINTEGER native = 0;
    std::string message;
};

struct Handle {
    unsigned magic;
    Diag diag;
};

struct Env : Handle {
    SQLINTEGER version = SQL_OV_ODBC3;
};

struct Dbc : Handle {
    Env* env = nullptr;
    bool connected = false;
};

struct Stmt : Handle {
    Dbc* dbc = nullptr;
};

const char* env(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

[[maybe_unused]] std::string show(const char* text) { return text != nullptr ? text : "(null)"; }

std::string show(const SQLCHAR* text, SQLINTEGER length)
{
    if (text == nullptr)
        return "(null)";
    if (length == SQL_NTS)
        return reinterpret_cast<const char*>(text);
    return std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
}

void record(const std::string& line)
{
    const char* path = env("HNSYB_TESTDRIVER_LOG");
    if (*path == 0)
        return;
    if (FILE* f = std::fopen(path, "a")) {
        std::fprintf(f, "%s\n", line.c_str());
        std::fclose(f);
    }
}

[[maybe_unused]] std::string connState(SQLHDBC handle)
{
    const Dbc* dbc = static_cast<const Dbc*>(handle);
    return dbc != nullptr && dbc->magic == kDbcMagic && dbc->connected ? "conn=driver" : "conn=other";
}

[[maybe_unused]] SQLRETURN bulkResult() { return static_cast<SQLRETURN>(std::atoi(env("HNSYB_TESTDRIVER_RESULT"))); }

// Copies text into an ODBC output buffer: truncated and terminated within
// `size`, the full length in *length; SQL_SUCCESS_WITH_INFO when cut.
SQLRETURN copyOut(const std::string& text, SQLCHAR* out, SQLINTEGER size, SQLSMALLINT* length)
{
    if (length != nullptr)
        *length = static_cast<SQLSMALLINT>(text.size());
    if (out == nullptr || size <= 0)
        return text.empty() ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
    const std::size_t n = text.size() < static_cast<std::size_t>(size) ? text.size() : static_cast<std::size_t>(size - 1);
    std::memcpy(out, text.data(), n);
    out[n] = 0;
    return n == text.size() ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

Handle* checked(SQLSMALLINT type, SQLHANDLE handle)
{
    Handle* h = static_cast<Handle*>(handle);
    if (h == nullptr)
        return nullptr;
    const unsigned want = type == SQL_HANDLE_ENV ? kEnvMagic : type == SQL_HANDLE_DBC ? kDbcMagic : kStmtMagic;
    return h->magic == want ? h : nullptr;
}

SQLRETURN fail(Handle* h, const char* state, const std::string& message)
{
    std::snprintf(h->diag.state, sizeof h->diag.state, "%s", state);
    h->diag.native = 42;
    h->diag.message = message;
    return SQL_ERROR;
}

SQLRETURN connect(Dbc* dbc, const std::string& how)
{
    record(how);
    dbc->diag = Diag{};
    if (std::strcmp(env("HNSYB_TESTDRIVER_CONNECT"), "fail") == 0)
        return fail(dbc, "08001", "[HNTestDriver] the test asked the connection to fail");
    dbc->connected = true;
    return SQL_SUCCESS;
}

}  // namespace

// ---------------------------------------------------------------------------
// The call interface

DRIVER_EXPORT SQLRETURN SQLAllocHandle(SQLSMALLINT type, SQLHANDLE input, SQLHANDLE* output)
{
    if (output == nullptr)
        return SQL_ERROR;
    switch (type) {
    case SQL_HANDLE_ENV: {
        Env* e = new Env;
        e->magic = kEnvMagic;
        *output = e;
        return SQL_SUCCESS;
    }
    case SQL_HANDLE_DBC: {
        Env* e = static_cast<Env*>(checked(SQL_HANDLE_ENV, input));
        if (e == nullptr)
            return SQL_INVALID_HANDLE;
        Dbc* d = new Dbc;
        d->magic = kDbcMagic;
        d->env = e;
        *output = d;
        return SQL_SUCCESS;
    }
    case SQL_HANDLE_STMT: {
        Dbc* d = static_cast<Dbc*>(checked(SQL_HANDLE_DBC, input));
        if (d == nullptr)
            return SQL_INVALID_HANDLE;
        Stmt* s = new Stmt;
        s->magic = kStmtMagic;
        s->dbc = d;
        *output = s;
        return SQL_SUCCESS;
    }
    default:
        return SQL_ERROR;
    }
}

DRIVER_EXPORT SQLRETURN SQLFreeHandle(SQLSMALLINT type, SQLHANDLE handle)
{
    Handle* h = checked(type, handle);
    if (h == nullptr)
        return SQL_INVALID_HANDLE;
    h->magic = 0;
    if (type == SQL_HANDLE_ENV)
        delete static_cast<Env*>(h);
    else if (type == SQL_HANDLE_DBC)
        delete static_cast<Dbc*>(h);
    else
        delete static_cast<Stmt*>(h);
    return SQL_SUCCESS;
}

DRIVER_EXPORT SQLRETURN SQLSetEnvAttr(SQLHENV handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER)
{
    Env* e = static_cast<Env*>(checked(SQL_HANDLE_ENV, handle));
    if (e == nullptr)
        return SQL_INVALID_HANDLE;
    if (attribute == SQL_ATTR_ODBC_VERSION)
        e->version = static_cast<SQLINTEGER>(reinterpret_cast<SQLLEN>(value));
    return SQL_SUCCESS;
}

DRIVER_EXPORT SQLRETURN SQLGetEnvAttr(SQLHENV handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER,
                                      SQLINTEGER* length)
{
    Env* e = static_cast<Env*>(checked(SQL_HANDLE_ENV, handle));
    if (e == nullptr)
        return SQL_INVALID_HANDLE;
    if (attribute == SQL_ATTR_ODBC_VERSION && value != nullptr)
        *static_cast<SQLINTEGER*>(value) = e->version;
    if (length != nullptr)
        *length = sizeof(SQLINTEGER);
    return SQL_SUCCESS;
}

DRIVER_EXPORT SQLRETURN SQLSetConnectAttr(SQLHDBC handle, SQLINTEGER, SQLPOINTER, SQLINTEGER)
{
    return checked(SQL_HANDLE_DBC, handle) != nullptr ? SQL_SUCCESS : SQL_INVALID_HANDLE;
}

DRIVER_EXPORT SQLRETURN SQLGetConnectAttr(SQLHDBC handle, SQLINTEGER, SQLPOINTER value, SQLINTEGER,
                                          SQLINTEGER* length)
{
    if (checked(SQL_HANDLE_DBC, handle) == nullptr)
        return SQL_INVALID_HANDLE;
    if (value != nullptr)
        *static_cast<SQLUINTEGER*>(value) = 0;
    if (length != nullptr)
        *length = sizeof(SQLUINTEGER);
    return SQL_SUCCESS;
}

DRIVER_EXPORT SQLRETURN SQLDriverConnect(SQLHDBC handle, SQLHWND, SQLCHAR* in, SQLSMALLINT inLength, SQLCHAR* out,
                                         SQLSMALLINT outSize, SQLSMALLINT* outLength, SQLUSMALLINT)
{
    Dbc* dbc = static_cast<Dbc*>(checked(SQL_HANDLE_DBC, handle));
    if (dbc == nullptr)
        return SQL_INVALID_HANDLE;
    const std::string string = show(in, inLength);
    const SQLRETURN rc = connect(dbc, "SQLDriverConnect\t" + string);
    if (rc == SQL_SUCCESS && out != nullptr)
        copyOut(string, out, outSize, outLength);
    return rc;
}

DRIVER_EXPORT SQLRETURN SQLConnect(SQLHDBC handle, SQLCHAR* dsn, SQLSMALLINT dsnLength, SQLCHAR* user,
                                   SQLSMALLINT userLength, SQLCHAR*, SQLSMALLINT)
{
    Dbc* dbc = static_cast<Dbc*>(checked(SQL_HANDLE_DBC, handle));
    if (dbc == nullptr)
        return SQL_INVALID_HANDLE;
    return connect(dbc, "SQLConnect\t" + show(dsn, dsnLength) + "\t" + show(user, userLength));
}

DRIVER_EXPORT SQLRETURN SQLDisconnect(SQLHDBC handle)
{
    Dbc* dbc = static_cast<Dbc*>(checked(SQL_HANDLE_DBC, handle));
    if (dbc == nullptr)
        return SQL_INVALID_HANDLE;
    record("SQLDisconnect");
    dbc->connected = false;
    return SQL_SUCCESS;
}

DRIVER_EXPORT SQLRETURN SQLGetInfo(SQLHDBC handle, SQLUSMALLINT type, SQLPOINTER value, SQLSMALLINT size,
                                   SQLSMALLINT* length)
{
    Dbc* dbc = static_cast<Dbc*>(checked(SQL_HANDLE_DBC, handle));
    if (dbc == nullptr)
        return SQL_INVALID_HANDLE;
    auto text = [&](const char* t) { return copyOut(t, static_cast<SQLCHAR*>(value), size, length); };
    auto number16 = [&](SQLUSMALLINT n) {
        if (value != nullptr)
            *static_cast<SQLUSMALLINT*>(value) = n;
        if (length != nullptr)
            *length = sizeof n;
        return SQL_SUCCESS;
    };
    auto number32 = [&](SQLUINTEGER n) {
        if (value != nullptr)
            *static_cast<SQLUINTEGER*>(value) = n;
        if (length != nullptr)
            *length = sizeof n;
        return SQL_SUCCESS;
    };
    switch (type) {
    case SQL_DRIVER_NAME:
        return text("libhnsyb_testodbc.so");
    case SQL_DRIVER_VER:
        return text("01.00.0000");
    case SQL_DRIVER_ODBC_VER:
        return text("03.51");
    case SQL_DBMS_NAME:
        return text("HNTestDBMS");
    case SQL_DBMS_VER:
        return text("01.00.0000");
    case SQL_DATA_SOURCE_NAME:
    case SQL_SERVER_NAME:
    case SQL_USER_NAME:
        return text("");
    case SQL_CURSOR_COMMIT_BEHAVIOR:
    case SQL_CURSOR_ROLLBACK_BEHAVIOR:
        return number16(SQL_CB_CLOSE);
    case SQL_TXN_CAPABLE:
        return number16(SQL_TC_NONE);
    case SQL_MAX_CONCURRENT_ACTIVITIES:
    case SQL_MAX_DRIVER_CONNECTIONS:
        return number16(0);
    case SQL_GETDATA_EXTENSIONS:
    case SQL_ASYNC_MODE:
        return number32(0);
    default:
        return fail(dbc, "HY096", "[HNTestDriver] information type not answered");
    }
}

DRIVER_EXPORT SQLRETURN SQLGetDiagRec(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT record, SQLCHAR* state,
                                      SQLINTEGER* native, SQLCHAR* message, SQLSMALLINT size, SQLSMALLINT* length)
{
    Handle* h = checked(type, handle);
    if (h == nullptr)
        return SQL_INVALID_HANDLE;
    if (record != 1 || h->diag.state[0] == 0)
        return SQL_NO_DATA;
    if (state != nullptr)
        std::memcpy(state, h->diag.state, 6);
    if (native != nullptr)
        *native = h->diag.native;
    return copyOut(h->diag.message, message, size, length);
}

// ---------------------------------------------------------------------------
// The bulk entries (left out of the variant built as a driver without them)

#ifndef HNSYB_TESTDRIVER_WITHOUT_BULK

DRIVER_EXPORT SQLRETURN LoadTableFromFile(SQLHDBC dbc, const char* table, const char* dataFile, int errorTolerance,
                                          int warningTolerance, const char* configFile, const char* logFile,
                                          const char* discardFile, unsigned loadStart, unsigned loadCount,
                                          unsigned readBufferSize)
{
    record("LoadTableFromFile\t" + connState(dbc) + "\t" + show(table) + "\t" + show(dataFile) + "\t" +
           std::to_string(errorTolerance) + "\t" + std::to_string(warningTolerance) + "\t" + show(configFile) +
           "\t" + show(logFile) + "\t" + show(discardFile) + "\t" + std::to_string(loadStart) + "\t" +
           std::to_string(loadCount) + "\t" + std::to_string(readBufferSize));
    return bulkResult();
}

DRIVER_EXPORT SQLRETURN ValidateTableFromFile(SQLHDBC dbc, const char* table, const char* configFile, char* messages,
                                              int size, int* count)
{
    record("ValidateTableFromFile\t" + connState(dbc) + "\t" + show(table) + "\t" + show(configFile) + "\t" +
           std::to_string(size) + "\t" + (count != nullptr ? "count" : "(null)"));
    // The messages one after another, each NUL-ended, within `size`.
    const std::string wanted = env("HNSYB_TESTDRIVER_VERIFY");
    int pieces = 0;
    if (messages != nullptr && size > 0 && !wanted.empty()) {
        std::string packed = wanted;
        for (char& c : packed) {
            if (c == '|')
                c = 0;
        }
        const std::size_t n = packed.size() + 1 <= static_cast<std::size_t>(size) ? packed.size() + 1
                                                                                 : static_cast<std::size_t>(size);
        std::memcpy(messages, packed.c_str(), n);
        messages[n - 1] = 0;
        pieces = 1;
        for (char c : wanted)
            pieces += c == '|';
    }
    const char* forced = env("HNSYB_TESTDRIVER_VERIFY_COUNT");
    if (count != nullptr)
        *count = *forced != 0 ? std::atoi(forced) : pieces;
    return bulkResult();
}

DRIVER_EXPORT SQLRETURN ExportTableToFile(SQLHDBC dbc, const char* table, const char* dataFile, int codePage,
                                          int errorTolerance, int warningTolerance, const char* logFile)
{
    record("ExportTableToFile\t" + connState(dbc) + "\t" + show(table) + "\t" + show(dataFile) + "\t" +
           std::to_string(codePage) + "\t" + std::to_string(errorTolerance) + "\t" +
           std::to_string(warningTolerance) + "\t" + show(logFile));
    return bulkResult();
}

DRIVER_EXPORT char* getConnectionErrors(SQLHDBC dbc)
{
    record("getConnectionErrors\t" + connState(dbc));
    const char* messages = env("HNSYB_TESTDRIVER_MESSAGES");
    if (std::strcmp(messages, "(null)") == 0)
        return nullptr;
    return strdup(messages);
}

#endif
