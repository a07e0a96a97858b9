// ConfigDSN with a window handle opens our dialog, on an X connection of the
// setup library's own, modal for as long as the call lasts: called through
// unixODBC's SQLConfigDataSource with a handle that is no Xt widget, and from
// iODBC's GTK administrator.  Real input through the X server (xdotool)
// closes the dialog; the saved files show what it did.
#include <gtest/gtest.h>

#include <odbcinst.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "background.h"
#include "odbcconfig.h"
#include "support/xvfb.h"

namespace {

// Where the buttons of the 525 x 505 dialog are, in its window.
constexpr const char* kOkX = "262";
constexpr const char* kCancelX = "357";
constexpr const char* kButtonY = "453";
// The dialog's windows carry the setup library's application class.
constexpr const char* kDialogClass = "HnsybSetup";

// Waits for our dialog, then presses one of its buttons: run beside a call
// that blocks until the dialog ends.
Background pressWhenShown(const char* x)
{
    std::string script = std::string("w=$(timeout 30 xdotool search --sync --onlyvisible --class ") + kDialogClass +
                         " | head -n 1) && [ -n \"$w\" ] && sleep 0.5 && xdotool mousemove --window \"$w\" " + x +
                         " " + kButtonY + " click 1";
    return Background({"sh", "-c", script});
}

// A structure such as unixODBC's administrators pass: anything but a widget.
struct ForeignWindow {
    char plugin[64] = "odbcinstQ5";
    void* window = nullptr;
} foreign;

}  // namespace

class ConfigDSNWithWindow : public GuiTest {};

// Configure opens the dialog on the saved keys: OK saves them back, so the
// description survives and every key of the dialog's table is written,
// "Driver" last.  The call returns only after the dialog has gone.
TEST_F(ConfigDSNWithWindow, ConfigureOpensTheDialogOnTheSavedKeys)
{
    PrivateOdbc odbc;
    odbc.writeDataSources("[ODBC Data Sources]\nSample = HNSYB Test\n\n"
                          "[Sample]\nDescription = kept by the dialog\nNetworkAddress = db1,5000\n");
    Background press = pressWhenShown(kOkX);
    ASSERT_TRUE(press.started());
    std::string attrs = std::string("DSN=Sample") + '\0' + '\0';
    EXPECT_TRUE(SQLConfigDataSource(&foreign, ODBC_CONFIG_DSN, kTestDriver, attrs.c_str()));
    EXPECT_EQ(press.wait(10000), 0) << "the dialog was not there to be pressed";
    EXPECT_EQ(xdotool({"search", "--onlyvisible", "--class", kDialogClass}, 2000), "");

    IniFile file = readIni(odbc.dataSourceFile());
    const IniSection* section = findSection(file, "Sample");
    ASSERT_NE(section, nullptr) << readText(odbc.dataSourceFile());
    ASSERT_NE(section->find("Description"), nullptr);
    EXPECT_EQ(*section->find("Description"), "kept by the dialog");
    EXPECT_EQ(*section->find("NetworkAddress"), "db1,5000");
    EXPECT_GE(section->keys.size(), 37u) << readText(odbc.dataSourceFile());
    EXPECT_EQ(section->keys.back().first, "Driver");
    EXPECT_EQ(section->keys.back().second, kDriverLibrary);
}

// Add opens an empty dialog with the proposed name; Cancel saves nothing and
// still ends the call with success (the installer cannot tell the two apart).
// A second dialog in the same process opens on the same connection.
TEST_F(ConfigDSNWithWindow, AddThenCancelWritesNothing)
{
    PrivateOdbc odbc;
    std::string attrs = std::string("DSN=fresh") + '\0' + '\0';
    for (int round = 0; round < 2; ++round) {
        Background press = pressWhenShown(kCancelX);
        ASSERT_TRUE(press.started());
        EXPECT_TRUE(SQLConfigDataSource(&foreign, ODBC_ADD_DSN, kTestDriver, attrs.c_str()));
        EXPECT_EQ(press.wait(10000), 0) << "round " << round;
    }
    EXPECT_EQ(findSection(readIni(odbc.dataSourceFile()), "fresh"), nullptr);

    // And OK on a new one writes it with the name it was proposed under.
    Background press = pressWhenShown(kOkX);
    EXPECT_TRUE(SQLConfigDataSource(&foreign, ODBC_ADD_DSN, kTestDriver, attrs.c_str()));
    EXPECT_EQ(press.wait(10000), 0);
    IniFile file = readIni(odbc.dataSourceFile());
    EXPECT_NE(findSection(file, "fresh"), nullptr) << readText(odbc.dataSourceFile());
}

