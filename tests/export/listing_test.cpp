// Listings in fixed columns: what is written, byte by byte.

#include "export/listing.h"

#include <clocale>
#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "export/stationexport.h"
#include "filesizelimit.h"
#include "samplecollection.h"
#include "selection/selectedlist.h"

namespace {

using namespace testing_support;
using exporting::exportListing;
using exporting::ListingForm;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// A collection, its list of selected stations, and what an export makes of it.
class RListings {
public:
    RSampleCollection sample;
    std::vector<int> variables;
    bool result = false;

    explicit RListings(int count = 3) : sample(count)
    {
        sample.collection.makeTempId();
        EXPECT_TRUE(sample.collection.openTemporaryFiles());
    }
    ~RListings() { sample.collection.closeTemporaryFiles(); }
    RListings(const RListings&) = delete;
    RListings& operator=(const RListings&) = delete;

    [[nodiscard]] std::string path(ListingForm form) const
    {
        return sample.directory.file(form == ListingForm::version3 ? "out.o3x" : "out.o4x");
    }
    [[nodiscard]] std::string description() const
    {
        return common::readFile(sample.directory.file("out.var")).value_or("no file");
    }
    std::string write(ListingForm form)
    {
        selection::buildSelectedList(sample.collection, {}, "test", sample.user);
        sample.user.messages.clear();
        result = exportListing(form, sample.collection, sample.station, path(form), variables, sample.user);
        return common::readFile(path(form)).value_or("no file");
    }
    std::string write3() { return write(ListingForm::version3); }
    std::string write4() { return write(ListingForm::version4); }
    // The line `number` from 1 of a text; negative ones from its end.
    static std::string line(const std::string& text, int number)
    {
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string l; std::getline(stream, l);) lines.push_back(l);
        const auto at = number < 0 ? lines.size() + static_cast<std::size_t>(number + 1)
                                   : static_cast<std::size_t>(number);
        return at >= 1 && at <= lines.size() ? lines[at - 1] : "no line";
    }

    // One station that is easily looked at.
    void putOne()
    {
        fillStation(sample.station, {{0, 10.5f}, {20.125f, missing}, {35, 34.9876543f}}, 4);
        label(sample.station, "A16", "12", "B");
        place(sample.station, -150.4812f, -17.5f);
        sample.station.header.bottomDepth = 3596.9f;
        store();
    }
    void store(int number = 0)
    {
        ASSERT_EQ(sample.collection.writeStation(number, sample.station, false), collection::WriteResult::ok);
    }
};

TEST(ExportListing, AStationOfVersion4InItsColumns)
{
    RListings run;
    run.putOne();
    EXPECT_EQ(
        run.write4(),
        "NVQ4.0 Listing\n"
        " File Name: out.o4x\n"
        "      Type: HYD\n"
        "     Nstat: 1       \n"
        " Variables: 3 \n"
        "\n"
        "Depth [m]                                                    8.2\n"
        "Temperature [~$m~#C]                                         8.2\n"
        "Salinity [psu]                                               8.2\n"
        "\n"
        "# A16                                    12 B  7/15/1995 209.519 -17.500  3596    10    2   3\n"
        "              1              2              3\n"
        "            0 4       20.125 4           35 4\n"
        "         10.5 4       -1e+10 4     34.98766 4\n");
    EXPECT_TRUE(run.result);
    EXPECT_THAT(run.sample.user.messages,
                ElementsAre("Exporting to .o4x file ...: 1 Stations Exported to .o4x File\n\n" +
                            run.path(ListingForm::version4)));
    EXPECT_EQ(run.sample.user.statusTexts.back(), "Exporting data to .o4x file ...     ESC aborts");
}

