// Flows through the program itself: a process of its own, without a display, in a folder and with a home of
// its own.

#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QImage>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "programfixture.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing_support::castText;
using testing_support::writeText;

using Program = testing_support::Program;
using testing_support::fromUtf8;
using testing_support::RUN;

TEST_F(Program, WholeRoadFromATextFileToPicturesAndASpreadsheet)
{
    const RUN r = commands("open_collection cast.txt   # imported as a new collection\n"
                           "export_graphics 0,map.png,100\n"
                           "set_mode SCATTER\n"
                           "use_layout SCATTER 2 Win\n"
                           "set_window 1,Salinity,Temperature,Depth\n"
                           "full_range\n"
                           "export_graphics -1,scatter.png,100\n"
                           "export_graphics -1,scatter.eps,100\n"
                           "export_graphics 1,one.jpg,50\n"
                           "export_graphics 1,one.gif,50\n"
                           "set_mode STATION\n"
                           "plot_station all\n"
                           "export_graphics -1,station.png,100\n"
                           "export_graphics -1,station.eps,100\n"
                           "set_mode MAP\n"
                           "export_graphics -1,bigmap.png,50\n"
                           "export_graphics -1,bigmap.eps,50\n"
                           "export_data out.txt\n");
    EXPECT_EQ(r.code, 0);
    EXPECT_TRUE(r.error.starts_with("Importing Station-Data ...: 5 Stations Imported from cast.txt Lines: "))
        << r.error;
    EXPECT_EQ(r.output, "");
    const QImage canvas(fromUtf8(file("scatter.png")));
    EXPECT_NEAR(canvas.width(), 29.0 / 2.54 * 100, 1);
    EXPECT_NEAR(canvas.height(), 20.2 / 2.54 * 100, 1);
    for (const char* const name : {"map.png", "station.png", "bigmap.png", "one.jpg"})
        EXPECT_FALSE(QImage(fromUtf8(file(name))).isNull()) << name;
    EXPECT_THAT(read("one.gif"), StartsWith("GIF8"));
    for (const char* const name : {"scatter.eps", "station.eps", "bigmap.eps"})
        EXPECT_THAT(read(name), StartsWith("%!PS")) << name;
    EXPECT_THAT(read("station.eps"), HasSubstr("%%PS-OBJECT: Profiles begin"));
    EXPECT_THAT(read("scatter.eps"), HasSubstr("%%PS-OBJECT: NVQ_ScatterData begin"));
    EXPECT_THAT(read("bigmap.eps"), HasSubstr("%%PS-OBJECT: StationPositions begin"));
    EXPECT_THAT(read("out.txt"), StartsWith("Cruise\tStation\tType\t"));
}

TEST_F(Program, FlaggedValuesAreWrittenWithTheirFlags)
{
    EXPECT_EQ(commands("open_collection cast.txt\nexport_data out.txt\n").code, 0);
    EXPECT_THAT(read("out.txt"), HasSubstr("\t100\t0\t19\t0\t34.1\t8\n"));
}

TEST_F(Program, RunLeavesNothingInTheTemporaryDirectory)
{
    makeCollection();
    EXPECT_EQ(temporaryFiles(), 0);
}

TEST_F(Program, FirstStartMakesTheUsersTreeAndTheSettings)
{
    makeCollection();
    EXPECT_TRUE(common::directoryExists(file("home/nvq_local/cmd_files")));
    EXPECT_THAT(read("home/.nvq"), HasSubstr("[Recent Files]\nFile0 = " + file("cast.var")));
    EXPECT_THAT(read("home/.nvq"), Not(HasSubstr("[Setup]"))); // what was found by itself isn't kept
}

TEST_F(Program, StoredGeometrySurvivesARunWithoutADisplay)
{
    writeText(file("home/.nvq"), "[Setup]\nNVQMPUSER = bob\n[Geometry]\nLeft = 33\nWidth = 1234\n");
    makeCollection();
    EXPECT_THAT(read("home/.nvq"), StartsWith("[Setup]\nNVQMPUSER = bob\n[Geometry]\nLeft = 33\n"));
    EXPECT_THAT(read("home/.nvq"), HasSubstr("Width = 1234\n"));
    EXPECT_THAT(read("cast.log"), HasSubstr("bob:"));
}

