// errno to the library's message numbers (bosMapError).
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "../core/errorlist.h"
#include "bosfile.h"
#include "catalog.h"

namespace {
// Fills the first two "%s" of `format` with `first` and `second`.  The
// format comes from a catalog file, so it is never handed to printf: any
// other conversion is copied as it stands.
void fillTwoTexts(char* out, unsigned long size, const char* format, const char* first, const char* second)
{
    unsigned long n = 0;
    int used = 0;
    auto put = [&](char c) {
        if (n + 1 < size)
            out[n++] = c;
    };
    for (const char* p = format; *p != 0; ++p) {
        if (p[0] == '%' && p[1] == 's' && used < 2) {
            for (const char* s = used++ == 0 ? first : second; *s != 0; ++s)
                put(*s);
            ++p;
        } else {
            put(*p);
        }
    }
    out[n] = 0;
}

// The text behind the errno value: message 30050 of the library's catalog
// filled with strerror and the name, or strerror alone without a name.
void systemText(char* out, unsigned long size, int error, const char* name)
{
    char reason[256];
    const char* text = strerror_r(error, reason, sizeof reason);
    if (name == nullptr || *name == 0) {
        std::snprintf(out, size, "%s", text);
        return;
    }
    char format[1025];
    winGetString(30050u, format, sizeof format);
    // Without the catalog the lookup gives the number's digits: fall back
    // to the catalog's own wording.
    if (std::strstr(format, "%s") == nullptr)
        std::snprintf(format, sizeof format, "%s", "%s: %s");
    fillTwoTexts(out, size, format, text, name);
}
}  // namespace

int bosMapError(int error, const char* name)
{
    const char* path = name != nullptr ? name : "";
    unsigned short number;
    bool withName = false;
    switch (error) {
    case EPERM: number = 1519; withName = true; break;
    case ENOENT: number = 1509; withName = true; break;
    case EBADF: number = 1507; break;
    case EAGAIN: number = 1512; break;
    case ENOMEM: number = 1503; break;
    case EACCES: number = 1508; withName = true; break;
    case EEXIST: number = 1520; withName = true; break;
    case EMFILE: number = 30045; break;
    case ENOSPC: number = 1506; withName = true; break;
    case EROFS: number = 30049; withName = true; break;
    case EDEADLK: number = 1521; withName = true; break;
    case ENOLCK: number = 1514; break;
    case EIO:
        if (*path == 0) {
            addError(30041) << static_cast<long>(error);
            return 30041;
        }
        [[fallthrough]];
    default: {
        char text[1600];
        systemText(text, sizeof text, error, path);
        ZuError& added = addError(30041) << static_cast<long>(error);
        if (!added.isDummy())
            added.appendText(text);
        return 30041;
    }
    }
    if (withName)
        addError(number) << path;
    else
        addError(number);
    return number;
}
