#include <csignal>
#include <filesystem>

#include <sys/resource.h>

#include <gtest/gtest.h>

#include "export/spreadsheet.h"
#include "import/importspreadsheet.h"
#include "samplecollection.h"
#include "selection/criteria.h"
#include "selection/selectedlist.h"

namespace {

using namespace testing_support;
using exporting::exportSpreadsheet;
using exporting::SPREADSHEETOPTIONS;

constexpr std::string_view metaHeader =
    "Cruise\tStation\tType\tmon/day/yr\thh:mm\tLon (°E)\tLat (°N)\tBot. Depth [m]";

// A collection, its list of selected stations, and what an export makes of it.
class RExports {
public:
    RSampleCollection sample{3};
    SPREADSHEETOPTIONS options;
    bool result = false;

    RExports()
    {
        sample.collection.makeTempId();
        EXPECT_TRUE(sample.collection.openTemporaryFiles());
    }
    ~RExports() { sample.collection.closeTemporaryFiles(); }

    [[nodiscard]] std::string path() const { return sample.directory.file("out.txt"); }
    void select() { selection::buildSelectedList(sample.collection, {}, "test", sample.user); }

    std::string text()
    {
        select();
        sample.user.messages.clear();
        result = exportSpreadsheet(sample.collection, sample.station, path(), options, sample.user);
        return common::readFile(path()).value_or("no file");
    }
    // The lines behind the header line.
    std::string lines()
    {
        const std::string all = text();
        return all.substr(std::min(all.size(), all.find('\n') + 1));
    }
};

TEST(ExportSpreadsheet, WritesHeaderAndLines)
{
    RExports run;
    fillStation(run.sample.station, {{0, 10.5f}, {20.125f, 19}, {35, 34.9876543f}}, 4);
    label(run.sample.station, "A16", "12", "B");
    place(run.sample.station, 209.518799f, -17.5f);
    run.sample.station.header.bottomDepth = 3596.9f;
    ASSERT_EQ(run.sample.collection.writeStation(0, run.sample.station, false), collection::WriteResult::ok);
    EXPECT_EQ(run.text(),
              std::string(metaHeader) +
                  "\tDepth [m]\tQF\tTemperature [~$m~#C]\tQF\tSalinity [psu]\tQF\n"
                  "A16\t12\tB\t7/15/1995\t12:34\t209.519\t-17.5\t3596\t0\t4\t20.125\t4\t35\t4\n"
                  "A16\t12\tB\t7/15/1995\t12:34\t209.519\t-17.5\t3596\t10.5\t4\t19\t4\t34.9877\t4\n");
    EXPECT_TRUE(run.result);
    EXPECT_EQ(
        run.sample.user.messages,
        std::vector<std::string>{"Exporting Station-Data ...: 1 Stations Exported to File\n\n" + run.path()});
    EXPECT_EQ(run.sample.user.busy, 0);
}

TEST(ExportSpreadsheet, AnEmptySelectionWritesOnlyTheHeader)
{
    RExports run;
    EXPECT_EQ(run.lines(), "");
    EXPECT_TRUE(run.result);
    EXPECT_TRUE(run.sample.user.messages.at(0).find("0 Stations Exported to File") != std::string::npos);
}

TEST(ExportSpreadsheet, AMissingValueLeavesTwoEmptyFieldsSoThatAllLinesHaveTheSameColumns)
{
    RExports run;
    run.sample.put({{0, 10}, {missing, 2}, {}});
    const std::string text = run.text();
    EXPECT_NE(text.find("\t0\t0\t\t\t\t\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\t10\t0\t2\t0\t\t\n"), std::string::npos) << text;
    const std::string header = text.substr(0, text.find('\n'));
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        EXPECT_EQ(std::count(line.begin(), line.end(), '\t'), std::count(header.begin(), header.end(), '\t'));
}

TEST(ExportSpreadsheet, AMissingTextStandsWithTheFlagForBad)
{
    RExports run;
    run.options.missingText = "  -999.00 ";
    run.sample.put({{0}, {missing}, {5}});
    EXPECT_TRUE(run.lines().ends_with("\t0\t0\t-999\t8\t5\t0\n"));
}

TEST(ExportSpreadsheet, OnlyTheChosenVariablesAreWritten)
{
    RExports run;
    run.options.variables = {3, 1, 99, -1};
    run.sample.put({{0}, {1}, {2}});
    EXPECT_TRUE(run.lines().ends_with("\t2\t0\t0\t0\n"));
    run.options.variables = {2};
    run.sample.put({{0}, {}, {2}}, 0, "A", "2");
    EXPECT_EQ(run.lines().find("A\t2\t"), std::string::npos); // nothing chosen remains
}

TEST(ExportSpreadsheet, OnlyTheSelectedStationsAreWrittenInTheirOrder)
{
    RExports run;
    for (const char* name : {"1", "2", "3"})
        run.sample.put({{0}, {1}, {2}}, 0, name == std::string("2") ? "B" : "A", name);
    common::copyText(run.sample.collection.criteria.cruisePattern, "A");
    const std::string lines = run.lines();
    EXPECT_EQ(lines.find("B\t2\t"), std::string::npos);
    EXPECT_LT(lines.find("A\t1\t"), lines.find("A\t3\t"));
}

TEST(ExportSpreadsheet, ValuesBeyondTheQualityLimitAreMissingAndWithoutALimitTheyComeWithTheirFlags)
{
    RExports run;
    selection::RSelectionStages stages;
    run.sample.collection.stages = &stages;
    run.sample.put({{0}, {1}, {2}});
    fillStation(run.sample.station, {{0}, {7}, {2}}, 8);
    label(run.sample.station, "A", "2");
    place(run.sample.station, 10, 20);
    ASSERT_EQ(run.sample.collection.writeStation(0, run.sample.station, false), collection::WriteResult::ok);
    EXPECT_TRUE(run.lines().ends_with("\t0\t8\t7\t8\t2\t8\n"));
    run.sample.collection.qualityLimit = 4;
    EXPECT_TRUE(run.lines().ends_with("\t0\t8\t\t\t\t\n"));
    run.sample.collection.stages = nullptr;
}

TEST(ExportSpreadsheet, OnlyLevelsWithinTheSampleRangeAreWritten)
{
    RExports run;
    selection::RSelectionStages stages;
    run.sample.collection.stages = &stages;
    run.sample.collection.criteria.sampleVariable = 2;
    run.sample.collection.criteria.sampleMin = 2;
    run.sample.collection.criteria.sampleMax = 3;
    run.sample.put({{0, 10, 20, 30}, {1, 2, 3, 4}, {5, 6, 7, 8}});
    run.sample.put({{0}, {9}, {5}}, 0, "A", "none");
    const std::string lines = run.lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 2);
    EXPECT_NE(lines.find("\t10\t0\t2\t0\t6\t0\n"), std::string::npos);
    EXPECT_NE(lines.find("\t20\t0\t3\t0\t7\t0\n"), std::string::npos);
    EXPECT_TRUE(
        run.sample.user.messages.at(0).starts_with("Sample selection warning ...: Sample selection criteria "
                                                   "are currently in effect.\nOnly selected samples "
                                                   "are written to the export file!\n\nContinue?"));
    run.sample.user.answers = {common::Answer::no};
    std::filesystem::remove(run.path());
    EXPECT_EQ(run.text(), "no file");
    EXPECT_FALSE(run.result);
    run.sample.collection.stages = nullptr;
}

