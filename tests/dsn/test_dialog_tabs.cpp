// The dialog as it is built: its fixed size, the nine tabs with their texts
// from the catalog, the rectangles of the Form attachments, screenshots of
// every page, and the dependencies between controls.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>

#include "dialog_fixture.h"
#include "dsn/backend_impl.h"
#include "dsn/dialog/builders.h"
#include "dsn/dialog/controltable.h"
#include "dsn/dialog/pooltab.h"
#include "support/subprocess.h"

#include <X11/Xutil.h>
#include <Xm/ComboBox.h>
#include <Xm/Notebook.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>
#include <Xm/Xm.h>

namespace {

// Geometry of a widget inside its parent form.
struct Rect {
    int top, bottom, left, right;
};
Rect rectOf(Widget w)
{
    Position x = 0, y = 0;
    Dimension width = 0, height = 0;
    XtVaGetValues(w, XmNx, &x, XmNy, &y, XmNwidth, &width, XmNheight, &height, nullptr);
    // Borders count into the attachment rectangle.
    Dimension border = 0;
    XtVaGetValues(w, XmNborderWidth, &border, nullptr);
    return {y, y + height + 2 * border, x, x + width + 2 * border};
}

void expectRect(Widget w, Rect want)
{
    ASSERT_NE(w, nullptr);
    Rect got = rectOf(w);
    EXPECT_EQ(got.top, want.top) << XtName(w);
    EXPECT_EQ(got.bottom, want.bottom) << XtName(w);
    EXPECT_EQ(got.left, want.left) << XtName(w);
    EXPECT_EQ(got.right, want.right) << XtName(w);
}

}  // namespace

TEST_F(DialogTabs, ShellHasOneFixedSizeAndTheButtonRow)
{
    showDialog();
    Widget dialogShell = XtParent(shell1);
    Display* dpy = XtDisplay(dialogShell);
    XSizeHints hints;
    long supplied = 0;
    ASSERT_NE(XGetWMNormalHints(dpy, XtWindow(dialogShell), &hints, &supplied), 0);
    // Minimum, maximum and base size are all 525 x 505: no resizing.
    EXPECT_EQ(hints.min_width, 525);
    EXPECT_EQ(hints.max_width, 525);
    EXPECT_EQ(hints.base_width, 525);
    EXPECT_EQ(hints.min_height, 505);
    EXPECT_EQ(hints.max_height, 505);
    EXPECT_EQ(hints.base_height, 505);
    XWindowAttributes attrs;
    ASSERT_NE(XGetWindowAttributes(dpy, XtWindow(dialogShell), &attrs), 0);
    EXPECT_EQ(attrs.width, 525);
    EXPECT_EQ(attrs.height, 505);

    char* title = nullptr;
    XtVaGetValues(dialogShell, XmNtitle, &title, nullptr);
    ASSERT_NE(title, nullptr);
    EXPECT_STREQ(title, "ODBC Sybase Driver Setup");

    expectRect(find("*tmSyb"), {5, 430, 5, 515});
    expectRect(find("*btnTestConnect"), {435, 470, 115, 210});
    expectRect(find("*btnOK"), {435, 470, 220, 305});
    expectRect(find("*btnCancel"), {435, 470, 315, 400});
    expectRect(find("*btnApply"), {435, 470, 410, 495});
    EXPECT_EQ(labelOf(find("*btnTestConnect")), "Test Connect");
    EXPECT_EQ(labelOf(find("*btnOK")), "OK");
    EXPECT_EQ(labelOf(find("*btnCancel")), "Cancel");
    EXPECT_EQ(labelOf(find("*btnApply")), "Apply");

    Widget form = find("*frmSybMain");
    Widget defaultButton = nullptr, cancelButton = nullptr;
    XtVaGetValues(form, XmNdefaultButton, &defaultButton, XmNcancelButton, &cancelButton, nullptr);
    EXPECT_EQ(defaultButton, find("*btnOK"));
    EXPECT_EQ(cancelButton, find("*btnCancel"));
    // No page arrows.
    Widget scroller = find("*tmSyb.PageScroller");
    ASSERT_NE(scroller, nullptr);
    EXPECT_FALSE(XtIsManaged(scroller));
}

