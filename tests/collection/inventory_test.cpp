#include <array>
#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>

#include "collection/cruisetable.h"
#include "collection/filetimes.h"
#include "collection/stationrecord.h"
#include "common/byteorder.h"
#include "memorylimit.h"
#include "samplecollection.h"

namespace collection {
namespace {

using testing_support::missing;
using testing_support::profile;
using testing_support::RSampleCollection;

class Inventory : public testing::Test {
protected:
    void put(const std::string& cruise, const std::string& name, const std::string& type = "B",
             float lon = 10, float lat = 20, int year = 1995, int month = 7, int day = 15)
    {
        testing_support::fillStation(sample.station, profile(3, 4));
        testing_support::label(sample.station, cruise, name, type);
        testing_support::place(sample.station, lon, lat, year, month, day);
        ASSERT_EQ(collection.writeStation(0, sample.station, false), WriteResult::ok);
    }
    void touch(const std::string& suffix, int seconds) const
    {
        const std::string file = collection.path + suffix;
        std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) +
                                                   std::chrono::seconds(seconds));
    }
    RSampleCollection sample;
    RCollection& collection = sample.collection;
};

TEST_F(Inventory, OneCruiseWithTwoTypesGivesTwoEntriesInTheOrderOfTypes)
{
    put("A", "1", "C");
    put("A", "2", "B");
    put("A", "3", "C");
    ASSERT_EQ(collection.readInventory(true, sample.user), 2);
    EXPECT_STREQ(collection.cruises[0].type, "B");
    EXPECT_EQ(collection.cruises[0].stationCount, 1);
    EXPECT_STREQ(collection.cruises[1].type, "C");
    EXPECT_EQ(collection.cruises[1].stationCount, 2);
    EXPECT_STREQ(collection.cruises[1].station, "1");
}

TEST_F(Inventory, EntriesSpanTheirStations)
{
    put("A", "17", "B", 350, -20, 1995, 7, 15);
    put("B", "1");
    put("A", "9", "B", 10, 40, 1990, 12, 1);
    put("A", "x9", "B", 20, 0, 2001, 1, 31);
    ASSERT_EQ(collection.readInventory(true, sample.user), 2);
    const CRUISEINFO& entry = collection.cruises[0];
    EXPECT_EQ(entry.firstLabel, 9);
    EXPECT_EQ(entry.lastLabel, 17);
    EXPECT_EQ(entry.lonMin, 10);
    EXPECT_EQ(entry.lonMax, 350);
    EXPECT_EQ(entry.latMin, -20);
    EXPECT_EQ(entry.latMax, 40);
    EXPECT_EQ(entry.dateMin, 19901201);
    EXPECT_EQ(entry.dateMax, 20010131);
    EXPECT_EQ(entry.firstNumber, 1);
    EXPECT_EQ(entry.lastNumber, 4);
    EXPECT_EQ(entry.stationCount, 3);
    EXPECT_EQ(entry.valueCounts[0], 9);
    EXPECT_EQ(entry.valueCounts[3], 9);
    EXPECT_EQ(collection.sampleCount, 12);
    EXPECT_EQ(collection.cruiseCount, 2);
}

TEST_F(Inventory, NonNumericLabelsLeaveTheSpanAtItsStart)
{
    put("A", "A1");
    put("A", "12A");
    put("A", "1.5");
    collection.readInventory(true, sample.user);
    EXPECT_EQ(collection.cruises[0].firstLabel, 99999999);
    EXPECT_EQ(collection.cruises[0].lastLabel, 0);
    EXPECT_NE(sample.bytes(".inv").find("A\tB\t(99999999:0)\t"), std::string::npos);
}

TEST_F(Inventory, FileHasTheFormOfItsLines)
{
    put("A20 x", "17", "B", 350.9f, -20.9f, 1995, 7, 5);
    put("A20 x", "18", "B", 10, 40, 2003, 11, 30);
    collection.readInventory(true, sample.user);
    EXPECT_EQ(sample.bytes(".inv"),
              "INV1.05\n1 cruises 2 stations 6 samples\n"
              "A20 x\tB\t(17:18)\t(10:350)\t(-20:40)\t(07/05/1995:11/30/2003)\t(1:2)\t2\t"
              "999\n");
}

