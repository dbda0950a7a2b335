// The layout of a spreadsheet as its header tells it.

#include <ctime>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "common/textcoding.h"
#include "import/spreadsheetfixture.h"

namespace {

using namespace importing;
using namespace testing_support;

std::vector<std::string> labels(const std::string& line)
{
    return splitLabels(line, '\t', true);
}

std::string labelOf(const collection::VARINFO& variable)
{
    return common::labelToUtf8(common::fieldText(variable.label));
}

bool holds(const std::vector<std::string>& texts, const std::string& part)
{
    return std::any_of(texts.begin(), texts.end(),
                       [&](const std::string& text) { return text.find(part) != std::string::npos; });
}

// Answers as the members say.
class RScriptedSettler : public RSpreadsheetSettler {
public:
    std::function<bool(SPREADSHEETDESC&)> properties = [](SPREADSHEETDESC&) { return true; };
    std::function<bool(SPREADSHEETDESC&)> columns = [](SPREADSHEETDESC&) { return true; };
    int propertiesAsked = 0, columnsAsked = 0;
    std::vector<std::string> shown, labelsShown;

    bool settleProperties(SPREADSHEETDESC& desc, std::span<const std::string> firstLines) override
    {
        ++propertiesAsked;
        shown.assign(firstLines.begin(), firstLines.end());
        return properties(desc);
    }
    bool settleHeaderVariables(SPREADSHEETDESC& desc, std::span<const std::string> names) override
    {
        ++columnsAsked;
        labelsShown.assign(names.begin(), names.end());
        return columns(desc);
    }
};

TEST(StandardLayout, NeedsSevenOfTheEightLabelsInOrder)
{
    EXPECT_TRUE(isStandardLayout(labels(metaHeader)));
    EXPECT_TRUE(isStandardLayout(labels(common::toUpper(metaHeader))));
    for (const std::string_view label : metaLabels) {
        const std::string other = replaced(metaHeader, std::string(label), "Something");
        EXPECT_TRUE(isStandardLayout(labels(other))) << label;
    }
    EXPECT_FALSE(isStandardLayout(labels(replaced(replaced(metaHeader, "Type", "x"), "hh:mm", "y"))));
}

TEST(StandardLayout, UnknownColumnsInBetweenDoNoHarm)
{
    EXPECT_TRUE(isStandardLayout(labels("Ship\t" + replaced(metaHeader, "\tType", "\tRemark\tType"))));
}

TEST(StandardLayout, NeedsEightColumnsAndTheOrder)
{
    EXPECT_FALSE(isStandardLayout(labels(replaced(metaHeader, "\tType", ""))));
    EXPECT_FALSE(isStandardLayout(
        labels("Lat (°N)\tLon (°E)\thh:mm\tmon/day/yr\tType\tStation\tCruise\tBot. Depth [m]")));
    EXPECT_FALSE(isStandardLayout(labels("")));
}

TEST(ReadSpreadsheetHeader, FindsMetavariablesAndSources)
{
    RSpreadsheetFixture file;
    file.read(twoVariables);
    ASSERT_EQ(file.result, HeaderResult::ok);
    EXPECT_TRUE(file.header.standardLayout);
    EXPECT_EQ(file.header.desc.nMeta, 8);
    ASSERT_EQ(file.header.sourceCount(), 2);
    const collection::VARINFO& temperature = file.header.sources[2];
    EXPECT_EQ(labelOf(temperature), "Temperature [°C]");
    EXPECT_STREQ(temperature.label, "Temperature [\xB0"
                                    "C]");
    EXPECT_STREQ(temperature.shortLabel, "Temperature");
    EXPECT_EQ(temperature.column, 10);
    EXPECT_EQ(temperature.qfColumn, 11);
    EXPECT_EQ(temperature.width, 8);
    EXPECT_EQ(temperature.decimals, 2);
    EXPECT_TRUE(file.user.notes.empty());
}

TEST(ReadSpreadsheetHeader, AFileInLatin1IsReadLikeOneInUtf8)
{
    RSpreadsheetFixture utf8, latin1;
    utf8.read(twoVariables + line("1", "5\t0\t20\t0"));
    latin1.read(replaced(twoVariables, "°", "\xB0") + line("1", "5\t0\t20\t0"));
    ASSERT_EQ(latin1.result, HeaderResult::ok);
    EXPECT_FALSE(latin1.header.fileIsUtf8);
    EXPECT_STREQ(latin1.header.sources[2].label, utf8.header.sources[2].label);
    EXPECT_EQ(latin1.stations, utf8.stations);
}

TEST(ReadSpreadsheetHeader, ALeadingMarkIsNoPartOfTheFirstLabel)
{
    RSpreadsheetFixture file;
    file.read("\xEF\xBB\xBF" + twoVariables + line("1", "5\t0\t20\t0"));
    EXPECT_EQ(file.header.desc.metaColumn[metaCruise], 0);
    EXPECT_EQ(file.stations.size(), 1u);
}

TEST(ReadSpreadsheetHeader, AFlagColumnBelongsToTheColumnBeforeIt)
{
    RSpreadsheetFixture file;
    file.read(metaHeader + "\tQF\tA\tB\tQF:B\t\tC\tQFx\n");
    ASSERT_EQ(file.header.sourceCount(), 4);
    EXPECT_EQ(file.header.sources[1].qfColumn, 0);
    EXPECT_EQ(file.header.sources[2].qfColumn, 11);
    EXPECT_EQ(file.header.sources[3].qfColumn, 0);
    EXPECT_EQ(labelOf(file.header.sources[4]), "QFx");
}

TEST(ReadSpreadsheetHeader, AtMostFiftySourcesAreTaken)
{
    std::string header = metaHeader;
    for (int i = 1; i <= 60; ++i) header += "\tV" + std::to_string(i);
    RSpreadsheetFixture file;
    file.read(header + "\n");
    EXPECT_EQ(file.header.sourceCount(), 50);
    EXPECT_EQ(labelOf(file.header.sources.back()), "V50");
}

TEST(ReadSpreadsheetHeader, ColumnsBeyondTheHundredAndSeventhAreIgnored)
{
    std::string header = metaHeader, data;
    for (int i = 9; i <= 130; ++i) {
        header += i % 3 == 0 ? "\tV" + std::to_string(i) : "\t";
        data += (i > 9 ? "\t" : "") + std::to_string(i);
    }
    RSpreadsheetFixture file;
    file.read(header + "\n" + line("1", data));
    ASSERT_EQ(file.result, HeaderResult::ok);
    EXPECT_EQ(labelOf(file.header.sources.back()), "V105");
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].values[1], std::vector<float>{9});
    EXPECT_EQ(file.stations[0].values.back(), std::vector<float>{105});
}

