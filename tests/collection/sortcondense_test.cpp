// Sorting and condensing: the order, what is kept, what ends it early, and that the source survives that.

#include <cstring>
#include <malloc.h>

#include <gtest/gtest.h>

#include "collection/sidefiles.h"
#include "contents.h"
#include "filesizelimit.h"
#include "memorylimit.h"

namespace {

using collection::RCollection;
using collection::STATIONDATA;
using collection::WriteResult;
using namespace testing_support;

constexpr const char* fewer =
    "Sorting and condensing collection ...: Sorted collection contains fewer stations "
    "than source!\n\nOriginal source collection will be kept.";

using Labels = std::vector<std::string>;

bool sort(RSampleCollection& sample)
{
    sample.collection.readInventory(true, sample.user);
    return sample.collection.sortAndCondense(sample.station, sample.user);
}

void putAll(RSampleCollection& sample, const std::vector<std::pair<std::string, std::string>>& labels)
{
    float seed = 1;
    for (const auto& [cruise, name] : labels) {
        ASSERT_EQ(sample.put(profile(3 + static_cast<int>(seed) % 4, 4, seed), 0, cruise, name),
                  WriteResult::ok);
        seed += 1;
    }
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
}

void expectNoTarget(const RSampleCollection& sample)
{
    for (const std::string& name : filesIn(sample.directory.path())) {
        EXPECT_FALSE(name.starts_with("TRG")) << name;
        EXPECT_FALSE(name.ends_with(".jnl")) << name;
        EXPECT_FALSE(name.ends_with(".tmp")) << name;
    }
}

class SortAndCondense : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(BothMagics, SortAndCondense, testing::Values("NVQ4.0", "NVQsol"));

TEST_P(SortAndCondense, OrdersByCruiseTypeAndLabel)
{
    RMagicCollection sample(GetParam());
    ASSERT_EQ(sample.put(profile(3, 4), 0, "B", "10"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(300, 4), 0, "A", "2"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(3, 4), 0, "A", "9"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(3, 4), 0, "B", "9"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(3, 4), 0, "A", "10"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(300, 4), 0, "A", "1"), WriteResult::ok);
    ASSERT_TRUE(sort(sample));
    EXPECT_EQ(labelsOf(sample.collection), (Labels{"A/9/B", "A/10/B", "A/1/C", "A/2/C", "B/9/B", "B/10/B"}));
}

TEST_P(SortAndCondense, KeepsEveryStationWholeAndTheMagic)
{
    RMagicCollection sample(GetParam());
    putAll(sample, {{"B", "3"}, {"A", "2"}, {"B", "1"}, {"A", "1"}});
    const Labels before = sorted(contentsOf(sample.collection));
    ASSERT_TRUE(sort(sample));
    EXPECT_EQ(sorted(contentsOf(sample.collection)), before);
    EXPECT_EQ(sorted(contentsOnDisk(sample.collection.path)), before);
    EXPECT_EQ(sample.bytes(".hob").substr(0, 6), GetParam());
    EXPECT_EQ(sample.collection.swapBytes, GetParam() != hostMagic);
    EXPECT_EQ(sample.collection.foreignTimeOrder, GetParam() == "NVQsol");
    expectNoTarget(sample);
}

TEST(SortCondense, LeadingNumberCountsAndTiesKeepTheirOrder)
{
    RSampleCollection sample;
    putAll(sample, {{"A", "12A"}, {"A", "B7"}, {"A", "3"}, {"A", "12"}, {"A", "A12"}, {"A", "011"}});
    ASSERT_TRUE(sort(sample));
    EXPECT_EQ(labelsOf(sample.collection),
              (Labels{"A/B7/B", "A/A12/B", "A/3/B", "A/011/B", "A/12A/B", "A/12/B"}));
}

TEST(SortCondense, InterleavedCruisesComeApart)
{
    RSampleCollection sample;
    std::vector<std::pair<std::string, std::string>> labels;
    for (int i = 0; i < 60; ++i) labels.emplace_back("C" + std::to_string(i % 3), std::to_string(100 - i));
    putAll(sample, labels);
    const Labels before = sorted(contentsOf(sample.collection));
    ASSERT_TRUE(sort(sample));
    EXPECT_EQ(sorted(contentsOf(sample.collection)), before);
    const Labels after = labelsOf(sample.collection);
    EXPECT_EQ(after.front(), "C0/43/B");
    EXPECT_EQ(after.back(), "C2/98/B");
    ASSERT_EQ(sample.collection.cruises.size(), 3U);
    EXPECT_EQ(sample.collection.cruises[1].firstNumber, 21);
    EXPECT_EQ(sample.collection.cruises[1].lastNumber, 40);
}

TEST(SortCondense, DeadSpaceIsGone)
{
    RSampleCollection sample;
    putAll(sample, {{"A", "1"}, {"A", "2"}, {"A", "3"}});
    ASSERT_EQ(sample.put(profile(50, 4), 1, "A", "1"), WriteResult::ok); // outgrows its place
    ASSERT_EQ(sample.put(profile(2, 2), 1, "A", "2"), WriteResult::ok);  // leaves a gap
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    const Labels before = sorted(contentsOf(sample.collection));
    ASSERT_TRUE(sort(sample));
    std::size_t cells = 0;
    for (int n = 1; n <= sample.collection.stationCount; ++n) {
        collection::STATIONHDR header;
        ASSERT_TRUE(sample.collection.readStationHeader(n, header, nullptr));
        EXPECT_EQ(header.dataOffset, static_cast<int>(5 * cells));
        cells += static_cast<std::size_t>(header.valueCount);
    }
    EXPECT_EQ(sample.bytes(".dob").size(), 5 * cells);
    EXPECT_EQ(sample.bytes(".hob").size(), 6U + 3 * 88);
    EXPECT_EQ(sorted(contentsOf(sample.collection)), before);
}

TEST(SortCondense, OfASortedCollectionChangesNothing)
{
    RSampleCollection sample;
    putAll(sample, {{"A", "1"}, {"A", "2"}, {"B", "1"}});
    ASSERT_TRUE(sort(sample));
    const std::string hob = sample.bytes(".hob"), dob = sample.bytes(".dob"),
                      description = sample.bytes(".var");
    ASSERT_TRUE(sort(sample));
    EXPECT_EQ(sample.bytes(".hob"), hob);
    EXPECT_EQ(sample.bytes(".dob"), dob);
    EXPECT_EQ(sample.bytes(".var"), description);
}

TEST(SortCondense, LogsAndRebuildsTheInventory)
{
    RSampleCollection sample;
    putAll(sample, {{"B", "1"}, {"A", "1"}});
    ASSERT_TRUE(sort(sample));
    EXPECT_TRUE(sample.bytes(".log").ends_with("user:host SORTCONDENSE\n"));
    ASSERT_EQ(sample.collection.cruises.size(), 2U);
    EXPECT_STREQ(sample.collection.cruises[0].cruise, "A");
    EXPECT_EQ(sample.collection.cruises[0].firstNumber, 1);
    EXPECT_NE(sample.bytes(".inv").find("A\tB\t(1:1)"), std::string::npos);
    EXPECT_NE(sample.bytes(".inv").find("(1:1)\t1\t"), std::string::npos);
}

TEST(SortCondense, StatusTellsWhatEscDoes)
{
    RSampleCollection sample;
    putAll(sample, {{"A", "1"}});
    ASSERT_TRUE(sort(sample));
    const auto& texts = sample.user.statusTexts;
    EXPECT_NE(std::find(texts.begin(), texts.end(), "Sorting and condensing collection ...     ESC aborts"),
              texts.end());
    EXPECT_NE(std::find(texts.begin(), texts.end(), "Opening TRG ..."), texts.end());
    EXPECT_EQ(sample.user.busy, 0);
    EXPECT_TRUE(sample.user.messages.empty());
}

TEST(SortCondense, NeedsTheInventory)
{
    RSampleCollection sample;
    putAll(sample, {{"A", "1"}});
    sample.collection.cruises.clear();
    const auto before = snapshotOf(sample.directory.path());
    EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user));
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
    EXPECT_TRUE(sample.user.messages.empty());
}

