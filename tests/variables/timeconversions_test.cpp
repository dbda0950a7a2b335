#include <cmath>

#include <gtest/gtest.h>

#include "common/calendar.h"
#include "variables/timeconversions.h"

namespace {

using namespace variables;

HEADERTIME converted(int id, double x, double reference = 0)
{
    HEADERTIME time{1995, 7, 15, 1, 2};
    EXPECT_TRUE(convertHeaderTime(id, x, reference, time)) << id << " " << x;
    return time;
}

constexpr HEADERTIME untouched{1995, 7, 15, 1, 2};

TEST(ConvertHeaderTime, WholeDates)
{
    EXPECT_EQ(converted(2, 19910901), (HEADERTIME{1991, 9, 1, 1, 2}));
    EXPECT_EQ(converted(5, 1231), (HEADERTIME{1995, 12, 31, 1, 2}));
    EXPECT_EQ(converted(10, 1987), (HEADERTIME{1987, 6, 15, 1, 2}));
}

TEST(ConvertHeaderTime, FractionalDaysCountFromZero)
{
    EXPECT_EQ(converted(3, 19910900.75), (HEADERTIME{1991, 9, 1, 18, 0}));
    EXPECT_EQ(converted(3, 19910901.5), (HEADERTIME{1991, 9, 2, 12, 0}));
    EXPECT_EQ(converted(4, 1230.25), (HEADERTIME{1995, 12, 31, 6, 0}));
    EXPECT_EQ(converted(6, 0.5), (HEADERTIME{1995, 7, 1, 12, 0}));
}

TEST(ConvertHeaderTime, FractionalMonthsAndYears)
{
    EXPECT_EQ(converted(7, 199108.5), (HEADERTIME{1991, 9, 15, 1, 2}));
    EXPECT_EQ(converted(7, 199101.96875), (HEADERTIME{1991, 2, 28, 1, 2})); // 29 at most as 28 in February
    EXPECT_EQ(converted(8, 11.0), (HEADERTIME{1995, 12, 1, 1, 2}));         // at least day 1
    EXPECT_EQ(converted(9, 1990.5), (HEADERTIME{1991, 6, 15, 1, 2}));
    EXPECT_EQ(converted(9, 1990.0), (HEADERTIME{1991, 1, 15, 1, 2})); // at least month 1
    EXPECT_EQ(converted(11, 0.75), (HEADERTIME{0, 9, 15, 1, 2}));
}

TEST(ConvertHeaderTime, TimesOfDay)
{
    EXPECT_EQ(converted(12, 123456), (HEADERTIME{1995, 7, 15, 12, 34}));
    EXPECT_EQ(converted(13, 905), (HEADERTIME{1995, 7, 15, 9, 5}));
    EXPECT_EQ(converted(14, 9.75), (HEADERTIME{1995, 7, 15, 9, 45}));
    EXPECT_EQ(converted(15, 605), (HEADERTIME{1995, 7, 15, 10, 5}));
    EXPECT_EQ(converted(16, 36330), (HEADERTIME{1995, 7, 15, 10, 5}));
}

TEST(ConvertHeaderTime, CountsSinceAnOrigin)
{
    const auto origin = static_cast<double>(common::dayNumber(1970, 1, 1));
    const HEADERTIME expected{2000, 2, 29, 18, 30};
    EXPECT_EQ(converted(31, 11016.770833333334, origin), expected);
    EXPECT_EQ(converted(32, 11016 * 24 + 18.5, origin), expected);
    EXPECT_EQ(converted(33, 11016 * 1440 + 1110, origin), (HEADERTIME{2000, 2, 29, 18, 30}));
    EXPECT_EQ(converted(34, 951849000, origin), expected);
    EXPECT_EQ(converted(31, -0.25, 0), (HEADERTIME{1899, 12, 31, 18, 0}));
}

TEST(ConvertHeaderTime, AMonthThatIsNoneIsRefused)
{
    HEADERTIME time = untouched;
    for (const double x : {19911301.0, 19910001.0, 0.0, -5.0, 1e14}) {
        EXPECT_FALSE(convertHeaderTime(2, x, 0, time)) << x;
    }
    EXPECT_FALSE(convertHeaderTime(5, 1301, 0, time));
    EXPECT_FALSE(convertHeaderTime(8, 12.5, 0, time));
    EXPECT_FALSE(convertHeaderTime(11, 1.5, 0, time));
    EXPECT_EQ(time, untouched);
}

TEST(ConvertHeaderTime, NumbersBeyondAnyDateAndUnknownRowsAreRefused)
{
    HEADERTIME time = untouched;
    for (int id = -1; id <= 40; ++id) {
        for (const double x : {1e300, -1e300, static_cast<double>(NAN), static_cast<double>(INFINITY)})
            EXPECT_FALSE(convertHeaderTime(id, x, 0, time));
    }
    for (const int id : {-1, 0, 1, 17, 30, 35}) EXPECT_FALSE(convertHeaderTime(id, 1, 0, time));
    EXPECT_EQ(time, untouched);
}

struct DECODED {
    double value;
    int code;
    HEADERTIME header; // the station's
    int year, month, day;
    double hours;
    int dayOfYear;
    double yearFraction;
};

TEST(DecodeTime, ReadsTheFormsOfTheTable)
{
    const DECODED rows[] = {
        {20081230, 2, {2003, 5, 9}, 2008, 12, 30, 0, 365, 2008.994536},
        {20101231, 2, {2003, 5, 9}, 2010, 12, 31, 0, 365, 2010.99726}, // more than a float holds
        {1.97, 8, {2003, 5, 9}, 2003, 2, 28, 0, 59, 2003.158904},
        {5.84375, 6, {1993, 11, 28}, 1993, 11, 6, 20.25, 310, 1993.848887},
        {1989, 10, {1983, 7, 27}, 1989, 6, 15, 0, 166, 1989.452055},
        {409, 5, {2001, 4, 4}, 2001, 4, 9, 0, 99, 2001.268493},
    };
    for (const DECODED& row : rows) {
        HEADERTIME time = row.header;
        ASSERT_TRUE(decodeTime(row.value, row.code, 0, time)) << row.value;
        EXPECT_EQ(time.year, row.year) << row.value;
        EXPECT_EQ(time.month, row.month) << row.value;
        EXPECT_EQ(time.day, row.day) << row.value;
        EXPECT_NEAR(time.hour + time.minute / 60.0, row.hours, 0.02) << row.value;
        EXPECT_EQ(dayOfYear(time.month, time.day, time.year), row.dayOfYear) << row.value;
        EXPECT_NEAR(yearFraction(time.month, time.day, time.year, time.hour, time.minute), row.yearFraction,
                    2e-5)
            << row.value;
    }
}

TEST(DecodeTime, AMonthOutsideOneToTwelveFails)
{
    HEADERTIME time{2003, 5, 9};
    EXPECT_FALSE(decodeTime(20081330, 2, 0, time));
    EXPECT_FALSE(decodeTime(20080030, 2, 0, time));
    EXPECT_EQ(time, (HEADERTIME{2003, 5, 9}));
    HEADERTIME withoutMonth{2003, 0, 9}; // a day alone needs the month of the header
    EXPECT_FALSE(decodeTime(5.5, 6, 0, withoutMonth));
}

TEST(DecodeTime, ADateWithoutATimeOfDayIsMidnight)
{
    HEADERTIME time{2003, 5, 9, 13, 45};
    ASSERT_TRUE(decodeTime(409, 5, 0, time));
    EXPECT_EQ(time, (HEADERTIME{2003, 4, 9, 0, 0}));
}

TEST(DecodeTime, OnlyFormsThatGiveADateAreDecoded)
{
    HEADERTIME time{2003, 5, 9};
    for (const int code : {0, 1, 12, 13, 14, 15, 16, 17, 30, 35}) EXPECT_FALSE(decodeTime(5, code, 0, time));
}

TEST(DayOfYear, CountsFromOneByTheGregorianLeapRule)
{
    const int rows[][4] = {{12, 31, 2000, 366}, {12, 31, 2001, 365}, {1, 1, 1999, 1},   {3, 1, 1900, 60},
                           {3, 1, 2000, 61},    {6, 3, 1932, 155},   {6, 3, 1889, 154}, {3, 12, 1967, 71}};
    for (const auto& row : rows) EXPECT_EQ(dayOfYear(row[0], row[1], row[2]), row[3]) << row[2];
}

TEST(DayOfYear, OnThe31stOfDecemberOfALeapYearIs366)
{
    EXPECT_EQ(dayOfYear(12, 31, 2004), 366);
    EXPECT_EQ(dayOfYear(12, 31, 1900), 365);
}

TEST(YearFraction, IsThePassedPartOfTheYear)
{
    struct ROW {
        int month, day, year, hour, minute;
        double expected;
    };
    const ROW rows[] = {
        {1, 1, 2000, 0, 0, 2000},           {12, 31, 2000, 23, 59, 2000.999998},
        {12, 31, 2001, 12, 0, 2001.99863},  {7, 2, 2001, 12, 0, 2001.5},
        {10, 5, 1948, 20, 54, 1948.761942}, {3, 7, 1961, 17, 26, 1961.180072},
        {2, 14, 1939, 14, 5, 1939.122156},  {5, 3, 1991, 5, 33, 1991.33488},
    };
    for (const ROW& row : rows)
        EXPECT_NEAR(yearFraction(row.month, row.day, row.year, row.hour, row.minute), row.expected, 2e-6);
}

TEST(TimeForm, IsThatOfTheLongestFormInTheLabel)
{
    EXPECT_EQ(timeFormOf("Date as YYYYMMDD"), 2);
    EXPECT_EQ(timeFormOf("day as %Y%m%d"), 2);
    EXPECT_EQ(timeFormOf("day as %Y%m%d.%f"), 3);
    EXPECT_EQ(timeFormOf("Sampling (day as %m%d.%f)"), 4);
    EXPECT_EQ(timeFormOf("day as %m%d"), 5);
    EXPECT_EQ(timeFormOf("day as .%f"), 6);
    EXPECT_EQ(timeFormOf("month as %Y%m.%f"), 7);
    EXPECT_EQ(timeFormOf("month as %m.%f"), 8);
    EXPECT_EQ(timeFormOf("year as %Y.%f"), 9);
    EXPECT_EQ(timeFormOf("year as %Y"), 10);
    EXPECT_EQ(timeFormOf("year as .%f"), 11);
    EXPECT_EQ(timeFormOf("Time [days since 1990-01-01]"), 31);
    EXPECT_EQ(timeFormOf("seconds since 1970-01-01 00:00:00"), 34);
    for (const char* label : {"", "Time", "Depth [m]", "time as hhmm", "day"})
        EXPECT_EQ(timeFormOf(label), -1) << label;
}

TEST(TimeForm, HasFifteenRowsWithTheLabelsOfTheirTarget)
{
    ASSERT_EQ(timeRows.size(), 15u);
    EXPECT_EQ(headerRowLabel(timeRows[0], yearTarget), "date as YYYYMMDD   -> Time [yr]");
    EXPECT_EQ(headerRowLabel(timeRows[14], dayOfYearTarget),
              "seconds since yyyy-mm-dd hh:mm:ss -> Day of Year [days]");
    for (const HEADERROW& row : timeRows)
        EXPECT_EQ(timeFormOf(headerRowLabel(row, yearTarget)), row.id) << row.source;
}

TEST(TimeForm, DatesOfEightDigitsExceedACell)
{
    for (const HEADERROW& row : timeRows) EXPECT_EQ(exceedsCell(row.id), row.id == 2 || row.id == 3);
    EXPECT_NE(static_cast<double>(20101231.0f), 20101231.0);
}

TEST(SinceRow, IsFoundByWordsInAnyCase)
{
    EXPECT_EQ(sinceRowOf("Time [days since 1900-1-1 0:0:0]"), 31);
    EXPECT_EQ(sinceRowOf("HOURS SINCE 1950-01-01"), 32);
    EXPECT_EQ(sinceRowOf("minutes since 2000"), 33);
    EXPECT_EQ(sinceRowOf("seconds since 1970-01-01"), 34);
    EXPECT_EQ(sinceRowOf("day of year"), -1);
    EXPECT_EQ(sinceRowOf("since yesterday"), 31); // "yesterday" holds "day"
    EXPECT_EQ(sinceRowOf("since 1900"), -1);
}

TEST(ReferenceDay, IsReadBehindSince)
{
    double day = -1;
    ASSERT_TRUE(referenceDayOf("days since 1900-1-1 0:0:0", day));
    EXPECT_EQ(day, 0);
    ASSERT_TRUE(referenceDayOf("days since 1950-01-02T12:00:00Z", day));
    EXPECT_EQ(day, static_cast<double>(common::dayNumber(1950, 1, 2)) + 0.5);
    ASSERT_TRUE(referenceDayOf("hours since 1970-01-01", day));
    EXPECT_EQ(day, 25567);
    EXPECT_FALSE(referenceDayOf("days since launch", day));
    EXPECT_FALSE(referenceDayOf("days since 1970-13-01", day));
    EXPECT_FALSE(referenceDayOf("days", day));
}

TEST(HeaderRows, AreShownWithTheirTargets)
{
    EXPECT_EQ(headerRowLabel(headerRows[2]), "date as YYYYMMDD   -> mon/day/year");
    EXPECT_EQ(headerRowLabel(headerRows[18]), "days since yyyy-mm-dd hh:mm:ss  -> mon/day/year hh:mm");
    EXPECT_EQ(headerRowLabel(headerRows[0]), "Identity Transformation");
    EXPECT_EQ(headerRowLabel(headerRows[10], "Time [yr]"), "year as %Y.%f      -> Time [yr]");
    int dates = 0;
    for (const HEADERROW& row : headerRows) dates += givesDate(row.id) ? 1 : 0;
    EXPECT_EQ(dates, 15);
}

} // namespace
