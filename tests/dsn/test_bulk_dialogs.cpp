// The Bulk tab's dialogs through the whole dialog (invokeBackend) on a
// private X server, with the bulk test driver loaded by unixODBC from a
// private odbcinst.ini.  Each test drives the running dialog with steps run
// from its event loop (also from inside the nested loop of a message box),
// then checks what reached the driver and which boxes were shown.
// gtest first: the X headers define None and Bool as macros.
#include <gtest/gtest.h>

#include <sql.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "driver/bulkdriver_env.h"
#include "dsn.h"
#include "dsn/attrlist.h"
#include "dsn/backend_impl.h"
#include "dsn/dialog_script.h"
#include "dsn/dialog/bulk_impl.h"
#include "odbcenv.h"
#include "platform/catalog.h"
#include "support/xvfb.h"

#include <X11/Intrinsic.h>
#include <X11/IntrinsicP.h>
#include <X11/CoreP.h>
#include <X11/Shell.h>
#include <Xm/ComboBox.h>
#include <Xm/List.h>
#include <Xm/MessageB.h>
#include <Xm/PushB.h>
#include <Xm/Text.h>
#include <Xm/TextF.h>
#include <Xm/Xm.h>

namespace {

std::string catalogText(int id)
{
    nl_catd catalog = OpenStrings(nullptr, "HNmback.mo");
    char text[1024];
    LoadStringFromOpenFile(catalog, id, text, sizeof text);
    CloseStrings(catalog);
    return text;
}

std::string fieldText(Widget w)
{
    char* text = w != nullptr ? XmTextGetString(w) : nullptr;
    std::string result = text != nullptr ? text : "";
    XtFree(text);
    return result;
}

Widget field(Widget dialog, const char* name) { return XtNameToWidget(dialog, (std::string("*") + name).c_str()); }

void type(Widget dialog, const char* name, const std::string& text)
{
    Widget w = field(dialog, name);
    ASSERT_NE(w, nullptr) << name;
    XmTextSetString(w, const_cast<char*>(text.c_str()));
}

bool viewable(Widget w)
{
    if (w == nullptr || !XtIsRealized(w))
        return false;
    XWindowAttributes attributes;
    return XGetWindowAttributes(XtDisplay(w), XtWindow(w), &attributes) != 0 && attributes.map_state == IsViewable;
}

// A box shown by the operation: its window title and its text.
struct Box {
    std::string title;
    std::string text;
    bool operator==(const Box&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Box& box) { return out << "[" << box.title << ": " << box.text << "]"; }

// The message box on screen (a managed "dialog" with a "msgText"), or null.
Widget shownBox()
{
    if (shell1 == nullptr)
        return nullptr;
    // Boxes are popups of the main dialog: look at each popup's child.
    WidgetList children = shell1->core.popup_list;
    const Cardinal count = shell1->core.num_popups;
    for (Cardinal i = 0; i < count; ++i) {
        Widget box = XtNameToWidget(children[i], "dialog");
        if (box != nullptr && XtIsManaged(box) && XtNameToWidget(box, "*msgText") != nullptr)
            return box;
    }
    return nullptr;
}

// Presses a button of a dialog as the user would: its activate callbacks.
void press(Widget dialog, unsigned char child)
{
    Widget button = XmMessageBoxGetChild(dialog, child);
    XmPushButtonCallbackStruct call{};
    call.reason = XmCR_ACTIVATE;
    XtCallCallbacks(button, XmNactivateCallback, &call);
}

// Runs `action` from a timer, so that a step can start something that
// opens a box (whose loop runs further steps) and return at once.
void later(XtAppContext app, std::function<void()> action)
{
    auto* held = new std::function<void()>(std::move(action));
    XtAppAddTimeOut(app, 0,
                    [](XtPointer data, XtIntervalId*) {
                        std::unique_ptr<std::function<void()>> run(static_cast<std::function<void()>*>(data));
                        (*run)();
                    },
                    held);
}

bool dialogMapped() { return shell1 != nullptr && viewable(XtParent(shell1)); }

Widget bulkButton(const char* name) { return XtNameToWidget(shell1, (std::string("*frmbulk.") + name).c_str()); }

class BulkDialogs : public GuiTest {
protected:
    static void SetUpTestSuite()
    {
        GuiTest::SetUpTestSuite();
        int argc = 1;
        char name[] = "bulk";
        char* argv[] = {name, nullptr};
        top_ = XtOpenApplication(&app_, "BulkDialogs", nullptr, 0, &argc, argv, nullptr, applicationShellWidgetClass,
                                 nullptr, 0);
        if (top_ != nullptr) {
            XtVaSetValues(top_, XmNwidth, 10, XmNheight, 10, XmNmappedWhenManaged, False, nullptr);
            XtRealizeWidget(top_);
        }
    }
    static void TearDownTestSuite()
    {
        if (app_ != nullptr)
            XtDestroyApplicationContext(app_);
        app_ = nullptr;
        top_ = nullptr;
        GuiTest::TearDownTestSuite();
    }
    void SetUp() override
    {
        GuiTest::SetUp();
        ASSERT_NE(top_, nullptr);
        odbc_ = std::make_unique<PrivateOdbc>();
        driver_ = std::make_unique<BulkDriverEnv>(*odbc_);
        boxes_.clear();
    }
    void TearDown() override
    {
        driver_.reset();
        odbc_.reset();
    }

