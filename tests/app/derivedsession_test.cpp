// Derived variables through a session, as the words of a command file make them.

#include <numeric>

#include "sessionfixture.h"
#include "variables/needed.h"
#include "variables/seawater/adiabat.h"
#include "variables/seawater/pressure.h"
#include "variables/seawater/state.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_support::castText;
using testing_support::writeText;

// Cast 1 lies at 55 S; level 1 of each cast has a bad salinity.
class DerivedSession : public testing_support::Session {
protected:
    DerivedSession() { openCast(); }

    // Runs lines; what was noted stands in user->notes.
    bool run(const std::string& lines)
    {
        writeText(file("run.cmd"), lines);
        user->notes.clear();
        user->messages.clear();
        return app::executeCommandFile(file("run.cmd"), session, view, *user);
    }
    int number(std::string_view label) const { return session.variableOf(label); }
    // A value of station 1 when all variables are needed.
    float value(std::string_view label, int level)
    {
        collection::STATIONDATA station;
        variables::needAllVariables(session.collection);
        EXPECT_EQ(session.collection.loadStation(1, station, true), collection::LoadResult::ok);
        return collection::valueAt(station, number(label), level, common::MISSING_VALUE);
    }
    // Level 2 of cast 1.
    static constexpr float depth = 200, temperature = 18, salinity = 34.2f, latitude = -55;
    static float pressure() { return static_cast<float>(seawater::pressureFromDepth(depth, latitude)); }
};

constexpr const char* tpotLine = "add_derived Potential Temperature,0\n";

TEST_F(DerivedSession, VariablesAreAddedByWordsAndComputedOnTheFly)
{
    ASSERT_TRUE(run("set_key Depth [m]=Depth\nset_key Temperature [C]=2\nset_key Salinity [psu]=Salinity\n" +
                    std::string(tpotLine) + "add_derived potential density,1000\n"));
    EXPECT_EQ(number("Tpot-0"), 4);
    EXPECT_EQ(number("Sigma-1000 [kg/m3]"), 5);
    EXPECT_NEAR(value("Tpot-0", 2), seawater::potentialTemperature(pressure(), temperature, salinity, 0),
                1e-5);
    const double theta = seawater::potentialTemperature(pressure(), temperature, salinity, 1000);
    EXPECT_NEAR(value("Sigma-1000", 2), seawater::sigmaFromVolume(1000, static_cast<float>(theta), salinity),
                1e-4);
}

TEST_F(DerivedSession, RolesAreRecordedBesideTheCollection)
{
    ASSERT_TRUE(run("set_key Depth [m]=Depth\nset_key CFC-11 [pmol/kg]=3\n"));
    EXPECT_EQ(read("cast.idv"), "Depth [m]=1\nCFC-11 [pmol/kg]=3\n");
}

TEST_F(DerivedSession, ARoleNobodyToldIsTakenFromTheLabelsAndNoted)
{
    ASSERT_TRUE(run(tpotLine));
    EXPECT_THAT(user->notes,
                testing::Contains(AllOf(HasSubstr("Temperature [C]"), HasSubstr("Temperature"))));
    EXPECT_EQ(number("Tpot-0"), 4);
}

TEST_F(DerivedSession, ARoleThatNoLabelTellsIsMissing)
{
    EXPECT_FALSE(run("add_derived Oxygen Saturation\n"));
    EXPECT_THAT(user->notes, testing::Contains(HasSubstr("Oxygen [umol/kg]")));
    EXPECT_EQ(session.collection.totalVariableCount, 3);
    EXPECT_EQ(read("cast.idv"), "none"); // nothing was recorded on the way
}

TEST_F(DerivedSession, SetKeyRefusesWhatIsNoStoredVariable)
{
    EXPECT_FALSE(run("set_key Depth [m]=Oxygen\n"));
    EXPECT_THAT(user->notes, ElementsAre(HasSubstr("set_key: there is no variable \"Oxygen\"")));
    EXPECT_FALSE(run(std::string(tpotLine) + "set_key Temperature [C]=Tpot-0\n"));
    EXPECT_THAT(user->notes, testing::Contains(HasSubstr("only a stored one can play a role")));
}