TEST(ReadSpreadsheetHeader, SemicolonsAreFoundWithoutAUserAndTold)
{
    RSpreadsheetFixture file;
    file.read(replaced(twoVariables + line("1", "5\t0\t20,5\t4"), "\t", ";"));
    ASSERT_EQ(file.result, HeaderResult::ok);
    EXPECT_EQ(file.header.desc.sepIndex, 1);
    EXPECT_EQ(file.user.notes, std::vector<std::string>{file.path() + ": column separator ;"});
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].values[2], std::vector<float>{20.5f});
    EXPECT_EQ(file.stations[0].flags[2], std::vector<int>{4});
}

TEST(ReadSpreadsheetHeader, SemicolonsAreNotRecognisedUnderTheTabAndTheUserIsAsked)
{
    RScriptedSettler settler;
    settler.properties = [](SPREADSHEETDESC& desc) {
        EXPECT_EQ(desc.sepChars, '\t');
        desc.sepIndex = 1;
        desc.sepChars = ';';
        return true;
    };
    RSpreadsheetFixture file;
    file.read(replaced(twoVariables + line("1", "5\t0\t20\t4"), "\t", ";"), &settler);
    EXPECT_EQ(settler.propertiesAsked, 1);
    EXPECT_EQ(settler.shown.size(), 2u);
    EXPECT_EQ(file.stations.size(), 1u);
}

