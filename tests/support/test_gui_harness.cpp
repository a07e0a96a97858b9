// The GUI harness itself: a private Xvfb comes up, DISPLAY points at it, and
// a Motif shell realised there is mapped and exposed.
// gtest first: the X headers define None and Bool as macros.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

#include "support/xvfb.h"

#include <X11/Intrinsic.h>
#include <X11/Shell.h>
#include <Xm/Label.h>
#include <Xm/Xm.h>

class MotifHarness : public GuiTest {};

TEST_F(MotifHarness, ShellIsMappedAndExposedOnThePrivateDisplay)
{
    ASSERT_STREQ(std::getenv("DISPLAY"), display().c_str());
    XtAppContext app = nullptr;
    int argc = 1;
    char name[] = "harness";
    char* argv[] = {name, nullptr};
    Widget top = XtOpenApplication(&app, "Harness", nullptr, 0, &argc, argv, nullptr,
                                   applicationShellWidgetClass, nullptr, 0);
    ASSERT_NE(top, nullptr);
    XmString text = XmStringCreateLocalized(const_cast<char*>("harness"));
    Widget label = XtVaCreateManagedWidget("lbl", xmLabelWidgetClass, top, XmNlabelString, text,
                                           XmNwidth, 200, XmNheight, 50, nullptr);
    XmStringFree(text);
    XtRealizeWidget(top);

    bool exposed = false;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!exposed && std::chrono::steady_clock::now() < deadline) {
        if (XtAppPending(app) == 0) {
            XSync(XtDisplay(top), False);
            continue;
        }
        XEvent ev;
        XtAppNextEvent(app, &ev);
        if (ev.type == Expose && ev.xexpose.window == XtWindow(label))
            exposed = true;
        XtDispatchEvent(&ev);
    }
    EXPECT_TRUE(exposed);
    XWindowAttributes attrs;
    ASSERT_NE(XGetWindowAttributes(XtDisplay(top), XtWindow(label), &attrs), 0);
    EXPECT_EQ(attrs.map_state, IsViewable);
    EXPECT_EQ(attrs.width, 200);
    XtDestroyApplicationContext(app);
}