TEST_F(DerivedSession, ExpressionsTakeTheirInputsByLabel)
{
    ASSERT_TRUE(run("add_expression T times S [],9.4,#1 #2 *,Temperature,Salinity\n"));
    EXPECT_FLOAT_EQ(value("T times S", 2), temperature * salinity);
    const collection::VARINFO& variable = session.collection.variables[4];
    EXPECT_EQ(variable.width, 9);
    EXPECT_EQ(variable.decimals, 4);
}

TEST_F(DerivedSession, AFaultyFormulaIsToldWithItsWord)
{
    EXPECT_FALSE(run("add_expression A [],8.2,#1 foo +,Temperature\n"));
    EXPECT_THAT(user->messages, testing::Contains(HasSubstr("foo")));
    EXPECT_FALSE(run("add_expression A [],8.2,#2,Temperature\n"));
    EXPECT_FALSE(run("add_expression A [],8.2,+,Temperature\n"));
    EXPECT_FALSE(run("add_expression A [],8.2,#1,Oxygen\n"));
    EXPECT_EQ(session.collection.totalVariableCount, 3);
    EXPECT_EQ(session.collection.nMacros, 0);
}

TEST_F(DerivedSession, MacrosAreFoundInTheFolderOfTheUser)
{
    session.installation.macros = folder.file("mine/");
    std::filesystem::create_directories(file("mine"));
    writeText(file("mine/double.mac"),
              "NVQ4.0 Macro\n>|--->----------------------------------------------------------|>--|\n"
              "     Double [units]                                               8.2\n"
              "#1   Temperature [°C]\n\n#1 2 *\n");
    ASSERT_TRUE(run("add_macro double.mac,Temperature\n"));
    EXPECT_FLOAT_EQ(value("Double", 2), 2 * temperature);
    EXPECT_FALSE(run("add_macro nowhere.mac\n"));
    EXPECT_EQ(session.collection.totalVariableCount, 4);
}

TEST_F(DerivedSession, DeletingTakesTheDependentsToo)
{
    ASSERT_TRUE(run(std::string(tpotLine) + "add_expression Twice [],8.2,#1 2 *,Tpot-0\n"
                                            "add_derived Latitude\ndelete_derived Tpot-0\n"));
    EXPECT_EQ(session.collection.totalVariableCount, 4);
    EXPECT_EQ(number("Latitude"), 4);
    EXPECT_EQ(number("Twice"), 0);
    EXPECT_EQ(session.collection.nMacros, 0);
    EXPECT_FALSE(run("delete_derived Salinity\n"));
    EXPECT_THAT(user->notes, ElementsAre(HasSubstr("is stored in the collection")));
}

TEST_F(DerivedSession, WindowsFollowTheirVariablesWhenOthersGo)
{
    ASSERT_TRUE(run(std::string(tpotLine) + "add_derived Latitude\nset_mode SCATTER\n"
                                            "set_window 1,Latitude,-Depth\nset_window 2,Tpot-0,-Depth\n"
                                            "delete_derived Tpot-0\n"));
    EXPECT_EQ(session.setup.window(1).xVar, 4); // Latitude
    EXPECT_LE(std::abs(session.setup.window(2).xVar), 3);
    EXPECT_TRUE(run("export_graphics -1,a.png,50\n"));
}

TEST_F(DerivedSession, ASampleRangeOfADeletedVariableGoesToo)
{
    ASSERT_TRUE(run(std::string(tpotLine) + "select sample=Tpot-0:0:19\ndelete_derived Tpot-0\n"));
    EXPECT_EQ(session.collection.criteria.sampleVariable, 0);
}

TEST_F(DerivedSession, SamplesAreSelectedByADerivedVariable)
{
    ASSERT_TRUE(run(std::string(tpotLine) + "select sample=Tpot-0:17.5:20.5\nexport_spreadsheet a.txt\n"));
    const std::string text = read("a.txt"); // the three warmest of six levels have a value
    EXPECT_THAT(text, HasSubstr("\t20\t"));
    EXPECT_EQ(text.find("\t15\t"), std::string::npos);
}

TEST_F(DerivedSession, SpreadsheetsTakeDerivedVariablesByNumberAndLabel)
{
    ASSERT_TRUE(
        run(std::string(tpotLine) + "add_derived Latitude\nexport_spreadsheet a.txt,,1 4 Latitude\n"));
    EXPECT_THAT(read("a.txt"),
                AllOf(HasSubstr("Tpot-0 [°C]"), HasSubstr("Latitude [°]"), HasSubstr("\t-55\t")));
}

