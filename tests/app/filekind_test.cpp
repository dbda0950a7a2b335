#include "app/filekind.h"

#include <gtest/gtest.h>

namespace {

using app::Archive;
using app::ARGUMENT;
using app::FileKind;

std::vector<ARGUMENT> read(const std::vector<std::string>& arguments)
{
    return app::readArguments(arguments);
}

TEST(FileKind, DecidedBySubstringInTheGivenOrder)
{
    EXPECT_EQ(app::fileKind(""), FileKind::nothing);
    EXPECT_EQ(app::fileKind("a.var"), FileKind::collection);
    EXPECT_EQ(app::fileKind("a.o3x"), FileKind::oldListing);
    EXPECT_EQ(app::fileKind("a.ol"), FileKind::archiveListing);
    EXPECT_EQ(app::fileKind("a.o4x"), FileKind::listing);
    EXPECT_EQ(app::fileKind("a.sum"), FileKind::stationSummary);
    EXPECT_EQ(app::fileKind("a.txt"), FileKind::spreadsheet);
    EXPECT_EQ(app::fileKind("a.cdf"), FileKind::netCdf);
    EXPECT_EQ(app::fileKind("a.nc"), FileKind::netCdf);
    EXPECT_EQ(app::fileKind("a.dat"), FileKind::unknown);
    EXPECT_EQ(app::fileKind("a.VAR"), FileKind::unknown); // case counts
    EXPECT_EQ(app::fileKind("a.txt.var"), FileKind::collection);
}

TEST(FileKind, VarInADirectoryNameMakesItACollection)
{
    EXPECT_EQ(app::fileKind("/data/old.var.d/cast.txt"), FileKind::collection);
}

TEST(ArchiveClass, DecidedBySubstringAnywhere)
{
    EXPECT_EQ(app::archiveClass("a.nc"), Archive::none);
    EXPECT_EQ(app::archiveClass("a.nc.gz"), Archive::gzip);
    EXPECT_EQ(app::archiveClass("A.GZ"), Archive::gzip);
    EXPECT_EQ(app::archiveClass("a.zip"), Archive::zip);
    EXPECT_EQ(app::archiveClass("/x.zipped/a.nc"), Archive::zip);
    EXPECT_EQ(app::archiveClass("a.tgz"), Archive::tarGzip);
    EXPECT_EQ(app::archiveClass("a.TGZ"), Archive::tarGzip);
    EXPECT_EQ(app::archiveClass("a.tar"), Archive::tar);
    EXPECT_EQ(app::archiveClass("a.tar.gz"), Archive::gzip);
    EXPECT_EQ(app::archiveClass("a.Gz"), Archive::none);
}

TEST(Arguments, WorkedThroughFromLeftToRight)
{
    const auto steps = read({"nvqmp", "a.var", "-x", "run.cmd", "b.txt", "-q"});
    ASSERT_EQ(steps.size(), 4u);
    EXPECT_EQ(steps[0].kind, ARGUMENT::file);
    EXPECT_EQ(steps[0].path, "a.var");
    EXPECT_EQ(steps[1].kind, ARGUMENT::commandFile);
    EXPECT_EQ(steps[1].path, "run.cmd");
    EXPECT_EQ(steps[2].path, "b.txt");
    EXPECT_EQ(steps[3].kind, ARGUMENT::quit);
}

TEST(Arguments, ProgramPathWithQuitOptionQuitsAtOnce)
{
    const auto steps = read({"/opt/nvq-q/nvqmp", "a.var"});
    ASSERT_EQ(steps.size(), 2u);
    EXPECT_EQ(steps[0].kind, ARGUMENT::quit);
    EXPECT_EQ(steps[1].path, "a.var");
}

TEST(Arguments, ProgramPathWithCommandOptionIsNoOption)
{
    const auto steps = read({"/opt/my-x/nvqmp", "a.var"});
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].kind, ARGUMENT::file);
}

TEST(Arguments, FileNamesThatHoldAnOptionAreTakenForIt)
{
    const auto steps = read({"nvqmp", "my-xfile.var", "next"});
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].kind, ARGUMENT::commandFile);
    EXPECT_EQ(steps[0].path, "next");
    EXPECT_EQ(read({"nvqmp", "my-quick.var"})[0].kind, ARGUMENT::quit);
}

TEST(Arguments, CommandFileOptionAtTheEndNamesNone)
{
    const auto steps = read({"nvqmp", "-x"});
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].kind, ARGUMENT::commandFile);
    EXPECT_EQ(steps[0].path, "");
}

TEST(Arguments, NoneAtAll)
{
    EXPECT_TRUE(read({}).empty());
}

TEST(DefaultExtension, OnlyForNamesWithoutOne)
{
    EXPECT_EQ(app::withDefaultExtension("/data.d/a"), "/data.d/a.var");
    EXPECT_EQ(app::withDefaultExtension("a.txt"), "a.txt");
}

} // namespace
