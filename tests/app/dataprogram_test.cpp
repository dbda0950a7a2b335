// Data in and out by command files, through the program itself.

#include <algorithm>

#include <gmock/gmock.h>

#include "programfixture.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing_support::castText;
using testing_support::RUN;
using testing_support::writeText;

class DataProgram : public testing_support::Program {
protected:
    // The account of a text file: its lines without the header.
    int dataLines(const std::string& name) const
    {
        const std::string text = read(name);
        return static_cast<int>(std::count(text.begin(), text.end(), '\n')) - 1;
    }
    RUN withCast(const std::string& lines) const
    {
        return commands("open_collection " + file("cast.var") + "\n" + lines);
    }
};

// The header of cast.txt and one level of station 3.
std::string oneLevel(const std::string& values)
{
    const std::string cast = castText(5, 8);
    return cast.substr(0, cast.find('\n') + 1) + "TEST\t3\tC\t5/4/1999\t10:30\t-25\t-45\t4000\t" + values +
           "\n";
}

TEST_F(DataProgram, ImportSelectExportAndImportAgain)
{
    makeCollection();
    const RUN out = withCast("select station=2:3 sample=Depth:100:500\n"
                             "export_spreadsheet part.txt,none,Depth Salinity\n"
                             "export_listing o4x,part.o4x\nexport_listing o3x,old.o3x\n"
                             "export_collection part_collection\n");
    ASSERT_EQ(out.code, 0) << out.error;
    EXPECT_THAT(out.error, HasSubstr("cast.var: 2 of 5 stations selected"));
    EXPECT_EQ(dataLines("part.txt"), 10);
    EXPECT_THAT(read("part.txt"), HasSubstr("Depth [m]\tQF\tSalinity [psu]\tQF\n"));
    EXPECT_THAT(read("part.o4x"), HasSubstr("     Nstat: 2"));
    EXPECT_THAT(read("old.var"), HasSubstr("Nstat:     2"));
    EXPECT_THAT(read("part_collection.log"), HasSubstr("CREATE"));

    const RUN again = commands("open_collection " + file("part.o4x") +
                               "\nexport_data from_o4x.txt\nclose\n"
                               "set_import overwrite=yes\nopen_collection " +
                               file("part_collection.var") + "\nexport_data from_collection.txt\n");
    ASSERT_EQ(again.code, 0) << again.error;
    EXPECT_EQ(dataLines("from_o4x.txt"), 10);
    EXPECT_EQ(dataLines("from_collection.txt"), 10);
}

TEST_F(DataProgram, AnExportedCollectionTellsHowManyStationsItReplaces)
{
    makeCollection();
    const RUN out = withCast("export_collection other\nselect station=2\nexport_collection other\n");
    ASSERT_EQ(out.code, 0) << out.error;
    EXPECT_THAT(out.error, HasSubstr(file("other.var") + ": 5 stations were replaced"));
}

TEST_F(DataProgram, SettingsOfAnImportHoldUntilTheyAreReset)
{
    makeCollection();
    const std::string cast = castText(5, 8);
    std::string renamed = cast;
    renamed.replace(renamed.find("Salinity [psu]"), 14, "Theta");
    writeText(file("theta.txt"), renamed);
    writeText(file("plain.txt"), cast);
    const std::string
        theta = "set_import assoc \"Theta\"=\"Salinity [psu]\"\nimport_file spreadsheet,theta.txt\n",
        plain = "import_file spreadsheet,plain.txt\n";
    const RUN held = withCast(theta + plain);
    EXPECT_EQ(held.code, 1);
    EXPECT_THAT(held.error, HasSubstr("\"Theta\""));
    const RUN reset = withCast(theta + "set_import reset\n" + plain);
    EXPECT_EQ(reset.code, 0) << reset.error;
}