TEST_F(DerivedSession, TheQualityLimitKeepsBadValuesAway)
{
    ASSERT_TRUE(run(tpotLine));
    EXPECT_NE(value("Tpot-0", 1), common::MISSING_VALUE);
    ASSERT_TRUE(run("select quality=good\n"));
    EXPECT_EQ(value("Tpot-0", 1), common::MISSING_VALUE); // its salinity is bad
    EXPECT_NE(value("Tpot-0", 2), common::MISSING_VALUE);
}

TEST_F(DerivedSession, APlotOfStoredVariablesCostsNoCalculation)
{
    std::string lines;
    for (int i = 0; i < 20; ++i) lines += common::format("add_derived Potential Density,%d\n", 100 * i);
    ASSERT_TRUE(run(lines + "set_mode SCATTER\nset_window 1,Salinity,Temperature,Depth\n"
                            "set_window 2,Salinity,Temperature\nset_window 3,Salinity,-Depth\nfull_range\n"));
    ASSERT_EQ(session.collection.totalVariableCount, 23);
    const std::int64_t before = session.calculations();
    ASSERT_TRUE(run("use_layout SCATTER 2 Win\nset_window 1,Salinity,Temperature,Depth\n"
                    "set_window 2,Salinity,Temperature\nfull_range\nexport_graphics -1,a.png,50\n"));
    EXPECT_EQ(session.calculations(), before);
    ASSERT_TRUE(run("set_window 2,Sigma-300,-Depth\nfull_range\nexport_graphics -1,a.png,50\n"));
    EXPECT_GT(session.calculations(), before);
    EXPECT_EQ((session.calculations() - before) % 4, 0); // one variable of four stations, each time
}

TEST_F(DerivedSession, DerivedVariablesStayWhenTheStoredOnesChange)
{
    ASSERT_TRUE(run(std::string(tpotLine) + "add_derived Latitude\nselect sample=Latitude:-60:-10\n"));
    std::vector<collection::VARINFO> list(session.collection.variables.begin(),
                                          session.collection.variables.begin() + 4);
    for (std::size_t v = 1; v < 4; ++v) list[v].assocSource = static_cast<int>(v);
    list.insert(list.begin() + 2, collection::emptyVariable(2)); // a new one in front of Temperature
    collection::setLabel(list[2], "New []");
    ASSERT_TRUE(session.changeVariables(list));
    EXPECT_EQ(number("Tpot-0"), 5);
    EXPECT_EQ(number("Latitude"), 6);
    EXPECT_EQ(session.collection.criteria.sampleVariable, 6);
    EXPECT_NEAR(value("Tpot-0", 2), seawater::potentialTemperature(pressure(), temperature, salinity, 0),
                1e-5);
    std::vector<collection::VARINFO> fewer = {list[0], list[1], list[3]};
    fewer[1].assocSource = 1;
    fewer[2].assocSource = 3;
    user->notes.clear();
    ASSERT_TRUE(session.changeVariables(fewer)); // without Salinity
    EXPECT_EQ(number("Tpot-0"), 0);
    EXPECT_EQ(number("Latitude"), 3);
    EXPECT_THAT(user->notes, testing::Contains(HasSubstr("1 derived variables are gone")));
}

TEST_F(DerivedSession, DerivedVariablesGoAlongWithACopyAndAMove)
{
    ASSERT_TRUE(run(std::string(tpotLine) + "add_expression Twice [],8.2,#1 2 *,Tpot-0\ncopy_collection " +
                    file("twin") + "\n"));
    EXPECT_EQ(number("Twice"), 5);
    EXPECT_NEAR(value("Twice", 2), 2 * value("Tpot-0", 2), 1e-5);
    ASSERT_TRUE(run("move_collection " + file("moved") + "\n"));
    EXPECT_EQ(number("Twice"), 5);
}

TEST_F(DerivedSession, MarkedLabelsHaveAShortForm)
{
    ASSERT_TRUE(run("add_derived Vertical Derivative (2nd),Temperature\nset_mode SCATTER\n"
                    "set_window 1,d2/dz2 Temperature,-Depth\n"));
    EXPECT_EQ(session.setup.window(1).xVar, 4);
}

