/*
 * Export control for libhnsybr.so.
 *
 * The library is compiled with hidden visibility: a function, object or class
 * is part of the interface only when it carries ZU_EXPORT (C++ names) or
 * ZU_C_EXPORT (C entry points, unmangled).  Internal helpers carry neither and
 * stay out of the dynamic symbol table.  This header owns no memory.
 */
#ifndef HNSYB_PLATFORM_EXPORT_H
#define HNSYB_PLATFORM_EXPORT_H

#define ZU_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
#define ZU_C_EXPORT extern "C" ZU_EXPORT
#else
#define ZU_C_EXPORT ZU_EXPORT
#endif

#endif
