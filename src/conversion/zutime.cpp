// ZuTime (zutime.h).
#include "zutime.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "../core/errorlist.h"
#include "convert.h"

namespace {

// One reading of the clock in local time, with the hundredths of the same
// reading.
void readClock(ZuTime* t)
{
    struct timespec now {};
    clock_gettime(CLOCK_REALTIME, &now);
    struct tm local {};
    localtime_r(&now.tv_sec, &local);
    t->day = static_cast<unsigned short>(local.tm_mday);
    t->month = static_cast<unsigned short>(local.tm_mon + 1);
    t->year = static_cast<unsigned short>(local.tm_year + 1900);
    t->hour = static_cast<unsigned short>(local.tm_hour);
    t->minute = static_cast<unsigned short>(local.tm_min);
    t->second = static_cast<unsigned short>(local.tm_sec);
    t->hundredths = static_cast<unsigned short>(now.tv_nsec / 10000000);
}

void zero(ZuTime* t)
{
    t->day = t->month = t->year = t->hour = t->minute = t->second = t->hundredths = 0;
}

// The fields in calendar order, most significant first.
void calendarOrder(const ZuTime& t, unsigned short out[7])
{
    out[0] = t.year;
    out[1] = t.month;
    out[2] = t.day;
    out[3] = t.hour;
    out[4] = t.minute;
    out[5] = t.second;
    out[6] = t.hundredths;
}

}  // namespace

int ZuTime::getCurrentTimeStamp(unsigned char* text)
{
    ZuTime t;
    readClock(&t);
    // Each field has two digits; snprintf bounds the write all the same.
    std::snprintf(reinterpret_cast<char*>(text), 12, "%02u:%02u:%02u.%02u", t.hour % 100u, t.minute % 100u,
                  t.second % 100u, t.hundredths % 100u);
    return 11;
}

int ZuTime::getCurrentDayTimeStamp(unsigned char* text)
{
    ZuTime t;
    readClock(&t);
    std::snprintf(reinterpret_cast<char*>(text), 23, "%02u:%02u:%04u:%02u:%02u:%02u.%02u", t.month % 100u,
                  t.day % 100u, t.year % 10000u, t.hour % 100u, t.minute % 100u, t.second % 100u,
                  t.hundredths % 100u);
    return 22;
}

int ZuTime::initialize(const unsigned char* text)
{
    zero(this);
    if (text == nullptr) {
        addError(ZU_MSG_INVALID_CHARACTER) << "";
        return 1;
    }
    // Fields in text order, each with the separator that ends it (0: none)
    // and the bound it must stay below.
    struct Field {
        unsigned short ZuTime::*member;
        char separator;
        long bound;
    };
    static constexpr Field kFields[7] = {
        {&ZuTime::month, ':', 12},  {&ZuTime::day, ':', 32},    {&ZuTime::year, ':', 2101},
        {&ZuTime::hour, ':', 24},   {&ZuTime::minute, ':', 60}, {&ZuTime::second, '.', 60},
        {&ZuTime::hundredths, 0, 100},
    };
    const char* p = reinterpret_cast<const char*>(text);
    long values[7] = {};
    for (int i = 0; i < 7; ++i) {
        char* end = nullptr;
        values[i] = std::strtol(p, &end, 10);
        // A negative value is outside every range; strtol's saturation on
        // overflow lands outside them too.
        if (values[i] < 0 || values[i] >= kFields[i].bound) {
            addError(ZU_MSG_VALUE_OUT_OF_RANGE) << reinterpret_cast<const char*>(text);
            return 1;
        }
        p = end;
        if (kFields[i].separator != 0) {
            if (*p != kFields[i].separator) {
                addError(ZU_MSG_INVALID_CHARACTER) << reinterpret_cast<const char*>(text);
                return 1;
            }
            ++p;
        }
    }
    for (int i = 0; i < 7; ++i)
        this->*kFields[i].member = static_cast<unsigned short>(values[i]);
    return 0;
}

void ZuTime::captureCurrentTimeStamp() { readClock(this); }

bool ZuTime::operator==(const ZuTime& o) const
{
    return day == o.day && month == o.month && year == o.year && hour == o.hour && minute == o.minute &&
           second == o.second && hundredths == o.hundredths;
}

bool ZuTime::operator<(const ZuTime& o) const
{
    return day < o.day && month < o.month && year < o.year && hour < o.hour && minute < o.minute &&
           second < o.second && hundredths < o.hundredths;
}

bool ZuTime::operator>(const ZuTime& o) const
{
    return day > o.day && month > o.month && year > o.year && hour > o.hour && minute > o.minute &&
           second > o.second && hundredths > o.hundredths;
}

bool ZuTime::anHourElapsed(const ZuTime& o) const
{
    if (year != o.year)
        return year > o.year;
    if (month != o.month)
        return month > o.month;
    if (day != o.day)
        return day > o.day;
    return hour > o.hour;
}

int ZuTime::compare(const ZuObject* other) const
{
    const ZuTime* o = dynamic_cast<const ZuTime*>(other);
    if (o == nullptr)
        return 1;
    unsigned short a[7];
    unsigned short b[7];
    calendarOrder(*this, a);
    calendarOrder(*o, b);
    for (int i = 0; i < 7; ++i) {
        if (a[i] != b[i])
            return a[i] < b[i] ? -1 : 1;
    }
    return 0;
}
