#include "../encoding/uxreport_impl.h"
#include "charconverter.h"

#include <cstring>

#include "../core/errorlist.h"
#include "../core/handlecache.h"
#include "../encoding/codepage.h"
#include "../encoding/mbchar.h"
#include "../platform/ram.h"

namespace {
// Private code pages whose converters are driven with the code-page-to-
// code-page transform rather than the UTF-8 one.
bool viaCpgToCpg(long id)
{
    switch (id) {
    case 2000005039: case 2000005040: case 2000005041: case 2000005042: case 2000005043:
    case 2000005045: case 2000005046: case 2000005049: case 2000005053: case 2000005056:
        return true;
    default:
        return false;
    }
}

// Text that needs no conversion: copied, cut to the target when it does not
// fit, terminated when there is room.  A length of -1 means a terminated
// source.
ZuConvertReturn plainCopy(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                          long* written, long* consumed)
{
    if (target == nullptr || source == nullptr || targetSize <= 0)
        return ZU_CONV_FAILURE;
    const long length =
        sourceLength == -1 ? static_cast<long>(std::strlen(reinterpret_cast<const char*>(source))) : sourceLength;
    const long n = length <= targetSize ? length : targetSize;
    std::memmove(target, source, static_cast<size_t>(n));
    if (n < targetSize)
        target[n] = 0;
    if (written != nullptr)
        *written = n;
    if (consumed != nullptr)
        *consumed = n;
    return n < length ? ZU_CONV_TRUNCATED : ZU_CONV_SUCCESS;
}

// Number of the message "unable to set the callback".
constexpr unsigned short kCallbackError = 4;
}  // namespace

CharacterConverter::CharacterConverter(int reportMode) { substitution.mode = reportMode; }

CharacterConverter::~CharacterConverter()
{
    delete intHandles;
    delete nameHandles;
    delete leadByteMaps;
    ucnv_close(utf8Handle);
}

int CharacterConverter::initialize(unsigned long cacheSize)
{
    if (intHandles == nullptr && (intHandles = new ZuIntHandleCache) == nullptr)
        return 1;
    if (nameHandles == nullptr && (nameHandles = new ZuStrHandleCache) == nullptr)
        return 1;
    if (leadByteMaps == nullptr && (leadByteMaps = new ZuPCU8Cache) == nullptr)
        return 1;
    return intHandles->initialize(cacheSize) != 0 || nameHandles->initialize(cacheSize) != 0 ? 1 : 0;
}

void CharacterConverter::setEnableFallbackMapping(unsigned int flag)
{
    fallback = flag != 0;
    if (intHandles != nullptr)
        intHandles->setEnableFallbackMapping(flag);
    if (nameHandles != nullptr)
        nameHandles->setEnableFallbackMapping(flag);
    if (utf8Handle != nullptr)
        ucnv_setFallback(utf8Handle, fallback != 0);
}

int CharacterConverter::prepare(UConverter* handle)
{
    if (installSubstitutionCallback(handle, &substitution) != 0) {
        ZuErrorKeeper::addError(new ZuError(kCallbackError, ErrTypeError, ZU_STATE_HY000));
        return 1;
    }
    if (fallback != 0)
        ucnv_setFallback(handle, true);
    return 0;
}

int CharacterConverter::getHandle(long codePage, UConverter** handle)
{
    if (codePage == lastId && lastHandle != nullptr) {
        *handle = lastHandle;
        return 0;
    }
    if (intHandles == nullptr && initialize(4) != 0)
        return 1;
    UConverter* c = intHandles->getHandleForKey(codePage);
    if (c == nullptr) {
        UErrorCode status = U_ZERO_ERROR;
        c = ucnv_open(codePage == 0 ? nullptr : ucnvIANAidToICUname(codePage), &status);
        if (U_FAILURE(status)) {
            ucnv_close(c);
            return reportOpenFailure(status, codePage);
        }
        if (prepare(c) != 0 || intHandles->addAssoc(codePage, c) != 0) {
            ucnv_close(c);
            return 1;
        }
    }
    lastId = codePage;
    lastHandle = c;
    *handle = c;
    return 0;
}

