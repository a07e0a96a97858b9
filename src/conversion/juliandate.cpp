// Julian day numbers (juliandate.h).
//
// Days are counted from 1 January of year 1 (day 0 of the count, Julian
// day 1721426): 365 a year plus the leap days of the years before, plus the
// days of the months before in the year, with 29 February in years divisible
// by 4 but not by 100, or by 400.  The inverse splits the count by the
// calendar's cycles: 400 years of 146097 days, 100 years of 36524, 4 years of
// 1461, single years of 365.  The last 100-year and the last single year of
// a cycle are one day longer, so a quotient of 4 there means the leap day
// that ends the longer cycle and is held at 3.
#include "juliandate.h"

#include <climits>

namespace {

// Days before each month in a common year.
constexpr long kDaysBefore[13] = {0, 0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};

bool isLeap(long year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

}  // namespace

long BaseDateToJulian(short year, unsigned short month, unsigned short day)
{
    const long y = year;
    const unsigned m = month < 1 ? 1 : (month > 12 ? 12 : month);
    const long before = y - 1;
    long days = 365 * before + before / 4 - before / 100 + before / 400;
    days += kDaysBefore[m];
    if (m > 2 && isLeap(y))
        ++days;
    days += static_cast<long>(day) - 1;
    return days + ZU_JULIAN_YEAR_ONE;
}

void BaseJulianToDate(long julian, short* year, unsigned short* month, unsigned short* day)
{
    // A number so low that the subtraction would overflow gives a year that
    // no short holds anyway; it is taken as the lowest count instead.
    long days = julian < LONG_MIN + ZU_JULIAN_YEAR_ONE ? LONG_MIN : julian - ZU_JULIAN_YEAR_ONE;
    const long cycles400 = days / 146097;
    days %= 146097;
    long cycles100 = days / 36524;
    if (cycles100 == 4)
        cycles100 = 3;
    days -= cycles100 * 36524;
    const long cycles4 = days / 1461;
    days %= 1461;
    long years = days / 365;
    if (years == 4)
        years = 3;
    days -= years * 365;
    const long y = 400 * cycles400 + 100 * cycles100 + 4 * cycles4 + years + 1;

    // The month: the last one whose first day is not after `days`, with the
    // leap day moving every month from March on.
    const long leapDay = isLeap(y) ? 1 : 0;
    unsigned m = 1;
    while (m < 12 && days >= kDaysBefore[m + 1] + (m + 1 > 2 ? leapDay : 0))
        ++m;
    days -= kDaysBefore[m] + (m > 2 ? leapDay : 0);

    if (year != nullptr)
        *year = static_cast<short>(y);
    if (month != nullptr)
        *month = static_cast<unsigned short>(m);
    if (day != nullptr)
        *day = static_cast<unsigned short>(days + 1);
}
