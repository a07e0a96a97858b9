/*
 * Files through the operating-system layer: one open call with a flag word,
 * 64-bit positions, reads and writes, sizes, deletion, and the one-byte
 * marker lock that lock holders see each other by.
 *
 * Paths are plain terminated strings of at most 1,024 bytes; a path buffer
 * handed to bosFileOpen must hold BOS_MAX_PATH + 1 bytes, since the call
 * writes the resolved name back into it.  Handles are POSIX descriptors
 * owned by the caller, who closes them with bosFileClose.  Results: 0 for
 * success, 1 for failure with the reason in the thread's error list (when
 * the thread has one).  bosFileRead and bosFileDateSize never report.
 */
#ifndef HNSYB_PLATFORM_BOSFILE_H
#define HNSYB_PLATFORM_BOSFILE_H

#include "export.h"

#define BOS_MAX_PATH 1024

// Flag bits of bosFileOpen.
enum : unsigned long {
  BOS_OPEN_CREATE = 0x1,        // read-write, created when missing
  BOS_OPEN_WRITE = 0x2,         // read-write; without it read-only
  BOS_OPEN_CREATE_IF_MISSING = 0x4,
  BOS_OPEN_HOME = 0x8,          // relative to HOME
  BOS_OPEN_SEARCH = 0x10,       // on failure, search along PATH once
  BOS_OPEN_EXCLUSIVE = 0x20,    // with CREATE: exclusive creation
  BOS_OPEN_TEMP = 0x40,         // make a temporary name, and create
  BOS_OPEN_TEMP_LOOP = 0x80,    // temporary name, created, retried
  BOS_OPEN_NAME_ONLY = 0x100,   // resolve the name only; handle 0
  BOS_OPEN_PROFILE = 0x200,     // apply the profile name rules
  BOS_OPEN_NO_SHARED = 0x400,   // 0x800 without 0x400: shared marker lock
  BOS_OPEN_SHARED_LOCK = 0x800,
  BOS_OPEN_LOCK = 0x1000,       // with WRITE: exclusive marker lock
  BOS_OPEN_TRUNCATE = 0x2000,   // with CREATE
  BOS_OPEN_APPEND = 0x4000,
};

ZU_EXPORT int bosFileOpen(char* path, unsigned long flags, int* handle);
ZU_EXPORT int bosFileClose(int handle);
// Position -1 reads at the current position.  Always 0; *bytesRead says how
// much came (0 at the end or on failure).
ZU_EXPORT int bosFileRead(int handle, long long position, void* buffer, unsigned long count,
                          unsigned long* bytesRead);
// Position -1 or -2 writes at the current position.
ZU_EXPORT int bosFileWrite(int handle, long long position, const void* buffer, unsigned long count);
ZU_EXPORT long long bosFileSeek(int handle, long long position, int whence);
// Sets the file's length.
ZU_EXPORT int bosFileSize(int handle, long long size);
ZU_EXPORT int bosFileTruncate(int handle, long long length);
ZU_EXPORT int bosFileTruncate(const char* path, long long length);
ZU_EXPORT int bosFileDelete(const char* path);
ZU_EXPORT int bosrname(const char* from, const char* to);
// Modification time in seconds and the low 32 bits of the size; 1 when the
// file cannot be examined.  Reports nothing: it is the profile cache's
// staleness probe.
ZU_EXPORT int bosFileDateSize(const char* path, unsigned long* date, unsigned long* size);

// Region locks between processes and between threads of one process.
ZU_EXPORT int bosRegionLock(int handle, int unlock, long long offset, long long length);

// errno to the library's message number, reported on the thread's list.
ZU_EXPORT int bosMapError(int error, const char* name);

#endif
