/*
 * Run-time trace of the platform layer.
 *
 * BOS_RUNTIME_DEBUG is read once, when the library is loaded, from the
 * variable ZU_DEBUGGING as hexadecimal; each bit switches on the trace lines
 * of one area, which go to standard output, flushed at once.  Bits in use:
 * 1 bosFileOpen, 2 file search (bosLocateFile), 4 library loading,
 * 8 message lookups, 16 profile writes, 32 profile reads, 128 profile load,
 * 0x100 bosexist and bosfattr, 0x200 bosFindFiles, 0x400 the path builders.
 */
#ifndef HNSYB_PLATFORM_TRACE_H
#define HNSYB_PLATFORM_TRACE_H

#include "export.h"

ZU_EXPORT extern unsigned long BOS_RUNTIME_DEBUG;

// printf-style line when `bit` is set in BOS_RUNTIME_DEBUG.
ZU_EXPORT void bosTrace(unsigned long bit, const char* format, ...) __attribute__((format(printf, 2, 3)));

#endif
