// What is settled about an import by words and values.

#include <gtest/gtest.h>

#include "common/textcoding.h"
#include "import/importsettings.h"
#include "import/listsettler.h"
#include "import/spreadsheetfixture.h"
#include "variables/timeconversions.h"

namespace {

using namespace importing;
using namespace testing_support;

std::string set(IMPORTSETTINGS& settings, const std::string& key, const std::string& value)
{
    return setImportSetting(settings, key, value);
}

// A setting that must be taken.
IMPORTSETTINGS with(std::initializer_list<std::pair<std::string, std::string>> pairs)
{
    IMPORTSETTINGS settings;
    for (const auto& [key, value] : pairs) EXPECT_EQ(set(settings, key, value), "") << key << "=" << value;
    return settings;
}

RSpreadsheetFixture& readWith(RSpreadsheetFixture& file, const IMPORTSETTINGS& settings,
                              const std::string& content)
{
    RSettingsSettler settler(settings, file.user);
    return file.read(content, &settler);
}

bool holds(const std::vector<std::string>& texts, const std::string& part)
{
    return std::any_of(texts.begin(), texts.end(),
                       [&](const std::string& text) { return text.find(part) != std::string::npos; });
}

TEST(ImportSetting, TheSeparatorGoesByNameCharacterOrNumber)
{
    const std::pair<std::string, int> cases[] = {{"TAB", 0},   {"tab", 0}, {"\t", 0}, {"0", 0},
                                                 {";", 1},     {"1", 1},   {" ", 2},  {"SPACE", 2},
                                                 {"space", 2}, {"2", 2},   {"/", 3},  {"3", 3}};
    for (const auto& [text, place] : cases) EXPECT_EQ(with({{"sep", text}}).separator, place) << text;
    IMPORTSETTINGS settings = with({{"sep", ";"}});
    for (const std::string text : {"", ",", "4", "-1", "TABS", ";;"}) {
        EXPECT_NE(set(settings, "sep", text), "") << text;
        EXPECT_EQ(settings.separator, 1) << text;
    }
}

TEST(ImportSetting, LinesAreCountedFromOne)
{
    EXPECT_EQ(with({{"header_line", "3"}}).headerLine, 3);
    EXPECT_EQ(with({{"first_data_line", "7"}}).firstDataLine, 7);
    IMPORTSETTINGS settings;
    for (const std::string text : {"", "0", "-1", "x", "1.5", "99999999"}) {
        EXPECT_NE(set(settings, "header_line", text), "") << text;
        EXPECT_NE(set(settings, "first_data_line", text), "") << text;
    }
    EXPECT_FALSE(settings.headerLine || settings.firstDataLine);
}

TEST(ImportSetting, TheMissingValueIsANumber)
{
    EXPECT_EQ(with({{"missing", "-999"}}).missing, -999);
    EXPECT_EQ(with({{"missing", "1e35"}}).missing, 1e35f);
    IMPORTSETTINGS settings;
    for (const std::string text : {"", "none", "nan", "1e39", "9 9"})
        EXPECT_NE(set(settings, "missing", text), "") << text;
}

TEST(ImportSetting, DefaultsAreLookedAtWhenTheyAreSet)
{
    const std::pair<std::string, std::string> bad[] = {{"default_cruise", "a cruise with a long name"},
                                                       {"default_station", "123456789012345678901"},
                                                       {"default_type", "XX"},
                                                       {"default_date", "13/01/2000"},
                                                       {"default_date", "yesterday"},
                                                       {"default_time", "24:01"},
                                                       {"default_time", "12"},
                                                       {"default_lon", "361"},
                                                       {"default_lon", "east"},
                                                       {"default_lat", "-90.5"},
                                                       {"default_bottom", "deep"}};
    IMPORTSETTINGS settings;
    for (const auto& [key, value] : bad) {
        const std::string text = set(settings, key, value);
        EXPECT_NE(text.find(key), std::string::npos) << key << "=" << value;
        EXPECT_NE(text.find(value), std::string::npos) << text;
    }
    EXPECT_TRUE(std::none_of(settings.defaults.begin(), settings.defaults.end(),
                             [](const auto& value) { return value.has_value(); }));
    settings = with({{"default_lon", "12,5"}});
    EXPECT_EQ(set(settings, "default_lon", ""), "");
    EXPECT_FALSE(settings.defaults[metaLongitude]);
}

TEST(ImportSetting, AResetTakesAllOfThemBack)
{
    IMPORTSETTINGS settings;
    ASSERT_EQ(setImportSetting(settings, "missing", "-999"), "");
    ASSERT_EQ(setImportSetting(settings, "existing", "keep"), "");
    ASSERT_EQ(setImportSetting(settings, "assoc", "\"a\"=\"b\""), "");
    EXPECT_EQ(setImportSetting(settings, "reset", ""), "");
    EXPECT_FALSE(settings.missing);
    EXPECT_EQ(settings.existing, Existing::replace);
    EXPECT_TRUE(settings.associations.empty());
    EXPECT_NE(setImportSetting(settings, "reset", "yes"), "");
}

TEST(ImportSetting, SwitchesAndExistingStations)
{
    EXPECT_EQ(with({{"check", "no"}}).check, false);
    EXPECT_EQ(with({{"check", "ON"}}).check, true);
    EXPECT_TRUE(with({{"overwrite", "yes"}}).overwrite);
    EXPECT_EQ(with({{"existing", "keep"}}).existing, Existing::keep);
    EXPECT_EQ(with({{"existing", "abort"}}).existing, Existing::abort);
    EXPECT_EQ(with({{"existing", "replace"}}).existing, Existing::replace);
    IMPORTSETTINGS settings;
    for (const std::string key : {"check", "overwrite", "existing"})
        EXPECT_NE(set(settings, key, "perhaps"), "") << key;
}

TEST(ImportSetting, AnUnknownKeyIsTold)
{
    IMPORTSETTINGS settings;
    EXPECT_NE(set(settings, "seperator", "TAB").find("seperator"), std::string::npos);
    EXPECT_NE(set(settings, "", "TAB"), "");
    EXPECT_NE(set(settings, "default_depth", "5"), "");
}

ASSOCIATIONSETTING association(const std::string& text)
{
    const IMPORTSETTINGS settings = with({{"assoc", text}});
    return settings.associations.empty() ? ASSOCIATIONSETTING{} : settings.associations.front();
}

TEST(ImportSetting, AnAssociationMayBeInQuotesOrNot)
{
    for (const std::string text : {"\"Salinity [psu]\"=\"Salinity\"", "Salinity [psu]=Salinity",
                                   " \"Salinity [psu]\" = \"Salinity\" "}) {
        EXPECT_EQ(association(text).source, "Salinity [psu]") << text;
        EXPECT_EQ(association(text).target, "Salinity") << text;
        EXPECT_EQ(association(text).conversion.row, 0);
        EXPECT_EQ(association(text).conversion.a, 1);
    }
}

TEST(ImportSetting, LabelsInQuotesMayHoldEqualsColonAndQuotes)
{
    const ASSOCIATIONSETTING a = association("\"a=b:c\"=\"d:e=f\":4");
    EXPECT_EQ(a.source, "a=b:c");
    EXPECT_EQ(a.target, "d:e=f");
    EXPECT_EQ(a.conversion.row, 4);
    EXPECT_EQ(a.conversion.a, 43.53f);
    EXPECT_EQ(association("\"5\"\" net\"=\"\"\"x\"\"\"").source, "5\" net");
    EXPECT_EQ(association("\"5\"\" net\"=\"\"\"x\"\"\"").target, "\"x\"");
}

TEST(ImportSetting, AConversionIsANumberALabelOrLinear)
{
    EXPECT_EQ(association("a=b:1").conversion.row, 1);
    EXPECT_EQ(association("a=b:Press [dB] -> Depth [m]").conversion.row, 1);
    EXPECT_EQ(association("a=b:\"press [db]->depth [m]\"").conversion.row, 1);
    EXPECT_EQ(association("a=b:Pot. Temp [°C] -> Temp [°C]").conversion.row, 3);
    const CHOSENCONVERSION linear = association("a=b:linear:2.5:-1e2").conversion;
    EXPECT_EQ(linear.row, generalLinearRow);
    EXPECT_EQ(linear.a, 2.5f);
    EXPECT_EQ(linear.b, -100);
    IMPORTSETTINGS settings;
    for (const std::string text : {"a=b:", "a=b:9", "a=b:8", "a=b:-1", "a=b:linear", "a=b:linear:1",
                                   "a=b:linear:1:x", "a=b:linear:1:-1e10", "a=b:metres"})
        EXPECT_NE(set(settings, "assoc", text), "") << text;
    EXPECT_TRUE(settings.associations.empty());
}

TEST(ImportSetting, AHeaderVariableTakesTheConversionsOfHeaders)
{
    EXPECT_EQ(association("a=date:2").conversion.row, 2);
    EXPECT_EQ(association("a=Date:date as YYYYMMDD").conversion.row, 2);
    EXPECT_EQ(association("a=\"mon/day/yr\":\"date as YYYYMMDD -> mon/day/year\"").conversion.row, 2);
    EXPECT_EQ(association("a=time:13").conversion.row, 13);
    EXPECT_EQ(association("a=time:time as hhmm -> hh:mm").conversion.row, 13);
    EXPECT_EQ(association("a=lon:linear:-1:0").conversion.row, variables::linearRow);
    IMPORTSETTINGS settings;
    for (const std::string text :
         {"a=lon:2", "a=cruise:linear:1:0", "a=date:linear:1:0", "a=date:1", "a=date:99"})
        EXPECT_NE(set(settings, "assoc", text), "") << text;
}

TEST(ImportSetting, WhatIsNoAssociationIsRefused)
{
    IMPORTSETTINGS settings;
    for (const std::string text : {"", "a", "=", "a=", "=b", "\"a=b", "\"a\"x=b", "\"a\"\"=b", "\"\"=b"}) {
        EXPECT_NE(set(settings, "assoc", text), "") << text;
        EXPECT_NE(set(settings, "cruise", text), "") << text;
    }
    EXPECT_TRUE(settings.associations.empty());
    EXPECT_TRUE(settings.cruises.empty());
}

TEST(ImportSetting, ALaterAssociationReplacesOneOfTheSameSourceOrTarget)
{
    IMPORTSETTINGS settings = with({{"assoc", "a=b"}, {"assoc", "c=d"}, {"assoc", "A=e"}, {"assoc", "f=D"}});
    ASSERT_EQ(settings.associations.size(), 2u);
    EXPECT_EQ(settings.associations[0].target, "e");
    EXPECT_EQ(settings.associations[1].source, "f");
    settings = with({{"assoc", "a=lon"}, {"assoc", "b=Lon (°E)"}});
    EXPECT_EQ(settings.associations.size(), 1u);
}

TEST(ImportSetting, CruisesAreKeptAsRecordsHoldThem)
{
    const IMPORTSETTINGS settings = with({{"cruise", "\"Ørsted = 7\"=\"A16\""}, {"cruise", "x=B"}});
    ASSERT_EQ(settings.cruises.size(), 2u);
    EXPECT_EQ(settings.cruises[0].sourceLabel, "\xD8rsted = 7");
    EXPECT_EQ(settings.cruises[0].name, "A16");
    IMPORTSETTINGS other;
    EXPECT_NE(set(other, "cruise", "x=\"a label of more than twenty\""), "");
}

// --- files

const std::string nonstandard = "Station;Depth [m];Temp\n7;5;20\n7;6;21\n8;5;22\n";

TEST(SettingsSettler, NothingSetIsAsWithoutASettler)
{
    const std::string standard = twoVariables + line("1", "5\t0\t20\t4");
    for (const std::string& content :
         {standard, replaced(standard, "\t", ";"), replaced(standard, "Type", "x"),
          replaced(standard, "hh:mm", "x"), std::string("Station\tDepth\n1\t2\n"), std::string("a\n")}) {
        RSpreadsheetFixture without, with;
        without.read(content);
        readWith(with, {}, content);
        EXPECT_EQ(with.result, without.result) << content;
        EXPECT_EQ(with.stations, without.stations);
        const auto here = [&](std::vector<std::string> texts) {
            for (std::string& text : texts) text = replaced(text, with.path(), without.path());
            return texts;
        };
        EXPECT_EQ(here(with.user.notes), without.user.notes);
        EXPECT_EQ(here(with.user.messages), without.user.messages);
    }
}

TEST(SettingsSettler, SettingsHoldForTheStandardLayoutToo)
{
    RSpreadsheetFixture file;
    readWith(
        file,
        with({{"header_line", "3"}, {"first_data_line", "5"}, {"missing", "-999"}, {"default_type", "C"}}),
        "comment\n\n" + replaced(twoVariables, "Type", "x") + "units\n" + line("1", "5\t0\t-999\t4") +
            line("1", "6\t0\t3\t4"));
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_TRUE(file.header.standardLayout);
    EXPECT_EQ(file.stations[0].values[3], (std::vector<float>{common::MISSING_VALUE, 3}));
    EXPECT_STREQ(file.stations[0].header.type, "C");
    EXPECT_EQ(file.account.headerLines, 4);
}

TEST(SettingsSettler, DataFollowTheHeaderLineIfNothingElseIsSaid)
{
    RSpreadsheetFixture file;
    readWith(file, with({{"header_line", "12"}}),
             std::string(11, '\n') + replaced(twoVariables, "\t", ";") +
                 replaced(line("1", "5\t0\t3\t4"), "\t", ";"));
    ASSERT_EQ(file.stations.size(), 1u);
    EXPECT_EQ(file.header.desc.firstDataLine, 13);
    EXPECT_EQ(file.header.desc.sepChars, ';');
}

TEST(SettingsSettler, AFileInNoStandardLayoutIsReadWhenAllIsSettled)
{
    RSpreadsheetFixture file;
    readWith(file,
             with({{"sep", ";"},
                   {"header_line", "1"},
                   {"default_cruise", "Ærø"},
                   {"default_date", "7/14/2009"},
                   {"default_time", "12:30"},
                   {"default_lon", "-30"},
                   {"default_lat", "10,5"},
                   {"default_bottom", "4000"}}),
             nonstandard);
    ASSERT_EQ(file.result, HeaderResult::ok) << testing::PrintToString(file.user.messages);
    ASSERT_EQ(file.stations.size(), 2u);
    const collection::STATIONHDR& header = file.stations[0].header;
    EXPECT_STREQ(header.cruise, "\xC6r\xF8");
    EXPECT_STREQ(header.station, "7");
    EXPECT_STREQ(header.type, "B");
    EXPECT_EQ(header.year, 2009);
    EXPECT_EQ(header.month, 7);
    EXPECT_EQ(header.day, 14);
    EXPECT_EQ(header.hour, 12);
    EXPECT_EQ(header.minute, 30);
    EXPECT_EQ(header.longitude, 330);
    EXPECT_EQ(header.latitude, 10.5f);
    EXPECT_EQ(header.bottomDepth, 4000);
    EXPECT_EQ(file.stations[0].values[1], (std::vector<float>{5, 6}));
}

TEST(SettingsSettler, WhatIsStillNeededIsToldByItsKeys)
{
    RSpreadsheetFixture file;
    readWith(file, with({{"sep", ";"}, {"header_line", "1"}, {"default_lat", "10"}}), nonstandard);
    EXPECT_EQ(file.result, HeaderResult::unsettled);
    ASSERT_EQ(file.user.messages.size(), 1u);
    EXPECT_TRUE(holds(file.user.messages, file.path()));
    EXPECT_TRUE(holds(file.user.messages, "set_import settles them: default_date, default_lon."))
        << file.user.messages[0];
    RSpreadsheetFixture other;
    readWith(other, with({{"default_lat", "10"}}), nonstandard);
    EXPECT_TRUE(holds(other.user.messages, "sep, header_line, default_date, default_lon."))
        << other.user.messages.at(0);
}

TEST(SettingsSettler, AHeaderLineBehindTheEndIsTold)
{
    RSpreadsheetFixture file;
    readWith(file, with({{"header_line", "30"}}), twoVariables);
    EXPECT_EQ(file.result, HeaderResult::badLine);
    EXPECT_TRUE(holds(file.user.messages, "no line 30"));
}

TEST(SettingsSettler, HeaderVariablesTakeTheColumnsOfTheirAssociations)
{
    RSpreadsheetFixture file;
    readWith(file,
             with({{"sep", ";"},
                   {"assoc", "\"Cast No\"=station"},
                   {"assoc", "\"Day\"=\"mon/day/yr\":2"},
                   {"assoc", "X=lon:linear:-1:0"},
                   {"assoc", "\"Y [deg]\"=\"LAT (°N)\""}}),
             "Cast No;Day;X;Y [deg];Depth;Station\n7;20090714;30;10;5;99\n7;20090714;30;10;6;98\n");
    ASSERT_EQ(file.result, HeaderResult::ok) << testing::PrintToString(file.user.messages);
    ASSERT_EQ(file.stations.size(), 1u);
    const collection::STATIONHDR& header = file.stations[0].header;
    EXPECT_STREQ(header.station, "7");
    EXPECT_EQ(header.year, 2009);
    EXPECT_EQ(header.day, 14);
    EXPECT_EQ(header.longitude, 330);
    EXPECT_EQ(header.latitude, 10);
    EXPECT_EQ(file.header.sourceCount(), 2); // Depth, and the column that lost its role
}

TEST(SettingsSettler, ADateThatCountsSinceSomeDayNeedsNoConversion)
{
    const std::string data = "lon;lat;Days since 2000-01-01 06:00;Depth\n30;10;1.5;5\n";
    const auto settings = [](const std::string& date) {
        return with({{"sep", ";"}, {"assoc", "lon=lon"}, {"assoc", "lat=lat"}, {"assoc", date}});
    };
    for (const std::string date : {"\"Days since 2000-01-01 06:00\"=date", "3=date:31"}) {
        RSpreadsheetFixture file;
        readWith(file, settings(date), data);
        ASSERT_EQ(file.stations.size(), 1u) << testing::PrintToString(file.user.messages);
        EXPECT_EQ(file.stations[0].header.day, 2);
        EXPECT_EQ(file.stations[0].header.hour, 18);
    }
    RSpreadsheetFixture file;
    readWith(file, settings("Depth=date:31"), data);
    EXPECT_EQ(file.result, HeaderResult::unsettled);
    EXPECT_TRUE(holds(file.user.messages, "\"Depth\" holds no date"));
}

TEST(SettingsSettler, AColumnThatIsNotThereIsToldWithTheFile)
{
    RSpreadsheetFixture file;
    readWith(file, with({{"assoc", "Longitude=lon"}}), twoVariables + line("1", "5\t0\t20\t4"));
    EXPECT_EQ(file.result, HeaderResult::unsettled);
    ASSERT_EQ(file.user.messages.size(), 1u);
    EXPECT_TRUE(holds(file.user.messages, "\"Longitude\""));
    EXPECT_TRUE(holds(file.user.messages, file.path()));
}

// --- links

struct LINKS {
    std::vector<collection::VARINFO> sources, targets;
    RScriptedUser user;
    IMPORTCHOICES choices;