TEST(ExportListing, AStationOfVersion3InItsColumns)
{
    RListings run;
    run.putOne();
    EXPECT_EQ(run.write3(), "# A16                12 B  7/15/1995 209.519 -17.500  3596    10    2   3\n"
                            "            1            2            3\n"
                            "            0       20.125           35\n"
                            "         10.5    -1.0e+010     34.98766\n");
    EXPECT_EQ(run.description(),
              "Collection: sample    Type: HYD  Nvar:   3  Nstat:     1\n"
              "------------........--------...--------...---------.....\n"
              "No.  Variable                 Min     Max     Start   Tic     Ltic    Form\n"
              ".+---.-----------------------+.------+.------+.------+.------+.------+-.+-+\n"
              " 1   Depth [m]                     0.0     0.0     0.0    1.00    1.00  8.2\n"
              " 2   Temperature [~$m~#C]          0.0     0.0     0.0    1.00    1.00  8.2\n"
              " 3   Salinity [psu]                0.0     0.0     0.0    1.00    1.00  8.2\n");
    EXPECT_THAT(run.sample.user.messages,
                ElementsAre("Exporting to .o3x file ...: 1 Stations Exported to .o3x File\n\n" +
                            run.path(ListingForm::version3)));
    EXPECT_EQ(run.sample.user.statusTexts.back(), "Exporting data to .o3x file ...     ESC aborts");
}

TEST(ExportListing, AnEmptySelectionWritesOnlyTheHeaderAndReportsNoStations)
{
    RListings run;
    EXPECT_THAT(run.write4(), HasSubstr("     Nstat: 0       \n"));
    EXPECT_EQ(RListings::line(run.write4(), 10), "");
    EXPECT_THAT(run.sample.user.messages.at(0), HasSubstr("0 Stations Exported to .o4x File"));
    EXPECT_EQ(run.write3(), "");
    EXPECT_THAT(run.description(), HasSubstr("Nvar:   3  Nstat:     0\n"));
    EXPECT_THAT(run.sample.user.messages.at(0), HasSubstr("0 Stations Exported to .o3x File"));
}

TEST(ExportListing, ALongStationLabelIsCutInVersion3AndWholeInVersion4)
{
    RListings run;
    run.sample.put({{0}, {1}, {2}}, 0, "Cruise of 20 letters", "Station/of 20/bytes!", "C");
    EXPECT_TRUE(run.write4().find("\n# Cruise of 20 letters Station/of 20/bytes! C  7/15") !=
                std::string::npos);
    EXPECT_EQ(run.sample.user.messages.size(), 1U);
    EXPECT_TRUE(run.write3().starts_with("# Cruise of  Station/of C  7/15/1995  10.000  20.000 "));
    ASSERT_EQ(run.sample.user.messages.size(), 2U);
    EXPECT_THAT(run.sample.user.messages.at(1),
                HasSubstr("2 labels were cut, because they are longer than their column, the first:\n"
                          "Cruise of 20 letters"));
}

TEST(ExportListing, ALabelIsCutAtACharactersBorder)
{
    RListings run;
    run.sample.put({{0}, {1}, {2}}, 0, "\xD0\x9C\xD0\xBE\xD1\x80\xD0\xB5 \xD0\xA7\xD0\xB5",
                   "\xD0\x90"); // 15 bytes
    EXPECT_TRUE(run.write3().starts_with("# \xD0\x9C\xD0\xBE\xD1\x80\xD0\xB5           \xD0\x90"))
        << run.write3();
}

TEST(ExportListing, LabelsThatFitLatin1AreWrittenAsLatin1)
{
    RListings run;
    run.sample.put({{0}, {1}, {2}}, 0, "M\xC3\xA4rz 1", "\xE9t\xE9 a 7");
    EXPECT_TRUE(run.write3().starts_with("# M\xE4rz 1        \xE9t\xE9 a 7 B")) << run.write3();
}

TEST(ExportListing, ControlCharactersInLabelsBecomeBlanks)
{
    RListings run;
    run.sample.put({{0}, {1}, {2}}, 0, "A\nB\t1", "7");
    EXPECT_TRUE(run.write3().starts_with("# A B 1               7 B"));
}

