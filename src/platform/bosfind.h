/*
 * Listings of the operating-system layer: files matching a pattern,
 * directories of the current directory, mounted file systems.
 *
 * Each listing hands out one name per call through a descriptor that the
 * first call (with a null descriptor) creates.  When no name is left the
 * call frees the descriptor, sets it to null and gives an empty name, so a
 * caller that reads to the end owns nothing afterwards; a caller that stops
 * early frees it with bosFindClose.  A descriptor belongs to one thread at
 * a time.  Name buffers hold BOS_MAX_PATH + 1 bytes; longer names are cut.
 */
#ifndef HNSYB_PLATFORM_BOSFIND_H
#define HNSYB_PLATFORM_BOSFIND_H

#include "bosfile.h"
#include "export.h"

class ZuBosFileFindDesc;

// Files matching the shell pattern `name` (read on the first call only):
// the pattern is expanded as the shell expands the arguments of ls
// (wildcards, ~, variables; a directory stands for its entries), and each
// name comes back as its part after the last '/'.  A pattern without a
// match gives an empty name at once.  A pattern that asks for command
// substitution, or holds a shell operator, is refused with error 1540 and
// result 1: no command is ever run.  0 otherwise.
ZU_EXPORT int bosFindFiles(ZuBosFileFindDesc** descriptor, char* name);
// Subdirectories of "." whose names do not begin with '.'.
ZU_EXPORT int bosGetDirectoryNames(ZuBosFileFindDesc** descriptor, char* name);
// Mount points of the mounted file systems.
ZU_EXPORT int bosGetFileSystems(ZuBosFileFindDesc** descriptor, char* name);
// Frees a descriptor before its listing ended; null is fine.
ZU_EXPORT void bosFindClose(ZuBosFileFindDesc** descriptor);

#endif
