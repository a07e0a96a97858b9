/*
 * The profile interface: reading and writing profile files by name or by
 * cache handle, the ZuIni class, the ISO-8859-1 <-> UTF-16 conversions the
 * wide forms use, and shims with the names of the Windows profile and
 * window API, so that code shared with that platform compiles unchanged.
 *
 * Families and what they keep:
 *  - zuGetProfile... and zuWriteProfileString open the file through the
 *    task's cache list and never close it: a file read once stays cached for
 *    the life of the task, which is what makes later reads cheap;
 *  - the zuGetPrivateProfile... and zuWritePrivateProfile... forms that take
 *    a file name open and close around each call; the forms that take a
 *    cache handle use the handle of zuPrivateProfileInit until
 *    zuPrivateProfileTerm;
 *  - reads never report: whatever fails gives the default.  Writes give 1
 *    for success, 0 for failure.
 *
 * Sizes are in bytes for narrow buffers and in 16-bit units for wide ones.
 * Buffers are the caller's.  A cache handed out by zuProfileInit or
 * zuPrivateProfileInit belongs to the task's list; give it back with
 * zuPrivateProfileTerm (zuProfileInit's reference is meant to be kept).
 *
 * The file-name and handle forms of zuGetPrivateProfileString are
 * overloads: a null file name must be written as (const char*)nullptr.
 */
#ifndef HNSYB_PROFILE_PROFILE_H
#define HNSYB_PROFILE_PROFILE_H

#include "inicache.h"

// --- By file name, kept cached --------------------------------------------
ZU_EXPORT ZuIniFileCache* zuProfileInit(const char* file);
ZU_EXPORT int zuGetProfileString(const char* section, const char* entry, const char* defaultValue, char* buffer,
                                 int size, const char* file);
ZU_EXPORT int zuWriteProfileString(const char* section, const char* entry, const char* value, const char* file);
ZU_EXPORT unsigned int zuGetProfileInt(const char* section, const char* entry, unsigned int defaultValue,
                                       const char* file);

// --- Private profiles: by handle, or by name opened and closed per call ---
ZU_EXPORT ZuIniFileCache* zuPrivateProfileInit(const char* file);
ZU_EXPORT void zuPrivateProfileTerm(ZuIniFileCache* cache);

ZU_EXPORT int zuGetPrivateProfileString(const char* section, const char* entry, const char* defaultValue,
                                        char* buffer, int size, ZuIniFileCache* cache);
ZU_EXPORT int zuGetPrivateProfileString(const char* section, const char* entry, const char* defaultValue,
                                        char* buffer, int size, const char* file);
ZU_EXPORT int zuGetPrivateProfileStringW(const unsigned short* section, const unsigned short* entry,
                                         const unsigned short* defaultValue, unsigned short* buffer, int size,
                                         ZuIniFileCache* cache);
ZU_EXPORT int zuGetPrivateProfileStringW(const unsigned short* section, const unsigned short* entry,
                                         const unsigned short* defaultValue, unsigned short* buffer, int size,
                                         const unsigned short* file);

ZU_EXPORT int zuWritePrivateProfileString(const char* section, const char* entry, const char* value,
                                          ZuIniFileCache* cache);
ZU_EXPORT int zuWritePrivateProfileString(const char* section, const char* entry, const char* value,
                                          const char* file);
// Each argument is converted first; a null one becomes an empty text, so a
// null value writes an empty value rather than deleting.
ZU_EXPORT int zuWritePrivateProfileStringW(const unsigned short* section, const unsigned short* entry,
                                           const unsigned short* value, ZuIniFileCache* cache);
ZU_EXPORT int zuWritePrivateProfileStringW(const unsigned short* section, const unsigned short* entry,
                                           const unsigned short* value, const unsigned short* file);

ZU_EXPORT unsigned int zuGetPrivateProfileInt(const char* section, const char* entry, unsigned int defaultValue,
                                              ZuIniFileCache* cache);
ZU_EXPORT unsigned int zuGetPrivateProfileInt(const char* section, const char* entry, unsigned int defaultValue,
                                              const char* file);
ZU_EXPORT unsigned int zuGetPrivateProfileIntW(const unsigned short* section, const unsigned short* entry,
                                               unsigned int defaultValue, ZuIniFileCache* cache);
ZU_EXPORT unsigned int zuGetPrivateProfileIntW(const unsigned short* section, const unsigned short* entry,
                                               unsigned int defaultValue, const unsigned short* file);

// Entry names of a section, NUL-separated, closing NUL; count + 1, or 0.
ZU_EXPORT int zuGetPrivateProfileSection(const char* section, char* buffer, int size, const char* file);

