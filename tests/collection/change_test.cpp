#include <fcntl.h>
#include <filesystem>
#include <random>

#include <gtest/gtest.h>

#include "collection/journalfile.h"
#include "collection/sidefiles.h"
#include "collection/stationrecord.h"
#include "filesizelimit.h"
#include "foldermoments.h"
#include "samplecollection.h"

namespace collection {
namespace {

using testing_support::FILECALL;
using testing_support::Folder;
using testing_support::label;
using testing_support::place;
using testing_support::profile;
using testing_support::readFolder;
using testing_support::RFileCalls;
using testing_support::RFileSizeLimit;
using testing_support::RMoments;
using testing_support::RSampleCollection;
using testing_support::RScriptedUser;
using testing_support::RTemporaryDirectory;
using testing_support::writeFolder;

namespace fs = std::filesystem;

template <typename Number>
void add(std::string& text, const Number* values, std::size_t count)
{
    text.append(reinterpret_cast<const char*>(values), count * sizeof(Number));
}

// All that a user can see of the stations: labels, positions, times, values, flags, in the order of numbers.
std::string stationsOf(RCollection& collection)
{
    std::string all =
        common::format("%d variables %d stations ", collection.variableCount, collection.stationCount);
    STATIONDATA station;
    for (int n = 1; n <= collection.stationCount; ++n) {
        if (collection.loadStation(n, station, false) != LoadResult::ok) {
            all += " unreadable ";
            continue;
        }
        const auto cells = static_cast<std::size_t>(station.header.valueCount);
        STATIONHDR header = station.header;
        header.dataOffset = 0;
        add(all, &header, 1);
        add(all, station.levelCount.data() + 1, static_cast<std::size_t>(collection.variableCount));
        add(all, station.values.get(), cells);
        add(all, station.flags.get(), cells);
    }
    return all;
}

std::string stationsIn(const std::string& path)
{
    RCollection collection;
    RScriptedUser user;
    collection.writable = true;
    if (collection.openStationFiles(path, user) != OpenFilesResult::ok) return "not opened";
    return stationsOf(collection) + collection.type;
}

// No file is left over that only a change needs.
bool isTidy(const Folder& folder)
{
    return std::none_of(folder.begin(), folder.end(), [](const auto& file) {
        return file.first.find(".jnl") != std::string::npos || file.first.find(".old") != std::string::npos ||
               file.first.starts_with("TRG.");
    });
}

// What holds after each moment of an operation: the collection is as before or as after it. Where the
// recovery is cut off too, the next one leads to the same.
class Recovered {
public:
    Recovered(std::string before, std::string after) : before_(std::move(before)), after_(std::move(after)) {}

