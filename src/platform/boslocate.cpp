// Search paths (bosLocateFile) and shared libraries (bosLoadLibrary).
#include "boslocate.h"

#include <dlfcn.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "../core/errorlist.h"
#include "../encoding/ux.h"
#include "bosfile.h"
#include "bospath.h"
#include "ram.h"
#include "trace.h"

namespace {
// The search list grows with every variable; it lives on the heap, so a
// long PATH costs no stack and no truncation.
struct SearchList {
    char* text = nullptr;
    size_t length = 0;
    bool failed = false;

    ~SearchList() { std::free(text); }

    void add(const char* piece)
    {
        if (piece == nullptr || failed)
            return;
        size_t more = std::strlen(piece) + 1;
        void* grown = std::realloc(text, length + more + 1);
        if (grown == nullptr) {
            failed = true;
            return;
        }
        text = static_cast<char*>(grown);
        std::memcpy(text + length, piece, more - 1);
        length += more;
        text[length - 1] = ':';
        text[length] = 0;
    }
};

// Tests one candidate, `dir` + '/' + `middle` + `name`; true (and the path
// in `found`) when it names an existing file.
bool tryCandidate(char* found, const char* dir, size_t dirLength, const char* middle, const char* name)
{
    char candidate[BOS_MAX_PATH + 1];
    const char* slash = dir[dirLength - 1] == '/' ? "" : "/";
    int length = std::snprintf(candidate, sizeof candidate, "%.*s%s%s%s", static_cast<int>(dirLength), dir,
                               slash, middle, name);
    if (length < 0 || length > BOS_MAX_PATH)
        return false;
    bosTrace(2, "LocateFile: %s\n", candidate);
    if ((bosfattr(candidate) & BOS_ATTR_EXISTS) == 0)
        return false;
    if (found != nullptr)
        std::strcpy(found, candidate);
    return true;
}
}  // namespace

int bosLocateFile(char* found, const char* name, unsigned short mode)
{
    if (found != nullptr)
        *found = 0;
    if (name == nullptr || *name == 0)
        return 1;
    if (bosfattr(name) & BOS_ATTR_EXISTS) {
        if (std::strlen(name) > BOS_MAX_PATH)
            return 1;
        if (found != nullptr)
            std::strcpy(found, name);
        return 0;
    }
    SearchList list;
    if (mode & BOS_LOCATE_CURRENT) {
        char cwd[BOS_MAX_PATH + 2];
        if (bosgtcwd(cwd, 0) > 0)
            list.add(cwd);
    }
    if (mode & BOS_LOCATE_HOME)
        list.add(std::getenv("HOME"));
    if (mode & BOS_LOCATE_ZU) {
        list.add(std::getenv("ZU"));
        list.add(std::getenv("ZULIB"));
    }
    if (mode & BOS_LOCATE_LIBRARY) {
        list.add(std::getenv("LD_LIBRARY_PATH"));
        list.add(std::getenv("LD_RUN_PATH"));
        list.add("/usr/local/lib");
    }
    if (mode & BOS_LOCATE_PATH)
        list.add(std::getenv("PATH"));
    if (list.failed) {
        ramAddMemoryError();
        return 1;
    }
    if (list.length == 0)
        return 1;
    const char* piece = list.text;
    while (*piece != 0) {
        size_t length = std::strcspn(piece, ":");
        if (length > 0) {
            if (tryCandidate(found, piece, length, "", name))
                return 0;
            // Libraries are also looked for next to each directory, where
            // an installation keeps lib/ and bin/ side by side.
            if ((mode & BOS_LOCATE_LIBRARY) && tryCandidate(found, piece, length, "../", name))
                return 0;
        }
        piece += length;
        if (*piece == ':')
            ++piece;
    }
    return 1;
}

void bosdllname(char* name)
{
    std::strcat(name, BOS_VERSION_TAG);
}

void* bosLoadLibrary(const char* name, int addVersion)
{
    if (name == nullptr)
        return nullptr;
    char file[BOS_MAX_PATH + 1];
    size_t length = std::strlen(name);
    while (length > 0 && std::isspace(static_cast<unsigned char>(name[length - 1])))
        --length;
    // Room for the tag and ".so" behind the stem.
    if (length + sizeof BOS_VERSION_TAG + 3 > sizeof file) {
        bosTrace(4, "Unable to open Shared Library: %s\n", name);
        return nullptr;
    }
    std::memcpy(file, name, length);
    file[length] = 0;
    if (addVersion)
        bosdllname(file);
    if (std::strstr(file, ".so") == nullptr)
        std::strcat(file, ".so");
    bosTrace(4, "LoadLibrary: Searching for %s.\n", file);

    char path[BOS_MAX_PATH + 1];
    if (bosLocateFile(path, file, BOS_LOCATE_ZU | BOS_LOCATE_LIBRARY) != 0) {
        bosTrace(4, "Unable to open Shared Library: %s\n", file);
        return nullptr;
    }
    bosTrace(4, "LoadLibrary: Found library %s.\n", path);
    void* handle = dlopen(path, RTLD_NOW);
    if (handle == nullptr) {
        const char* reason = dlerror();
        if (reason == nullptr)
            reason = "";
        bosTrace(4, "Unable to open Shared Library:%s\n", path);
        bosTrace(4, "Loader Error: %s\n", reason);
        addError(1523) << path << reason;
    }
    return handle;
}

void* bosLoadLibrary(const unsigned short* name, int addVersion)
{
    if (name == nullptr)
        return nullptr;
    unsigned char narrow[BOS_MAX_PATH + 1];
    long written = 0;
    if (uxUTF16ToUTF8(narrow, sizeof narrow, name, -1, &written, 0) != ZU_CONV_SUCCESS)
        return nullptr;
    narrow[written < static_cast<long>(sizeof narrow) ? written : BOS_MAX_PATH] = 0;
    return bosLoadLibrary(reinterpret_cast<const char*>(narrow), addVersion);
}
