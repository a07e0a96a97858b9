// URL text of the help layer: escaping, unescaping, the "javascript:" form,
// and the start-up state that every display call depends on.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>

#include "help/wwhelp.h"
#include "helptest.h"
#include "support/subprocess.h"

namespace {

std::string escaped(const std::string& text)
{
    char* out = nullptr;
    long length = 0;
    if (WWHelp_URL_EscapeForJavaScript(text.data(), static_cast<long>(text.size()), &out, &length) != 0)
        return "<failed>";
    std::string result(out, static_cast<size_t>(length));
    EXPECT_EQ(out[length], 0) << "the output is NUL-ended";
    std::free(out);
    return result;
}

std::string unescaped(const std::string& text)
{
    char* out = nullptr;
    long length = 0;
    if (WWHelp_URL_Unescape(text.data(), static_cast<long>(text.size()), &out, &length) != 0)
        return "<failed>";
    std::string result(out, static_cast<size_t>(length));
    std::free(out);
    return result;
}

}  // namespace

TEST(HelpUrlText, EscapeReplacesTheSixCharactersOfAJavaScriptStringAndNothingElse)
{
    EXPECT_EQ(escaped("\"%&'?\\"), "%22%25%26%27%3f%5c");
    EXPECT_EQ(escaped("File:////opt/help/api.htm?context=ODBC&topic=it's"),
              "File:////opt/help/api.htm%3fcontext=ODBC%26topic=it%27s");
    // Space, '#', '<' and bytes above 127 pass untouched.
    EXPECT_EQ(escaped("a b#<\xe9>"), "a b#<\xe9>");
    // Only `length` bytes are read: a NUL inside counts as a byte.
    EXPECT_EQ(escaped(std::string("a\0?", 3)), std::string("a\0%3f", 5));
    char* out = nullptr;
    long length = 0;
    EXPECT_EQ(WWHelp_URL_EscapeForJavaScript("x", 0, &out, &length), -1) << "nothing to escape";
    EXPECT_EQ(WWHelp_URL_EscapeForJavaScript(nullptr, 3, &out, &length), -1);
}

TEST(HelpUrlText, UnescapeDecodesPairsAndDropsATruncatedEscape)
{
    EXPECT_EQ(unescaped("a%41b%3f%3F"), "aAb??");
    EXPECT_EQ(unescaped("%e9t%E9"), "\xe9t\xe9");
    // A '%' with fewer than two characters behind it goes, with them.
    EXPECT_EQ(unescaped("abc%4"), "abc");
    EXPECT_EQ(unescaped("abc%"), "abc");
    // Nothing left is a failure.
    EXPECT_EQ(unescaped("%"), "<failed>");
    EXPECT_EQ(unescaped("%4"), "<failed>");
    // A pair that is not hexadecimal stays as it was.
    EXPECT_EQ(unescaped("100%zz"), "100%zz");
}

TEST(HelpUrlText, EscapedTextDecodesBackWithPythonAndWithUnescape)
{
    // Random bytes, heavy on the escaped characters: Python's URL decoder
    // (a peer) and our own unescape must both give the original back.
    std::mt19937 random(1234);
    const std::string alphabet = "\"%&'?\\abcXYZ019 :/=.-_~";
    std::string text;
    for (int i = 0; i < 400; ++i)
        text += alphabet[random() % alphabet.size()];
    const std::string encoded = escaped(text);
    EXPECT_EQ(unescaped(encoded), text);
    const RunResult python = runProgram(
        {"python3", "-c", "import sys,urllib.parse; sys.stdout.write(urllib.parse.unquote(sys.argv[1]))", encoded},
        30000);
    ASSERT_EQ(python.exitCode, 0) << python.output;
    EXPECT_EQ(python.output, text);
}

TEST(HelpUrlText, SmartUrlWrapsTheEscapedUrlInTheHelpWindowScript)
{
    const std::string url = "File:////h/wwhelp/wwhimpl/api.htm?context=ODBC&topic=a'b";
    char* out = nullptr;
    long length = 0;
    ASSERT_EQ(WWHelp_URL_BuildSmartURL(url.data(), static_cast<long>(url.size()), &out, &length), 0);
    const std::string smart(out, static_cast<size_t>(length));
    std::free(out);
    EXPECT_EQ(smart,
              "javascript:x=unescape('File:////h/wwhelp/wwhimpl/api.htm%3fcontext=ODBC%26topic=a%27b');"
              "if(typeof(window.WWHFrame)!='undefined'){window.WWHFrame.WWHHelp.fSetContextDocument(x);}else{"
              "y=eval('document.open();document.writeln(\\'<a href=\\\"'+x+'\\\">'+x+'</a>\\');"
              "document.close();');}");
}

TEST(HelpStartup, OneStartUpAtATimeAndNoDisplayOutsideIt)
{
    char root[] = "File:////opt/help";
    char empty[] = "";
    EXPECT_EQ(WWHelp_Shutdown(), -1) << "not started";
    EXPECT_EQ(WWHelp_DisplayHelpContents(), -1) << "no display before start-up";
    EXPECT_EQ(WWHelp_Startup(nullptr), -1);
    EXPECT_EQ(WWHelp_Startup(empty), -1);
    ASSERT_EQ(WWHelp_Startup(root), 0);
    EXPECT_EQ(WWHelp_Startup(root), -1) << "a second start-up before shut-down";
    EXPECT_EQ(WWHelp_Shutdown(), 0);
    EXPECT_EQ(WWHelp_Shutdown(), -1);
    ASSERT_EQ(WWHelp_Startup(root), 0) << "a start-up after shut-down works again";
    EXPECT_EQ(WWHelp_Shutdown(), 0);
}

TEST(HelpStartup, TopicCallsRefuseAMissingContextOrTopicWithoutStartingAnything)
{
    ScratchDir dir;
    const std::string log = dir.file("launched.log");
    writeLauncher(dir.file("firefox"), log);
    EnvGuard path("PATH", dir.path().c_str());
    char root[] = "File:////opt/help";
    ASSERT_EQ(WWHelp_Startup(root), 0);
    using Call = int (*)(const char*, const char*);
    for (Call call : {WWHelp_DisplayHelp, WWHelp_DisplayHelpWithNavigation, WWHelp_DisplayHelpWithContents,
                      WWHelp_DisplayHelpWithIndex, WWHelp_DisplayHelpWithSearch, WWHelp_DisplayHelpWithFavorites}) {
        EXPECT_EQ(call(nullptr, "t"), -1);
        EXPECT_EQ(call("ODBC", nullptr), -1);
        EXPECT_EQ(call("", "t"), -1);
        EXPECT_EQ(call("ODBC", ""), -1);
    }
    EXPECT_EQ(WWHelp_Shutdown(), 0);
    EXPECT_TRUE(readLines(log).empty()) << "no browser was asked or started";
}