TEST_F(DialogTabs, NineTabsPairedWithTheirPagesInCreationOrder)
{
    showDialog();
    Widget notebook = find("*tmSyb");
    // Creation order decides the page numbers; each tab button carries the
    // page number of the page made just before it.
    struct {
        const char* page;
        const char* tab;
        const char* label;
    } const tabs[] = {
        {"frmSybGen", "btnSybGen", "General"},         {"Advanced", "btnSybAdvanced", "Advanced"},
        {"frmbulk", "btnbulk", "Bulk"},                {"frmPool", "btnPool", "Pooling"},
        {"formSecurityTab", "btnSecurity", "Security"}, {"frmSybConnection", "btnSybConnection", "Connection"},
        {"frmPerformance", "btnPerformance", "Performance"}, {"frmFailover", "btnFailover", "Failover"},
        {"AboutForm", "btnAbout", "About"},
    };
    int previous = 0;
    for (const auto& t : tabs) {
        Widget page = XtNameToWidget(notebook, t.page);
        Widget tab = XtNameToWidget(notebook, t.tab);
        ASSERT_NE(page, nullptr) << t.page;
        ASSERT_NE(tab, nullptr) << t.tab;
        EXPECT_TRUE(XtIsManaged(page)) << t.page;
        EXPECT_TRUE(XtIsManaged(tab)) << t.tab;
        EXPECT_EQ(labelOf(tab), t.label);
        int pageNumber = 0, tabNumber = 0;
        unsigned char pageType = 0, tabType = 0;
        XtVaGetValues(page, XmNpageNumber, &pageNumber, XmNnotebookChildType, &pageType, nullptr);
        XtVaGetValues(tab, XmNpageNumber, &tabNumber, XmNnotebookChildType, &tabType, nullptr);
        EXPECT_EQ(pageType, XmPAGE) << t.page;
        EXPECT_EQ(tabType, XmMAJOR_TAB) << t.tab;
        EXPECT_EQ(pageNumber, tabNumber) << t.tab;
        EXPECT_GT(pageNumber, previous) << t.page;
        previous = pageNumber;
    }
}

TEST_F(DialogTabs, ControlsStandInTheirRectangles)
{
    showDialog();
    // A sample from every tab, as distances from the page's top-left corner.
    expectRect(find("*frmSybGen.txtSybDSNAme"), {5, 30, 160, 370});
    expectRect(find("*frmSybGen.btnSybgenHelp"), {5, 30, 400, 480});
    expectRect(find("*frmSybGen.txtSybDBName"), {95, 120, 160, 370});
    expectRect(find("*Advanced.cmbSybCursPos"), {25, 50, 210, 385});
    expectRect(find("*Advanced.txtSybDefBufSz"), {50, 75, 305, 385});
    expectRect(find("*Advanced.txtInitializationString"), {100, 125, 210, 480});
    expectRect(find("*Advanced.txtQueryTimeout"), {330, 355, 210, 260});
    expectRect(find("*frmSybConnection.txtSybLang"), {125, 150, 190, 390});
    expectRect(find("*frmPerformance.cbprepmethod"), {40, 70, 160, 355});
    expectRect(find("*frmPerformance.btnperfhelp"), {5, 35, 395, 480});
    expectRect(find("*frmFailover.txtconretdel"), {35, 60, 410, 480});
    expectRect(XtParent(find("*frmFailover*txtaltserv")), {95, 290, 5, 480});
    expectRect(find("*frmPool.MaxPoolSize"), {80, 105, 205, 300});
    expectRect(find("*frmPool.btnPoolhelp"), {20, 45, 300, 360});
    // Security, variant 1: help at 310 + 60, frames from 30 and t + 50.
    expectRect(find("*formSecurityTab.btnSectabHelp"), {5, 30, 370, 450});
    expectRect(find("*formSecurityTab.frameAuthentication"), {30, 175, 5, 450});
    expectRect(find("*formSecurityTab.frameEncryption"), {175, 340, 5, 450});
    expectRect(find("*formEncryption.txtHostNameCertSectab"), {115, 140, 170, 375});
    expectRect(find("*formAuthentication.txtGssLibSectab"), {95, 120, 175, 375});

    // The code page field exists for its value alone.
    Widget codePage = find("*Advanced.txtappcodepage");
    ASSERT_NE(codePage, nullptr);
    EXPECT_FALSE(XtIsManaged(codePage));
    EXPECT_EQ(text(codePage), "4");
}

namespace {

// Screenshot of the whole screen into `file`; the MD5 sum of its pixels and
// the number of distinct colours in it.
struct Shot {
    std::string pixelSum;
    int colours = 0;
};
Shot screenshot(const std::string& file)
{
    Shot shot;
    RunResult r = runProgram({"sh", "-c", "xwd -root -silent | /usr/bin/convert xwd:- '" + file + "'"}, 30000);
    EXPECT_EQ(r.exitCode, 0) << r.output;
    RunResult colours = runProgram({"/usr/bin/identify", "-format", "%k", file}, 30000);
    EXPECT_EQ(colours.exitCode, 0) << colours.output;
    shot.colours = colours.exitCode == 0 ? std::stoi(colours.output) : 0;
    RunResult sum = runProgram({"sh", "-c", "/usr/bin/convert '" + file + "' rgb:- | md5sum"}, 30000);
    EXPECT_EQ(sum.exitCode, 0);
    shot.pixelSum = sum.output;
    return shot;
}

}  // namespace

