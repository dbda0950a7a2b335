#include "app/packedfiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace app {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

PACKEDCHOICE choose(const std::string& archive, std::vector<std::string> files)
{
    for (std::string& file : files) file.insert(0, "/tmp/x.nc.d/");
    return choosePacked(archive, "/tmp/x.nc.d/", files);
}

TEST(NetCdfName, CutsTheLastExtensionAndAddsOne)
{
    EXPECT_EQ(netCdfName("woa.nc.gz"), "woa.nc");
    EXPECT_EQ(netCdfName("woa.CDF.zip"), "woa.CDF");
    EXPECT_EQ(netCdfName("woa.cdf.1.zip"), "woa.cdf.1");
    EXPECT_EQ(netCdfName("woa.NC.gz"), "woa.NC");
    EXPECT_EQ(netCdfName("woa.gz"), "woa.nc");
    EXPECT_EQ(netCdfName("woa.v1.zip"), "woa.v1.nc");
}

TEST(ChoosePacked, LoneFileOfAKnownKindIsWhatItIs)
{
    EXPECT_EQ(choose("a.gz", {"cast.txt"}).kind, FileKind::spreadsheet);
    EXPECT_EQ(choose("a.zip", {"cast.png", "cast.txt", "cast.doc"}).path, "/tmp/x.nc.d/cast.txt");
    EXPECT_EQ(choose("a.tgz", {"d/cast.o4x"}).kind, FileKind::listing);
    EXPECT_EQ(choose("a.zip", {"other.nc"}).path, "/tmp/x.nc.d/other.nc");
}

TEST(ChoosePacked, WholeCollectionIsPreferred)
{
    const PACKEDCHOICE choice =
        choose("a.zip", {"readme.txt", "c.hob", "c.inv", "c.var", "c.dob", "c.log", "other.var"});
    EXPECT_EQ(choice.kind, FileKind::collection);
    EXPECT_EQ(choice.path, "/tmp/x.nc.d/c.var");
}

TEST(ChoosePacked, CollectionInAFolderIsFound)
{
    EXPECT_EQ(choose("a.tgz", {"d/c.var", "d/c.hob", "d/c.dob", "e/readme.txt"}).path, "/tmp/x.nc.d/d/c.var");
    EXPECT_THAT(choose("a.tgz", {"d/c.var", "e/c.hob", "e/c.dob", "e/readme.txt"}).several,
                ElementsAre("/tmp/x.nc.d/d/c.var", "/tmp/x.nc.d/e/readme.txt"));
}

TEST(ChoosePacked, LoneDescriptionIsOpenedSoThatItsFilesAreMissed)
{
    EXPECT_EQ(choose("c.var.gz", {"c.var"}).kind, FileKind::collection);
}

TEST(ChoosePacked, SeveralAreLeftToTheUser)
{
    const PACKEDCHOICE two = choose("a.zip", {"a.txt", "b.txt", "c.png"});
    EXPECT_EQ(two.kind, FileKind::nothing);
    EXPECT_THAT(two.several, ElementsAre("/tmp/x.nc.d/a.txt", "/tmp/x.nc.d/b.txt"));
    EXPECT_EQ(choose("a.zip", {"c.var", "c.hob", "c.dob", "d.var", "d.hob", "d.dob"}).several.size(), 2U);
}

TEST(ChoosePacked, ArchivesNameDecidesForNetCdf)
{
    const PACKEDCHOICE named = choose("a.zip", {"a.nc", "readme.txt"});
    EXPECT_EQ(named.kind, FileKind::netCdf);
    EXPECT_EQ(named.path, "/tmp/x.nc.d/a.nc");
    EXPECT_THAT(named.rename, IsEmpty());
}

TEST(ChoosePacked, LoneFileOfUnknownKindIsTakenForNetCdf)
{
    const PACKEDCHOICE choice = choose("woa.gz", {"woa"});
    EXPECT_EQ(choice.kind, FileKind::netCdf);
    EXPECT_EQ(choice.path, "/tmp/x.nc.d/woa.nc");
    EXPECT_EQ(choice.rename, "/tmp/x.nc.d/woa");
    EXPECT_THAT(choose("woa.zip", {"a.bin", "b.bin"}).rename, IsEmpty());
}

TEST(ChoosePacked, HiddenFilesAreNobodysChoice)
{
    EXPECT_EQ(choose("a.zip", {"cast.txt", "._cast.txt", ".hidden.var"}).path, "/tmp/x.nc.d/cast.txt");
}

} // namespace
} // namespace app
