/*
 * CharacterConverter: the one-shot front end of the code page transforms.
 *
 * It opens each ICU converter once and keeps it: by code page number
 * (ZuIntHandleCache) and by converter name (ZuStrHandleCache), with the
 * last one asked for remembered in front of each cache, and the lead-byte
 * maps of the code pages it was asked about (ZuPCU8Cache).  Every converter
 * it opens carries the from-Unicode substitution callback with this object's
 * ICUSubstitutionErrorInfo as context, so a conversion that had to
 * substitute a character ends with warning 2736.
 *
 * Each conversion reports through checkUXreturn: 0 for success (warnings
 * included), 1 for failure, the reason in the thread's error list.  The
 * converter owns its caches and every ICU converter in them; it belongs to
 * one thread at a time.
 */
#ifndef HNSYB_CONVERSION_CHARCONVERTER_H
#define HNSYB_CONVERSION_CHARCONVERTER_H

#include <unicode/ucnv.h>

#include "../encoding/ux.h"

class ZuIntHandleCache;
class ZuStrHandleCache;
class ZuPCU8Cache;

class ZU_EXPORT CharacterConverter {
public:
    // reportMode: how substitutions are treated (0 quiet, 1 fail, 2 record).
    explicit CharacterConverter(int reportMode = 2);
    ~CharacterConverter();
    CharacterConverter(const CharacterConverter&) = delete;
    CharacterConverter& operator=(const CharacterConverter&) = delete;

    // Makes the three caches, the two handle caches with `cacheSize` rows.
    int initialize(unsigned long cacheSize);
    void setEnableFallbackMapping(unsigned int flag);

    int uxMaxCharSize(long codePage);
    int uxMinCharSize(long codePage);

    // Code page -> UTF-8.  Code page 106 is a plain copy (a length of -1
    // meaning a terminated source; cut with warning 2735 when it does not
    // fit), 1013 goes through the UTF-16 transform.
    int uxAnsiToUTF8(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                     long* written, long* consumed, long codePage);
    // The same without special cases.
    int uxAnsiToUTF8(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                     long* written, long codePage);
    int uxUTF8ToAnsi(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                     long* written, long* consumed, long codePage);
    int uxUTF8ToAnsi(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                     long* written, long codePage);
    int uxCpgToCpg(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                   long* written, long* consumed, long fromCodePage, long toCodePage);
    int uxCpgToCpg(unsigned char* target, long targetSize, const unsigned char* source, long sourceLength,
                   long* written, long* consumed, const unsigned char* fromName, unsigned long fromLength,
                   const unsigned char* toName, unsigned long toLength);
    int uxUCS2ToAnsi(unsigned char* target, long targetSize, unsigned short* source, long sourceUnits,
                     long* written, long* consumed, long codePage, int swap);
    int uxAnsiToUCS2(unsigned short* target, long targetUnits, const unsigned char* source, long sourceBytes,
                     long* written, long* consumed, long codePage, int swap);

    int getPossibleLeadByteMap(long codePage, const unsigned char** map);
    int isPossibleLeadByte(long codePage, unsigned char byte, int* result);

    // The converter for a code page (0: ICU's default) or a name, opened on
    // first use and kept; it stays this object's.  0 or 1.
    int getHandle(long codePage, UConverter** handle);
    int getHandle(const unsigned char* name, unsigned long length, UConverter** handle);

private:
    int utf8(UConverter** handle);
    int prepare(UConverter* handle);
    int finish(ZuConvertReturn result);

    ZuIntHandleCache* intHandles = nullptr;
    long lastId = static_cast<int32_t>(0xFEDCBA89);  // no code page has this number
    UConverter* lastHandle = nullptr;
    ZuPCU8Cache* leadByteMaps = nullptr;
    long lastLeadId = static_cast<int32_t>(0xFEDCBA89);
    const unsigned char* lastLeadMap = nullptr;
    ZuStrHandleCache* nameHandles = nullptr;
    const unsigned char* lastName = nullptr;
    unsigned long lastNameLength = 0;
    UConverter* lastNameHandle = nullptr;
    UConverter* utf8Handle = nullptr;
    ICUSubstitutionErrorInfo substitution{};
    int fallback = 0;
};

#endif
