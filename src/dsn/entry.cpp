// Entry of the dialog: finding the back end by name, the driver's pool keys,
// and invokeBackend's run from building the widgets to freeing the record
// (see backend_impl.h and dsn.h).

#include <Xm/Text.h>
#include <Xm/Xm.h>
#include <dlfcn.h>
#include <odbcinst.h>

#include <cstdio>
#include <cstring>

#include "../core/errorlist.h"
#include "../core/strcopy.h"
#include "../dsn.h"
#include "../platform/bosfile.h"
#include "../platform/boslocate.h"
#include "../platform/catalog.h"
#include "../platform/ram.h"
#include "backend_impl.h"
#include "dialog/controltable.h"
#include "dialog/shell.h"
#include "dialog/widgets_impl.h"
#include "messages_impl.h"
#include "wmclose_impl.h"

namespace {

// Room for the setup library's name: a stem, or a whole path to one.
constexpr std::size_t kLibraryName = BOS_MAX_PATH + 1;

// `format` is catalog text: only its first "%s" is filled, so that any other
// '%' in a translation is shown as it stands instead of being taken as a
// directive.
void fillFirstPlaceholder(char* target, std::size_t size, const char* format, const char* value)
{
    const char* mark = std::strstr(format, "%s");
    if (mark == nullptr) {
        strCopy(target, static_cast<long>(size), format);
        return;
    }
    std::snprintf(target, size, "%.*s%s%s", static_cast<int>(mark - format), format, value, mark + 2);
}

// The window manager's close button of the main dialog acts as Cancel.
void closeLikeCancel(Widget, XtPointer, XtPointer) { commonCancelFunctionality(shell1); }

char* duplicate(const char* text)
{
    const std::size_t length = std::strlen(text);
    char* copy = static_cast<char*>(ramAllocC(length + 1));
    if (copy != nullptr)
        std::memcpy(copy, text, length + 1);
    return copy;
}

}  // namespace

int loadResourceLib(unsigned char* name)
{
    BACKEND_HANDLE_CFG = bosLoadLibrary(reinterpret_cast<char*>(name), 0);
    return BACKEND_HANDLE_CFG == nullptr ? 1 : 0;
}

int motifbackend_invoke_dialog(void* parent, driverDSNName* dsn, nd* list, unsigned char* setupLibName)
{
    // Name rule: a final lower-case "s" becomes "r" (the setup library's
    // stem names its back end); any other name simply gains the "r".
    char name[kLibraryName];
    strCopy(name, sizeof name, setupLibName != nullptr ? reinterpret_cast<char*>(setupLibName) : "");
    std::size_t length = std::strlen(name);
    if (length > 0 && name[length - 1] == 's')
        name[--length] = 0;
    strCat(name, sizeof name, "r");
    // The first library loaded in the process serves every later call,
    // whatever name it asks for.
    if (BACKEND_HANDLE_CFG == nullptr && loadResourceLib(reinterpret_cast<unsigned char*>(name)) != 0)
        return 1;
    return callBackendFunc(parent, dsn, list);
}

int callBackendFunc(void* parent, driverDSNName* dsn, nd* list)
{
    if (CONNECT_BACK_DLG == nullptr) {
        void* entry = BACKEND_HANDLE_CFG != nullptr ? dlsym(BACKEND_HANDLE_CFG, BACK_DLG_FUNC) : nullptr;
        if (entry == nullptr) {
            // HINSTFRONTEND names the catalog that holds this text.  The
            // platform's LoadString reads only the process-wide catalog, which
            // nothing on this path has opened, so the named catalog is opened
            // for this one lookup and closed again.
            char format[256];
            nl_catd front = OpenStrings(HINSTFRONTEND, nullptr);
            LoadStringFromOpenFile(front, MSG_NO_BACKEND_ENTRY, format, sizeof format);
            CloseStrings(front);
            char text[512];
            fillFirstPlaceholder(text, sizeof text, format, BACK_DLG_FUNC);
            addDatabaseError(0, MSG_NO_BACKEND_ENTRY, text, 0, static_cast<zuCPType>(1));
            return 1;
        }
        CONNECT_BACK_DLG = reinterpret_cast<BackendEntry>(entry);
    }
    // The driver's pool settings, read from its section of the driver list
    // (the record begins with that section's name); an empty value adds no
    // node.
    if (dsn != nullptr) {
        for (const char* key : CPoolAttrName) {
            char value[256];
            value[0] = 0;
            SQLGetPrivateProfileString(dsn->driverName, key, "", value, sizeof value, ".odbcinst.ini");
            if (value[0] == 0)
                continue;
            nd* node = static_cast<nd*>(ramAllocC(sizeof(nd)));
            if (node == nullptr)
                break;  // the dialog runs without the rest of them
            strCopy(node->key, sizeof node->key, key);
            strCopy(node->value, sizeof node->value, value);
            AddNodeToList(&list, node);
        }
    }
    return CONNECT_BACK_DLG(parent, dsn, list) != 0 ? 1 : 0;
}

int invokeBackend(void* parent, driverDSNName* dsn, nd* list)
{
    ZuErrorList errors(nullptr, 1);
    exit_code = 0;
    shODBCAdmin = static_cast<Widget>(parent);
    XtToolkitInitialize();
    display = parent != nullptr ? XtDisplay(static_cast<Widget>(parent)) : nullptr;
    if (display == nullptr)
        return 1;  // the record and the list stay the caller's

    ZuErrorKeeper::setErrorList(&errors);
    bosSetInstallDir(nullptr);
    Rfile = OpenStrings(nullptr, "HNmback.mo");

    // Failed copies go on as null, as create_shell1 can do without them.
    char* driverName = duplicate(dsn != nullptr ? dsn->driverName : "");
    char* securityTopic = duplicate("sybsecurity");
    char driverPath[DSN_FIELD_SIZE];
    strCopy(driverPath, sizeof driverPath, dsn != nullptr ? dsn->driverPath : "");

    shell1 = nullptr;
    create_shell1(reinterpret_cast<unsigned char*>(driverPath), reinterpret_cast<unsigned char*>(driverName),
                  reinterpret_cast<unsigned char*>(securityTopic));
    initialize(dsn, list, lblSybDSName, iddlgname[ZU_IDX_DSN]);
    if (shell1 != nullptr) {
        // Without this the close button would hide the dialog and leave the
        // loop below waiting for buttons nobody can reach.
        closeButtonCalls(shell1, closeLikeCancel, nullptr);
        XtManageChild(shell1);
        dialog_main_loop(shell1);
    } else {
        exit_code = 1;  // nothing to show: the dialog cannot run
    }

    if (Rfile != ZU_NO_CATALOG) {
        CloseStrings(Rfile);
        Rfile = ZU_NO_CATALOG;  // never looked up again once closed
    }
    if (truststorePasssword != nullptr) {
        XtFree(truststorePasssword);
        truststorePasssword = nullptr;
    }
    ramFreeC(driverName);
    ramFreeC(securityTopic);
    freeAllocatedMemory();
    ZuErrorKeeper::giveUpErrorList();
    return exit_code;
}
