// The file calls of the operating-system layer: bosFileOpen and the
// descriptor operations around it.
#include "bosfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "../core/errorlist.h"
#include "bospath.h"
#include "boslocate.h"
#include "trace.h"

namespace {
// The profile files whose names the environment may replace.
enum class ProfileFile { None, Dsn, Driver, Library, Defaults };

ProfileFile profileFileOf(const char* name)
{
    if (strcasecmp(name, "ODBC.INI") == 0 || strcasecmp(name, ".odbc.ini") == 0)
        return ProfileFile::Dsn;
    if (strcasecmp(name, "ODBCINST.INI") == 0 || strcasecmp(name, ".odbcinst.ini") == 0)
        return ProfileFile::Driver;
    if (std::strcmp(name, ".zulib.ini") == 0)
        return ProfileFile::Library;
    if (std::strcmp(name, ".system.defaults") == 0)
        return ProfileFile::Defaults;
    return ProfileFile::None;
}

const char* firstSetVariable(const char* first, const char* second)
{
    const char* value = std::getenv(first);
    if (value == nullptr && second != nullptr)
        value = std::getenv(second);
    return value;
}

bool copyPath(char* path, const char* text)
{
    if (std::strlen(text) > BOS_MAX_PATH) {
        bosMapError(ENAMETOOLONG, text);
        return false;
    }
    std::strcpy(path, text);
    return true;
}

// The marker lock: one byte at offset 1, never waited for.
int markerLock(int fd, short type)
{
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = 1;
    lock.l_len = 1;
    return fcntl(fd, F_SETLK, &lock);
}

// A descriptor of 0 would read as "no handle" to every caller (handles
// below 1 are ignored by bosFileClose), so it is moved above 0 rather than
// refused: the open itself succeeded and the caller expects a file.
int keepAboveZero(int fd)
{
    if (fd != 0)
        return fd;
    int moved = fcntl(fd, F_DUPFD_CLOEXEC, 1);
    int saved = errno;
    close(fd);
    errno = saved;
    return moved;
}

// Creates a file of a fresh temporary name in ZU_TMPDIR, else in the
// directory tempnam would pick (TMPDIR, else /tmp), named "zu" and six
// random characters.  mkstemp names and creates in one exclusive step, so
// no other process can slip a file or a link in between.  `tries` bounds
// the loop asked for with BOS_OPEN_TEMP_LOOP.
int createTemporary(char* path, int tries)
{
    // As tempnam chooses: the first of ZU_TMPDIR, TMPDIR and /tmp that names
    // an existing directory, so a stale variable does not stop scratch files.
    const char* dir = "/tmp";
    for (const char* candidate : {std::getenv("ZU_TMPDIR"), std::getenv("TMPDIR")}) {
        struct stat info;
        if (candidate != nullptr && *candidate != 0 && stat(candidate, &info) == 0 && S_ISDIR(info.st_mode)) {
            dir = candidate;
            break;
        }
    }
    size_t length = std::strlen(dir);
    const char* slash = length > 0 && dir[length - 1] == '/' ? "" : "/";
    int fd = -1;
    for (int attempt = 0; attempt < tries && fd < 0; ++attempt) {
        if (std::snprintf(path, BOS_MAX_PATH + 1, "%s%szuXXXXXX", dir, slash) > BOS_MAX_PATH) {
            errno = ENAMETOOLONG;
            return -1;
        }
        fd = keepAboveZero(mkostemp(path, O_CLOEXEC));
        if (fd < 0 && errno != EEXIST && errno != EINTR)
            break;
    }
    // The file keeps mkstemp's mode 0600: scratch data is the creator's
    // alone, where the 0666 of other creations would let anyone read it.
    return fd;
}

// Resolves the profile name rules and HOME; false (reported) when a
// variable names a file that does not exist.
bool resolveName(char* path, unsigned long& flags)
{
    ProfileFile file = ProfileFile::None;
    if (flags & BOS_OPEN_PROFILE) {
        file = profileFileOf(path);
        if (file != ProfileFile::None)
            flags |= BOS_OPEN_HOME;
    }
    if ((flags & BOS_OPEN_HOME) == 0)
        return true;
    char home[BOS_MAX_PATH + 2];
    const char* homeDir = std::getenv("HOME");
    if (homeDir != nullptr) {
        size_t length = std::strlen(homeDir);
        std::snprintf(home, sizeof home, "%s%s%s", homeDir,
                      length > 0 && homeDir[length - 1] == '/' ? "" : "/", path);
    } else {
        std::snprintf(home, sizeof home, "%s", path);
    }
    const char* chosen = home;
    const char* variable = nullptr;
    struct stat info;
    switch (file) {
    case ProfileFile::Dsn:
        variable = firstSetVariable("ODBCINI", "ODBC_INI");
        break;
    case ProfileFile::Driver:
        variable = firstSetVariable("ODBCINST", "ODBCINSTINI");
        break;
    case ProfileFile::Library:
        if (stat(home, &info) != 0)
            variable = std::getenv("ZULIB_INI");
        break;
    case ProfileFile::Defaults:
        if (stat(home, &info) != 0)
            variable = std::getenv("ZU_SYSTEM_INI");
        break;
    case ProfileFile::None:
        break;
    }
    if (variable != nullptr)
        chosen = variable;
    if (!copyPath(path, chosen))
        return false;
    // The DSN and driver files named by a variable must exist.
    if (variable != nullptr && (file == ProfileFile::Dsn || file == ProfileFile::Driver) &&
        stat(path, &info) != 0) {
        bosMapError(errno, path);
        return false;
    }
    return true;
}
}  // namespace