TEST_F(Inventory, ReadsBackWhatItWrote)
{
    put("B", "1", "C", 100, 10);
    put("A", "-3", "B", 200, -10, 1901, 1, 1);
    collection.readInventory(true, sample.user);
    const std::vector<CRUISEINFO> built = collection.cruises;
    collection.cruises.clear();
    collection.cruiseCount = collection.sampleCount = 0;
    ASSERT_TRUE(collection.readInventoryFile());
    ASSERT_EQ(collection.cruiseCount, 2);
    EXPECT_EQ(collection.sampleCount, 6);
    for (std::size_t i = 0; i < 2; ++i) {
        const CRUISEINFO &was = built[i], &is = collection.cruises[i];
        EXPECT_STREQ(is.cruise, was.cruise);
        EXPECT_STREQ(is.type, was.type);
        EXPECT_EQ(is.stationCount, was.stationCount);
        EXPECT_EQ(is.firstLabel, was.firstLabel);
        EXPECT_EQ(is.lastLabel, was.lastLabel);
        EXPECT_EQ(is.firstNumber, was.firstNumber);
        EXPECT_EQ(is.lastNumber, was.lastNumber);
        EXPECT_EQ(is.lonMin, was.lonMin);
        EXPECT_EQ(is.latMax, was.latMax);
        EXPECT_EQ(is.dateMin, was.dateMin);
        EXPECT_EQ(is.dateMax, was.dateMax);
        for (const std::int32_t count : is.valueCounts) EXPECT_EQ(count, 1);
    }
}

TEST_F(Inventory, AFileOlderThanTheHeadersIsRebuilt)
{
    put("A", "1");
    ASSERT_TRUE(collection.writeVarFile(collection.path));
    collection.readInventory(true, sample.user);
    STATIONHDR header{};
    ASSERT_TRUE(collection.readStationHeader(1, header, nullptr));
    common::copyText(header.cruise, "edited");
    ASSERT_TRUE(collection.writeStationHeader(1, header, nullptr)); // only a header was edited
    touch(".hob", 5);
    EXPECT_EQ(collection.readInventory(false, sample.user), 1);
    EXPECT_STREQ(collection.cruises[0].cruise, "edited");
    EXPECT_NE(sample.bytes(".inv").find("edited"), std::string::npos);
}

TEST_F(Inventory, ACurrentFileIsRead)
{
    put("A", "1");
    collection.readInventory(true, sample.user);
    const std::string text = common::replaceAll(sample.bytes(".inv"), "A\tB", "Q\tB");
    sample.setBytes(".inv", text);
    touch(".inv", 5);
    EXPECT_EQ(collection.readInventory(false, sample.user), 1);
    EXPECT_STREQ(collection.cruises[0].cruise, "Q");
    EXPECT_EQ(collection.cruises[0].valueCounts[7], 1);
}

TEST_F(Inventory, AWrongFirstLineIsRebuiltSilently)
{
    put("A", "1");
    collection.readInventory(true, sample.user);
    const std::string good = sample.bytes(".inv");
    sample.setBytes(".inv", common::replaceAll(good, "INV1.05", "INV1.04"));
    touch(".inv", 5);
    EXPECT_EQ(collection.readInventory(false, sample.user), 1);
    EXPECT_TRUE(sample.user.messages.empty());
    EXPECT_TRUE(sample.user.notes.empty());
    EXPECT_EQ(sample.bytes(".inv"), good);
}

TEST_F(Inventory, AFileOfAnotherCountIsRebuilt)
{
    put("A", "1");
    collection.readInventory(true, sample.user);
    put("B", "1");
    touch(".inv", 5);
    EXPECT_EQ(collection.readInventory(false, sample.user), 2);
}

