// The whole dialog through its entry, invokeBackend, on a private X server:
// OK, Apply, Cancel, Test Connect, the close button, the invalid name and
// out-of-memory boxes, file data sources, and the About tab.  Each test
// drives the running dialog with a script of steps run from the dialog's
// own event loop, and checks the files of a private ODBC configuration.
// gtest first: the X headers define None and Bool as macros.
#include <gtest/gtest.h>

#include <odbcinst.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dsn.h"
#include "dsn/about_impl.h"
#include "dsn/backend_impl.h"
#include "dsn/dialog_script.h"
#include "dsn/dialog/controltable.h"
#include "dsn/installspy.h"
#include "dsn/msgbox_impl.h"
#include "dsn/odbcenv.h"
#include "dsn/protect_impl.h"
#include "platform/catalog.h"
#include "platform/ramfault.h"
#include "support/subprocess.h"
#include "support/xvfb.h"

#include <X11/Intrinsic.h>
#include <X11/Shell.h>
#include <Xm/MessageB.h>
#include <Xm/Text.h>
#include <Xm/Xm.h>

namespace {

nd* node(const std::string& key, const std::string& value)
{
    nd* n = static_cast<nd*>(std::calloc(1, sizeof(nd)));
    std::strncpy(n->key, key.c_str(), sizeof n->key - 1);
    std::strncpy(n->value, value.c_str(), sizeof n->value - 1);
    return n;
}

std::string catalogText(unsigned id)
{
    nl_catd catalog = OpenStrings(nullptr, "HNmback.mo");
    char text[1024];
    LoadStringFromOpenFile(catalog, id, text, sizeof text);
    CloseStrings(catalog);
    return text;
}

std::string unparse(XmString string)
{
    if (string == nullptr)
        return "";
    char* text = static_cast<char*>(
        XmStringUnparse(string, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
    std::string result = text != nullptr ? text : "";
    XtFree(text);
    return result;
}

std::string labelOf(Widget w)
{
    XmString string = nullptr;
    XtVaGetValues(w, XmNlabelString, &string, nullptr);
    std::string text = unparse(string);
    XmStringFree(string);
    return text;
}

std::string fieldText(Widget w)
{
    char* text = XmTextGetString(w);
    std::string result = text != nullptr ? text : "";
    XtFree(text);
    return result;
}

void setField(int index, const std::string& text) { XmTextSetString(iddlgname[index], const_cast<char*>(text.c_str())); }

// The message box on screen: its type, text, and whether it is managed.
struct BoxState {
    bool shown = false;
    unsigned char type = 0;
    std::string message;
};

BoxState messageBox()
{
    BoxState state;
    Widget box = shell1 != nullptr ? XtNameToWidget(shell1, "*dialog") : nullptr;
    if (box == nullptr || !XtIsManaged(box))
        return state;
    state.shown = true;
    XmString text = nullptr;
    XtVaGetValues(box, XmNdialogType, &state.type, XmNmessageString, &text, nullptr);
    state.message = unparse(text);
    XmStringFree(text);
    return state;
}

bool dialogMapped()
{
    if (shell1 == nullptr || !XtIsRealized(XtParent(shell1)))
        return false;
    XWindowAttributes attributes;
    return XGetWindowAttributes(XtDisplay(shell1), XtWindow(XtParent(shell1)), &attributes) != 0 &&
           attributes.map_state == IsViewable;
}

// One private X server and one application shell for the whole suite:
// Motif keeps per-display caches for the life of the process.
class DialogFlow : public GuiTest {
protected:
    static void SetUpTestSuite()
    {
        GuiTest::SetUpTestSuite();
        // One configuration for the suite: unixODBC fixes the folder of
        // ODBCSYSINI at its first use in a process.
        odbc_ = std::make_unique<PrivateOdbc>();
        int argc = 1;
        char name[] = "flow";
        char* argv[] = {name, nullptr};
        top_ = XtOpenApplication(&app_, "DialogFlow", nullptr, 0, &argc, argv, nullptr, applicationShellWidgetClass,
                                 nullptr, 0);
        if (top_ != nullptr) {
            XtVaSetValues(top_, XmNwidth, 10, XmNheight, 10, XmNmappedWhenManaged, False, nullptr);
            XtRealizeWidget(top_);
        }
    }
    static void TearDownTestSuite()
    {
        // The dialogs' widgets are left to the toolkit by design; the
        // context goes before the server does.
        if (app_ != nullptr)
            XtDestroyApplicationContext(app_);
        app_ = nullptr;
        top_ = nullptr;
        odbc_.reset();
        GuiTest::TearDownTestSuite();
    }
    void SetUp() override
    {
        GuiTest::SetUp();
        ASSERT_NE(top_, nullptr);
        ASSERT_NE(odbc_, nullptr);
    }

    driverDSNName* newRecord(const std::string& name, unsigned short request = DSN_REQUEST_ADD)
    {
        return PopulateDriverDSNStruct(kTestDriver, nullptr, request, const_cast<char*>(name.c_str()), nullptr, 0,
                                       nullptr);
    }
    int run(Script& script, driverDSNName* dsn, nd* list) { return script.run(app_, top_, dsn, list, 20000); }

    static XtAppContext app_;
    static Widget top_;
    static std::unique_ptr<PrivateOdbc> odbc_;
};

XtAppContext DialogFlow::app_ = nullptr;
Widget DialogFlow::top_ = nullptr;
std::unique_ptr<PrivateOdbc> DialogFlow::odbc_;

std::vector<std::string> keysOf(const IniEntries& entries)
{
    std::vector<std::string> keys;
    for (const auto& e : entries)
        keys.push_back(e.first);
    return keys;
}

}  // namespace

TEST_F(DialogFlow, OkSavesAllTableKeysInOrderWithDriverLastAndEndsTheDialogWithZero)
{
    const std::string db = odbc_->dir() + "/flow.db";
    nd* list = nullptr;
    AddNodeToList(&list, node("DSN", "FlowOne"));
    AddNodeToList(&list, node("Database", db));
    AddNodeToList(&list, node("Unknown", "dropped"));
    std::vector<ProfileWrite> writes;
    Script script({
        [] { return dialogMapped(); },
        [] {
            setField(ZU_IDX_DESCRIPTION, "Flow description");
            spyStart();
            btnOK_Clicked(nullptr, nullptr, nullptr);
            return true;
        },
    });
    EXPECT_EQ(run(script, newRecord("FlowOne"), list), 0);
    writes = spyStop();
    EXPECT_TRUE(script.finished());
    EXPECT_FALSE(script.expired());
    EXPECT_EQ(driDsnNameL, nullptr);
    EXPECT_EQ(keyValNodeHeadL, nullptr);
    EXPECT_EQ(Rfile, ZU_NO_CATALOG);

    std::vector<std::string> expected;
    for (int i = 1; i < ZU_DSN_CONTROL_COUNT; ++i)
        expected.push_back(iniids[i]);
    expected.push_back("Driver");
    EXPECT_EQ(keysOf(readSection(odbc_->userFile(), "FlowOne")), expected);
    EXPECT_EQ(iniValue(odbc_->userFile(), "FlowOne", "Description"), "Flow description");
    EXPECT_EQ(iniValue(odbc_->userFile(), "FlowOne", "Database"), db);
    EXPECT_EQ(iniValue(odbc_->userFile(), "FlowOne", "Driver"), kSqliteDriverPath);
    EXPECT_EQ(iniValue(odbc_->userFile(), "ODBC Data Sources", "FlowOne"), kTestDriver);
    // The first value went to the installer with its line feed.
    ASSERT_FALSE(writes.empty());
    EXPECT_EQ(writes.front().key, "Description");
    EXPECT_EQ(writes.front().value, "Flow description\n");
    // And the driver manager's client reads it back.
    RunResult query = runProgram({"sh", "-c", "echo 'select 6*7;' | isql -b FlowOne"});
    EXPECT_NE(query.output.find("42"), std::string::npos) << query.output;
}

TEST_F(DialogFlow, CancelAfterApplyKeepsWhatApplyWroteAndARenameThroughTheDialogRemovesTheOldName)
{
    SQLWritePrivateProfileString("OldName", "Description", "before", ".odbc.ini");
    SQLWritePrivateProfileString("ODBC Data Sources", "OldName", kTestDriver, ".odbc.ini");
    nd* list = nullptr;
    AddNodeToList(&list, node("DSN", "OldName"));
    AddNodeToList(&list, node("Description", "before"));
    Script script({
        [] { return dialogMapped(); },
        [] {
            EXPECT_EQ(fieldText(iddlgname[ZU_IDX_DSN]), "OldName");
            EXPECT_STREQ(driDsnNameL->previousDSN, "OldName");
            setField(ZU_IDX_DSN, "NewName");
            setField(ZU_IDX_DESCRIPTION, "applied");
            btnApply_Clicked(nullptr, nullptr, nullptr);
            EXPECT_FALSE(messageBox().shown) << messageBox().message;
            EXPECT_TRUE(XtIsManaged(shell1)) << "Apply leaves the dialog up";
            return true;
        },
        [] {
            setField(ZU_IDX_DESCRIPTION, "not saved");
            btnCancel_Clicked(nullptr, nullptr, nullptr);
            return true;
        },
    });
    EXPECT_EQ(run(script, newRecord("OldName", DSN_REQUEST_CONFIG), list), 0);
    EXPECT_TRUE(script.finished());
    EXPECT_EQ(iniValue(odbc_->userFile(), "NewName", "Description"), "applied");
    EXPECT_FALSE(hasSection(odbc_->userFile(), "OldName"));
    EXPECT_EQ(iniValue(odbc_->userFile(), "ODBC Data Sources", "OldName"), "\x01");
    EXPECT_EQ(driDsnNameL, nullptr);
}

TEST_F(DialogFlow, AnInvalidNameShowsTheErrorBoxKeepsTheDialogAndWritesNothing)
{
    const std::string before = readWholeFile(odbc_->userFile());
    Script script({
        [] { return dialogMapped(); },
        [] {
            setField(ZU_IDX_DSN, "bad[name]");
            spyStart();
            btnOK_Clicked(nullptr, nullptr, nullptr);
            EXPECT_TRUE(spyStop().empty());
            const BoxState box = messageBox();
            EXPECT_TRUE(box.shown);
            EXPECT_EQ(box.type, XmDIALOG_ERROR);
            EXPECT_EQ(box.message, catalogText(24049));
            EXPECT_TRUE(XtIsManaged(shell1));
            EXPECT_NE(driDsnNameL, nullptr) << "a failed OK keeps the record";
            return true;
        },
        [] {
            setField(ZU_IDX_DSN, "");  // an empty name is refused the same way
            btnOK_Clicked(nullptr, nullptr, nullptr);
            EXPECT_TRUE(messageBox().shown);
            btnCancel_Clicked(nullptr, nullptr, nullptr);
            return true;
        },
    });
    EXPECT_EQ(run(script, newRecord(""), nullptr), 0);
    EXPECT_TRUE(script.finished());
    EXPECT_EQ(readWholeFile(odbc_->userFile()), before);
}

TEST_F(DialogFlow, AFileDataSourceIsNamedByItsLockedPathAndSkipsTheNameCheck)
{
    // A path this long is no valid data source name, and it need not be.
    const std::string path = odbc_->dir() + "/a-file-data-source.dsn";
    ASSERT_FALSE(SQLValidDSN(path.c_str()));
    driverDSNName* dsn = PopulateDriverDSNStruct(kTestDriver, nullptr, DSN_REQUEST_ADD, nullptr, nullptr, 1,
                                                 path.c_str());
    nd* list = nullptr;
    AddNodeToList(&list, node("Database", odbc_->dir() + "/file.db"));
    Script script({
        [] { return dialogMapped(); },
        [&path] {
            EXPECT_EQ(fieldText(iddlgname[ZU_IDX_DSN]), path);
            EXPECT_FALSE(XtIsSensitive(iddlgname[ZU_IDX_DSN]));
            spyStart();
            btnOK_Clicked(nullptr, nullptr, nullptr);
            for (const ProfileWrite& w : spyStop())
                EXPECT_EQ(w.value.find('\n'), std::string::npos) << w.key;
            return true;
        },
    });
    EXPECT_EQ(run(script, dsn, list), 0);
    EXPECT_TRUE(script.finished());
    std::vector<std::string> expected;
    for (int i = 1; i < ZU_DSN_CONTROL_COUNT; ++i)
        expected.push_back(iniids[i]);
    expected.push_back("Driver");
    EXPECT_EQ(keysOf(readSection(path, "ODBC")), expected);
    EXPECT_EQ(iniValue(path, "ODBC", "Driver"), kTestDriver);
    EXPECT_EQ(readWholeFile(odbc_->userFile()).find(odbc_->dir() + "/file.db"), std::string::npos);
}

TEST_F(DialogFlow, TestConnectShowsSuccessOrTheDriversOwnTextAndSavesFirst)
{
    const std::string db = odbc_->dir() + "/tc.db";
    nd* list = nullptr;
    AddNodeToList(&list, node("DSN", "Tested"));
    AddNodeToList(&list, node("Database", db));
    std::string failedText;
    Script script({
        [] { return dialogMapped(); },
        [&db] {
            btnTestConnect_Clicked(nullptr, nullptr, nullptr);
            const BoxState box = messageBox();
            EXPECT_TRUE(box.shown);
            EXPECT_EQ(box.type, XmDIALOG_INFORMATION);
            EXPECT_EQ(box.message, catalogText(24094));
            struct stat st{};
            EXPECT_EQ(stat(db.c_str(), &st), 0);
            return true;
        },
        [&failedText] {
            setField(3, "/nonexistent-folder/x.db");  // "Database"
            btnTestConnect_Clicked(nullptr, nullptr, nullptr);
            const BoxState box = messageBox();
            EXPECT_TRUE(box.shown);
            EXPECT_EQ(box.type, XmDIALOG_ERROR);
            failedText = box.message;
            btnCancel_Clicked(nullptr, nullptr, nullptr);
            return true;
        },
    });
    EXPECT_EQ(run(script, newRecord("Tested"), list), 0);
    EXPECT_TRUE(script.finished());
    // Saved before the test: the failing path is in the file.
    EXPECT_EQ(iniValue(odbc_->userFile(), "Tested", "Database"), "/nonexistent-folder/x.db");
    // The box shows the driver's text, as isql shows it for the same DSN.
    ASSERT_FALSE(failedText.empty());
    RunResult peer = runProgram({"isql", "-b", "-v", "Tested"});
    EXPECT_NE(peer.output.find(failedText), std::string::npos) << peer.output << "\nbox: " << failedText;
}

TEST_F(DialogFlow, TheWindowManagersCloseButtonEndsTheDialogLikeCancel)
{
    Script script({
        [] { return dialogMapped(); },
        [] {
            // What a window manager sends when its close button is pressed.
            Display* shown = XtDisplay(shell1);
            Window window = XtWindow(XtParent(shell1));
            XEvent event{};
            event.xclient.type = ClientMessage;
            event.xclient.window = window;
            event.xclient.message_type = XInternAtom(shown, "WM_PROTOCOLS", False);
            event.xclient.format = 32;
            event.xclient.data.l[0] = static_cast<long>(XInternAtom(shown, "WM_DELETE_WINDOW", False));
            event.xclient.data.l[1] = CurrentTime;
            XSendEvent(shown, window, False, NoEventMask, &event);
            XFlush(shown);
            return true;
        },
    });
    spyStart();
    EXPECT_EQ(run(script, newRecord("Closed"), nullptr), 0);
    EXPECT_TRUE(spyStop().empty());
    EXPECT_TRUE(script.finished());
    EXPECT_FALSE(script.expired()) << "the close button left the loop running";
    EXPECT_FALSE(XtIsManaged(shell1));
    EXPECT_FALSE(hasSection(odbc_->userFile(), "Closed"));
}

TEST_F(DialogFlow, ExhaustedMemoryWhileSavingShowsTheBoxWhoseOkEndsTheDialogWithOne)
{
#ifdef HNSYB_FAULT_INJECTION
    Script script({
        [] { return dialogMapped(); },
        [] {
            setField(ZU_IDX_DSN, "NoMemory");
            // A trust store password must be protected on the way to the
            // list: that allocation fails.
            setField(ZU_IDX_TRUSTSTORE_PASSWORD, "secret");
            ramFaultFailNth(1);
            btnOK_Clicked(nullptr, nullptr, nullptr);
            ramFaultFailNth(0);
            const BoxState box = messageBox();
            EXPECT_TRUE(box.shown);
            EXPECT_EQ(box.message, catalogText(7312));
            return true;
        },
        [] {
            Widget box = XtNameToWidget(shell1, "*dialog");
            XmAnyCallbackStruct data{};
            data.reason = XmCR_OK;
            XtCallCallbacks(box, XmNokCallback, &data);
            return true;
        },
    });
    EXPECT_EQ(run(script, newRecord("NoMemory"), nullptr), 1);
    EXPECT_TRUE(script.finished());
    EXPECT_FALSE(script.expired());
    EXPECT_FALSE(hasSection(odbc_->userFile(), "NoMemory"));
#else
    GTEST_SKIP() << "built without fault injection";
#endif
}

TEST_F(DialogFlow, TheAboutTabShowsTheDriverFileAndItsFourIcons)
{
    struct stat st{};
    ASSERT_EQ(stat(kSqliteDriverPath, &st), 0);
    Script script({
        [] { return dialogMapped(); },
        [&st] {
            Widget about = XtNameToWidget(shell1, "*AboutForm");
            EXPECT_NE(about, nullptr);
            if (about == nullptr)
                return true;
            EXPECT_EQ(labelOf(XtNameToWidget(about, "lbFileName")), kSqliteDriverPath);
            EXPECT_EQ(labelOf(XtNameToWidget(about, "lbFileSize")),
                      std::to_string(static_cast<unsigned>(st.st_size) >> 10) + " kb");
            EXPECT_FALSE(labelOf(XtNameToWidget(about, "lbDate")).empty());
            // The SQLite driver tells neither maker nor version.
            EXPECT_EQ(labelOf(XtNameToWidget(about, "lbVersion")), "");
            EXPECT_EQ(labelOf(XtNameToWidget(about, "lbAddress1")), catalogText(7300));
            for (const char* name : {"lbico1", "lbico2", "lbico3", "lbico4"}) {
                Widget icon = XtNameToWidget(about, name);
                EXPECT_NE(icon, nullptr) << name;
                if (icon == nullptr)
                    continue;
                Pixmap pixmap = XmUNSPECIFIED_PIXMAP;
                XtVaGetValues(icon, XmNlabelPixmap, &pixmap, nullptr);
                EXPECT_NE(pixmap, XmUNSPECIFIED_PIXMAP) << name;
                Window root;
                int x, y;
                unsigned w = 0, h = 0, border, depth;
                if (pixmap != XmUNSPECIFIED_PIXMAP && XGetGeometry(XtDisplay(icon), pixmap, &root, &x, &y, &w, &h,
                                                                   &border, &depth)) {
                    EXPECT_EQ(w, 32u);
                    EXPECT_EQ(h, 32u);
                }
            }
            btnCancel_Clicked(nullptr, nullptr, nullptr);
            return true;
        },
    });
    EXPECT_EQ(run(script, newRecord("About"), nullptr), 0);
    EXPECT_TRUE(script.finished());
}

TEST_F(DialogFlow, VersionAndMakerOfALibraryComeFromItsOwnFunctionsAndAMissingOneLeavesThemEmpty)
{
    char company[1024] = "x";
    char version[1024] = "x";
    std::string own = std::string(HNSYB_BINARY_DIR) + "/src/libhnsybr.so";
    getCompNameAndVersion(own.data(), company, version, 0);
    EXPECT_STREQ(company, getCompanyNameString());
    EXPECT_STREQ(version, getFileVersionString());
    EXPECT_STREQ(version, "06.00.0119 (b0053, U0050)");
    char missing[] = "/nonexistent/libnothing.so";
    getCompNameAndVersion(missing, company, version, 0);
    EXPECT_STREQ(company, "");
    EXPECT_STREQ(version, "");
}

TEST_F(DialogFlow, ALongMessageBoxWaitsForItsOkAndWithoutAParentPrintsTheText)
{
    testing::internal::CaptureStdout();
    motifMessageBox(nullptr, reinterpret_cast<const unsigned char*>("no display here"), nullptr, 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\nno display here\n");
    testing::internal::CaptureStdout();
    motifMessageBox(nullptr, reinterpret_cast<const unsigned char*>("body"),
                    reinterpret_cast<const unsigned char*>("Title"), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Title:\nbody\n");

    // With a parent it runs its own loop until OK, which a timer presses
    // once the box is up (and a guard after a while, failing the test).
    struct Presser {
        XtAppContext app = nullptr;
        int tries = 0;
        bool pressed = false;
        std::string shownText;
        static void tick(XtPointer data, XtIntervalId*)
        {
            auto* self = static_cast<Presser*>(data);
            Widget box = XtNameToWidget(top_, "*dialog");
            Widget text = box != nullptr ? XtNameToWidget(box, "*msgText") : nullptr;
            if ((box == nullptr || text == nullptr || !XtIsManaged(box)) && ++self->tries < 300) {
                XtAppAddTimeOut(self->app, 30, &Presser::tick, self);
                return;
            }
            if (box == nullptr)
                return;  // the test fails on `pressed`; the box keeps waiting
            self->shownText = text != nullptr ? fieldText(text) : "";
            self->pressed = true;
            XmAnyCallbackStruct cbs{};
            cbs.reason = XmCR_OK;
            XtCallCallbacks(box, XmNokCallback, &cbs);
        }
    } presser;
    presser.app = app_;
    XtAppAddTimeOut(app_, 30, &Presser::tick, &presser);
    motifMessageBox(top_, reinterpret_cast<const unsigned char*>("line one\nline two"),
                    reinterpret_cast<const unsigned char*>("Details"), 0);
    EXPECT_TRUE(presser.pressed);
    EXPECT_EQ(presser.shownText, "line one\nline two");
}

TEST_F(DialogFlow, TheNextMessageBoxReplacesTheLastOne)
{
    char text[] = "first";
    char ok[] = "OK";
    char empty[] = "";
    char title[] = "Title";
    Widget first = createMessageDialog(top_, DSN_BOX_INFORMATION, text, ok, empty, title);
    ASSERT_NE(first, nullptr);
    bool destroyed = false;
    XtAddCallback(
        first, XmNdestroyCallback, [](Widget, XtPointer flag, XtPointer) { *static_cast<bool*>(flag) = true; },
        &destroyed);
    XtManageChild(first);
    char second[] = "second";
    Widget next = createMessageDialog(top_, DSN_BOX_QUESTION, second, ok, empty, title);
    ASSERT_NE(next, nullptr);
    EXPECT_TRUE(destroyed);
    unsigned char type = 0;
    XtVaGetValues(next, XmNdialogType, &type, nullptr);
    EXPECT_EQ(type, XmDIALOG_QUESTION);
    // A question keeps its Cancel button; the others show OK alone.
    EXPECT_TRUE(XtIsManaged(XmMessageBoxGetChild(next, XmDIALOG_CANCEL_BUTTON)));
    EXPECT_FALSE(XtIsManaged(XmMessageBoxGetChild(next, XmDIALOG_HELP_BUTTON)));
    // An unknown type makes no box at all.
    EXPECT_EQ(createMessageDialog(top_, 9, second, ok, empty, title), nullptr);
}

TEST_F(DialogFlow, AStoredPasswordIsRevealedIntoItsFieldFromItsFirst143Characters)
{
    Widget field = XtVaCreateWidget("pw", xmTextWidgetClass, top_, nullptr);
    ASSERT_NE(field, nullptr);
    const std::string clear(100, 'q');
    unsigned char* stored = nullptr;
    ASSERT_EQ(getEncryptedHexifiedValue(reinterpret_cast<unsigned char*>(const_cast<char*>(clear.c_str())), &stored),
              0);
    const std::string storedText = reinterpret_cast<char*>(stored);
    std::free(stored);
    ASSERT_EQ(storedText.size(), 201u);

    EXPECT_EQ(setDehexifiedDecryptedValue(const_cast<char*>(storedText.c_str()), nullptr, field), 0);
    const std::string shown = fieldText(field);
    unsigned char* head = nullptr;
    std::string first143 = storedText.substr(0, DSN_REVEAL_MAX);
    ASSERT_EQ(getDehexifiedDecryptedValue(reinterpret_cast<unsigned char*>(first143.data()), &head), 0);
    EXPECT_EQ(shown, reinterpret_cast<char*>(head));
    EXPECT_LE(shown.size(), 71u);
    std::free(head);

    // A short one comes back whole; an empty one leaves the field alone.
    char shortStored[64];
    unsigned char* protectedShort = nullptr;
    getEncryptedHexifiedValue(reinterpret_cast<unsigned char*>(const_cast<char*>("open sesame")), &protectedShort);
    std::strcpy(shortStored, reinterpret_cast<char*>(protectedShort));
    std::free(protectedShort);
    EXPECT_EQ(setDehexifiedDecryptedValue(shortStored, nullptr, field), 0);
    EXPECT_EQ(fieldText(field), "open sesame");
    char none[] = "";
    EXPECT_EQ(setDehexifiedDecryptedValue(none, nullptr, field), 0);
    EXPECT_EQ(fieldText(field), "open sesame");
    EXPECT_EQ(setDehexifiedDecryptedValue(nullptr, nullptr, field), 1);
    XtDestroyWidget(field);
}