int bosFileOpen(char* path, unsigned long flags, int* handle)
{
    if (path == nullptr || handle == nullptr) {
        bosMapError(EINVAL, "");
        return 1;
    }
    *handle = 0;
    bosTrace(1, "bosFileOpen: %s flags=%lx\n", path, flags);

    if (flags & (BOS_OPEN_TEMP | BOS_OPEN_TEMP_LOOP)) {
        // The loop flag asks to retry until a new name is created; a clash
        // is all but impossible with mkstemp, and the loop stays bounded.
        int tries = 1;
        if (flags & BOS_OPEN_TEMP_LOOP) {
            flags &= 0xFFFF;
            tries = 100;
        }
        int fd = createTemporary(path, tries);
        if (fd < 0) {
            bosMapError(errno, path);
            return 1;
        }
        markerLock(fd, F_RDLCK);  // result ignored, as for every created file
        *handle = fd;
        bosTrace(1, "bosFileOpen: temporary %s\n", path);
        return 0;
    }

    if (!resolveName(path, flags))
        return 1;

    if (flags & BOS_OPEN_CREATE) {
        int mode = O_CREAT | O_RDWR | O_CLOEXEC;
        if (flags & BOS_OPEN_EXCLUSIVE)
            mode |= O_EXCL;
        if (flags & BOS_OPEN_TRUNCATE)
            mode |= O_TRUNC;
        int fd = keepAboveZero(open(path, mode, 0666));
        if (fd < 0) {
            bosMapError(errno, path);
            return 1;
        }
        markerLock(fd, F_RDLCK);
        *handle = fd;
        return 0;
    }

    int mode = ((flags & BOS_OPEN_WRITE) ? O_RDWR : O_RDONLY) | O_CLOEXEC;
    struct stat info;
    if ((flags & BOS_OPEN_CREATE_IF_MISSING) && stat(path, &info) != 0)
        mode |= O_CREAT;
    if (flags & BOS_OPEN_APPEND)
        mode |= O_APPEND;
    if (flags & BOS_OPEN_NAME_ONLY)
        return 0;

    int fd = keepAboveZero(open(path, mode, 0666));
    if (fd < 0 && (flags & BOS_OPEN_SEARCH)) {
        int saved = errno;
        char found[BOS_MAX_PATH + 1];
        char name[BOS_MAX_PATH + 1];
        std::strcpy(name, path);
        if (bosLocateFile(found, name, BOS_LOCATE_PATH) == 0) {
            std::strcpy(path, found);
            fd = keepAboveZero(open(path, mode, 0666));
        } else {
            errno = saved;
        }
    }
    if (fd < 0) {
        bosMapError(errno, path);
        return 1;
    }

    short lockType = -1;
    if ((flags & BOS_OPEN_LOCK) && (flags & BOS_OPEN_WRITE))
        lockType = F_WRLCK;
    else if ((flags & BOS_OPEN_SHARED_LOCK) && !(flags & BOS_OPEN_NO_SHARED))
        lockType = F_RDLCK;
    if (lockType != -1 && markerLock(fd, lockType) != 0) {
        int saved = errno;
        close(fd);
        bosMapError(saved, path);
        return 1;
    }
    *handle = fd;
    return 0;
}