TEST_F(DataProgram, OldListingBecomesACollectionBesideItsDescription)
{
    makeCollection();
    ASSERT_EQ(withCast("export_listing o3x,old.o3x\n").code, 0);
    const std::string description = read("old.var");
    const RUN r = commands("open_collection " + file("old.o3x") + "\nexport_data back.txt\n");
    ASSERT_EQ(r.code, 0) << r.error;
    EXPECT_EQ(read("old.var"), description);
    EXPECT_TRUE(exists("old_o3x.var"));
    EXPECT_EQ(dataLines("back.txt"), 40);
}

TEST_F(DataProgram, ListingsGoIntoTheOpenCollection)
{
    makeCollection();
    const RUN r = withCast("select station=1:2\nexport_listing o4x,two.o4x\nselect reset\ndelete_selected\n"
                           "import_file o4x,two.o4x\nexport_data back.txt\n");
    ASSERT_EQ(r.code, 0) << r.error;
    EXPECT_EQ(dataLines("back.txt"), 16);
}

TEST_F(DataProgram, MergeTakesTheMeanAndUpdateTheNewValue)
{
    makeCollection();
    writeText(file("merged.txt"), oneLevel("100\t0\t39\t0\t\t"));
    writeText(file("updated.txt"), oneLevel("100\t0\t41\t0\t\t"));
    const RUN merged = withCast("import_file spreadsheet,merged.txt,merge\nexport_data merged_out.txt\n");
    ASSERT_EQ(merged.code, 0) << merged.error;
    EXPECT_THAT(read("merged_out.txt"), HasSubstr("\t-45\t4000\t100\t0\t29\t0\t34.1\t8\n"))
        << read("merged_out.txt");
    const RUN updated = withCast("import_file spreadsheet,updated.txt,update\nexport_data updated_out.txt\n");
    ASSERT_EQ(updated.code, 0) << updated.error;
    EXPECT_THAT(read("updated_out.txt"), HasSubstr("\t-45\t4000\t100\t0\t41\t0\t34.1\t8\n"));
}

