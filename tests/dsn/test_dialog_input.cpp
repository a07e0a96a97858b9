// Real input through the X server: xdotool moves the pointer, clicks and
// types; the dialog reacts as it would to a person, and Apply saves what was
// typed into a private unixODBC configuration.
#include <gtest/gtest.h>

#include <string>

#include "dialog_fixture.h"
#include "dsn/backend_impl.h"
#include "dsn/dialog/controltable.h"
#include "odbcenv.h"
#include "support/subprocess.h"

#include <Xm/Notebook.h>
#include <Xm/Text.h>
#include <Xm/Xm.h>

namespace {

void xdotool(const std::vector<std::string>& args)
{
    std::vector<std::string> argv = {"xdotool"};
    argv.insert(argv.end(), args.begin(), args.end());
    RunResult r = runProgram(argv, 20000);
    ASSERT_EQ(r.exitCode, 0) << r.output;
}

}  // namespace

TEST_F(DialogTabs, InputTypedIntoAFieldIsSavedByApply)
{
    PrivateOdbc odbc;
    showDialog();
    driverDSNName* record =
        PopulateDriverDSNStruct(kTestDriver, nullptr, DSN_REQUEST_ADD, const_cast<char*>("tabsdsn"), nullptr, 0, nullptr);
    ASSERT_NE(record, nullptr);
    nd* list = nullptr;
    const char attrs[] = "DSN=tabsdsn\0Database=/tmp/tabs.db\0";
    convertAttributeStringToLinkedList(&list, attrs);
    initialize(record, list, find("*frmSybGen.Data Source Name:"), iddlgname[ZU_IDX_DSN]);

    // Click into the description field and type.
    Widget description = iddlgname[ZU_IDX_DESCRIPTION];
    int x = 0, y = 0;
    centreOf(description, x, y);
    xdotool({"mousemove", "--sync", std::to_string(x), std::to_string(y), "click", "1"});
    pump(100);
    const std::string typed = "typed through the server";
    xdotool({"type", "--delay", "5", typed});
    EXPECT_TRUE(pumpUntil([&] { return text(description) == typed; })) << text(description);

    // Apply through a real click; the user file shows what was typed.
    centreOf(find("*btnApply"), x, y);
    xdotool({"mousemove", "--sync", std::to_string(x), std::to_string(y), "click", "1"});
    EXPECT_TRUE(pumpUntil([&] { return iniValue(odbc.userFile(), "tabsdsn", "Description") == typed; }))
        << readWholeFile(odbc.userFile());
    EXPECT_EQ(iniValue(odbc.userFile(), "tabsdsn", "Database"), "/tmp/tabs.db");
    EXPECT_EQ(iniValue(odbc.userFile(), "ODBC Data Sources", "tabsdsn"), kTestDriver);
    // Apply keeps the dialog up.
    EXPECT_TRUE(XtIsManaged(shell1));
}

TEST_F(DialogTabs, InputClickOnATabTurnsThePage)
{
    showDialog();
    Widget notebook = find("*tmSyb");
    int current = 0, securityNumber = 0;
    XtVaGetValues(notebook, XmNcurrentPageNumber, &current, nullptr);
    XtVaGetValues(XtNameToWidget(notebook, "formSecurityTab"), XmNpageNumber, &securityNumber, nullptr);
    ASSERT_NE(current, securityNumber) << "the dialog opens on General";

    // The Security tab is in view among the tabs at the start.
    Widget securityTab = XtNameToWidget(notebook, "btnSecurity");
    int x = 0, y = 0;
    centreOf(securityTab, x, y);
    xdotool({"mousemove", "--sync", std::to_string(x), std::to_string(y), "click", "1"});
    EXPECT_TRUE(pumpUntil([&] {
        XtVaGetValues(notebook, XmNcurrentPageNumber, &current, nullptr);
        return current == securityNumber;
    })) << current;
    Widget page = XtNameToWidget(notebook, "formSecurityTab");
    EXPECT_TRUE(pumpUntil([&] {
        XWindowAttributes attrs;
        return XGetWindowAttributes(XtDisplay(page), XtWindow(page), &attrs) != 0 && attrs.map_state == IsViewable;
    }));
}