int CharacterConverter::getHandle(const unsigned char* name, unsigned long length, UConverter** handle)
{
    if (lastNameHandle != nullptr && length == lastNameLength && std::memcmp(name, lastName, length) == 0) {
        *handle = lastNameHandle;
        return 0;
    }
    if (nameHandles == nullptr && initialize(4) != 0)
        return 1;
    const unsigned char* key = name;
    UConverter* c = nameHandles->getHandleForKey(&key, length);
    if (c == nullptr) {
        // ICU wants a terminated name.
        char buf[128];
        if (length >= sizeof buf) {
            checkUXreturn(ZU_CONV_FAILURE);
            return 1;
        }
        std::memcpy(buf, name, length);
        buf[length] = 0;
        UErrorCode status = U_ZERO_ERROR;
        c = ucnv_open(buf, &status);
        if (U_FAILURE(status)) {
            ucnv_close(c);
            checkICUreturn(status);
            return 1;
        }
        if (prepare(c) != 0 || nameHandles->addAssoc(name, length, c) != 0) {
            ucnv_close(c);
            return 1;
        }
        key = name;
        nameHandles->getHandleForKey(&key, length);  // the cache's own copy of the name
    }
    lastName = key;
    lastNameLength = length;
    lastNameHandle = c;
    *handle = c;
    return 0;
}

int CharacterConverter::utf8(UConverter** handle)
{
    if (utf8Handle == nullptr) {
        UErrorCode status = U_ZERO_ERROR;
        utf8Handle = ucnv_open("UTF8", &status);
        if (U_FAILURE(status)) {
            ucnv_close(utf8Handle);
            utf8Handle = nullptr;
            checkICUreturn(status);
            return 1;
        }
        if (prepare(utf8Handle) != 0)
            return 1;
    }
    *handle = utf8Handle;
    return 0;
}

int CharacterConverter::finish(ZuConvertReturn result)
{
    if (substitution.substituted != 0) {
        substitution.substituted = 0;
        if (result == ZU_CONV_SUCCESS)
            result = ZU_CONV_ILLEGAL_CHAR;
    }
    return checkUXreturn(result);
}

int CharacterConverter::uxMaxCharSize(long codePage)
{
    UConverter* c = nullptr;
    return getHandle(codePage, &c) == 0 ? ucnv_getMaxCharSize(c) : 0;
}

int CharacterConverter::uxMinCharSize(long codePage)
{
    UConverter* c = nullptr;
    return getHandle(codePage, &c) == 0 ? ucnv_getMinCharSize(c) : 0;
}

