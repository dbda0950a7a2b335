#include "collection/journal.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include <gtest/gtest.h>

#include "collection/journalframes.h"
#include "collection/varfile.h"
#include "filecalls.h"
#include "filesizelimit.h"
#include "foldermoments.h"
#include "temporarydirectory.h"

namespace collection {
namespace {

using testing_support::FILECALL;
using testing_support::Folder;
using testing_support::readFolder;
using testing_support::RFileCalls;
using testing_support::RTemporaryDirectory;
using testing_support::writeFolder;

namespace fs = std::filesystem;

std::span<const std::byte> bytesOf(std::string_view text)
{
    return std::as_bytes(std::span(text));
}

// Files that look like a collection of two stations of one variable.
const std::string oldHob = "NVQ4.0" + std::string(82, 'h') + std::string(82, 'i');
const std::string oldDob = "0123456789abcdefghij";

std::string description(int stations)
{
    return formatVarFile("sample", "HYD", stations, 1, std::array<VARINFO, common::variableSlots>{});
}

class Journal : public ::testing::Test {
protected:
    Journal()
    {
        put("sample.hob", oldHob);
        put("sample.dob", oldDob);
        put("sample.var", description(2));
        before = readFolder(directory.path());
    }
    void put(const std::string& name, std::string_view content) const
    {
        const common::FilePtr file = common::openFile(directory.file(name), "wb");
        ASSERT_TRUE(file);
        ASSERT_EQ(std::fwrite(content.data(), 1, content.size(), file.get()), content.size());
    }
    [[nodiscard]] std::string read(const std::string& name) const
    {
        return common::readFile(directory.file(name)).value_or("missing");
    }
    void change(const std::string& name, std::size_t offset, std::string_view bytes) const
    {
        std::string content = read(name);
        content.resize(std::max(content.size(), offset + bytes.size()));
        content.replace(offset, bytes.size(), bytes);
        put(name, content);
    }
    void begin()
    {
        ASSERT_TRUE(journal.begin(
            path, "TEST",
            {static_cast<std::int64_t>(oldHob.size()), static_cast<std::int64_t>(oldDob.size()), 2}));
    }
    void save(JournalFile file, std::size_t offset, std::size_t length)
    {
        const std::string& old = file == JournalFile::hob ? oldHob : oldDob;
        ASSERT_TRUE(
            journal.save(file, static_cast<std::int64_t>(offset), bytesOf(old).subspan(offset, length)));
    }
    // What a change that was cut off has left: bytes overwritten and appended, a file made.
    void cutOff()
    {
        begin();
        save(JournalFile::hob, 6, 82);
        save(JournalFile::dob, 4, 10);
        ASSERT_TRUE(journal.sync());
        change("sample.hob", 6, std::string(82, 'X'));
        change("sample.dob", 4, "YYYYYYYYYY");
        ASSERT_TRUE(journal.willMake("TRG.hob"));
        save(JournalFile::dob, 0, 2);
        ASSERT_TRUE(journal.sync());
        put("TRG.hob", "target");
        change("sample.dob", 0, "ZZ");
        change("sample.hob", oldHob.size(), "appended");
        change("sample.dob", oldDob.size(), "appended");
    }
    void commit()
    {
        cutOff();
        const FILEACTION actions[] = {{FILEACTION::rename, "TRG.hob", "sample.hob"},
                                      {FILEACTION::remove, "sample.idv", ""}};
        ASSERT_TRUE(journal.commit({6, 20, 3}, actions, description(3)));
    }
    RECOVERY recover() { return recoverCollection(path); }