TEST(ExportSpreadsheet, ANegativeLongitudeIsWrittenAsItsValuePlus360)
{
    collection::STATIONDATA station;
    fillStation(station, {{0}});
    label(station, "A", "1", "B");
    place(station, -30.5f, 20);
    std::string text;
    exporting::appendStation(text, station, {1}, "");
    EXPECT_EQ(text, "A\t1\tB\t7/15/1995\t12:34\t329.5\t20\t0\t0\t0\n");
}

TEST(ExportSpreadsheet, LabelsAreWrittenInUtf8AndNeverDivideTheirFields)
{
    RExports run;
    run.sample.put({{0}, {1}, {2}}, 0, "\xC5lesund", "a\tb\nc");
    EXPECT_TRUE(run.lines().starts_with("Ålesund\ta b c\t"));
}

TEST(ExportSpreadsheet, ALabelThatBeginsWithAQuoteIsQuoted)
{
    RExports run;
    run.sample.put({{0}, {1}, {2}}, 0, "\"A\" 16", "\"", "B");
    run.sample.put({{0}, {1}, {2}}, 0, "5\" hose", "1\"", "B");
    const std::string lines = run.lines();
    EXPECT_TRUE(lines.starts_with("\"\"\"A\"\" 16\"\t\"\"\"\"\tB\t")) << lines;
    EXPECT_NE(lines.find("\n5\" hose\t1\"\tB\t"), std::string::npos) << lines;
}