TEST_F(Inventory, CutAtEveryLengthItIsReadWholeOrNotAtAll)
{
    put("A", "1");
    put("B", "2");
    collection.readInventory(true, sample.user);
    const std::string good = sample.bytes(".inv");
    for (std::size_t length = 0; length <= good.size(); ++length) {
        INVENTORY read;
        const bool ok = parseInventory(std::string_view(good).substr(0, length), read);
        ASSERT_EQ(read.entries.size(), ok ? 2U : 0U) << length;
        if (ok) {
            ASSERT_EQ(read.entries[1].lastNumber, 2);
        }
    }
}

TEST_F(Inventory, ACutFileIsRebuilt)
{
    put("A", "1");
    put("B", "2");
    collection.readInventory(true, sample.user);
    const std::string good = sample.bytes(".inv");
    for (const std::size_t length : {std::size_t{0}, std::size_t{9}, good.size() / 2}) {
        sample.setBytes(".inv", std::string_view(good).substr(0, length));
        touch(".inv", 5);
        ASSERT_EQ(collection.readInventory(false, sample.user), 2) << length;
        EXPECT_EQ(sample.bytes(".inv"), good) << length;
    }
}

TEST_F(Inventory, LyingFilesAreNotBelieved)
{
    put("A", "1");
    collection.readInventory(true, sample.user);
    const std::string good = sample.bytes(".inv");
    for (const auto& [from, to] : {std::pair{"1 cruises", "2000000000 cruises"},
                                   {"1 cruises", "-1 cruises"},
                                   {"(1:1)\t1", "(1:900)\t1"},
                                   {"(1:1)\t1", "(0:1)\t1"},
                                   {"(1:1)\t1", "(1:1)\t7"},
                                   {"(10:10)", "(10;10)"}}) {
        INVENTORY read;
        const std::string bad = common::replaceAll(good, from, to);
        ASSERT_NE(bad, good) << from;
        EXPECT_FALSE(parseInventory(bad, read)) << to;
    }
}

TEST_F(Inventory, AReadOnlyCollectionGetsATableAndNoFile)
{
    put("A", "1");
    ASSERT_EQ(sample.reopen(), OpenFilesResult::ok);
    collection.writable = false;
    EXPECT_EQ(collection.readInventory(false, sample.user), 1);
    EXPECT_FALSE(common::fileExists(collection.path + ".inv"));
    EXPECT_FALSE(common::fileExists(collection.path + ".cid"));
}

TEST_F(Inventory, DamagedStationsAreToldOnceAndTheOthersCounted)
{
    for (int i = 1; i <= 5; ++i) put("A", std::to_string(i));
    std::string hob = sample.bytes(".hob");
    for (const int n : {2, 3, 5}) hob[static_cast<std::size_t>(6 + (n - 1) * 88 + 79)] = '\x7f';
    sample.setBytes(".hob", hob);
    EXPECT_EQ(collection.readInventory(true, sample.user), 1);
    EXPECT_EQ(collection.cruises[0].stationCount, 2);
    ASSERT_EQ(sample.user.notes.size(), 1U);
    EXPECT_EQ(sample.user.notes[0],
              collection.path + ".hob, " + collection.path + ".dob: damaged, left out stations 2 to 3, 5");
}

TEST_F(Inventory, SelectedTableCoversTheListOnly)
{
    put("A", "1");
    put("B", "2");
    put("A", "3");
    collection.readInventory(true, sample.user);
    ASSERT_TRUE(collection.openTemporaryFiles());
    for (const std::int32_t number : {2, 3}) {
        const std::int32_t record[4] = {number, 0, 0, 0};
        ASSERT_EQ(std::fwrite(record, sizeof record, 1, collection.valFile.get()), 1U);
    }
    collection.selectedStationCount = 2;
    EXPECT_EQ(collection.makeInventoryTables(false, sample.user), 2);
    EXPECT_EQ(collection.selectedCruises[0].stationCount, 1);
    EXPECT_EQ(collection.selectedCruises[0].firstNumber, 3);
    EXPECT_EQ(collection.cruises[0].stationCount, 2);
}