TEST(SortCondense, CriteriaDontFilterAndAreBackAfterwards)
{
    RSampleCollection sample;
    putAll(sample, {{"B", "1"}, {"A", "1"}, {"A", "2"}});
    RCollection& collection = sample.collection;
    common::copyText(collection.criteria.cruisePattern, "B*");
    collection.criteria.sampleVariable = 1;
    collection.criteria.sampleMin = 5;
    collection.qualityLimit = 0;
    collection.currentStation = 2;
    const auto criteria = collection.criteria;
    const Labels before = sorted(contentsOf(collection));
    ASSERT_TRUE(sort(sample));
    EXPECT_EQ(sorted(contentsOf(collection)), before);
    EXPECT_EQ(std::memcmp(&collection.criteria, &criteria, sizeof criteria), 0);
    EXPECT_EQ(collection.qualityLimit, 0);
    EXPECT_EQ(collection.currentStation, 2);
}

TEST(SortCondense, DerivedVariablesStayDefinedAndAreNotStored)
{
    RSampleCollection sample;
    putAll(sample, {{"B", "1"}, {"A", "1"}});
    RCollection& collection = sample.collection;
    collection.totalVariableCount = 5;
    collection::setLabel(collection.variables[5], "Sigma [kg/m3]");
    collection.variables[2].rangeMin = -7;
    ASSERT_TRUE(sort(sample));
    EXPECT_EQ(collection.variableCount, 4);
    EXPECT_EQ(collection.totalVariableCount, 5);
    EXPECT_STREQ(collection.variables[5].label, "Sigma [kg/m3]");
    EXPECT_EQ(collection.variables[2].rangeMin, -7);
    EXPECT_NE(sample.bytes(".var").find(" Variables: 4\n"), std::string::npos);
    EXPECT_NE(sample.bytes(".var").find("Collection: sample\n"), std::string::npos);
}

