// Collections whose files were damaged: whatever stands in them, opening, reading and checking them ends,
// says what is wrong, and changes nothing.

#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "collection/check.h"
#include "collection/sidefiles.h"
#include "contents.h"
#include "memorylimit.h"
#include "unprivileged.h"

namespace collection {
namespace {

namespace fs = std::filesystem;
using testing_support::profile;
using testing_support::RSampleCollection;
using testing_support::RScriptedUser;

constexpr auto suffixes =
    std::to_array<std::string_view>({".var", ".hob", ".dob", ".inv", ".cid", ".idv", ".cfl"});

// Directories of tests in memory, where flushing costs nothing.
class RMemoryFolder {
public:
    RMemoryFolder()
    {
        if (const char* const old = std::getenv("TMPDIR")) old_ = old;
        if (fs::is_directory("/dev/shm")) ::setenv("TMPDIR", "/dev/shm", 1);
    }
    ~RMemoryFolder()
    {
        if (old_) {
            ::setenv("TMPDIR", old_->c_str(), 1);
        } else {
            ::unsetenv("TMPDIR");
        }
    }
    RMemoryFolder(const RMemoryFolder&) = delete;
    RMemoryFolder& operator=(const RMemoryFolder&) = delete;

private:
    std::optional<std::string> old_;
};

// A closed collection of few bytes with all its files.
class Damage : public testing::Test {
protected:
    Damage()
    {
        for (int i = 1; i <= 5; ++i) {
            std::vector<std::vector<float>> columns = profile(1 + i, 3, static_cast<float>(i));
            if (i == 3) columns[1].clear();
            EXPECT_EQ(sample.put(columns, 0, i % 2 == 0 ? "A" : "B", std::to_string(i)), WriteResult::ok);
        }
        EXPECT_TRUE(sample.collection.writeVarFile(base));
        sample.collection.readInventory(true, sample.user);
        EXPECT_TRUE(sample.collection.setVariableId("Depth [m]", 1));
        EXPECT_TRUE(writeLastFiles(base, sample.directory.path(), {}));
        sample.collection.closeStationFiles();
        for (std::size_t i = 0; i < suffixes.size(); ++i) good[i] = bytesOf(suffixes[i]);
        restore();
    }

    [[nodiscard]] std::string bytesOf(std::string_view suffix) const
    {
        return common::readFile(base + std::string(suffix)).value_or("missing");
    }
    void set(std::string_view suffix, const std::string& bytes) const
    {
        sample.setBytes(std::string(suffix), bytes);
    }
    // Everything as it was, and the files made from others younger than these.
    void restore()
    {
        for (std::size_t i = 0; i < suffixes.size(); ++i) {
            if (bytesOf(suffixes[i]) != good[i]) set(suffixes[i], good[i]);
        }
        makeYounger();
    }
    void makeYounger() const
    {
        for (const char* const suffix : {".inv", ".cid"})
            fs::last_write_time(base + suffix, fs::file_time_type::clock::now() + std::chrono::hours(1));
    }

    static void expectSound(const STATIONDATA& station, int variables)
    {
        ASSERT_GE(station.levels(), 1);
        int blocks = 0;
        for (int v = 1; v <= variables; ++v) {
            const auto at = static_cast<std::size_t>(v);
            if (station.offset[at] < 0) continue;
            ASSERT_EQ(station.offset[at], blocks * station.levels());
            ++blocks;
        }
        ASSERT_EQ(station.header.valueCount, blocks * station.levels());
        ASSERT_LE(station.header.valueCount, common::maxCells);
        for (int cell = 0; cell < station.header.valueCount; ++cell)
            ASSERT_TRUE(std::isfinite(station.values[static_cast<std::size_t>(cell)]));
    }

    void readAll(RCollection& collection, RScriptedUser& user)
    {
        collection.readInventory(false, user);
        EXPECT_LE(collection.cruises.size(), static_cast<std::size_t>(collection.stationCount));
        EXPECT_EQ(collection.readCruiseIndices(false).size(),
                  static_cast<std::size_t>(collection.stationCount));
        for (int n = 1; n <= collection.stationCount; ++n) {
            const LoadResult result = collection.loadStation(n, sample.station, true);
            if (result == LoadResult::ok) expectSound(sample.station, collection.variableCount);
            EXPECT_EQ(sample.station.number, result == LoadResult::ok ? n : 0);
        }
        EXPECT_LE(collection.getVariableId("Depth [m]"), collection.variableCount);
        LASTFILES files;
        EXPECT_TRUE(readLastFiles(base, collection.directory, files));
    }

