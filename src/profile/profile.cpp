// The profile functions by file name and by cache handle.  Every file-name
// form goes through the task's cache list; the keeping family never closes
// what it opened, the private file-name family closes around each call.
#include "profile.h"

#include <cstring>

#include "../platform/bosfile.h"
#include "inicache_impl.h"

namespace {
// Open modes: reads take the file as it is, writes create it when missing.
constexpr unsigned long kReadMode = 0;
constexpr unsigned long kWriteMode = BOS_OPEN_CREATE_IF_MISSING;

ZuIniFileCache* openCache(const char* file, unsigned long mode)
{
    ZuIniFileCacheList* list = zuGetIniFileCacheList();
    return list != nullptr ? list->open(file, mode) : nullptr;
}

ZuIniFileCache* openCache(const unsigned short* file, unsigned long mode)
{
    ZuIniFileCacheList* list = zuGetIniFileCacheList();
    return list != nullptr ? list->open(file, mode) : nullptr;
}

void closeCache(ZuIniFileCache* cache)
{
    if (ZuIniFileCacheList* list = zuGetIniFileCacheList())
        list->close(cache);
}

// The default of a wide read that had no cache: by its length in units,
// without a terminator, kept within the buffer (an empty one gives a 0 unit).
int wideDefault(const unsigned short* defaultValue, unsigned short* buffer, int size)
{
    if (buffer == nullptr || size <= 0)
        return 0;
    int units = 0;
    while (defaultValue != nullptr && defaultValue[units] != 0)
        ++units;
    if (units == 0) {
        buffer[0] = 0;
        return 0;
    }
    if (units > size)
        units = size;
    std::memcpy(buffer, defaultValue, static_cast<std::size_t>(units) * sizeof(unsigned short));
    return units;
}
}  // namespace

ZuIniFileCache* zuProfileInit(const char* file) { return openCache(file, kWriteMode); }

int zuGetProfileString(const char* section, const char* entry, const char* defaultValue, char* buffer, int size,
                       const char* file)
{
    ZuIniFileCache* cache = openCache(file, kReadMode);
    if (cache == nullptr)
        return zustrlcpy(buffer, defaultValue, size);
    return cache->bosGetProfileString(section, entry, defaultValue, buffer, size);
}

int zuWriteProfileString(const char* section, const char* entry, const char* value, const char* file)
{
    ZuIniFileCache* cache = openCache(file, kWriteMode);
    return cache != nullptr ? cache->bosPutProfileString(section, entry, value) : 0;
}

unsigned int zuGetProfileInt(const char* section, const char* entry, unsigned int defaultValue, const char* file)
{
    ZuIniFileCache* cache = openCache(file, kReadMode);
    return cache != nullptr ? cache->bosGetProfileInt(section, entry, defaultValue) : defaultValue;
}

ZuIniFileCache* zuPrivateProfileInit(const char* file) { return openCache(file, kWriteMode); }

void zuPrivateProfileTerm(ZuIniFileCache* cache) { closeCache(cache); }

int zuGetPrivateProfileString(const char* section, const char* entry, const char* defaultValue, char* buffer,
                              int size, ZuIniFileCache* cache)
{
    if (cache == nullptr)
        return zustrlcpy(buffer, defaultValue, size);
    return cache->bosGetProfileString(section, entry, defaultValue, buffer, size);
}

int zuGetPrivateProfileString(const char* section, const char* entry, const char* defaultValue, char* buffer,
                              int size, const char* file)
{
    ZuIniFileCache* cache = file != nullptr ? openCache(file, kReadMode) : nullptr;
    if (cache == nullptr)
        return zustrlcpy(buffer, defaultValue, size);
    const int length = cache->bosGetProfileString(section, entry, defaultValue, buffer, size);
    closeCache(cache);
    return length;
}

int zuGetPrivateProfileStringW(const unsigned short* section, const unsigned short* entry,
                               const unsigned short* defaultValue, unsigned short* buffer, int size,
                               ZuIniFileCache* cache)
{
    if (cache == nullptr)
        return wideDefault(defaultValue, buffer, size);
    return cache->bosGetProfileStringW(section, entry, defaultValue, buffer, size);
}

int zuGetPrivateProfileStringW(const unsigned short* section, const unsigned short* entry,
                               const unsigned short* defaultValue, unsigned short* buffer, int size,
                               const unsigned short* file)
{
    ZuIniFileCache* cache = file != nullptr ? openCache(file, kReadMode) : nullptr;
    if (cache == nullptr)
        return wideDefault(defaultValue, buffer, size);
    const int length = cache->bosGetProfileStringW(section, entry, defaultValue, buffer, size);
    closeCache(cache);
    return length;
}

