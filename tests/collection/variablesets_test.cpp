#include "collection/variablesets.h"

#include <gtest/gtest.h>

#include "collection/varfile.h"
#include "common/text.h"
#include "common/textcoding.h"

namespace {

using collection::variablesOfSet;
using collection::VARINFO;

std::vector<std::string> labelsOf(int set)
{
    std::vector<std::string> labels;
    for (const VARINFO& variable : variablesOfSet(set))
        labels.push_back(common::labelToUtf8(common::fieldText(variable.label)));
    if (!labels.empty()) labels.erase(labels.begin());
    return labels;
}

std::string formatsOf(int set)
{
    std::string text;
    const std::vector<VARINFO> list = variablesOfSet(set);
    for (std::size_t v = 1; v < list.size(); ++v)
        text += common::format("%d.%d ", list[v].width, list[v].decimals);
    return text;
}

using Labels = std::vector<std::string>;

TEST(VariableSets, EntriesStandInTheOrderOfTheDialog)
{
    const int numbers[] = {5, 1, 2, 9, 8, 11, 10, 6, 7, 4, 3};
    ASSERT_EQ(collection::variableSets.size(), std::size(numbers));
    for (std::size_t i = 0; i < std::size(numbers); ++i) {
        EXPECT_EQ(collection::variableSets[i].number, numbers[i]);
        EXPECT_EQ(collection::variableSetOf(collection::variableSets[i].entry), numbers[i]);
    }
}

TEST(VariableSets, EntryIsFoundWithoutCaseAndWithBlanksAround)
{
    EXPECT_EQ(collection::variableSetOf("  woce ADCP Variables \r\n"), collection::setAdcp);
    EXPECT_EQ(collection::variableSetOf("WOA94/SD2 VARIABLES"), collection::setWoa94);
    EXPECT_EQ(collection::variableSetOf("WOCE ADCP"), 0);
    EXPECT_EQ(collection::variableSetOf("WOCE  ADCP variables"), 0);
    EXPECT_EQ(collection::variableSetOf(""), 0);
}

TEST(VariableSets, ManualSetIsDepthTemperatureAndSalinity)
{
    EXPECT_EQ(labelsOf(collection::setManual), (Labels{"Depth [m]", "Temperature [°C]", "Salinity [psu]"}));
    EXPECT_EQ(formatsOf(collection::setManual), "8.2 8.2 8.3 ");
}

TEST(VariableSets, TemplateAndUnknownSetsHaveNoVariables)
{
    EXPECT_TRUE(variablesOfSet(collection::setTemplate).empty());
    EXPECT_TRUE(variablesOfSet(0).empty());
    EXPECT_TRUE(variablesOfSet(12).empty());
}

TEST(VariableSets, WhpBottleHas39Variables)
{
    const Labels labels = labelsOf(collection::setWhpBottle);
    ASSERT_EQ(labels.size(), 39U);
    EXPECT_EQ(Labels(labels.begin(), labels.begin() + 6),
              (Labels{"DEPTH [M]", "TEMPERATURE [°C]", "SALNTY [PSS-78]", "OXYGEN [UMOL/KG]",
                      "PHSPHT [UMOL/KG]", "SILCAT [UMOL/KG]"}));
    EXPECT_EQ(Labels(labels.begin() + 18, labels.begin() + 22),
              (Labels{"PCO2TMP [DEG C]", "PCO2 [UATM]", "PHTEMP [DEG C]", "PH []"}));
    EXPECT_EQ(Labels(labels.end() - 3, labels.end()), (Labels{"CHLORA [UG/KG]", "CASTNO []", "SAMPNO []"}));
}

TEST(VariableSets, WhpCtdIsTheFirstFourOfTheBottleSet)
{
    const Labels bottle = labelsOf(collection::setWhpBottle);
    EXPECT_EQ(labelsOf(collection::setWhpCtd), Labels(bottle.begin(), bottle.begin() + 4));
}

TEST(VariableSets, SurfaceVelocity)
{
    EXPECT_EQ(labelsOf(collection::setSurfaceVelocity),
              (Labels{"Time [days since 1900-1-1 0:0:0]", "Longitude [°E]", "Latitude [°N]", "U [cm s~^-~^1]",
                      "V [cm s~^-~^1]", "Temperature [°C]", "Longitude Error [°]", "Latitude Error [°]",
                      "Drogue Indicator"}));
}

TEST(VariableSets, SubsurfaceFloatEndsInPressure)
{
    Labels wanted = labelsOf(collection::setSurfaceVelocity);
    wanted.resize(7);
    wanted[6] = "Pressure [dbar]";
    EXPECT_EQ(labelsOf(collection::setSubsurfaceFloat), wanted);
}

TEST(VariableSets, Adcp)
{
    EXPECT_EQ(labelsOf(collection::setAdcp),
              (Labels{"Depth [m]", "Eastward Abs. Current Velocity (hourly mean) [m/s]",
                      "Northward Abs. Current Velocity (hourly mean) [m/s]"}));
}

TEST(VariableSets, CurrentMeter)
{
    EXPECT_EQ(labelsOf(collection::setCurrentMeter),
              (Labels{"Time [days since 1900-1-1 0:0:0]", "Speed [cm s~^-~^1]",
                      "Direction (toward) [degrees,clockwise from N]", "U [cm s~^-~^1]", "V [cm s~^-~^1]",
                      "Pressure [db]", "Temperature [C]", "Salinity [psu]"}));
}

TEST(VariableSets, SeaLevel)
{
    EXPECT_EQ(labelsOf(collection::setSeaLevel),
              (Labels{"Time [days since 1900-1-1 0:0:0]", "Sea Level [m]"}));
}

TEST(VariableSets, WorldOceanDatabaseAndItsShorterForm)
{
    const Labels all = labelsOf(collection::setWorldOceanDatabase);
    EXPECT_EQ(all,
              (Labels{"Depth [m]", "Temperature [°C]", "Salinity [psu]", "Oxygen [ml/l]",
                      "Phosphate [~$m~#mol/l]", "Silicate [~$m~#mol/l]", "Nitrate [~$m~#mol/l]",
                      "Nitrite [~$m~#mol/l]", "pH []", "Chlorophyll [~$m~#g/l]", "Plankton/Biomass []",
                      "Alkalinity [meq/l]", "NO2+NO3 [~$m~#mol/l]", "pCO~_2 [~$m~#atm]", "tCO~_2 [mmol/l]"}));
    EXPECT_EQ(labelsOf(collection::setWoa94), Labels(all.begin(), all.begin() + 7));
}

TEST(VariableSets, AreNumberedFromOneAndSurviveTheDescription)
{
    for (const auto& row : collection::variableSets) {
        const std::vector<VARINFO> list = variablesOfSet(row.number);
        if (list.empty()) continue;
        const int count = static_cast<int>(list.size()) - 1;
        collection::VARDESCRIPTION read;
        collection::VARFAULT fault;
        ASSERT_EQ(
            collection::parseVarFile(collection::formatVarFile("x", "HYD", 0, count, list), read, fault),
            collection::VarFileResult::ok);
        for (std::size_t v = 1; v < list.size(); ++v) {
            EXPECT_EQ(list[v].position, static_cast<int>(v));
            EXPECT_EQ(list[v].assocSource, 0);
            EXPECT_STREQ(read.variables[v].label, list[v].label);
            EXPECT_EQ(read.variables[v].width, list[v].width) << row.entry << v;
            EXPECT_EQ(read.variables[v].decimals, list[v].decimals) << row.entry << v;
        }
    }
}

TEST(VariableSets, DegreeSignIsOneByteInTheDescription)
{
    const std::vector<VARINFO> list = variablesOfSet(collection::setManual);
    const std::string text = collection::formatVarFile("x", "HYD", 0, 3, list);
    EXPECT_NE(text.find("Temperature [\xB0"
                        "C]"),
              std::string::npos);
    EXPECT_EQ(text.find('\xC2'), std::string::npos);
}

} // namespace
