// OK of the bulk dialogs: a connection made from the current controls, the
// driver's own connection and library from the driver manager, and the
// driver's entry called by name (bulk_impl.h).
//
// Finding the entries.  unixODBC loads drivers through libltdl, and the
// handle it reports for SQL_DRIVER_HLIB is libltdl's, not a dlopen handle:
// dlsym must not be given it.  The library's file name is asked of libltdl
// for that handle (lt_dlgetinfo, bound by name from the process, where the
// driver manager brought libltdl in), or else read from the driver's
// section of unixODBC's driver file; the library is then opened again with
// RTLD_NOLOAD, which only hands out a dlopen handle for what is loaded
// already, and the entries are looked up through that handle.
#include <dlfcn.h>
#include <odbcinst.h>
#include <sql.h>
#include <sqlext.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "dsn/backend_impl.h"
#include "dsn/dialog/bulk_impl.h"
#include "dsn/dialog/controltable.h"
#include "dsn/msgbox_impl.h"
#include "dsn/testconnect_impl.h"
#include "platform/catalog.h"
#include "platform/ram.h"

namespace {

// Entries of the driver, as this library calls them.
using LoadTableFromFileFn = SQLRETURN (*)(SQLHDBC, const char*, const char*, int, int, const char*, const char*,
                                          const char*, unsigned, unsigned, unsigned);
using ValidateTableFromFileFn = SQLRETURN (*)(SQLHDBC, const char*, const char*, char*, int, int*);
using ExportTableToFileFn = SQLRETURN (*)(SQLHDBC, const char*, const char*, int, int, int, const char*);
using GetConnectionErrorsFn = char* (*)(SQLHDBC);

constexpr int kVerifyBufferSize = 4096;
const unsigned char kMessagesTitle[] = "Messages";

enum class Operation { Load, Verify, Export };

// One connection for one operation, made as Test Connect makes its own:
// the same string, the same completion prompt on the dialog's window.  It is
// kept open while the driver's entry runs; the destructor disconnects.
class BulkConnection {
public:
    BulkConnection(Widget window, char* string)
    {
        if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env_)) ||
            !SQL_SUCCEEDED(SQLSetEnvAttr(env_, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3),
                                         SQL_IS_INTEGER)) ||
            !SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, env_, &dbc_)))
            return;
        SQLCHAR out[1024];
        SQLSMALLINT outLength = 0;
        const SQLRETURN rc = SQLDriverConnect(dbc_, reinterpret_cast<SQLHWND>(window),
                                              reinterpret_cast<SQLCHAR*>(string), SQL_NTS, out, sizeof out,
                                              &outLength, SQL_DRIVER_COMPLETE);
        connected_ = rc == SQL_SUCCESS || rc == SQL_SUCCESS_WITH_INFO;
        // The driver just loaded may have changed the locale.
        std::setlocale(LC_CTYPE, "C");
    }
    ~BulkConnection()
    {
        if (connected_)
            SQLDisconnect(dbc_);
        if (dbc_ != nullptr)
            SQLFreeHandle(SQL_HANDLE_DBC, dbc_);
        if (env_ != nullptr)
            SQLFreeHandle(SQL_HANDLE_ENV, env_);
    }
    BulkConnection(const BulkConnection&) = delete;
    BulkConnection& operator=(const BulkConnection&) = delete;

    bool connected() const { return connected_; }
    SQLHDBC handle() const { return dbc_; }

private:
    SQLHENV env_ = nullptr;
    SQLHDBC dbc_ = nullptr;
    bool connected_ = false;
};

// The file libltdl keeps for one of its handles: lt_dlgetinfo's record
// begins with it.  Null when libltdl is not in the process or has no name.
const char* ltdlFileName(void* handle)
{
    struct LtdlInfo {
        char* filename;  // the first member; the rest is not read
    };
    using GetInfo = const LtdlInfo* (*)(void*);
    auto getInfo = reinterpret_cast<GetInfo>(dlsym(RTLD_DEFAULT, "lt_dlgetinfo"));
    if (getInfo == nullptr || handle == nullptr)
        return nullptr;
    const LtdlInfo* info = getInfo(handle);
    return info != nullptr ? info->filename : nullptr;
}

