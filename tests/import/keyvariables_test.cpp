// The variables that a conversion needs, known by the collection or by the user.

#include <gtest/gtest.h>

#include "import/association.h"
#include "import/importfixture.h"

namespace {

using namespace importing;
using namespace testing_support;

// Associates by label and converts the second source's potential temperature.
class RIdentifyingSettler : public RImportSettler {
public:
    std::map<std::string, int> known;
    std::vector<std::string> asked;
    bool settleProperties(SPREADSHEETDESC&, std::span<const std::string>) override { return true; }
    bool settleHeaderVariables(SPREADSHEETDESC&, std::span<const std::string>) override { return true; }
    bool settleImport(IMPORTCHOICES& choices) override
    {
        choices.sources[2].scale = potentialToTemperature;
        choices.sources[2].offset = common::MISSING_VALUE;
        return true;
    }
    int identify(std::string_view task, std::string_view meaning,
                 std::span<const collection::VARINFO>) override
    {
        EXPECT_EQ(task, "Pot. Temp [°C] -> Temp [°C]");
        asked.emplace_back(meaning);
        return known[std::string(meaning)];
    }
    std::optional<std::string> chooseDescription(std::string_view, const std::string&) override
    {
        return std::nullopt;
    }
};

TEST(KeyVariables, AnAnswerIsNotedAndNotAskedForAgain)
{
    RIdentifyingSettler settler;
    settler.known = {{"Depth [m]", 1}, {"Salinity [psu]", 3}};
    RImports run;
    run.options.settler = &settler;
    run.import(cast("1", 401, 2));
    EXPECT_EQ(settler.asked, (Labels{"Depth [m]", "Salinity [psu]"}));
    EXPECT_EQ(run.sample.bytes(".idv"), "Depth [m]=1\nSalinity [psu]=3\n");
    EXPECT_EQ(run.load(1).values[2].front(), 2);
    EXPECT_GT(run.load(1).values[2].back(), 2.3f); // at 4000 m
    run.import(cast("2", 3, 2));
    EXPECT_EQ(settler.asked.size(), 2U);
}

TEST(KeyVariables, ALineWithATabIsKnownToo)
{
    RIdentifyingSettler settler;
    RImports run;
    run.sample.setBytes(".idv", "Depth [m]\t1\nOther\t2\n");
    settler.known = {{"Salinity [psu]", 3}};
    run.options.settler = &settler;
    run.import(cast("1", 3, 2));
    EXPECT_EQ(settler.asked, Labels{"Salinity [psu]"});
    EXPECT_EQ(run.sample.bytes(".idv"), "Depth [m]=1\nOther=2\nSalinity [psu]=3\n");
}

TEST(KeyVariables, ARefusedConversionGivesMissingValues)
{
    for (const char* const refused : {"Depth [m]", "Salinity [psu]"}) {
        RIdentifyingSettler settler;
        settler.known = {{"Depth [m]", 1}, {"Salinity [psu]", 3}};
        settler.known.erase(refused);
        RImports run;
        run.options.settler = &settler;
        run.import(cast("1", 3, 2));
        EXPECT_EQ(run.result.stationsStored, 1);
        EXPECT_EQ(run.load(1).counts[2], 0) << refused;
        EXPECT_TRUE(run.told(" 6 stored")) << refused;
    }
}

TEST(KeyVariables, OnlyAPotentialTemperatureIsAskedFor)
{
    RIdentifyingSettler settler;
    RImports run;
    auto sources = std::vector<collection::VARINFO>(2, collection::emptyVariable(1));
    sources[1].assoc = 1;
    sources[1].offset = common::MISSING_VALUE;
    sources[1].scale = pressureToDepth;
    const KEYVARIABLES keys = keyVariables(run.collection(), sources, &settler);
    EXPECT_EQ(keys.depth, 0);
    EXPECT_TRUE(settler.asked.empty());
}

TEST(KeyVariables, AnUndoneImportKeepsWhatWasIdentified)
{
    RIdentifyingSettler settler;
    settler.known = {{"Depth [m]", 1}, {"Salinity [psu]", 3}};
    RImports run;
    run.options.settler = &settler;
    run.user().acceptReports = false;
    run.import(cast("1", 3, 2));
    EXPECT_EQ(run.collection().stationCount, 0);
    EXPECT_EQ(run.collection().getVariableId("Salinity [psu]"), 3);
}

} // namespace
