/*
 * ZuTime: a local date and time to the hundredth of a second, and the two
 * time stamp texts made from the clock.
 *
 * The fields are seven 16-bit values in this order: day, month (1 to 12
 * from the clock), year (four digits), hour, minute, second, hundredths.
 * The comparisons are field by field on purpose: `<` and `>` hold only when
 * every field is strictly less or strictly greater, so most pairs of times
 * are neither; compare() gives the calendar order for sorting instead.
 * anHourElapsed compares calendar fields down to the hour and does not
 * measure 60 minutes.
 *
 * The clock is the local time of the process (the time zone of localtime),
 * read once per call.  A ZuTime owns nothing; the stamp functions write into
 * the caller's buffer.
 */
#ifndef HNSYB_CONVERSION_ZUTIME_H
#define HNSYB_CONVERSION_ZUTIME_H

#include "../core/object.h"

class ZU_EXPORT ZuTime : public ZuObject {
public:
    unsigned short day = 0;
    unsigned short month = 0;
    unsigned short year = 0;
    unsigned short hour = 0;
    unsigned short minute = 0;
    unsigned short second = 0;
    unsigned short hundredths = 0;

    // "HH:MM:SS.hh" and a terminator (12 bytes) from the clock; 11.
    static int getCurrentTimeStamp(unsigned char* text);
    // "MM:DD:YYYY:HH:MM:SS.hh" and a terminator (23 bytes); 22.
    static int getCurrentDayTimeStamp(unsigned char* text);

    // Zeroes the fields, then reads the second stamp format: month, day,
    // year, hour and minute each ended by ':', second ended by '.', then
    // hundredths, each as strtol reads a decimal number.  0; or 1 with the
    // fields zero and error 2702 (a separator is missing) or 2701 (a value
    // outside month 0-11, day 0-31, year 0-2100, hour 0-23, minute and
    // second 0-59, hundredths 0-99).  A month of 12 is thus refused.
    int initialize(const unsigned char* text);
    // The clock into the fields.
    void captureCurrentTimeStamp();

    bool operator==(const ZuTime& other) const;
    bool operator<(const ZuTime& other) const;
    bool operator>(const ZuTime& other) const;
    // True when this time's year is later, or the year is the same and the
    // month later, and so on down to the hour: 10:59 to 11:00 counts.
    bool anHourElapsed(const ZuTime& other) const;

    // Calendar order: year, month, day, hour, minute, second, hundredths.
    // A ZuTime sorts after any other kind of object.
    int compare(const ZuObject* other) const override;
};

#endif
