// Listings that are written and read again: nothing changes but what the columns can't hold.

#include <array>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "export/listing.h"
#include "import/importlisting.h"
#include "samplecollection.h"
#include "selection/selectedlist.h"

namespace {

using namespace testing_support;
using collection::RCollection;
using collection::STATIONDATA;
using exporting::ListingForm;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

importing::Format formatOf(ListingForm form)
{
    return form == ListingForm::version3 ? importing::Format::listing3 : importing::Format::listing4;
}

// What a listing holds of a station.
struct CONTENT {
    std::string cruise, station, type;
    int month, day, year;
    float longitude, latitude, bottomDepth;
    std::vector<std::vector<float>> values; // by variable from 1; empty without values
    std::vector<std::vector<int>> flags;    // 1 for missing values
};

float atPrecision(const char* pattern, float value)
{
    return std::strtof(common::format(pattern, static_cast<double>(value)).c_str(), nullptr);
}

// A station as it is expected back: to the digits that are written.
CONTENT written(const STATIONDATA& station, int variables, bool withFlags)
{
    const collection::STATIONHDR& h = station.header;
    CONTENT c{h.cruise,
              h.station,
              h.type,
              h.month,
              h.day,
              h.year,
              atPrecision("%.3f", h.longitude),
              atPrecision("%.3f", h.latitude),
              std::trunc(h.bottomDepth),
              {{}},
              {{}}};
    if (c.longitude >= 360) c.longitude = 0;
    for (int v = 1; v <= variables; ++v) {
        std::vector<float> values;
        std::vector<int> flags;
        const int offset = station.offset[static_cast<std::size_t>(v)];
        for (int k = 0; offset >= 0 && k < station.levels(); ++k) {
            const auto cell = static_cast<std::size_t>(offset + k);
            const bool isThere = station.values[cell] != missing;
            values.push_back(isThere ? atPrecision("%.7g", station.values[cell]) : missing);
            flags.push_back(isThere && withFlags ? station.flags[cell] : 1);
        }
        c.values.push_back(values);
        c.flags.push_back(flags);
    }
    return c;
}

// A collection with its lists, which goes out and comes back.
class RRoundTrip {
public:
    explicit RRoundTrip(int count) : sample(count), variables(count)
    {
        sample.collection.makeTempId();
        EXPECT_TRUE(sample.collection.openTemporaryFiles());
        for (int v = 1; v <= count; ++v)
            collection::setLabel(sample.collection.variables.at(static_cast<std::size_t>(v)),
                                 common::format("Variable %d of %d [x]", v, count));
    }
    ~RRoundTrip() { sample.collection.closeTemporaryFiles(); }
    RRoundTrip(const RRoundTrip&) = delete;
    RRoundTrip& operator=(const RRoundTrip&) = delete;

    void store()
    {
        ASSERT_EQ(sample.collection.writeStation(0, sample.station, true), collection::WriteResult::ok);
    }
    [[nodiscard]] std::string path(ListingForm form) const
    {
        return sample.directory.file(form == ListingForm::version3 ? "out.o3x" : "out.o4x");
    }
    // Exports all and imports it into an empty collection of the same variables.
    void run(ListingForm form)
    {
        selection::buildSelectedList(sample.collection, {}, "test", sample.user);
        sample.user.messages.clear();
        ASSERT_TRUE(
            exporting::exportListing(form, sample.collection, sample.station, path(form), {}, sample.user));
        sample.create(back, variables, form == ListingForm::version3 ? "back3" : "back4");
        ASSERT_EQ(back.openStationFiles(back.path, sample.user), collection::OpenFilesResult::ok);
        for (int v = 1; v <= variables; ++v)
            back.variables[static_cast<std::size_t>(v)] =
                sample.collection.variables[static_cast<std::size_t>(v)];
        importing::IMPORTOPTIONS options;
        options.checkExisting = false;
        result = importing::importListing(formatOf(form), back, station, path(form), options, sample.user);
    }
    void expectSame(ListingForm form)
    {
        ASSERT_EQ(result.end, importing::ImportEnd::done);
        ASSERT_EQ(back.stationCount, sample.collection.stationCount);
        for (int n = 1; n <= back.stationCount; ++n) {
            ASSERT_EQ(sample.collection.loadStation(n, sample.station, false), collection::LoadResult::ok);
            ASSERT_EQ(back.loadStation(n, station, false), collection::LoadResult::ok);
            const bool flags = form == ListingForm::version4;
            const CONTENT expected = written(sample.station, variables, flags);
            const CONTENT found = written(station, variables, true);
            EXPECT_EQ(found.cruise, expected.cruise);
            EXPECT_EQ(found.station, expected.station);
            EXPECT_EQ(found.type, expected.type);
            EXPECT_EQ(found.month, expected.month);
            EXPECT_EQ(found.day, expected.day);
            EXPECT_EQ(found.year, expected.year);
            EXPECT_EQ(found.longitude, expected.longitude);
            EXPECT_EQ(found.latitude, expected.latitude);
            EXPECT_EQ(found.bottomDepth, expected.bottomDepth);
            EXPECT_EQ(found.values, expected.values) << "station " << n;
            EXPECT_EQ(found.flags, expected.flags) << "station " << n;
        }
    }

