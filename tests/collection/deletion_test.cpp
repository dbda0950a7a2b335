// Taking stations out of a collection.

#include <gtest/gtest.h>

#include "contents.h"
#include "filesizelimit.h"

namespace {

using collection::RCollection;
using collection::WriteResult;
using namespace testing_support;

using Labels = std::vector<std::string>;

void putStations(RSampleCollection& sample, int count)
{
    for (int n = 1; n <= count; ++n) {
        ASSERT_EQ(sample.put(profile(2 + n % 5, 4, static_cast<float>(n)), 0, "A", std::to_string(n)),
                  WriteResult::ok);
    }
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
}

// Makes the list of selected stations.
void select(RSampleCollection& sample, const std::vector<std::int32_t>& numbers)
{
    ASSERT_TRUE(sample.collection.openTemporaryFiles());
    for (const std::int32_t number : numbers) {
        const std::int32_t record[4] = {number, 0, 0, 0};
        ASSERT_EQ(std::fwrite(record, sizeof record, 1, sample.collection.valFile.get()), 1U);
    }
    ASSERT_EQ(std::fflush(sample.collection.valFile.get()), 0);
    sample.collection.selectedStationCount = static_cast<int>(numbers.size());
}

Labels without(Labels lines, const std::vector<int>& numbers)
{
    for (auto number = numbers.rbegin(); number != numbers.rend(); ++number)
        lines.erase(lines.begin() + *number - 1);
    return lines;
}

Labels ownFiles(const RSampleCollection& sample)
{
    Labels names;
    for (const std::string& name : filesIn(sample.directory.path())) {
        if (!name.starts_with("NVQ_")) names.push_back(name);
    }
    return names;
}

class Deletion : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(BothMagics, Deletion, testing::Values("NVQ4.0", "NVQsol"));

TEST_P(Deletion, OfSelectedStations)
{
    RMagicCollection sample(GetParam());
    putStations(sample, 10);
    select(sample, {1, 4, 10});
    const Labels kept = without(contentsOf(sample.collection), {1, 4, 10});
    const std::string data = sample.bytes(".dob");
    EXPECT_EQ(sample.collection.deleteSelectedStations(sample.user), 3);
    EXPECT_EQ(sample.user.messages, Labels{"Confirm Deletion ...: Really want to delete 3 stations?"});
    EXPECT_EQ(contentsOf(sample.collection), kept);
    EXPECT_EQ(contentsOnDisk(sample.collection.path), kept);
    EXPECT_EQ(sample.bytes(".dob"), data); // dead space stays
    EXPECT_EQ(sample.bytes(".hob").substr(0, 6), GetParam());
    EXPECT_EQ(sample.collection.stationCount, 7);
    ASSERT_EQ(sample.collection.cruises.size(), 1U);
    EXPECT_EQ(sample.collection.cruises[0].stationCount, 7);
    EXPECT_TRUE(sample.bytes(".log").ends_with("user:host DELETE 3 Stations\n"));
    EXPECT_EQ(ownFiles(sample),
              (Labels{"sample.cid", "sample.dob", "sample.hob", "sample.inv", "sample.log", "sample.var"}));
}

TEST_P(Deletion, OfAllStationsAndCondensing)
{
    RMagicCollection sample(GetParam());
    putStations(sample, 3);
    select(sample, {1, 2, 3});
    EXPECT_EQ(sample.collection.deleteSelectedStations(sample.user), 3);
    EXPECT_EQ(sample.collection.stationCount, 0);
    EXPECT_TRUE(sample.collection.sortAndCondense(sample.station, sample.user));
    EXPECT_EQ(sample.bytes(".dob"), "");
    EXPECT_EQ(sample.bytes(".hob"), GetParam());
    EXPECT_NE(sample.bytes(".var").find("     Nstat: 0\n"), std::string::npos);
    EXPECT_TRUE(contentsOnDisk(sample.collection.path, true).empty());
    ASSERT_EQ(sample.put(profile(3, 4)), WriteResult::ok);
}

TEST(DeleteStations, FilesOfOthersInTheWayAreToldAndStay)
{
    for (const char* const suffix : {".ho", ".va"}) {
        RSampleCollection sample(2);
        putStations(sample, 3);
        sample.setBytes(suffix, "mine");
        const std::string before = sample.bytes(".hob") + sample.bytes(".var");
        EXPECT_EQ(sample.collection.deleteStation(2, sample.user), 0);
        ASSERT_FALSE(sample.user.messages.empty());
        EXPECT_NE(sample.user.messages.back().find(std::string(suffix) + " is in the way"),
                  std::string::npos);
        EXPECT_EQ(sample.bytes(suffix), "mine");
        EXPECT_EQ(sample.bytes(".hob") + sample.bytes(".var"), before);
        EXPECT_EQ(sample.collection.stationCount, 3);
    }
}

TEST(DeleteStations, NothingSelectedAsksNothing)
{
    RSampleCollection sample;
    putStations(sample, 3);
    select(sample, {});
    EXPECT_EQ(sample.collection.deleteSelectedStations(sample.user), 0);
    EXPECT_TRUE(sample.user.messages.empty());
}

TEST(DeleteStations, ListedTwiceOrBeyondTheEndCountsOnce)
{
    RSampleCollection sample;
    putStations(sample, 3);
    select(sample, {2, 2, 0, -1, 4, 1000000});
    EXPECT_EQ(sample.collection.deleteSelectedStations(sample.user), 1);
    EXPECT_EQ(labelsOf(sample.collection), (Labels{"A/1/B", "A/3/B"}));
}

TEST(DeleteStations, AnswerNoKeepsThem)
{
    RSampleCollection sample;
    putStations(sample, 3);
    select(sample, {2});
    const auto before = snapshotOf(sample.directory.path());
    for (const common::Answer answer : {common::Answer::no, common::Answer::cancel}) {
        sample.user.answers = {answer};
        EXPECT_EQ(sample.collection.deleteSelectedStations(sample.user), 0);
        sample.user.answers = {answer};
        EXPECT_EQ(sample.collection.deleteStation(1, sample.user), 0);
    }
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
}

TEST(DeleteStations, EmptyOnes)
{
    RSampleCollection sample;
    ASSERT_EQ(sample.put(profile(3, 1), 0, "A", "1"), WriteResult::ok); // depths alone
    ASSERT_EQ(sample.put(profile(3, 4), 0, "A", "2"), WriteResult::ok);
    ASSERT_EQ(sample.put({{1, 2}, {}, {}, {missing, missing}}, 0, "A", "3"), WriteResult::ok);
    ASSERT_EQ(sample.put({{1, 2}, {}, {}, {missing, 0}}, 0, "A", "4"), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    EXPECT_EQ(sample.collection.deleteEmptyStations(sample.user), 2);
    EXPECT_EQ(sample.user.messages, Labels{"Confirm Deletion ...: Really want to delete 2 empty stations?"});
    EXPECT_EQ(labelsOf(sample.collection), (Labels{"A/2/B", "A/4/B"}));
    EXPECT_TRUE(sample.bytes(".log").ends_with("user:host DELETE 2 Empty Stations\n"));
    sample.user.messages.clear();
    EXPECT_EQ(sample.collection.deleteEmptyStations(sample.user), 0);
    EXPECT_EQ(sample.user.messages, Labels{"Confirm Deletion ...: No empty station found."});
}

TEST(DeleteStations, WithOneVariableEveryStationIsEmpty)
{
    RSampleCollection sample(1);
    ASSERT_EQ(sample.put(profile(3, 1), 0, "A", "1"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(3, 1), 0, "A", "2"), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    EXPECT_EQ(sample.collection.deleteEmptyStations(sample.user), 2);
    EXPECT_EQ(sample.collection.stationCount, 0);
}

TEST(DeleteStations, WithTwoVariablesTheSecondDecides)
{
    RSampleCollection sample(2);
    ASSERT_EQ(sample.put(profile(3, 1), 0, "A", "1"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(3, 2), 0, "A", "2"), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    EXPECT_EQ(sample.collection.deleteEmptyStations(sample.user), 1);
    EXPECT_EQ(labelsOf(sample.collection), Labels{"A/2/B"});
}

TEST(DeleteStations, WithoutVariablesThereAreNone)
{
    RSampleCollection sample(0);
    EXPECT_EQ(sample.collection.deleteEmptyStations(sample.user), 0);
    EXPECT_EQ(sample.user.messages, Labels{"Confirm Deletion ...: No empty station found."});
}

TEST(DeleteStations, SingleOne)
{
    RSampleCollection sample;
    putStations(sample, 3);
    EXPECT_EQ(sample.collection.deleteStation(2, sample.user), 1);
    EXPECT_EQ(sample.user.messages, Labels{"Confirm Deletion ...: Really want to delete current station?"});
    EXPECT_EQ(labelsOf(sample.collection), (Labels{"A/1/B", "A/3/B"}));
    EXPECT_TRUE(sample.bytes(".log").ends_with("user:host DELETE_SINGLE A 2 B\n"));
    EXPECT_NE(sample.bytes(".var").find("     Nstat: 2\n"), std::string::npos);
    EXPECT_EQ(sample.collection.deleteStation(3, sample.user), 0);
    EXPECT_EQ(sample.collection.deleteStation(0, sample.user), 0);
}

TEST(DeleteStations, DamagedOneCanGo)
{
    RSampleCollection sample;
    putStations(sample, 3);
    std::string hob = sample.bytes(".hob");
    hob.replace(6 + 88 + 76, 4, std::string(4, '\x7F'));
    sample.setBytes(".hob", hob);
    ASSERT_EQ(sample.reopen(), collection::OpenFilesResult::ok);
    EXPECT_EQ(sample.collection.deleteEmptyStations(sample.user), 0); // it says nothing about its data
    EXPECT_EQ(sample.collection.deleteStation(2, sample.user), 1);
    EXPECT_EQ(labelsOf(sample.collection), (Labels{"A/1/B", "A/3/B"}));
    EXPECT_TRUE(sample.bytes(".log").ends_with("DELETE_SINGLE A 2 B\n"));
}

TEST(DeleteStations, OtherDamagedOnesStayAsTheyAre)
{
    RSampleCollection sample;
    putStations(sample, 3);
    std::string hob = sample.bytes(".hob");
    hob.replace(6 + 88 + 76, 4, std::string(4, '\x7F'));
    sample.setBytes(".hob", hob);
    ASSERT_EQ(sample.reopen(), collection::OpenFilesResult::ok);
    EXPECT_EQ(sample.collection.deleteStation(1, sample.user), 1);
    EXPECT_EQ(sample.bytes(".hob"), hob.substr(0, 6) + hob.substr(6 + 88));
}

TEST(DeleteStations, EndOfTheDataIsUsedAgain)
{
    RSampleCollection sample;
    putStations(sample, 3);
    const std::size_t size = sample.bytes(".dob").size();
    EXPECT_EQ(sample.collection.deleteStation(3, sample.user), 1);
    ASSERT_EQ(sample.put(profile(2, 4), 0, "A", "9"), WriteResult::ok);
    collection::STATIONHDR second, third;
    ASSERT_TRUE(sample.collection.readStationHeader(2, second, nullptr));
    ASSERT_TRUE(sample.collection.readStationHeader(3, third, nullptr));
    EXPECT_EQ(third.dataOffset, second.dataOffset + 5 * second.valueCount);
    EXPECT_LE(sample.bytes(".dob").size(), size);
}

TEST(DeleteStations, ManyBlocksOfRecords)
{
    RSampleCollection sample(1);
    for (int n = 1; n <= 9000; ++n)
        ASSERT_EQ(sample.put({{static_cast<float>(n)}}, 0, "A", std::to_string(n)), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    std::vector<std::int32_t> even;
    for (int n = 2; n <= 9000; n += 2) even.push_back(n);
    select(sample, even);
    EXPECT_EQ(sample.collection.deleteSelectedStations(sample.user), 4500);
    const Labels labels = labelsOf(sample.collection);
    ASSERT_EQ(labels.size(), 4500U);
    for (std::size_t i = 0; i < labels.size(); ++i)
        ASSERT_EQ(labels[i], "A/" + std::to_string(2 * i + 1) + "/B");
}

TEST(DeleteStations, AbortLeavesEverything)
{
    RSampleCollection sample;
    putStations(sample, 40);
    sample.collection.readInventory(true, sample.user);
    const auto before = snapshotOf(sample.directory.path());
    sample.user.abortAfter = 1;
    EXPECT_EQ(sample.collection.deleteStation(7, sample.user), 0);
    EXPECT_EQ(sample.user.messages.back(), "Deleting stations ...: Really want to abort?");
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
    EXPECT_EQ(sample.collection.stationCount, 40);
}

TEST(DeleteStations, FullDiskLeavesEverythingAndSaysSo)
{
    RSampleCollection sample;
    putStations(sample, 100);
    const auto before = snapshotOf(sample.directory.path());
    {
        const RFileSizeLimit limit(4000);
        EXPECT_EQ(sample.collection.deleteStation(7, sample.user), 0);
    }
    ASSERT_EQ(sample.user.messages.size(), 2U);
    EXPECT_EQ(sample.user.messages[1], "Deleting stations ...: " + sample.directory.file("sample.ho") +
                                           " can't be written. The disk may be full.\n\nThe collection is as "
                                           "it was.");
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
    EXPECT_EQ(sample.collection.stationCount, 100);
    EXPECT_EQ(sample.collection.deleteStation(7, sample.user), 1);
}

TEST(DeleteStations, FolderInThePlaceOfTheNewTable)
{
    RSampleCollection sample;
    putStations(sample, 3);
    std::filesystem::create_directory(sample.directory.file("sample.ho"));
    const Labels before = contentsOf(sample.collection);
    EXPECT_EQ(sample.collection.deleteStation(1, sample.user), 0);
    EXPECT_EQ(sample.user.messages.size(), 2U);
    EXPECT_EQ(contentsOf(sample.collection), before);
    EXPECT_EQ(contentsOnDisk(sample.collection.path), before);
}

TEST(DeleteStations, WriteProtectedCollection)
{
    RSampleCollection sample;
    putStations(sample, 3);
    sample.collection.writable = false;
    EXPECT_EQ(sample.collection.deleteStation(1, sample.user), 0);
    EXPECT_EQ(sample.collection.stationCount, 3);
    EXPECT_EQ(sample.user.messages.size(), 2U);
}

TEST(DeleteStations, CriteriaAndDerivedVariablesStay)
{
    RSampleCollection sample;
    putStations(sample, 3);
    RCollection& collection = sample.collection;
    collection.totalVariableCount = 5;
    collection.criteria.yearMin = 1990;
    collection.qualityLimit = 1;
    EXPECT_EQ(collection.deleteStation(1, sample.user), 1);
    EXPECT_EQ(collection.totalVariableCount, 5);
    EXPECT_EQ(collection.criteria.yearMin, 1990);
    EXPECT_EQ(collection.qualityLimit, 1);
}

} // namespace
