#include <cstring>
#include <filesystem>

#include <gtest/gtest.h>

#include "collection/collectionlock.h"
#include "collection/contents.h"
#include "collection/journal.h"
#include "collection/sidefiles.h"
#include "export/exportcollection.h"
#include "filesizelimit.h"
#include "selection/criteria.h"
#include "selection/selectedlist.h"

namespace {

using namespace testing_support;
using exporting::exportCollection;

// An open collection, its list of selected stations, and what an export makes of it.
class RExport {
public:
    RMagicCollection sample;
    std::vector<int> variables;

    explicit RExport(const std::string& magic = hostMagic, int count = 3) : sample(magic, count)
    {
        sample.collection.makeTempId();
        EXPECT_TRUE(sample.collection.openTemporaryFiles());
    }
    ~RExport() { sample.collection.closeTemporaryFiles(); }

    [[nodiscard]] std::string target() const { return sample.directory.file("made"); }
    void select() { selection::buildSelectedList(sample.collection, {}, "test", sample.user); }

    bool run() { return runTo(target()); }
    bool runTo(const std::string& path)
    {
        select();
        sample.user.messages.clear();
        sample.user.notes.clear();
        sample.user.statusTexts.clear();
        return exportCollection(sample.collection, sample.station, path, variables, sample.user);
    }
    [[nodiscard]] std::vector<std::string> made() const { return contentsOnDisk(target()); }
    // Files of the folder that aren't the open collection's.
    [[nodiscard]] std::vector<std::string> otherFiles() const
    {
        std::vector<std::string> files = filesIn(sample.directory.path());
        std::erase_if(files,
                      [](const std::string& name) { return name.starts_with("sample.") || name[0] == 'N'; });
        return files;
    }
    // Makes a collection of another content at the target.
    void putOld() const
    {
        RSampleCollection other(2, "old");
        ASSERT_EQ(other.put({{1, 2}, {3, 4}}, 0, "OLD", "7"), collection::WriteResult::ok);
        ASSERT_TRUE(other.collection.setVariableId("Depth in Water", 2));
        ASSERT_EQ(other.reopen(), collection::OpenFilesResult::ok);
        other.collection.closeStationFiles();
        for (const char* const suffix : {".hob", ".dob", ".idv", ".log"})
            std::filesystem::copy_file(other.collection.path + suffix, target() + suffix);
        ASSERT_TRUE(
            common::writeFile(target() + ".var", common::replaceAll(other.bytes(".var"), "Collection: old",
                                                                    "Collection: made")));
    }
};

std::string linesOf(const std::string& file)
{
    return common::readFile(file).value_or("no file");
}

TEST(ExportCollection, TheNewCollectionHoldsTheSelectedStationsInTheirOrder)
{
    RExport made;
    for (const char* name : {"1", "2", "3"})
        made.sample.put(profile(5, 3), 0, name == std::string("2") ? "B" : "A", name);
    common::copyText(made.sample.collection.criteria.cruisePattern, "A");
    EXPECT_TRUE(made.run());
    EXPECT_EQ(made.made(), (std::vector<std::string>{stationText(made.sample.collection, 1),
                                                     stationText(made.sample.collection, 3)}));
    EXPECT_EQ(
        made.sample.user.messages,
        std::vector<std::string>{"Exporting data to collection ...: 2 Stations Exported to Collection\n\n" +
                                 made.target() + ".var"});
    EXPECT_EQ(made.sample.user.statusTexts.at(0), "Opening made ...");
    EXPECT_EQ(made.sample.user.statusTexts.at(1), "Exporting data to collection ...     ESC aborts");
    EXPECT_EQ(made.sample.user.busy, 0);
    EXPECT_EQ(made.otherFiles(), (std::vector<std::string>{"made.cid", "made.dob", "made.hob", "made.inv",
                                                           "made.log", "made.var"}));
    EXPECT_FALSE(common::existsAtAll(made.target() + ".lck"));
}

TEST(ExportCollection, KeepsByteOrderTypeTimesAndBottomDepth)
{
    for (const std::string& magic : {hostMagic, otherMagic}) {
        RExport made(magic);
        made.sample.collection.type = "XYZ";
        fillStation(made.sample.station, {{0, 10}, {1, missing}, {3, 4}}, 4);
        label(made.sample.station, "Cruise of 20 letters", "\xC5lesund 12345", "X");
        place(made.sample.station, 359.5f, -89.75f, 1899, 2, 28);
        made.sample.station.header.bottomDepth = 3596.9f;
        made.sample.station.header.lastSampleDepth = 77;
        made.sample.station.header.reserved = 1234;
        ASSERT_EQ(made.sample.collection.writeStation(0, made.sample.station, false),
                  collection::WriteResult::ok);
        ASSERT_TRUE(made.run());
        EXPECT_EQ(linesOf(made.target() + ".hob"), made.sample.bytes(".hob"));
        EXPECT_EQ(linesOf(made.target() + ".dob"), made.sample.bytes(".dob"));
        EXPECT_EQ(linesOf(made.target() + ".hob").substr(0, 6), magic);
        EXPECT_NE(linesOf(made.target() + ".var").find("\n      Type: XYZ\n     Nstat: 1\n"),
                  std::string::npos);
    }
}

TEST(ExportCollection, OnlyTheChosenVariablesComeAlongWithLabelsAndFormats)
{
    RExport made(hostMagic, 4);
    made.sample.collection.variables[4].width = 12;
    made.sample.collection.variables[4].decimals = 4;
    made.sample.put({{0, 10}, {1, 2}, {}, {5, 6}});
    made.sample.put({{0, 20}, {1, 2}, {3, 4}, {}}, 0, "A", "2");
    made.variables = {4, 1, 4, 99, 0}; // the order is the collection's
    ASSERT_TRUE(made.run());
    const std::string description = linesOf(made.target() + ".var");
    EXPECT_NE(description.find(" Variables: 2\n"), std::string::npos) << description;
    EXPECT_NE(description.find(common::format("%-60s12.4\n", "Oxygen [ml/l]")), std::string::npos)
        << description;
    const std::vector<std::string> stations = made.made();
    ASSERT_EQ(stations.size(), 2u);
    EXPECT_TRUE(stations[0].ends_with(" | 1: 0(0) 10(0) | 2: 5(0) 6(0)")) << stations[0];
    EXPECT_TRUE(stations[1].ends_with(" | 1: 0(0) 20(0) | 2:")) << stations[1];
}

TEST(ExportCollection, AStationWithoutAChosenVariableIsLeftOut)
{
    RExport made;
    made.sample.put({{0, 10}, {}, {3, 4}});
    made.sample.put({{0, 10}, {5, 6}, {}}, 0, "A", "2");
    made.variables = {2};
    ASSERT_TRUE(made.run());
    ASSERT_EQ(made.made().size(), 1u);
    EXPECT_TRUE(made.made()[0].ends_with(" | 1: 5(0) 6(0)"));
}

TEST(ExportCollection, AStationThatLacksTheFirstChosenVariableHasItMissing)
{
    RExport made;
    made.sample.put({{0, 10}, {}, {3, 4}});
    made.variables = {2, 3};
    ASSERT_TRUE(made.run());
    ASSERT_EQ(made.made().size(), 1u);
    EXPECT_TRUE(made.made()[0].ends_with(" | 1: -1e+10(1) -1e+10(1) | 2: 3(0) 4(0)")) << made.made()[0];
}

// Computes variable 4 as twice variable 2, flag 4.
class RDoubling : public selection::RSelectionStages {
public:
    void computeDerived(collection::STATIONDATA& station) override
    {
        if (station.collection->neededMask[4] == 0 || station.offset[2] < 0) return;
        station.offset[4] = station.header.valueCount;
        for (int k = 0; k < station.levels(); ++k) {
            const auto from = static_cast<std::size_t>(station.offset[2] + k);
            const auto to = static_cast<std::size_t>(station.offset[4] + k);
            station.values[to] = 2 * station.values[from];
            station.flags[to] = 4;
        }
        station.levelCount[4] = station.levelCount[1];
        station.header.valueCount += station.levels();
    }
};

TEST(ExportCollection, DerivedVariablesThatWereChosenBecomeVariables)
{
    RExport made;
    RDoubling stages;
    made.sample.collection.stages = &stages;
    made.sample.collection.variables[4] = collection::emptyVariable(4);
    collection::setLabel(made.sample.collection.variables[4], "Double [1]");
    made.sample.collection.totalVariableCount = 4;
    made.sample.put({{0, 10}, {1, 2}, {3, 4}});
    made.variables = {1, 4};
    ASSERT_TRUE(made.run());
    EXPECT_NE(linesOf(made.target() + ".var").find("Double [1]"), std::string::npos);
    ASSERT_EQ(made.made().size(), 1u);
    EXPECT_TRUE(made.made()[0].ends_with(" | 1: 0(0) 10(0) | 2: 2(4) 4(4)")) << made.made()[0];
    made.sample.collection.stages = nullptr;
}

TEST(ExportCollection, StationsWithoutLevelsInTheSampleRangeAreSkipped)
{
    RExport made;
    selection::RSelectionStages stages;
    made.sample.collection.stages = &stages;
    made.sample.put({{0, 10, 20}, {1, 2, 3}, {5, 6, 7}});
    made.sample.put({{0}, {9}, {5}}, 0, "A", "none");
    made.sample.collection.criteria.sampleVariable = 2;
    made.sample.collection.criteria.sampleMin = 2;
    made.sample.collection.criteria.sampleMax = 3;
    ASSERT_TRUE(made.run());
    EXPECT_TRUE(made.sample.user.messages.at(0).starts_with("Sample selection warning ...: "));
    ASSERT_EQ(made.made().size(), 1u);
    EXPECT_TRUE(made.made()[0].ends_with(" | 1: 10(0) 20(0) | 2: 2(0) 3(0) | 3: 6(0) 7(0)"));
    made.sample.user.answers = {common::Answer::no};
    EXPECT_FALSE(made.runTo(made.sample.directory.file("declined")));
    EXPECT_FALSE(common::fileExists(made.sample.directory.file("declined.var")));
    made.sample.collection.stages = nullptr;
}

TEST(ExportCollection, ANegativeLongitudeIsWrittenAsItsValuePlus360)
{
    RExport made;
    made.sample.put({{0}, {1}, {2}});
    ASSERT_EQ(made.sample.reopen(), collection::OpenFilesResult::ok);
    std::string hob = made.sample.bytes(".hob");
    const float west = -30.5f;
    std::memcpy(hob.data() + 6 + 44, &west, sizeof west);
    made.sample.setBytes(".hob", hob);
    ASSERT_EQ(made.sample.collection.openStationFiles(made.sample.collection.path, made.sample.user),
              collection::OpenFilesResult::ok);
    made.sample.collection.criteria.lonMin = -180;
    made.sample.collection.criteria.lonMax = 180;
    selection::LISTBUILD build;
    build.domain = {.lonMin = -180, .lonMax = 180};
    ASSERT_EQ(selection::buildSelectedList(made.sample.collection, build, "test", made.sample.user), 1);
    ASSERT_TRUE(
        exportCollection(made.sample.collection, made.sample.station, made.target(), {}, made.sample.user));
    EXPECT_NE(made.made().at(0).find("329.5 20"), std::string::npos) << made.made().at(0);
}

TEST(ExportCollection, AnEmptySelectionGivesACollectionWithoutStationsAndReportsNone)
{
    RExport made;
    ASSERT_TRUE(made.run());
    EXPECT_TRUE(made.sample.user.messages.at(0).find("0 Stations Exported to Collection") !=
                std::string::npos);
    EXPECT_EQ(contentsOnDisk(made.target(), true), std::vector<std::string>());
}

TEST(ExportCollection, KeyVariablesFollowTheirNumbers)
{
    RExport made(hostMagic, 4);
    made.sample.put(profile(3, 4));
    ASSERT_TRUE(made.sample.collection.setVariableId("Depth in Water", 1));
    ASSERT_TRUE(made.sample.collection.setVariableId("Salinity", 3));
    ASSERT_TRUE(made.sample.collection.setVariableId("Oxygen", 4));
    made.variables = {1, 4};
    ASSERT_TRUE(made.run());
    EXPECT_EQ(linesOf(made.target() + ".idv"), "Depth in Water=1\nOxygen=2\n");
}

TEST(ExportCollection, TheInventoryIsCurrentAndTheLogTellsOfTheCreation)
{
    RExport made;
    made.sample.put(profile(5, 3), 0, "A", "1");
    made.sample.put(profile(7, 3), 0, "B", "2");
    ASSERT_TRUE(made.run());
    collection::RCollection opened;
    ASSERT_EQ(opened.openStationFiles(made.target(), made.sample.user), collection::OpenFilesResult::ok);
    EXPECT_TRUE(opened.readInventoryFile());
    EXPECT_EQ(opened.cruiseCount, 2);
    EXPECT_EQ(opened.sampleCount, 12);
    EXPECT_EQ(opened.readCruiseIndices(false), (std::vector<std::int32_t>{0, 1}));
    const std::string log = linesOf(made.target() + ".log");
    EXPECT_NE(log.find("> user:host CREATE\n"), std::string::npos) << log;
    EXPECT_TRUE(log.ends_with("> user:host EXPORT     2 Stations " + made.sample.collection.path + ".var\n"))
        << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2);
    EXPECT_FALSE(collection::isMadeByImportsOnly(made.target())); // no import replaces it unasked
}

