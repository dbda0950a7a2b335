#include "selection/polygonscan.h"

#include <cmath>
#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include "common/text.h"
#include "selection/criteria.h"

namespace selection {
namespace {

using collection::DOMAINPOLYGON;

bool areSame(const DOMAINPOLYGON& a, const DOMAINPOLYGON& b)
{
    return std::memcmp(a.lon.data(), b.lon.data(), sizeof a.lon) == 0 &&
           std::memcmp(a.lat.data(), b.lat.data(), sizeof a.lat) == 0;
}

// Coordinates that often coincide: multiples of a coarse step, and some of any value.
class RRandomPlace {
public:
    explicit RRandomPlace(unsigned seed) : random_(seed) {}
    float operator()(float low, float high)
    {
        const float value = std::uniform_real_distribution<float>(low, high)(random_);
        return random_() % 4 == 0 ? value : std::round(value / step_) * step_;
    }
    std::size_t upTo(std::size_t most) { return random_() % (most + 1); }
    void setStep(float step) { step_ = step; }

private:
    std::mt19937 random_;
    float step_ = 1;
};

DOMAINPOLYGON randomPolygon(RRandomPlace& place, std::size_t vertices, bool closed)
{
    DOMAINPOLYGON polygon;
    polygon.nPoints = static_cast<std::int32_t>(vertices);
    for (std::size_t i = 0; i < vertices; ++i) {
        polygon.lon[i] = place(-40, 40);
        polygon.lat[i] = place(-40, 40);
    }
    if (closed && vertices > 0) {
        polygon.lon[vertices - 1] = polygon.lon[0];
        polygon.lat[vertices - 1] = polygon.lat[0];
    }
    return polygon;
}

// The same answers for `points` points one behind the other, and the same vertices after each.
void compare(DOMAINPOLYGON plain, RRandomPlace& place, int points)
{
    DOMAINPOLYGON prepared = plain;
    RPolygonScan scan(prepared);
    const std::size_t n = vertexCount(plain);
    for (int i = 0; i < points; ++i) {
        float x = place(-45, 45);
        // Now and then where a vertex stands at present, also one that was moved.
        if (n > 0 && place.upTo(3) == 0) x = plain.lon[place.upTo(n - 1)];
        const float y = place(-45, 45);
        const bool inside =
            pointInPolygon(std::span(plain.lon).first(n), std::span(plain.lat).first(n), x, y);
        scan.nudge(x);
        ASSERT_EQ(scan.contains(x, y), inside) << x << '/' << y;
        ASSERT_TRUE(areSame(plain, prepared)) << x << '/' << y;
    }
}

TEST(PolygonScan, AnswersAndVerticesAreThoseOfPointInPolygon)
{
    RRandomPlace place(1);
    for (int round = 0; round < 300; ++round) {
        place.setStep(round % 2 == 0 ? 1.0f : 10.0f);
        compare(randomPolygon(place, place.upTo(40), round % 3 != 0), place, 200);
    }
}

TEST(PolygonScan, AnswersAreThoseOfPointInPolygonForTheLargestOne)
{
    RRandomPlace place(2);
    compare(randomPolygon(place, 1500, true), place, 2000);
}

TEST(PolygonScan, VerticesThatAreNoNumbersCountAsInPointInPolygon)
{
    RRandomPlace place(3);
    for (int round = 0; round < 50; ++round) {
        DOMAINPOLYGON polygon = randomPolygon(place, 12, true);
        polygon.lon[place.upTo(11)] = NAN;
        polygon.lat[place.upTo(11)] = INFINITY;
        polygon.lon[place.upTo(11)] = -INFINITY;
        polygon.lat[place.upTo(11)] = NAN;
        polygon.lon[place.upTo(11)] = 3e38f;
        polygon.lon[place.upTo(11)] = -3e38f;
        compare(polygon, place, 200);
    }
}

TEST(PolygonScan, ANarrowPolygonHasItsBands)
{
    RRandomPlace place(4);
    DOMAINPOLYGON polygon = randomPolygon(place, 20, true);
    for (std::size_t i = 0; i < 20; ++i) polygon.lon[i] = std::nextafter(30.0f, i % 2 == 0 ? 0.0f : 60.0f);
    compare(polygon, place, 500);
    std::fill_n(polygon.lon.begin(), 20, 30.0f);
    compare(polygon, place, 500);
}

TEST(PolygonScan, ACountBeyondTheRecordIsCut)
{
    DOMAINPOLYGON polygon;
    polygon.nPoints = -5;
    EXPECT_EQ(vertexCount(polygon), 0U);
    polygon.nPoints = 100000;
    EXPECT_EQ(vertexCount(polygon), 1500U);
    EXPECT_FALSE(RPolygonScan(polygon).contains(1, 1));
}

// --- the whole test of a station

struct RANDOMSTATION {
    int number = 1;
    collection::STATIONHDR header{};
    collection::LEVELCOUNTS counts{};
};

RANDOMSTATION randomStation(RRandomPlace& place)
{
    RANDOMSTATION station;
    collection::STATIONHDR& header = station.header;
    station.number = static_cast<int>(place.upTo(30));
    header.longitude = std::round(place(0, 360));
    header.latitude = place(-45, 45);
    header.day = static_cast<std::int16_t>(place.upTo(33));
    header.month = static_cast<std::int16_t>(place.upTo(14));
    header.year = static_cast<std::int16_t>(1990 + place.upTo(10));
    header.bottomDepth = place(0, 40) * 100;
    header.lastSampleDepth = place.upTo(5) == 0 ? common::MISSING_VALUE : place(0, 40) * 100;
    common::copyText(header.station, std::to_string(place.upTo(120)));
    common::copyText(header.type, place.upTo(1) == 0 ? "B" : "C");
    for (std::size_t v = 1; v <= 5; ++v) station.counts[v] = static_cast<std::int16_t>(place.upTo(2));
    return station;
}

collection::SELECTIONCRITERIA randomCriteria(RRandomPlace& place)
{
    collection::SELECTIONCRITERIA criteria = collection::defaultCriteria();
    criteria.usePolygon = place.upTo(4) > 0;
    criteria.lonMin = -40;
    criteria.lonMax = 40;
    if (place.upTo(1) == 0) criteria.internalMin = 4;
    if (place.upTo(1) == 0) criteria.months[place.upTo(11)] = ' ';
    if (place.upTo(1) == 0) criteria.dayMax = 20;
    if (place.upTo(1) == 0) criteria.yearMin = 1993;
    if (place.upTo(1) == 0) criteria.bottomMin = 1000;
    if (place.upTo(1) == 0) criteria.lastDepthMax = 3000;
    if (place.upTo(1) == 0) common::copyText(criteria.stationType, "B");
    if (place.upTo(1) == 0) common::copyText(criteria.stationLabelTo, "99");
    if (place.upTo(1) == 0) collection::setRequiredVariables(criteria, std::vector<int>{2});
    return criteria;
}

TEST(StationTest, GivesTheAnswersOfPassesSelection)
{
    RRandomPlace place(5);
    int passed = 0;
    for (int round = 0; round < 200; ++round) {
        const collection::SELECTIONCRITERIA criteria = randomCriteria(place);
        DOMAINPOLYGON plain = randomPolygon(place, 3 + place.upTo(30), true), prepared = plain;
        RStationTest test(criteria, prepared);
        for (int i = 0; i < 300; ++i) {
            const RANDOMSTATION s = randomStation(place);
            const bool passes = passesSelection(s.number, s.header, s.counts, criteria, plain, false);
            ASSERT_EQ(test.passes(s.number, s.header, s.counts), passes);
            passed += passes;
        }
        ASSERT_TRUE(areSame(plain, prepared));
    }
    EXPECT_GT(passed, 500); // or nothing is shown
}

} // namespace
} // namespace selection