TEST_F(Inventory, SelectedTableIsACopyWhereAllAreSelected)
{
    put("A", "1");
    collection.readInventory(true, sample.user);
    collection.selectedStationCount = 1; // no list is read
    EXPECT_EQ(collection.makeInventoryTables(false, sample.user), 1);
    EXPECT_STREQ(collection.selectedCruises[0].cruise, "A");
}

TEST_F(Inventory, ManyCruisesInTurnsKeepTheirEntries)
{
    for (int i = 0; i < 600; ++i) put("C" + std::to_string(i % 200), std::to_string(i));
    ASSERT_EQ(collection.readInventory(true, sample.user), 200);
    for (std::size_t i = 0; i < 200; ++i) {
        EXPECT_EQ(collection.cruises[i].stationCount, 3);
        if (i > 0) {
            EXPECT_LT(std::string(collection.cruises[i - 1].cruise), collection.cruises[i].cruise);
        }
    }
    const std::vector<std::int32_t> indices = collection.readCruiseIndices(false);
    for (int i = 0; i < 600; ++i) {
        EXPECT_EQ("C" + std::to_string(i % 200),
                  collection.cruises[static_cast<std::size_t>(indices[static_cast<std::size_t>(i)])].cruise);
    }
}

TEST_F(Inventory, LabelsAreOrderedAsBytes)
{
    put("b", "1");
    put("\xC4", "1");
    put("B", "1");
    ASSERT_EQ(collection.readInventory(true, sample.user), 3);
    EXPECT_STREQ(collection.cruises[0].cruise, "B");
    EXPECT_STREQ(collection.cruises[2].cruise, "\xC4");
}

TEST_F(Inventory, AHeaderThatWasEditedRightAfterwardsMakesItOutOfDate)
{
    for (int i = 0; i < 20; ++i) { // no two times of files are the same
        put("A", std::to_string(i));
        collection.readInventory(true, sample.user);
        ASSERT_TRUE(isCurrent(collection.path + ".inv", collection.path + ".hob"));
        STATIONHDR header{};
        ASSERT_TRUE(collection.readStationHeader(1, header, nullptr));
        ASSERT_TRUE(collection.writeStationHeader(1, header, nullptr));
        ASSERT_FALSE(isCurrent(collection.path + ".inv", collection.path + ".hob"));
    }
}

TEST_F(Inventory, ATableDatedInTheFutureIsNotWaitedFor)
{
    put("A", "1");
    touch(".hob", 3600);
    EXPECT_EQ(collection.readInventory(false, sample.user), 1);
    EXPECT_FALSE(isCurrent(collection.path + ".inv", collection.path + ".hob"));
    EXPECT_EQ(collection.readInventory(false, sample.user), 1);
}

TEST_F(Inventory, ADiskThatIsFullLeavesTheTableInMemory)
{
    put("A", "1");
    const std::string inv = collection.path + ".inv", cid = collection.path + ".cid";
    std::filesystem::create_directory(inv); // no file can take its place
    std::filesystem::create_directory(cid);
    EXPECT_EQ(collection.readInventory(false, sample.user), 1);
    EXPECT_STREQ(collection.cruises.at(0).cruise, "A");
    EXPECT_TRUE(sample.user.messages.empty());
}

TEST_F(Inventory, AnotherKindOfCollectionHasNoFile)
{
    put("A", "1");
    collection.kind = 2;
    EXPECT_EQ(collection.readInventory(false, sample.user), 0);
    EXPECT_FALSE(collection.writeInventoryFile());
    EXPECT_FALSE(common::fileExists(collection.path + ".inv"));
    collection.kind = 1;
}

