/*
 * The four 32 x 32 XPM images of the About tab (a data source, a
 * connection, a lock, a saved page), drawn for this library.  Static data.
 */
#ifndef HNSYB_DSN_ABOUTICONS_IMPL_H
#define HNSYB_DSN_ABOUTICONS_IMPL_H

extern const char* iconDataSource[];
extern const char* iconConnection[];
extern const char* iconSecurity[];
extern const char* iconSettings[];

#endif