// A dlopen handle of the driver's library, already loaded by the driver
// manager; null when it cannot be found.  The caller dlcloses it.
void* reopenDriverLibrary(SQLHDBC connection)
{
    void* driverLibrary = nullptr;
    if (SQL_SUCCEEDED(SQLGetInfo(connection, SQL_DRIVER_HLIB, &driverLibrary, 0, nullptr))) {
        if (const char* file = ltdlFileName(driverLibrary)) {
            if (void* handle = dlopen(file, RTLD_NOLOAD | RTLD_LAZY))
                return handle;
        }
    }
    // The driver's registration, as the driver manager read it.
    char path[1024] = "";
    const char* driver = driDsnNameL != nullptr ? driDsnNameL->driverName : "";
    SQLGetPrivateProfileString(driver, "Driver", "", path, sizeof path, "ODBCINST.INI");
    return path[0] != 0 ? dlopen(path, RTLD_NOLOAD | RTLD_LAZY) : nullptr;
}

// A box of the result: text and title from the catalog.
void showResult(Widget window, int textId, int titleId)
{
    nl_catd catalog = OpenStrings(nullptr, "HNmback.mo");
    char text[1024];
    char title[512];
    LoadStringFromOpenFile(catalog, textId, text, sizeof text);
    LoadStringFromOpenFile(catalog, titleId, title, sizeof title);
    if (catalog != ZU_NO_CATALOG)
        CloseStrings(catalog);
    motifMessageBox(window, reinterpret_cast<unsigned char*>(text), reinterpret_cast<unsigned char*>(title), 8192);
}

void showMessages(Widget window, const char* text)
{
    motifMessageBox(window, reinterpret_cast<const unsigned char*>(text), kMessagesTitle, 8192);
}

// "Unable to find <entry>", for an entry the driver does not have.
void showMissing(Widget window, const char* entry)
{
    char text[128];
    std::snprintf(text, sizeof text, "Unable to find %s", entry);
    showMessages(window, text);
}

// The verify messages: `count` NUL-ended texts one after another, joined by
// line feeds; the walk ends at the count, at an empty text or at the end of
// the buffer (which is ended here, whatever the driver wrote).
void joinMessages(char* buffer, int count)
{
    buffer[kVerifyBufferSize - 1] = 0;
    char* end = buffer + kVerifyBufferSize - 1;
    char* p = buffer;
    for (int i = 0; i < count && p < end && *p != 0; ++i) {
        char* nul = p + std::strlen(p);
        if (i + 1 >= count || nul >= end || nul[1] == 0)
            break;
        *nul = '\n';
        p = nul + 1;
    }
}

const char* const kEntryNames[] = {"LoadTableFromFile", "ValidateTableFromFile", "ExportTableToFile"};