    // Runs the dialog for `driverName` with the steps; its exit code.
    int run(std::vector<Script::Step> steps, const char* driverName = kBulkDriver)
    {
        driverDSNName* dsn = PopulateDriverDSNStruct(driverName, nullptr, DSN_REQUEST_ADD,
                                                     const_cast<char*>("BulkDsn"), nullptr, 0, nullptr);
        Script script(std::move(steps), [] {
            if (Widget box = shownBox())
                press(box, XmDIALOG_OK_BUTTON);
        });
        const int code = script.run(app_, top_, dsn, nullptr, 30000);
        EXPECT_TRUE(script.finished());
        EXPECT_FALSE(script.expired());
        return code;
    }

    // Steps: press OK of `dialog` (from a timer: the result boxes loop),
    // then take every box shown until `boxes` were seen and the operation
    // ended.
    std::vector<Script::Step> okAndCollect(Widget* dialog, std::size_t boxes)
    {
        auto pressed = std::make_shared<bool>(false);
        auto seen = std::make_shared<std::size_t>(0);
        return {
            [this, dialog, pressed] {
                *pressed = false;
                later(app_, [dialog, pressed] {
                    press(*dialog, XmDIALOG_OK_BUTTON);
                    *pressed = true;
                });
                return true;
            },
            [this, pressed, seen, boxes] {
                if (Widget box = shownBox()) {
                    char* title = nullptr;
                    XtVaGetValues(XtParent(box), XmNtitle, &title, nullptr);
                    boxes_.push_back({title != nullptr ? title : "", fieldText(XtNameToWidget(box, "*msgText"))});
                    ++*seen;
                    press(box, XmDIALOG_OK_BUTTON);
                    return false;
                }
                return *pressed && *seen >= boxes;
            },
        };
    }

    // Steps: open the dialog by its button on the Bulk tab.
    static Script::Step open(const char* button, Widget* dialog)
    {
        return [button, dialog] {
            Widget b = bulkButton(button);
            if (b == nullptr)
                return false;
            XmPushButtonCallbackStruct call{};
            call.reason = XmCR_ACTIVATE;
            XtCallCallbacks(b, XmNactivateCallback, &call);
            return *dialog != nullptr && XtIsManaged(*dialog);
        };
    }

    static Script::Step cancel(Widget* dialog)
    {
        return [dialog] {
            press(*dialog, XmDIALOG_CANCEL_BUTTON);
            return true;
        };
    }

    static std::vector<Script::Step> join(std::vector<std::vector<Script::Step>> parts)
    {
        std::vector<Script::Step> all;
        for (auto& part : parts)
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }

    static XtAppContext app_;
    static Widget top_;
    std::unique_ptr<PrivateOdbc> odbc_;
    std::unique_ptr<BulkDriverEnv> driver_;
    std::vector<Box> boxes_;
};

XtAppContext BulkDialogs::app_ = nullptr;
Widget BulkDialogs::top_ = nullptr;

}  // namespace

TEST_F(BulkDialogs, LoadSendsTheFieldsToTheDriversOwnConnectionAndShowsTheResult)
{
    std::vector<std::string> shownAtOpen;
    const int code = run(join({
        {[] { return dialogMapped(); }, open("loadTable", &loadTableDialog),
         [&] {
             for (const char* name : {"errorToleranceText", "warningToleranceText", "loadStartText", "loadCountText",
                                      "readBufferSizeText", "tableNameText"})
                 shownAtOpen.push_back(fieldText(field(loadTableDialog, name)));
             type(loadTableDialog, "tableNameText", "orders");
             type(loadTableDialog, "dataFileText", "/data/orders.CSV");
             type(loadTableDialog, "discardFileText", "/data/orders.bad");
             type(loadTableDialog, "errorToleranceText", "5");
             type(loadTableDialog, "warningToleranceText", "-7");
             type(loadTableDialog, "loadStartText", "10");
             type(loadTableDialog, "loadCountText", "4000000000");
             type(loadTableDialog, "readBufferSizeText", "x12");  // refused: the value stays
             return true;
         }},
        okAndCollect(&loadTableDialog, 1),
        {cancel(&loadTableDialog)},
    }));
    EXPECT_EQ(code, 0);
    EXPECT_EQ(shownAtOpen, (std::vector<std::string>{"-1", "-1", "1", "4294967295", "2048", ""}));

    auto connects = driver_->calls("SQLDriverConnect");
    ASSERT_EQ(connects.size(), 1u);
    EXPECT_EQ(connects[0][1].rfind(std::string("DRIVER={") + kBulkDriver + "};", 0), 0u) << connects[0][1];
    auto loads = driver_->calls("LoadTableFromFile");
    ASSERT_EQ(loads.size(), 1u);
    const std::vector<std::string> want = {"LoadTableFromFile", "conn=driver", "orders", "/data/orders.CSV", "5", "-7",
                                           "/data/orders.xml", "/data/orders.log", "/data/orders.bad", "10",
                                           "4000000000", "2048"};
    EXPECT_EQ(loads[0], want);
    EXPECT_TRUE(driver_->calls("getConnectionErrors").empty()) << "a clean success asks for no messages";
    EXPECT_EQ(driver_->calls("SQLDisconnect").size(), 1u);
    EXPECT_EQ(boxes_, (std::vector<Box>{{catalogText(24317), catalogText(24341)}}));
    EXPECT_FALSE(hasSection(odbc_->userFile(), "BulkDsn")) << "nothing is saved";
}

TEST_F(BulkDialogs, ResultCodesDecideWhichBoxesShow)
{
    std::vector<std::vector<Box>> perAnswer;
    auto answer = [this, &perAnswer](int result, const char* messages) {
        return Script::Step([this, &perAnswer, result, messages] {
            perAnswer.push_back(boxes_);
            boxes_.clear();
            driver_->answer(result, messages);
            return true;
        });
    };
    auto reopen = open("loadTable", &loadTableDialog);
    run(join({
        {[] { return dialogMapped(); }, reopen, answer(SQL_SUCCESS_WITH_INFO, "row 3 truncated")},
        okAndCollect(&loadTableDialog, 2),
        {reopen, answer(SQL_ERROR, "table orders does not exist")},
        okAndCollect(&loadTableDialog, 1),
        {reopen, answer(SQL_ERROR, "(null)")},
        okAndCollect(&loadTableDialog, 1),
        {reopen, answer(0, "")},
        {cancel(&loadTableDialog)},
    }));
    ASSERT_EQ(perAnswer.size(), 4u);
    EXPECT_TRUE(perAnswer[0].empty());
    const std::string load = catalogText(24317);
    EXPECT_EQ(perAnswer[1], (std::vector<Box>{{load, catalogText(24341)}, {"Messages", "row 3 truncated"}}))
        << "success with information shows both boxes";
    EXPECT_EQ(perAnswer[2], (std::vector<Box>{{"Messages", "table orders does not exist"}}));
    EXPECT_EQ(perAnswer[3], (std::vector<Box>{{"Messages", "Out of memory"}}));
    EXPECT_EQ(driver_->calls("LoadTableFromFile").size(), 3u);
    EXPECT_EQ(driver_->calls("getConnectionErrors").size(), 3u);
    for (const auto& call : driver_->calls("getConnectionErrors"))
        EXPECT_EQ(call[1], "conn=driver");
}

TEST_F(BulkDialogs, VerifyJoinsTheDriversMessagesOrReportsACleanFile)
{
    std::vector<std::vector<Box>> perRun;
    auto next = [this, &perRun](const char* messages, int count) {
        return Script::Step([this, &perRun, messages, count] {
            perRun.push_back(boxes_);
            boxes_.clear();
            driver_->verifyMessages(messages, count);
            return true;
        });
    };
    auto openVerify = open("verifyData", &verifyDataDialog);
    run(join({
        {[] { return dialogMapped(); }, open("loadTable", &loadTableDialog),
         [] {
             // Typed in the load dialog, seen by the verify dialog.
             type(loadTableDialog, "tableNameText", "parts");
             type(loadTableDialog, "dataFileText", "/in/parts.csv");
             type(loadTableDialog, "configFileText", "/in/edited.xml");
             XtUnmanageChild(loadTableDialog);
             return true;
         },
         openVerify, next("", -1)},
        okAndCollect(&verifyDataDialog, 1),
        {openVerify, next("column a differs|column b missing|column c too long", -1)},
        okAndCollect(&verifyDataDialog, 1),
        {openVerify, next("one|two", 5)},
        okAndCollect(&verifyDataDialog, 1),
        {openVerify, next("", -1)},
        {cancel(&verifyDataDialog)},
    }));
    ASSERT_EQ(perRun.size(), 4u);
    const std::string verify = catalogText(24318);
    EXPECT_EQ(perRun[1], (std::vector<Box>{{verify, catalogText(24343)}}));
    EXPECT_EQ(perRun[2], (std::vector<Box>{{verify, "column a differs\ncolumn b missing\ncolumn c too long"}}));
    EXPECT_EQ(perRun[3], (std::vector<Box>{{verify, "one\ntwo"}})) << "the walk ends at an empty text";
    auto calls = driver_->calls("ValidateTableFromFile");
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0], (std::vector<std::string>{"ValidateTableFromFile", "conn=driver", "parts", "/in/edited.xml",
                                                  "4096", "count"}));
}

