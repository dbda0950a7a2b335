// Copying, moving and deleting a collection as a family of files.

#include "collection/collectionfiles.h"

#include <chrono>
#include <random>
#include <thread>

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "collection/journal.h"
#include "collection/sidefiles.h"
#include "contents.h"
#include "filesizelimit.h"

namespace {

using collection::copyCollection;
using collection::deleteCollection;
using collection::FilesResult;
using collection::moveCollection;
using collection::recoverCollection;
using collection::RecoveryResult;
using collection::WriteResult;
using namespace testing_support;

using Labels = std::vector<std::string>;

// A closed collection with all its side files.
class RFamily : public RSampleCollection {
public:
    explicit RFamily(const std::string& name = "sample", int stations = 3, int levels = 4)
        : RSampleCollection(4, name)
    {
        for (int n = 1; n <= stations; ++n) {
            EXPECT_EQ(put(profile(levels, 4, static_cast<float>(n)), 0, "A", std::to_string(n)),
                      WriteResult::ok);
        }
        EXPECT_TRUE(collection.writeVarFile(collection.path));
        collection.readInventory(true, user);
        EXPECT_TRUE(collection.setVariableId("Depth [m]", 1));
        EXPECT_TRUE(common::writeFile(collection.path + ".cfl", "sample\n\n\n\n\n"));
        EXPECT_TRUE(common::writeFile(collection.path + ".info", "about " + name));
        EXPECT_TRUE(common::writeFile(collection.path + ".cfg", "configuration"));
        contents = contentsOf(collection);
        path = collection.path;
        collection.closeStationFiles();
    }

