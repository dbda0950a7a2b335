// Operations where the surroundings fail them: a full disk, a write-protected folder, files that vanish or
// shrink or stand in the way. They say so, and the collection is as before.

#include <csignal>
#include <filesystem>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "common/files.h"
#include "common/text.h"
#include "faults.h"
#include "filesizelimit.h"
#include "operations.h"
#include "process.h"

namespace reliability {
namespace {

namespace fs = std::filesystem;
using common::format;

std::vector<CASE> casesOfThisHost()
{
    std::vector<CASE> cases;
    for (CASE& given : allCases()) {
        if (given.magic == "NVQ4.0") cases.push_back(std::move(given));
    }
    return cases;
}

std::vector<CASE> casesOnOpenFiles()
{
    std::vector<CASE> cases;
    for (CASE& given : casesOfThisHost()) {
        const OPERATION& operation = given.operation;
        if (!operation.closesFirst && !operation.onlyReads && operation.first.empty())
            cases.push_back(std::move(given));
    }
    return cases;
}

class Surroundings : public testing::TestWithParam<CASE> {
protected:
    RScene scene{GetParam()};
};

class WhileOpen : public Surroundings {};

// All bytes of a folder's files, but for what isn't part of the stations and the description.
std::map<std::string, std::string> bytesOf(const std::string& folder)
{
    std::map<std::string, std::string> bytes;
    for (const std::string& name : filesOf(folder)) {
        if (name.ends_with(".inv") || name.ends_with(".cid") || name.ends_with(".log") ||
            name.ends_with(".lck"))
            continue;
        bytes[name] = common::readFile(folder + name).value_or("no file");
    }
    return bytes;
}

std::string difference(const std::map<std::string, std::string>& before,
                       const std::map<std::string, std::string>& after)
{
    std::string text;
    for (const auto& [name, bytes] : after) {
        if (before.find(name) == before.end()) text += name + " is new\n";
    }
    for (const auto& [name, bytes] : before) {
        const auto now = after.find(name);
        if (now == after.end()) {
            text += name + " is gone\n";
        } else if (now->second != bytes) {
            text += name + " has changed\n";
        }
    }
    return text;
}

// What is wrong after a process ended like this.
std::string faultOf(const RScene& scene, int exit, const std::string& folder)
{
    const EXAMINATION examination = scene.examine(folder);
    if (exit == RScene::done) return scene.faultOf(examination, RScene::Expected::after);
    const std::string word = exit == RScene::silent ? "it failed without a word\n"
                             : exit == RScene::otherwiseInMemory
                                 ? "the open collection isn't what the files hold\n"
                             : exit == RScene::refused || exit == RScene::notOpened ? ""
                                                                                    : "it crashed\n";
    return word + scene.faultOf(examination, RScene::Expected::before);
}

std::int64_t largestFile(const std::string& folder)
{
    std::int64_t largest = 0;
    for (const std::string& name : filesOf(folder))
        largest = std::max(largest, common::fileSize(folder + name));
    return largest;
}

TEST_P(Surroundings, FilesThatCantGrowBeyondALimit)
{
    scene.reset();
    static_cast<void>(inProcess([this] { return std::to_string(scene.workThrough(scene.work())); }));
    const std::int64_t largest = std::max(largestFile(scene.work()), largestFile(scene.start()));
    RFaults faults;
    int done = 0, refused = 0;
    for (std::int64_t limit = 0; limit <= largest + 512; limit += 1 + largest / 60) {
        scene.reset();
        const int exit =
            std::atoi(inProcess([this, limit] {
                          const testing_support::RFileSizeLimit limited(static_cast<rlim_t>(limit));
                          return std::to_string(scene.workThrough(scene.work()));
                      }).c_str());
        ++(exit == RScene::done ? done : refused);
        faults.note(format("limit of %lld bytes (%s)", static_cast<long long>(limit), scene.told().c_str()),
                    faultOf(scene, exit, scene.work()));
    }
    std::printf("done %d times, refused %d times\n", done, refused);
}

// Leaves so many pages of a small memory disk free.
void fillUp(const std::string& ballast, int freePages)
{
    const int file = ::open(ballast.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    const std::string page(4096, 'x');
    std::int64_t size = 0;
    for (ssize_t got = 0; (got = ::write(file, page.data(), page.size())) > 0;) size += got;
    static_cast<void>(::ftruncate(file, std::max<std::int64_t>(0, size - std::int64_t{4096} * freePages)));
    ::close(file);
}

TEST_P(Surroundings, FullDisk)
{
    RFaults faults;
    int done = 0, refused = 0;
    for (int pages = 0; pages < 200 && done < 3; ++pages) {
        const std::string full = scene.folder("full");
        fs::create_directories(full);
        const auto text = withOwnMounts([&]() -> std::string {
            if (!mountMemory(full, 2048)) return "no memory disk";
            const std::string inside = full + "data/";
            copyFolder(scene.start(), inside);
            fillUp(full + "ballast", pages);
            const int exit =
                std::atoi(inProcess([&] { return std::to_string(scene.workThrough(inside)); }).c_str());
            fs::remove(full + "ballast");
            return format("%d", exit) + faultOf(scene, exit, inside);
        });
        if (!text || *text == "no memory disk") GTEST_SKIP() << "mounting isn't permitted here";
        ++(text->front() == '0' ? done : refused);
        faults.note(format("%d free pages (%s)", pages, scene.told().c_str()), text->substr(1));
    }
    std::printf("done %d times, refused %d times\n", done, refused);
    EXPECT_GT(done, 0);
    EXPECT_TRUE(refused > 0 || GetParam().operation.changesNothing) << "the disk was never full";
}

TEST_P(Surroundings, WriteProtectedFolder)
{
    scene.reset();
    const auto before = bytesOf(scene.work());
    const auto exit = withOwnMounts([&]() -> std::string {
        return mountReadOnly(scene.work()) ? std::to_string(scene.workThrough(scene.work())) : "mount";
    });
    if (!exit || *exit == "mount") GTEST_SKIP() << "mounting isn't permitted here";
    EXPECT_TRUE(*exit == std::to_string(RScene::refused) || *exit == std::to_string(RScene::notOpened) ||
                GetParam().operation.changesNothing)
        << *exit << ": " << scene.told();
    EXPECT_NE(scene.told(), "");
    EXPECT_EQ(difference(before, bytesOf(scene.work())), "");
}

// Does the operation in a process that has the collection open when something happens to its files.
std::string workAfter(const RScene& scene, const OPERATION& operation, const std::function<void()>& happens)
{
    scene.reset();
    return inProcess([&]() -> std::string {
        ROpenCollection open(scene.work(), "sample");
        if (!open.isOpen()) return "not opened: " + open.told();
        happens();
        const auto before = bytesOf(scene.work());
        const bool good = operation.run(open);
        const std::string told = open.told();
        open.close();
        if (good && !operation.changesNothing) return "done: " + told;
        if (operation.speaks && told.empty()) return "without a word";
        return difference(before, bytesOf(scene.work()));
    });
}

TEST_P(WhileOpen, StationFileThatVanishes)
{
    for (const char* const suffix : {".hob", ".dob"}) {
        EXPECT_EQ(
            workAfter(scene, GetParam().operation, [&] { fs::remove(scene.work() + "sample" + suffix); }), "")
            << suffix;
    }
}

// It is no loss if the operation writes the description anew.
TEST_P(WhileOpen, DescriptionThatVanishes)
{
    const std::string description = scene.work() + "sample.var";
    const std::string result = workAfter(scene, GetParam().operation, [&] { fs::remove(description); });
    EXPECT_TRUE(result.empty() || result.starts_with("done")) << result;
    if (result.empty() || !common::fileExists(description)) {
        ASSERT_FALSE(common::fileExists(description));
        ASSERT_TRUE(common::copyFile(scene.start() + "sample.var", description));
    }
    EXPECT_EQ(scene.faultOf(scene.examine(scene.work()),
                            result.empty() ? RScene::Expected::before : RScene::Expected::after),
              "");
}

TEST_P(WhileOpen, FileThatIsReplaced)
{
    for (const char* const suffix : {".hob", ".dob"}) {
        EXPECT_EQ(workAfter(scene, GetParam().operation,
                            [&] {
                                const std::string file = scene.work() + "sample" + suffix;
                                ASSERT_TRUE(common::copyFile(file, file + ".new"));
                                fs::rename(file + ".new", file);
                            }),
                  "")
            << suffix;
    }
}

TEST_P(WhileOpen, FileThatShrinks)
{
    for (const char* const suffix : {".hob", ".dob"}) {
        if (common::fileSize(scene.start() + "sample" + suffix) == 0) continue; // it can't
        EXPECT_EQ(workAfter(scene, GetParam().operation,
                            [&] {
                                const std::string file = scene.work() + "sample" + suffix;
                                fs::resize_file(file, fs::file_size(file) / 2);
                            }),
                  "")
            << suffix;
    }
}

TEST_P(Surroundings, FolderInThePlaceOfTheJournal)
{
    const std::string journal = scene.work() + "sample.jnl";
    scene.reset();
    fs::create_directory(journal);
    const int exit =
        std::atoi(inProcess([&] { return std::to_string(scene.workThrough(scene.work())); }).c_str());
    fs::remove(journal);
    EXPECT_EQ(faultOf(scene, exit, scene.work()), "") << scene.told();
    EXPECT_TRUE(exit == RScene::done || !scene.told().empty());
    const std::string late = workAfter(scene, GetParam().operation, [&] { fs::create_directory(journal); });
    fs::remove(journal);
    const bool done = late.starts_with("done");
    EXPECT_TRUE(done || late.empty()) << late;
    EXPECT_EQ(
        scene.faultOf(scene.examine(scene.work()), done ? RScene::Expected::after : RScene::Expected::before),
        "");
}

INSTANTIATE_TEST_SUITE_P(Operations, WhileOpen, testing::ValuesIn(casesOnOpenFiles()),
                         [](const auto& test) { return nameOf(test.param); });
INSTANTIATE_TEST_SUITE_P(Operations, Surroundings, testing::ValuesIn(casesOfThisHost()),
                         [](const auto& test) { return nameOf(test.param); });

// --- without an operation

TEST(SurroundingsOfAnOpening, StationsOfAFileThatShrinksWhileOpenAreTheOldOnesOrNone)
{
    for (const char* const suffix : {".hob", ".dob"}) {
        const testing_support::RTemporaryDirectory directory;
        const std::string folder = directory.file("data/");
        fs::create_directories(folder);
        makeSample(folder, "sample", "NVQ4.0");
        ROpenCollection open(folder, "sample");
        ASSERT_TRUE(open.isOpen());
        std::vector<std::string> whole;
        const auto stationOf = [&open](int n) -> std::string {
            if (open.collection.loadStation(n, open.station, false) != collection::LoadResult::ok)
                return "none";
            const auto cells = static_cast<std::size_t>(open.station.header.valueCount);
            return std::string(reinterpret_cast<const char*>(&open.station.header),
                               sizeof open.station.header) +
                   std::string(reinterpret_cast<const char*>(open.station.values.get()),
                               cells * sizeof(float));
        };
        for (int n = 1; n <= 9; ++n) whole.push_back(stationOf(n));
        const std::string file = folder + "sample" + suffix;
        fs::resize_file(file, fs::file_size(file) / 2);
        for (int n = 1; n <= 9; ++n) {
            const std::string now = stationOf(n);
            EXPECT_TRUE(now == "none" || now == whole[static_cast<std::size_t>(n - 1)]) << suffix << " " << n;
        }
    }
}

TEST(SurroundingsOfAnOpening, JournalInAWriteProtectedFolderIsLeftAlone)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string folder = directory.file("data/");
    fs::create_directories(folder);
    makeSample(folder, "sample", "NVQ4.0");
    static_cast<void>(inProcess([&folder]() -> std::string { // dies in the middle of a change
        ROpenCollection open(folder, "sample");
        static_cast<void>(open.collection.beginChange("EDIT"));
        testing_support::RScriptedUser user;
        for (int n = 1; n <= 9; ++n) {
            collection::STATIONHDR header;
            static_cast<void>(open.collection.readStationHeader(n, header, nullptr));
            header.bottomDepth = 4321;
            static_cast<void>(open.collection.writeStationHeader(n, header, nullptr));
        }
        static_cast<void>(open.collection.flushStationFiles());
        ::_exit(0);
    }));
    if (!common::fileExists(folder + "sample.jnl")) GTEST_SKIP() << "the change was held back as a whole";
    const auto before = bytesOf(folder);
    const auto result = withOwnMounts([&]() -> std::string {
        if (!mountReadOnly(folder)) return "mount";
        const collection::RECOVERY recovery = collection::recoverCollection(folder + "sample");
        return recovery.result == collection::RecoveryResult::failed ? recovery.fault : "recovered";
    });
    if (!result || *result == "mount") GTEST_SKIP() << "mounting isn't permitted here";
    EXPECT_NE(*result, "recovered");
    EXPECT_NE(*result, "");
    EXPECT_EQ(difference(before, bytesOf(folder)), "");
}

} // namespace
} // namespace reliability
