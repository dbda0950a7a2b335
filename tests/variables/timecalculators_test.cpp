#include "common/calendar.h"
#include "memorycast.h"
#include "variables/registry.h"
#include "variables/timeconversions.h"

namespace variables {
namespace {

using testing_support::missing;
using testing_support::RMemoryCast;
using FLOATS = std::vector<float>;

class TimeVariable : public testing::Test {
protected:
    TimeVariable() { testing_support::place(cast.station, 340, -12.5f, 1993, 11, 28); }
    RMemoryCast cast;
};

TEST_F(TimeVariable, GivesYearsAndDaysOfTheYear)
{
    cast.store({{0, 10}, {20081230, 20000630}});
    const auto years = cast.derived(idTime, {2}, 0, 2), days = cast.derived(idDayOfYear, {2}, 0, 2);
    ASSERT_TRUE(years && days);
    EXPECT_NEAR((*years)[0], 2008.994536, 2e-4);
    EXPECT_EQ(*days, (FLOATS{365, 182}));
}

TEST_F(TimeVariable, TakesYearAndMonthFromTheHeaderWhereTheFormHasNone)
{
    cast.store({{0}, {5.84375f}, {409}, {1.97f}, {101.5f}});
    EXPECT_EQ(cast.derived(idDayOfYear, {2}, 0, 6).value().front(), 310);                   // 6 November
    EXPECT_NEAR(cast.derived(idTime, {3}, 0, 5).value().front(), 1993 + 98 / 365.0, 2e-4);  // 9 April
    EXPECT_NEAR(cast.derived(idTime, {4}, 0, 8).value().front(), 1993 + 58 / 365.0, 2e-4);  // 28 February
    EXPECT_NEAR(cast.derived(idTime, {5}, 0, 4).value().front(), 1993 + 1.5 / 365.0, 2e-4); // 2 January, noon
}

TEST_F(TimeVariable, CountsFromTheOriginOfItsVariable)
{
    cast.store({{0}, {31.25f}, {24}});
    const int days = cast.add(idTime, {2}, 0, daysSinceRow);
    const int hours = cast.add(idDayOfYear, {3}, 0, hoursSinceRow);
    const auto origin = [&](int number) -> double& {
        return cast.collection.timeOrigins.at(static_cast<std::size_t>(number));
    };
    origin(days) = static_cast<double>(common::dayNumber(2001, 1, 1));
    origin(hours) = static_cast<double>(common::dayNumber(2004, 12, 30));
    cast.compute();
    EXPECT_NEAR(cast.present(days).value().front(), 2001 + 31.25 / 365, 2e-4);
    EXPECT_EQ(cast.present(hours).value().front(), 366);
}

TEST_F(TimeVariable, MissingTimesStayMissingButCount)
{
    cast.store({{0, 10, 20}, {20081230, missing, 20081330}});
    const int number = cast.add(idDayOfYear, {2}, 0, 2);
    cast.compute();
    EXPECT_EQ(cast.present(number), (FLOATS{365, missing, missing})); // there is no 13th month
    EXPECT_EQ(cast.count(number), 3);
}

TEST_F(TimeVariable, TheFlagIsThatOfTheSource)
{
    cast.store({{0, 10}, {2001, 2002}});
    cast.station.flags[static_cast<std::size_t>(cast.station.offset[2]) + 1] = 4;
    const int number = cast.add(idTime, {2}, 0, 10);
    cast.compute();
    EXPECT_EQ(cast.flag(number, 0), 0);
    EXPECT_EQ(cast.flag(number, 1), 4);
}

TEST_F(TimeVariable, IsAbsentWithoutItsSource)
{
    cast.store({{0, 10}, {}});
    EXPECT_FALSE(cast.derived(idTime, {2}, 0, 10).has_value());
}

TEST_F(TimeVariable, AFormThatIsNoneGivesMissingValues)
{
    cast.store({{0}, {2001}});
    for (const int code : {-1, 0, 12, 99})
        EXPECT_EQ(cast.derived(idTime, {2}, 0, code), (FLOATS{missing})) << code;
}

} // namespace
} // namespace variables