TEST(ExportListing, ANegativeLongitudeIsWrittenPlus360)
{
    EXPECT_EQ(exporting::eastLongitude(-30.25f), 329.75f);
    RListings run;
    run.sample.put({{0}, {1}, {2}});
    place(run.sample.station, -30.25f, 5);
    run.store(1);
    EXPECT_THAT(run.write4(), HasSubstr(" 329.750   5.000 "));
}

TEST(ExportListing, AChosenVariableWithoutValuesIsLeftOutOfTheStation)
{
    RListings run;
    run.variables = {3, 2, 1};
    run.sample.put({{0, 10}, {}, {35, 36}});
    const std::string text = run.write4();
    EXPECT_TRUE(RListings::line(text, 7).starts_with("Salinity [psu] "));
    EXPECT_TRUE(RListings::line(text, 11).ends_with("    2   2"));
    EXPECT_EQ(RListings::line(text, 12), "              1              3");
    EXPECT_EQ(RListings::line(text, 13), "           35 0            0 0");
}

TEST(ExportListing, AStationWithoutAnyChosenValueIsNotWritten)
{
    RListings run;
    run.variables = {2};
    run.sample.put({{0}, {}, {35}});
    EXPECT_THAT(run.write4(), HasSubstr("     Nstat: 0 "));
    EXPECT_EQ(run.sample.user.messages.size(), 1U);
}

TEST(ExportListing, ADateOrPositionThatTheImportWouldRefuseIsLeftOutAndTold)
{
    RListings run;
    for (const int year : {1899, 1900, 2200, 2201}) {
        fillStation(run.sample.station, {{0}, {1}, {2}});
        label(run.sample.station, "A", std::to_string(year));
        place(run.sample.station, 10, 20, year);
        run.store();
    }
    const std::string text = run.write4();
    EXPECT_THAT(text, HasSubstr("     Nstat: 2 "));
    EXPECT_THAT(text, HasSubstr("/1900 "));
    EXPECT_THAT(text, HasSubstr("/2200 "));
    EXPECT_THAT(text, Not(HasSubstr("1899")));
    ASSERT_EQ(run.sample.user.messages.size(), 2U);
    EXPECT_THAT(run.sample.user.messages.at(0), HasSubstr("2 Stations Exported"));
    EXPECT_THAT(run.sample.user.messages.at(1),
                HasSubstr("2 stations were left out, because a listing can't hold them, the first:\n"
                          "A  - 1899: date 07/15/1899"));
}

TEST(ExportListing, MoreThan9999LevelsDoNotFitVersion3)
{
    RListings run;
    for (const int levels : {9999, 10000}) run.sample.put(profile(levels, 3));
    EXPECT_TRUE(run.write3().starts_with(
        "# A                   1 C  7/15/1995  10.000  20.000     0 99980 9999   3\n"));
    EXPECT_THAT(run.description(), HasSubstr("Nstat:     1\n"));
    EXPECT_THAT(run.sample.user.messages.at(1), HasSubstr("10000 levels (at most 9999)"));
    EXPECT_THAT(run.write4(), HasSubstr("     0 9999010000   3\n"));
    EXPECT_EQ(run.sample.user.messages.size(), 1U);
}

TEST(ExportListing, ADepthWithoutRoomIsWrittenWithAnExponentAndTold)
{
    RListings run;
    const auto depthOf = [&](float depth) {
        run.sample.put({{0}, {1}, {2}}, 1);
        run.sample.station.header.bottomDepth = depth;
        run.store(1);
        return RListings::line(run.write4(), 11).substr(72, 6);
    };
    EXPECT_EQ(depthOf(99999), " 99999");
    EXPECT_EQ(depthOf(-9999.75f), " -9999");
    EXPECT_EQ(depthOf(-0.5f), "     0");
    EXPECT_EQ(depthOf(100000), " 1.0e5");
    EXPECT_EQ(depthOf(missing), " -1e10");
    EXPECT_EQ(run.sample.user.messages.size(), 1U);
    EXPECT_EQ(depthOf(123456), " 1.2e5");
    ASSERT_EQ(run.sample.user.messages.size(), 2U);
    EXPECT_THAT(run.sample.user.messages.at(1), HasSubstr("1 depths were rounded"));
    EXPECT_THAT(run.sample.user.messages.at(1), HasSubstr("A  - 1: 123456 as 1.2e5"));
    EXPECT_EQ(depthOf(-10000), "  -1e4");
    EXPECT_EQ(depthOf(-3.4e38f), " -3e38");
}