    // Opens what is there and reads all of it. False if anything was told on the way.
    bool openAndRead(bool writable)
    {
        RScriptedUser user;
        RCollection collection;
        collection.writable = writable;
        collection.tempDirectory = sample.directory.path();
        if (collection.openStationFiles(base, user) == OpenFilesResult::ok) {
            readAll(collection, user);
        } else {
            EXPECT_FALSE(user.messages.empty());
        }
        EXPECT_LE(user.messages.size() + user.notes.size(), 4U);
        return user.messages.empty() && user.notes.empty();
    }

    // One damaged collection through everything. Returns whether the check found it inconsistent.
    bool survive(bool writable)
    {
        std::array<std::string, suffixes.size()> before;
        for (std::size_t i = 0; i < suffixes.size(); ++i) before[i] = bytesOf(suffixes[i]);
        RScriptedUser user;
        const CHECKRESULT result = checkCollection(base, user);
        EXPECT_TRUE(user.messages.empty() && user.notes.empty());
        EXPECT_LE(result.findings.size(), 40U);
        for (const FINDING& finding : result.findings) EXPECT_LE(finding.text.size(), 1000U);
        const bool quiet = openAndRead(writable);
        EXPECT_TRUE(quiet || result.inconsistencies > 0) << "an opening tells more than the check";
        for (std::size_t i = 0; i < suffixes.size(); ++i) {
            const bool rebuilt = writable && (suffixes[i] == ".inv" || suffixes[i] == ".cid");
            EXPECT_TRUE(rebuilt || bytesOf(suffixes[i]) == before[i]) << suffixes[i] << " was changed";
        }
        return result.inconsistencies > 0;
    }

