#include "collection/check.h"

#include <chrono>
#include <cstring>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>

#include <gtest/gtest.h>
#include <sys/file.h>

#include "bigendian.h"
#include "collection/collectionlock.h"
#include "contents.h"

namespace collection {
namespace {

namespace fs = std::filesystem;
using testing_support::missing;
using testing_support::profile;
using testing_support::RSampleCollection;

// A closed collection of six stations in two cruises, with every side file.
class Check : public testing::Test {
protected:
    Check()
    {
        for (int i = 1; i <= 6; ++i) {
            EXPECT_EQ(sample.put(profile(2 + i, 4), 0, i % 2 == 0 ? "A" : "B", std::to_string(i)),
                      WriteResult::ok);
        }
        EXPECT_EQ(sample.reopen(), OpenFilesResult::ok);
        sample.collection.readInventory(true, sample.user);
        EXPECT_TRUE(sample.collection.setVariableId("Depth [m]", 1));
        sample.setBytes(".cfl", "sample\n\n\n\n\n");
        sample.collection.closeStationFiles();
    }

    // The texts of the findings, the remarks with a "-" in front.
    std::vector<std::string> texts()
    {
        result = checkCollection(base, user);
        std::vector<std::string> all;
        int bad = 0;
        for (const FINDING& finding : result.findings) {
            bad += finding.kind == FINDING::inconsistency;
            all.push_back((finding.kind == FINDING::remark ? "-" : "") + finding.text);
        }
        EXPECT_EQ(result.inconsistencies, bad);
        EXPECT_TRUE(user.messages.empty());
        EXPECT_TRUE(user.notes.empty());
        EXPECT_EQ(user.busy, 0);
        return all;
    }
    // Changes a file and leaves the times of all as they are.
    void change(const std::string& suffix, const std::function<void(std::string&)>& edit)
    {
        const fs::file_time_type time = fs::last_write_time(base + suffix);
        std::string bytes = sample.bytes(suffix);
        edit(bytes);
        sample.setBytes(suffix, bytes);
        fs::last_write_time(base + suffix, time);
    }
    // Overwrites bytes of the record of a station.
    template <typename Value>
    void setInRecord(int number, std::size_t offset, Value value)
    {
        change(".hob", [&](std::string& bytes) {
            std::memcpy(bytes.data() + 6 + static_cast<std::size_t>(number - 1) * 88 + offset, &value,
                        sizeof value);
        });
    }
    STATIONHDR headerOf(int number)
    {
        STATIONHDR header;
        std::memcpy(&header, sample.bytes(".hob").data() + 6 + (number - 1) * 88, sizeof header);
        return header;
    }
    static bool contains(const std::vector<std::string>& all, const std::string& text)
    {
        return std::find(all.begin(), all.end(), text) != all.end();
    }
    using Texts = std::vector<std::string>;

