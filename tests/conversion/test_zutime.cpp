// ZuTime: the two stamp texts, the reader of the day stamp with its ranges,
// the field-by-field comparisons and the calendar-field hour test.  The
// clock is checked against the date(1) command of the same machine.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <regex>
#include <string>

#include "conversion/zutime.h"
#include "core/errorlist.h"
#include "support/subprocess.h"

namespace {

const unsigned char* bytes(const char* s) { return reinterpret_cast<const unsigned char*>(s); }

ZuTime make(unsigned short month, unsigned short day, unsigned short year, unsigned short hour,
            unsigned short minute, unsigned short second, unsigned short hundredths)
{
    ZuTime t;
    t.month = month;
    t.day = day;
    t.year = year;
    t.hour = hour;
    t.minute = minute;
    t.second = second;
    t.hundredths = hundredths;
    return t;
}

class TimeTest : public ::testing::Test {
protected:
    void SetUp() override { ZuErrorKeeper::setErrorList(&errors_); }
    void TearDown() override { ZuErrorKeeper::giveUpErrorList(); }
    int lastError()
    {
        ZuError* e = errors_.removeLastError();
        const int n = e == nullptr ? 0 : e->getErrorNumber();
        if (e != nullptr && !e->isStatic())
            delete e;
        return n;
    }
    ZuErrorList errors_{nullptr, 1};
};

TEST_F(TimeTest, StampsHaveTheirFormats)
{
    unsigned char text[32];
    std::memset(text, '#', sizeof text);
    EXPECT_EQ(ZuTime::getCurrentTimeStamp(text), 11);
    EXPECT_TRUE(std::regex_match(reinterpret_cast<char*>(text), std::regex(R"(\d\d:\d\d:\d\d\.\d\d)")))
        << text;
    EXPECT_EQ(text[12], '#');
    std::memset(text, '#', sizeof text);
    EXPECT_EQ(ZuTime::getCurrentDayTimeStamp(text), 22);
    EXPECT_TRUE(std::regex_match(reinterpret_cast<char*>(text),
                                 std::regex(R"(\d\d:\d\d:\d\d\d\d:\d\d:\d\d:\d\d\.\d\d)")))
        << text;
    EXPECT_EQ(text[23], '#');
}

TEST_F(TimeTest, ClockAgreesWithTheDateCommand)
{
    // The date and hour that date(1) shows before and after the capture; when
    // they are the same, the capture must show them too (otherwise the hour
    // turned meanwhile, and the run says nothing).
    const RunResult before = runProgram({"date", "+%m %d %Y %H"});
    ZuTime t;
    t.captureCurrentTimeStamp();
    const RunResult after = runProgram({"date", "+%m %d %Y %H"});
    ASSERT_EQ(before.exitCode, 0);
    ASSERT_EQ(after.exitCode, 0);
    if (before.output != after.output)
        GTEST_SKIP() << "the hour turned during the capture";
    char mine[32];
    std::snprintf(mine, sizeof mine, "%02u %02u %04u %02u\n", t.month, t.day, t.year, t.hour);
    EXPECT_EQ(std::string(mine), before.output);
    EXPECT_LT(t.minute, 60);
    EXPECT_LT(t.second, 61);
    EXPECT_LT(t.hundredths, 100);
}

TEST_F(TimeTest, DayStampReadsBackUnlessTheMonthIsTwelve)
{
    unsigned char text[32];
    ZuTime::getCurrentDayTimeStamp(text);
    ZuTime t;
    const int rc = t.initialize(text);
    unsigned char again[64];
    std::snprintf(reinterpret_cast<char*>(again), sizeof again, "%02u:%02u:%04u:%02u:%02u:%02u.%02u", t.month,
                  t.day, t.year, t.hour, t.minute, t.second, t.hundredths);
    if (std::string(reinterpret_cast<char*>(text), 2) == "12") {
        // December is refused by the reader's range (months below 12).
        EXPECT_EQ(rc, 1);
        EXPECT_EQ(lastError(), 2701);
    } else {
        EXPECT_EQ(rc, 0);
        EXPECT_STREQ(reinterpret_cast<char*>(again), reinterpret_cast<char*>(text));
    }
}

TEST_F(TimeTest, ReaderChecksSeparatorsAndRanges)
{
    ZuTime t;
    ASSERT_EQ(t.initialize(bytes("11:31:2100:23:59:59.99")), 0);
    EXPECT_TRUE(t == make(11, 31, 2100, 23, 59, 59, 99));
    ASSERT_EQ(t.initialize(bytes("0:0:0:0:0:0.0")), 0);
    EXPECT_TRUE(t == make(0, 0, 0, 0, 0, 0, 0));

    // One value at its bound in each position; each refusal zeroes the fields.
    const char* outOfRange[] = {
        "12:01:2000:00:00:00.00", "01:32:2000:00:00:00.00", "01:01:2101:00:00:00.00",
        "01:01:2000:24:00:00.00", "01:01:2000:00:60:00.00", "01:01:2000:00:00:60.00",
        "01:01:2000:00:00:00.100", "-1:01:2000:00:00:00.00", "99999999999999999999:1:1:1:1:1.1",
    };
    for (const char* text : outOfRange) {
        t = make(1, 2, 3, 4, 5, 6, 7);
        EXPECT_EQ(t.initialize(bytes(text)), 1) << text;
        EXPECT_EQ(lastError(), 2701) << text;
        EXPECT_TRUE(t == make(0, 0, 0, 0, 0, 0, 0)) << text;
    }
    const char* missing[] = {"", "01", "01:01", "01:01:2000:00:00:00:00", "01:01:2000:00:00.00.00",
                             "01-01-2000 00:00:00.00"};
    for (const char* text : missing) {
        t = make(1, 2, 3, 4, 5, 6, 7);
        EXPECT_EQ(t.initialize(bytes(text)), 1) << text;
        EXPECT_EQ(lastError(), 2702) << text;
        EXPECT_TRUE(t == make(0, 0, 0, 0, 0, 0, 0)) << text;
    }
    EXPECT_EQ(errors_.getErrorCount(), 0);
}

TEST_F(TimeTest, LessAndGreaterHoldOnlyFieldByField)
{
    const ZuTime low = make(1, 1, 2000, 1, 1, 1, 1);
    const ZuTime high = make(2, 2, 2001, 2, 2, 2, 2);
    EXPECT_TRUE(low < high);
    EXPECT_TRUE(high > low);
    // A later year with an earlier day is neither less nor greater.
    const ZuTime mixed = make(2, 1, 2001, 2, 2, 2, 2);
    EXPECT_FALSE(low < mixed);
    EXPECT_FALSE(mixed > low);
    EXPECT_FALSE(mixed == low);
    EXPECT_TRUE(mixed == make(2, 1, 2001, 2, 2, 2, 2));
    // compare() gives the calendar order instead.
    EXPECT_LT(low.compare(&mixed), 0);
    EXPECT_GT(mixed.compare(&low), 0);
    EXPECT_EQ(mixed.compare(&mixed), 0);
}

TEST_F(TimeTest, AnHourElapsedComparesCalendarFields)
{
    const ZuTime at1059 = make(5, 5, 2024, 10, 59, 59, 99);
    const ZuTime at1100 = make(5, 5, 2024, 11, 0, 0, 0);
    EXPECT_TRUE(at1100.anHourElapsed(at1059)) << "10:59 to 11:00 counts as an hour";
    EXPECT_FALSE(at1059.anHourElapsed(at1100));
    EXPECT_FALSE(make(5, 5, 2024, 10, 0, 0, 0).anHourElapsed(at1059)) << "same hour";
    EXPECT_TRUE(make(1, 1, 2025, 0, 0, 0, 0).anHourElapsed(at1100)) << "a later year wins";
    EXPECT_FALSE(make(12, 31, 2023, 23, 0, 0, 0).anHourElapsed(at1100)) << "an earlier year loses";
    EXPECT_TRUE(make(5, 6, 2024, 0, 0, 0, 0).anHourElapsed(at1100)) << "a later day wins";
}

}  // namespace
