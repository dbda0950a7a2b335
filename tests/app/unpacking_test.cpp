// Opening packed files, in a session and by the program itself.

#include <algorithm>
#include <filesystem>

#include <QProcess>
#include <QProcessEnvironment>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/session.h"
#include "archivefixture.h"
#include "castfile.h"
#include "common/files.h"
#include "scripteduser.h"
#include "temporarydirectory.h"

namespace {

namespace fs = std::filesystem;
using app::OpenResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using namespace testing_support;

class RCaptionView : public app::RSessionView {
public:
    void captionChanged(const std::string& text) override { caption = text; }
    std::string caption;
};

class Packed : public testing::Test {
protected:
    Packed() : session(user, view)
    {
        fs::create_directories(folder.file("tmp"));
        fs::create_directories(folder.file("data"));
        session.installation.temp = folder.file("tmp/");
        session.installation.root = folder.path();
        session.runMode = app::commandFileRun;
    }
    ~Packed() override { fs::current_path("/"); }

    std::string file(const std::string& name) const { return folder.file(name); }
    std::string read(const std::string& name) const { return common::readFile(file(name)).value_or("none"); }
    OpenResult open(const std::string& name) { return session.openArgument(name, file("data")); }
    // What lies in the temporary directory.
    std::vector<std::string> temporary() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(file("tmp")))
            names.push_back(entry.path().filename());
        return names;
    }
    // A collection "cast" of so many stations as the members of a zip; its own files are gone.
    std::vector<ZIPMEMBER> collectionMembers(int stations)
    {
        writeText(file("cast.txt"), castText(stations, 4));
        EXPECT_EQ(session.open(file("cast.txt")), OpenResult::ok);
        session.close(true);
        std::vector<ZIPMEMBER> members;
        for (const char* const suffix : {".var", ".hob", ".dob", ".inv", ".cid", ".log"}) {
            const std::string name = std::string("cast") + suffix;
            members.push_back({"backup/" + name, read(name), true});
            fs::remove(file(name));
        }
        user.messages.clear();
        return members;
    }

    const RTemporaryDirectory folder;
    RCaptionView view;
    RScriptedUser user;
    app::RSession session;
};

TEST_F(Packed, SpreadsheetMakesItsCollectionBesideTheArchive)
{
    for (const std::string name : {"cast.txt.gz", "one.zip", "two.tgz", "three.tar.gz", "four.tar"}) {
        const std::string text = castText(3, 4);
        const std::string bytes = name.ends_with(".zip")   ? zipOf({{"x/cast.txt", text, true}})
                                  : name.ends_with(".tar") ? tarOf({{"x/cast.txt", text}})
                                  : name == "cast.txt.gz"  ? gzipOf(text)
                                                           : gzipOf(tarOf({{"x/cast.txt", text}}));
        writeText(file("data/" + name), bytes);
        ASSERT_EQ(open(name), OpenResult::ok) << name << testing::PrintToString(user.messages);
        EXPECT_EQ(session.collection.stationCount, 3);
        EXPECT_EQ(session.collection.path, file("data/cast"));
        EXPECT_TRUE(session.collection.writable);
        EXPECT_FALSE(session.collection.isTemporaryFile);
        EXPECT_EQ(session.settings.recentFiles[0], file("data/cast.var"));
        EXPECT_EQ(view.caption, "NVQ - " + file("data/cast.var"));
        EXPECT_EQ(fs::current_path(), fs::canonical(file("data")));
        EXPECT_TRUE(common::fileExists(file("data/cast.hob")));
        EXPECT_FALSE(common::fileExists(file("data/cast.txt")));
        EXPECT_EQ(read("data/" + name), bytes);
        session.close(true);
        EXPECT_THAT(temporary(), IsEmpty());
        for (const auto& entry : fs::directory_iterator(file("data"))) fs::remove(entry.path());
    }
    EXPECT_THAT(user.statusTexts, testing::Contains("Copying one.zip...     ESC aborts"));
    EXPECT_THAT(user.statusTexts, testing::Contains("Unzipping one.zip...     ESC aborts"));
}

