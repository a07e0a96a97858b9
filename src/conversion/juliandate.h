/*
 * Julian day numbers of the proleptic Gregorian calendar.
 *
 * BaseDateToJulian counts days so that 1 January of year 1 is day 1721426;
 * BaseJulianToDate is its inverse over years 1 to 9999 (and as far as a
 * short holds a year).  Years below 1 go through the same arithmetic with
 * C's division, which truncates toward zero: such dates get numbers, but the
 * numbers do not continue the calendar backwards day by day.  Nothing here
 * keeps state or allocates.
 */
#ifndef HNSYB_CONVERSION_JULIANDATE_H
#define HNSYB_CONVERSION_JULIANDATE_H

#include "../platform/export.h"

// The day number of 1 January of year 1.
constexpr long ZU_JULIAN_YEAR_ONE = 1721426;

// The day number of a date; month 1 to 12, day 1 to 31.  Month and day are
// not checked: a day past the month's end counts on into the next month; a
// month outside 1 to 12 counts as 1 or 12.
ZU_EXPORT long BaseDateToJulian(short year, unsigned short month, unsigned short day);
// The date of a day number.
ZU_EXPORT void BaseJulianToDate(long julian, short* year, unsigned short* month, unsigned short* day);

#endif