    void expectOneOfBoth(const Folder& moment, const std::string& name, bool recoverTwice)
    {
        RTemporaryDirectory directory;
        writeFolder(directory.path(), moment);
        const std::string path = directory.path() + name;
        RMoments moments(directory.path());
        RECOVERY recovery;
        moments.watch([&] { recovery = recoverCollection(path); });
        ASSERT_NE(recovery.result, RecoveryResult::failed) << recovery.fault;
        EXPECT_TRUE(isTidy(readFolder(directory.path())));
        const std::string stations = stationsIn(path);
        ASSERT_TRUE(stations == before_ || stations == after_) << stations.size();
        (stations == before_ ? befores : afters)++;
        if (recoverTwice) expectTheSame(moments, name, stations);
    }
    int befores = 0, afters = 0;

private:
    void expectTheSame(const RMoments& moments, const std::string& name, const std::string& stations)
    {
        for (const auto* const kind : {&moments.killed, &moments.powerless}) {
            for (const Folder& moment : *kind) {
                const RFileCalls withoutFlushes([](const FILECALL&) { return 0; });
                RTemporaryDirectory directory;
                writeFolder(directory.path(), moment);
                const RECOVERY again = recoverCollection(directory.path() + name);
                ASSERT_NE(again.result, RecoveryResult::failed) << again.fault;
                ASSERT_TRUE(stationsIn(directory.path() + name) == stations);
            }
        }
    }
    std::string before_, after_;
};

// Runs an operation and looks at all of its moments.
void expectOldOrNew(RSampleCollection& sample, const std::function<void()>& operation, bool decides = true)
{
    const std::string name = sample.collection.name, path = sample.collection.path;
    ASSERT_TRUE(sample.collection.writeVarFile(path));
    ASSERT_TRUE(sample.collection.flushStationFiles());
    const std::string before = stationsIn(path);
    RMoments moments(sample.directory.path());
    moments.watch(operation);
    const std::string after = stationsIn(path);
    EXPECT_EQ(after != before, decides);
    Recovered recovered(before, after);
    for (const Folder& moment : moments.killed) {
        recovered.expectOneOfBoth(moment, name, true);
        if (::testing::Test::HasFatalFailure()) return;
    }
    EXPECT_GE(moments.killed.size(), 3U);
    for (const Folder& moment : moments.powerless) {
        recovered.expectOneOfBoth(moment, name, false);
        if (::testing::Test::HasFatalFailure()) return;
    }
    EXPECT_TRUE(isTidy(readFolder(sample.directory.path())));
    EXPECT_GT(recovered.befores, 0);
    EXPECT_EQ(recovered.afters > 0, decides);
}

class Change : public ::testing::Test {
protected:
    void putThree()
    {
        for (int i = 1; i <= 3; ++i) {
            ASSERT_EQ(
                sample.put(profile(4, 4, static_cast<float>(i)), 0, "A", std::string(1, char('a' + i - 1))),
                WriteResult::ok);
        }
        ASSERT_TRUE(collection.writeVarFile(collection.path));
    }
    std::string labels()
    {
        std::string all;
        STATIONHDR header{};
        for (int n = 1; n <= collection.stationCount; ++n)
            all += collection.readStationHeader(n, header, nullptr) ? header.station : "?";
        return all;
    }
    [[nodiscard]] bool exists(const std::string& suffix) const
    {
        return common::fileExists(collection.path + suffix);
    }
    RSampleCollection sample;
    RCollection& collection = sample.collection;
    STATIONDATA& station = sample.station;
};

// --- old or new, whatever cuts it off

TEST_F(Change, AppendingSurvivesAnyCut)
{
    putThree();
    expectOldOrNew(sample, [&] {
        ASSERT_TRUE(collection.beginChange("IMPORT"));
        for (int i = 0; i < 5; ++i) ASSERT_EQ(sample.put(profile(3, 4, 9), 0, "B", "x"), WriteResult::ok);
        ASSERT_TRUE(collection.commitChange());
    });
}

TEST_F(Change, AppendingToAnEmptyCollectionSurvivesAnyCut)
{
    expectOldOrNew(sample, [&] {
        ASSERT_TRUE(collection.beginChange("IMPORT"));
        ASSERT_EQ(sample.put(profile(3, 4, 9), 0, "B", "x"), WriteResult::ok);
        ASSERT_TRUE(collection.flushStationFiles());
        ASSERT_EQ(sample.put(profile(3, 4, 9), 0, "B", "y"), WriteResult::ok);
        ASSERT_TRUE(collection.commitChange());
    });
}

TEST_F(Change, OverwritingInPlaceSurvivesAnyCut)
{
    putThree();
    expectOldOrNew(sample, [&] {
        ASSERT_TRUE(collection.beginChange("IMPORT"));
        for (int n = 1; n <= 3; ++n) {
            ASSERT_EQ(sample.put(profile(3, 4, 9), n, "B", "x"), WriteResult::ok);
            ASSERT_TRUE(collection.flushStationFiles());
        }
        ASSERT_TRUE(collection.commitChange());
    });
}

TEST_F(Change, GrownStationsSurviveAnyCut)
{
    putThree();
    expectOldOrNew(sample, [&] {
        ASSERT_TRUE(collection.beginChange("IMPORT"));
        ASSERT_EQ(sample.put(profile(6, 4, 7), 1, "B", "x"), WriteResult::ok);
        ASSERT_TRUE(collection.flushStationFiles());
        ASSERT_EQ(sample.put(profile(9, 4, 8), 1, "B", "y"), WriteResult::ok);
        ASSERT_EQ(sample.put(profile(2, 4, 5), 2, "B", "z"), WriteResult::ok);
        ASSERT_EQ(sample.put(profile(2, 4, 6), 0, "B", "n"), WriteResult::ok);
        ASSERT_TRUE(collection.commitChange());
    });
}

TEST_F(Change, AnOverwriteThatStandsAloneSurvivesAnyCut)
{
    putThree();
    expectOldOrNew(sample, [&] { ASSERT_EQ(sample.put(profile(4, 4, 9), 2, "B", "x"), WriteResult::ok); });
}

TEST_F(Change, AGrownStationThatStandsAloneSurvivesAnyCut)
{
    putThree();
    expectOldOrNew(sample, [&] { ASSERT_EQ(sample.put(profile(6, 4, 9), 1, "B", "x"), WriteResult::ok); });
}

TEST_F(Change, TheLastStationGrowsInItsPlaceAndSurvivesAnyCut)
{
    putThree();
    expectOldOrNew(sample, [&] { ASSERT_EQ(sample.put(profile(6, 4, 9), 3, "B", "x"), WriteResult::ok); });
}

TEST_F(Change, AHeaderEditSurvivesAnyCut)
{
    putThree();
    STATIONHDR header{};
    LEVELCOUNTS counts{};
    ASSERT_TRUE(collection.readStationHeader(2, header, &counts));
    header.longitude = 77;
    expectOldOrNew(sample, [&] { ASSERT_TRUE(collection.writeStationHeader(2, header, &counts)); });
}

TEST_F(Change, AMoveBehindStationsThatAreNotYetCountedCountsThemToo)
{
    putThree();
    const std::string path = collection.path;
    ASSERT_EQ(sample.put(profile(2, 4, 6), 0, "B", "new"), WriteResult::ok); // the description tells of 3
    RMoments moments(sample.directory.path());
    moments.watch([&] { ASSERT_EQ(sample.put(profile(6, 4, 9), 1, "A", "a"), WriteResult::ok); });
    for (const auto* const kind : {&moments.killed, &moments.powerless}) {
        for (const Folder& moment : *kind) {
            RTemporaryDirectory directory;
            writeFolder(directory.path(), moment);
            ASSERT_NE(recoverCollection(directory.path() + "sample").result, RecoveryResult::failed);
            RCollection copy;
            ASSERT_EQ(copy.openStationFiles(directory.path() + "sample", sample.user), OpenFilesResult::ok);
            std::string found;
            STATIONHDR header{};
            for (int n = 1; n <= copy.stationCount; ++n) {
                ASSERT_TRUE(copy.readStationHeader(n, header, nullptr));
                found += header.station;
            }
            EXPECT_TRUE(found == "abc" || found == "bcnewa") << found;
        }
    }
}

TEST_F(Change, AReplacementSurvivesAnyCut)
{
    putThree();
    expectOldOrNew(sample, [&] {
        ASSERT_TRUE(collection.beginChange("DELETE"));
        const std::string target = sample.directory.path() + "TRG.hob";
        ASSERT_TRUE(collection.noteMadeFiles(std::vector<std::string>{"TRG.hob"}));
        const std::string old = sample.bytes(".hob");
        common::FilePtr file = common::openFile(target, "wb");
        ASSERT_TRUE(file);
        std::fwrite(old.data(), 1, 6 + 88, file.get());
        std::fwrite(old.data() + 6 + 2 * 88, 1, 88, file.get());
        file.reset();
        const FILEACTION actions[] = {{FILEACTION::rename, "TRG.hob", "sample.hob"}};
        bool done = false;
        ASSERT_TRUE(collection.commitReplacement(actions, 2, sample.user, &done));
        ASSERT_TRUE(done);
        ASSERT_EQ(labels(), "ac");
    });
}

TEST_F(Change, ANewCollectionInThePlaceOfAnOldOneSurvivesAnyCut)
{
    putThree();
    ASSERT_TRUE(collection.setVariableId("Depth [m]", 1));
    const std::string path = collection.path;
    expectOldOrNew(sample, [&] {
        collection.closeStationFiles();
        ASSERT_TRUE(collection.beginChange("IMPORT"));
        ASSERT_TRUE(collection.setFilesAside(collectionSuffixes));
        collection.variableCount = 2;
        ASSERT_TRUE(collection.createEmptyFiles());
        ASSERT_EQ(collection.openStationFiles(path, sample.user), OpenFilesResult::ok);
        ASSERT_EQ(sample.put(profile(2, 2), 0, "N", "1"), WriteResult::ok);
        ASSERT_TRUE(collection.flushStationFiles());
        ASSERT_EQ(sample.put(profile(2, 2), 1, "N", "2"), WriteResult::ok);
        ASSERT_EQ(sample.put(profile(5, 2), 0, "N", "3"), WriteResult::ok);
        ASSERT_TRUE(collection.commitChange());
        EXPECT_FALSE(exists(".idv"));
    });
}

TEST_F(Change, AChangeThatIsRolledBackSurvivesAnyCut)
{
    putThree();
    expectOldOrNew(
        sample,
        [&] {
            ASSERT_TRUE(collection.beginChange("IMPORT"));
            ASSERT_EQ(sample.put(profile(6, 4, 7), 1, "B", "x"), WriteResult::ok);
            ASSERT_EQ(sample.put(profile(2, 4, 7), 1, "B", "y"), WriteResult::ok);
            ASSERT_TRUE(collection.flushStationFiles());
            collection.rollBackChange();
        },
        false);
    EXPECT_EQ(labels(), "abc");
}

// Both magics, and all kinds of writes by chance.
class AnyChange : public ::testing::TestWithParam<std::string_view> {};

TEST_P(AnyChange, SurvivesAnyCut)
{
    constexpr unsigned seed = 815;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    RSampleCollection sample(3);
    RCollection& collection = sample.collection;
    collection.closeStationFiles();
    collection.newMagic = GetParam();
    ASSERT_EQ(collection.openStationFiles(collection.path, sample.user), OpenFilesResult::ok);
    for (int i = 0; i < 8; ++i)
        ASSERT_EQ(sample.put(profile(1 + static_cast<int>(random() % 5), 3, static_cast<float>(i))),
                  WriteResult::ok);
    expectOldOrNew(sample, [&] {
        ASSERT_TRUE(collection.beginChange("ANY"));
        for (int i = 0; i < 12; ++i) {
            const int number = static_cast<int>(random() % 10);
            const int levels = 1 + static_cast<int>(random() % 7);
            ASSERT_EQ(sample.put(profile(levels, 3, static_cast<float>(100 + i)), number), WriteResult::ok);
            if (random() % 4 == 0) {
                ASSERT_TRUE(collection.flushStationFiles());
            }
        }
        ASSERT_TRUE(collection.commitChange());
    });
    EXPECT_EQ(sample.bytes(".hob").substr(0, 6), GetParam());
}
INSTANTIATE_TEST_SUITE_P(Magics, AnyChange, ::testing::Values(littleEndianMagic, bigEndianMagic));

// --- what a change is like from within

TEST_F(Change, BeginningWritesNothing)
{
    putThree();
    const Folder before = readFolder(sample.directory.path());
    ASSERT_TRUE(collection.beginChange("IMPORT"));
    EXPECT_TRUE(collection.isChanging());
    EXPECT_TRUE(readFolder(sample.directory.path()) == before);
    EXPECT_TRUE(collection.commitChange());
    EXPECT_FALSE(collection.isChanging());
    EXPECT_TRUE(readFolder(sample.directory.path()) == before);
}

TEST_F(Change, HeldBackStationsAreSeenByLoadsAndScans)
{
    putThree();
    const std::string hob = sample.bytes(".hob"), dob = sample.bytes(".dob");
    ASSERT_TRUE(collection.beginChange("IMPORT"));
    ASSERT_EQ(sample.put(profile(3, 4, 50), 2, "A", "B"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(7, 4, 60), 1, "A", "A"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(2, 4, 70), 0, "A", "d"), WriteResult::ok);
    EXPECT_TRUE(sample.bytes(".hob") == hob);
    EXPECT_TRUE(sample.bytes(".dob") == dob);
    EXPECT_EQ(labels(), "BcAd");
    std::string scanned;
    ASSERT_TRUE(collection.scanHeaders(
        1, collection.stationCount,
        [&](int, const STATIONHDR& header, const LEVELCOUNTS&) {
            scanned += header.station;
            return true;
        },
        [](int) { ADD_FAILURE(); }));
    EXPECT_EQ(scanned, "BcAd");
    ASSERT_EQ(collection.loadStation(3, station, false), LoadResult::ok);
    EXPECT_EQ(station.levels(), 7);
    EXPECT_EQ(valueAt(station, 2, 0, 0), 160);
    ASSERT_TRUE(collection.commitChange());
    EXPECT_EQ(labels(), "BcAd");
    ASSERT_EQ(sample.reopen(), OpenFilesResult::ok);
    EXPECT_EQ(labels(), "BcAd");
    EXPECT_EQ(sample.bytes(".hob").size(), 6U + 4 * 88);
    EXPECT_FALSE(exists(".jnl"));
}

TEST_F(Change, RollingBackRestoresFilesCountsAndInventory)
{
    putThree();
    ASSERT_EQ(collection.readInventory(true, sample.user), 1);
    const std::string before = stationsOf(collection), var = sample.bytes(".var");
    const int samples = collection.sampleCount;
    ASSERT_TRUE(collection.beginChange("IMPORT"));
    ASSERT_EQ(sample.put(profile(7, 4, 60), 1, "A", "A"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(7, 4, 60), 0, "B", "n"), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(1, 4, 60), 2, "B", "n"), WriteResult::ok);
    ASSERT_TRUE(collection.flushStationFiles());
    collection.readInventory(true, sample.user);
    ASSERT_EQ(collection.cruiseCount, 2);
    collection.rollBackChange();
    EXPECT_FALSE(collection.isChanging());
    EXPECT_EQ(collection.cruiseCount, 1);
    EXPECT_EQ(collection.cruises.size(), 1U);
    EXPECT_EQ(collection.sampleCount, samples);
    EXPECT_TRUE(stationsOf(collection) == before);
    EXPECT_EQ(sample.bytes(".var"), var);
    EXPECT_EQ(sample.bytes(".hob").size(), 6U + 3 * 88);
    EXPECT_EQ(sample.bytes(".dob").size(), 240U);
    EXPECT_FALSE(exists(".jnl"));
    ASSERT_EQ(sample.put(profile(2, 4, 5), 0, "A", "d"), WriteResult::ok);
    EXPECT_EQ(labels(), "abcd");
}

TEST_F(Change, NestedChangesCountAsOne)
{
    putThree();
    ASSERT_TRUE(collection.beginChange("OUTER"));
    ASSERT_TRUE(collection.beginChange("INNER"));
    ASSERT_EQ(sample.put(profile(2, 4), 1, "A", "x"), WriteResult::ok);
    ASSERT_TRUE(collection.commitChange());
    EXPECT_TRUE(collection.isChanging());
    EXPECT_EQ(labels(), "xbc");
    ASSERT_TRUE(collection.beginChange("INNER"));
    collection.rollBackChange(); // the outer one too
    EXPECT_FALSE(collection.isChanging());
    EXPECT_FALSE(collection.commitChange());
    EXPECT_EQ(labels(), "abc");
}

TEST_F(Change, ClosingRollsBack)
{
    putThree();
    const std::string before = sample.bytes(".hob") + sample.bytes(".dob");
    ASSERT_TRUE(collection.beginChange("IMPORT"));
    ASSERT_EQ(sample.put(profile(2, 4), 1, "A", "x"), WriteResult::ok);
    ASSERT_TRUE(collection.flushStationFiles());
    ASSERT_TRUE(exists(".jnl"));
    collection.closeStationFiles();
    EXPECT_TRUE(sample.bytes(".hob") + sample.bytes(".dob") == before);
    EXPECT_FALSE(exists(".jnl"));
}

TEST_F(Change, AReadOnlyCollectionBeginsNone)
{
    collection.writable = false;
    EXPECT_FALSE(collection.beginChange("IMPORT"));
    collection.rollBackChange();
    EXPECT_FALSE(collection.commitChange());
}

TEST_F(Change, AJournalOfAnotherChangeStopsAllWritingInPlace)
{
    putThree();
    sample.setBytes(".jnl", "somebody's");
    const std::string hob = sample.bytes(".hob");
    EXPECT_FALSE(collection.beginChange("IMPORT"));
    EXPECT_EQ(sample.put(profile(2, 4), 1), WriteResult::dataNotWritten);
    EXPECT_TRUE(sample.bytes(".hob") == hob);
    EXPECT_EQ(sample.bytes(".jnl"), "somebody's");
}

TEST_F(Change, ManyStationsShareTheFlushesOfTheJournal)
{
    constexpr int count = 1000;
    for (int i = 0; i < count; ++i) ASSERT_EQ(sample.put(profile(4, 4, 1)), WriteResult::ok);
    int flushes = 0;
    const RFileCalls calls([&](const FILECALL& call) {
        flushes += call.name == "fsync" || call.name == "fdatasync";
        return 0;
    });
    ASSERT_TRUE(collection.beginChange("IMPORT"));
    for (int n = 1; n <= count; ++n) ASSERT_EQ(sample.put(profile(3, 4, 2), n), WriteResult::ok);
    ASSERT_TRUE(collection.commitChange());
    EXPECT_LE(flushes, 12);
}

TEST_F(Change, APlaceIsSavedOnce)
{
    putThree();
    ASSERT_TRUE(collection.beginChange("IMPORT"));
    ASSERT_EQ(sample.put(profile(4, 4, 2), 1), WriteResult::ok);
    ASSERT_TRUE(collection.flushStationFiles());
    const std::size_t size = sample.bytes(".jnl").size();
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(sample.put(profile(4, 4, static_cast<float>(i)), 1), WriteResult::ok);
        ASSERT_TRUE(collection.flushStationFiles());
    }
    EXPECT_EQ(sample.bytes(".jnl").size(), size);
}