int bosFileClose(int handle)
{
    if (handle < 1)
        return 0;
    if (close(handle) != 0) {
        bosMapError(errno, "");
        return 1;
    }
    return 0;
}

int bosFileRead(int handle, long long position, void* buffer, unsigned long count, unsigned long* bytesRead)
{
    unsigned long done = 0;
    if (position == -1 || lseek(handle, static_cast<off_t>(position), SEEK_SET) >= 0) {
        char* into = static_cast<char*>(buffer);
        while (done < count) {
            ssize_t got = read(handle, into + done, count - done);
            if (got < 0 && errno == EINTR)
                continue;
            if (got <= 0)
                break;
            done += static_cast<unsigned long>(got);
        }
    }
    if (bytesRead != nullptr)
        *bytesRead = done;
    return 0;
}

int bosFileWrite(int handle, long long position, const void* buffer, unsigned long count)
{
    if (position != -1 && position != -2 && lseek(handle, static_cast<off_t>(position), SEEK_SET) < 0) {
        bosMapError(errno, "");
        return 1;
    }
    const char* from = static_cast<const char*>(buffer);
    unsigned long done = 0;
    while (done < count) {
        ssize_t put = write(handle, from + done, count - done);
        if (put < 0 && errno == EINTR)
            continue;
        if (put < 0) {
            if (done == 0) {
                bosMapError(errno, "");
                return 1;
            }
            break;
        }
        if (put == 0)
            break;
        done += static_cast<unsigned long>(put);
    }
    if (done == count)
        return 0;
    if (done == 0)
        addError(1506) << "";
    else
        addError(30041) << 616L;
    return 1;
}

long long bosFileSeek(int handle, long long position, int whence)
{
    off_t now = lseek(handle, static_cast<off_t>(position), whence);
    if (now < 0)
        bosMapError(errno, "");
    return static_cast<long long>(now);
}

int bosFileSize(int handle, long long size)
{
    return bosFileTruncate(handle, size);
}

int bosFileTruncate(int handle, long long length)
{
    if (ftruncate(handle, static_cast<off_t>(length)) != 0) {
        bosMapError(errno, "");
        return 1;
    }
    return 0;
}

int bosFileTruncate(const char* path, long long length)
{
    if (path == nullptr || truncate(path, static_cast<off_t>(length)) != 0) {
        bosMapError(path == nullptr ? EINVAL : errno, path);
        return 1;
    }
    return 0;
}

int bosFileDelete(const char* path)
{
    if (path == nullptr || unlink(path) != 0) {
        bosMapError(path == nullptr ? EINVAL : errno, path);
        return 1;
    }
    return 0;
}

int bosrname(const char* from, const char* to)
{
    if (from == nullptr || to == nullptr || rename(from, to) != 0) {
        bosMapError(from == nullptr || to == nullptr ? EINVAL : errno, from);
        return 1;
    }
    return 0;
}

int bosFileDateSize(const char* path, unsigned long* date, unsigned long* size)
{
    struct stat info;
    if (path == nullptr || stat(path, &info) != 0)
        return 1;
    if (date != nullptr)
        *date = static_cast<unsigned long>(info.st_mtime);
    if (size != nullptr)
        *size = static_cast<unsigned long>(info.st_size) & 0xFFFFFFFFul;
    return 0;
}