TEST(ExportCollection, AnOldCollectionOfTheNameIsReplaced)
{
    RExport made;
    made.putOld();
    made.sample.put(profile(5, 3));
    ASSERT_TRUE(made.run());
    EXPECT_EQ(made.made(), contentsOf(made.sample.collection));
    EXPECT_EQ(linesOf(made.target() + ".idv"), "no file");
    EXPECT_EQ(made.otherFiles(), (std::vector<std::string>{"made.cid", "made.dob", "made.hob", "made.inv",
                                                           "made.log", "made.var"}));
}

TEST(ExportCollection, EscapeAsksAndLeavesNoCollection)
{
    RExport made;
    made.sample.put(profile(5, 3));
    made.sample.user.abort = true;
    EXPECT_FALSE(made.run());
    EXPECT_EQ(made.sample.user.messages,
              std::vector<std::string>{"Exporting data to collection ...: Really Want to Abort and Delete "
                                       "Export Collection?"});
    EXPECT_FALSE(made.sample.user.abort);
    EXPECT_EQ(made.otherFiles(), std::vector<std::string>());
    made.sample.user.abort = true;
    made.sample.user.answers = {common::Answer::no};
    EXPECT_TRUE(made.run());
}

TEST(ExportCollection, AnAbortLeavesTheOldCollectionAsItWas)
{
    RExport made;
    made.putOld();
    for (int i = 0; i < 20; ++i) made.sample.put(profile(2000, 3), 0, "A", std::to_string(i));
    const auto before = snapshotOf(made.sample.directory.path());
    made.select();
    made.sample.user.abortAfter = 15;
    EXPECT_FALSE(
        exportCollection(made.sample.collection, made.sample.station, made.target(), {}, made.sample.user));
    EXPECT_EQ(snapshotOf(made.sample.directory.path()).size(), before.size());
    for (const auto& [name, bytes] : before) {
        if (!name.starts_with("made")) continue;
        EXPECT_EQ(linesOf(made.sample.directory.file(name)), bytes) << name;
    }
}

