#include "catalog.h"

#include <unicode/ucnv.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "../encoding/mbchar.h"
#include "../profile/profile.h"
#include "critsec.h"
#include "trace.h"

char InstallDirLocation[1025];
nl_catd CatFD = ZU_NO_CATALOG;
const char* BZUHINST = "uxutl24";

namespace {
constinit ZuCriticalSection gMessageLock;     // catgets shares its result buffer
constinit ZuCriticalSection gInstallDirLock;  // InstallDirLocation and CatFD

constexpr unsigned long kPath = 2048;

// Copies up to size - 1 bytes and a terminator; nothing is written past
// the terminator.
void copyBounded(char* target, unsigned long size, const char* source)
{
    unsigned long i = 0;
    for (; i + 1 < size && source[i] != 0; ++i)
        target[i] = source[i];
    target[i] = 0;
}

nl_catd openCatalog(const char* fileName)
{
    char locale[256];
    bosMessageLocale(locale, sizeof locale);
    char path[kPath];
    std::snprintf(path, sizeof path, "%s/locale/%s/LC_MESSAGES/%s", InstallDirLocation, locale, fileName);
    nl_catd catalog = catopen(path, 0);
    if (catalog == ZU_NO_CATALOG) {
        std::snprintf(path, sizeof path, "%s/locale/en_US/LC_MESSAGES/%s", InstallDirLocation, fileName);
        catalog = catopen(path, 0);
    }
    return catalog;
}

int lookup(nl_catd catalog, unsigned int id, char* buffer, int size)
{
    char number[16];
    std::snprintf(number, sizeof number, "%d", static_cast<int>(id));
    if (char* space = std::strchr(number, ' '))
        *space = 0;
    bosTrace(8, "LoadStringFromOpenFile: idResource=%s\n", number);
    ZuCriticalSectionGuard guard(gMessageLock);
    const char* text = number;
    if (catalog != ZU_NO_CATALOG)
        text = catgets(catalog, 1, static_cast<int>(id), number);
    bosTrace(8, "LoadStringFromOpenFile: Lookup returns: %s\n", text);
    // Without a catalog the digits are copied whole, which a buffer of any
    // sensible size holds; they are still kept inside a given size.
    if (size > 0) {
        copyBounded(buffer, static_cast<unsigned long>(size), text);
    } else {
        std::strcpy(buffer, text);
    }
    return static_cast<int>(std::strlen(buffer));
}
}  // namespace

int bosSetInstallDir(const char* dir)
{
    ZuCriticalSectionGuard guard(gInstallDirLock);
    const char* from = dir != nullptr ? dir : std::getenv("PF_INSTALLDIR");
    if (from != nullptr) {
        copyBounded(InstallDirLocation, sizeof InstallDirLocation, from);
    } else {
        // The [ODBC] InstallDir entry of the DSN file, else of the driver
        // file.  The profile layer takes its list and cache locks inside this
        // section; nothing takes them in the other order.
        zuGetProfileString("ODBC", "InstallDir", "", InstallDirLocation, sizeof InstallDirLocation, ".odbc.ini");
        if (InstallDirLocation[0] == 0)
            zuGetPrivateProfileString("ODBC", "InstallDir", "", InstallDirLocation, sizeof InstallDirLocation,
                                      ".odbcinst.ini");
    }
    // White space is cut from the end, the first byte never tested; then one
    // trailing slash.
    long last = static_cast<long>(std::strlen(InstallDirLocation)) - 1;
    while (last > 0 && zuIsWhiteSpace(InstallDirLocation + last))
        InstallDirLocation[last--] = 0;
    if (last >= 0 && InstallDirLocation[last] == '/')
        InstallDirLocation[last] = 0;
    return InstallDirLocation[0] == 0 ? 1 : 0;
}