TEST_F(BulkDialogs, ExportSendsTheChosenCodePage)
{
    int items = 0;
    std::string selected;
    run(join({
        {[] { return dialogMapped(); }, open("exportTable", &exportTableDialog),
         [&] {
             Widget pages = field(exportTableDialog, "codePages");
             XtVaGetValues(pages, XmNitemCount, &items, nullptr);
             selected = fieldText(XtNameToWidget(pages, "*Text"));
             type(exportTableDialog, "tableNameText", "stock");
             type(exportTableDialog, "dataFileText", "/out/stock.csv");
             type(exportTableDialog, "warningToleranceText", "3");
             XmTextFieldSetString(XtNameToWidget(pages, "*Text"), const_cast<char*>("2252 - windows-1252"));
             return true;
         }},
        okAndCollect(&exportTableDialog, 1),
        {[] {
             XmTextFieldSetString(XtNameToWidget(field(exportTableDialog, "codePages"), "*Text"),
                                  const_cast<char*>("1014"));
             return true;
         }},
        okAndCollect(&exportTableDialog, 1),
        {cancel(&exportTableDialog)},
    }));
    EXPECT_EQ(items, ZU_BULK_CODE_PAGE_COUNT);
    EXPECT_EQ(selected, "4 - iso-8859-1");
    auto calls = driver_->calls("ExportTableToFile");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0], (std::vector<std::string>{"ExportTableToFile", "conn=driver", "stock", "/out/stock.csv",
                                                  "2252", "-1", "3", "/out/stock.log"}));
    EXPECT_EQ(calls[1][4], "1014") << "a code page without a blank parses whole";
    EXPECT_EQ(boxes_, (std::vector<Box>{{catalogText(24319), catalogText(24342)},
                                        {catalogText(24319), catalogText(24342)}}));
}

