/*
 * Paths of the operating-system layer: file attributes, the writable-
 * directory probe, and the builders that make a name absolute, put it under
 * a directory or HOME, strip the current directory, or split it into
 * directory, name and extension.
 *
 * Every path is a plain terminated string of at most BOS_MAX_PATH bytes;
 * buffers that a call writes must hold BOS_MAX_PATH + 1 bytes (bosgtcwd's
 * BOS_MAX_PATH + 2, for the slash).  Nothing here allocates: the caller
 * owns every buffer.  Results are 0 for success and 1 for failure with the
 * reason in the thread's error list, unless a function says otherwise.
 */
#ifndef HNSYB_PLATFORM_BOSPATH_H
#define HNSYB_PLATFORM_BOSPATH_H

#include "bosfile.h"
#include "export.h"

// Attribute bits of bosfattr.
enum : int {
  BOS_ATTR_EXISTS = 1,      // a regular file
  BOS_ATTR_DIRECTORY = 2,   // a directory (and the name ".."), without the exists bit
  BOS_ATTR_READONLY = 4,    // with EXISTS: not writable for the caller
  BOS_ATTR_NOT_FOUND = 8,
  BOS_ATTR_ERROR = 16,      // stat failed for another reason
  BOS_ATTR_SPECIAL = 32,    // neither a regular file nor a directory
};

// Attribute bits of `path`.  Writability is judged from the mode bits: the
// owner bit when the file belongs to the caller, else the group bit when
// the file's owner id equals the caller's group id (the owner, not the
// group, is compared: callers rely on that), else the other bit.
ZU_EXPORT int bosfattr(const char* path);
// 1 when bosfattr has the exists bit (so 0 for directories).
ZU_EXPORT int bosexist(const char* path);
// 1 when the directory of `path` (the text up to its last '/') accepts a
// new file: a probe file is created there exclusively and deleted.
ZU_EXPORT int bosftest(const char* path);

// Builds the absolute path of `name` into `result`: trailing white space
// and one trailing '.' go (not the dots of ".."), `directory` is put in
// front of a name without '/', `extension` is added to a file part without
// '.', and the result is made absolute.  `directory` and `extension` may be
// null.
ZU_EXPORT int bospath(char* result, const char* directory, const char* name, const char* extension);
// Makes `path` absolute in place by putting the current directory in front
// of a path that does not start with '/'.  `flag` is not used.
ZU_EXPORT int bosfpath(char* path, int flag);
// Puts HOME, else the variable ZU, else the current directory, and '/' in
// front of `path`, in place.
ZU_EXPORT int boshpath(char* path);
// Removes from `path`, in place, the part it shares with the current
// directory, up to and including the last ':' or '/' of that shared part
// (a '/' at index 2 does not count).
ZU_EXPORT int bosmpath(char* path);
// Splits `path`: `name` (at least 129 bytes) gets the file part up to its
// first '.', cut to 128 bytes (error 1524 and result 1 when `report` is
// set and it was longer); `extension` (at least 4 bytes) the first 3 bytes
// after that '.'; `path` keeps the directory with its '/'.
ZU_EXPORT int bosParseName(char* path, char* name, char* extension, int report);

// The current directory into `buffer` (BOS_MAX_PATH + 2 bytes), with a '/'
// added when `addSlash` is set; its length, or 0 when it cannot be read.
ZU_EXPORT int bosgtcwd(char* buffer, int addSlash);
// Changes the current directory; error 1504 with the path on failure.
ZU_EXPORT int bosstcwd(const char* path);

#endif
