#include "variables/derivation.h"

#include <gtest/gtest.h>

#include "derivedfixture.h"
#include "variables/registry.h"

namespace variables {
namespace {

using testing_support::RDerivedStation;

// Three levels of one stored variable, and the latitude twice.
class Buffer : public testing::Test {
protected:
    void computeWith(int capacity)
    {
        station.station.capacity = capacity;
        station.compute();
    }
    RDerivedStation station{{{0, 100, 200}}};
    const int first = station.add(idLatitude, {}), second = station.add(idLatitude, {});
};

TEST_F(Buffer, ThatIsFullLeavesFurtherVariablesAbsent)
{
    computeWith(9); // levels and used cells must stay below it
    EXPECT_FALSE(station.isAbsent(first));
    EXPECT_TRUE(station.isAbsent(second));
    EXPECT_EQ(station.count(second), 0);
    EXPECT_EQ(station.station.header.valueCount, 6);
}

TEST_F(Buffer, WithOneCellMoreThanItTakesHoldsAll)
{
    computeWith(10);
    EXPECT_FALSE(station.isAbsent(first));
    EXPECT_FALSE(station.isAbsent(second));
    EXPECT_EQ(station.station.header.valueCount, 9);
}

TEST_F(Buffer, ThatTakesNoneLeavesAllAbsent)
{
    computeWith(6);
    EXPECT_TRUE(station.isAbsent(first));
    EXPECT_EQ(station.station.header.valueCount, 3);
}

TEST(Derivation, AnIdWithoutACalculatorIsIgnored)
{
    RDerivedStation station({{0, 100, 200}});
    for (const int id : {51, 52, 1000000, -1, -1000000, 17, 18, 32, 33, 34, 35, 36, 37, 38, 39}) {
        const int number = station.add(id, {1, 1, 1});
        station.compute();
        EXPECT_TRUE(station.isAbsent(number)) << id;
        EXPECT_EQ(station.station.header.valueCount, 3) << id;
    }
    const int last = station.add(idLatitude, {});
    station.compute();
    EXPECT_FALSE(station.isAbsent(last)) << "those behind them are computed";
}

} // namespace
} // namespace variables
