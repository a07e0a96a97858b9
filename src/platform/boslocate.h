/*
 * Finding files along the search paths, and loading shared libraries.
 *
 * bosLocateFile looks for a name first as it stands, then in the
 * directories that its mode bits select, in a fixed order.  bosLoadLibrary
 * adds the library's version tag and ".so" to a stem, finds the file with
 * bosLocateFile (ZU, ZULIB and the loader's paths, each with its "../"
 * sibling) and opens it with dlopen(RTLD_NOW).  The handle belongs to the
 * caller (dlclose); nothing here keeps state.
 */
#ifndef HNSYB_PLATFORM_BOSLOCATE_H
#define HNSYB_PLATFORM_BOSLOCATE_H

#include "export.h"

// Search-mode bits of bosLocateFile.  The directories are searched in this
// order whatever the bits: current directory, HOME, ZU then ZULIB, the
// loader's paths (LD_LIBRARY_PATH, LD_RUN_PATH, /usr/local/lib), PATH.
enum : unsigned short {
  BOS_LOCATE_PATH = 0x1,
  BOS_LOCATE_HOME = 0x2,
  BOS_LOCATE_ZU = 0x4,
  BOS_LOCATE_LIBRARY = 0x8,
  BOS_LOCATE_CURRENT = 0x10,
};

// The version tag of the library's file names.
#define BOS_VERSION_TAG "24"

// Finds `name`: as it stands when it names an existing file, else in the
// directories the mode selects.  With BOS_LOCATE_LIBRARY each directory's
// "../" sibling is tried after it.  0 when found, with the path in `found`
// (null, or at least BOS_MAX_PATH + 1 bytes; cleared first); 1 when not.
// Reports nothing.
ZU_EXPORT int bosLocateFile(char* found, const char* name, unsigned short mode);

// Loads a shared library.  `name` is trimmed on the right, gets the
// version tag when `addVersion` is set, and ".so" unless it holds ".so"
// already.  Null when the file is not found (nothing reported) or cannot be
// loaded (error 1523 with the path and the loader's reason).
ZU_EXPORT void* bosLoadLibrary(const char* name, int addVersion);
// The same with a UTF-16 name; null when the name does not convert.
ZU_EXPORT void* bosLoadLibrary(const unsigned short* name, int addVersion);
// Appends the version tag to `name`, which must have room for it.
ZU_EXPORT void bosdllname(char* name);

#endif
