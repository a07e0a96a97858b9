// File, directory and mount listings.
//
// A listing is computed whole on the first call and kept in the
// descriptor as a sorted array of names; each call hands out the next one.
// The pattern of bosFindFiles is expanded with wordexp(WRDE_NOCMD), which
// applies the shell's word expansions but refuses command substitution,
// so no program is started and nothing in the pattern can run.
#include "bosfind.h"

#include <dirent.h>
#include <mntent.h>
#include <sys/stat.h>
#include <wordexp.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "../core/errorlist.h"
#include "ram.h"
#include "trace.h"

class ZuBosFileFindDesc {
public:
    ~ZuBosFileFindDesc()
    {
        for (size_t i = 0; i < count_; ++i)
            std::free(names_[i]);
        std::free(names_);
    }

    // False when memory ran out (reported).
    bool add(const char* text)
    {
        if (count_ == capacity_) {
            size_t grown = capacity_ == 0 ? 16 : capacity_ * 2;
            void* block = std::realloc(names_, grown * sizeof(char*));
            if (block == nullptr) {
                ramAddMemoryError();
                return false;
            }
            names_ = static_cast<char**>(block);
            capacity_ = grown;
        }
        char* copy = strdup(text);
        if (copy == nullptr) {
            ramAddMemoryError();
            return false;
        }
        names_[count_++] = copy;
        return true;
    }

    // Sorts the names from `first` on, in the collation order ls uses.
    void sortFrom(size_t first)
    {
        if (count_ > first)
            std::qsort(names_ + first, count_ - first, sizeof(char*), [](const void* a, const void* b) {
                return std::strcoll(*static_cast<char* const*>(a), *static_cast<char* const*>(b));
            });
    }

    size_t count() const { return count_; }
    // The next name, or null at the end.
    const char* next() { return next_ < count_ ? names_[next_++] : nullptr; }

private:
    char** names_ = nullptr;
    size_t count_ = 0;
    size_t capacity_ = 0;
    size_t next_ = 0;
};

namespace {
// Copies the part after the last '/' into `name`, cut to BOS_MAX_PATH.
void giveBaseName(char* name, const char* path)
{
    const char* slash = std::strrchr(path, '/');
    const char* base = slash != nullptr ? slash + 1 : path;
    size_t length = std::strlen(base);
    if (length > BOS_MAX_PATH)
        length = BOS_MAX_PATH;
    std::memcpy(name, base, length);
    name[length] = 0;
}

// Hands out the next name, or frees the descriptor at the end.
int giveNext(ZuBosFileFindDesc** descriptor, char* name)
{
    const char* next = (*descriptor)->next();
    if (next == nullptr) {
        delete *descriptor;
        *descriptor = nullptr;
        *name = 0;
        return 0;
    }
    giveBaseName(name, next);
    return 0;
}

bool isDirectory(const char* path)
{
    struct stat info;
    return stat(path, &info) == 0 && S_ISDIR(info.st_mode);
}

// The entries of `dir` that ls shows (not those beginning with '.').
bool addEntries(ZuBosFileFindDesc* list, const char* dir)
{
    DIR* stream = opendir(dir);
    if (stream == nullptr)
        return true;  // ls reports this on stderr, which is not read
    size_t first = list->count();
    bool ok = true;
    while (dirent* entry = readdir(stream)) {
        if (entry->d_name[0] != '.' && !list->add(entry->d_name)) {
            ok = false;
            break;
        }
    }
    closedir(stream);
    list->sortFrom(first);
    return ok;
}

// True when `pattern` holds, outside quotes, a character with which the
// shell would end the command or start another one.  wordexp refuses most
// of these itself but lets some through (a ';' behind a wildcard), and a
// pattern is never more than words to expand.
bool hasShellOperator(const char* pattern)
{
    char quote = 0;
    for (const char* p = pattern; *p != 0; ++p) {
        if (quote == '\'') {
            if (*p == '\'')
                quote = 0;
        } else if (*p == '\\') {
            if (p[1] == 0)
                break;
            ++p;
        } else if (quote == '"') {
            if (*p == '"')
                quote = 0;
        } else if (*p == '\'' || *p == '"') {
            quote = *p;
        } else if (std::strchr("|&;<>(){}\n", *p) != nullptr) {
            return true;
        }
    }
    return false;
}

// Builds the listing ls would print for the words of `pattern`: files
// named on the command line first, sorted, then each directory's entries.
// ls would also print a "dir:" heading and a blank line between several
// directories; the blank line would end the listing early, so neither is
// given.
ZuBosFileFindDesc* listPattern(const char* pattern, int* failed)
{
    *failed = 0;
    if (hasShellOperator(pattern)) {
        addError(1540) << pattern;
        *failed = 1;
        return nullptr;
    }
    wordexp_t words;
    int result = wordexp(pattern, &words, WRDE_NOCMD);
    if (result == WRDE_CMDSUB || result == WRDE_BADCHAR || result == WRDE_SYNTAX) {
        addError(1540) << pattern;
        *failed = 1;
        return nullptr;
    }
    if (result != 0) {
        if (result == WRDE_NOSPACE) {
            wordfree(&words);
            ramAddMemoryError();
        }
        *failed = 1;
        return nullptr;
    }
    auto* list = new (std::nothrow) ZuBosFileFindDesc;
    if (list == nullptr) {
        wordfree(&words);
        ramAddMemoryError();
        *failed = 1;
        return nullptr;
    }
    bool ok = true;
    // A word that names nothing is what the shell hands to ls when a
    // wildcard matches nothing; ls then lists nothing for it.
    for (size_t i = 0; ok && i < words.we_wordc; ++i) {
        struct stat info;
        const char* word = words.we_wordv[i];
        if (lstat(word, &info) == 0 && !isDirectory(word))
            ok = list->add(word);
    }
    list->sortFrom(0);
    for (size_t i = 0; ok && i < words.we_wordc; ++i)
        if (isDirectory(words.we_wordv[i]))
            ok = addEntries(list, words.we_wordv[i]);
    wordfree(&words);
    if (!ok) {
        delete list;
        *failed = 1;
        return nullptr;
    }
    return list;
}
}  // namespace