int zuWritePrivateProfileString(const char* section, const char* entry, const char* value, ZuIniFileCache* cache)
{
    return cache != nullptr ? cache->bosPutProfileString(section, entry, value) : 0;
}

int zuWritePrivateProfileString(const char* section, const char* entry, const char* value, const char* file)
{
    ZuIniFileCache* cache = openCache(file, kWriteMode);
    if (cache == nullptr)
        return 0;
    const int result = cache->bosPutProfileString(section, entry, value);
    closeCache(cache);
    return result;
}

namespace {
// The three texts of a wide write in narrow form; a null argument becomes an
// empty text.  false when a conversion failed.
struct NarrowWrite {
    char section[ZU_INI_PATH_MAX];
    char entry[ZU_INI_PATH_MAX];
    char value[ZU_INI_PATH_MAX];
    bool convert(const unsigned short* s, const unsigned short* e, const unsigned short* v)
    {
        static const unsigned short empty[1] = {0};
        return zuGetANSIStrFromUTF16Str(s != nullptr ? s : empty, section, sizeof section) >= 0 &&
               zuGetANSIStrFromUTF16Str(e != nullptr ? e : empty, entry, sizeof entry) >= 0 &&
               zuGetANSIStrFromUTF16Str(v != nullptr ? v : empty, value, sizeof value) >= 0;
    }
};
}  // namespace

int zuWritePrivateProfileStringW(const unsigned short* section, const unsigned short* entry,
                                 const unsigned short* value, ZuIniFileCache* cache)
{
    NarrowWrite narrow;
    if (!narrow.convert(section, entry, value))
        return 0;
    return zuWritePrivateProfileString(narrow.section, narrow.entry, narrow.value, cache);
}

int zuWritePrivateProfileStringW(const unsigned short* section, const unsigned short* entry,
                                 const unsigned short* value, const unsigned short* file)
{
    NarrowWrite narrow;
    if (file == nullptr || !narrow.convert(section, entry, value))
        return 0;
    ZuIniFileCache* cache = openCache(file, kWriteMode);
    if (cache == nullptr)
        return 0;
    const int result = cache->bosPutProfileString(narrow.section, narrow.entry, narrow.value);
    closeCache(cache);
    return result;
}

unsigned int zuGetPrivateProfileInt(const char* section, const char* entry, unsigned int defaultValue,
                                    ZuIniFileCache* cache)
{
    return cache != nullptr ? cache->bosGetProfileInt(section, entry, defaultValue) : defaultValue;
}

unsigned int zuGetPrivateProfileInt(const char* section, const char* entry, unsigned int defaultValue,
                                    const char* file)
{
    ZuIniFileCache* cache = file != nullptr ? openCache(file, kReadMode) : nullptr;
    if (cache == nullptr)
        return defaultValue;
    const unsigned int value = cache->bosGetProfileInt(section, entry, defaultValue);
    closeCache(cache);
    return value;
}

namespace {
unsigned int wideInt(const unsigned short* section, const unsigned short* entry, unsigned int defaultValue,
                     ZuIniFileCache* cache)
{
    char narrowSection[ZU_INI_PATH_MAX];
    char narrowEntry[ZU_INI_PATH_MAX];
    if (section == nullptr || zuGetANSIStrFromUTF16Str(section, narrowSection, sizeof narrowSection) < 0)
        return defaultValue;
    if (entry != nullptr && zuGetANSIStrFromUTF16Str(entry, narrowEntry, sizeof narrowEntry) < 0)
        return defaultValue;
    return cache->bosGetProfileInt(narrowSection, entry != nullptr ? narrowEntry : nullptr, defaultValue);
}
}  // namespace

unsigned int zuGetPrivateProfileIntW(const unsigned short* section, const unsigned short* entry,
                                     unsigned int defaultValue, ZuIniFileCache* cache)
{
    return cache != nullptr ? wideInt(section, entry, defaultValue, cache) : defaultValue;
}

unsigned int zuGetPrivateProfileIntW(const unsigned short* section, const unsigned short* entry,
                                     unsigned int defaultValue, const unsigned short* file)
{
    ZuIniFileCache* cache = file != nullptr ? openCache(file, kReadMode) : nullptr;
    if (cache == nullptr)
        return defaultValue;
    const unsigned int value = wideInt(section, entry, defaultValue, cache);
    closeCache(cache);
    return value;
}

int zuGetPrivateProfileSection(const char* section, char* buffer, int size, const char* file)
{
    ZuIniFileCache* cache = file != nullptr ? openCache(file, kReadMode) : nullptr;
    if (cache == nullptr) {
        if (buffer != nullptr && size > 0)
            buffer[0] = 0;
        return 0;
    }
    return cache->bosGetProfileSection(section, buffer, size);
}