TEST_F(Program, CommandFileGivenTwiceIsRunTwice)
{
    writeText(file("run.cmd"), "open_collection " + file("cast.txt") + "\n");
    const RUN r = run({QStringLiteral("-x"), QStringLiteral("run.cmd"), QStringLiteral("-x"),
                       QStringLiteral("run.cmd"), QStringLiteral("-q")});
    EXPECT_EQ(r.code, 0) << r.error; // the second goes into the open collection
    EXPECT_THAT(read("cast.log"), HasSubstr("IMPORT"));
}

TEST_F(Program, SameRunAgainGivesTheSameCollection)
{
    makeCollection();
    const std::string first = collectionBytes();
    makeCollection();
    EXPECT_EQ(collectionBytes(), first);
}

TEST_F(Program, ArgumentsOfTheCommandLineAreRelativeToItsDirectory)
{
    fs::create_directories(file("sub"));
    writeText(file("sub/deep.txt"), castText(1, 3));
    writeText(file("run.cmd"), "export_data out.txt\n");
    const RUN r = run({QStringLiteral("sub/deep.txt"), QStringLiteral("-x"), QStringLiteral("run.cmd"),
                       QStringLiteral("-q")});
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_TRUE(exists("sub/out.txt")); // the current directory is the collection's
}

TEST_F(Program, QuitInAFileStillWorksThroughTheRest)
{
    writeText(file("a.cmd"), "quit\nopen_collection " + file("cast.txt") + "\n");
    writeText(file("b.cmd"), "export_data " + file("out.txt") + "\n");
    const RUN r =
        run({QStringLiteral("-x"), QStringLiteral("a.cmd"), QStringLiteral("-x"), QStringLiteral("b.cmd")});
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_TRUE(exists("out.txt"));
    EXPECT_TRUE(exists("cast.cfl")); // it was closed
    EXPECT_EQ(temporaryFiles(), 0);
}

TEST_F(Program, WithoutADisplayItEndsBehindItsArguments)
{
    EXPECT_EQ(run({}).code, 0);
    writeText(file("run.cmd"), "open_collection " + file("cast.txt") + "\n");
    EXPECT_EQ(run({QStringLiteral("-x"), QStringLiteral("run.cmd")}).code, 0);
}

TEST_F(Program, UnreadableCommandFileIsToldAndTheNextArgumentTaken)
{
    const RUN r = run(
        {QStringLiteral("-x"), QStringLiteral("none.cmd"), QStringLiteral("cast.txt"), QStringLiteral("-q")});
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, HasSubstr("command file " + file("none.cmd") + " could not be read\n"));
    EXPECT_TRUE(exists("cast.var"));
}

TEST_F(Program, FailingLineNamesItselfAndEndsTheFile)
{
    const RUN r = commands("# first\nopen_collection nothing.var\nopen_collection cast.txt\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, HasSubstr("Opening Collection ...: Collection \"" + file("nothing.var") +
                                   "\" does not exist!\n"));
    EXPECT_THAT(r.error, HasSubstr(file("run.cmd") + ":2: open_collection failed\n"));
    EXPECT_FALSE(exists("cast.var"));
}

TEST_F(Program, BadFieldNamesFileAndLine)
{
    const std::string begin = "open_collection cast.txt\nset_mode SCATTER\n";
    for (const char* const line :
         {"set_mode PIE", "set_mode SECTION", "use_layout PIE 2 Win", "set_window 1,Salinity,Oxygen",
          "set_window 9,1,2", "set_range 1,0,1,5,5", "set_range 1,0,x,0,1", "full_range 30", "set_style 1,2",
          "set_style 1", "set_palette 1,NoSuchPalette", "set_domain 0,10,0", "set_domain 0,10,0,95",
          "set_domain 0,10,0,10,9", "plot_station 99", "set_import overwrite=perhaps"}) {
        const RUN r = commands(begin + line + "\nexport_data out.txt\n");
        EXPECT_EQ(r.code, 1) << line;
        EXPECT_THAT(r.error, HasSubstr(file("run.cmd") + ":3: ")) << line;
        EXPECT_FALSE(exists("out.txt")) << line;
    }
}

TEST_F(Program, GraphicsWithTwoFieldsIsSkipped)
{
    const RUN r = commands("open_collection cast.txt\nexport_graphics -1,a.png\nexport_data out.txt\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_FALSE(exists("a.png"));
    EXPECT_TRUE(exists("out.txt"));
}

TEST_F(Program, GraphicsWithoutAResolutionFails)
{
    const RUN r = commands("open_collection cast.txt\nexport_graphics -1,a.png,0\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, HasSubstr("the resolution of \"a.png\" isn't known"));
    EXPECT_FALSE(exists("a.png"));
}