    RSampleCollection sample;
    testing_support::RScriptedUser user;
    const std::string base = sample.collection.path;
    CHECKRESULT result;
};

TEST_F(Check, AWholeCollectionHasNoFindings)
{
    EXPECT_EQ(texts(), Texts{});
    EXPECT_TRUE(result.complete);
    EXPECT_EQ(result.stationCount, 6);
    EXPECT_EQ(result.dataBytes, common::fileSize(base + ".dob"));
    EXPECT_EQ(result.deadBytes, 0);
    EXPECT_NEAR(result.percentFull, 100.0 * static_cast<double>(result.dataBytes) / 2147483648.0, 1e-9);
}

TEST_F(Check, NothingIsWrittenAndNothingIsLeftBehind)
{
    std::map<std::string, std::pair<std::string, fs::file_time_type>> before, after;
    const auto look = [&](auto& files) {
        for (const auto& entry : fs::directory_iterator(sample.directory.path())) {
            const std::string path = entry.path().string();
            files[path] = {common::readFile(path).value_or(""), entry.last_write_time()};
        }
    };
    look(before);
    setInRecord(2, 44, 1000.0f);
    look(before);
    EXPECT_FALSE(texts().empty());
    look(after);
    EXPECT_EQ(before, after);
}

TEST_F(Check, AnEmptyCollectionHasNoFindingsBeforeAndAfterItsFirstOpening)
{
    RSampleCollection empty;
    EXPECT_TRUE(checkCollection(empty.collection.path, user).findings.empty());
    empty.collection.closeStationFiles();
    fs::remove(empty.collection.path + ".hob");
    fs::remove(empty.collection.path + ".dob");
    EXPECT_TRUE(checkCollection(empty.collection.path, user).findings.empty());
}

TEST_F(Check, ReplacedAndGrownStationsLeaveDeadSpaceOnly)
{
    ASSERT_EQ(sample.collection.openStationFiles(base, sample.user), OpenFilesResult::ok);
    ASSERT_EQ(sample.put(profile(1, 4), 2), WriteResult::ok);
    ASSERT_EQ(sample.put(profile(40, 4), 1), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(base));
    sample.collection.readInventory(true, sample.user);
    EXPECT_EQ(texts(), (Texts{"-sample.dob: 120 of 1460 bytes are dead space"}));
    EXPECT_EQ(result.deadBytes, 120);
}

TEST_F(Check, ACollectionOfTheOtherByteOrderIsReadAsWell)
{
    sample.setBytes(".hob", testing_support::bigEndianHob());
    sample.setBytes(".dob", testing_support::bigEndianDob());
    RSampleCollection big(2, "big");
    big.collection.stationCount = 1;
    ASSERT_TRUE(big.collection.writeVarFile(big.collection.path));
    big.collection.closeStationFiles();
    big.setBytes(".hob", testing_support::bigEndianHob());
    big.setBytes(".dob", testing_support::bigEndianDob());
    ASSERT_EQ(big.collection.openStationFiles(big.collection.path, big.user), OpenFilesResult::ok);
    big.collection.readInventory(true, big.user);
    EXPECT_TRUE(checkCollection(big.collection.path, user).findings.empty());
    std::string dob = testing_support::bigEndianDob();
    dob[0] = '\x7f';
    dob[1] = '\xc0';
    big.setBytes(".dob", dob);
    EXPECT_EQ(checkCollection(big.collection.path, user).findings.at(0).text,
              "big.dob: station 1: values that are no finite numbers");
}

TEST_F(Check, StationsBehindADescriptionOfNoneAreTold)
{
    change(".var", [](std::string& text) { text = common::replaceAll(text, "Nstat: 6", "Nstat: 0"); });
    EXPECT_TRUE(contains(texts(),
                         "sample.hob: holds 6 headers, but the description tells of no stations; such "
                         "a collection isn't opened"));
}

// --- what the program makes, in both byte orders

class CheckAfter : public testing::TestWithParam<std::string> {
protected:
    CheckAfter()
    {
        for (int i = 1; i <= 9; ++i) put(0, 3 + i % 4, i % 2 == 0 ? "A" : "B", std::to_string(10 - i));
        EXPECT_TRUE(sample.collection.writeVarFile(sample.collection.path));
        sample.collection.readInventory(true, sample.user);
        EXPECT_TRUE(sample.collection.setVariableId("Salinity [psu]", 3));
    }
    void put(int number, int levels, const std::string& cruise, const std::string& label)
    {
        std::vector<std::vector<float>> columns = profile(levels, 4, static_cast<float>(levels));
        columns[1][0] = missing;
        if (levels == 4) columns[2].clear();
        EXPECT_EQ(sample.put(columns, number, cruise, label), WriteResult::ok);
    }
    // All findings of the open collection.
    std::string findings()
    {
        std::string text;
        const CHECKRESULT result = checkCollection(sample.collection.path, sample.user);
        for (const FINDING& finding : result.findings) text += finding.text + "\n";
        dead = result.deadBytes;
        EXPECT_EQ(result.stationCount, sample.collection.stationCount);
        EXPECT_EQ(sample.bytes(".hob").substr(0, 6), GetParam());
        return text;
    }
    testing_support::RMagicCollection sample{GetParam()};
    std::int64_t dead = 0;
};
INSTANTIATE_TEST_SUITE_P(BothMagics, CheckAfter, testing::Values("NVQ4.0", "NVQsol"));

TEST_P(CheckAfter, WritingThereIsNothingToSay)
{
    EXPECT_EQ(findings(), "");
}

TEST_P(CheckAfter, ReplacingWithinAChangeThereIsOnlyDeadSpace)
{
    ASSERT_TRUE(sample.collection.beginChange("IMPORT"));
    put(2, 40, "A", "2");
    put(4, 2, "A", "4");
    put(9, 2, "A", "9");
    put(0, 300, "C", "1");
    ASSERT_TRUE(sample.collection.commitChange());
    sample.collection.readInventory(true, sample.user);
    EXPECT_NE(findings().find(" bytes are dead space\n"), std::string::npos) << findings();
    EXPECT_GT(dead, 0);
    EXPECT_EQ(checkCollection(sample.collection.path, sample.user).inconsistencies, 0);
}

TEST_P(CheckAfter, AChangeThatWasRolledBackThereIsNothingToSay)
{
    ASSERT_TRUE(sample.collection.beginChange("IMPORT"));
    put(2, 40, "A", "2");
    put(4, 2, "A", "4");
    put(0, 300, "C", "1");
    sample.collection.rollBackChange();
    sample.collection.readInventory(false, sample.user);
    EXPECT_EQ(findings(), "");
    EXPECT_EQ(checkCollection(sample.collection.path, sample.user).inconsistencies, 0);
}

TEST_P(CheckAfter, SortingThereIsNoDeadSpaceLeft)
{
    put(1, 40, "B", "9");
    ASSERT_TRUE(sample.collection.writeVarFile(sample.collection.path));
    sample.collection.readInventory(true, sample.user);
    ASSERT_TRUE(sample.collection.sortAndCondense(sample.station, sample.user));
    sample.collection.readInventory(false, sample.user);
    EXPECT_EQ(findings(), "");
}

TEST_P(CheckAfter, AChangeOfTheVariablesThereIsNothingToSay)
{
    std::vector<VARINFO> list(4);
    for (int v = 1; v <= 3; ++v) {
        VARINFO& variable = list[static_cast<std::size_t>(v)];
        variable = emptyVariable(v);
        setLabel(variable, "New " + std::to_string(v));
        variable.assocSource = v == 1 ? 1 : 5 - v;
    }
    ASSERT_TRUE(sample.collection.changeVariableSet(sample.station, list, sample.user));
    sample.collection.readInventory(false, sample.user);
    EXPECT_EQ(findings(), "");
}

TEST_P(CheckAfter, DeletionsThereIsOnlyDeadSpace)
{
    ASSERT_EQ(sample.collection.deleteStation(3, sample.user), 1);
    EXPECT_NE(findings().find(" bytes are dead space\n"), std::string::npos);
    ASSERT_EQ(sample.collection.deleteStation(sample.collection.stationCount, sample.user), 1);
    EXPECT_EQ(checkCollection(sample.collection.path, sample.user).inconsistencies, 0) << findings();
    ASSERT_TRUE(sample.collection.openTemporaryFiles());
    for (std::int32_t n = 1; n <= sample.collection.stationCount; ++n) {
        const std::int32_t record[4] = {n, 0, 0, 0};
        ASSERT_EQ(std::fwrite(record, sizeof record, 1, sample.collection.valFile.get()), 1U);
    }
    ASSERT_EQ(std::fflush(sample.collection.valFile.get()), 0);
    sample.collection.selectedStationCount = sample.collection.stationCount;
    ASSERT_GT(sample.collection.deleteSelectedStations(sample.user), 0);
    EXPECT_EQ(checkCollection(sample.collection.path, sample.user).inconsistencies, 0) << findings();
}

TEST_P(CheckAfter, AHeaderEditThereIsNothingToSay)
{
    STATIONHDR header{};
    LEVELCOUNTS counts{};
    ASSERT_TRUE(sample.collection.readStationHeader(5, header, &counts));
    common::copyText(header.cruise, "edited");
    header.longitude = -0.25f;
    ASSERT_TRUE(sample.collection.writeStationHeader(5, header, &counts));
    sample.collection.readInventory(false, sample.user);
    EXPECT_EQ(findings(), "");
}

// --- the description

TEST_F(Check, AMissingDescriptionIsToldAndTheMarksAreStillLookedAt)
{
    fs::remove(base + ".var");
    sample.setBytes(".jnl", "x");
    EXPECT_EQ(texts(),
              (Texts{"sample.var: is missing",
                     "sample.jnl: a change was cut off; the next opening for writing puts it right"}));
    fs::create_directory(base + ".var");
    EXPECT_EQ(texts().at(0), "sample.var: can't be read");
}

TEST_F(Check, ADescriptionThatCantBeParsedIsToldWithItsLine)
{
    change(".var", [](std::string& text) { text = common::replaceAll(text, "Nstat: 6", "Nstat: x"); });
    EXPECT_EQ(texts(), Texts{"sample.var: line 4: no valid number of stations"});
}

TEST_F(Check, LabelsAndFormatsOfTheDescriptionAreLookedAt)
{
    change(".var", [](std::string& text) {
        text.replace(text.find("Salinity [psu]"), 14, std::string(14, ' '));
        const std::size_t oxygen = text.find("Oxygen");
        text.replace(oxygen + 60, 4, " 2.9");
        text += "more\n";
    });
    EXPECT_EQ(texts(), (Texts{"sample.var: line 9: no label",
                              "sample.var: line 10: no width and decimals, or others than a format can have",
                              "-sample.var: lines behind the last variable"}));
    change(".var", [](std::string& text) { text.resize(text.find("Oxygen") - 1); });
    EXPECT_TRUE(contains(texts(), "sample.var: ends before line 10: variables 4 to 4 have no label"));
}

TEST_F(Check, ADescriptionThatTellsAnotherNameIsTold)
{
    change(".var", [](std::string& text) { text = common::replaceAll(text, ": sample", ": other"); });
    EXPECT_EQ(texts(), Texts{"sample.var: line 2: tells of the name other, so that the files of this name "
                             "are opened"});
    fs::remove(base + ".hob");
    EXPECT_TRUE(contains(texts(), "sample.hob: is missing or can't be read"));
}

// --- the header table

TEST_F(Check, AMissingOrForeignHeaderTableIsTold)
{
    change(".hob", [](std::string& bytes) { bytes[3] = '5'; });
    EXPECT_EQ(texts(), Texts{"sample.hob: doesn't begin like a header table"});
    sample.setBytes(".hob", "NVQ");
    EXPECT_TRUE(contains(texts(), "sample.hob: ends before its first header"));
    fs::remove(base + ".hob");
    EXPECT_TRUE(contains(texts(), "sample.hob: is missing or can't be read"));
    fs::create_directory(base + ".hob");
    EXPECT_TRUE(contains(texts(), "sample.hob: is missing or can't be read"));
}

TEST_F(Check, AHeaderTableOfAnotherSizeIsTold)
{
    change(".hob", [](std::string& bytes) { bytes += "abc"; });
    EXPECT_EQ(texts(), Texts{"-sample.hob: 3 bytes behind the last header are not in use"});
    change(".hob", [](std::string& bytes) { bytes.resize(6 + 5 * 88 + 87); });
    EXPECT_TRUE(contains(
        texts(), "sample.hob: ends behind the header of station 5, but the description tells of 6 stations"));
}

TEST_F(Check, EveryFaultOfARecordIsToldWithItsStations)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    setInRecord(1, 52, nan);
    setInRecord(2, 80, std::int16_t{0});
    setInRecord(3, 82, std::int16_t{99});
    setInRecord(4, 76, std::int32_t{5});
    setInRecord(5, 72, std::int32_t{100000});
    for (std::size_t i = 0; i < 21; ++i) setInRecord(6, i, 'x');
    const Texts all = texts();
    for (const char* const text :
         {"station 1: a position or depth is no number", "station 2: no levels",
          "station 3: a variable has more values than the station has levels, or fewer than none",
          "station 4: the number of cells isn't that of levels and variables, or too large",
          "station 5: the data block doesn't lie inside the .dob file",
          "station 6: a label or the type has no end in its field"}) {
        EXPECT_TRUE(contains(all, std::string("sample.hob: ") + text)) << text;
    }
}

TEST_F(Check, PositionsTimesAndTypesThatCantBeAreTold)
{
    setInRecord(1, 44, 361.0f);
    setInRecord(2, 44, -0.5f);
    setInRecord(3, 48, 90.5f);
    setInRecord(4, 64, std::int16_t{13});
    setInRecord(5, 66, std::int16_t{25});
    setInRecord(6, 42, '\0');
    const Texts all = texts();
    EXPECT_TRUE(contains(all, "sample.hob: stations 1 to 3: the position isn't on the globe"));
    EXPECT_TRUE(contains(all, "sample.hob: stations 4 to 5: date or time can't be"));
    EXPECT_TRUE(contains(all, "sample.hob: station 6: the type isn't a letter"));
}

TEST_F(Check, ATimeThatIsntKnownIsNoFinding)
{
    for (std::size_t offset = 60; offset < 70; offset += 2) setInRecord(1, offset, std::int16_t{0});
    setInRecord(2, 66, std::int16_t{-1});
    setInRecord(2, 62, std::int16_t{-1});
    fs::remove(base + ".inv");
    EXPECT_EQ(texts(), Texts{});
}

// --- the data blocks

TEST_F(Check, BlocksThatShareBytesAreTold)
{
    setInRecord(4, 72, headerOf(3).dataOffset + 1);
    const Texts all = texts();
    EXPECT_TRUE(contains(all, "sample.dob: stations 3 to 4: the data block shares bytes with that of another "
                              "station"));
}

TEST_F(Check, TheBlockOfTheLastStationMustBeTheLast)
{
    // The last two headers exchanged
    change(".hob", [](std::string& bytes) {
        std::swap_ranges(bytes.begin() + 6 + 4 * 88, bytes.begin() + 6 + 5 * 88, bytes.begin() + 6 + 5 * 88);
    });
    EXPECT_TRUE(contains(texts(), "sample.dob: the block of the last station, 6, isn't the last one: that of "
                                  "station 5 reaches farther"));
}

TEST_F(Check, CellsThatContradictTheHeaderAreTold)
{
    const auto setCell = [this](int number, int cell, float value) {
        change(".dob", [&](std::string& bytes) {
            std::memcpy(bytes.data() + headerOf(number).dataOffset + 4 * cell, &value, sizeof value);
        });
    };
    setCell(1, 3, std::numeric_limits<float>::infinity());
    setCell(2, 5, missing);
    setCell(3, 4, 1234);    // the last of 5 levels of the primary variable
    setCell(4, 5, missing); // the last of 6
    change(".dob", [this](std::string& bytes) {
        bytes[static_cast<std::size_t>(headerOf(6).dataOffset + 5 * headerOf(6).valueCount - 1)] = 9;
    });
    EXPECT_EQ(texts(),
              (Texts{"sample.hob: stations 3 to 4: the deepest sample isn't the last value of the primary "
                     "variable",
                     "sample.dob: station 1: values that are no finite numbers",
                     "sample.dob: stations 1 to 2: a count of values in the header isn't that of the data "
                     "block",
                     "-sample.dob: station 6: quality flags above 8, which no limit tells apart"}));
}

TEST_F(Check, TheDeepestSampleCountsInHydrographicCollectionsOnly)
{
    change(".var", [](std::string& text) { text = common::replaceAll(text, "Type: HYD", "Type: XYZ"); });
    setInRecord(3, 56, 7.0f);
    EXPECT_EQ(texts(), Texts{});
}

TEST_F(Check, BytesBehindTheLastBlockAreRemarked)
{
    change(".dob", [](std::string& bytes) { bytes += "abcd"; });
    EXPECT_EQ(texts(), Texts{"-sample.dob: 4 bytes behind the last block are not in use"});
}

TEST_F(Check, AMissingDataFileIsTold)
{
    fs::remove(base + ".dob");
    EXPECT_EQ(texts(), Texts{"sample.dob: is missing or can't be read"});
}

// --- the inventory

TEST_F(Check, AnInventoryThatDiffersFromTheHeadersIsTold)
{
    change(".inv", [](std::string& text) {
        text = common::replaceAll(text, "(10:10)", "(10:11)");
        text = common::replaceAll(text, "2 cruises", "3 cruises");
        text += "C\tB\t(1:1)\n";
    });
    EXPECT_EQ(texts(), (Texts{"sample.inv: line 2: not the counts of the headers",
                              "sample.inv: lines 3 to 4: not what the headers of the cruise give",
                              "sample.inv: line 5: no station is of this cruise and type"}));
}

TEST_F(Check, MissingAndMisplacedEntriesAreTold)
{
    const std::string good = sample.bytes(".inv");
    change(".inv", [](std::string& text) { text.resize(text.find("\nB\tB") + 1); });
    EXPECT_EQ(texts(), Texts{"sample.inv: lacks entries that the headers give: 1"});
    change(".inv", [&](std::string& text) {
        const std::size_t a = good.find("\nA\tB") + 1, b = good.find("\nB\tB") + 1;
        text = good.substr(0, a) + good.substr(b) + good.substr(a, b - a);
    });
    EXPECT_TRUE(contains(texts(), "sample.inv: line 4: not in the order of cruises"));
}

TEST_F(Check, TypesOfACruiseMayStandInAnyOrder)
{
    ASSERT_EQ(sample.collection.openStationFiles(base, sample.user), OpenFilesResult::ok);
    ASSERT_EQ(sample.put(profile(2, 4), 0, "A", "7", "C"), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(base));
    sample.collection.readInventory(true, sample.user);
    sample.collection.closeStationFiles();
    EXPECT_EQ(texts(), Texts{});
    change(".inv", [](std::string& text) {
        const std::size_t b = text.find("\nA\tB") + 1, c = text.find("\nA\tC") + 1,
                          d = text.find("\nB\t") + 1;
        text = text.substr(0, b) + text.substr(c, d - c) + text.substr(b, c - b) + text.substr(d);
    });
    change(".cid", [](std::string& bytes) { // the indices follow the file
        for (std::size_t i = 0; i < bytes.size(); i += 4)
            if (bytes[i] < 2) bytes[i] = static_cast<char>(1 - bytes[i]);
    });
    EXPECT_EQ(texts(), Texts{});
}

TEST_F(Check, AnInventoryThatWontBeUsedIsARemark)
{
    fs::last_write_time(base + ".hob", fs::last_write_time(base + ".inv") + std::chrono::seconds(5));
    EXPECT_EQ(texts(), (Texts{"-sample.inv: older than the headers; the next opening makes it anew",
                              "-sample.cid: older than the headers; the next opening makes it anew"}));
    fs::remove(base + ".inv");
    fs::remove(base + ".cid");
    EXPECT_EQ(texts(), Texts{});
}

TEST_F(Check, CruiseIndicesThatDifferAreTold)
{
    change(".cid", [](std::string& bytes) { bytes[4] = 1; });
    EXPECT_EQ(texts(), Texts{"sample.cid: station 2: not the index of the station's cruise"});
    change(".cid", [](std::string& bytes) { bytes.resize(23); });
    EXPECT_EQ(texts(), Texts{"sample.cid: 23 bytes, but the indices of 6 stations have 24"});
}

// --- the small files

TEST_F(Check, VariableIdsOutOfRangeOrFormAreTold)
{
    sample.setBytes(".idv", "Depth [m]=1\na=0\nb=5\nstrange\nc=x\n" + std::string(119, 'k') + "=1\nd=4\n");
    EXPECT_EQ(texts(),
              (Texts{"sample.idv: lines 4, 6: not a key, \"=\" and a number in at most 119 bytes",
                     "sample.idv: lines 2 to 3, 5: not the number of a variable of the collection"}));
}

TEST_F(Check, LastFilesOfOtherThanFiveLinesAreTold)
{
    sample.setBytes(".cfl", "a\nb\n" + std::string(256, 'c') + "\n");
    EXPECT_EQ(texts(), (Texts{"sample.cfl: 3 lines instead of 5",
                              "sample.cfl: line 3: not a file's name of at most 255 bytes"}));
}

TEST_F(Check, AHeldLockAndWhatWasLeftBehindAreRemarks)
{
    sample.setBytes(".lck", "me");
    EXPECT_EQ(texts(), Texts{});
    const common::FilePtr lock = common::openFile(base + ".lck", "rb");
    ASSERT_EQ(::flock(::fileno(lock.get()), LOCK_EX), 0);
    sample.setBytes(".jnl", "x");
    sample.setBytes(".var.123.1.tmp", "x");
    EXPECT_EQ(texts(), (Texts{"-sample.jnl: a change is going on",
                              "-sample.lck: the collection is open for writing in a program",
                              "-sample.var.123.1.tmp: left behind by a program that was broken off"}));
    const common::FilePtr target = common::openFile(sample.directory.file("TRG.hob"), "wb");
    EXPECT_TRUE(contains(texts(), "-TRG.hob: left behind by a program that was broken off"));
}

TEST_F(Check, TheLockOfThisProgramIsNotTold)
{
    RCollectionLock lock;
    ASSERT_TRUE(lock.acquire(base));
    EXPECT_EQ(texts(), Texts{});
}

TEST_F(Check, TheTargetOfARunningProgramIsNotLeftBehind)
{
    const common::FilePtr target = common::openFile(sample.directory.file("TRG.hob"), "wb");
    const common::FilePtr other = common::openFile(sample.directory.file("TRG.txt"), "wb");
    EXPECT_EQ(texts(), Texts{"-TRG.hob: left behind by a program that was broken off"});
    RCollectionLock lock;
    ASSERT_TRUE(lock.acquire(sample.directory.file("TRG")));
    EXPECT_EQ(texts(), Texts{});
}

// --- bounds

TEST_F(Check, AWreckedCollectionGivesAPage)
{
    constexpr int stations = 20000;
    std::string hob = "NVQ4.0";
    hob.resize(6 + 88 * stations, '\xff');
    sample.setBytes(".hob", hob);
    change(".var", [](std::string& text) { text = common::replaceAll(text, "Nstat: 6", "Nstat: 20000"); });
    const Texts all = texts();
    EXPECT_LT(all.size(), 20U);
    EXPECT_TRUE(contains(all, "sample.hob: stations 1 to 20000: a position or depth is no number"));
}

TEST_F(Check, AHugeCountBesideAShortTableCostsNothing)
{
    change(".var",
           [](std::string& text) { text = common::replaceAll(text, "Nstat: 6", "Nstat: 2147483647"); });
    EXPECT_TRUE(contains(texts(),
                         "sample.hob: ends behind the header of station 6, but the description tells "
                         "of 2147483647 stations"));
}

TEST_F(Check, EscBreaksItOff)
{
    ASSERT_EQ(sample.collection.openStationFiles(base, sample.user), OpenFilesResult::ok);
    for (int i = 0; i < 300; ++i) ASSERT_EQ(sample.put(profile(1, 4)), WriteResult::ok);
    ASSERT_TRUE(sample.collection.writeVarFile(base));
    user.abortAfter = 2;
    result = checkCollection(base, user);
    EXPECT_FALSE(result.complete);
    EXPECT_EQ(user.messages, Texts{"Check Collection: Really Want to Abort?"});
    EXPECT_EQ(user.statusTexts, Texts{"Checking collection ...     ESC aborts"});
}

} // namespace
} // namespace collection
