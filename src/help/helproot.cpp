// The help request of a help button: the driver's help root, then one
// start-up, display and shut-down of the help layer.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "../conversion/charconverter.h"
#include "../platform/catalog.h"
#include "../platform/ram.h"
#include "../profile/profile.h"
#include "help.h"
#include "wwhelp.h"

namespace {

constexpr unsigned long kRootBufferSize = 1044;
const char kScheme[] = "File:///";  // with a capital F, as the help pages expect

// "File:///" and `directory`, bounded by `size` (always terminated).
void makeRootUrl(char* target, size_t size, const char* directory)
{
    std::snprintf(target, size, "%s%s", kScheme, directory);
}

void showOnce(const char* rootUrl, const char* context, const char* topic)
{
    if (WWHelp_Startup(const_cast<char*>(rootUrl)) != 0)
        return;
    WWHelp_DisplayHelp(context, topic);
    WWHelp_Shutdown();
}

}  // namespace

int zuFindHelpRoot(const unsigned char* driver, unsigned char** url, unsigned long size)
{
    if (url == nullptr || *url == nullptr || size == 0)
        return 1;
    zuProfileInit("ODBCINST.INI");
    CharacterConverter converter;
    converter.initialize(31);

    char directory[1024] = {};
    zuGetPrivateProfileString(reinterpret_cast<const char*>(driver), "HelpRootDirectory", "", directory,
                              sizeof directory, ".odbcinst.ini");
    if (directory[0] == 0) {
        // The platform's message box prints the text on standard output.
        char text[1024];
        char title[1024];
        winGetString(text, 1526);
        winGetString(title, 1525);
        guiMessageBox(nullptr, text, title, 0);
        return 1;
    }
    makeRootUrl(reinterpret_cast<char*>(*url), size, directory);
    return 0;
}

void zuDisplayHelp(const unsigned char* driver, const unsigned char* topic)
{
    unsigned char* buffer = static_cast<unsigned char*>(ramAllocC(kRootBufferSize));
    if (buffer == nullptr)
        return;
    buffer[0] = 0;
    // The help layer lives for this one request; the context is always "ODBC".
    if (zuFindHelpRoot(driver, &buffer, kRootBufferSize) == 0)
        showOnce(reinterpret_cast<const char*>(buffer), "ODBC", reinterpret_cast<const char*>(topic));
    std::free(buffer);
}

int zuDisplayHelp2(unsigned char* directory, unsigned char* context, unsigned char* topic)
{
    if (directory == nullptr)
        return -1;
    char root[kRootBufferSize];
    makeRootUrl(root, sizeof root, reinterpret_cast<const char*>(directory));
    if (WWHelp_Startup(root) != 0)
        return -1;
    const int shown = WWHelp_DisplayHelp(reinterpret_cast<const char*>(context), reinterpret_cast<const char*>(topic));
    WWHelp_Shutdown();
    return shown;
}
