// Attributes and path builders of the operating-system layer.
#include "bospath.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "../core/errorlist.h"
#include "trace.h"

namespace {
// Writes `a` + `b` + `c` into `path` (BOS_MAX_PATH + 1 bytes); false, with
// the name-too-long error, when it does not fit.
bool joinInto(char* path, const char* a, const char* b, const char* c)
{
    char joined[3 * BOS_MAX_PATH + 4];
    int length = std::snprintf(joined, sizeof joined, "%s%s%s", a, b, c);
    if (length < 0 || length > BOS_MAX_PATH) {
        bosMapError(ENAMETOOLONG, c);
        return false;
    }
    std::memcpy(path, joined, static_cast<size_t>(length) + 1);
    return true;
}
}  // namespace

int bosfattr(const char* path)
{
    if (path == nullptr)
        return BOS_ATTR_ERROR;
    if (std::strcmp(path, "..") == 0)
        return BOS_ATTR_DIRECTORY;
    struct stat info;
    if (stat(path, &info) != 0)
        return errno == ENOENT ? BOS_ATTR_NOT_FOUND : BOS_ATTR_ERROR;
    if (S_ISDIR(info.st_mode))
        return BOS_ATTR_DIRECTORY;
    if (!S_ISREG(info.st_mode))
        return BOS_ATTR_SPECIAL;
    bool writable;
    if (info.st_uid == geteuid())
        writable = (info.st_mode & S_IWUSR) != 0;
    else if (info.st_uid == getegid())  // the owner against the group id, as callers expect
        writable = (info.st_mode & S_IWGRP) != 0;
    else
        writable = (info.st_mode & S_IWOTH) != 0;
    int attributes = writable ? BOS_ATTR_EXISTS : BOS_ATTR_EXISTS | BOS_ATTR_READONLY;
    bosTrace(0x100, "bosfattr: %s gives %d\n", path, attributes);
    return attributes;
}

int bosexist(const char* path)
{
    int exists = (bosfattr(path) & BOS_ATTR_EXISTS) != 0;
    bosTrace(0x100, "bosexist: %s %s\n", path != nullptr ? path : "(null)", exists ? "exists" : "does not exist");
    return exists;
}

