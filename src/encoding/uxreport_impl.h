/*
 * Reporting of converters that do not open, shared by the library's own
 * modules (not installed).
 */
#ifndef HNSYB_ENCODING_UXREPORT_IMPL_H
#define HNSYB_ENCODING_UXREPORT_IMPL_H

#include <unicode/utypes.h>

// A converter that does not open for a code page: error 2739 with the code
// page's number appended to its text when ICU has no such converter (status
// U_FILE_ACCESS_ERROR), else as checkICUreturn reports.  Always 1.
int reportOpenFailure(UErrorCode status, long codePage);

#endif
