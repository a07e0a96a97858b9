/*
 * Fixture for tests of the dialog's tabs: a private Xvfb (GuiTest), an
 * application shell standing in for the administrator's parent widget, the
 * catalog "HNmback.mo" of the build tree, and the dialog built by
 * create_shell1 and shown.  Helpers pump the event queue with a time-out,
 * find widgets by name and read their state.
 */
#ifndef HNSYB_TESTS_DSN_DIALOG_FIXTURE_H
#define HNSYB_TESTS_DSN_DIALOG_FIXTURE_H

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "support/xvfb.h"

#include <X11/Intrinsic.h>

class DialogFixture : public GuiTest {
protected:
    void SetUp() override;
    void TearDown() override;

    // Builds the dialog (create_shell1) and maps it; waits for its Expose.
    void showDialog();
    // Dispatches events until `done` holds or `timeoutMs` passes; the result
    // of `done` at the end.
    bool pumpUntil(const std::function<bool()>& done, int timeoutMs = 10000);
    // Dispatches whatever arrives within `ms`.
    void pump(int ms);

    Widget find(const char* path) const;  // XtNameToWidget(shell1, path)
    static std::string text(Widget w);    // text of a text field or text
    static std::string shown(Widget combo);  // shown item of a drop-down
    static std::string labelOf(Widget w);    // labelString of a label or button
    // Shows the page of the notebook that holds `page`.
    void selectPage(Widget page);
    // Position of a widget's centre on the root window.
    void centreOf(Widget w, int& x, int& y) const;

    XtAppContext app_ = nullptr;
    Widget top_ = nullptr;
};

// One suite for every test of the tabs: one private X server per process,
// which Motif's per-display caches need.
class DialogTabs : public DialogFixture {};

#endif