int bosftest(const char* path)
{
    if (path == nullptr)
        return 0;
    char probe[BOS_MAX_PATH + 16];
    const char* slash = std::strrchr(path, '/');
    size_t keep = slash != nullptr ? static_cast<size_t>(slash - path) + 1 : 0;
    if (keep > BOS_MAX_PATH)
        return 0;
    std::memcpy(probe, path, keep);
    std::strcpy(probe + keep, "$$$zu$$$.$zu");
    int fd = open(probe, O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
    if (fd < 0)
        return 0;
    // Only the probe's own descriptor is closed: whatever else the process
    // holds, descriptor 0 included, is not this test's to touch.
    close(fd);
    unlink(probe);
    return 1;
}

int bosfpath(char* path, int)
{
    if (path == nullptr)
        return 1;
    if (path[0] == '/')
        return 0;
    char cwd[BOS_MAX_PATH + 2];
    if (getcwd(cwd, BOS_MAX_PATH + 1) == nullptr) {
        bosMapError(errno, path);
        return 1;
    }
    char relative[BOS_MAX_PATH + 1];
    std::snprintf(relative, sizeof relative, "%s", path);
    int result = joinInto(path, cwd, "/", relative) ? 0 : 1;
    bosTrace(0x400, "bosfpath: %s\n", path);
    return result;
}

int bospath(char* result, const char* directory, const char* name, const char* extension)
{
    if (result == nullptr || name == nullptr)
        return 1;
    if (std::strlen(name) > BOS_MAX_PATH) {
        bosMapError(ENAMETOOLONG, name);
        return 1;
    }
    char work[BOS_MAX_PATH + 1];
    std::strcpy(work, name);
    size_t length = std::strlen(work);
    while (length > 0 && std::isspace(static_cast<unsigned char>(work[length - 1])))
        work[--length] = 0;
    // One trailing '.' goes, unless it belongs to "..".
    if (length > 0 && work[length - 1] == '.' && (length < 2 || work[length - 2] != '.'))
        work[--length] = 0;

    char built[BOS_MAX_PATH + 1];
    if (std::strchr(work, '/') == nullptr && directory != nullptr && *directory != 0) {
        size_t dirLength = std::strlen(directory);
        if (!joinInto(built, directory, directory[dirLength - 1] == '/' ? "" : "/", work))
            return 1;
    } else {
        std::strcpy(built, work);
    }
    const char* slash = std::strrchr(built, '/');
    const char* filePart = slash != nullptr ? slash + 1 : built;
    if (std::strchr(filePart, '.') == nullptr && extension != nullptr && *extension != 0) {
        char base[BOS_MAX_PATH + 1];
        std::strcpy(base, built);
        if (!joinInto(built, base, ".", extension))
            return 1;
    }
    std::strcpy(result, built);
    bosTrace(0x400, "bospath: %s\n", result);
    return bosfpath(result, 0);
}

int boshpath(char* path)
{
    if (path == nullptr)
        return 1;
    char prefix[BOS_MAX_PATH + 2];
    const char* home = std::getenv("HOME");
    if (home == nullptr)
        home = std::getenv("ZU");
    if (home == nullptr) {
        if (getcwd(prefix, BOS_MAX_PATH + 1) == nullptr) {
            bosMapError(errno, path);
            return 1;
        }
        home = prefix;
    }
    char name[BOS_MAX_PATH + 1];
    std::snprintf(name, sizeof name, "%s", path);
    return joinInto(path, home, "/", name) ? 0 : 1;
}

int bosmpath(char* path)
{
    if (path == nullptr)
        return 1;
    char cwd[BOS_MAX_PATH + 2];
    if (bosgtcwd(cwd, 1) == 0)
        return 1;
    size_t pathLength = std::strlen(path);
    size_t cwdLength = std::strlen(cwd);
    size_t shorter = pathLength < cwdLength ? pathLength : cwdLength;
    size_t common = 0;
    while (common < shorter && path[common] == cwd[common])
        ++common;
    long cut = -1;
    for (size_t i = 0; i < common; ++i)
        if (path[i] == ':' || (path[i] == '/' && i != 2))
            cut = static_cast<long>(i);
    if (cut >= 0)
        std::memmove(path, path + cut + 1, pathLength - static_cast<size_t>(cut));
    return 0;
}

int bosParseName(char* path, char* name, char* extension, int report)
{
    if (path == nullptr || name == nullptr || extension == nullptr)
        return 1;
    *extension = 0;
    char* slash = std::strrchr(path, '/');
    char* file = slash != nullptr ? slash + 1 : path;
    int result = 0;
    char* dot = std::strchr(file, '.');
    size_t nameLength = dot != nullptr ? static_cast<size_t>(dot - file) : std::strlen(file);
    if (dot != nullptr) {
        size_t i = 0;
        for (; i < 3 && dot[1 + i] != 0; ++i)
            extension[i] = dot[1 + i];
        extension[i] = 0;
    }
    if (nameLength > 128) {
        if (report) {
            char shown[BOS_MAX_PATH + 1];
            std::snprintf(shown, sizeof shown, "%.*s", static_cast<int>(nameLength), file);
            addError(1524) << shown;
            result = 1;
        }
        nameLength = 128;
    }
    std::memcpy(name, file, nameLength);
    name[nameLength] = 0;
    *file = 0;  // the path keeps its directory and the '/'
    return result;
}

int bosgtcwd(char* buffer, int addSlash)
{
    if (buffer == nullptr || getcwd(buffer, BOS_MAX_PATH + 1) == nullptr) {
        if (buffer != nullptr)
            *buffer = 0;
        return 0;
    }
    size_t length = std::strlen(buffer);
    if (addSlash && (length == 0 || buffer[length - 1] != '/')) {
        buffer[length++] = '/';
        buffer[length] = 0;
    }
    return static_cast<int>(length);
}

int bosstcwd(const char* path)
{
    if (path == nullptr || chdir(path) != 0) {
        addError(1504) << (path != nullptr ? path : "");
        return 1;
    }
    return 0;
}
