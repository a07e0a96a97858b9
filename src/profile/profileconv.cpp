// Text conversions of the profile interface: ISO-8859-1 (the "ANSI" of the
// wide forms) to and from UTF-16, UTF-16 to UTF-8, the bounded copy, and
// module names with their extension.
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <cstring>

#include "../encoding/codepage.h"
#include "../encoding/cptype.h"
#include "../encoding/ux.h"
#include "profile.h"

namespace {
constexpr int kMaxUnits = 1023;
constexpr int kDefaultBytes = 1024;
const char kModuleExtension[] = ".so";

int unitLength(const unsigned short* text)
{
    int units = 0;
    while (text[units] != 0)
        ++units;
    return units;
}

// A converter for ISO-8859-1, opened for each call; null after an ICU
// failure, which is reported.
UConverter* openLatin1()
{
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(ucnvIANAidToICUname(ZU_CP_ISO_8859_1), &status);
    if (U_FAILURE(status)) {
        checkICUreturn(status);
        return nullptr;
    }
    return converter;
}
}  // namespace

int zustrlcpy(char* target, const char* source, int size)
{
    if (target == nullptr || size <= 0)
        return 0;
    int length = 0;
    if (source != nullptr)
        while (length < size - 1 && source[length] != 0) {
            target[length] = source[length];
            ++length;
        }
    target[length] = 0;
    return length;
}

int zuGetANSIStrFromUTF16Str(const unsigned short* text, char* buffer, int size)
{
    if (buffer == nullptr || size <= 0)
        return 0;
    buffer[0] = 0;
    if (text == nullptr)
        return 0;
    int units = unitLength(text);
    if (units > kMaxUnits)
        units = kMaxUnits;
    if (units > size - 1)
        units = size - 1;
    if (units == 0)
        return 0;
    UConverter* converter = openLatin1();
    if (converter == nullptr)
        return -1;
    UErrorCode status = U_ZERO_ERROR;
    // One byte per unit at most (a surrogate pair gives one substitute), so
    // the target always has room for the terminator.
    const int32_t written = ucnv_fromUChars(converter, buffer, size, reinterpret_cast<const UChar*>(text), units,
                                            &status);
    ucnv_close(converter);
    if (U_FAILURE(status)) {
        buffer[0] = 0;
        checkICUreturn(status);
        return -1;
    }
    buffer[written < size ? written : size - 1] = 0;
    return written;
}

int zuGetANSIStrFromUTF16Str(const unsigned short* text, char* buffer)
{
    return zuGetANSIStrFromUTF16Str(text, buffer, kDefaultBytes);
}

int zuGetUTF16StrFromANSIStr(const char* text, unsigned short* buffer, int size)
{
    if (buffer == nullptr || size <= 0)
        return 0;
    buffer[0] = 0;
    if (text == nullptr)
        return 0;
    std::size_t bytes = std::strlen(text);
    if (bytes > static_cast<std::size_t>(kMaxUnits))
        bytes = kMaxUnits;
    if (bytes > static_cast<std::size_t>(size - 1))
        bytes = static_cast<std::size_t>(size - 1);
    if (bytes == 0)
        return 0;
    UConverter* converter = openLatin1();
    if (converter == nullptr)
        return -1;
    UErrorCode status = U_ZERO_ERROR;
    const int32_t written = ucnv_toUChars(converter, reinterpret_cast<UChar*>(buffer), size, text,
                                          static_cast<int32_t>(bytes), &status);
    ucnv_close(converter);
    if (U_FAILURE(status)) {
        buffer[0] = 0;
        checkICUreturn(status);
        return -1;
    }
    buffer[written < size ? written : size - 1] = 0;
    return written;
}

int zuGetUTF16StrFromANSIStr(const char* text, unsigned short* buffer)
{
    // 1,024 bytes of target are 512 units.
    return zuGetUTF16StrFromANSIStr(text, buffer, kDefaultBytes / 2);
}

int zuGetUTF8StrFromUTF16Str(const unsigned short* text, char* buffer, int size)
{
    if (buffer == nullptr || size <= 0)
        return 0;
    buffer[0] = 0;
    if (text == nullptr)
        return 0;
    int units = unitLength(text);
    if (units > kMaxUnits)
        units = kMaxUnits;
    // The source is cut where its UTF-8 form would pass size - 1 bytes,
    // never inside a surrogate pair.
    const UChar* source = reinterpret_cast<const UChar*>(text);
    int taken = 0;
    int bytes = 0;
    while (taken < units) {
        int at = taken;
        UChar32 c;
        U16_NEXT(source, at, units, c);
        const int need = c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
        if (bytes + need > size - 1)
            break;
        bytes += need;
        taken = at;
    }
    UErrorCode status = U_ZERO_ERROR;
    int32_t written = 0;
    u_strToUTF8(buffer, size, &written, source, taken, &status);
    if (status == U_STRING_NOT_TERMINATED_WARNING) {
        written = size - 1;
        status = U_ZERO_ERROR;
    }
    if (U_FAILURE(status)) {
        buffer[0] = 0;
        checkICUreturn(status);
        return -1;
    }
    buffer[written] = 0;
    return written;
}

int zuGetUTF8StrFromUTF16Str(const unsigned short* text, char* buffer)
{
    return zuGetUTF8StrFromUTF16Str(text, buffer, kDefaultBytes);
}

int zuGetModFileNameW(const unsigned short* name, int size, unsigned short* buffer)
{
    if (name == nullptr || buffer == nullptr || size <= 0)
        return 0;
    const int units = unitLength(name);
    const int extension = static_cast<int>(sizeof kModuleExtension) - 1;
    const int room = size < kDefaultBytes / 2 ? size : kDefaultBytes / 2;
    if (units + extension + 1 > room)
        return 0;
    std::memcpy(buffer, name, static_cast<std::size_t>(units) * sizeof(unsigned short));
    for (int i = 0; i < extension; ++i)
        buffer[units + i] = static_cast<unsigned char>(kModuleExtension[i]);
    buffer[units + extension] = 0;
    return units + extension;
}

int zuGetModName(const char* name, unsigned short* buffer, int size)
{
    if (name == nullptr || buffer == nullptr || size <= 0)
        return 0;
    unsigned short wide[kDefaultBytes / 2];
    if (zuGetUTF16StrFromANSIStr(name, wide, static_cast<int>(sizeof wide / sizeof wide[0])) < 0)
        return 0;
    return zuGetModFileNameW(wide, size, buffer);
}