    LINKS(const std::vector<std::string>& sourceLabels, const std::vector<std::string>& targetLabels)
        : sources(variables(sourceLabels)), targets(variables(targetLabels))
    {
        associateByLabel(sources, targets);
        choices.file = "data.txt";
        choices.sources = sources;
        choices.targets = targets;
        choices.mayUseDefaults = true;
    }
    static std::vector<collection::VARINFO> variables(const std::vector<std::string>& labels)
    {
        std::vector<collection::VARINFO> made(1, collection::emptyVariable(0));
        for (const std::string& label : labels) {
            made.push_back(collection::emptyVariable(static_cast<int>(made.size())));
            collection::setLabel(made.back(), common::labelFromFile(label, true));
        }
        return made;
    }
    bool settle(const IMPORTSETTINGS& settings)
    {
        RSettingsSettler settler(settings, user);
        return settler.settleImport(choices);
    }
};

TEST(SettingsSettler, LinksSourcesAndTargets)
{
    LINKS links({"Depth [m]", "T [°C]", "Salz"}, {"Depth [m]", "Temperature [°C]", "Salinity [psu]"});
    EXPECT_TRUE(links.settle(with({{"assoc", "t [°C]=temperature:linear:2:1"}, {"assoc", "Salz=3"}})));
    EXPECT_EQ(links.targets[1].assocSource, 1);
    EXPECT_EQ(links.targets[2].assocSource, 2);
    EXPECT_EQ(links.sources[2].assoc, 2);
    EXPECT_EQ(links.sources[2].scale, 2);
    EXPECT_EQ(links.sources[2].offset, 1);
    EXPECT_EQ(links.targets[3].assocSource, 3);
}

TEST(SettingsSettler, ALinkReplacesThoseThatTheLabelsMade)
{
    LINKS links({"A", "B"}, {"A", "B"});
    EXPECT_TRUE(links.settle(with({{"assoc", "A=B:4"}})));
    EXPECT_EQ(links.targets[1].assocSource, 0);
    EXPECT_EQ(links.targets[2].assocSource, 1);
    EXPECT_EQ(links.sources[1].assoc, 2);
    EXPECT_EQ(links.sources[1].scale, 43.53f);
    EXPECT_EQ(links.sources[2].assoc, 0);
}

TEST(SettingsSettler, TwoSourcesMayChangePlaces)
{
    LINKS links({"A", "B"}, {"A", "B"});
    EXPECT_TRUE(links.settle(with({{"assoc", "A=B"}, {"assoc", "B=A"}})));
    EXPECT_EQ(links.targets[1].assocSource, 2);
    EXPECT_EQ(links.targets[2].assocSource, 1);
    EXPECT_EQ(links.sources[1].assoc, 2);
    EXPECT_EQ(links.sources[2].assoc, 1);
}

TEST(SettingsSettler, AnUnknownSourceOrTargetIsToldWithTheFile)
{
    for (const auto& [text, named] :
         {std::pair("Oxygen=B", "Oxygen"), std::pair("A=Oxygen", "Oxygen"), std::pair("A=9", "9")}) {
        LINKS links({"A", "B"}, {"A", "B"});
        EXPECT_FALSE(links.settle(with({{"assoc", text}})));
        ASSERT_EQ(links.user.messages.size(), 1u);
        EXPECT_TRUE(holds(links.user.messages, "\"" + std::string(named) + "\""));
        EXPECT_TRUE(holds(links.user.messages, "data.txt"));
    }
}

TEST(SettingsSettler, OneVariableByTwoNamesIsRefused)
{
    LINKS links({"A [m]", "B"}, {"A [m]", "B"});
    EXPECT_FALSE(links.settle(with({{"assoc", "A=B"}, {"assoc", "A [m]=1"}})));
    EXPECT_TRUE(holds(links.user.messages, "twice"));
    LINKS others({"A [m]", "B"}, {"A [m]", "B"});
    EXPECT_FALSE(others.settle(with({{"assoc", "A=A"}, {"assoc", "B=A [m]"}})));
}

TEST(SettingsSettler, APotentialTemperatureNeedsDepthAndSalinity)
{
    for (const int known : {0, 1, 2}) {
        LINKS links({"Theta"}, {"T", "Z", "S"});
        links.choices.identify = [&](std::string_view, std::string_view meaning) {
            return meaning == "Depth [m]" ? (known > 0 ? 2 : 0) : (known > 1 ? 3 : 0);
        };
        EXPECT_EQ(links.settle(with({{"assoc", "Theta=T:3"}})), known == 2);
        EXPECT_EQ(links.targets[1].assocSource, known == 2 ? 1 : 0);
    }
}

TEST(SettingsSettler, AListOfFilesIsReadWithTheSameSettings)
{
    RSpreadsheetFixture file;
    const IMPORTSETTINGS settings = with({{"missing", "-999"}, {"assoc", "Day=date"}});
    RSettingsSettler settler(settings, file.user);
    RListSettler list(settler);
    EXPECT_FALSE(list.asks());
    for (int round = 0; round < 2; ++round) {
        file.read(replaced(twoVariables, "mon/day/yr", "Day") + line("1", "5\t0\t-999\t4"), &list);
        ASSERT_EQ(file.stations.size(), 1u);
        EXPECT_EQ(file.stations[0].header.year, 1995);
        EXPECT_EQ(file.stations[0].counts[2], 0);
    }
}

TEST(SettingsSettler, AListingHasNoColumnsForHeaders)
{
    LINKS links({"A"}, {"A"});
    links.choices.mayUseDefaults = false;
    EXPECT_FALSE(links.settle(with({{"assoc", "A=lon"}})));
    EXPECT_TRUE(holds(links.user.messages, "\"lon\""));
}

TEST(SettingsSettler, CruisesOfEveryTypeTakeTheirSource)
{
    LINKS links({"A"}, {"A"});
    links.choices.cruises = {{"", "B", "A16"}, {"", "C", "A16"}, {"", "B", "A17"}};
    EXPECT_TRUE(links.settle(with({{"cruise", "x=A16"}, {"check", "no"}})));
    EXPECT_FALSE(links.choices.checkExisting);
    const auto named = std::count_if(
        links.choices.cruises.begin(), links.choices.cruises.end(),
        [](const CRUISEASSOCIATION& cruise) { return cruise.sourceLabel == "x" && cruise.name == "A16"; });
    EXPECT_EQ(named, 2);
    EXPECT_FALSE(links.settle(with({{"cruise", "x=A18"}})));
    EXPECT_TRUE(holds(links.user.messages, "\"A18\""));
}

TEST(SettingsSettler, IdentifiesAVariableByItsLabel)
{
    LINKS links({}, {"Pressure [dB]", "CTD Salinity [psu]", "Depth [m]"});
    const IMPORTSETTINGS none;
    RSettingsSettler settler(none, links.user);
    EXPECT_EQ(settler.identify("", "Depth [m]", links.targets), 3);
    EXPECT_EQ(settler.identify("", "Salinity [psu]", links.targets), 2);
    EXPECT_EQ(settler.identify("", "Oxygen [ml/l]", links.targets), 0);
    EXPECT_EQ(settler.chooseDescription("a.o3x", "a.var"), "a.var");
}

} // namespace