// An abort at any place: after each of them the source is as it was.
TEST(SortCondense, AbortAnywhereLeavesTheSourceAndNoTarget)
{
    RSampleCollection sample;
    putAll(sample, {{"D", "1"}, {"C", "1"}, {"B", "1"}, {"A", "2"}, {"A", "1"}});
    sample.collection.readInventory(true, sample.user);
    const auto before = snapshotOf(sample.directory.path());
    const Labels contents = contentsOf(sample.collection);
    for (int updates = 1; updates <= 5; ++updates) {
        sample.user.abortAfter = updates;
        sample.user.messages.clear();
        EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user)) << updates;
        EXPECT_EQ(sample.user.messages,
                  Labels{"Sorting and condensing collection ...: Really want to abort?"});
        EXPECT_EQ(snapshotOf(sample.directory.path()), before) << updates;
        EXPECT_EQ(contentsOf(sample.collection), contents) << updates;
        EXPECT_FALSE(sample.user.abort);
        EXPECT_FALSE(sample.collection.isChanging());
    }
    sample.user.abortAfter = -1;
    EXPECT_TRUE(sample.collection.sortAndCondense(sample.station, sample.user)); // nothing is in the way
}

TEST(SortCondense, AbortThatIsTakenBackGoesOn)
{
    RSampleCollection sample;
    putAll(sample, {{"B", "1"}, {"A", "1"}});
    sample.user.abortAfter = 6;
    sample.collection.readInventory(true, sample.user);
    sample.user.abortAfter = 1;
    sample.user.answers = {common::Answer::no};
    EXPECT_TRUE(sample.collection.sortAndCondense(sample.station, sample.user));
    EXPECT_EQ(labelsOf(sample.collection).front(), "A/1/B");
}

TEST(SortCondense, InventoryThatMissesStationsKeepsTheSource)
{
    RSampleCollection sample;
    putAll(sample, {{"B", "1"}, {"A", "1"}, {"A", "2"}});
    sample.collection.readInventory(true, sample.user);
    const auto before = snapshotOf(sample.directory.path());
    sample.collection.cruises[0].lastNumber = 2; // A's second station is number 3
    EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user));
    EXPECT_EQ(sample.user.messages, Labels{fewer});
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
}

TEST(SortCondense, DamagedHeaderKeepsTheSource)
{
    RSampleCollection sample;
    putAll(sample, {{"B", "1"}, {"A", "1"}, {"A", "2"}});
    std::string hob = sample.bytes(".hob");
    hob.replace(6 + 88 + 76, 4, std::string(4, '\x7F')); // cells of station 2
    sample.setBytes(".hob", hob);
    ASSERT_EQ(sample.reopen(), collection::OpenFilesResult::ok);
    sample.collection.readInventory(true, sample.user);
    const auto before = snapshotOf(sample.directory.path());
    EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user));
    EXPECT_EQ(sample.user.messages, Labels{fewer});
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
    EXPECT_EQ(labelsOf(sample.collection), (Labels{"B/1/B", "?", "A/2/B"}));
}