TEST(ExportCollection, AFullDiskLeavesTheOldCollectionAndTells)
{
    RExport made;
    made.putOld();
    for (int i = 0; i < 20; ++i) made.sample.put(profile(2000, 3), 0, "A", std::to_string(i));
    made.select();
    const std::vector<std::string> files = made.otherFiles(), old = made.made();
    for (const rlim_t size : {10, 1000, 100000, 300000}) {
        bool written = true;
        {
            const RFileSizeLimit limit(size);
            written = exportCollection(made.sample.collection, made.sample.station, made.target(), {},
                                       made.sample.user);
        }
        EXPECT_FALSE(written);
        EXPECT_NE(made.sample.user.messages.back().find(made.target() + ".var could not be made!"),
                  std::string::npos);
        EXPECT_EQ(made.otherFiles(), files) << size;
        EXPECT_EQ(made.made(), old);
    }
    EXPECT_TRUE(
        exportCollection(made.sample.collection, made.sample.station, made.target(), {}, made.sample.user));
    EXPECT_EQ(made.made().size(), 20u);
}

TEST(ExportCollection, TheOpenCollectionIsNeverItsTargetWhateverWayLeadsThere)
{
    RExport made;
    made.sample.put(profile(5, 3));
    ASSERT_EQ(made.sample.reopen(), collection::OpenFilesResult::ok);
    namespace fs = std::filesystem;
    const std::string folder = made.sample.directory.path(), path = made.sample.collection.path;
    fs::create_directory(folder + "sub");
    fs::create_directory_symlink(folder, folder + "link");
    for (const char* const suffix : {".var", ".hob", ".dob"}) {
        fs::create_symlink(path + suffix, folder + "linked" + suffix);
        fs::create_hard_link(path + suffix, folder + "second" + suffix);
    }
    fs::copy_file(path + ".var", folder + "described.var"); // of the same files
    const auto before = snapshotOf(folder);
    for (const char* const name :
         {"sample", "sub/../sample", "link/sample", "linked", "second", "described"}) {
        EXPECT_FALSE(made.runTo(folder + name)) << name;
        EXPECT_TRUE(made.sample.user.messages.at(0).ends_with(
            "could not be made!\n\nIt is the open collection itself."))
            << made.sample.user.messages.at(0);
        EXPECT_EQ(snapshotOf(folder).size(), before.size());
    }
    made.sample.collection.closeStationFiles();
    EXPECT_EQ(contentsOnDisk(path).size(), 1u);
}

