// Changing the variables of a collection.

#include <cstring>

#include <gtest/gtest.h>

#include "collection/variablesets.h"
#include "contents.h"
#include "filesizelimit.h"

namespace {

using collection::VARINFO;
using collection::WriteResult;
using namespace testing_support;

using Labels = std::vector<std::string>;
using Columns = std::vector<std::vector<float>>;

constexpr const char* fewer =
    "Changing collection variable set ...: Sorted collection contains fewer stations "
    "than source!\n\nOriginal source collection will be kept.";

// A list of new variables from pairs of label and origin.
std::vector<VARINFO> listOf(const std::vector<std::pair<std::string, int>>& entries)
{
    std::vector<VARINFO> list = {collection::emptyVariable(0)};
    for (const auto& [label, origin] : entries) {
        list.push_back(collection::emptyVariable(static_cast<int>(list.size())));
        collection::setLabel(list.back(), label);
        list.back().assocSource = origin;
        list.back().width = 9;
        list.back().decimals = 3;
    }
    return list;
}

bool change(RSampleCollection& sample, const std::vector<std::pair<std::string, int>>& entries)
{
    return sample.collection.changeVariableSet(sample.station, listOf(entries), sample.user);
}

const Columns cast = {{0, 10, 20}, {15, 14, missing}, {}, {3, 1, 2}};

void putCasts(RSampleCollection& sample)
{
    ASSERT_EQ(sample.put(cast, 0, "B", "7"), WriteResult::ok);
    sample.station.flags[4] = 4;
    ASSERT_EQ(sample.collection.writeStation(1, sample.station, false), WriteResult::ok);
    ASSERT_EQ(sample.put({{5, 6}, {1, 2}, {34, 35}, {7, 6}}, 0, "A", "1"), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
}

class ChangeVariables : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(BothMagics, ChangeVariables, testing::Values("NVQ4.0", "NVQsol"));

TEST_P(ChangeVariables, DropsAddsAndReordersWithFlags)
{
    RMagicCollection sample(GetParam());
    putCasts(sample);
    ASSERT_TRUE(change(sample, {{"Depth [m]", 1}, {"Oxygen [ml/l]", 4}, {"New [1]", 0}, {"Temp [C]", 2}}));
    const Labels wanted = {
        "B 7 B 10 20 0 20 7/15/1995 12:34 | 1: 0(0) 10(0) 20(0) | 2: 3(0) 1(0) 2(0) | 3: | 4: 15(0) 14(4) "
        "-1e+10(0)",
        "A 1 B 10 20 0 6 7/15/1995 12:34 | 1: 5(0) 6(0) | 2: 7(0) 6(0) | 3: | 4: 1(0) 2(0)"};
    EXPECT_EQ(contentsOf(sample.collection), wanted); // in the order of the numbers
    EXPECT_EQ(contentsOnDisk(sample.collection.path), wanted);
    EXPECT_EQ(sample.bytes(".hob").substr(0, 6), GetParam());
}

TEST(ChangeVariableSet, StateIsThatOfTheNewFiles)
{
    RSampleCollection sample;
    putCasts(sample);
    collection::RCollection& collection = sample.collection;
    collection.totalVariableCount = 5; // a derived one
    ASSERT_TRUE(change(sample, {{"Depth [m]", 1}, {"Oxygen [ml/l]", 4}}));
    EXPECT_EQ(collection.variableCount, 2);
    EXPECT_EQ(collection.totalVariableCount, 2);
    EXPECT_EQ(collection.headerRecordSize, 84);
    EXPECT_EQ(collection.stationCount, 2);
    EXPECT_STREQ(collection.variables[2].label, "Oxygen [ml/l]");
    EXPECT_EQ(collection.variables[2].width, 9);
    EXPECT_EQ(collection.variables[2].decimals, 3);
    EXPECT_EQ(collection.variables[2].assocSource, 0);
    EXPECT_STREQ(collection.variables[3].label, "");
    EXPECT_EQ(collection.name, "sample");
    ASSERT_EQ(collection.cruises.size(), 2U);
    EXPECT_EQ(collection.cruises[1].valueCounts[1], 3);
    EXPECT_TRUE(sample.bytes(".log").ends_with("user:host CHANGEVARSET\n"));
    EXPECT_NE(
        sample.bytes(".var").find("Collection: sample\n      Type: HYD\n     Nstat: 2\n Variables: 2\n"),
        std::string::npos);
    EXPECT_EQ(filesIn(sample.directory.path()),
              (Labels{"sample.cid", "sample.dob", "sample.hob", "sample.inv", "sample.log", "sample.var"}));
}

TEST(ChangeVariableSet, LevelsAreSortedByTheNewFirstVariable)
{
    RSampleCollection sample;
    putCasts(sample);
    ASSERT_TRUE(change(sample, {{"Oxygen [ml/l]", 4}, {"Depth [m]", 1}}));
    EXPECT_EQ(contentsOf(sample.collection),
              (Labels{"B 7 B 10 20 0 3 7/15/1995 12:34 | 1: 1(0) 2(0) 3(0) | 2: 10(0) 20(0) 0(0)",
                      "A 1 B 10 20 0 7 7/15/1995 12:34 | 1: 6(0) 7(0) | 2: 6(0) 5(0)"}));
}

TEST(ChangeVariableSet, StationWithoutTheNewFirstVariableKeepsTheSource)
{
    RSampleCollection sample;
    putCasts(sample);
    const auto before = snapshotOf(sample.directory.path());
    const Labels contents = contentsOf(sample.collection);
    EXPECT_FALSE(change(sample, {{"Salinity [psu]", 3}, {"Depth [m]", 1}})); // B/7 has none
    EXPECT_EQ(sample.user.messages, Labels{fewer});
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
    EXPECT_EQ(contentsOf(sample.collection), contents);
    EXPECT_EQ(sample.collection.variableCount, 4);
}

TEST(ChangeVariableSet, NewFirstVariableKeepsTheSource)
{
    RSampleCollection sample;
    putCasts(sample);
    const auto before = snapshotOf(sample.directory.path());
    EXPECT_FALSE(change(sample, {{"New [1]", 0}, {"Depth [m]", 1}}));
    EXPECT_EQ(sample.user.messages, Labels{fewer});
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
}

TEST(ChangeVariableSet, OneOldVariableCanServeTwice)
{
    RSampleCollection sample;
    putCasts(sample);
    ASSERT_TRUE(change(sample, {{"Depth [m]", 1}, {"O2 [ml/l]", 4}, {"O2 copy [ml/l]", 4}}));
    EXPECT_TRUE(contentsOf(sample.collection)[0].ends_with("| 2: 3(0) 1(0) 2(0) | 3: 3(0) 1(0) 2(0)"));
}

TEST(ChangeVariableSet, StationThatGrowsTooLargeKeepsTheSource)
{
    RSampleCollection sample;
    ASSERT_EQ(sample.put(profile(32767, 3)), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    const auto before = snapshotOf(sample.directory.path());
    EXPECT_FALSE(change(sample, {{"a", 1}, {"b", 2}, {"c", 3}, {"d", 3}}));
    EXPECT_EQ(sample.user.messages, Labels{fewer});
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
}

TEST(ChangeVariableSet, OneVariableIsEnough)
{
    RSampleCollection sample(2);
    ASSERT_EQ(sample.put({{1, 2}, {3, 4}}), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    ASSERT_TRUE(change(sample, {{"Depth [m]", 1}}));
    EXPECT_EQ(sample.collection.headerRecordSize, 82);
    EXPECT_EQ(sample.bytes(".dob").size(), 10U);
}

TEST(ChangeVariableSet, FromNoVariablesToSome)
{
    RSampleCollection sample(0);
    ASSERT_TRUE(change(sample, {{"Depth [m]", 0}, {"T [C]", 0}}));
    EXPECT_EQ(sample.collection.variableCount, 2);
    EXPECT_EQ(sample.put({{1, 2}, {3, 4}}), WriteResult::ok);
}

TEST(ChangeVariableSet, FiftyAreAcceptedAndFiftyOneRefused)
{
    RSampleCollection sample;
    putCasts(sample);
    std::vector<std::pair<std::string, int>> entries = {{"Depth [m]", 1}};
    while (entries.size() < 50) entries.emplace_back("V" + std::to_string(entries.size()), 0);
    EXPECT_TRUE(change(sample, entries));
    EXPECT_EQ(sample.collection.headerRecordSize, 180);
    entries.emplace_back("one too many", 0);
    const auto before = snapshotOf(sample.directory.path());
    EXPECT_FALSE(change(sample, entries));
    EXPECT_EQ(sample.user.messages,
              Labels{"Changing collection variable set ...: Maximum number of variables reached!"});
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
}

TEST(ChangeVariableSet, EmptyListIsRefused)
{
    RSampleCollection sample;
    EXPECT_FALSE(change(sample, {}));
    EXPECT_FALSE(sample.collection.changeVariableSet(sample.station, {}, sample.user));
    EXPECT_EQ(sample.user.messages,
              Labels(2, "Changing collection variable set ...: A collection needs at least one variable."));
}

TEST(ChangeVariableSet, OriginThatDoesntExistIsRefused)
{
    RSampleCollection sample;
    EXPECT_FALSE(change(sample, {{"Depth [m]", 1}, {"x", 5}}));
    EXPECT_EQ(sample.user.messages, Labels{"Changing collection variable set ...: Variable 2 takes its data "
                                           "from variable 5, but the collection has 4 variables."});
}

TEST(ChangeVariableSet, KeyVariablesFollow)
{
    RSampleCollection sample;
    putCasts(sample);
    for (const auto& [key, number] : {std::pair{"Depth [m]", 1}, {"Salinity [psu]", 3}, {"Oxygen", 4}})
        ASSERT_TRUE(sample.collection.setVariableId(key, number));
    ASSERT_TRUE(change(sample, {{"Depth [m]", 1}, {"Oxygen [ml/l]", 4}, {"Temp [C]", 2}}));
    EXPECT_EQ(sample.bytes(".idv"), "Depth [m]=1\nOxygen=2\n");
    EXPECT_EQ(sample.collection.getVariableId("Salinity [psu]"), 0);
}

TEST(ChangeVariableSet, KeyVariablesThatAreAllGoneLeaveNoFile)
{
    RSampleCollection sample;
    putCasts(sample);
    ASSERT_TRUE(sample.collection.setVariableId("Salinity [psu]", 3));
    ASSERT_TRUE(change(sample, {{"Depth [m]", 1}}));
    EXPECT_EQ(sample.bytes(".idv"), "missing");
}

TEST(ChangeVariableSet, CriteriaFollowTheirVariables)
{
    RSampleCollection sample;
    putCasts(sample);
    auto& criteria = sample.collection.criteria;
    criteria.sampleVariable = 4;
    criteria.requiredCount = 2;
    criteria.requiredList[0] = 2;
    criteria.requiredList[1] = 4;
    criteria.requiredMask[1] = criteria.requiredMask[3] = '+';
    ASSERT_TRUE(change(sample, {{"Depth [m]", 1}, {"Oxygen [ml/l]", 4}}));
    EXPECT_EQ(criteria.sampleVariable, 2);
    EXPECT_EQ(criteria.requiredCount, 1);
    EXPECT_EQ(criteria.requiredList[0], 2);
    EXPECT_EQ(criteria.requiredList[1], 0);
    EXPECT_EQ(std::string(criteria.requiredMask, 5), " +   ");
    ASSERT_TRUE(change(sample, {{"Depth [m]", 1}}));
    EXPECT_EQ(criteria.sampleVariable, 0);
    EXPECT_EQ(std::memcmp(criteria.requiredList, collection::defaultCriteria().requiredList,
                          sizeof criteria.requiredList),
              0);
}

TEST(ChangeVariableSet, AbortAnywhereLeavesTheSource)
{
    RSampleCollection sample;
    for (int i = 0; i < 4; ++i) ASSERT_EQ(sample.put(cast, 0, "B", std::to_string(i)), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    ASSERT_TRUE(sample.collection.setVariableId("Oxygen", 4));
    const auto before = snapshotOf(sample.directory.path());
    for (int updates = 1; updates <= 4; ++updates) {
        sample.user.abortAfter = updates;
        sample.user.messages.clear();
        EXPECT_FALSE(change(sample, {{"Depth [m]", 1}, {"Oxygen [ml/l]", 4}}));
        EXPECT_EQ(sample.user.messages,
                  Labels{"Changing collection variable set ...: Really want to abort?"});
        EXPECT_EQ(snapshotOf(sample.directory.path()), before);
        EXPECT_EQ(sample.collection.variableCount, 4);
        EXPECT_STREQ(sample.collection.variables[2].label, "Temperature [~$m~#C]");
    }
}

TEST(ChangeVariableSet, FullDiskLeavesTheSourceAndSaysSo)
{
    RSampleCollection sample;
    for (int i = 0; i < 40; ++i)
        ASSERT_EQ(sample.put(profile(100, 4), 0, "A", std::to_string(i)), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    const auto before = snapshotOf(sample.directory.path());
    {
        const RFileSizeLimit limit(20000);
        EXPECT_FALSE(change(sample, {{"Depth [m]", 1}, {"Oxygen [ml/l]", 4}}));
    }
    ASSERT_EQ(sample.user.messages.size(), 1U);
    EXPECT_NE(sample.user.messages[0].find(sample.directory.file("TRG.")), std::string::npos);
    EXPECT_EQ(snapshotOf(sample.directory.path()), before);
}

TEST(ChangeVariableSet, EmptyCollectionTakesAnotherSet)
{
    RMagicCollection sample(otherMagic);
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    const std::vector<VARINFO> set = collection::variablesOfSet(collection::setWhpBottle);
    ASSERT_TRUE(sample.collection.changeVariableSet(sample.station, set, sample.user));
    EXPECT_EQ(sample.collection.variableCount, 39);
    EXPECT_EQ(sample.bytes(".hob"), otherMagic);
}

} // namespace