TEST(ExportListing, ValuesHaveSevenDigitsInEveryRange)
{
    RListings run;
    run.sample.put(
        {{-1.23456789e-10f, 1e-4f, 123456.789f, 12345678.f, 3.4028235e38f, 1e-45f, -0.0f}, {}, {}});
    const std::string text = run.write3();
    EXPECT_EQ(RListings::line(text, 3), " -1.234568e-10");
    EXPECT_EQ(RListings::line(text, 4), "       0.0001");
    EXPECT_EQ(RListings::line(text, 5), "     123456.8");
    EXPECT_EQ(RListings::line(text, 6), " 1.234568e+07");
    EXPECT_EQ(RListings::line(text, 7), " 3.402823e+38");
    EXPECT_EQ(RListings::line(text, 8), " 1.401298e-45");
    EXPECT_EQ(RListings::line(text, 9), "           -0");
}

TEST(ExportListing, NumbersDoNotDependOnTheLocale)
{
    RListings run;
    run.putOne();
    const std::string plain = run.write4(), plain3 = run.write3();
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    bool tried = false;
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE"})
        tried = tried || std::setlocale(LC_NUMERIC, name);
    if (!tried) GTEST_SKIP() << "no locale with a decimal comma";
    EXPECT_EQ(run.write4(), plain);
    EXPECT_EQ(run.write3(), plain3);
    std::setlocale(LC_NUMERIC, before.c_str());
}

TEST(ExportListing, AVariablesLabelIsCutInVersion3)
{
    RListings run;
    collection::setLabel(run.sample.collection.variables[2], "Dissolved organic carbon [~$m~#mol/kg]");
    run.putOne();
    run.write3();
    EXPECT_THAT(run.description(), HasSubstr("\n 2   Dissolved organic carbon      0.0     0.0"));
    EXPECT_THAT(run.sample.user.messages.at(1), HasSubstr("Dissolved organic carbon [~$m~#mol/kg]"));
    EXPECT_THAT(run.write4(),
                HasSubstr("\nDissolved organic carbon [~$m~#mol/kg]                       8.2\n"));
}

// --- the files

TEST(ExportListing, AbortingRemovesTheListingAndItsDescription)
{
    RListings run;
    for (int i = 0; i < 5; ++i) run.sample.put({{0}, {1}, {2}});
    for (const ListingForm form : {ListingForm::version3, ListingForm::version4}) {
        run.sample.user.abort = true;
        run.write(form);
        EXPECT_FALSE(run.result);
        EXPECT_FALSE(run.sample.user.abort);
        EXPECT_THAT(run.sample.user.messages,
                    ElementsAre(HasSubstr("Really Want to Abort and Delete Export File?")));
        EXPECT_FALSE(common::existsAtAll(run.path(form)));
        EXPECT_FALSE(common::existsAtAll(run.sample.directory.file("out.var")));
    }
}

TEST(ExportListing, AnAbortLeavesOldFilesAsTheyWere)
{
    RListings run;
    run.putOne();
    const std::string listing = run.write3(), description = run.description();
    run.sample.put({{0}, {1}, {2}});
    run.sample.user.abort = true;
    EXPECT_EQ(run.write3(), listing);
    EXPECT_EQ(run.description(), description);
    EXPECT_FALSE(run.result);
    EXPECT_NE(run.write3(), listing);
    EXPECT_THAT(run.description(), HasSubstr("Nstat:     2\n"));
    // nothing else is left beside them
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(run.sample.directory.path()))
        files += entry.path().filename().string().find("out") != std::string::npos;
    EXPECT_EQ(files, 2);
}

