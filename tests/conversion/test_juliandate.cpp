// Day numbers against Python's calendar: every day of datetime's whole range
// (years 1 to 9999), whose proleptic Gregorian ordinals Python gives by
// toordinal(), must map to ordinal + 1721425 and back to the same date.
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "conversion/juliandate.h"
#include "support/subprocess.h"

namespace {

#pragma pack(push, 1)
struct DayRecord {
    int32_t ordinal;
    int16_t year;
    uint8_t month;
    uint8_t day;
};
#pragma pack(pop)
static_assert(sizeof(DayRecord) == 8);

std::vector<DayRecord> pythonDays(int firstYear, int lastYear, std::string* failure)
{
    char tmpl[] = "/tmp/hnsyb-days-XXXXXX";
    const int fd = mkstemp(tmpl);
    if (fd >= 0)
        close(fd);
    const std::string script = std::string(HNSYB_SOURCE_DIR) + "/tests/conversion/reference_values.py";
    RunResult r = runProgram(
        {"python3", script, "dates", tmpl, std::to_string(firstYear), std::to_string(lastYear)}, 120000);
    std::vector<DayRecord> days;
    if (r.exitCode != 0) {
        *failure = "reference_values.py failed: " + r.output;
    } else {
        std::ifstream in(tmpl, std::ios::binary);
        DayRecord record;
        while (in.read(reinterpret_cast<char*>(&record), sizeof record))
            days.push_back(record);
    }
    unlink(tmpl);
    return days;
}

TEST(JulianDate, EveryDayOfYearsOneTo9999MatchesPythonBothWays)
{
    std::string failure;
    const std::vector<DayRecord> days = pythonDays(1, 9999, &failure);
    ASSERT_TRUE(failure.empty()) << failure;
    ASSERT_EQ(days.size(), 3652059u) << "every day of datetime's range";
    EXPECT_EQ(BaseDateToJulian(1, 1, 1), ZU_JULIAN_YEAR_ONE);
    std::vector<bool> pythonLeap(10000, false);
    for (const DayRecord& d : days) {
        const long julian = BaseDateToJulian(d.year, d.month, d.day);
        ASSERT_EQ(julian, static_cast<long>(d.ordinal) + 1721425) << d.year << "-" << +d.month << "-" << +d.day;
        short year = 0;
        unsigned short month = 0, day = 0;
        BaseJulianToDate(julian, &year, &month, &day);
        ASSERT_EQ(year, d.year) << julian;
        ASSERT_EQ(month, d.month) << julian;
        ASSERT_EQ(day, d.day) << julian;
        if (d.month == 2 && d.day == 29)
            pythonLeap[d.year] = true;
    }
    // 29 February exists exactly in the years where Python has it: between
    // 28 February and 1 March lie two days then, else one.
    for (short y = 1; y <= 9999; ++y)
        ASSERT_EQ(BaseDateToJulian(y, 3, 1) - BaseDateToJulian(y, 2, 28), pythonLeap[y] ? 2 : 1) << y;
}

TEST(JulianDate, DayPastTheMonthsEndCountsOn)
{
    // 31 February 2023 is 3 March 2023 by the count; the inverse names it so.
    short year = 0;
    unsigned short month = 0, day = 0;
    BaseJulianToDate(BaseDateToJulian(2023, 2, 31), &year, &month, &day);
    EXPECT_EQ(year, 2023);
    EXPECT_EQ(month, 3);
    EXPECT_EQ(day, 3);
    // 29 February of a common year is 1 March; of a leap year, itself.
    BaseJulianToDate(BaseDateToJulian(1900, 2, 29), &year, &month, &day);
    EXPECT_EQ(month, 3);
    EXPECT_EQ(day, 1);
    BaseJulianToDate(BaseDateToJulian(2000, 2, 29), &year, &month, &day);
    EXPECT_EQ(month, 2);
    EXPECT_EQ(day, 29);
}

TEST(JulianDate, ExtremeInputsStayDefined)
{
    // Under the sanitizers these prove that no input overflows or indexes
    // out of the month table; the out-arguments are always written.
    short year = 1;
    unsigned short month = 0, day = 0;
    for (long julian : {LONG_MIN, LONG_MIN + 1, -1L, 0L, ZU_JULIAN_YEAR_ONE - 1, LONG_MAX}) {
        month = 0;
        BaseJulianToDate(julian, &year, &month, &day);
        EXPECT_GE(month, 1) << julian;
        EXPECT_LE(month, 12) << julian;
    }
    EXPECT_LT(BaseDateToJulian(-32768, 1, 1), BaseDateToJulian(1, 1, 1));
    EXPECT_GT(BaseDateToJulian(32767, 12, 31), BaseDateToJulian(9999, 12, 31));
    // Month numbers outside 1 to 12 are taken as the nearest month.
    EXPECT_EQ(BaseDateToJulian(2024, 0, 1), BaseDateToJulian(2024, 1, 1));
    EXPECT_EQ(BaseDateToJulian(2024, 13, 1), BaseDateToJulian(2024, 12, 1));
}

}  // namespace
