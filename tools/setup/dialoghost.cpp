#include "dialoghost.h"

#include <X11/IntrinsicP.h>  // popup_list: Xt has no public accessor for popups
#include <X11/Shell.h>
#include <X11/StringDefs.h>

#include <cstdlib>
#include <cstring>
#include <cstdio>
#include <vector>

#include "dsn.h"
#include "dsn/attrlist.h"
#include "environment.h"

namespace hnsybs {

namespace {

constexpr const char* kAppName = "hnsybs";
constexpr const char* kAppClass = "HnsybSetup";

// The process's own connection, opened on first use and kept: Motif keeps
// per-display state that is not meant to be torn down and rebuilt, and the
// setup library stays loaded for the same reason (linked with -z nodelete).
struct Connection {
    XtAppContext app = nullptr;
    Display* display = nullptr;
    Widget parent = nullptr;  // the invisible parent shell, kept with the connection
};
Connection connection;

bool openConnection(std::string& error)
{
    if (connection.display != nullptr)
        return true;
    const char* name = std::getenv("DISPLAY");
    if (name == nullptr || name[0] == '\0') {
        error = "no X display: DISPLAY is not set";
        return false;
    }
    XtToolkitInitialize();
    XtAppContext app = XtCreateApplicationContext();
    int argc = 0;
    char* argv[] = {const_cast<char*>(kAppName), nullptr};
    Display* display = XtOpenDisplay(app, nullptr, kAppName, kAppClass, nullptr, 0, &argc, argv);
    if (display == nullptr) {
        XtDestroyApplicationContext(app);
        error = std::string("cannot open X display ") + name;
        return false;
    }
    // An invisible parent: the dialog is a popup of it and is what the user
    // sees.  It is realized so that the dialog has a window to be transient
    // for, and kept for later dialogs (making a Motif shell is not cheap).
    Arg args[4];
    Cardinal n = 0;
    XtSetArg(args[n], XtNmappedWhenManaged, False); ++n;
    XtSetArg(args[n], XtNwidth, 1); ++n;
    XtSetArg(args[n], XtNheight, 1); ++n;
    Widget parent = XtAppCreateShell(kAppName, kAppClass, applicationShellWidgetClass, display, args, n);
    XtRealizeWidget(parent);
    connection.app = app;
    connection.display = display;
    connection.parent = parent;
    return true;
}

// A node of the dialog's list, filled with bounded copies (the attribute
// parser has already refused longer keys and values).
nd* newNode(const std::string& key, const std::string& value)
{
    nd* node = static_cast<nd*>(std::calloc(1, sizeof(nd)));
    if (node == nullptr)
        return nullptr;
    std::snprintf(node->key, sizeof node->key, "%s", key.c_str());
    std::snprintf(node->value, sizeof node->value, "%s", value.c_str());
    return node;
}

nd* buildList(const Attributes& attributes, bool& complete)
{
    nd* head = nullptr;
    complete = true;
    for (const auto& [key, value] : attributes.items()) {
        nd* node = newNode(key, value);
        if (node == nullptr) {
            complete = false;
            break;
        }
        AddNodeToList(&head, node);
    }
    return head;
}

// Everything the dialog built: the popups of the parent (the dialog shell and
// any box it left).  The list is copied first, as destruction edits it.
void destroyPopups(Widget parent)
{
    std::vector<Widget> popups(parent->core.popup_list, parent->core.popup_list + parent->core.num_popups);
    for (Widget popup : popups)
        XtDestroyWidget(popup);
}

}  // namespace

int runDialog(const DialogRequest& request, std::string& error, const DialogHooks* hooks)
{
    prepareEnvironment();
    if (!openConnection(error))
        return 1;

    Widget shell = connection.parent;
    if (hooks != nullptr && hooks->shellReady != nullptr)
        hooks->shellReady(connection.app, shell, hooks->data);

    driverDSNName* record = PopulateDriverDSNStruct(
        request.driver.c_str(), nullptr, request.request,
        request.dsn.empty() ? nullptr : const_cast<char*>(request.dsn.c_str()), nullptr,
        request.fileDsn ? 1 : 0, request.fileDsn ? request.filePath.c_str() : nullptr);
    bool complete = false;
    nd* list = record != nullptr ? buildList(request.initial, complete) : nullptr;
    int rc = 1;
    if (record == nullptr || !complete) {
        FreeLinkedList(list);
        FreeDriverDsnStruct(record);
        error = "out of memory";
    } else {
        char name[64];
        std::snprintf(name, sizeof name, "%s", kSetupLibraryName);
        rc = motifbackend_invoke_dialog(shell, record, list, reinterpret_cast<unsigned char*>(name));
        // On failure the record and list may or may not have been taken
        // over (the library cannot say which); they are left alone rather
        // than risk freeing them twice.
        if (rc != 0)
            error = "the data source dialog could not run (see the dialog library's error list)";
    }

    destroyPopups(shell);
    XSync(connection.display, False);
    return rc;
}

}  // namespace hnsybs
