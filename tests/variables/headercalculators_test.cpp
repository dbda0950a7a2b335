#include "memorycast.h"
#include "variables/registry.h"

namespace variables {
namespace {

using testing_support::missing;
using testing_support::RMemoryCast;
using FLOATS = std::vector<float>;

class HeaderValues : public testing::Test {
protected:
    HeaderValues()
    {
        testing_support::label(cast.station, "B2", "17", "C");
        testing_support::place(cast.station, 340, -12.5f, 2000, 12, 31);
        cast.store({{0, 10, 20}, {1, missing, 1}}, 4);
    }
    // The value that all levels share.
    float derived(int id)
    {
        const int number = cast.add(id, {});
        cast.compute();
        const auto values = cast.present(number);
        if (!values) return -1;
        EXPECT_EQ(*values, FLOATS(3, values->front()));
        EXPECT_EQ(cast.count(number), 3);
        for (int k = 0; k < 3; ++k) EXPECT_EQ(cast.flag(number, k), 0);
        return values->front();
    }
    void addCruise(const char* label, const char* type)
    {
        collection::CRUISEINFO entry{};
        common::copyText(entry.cruise, label);
        common::copyText(entry.type, type);
        cast.collection.cruises.push_back(entry);
    }
    RMemoryCast cast;
};

TEST_F(HeaderValues, CountAllLevelsAsPresentAndGood)
{
    EXPECT_EQ(derived(idLatitude), -12.5f);
}

TEST_F(HeaderValues, TimeAndDayOfYearOfTheHeader)
{
    EXPECT_EQ(derived(idHeaderDayOfYear), 366);
    EXPECT_NEAR(derived(idHeaderTime), 2000 + (365 + (12 + 34 / 60.0) / 24) / 366, 1e-3);
    cast.station.header.month = 0;
    EXPECT_EQ(derived(idHeaderDayOfYear), missing);
    EXPECT_EQ(derived(idHeaderTime), missing);
}

TEST_F(HeaderValues, LongitudeIsCountedAsTheMapCounts)
{
    EXPECT_EQ(derived(idLongitude), 340);
    cast.with.mapWest = -100;
    cast.with.mapEast = 100;
    EXPECT_EQ(derived(idLongitude), -20);
    cast.station.header.longitude = 100;
    EXPECT_EQ(derived(idLongitude), 100);
    cast.with.mapWest = 20;
    cast.with.mapEast = 50;
    EXPECT_EQ(derived(idLongitude), 100); // beyond the map, which doesn't begin in the west
}

TEST_F(HeaderValues, StationNumberIsThatAtTheFrontOfTheLabel)
{
    EXPECT_EQ(derived(idStationNumber), 17);
    const std::pair<const char*, float> labels[] = {
        {"12.5", 12.5f}, {"003", 3}, {"45B", 45}, {"CTD7", missing}, {"", missing}, {"-2", -2}, {" 8", 8}};
    for (const auto& [label, number] : labels) {
        common::copyText(cast.station.header.station, label);
        EXPECT_EQ(derived(idStationNumber), number) << label;
    }
}

TEST_F(HeaderValues, CruiseNumberIsThatOfTheEntryOfTheSameLabelAndType)
{
    addCruise("A1", "B");
    addCruise("B2", "B");
    addCruise("B2", "C");
    EXPECT_EQ(derived(idCruiseNumber), 3);
    common::copyText(cast.station.header.type, "X"); // another type of the cruise
    EXPECT_EQ(derived(idCruiseNumber), 2);
    common::copyText(cast.station.header.cruise, "C3");
    EXPECT_EQ(derived(idCruiseNumber), missing);
}

TEST_F(HeaderValues, CruiseNumberIsFoundInAnyOrderOfTheEntries)
{
    addCruise("Z", "C");
    addCruise("B2", "C");
    addCruise("A", "C");
    EXPECT_EQ(derived(idCruiseNumber), 2);
}

} // namespace
} // namespace variables