// A collection in which each station is of a cruise of its own: its table is large.
class ManyCruises : public testing::Test {
protected:
    static constexpr int stations = 100000;
    ManyCruises()
    {
        const RECORDFORM form{.variableCount = 1};
        LEVELCOUNTS counts{};
        counts[1] = 1;
        STATIONHDR header{};
        header.type[0] = 'B';
        header.valueCount = 1;
        std::string hob(common::hostIsLittleEndian ? littleEndianMagic : bigEndianMagic);
        std::array<std::byte, 82> record{};
        for (int n = 1; n <= stations; ++n) {
            common::copyText(header.cruise, "C" + std::to_string(n));
            const std::size_t size = packRecord(header, &counts, form, record.data());
            hob.append(reinterpret_cast<const char*>(record.data()), size);
        }
        sample.collection.stationCount = stations;
        EXPECT_TRUE(sample.collection.writeVarFile(sample.collection.path));
        sample.collection.closeStationFiles();
        sample.setBytes(".hob", hob);
        sample.setBytes(".dob", std::string(5, '\0'));
        EXPECT_EQ(sample.collection.openStationFiles(sample.collection.path, sample.user),
                  OpenFilesResult::ok);
    }
    RSampleCollection sample{1};
    RCollection& collection = sample.collection;
};

TEST_F(ManyCruises, WithoutMemoryTheTableIsDroppedAndTold)
{
    if (!testing_support::memoryCanBeLimited) GTEST_SKIP() << "the sanitizer needs all memory";
    int count = -1;
    {
        const testing_support::RMemoryLimit limit(2 << 20);
        count = collection.readInventory(false, sample.user);
    }
    EXPECT_EQ(count, 0);
    EXPECT_EQ(sample.user.messages, std::vector<std::string>{"buildInventory: Could not Allocate Workspace"});
    EXPECT_TRUE(collection.cruises.empty());
    EXPECT_EQ(sample.user.busy, 0);
    EXPECT_FALSE(common::fileExists(collection.path + ".inv"));
    EXPECT_EQ(collection.readInventory(false, sample.user), stations);
}

TEST_F(ManyCruises, WithoutMemoryForItsFileTheTableIsEmptyAndTold)
{
    if (!testing_support::memoryCanBeLimited) GTEST_SKIP() << "the sanitizer needs all memory";
    ASSERT_EQ(collection.readInventory(false, sample.user), stations);
    std::vector<CRUISEINFO>().swap(collection.cruises);
    {
        const testing_support::RMemoryLimit limit(2 << 20);
        collection.readInventory(false, sample.user);
    }
    EXPECT_EQ(collection.cruiseCount, 0);
    EXPECT_TRUE(collection.cruises.empty());
    EXPECT_EQ(sample.user.messages,
              std::vector<std::string>{"readInventory: Could not allocate CRUISEINFO workspace"});
}

// --- `.cid`

TEST_F(Inventory, CruiseIndicesAreOfTheTableAndKeptInTheFile)
{
    put("B", "1");
    put("A", "2");
    put("B", "3");
    collection.readInventory(true, sample.user);
    EXPECT_EQ(common::fileSize(collection.path + ".cid"), 12);
    EXPECT_EQ(collection.readCruiseIndices(false), (std::vector<std::int32_t>{1, 0, 1}));
    std::filesystem::remove(collection.path + ".cid");
    EXPECT_EQ(collection.readCruiseIndices(false), (std::vector<std::int32_t>{1, 0, 1}));
    EXPECT_TRUE(common::fileExists(collection.path + ".cid"));
}

TEST_F(Inventory, CruiseIndexFileThatCantBeTrueIsMadeAnew)
{
    put("B", "1");
    put("A", "2");
    collection.readInventory(true, sample.user);
    for (const std::string& bad : {std::string("\1\0\0\0", 4), std::string("\1\0\0\0\2\0\0\0", 8),
                                   std::string("\xff\xff\xff\xff\0\0\0\0", 8), std::string()}) {
        sample.setBytes(".cid", bad);
        touch(".cid", 5);
        EXPECT_EQ(collection.readCruiseIndices(false), (std::vector<std::int32_t>{1, 0}));
    }
}

TEST_F(Inventory, CruiseIndicesOfAReadOnlyCollectionAreMadeAndNotWritten)
{
    put("B", "1");
    put("A", "2");
    collection.readInventory(true, sample.user);
    std::filesystem::remove(collection.path + ".cid");
    collection.writable = false;
    EXPECT_EQ(collection.readCruiseIndices(false), (std::vector<std::int32_t>{1, 0}));
    EXPECT_FALSE(common::fileExists(collection.path + ".cid"));
}

