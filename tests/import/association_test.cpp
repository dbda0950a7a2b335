#include <gtest/gtest.h>

#include "import/association.h"
#include "import/conversions.h"

namespace {

using collection::VARINFO;
using importing::associateByLabel;

std::vector<VARINFO> variables(std::initializer_list<const char*> labels)
{
    std::vector<VARINFO> result(1, collection::emptyVariable(0));
    for (const char* label : labels) {
        result.push_back(collection::emptyVariable(static_cast<int>(result.size())));
        collection::setLabel(result.back(), label);
    }
    return result;
}

TEST(AssociateByLabel, EqualLabelsAreLinkedWhateverTheirCase)
{
    auto sources = variables({"SALINITY [psu]", "Depth [m]", "Oxygen [ml/l]"});
    auto targets = variables({"Depth [m]", "Temperature", "Salinity [PSU]"});
    EXPECT_EQ(associateByLabel(sources, targets).matched, 2);
    EXPECT_EQ(targets[1].assocSource, 2);
    EXPECT_EQ(targets[2].assocSource, 0);
    EXPECT_EQ(targets[3].assocSource, 1);
    EXPECT_EQ(sources[1].assoc, 3);
    EXPECT_EQ(sources[3].assoc, 0);
    EXPECT_EQ(sources[1].scale, 1);
    EXPECT_EQ(sources[1].offset, 0);
}

TEST(AssociateByLabel, UnitsMustAgree)
{
    auto sources = variables({"Oxygen [umol/kg]"});
    auto targets = variables({"Oxygen [ml/l]"});
    EXPECT_EQ(associateByLabel(sources, targets).matched, 0);
}

TEST(AssociateByLabel, KnownNamesGoToTheirPlaces)
{
    auto sources = variables({"SALNTY [PSS-78]", "CTDTMP [C]", "CTDPRS [DBAR]"});
    auto targets = variables({"a", "b", "c", "d"});
    EXPECT_EQ(associateByLabel(sources, targets).matched, 0);
    EXPECT_EQ(targets[1].assocSource, 3);
    EXPECT_EQ(targets[2].assocSource, 2);
    EXPECT_EQ(targets[3].assocSource, 1);
}

TEST(AssociateByLabel, CtdSalinityIsTheSecondChoiceAndNeverTakesTheLink)
{
    auto sources = variables({"CTDSAL [PSS-78]", "CTDOXY [UMOL/KG]"});
    auto targets = variables({"a", "b", "c", "d"});
    const auto result = associateByLabel(sources, targets);
    EXPECT_EQ(sources[1].assoc, 3);
    EXPECT_EQ(sources[2].assoc, 4);
    for (const VARINFO& target : targets) EXPECT_EQ(target.assocSource, 0);
    EXPECT_EQ(result.second.salinity, 1);
    EXPECT_EQ(result.second.oxygen, 2);
}

TEST(AssociateByLabel, ReversingInstrumentsFillFreePlacesOnly)
{
    auto sources = variables({"REVTMP [C]", "REVPRS [DBAR]", "CTDTMP [C]"});
    auto targets = variables({"a", "b"});
    associateByLabel(sources, targets);
    EXPECT_EQ(targets[1].assocSource, 2);
    EXPECT_EQ(targets[2].assocSource, 3);
}

TEST(AssociateByLabel, ACtdSalinityOfTheTargetsOwnLabelTakesThatTarget)
{
    auto sources = variables({"CTDSAL [PSS-78]"});
    auto targets = variables({"a", "b", "c", "CTDSAL [PSS-78]"});
    const auto result = associateByLabel(sources, targets);
    EXPECT_EQ(result.matched, 1);
    EXPECT_EQ(targets[4].assocSource, 1);
    EXPECT_EQ(targets[3].assocSource, 0);
    EXPECT_EQ(result.second.salinity, 0);
}

TEST(AssociateByLabel, AWholeLabelGoesBeforeAKnownName)
{
    auto sources = variables({"SALNTY [PSS-78]", "CTDTMP [C]", "Silicate [umol/l]"});
    auto targets = variables({"Depth [m]", "CTDTMP [F]", "Silicate [umol/l]", "SALNTY [PSS-78]"});
    EXPECT_EQ(associateByLabel(sources, targets).matched, 2);
    EXPECT_EQ(targets[2].assocSource, 2); // by its name
    EXPECT_EQ(targets[3].assocSource, 3);
    EXPECT_EQ(targets[4].assocSource, 1);
}

TEST(AssociateByLabel, AKnownNameTakesNoTargetThatIsFed)
{
    auto sources = variables({"SALNTY [PSS-78]", "Silicate"});
    auto targets = variables({"a", "b", "Silicate"});
    associateByLabel(sources, targets);
    EXPECT_EQ(targets[3].assocSource, 2);
    EXPECT_EQ(sources[1].assoc, 0);
}

TEST(AssociateByLabel, ASecondChoiceStandsBesideItsFirstByLabelOrName)
{
    for (const char* const target : {"SALNTY [PSS-78]", "Salinity [psu]"}) {
        auto sources = variables({"CTDSAL [PSS-78]", "SALNTY [PSS-78]"});
        auto targets = variables({"a", "b", target});
        const auto result = associateByLabel(sources, targets);
        EXPECT_EQ(targets[3].assocSource, 2) << target;
        EXPECT_EQ(sources[1].assoc, 3) << target;
        EXPECT_EQ(result.second.salinity, 1) << target;
    }
}

TEST(AssociateByLabel, ASecondChoiceNeverStandsBesideAnotherVariable)
{
    auto sources = variables({"CTDSAL [PSS-78]", "Silicate"});
    auto targets = variables({"a", "b", "Silicate"});
    EXPECT_EQ(associateByLabel(sources, targets).second.salinity, 0);
    EXPECT_EQ(sources[1].assoc, 0);
}

TEST(AssociateByLabel, OfTwoSourcesOfOneLabelTheFirstTakesTheTarget)
{
    auto sources = variables({"T", "T", "CTDPRS [A]", "CTDPRS [B]"});
    auto targets = variables({"Depth [m]", "T"});
    EXPECT_EQ(associateByLabel(sources, targets).matched, 1);
    EXPECT_EQ(targets[1].assocSource, 3);
    EXPECT_EQ(targets[2].assocSource, 1);
    EXPECT_EQ(sources[2].assoc, 0);
    EXPECT_EQ(sources[4].assoc, 0);
}

TEST(AssociateByLabel, TwoTargetsOfOneLabelTakeTwoSources)
{
    auto sources = variables({"T", "T"});
    auto targets = variables({"Depth [m]", "T", "T"});
    EXPECT_EQ(associateByLabel(sources, targets).matched, 2);
    EXPECT_EQ(targets[2].assocSource, 1);
    EXPECT_EQ(targets[3].assocSource, 2);
}

TEST(AssociateByLabel, KnownNamesNeedTheirTargetsToBeThere)
{
    auto sources = variables({"SALNTY [PSS-78]", "CTDSAL [PSS-78]", "CTDOXY [UMOL/KG]"});
    auto targets = variables({"a", "b"});
    const auto result = associateByLabel(sources, targets);
    for (const VARINFO& source : sources) EXPECT_EQ(source.assoc, 0);
    EXPECT_EQ(result.second.salinity + result.second.oxygen, 0);
}

TEST(AssociateByLabel, AReversingInstrumentOfItsOwnTargetStaysThere)
{
    auto sources = variables({"REVPRS [DBAR]", "REVPRS [other]"});
    auto targets = variables({"a", "REVPRS [DBAR]"});
    associateByLabel(sources, targets);
    EXPECT_EQ(targets[2].assocSource, 1);
    EXPECT_EQ(targets[1].assocSource, 2);
}

TEST(AssociateByLabel, ForgetsEarlierLinks)
{
    auto sources = variables({"x"});
    auto targets = variables({"y"});
    targets[1].assocSource = -1;
    sources[1].assoc = 1;
    associateByLabel(sources, targets);
    EXPECT_EQ(targets[1].assocSource, 0);
    EXPECT_EQ(sources[1].assoc, 0);
}

TEST(AssociateByNumber, KeepsVariablesOfOneNameApart)
{
    auto sources = variables({"T", "T", "CTDSAL"});
    auto targets = sources;
    importing::associateByNumber(sources, targets);
    for (std::size_t i = 1; i <= 3; ++i) EXPECT_EQ(targets[i].assocSource, static_cast<int>(i));
}

// --- conversions

struct CONVERTED {
    collection::STATIONDATA station;
    std::vector<VARINFO> sources = variables({"z", "t", "s"}), targets = sources;