// --- the append position

TEST_F(Change, ALyingLastHeaderDoesNotLeadIntoOtherBlocks)
{
    putThree();
    STATIONHDR header{};
    ASSERT_TRUE(collection.readStationHeader(3, header, nullptr));
    header.dataOffset = 0;
    ASSERT_TRUE(collection.writeStationHeader(3, header, nullptr));
    ASSERT_EQ(sample.reopen(), OpenFilesResult::ok);
    ASSERT_EQ(sample.put(profile(4, 4, 9), 0, "A", "d"), WriteResult::ok);
    EXPECT_EQ(station.header.dataOffset, 160); // behind the second, the third's own block is nobody's now
    ASSERT_EQ(sample.put(profile(9, 4, 9), 0, "A", "e"), WriteResult::ok);
    ASSERT_EQ(collection.loadStation(2, station, false), LoadResult::ok);
    EXPECT_EQ(valueAt(station, 2, 0, 0), 102);
}

TEST_F(Change, TheLastStationDoesNotGrowIntoOtherBlocks)
{
    putThree();
    STATIONHDR header{};
    ASSERT_TRUE(collection.readStationHeader(3, header, nullptr));
    header.dataOffset = 0; // the first one's block
    ASSERT_TRUE(collection.writeStationHeader(3, header, nullptr));
    ASSERT_EQ(sample.reopen(), OpenFilesResult::ok);
    ASSERT_EQ(sample.put(profile(6, 4, 9), 3, "A", "x"), WriteResult::ok);
    EXPECT_EQ(station.number, 3);
    EXPECT_EQ(station.header.dataOffset, 160);
    ASSERT_EQ(collection.loadStation(2, station, false), LoadResult::ok);
    EXPECT_EQ(valueAt(station, 2, 0, 0), 102);
}