    RSampleCollection sample;
    int variables;
    RCollection back;
    STATIONDATA station;
    importing::IMPORTRESULT result;
};

class RRandomStations {
public:
    RRandomStations(unsigned seed, std::size_t labelLength) : random_(seed), labelLength_(labelLength) {}

    void fill(STATIONDATA& station, int variables, int levels)
    {
        std::vector<std::vector<float>> columns(static_cast<std::size_t>(variables));
        for (int k = 0; k < levels; ++k)
            columns[0].push_back(static_cast<float>(k) + static_cast<float>(number(0, 999)) / 1000);
        for (int v = 1; v < variables; ++v) {
            if (number(0, 5) == 0) continue; // no block
            for (int k = 0; k < levels; ++k) columns[static_cast<std::size_t>(v)].push_back(value());
            columns[static_cast<std::size_t>(v)][static_cast<std::size_t>(number(0, levels - 1))] =
                7; // not all missing
        }
        fillStation(station, columns);
        for (int i = 0; i < station.header.valueCount; ++i)
            station.flags[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(number(0, 9));
        setHeader(station);
    }
    int number(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }

private:
    float value()
    {
        switch (number(0, 6)) {
        case 0:
            return missing;
        case 1:
            return static_cast<float>(number(-99999, 99999));
        case 2:
            return std::ldexp(static_cast<float>(number(-9999999, 9999999)), number(-140, 100));
        case 3:
            return -0.0f;
        default:
            return static_cast<float>(number(-5000000, 5000000)) / 1000;
        }
    }
    std::string label()
    {
        std::string text;
        const int length = number(0, static_cast<int>(labelLength_));
        for (int i = 0; i < length; ++i) {
            const bool isInner = i > 0 && i < length - 1;
            text += isInner && number(0, 3) == 0
                        ? ' '
                        : static_cast<char>(number(0, 9) == 0 ? 0xE4 : number('!', '~'));
        }
        return std::string(common::trimLabel(text)); // as every import leaves it
    }
    void setHeader(STATIONDATA& station)
    {
        static constexpr auto longitudes =
            std::to_array<float>({0, 359.9999f, 180, -0.0001f, -180, 359.5f, 0.0004f});
        static constexpr auto depths = std::to_array<float>({0, missing, -9999, 99999, 100000, 2e9f, -30000});
        collection::STATIONHDR& h = station.header;
        testing_support::label(station, label(), label(), std::string(1, "BCXQ"[number(0, 3)]));
        const bool atLimit = number(0, 2) == 0;
        place(station,
              atLimit ? longitudes[static_cast<std::size_t>(number(0, 6))]
                      : static_cast<float>(number(-180000, 359999)) / 1000,
              atLimit ? static_cast<float>(90 * number(-1, 1))
                      : static_cast<float>(number(-90000, 90000)) / 1000,
              atLimit ? 1900 + 300 * number(0, 1) : number(1900, 2200), number(1, 12), number(1, 31));
        h.bottomDepth = number(0, 3) == 0 ? depths[static_cast<std::size_t>(number(0, 6))]
                                          : static_cast<float>(number(0, 60000)) / 10;
    }

    std::mt19937 random_;
    std::size_t labelLength_;
};

class ListingRoundTrip : public testing::TestWithParam<int> {
protected:
    static void expectRandomStationsBack(ListingForm form, std::size_t labelLength)
    {
        const auto seed = static_cast<unsigned>(GetParam());
        RRandomStations stations(seed, labelLength);
        RRoundTrip trip(stations.number(1, 50));
        for (int n = stations.number(1, 20); n > 0; --n) {
            stations.fill(trip.sample.station, trip.variables, stations.number(1, 60));
            trip.store();
        }
        trip.run(form);
        EXPECT_THAT(trip.sample.user.notes, IsEmpty());
        trip.expectSame(form);
    }
};

TEST_P(ListingRoundTrip, Version4KeepsValuesFlagsAndLabels)
{
    expectRandomStationsBack(ListingForm::version4, 20);
}

TEST_P(ListingRoundTrip, Version3KeepsValuesAndShortLabels)
{
    expectRandomStationsBack(ListingForm::version3, 10);
}

INSTANTIATE_TEST_SUITE_P(Seeds, ListingRoundTrip, testing::Range(1, 41));

TEST(ListingRoundTripLimits, AFullStationOf9999LevelsComesBackInBothForms)
{
    for (const ListingForm form : {ListingForm::version3, ListingForm::version4}) {
        RRoundTrip trip(9);
        RRandomStations(7, 10).fill(trip.sample.station, 9, 9999);
        trip.store();
        trip.run(form);
        trip.expectSame(form);
    }
}

TEST(ListingRoundTripLimits, FiftyVariablesOf1999LevelsComeBack)
{
    RRoundTrip trip(50);
    RRandomStations(7, 20).fill(trip.sample.station, 50, 1999);
    trip.store();
    trip.run(ListingForm::version4);
    trip.expectSame(ListingForm::version4);
}

TEST(ListingRoundTripLimits, EmptySelectionsComeBackAsNothing)
{
    for (const ListingForm form : {ListingForm::version3, ListingForm::version4}) {
        RRoundTrip trip(3);
        trip.run(form);
        EXPECT_EQ(trip.result.end, importing::ImportEnd::done);
        EXPECT_EQ(trip.back.stationCount, 0);
        EXPECT_THAT(trip.sample.user.messages.back(), HasSubstr("0 Stations Imported from"));
    }
}

TEST(ListingRoundTripLimits, LongVariableLabelsFindTheirVariablesInVersion3)
{
    RRoundTrip trip(3);
    collection::setLabel(trip.sample.collection.variables[2], "Dissolved organic carbon [~$m~#mol/kg]");
    collection::setLabel(trip.sample.collection.variables[3], "Dissolved organic nitrogen [~$m~#mol/kg]");
    fillStation(trip.sample.station, {{0, 10}, {1, 2}, {3, 4}}, 1);
    label(trip.sample.station, "A", "1", "B");
    place(trip.sample.station, 10, 20);
    trip.store();
    trip.run(ListingForm::version3);
    trip.expectSame(ListingForm::version3);
}

// The same file read twice: what is there is replaced by the same.
TEST(ListingRoundTripLimits, MergingAListingIntoItsOwnStationsChangesNothing)
{
    RRoundTrip trip(4);
    RRandomStations stations(3, 20);
    for (int n = 0; n < 10; ++n) {
        fillStation(trip.sample.station, profile(20, 4, static_cast<float>(n)), static_cast<std::uint8_t>(n));
        label(trip.sample.station, "A", "Station " + std::to_string(n), "B");
        place(trip.sample.station, static_cast<float>(n), 20);
        trip.store();
    }
    trip.run(ListingForm::version4);
    trip.expectSame(ListingForm::version4);
    importing::IMPORTOPTIONS options;
    options.mode = importing::ImportMode::merge;
    trip.result = importing::importListing(importing::Format::listing4, trip.back, trip.station,
                                           trip.path(ListingForm::version4), options, trip.sample.user);
    EXPECT_EQ(trip.result.stationsStored, 10);
    trip.expectSame(ListingForm::version4);
}

} // namespace