TEST(ReadSpreadsheetHeader, AUserWhoCancelsEndsIt)
{
    RScriptedSettler settler;
    settler.properties = [](SPREADSHEETDESC&) { return false; };
    RSpreadsheetFixture file;
    file.read("a;b\n1;2\n", &settler);
    EXPECT_EQ(file.result, HeaderResult::cancelled);
    EXPECT_TRUE(file.user.messages.empty());

    settler.properties = [](SPREADSHEETDESC&) { return true; };
    settler.columns = [](SPREADSHEETDESC&) { return false; };
    file.read("a\tb\n1\t2\n", &settler);
    EXPECT_EQ(file.result, HeaderResult::cancelled);
}

TEST(ReadSpreadsheetHeader, AFileInNoKnownLayoutIsRefusedWithWhatAUserWouldGive)
{
    RSpreadsheetFixture file;
    file.read("Station\tLat (°N)\tDepth\n1\t2\t3\n");
    EXPECT_EQ(file.result, HeaderResult::unsettled);
    ASSERT_EQ(file.user.messages.size(), 1u);
    EXPECT_TRUE(holds(file.user.messages, file.path()));
    EXPECT_TRUE(holds(file.user.messages, "\"Lon (°E)\""));
    EXPECT_FALSE(holds(file.user.messages, "\"Lat (°N)\""));
}

TEST(ReadSpreadsheetHeader, AStandardFileThatLacksAColumnIsReadWithItsDefaultAndANote)
{
    for (const std::string_view label : metaLabels) {
        RSpreadsheetFixture file;
        file.read(replaced(twoVariables, std::string(label), "Other") + line("S", "5\t0\t20\t0"));
        ASSERT_EQ(file.result, HeaderResult::ok) << label;
        EXPECT_EQ(file.user.notes.size(), 1u);
        EXPECT_TRUE(holds(file.user.notes, "\"" + std::string(label) + "\"")) << label;
        ASSERT_EQ(file.stations.size(), 1u) << label;
    }
}

TEST(ReadSpreadsheetHeader, DefaultsComeFromTheFileNameAndTheDay)
{
    RSpreadsheetFixture file;
    std::string header = replaced(twoVariables, "Cruise", "x");
    file.read(header + line("S", "5\t0\t20\t0"));
    EXPECT_STREQ(file.stations[0].header.cruise, "casts");
    header = replaced(twoVariables, "mon/day/yr", "x");
    file.read(header + line("S", "5\t0\t20\t0"));
    const std::time_t now = std::time(nullptr);
    std::tm today{};
    ::localtime_r(&now, &today);
    EXPECT_EQ(file.stations[0].header.year, today.tm_year + 1900);
    header = replaced(twoVariables, "Station", "x");
    file.read(header + line("S", "5\t0\t20\t0") + line("S", "5\t0\t20\t0", "07/16/1995"));
    ASSERT_EQ(file.stations.size(), 2u);
    EXPECT_EQ(file.stations[0].label(), "1");
    EXPECT_EQ(file.stations[1].label(), "2");
}

TEST(ReadSpreadsheetHeader, ADateColumnMayBeAbsentInTheStandardLayoutAndOthersAreAskedFor)
{
    RScriptedSettler settler;
    RSpreadsheetFixture file;
    file.read(replaced(twoVariables, "mon/day/yr", "x"), &settler);
    EXPECT_EQ(settler.columnsAsked, 0);
    file.read(replaced(twoVariables, "hh:mm", "x"), &settler);
    EXPECT_EQ(settler.columnsAsked, 0);
    file.read(replaced(twoVariables, "Type", "x"), &settler);
    EXPECT_EQ(settler.columnsAsked, 1);
    EXPECT_EQ(settler.propertiesAsked, 0);
}

TEST(ReadSpreadsheetHeader, LooserTestsHoldOnlyOutsideTheStandardLayout)
{
    const std::string loose = "Cruise\tStation\tType\tTime [days since 1950-01-01]\tLongitude "
                              "[degrees_east]\tLatitude [degree_north]\tDepth [m]\n";
    RScriptedSettler settler;
    RSpreadsheetFixture file;
    file.read(loose + "A\t1\tB\t18262,5\t-30\t10\t5\n", &settler);
    ASSERT_EQ(file.result, HeaderResult::ok);
    EXPECT_EQ(file.header.desc.convId[metaDate], 31);
    ASSERT_EQ(file.stations.size(), 1u);
    const collection::STATIONHDR& header = file.stations[0].header;
    EXPECT_EQ(header.year, 2000);
    EXPECT_EQ(header.month, 1);
    EXPECT_EQ(header.day, 1);
    EXPECT_EQ(header.hour, 12);
    EXPECT_EQ(header.longitude, 330);
    EXPECT_EQ(header.latitude, 10);

    SPREADSHEETDESC desc = defaultDescription("x.txt");
    findMetaColumns(desc, labels(loose), true, false);
    EXPECT_EQ(desc.metaColumn[metaDate], -1);
    EXPECT_EQ(desc.metaColumn[metaLongitude], -1);
}