TEST_F(Change, BehindADamagedHeaderDataAreAppendedAtTheEndOfTheFile)
{
    putThree();
    std::string hob = sample.bytes(".hob");
    hob[6 + 79] = '\x7f'; // the value count of station 1
    sample.setBytes(".hob", hob);
    sample.setBytes(".dob", sample.bytes(".dob") + std::string(100, 'x'));
    ASSERT_EQ(sample.reopen(), OpenFilesResult::ok);
    ASSERT_EQ(sample.put(profile(2, 4)), WriteResult::ok);
    EXPECT_EQ(station.header.dataOffset, 340);
}

TEST_F(Change, TheEndOfTheLastBlockIsUsedAgainWhenItShrinks)
{
    putThree();
    ASSERT_EQ(sample.put(profile(2, 4, 9), 3), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(2, 4, 9), 0), WriteResult::ok);
    EXPECT_EQ(station.header.dataOffset, 200);
}

// --- failures

// Each call that changes a file fails once, with a full disk; afterwards the change is rolled back or whole.
TEST_F(Change, AFailureOfAnyCallLeavesOldOrNew)
{
    for (int failing = 1;; ++failing) {
        SCOPED_TRACE(failing);
        RSampleCollection own;
        for (int i = 1; i <= 3; ++i)
            ASSERT_EQ(own.put(profile(4, 4, static_cast<float>(i))), WriteResult::ok);
        ASSERT_TRUE(own.collection.writeVarFile(own.collection.path));
        const std::string before = stationsOf(own.collection);
        int calls = 0;
        bool committed = false, told = false;
        {
            const RFileCalls all(
                [&](const FILECALL& call) { return !call.half && ++calls == failing ? ENOSPC : 0; });
            told = !own.collection.beginChange("IMPORT");
            for (const int number : {1, 2, 0, 3}) {
                if (own.put(profile(5, 4, 9), number) != WriteResult::ok) told = true;
                if (!own.collection.flushStationFiles()) told = true;
            }
            committed = !told && own.collection.commitChange();
            if (told) own.collection.rollBackChange();
        }
        if (calls < failing) {
            EXPECT_TRUE(committed);
            EXPECT_GT(failing, 10);
            return;
        }
        const std::string there = stationsOf(own.collection);
        own.collection.reset();
        const RECOVERY recovery = recoverCollection(own.directory.path() + "sample");
        ASSERT_NE(recovery.result, RecoveryResult::failed) << recovery.fault;
        const std::string found = stationsIn(own.directory.path() + "sample");
        if (committed) {
            EXPECT_TRUE(found == there + "HYD" && there != before);
        } else {
            EXPECT_TRUE(found == before + "HYD");
        }
    }
}

