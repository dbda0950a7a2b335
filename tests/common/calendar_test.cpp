#include <gtest/gtest.h>

#include "common/calendar.h"

namespace {

using common::dateOfDay;
using common::dayNumber;

TEST(Calendar, EveryDayOfManyCenturiesGoesThereAndBack)
{
    common::CALENDARDATE before = dateOfDay(-800001);
    for (std::int64_t n = -800000; n < 400000; ++n) {
        const common::CALENDARDATE date = dateOfDay(n);
        ASSERT_EQ(dayNumber(date.year, date.month, date.day), n);
        const bool nextDay = date.day == before.day + 1 && date.month == before.month;
        ASSERT_TRUE(nextDay || date.day == 1) << n;
        before = date;
    }
}

TEST(Calendar, KnowsLeapYears)
{
    EXPECT_EQ(dayNumber(2000, 3, 1) - dayNumber(2000, 2, 28), 2);
    EXPECT_EQ(dayNumber(1900, 3, 1) - dayNumber(1900, 2, 28), 1);
    EXPECT_TRUE(common::isLeapYear(2000));
    EXPECT_FALSE(common::isLeapYear(1900));
    EXPECT_TRUE(common::isLeapYear(1996));
}

} // namespace