    const RMemoryFolder inMemory;
    RSampleCollection sample{3};
    const std::string base = sample.collection.path;
    std::array<std::string, suffixes.size()> good;
};

std::string damaged(std::string bytes, std::mt19937& random)
{
    const auto any = [&](std::size_t end) { return static_cast<std::size_t>(random() % end); };
    const auto anyByte = [&] { return static_cast<char>(random() % 256); };
    switch (random() % 8) {
    case 0: // cut
        bytes.resize(any(bytes.size()));
        break;
    case 1: // a piece is something else
        for (std::size_t i = any(bytes.size()), n = 1 + any(24); i < bytes.size() && n > 0; ++i, --n)
            bytes[i] = anyByte();
        break;
    case 2: // a piece is missing
        bytes.erase(any(bytes.size()), 1 + any(8));
        break;
    case 3: // a digit is another
        for (int tries = 0; tries < 200; ++tries) {
            char& c = bytes[any(bytes.size())];
            if (c < '0' || c > '9') continue;
            c = static_cast<char>('0' + random() % 10);
            break;
        }
        break;
    default: // flipped bits
        for (std::size_t n = 1 + any(4); n > 0; --n) {
            char& c = bytes[any(bytes.size())];
            c = static_cast<char>(static_cast<unsigned char>(c) ^ (1U << (random() % 8)));
        }
        break;
    }
    return bytes;
}

TEST_F(Damage, TheWholeCollectionPassesAsItIs)
{
    EXPECT_FALSE(survive(false));
    EXPECT_TRUE(openAndRead(false));
    EXPECT_FALSE(survive(true));
    EXPECT_TRUE(openAndRead(true));
}

TEST_F(Damage, TenThousandDamagedCollectionsAreSurvivedAndLeftAsTheyAre)
{
    constexpr int variants = 10000, writableEach = 10;
    std::mt19937 random(20240607);
    int found = 0;
    for (int i = 0; i < variants; ++i) {
        const auto file = static_cast<std::size_t>(random() % suffixes.size());
        set(suffixes[file], damaged(good[file], random));
        makeYounger();
        const bool writable = i % writableEach == 0;
        found += survive(writable);
        set(suffixes[file], good[file]);
        if (writable) restore();
        ASSERT_FALSE(HasFailure()) << "variant " << i << ", damaged " << suffixes[file];
    }
    EXPECT_GT(found, variants / 2); // values and labels hold no proof of what they were
    makeYounger();
    EXPECT_TRUE(openAndRead(false));
}

TEST_F(Damage, FilesCutAtEveryLengthAreSurvivedAndLeftAsTheyAre)
{
    for (std::size_t file = 0; file < suffixes.size(); ++file) {
        const bool isEssential = file < 3 || suffixes[file] == ".cid";
        for (std::size_t length = 0; length < good[file].size(); ++length) {
            set(suffixes[file], good[file].substr(0, length));
            makeYounger();
            const bool found = survive(false);
            // A description without the end of its last line still tells all.
            const bool isWhole = suffixes[file] == ".var" && length + 4 > good[file].size();
            ASSERT_TRUE(found || isWhole || !isEssential) << suffixes[file] << " of " << length;
            ASSERT_FALSE(HasFailure()) << suffixes[file] << " of " << length;
        }
        restore();
    }
}

TEST_F(Damage, MissingFilesAndFoldersInTheirPlacesAreSurvived)
{
    for (const std::string_view suffix : suffixes) {
        const std::string file = base + std::string(suffix);
        fs::remove(file);
        const bool needed = suffix == ".var" || suffix == ".hob" || suffix == ".dob";
        RScriptedUser user;
        EXPECT_EQ(checkCollection(base, user).inconsistencies > 0, needed) << suffix;
        RCollection collection;
        EXPECT_EQ(collection.openStationFiles(base, user) == OpenFilesResult::ok, !needed) << suffix;
        fs::create_directory(file);
        EXPECT_EQ(collection.openStationFiles(base, user) == OpenFilesResult::ok, !needed) << suffix;
        if (!needed) {
            EXPECT_EQ(collection.readInventory(false, user), 2);
            EXPECT_EQ(collection.readCruiseIndices(false).size(), 5U);
            EXPECT_EQ(collection.getVariableId("Depth [m]"), suffix == ".idv" ? 0 : 1);
        }
        static_cast<void>(checkCollection(base, user));
        EXPECT_TRUE(fs::is_directory(file));
        fs::remove(file);
        restore();
    }
}

// --- files that change while they are open

class DamageWhileOpen : public Damage {
protected:
    DamageWhileOpen()
    {
        collection.writable = true;
        EXPECT_EQ(collection.openStationFiles(base, user), OpenFilesResult::ok);
    }
    RScriptedUser user;
    RCollection collection;
};

TEST_F(DamageWhileOpen, AHeaderTableThatShrinksGivesFailedReadsAndOneNote)
{
    fs::resize_file(base + ".hob", 6 + 2 * 86 + 10);
    for (int n = 1; n <= 5; ++n) { // what was read ahead may still come out
        const LoadResult result = collection.loadStation(n, sample.station, false);
        EXPECT_TRUE(result == LoadResult::ok || (n > 2 && result == LoadResult::badHeader)) << n;
    }
    collection.readInventory(true, user);
    EXPECT_EQ(user.notes, std::vector<std::string>{base + ".hob: can't be read to its end"});
    RScriptedUser checker;
    EXPECT_GT(checkCollection(base, checker).inconsistencies, 0);
}

TEST_F(DamageWhileOpen, ADataFileThatShrinksGivesFailedReads)
{
    fs::resize_file(base + ".dob", 20);
    for (int n = 1; n <= 5; ++n) {
        EXPECT_EQ(collection.loadStation(n, sample.station, false), LoadResult::badData) << n;
        EXPECT_EQ(sample.station.number, 0);
    }
    EXPECT_EQ(collection.readInventory(true, user), 2); // needs the headers only
    EXPECT_TRUE(user.notes.empty());
}

TEST_F(DamageWhileOpen, AfterTheyShrankNothingIsWrittenOverWhatIsLeft)
{
    fs::resize_file(base + ".hob", 6 + 2 * 86 + 10);
    testing_support::fillStation(sample.station, profile(40, 3));
    testing_support::label(sample.station, "A", "2");
    const std::string hob = bytesOf(".hob"), dob = bytesOf(".dob");
    EXPECT_NE(collection.writeStation(1, sample.station, false), WriteResult::ok);
    EXPECT_EQ(bytesOf(".hob").substr(0, hob.size()), hob);
    EXPECT_EQ(bytesOf(".dob").substr(0, dob.size()), dob);
}

TEST_F(DamageWhileOpen, RemovedFilesAreStillReadAndNoChangeBegins)
{
    fs::remove(base + ".hob");
    fs::remove(base + ".dob");
    for (int n = 1; n <= 5; ++n)
        EXPECT_EQ(collection.loadStation(n, sample.station, false), LoadResult::ok) << n;
    EXPECT_FALSE(collection.beginChange("IMPORT"));
    EXPECT_EQ(collection.readInventory(true, user), 2);
    RScriptedUser checker;
    EXPECT_EQ(checkCollection(base, checker).findings.at(0).text, "sample.hob: is missing or can't be read");
}

// --- rights

TEST_F(Damage, AFolderThatCantBeWrittenToIsReadAndLeftAsItIs)
{
    const testing_support::RTemporaryDirectory elsewhere;
    fs::permissions(elsewhere.path(), fs::perms::all);
    fs::remove(base + ".inv");
    fs::permissions(sample.directory.path(), fs::perms::owner_read | fs::perms::owner_exec |
                                                 fs::perms::group_read | fs::perms::group_exec |
                                                 fs::perms::others_read | fs::perms::others_exec);
    {
        const testing_support::RUnprivileged nobody;
        ASSERT_TRUE(nobody.works());
        EXPECT_FALSE(filesAreWritable(base, sample.directory.path(), false));
        RScriptedUser user;
        RCollection collection;
        collection.tempDirectory = elsewhere.path();
        ASSERT_EQ(collection.openStationFiles(base, user), OpenFilesResult::ok);
        EXPECT_TRUE(collection.openTemporaryFiles());
        EXPECT_EQ(collection.readInventory(false, user), 2);
        EXPECT_FALSE(writeLastFiles(base, sample.directory.path(), {}));
        EXPECT_EQ(checkCollection(base, user).inconsistencies, 0);
        EXPECT_TRUE(user.messages.empty());
    }
    fs::permissions(sample.directory.path(), fs::perms::owner_all);
    EXPECT_FALSE(common::fileExists(base + ".inv"));
}

// --- sizes that are told and not there

TEST_F(Damage, AHugeCountCostsNoMemory)
{
    const std::string huge = common::replaceAll(good[0], "Nstat: 5", "Nstat: 2147483647");
    set(".var", huge);
    {
        std::optional<testing_support::RMemoryLimit> limit;
        if (testing_support::memoryCanBeLimited) limit.emplace(32 << 20);
        RScriptedUser user;
        RCollection collection;
        collection.writable = true;
        ASSERT_EQ(collection.openStationFiles(base, user), OpenFilesResult::ok);
        EXPECT_EQ(collection.stationCount, 5);
        EXPECT_FALSE(collection.writable);
        EXPECT_EQ(collection.readInventory(false, user), 2);
        EXPECT_EQ(collection.readCruiseIndices(true).size(), 5U);
        EXPECT_GT(checkCollection(base, user).inconsistencies, 0);
    }
    EXPECT_EQ(bytesOf(".var"), huge);
}

TEST_F(Damage, HugeSideFilesCostNoMemory)
{
    fs::resize_file(base + ".cid", std::uintmax_t{1} << 33U); // with a hole
    fs::resize_file(base + ".inv", std::uintmax_t{1} << 33U);
    makeYounger();
    std::optional<testing_support::RMemoryLimit> limit;
    if (testing_support::memoryCanBeLimited) limit.emplace(32 << 20);
    RScriptedUser user;
    RCollection collection;
    ASSERT_EQ(collection.openStationFiles(base, user), OpenFilesResult::ok);
    EXPECT_EQ(collection.readInventory(false, user), 2);
    EXPECT_EQ(collection.readCruiseIndices(false).size(), 5U);
    EXPECT_EQ(checkCollection(base, user).inconsistencies, 2);
}

TEST_F(Damage, AnEmptyDescriptionIsRefused)
{
    set(".var", "");
    RScriptedUser user;
    RCollection collection;
    EXPECT_EQ(collection.openStationFiles(base, user), OpenFilesResult::badDescription);
    EXPECT_EQ(user.messages.size(), 1U);
    EXPECT_EQ(checkCollection(base, user).findings.at(0).text,
              "sample.var: line 1: Collection is of pre-NVQ4.0 Format");
}

} // namespace
} // namespace collection