// Calls the entry of `operation` and shows its result; the return code.
SQLRETURN callEntry(Operation operation, void* entry, SQLHDBC driverConnection, Widget window)
{
    const BulkInfo& info = GlobalBulkInfo;
    SQLRETURN rc = SQL_ERROR;
    switch (operation) {
    case Operation::Load:
        rc = reinterpret_cast<LoadTableFromFileFn>(entry)(driverConnection, info.tableName, info.dataFileName,
                                                          info.errorTolerance, info.warningTolerance,
                                                          info.configFileName, info.logFileName,
                                                          info.discardFileName, info.loadStart, info.loadCount,
                                                          info.readBufferSize);
        if (static_cast<unsigned short>(rc) < 2)
            showResult(window, MSG_BULK_LOADED, MSG_BULK_LOAD);
        break;
    case Operation::Export:
        rc = reinterpret_cast<ExportTableToFileFn>(entry)(driverConnection, info.tableName, info.dataFileName,
                                                          info.codePage, info.errorTolerance,
                                                          info.warningTolerance, info.logFileName);
        if (static_cast<unsigned short>(rc) < 2)
            showResult(window, MSG_BULK_EXPORTED, MSG_BULK_EXPORT);
        break;
    case Operation::Verify: {
        char* messages = static_cast<char*>(ramAllocC(kVerifyBufferSize));
        if (messages == nullptr) {
            showOutOfMemoryError(window);
            return SQL_SUCCESS;
        }
        // The first byte must be clear; the rest is cleared too, so that a
        // count above what the driver wrote finds an empty text, never
        // stale heap bytes.
        std::memset(messages, 0, kVerifyBufferSize);
        int count = 0;
        rc = reinterpret_cast<ValidateTableFromFileFn>(entry)(driverConnection, info.tableName,
                                                              info.configFileName, messages, kVerifyBufferSize,
                                                              &count);
        if (static_cast<unsigned short>(rc) < 2) {
            messages[kVerifyBufferSize - 1] = 0;
            if (count == 0 && messages[0] == 0) {
                showResult(window, MSG_BULK_VERIFIED, MSG_BULK_VERIFY);
            } else if (count != 0 && messages[0] != 0) {
                joinMessages(messages, count);
                nl_catd catalog = OpenStrings(nullptr, "HNmback.mo");
                char title[512];
                LoadStringFromOpenFile(catalog, MSG_BULK_VERIFY, title, sizeof title);
                if (catalog != ZU_NO_CATALOG)
                    CloseStrings(catalog);
                motifMessageBox(window, reinterpret_cast<unsigned char*>(messages),
                                reinterpret_cast<unsigned char*>(title), 8192);
            }
        }
        ramFreeC(messages);
        break;
    }
    }
    return rc;
}

void runOperation(Operation operation)
{
    Widget window = shell1;
    if (populateLinkedListFromUI() == 0)
        return;
    char* string = createConnectionString();
    // Nothing is saved: the controls only fed the connection string.
    keyValNodeHeadL = FreeLinkedList(keyValNodeHeadL);
    if (string == nullptr) {
        showOutOfMemoryError(window);
        return;
    }
    {
        BulkConnection connection(window, string);
        // A failed connection shows nothing, unlike Test Connect.
        if (connection.connected()) {
            SQLHDBC driverConnection = nullptr;
            SQLGetInfo(connection.handle(), SQL_DRIVER_HDBC, &driverConnection, 0, nullptr);
            void* library = reopenDriverLibrary(connection.handle());
            const char* name = kEntryNames[static_cast<int>(operation)];
            void* entry = library != nullptr ? dlsym(library, name) : nullptr;
            if (entry == nullptr) {
                // Never called through a null pointer: a driver without the
                // entry is told to the user instead.
                showMissing(window, name);
            } else if (callEntry(operation, entry, driverConnection, window) != SQL_SUCCESS) {
                auto errors = reinterpret_cast<GetConnectionErrorsFn>(dlsym(library, "getConnectionErrors"));
                if (errors == nullptr) {
                    showMessages(window, "Unable to find getConnectionErrors");
                } else {
                    char* text = errors(driverConnection);
                    showMessages(window, text != nullptr ? text : "Out of memory");
                    std::free(text);  // the driver's malloc
                }
            }
            if (library != nullptr)
                dlclose(library);  // drops only the reference RTLD_NOLOAD added
        }
    }
    ramFreeC(string);
}

}  // namespace

void loadTableCB(Widget, XtPointer, XtPointer) { runOperation(Operation::Load); }
void verifyDataCB(Widget, XtPointer, XtPointer) { runOperation(Operation::Verify); }
void exportTableCB(Widget, XtPointer, XtPointer) { runOperation(Operation::Export); }