TEST(ExportCollection, ACollectionThatIsOpenForWritingElsewhereIsNotReplaced)
{
    RExport made;
    made.putOld();
    made.sample.put(profile(5, 3));
    collection::RCollectionLock lock;
    ASSERT_TRUE(lock.acquire(made.target()));
    EXPECT_FALSE(made.run());
    EXPECT_NE(made.sample.user.messages.at(0).find("It is open for writing in another NVQ session"),
              std::string::npos);
    lock.release();
    EXPECT_TRUE(made.run());
}

TEST(ExportCollection, WhatCanNotBeTheTargetIsTold)
{
    RExport made;
    made.sample.put(profile(5, 3));
    EXPECT_FALSE(made.runTo(made.sample.directory.file("missing/made")));
    EXPECT_NE(made.sample.user.messages.at(0).find("missing/ does not exist."), std::string::npos);
    std::filesystem::create_directory(made.target() + ".dob");
    EXPECT_FALSE(made.run());
    EXPECT_NE(made.sample.user.messages.at(0).find("made.dob is in the way."), std::string::npos);
    made.variables = {77};
    EXPECT_FALSE(made.runTo(made.sample.directory.file("other")));
    EXPECT_NE(made.sample.user.messages.at(0).find("It needs at least one variable."), std::string::npos);
    EXPECT_FALSE(common::fileExists(made.sample.directory.file("other.var")));
}