TEST(ExportSpreadsheet, AMissingTextNeverDividesItsField)
{
    RExports run;
    run.options.missingText = "no\tva\nlue";
    run.sample.put({{0}, {missing}, {5}});
    EXPECT_TRUE(run.lines().ends_with("\t0\t0\tno va lue\t8\t5\t0\n"));
    run.options.missingText = " \t ";
    EXPECT_TRUE(run.lines().ends_with("\t0\t0\t\t\t5\t0\n"));
}

TEST(ExportSpreadsheet, AValueThatWouldReadAsMissingKeepsItsDigits)
{
    RExports run;
    run.sample.put({{std::nextafter(missing, 0.0f)},
                    {-1.000004e10f},
                    {-9.9999e9f}}); // the last one is told from it by six digits
    EXPECT_TRUE(run.lines().ends_with("\t-9999998976\t0\t-10000039936\t0\t-9.9999e+09\t0\n")) << run.lines();
}

TEST(ExportSpreadsheet, BottomDepthIsTruncated)
{
    RExports run;
    run.sample.put({{0}, {1}, {2}});
    for (const auto& [depth, text] :
         {std::pair{3596.99f, "3596"}, {-0.9f, "0"}, {-12.7f, "-12"}, {4e9f, "2000000000"}}) {
        run.sample.station.header.bottomDepth = depth;
        std::string line;
        exporting::appendStation(line, run.sample.station, {1}, "");
        EXPECT_TRUE(line.ends_with("\t" + std::string(text) + "\t0\t0\n")) << line;
    }
}

// Computes variable 4 from variable 2, with flag 4; what can't be computed is no number.
class RReciprocal : public selection::RSelectionStages {
public:
    void computeDerived(collection::STATIONDATA& station) override
    {
        if (station.collection->neededMask[4] == 0) return;
        station.offset[4] = station.header.valueCount;
        for (int k = 0; k < station.levels(); ++k) {
            const auto from = static_cast<std::size_t>(station.offset[2] + k);
            const auto to = static_cast<std::size_t>(station.offset[4] + k);
            station.values[to] = 1 / station.values[from];
            station.flags[to] = 4;
        }
        station.header.valueCount += station.levels();
    }
};