TEST(SortCondense, FullDiskLeavesTheSourceAndSaysSo)
{
    RSampleCollection sample;
    for (int i = 0; i < 40; ++i)
        ASSERT_EQ(sample.put(profile(100, 4), 0, "A", std::to_string(40 - i)), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    sample.collection.readInventory(true, sample.user);
    const auto before = snapshotOf(sample.directory.path());
    const Labels contents = contentsOf(sample.collection);
    {
        const RFileSizeLimit limit(20000);
        EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user));
    }
    ASSERT_EQ(sample.user.messages.size(), 1U);
    EXPECT_NE(sample.user.messages[0].find(sample.directory.file("TRG.")), std::string::npos);
    EXPECT_NE(sample.user.messages[0].find("The collection is as it was."), std::string::npos);
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
    EXPECT_EQ(contentsOf(sample.collection), contents);
    EXPECT_TRUE(sort(sample));
}

TEST(SortCondense, RefusesWhenTheDiskHasNoRoom)
{
    RSampleCollection sample;
    putAll(sample, {{"B", "1"}, {"A", "1"}});
    sample.collection.readInventory(true, sample.user);
    const auto before = snapshotOf(sample.directory.path());
    std::int64_t asked = 0;
    sample.collection.spaceCheck = [&asked](std::int64_t bytes) {
        asked = bytes;
        return false;
    };
    EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user));
    EXPECT_EQ(asked, static_cast<std::int64_t>(sample.bytes(".dob").size()) + 2 * 88);
    EXPECT_EQ(
        sample.user.messages,
        Labels{"Sorting and condensing collection ...: Not enough disk space available (required:   0.00 "
               "MB)!\n\nNo sorting and condensing is performed."});
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
}

TEST(SortCondense, WithoutMemoryForTheOrderNothingIsDone)
{
    if (!memoryCanBeLimited) GTEST_SKIP() << "the sanitizer needs all memory";
    constexpr int stations = 400000; // their order takes 6 MB
    RSampleCollection sample(1);
    ASSERT_EQ(sample.put({{1}}), WriteResult::ok);
    const std::string record = sample.bytes(".hob").substr(6);
    sample.collection.stationCount = stations;
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    sample.collection.closeStationFiles();
    {
        const common::FilePtr hob = common::openFile(sample.collection.path + ".hob", "ab");
        for (int n = 2; n <= stations; ++n)
            ASSERT_EQ(std::fwrite(record.data(), record.size(), 1, hob.get()), 1U);
    }
    ASSERT_EQ(sample.collection.openStationFiles(sample.collection.path, sample.user),
              collection::OpenFilesResult::ok);
    ASSERT_EQ(sample.collection.readInventory(true, sample.user), 1);
    const Labels before = filesIn(sample.directory.path());
    ::malloc_trim(0);
    {
        const RMemoryLimit limit(2 << 20);
        EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user));
    }
    EXPECT_EQ(sample.user.messages,
              Labels{"Sorting and condensing collection ...: Sort/Condense will be aborted "
                     "due to allocation problems."});
    EXPECT_EQ(filesIn(sample.directory.path()), before);
    EXPECT_EQ(sample.collection.stationCount, stations);
}

TEST(SortCondense, FilesUnderTheTargetsNameAreSomebodyElses)
{
    for (const std::string suffix : {".var", ".hob", ".dob", ".cfl"}) {
        RSampleCollection sample;
        putAll(sample, {{"B", "1"}, {"A", "1"}});
        sample.collection.readInventory(true, sample.user);
        ASSERT_TRUE(common::writeFile(sample.directory.file("TRG" + suffix), "theirs"));
        const auto before = snapshotOf(sample.directory.path());
        EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user));
        ASSERT_EQ(sample.user.messages.size(), 1U);
        EXPECT_NE(sample.user.messages[0].find(sample.directory.file("TRG" + suffix) + " exists already"),
                  std::string::npos);
        EXPECT_EQ(snapshotOf(sample.directory.path()), before);
    }
}