TEST_F(Change, AFullDiskBeforeTheJournalLeavesNothingBehind)
{
    putThree();
    const Folder before = readFolder(sample.directory.path());
    const RFileSizeLimit full(250);
    ASSERT_TRUE(collection.beginChange("IMPORT"));
    ASSERT_EQ(sample.put(profile(4, 4, 9), 1), WriteResult::ok); // it waits in memory
    EXPECT_FALSE(collection.commitChange());
    EXPECT_TRUE(readFolder(sample.directory.path()) == before);
    EXPECT_EQ(labels(), "abc");
    EXPECT_EQ(sample.put(profile(4, 4, 9), 1), WriteResult::dataNotWritten);
    EXPECT_TRUE(readFolder(sample.directory.path()) == before);
}

TEST_F(Change, AFullDiskInAnImportLeavesTheOldStations)
{
    putThree();
    const Folder before = readFolder(sample.directory.path());
    const RFileSizeLimit full(1 << 20);
    ASSERT_TRUE(collection.beginChange("IMPORT"));
    WriteResult result = WriteResult::ok;
    for (int i = 0; i < 2000 && result == WriteResult::ok; ++i) result = sample.put(profile(500, 4, 9));
    EXPECT_EQ(result, WriteResult::dataNotWritten);
    EXPECT_FALSE(collection.commitChange());
    EXPECT_TRUE(readFolder(sample.directory.path()) == before);
    EXPECT_EQ(labels(), "abc");
}

