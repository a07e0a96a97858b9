// The one-box-at-a-time rule of createMessageDialog across the end of a
// dialog: a front end destroys the main dialog after each call, and the box
// it left goes with it.  The next dialog in the same process must then make
// its box without touching the one that is gone (under ASan a second
// destruction is a use after free; without it, heap corruption).
#include <gtest/gtest.h>

#include "support/xvfb.h"

#include <Xm/MessageB.h>
#include <Xm/Form.h>
#include <Xm/Xm.h>

#include "dsn/msgbox_impl.h"

namespace {

class MessageBoxLifetime : public GuiTest {};

// A form standing in for a main dialog: the boxes are its popups.
Widget mainDialog(Widget top, const char* name)
{
    Widget form = XtVaCreateManagedWidget(name, xmFormWidgetClass, top, XmNwidth, 100, XmNheight, 100, nullptr);
    return form;
}

void destroyed(Widget, XtPointer count, XtPointer) { ++*static_cast<int*>(count); }

TEST_F(MessageBoxLifetime, BoxThatDiedWithItsParentIsNotDestroyedAgain)
{
    int argc = 1;
    char name[] = "msgbox";
    char* argv[] = {name, nullptr};
    XtAppContext app = nullptr;
    Widget top = XtOpenApplication(&app, "MsgBoxTest", nullptr, 0, &argc, argv, nullptr,
                                   applicationShellWidgetClass, nullptr, 0);
    ASSERT_NE(top, nullptr);
    XtVaSetValues(top, XmNmappedWhenManaged, False, nullptr);
    XtRealizeWidget(top);

    char text[] = "first box";
    char ok[] = "OK";
    char empty[] = "";
    char title[] = "Error";

    // First dialog: a box is left up, then the front end destroys the
    // dialog, and the box with it.
    Widget first = mainDialog(top, "first");
    Widget box = createMessageDialog(first, 2, text, ok, empty, title);
    ASSERT_NE(box, nullptr);
    XtManageChild(box);
    int firstBoxDestroyed = 0;
    XtAddCallback(box, XmNdestroyCallback, destroyed, &firstBoxDestroyed);
    XtDestroyWidget(first);  // outside dispatch: done at once
    EXPECT_EQ(firstBoxDestroyed, 1) << "the box is a popup of its dialog and dies with it";

    // Second dialog in the same process: its boxes replace each other as
    // before, and the dead one is not looked at.
    Widget second = mainDialog(top, "second");
    char secondText[] = "second box";
    Widget next = createMessageDialog(second, 2, secondText, ok, empty, title);
    ASSERT_NE(next, nullptr);
    EXPECT_EQ(firstBoxDestroyed, 1) << "the dead box was destroyed a second time";
    int nextDestroyed = 0;
    XtAddCallback(next, XmNdestroyCallback, destroyed, &nextDestroyed);
    char thirdText[] = "third box";
    Widget third = createMessageDialog(second, 1, thirdText, ok, empty, title);
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(nextDestroyed, 1) << "a new box still replaces the live one";
    EXPECT_NE(third, next);

    XtDestroyWidget(second);
    // A box made after that still works (nothing dangles).
    Widget last = mainDialog(top, "third");
    char lastText[] = "last box";
    EXPECT_NE(createMessageDialog(last, 0, lastText, ok, empty, title), nullptr);
    XtDestroyWidget(last);
}

}  // namespace
