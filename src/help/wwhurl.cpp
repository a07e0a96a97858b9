// URL helpers of the help layer: escaping for a JavaScript string, the
// reverse, and the "javascript:" URL that reuses an open help window.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <utility>

#include "../platform/ram.h"
#include "wwhelp.h"

namespace {

// Shown when no help frame is open: a page holding a link to the URL in x.
const char pResetCode[] =
    "y=eval('document.open();document.writeln(\\'<a href=\\\"'+x+'\\\">'+x+'</a>\\');document.close();');";

const char kSmartHead[] = "javascript:x=unescape('";
const char kSmartMiddle[] =
    "');if(typeof(window.WWHFrame)!='undefined'){window.WWHFrame.WWHHelp.fSetContextDocument(x);}else{";
const char kSmartTail[] = "}";

bool usable(const char* text, long length, char** out, long* outLength)
{
    return text != nullptr && length > 0 && out != nullptr && outLength != nullptr;
}

}  // namespace

int WWHelp_URL_EscapeForJavaScript(const char* text, long length, char** out, long* outLength)
{
    if (!usable(text, length, out, outLength))
        return -1;
    // Each byte grows to three at most.
    char* result = static_cast<char*>(ramAllocC(static_cast<size_t>(length) * 3 + 1));
    if (result == nullptr)
        return -1;
    long n = 0;
    for (long i = 0; i < length; ++i) {
        const char* escape = nullptr;
        switch (text[i]) {
        case '"': escape = "%22"; break;
        case '%': escape = "%25"; break;
        case '&': escape = "%26"; break;
        case '\'': escape = "%27"; break;
        case '?': escape = "%3f"; break;
        case '\\': escape = "%5c"; break;
        default: break;
        }
        if (escape != nullptr) {
            std::memcpy(result + n, escape, 3);
            n += 3;
        } else {
            result[n++] = text[i];
        }
    }
    result[n] = 0;
    *out = result;
    *outLength = n;
    return 0;
}

int WWHelp_URL_Unescape(const char* text, long length, char** out, long* outLength)
{
    if (!usable(text, length, out, outLength))
        return -1;
    char* result = static_cast<char*>(ramAllocC(static_cast<size_t>(length) + 1));
    if (result == nullptr)
        return -1;
    long n = 0;
    for (long i = 0; i < length; ++i) {
        if (text[i] != '%') {
            result[n++] = text[i];
            continue;
        }
        if (length - i <= 2)
            break;  // a '%' with fewer than two characters behind it: dropped with them
        const char digits[3] = {text[i + 1], text[i + 2], 0};
        unsigned int value = 0;
        if (std::sscanf(digits, "%x", &value) == 1) {
            result[n++] = static_cast<char>(value);
        } else {
            // Not a hexadecimal escape: the text stays as it was rather than
            // turning into an arbitrary byte.
            result[n++] = '%';
            result[n++] = digits[0];
            result[n++] = digits[1];
        }
        i += 2;
    }
    result[n] = 0;
    if (n == 0) {
        std::free(result);
        return -1;
    }
    *out = result;
    *outLength = n;
    return 0;
}

int WWHelp_URL_BuildSmartURL(const char* url, long length, char** out, long* outLength)
{
    if (!usable(url, length, out, outLength))
        return -1;
    char* escaped = nullptr;
    long escapedLength = 0;
    if (WWHelp_URL_EscapeForJavaScript(url, length, &escaped, &escapedLength) != 0)
        return -1;
    const size_t total = sizeof kSmartHead - 1 + static_cast<size_t>(escapedLength) + sizeof kSmartMiddle - 1 +
                         sizeof pResetCode - 1 + sizeof kSmartTail - 1;
    char* result = static_cast<char*>(ramAllocC(total + 1));
    if (result == nullptr) {
        std::free(escaped);
        return -1;
    }
    char* p = result;
    for (const auto& [part, size] : {std::pair<const char*, size_t>{kSmartHead, sizeof kSmartHead - 1},
                                     {escaped, static_cast<size_t>(escapedLength)},
                                     {kSmartMiddle, sizeof kSmartMiddle - 1},
                                     {pResetCode, sizeof pResetCode - 1},
                                     {kSmartTail, sizeof kSmartTail - 1}}) {
        std::memcpy(p, part, size);
        p += size;
    }
    *p = 0;
    std::free(escaped);
    *out = result;
    *outLength = static_cast<long>(total);
    return 0;
}