TEST_F(Inventory, AStationThatMatchesNoEntryHasIndex0)
{
    put("B", "1");
    put("A", "2");
    collection.readInventory(true, sample.user);
    collection.cruises.pop_back();
    collection.cruiseCount = 1;
    EXPECT_EQ(collection.readCruiseIndices(true), (std::vector<std::int32_t>{0, 0}));
}

TEST_F(Inventory, CruiseIndicesAreForcedToBeMadeAnew)
{
    put("B", "1");
    put("A", "2");
    collection.readInventory(true, sample.user);
    sample.setBytes(".cid", std::string(8, '\0')); // of the right form
    EXPECT_EQ(collection.readCruiseIndices(false), (std::vector<std::int32_t>{0, 0}));
    EXPECT_EQ(collection.readCruiseIndices(true), (std::vector<std::int32_t>{1, 0}));
    EXPECT_EQ(collection.readCruiseIndices(false), (std::vector<std::int32_t>{1, 0}));
}

TEST_F(Inventory, EmptyCollectionHasAnEmptyTable)
{
    EXPECT_EQ(collection.readInventory(false, sample.user), 0);
    EXPECT_EQ(sample.bytes(".inv"), "INV1.05\n0 cruises 0 stations 0 samples\n");
    EXPECT_TRUE(collection.readCruiseIndices(false).empty());
}

// --- coverage

TEST(Coverage, OneValueAmongAThousandLevelsIsA0AndNoneABlank)
{
    CRUISEINFO entry{};
    entry.valueCounts[0] = 1000;
    entry.valueCounts[1] = 1;
    entry.valueCounts[3] = 1000;
    entry.valueCounts[4] = 500;
    EXPECT_EQ(coverageText(entry, 6), "0 95. ");
}

TEST(Coverage, TicksStandBehindEachFifthVariable)
{
    CRUISEINFO entry{};
    std::fill(std::begin(entry.valueCounts), std::end(entry.valueCounts), 7);
    EXPECT_EQ(coverageText(entry, 21), "9999.99999|99999.99999|9");
    EXPECT_EQ(coverageText(entry, 1), "");
}

TEST(Coverage, LargeCountsDontOverflow)
{
    CRUISEINFO entry{};
    entry.valueCounts[0] = 2147483647;
    entry.valueCounts[1] = 2147483647 / 2;
    EXPECT_EQ(coverageText(entry, 2), "4");
}

TEST(CruiseTable, SumsBeyondAnIntegerStayAtItsLargest)
{
    RCruiseTable table(2);
    STATIONHDR header{};
    LEVELCOUNTS counts{};
    counts[1] = 32767;
    for (int i = 1; i <= 70000; ++i) table.add(i, header, counts);
    const auto entries = table.takeSorted();
    EXPECT_EQ(entries[0].valueCounts[0], 2147483647);
    EXPECT_EQ(samplesOf(entries), 2147483647);
}

TEST(CruiseTable, TheFirstStationIsClippedToTheStartOfTheSpans)
{
    RCruiseTable table(1);
    STATIONHDR header{};
    header.longitude = 400;
    header.latitude = 95;
    header.year = -5;
    header.month = 6;
    header.day = 15;
    table.add(1, header, {});
    const auto entries = table.takeSorted();
    EXPECT_EQ(entries[0].lonMin, 360);
    EXPECT_EQ(entries[0].lonMax, 400);
    EXPECT_EQ(entries[0].latMin, 90);
    EXPECT_EQ(entries[0].latMax, 95);
    EXPECT_EQ(entries[0].dateMin, -49385);
    EXPECT_EQ(entries[0].dateMax, 0);
    INVENTORY read;
    ASSERT_TRUE(parseInventory(formatInventory(entries, 1, 0, 1), read));
    EXPECT_EQ(read.entries[0].dateMin, -49385);
}

} // namespace
} // namespace collection