TEST_F(DialogTabs, ScreenshotOfEveryPageIsDrawnAndDistinct)
{
    const std::string dir = std::string(HNSYB_BINARY_DIR) + "/tests/dsn/tab-shots";
    std::filesystem::create_directories(dir);
    const Shot empty = screenshot(dir + "/empty-screen.png");
    EXPECT_EQ(empty.colours, 1) << "nothing is drawn yet";
    showDialog();
    Widget notebook = find("*tmSyb");
    const char* pages[] = {"frmSybGen", "Advanced",    "frmSybConnection", "formSecurityTab", "frmPerformance",
                           "frmFailover", "frmbulk",   "frmPool",          "AboutForm"};
    std::set<std::string> images;
    for (const char* name : pages) {
        selectPage(XtNameToWidget(notebook, name));
        XSync(XtDisplay(notebook), False);
        pump(100);
        const Shot shot = screenshot(dir + "/" + name + ".png");
        // Motif draws a page in background, two shadows and the text colour
        // at least; the empty screen has a single colour.
        EXPECT_GE(shot.colours, 4) << name;
        EXPECT_NE(shot.pixelSum, empty.pixelSum) << name;
        images.insert(shot.pixelSum);
    }
    // Every page shows something of its own.
    EXPECT_EQ(images.size(), std::size(pages));
}

TEST_F(DialogTabs, FailoverModeEnablesGranularityAndPreconnect)
{
    showDialog();
    Widget mode = find("*frmFailover.cbFailoverMode");
    Widget granularity = nullptr;
    // Both lists bear the name "cbFailoverMode": the second is granularity.
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(find("*frmFailover"), XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; i++)
        if (std::strcmp(XtName(children[i]), "cbFailoverMode") == 0 && children[i] != mode)
            granularity = children[i];
    ASSERT_NE(granularity, nullptr);
    Widget preconnect = find("*frmFailover.Failover Preconnect");
    ASSERT_NE(preconnect, nullptr);
    EXPECT_FALSE(XtIsSensitive(granularity));
    EXPECT_FALSE(XtIsSensitive(preconnect));
    EXPECT_TRUE(XmToggleButtonGetState(preconnect));  // set at start, greyed

    auto choose = [&](const char* item) {
        XmString s = XmStringCreateLocalized(const_cast<char*>(item));
        XmComboBoxSelectItem(mode, s);
        XmComboBoxCallbackStruct cbs = {};
        cbs.reason = XmCR_SELECT;
        cbs.item_or_text = s;
        XtCallCallbacks(mode, XmNselectionCallback, &cbs);
        XmStringFree(s);
    };
    choose("2 - Select");
    EXPECT_TRUE(XtIsSensitive(granularity));
    EXPECT_TRUE(XtIsSensitive(preconnect));
    choose("0 - Connection");
    EXPECT_FALSE(XtIsSensitive(granularity));
    EXPECT_FALSE(XtIsSensitive(preconnect));
}

TEST_F(DialogTabs, PoolingToggleGreysItsFieldsAndKeepsTheirText)
{
    showDialog();
    Widget enable = find("*frmPool.tgEnableConnPool");
    Widget fields[] = {find("*frmPool.tgConnReset"), find("*frmPool.MaxPoolSize"), find("*frmPool.MinPoolSize"),
                       find("*frmPool.LBTimeout")};
    for (Widget w : fields) {
        ASSERT_NE(w, nullptr);
        EXPECT_FALSE(XtIsSensitive(w)) << XtName(w);
    }
    EXPECT_EQ(text(fields[1]), "100");
    XmToggleButtonSetState(enable, True, True);
    for (Widget w : fields)
        EXPECT_TRUE(XtIsSensitive(w)) << XtName(w);
    XmTextFieldSetString(fields[1], const_cast<char*>("250"));
    XmToggleButtonSetState(enable, False, True);
    for (Widget w : fields)
        EXPECT_FALSE(XtIsSensitive(w)) << XtName(w);
    EXPECT_EQ(text(fields[1]), "250");
    // The labels stay sensitive.
    EXPECT_TRUE(XtIsSensitive(find("*frmPool.lbMaxPoolSize")));
}

TEST_F(DialogTabs, ReturnInAlternateServersAddsNothingButPastedLinesPass)
{
    showDialog();
    Widget servers = find("*frmFailover*txtaltserv");
    ASSERT_NE(servers, nullptr);
    XmTextSetString(servers, const_cast<char*>("host1:5000"));
    XmTextInsert(servers, 10, const_cast<char*>("\n"));
    EXPECT_EQ(text(servers), "host1:5000");
    XmTextInsert(servers, 10, const_cast<char*>(",\nhost2:5000"));
    EXPECT_EQ(text(servers), "host1:5000,\nhost2:5000");
}