TEST_F(Packed, SpreadsheetGoesIntoAnOpenCollection)
{
    writeText(file("data/open.txt"), castText(2, 4));
    ASSERT_EQ(open("open.txt"), OpenResult::ok);
    std::string more = castText(3, 4);
    for (std::size_t at = 0; (at = more.find("TEST", at)) != std::string::npos;) more.replace(at, 4, "MORE");
    writeText(file("data/more.zip"), zipOf({{"more.txt", more}}));
    ASSERT_EQ(open("more.zip"), OpenResult::ok) << testing::PrintToString(user.messages);
    EXPECT_EQ(session.collection.stationCount, 5);
    EXPECT_FALSE(common::fileExists(file("data/more.var")));
}

TEST_F(Packed, CollectionIsOpenForReadingUntilItIsClosed)
{
    writeText(file("data/backup.zip"), zipOf(collectionMembers(4)));
    ASSERT_EQ(open("backup.zip"), OpenResult::ok) << testing::PrintToString(user.messages);
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_FALSE(session.collection.writable);
    EXPECT_TRUE(session.collection.isTemporaryFile);
    EXPECT_FALSE(session.gateState().writable);
    EXPECT_EQ(view.caption, "NVQ - " + file("data/backup.zip"));
    EXPECT_EQ(session.settings.recentFiles[0], file("data/backup.zip"));
    EXPECT_EQ(session.settings.recentFiles[1], file("cast.var")); // of the making
    EXPECT_THAT(user.messages, ElementsAre(HasSubstr("Data may not be modified!")));
    ASSERT_TRUE(session.collection.loadStation(4, session.currentStation, false) ==
                collection::LoadResult::ok);
    EXPECT_EQ(temporary().size(), 3U); // the folder, .val and .sel
    session.close(true);
    EXPECT_THAT(temporary(), IsEmpty());
    EXPECT_EQ(fs::directory_iterator(file("data"))->path().filename(), "backup.zip");
}

TEST_F(Packed, OutputOfAPackedCollectionIsNotLost)
{
    writeText(file("data/backup.zip"), zipOf(collectionMembers(4)));
    ASSERT_EQ(open("backup.zip"), OpenResult::ok);
    ASSERT_TRUE(session.exportSpreadsheet("out.txt"));
    session.close(true);
    EXPECT_THAT(read("data/out.txt"), StartsWith("Cruise\t"));
}

TEST_F(Packed, CopyingKeepsAPackedCollection)
{
    writeText(file("data/backup.zip"), zipOf(collectionMembers(4)));
    ASSERT_EQ(open("backup.zip"), OpenResult::ok);
    ASSERT_TRUE(session.copyCollection("kept")) << testing::PrintToString(user.messages);
    EXPECT_EQ(session.collection.path, file("data/kept"));
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_TRUE(session.collection.writable);
    EXPECT_FALSE(session.collection.isTemporaryFile);
    session.close(true);
    EXPECT_THAT(temporary(), IsEmpty());
    EXPECT_TRUE(common::fileExists(file("data/kept.dob")));
}

TEST_F(Packed, CopyThatFailsLeavesThePackedCollectionOpen)
{
    writeText(file("data/backup.zip"), zipOf(collectionMembers(4)));
    ASSERT_EQ(open("backup.zip"), OpenResult::ok);
    EXPECT_FALSE(session.copyCollection("/nowhere/kept"));
    EXPECT_FALSE(session.copyCollection(session.collection.directory + "kept"));
    EXPECT_FALSE(session.copyCollection("/proc/kept"));
    EXPECT_TRUE(session.collection.isOpen && session.collection.isTemporaryFile);
    EXPECT_FALSE(session.collection.writable);
    EXPECT_EQ(session.collection.stationCount, 4);
    session.close(true);
    EXPECT_THAT(temporary(), IsEmpty());
}