TEST(SortCondense, CollectionOfTheTargetsNameRefuses)
{
    RSampleCollection sample(4, "TRG");
    putAll(sample, {{"B", "1"}, {"A", "1"}});
    sample.collection.readInventory(true, sample.user);
    const auto before = snapshotOf(sample.directory.path());
    EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user));
    EXPECT_EQ(sample.user.messages.size(), 1U);
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
}

TEST(SortCondense, WriteProtectedCollectionIsRefused)
{
    RSampleCollection sample;
    putAll(sample, {{"B", "1"}, {"A", "1"}});
    sample.collection.readInventory(true, sample.user);
    sample.collection.writable = false;
    const auto before = snapshotOf(sample.directory.path());
    EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user));
    EXPECT_EQ(sample.user.messages.size(), 1U);
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
}

TEST(SortCondense, EmptyCollectionBecomesEmptyFiles)
{
    for (const std::string& magic : {std::string("NVQ4.0"), std::string("NVQsol")}) {
        RMagicCollection sample(magic);
        ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
        EXPECT_TRUE(sample.collection.sortAndCondense(sample.station, sample.user));
        EXPECT_EQ(sample.bytes(".hob"), magic);
        EXPECT_EQ(sample.bytes(".dob"), "");
        EXPECT_TRUE(sample.collection.isOpen);
        ASSERT_EQ(sample.put(profile(3, 4)), WriteResult::ok);
        EXPECT_EQ(sample.bytes(".hob").substr(0, 6), magic);
    }
}

TEST(SortCondense, OneVariable)
{
    RSampleCollection sample(1);
    ASSERT_EQ(sample.put(profile(3, 1), 0, "A", "2"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(4, 1), 0, "A", "1"), WriteResult::ok);
    ASSERT_TRUE(sort(sample));
    EXPECT_EQ(labelsOf(sample.collection), (Labels{"A/1/B", "A/2/B"}));
}

TEST(SortCondense, WithoutVariablesNothingIsThereToSort)
{
    RSampleCollection sample(0);
    EXPECT_TRUE(sort(sample));
    EXPECT_EQ(sample.collection.stationCount, 0);
}

TEST(SortCondense, LargestStations)
{
    RSampleCollection sample;
    ASSERT_EQ(sample.put(profile(25000, 4), 0, "B", "1"), WriteResult::ok); // as many cells as fit
    ASSERT_EQ(sample.put(profile(32767, 3), 0, "A", "1"), WriteResult::ok); // as many levels
    const Labels before = sorted(contentsOf(sample.collection));
    ASSERT_TRUE(sort(sample));
    EXPECT_EQ(labelsOf(sample.collection), (Labels{"A/1/C", "B/1/C"}));
    EXPECT_EQ(sorted(contentsOf(sample.collection)), before);
}

TEST(SortCondense, StationInMemory)
{
    RSampleCollection sample;
    putAll(sample, {{"B", "1"}, {"A", "1"}, {"C", "1"}});
    sample.collection.readInventory(true, sample.user);
    ASSERT_EQ(sample.collection.loadStation(3, sample.station, true), collection::LoadResult::ok);
    sample.user.abortAfter = 1;
    EXPECT_FALSE(sample.collection.sortAndCondense(sample.station, sample.user));
    EXPECT_EQ(sample.station.number, 3); // as before
    EXPECT_STREQ(sample.station.header.cruise, "C");
    EXPECT_TRUE(sample.collection.sortAndCondense(sample.station, sample.user));
    EXPECT_EQ(sample.station.number, 0); // numbers have changed
}

TEST(SortCondense, StationsCanBeStoredAfterwards)
{
    RSampleCollection sample;
    putAll(sample, {{"B", "1"}, {"A", "1"}});
    ASSERT_TRUE(sort(sample));
    ASSERT_EQ(sample.put(profile(9, 4), 0, "C", "1"), WriteResult::ok);
    ASSERT_EQ(sample.reopen(), collection::OpenFilesResult::ok);
    EXPECT_EQ(labelsOf(sample.collection), (Labels{"A/1/B", "B/1/B", "C/1/B"}));
}

} // namespace
