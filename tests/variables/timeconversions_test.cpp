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

TEST(ConvertToYears, GivesTheFractionOfTheYear)
{
    double years = 0;
    ASSERT_TRUE(convertToYears(2, 20010101, 0, years));
    EXPECT_DOUBLE_EQ(years, 2001.0);
    ASSERT_TRUE(convertToYears(3, 20000630.5, 0, years)); // 1 July 2000, noon
    EXPECT_NEAR(years, 2000 + 182.5 / 366, 1e-12);
    EXPECT_FALSE(convertToYears(13, 1200, 0, years));
}

TEST(ConvertToDayOfYear, CountsFromOne)
{
    double day = 0;
    ASSERT_TRUE(convertToDayOfYear(2, 20000301, 0, day));
    EXPECT_EQ(day, 61);
    ASSERT_TRUE(convertToDayOfYear(31, 0, 0, day));
    EXPECT_EQ(day, 1);
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