TEST_F(BulkDialogs, DriverWithoutTheEntriesIsReportedAndAFailedConnectionShowsNothing)
{
    run(join({
        {[] { return dialogMapped(); }, open("loadTable", &loadTableDialog)},
        okAndCollect(&loadTableDialog, 1),
        {cancel(&loadTableDialog)},
    }),
        kPlainDriver);
    EXPECT_EQ(boxes_, (std::vector<Box>{{"Messages", "Unable to find LoadTableFromFile"}}));
    EXPECT_EQ(driver_->calls("SQLDriverConnect").size(), 1u);

    boxes_.clear();
    driver_->clearCalls();
    driver_->failConnect(true);
    run(join({
        {[] { return dialogMapped(); }, open("exportTable", &exportTableDialog)},
        okAndCollect(&exportTableDialog, 0),
        {cancel(&exportTableDialog)},
    }));
    EXPECT_TRUE(boxes_.empty());
    EXPECT_EQ(driver_->calls("SQLDriverConnect").size(), 1u);
    EXPECT_TRUE(driver_->calls("ExportTableToFile").empty());
}

TEST_F(BulkDialogs, CancelEndsTheWholeDialogAndLeavesNothingOnScreen)
{
    Widget dialog = nullptr;
    const int code = run({[] { return dialogMapped(); }, open("verifyData", &verifyDataDialog),
                          [&] {
                              dialog = verifyDataDialog;
                              type(verifyDataDialog, "tableNameText", "kept?");
                              return true;
                          },
                          cancel(&verifyDataDialog)});
    EXPECT_EQ(code, 0);
    EXPECT_EQ(driDsnNameL, nullptr) << "ended like the dialog's own Cancel";
    EXPECT_FALSE(hasSection(odbc_->userFile(), "BulkDsn"));
    ASSERT_NE(dialog, nullptr);
    // Let the server catch up, then look: neither dialog is on screen.
    for (int i = 0; i < 20; ++i) {
        while (XtAppPending(app_) != 0)
            XtAppProcessEvent(app_, XtIMAll);
        XSync(XtDisplay(top_), False);
    }
    EXPECT_FALSE(XtIsManaged(dialog));
    EXPECT_FALSE(viewable(XtParent(dialog)));
    EXPECT_FALSE(viewable(XtParent(shell1)));
    EXPECT_TRUE(driver_->calls().empty()) << "Cancel runs nothing";
}

TEST_F(BulkDialogs, FileNamesFollowTheDataFileUntilEdited)
{
    std::vector<std::string> seen;
    auto show = [&seen] {
        seen.push_back(fieldText(field(loadTableDialog, "configFileText")) + " " +
                       fieldText(field(loadTableDialog, "logFileText")));
    };
    run(join({
        {[] { return dialogMapped(); }, open("loadTable", &loadTableDialog),
         [&] {
             for (const char* name : {"a.csv", "a.CSV", "abc.txt", ".csv", "x.csv"}) {
                 type(loadTableDialog, "dataFileText", name);
                 show();
             }
             EXPECT_EQ(GlobalBulkInfo.configFileEdited, 0) << "derived names are no edits";
             type(loadTableDialog, "logFileText", "mine.log");
             EXPECT_EQ(GlobalBulkInfo.logFileEdited, 1);
             type(loadTableDialog, "dataFileText", "b.csv");
             show();
             return true;
         }},
        // OK hides the dialog; reopened, it is the same widgets with what
        // they held.
        okAndCollect(&loadTableDialog, 1),
        {open("loadTable", &loadTableDialog),
         [&] {
             show();
             seen.push_back(fieldText(field(loadTableDialog, "dataFileText")));
             return true;
         },
         cancel(&loadTableDialog)},
    }));
    EXPECT_EQ(seen, (std::vector<std::string>{"a.xml a.log", "a.xml a.log", "abc.txt.xml abc.txt.log",
                                              ".csv.xml .csv.log", "x.xml x.log", "b.xml mine.log",
                                              "b.xml mine.log", "b.csv"}));
    EXPECT_STREQ(GlobalBulkInfo.logFileName, "mine.log");
}