TEST_F(Change, FilesThatAreNoLongerThereAreNotWritten)
{
    putThree();
    for (const char* const suffix : {".hob", ".dob"}) {
        const std::string file = collection.path + suffix, bytes = sample.bytes(suffix);
        ASSERT_TRUE(collection.beginChange("IMPORT"));
        ASSERT_EQ(sample.put(profile(4, 4, 9), 1), WriteResult::ok);
        fs::rename(file, file + ".away");
        EXPECT_FALSE(collection.commitChange());
        EXPECT_FALSE(collection.beginChange("IMPORT"));
        EXPECT_EQ(sample.put(profile(4, 4, 9), 1), WriteResult::dataNotWritten);
        sample.setBytes(suffix, bytes); // another file of the same content
        EXPECT_FALSE(collection.beginChange("IMPORT"));
        fs::rename(file + ".away", file);
        EXPECT_TRUE(sample.bytes(suffix) == bytes);
    }
    EXPECT_EQ(labels(), "abc");
    ASSERT_TRUE(collection.beginChange("IMPORT"));
    EXPECT_TRUE(collection.commitChange());
}

TEST_F(Change, TargetFilesOfOthersAreNotTaken)
{
    putThree();
    const common::FilePtr file = common::openFile(sample.directory.path() + "TRG.hob", "wb");
    ASSERT_TRUE(collection.beginChange("SORT"));
    EXPECT_FALSE(collection.noteMadeFiles(std::vector<std::string>{"TRG.var", "TRG.hob"}));
    collection.rollBackChange();
    EXPECT_TRUE(fs::exists(sample.directory.path() + "TRG.hob"));
    EXPECT_FALSE(exists(".jnl"));
}