TEST_F(Program, ForeignPictureKindWritesNothing)
{
    const RUN r = commands("open_collection cast.txt\nexport_graphics -1,a.tif,100\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_FALSE(exists("a.tif"));
}

TEST_F(Program, OutputInAnImpossiblePlaceFails)
{
    for (const std::string path : {"/nowhere/a.png", "/nowhere/a.eps", "/dev/null/a.png", "/nowhere/a.txt"}) {
        const bool data = path.ends_with(".txt");
        const RUN r = commands("open_collection cast.txt\n" +
                               (data ? "export_data " + path : "export_graphics 0," + path + ",50") + "\n");
        EXPECT_EQ(r.code, 1) << path;
        EXPECT_THAT(r.error, HasSubstr(path)) << path;
    }
}

TEST_F(Program, ConfigurationThatIsNotThereEndsTheFile)
{
    const RUN r = commands("open_collection cast.txt\nload_cfg my\nexport_data out.txt\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, HasSubstr("Loading Configuration ...: Configuration file " + file("my.cfg") +
                                   " not found!\n"));
    EXPECT_FALSE(exists("out.txt"));
}

TEST_F(Program, BackslashesAndCarriageReturnsWork)
{
    std::string path = file("cast.txt");
    std::replace(path.begin(), path.end(), '/', '\\');
    const RUN r = commands("\xef\xbb\xbfopen_collection " + path + "   # comment\r\nexport_data out.txt\r\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_TRUE(exists("out.txt"));
}

TEST_F(Program, PathsMayBeLong)
{
    std::string deep;
    for (int i = 0; i < 8; ++i) deep += std::string(100, static_cast<char>('a' + i)) + "/";
    fs::create_directories(file(deep));
    writeText(file(deep + "cast.txt"), castText(2, 3));
    const RUN r = commands("open_collection " + file(deep + "cast.txt") + "\nexport_graphics 0," +
                           file(deep + "m.png") + ",30\nexport_graphics 0," + file(deep + "m.eps") +
                           ",30\nexport_data " + file(deep + "o.txt") + "\n");
    EXPECT_EQ(r.code, 0) << r.error;
    for (const char* const name : {"cast.var", "m.png", "m.eps", "o.txt"})
        EXPECT_TRUE(exists(deep + name)) << name;
}

TEST_F(Program, NamesWithPercentSignsAndBracketsDoNoHarm)
{
    writeText(file("100%s(n)%d.txt"), castText(2, 3));
    const RUN r =
        commands("open_collection 100%s(n)%d.txt\nexport_graphics -1,p%s(1).eps,30\nexport_data o%n.txt\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_TRUE(exists("p%s(1).eps"));
    EXPECT_TRUE(exists("o%n.txt"));
}

// --- damage

TEST_F(Program, TruncatedCollectionFilesAreToldAndLeftAlone)
{
    makeCollection();
    for (const char* const suffix : {".var", ".hob", ".dob"}) {
        const std::string name = std::string("cast") + suffix, good = read(name);
        for (const std::size_t length : {std::size_t{0}, std::size_t{5}, std::size_t{30}}) {
            writeText(file(name), good.substr(0, length));
            const RUN r =
                commands("open_collection cast.var\nexport_graphics 0,m.png,30\nexport_data o.txt\n");
            EXPECT_NE(r.code, -1) << suffix << length;
            EXPECT_THAT(r.error, HasSubstr(file("cast"))) << suffix << length;
            EXPECT_EQ(read(name), good.substr(0, length)) << suffix << length;
        }
        writeText(file(name), good);
    }
}

TEST_F(Program, DirectoriesAndDevicesAreNoCollections)
{
    fs::create_directories(file("dir.var"));
    fs::create_directories(file("dir.txt"));
    for (const char* const name : {"dir.var", "dir.txt", "/dev/null.txt", "missing.txt"}) {
        const RUN r = commands(std::string("open_collection ") + name + "\n");
        EXPECT_EQ(r.code, 1) << name;
        EXPECT_THAT(r.error, Not(IsEmpty())) << name;
    }
}

TEST_F(Program, PipesUnderTheNamesOfItsFilesNeverBlock)
{
    makeCollection();
    for (const char* const suffix : {".hob", ".dob", ".inv", ".cid", ".cfl", ".var"}) {
        fs::remove(file("run.cmd"));
        const fs::path name = file(std::string("cast") + suffix), kept = file("kept");
        fs::rename(name, kept);
        ASSERT_EQ(::mkfifo(name.c_str(), 0666), 0);
        const bool needed =
            suffix != std::string(".inv") && suffix != std::string(".cid") && suffix != std::string(".cfl");
        EXPECT_EQ(commands("open_collection cast.var\n").code, needed ? 1 : 0) << suffix;
        fs::remove(name);
        fs::rename(kept, name);
    }
}

TEST_F(Program, DevicesPipesAndLinksToThemAreNeverReplaced)
{
    makeCollection();
    ASSERT_EQ(::mkfifo(file("pipe.txt").c_str(), 0666), 0);
    ASSERT_EQ(::mkfifo(file("pipe.png").c_str(), 0666), 0);
    ASSERT_EQ(::mkfifo(file("pipe.eps").c_str(), 0666), 0);
    fs::create_symlink(file("pipe.txt"), file("link.txt"));
    for (const char* const line : {"export_data pipe.txt", "export_data link.txt",
                                   "export_graphics 0,pipe.png,20", "export_graphics 0,pipe.eps,20"}) {
        const RUN r = commands(std::string("open_collection cast.var\n") + line + "\n");
        EXPECT_EQ(r.code, 1) << line;
        EXPECT_THAT(r.error, HasSubstr("run.cmd:2: ")) << line;
    }
    for (const char* const name : {"pipe.txt", "pipe.png", "pipe.eps"}) EXPECT_TRUE(fs::is_fifo(file(name)));
    EXPECT_TRUE(fs::is_symlink(file("link.txt")));
}

TEST_F(Program, FilesOfTheOpenCollectionAreNoPlaceForAnExport)
{
    makeCollection();
    const std::string before = collectionBytes() + read("cast.inv") + read("cast.log");
    fs::create_symlink(file("cast.dob"), file("alias.txt"));
    for (const char* const name : {"cast.var", "./cast.hob", "cast.dob", "cast.inv", "cast.log", "cast.jnl",
                                   "cast.lck", "alias.txt"}) {
        const RUN r = commands(std::string("open_collection cast.var\nexport_data ") + name + "\n");
        EXPECT_EQ(r.code, 1) << name;
        EXPECT_THAT(r.error, HasSubstr("is a file of the open collection")) << name;
    }
    EXPECT_EQ(collectionBytes() + read("cast.inv") + read("cast.log"), before);
}

TEST_F(Program, PipeAsALogDoesNotBlockAnImport)
{
    makeCollection();
    fs::remove(file("cast.log"));
    ASSERT_EQ(::mkfifo(file("cast.log").c_str(), 0666), 0);
    fs::copy_file(file("cast.txt"), file("more.txt"));
    EXPECT_NE(commands("open_collection cast.var\nopen_collection more.txt\n").code, -1);
}

TEST_F(Program, ValuesThatNoAxisCanHoldDoNotSpoilThePage)
{
    std::string text = castText(2, 3);
    for (std::size_t at = 0; (at = text.find("\t19\t", at)) != std::string::npos;)
        text.replace(at, 4, "\t-1e38\t");
    for (std::size_t at = 0; (at = text.find("\t18\t", at)) != std::string::npos;)
        text.replace(at, 4, "\t3e38\t");
    writeText(file("huge.txt"), text);
    const RUN r = commands("open_collection huge.txt\nset_mode SCATTER\nset_window 1,2,1\n"
                           "export_graphics -1,huge.eps,0\n");
    EXPECT_EQ(r.code, 0) << r.error;
    const std::string page = read("huge.eps");
    EXPECT_THAT(page, HasSubstr("rotatedText"));
    EXPECT_THAT(page, Not(HasSubstr("inf ")));
    EXPECT_THAT(page, Not(HasSubstr("nan ")));
}

TEST_F(Program, EmptyAndSenselessSpreadsheetsAreToldAndMakeNothing)
{
    for (const std::string& content : {std::string(), std::string("\n\n\n"), std::string("hello\n"),
                                       std::string(5000, '\0'), std::string(100000, '\t')}) {
        writeText(file("bad.txt"), content);
        const RUN r = commands("open_collection bad.txt\n");
        EXPECT_EQ(r.code, 1);
        EXPECT_THAT(r.error, HasSubstr("bad.txt"));
        EXPECT_FALSE(exists("bad.var"));
        EXPECT_FALSE(exists("bad.hob"));
        EXPECT_EQ(read("bad.txt"), content);
    }
}

TEST_F(Program, WriteProtectedCollectionOpensReadOnly)
{
    makeCollection();
    letOthersWrite();
    fs::permissions(file("cast.hob"), fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    const std::string before = collectionBytes();
    const RUN r = commandsWithoutRights("open_collection cast.var\nexport_data o.txt\n"
                                        "open_collection cast.txt\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, HasSubstr("Opening Collection ...: Collection files and/or collection directory are "
                                   "write-protected! Data may not be modified!\n"));
    EXPECT_THAT(r.error, HasSubstr(file("run.cmd") + ":3: open_collection failed"));
    EXPECT_TRUE(exists("o.txt"));
    EXPECT_EQ(collectionBytes(), before);
}

TEST_F(Program, UnreadableFilesAreTold)
{
    makeCollection();
    letOthersWrite();
    for (const char* const name : {"cast.var", "cast.hob", "cast.dob", "cast.txt"}) {
        const fs::perms old = fs::status(file(name)).permissions();
        fs::permissions(file(name), fs::perms::none);
        const std::string open = std::string(name) == "cast.txt" ? "cast.txt" : "cast.var";
        const RUN r = commandsWithoutRights("open_collection " + open + "\n");
        EXPECT_EQ(r.code, 1) << name;
        EXPECT_THAT(r.error, HasSubstr("cast")) << name;
        fs::permissions(file(name), old);
    }
}

TEST_F(Program, ReadOnlyFolderTakesNoNewCollection)
{
    letOthersWrite();
    fs::create_directories(file("locked"));
    writeText(file("locked/cast.txt"), castText(1, 3));
    fs::permissions(file("locked"), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                        fs::perms::others_exec);
    for (const char* const line : {"open_collection locked/cast.txt", "open_collection locked/none.var"}) {
        const RUN r = commandsWithoutRights(std::string(line) + "\n");
        EXPECT_EQ(r.code, 1) << line;
        EXPECT_THAT(r.error, HasSubstr("locked/")) << line;
    }
    fs::permissions(file("locked"), fs::perms::owner_all);
    EXPECT_FALSE(exists("locked/cast.var"));
}

TEST_F(Program, HomeThatCannotBeWrittenIsNoHindrance)
{
    letOthersWrite();
    environment.insert(QStringLiteral("HOME"), QStringLiteral("/proc"));
    const RUN r = commands("open_collection cast.txt\nexport_graphics 0,m.png,30\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_TRUE(exists("m.png"));
}

// --- installation

TEST_F(Program, BadInstallationIsToldAndEndsWithAnError)
{
    fs::create_directories(file("lone"));
    fs::copy_file(NVQ_BUILD_DIR "/bin/nvqmp", file("lone/nvqmp"));
    const RUN r = start(file("lone/nvqmp"), {});
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, HasSubstr("Installation problem...: Bad Installation Directory! NVQ executable "));
    EXPECT_THAT(r.error, HasSubstr("Bad NVQ installation...: See installation instructions on how to install "
                                   "and setup NVQ.\n"));
}

TEST_F(Program, InstallationMayBeMoved)
{
    fs::create_directories(file("moved/bin"));
    fs::copy_file(NVQ_BUILD_DIR "/bin/nvqmp", file("moved/bin/nvqmp"));
    writeText(file("run.cmd"), "open_collection cast.txt\nexport_graphics 0,m.png,30\n");
    const RUN r = start(file("moved/bin/nvqmp"), {QStringLiteral("-x"), QStringLiteral("run.cmd")});
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_TRUE(exists("m.png"));
}

TEST_F(Program, BadTemporaryDirectoryIsToldAndAnotherTaken)
{
    environment.insert(QStringLiteral("NVQMPTEMP"), QStringLiteral("/nowhere"));
    const RUN r = commands("open_collection cast.txt\n");
    EXPECT_EQ(r.code, 0);
    EXPECT_THAT(r.error,
                HasSubstr("Installation problem...: Bad temp Directory! NVQ temp directory /nowhere not "
                          "found or read-only!\n"));
}

TEST_F(Program, NumbersDoNotDependOnTheLocale)
{
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    EXPECT_EQ(commands("open_collection cast.txt\nexport_data out.txt\n").code, 0);
    EXPECT_THAT(read("out.txt"), HasSubstr("34.1"));
}

} // namespace
