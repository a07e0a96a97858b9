#include "accelerator.h"

#include <cctype>
#include <cstdio>
#include <cstring>

#include "../platform/catalog.h"

namespace {
void markers(char buffer[64])
{
    winGetString(ZU_MSG_ACCELERATOR_MARKERS, buffer, 64);
}

bool taken(const unsigned char* bitmap, unsigned char c)
{
    const unsigned char k = static_cast<unsigned char>(std::tolower(c));
    return (bitmap[k >> 3] >> (k & 7)) & 1;
}
}  // namespace

const char* findMenuAccelerator(const char* text)
{
    if (text == nullptr)
        return nullptr;
    char marks[64];
    markers(marks);
    for (const char* m = marks; *m != 0; ++m)
        if (const char* found = std::strchr(text, *m))
            return found;
    return nullptr;
}

void setAcceleratorKey(unsigned char* bitmap, const char* text)
{
    const char* marker = findMenuAccelerator(text);
    if (bitmap == nullptr || marker == nullptr || marker[1] == 0)
        return;
    const auto k = static_cast<unsigned char>(std::tolower(static_cast<unsigned char>(marker[1])));
    bitmap[k >> 3] = static_cast<unsigned char>(bitmap[k >> 3] | (1u << (k & 7)));
}

char* makeDialogText(unsigned char* bitmap, char* format, const char* parameter, const char* second,
                     unsigned long size)
{
    if (format == nullptr || size == 0)
        return format;
    if (parameter != nullptr) {
        // Formatted through a copy: printing into the format itself would
        // read what it overwrites.
        char pattern[1024];
        std::snprintf(pattern, sizeof pattern, "%s", format);
        // The label's text is the format by design (a catalog text with %s
        // places); the two parameters are always texts.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        std::snprintf(format, size, pattern, parameter, second != nullptr ? second : "");
#pragma GCC diagnostic pop
    }
    if (findMenuAccelerator(format) == nullptr) {
        char marks[64];
        markers(marks);
        const unsigned long length = std::strlen(format);
        if (marks[0] != 0 && length + 2 <= size) {
            unsigned long at = 0;
            bool found = false;
            for (unsigned long i = 0; i < length && !found; ++i) {
                const auto c = static_cast<unsigned char>(format[i]);
                if (!std::isspace(c) && (bitmap == nullptr || !taken(bitmap, c))) {
                    at = i;
                    found = true;
                }
            }
            std::memmove(format + at + 1, format + at, length - at + 1);
            format[at] = marks[0];
        }
    }
    setAcceleratorKey(bitmap, format);
    return format;
}

char* getMenuAccelerator(char* buffer)
{
    markers(buffer);
    return buffer;
}
