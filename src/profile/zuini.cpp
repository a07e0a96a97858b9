// ZuIni: one profile file held open through the task's cache list.
#include <cstring>

#include "../core/errorlist.h"
#include "profile.h"

ZuIni::~ZuIni() { ZuIni::close(); }

int ZuIni::close()
{
    zuPrivateProfileTerm(cache_);
    cache_ = nullptr;
    return 0;
}

int ZuIni::open(const char* file)
{
    if (cache_ != nullptr)
        close();
    cache_ = zuPrivateProfileInit(file);
    if (cache_ == nullptr)
        return 1;
    zustrlcpy(fileName_, file, sizeof fileName_);
    return 0;
}

int ZuIni::validState()
{
    if (cache_ != nullptr)
        return 0;
    addError(ZU_MSG_INI_NOT_OPEN);
    return 1;
}

int ZuIni::getEntry(const char* section, const char* entry, char* buffer, int size, const char* defaultValue)
{
    if (validState() != 0)
        zustrlcpy(buffer, defaultValue, size);
    else
        zuGetPrivateProfileString(section, entry, defaultValue, buffer, size, cache_);
    return 0;
}

int ZuIni::getEntryWithLen(const char* section, const char* entry, char* buffer, int size, const char* defaultValue)
{
    if (validState() != 0) {
        zustrlcpy(buffer, defaultValue, size);
        return 0;
    }
    return zuGetPrivateProfileString(section, entry, defaultValue, buffer, size, cache_);
}

int ZuIni::getEntry(const char* section, const char* entry, short* value, short defaultValue)
{
    if (value == nullptr)
        return 0;
    if (validState() != 0) {
        *value = defaultValue;
        return 0;
    }
    const unsigned int number =
        zuGetPrivateProfileInt(section, entry, static_cast<unsigned int>(static_cast<int>(defaultValue)), cache_);
    *value = static_cast<short>(number);
    return 0;
}

// The entry names of a section.  The section list is read into the buffer
// first and then cleared, as the interface has always done; what the caller
// gets is the entry list.
int ZuIni::getSectionWithValues(const char* section, char* buffer, int size, const char* defaultValue)
{
    if (validState() != 0) {
        zustrlcpy(buffer, defaultValue, size);
        return 0;
    }
    if (buffer == nullptr || size <= 0)
        return 0;
    zuGetPrivateProfileString(nullptr, nullptr, defaultValue, buffer, size, cache_);
    std::memset(buffer, 0, static_cast<std::size_t>(size));
    zuGetPrivateProfileSection(section, buffer, size, fileName_);
    return 0;
}

int ZuIni::writeEntry(const char* section, const char* entry, const char* value)
{
    if (validState() == 0)
        zuWritePrivateProfileString(section, entry, value, cache_);
    return 0;
}

int ZuIni::deleteEntry(const char* section, const char* entry)
{
    if (validState() == 0)
        zuWritePrivateProfileString(section, entry, static_cast<const char*>(nullptr), cache_);
    return 0;
}