    RTemporaryDirectory directory;
    std::string path = directory.file("sample");
    Folder before;
    RJournal journal;
};

TEST_F(Journal, NoJournalIsNothingToDo)
{
    EXPECT_EQ(recover().result, RecoveryResult::none);
    EXPECT_TRUE(readFolder(directory.path()) == before);
}

TEST_F(Journal, ItsFileIsMadeByTheFirstSync)
{
    begin();
    EXPECT_TRUE(journal.isOpen());
    save(JournalFile::dob, 0, 5);
    EXPECT_FALSE(journal.isInPlace());
    EXPECT_FALSE(journal.isSynced());
    EXPECT_TRUE(readFolder(directory.path()) == before);
    ASSERT_TRUE(journal.sync());
    EXPECT_TRUE(journal.isInPlace());
    EXPECT_TRUE(journal.isSynced());
    EXPECT_EQ(read("sample.jnl").substr(0, 8), journalMagic);
    EXPECT_TRUE(journal.finish());
    EXPECT_FALSE(journal.isOpen());
    EXPECT_TRUE(readFolder(directory.path()) == before);
}

TEST_F(Journal, AnotherOneIsNeverOverwritten)
{
    put("sample.jnl", "there");
    EXPECT_FALSE(journal.begin(path, "TEST", {0, 0, 0}));
    EXPECT_FALSE(journal.isOpen());
    EXPECT_EQ(read("sample.jnl"), "there");
}

TEST_F(Journal, AChangeThatWasCutOffIsUndone)
{
    cutOff();
    const RECOVERY recovery = recover();
    EXPECT_EQ(recovery.result, RecoveryResult::undone);
    EXPECT_EQ(recovery.operation, "TEST");
    EXPECT_TRUE(readFolder(directory.path()) == before);
    EXPECT_EQ(recover().result, RecoveryResult::none);
}

TEST_F(Journal, TheDescriptionComesBack)
{
    cutOff();
    put("sample.var", description(7));
    EXPECT_EQ(recover().result, RecoveryResult::undone);
    EXPECT_EQ(read("sample.var"), description(2));
}

TEST_F(Journal, ADecidedChangeIsCompleted)
{
    put("sample.idv", "x=1\n");
    commit();
    const RECOVERY recovery = recover();
    EXPECT_EQ(recovery.result, RecoveryResult::completed);
    EXPECT_EQ(recovery.operation, "TEST");
    EXPECT_EQ(read("sample.hob"), "target");
    EXPECT_EQ(read("sample.var"), description(3));
    EXPECT_FALSE(fs::exists(directory.file("sample.idv")));
    EXPECT_FALSE(fs::exists(directory.file("TRG.hob")));
    EXPECT_FALSE(fs::exists(directory.file("sample.jnl")));
}

TEST_F(Journal, ATargetThatIsAnothersIsLeftAlone)
{
    put("TRG.hob", std::string(1000, 'x')); // larger than what the change has left
    put("TRG.var",
        formatVarFile("other", "HYD", 1, 1, std::array<VARINFO, 2>{emptyVariable(0), emptyVariable(1)}));
    const Folder folder = readFolder(directory.path());
    const JOURNALSTATE state{static_cast<std::int64_t>(oldHob.size()), 20, 2};
    ASSERT_TRUE(journal.begin(path, "SORTCONDENSE", state));
    ASSERT_TRUE(journal.sync());
    const std::vector<FILEACTION> actions = {{FILEACTION::rename, "TRG.hob", "sample.hob"},
                                             {FILEACTION::rename, "TRG.var", "sample.var"}};
    ASSERT_TRUE(journal.commit(state, actions));
    EXPECT_EQ(recover().result, RecoveryResult::completed);
    EXPECT_TRUE(readFolder(directory.path()) == folder);
}

TEST_F(Journal, FilesThatAreLinksAreNotWrittenTo)
{
    put("precious", "precious");
    fs::remove(path + ".var");
    fs::create_symlink(directory.file("precious"), path + ".var");
    commit();
    const RECOVERY recovery = recover();
    EXPECT_EQ(recovery.result, RecoveryResult::failed);
    EXPECT_NE(recovery.fault.find("is a link"), std::string::npos);
    EXPECT_EQ(read("precious"), "precious");
}

TEST_F(Journal, ASideFileThatCanNotGoHoldsNothingUp)
{
    fs::create_directories(path + ".idv/full");
    commit();
    EXPECT_EQ(recover().result, RecoveryResult::completed);
    EXPECT_EQ(read("sample.hob"), "target");
}

TEST_F(Journal, ADecisionThatIsTakenBackIsUndone)
{
    commit();
    ASSERT_TRUE(journal.revoke());
    EXPECT_EQ(recover().result, RecoveryResult::undone);
    EXPECT_TRUE(readFolder(directory.path()) == before);
}

TEST_F(Journal, FilesPutAsideComeBack)
{
    ASSERT_TRUE(journal.begin(path, "IMPORT", {-1, -1, 0}));
    for (const char* const suffix : {".hob", ".dob", ".var"})
        ASSERT_TRUE(journal.willSetAside(std::string("sample") + suffix, std::string("sample.old") + suffix));
    ASSERT_TRUE(journal.willMake("sample.inv"));
    ASSERT_TRUE(journal.willExtend("sample.log", 3));
    ASSERT_TRUE(journal.sync());
    fs::rename(path + ".hob", path + ".old.hob");
    fs::rename(path + ".dob", path + ".old.dob");
    put("sample.hob", "new");
    put("sample.inv", "new");
    put("sample.log", "oldnew");
    EXPECT_EQ(recover().result, RecoveryResult::undone);
    EXPECT_EQ(read("sample.log"), "old");
    fs::remove(directory.file("sample.log"));
    EXPECT_TRUE(readFolder(directory.path()) == before);
}

TEST_F(Journal, ALongNoteIsWrittenInPieces)
{
    std::string large(5 << 20, '\0');
    for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>(i * 7 / 5);
    put("sample.dob", large);
    ASSERT_TRUE(journal.begin(
        path, "TEST",
        {static_cast<std::int64_t>(oldHob.size()), static_cast<std::int64_t>(large.size()), 2}));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(journal.save(JournalFile::dob, 0, bytesOf(large))); // beyond the spill
    ASSERT_TRUE(journal.sync());
    put("sample.dob", std::string(6 << 20, 'x'));
    EXPECT_EQ(recover().result, RecoveryResult::undone);
    EXPECT_TRUE(read("sample.dob") == large);
}

TEST_F(Journal, WhatWasNotSyncedVanishesWithItsObject)
{
    {
        RJournal own;
        ASSERT_TRUE(own.begin(path, "TEST", {static_cast<std::int64_t>(oldHob.size()), 20, 2}));
        const std::string large(9 << 20, 'x');
        put("sample.dob", large);
        ASSERT_TRUE(own.save(JournalFile::dob, 0, bytesOf(large).first(20)));
    }
    EXPECT_FALSE(fs::exists(path + ".jnl"));
    EXPECT_FALSE(fs::exists(path + ".jnl.new"));
}

TEST_F(Journal, AnUnbornOneIsRemoved)
{
    put("sample.jnl.new", "half a head");
    EXPECT_EQ(recover().result, RecoveryResult::none);
    EXPECT_TRUE(readFolder(directory.path()) == before);
}

TEST_F(Journal, AFullDiskRefusesTheChange)
{
    begin();
    save(JournalFile::dob, 0, 20);
    {
        const testing_support::RFileSizeLimit full(100);
        EXPECT_FALSE(journal.sync());
    }
    EXPECT_FALSE(journal.isInPlace());
    EXPECT_TRUE(journal.sync()); // there is room again
    EXPECT_TRUE(journal.finish());
    EXPECT_TRUE(readFolder(directory.path()) == before);
}

TEST_F(Journal, AFailedFlushIsNotTriedAgain)
{
    begin();
    save(JournalFile::dob, 0, 20);
    {
        const RFileCalls calls([](const FILECALL& call) { return call.name == "fdatasync" ? EIO : 0; });
        EXPECT_FALSE(journal.sync());
    }
    EXPECT_FALSE(journal.sync());
    EXPECT_FALSE(journal.isInPlace());
}

TEST_F(Journal, ACommitThatDoesNotReachTheDiskIsNone)
{
    cutOff();
    int flushes = 0;
    {
        const RFileCalls calls(
            [&](const FILECALL& call) { return call.name == "fdatasync" && ++flushes == 1 ? EIO : 0; });
        EXPECT_FALSE(journal.commit({6, 20, 3}, {}));
    }
    EXPECT_EQ(recover().result, RecoveryResult::undone);
    EXPECT_TRUE(readFolder(directory.path()) == before);
}

// --- damage

// The frames' places in a journal, and its end.
std::vector<std::size_t> framesOf(const std::string& bytes)
{
    std::vector<std::size_t> places{journalMagic.size()};
    while (places.back() < bytes.size()) {
        const auto* const head = reinterpret_cast<const std::byte*>(bytes.data() + places.back());
        places.push_back(places.back() + frameHeadSize + unpackFrameHead(head).length + frameTailSize);
    }
    return places;
}

// Everything that was noted up to some frame comes back, and nothing else happens.
class DamagedJournal : public Journal {
protected:
    DamagedJournal()
    {
        cutOff();
        after = readFolder(directory.path());
        bytes = after.at("sample.jnl");
        frames = framesOf(bytes);
    }
    // Recovers with another journal; true if files were changed, which then are a mix of before and after.
    void expectBelievable(const std::string& journalBytes, std::size_t where)
    {
        Folder folder = after;
        folder["sample.jnl"] = journalBytes;
        writeFolder(directory.path(), folder);
        const RECOVERY recovery = recover();
        const Folder found = readFolder(directory.path());
        if (recovery.result == RecoveryResult::failed) {
            EXPECT_TRUE(found == folder) << where;
            EXPECT_FALSE(recovery.fault.empty());
            ++refused;
            return;
        }
        ASSERT_EQ(recovery.result, RecoveryResult::undone) << where;
        ++believed;
        ASSERT_EQ(found.at("sample.hob").size(), oldHob.size());
        ASSERT_EQ(found.at("sample.dob").size(), oldDob.size());
        for (const char* const name : {"sample.hob", "sample.dob"}) {
            for (std::size_t i = 0; i < before.at(name).size(); ++i) {
                const char c = found.at(name)[i];
                ASSERT_TRUE(c == before.at(name)[i] || c == after.at(name)[i]) << where;
            }
        }
        EXPECT_EQ(found.at("sample.var"), description(2));
    }
    Folder after;
    std::string bytes;
    std::vector<std::size_t> frames;
    int believed = 0, refused = 0;
    const RFileCalls withoutFlushes{[](const FILECALL&) { return 0; }};
};

TEST_F(DamagedJournal, CutAtEveryByte)
{
    ASSERT_EQ(frames.size(), 6U); // head, three places, a made file, and the end
    for (std::size_t length = 0; length < bytes.size(); ++length)
        expectBelievable(bytes.substr(0, length), length);
    EXPECT_EQ(refused, static_cast<int>(frames[1])); // without a whole head
    EXPECT_GT(believed, 100);
}

TEST_F(DamagedJournal, EveryFlippedByte)
{
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        for (const int bit : {0, 7}) {
            std::string flipped = bytes;
            flipped[i] = static_cast<char>(flipped[i] ^ (1 << bit));
            expectBelievable(flipped, i);
        }
    }
    EXPECT_GE(refused, 2 * static_cast<int>(frames[1]));
    EXPECT_GT(believed, 10); // the last frames could have been on their way to the disk
}

TEST_F(DamagedJournal, AFrameThatWasOnceWholeIsNotTakenForTheEnd)
{
    // The first batch was on the disk when the frames of the second were made.
    std::string flipped = bytes;
    flipped[frames[2] - 1] = static_cast<char>(flipped[frames[2] - 1] ^ 1);
    expectBelievable(flipped, frames[2] - 1);
    EXPECT_EQ(refused, 1);
}

TEST_F(DamagedJournal, FramesInAnotherOrderOrOfAnotherJournalAreNotWhole)
{
    const auto frame = [&](std::size_t i) { return bytes.substr(frames[i], frames[i + 1] - frames[i]); };
    const std::string swapped = bytes.substr(0, frames[1]) + frame(2) + frame(1) + frame(3) + frame(4);
    expectBelievable(swapped, 0);
    writeFolder(directory.path(), before);
    RJournal other;
    ASSERT_TRUE(other.begin(path, "TEST", {static_cast<std::int64_t>(oldHob.size()), 20, 2}));
    ASSERT_TRUE(other.sync());
    const std::string head = read("sample.jnl");
    ASSERT_EQ(head.size(), frames[1]);
    expectBelievable(head + bytes.substr(frames[1]), 1);
    EXPECT_EQ(believed + refused, 2);
}

// --- journals that are whole and lie

class LyingJournal : public Journal {
protected:
    // A journal of a head and one frame.
    void write(const JOURNALHEAD& head, FrameKind kind, std::span<const std::byte> content,
               std::span<const std::byte> rest = {})
    {
        const auto magic = bytesOf(journalMagic);
        std::vector<std::byte> out(magic.begin(), magic.end());
        appendFrame(out, FrameKind::head, packHead(head), {}, static_cast<std::int64_t>(out.size()), 0, 0);
        appendFrame(out, kind, content, rest, static_cast<std::int64_t>(out.size()), 0, head.mark);
        put("sample.jnl", {reinterpret_cast<const char*>(out.data()), out.size()});
    }
    void expectRefused(std::string_view why)
    {
        const Folder folder = readFolder(directory.path());
        const RECOVERY recovery = recover();
        EXPECT_EQ(recovery.result, RecoveryResult::failed) << why;
        EXPECT_NE(recovery.fault, "");
        EXPECT_TRUE(readFolder(directory.path()) == folder) << why;
    }
    [[nodiscard]] JOURNALHEAD goodHead() const
    {
        return {99,       "TEST",        "sample", {static_cast<std::int64_t>(oldHob.size()), 20, 2},
                "NVQ4.0", description(2)};
    }
};

TEST_F(LyingJournal, AGoodOneIsBelieved)
{
    write(goodHead(), FrameKind::saved, packPlace(JournalFile::dob, 18), bytesOf("kl"));
    EXPECT_EQ(recover().result, RecoveryResult::undone);
    EXPECT_EQ(read("sample.dob"), oldDob.substr(0, 18) + "kl");
}

TEST_F(LyingJournal, PlacesOutsideTheOldFilesAreRefused)
{
    for (const std::int64_t offset :
         {std::int64_t{-1}, std::int64_t{19}, std::int64_t{20}, INT64_MAX, INT64_MIN}) {
        write(goodHead(), FrameKind::saved, packPlace(JournalFile::dob, offset), bytesOf("kl"));
        expectRefused("data");
    }
    for (const std::int64_t offset : {0, 5, 169, 170}) {
        write(goodHead(), FrameKind::saved, packPlace(JournalFile::hob, offset), bytesOf("kl"));
        expectRefused("headers");
    }
    write(goodHead(), FrameKind::saved, packPlace(static_cast<JournalFile>(2), 0), bytesOf("kl"));
    expectRefused("file");
    write(goodHead(), FrameKind::saved, packPlace(JournalFile::dob, 0));
    expectRefused("no bytes");
}

TEST_F(LyingJournal, NamesOfOtherFilesAreRefused)
{
    put("other.hob", "other");
    put("sample", "other");
    put("samples.hob", "other");
    for (const std::string& name :
         {std::string("../x"), std::string(".."), std::string("."), std::string(), std::string("other.hob"),
          std::string("samples.hob"), std::string("sample"), std::string("sample."), std::string("sample.."),
          std::string("sample.hob"), std::string("sample.var"), std::string("sample.jnl"),
          std::string("sample.lck"), std::string("TRG."), std::string("TRG"), std::string("TRG.a/b"),
          std::string("sample.a\0b", 10), "sample." + std::string(300, 'x')}) {
        write(goodHead(), FrameKind::made, packName(name));
        expectRefused(name);
        write(goodHead(), FrameKind::aside, packAside({name, "sample.old"}));
        expectRefused(name);
        write(goodHead(), FrameKind::extended, packExtended({name, 0}));
        expectRefused(name);
    }
    for (const std::string& name : {std::string("../x"), std::string("other.hob"), std::string()}) {
        write(goodHead(), FrameKind::aside, packAside({"sample.inv", name}));
        expectRefused(name);
        const FILEACTION from[] = {{FILEACTION::rename, name, "sample.hob"}};
        write(goodHead(), FrameKind::commit, packCommitment({6, 0, 0}, {}, from));
        expectRefused(name);
        const FILEACTION to[] = {{FILEACTION::rename, "TRG.hob", name}};
        write(goodHead(), FrameKind::commit, packCommitment({6, 0, 0}, {}, to));
        expectRefused(name);
        const FILEACTION removed[] = {{FILEACTION::remove, name, ""}};
        write(goodHead(), FrameKind::commit, packCommitment({6, 0, 0}, {}, removed));
        expectRefused(name);
    }
    const FILEACTION removed[] = {{FILEACTION::remove, "sample.hob", ""}};
    write(goodHead(), FrameKind::commit, packCommitment({6, 0, 0}, {}, removed));
    expectRefused("sample.hob");
    write(goodHead(), FrameKind::extended, packExtended({"sample.log", -1}));
    expectRefused("size");
}

TEST_F(LyingJournal, HeadsThatContradictTheFilesAreRefused)
{
    const auto refused = [&](const std::function<void(JOURNALHEAD&)>& spoil) {
        JOURNALHEAD head = goodHead();
        spoil(head);
        write(head, FrameKind::made, packName("TRG.hob"));
        expectRefused("head");
    };
    refused([](JOURNALHEAD& head) { head.baseName = "other"; });
    refused([](JOURNALHEAD& head) { head.magic = "NVQsol"; });
    refused([](JOURNALHEAD& head) { head.magic = "NVQ5.0"; });
    refused([](JOURNALHEAD& head) { head.before.stationCount = -1; });
    refused([](JOURNALHEAD& head) { head.before.stationCount = 3; });
    refused([](JOURNALHEAD& head) { head.before.hobSize = 5; });
    refused([](JOURNALHEAD& head) { head.before = {-1, 20, 2}; });
    refused([](JOURNALHEAD& head) { head.before.dobSize = -1; });
    refused([](JOURNALHEAD& head) { head.before.dobSize = 21; }); // longer than the file
    refused([](JOURNALHEAD& head) {
        head.before = {6 + 3 * 82, 20, 3};
        head.description = description(3);
    });
}

TEST_F(LyingJournal, FilesThatAreGoneAreNotMade)
{
    for (const char* const name : {"sample.hob", "sample.dob"}) {
        const std::string content = read(name);
        fs::remove(directory.file(name));
        write(goodHead(), FrameKind::made, packName("TRG.hob"));
        expectRefused(name);
        put(name, content);
    }
}

TEST_F(LyingJournal, ACompletionWithoutItsFilesIsRefused)
{
    const FILEACTION actions[] = {{FILEACTION::rename, "TRG.hob", "sample.new"}};
    write(goodHead(), FrameKind::commit, packCommitment({6, 0, 2}, description(2), actions));
    expectRefused("prepared file");
    write(goodHead(), FrameKind::commit, packCommitment({1000, 0, 2}, description(2), {}));
    expectRefused("header table");
    write(goodHead(), FrameKind::commit, packCommitment({6, 1000, 2}, description(2), {}));
    expectRefused("data");
    write(goodHead(), FrameKind::commit, packCommitment({6, 0, -2}, description(2), {}));
    expectRefused("count");
}

TEST_F(LyingJournal, OtherFilesUnderItsNameAreLeftAlone)
{
    for (const std::string& text :
         {std::string(), std::string("text"), std::string(100000, '\0'), std::string(journalMagic),
          std::string(journalMagic) + std::string(40, '\xff')}) {
        put("sample.jnl", text);
        expectRefused("other");
    }
    fs::remove(path + ".jnl");
    fs::create_directory(path + ".jnl");
    EXPECT_EQ(recover().result, RecoveryResult::failed);
    fs::remove(path + ".jnl");
    fs::create_symlink(path + ".nowhere", path + ".jnl");
    EXPECT_EQ(recover().result, RecoveryResult::failed);
}

TEST(JournalFrames, CutContentIsRefused)
{
    const FILEACTION actions[] = {{FILEACTION::rename, "a", "b"}, {FILEACTION::remove, "c", ""}};
    const std::vector<std::byte> commit = packCommitment({1, 2, 3}, "text", actions);
    COMMITMENT read;
    ASSERT_TRUE(unpackCommitment(commit, read));
    EXPECT_EQ(read.description, "text");
    ASSERT_EQ(read.actions.size(), 2U);
    EXPECT_EQ(read.actions[1].from, "c");
    JOURNALHEAD head;
    const std::vector<std::byte> packed = packHead({7, "op", "base", {1, 2, 3}, "NVQ4.0", "text"});
    ASSERT_TRUE(unpackHead(packed, head));
    EXPECT_EQ(head.operation, "op");
    EXPECT_EQ(head.before.stationCount, 3);
    for (std::size_t i = 0; i < commit.size(); ++i) {
        COMMITMENT ignored;
        EXPECT_FALSE(unpackCommitment(std::span(commit).first(i), ignored)) << i;
    }
    for (std::size_t i = 0; i < packed.size(); ++i) {
        JOURNALHEAD ignored;
        EXPECT_FALSE(unpackHead(std::span(packed).first(i), ignored)) << i;
    }
}

} // namespace
} // namespace collection