    CONVERTED()
    {
        importing::associateByNumber(sources, targets);
        station.clear();
        station.levelCount[1] = 3;
        station.header.latitude = 30;
        const float values[] = {0, 1000, 10000, 2, common::MISSING_VALUE, 2, 35, 35, 35};
        for (std::size_t v = 1; v <= 3; ++v) station.offset[v] = static_cast<int>(3 * (v - 1));
        std::copy(std::begin(values), std::end(values), station.values.get());
    }
    void use(std::size_t source, int row)
    {
        sources[source].scale = importing::variableConversions[static_cast<std::size_t>(row)].a;
        sources[source].offset = importing::variableConversions[static_cast<std::size_t>(row)].b;
    }
    float operator()(std::size_t cell) const { return station.values[cell]; }
    void apply(importing::KEYVARIABLES keys = {})
    {
        importing::applyConversions(station, sources, targets, keys);
    }
};

TEST(ApplyConversions, LinearRowsLeaveMissingValuesMissing)
{
    CONVERTED c;
    c.use(2, 4);
    c.apply();
    EXPECT_FLOAT_EQ(c(3), 2 * 43.53f);
    EXPECT_EQ(c(4), common::MISSING_VALUE);
    EXPECT_EQ(c(6), 35);
}

TEST(ApplyConversions, PressureBecomesDepthAtTheStationsLatitude)
{
    CONVERTED c;
    c.use(1, 1);
    c.apply();
    EXPECT_EQ(c(0), 0);
    EXPECT_NEAR(c(2), 9712.653, 0.01);
}

TEST(ApplyConversions, DepthBecomesPressure)
{
    CONVERTED c;
    c.use(1, 2);
    c.apply();
    EXPECT_NEAR(c(2), 10309.45, 0.01);
}

TEST(ApplyConversions, PotentialTemperatureBecomesTemperatureInSitu)
{
    CONVERTED c;
    c.use(2, 3);
    c.apply({.depth = 1, .salinity = 3});
    EXPECT_NEAR(c(3), 2, 1e-5);
    EXPECT_GT(c(5), 3.1f);
    EXPECT_LT(c(5), 3.5f);
    EXPECT_EQ(c(4), common::MISSING_VALUE);
}

TEST(ApplyConversions, PotentialTemperatureWithoutDepthOrSalinityComesOutMissing)
{
    CONVERTED c;
    c.use(2, 3);
    c.station.values[2] = common::MISSING_VALUE; // depth of the third level
    c.station.values[6] = common::MISSING_VALUE; // salinity of the first
    c.apply({.depth = 1, .salinity = 3});
    for (const std::size_t cell : {3u, 4u, 5u}) EXPECT_EQ(c(cell), common::MISSING_VALUE);
}

TEST(ApplyConversions, AResultThatIsNoNumberIsMissing)
{
    CONVERTED c;
    c.use(1, 2);
    c.station.values[1] = 1e9f; // deeper than the formula's root
    c.apply();
    EXPECT_EQ(c(1), common::MISSING_VALUE);
}

TEST(ApplyConversions, TargetsWithoutSourceOrDataAreLeftAlone)
{
    CONVERTED c;
    c.use(2, 4);
    c.station.offset[2] = -1;
    c.targets[3].assocSource = -1;
    c.apply();
    EXPECT_EQ(c(3), 2);
    EXPECT_EQ(c(6), 35);
}

} // namespace