const char* bosMessageLocale(char* buffer, unsigned long size)
{
    const char* choice = std::setlocale(LC_MESSAGES, nullptr);
    bosTrace(8, "OpenStrings: Default LC_MESSAGES=%s\n", choice != nullptr ? choice : "(null)");
    if (choice == nullptr || std::strcmp(choice, "C") == 0) {
        const char* env = std::getenv("LC_MESSAGES");
        if (env == nullptr || std::strcmp(env, "C") == 0)
            env = std::getenv("LANG");
        choice = env != nullptr && std::strcmp(env, "C") != 0 ? env : "en_US";
    }
    if (*choice == 0)
        choice = "en_US";
    copyBounded(buffer, size, choice);
    bosTrace(8, "OpenStrings: Using LC_MESSAGES=%s\n", buffer);
    return buffer;
}

nl_catd OpenStrings(const char* stem, const char* fileName)
{
    char name[512];
    if (fileName != nullptr)
        copyBounded(name, sizeof name, fileName);
    else
        std::snprintf(name, sizeof name, "%s.mo", stem != nullptr ? stem : "");
    bosTrace(8, "OpenStrings: HINST=%s\n", name);
    return openCatalog(name);
}

void CloseStrings(nl_catd catalog)
{
    if (catalog != ZU_NO_CATALOG)
        catclose(catalog);
}

int bosLoadResourceDLL(const char* stem, int, void*, int* counter)
{
    ZuCriticalSectionGuard guard(gInstallDirLock);
    if (counter != nullptr)
        ++*counter;
    if (CatFD == ZU_NO_CATALOG) {
        char name[512];
        std::snprintf(name, sizeof name, "%s.mo", stem != nullptr ? stem : "");
        bosTrace(8, "OpenStrings: HINST=%s\n", name);
        CatFD = openCatalog(name);
    }
    return 0;
}

int bosFreeResourceDLL(long, int* counter)
{
    ZuCriticalSectionGuard guard(gInstallDirLock);
    if (counter != nullptr && *counter > 0)
        --*counter;
    if ((counter == nullptr || *counter == 0) && CatFD != ZU_NO_CATALOG) {
        catclose(CatFD);
        CatFD = ZU_NO_CATALOG;
    }
    return 0;
}

int LoadString(void*, unsigned int id, char* buffer, int size) { return lookup(CatFD, id, buffer, size); }

int LoadStringFromOpenFile(nl_catd catalog, unsigned int id, char* buffer, int size)
{
    return lookup(catalog, id, buffer, size);
}

int LoadStringW(void* module, unsigned int id, unsigned short* buffer, int size)
{
    if (size > 4096)
        size = 4096;
    char narrow[4096];
    const int n = LoadString(module, id, narrow, size > 0 ? size : static_cast<int>(sizeof narrow));
    if (n < 1)
        return n;
    UErrorCode status = U_ZERO_ERROR;
    UConverter* c = ucnv_open(nullptr, &status);
    const int room = size > 0 ? size : 4096;
    UChar* target = reinterpret_cast<UChar*>(buffer);
    const char* source = narrow;
    if (U_SUCCESS(status))
        ucnv_toUnicode(c, &target, reinterpret_cast<UChar*>(buffer) + room - 1, &source, narrow + n, nullptr, true,
                       &status);
    ucnv_close(c);
    if (U_FAILURE(status)) {
        static const unsigned short failed[] = {'F', 'a', 'i', 'l', 'e', 'd', '!', 0};
        const int units = room > 7 ? 7 : room - 1;
        std::memcpy(buffer, failed, static_cast<size_t>(units) * 2);
        buffer[units] = 0;
        return units;
    }
    *target = 0;
    return static_cast<int>(target - reinterpret_cast<UChar*>(buffer));
}

int winGetString(unsigned int id, char* buffer, int size)
{
    if (buffer == nullptr || size <= 0)
        return 0;
    const int n = LoadString(const_cast<char*>(BZUHINST), id, buffer, size);
    if (n == 0)
        buffer[0] = 0;
    return n;
}

int winGetString(char* buffer, unsigned int id) { return winGetString(id, buffer, 1024); }

void winGetString(unsigned short* buffer, unsigned int id)
{
    if (LoadStringW(const_cast<char*>(BZUHINST), id, buffer, 1024) == 0)
        buffer[0] = 0;
}