TEST_F(Packed, TheNextCollectionClosesAPackedOne)
{
    writeText(file("data/backup.zip"), zipOf(collectionMembers(4)));
    ASSERT_EQ(open("backup.zip"), OpenResult::ok);
    const std::string first = session.collection.directory;
    ASSERT_EQ(open("backup.zip"), OpenResult::ok);
    EXPECT_FALSE(fs::exists(first));
    EXPECT_TRUE(fs::exists(session.collection.directory));
}

TEST_F(Packed, DescriptionAloneIsToldWhatItMisses)
{
    const std::vector<ZIPMEMBER> members = collectionMembers(4);
    writeText(file("data/cast.var.gz"), gzipOf(members[0].content));
    EXPECT_EQ(open("cast.var.gz"), OpenResult::failed);
    EXPECT_THAT(user.messages, ElementsAre(HasSubstr("cast")));
    EXPECT_FALSE(session.collection.isOpen);
    EXPECT_THAT(temporary(), IsEmpty());
}

TEST_F(Packed, EverythingElseIsTakenForNetCdf)
{
    writeText(file("data/woa.gz"), gzipOf("CDF\1"));
    writeText(file("data/other.nc.gz"), gzipOf("CDF\1"));
    EXPECT_EQ(open("woa.gz"), OpenResult::failed);
    EXPECT_EQ(open("other.nc.gz"), OpenResult::failed);
    EXPECT_THAT(user.messages,
                ElementsAre(testing::AllOf(HasSubstr("NVQ can't open this kind of file yet (netCDF file)"),
                                           testing::EndsWith("/woa.nc")),
                            testing::EndsWith("/other.nc")));
    EXPECT_THAT(temporary(), IsEmpty());
}

TEST_F(Packed, RefusalLeavesTheOpenCollectionAlone)
{
    writeText(file("data/open.txt"), castText(2, 4));
    ASSERT_EQ(open("open.txt"), OpenResult::ok);
    writeText(file("data/woa.nc.gz"), gzipOf("CDF\1"));
    writeText(file("data/bad.zip"), "no zip");
    for (const char* const name : {"woa.nc.gz", "bad.zip", "none.zip"}) {
        EXPECT_EQ(open(name), OpenResult::failed);
        EXPECT_TRUE(session.collection.isOpen && session.collection.writable);
        EXPECT_FALSE(session.collection.isTemporaryFile);
    }
}

TEST_F(Packed, SeveralFilesAreNamedAndNoneIsOpened)
{
    writeText(file("data/two.zip"), zipOf({{"a.txt", castText(1, 2)}, {"b.txt", castText(1, 2)}}));
    EXPECT_EQ(open("two.zip"), OpenResult::failed);
    EXPECT_THAT(user.messages,
                ElementsAre(HasSubstr("several files that could be opened:\n\na.txt\nb.txt\n")));
    EXPECT_THAT(temporary(), IsEmpty());
}

TEST_F(Packed, DamagedAndMissingArchivesAreTold)
{
    writeText(file("data/bad.zip"), zipOf({{"a.txt", "x", false, 0, 0100644, 0, 1}}));
    EXPECT_EQ(open("bad.zip"), OpenResult::failed);
    EXPECT_EQ(open("none.zip"), OpenResult::failed);
    EXPECT_THAT(user.messages,
                ElementsAre(StartsWith("Unzipping: Could not unzip " + file("data/bad.zip") + "!\n\na.txt: "),
                            "Copying: File " + file("data/none.zip") + " not found!"));
    EXPECT_THAT(temporary(), IsEmpty());
}

TEST_F(Packed, TemporaryDirectoryThatTakesNothingIsTold)
{
    writeText(file("data/cast.txt.gz"), gzipOf(castText(1, 2)));
    session.installation.temp = "/proc/";
    EXPECT_EQ(open("cast.txt.gz"), OpenResult::noTemporaryFile);
    EXPECT_THAT(user.messages, ElementsAre("Opening ...: Temporary files could not be made in /proc/!"));
}