TEST(ExportSpreadsheet, DerivedVariablesCanBeChosenAndWhatIsNoNumberIsMissing)
{
    RExports run;
    RReciprocal stages;
    run.sample.collection.stages = &stages;
    run.sample.collection.variables[4] = collection::emptyVariable(4);
    collection::setLabel(run.sample.collection.variables[4], "Reciprocal [1]");
    run.sample.collection.totalVariableCount = 4;
    run.sample.put({{0, 10}, {8, 0}, {5, 6}});
    run.options.variables = {4, 1};
    const std::string text = run.text();
    EXPECT_NE(text.find("\tReciprocal [1]\tQF\tDepth [m]\tQF\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\t0.125\t4\t0\t0\n"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("\t\t\t10\t0\n")) << text;
    run.options.variables = {}; // by itself a derived one is not written
    EXPECT_EQ(run.text().find("Reciprocal"), std::string::npos);
    run.sample.collection.stages = nullptr;
}

TEST(ExportSpreadsheet, EscapeAsksAndLeavesNoFile)
{
    RExports run;
    run.sample.put({{0}, {1}, {2}});
    run.select();
    run.sample.user.abort = true;
    EXPECT_FALSE(
        exportSpreadsheet(run.sample.collection, run.sample.station, run.path(), {}, run.sample.user));
    EXPECT_EQ(run.sample.user.messages,
              std::vector<std::string>{"Exporting Station-Data ...: Really Want to Abort "
                                       "and Delete Export File?"});
    EXPECT_FALSE(common::fileExists(run.path()));
    EXPECT_FALSE(run.sample.user.abort);
    run.sample.user.abort = true;
    run.sample.user.answers = {common::Answer::no};
    EXPECT_TRUE(
        exportSpreadsheet(run.sample.collection, run.sample.station, run.path(), {}, run.sample.user));
}

TEST(ExportSpreadsheet, AFileThatCanNotBeWrittenIsAnError)
{
    RExports run;
    run.sample.put({{0}, {1}, {2}});
    run.select();
    const std::string nowhere = run.sample.directory.file("missing/out.txt");
    EXPECT_FALSE(exportSpreadsheet(run.sample.collection, run.sample.station, nowhere, {}, run.sample.user));
    EXPECT_EQ(run.sample.user.messages.back(),
              "Exporting Station-Data ...: Could not write file " + nowhere + "!");
    EXPECT_FALSE(exportSpreadsheet(run.sample.collection, run.sample.station, run.sample.directory.path(), {},
                                   run.sample.user));
    EXPECT_FALSE(
        exportSpreadsheet(run.sample.collection, run.sample.station, "/dev/full/x", {}, run.sample.user));
}

TEST(ExportSpreadsheet, AWriteThatFailsMidwayLeavesTheOldFile)
{
    RExports run;
    for (int i = 0; i < 20; ++i) run.sample.put(profile(2000, 3), 0, "A", std::to_string(i));
    run.select();
    run.sample.setBytes(".old", "old content");
    const std::string target = run.sample.collection.path + ".old";
    struct rlimit old {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    const struct rlimit small {
        300000, old.rlim_max
    };
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool written =
        exportSpreadsheet(run.sample.collection, run.sample.station, target, {}, run.sample.user);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(written);
    EXPECT_EQ(run.sample.bytes(".old"), "old content");
    EXPECT_TRUE(run.sample.user.messages.back().find("Could not write file") != std::string::npos);
    EXPECT_TRUE(exportSpreadsheet(run.sample.collection, run.sample.station, target, {}, run.sample.user));
    EXPECT_GT(common::fileSize(target), 300000);
}

TEST(ExportSpreadsheet, TheStationInHandIsLoadedAgain)
{
    RExports run;
    run.sample.put({{0}, {1}, {2}}, 0, "A", "1");
    run.sample.put({{0}, {1}, {2}}, 0, "A", "2");
    run.select();
    ASSERT_EQ(run.sample.collection.loadStation(1, run.sample.station, false), collection::LoadResult::ok);
    run.text();
    EXPECT_EQ(run.sample.station.number, 1);
    EXPECT_STREQ(run.sample.station.header.station, "1");
}

TEST(ExportSpreadsheet, DamagedStationsAreLeftOutAndTold)
{
    RExports run;
    for (const char* name : {"1", "2", "3"}) run.sample.put({{0}, {1}, {2}}, 0, "A", name);
    run.select();
    ASSERT_EQ(run.sample.reopen(), collection::OpenFilesResult::ok);
    std::string hob = run.sample.bytes(".hob");
    hob[6 + 86 + 72] = '\x7F'; // the second station's data offset, far behind the file
    hob[6 + 86 + 75] = '\x7F';
    run.sample.setBytes(".hob", hob);
    ASSERT_EQ(run.sample.collection.openStationFiles(run.sample.collection.path, run.sample.user),
              collection::OpenFilesResult::ok);
    EXPECT_TRUE(
        exportSpreadsheet(run.sample.collection, run.sample.station, run.path(), {}, run.sample.user));
    const std::string text = common::readFile(run.path()).value_or("");
    EXPECT_NE(text.find("A\t1\t"), std::string::npos);
    EXPECT_EQ(text.find("A\t2\t"), std::string::npos);
    EXPECT_NE(text.find("A\t3\t"), std::string::npos);
    EXPECT_EQ(run.sample.user.notes.size(), 1u);
}

// --- there and back

class RRoundTrip {
public:
    RTemporaryDirectory directory;
    RScriptedUser user;

    // Makes a collection `name` of a spreadsheet and writes it as another.
    std::string throughCollection(const std::string& content, const std::string& name)
    {
        const std::string source = directory.file(name + ".txt"), target = directory.file(name + "_out.txt");
        const common::FilePtr file = common::openFile(source, "wb");
        EXPECT_EQ(std::fwrite(content.data(), 1, content.size(), file.get()), content.size());
        std::fflush(file.get());
        collection::RCollection c;
        c.directory = c.tempDirectory = directory.path();
        c.name = name;
        c.path = directory.path() + name;
        c.writable = true;
        importing::IMPORTOPTIONS options;
        options.header.emplace();
        EXPECT_TRUE(importing::spreadsheetVariables(source, nullptr, c, *options.header, user));
        EXPECT_TRUE(c.createEmptyFiles());
        EXPECT_EQ(c.openStationFiles(c.path, user), collection::OpenFilesResult::ok);
        collection::STATIONDATA station;
        EXPECT_EQ(importing::importSpreadsheet(c, station, source, options, user).end,
                  importing::ImportEnd::done);
        c.makeTempId();
        EXPECT_TRUE(c.openTemporaryFiles());
        selection::buildSelectedList(c, {}, "test", user);
        EXPECT_TRUE(exportSpreadsheet(c, station, target, {}, user));
        c.closeTemporaryFiles();
        return common::readFile(target).value_or("");
    }
};

TEST(RoundTrip, AnExportIsWhatItsImportExports)
{
    const std::string content =
        std::string(metaHeader) +
        "\tTemperature [°C]\tQF\tTracer~_2 [~$m~#mol]\tQF\tλ\n"
        "Ærø\t12.50\t*\t2/29/96\t24:00\t-150.4812\t-17.5102\t3596.7\t26.64524\t4\t\t1\t1e-7\n"
        "Ærø\t12.50\t*\t2/29/96\t24:00\t-150.4812\t-17.5102\t3596.7\t1234567\t8\t-0,5\t\t\n"
        "Ærø\t13\tC\t12/31/2001\t23:59\t0\t90\t0\t5\t0\t\t\t3\n";
    RRoundTrip trip;
    const std::string once = trip.throughCollection(content, "one");
    EXPECT_EQ(std::count(once.begin(), once.end(), '\n'), 4);
    EXPECT_NE(
        once.find("Ærø\t12.5\tB\t2/29/1996\t00:00\t209.519\t-17.5102\t3596\t26.6452\t4\t\t\t1e-07\t1\n"),
        std::string::npos)
        << once;
    EXPECT_EQ(trip.throughCollection(once, "two"), once);
}

TEST(RoundTrip, ALabelThatIsANumberIsItsValueOnceAndForAll)
{
    const std::string content = std::string(metaHeader) +
                                "\tDepth [m]\tQF\n"
                                "7.0\t12.500\tB\t2/29/1996\t12:00\t1\t2\t0\t5\t0\n"
                                "007\t12.\tB\t2/29/1996\t12:00\t1\t2\t0\t5\t0\n"
                                "-1.50e1\t0.00\tB\t2/29/1996\t12:00\t1\t2\t0\t5\t0\n";
    RRoundTrip trip;
    const std::string once = trip.throughCollection(content, "one");
    EXPECT_NE(once.find("\n7\t12.5\tB\t"), std::string::npos) << once;
    EXPECT_NE(once.find("\n007\t12\tB\t"), std::string::npos) << once;
    EXPECT_NE(once.find("\n-1.50e1\t0\tB\t"), std::string::npos) << once;
    EXPECT_EQ(trip.throughCollection(once, "two"), once);
}

TEST(RoundTrip, QuotesInLabelsComeBack)
{
    const std::string content = std::string(metaHeader) +
                                "\tDepth [m]\tQF\n"
                                "\"\"\"A\"\" 16\"\t\"\"\"\"\tB\t2/29/1996\t12:00\t1\t2\t0\t5\t0\n"
                                "5\" hose\t1\"\tB\t2/29/1996\t12:00\t1\t2\t0\t5\t0\n";
    RRoundTrip trip;
    EXPECT_EQ(trip.throughCollection(content, "one"), content);
}

TEST(RoundTrip, ARealSectionComesBack)
{
    const char* const named = std::getenv("NVQ_SHARED_DATA");
    const std::string path =
        std::string(named ? named : NVQ_SOURCE_DIR "/../shared/data") + "/casts/spreadsheet/section_dev.txt";
    if (!common::fileExists(path)) GTEST_SKIP() << "no file " << path;
    RRoundTrip trip;
    const std::string once = trip.throughCollection(common::readFile(path).value_or(""), "one");
    EXPECT_EQ(std::count(once.begin(), once.end(), '\n'), 3273);
    EXPECT_EQ(trip.throughCollection(once, "two"), once);
}

} // namespace