    Labels contents;
    std::string path;
};

std::string fileOf(const std::string& path)
{
    return common::readFile(path).value_or("missing");
}

// All of a collection but description, default configuration.
std::vector<std::string> bytesOf(const std::string& path)
{
    std::vector<std::string> bytes;
    for (const char* const suffix : {".hob", ".dob", ".idv", ".inv", ".cid", ".log", ".cfl", ".info"})
        bytes.push_back(fileOf(path + suffix));
    return bytes;
}

const Labels familySuffixes = {".cfl", ".cid", ".dob", ".hob", ".idv", ".info", ".inv", ".log", ".var"};

Labels namesWith(const std::string& name, Labels suffixes)
{
    for (std::string& suffix : suffixes) suffix.insert(0, name);
    return suffixes;
}

TEST(CollectionName, BlanksColonsAndSlashesBecomeUnderscores)
{
    EXPECT_EQ(collection::collectionName("a b:c"), "a_b_c");
    EXPECT_EQ(collection::collectionName("a/b\tc\n"), "a_b_c_");
    EXPECT_EQ(collection::collectionName("Ätlas-2.1"), "Ätlas-2.1");
    EXPECT_EQ(collection::collectionName(""), "");
}

TEST(CopyCollection, TakesEverythingButTheDefaultConfiguration)
{
    const RFamily family;
    const auto before = snapshotOf(family.directory.path());
    const std::string target = family.directory.file("copy");
    ASSERT_EQ(copyCollection(family.path, target), FilesResult::ok);
    EXPECT_EQ(bytesOf(target), bytesOf(family.path));
    EXPECT_EQ(contentsOnDisk(target), family.contents);
    EXPECT_NE(fileOf(target + ".var").find("Collection: copy\n"), std::string::npos);
    auto after = snapshotOf(family.directory.path());
    EXPECT_EQ(after.size(), before.size() + familySuffixes.size());
    EXPECT_EQ(fileOf(target + ".cfg"), "missing");
    std::erase_if(after, [](const auto& file) { return file.first.starts_with("copy."); });
    EXPECT_EQ(after, before);
}

TEST(CopyCollection, NameWithBlanksAndColonIsStoredWithUnderscores)
{
    const RFamily family;
    ASSERT_EQ(copyCollection(family.path, family.directory.file("a b:c")), FilesResult::ok);
    EXPECT_EQ(contentsOnDisk(family.directory.file("a_b_c")), family.contents);
    EXPECT_NE(fileOf(family.directory.file("a_b_c.var")).find("Collection: a_b_c\n"), std::string::npos);
}

TEST(CopyCollection, ReplacesATargetWhole)
{
    const RFamily family;
    RFamily old("old", 7);
    const std::string target = family.directory.file("old");
    for (const std::string& name : filesIn(old.directory.path()))
        std::filesystem::rename(old.directory.file(name), family.directory.file(name));
    std::filesystem::remove(family.path + ".idv"); // the target's own goes with it
    ASSERT_EQ(copyCollection(family.path, target), FilesResult::ok);
    EXPECT_EQ(contentsOnDisk(target), family.contents);
    EXPECT_EQ(bytesOf(target), bytesOf(family.path));
    EXPECT_EQ(fileOf(target + ".cfg"), "configuration"); // not the copy's business
}

TEST(CopyCollection, InventoryIsAsCurrentAsTheSources)
{
    const RFamily family;
    const auto time = std::filesystem::last_write_time(family.path + ".hob");
    std::filesystem::last_write_time(family.path + ".hob", time + std::chrono::hours(1)); // stale .inv
    const std::string target = family.directory.file("copy");
    ASSERT_EQ(copyCollection(family.path, target), FilesResult::ok);
    EXPECT_LT(std::filesystem::last_write_time(target + ".inv"),
              std::filesystem::last_write_time(target + ".hob"));
}

TEST(CopyCollection, MissingSideFilesAreNoFailure)
{
    const RFamily family;
    for (const char* const suffix : {".inv", ".cid", ".idv", ".cfl", ".log", ".info"})
        std::filesystem::remove(family.path + suffix);
    ASSERT_EQ(copyCollection(family.path, family.directory.file("copy")), FilesResult::ok);
    EXPECT_EQ(contentsOnDisk(family.directory.file("copy")), family.contents);
}

TEST(CopyCollection, MissingStationFileOrDescriptionIsOne)
{
    for (const char* const suffix : {".hob", ".dob", ".var"}) {
        const RFamily family;
        std::filesystem::remove(family.path + suffix);
        const auto before = snapshotOf(family.directory.path());
        const FilesResult wanted =
            suffix == std::string(".var") ? FilesResult::description : FilesResult::stationFiles;
        EXPECT_EQ(copyCollection(family.path, family.directory.file("copy")), wanted) << suffix;
        EXPECT_EQ(moveCollection(family.path, family.directory.file("copy")), wanted) << suffix;
        EXPECT_EQ(snapshotOf(family.directory.path()), before) << suffix;
    }
}

TEST(CopyCollection, OntoItselfIsRefused)
{
    const RFamily family;
    const std::string& folder = family.directory.path();
    std::filesystem::create_directory_symlink(folder, family.directory.file("link"));
    const auto before = snapshotOf(folder);
    for (const std::string& target :
         {family.path, folder + "./sample", folder + "link/sample", folder + "link/./sample"}) {
        EXPECT_EQ(copyCollection(family.path, target), FilesResult::sameCollection) << target;
        EXPECT_EQ(moveCollection(family.path, target), FilesResult::sameCollection) << target;
    }
    std::filesystem::create_hard_link(family.path + ".hob", folder + "twin.hob");
    EXPECT_EQ(copyCollection(family.path, folder + "twin"), FilesResult::sameCollection);
    std::filesystem::remove(folder + "twin.hob");
    EXPECT_EQ(snapshotOf(folder), before);
}

TEST(CopyCollection, NeedsANameAndAFolder)
{
    const RFamily family;
    const std::string& folder = family.directory.path();
    const auto before = snapshotOf(folder);
    for (const std::string& target : {folder, folder + "nowhere/copy", folder + ".", folder + ".."}) {
        EXPECT_EQ(copyCollection(family.path, target), FilesResult::badName) << target;
        EXPECT_EQ(moveCollection(family.path, target), FilesResult::badName) << target;
    }
    EXPECT_EQ(snapshotOf(folder), before);
}

TEST(CopyCollection, FolderThatCantBeWrittenTo)
{
    const RFamily family;
    const auto before = snapshotOf(family.directory.path());
    EXPECT_EQ(copyCollection(family.path, "/proc/copy"), FilesResult::badName);
    EXPECT_EQ(moveCollection(family.path, "/proc/copy"), FilesResult::badName);
    EXPECT_EQ(snapshotOf(family.directory.path()), before);
}

TEST(CopyCollection, FolderInThePlaceOfAFile)
{
    for (const char* const name : {"copy.hob", "copy.var", "copy.dob_new"}) {
        const RFamily family;
        std::filesystem::create_directory(family.directory.file(name));
        const auto before = snapshotOf(family.directory.path());
        EXPECT_EQ(copyCollection(family.path, family.directory.file("copy")), FilesResult::badName) << name;
        EXPECT_EQ(snapshotOf(family.directory.path()), before) << name;
    }
}

TEST(CopyCollection, FullDiskLeavesTheTargetAsItWas)
{
    const RFamily family("sample", 50, 100);
    RFamily old("old", 2);
    for (const std::string& name : filesIn(old.directory.path()))
        std::filesystem::rename(old.directory.file(name), family.directory.file(name));
    const auto before = snapshotOf(family.directory.path());
    {
        const RFileSizeLimit limit(20000);
        EXPECT_EQ(copyCollection(family.path, family.directory.file("old")), FilesResult::stationFiles);
        EXPECT_EQ(copyCollection(family.path, family.directory.file("new")), FilesResult::stationFiles);
        EXPECT_EQ(moveCollection(family.path, family.directory.file("old")), FilesResult::stationFiles);
    }
    EXPECT_EQ(snapshotOf(family.directory.path()), before);
}

TEST(CopyCollection, UnsettledSourceIsRefused)
{
    const RFamily family;
    ASSERT_TRUE(common::writeFile(family.path + ".jnl", "something"));
    EXPECT_EQ(copyCollection(family.path, family.directory.file("copy")), FilesResult::stationFiles);
    EXPECT_EQ(moveCollection(family.path, family.directory.file("copy")), FilesResult::stationFiles);
}

TEST(CopyCollection, EmptyCollection)
{
    const RFamily family("sample", 0);
    ASSERT_EQ(copyCollection(family.path, family.directory.file("copy")), FilesResult::ok);
    EXPECT_TRUE(contentsOnDisk(family.directory.file("copy"), true).empty());
}

TEST(MoveCollection, TakesEverythingAndLeavesTheConfiguration)
{
    const RFamily family;
    const auto bytes = bytesOf(family.path);
    struct stat before {
    }, after{};
    ASSERT_EQ(::stat((family.path + ".dob").c_str(), &before), 0);
    const std::string target = family.directory.file("moved");
    ASSERT_EQ(moveCollection(family.path, target), FilesResult::ok);
    EXPECT_EQ(bytesOf(target), bytes);
    EXPECT_EQ(contentsOnDisk(target), family.contents);
    EXPECT_NE(fileOf(target + ".var").find("Collection: moved\n"), std::string::npos);
    Labels wanted = namesWith("moved", familySuffixes);
    wanted.emplace_back("sample.cfg");
    EXPECT_EQ(filesIn(family.directory.path()), wanted);
    ASSERT_EQ(::stat((target + ".dob").c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino); // nothing was copied
}

TEST(MoveCollection, IntoAnotherFolder)
{
    const RFamily family;
    std::filesystem::create_directory(family.directory.file("sub"));
    const std::string target = family.directory.file("sub/x y");
    ASSERT_EQ(moveCollection(family.path, target), FilesResult::ok);
    EXPECT_EQ(contentsOnDisk(family.directory.file("sub/x_y")), family.contents);
    EXPECT_EQ(filesIn(family.directory.path()), (Labels{"sample.cfg", "sub"}));
    EXPECT_EQ(filesIn(family.directory.file("sub/")), namesWith("x_y", familySuffixes));
}

TEST(MoveCollection, WithRelativeNames)
{
    const RFamily family;
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(family.directory.path());
    std::filesystem::create_directory("sub");
    EXPECT_EQ(moveCollection("sample", "sub/moved"), FilesResult::ok);
    EXPECT_EQ(moveCollection("sub/moved", "back"), FilesResult::ok);
    EXPECT_EQ(moveCollection("back", "again"), FilesResult::ok);
    std::filesystem::current_path(here);
    EXPECT_EQ(contentsOnDisk(family.directory.file("again")), family.contents);
}

TEST(MoveCollection, OntoAnotherCollectionReplacesIt)
{
    const RFamily family;
    RFamily old("old", 7);
    for (const std::string& name : filesIn(old.directory.path()))
        std::filesystem::rename(old.directory.file(name), family.directory.file(name));
    const std::string target = family.directory.file("old");
    ASSERT_EQ(moveCollection(family.path, target), FilesResult::ok);
    EXPECT_EQ(contentsOnDisk(target), family.contents);
    Labels wanted = namesWith("old", {".cfg"});
    for (const std::string& name : namesWith("old", familySuffixes)) wanted.push_back(name);
    wanted.emplace_back("sample.cfg");
    std::sort(wanted.begin(), wanted.end());
    EXPECT_EQ(filesIn(family.directory.path()), wanted);
}

TEST(MoveCollection, ToAnotherFileSystemCopies)
{
    const RFamily family;
    std::error_code error;
    const std::filesystem::path elsewhere = "/dev/shm";
    struct stat here {
    }, there{};
    if (::stat(family.directory.path().c_str(), &here) != 0 || ::stat(elsewhere.c_str(), &there) != 0 ||
        here.st_dev == there.st_dev || !common::directoryIsWritable(elsewhere))
        GTEST_SKIP() << "there is no second file system to write to";
    const std::string folder = (elsewhere / ("nvqtest_" + std::to_string(::getpid()))).string() + "/";
    ASSERT_TRUE(std::filesystem::create_directory(folder));
    EXPECT_EQ(moveCollection(family.path, folder + "moved"), FilesResult::ok);
    EXPECT_EQ(contentsOnDisk(folder + "moved"), family.contents);
    EXPECT_EQ(filesIn(folder), namesWith("moved", familySuffixes));
    EXPECT_EQ(filesIn(family.directory.path()), Labels{"sample.cfg"});
    std::filesystem::remove_all(folder, error);
}

TEST(DeleteCollection, KeepsLogAndConfigurationUnlessAsked)
{
    RFamily family;
    ASSERT_TRUE(common::writeFile(family.directory.file("sample2.hob"), "another"));
    EXPECT_EQ(deleteCollection(family.path, false, false), FilesResult::ok);
    EXPECT_EQ(filesIn(family.directory.path()), (Labels{"sample.cfg", "sample.log", "sample2.hob"}));
    EXPECT_EQ(deleteCollection(family.path, true, true), FilesResult::ok);
    EXPECT_EQ(filesIn(family.directory.path()), Labels{"sample2.hob"});
}

// A table that can't be removed, by anybody: a folder stands in its place.
TEST(DeleteCollection, WhoseTableCantGoRemovesNothing)
{
    const RFamily family;
    std::filesystem::remove(family.path + ".hob");
    std::filesystem::create_directories(family.path + ".hob/inside");
    const auto before = snapshotOf(family.directory.path());
    EXPECT_EQ(deleteCollection(family.path, true, true), FilesResult::stationFiles);
    EXPECT_EQ(snapshotOf(family.directory.path()), before);
}

TEST(DeleteCollection, SideFileThatCantGoIsTold)
{
    const RFamily family;
    std::filesystem::remove(family.path + ".info");
    std::filesystem::create_directories(family.path + ".info/inside");
    EXPECT_EQ(deleteCollection(family.path, true, true), FilesResult::otherFiles);
    EXPECT_EQ(filesIn(family.directory.path()), Labels{"sample.info"});
}

TEST(DeleteCollection, InAFolderThatCantBeWrittenTo)
{
    EXPECT_EQ(deleteCollection("/proc/sample", true, true), FilesResult::stationFiles);
}

// --- killed in the middle

// Runs `operation` in a process of its own and kills that after a while.
void runAndKill(const std::function<void()>& operation, std::chrono::microseconds after)
{
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        operation();
        ::_exit(0);
    }
    std::this_thread::sleep_for(after);
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
}

bool recovers(const std::string& path)
{
    return recoverCollection(path).result != RecoveryResult::failed;
}

constexpr int rounds = 25; // every single moment is looked at elsewhere

// Times within the one that the operation takes on this machine, and somewhat beyond.
class RMoments {
public:
    explicit RMoments(const std::function<void()>& operation)
    {
        const auto start = std::chrono::steady_clock::now();
        operation();
        span_ =
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    }
    std::chrono::microseconds next()
    {
        return std::chrono::microseconds(random_() % static_cast<unsigned>(span_.count() * 5 / 4 + 500));
    }

private:
    std::chrono::microseconds span_{};
    std::mt19937 random_{42};
};

TEST(KilledInTheMiddle, MovedCollectionIsInOnePlace)
{
    const RFamily first("sample", 20, 50);
    RMoments moments([&] { EXPECT_EQ(moveCollection(first.path, first.path + "2"), FilesResult::ok); });
    int moved = 0;
    for (int round = 0; round < rounds; ++round) {
        const RFamily family("sample", 20, 50);
        const std::string target = family.directory.file("moved");
        runAndKill([&] { static_cast<void>(moveCollection(family.path, target)); }, moments.next());
        // before anything is settled the target is whole or can't be opened at all
        if (common::fileExists(target + ".var")) {
            EXPECT_EQ(contentsOnDisk(target), family.contents);
        }
        const bool targetFirst = (round % 2) != 0;
        ASSERT_TRUE(recovers(targetFirst ? target : family.path));
        ASSERT_TRUE(recovers(targetFirst ? family.path : target));
        const bool isThere = common::fileExists(target + ".var");
        moved += isThere ? 1 : 0;
        EXPECT_EQ(contentsOnDisk(isThere ? target : family.path), family.contents) << round;
        Labels wanted = namesWith(isThere ? "moved" : "sample", familySuffixes);
        wanted.emplace_back("sample.cfg");
        std::sort(wanted.begin(), wanted.end());
        EXPECT_EQ(filesIn(family.directory.path()), wanted) << round;
    }
    RecordProperty("moved", moved);
}

TEST(KilledInTheMiddle, CopyLeavesTheOldTargetOrTheNewOne)
{
    const RFamily old("old", 7), first("sample", 20, 50);
    RMoments moments([&] { EXPECT_EQ(copyCollection(first.path, first.path + "2"), FilesResult::ok); });
    for (int round = 0; round < rounds; ++round) {
        const RFamily family("sample", 20, 50);
        for (const std::string& name : filesIn(old.directory.path()))
            std::filesystem::copy_file(old.directory.file(name), family.directory.file(name));
        const std::string target = family.directory.file("old");
        runAndKill([&] { static_cast<void>(copyCollection(family.path, target)); }, moments.next());
        ASSERT_TRUE(recovers(target));
        const Labels found = contentsOnDisk(target);
        EXPECT_TRUE(found == family.contents || found == old.contents) << round;
        EXPECT_EQ(bytesOf(target), bytesOf(found == old.contents ? old.path : family.path)) << round;
        EXPECT_EQ(contentsOnDisk(family.path), family.contents);
        EXPECT_EQ(filesIn(family.directory.path()).size(), 2 * (familySuffixes.size() + 1)) << round;
    }
}

TEST(KilledInTheMiddle, DeletedCollectionIsThereOrGone)
{
    const RFamily first("sample", 2, 5);
    RMoments moments([&] { EXPECT_EQ(deleteCollection(first.path, true, true), FilesResult::ok); });
    for (int round = 0; round < rounds; ++round) {
        const RFamily family("sample", 2, 5);
        runAndKill([&] { static_cast<void>(deleteCollection(family.path, true, true)); }, moments.next());
        ASSERT_TRUE(recovers(family.path));
        const Labels files = filesIn(family.directory.path());
        if (!files.empty()) {
            EXPECT_EQ(contentsOnDisk(family.path), family.contents);
        }
        EXPECT_TRUE(files.empty() || files.size() == familySuffixes.size() + 1) << round;
    }
}

} // namespace