TEST_F(Packed, HostileArchiveOpensNothingAndTouchesNothing)
{
    writeText(file("data/evil.tgz"),
              gzipOf(tarOf({{"cast.txt", castText(1, 2)}, {"../../data/x.txt", "evil"}})));
    EXPECT_EQ(open("evil.tgz"), OpenResult::failed);
    EXPECT_FALSE(session.collection.isOpen);
    EXPECT_THAT(temporary(), IsEmpty());
    EXPECT_FALSE(fs::exists(file("data/x.txt")));
}

// --- the program itself

class PackedProgram : public testing::Test {
protected:
    PackedProgram()
    {
        for (const char* const name : {"home", "tmp", "data"}) fs::create_directories(folder.file(name));
    }
    // Runs the program in "data" with these arguments, the lines of a command file behind them, and -q.
    int run(QStringList arguments, const std::string& lines, std::string& error) const
    {
        writeText(folder.file("data/run.cmd"), lines);
        arguments << QStringLiteral("-x") << QStringLiteral("run.cmd") << QStringLiteral("-q");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("HOME"), QString::fromStdString(folder.file("home")));
        environment.insert(QStringLiteral("TMPDIR"), QString::fromStdString(folder.file("tmp")));
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(QString::fromStdString(folder.file("data")));
        process.start(QStringLiteral(NVQ_BUILD_DIR "/bin/nvqmp"), arguments);
        const bool ended = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
        error = process.readAllStandardError().toStdString();
        return ended ? process.exitCode() : -1;
    }
    std::string read(const std::string& name) const
    {
        return common::readFile(folder.file(name)).value_or("none");
    }
    int temporaryFiles() const
    {
        int count = 0;
        for (const auto& entry : fs::directory_iterator(folder.file("tmp")))
            count += entry.path().filename().string().starts_with("NVQ") ? 1 : 0;
        return count;
    }

    const RTemporaryDirectory folder;
};

TEST_F(PackedProgram, SpreadsheetAndThenItsZippedCollection)
{
    writeText(folder.file("data/cast.txt.gz"), gzipOf(castText(5, 8)));
    std::string error;
    ASSERT_EQ(run({QStringLiteral("cast.txt.gz")}, "export_data first.txt\n", error), 0) << error;
    EXPECT_TRUE(error.starts_with("Importing Station-Data ...: 5 Stations Imported from cast.txt Lines: "))
        << error;
    EXPECT_THAT(read("data/first.txt"), StartsWith("Cruise\t"));
    std::vector<ZIPMEMBER> members;
    for (const char* const suffix : {".var", ".hob", ".dob"}) {
        members.push_back({std::string("cast") + suffix, read(std::string("data/cast") + suffix), true});
        fs::remove(folder.file(std::string("data/cast") + suffix));
    }
    writeText(folder.file("data/packed.zip"), zipOf(members));
    ASSERT_EQ(
        run({QStringLiteral("packed.zip")}, "export_data second.txt\nexport_graphics 0,map.png,30\n", error),
        0)
        << error;
    EXPECT_THAT(error, HasSubstr("Data may not be modified!"));
    EXPECT_EQ(read("data/second.txt"), read("data/first.txt"));
    EXPECT_TRUE(common::fileExists(folder.file("data/map.png")));
    EXPECT_EQ(temporaryFiles(), 0);
    EXPECT_THAT(read("home/.nvq"), HasSubstr("File0 = " + folder.file("data/packed.zip")));
}

TEST_F(PackedProgram, WhatCannotBeUnpackedGivesExitCodeOne)
{
    writeText(folder.file("data/bad.zip"), "no archive");
    std::string error;
    EXPECT_EQ(run({QStringLiteral("bad.zip")}, "", error), 1);
    EXPECT_THAT(error,
                StartsWith("Unzipping: Could not unzip " + folder.file("data/bad.zip") + "! bad.zip: "));
    EXPECT_EQ(temporaryFiles(), 0);
}

} // namespace
