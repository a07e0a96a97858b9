/*
 * <hnsyb/dsn.h>: the C entry points of the data source dialog, for the setup
 * library that opens it.  They are declared here as they are built; until
 * then this header only fixes the linkage.
 */
#ifndef HNSYB_DSN_H
#define HNSYB_DSN_H

#include "platform/export.h"

#endif
