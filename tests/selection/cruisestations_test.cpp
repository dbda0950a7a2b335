#include "selection/cruisestations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "samplecollection.h"

namespace selection {
namespace {

using testing::ElementsAre;

class CruiseStations : public testing::Test {
protected:
    void put(const char* cruise, const char* type, float longitude = 10)
    {
        testing_support::fillStation(sample.station, {{1, 2}});
        testing_support::label(sample.station, cruise, "1", type);
        testing_support::place(sample.station, longitude, 20);
        ASSERT_EQ(sample.collection.writeStation(0, sample.station, false), collection::WriteResult::ok);
    }
    std::vector<int> find(const char* cruise, const char* type, const MAPDOMAIN& domain = {})
    {
        std::vector<int> numbers;
        for (const SELECTEDSTATION& one : findCruiseStations(sample.collection, cruise, type, domain))
            numbers.push_back(one.number);
        return numbers;
    }
    testing_support::RSampleCollection sample;
};

TEST_F(CruiseStations, AreThoseOfTheLabelAndTheType)
{
    for (const auto& [cruise, type] : {std::pair{"A", "B"}, {"B", "B"}, {"A", "C"}, {"A", "B"}, {"AB", "B"}})
        put(cruise, type);
    sample.collection.readInventory(true, sample.user);
    EXPECT_THAT(find("A", "B"), ElementsAre(1, 4));
    EXPECT_THAT(find("A", "C"), ElementsAre(3));
    EXPECT_THAT(find("A", "*"), ElementsAre(1, 3, 4));
    EXPECT_THAT(find("A", "X"), ElementsAre());
    EXPECT_THAT(find("none", "*"), ElementsAre());
}

TEST_F(CruiseStations, StandOnTheMap)
{
    put("A", "B", 350);
    put("A", "B", 100);
    sample.collection.readInventory(true, sample.user);
    const MAPDOMAIN map{-30, 20, -90, 90};
    EXPECT_THAT(find("A", "B", map), ElementsAre(1));
    EXPECT_EQ(findCruiseStations(sample.collection, "A", "B", map)[0].longitude, -10);
}

TEST_F(CruiseStations, LabelsComeOnce)
{
    for (const auto& [cruise, type] : {std::pair{"A", "B"}, {"B", "B"}, {"A", "C"}}) put(cruise, type);
    sample.collection.readInventory(true, sample.user);
    EXPECT_THAT(cruiseLabels(sample.collection), ElementsAre("A", "B"));
}

} // namespace
} // namespace selection