int CharacterConverter::uxAnsiToUTF8(unsigned char* target, long targetSize, const unsigned char* source,
                                     long sourceLength, long* written, long* consumed, long codePage)
{
    if (codePage == ZU_CP_UTF8_ID) {
        return checkUXreturn(plainCopy(target, targetSize, source, sourceLength, written, consumed));
    }
    if (codePage == ZU_CP_UTF16BE) {
        long out = 0;
        const ZuConvertReturn rc = ::uxUTF16ToUTF8(target, targetSize, reinterpret_cast<const unsigned short*>(source),
                                                   sourceLength < 0 ? sourceLength : sourceLength / 2, &out,
                                                   __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
        if (written != nullptr)
            *written = out;
        if (consumed != nullptr) {
            // Source bytes used, from the characters that came out: four
            // for a character written with 4 bytes (a surrogate pair), two
            // for any other.
            long used = 0;
            for (long i = 0; i < out && i < targetSize;) {
                const unsigned char b = target[i];
                const long size = b < 0x80 ? 1 : b < 0xE0 ? 2 : b < 0xF0 ? 3 : 4;
                used += size == 4 ? 4 : 2;
                i += size;
            }
            *consumed = used;
        }
        return checkUXreturn(rc);
    }
    UConverter *from = nullptr, *to = nullptr;
    if (getHandle(codePage, &from) != 0 || utf8(&to) != 0)
        return 1;
    if (viaCpgToCpg(codePage))
        return finish(::uxCpgToCpg(target, targetSize, source, sourceLength, written, consumed, from, to));
    return finish(::uxAnsiToUTF8(target, targetSize, source, sourceLength, written, consumed, from, to));
}

int CharacterConverter::uxAnsiToUTF8(unsigned char* target, long targetSize, const unsigned char* source,
                                     long sourceLength, long* written, long codePage)
{
    UConverter *from = nullptr, *to = nullptr;
    if (getHandle(codePage, &from) != 0 || utf8(&to) != 0)
        return 1;
    return finish(::uxAnsiToUTF8(target, targetSize, source, sourceLength, written, nullptr, from, to));
}

int CharacterConverter::uxUTF8ToAnsi(unsigned char* target, long targetSize, const unsigned char* source,
                                     long sourceLength, long* written, long* consumed, long codePage)
{
    UConverter *from = nullptr, *to = nullptr;
    if (utf8(&from) != 0 || getHandle(codePage, &to) != 0)
        return 1;
    return finish(::uxUTF8ToAnsi(target, targetSize, source, sourceLength, written, consumed, from, to));
}

int CharacterConverter::uxUTF8ToAnsi(unsigned char* target, long targetSize, const unsigned char* source,
                                     long sourceLength, long* written, long codePage)
{
    return uxUTF8ToAnsi(target, targetSize, source, sourceLength, written, nullptr, codePage);
}

int CharacterConverter::uxCpgToCpg(unsigned char* target, long targetSize, const unsigned char* source,
                                   long sourceLength, long* written, long* consumed, long fromCodePage,
                                   long toCodePage)
{
    UConverter *from = nullptr, *to = nullptr;
    // The number cache remembers one handle in front; take the first handle
    // before asking for the second.
    if (getHandle(fromCodePage, &from) != 0 || getHandle(toCodePage, &to) != 0)
        return 1;
    // The same code page on both sides is one converter on both sides: ICU
    // keeps its to- and from-Unicode states apart, and the input is checked.
    return finish(::uxCpgToCpg(target, targetSize, source, sourceLength, written, consumed, from, to));
}

int CharacterConverter::uxCpgToCpg(unsigned char* target, long targetSize, const unsigned char* source,
                                   long sourceLength, long* written, long* consumed, const unsigned char* fromName,
                                   unsigned long fromLength, const unsigned char* toName, unsigned long toLength)
{
    UConverter *from = nullptr, *to = nullptr;
    if (getHandle(fromName, fromLength, &from) != 0 || getHandle(toName, toLength, &to) != 0)
        return 1;
    return finish(::uxCpgToCpg(target, targetSize, source, sourceLength, written, consumed, from, to));
}

int CharacterConverter::uxUCS2ToAnsi(unsigned char* target, long targetSize, unsigned short* source,
                                     long sourceUnits, long* written, long* consumed, long codePage, int swap)
{
    UConverter* to = nullptr;
    if (getHandle(codePage, &to) != 0)
        return 1;
    return finish(::uxUCS2ToAnsi(target, targetSize, source, sourceUnits, written, consumed, to, swap));
}

int CharacterConverter::uxAnsiToUCS2(unsigned short* target, long targetUnits, const unsigned char* source,
                                     long sourceBytes, long* written, long* consumed, long codePage, int swap)
{
    UConverter* from = nullptr;
    if (getHandle(codePage, &from) != 0)
        return 1;
    return checkUXreturn(::uxAnsiToUCS2(target, targetUnits, source, sourceBytes, written, consumed, from, swap));
}

int CharacterConverter::getPossibleLeadByteMap(long codePage, const unsigned char** map)
{
    if (codePage == lastLeadId && lastLeadMap != nullptr) {
        *map = lastLeadMap;
        return 0;
    }
    if (leadByteMaps == nullptr && initialize(4) != 0)
        return 1;
    const unsigned char* found = leadByteMaps->getHandleForKey(codePage);
    if (found == nullptr) {
        UConverter* c = nullptr;
        unsigned char* made = nullptr;
        if (getHandle(codePage, &c) != 0 || generateLeadByteMap(c, &made) != 0)
            return 1;
        if (leadByteMaps->addAssoc(codePage, made) != 0) {
            ramFreeC(made);
            return 1;
        }
        found = made;
    }
    lastLeadId = codePage;
    lastLeadMap = found;
    *map = found;
    return 0;
}

int CharacterConverter::isPossibleLeadByte(long codePage, unsigned char byte, int* result)
{
    const unsigned char* map = nullptr;
    if (getPossibleLeadByteMap(codePage, &map) != 0)
        return 1;
    *result = map[byte];
    return 0;
}