TEST(ExportListing, TheDescriptionOfACollectionIsNotReplaced)
{
    RListings run;
    run.putOne();
    ASSERT_TRUE(run.sample.collection.writeVarFile(run.sample.collection.path));
    const std::string before = run.sample.bytes(".var");
    selection::buildSelectedList(run.sample.collection, {}, "test", run.sample.user);
    run.sample.user.messages.clear();
    const std::string target = run.sample.collection.path + ".o3x";
    EXPECT_FALSE(exportListing(ListingForm::version3, run.sample.collection, run.sample.station, target, {},
                               run.sample.user));
    EXPECT_THAT(run.sample.user.messages,
                ElementsAre(HasSubstr("Could not write file " + run.sample.collection.path + ".var!")));
    EXPECT_EQ(run.sample.bytes(".var"), before);
    EXPECT_FALSE(common::existsAtAll(target));
    EXPECT_FALSE(exportListing(ListingForm::version3, run.sample.collection, run.sample.station,
                               run.sample.collection.path + ".var", {}, run.sample.user));
    EXPECT_EQ(run.sample.bytes(".var"), before);
}

TEST(ExportListing, AFullDiskIsToldAndLeavesTheOldFiles)
{
    RListings run;
    run.putOne();
    const std::string listing = run.write4(), listing3 = run.write3(), description = run.description();
    for (int i = 0; i < 3; ++i) run.sample.put(profile(4000, 3));
    selection::buildSelectedList(run.sample.collection, {}, "test", run.sample.user);
    const RFileSizeLimit limit(100000);
    for (const ListingForm form : {ListingForm::version4, ListingForm::version3}) {
        run.sample.user.messages.clear();
        EXPECT_FALSE(exportListing(form, run.sample.collection, run.sample.station, run.path(form), {},
                                   run.sample.user));
        EXPECT_THAT(run.sample.user.messages,
                    ElementsAre(HasSubstr("Could not write file " + run.path(form))));
    }
    EXPECT_EQ(common::readFile(run.path(ListingForm::version4)), listing);
    EXPECT_EQ(common::readFile(run.path(ListingForm::version3)), listing3);
    EXPECT_EQ(run.description(), description);
}

TEST(ExportListing, AMissingFolderIsTold)
{
    RListings run;
    run.putOne();
    selection::buildSelectedList(run.sample.collection, {}, "test", run.sample.user);
    run.sample.user.messages.clear();
    const std::string path = run.sample.directory.file("none/out.o4x");
    EXPECT_FALSE(exportListing(ListingForm::version4, run.sample.collection, run.sample.station, path, {},
                               run.sample.user));
    EXPECT_THAT(run.sample.user.messages, ElementsAre(HasSubstr("Could not write file " + path)));
}

// --- the samples

TEST(ExportListing, ASampleRangeIsAskedAboutAndKeepsItsLevelsOnly)
{
    RListings run;
    run.sample.put({{0, 10, 20, 30}, {1, 2, 3, 4}, {5, 6, 7, 8}});
    run.sample.collection.criteria.sampleVariable = 1;
    run.sample.collection.criteria.sampleMin = 10;
    run.sample.collection.criteria.sampleMax = 20;
    const std::string text = run.write4();
    EXPECT_EQ(
        run.sample.user.messages.at(0),
        "Sample selection warning ...: Sample selection criteria are currently in effect.\nOnly selected "
        "samples are written to the export file!\n\nContinue?");
    EXPECT_TRUE(RListings::line(text, 11).ends_with("    2   3")) << text;
    EXPECT_EQ(RListings::line(text, 13), "           10 0            2 0            6 0");
    EXPECT_EQ(RListings::line(text, 14), "           20 0            3 0            7 0");
    EXPECT_EQ(RListings::line(text, 15), "no line");
    std::filesystem::remove(run.path(ListingForm::version4));
    run.sample.user.answers = {common::Answer::no};
    EXPECT_EQ(run.write4(), "no file");
    EXPECT_FALSE(run.result);
}

} // namespace
