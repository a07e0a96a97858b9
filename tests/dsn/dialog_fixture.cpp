#include "dialog_fixture.h"

#include <chrono>
#include <cstdlib>

#include "dsn/backend_impl.h"
#include "dsn/dialog/shell.h"
#include "platform/catalog.h"

#include <Xm/ComboBox.h>
#include <Xm/Notebook.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/Xm.h>

namespace {
char driverPath[] = "/nonexistent/libhnsybdriver.so";
char driverName[] = "HNTabsDriver";
char topic[] = "sybsecurity";
}  // namespace

namespace {
// One application context per display for the whole process.  Motif keeps
// caches keyed by the display that outlive XtDestroyApplicationContext, so a
// display is never closed here: each test destroys only its own dialog.
struct Session {
    std::string display;
    XtAppContext app = nullptr;
    Widget top = nullptr;
};
Session session;
}  // namespace

void DialogFixture::SetUp()
{
    GuiTest::SetUp();
    if (session.app == nullptr || session.display != display()) {
        int argc = 1;
        char name[] = "tabs";
        char* argv[] = {name, nullptr};
        XtAppContext app = nullptr;
        Widget top = XtOpenApplication(&app, "TabsTest", nullptr, 0, &argc, argv, nullptr,
                                       applicationShellWidgetClass, nullptr, 0);
        ASSERT_NE(top, nullptr);
        // The administrator's window: realized, never mapped.
        XtVaSetValues(top, XmNwidth, 1, XmNheight, 1, XmNmappedWhenManaged, False, nullptr);
        XtRealizeWidget(top);
        session = {display(), app, top};
    }
    app_ = session.app;
    top_ = session.top;
    bosSetInstallDir(HNSYB_BINARY_DIR);
    Rfile = OpenStrings(nullptr, "HNmback.mo");
    ASSERT_NE(Rfile, ZU_NO_CATALOG) << "catalog HNmback.mo of the build tree";
    shODBCAdmin = top_;
    exit_code = 0;
}

void DialogFixture::TearDown()
{
    keyValNodeHeadL = FreeLinkedList(keyValNodeHeadL);
    FreeDriverDsnStruct(driDsnNameL);
    driDsnNameL = nullptr;
    XtFree(truststorePasssword);
    truststorePasssword = nullptr;
    if (Rfile != ZU_NO_CATALOG)
        CloseStrings(Rfile);
    Rfile = ZU_NO_CATALOG;
    if (shell1 != nullptr) {
        XtDestroyWidget(XtParent(shell1));
        pump(100);  // destruction completes in the next dispatch
    }
    shell1 = nullptr;
    shODBCAdmin = nullptr;
}

void DialogFixture::showDialog()
{
    create_shell1(reinterpret_cast<unsigned char*>(driverPath), reinterpret_cast<unsigned char*>(driverName),
                  reinterpret_cast<unsigned char*>(topic));
    ASSERT_NE(shell1, nullptr);
    XtManageChild(shell1);
    Widget dialogShell = XtParent(shell1);
    ASSERT_TRUE(pumpUntil([&] { return XtIsRealized(dialogShell) && XtWindow(dialogShell) != 0; }));
    XWindowAttributes attrs;
    ASSERT_TRUE(pumpUntil([&] {
        return XGetWindowAttributes(XtDisplay(dialogShell), XtWindow(dialogShell), &attrs) != 0 &&
               attrs.map_state == IsViewable;
    }));
    pump(200);
}

bool DialogFixture::pumpUntil(const std::function<bool()>& done, int timeoutMs)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!done()) {
        if (std::chrono::steady_clock::now() >= deadline)
            return done();
        XFlush(XtDisplay(top_));
        if (XtAppPending(app_) == 0) {
            XSync(XtDisplay(top_), False);
            if (XtAppPending(app_) == 0) {
                struct timespec nap = {0, 5 * 1000 * 1000};
                nanosleep(&nap, nullptr);
                continue;
            }
        }
        XtAppProcessEvent(app_, XtIMAll);
    }
    return true;
}

void DialogFixture::pump(int ms)
{
    pumpUntil([] { return false; }, ms);
}

Widget DialogFixture::find(const char* path) const
{
    return XtNameToWidget(shell1, path);
}

std::string DialogFixture::text(Widget w)
{
    char* value = XmTextGetString(w);
    std::string result = value != nullptr ? value : "";
    XtFree(value);
    return result;
}

std::string DialogFixture::shown(Widget combo)
{
    XmString item = nullptr;
    XtVaGetValues(combo, XmNselectedItem, &item, nullptr);
    if (item == nullptr)
        return "";
    char* value =
        static_cast<char*>(XmStringUnparse(item, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    std::string result = value != nullptr ? value : "";
    XtFree(value);
    XmStringFree(item);  // a combo box hands out a copy
    return result;
}

std::string DialogFixture::labelOf(Widget w)
{
    XmString label = nullptr;
    XtVaGetValues(w, XmNlabelString, &label, nullptr);
    if (label == nullptr)
        return "";
    char* value =
        static_cast<char*>(XmStringUnparse(label, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    std::string result = value != nullptr ? value : "";
    XtFree(value);
    XmStringFree(label);  // a label hands out a copy of its string
    return result;
}

void DialogFixture::selectPage(Widget page)
{
    int number = 0;
    XtVaGetValues(page, XmNpageNumber, &number, nullptr);
    XtVaSetValues(XtParent(page), XmNcurrentPageNumber, number, nullptr);
    pump(150);
}

void DialogFixture::centreOf(Widget w, int& x, int& y) const
{
    Window child;
    Dimension width = 0, height = 0;
    XtVaGetValues(w, XmNwidth, &width, XmNheight, &height, nullptr);
    XTranslateCoordinates(XtDisplay(w), XtWindow(w), DefaultRootWindow(XtDisplay(w)), width / 2, height / 2, &x, &y,
                          &child);
}