TEST_F(DerivedSession, DerivedVariablesStayOverSortingAndGoWithTheCollection)
{
    ASSERT_TRUE(run(std::string(tpotLine) + "add_expression Twice [],8.2,#1 2 *,Tpot-0\nsort_condense\n"));
    EXPECT_EQ(number("Twice"), 5);
    EXPECT_NEAR(value("Twice", 2), 2 * value("Tpot-0", 2), 1e-5);
    ASSERT_TRUE(run("close\n"));
    EXPECT_EQ(session.collection.totalVariableCount, 0);
    ASSERT_TRUE(run("open_collection " + file("cast.var") + "\n"));
    EXPECT_EQ(session.collection.totalVariableCount, 3);
    EXPECT_EQ(session.collection.nMacros, 0);
}

TEST_F(DerivedSession, AnExportedCollectionHoldsThemAsStoredOnes)
{
    ASSERT_TRUE(run(tpotLine));
    const float before = value("Tpot-0", 2);
    session.runMode = app::interactiveRun;
    view.chosen = std::vector<int>{1, 2, 3, 4};
    view.answer = file("with.var");
    ASSERT_TRUE(session.exportCollection({}));
    ASSERT_TRUE(run("open_collection " + file("with.var") + "\n"));
    EXPECT_EQ(session.collection.variableCount, 4);
    EXPECT_FLOAT_EQ(value("Tpot-0", 2), before);
}

TEST_F(DerivedSession, SettingsOfVariablesAreTaken)
{
    ASSERT_TRUE(run(tpotLine));
    std::vector<collection::VARINFO> edited(session.collection.variables.begin(),
                                            session.collection.variables.begin() + 5);
    collection::setLabel(edited[4], "Theta [°C]");
    edited[4].decimals = 4;
    session.collection.configChanged = false;
    session.takeVariableSettings(edited);
    EXPECT_EQ(number("Theta"), 4);
    EXPECT_EQ(session.collection.variables[4].decimals, 4);
    EXPECT_TRUE(session.collection.configChanged);
}

TEST_F(DerivedSession, CoverageDecidesWhichStationsHaveDynamicHeight)
{
    writeText(file("shelf.txt"), common::replaceAll(castText(2, 6), "\t4000\t", "\t520\t"));
    ASSERT_EQ(open("shelf.txt"), app::OpenResult::ok); // the sea floor is near
    ASSERT_TRUE(run("add_derived Dynamic Height,0\n"));
    EXPECT_NE(value("Dyn.Ht.-0", 3), common::MISSING_VALUE);
    variables::COVERAGECRITERIA strict;
    strict.minLevels = 20;
    session.takeCoverage(strict);
    EXPECT_EQ(value("Dyn.Ht.-0", 3), common::MISSING_VALUE);
}

TEST_F(DerivedSession, LongitudesCountAsTheMapDoes)
{
    ASSERT_TRUE(run("add_derived Longitude\nset_domain -60,0,-80,0\n"));
    EXPECT_FLOAT_EQ(value("Longitude", 0), -25);
    ASSERT_TRUE(run("set_domain 300,360,-80,0\n"));
    EXPECT_FLOAT_EQ(value("Longitude", 0), 335);
}

TEST_F(DerivedSession, NeutralDensityWithoutItsAtlasSaysWhatIsMissing)
{
    session.installation.support = file("support/");
    EXPECT_FALSE(run("add_derived Neutral Density\n"));
    EXPECT_THAT(user->messages,
                testing::Contains(AllOf(HasSubstr("gamma_n support files not found ..."),
                                        HasSubstr("You should install the <gamma_n> optional package!"),
                                        HasSubstr("make_gamma_atlas"), HasSubstr(file("support/gamma_n/")))));
}

TEST_F(DerivedSession, TracersWithoutTheirHistorySayWhatIsMissing)
{
    session.installation.root = "/nvq/";
    ASSERT_TRUE(run("set_key CFC-11 [pmol/kg]=3\n"));
    EXPECT_FALSE(run("add_derived CFC-11 Saturation\n"));
    EXPECT_THAT(user->messages, testing::Contains(HasSubstr("CFC-11 Saturation: ERROR. File:\n")));
    EXPECT_THAT(user->messages, testing::Contains(HasSubstr("atmcfc11.his missing.")));
}

TEST_F(DerivedSession, AReadOnlyCollectionHasDerivedVariablesToo)
{
    session.collection.writable = false;
    EXPECT_TRUE(run(tpotLine));
    EXPECT_EQ(read("cast.idv"), "none");
    EXPECT_FALSE(run("set_key Depth [m]=1\n"));
}

} // namespace