TEST(ReadSpreadsheetHeader, TheTimeIsAskedForOnlyWhereItIsWanted)
{
    SPREADSHEETDESC desc = defaultDescription("x.txt");
    const std::vector<std::string> columns = labels(replaced(metaHeader, "hh:mm", "x"));
    EXPECT_EQ(findMetaColumns(desc, columns, false, true), std::vector<int>{metaTime});
    EXPECT_TRUE(findMetaColumns(desc, columns, false, false).empty());
    EXPECT_TRUE(findMetaColumns(desc, columns, true, true).empty());
}

TEST(ReadSpreadsheetHeader, AUserMayChooseOtherHeaderAndDataLines)
{
    RScriptedSettler settler;
    settler.properties = [](SPREADSHEETDESC& desc) {
        desc.headerLine = 3;
        desc.firstDataLine = 5;
        desc.missingValue = -9;
        return true;
    };
    RSpreadsheetFixture file;
    file.read("comment\n\n" + twoVariables + "units\n" + line("1", "5\t0\t-9\t0") + line("1", "6\t0\t3\t0"),
              &settler);
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.stations[0].values[2], (std::vector<float>{common::MISSING_VALUE, 3}));
}

TEST(ReadSpreadsheetHeader, AnEmptyFileIsTold)
{
    RSpreadsheetFixture file;
    file.read("");
    EXPECT_EQ(file.result, HeaderResult::empty);
    EXPECT_TRUE(holds(file.user.messages, "is empty!"));
}

TEST(ReadSpreadsheetHeader, AFileThatIsNotThereIsTold)
{
    RScriptedUser user;
    SPREADSHEETHEADER header;
    EXPECT_EQ(readSpreadsheetHeader("/nowhere/x.txt", nullptr, user, header), HeaderResult::unreadable);
    EXPECT_EQ(user.messages, std::vector<std::string>{"NVQ Data Import: File /nowhere/x.txt not found!"});
}

TEST(ReadSpreadsheetHeader, AFileThatMayNotBeReadIsTold)
{
    RSpreadsheetFixture file;
    file.write(twoVariables);
    ASSERT_EQ(::chmod(file.path().c_str(), 0), 0);
    if (::access(file.path().c_str(), R_OK) == 0) GTEST_SKIP() << "this user may read everything";
    RScriptedUser user;
    SPREADSHEETHEADER header;
    EXPECT_EQ(readSpreadsheetHeader(file.path(), nullptr, user, header), HeaderResult::unreadable);
    EXPECT_TRUE(holds(user.messages, "can not be read!"));
}

TEST(ReadSpreadsheetHeader, AHeaderLineBeyondAMebibyteIsToldWithItsNumber)
{
    RSpreadsheetFixture file;
    file.read(std::string(3 << 20, 'x'));
    EXPECT_EQ(file.result, HeaderResult::badLine);
    EXPECT_TRUE(holds(file.user.messages, "Could not interpret header line 1.\n\n"));
}

TEST(CruiseLabel, ComesFromTheFileName)
{
    EXPECT_EQ(cruiseLabelOf("/data/a16.txt"), "a16");
    EXPECT_EQ(cruiseLabelOf("/data/NVQ_a16.txt"), "a16");
    EXPECT_EQ(cruiseLabelOf(""), "unknown Cruise");
    EXPECT_EQ(cruiseLabelOf("abcdefghijklmnopqrstuvwxyz.txt"), "abcdefghijklmnopqrst");
    EXPECT_EQ(cruiseLabelOf("12.50.txt"), "12.5");
}

} // namespace