TEST_F(DataProgram, StationThatMergeDoesNotFindIsDroppedAndTold)
{
    makeCollection();
    std::string other = oneLevel("100\t0\t39\t0\t\t");
    other.replace(other.rfind("TEST"), 4, "ELSE");
    writeText(file("other.txt"), other);
    const RUN r = withCast("import_file spreadsheet,other.txt,merge\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_THAT(r.error, HasSubstr("ELSE"));
    EXPECT_THAT(r.error, HasSubstr("not in the collection"));
}

TEST_F(DataProgram, ExistingStationsAreReplacedKeptOrEndTheImport)
{
    makeCollection();
    writeText(file("new.txt"), oneLevel("100\t0\t5\t0\t35\t0"));
    const RUN kept =
        withCast("set_import existing=keep\nimport_file spreadsheet,new.txt\nexport_data kept.txt\n");
    ASSERT_EQ(kept.code, 0) << kept.error;
    EXPECT_EQ(dataLines("kept.txt"), 40);
    EXPECT_THAT(kept.error, HasSubstr("kept"));

    const RUN aborted =
        withCast("set_import existing=abort\nimport_file spreadsheet,new.txt\nexport_data no.txt\n");
    EXPECT_EQ(aborted.code, 1);
    EXPECT_THAT(aborted.error, HasSubstr("run.cmd:3: import_file failed"));
    EXPECT_FALSE(exists("no.txt"));

    const RUN replaced = withCast("import_file spreadsheet,new.txt\nexport_data replaced.txt\n");
    ASSERT_EQ(replaced.code, 0) << replaced.error;
    EXPECT_EQ(dataLines("replaced.txt"), 33);
}

TEST_F(DataProgram, SettingsFeedVariablesOfOtherLabels)
{
    makeCollection();
    std::string text = oneLevel("100\t0\t50\t0\t\t");
    text.replace(text.find("Temperature [°C]"), std::string("Temperature [°C]").size(), "Temp, F");
    writeText(file("other.txt"), text);
    const RUN r = withCast("set_import assoc \"Temp, F\"=\"Temperature [°C]\":linear:0.5:-15\n"
                           "import_file spreadsheet,other.txt,update\nexport_data out.txt\n");
    ASSERT_EQ(r.code, 0) << r.error;
    EXPECT_THAT(read("out.txt"), HasSubstr("\t100\t0\t10\t0\t34.1\t8\n"));
}

TEST_F(DataProgram, ForeignLayoutIsSettledByTheCommandFile)
{
    makeCollection();
    writeText(file("foreign.csv"), "made by hand\nwhen;where;north;depth;temp\n7/14/2009;10;20;5;12.5\n"
                                   "7/14/2009;10;20;15;-999\n");
    const RUN r =
        withCast("set_import sep=; header_line=2 first_data_line=3 missing=-999 default_cruise=HAND\n"
                 "set_import assoc \"when\"=\"mon/day/yr\" assoc \"where\"=\"Lon (°E)\"\n"
                 "set_import assoc \"north\"=\"Lat (°N)\" assoc \"depth\"=\"Depth [m]\"\n"
                 "set_import assoc \"temp\"=\"Temperature [°C]\"\n"
                 "import_file spreadsheet,foreign.csv\nselect cruise=HAND\nexport_data out.txt\n");
    ASSERT_EQ(r.code, 0) << r.error;
    EXPECT_THAT(read("out.txt"), HasSubstr("HAND\t"));
    EXPECT_THAT(read("out.txt"), HasSubstr("\t7/14/2009\t"));
    EXPECT_THAT(read("out.txt"), HasSubstr("\t10\t20\t"));
    EXPECT_THAT(read("out.txt"), HasSubstr("\t12.5\t"));
    EXPECT_THAT(read("out.txt"), Not(HasSubstr("-999")));
}

TEST_F(DataProgram, ListOfFilesIsImportedWithOneReport)
{
    makeCollection();
    std::string second = oneLevel("100\t0\t5\t0\t35\t0");
    second.replace(second.rfind("TEST"), 4, "NEW1");
    writeText(file("a.txt"), second);
    second.replace(second.rfind("NEW1"), 4, "NEW2");
    writeText(file("b.txt"), second);
    writeText(file("both.lst"), "a.txt\nb.txt\n");
    const RUN r = withCast("import_file spreadsheet,both.lst\nexport_data out.txt\n");
    ASSERT_EQ(r.code, 0) << r.error;
    EXPECT_THAT(r.error, HasSubstr("Multiple Files"));
    EXPECT_EQ(dataLines("out.txt"), 42);
}

TEST_F(DataProgram, ReportAndLogHoldAnAccount)
{
    makeCollection();
    EXPECT_THAT(read("cast.log"), HasSubstr("ACCOUNT Lines: "));
    writeText(file("new.txt"), oneLevel("100\t0\tnone\t0\t35\t0"));
    const RUN r = withCast("import_file spreadsheet,new.txt\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_THAT(r.error, HasSubstr("Stations: "));
    EXPECT_THAT(r.error, HasSubstr("\"none\""));
}

TEST_F(DataProgram, PairsOfOneLineAreInForceTogetherOrNotAtAll)
{
    makeCollection();
    const RUN r = withCast("select station=1:2 year=soon\nexport_data no.txt\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, HasSubstr("run.cmd:2: select: year: \"soon\""));
    EXPECT_FALSE(exists("no.txt"));
    EXPECT_THAT(r.error, Not(HasSubstr("stations selected")));
}

TEST_F(DataProgram, WhatIsMissingFailsWithFileAndLine)
{
    makeCollection();
    writeText(file("none.txt"), "");
    for (const char* const line :
         {"import_file spreadsheet,there_is_none.txt", "import_file o4x,none.txt", "import_file o3x,none.txt",
          "import_file sd2,cast.txt", "import_file spreadsheet", "set_import colour=red",
          "set_import assoc a", "select season=winter", "select cruise=\"A", "select sample=Oxygen:1:2",
          "select polygon=none.pol", "export_spreadsheet out.txt,,Oxygen", "export_listing txt,out.txt",
          "export_listing o4x,/there/is/none.o4x", "export_collection /there/is/none",
          "export_spreadsheet cast.dob", "export_listing o4x,cast.hob", "export_listing o3x,cast.o3x",
          "export_collection cast"}) {
        const std::string bytes = collectionBytes();
        const RUN r = withCast(std::string(line) + "\nexport_data never.txt\n");
        EXPECT_EQ(r.code, 1) << line << "\n" << r.error;
        EXPECT_THAT(r.error, HasSubstr("run.cmd:2: ")) << line;
        EXPECT_FALSE(exists("never.txt")) << line;
        EXPECT_EQ(collectionBytes(), bytes) << line;
    }
}

TEST_F(DataProgram, CommandsWithoutACollectionOrStationsFail)
{
    for (const char* const line : {"select reset", "import_file o4x,a.o4x", "export_listing o3x,a.o3x",
                                   "export_collection a", "export_spreadsheet a.txt"}) {
        const RUN r = commands(std::string(line) + "\n");
        EXPECT_EQ(r.code, 1) << line;
        EXPECT_THAT(r.error, HasSubstr("run.cmd:1: ")) << line;
        EXPECT_THAT(r.error, HasSubstr("no collection is open")) << line;
    }
    makeCollection();
    const RUN r = withCast("select year=1800\nexport_listing o4x,a.o4x\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, HasSubstr("run.cmd:3: export_listing: no stations are selected"));
}

TEST_F(DataProgram, DescriptionOfAListingTakesNoCollectionsPlace)
{
    makeCollection();
    ASSERT_EQ(withCast("copy_collection other\n").code, 0);
    const std::string description = read("other.var");
    const RUN r = withCast("export_listing o3x,other.o3x\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(read("other.var"), description);
    EXPECT_FALSE(exists("other.o3x"));
}

TEST_F(DataProgram, QualityAndSampleRangeGoIntoExports)
{
    makeCollection();
    const RUN r = withCast("select station=1 quality=good\nexport_data good.txt\n"
                           "select quality=all sample=Temperature:15:17\nexport_data warm.txt\nselect reset\n"
                           "export_data all.txt\n");
    ASSERT_EQ(r.code, 0) << r.error;
    EXPECT_THAT(read("good.txt"), Not(HasSubstr("\t34.1\t8")));
    EXPECT_THAT(read("all.txt"), HasSubstr("\t34.1\t8"));
    EXPECT_EQ(dataLines("warm.txt"), 3);
    EXPECT_EQ(dataLines("all.txt"), 40);
}

TEST_F(DataProgram, PolygonIsReadFromAFile)
{
    makeCollection();
    writeText(file("corners.txt"), "-30 -47\n-20 -47\n-20 -38\n-30 -38\n");
    const RUN r = withCast("select polygon=corners.txt\nexport_data out.txt\n");
    ASSERT_EQ(r.code, 0) << r.error;
    EXPECT_EQ(dataLines("out.txt"), 16);
}

TEST_F(DataProgram, NumbersOfListingsDoNotDependOnTheLocale)
{
    makeCollection();
    ASSERT_EQ(withCast("export_listing o4x,c.o4x\nexport_spreadsheet c.txt,1 2\n").code, 0);
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    ASSERT_EQ(withCast("export_listing o4x,d.o4x\nexport_spreadsheet d.txt,1 2\n").code, 0);
    EXPECT_EQ(read("c.txt"), read("d.txt"));
    std::string german = read("d.o4x");
    const std::size_t at = german.find("d.o4x");
    if (at != std::string::npos) german.replace(at, 5, "c.o4x");
    EXPECT_EQ(read("c.o4x"), german);
}

} // namespace