int bosFindFiles(ZuBosFileFindDesc** descriptor, char* name)
{
    if (descriptor == nullptr || name == nullptr)
        return 1;
    if (*descriptor == nullptr) {
        bosTrace(0x200, "bosFindFiles: Search for %s\n", name);
        int failed = 0;
        *descriptor = listPattern(name, &failed);
        if (failed) {
            *name = 0;
            return 1;
        }
    }
    giveNext(descriptor, name);
    bosTrace(0x200, "bosFindFiles: returns fileName=%s\n", name);
    return 0;
}

int bosGetDirectoryNames(ZuBosFileFindDesc** descriptor, char* name)
{
    if (descriptor == nullptr || name == nullptr)
        return 1;
    if (*descriptor == nullptr) {
        auto* list = new (std::nothrow) ZuBosFileFindDesc;
        if (list == nullptr) {
            ramAddMemoryError();
            return 1;
        }
        if (DIR* stream = opendir(".")) {
            while (dirent* entry = readdir(stream)) {
                if (entry->d_name[0] != '.' && isDirectory(entry->d_name) && !list->add(entry->d_name))
                    break;
            }
            closedir(stream);
        }
        *descriptor = list;
    }
    return giveNext(descriptor, name);
}

int bosGetFileSystems(ZuBosFileFindDesc** descriptor, char* name)
{
    if (descriptor == nullptr || name == nullptr)
        return 1;
    if (*descriptor == nullptr) {
        auto* list = new (std::nothrow) ZuBosFileFindDesc;
        if (list == nullptr) {
            ramAddMemoryError();
            return 1;
        }
        if (FILE* table = setmntent("/proc/self/mounts", "r")) {
            mntent entry;
            char work[4096];
            while (getmntent_r(table, &entry, work, sizeof work) != nullptr)
                if (!list->add(entry.mnt_dir))
                    break;
            endmntent(table);
        }
        *descriptor = list;
    }
    // A mount point is given whole: its part after the last '/' would not
    // tell "/" from "/usr/lib/x" and "/lib/x".
    const char* next = (*descriptor)->next();
    if (next == nullptr) {
        delete *descriptor;
        *descriptor = nullptr;
        *name = 0;
        return 0;
    }
    std::strncpy(name, next, BOS_MAX_PATH);
    name[BOS_MAX_PATH] = 0;
    return 0;
}

void bosFindClose(ZuBosFileFindDesc** descriptor)
{
    if (descriptor == nullptr)
        return;
    delete *descriptor;
    *descriptor = nullptr;
}
