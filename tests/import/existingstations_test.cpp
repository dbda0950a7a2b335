// The index of existing stations against a walk over all of them.

#include <algorithm>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "common/calendar.h"
#include "common/text.h"
#include "import/existingstations.h"
#include "samplecollection.h"

namespace {

using collection::STATIONHDR;
using importing::RExistingStations;

std::int64_t dayOf(const STATIONHDR& header)
{
    return common::dayNumber(header.year, header.month, header.day);
}

bool isTheSame(const STATIONHDR& stored, const STATIONHDR& header)
{
    const float longitude = header.longitude < 0 ? stored.longitude - 360 : stored.longitude;
    return common::fieldText(stored.cruise) == common::fieldText(header.cruise) &&
           common::fieldText(stored.type) == common::fieldText(header.type) &&
           common::fieldText(stored.station) == common::fieldText(header.station) &&
           std::abs(dayOf(stored) - dayOf(header)) <= 1 && std::abs(longitude - header.longitude) < 0.2f &&
           std::abs(stored.latitude - header.latitude) < 0.2f;
}

// Few labels, many days and close positions, so that a label has many stations.
STATIONHDR randomHeader(std::mt19937& random)
{
    STATIONHDR header{};
    common::copyText(header.cruise, random() % 2 == 0 ? "A" : "B");
    common::copyText(header.station, random() % 3 == 0 ? "1" : "FLOAT");
    common::copyText(header.type, random() % 4 == 0 ? "C" : "B");
    header.year = 1999;
    header.month = static_cast<std::int16_t>(1 + random() % 2);
    header.day = static_cast<std::int16_t>(1 + random() % 28);
    header.longitude = 0.15f * static_cast<float>(random() % 6);
    header.latitude = 0.15f * static_cast<float>(random() % 4);
    return header;
}

TEST(ExistingStations, AreThoseThatAWalkOverAllFinds)
{
    std::mt19937 random(7);
    testing_support::RSampleCollection sample;
    std::vector<STATIONHDR> stored;
    for (int i = 0; i < 400; ++i) {
        STATIONHDR header = randomHeader(random);
        sample.station.clear();
        sample.station.header = header;
        sample.station.offset[1] = 0;
        sample.station.levelCount[1] = 1;
        sample.station.values[0] = 10;
        sample.station.header.valueCount = 1;
        ASSERT_EQ(sample.collection.writeStation(0, sample.station, true), collection::WriteResult::ok);
        stored.push_back(header);
    }
    sample.collection.readInventory(true, sample.user);
    RExistingStations existing(sample.collection);
    ASSERT_TRUE(existing.build());
    int found = 0;
    for (int i = 0; i < 2000; ++i) {
        STATIONHDR header = randomHeader(random);
        if (i % 5 == 0) header.longitude -= 360;
        const auto place = std::find_if(stored.begin(), stored.end(),
                                        [&](const STATIONHDR& one) { return isTheSame(one, header); });
        const int expected = place == stored.end() ? 0 : static_cast<int>(place - stored.begin()) + 1;
        ASSERT_EQ(existing.find(header), expected) << i;
        found += expected > 0 ? 1 : 0;
    }
    EXPECT_GT(found, 200);
    EXPECT_LT(found, 1900);
}

TEST(ExistingStations, AStationWhoseDayWasReplacedIsFoundUnderTheNewOne)
{
    testing_support::RSampleCollection sample;
    STATIONHDR header{};
    common::copyText(header.cruise, "A");
    common::copyText(header.station, "1");
    common::copyText(header.type, "B");
    header.year = 1999;
    header.month = 5;
    header.day = 10;
    sample.station.clear();
    sample.station.header = header;
    sample.station.offset[1] = 0;
    sample.station.levelCount[1] = 1;
    sample.station.header.valueCount = 1;
    ASSERT_EQ(sample.collection.writeStation(0, sample.station, true), collection::WriteResult::ok);
    sample.collection.readInventory(true, sample.user);
    RExistingStations existing(sample.collection);
    ASSERT_TRUE(existing.build());
    header.day = 11;
    EXPECT_EQ(existing.find(header), 1);
    existing.noteStored(1, 1, header);
    header.day = 12;
    EXPECT_EQ(existing.find(header), 1);
    header.day = 9;
    EXPECT_EQ(existing.find(header), 0);
}

} // namespace