TEST_F(Change, APreparedFileThatIsMissingRollsBack)
{
    putThree();
    ASSERT_TRUE(collection.beginChange("SORT"));
    const FILEACTION actions[] = {{FILEACTION::rename, "TRG.hob", "sample.hob"}};
    bool done = true;
    EXPECT_FALSE(collection.commitReplacement(actions, 3, sample.user, &done));
    EXPECT_FALSE(done);
    EXPECT_EQ(labels(), "abc");
    EXPECT_TRUE(isTidy(readFolder(sample.directory.path())));
}

TEST_F(Change, AFileThatHappensToHaveTheNameOfAnAsideIsLeftAlone)
{
    putThree();
    sample.setBytes(".old.hob", "mine");
    collection.closeStationFiles();
    ASSERT_TRUE(collection.beginChange("IMPORT"));
    ASSERT_TRUE(collection.setFilesAside(collectionSuffixes));
    EXPECT_FALSE(exists(".hob"));
    EXPECT_TRUE(exists(".old1.hob"));
    collection.rollBackChange();
    EXPECT_TRUE(exists(".hob"));
    EXPECT_EQ(sample.bytes(".old.hob"), "mine");
    EXPECT_EQ(collection.openStationFiles(collection.path, sample.user), OpenFilesResult::ok);
    EXPECT_EQ(labels(), "abc");
}

TEST_F(Change, TheLogIsCutBackWithAReplacementThatIsUndone)
{
    putThree();
    const std::string log = sample.bytes(".log");
    collection.closeStationFiles();
    ASSERT_TRUE(collection.beginChange("IMPORT"));
    ASSERT_TRUE(collection.setFilesAside(collectionSuffixes));
    ASSERT_TRUE(collection.createEmptyFiles());
    EXPECT_GT(sample.bytes(".log").size(), log.size());
    collection.rollBackChange();
    EXPECT_EQ(sample.bytes(".log"), log);
}

TEST(WriteBehind, StationsReachTheFilesWithTheFlush)
{
    RSampleCollection sample;
    sample.collection.writeBehind = true;
    for (int i = 0; i < 10; ++i) ASSERT_EQ(sample.put(profile(3, 4)), WriteResult::ok);
    EXPECT_EQ(sample.bytes(".dob").size(), 0U);
    ASSERT_EQ(sample.collection.loadStation(10, sample.station, false), LoadResult::ok);
    ASSERT_TRUE(sample.collection.flushStationFiles());
    EXPECT_EQ(sample.bytes(".dob").size(), 600U);
}

} // namespace
} // namespace collection