// --- Conversions --------------------------------------------------------
// ISO-8859-1 ("ANSI" here) <-> UTF-16, and UTF-16 -> UTF-8.  At most 1,023
// units are taken and the source is cut to the buffer.  The length written
// (without the terminator, which is always written), or -1 after an ICU
// failure (reported).  The two-argument forms assume 1,024 bytes of target
// (512 units for a UTF-16 target).
ZU_EXPORT int zuGetANSIStrFromUTF16Str(const unsigned short* text, char* buffer, int size);
ZU_EXPORT int zuGetANSIStrFromUTF16Str(const unsigned short* text, char* buffer);
ZU_EXPORT int zuGetUTF16StrFromANSIStr(const char* text, unsigned short* buffer, int size);
ZU_EXPORT int zuGetUTF16StrFromANSIStr(const char* text, unsigned short* buffer);
ZU_EXPORT int zuGetUTF8StrFromUTF16Str(const unsigned short* text, char* buffer, int size);
ZU_EXPORT int zuGetUTF8StrFromUTF16Str(const unsigned short* text, char* buffer);

// The string, or size - 1 bytes and a NUL when it does not fit; the length
// copied.  A null source copies nothing (an empty text); size 0 writes nothing.
ZU_EXPORT int zustrlcpy(char* target, const char* source, int size);

// The module name with its 3-character extension (".so"), in UTF-16, when it
// fits (1,024 bytes, or `size` units); the length, or 0 when it does not fit.
ZU_EXPORT int zuGetModFileNameW(const unsigned short* name, int size, unsigned short* buffer);
ZU_EXPORT int zuGetModName(const char* name, unsigned short* buffer, int size);

// --- ZuIni ----------------------------------------------------------------
// A profile file held open through the task's list (so it stays cached while
// the object has it).  Not locked: one thread at a time.
class ZU_EXPORT ZuIni : public ZuObject {
public:
    ZuIni() = default;
    // Closes.
    ~ZuIni() override;
    ZuIni(const ZuIni&) = delete;
    ZuIni& operator=(const ZuIni&) = delete;

    // zuPrivateProfileTerm; 0.
    virtual int close();
    // Closes an open file first; 1 when no cache can be had, else 0.
    virtual int open(const char* file);

    // The value, or the default when the object is not usable (error 2717).
    int getEntry(const char* section, const char* entry, char* buffer, int size, const char* defaultValue);
    // The same, returning the length (0 when not usable).
    int getEntryWithLen(const char* section, const char* entry, char* buffer, int size, const char* defaultValue);
    // The number cut to 16 bits; the default when not usable.  0.
    int getEntry(const char* section, const char* entry, short* value, short defaultValue);
    // Entry names of the section (as zuGetPrivateProfileSection).
    int getSectionWithValues(const char* section, char* buffer, int size, const char* defaultValue);
    int writeEntry(const char* section, const char* entry, const char* value);
    int deleteEntry(const char* section, const char* entry);
    // 0 with a cache; otherwise error 2717 and 1.
    int validState();

    ZuIniFileCache* getCache() const { return cache_; }
    const char* getFileName() const { return fileName_; }

private:
    ZuIniFileCache* cache_ = nullptr;
    char fileName_[ZU_INI_PATH_MAX] = {};
};

// --- Windows-named shims ----------------------------------------------------
// Each loads a private cache, does the operation and destroys the cache; no
// sharing, no list.  On a load failure they return 1 and touch nothing (so
// 1 from the string form is ambiguous with a length of 1).
ZU_EXPORT int GetPrivateProfileString(const char* section, const char* entry, const char* defaultValue,
                                      char* buffer, int size, const char* file);
ZU_EXPORT unsigned int GetPrivateProfileInt(const char* section, const char* entry, unsigned int defaultValue,
                                            const char* file);
ZU_EXPORT int WritePrivateProfileString(const char* section, const char* entry, const char* value,
                                        const char* file);

// Window shims, empty on this platform.
ZU_EXPORT void GetWindowRect(void* window, void* rect);
ZU_EXPORT void winCenterBox(void* window);
ZU_EXPORT int SetWindowPos(void* window, void* after, int x, int y, int width, int height, unsigned int flags);
// Prints to standard output: "%s:\n%s\n" (caption, text) when there is a
// caption and a non-zero type, else "\n%s\n"; returns 2.
ZU_EXPORT int MessageBox(void* window, const char* text, const char* caption, unsigned int type);
// MessageBox, its result cut to a signed 16-bit value.
ZU_EXPORT short guiMessageBox(void* window, const char* text, const char* caption, unsigned int type);

#endif