TEST(ExportCollection, TheNameIsOneThatACollectionCanHave)
{
    RExport made;
    made.sample.put(profile(5, 3));
    ASSERT_TRUE(made.runTo(made.sample.directory.file("a b:c")));
    EXPECT_EQ(contentsOnDisk(made.sample.directory.file("a_b_c")), contentsOf(made.sample.collection));
}

TEST(ExportCollection, AChangeThatWasCutOffAtTheTargetIsPutRightFirst)
{
    RExport made;
    made.putOld();
    made.sample.put(profile(5, 3));
    const std::vector<std::string> old = made.made();
    { // cut off with the old files put aside
        collection::RCollection cut;
        cut.directory = made.sample.directory.path();
        cut.name = "made";
        cut.path = made.target();
        cut.writable = true;
        ASSERT_TRUE(cut.beginChange("CREATE"));
        ASSERT_TRUE(cut.setFilesAside(std::to_array<std::string_view>({".hob", ".dob", ".var", ".idv"})));
        std::filesystem::copy_file(collection::journalPath(made.target()),
                                   made.sample.directory.file("Nkept"));
        for (const char* const suffix : {".hob", ".dob", ".var", ".idv"})
            std::filesystem::copy_file(made.target() + ".old" + suffix,
                                       made.sample.directory.file("Nold") + suffix);
    }
    for (const char* const suffix : {".hob", ".dob", ".var", ".idv"}) {
        std::filesystem::remove(made.target() + suffix);
        std::filesystem::rename(made.sample.directory.file("Nold") + suffix, made.target() + ".old" + suffix);
    }
    std::filesystem::rename(made.sample.directory.file("Nkept"), collection::journalPath(made.target()));
    made.sample.user.abort = true;
    EXPECT_FALSE(made.run()); // aborted: what comes back is the state before both
    EXPECT_EQ(made.made(), old);
    ASSERT_TRUE(made.run());
    EXPECT_EQ(made.made(), contentsOf(made.sample.collection));
}

TEST(ExportCollection, AJournalThatCanNotBeUsedStopsTheExport)
{
    RExport made;
    made.sample.put(profile(5, 3));
    ASSERT_TRUE(common::writeFile(collection::journalPath(made.target()), "no journal"));
    EXPECT_FALSE(made.run());
    EXPECT_NE(made.sample.user.messages.at(0).find("can't be used"), std::string::npos);
    EXPECT_FALSE(common::fileExists(made.target() + ".var"));
}

TEST(ExportCollection, TheStationInHandIsLoadedAgain)
{
    RExport made;
    made.sample.put(profile(3, 3), 0, "A", "1");
    made.sample.put(profile(3, 3), 0, "A", "2");
    ASSERT_EQ(made.sample.collection.loadStation(1, made.sample.station, false), collection::LoadResult::ok);
    ASSERT_TRUE(made.run());
    EXPECT_EQ(made.sample.station.number, 1);
    EXPECT_EQ(made.sample.station.collection, &made.sample.collection);
}

TEST(ExportCollection, ALargestStationAndFiftyVariablesComeOver)
{
    RExport made(hostMagic, 50);
    made.sample.put(profile(2000, 50)); // as many cells as one can have
    made.sample.put(profile(20000, 5), 0, "A", "2");
    ASSERT_TRUE(made.run());
    EXPECT_EQ(linesOf(made.target() + ".hob"), made.sample.bytes(".hob"));
    EXPECT_EQ(linesOf(made.target() + ".dob"), made.sample.bytes(".dob"));
}

} // namespace