// iODBC's administrator loads the driver's Setup library and calls ConfigDSN
// with its GTK window: our tabbed dialog appears, not the administrator's
// generic key/value form, and the administrator lives on after Cancel.
TEST_F(ConfigDSNWithWindow, IodbcAdministratorShowsOurDialog)
{
    PrivateOdbc odbc;
    odbc.writeDataSources("[ODBC Data Sources]\nSample = HNSYB Test\n\n[Sample]\nDriver = HNSYB Test\n"
                          "Description = from iODBC\n");
    // iODBC reads ODBCINI and ODBCINSTINI as full paths, and SYS... for the
    // system files; all point into the private folder.
    std::vector<std::string> command = {"env", "ODBCINSTINI=" + odbc.driverFile(),
                                        "SYSODBCINSTINI=" + odbc.driverFile(),
                                        "SYSODBCINI=" + odbc.systemDataSourceFile()};
#ifdef HNSYB_ASAN_RUNTIME
    // The administrator's own leaks are not ours to report.
    command.insert(command.end(), {"LD_PRELOAD=" HNSYB_ASAN_RUNTIME, "ASAN_OPTIONS=detect_leaks=0"});
#endif
    command.push_back("iodbcadm-gtk");
    Background admin(command);
    ASSERT_TRUE(admin.started());
    std::string window = xdotool({"search", "--sync", "--onlyvisible", "--name", "^iODBC Data Source Administrator$"});
    ASSERT_FALSE(window.empty()) << "the administrator did not appear";
    window = window.substr(0, window.find('\n'));

    // The first row of the User DSN list, then Configure.
    xdotool({"mousemove", "--window", window, "44", "87", "click", "1"});
    xdotool({"mousemove", "--window", window, "543", "145", "click", "1"});
    std::string dialog = xdotool({"search", "--sync", "--onlyvisible", "--class", kDialogClass});
    ASSERT_FALSE(dialog.empty()) << "our dialog did not appear";
    dialog = dialog.substr(0, dialog.find('\n'));
    EXPECT_EQ(xdotool({"getwindowname", dialog}), "ODBC Sybase Driver Setup");
    EXPECT_EQ(xdotool({"search", "--onlyvisible", "--name", "^Setup of DSN"}, 2000), "")
        << "the generic form was shown";
    // The window is mapped before it is drawn: look again for a while.  The
    // dialog in Motif's default colours has four (face, two shadows, text);
    // an undrawn window has one.
    int colours = 0;
    for (int i = 0; i < 40 && colours < 4; ++i) {
        if (i > 0)
            usleep(250 * 1000);
        colours = windowColours(dialog, odbc.folder() + "/iodbc-dialog.png");
    }
    EXPECT_GE(colours, 4) << "the dialog is blank";

    xdotool({"mousemove", "--window", dialog, kCancelX, kButtonY, "click", "1"});
    for (int i = 0; i < 100 && !xdotool({"search", "--onlyvisible", "--class", kDialogClass}, 1000).empty(); ++i)
        ;
    EXPECT_EQ(xdotool({"search", "--onlyvisible", "--class", kDialogClass}, 2000), "");
    EXPECT_TRUE(admin.running()) << "the administrator did not survive the dialog";
    EXPECT_FALSE(xdotool({"search", "--onlyvisible", "--name", "^iODBC Data Source Administrator$"}).empty());
}

class SetupCommandWithDisplay : public GuiTest {};

// A person edits a data source with hnsyb-setup: types a new description
// into the field and presses OK; the data source file shows it, and the
// command ends with 0 once the dialog has gone.
TEST_F(SetupCommandWithDisplay, EditsADataSourceTypedIntoTheDialog)
{
    PrivateOdbc odbc;
    odbc.writeDataSources("[ODBC Data Sources]\nTyped = HNSYB Test\n\n[Typed]\nDescription = before\n");
    Background setup({HNSYB_SETUP_PROGRAM, "--dsn", "Typed"});
    ASSERT_TRUE(setup.started());
    std::string dialog = xdotool({"search", "--sync", "--onlyvisible", "--class", kDialogClass});
    ASSERT_FALSE(dialog.empty()) << "the dialog did not appear";
    dialog = dialog.substr(0, dialog.find('\n'));
    usleep(500 * 1000);
    // The Description field of the General tab; Ctrl+/ selects its text.
    xdotool({"mousemove", "--window", dialog, "275", "56", "click", "1"});
    xdotool({"key", "--window", dialog, "ctrl+slash"});
    xdotool({"type", "--window", dialog, "--delay", "20", "typed by a person"});
    xdotool({"mousemove", "--window", dialog, kOkX, kButtonY, "click", "1"});
    EXPECT_EQ(setup.wait(20000), 0);

    IniFile file = readIni(odbc.dataSourceFile());
    const IniSection* section = findSection(file, "Typed");
    ASSERT_NE(section, nullptr) << readText(odbc.dataSourceFile());
    ASSERT_NE(section->find("Description"), nullptr);
    EXPECT_EQ(*section->find("Description"), "typed by a person");
}

// A new file data source: the dialog names it by its path, and OK writes
// section "ODBC" of that file with the driver's name.
TEST_F(SetupCommandWithDisplay, CreatesAFileDataSource)
{
    PrivateOdbc odbc;
    std::string path = odbc.folder() + "/new.dsn";
    Background setup({HNSYB_SETUP_PROGRAM, "--file", path, "--driver", kTestDriver});
    ASSERT_TRUE(setup.started());
    Background press = pressWhenShown(kOkX);
    EXPECT_EQ(press.wait(40000), 0);
    EXPECT_EQ(setup.wait(20000), 0);
    IniFile file = readIni(path);
    const IniSection* section = findSection(file, "ODBC");
    ASSERT_NE(section, nullptr) << readText(path);
    ASSERT_NE(section->find("Driver"), nullptr);
    EXPECT_EQ(*section->find("Driver"), kTestDriver);
    EXPECT_GE(section->keys.size(), 30u);
}
