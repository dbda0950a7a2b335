#include "variables/setup.h"

#include <deque>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include "common/files.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "scripteduser.h"
#include "variables/parametersettler.h"

namespace variables {
namespace {

// Answers from a script; what isn't there is cancelled.
class RScriptedSettler : public RVariableSettler {
public:
    std::deque<std::optional<int>> variables;
    std::deque<std::string> numbers;
    std::optional<int> form;
    std::optional<std::string> origin;
    std::optional<EXPRESSIONDEFINITION> expression;
    std::string macroFile;
    std::vector<std::string> titles; // of all questions, in their order
    std::vector<int> proposals;

    std::optional<int> identify(const IDENTIFICATION& question, const collection::RCollection&) override
    {
        titles.push_back(question.title);
        proposals.push_back(question.proposed);
        return take(variables);
    }
    std::optional<std::string> askNumber(std::string_view, std::string_view prompt,
                                         std::string_view preset) override
    {
        titles.push_back(std::string(prompt) + " " + std::string(preset));
        if (numbers.empty()) return std::nullopt;
        const std::string text = numbers.front();
        numbers.pop_front();
        return text;
    }
    std::optional<int> chooseTimeForm(std::string_view label, std::string_view target) override
    {
        titles.push_back(std::string(label) + " -> " + std::string(target));
        return form;
    }
    std::optional<std::string> askOrigin(std::string_view label) override
    {
        titles.push_back("origin of " + std::string(label));
        return origin;
    }
    std::optional<EXPRESSIONDEFINITION> defineExpression(const collection::RCollection&) override
    {
        return expression;
    }
    std::string chooseMacroFile(const std::string&) override { return macroFile; }

private:
    static std::optional<int> take(std::deque<std::optional<int>>& answers)
    {
        if (answers.empty()) return std::nullopt;
        const std::optional<int> answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

class Setup : public testing::Test {
protected:
    Setup()
    {
        std::filesystem::create_directories(folder);
        collection.directory = folder + "/";
        collection.path = folder + "/c";
        collection.writable = true;
        for (const char* const label :
             {"Depth [m]",
              "Temperature [\xB0"
              "C]",
              "Salinity [psu]", "Oxygen [~$m~#mol/kg]", "CFC-11 [pmol/kg]", "TCO2 [umol/kg]",
              "TALK [uequ/kg]", "Days since 1950-01-01 [d]", "date as YYYYMMDD", "Count"})
            addOwn(label);
        surroundings.atlas = std::make_shared<const seawater::GAMMAATLAS>();
        for (ATMHISTORY& history : surroundings.histories) history.n = 1;
        installation.atmhist = "/nvq/atmhist/";
        installation.support = folder + "/";
    }
    ~Setup() override { std::filesystem::remove_all(folder); }
    void addOwn(const char* label)
    {
        const int number = ++collection.variableCount;
        collection.totalVariableCount = collection.variableCount;
        collection::VARINFO variable = collection::emptyVariable(number);
        collection::setLabel(variable, label);
        collection.variables.at(static_cast<std::size_t>(number)) = variable;
    }
    int add(std::string_view row)
    {
        return addDerivedVariable(collection, findDerivedRow(row),
                                  {surroundings, installation, settler, user, macroFormat});
    }
    int addBy(RParameterSettler& parameters, std::string_view row)
    {
        return addDerivedVariable(collection, findDerivedRow(row),
                                  {surroundings, installation, parameters, user, macroFormat});
    }
    const collection::VARINFO& variable(int number)
    {
        return collection.variables.at(static_cast<std::size_t>(number));
    }
    std::string label(int number) { return common::labelToUtf8(common::fieldText(variable(number).label)); }
    std::vector<int> sources(int number)
    {
        return {variable(number).sources, variable(number).sources + variable(number).nSources};
    }
    std::string idFile() { return common::readFile(collection.path + ".idv", 1000).value_or(""); }
    void recordKeys()
    {
        write(collection.path + ".idv", "Depth [m]=1\nTemperature [C]=2\nSalinity [psu]=3\n");
    }
    static void write(const std::string& file, const std::string& text) { std::ofstream(file) << text; }
    int expression(const char* formula, std::vector<int> inputs)
    {
        settler.expression = EXPRESSIONDEFINITION{"E [x]", 7, 1, formula, std::move(inputs)};
        return add("Expression");
    }

    std::string folder = testing::TempDir() + "nvq_setup_" + std::to_string(::getpid());
    collection::RCollection collection;
    SURROUNDINGS surroundings;
    common::INSTALLATION installation;
    RScriptedSettler settler;
    testing_support::RScriptedUser user;
    MACROFORMAT macroFormat;
};

TEST_F(Setup, ARecordedRoleIsAnsweredWithoutAQuestion)
{
    recordKeys();
    settler.numbers = {"0"};
    EXPECT_EQ(add("Potential Temperature"), 11);
    EXPECT_EQ(label(11), "Tpot-0 [°C]");
    EXPECT_EQ(settler.titles, std::vector<std::string>{"Potential Temperature - Enter Ref. Press. [db]: 0"});
    EXPECT_EQ(common::fieldText(variable(11).source), "built-in");
    EXPECT_EQ(variable(11).position, 11);
    EXPECT_FLOAT_EQ(variable(11).rangeMin, 1e10f);
}

TEST_F(Setup, ANewRoleIsAskedForAndNoted)
{
    settler.variables = {1};
    EXPECT_EQ(add("Pressure(Depth)"), 11);
    EXPECT_EQ(settler.titles, std::vector<std::string>{"Pressure(Depth) - Identify Depth [m]"});
    EXPECT_EQ(settler.proposals, std::vector<int>{1});
    EXPECT_EQ(idFile(), "Depth [m]=1\n");
}

TEST_F(Setup, ADerivedVariableInARoleIsNotNoted)
{
    settler.variables = {1, 11};
    ASSERT_EQ(add("Pressure(Depth)"), 11);
    EXPECT_EQ(add("Depth(Press)"), 12);
    EXPECT_EQ(sources(12), std::vector<int>{11});
    EXPECT_EQ(idFile(), "Depth [m]=1\n");
}

TEST_F(Setup, AReadOnlyCollectionIsNotWrittenTo)
{
    collection.writable = false;
    settler.variables = {1};
    EXPECT_EQ(add("Pressure(Depth)"), 11);
    EXPECT_EQ(idFile(), "");
}

TEST_F(Setup, ARecordedNumberBeyondTheVariablesIsNone)
{
    write(collection.path + ".idv", "Depth [m]=77\n");
    settler.variables = {1};
    EXPECT_EQ(add("Pressure(Depth)"), 11);
    EXPECT_EQ(settler.titles.size(), 1u);
    write(collection.path + ".idv", "Depth [m]=0\n");
    EXPECT_EQ(recordedVariable(collection, "Depth [m]"), 0);
}

TEST_F(Setup, VariablesOfRatiosDerivativesAndTimesAreNeverLookedUp)
{
    write(collection.path + ".idv", "Numerator=4\nDenominator=4\nVariable=4\nTime variable...=4\n");
    settler.variables = {3, 2};
    settler.numbers = {"0.1"};
    EXPECT_EQ(add("Ratio"), 11);
    EXPECT_EQ(label(11), "Ratio Salinity/Temperature");
    EXPECT_EQ(sources(11), (std::vector<int>{3, 2}));
    EXPECT_FLOAT_EQ(variable(11).param, 0.1f);
    EXPECT_EQ(settler.titles, (std::vector<std::string>{"Ratio - Identify Numerator",
                                                        "Ratio Salinity/.. - Identify Denominator",
                                                        "Denominator absolute-value limit: 0"}));
}

TEST_F(Setup, CancellingTheDepthQuestionLeavesTheListUnchanged)
{
    EXPECT_EQ(add("Pressure(Depth)"), 0);
    EXPECT_EQ(collection.totalVariableCount, 10);
    EXPECT_TRUE(user.messages.empty());
}

TEST_F(Setup, CancellingAnyQuestionLeavesEverythingAsItWas)
{
    // Oxygen, depth, temperature, salinity.
    for (int answered = 0; answered < 4; ++answered) {
        settler.variables.assign(static_cast<std::size_t>(answered), 1);
        EXPECT_EQ(add("Oxygen Saturation"), 0);
    }
    settler.variables = {1, 2, 3};
    settler.numbers.clear();
    EXPECT_EQ(add("Potential Density"), 0) << "the prompt for a number is cancelled";
    EXPECT_EQ(collection.totalVariableCount, 10);
    EXPECT_EQ(idFile(), "");
    EXPECT_EQ(collection.variables.at(11).nSources, 0);
}

TEST_F(Setup, TheFiftyFirstVariableIsRefusedAndTheFiftiethAccepted)
{
    while (collection.totalVariableCount < 49) ASSERT_GT(add("Latitude"), 0);
    EXPECT_EQ(add("Latitude"), 50);
    EXPECT_EQ(add("Latitude"), 0);
    EXPECT_EQ(collection.totalVariableCount, 50);
    EXPECT_EQ(user.messages, std::vector<std::string>{
                                 "Could not add derived variable ...: Maximum number of variables reached!"});
}

TEST_F(Setup, TenFormulasFit)
{
    for (int n = 0; n < 10; ++n) ASSERT_GT(expression("#1 5 +", {1}), 0);
    EXPECT_EQ(expression("#1 5 +", {1}), 0);
    EXPECT_EQ(collection.nMacros, 10);
    EXPECT_EQ(user.messages,
              std::vector<std::string>{
                  "Can not add derived variable!: Maximum number of 'Macro' variables reached."});
}

TEST_F(Setup, AVariableRefersOnlyToSmallerNumbers)
{
    settler.variables = {11};
    EXPECT_EQ(add("Pressure(Depth)"), 0) << "variable 11 would be itself";
    EXPECT_EQ(expression("#1 5 +", {11}), 0);
    EXPECT_EQ(collection.totalVariableCount, 10);
}

TEST_F(Setup, AMissingHistoryIsNamed)
{
    surroundings.histories[seawater::gasCfc11].n = 0;
    surroundings.histories[seawater::gasCh4].n = 0;
    EXPECT_EQ(add("CFC-11 Saturation"), 0);
    EXPECT_EQ(add("pCH4"), 0);
    EXPECT_EQ(user.messages,
              (std::vector<std::string>{"CFC-11 Saturation: ERROR. File:\n/nvq/atmhist/atmcfc11.his missing.",
                                        "pCH4: ERROR. File:\n/nvq/atmhist/atmch4.his missing."}));
    EXPECT_TRUE(settler.titles.empty());
}

TEST_F(Setup, AHistoryWithoutNumbersIsNotCalledMissing)
{
    surroundings.histories[seawater::gasCfc12].n = 0;
    installation.atmhist = folder + "/";
    write(folder + "/atmcfc12.his", "");
    EXPECT_EQ(add("CFC-12 Saturation"), 0);
    EXPECT_EQ(user.messages,
              std::vector<std::string>{
                  "CFC-12 Saturation: ERROR. File:\n" + folder +
                  "/atmcfc12.his\nholds no history: lines \"year north south\" behind a heading."});
}

TEST_F(Setup, AMissingAtlasIsNamed)
{
    surroundings.atlas = nullptr;
    EXPECT_EQ(add("Neutral Density"), 0);
    ASSERT_EQ(user.messages.size(), 1u);
    EXPECT_TRUE(user.messages[0].starts_with("gamma_n support files not found ...: You should install the "
                                             "<gamma_n> optional package!\n\n"))
        << user.messages[0];
    EXPECT_NE(user.messages[0].find("gamma_n/llp.fdt"), std::string::npos); // what is missing
    EXPECT_NE(user.messages[0].find("make_gamma_atlas gamma.nc "), std::string::npos);
}

TEST_F(Setup, RowsThatArentThereYetSaySo)
{
    EXPECT_EQ(add("Patches"), 0);
    EXPECT_EQ(add("Difference from Reference"), 0);
    EXPECT_EQ(user.messages.size(), 2u);
    EXPECT_EQ(collection.totalVariableCount, 10);
}

TEST_F(Setup, ATextThatIsNoNumberAddsNothing)
{
    recordKeys();
    settler.numbers = {"deep"};
    EXPECT_EQ(add("Dynamic Height"), 0);
    EXPECT_EQ(user.messages, std::vector<std::string>{"Dynamic Height: \"deep\" is no number."});
}

struct ROWCASE {
    const char* row;
    std::vector<std::optional<int>> answers; // beside depth, temperature and salinity
    const char* label;
    std::vector<int> sources;
};

// All rows but those with formulas and times, which have tests of their own.
const std::vector<ROWCASE>& rowCases()
{
    static const std::vector<ROWCASE> cases{
        {"Brunt-Vaisala Freq.", {}, "Brunt-Vaisala Freq. [cycl/h]", {1, 2, 3}},
        {"CFC-11 Saturation", {5}, "CFC-11 Saturation [%]", {1, 2, 3, 5}},
        {"CFC-12 Saturation", {5}, "CFC-12 Saturation [%]", {1, 2, 3, 5}},
        {"CFC-10 Saturation", {5}, "CFC-10 Saturation [%]", {1, 2, 3, 5}},
        {"CFC-113 Saturation", {5}, "CFC-113 Saturation [%]", {1, 2, 3, 5}},
        {"CH4 Saturation", {5}, "CH4 Saturation [%]", {1, 2, 3, 5}},
        {"CO2(TCO2,TALK)", {6, 7}, "CO2(TCO2,TALK) [~$m~#m/kg]", {1, 2, 3, 6, 7}},
        {"CO3--(TCO2,TALK)", {6, 7}, "CO3--(TCO2,TALK) [~$m~#m/kg]", {1, 2, 3, 6, 7}},
        {"Cruise Number", {}, "Cruise Number []", {}},
        {"Day of Year(header mon/day/year)", {}, "Day of Year(header mon/day/year) [days]", {}},
        {"Depth(Press)", {1}, "Depth(Press) [m]", {1}},
        {"Dynamic Height", {}, "Dyn.Ht.-1500 [dyn m]", {1, 2, 3}},
        {"Freezing Temperature", {}, "Freezing Temperature [°C]", {1, 0, 3}},
        {"HCO3-(TCO2,TALK)", {6, 7}, "HCO3-(TCO2,TALK) [~$m~#m/kg]", {1, 2, 3, 6, 7}},
        {"in situ Temperature(z,Tp,s)", {2}, "in situ Temperature(z,Tp,s) [°C]", {1, 2, 3}},
        {"Latitude", {}, "Latitude [°]", {}},
        {"Longitude", {}, "Longitude [°]", {}},
        {"Neutral Density", {}, "Neutral Density ~$g~#~^n [kg/m~^3]", {1, 2, 3}},
        {"Oxygen Saturation", {4}, "Oxygen Saturation [%]", {1, 2, 3, 4}},
        {"pCFC-11", {5}, "pCFC-11 [pptv]", {1, 2, 3, 5}},
        {"pCFC-12", {5}, "pCFC-12 [pptv]", {1, 2, 3, 5}},
        {"pCFC-10", {5}, "pCFC-10 [pptv]", {1, 2, 3, 5}},
        {"pCFC-113", {5}, "pCFC-113 [pptv]", {1, 2, 3, 5}},
        {"pCH4", {5}, "pCH4 [ppbv]", {1, 2, 3, 5}},
        {"pCO2(TCO2,TALK)", {6, 7}, "pCO2(TCO2,TALK) [~$m~#Atm]", {1, 2, 3, 6, 7}},
        {"pH(TCO2,TALK)", {6, 7}, "pH(TCO2,TALK) []", {1, 2, 3, 6, 7}},
        {"Potential Density", {}, "Sigma-1500 [kg/m~^3]", {1, 2, 3}},
        {"Potential Temperature", {}, "Tpot-1500 [°C]", {1, 2, 3}},
        {"Pressure(Depth)", {}, "Pressure(Depth) [db]", {1}},
        {"Ratio", {4, 10}, "Ratio Oxygen/Count", {4, 10}},
        {"Specific Heat Cp", {}, "Specific Heat Cp [J/(kg °C)]", {1, 2, 3}},
        {"Sound Speed", {}, "Sound Speed [m/s]", {1, 2, 3}},
        {"Station Number", {}, "Station Number []", {}},
        {"Time(header mon/day/year)", {}, "Time(header mon/day/year) [yr]", {}},
        {"Vertical Derivative", {4}, "d/dz Oxygen [~$m~#mol/kg/km]", {1, 4}},
        {"Vertical Derivative (2nd)", {3}, "d~^2/dz~^2 Salinity [psu/km~^2]", {1, 3}},
        {"Vertical Integral", {2}, "~$ò~#Temperature dz [°C*km]", {1, 2}},
    };
    return cases;
}

TEST_F(Setup, EveryRowGivesItsVariable)
{
    recordKeys();
    for (const ROWCASE& wanted : rowCases()) {
        SCOPED_TRACE(wanted.row);
        settler.variables.assign(wanted.answers.begin(), wanted.answers.end());
        settler.numbers = {"1500"};
        const int number = add(wanted.row);
        ASSERT_GT(number, 0);
        const DRVVAR& row = derivedRows().at(static_cast<std::size_t>(findDerivedRow(wanted.row)));
        EXPECT_EQ(label(number), wanted.label);
        EXPECT_EQ(sources(number), wanted.sources);
        EXPECT_EQ(variable(number).id, row.id);
        EXPECT_EQ(variable(number).width, row.width);
        EXPECT_EQ(variable(number).decimals, row.decimals);
        EXPECT_EQ(variable(number).qualifier, row.qualifier);
        EXPECT_FLOAT_EQ(variable(number).resolution, row.resolution);
        EXPECT_FLOAT_EQ(variable(number).resolution2, 0.01f);
        EXPECT_TRUE(settler.variables.empty());
        deleteDerivedVariable(collection, 1);
        recordKeys();
    }
}

TEST_F(Setup, TheIntegralSignIsOneByteWhereTheLabelIsSingleByte)
{
    recordKeys();
    settler.variables = {2};
    settler.numbers = {"0"};
    ASSERT_EQ(add("Vertical Integral"), 11);
    EXPECT_EQ(common::fieldText(variable(11).label), "~$\xF2~#Temperature dz [\xB0"
                                                     "C*km]");
    EXPECT_EQ(common::fieldText(variable(11).plainLabel), "\xA6Temperature dz [\xB0"
                                                          "C*km]");
}

TEST_F(Setup, ALongLabelIsCutAtSixtyBytes)
{
    recordKeys();
    addOwn("A variable whose label takes all of the sixty bytes [umol/kg]");
    settler.variables = {11};
    ASSERT_EQ(add("Vertical Derivative"), 12);
    EXPECT_EQ(label(12).size(), 60u);
    EXPECT_EQ(label(12).substr(0, 16), "d/dz A variable ");
}

TEST_F(Setup, AVariableWithoutUnitsGetsThoseOfTheDerivative)
{
    recordKeys();
    settler.variables = {10};
    ASSERT_EQ(add("Vertical Derivative"), 11);
    EXPECT_EQ(label(11), "d/dz Count [/km]");
}

TEST_F(Setup, ATimeVariableIsReadAsItsLabelSays)
{
    settler.variables = {8};
    EXPECT_EQ(add("Time(time variable)"), 11);
    EXPECT_EQ(variable(11).intParam, 31);
    EXPECT_EQ(sources(11), std::vector<int>{8});
    EXPECT_NE(collection.timeOrigins.at(11), 0);
    EXPECT_TRUE(user.messages.empty());
}

TEST_F(Setup, ATimeVariableWithAnOtherLabelAsksForItsForm)
{
    settler.variables = {10};
    settler.form = 33;
    settler.origin = "2000-01-01 12:00:00";
    EXPECT_EQ(add("Day of Year(time variable)"), 11);
    EXPECT_EQ(variable(11).intParam, 33);
    EXPECT_EQ(settler.titles,
              (std::vector<std::string>{"Day of Year(time variable) - Identify Time variable...",
                                        "Count -> Day of Year [days]", "origin of Count"}));
    settler.variables = {10};
    settler.origin = "someday";
    EXPECT_EQ(add("Day of Year(time variable)"), 0);
    EXPECT_EQ(user.messages.size(), 1u);
}

TEST_F(Setup, DatesThatACellCantHoldAreTold)
{
    settler.variables = {9};
    EXPECT_EQ(add("Time(time variable)"), 11);
    EXPECT_EQ(variable(11).intParam, 2);
    ASSERT_EQ(user.messages.size(), 1u);
    EXPECT_NE(user.messages[0].find("Days since an origin are exact"), std::string::npos);
}

TEST_F(Setup, AnExpressionTakesASlot)
{
    EXPECT_EQ(expression("#1\n#2 +", {3, 4}), 11);
    EXPECT_EQ(collection.formulas[0], "#1 #2 +");
    EXPECT_EQ(sources(11), (std::vector<int>{3, 4}));
    EXPECT_EQ(label(11), "E [x]");
    EXPECT_EQ(variable(11).width, 7);
    EXPECT_EQ(expression("#1", {3}), 12);
    EXPECT_EQ(variable(12).intParam, 1);
}

TEST_F(Setup, AFaultyExpressionIsRefused)
{
    EXPECT_EQ(expression("#1 cosine", {3}), 0);
    EXPECT_EQ(expression("#2 5 +", {3}), 0);
    EXPECT_EQ(expression(" ", {3}), 0);
    EXPECT_EQ(collection.nMacros, 0);
    ASSERT_EQ(user.messages.size(), 3u);
    EXPECT_NE(user.messages[0].find("cosine"), std::string::npos);
    EXPECT_EQ(user.messages[2], "Information missing ...: You must enter an Expression!");
}

TEST_F(Setup, AnExpressionWithAFormatBeyondTheLimitsIsRefused)
{
    for (const auto& [width, decimals] : {std::pair(200, 90), std::pair(8, 5), std::pair(2, 0)}) {
        settler.expression = EXPRESSIONDEFINITION{"E [x]", width, decimals, "#1", {1}};
        EXPECT_EQ(add("Expression"), 0);
    }
    ASSERT_EQ(user.messages.size(), 3u);
    EXPECT_EQ(user.messages[0],
              "Faulty expression ...: The format 200.90 isn't possible: 0 to 4 decimals, and a "
              "width that is larger by 3 to 15.");
}

TEST_F(Setup, AnExpressionOf500CharactersIsTakenAnd501AreRefused)
{
    const std::string longest = "#1" + std::string(498, ' ');
    EXPECT_EQ(expression(longest.c_str(), {3}), 11);
    EXPECT_EQ(expression((longest + " ").c_str(), {3}), 0);
    EXPECT_EQ(user.messages,
              std::vector<std::string>{"Faulty expression ...: The formula is longer than 500 characters."});
}

TEST_F(Setup, DeletingTakesDependentsToAnyDepthAndClosesUp)
{
    settler.variables = {1, 11};
    ASSERT_EQ(add("Pressure(Depth)"), 11);
    ASSERT_EQ(add("Depth(Press)"), 12); // rests on 11
    ASSERT_EQ(expression("#1 1 +", {12}), 13);
    ASSERT_EQ(expression("#1 2 +", {3}), 14);
    ASSERT_EQ(expression("#1 3 +", {14}), 15);
    collection.timeOrigins[14] = 7;
    collection.criteria.sampleVariable = 15;
    collection::setRequiredVariables(collection.criteria, std::vector<int>{2, 13, 14});
    EXPECT_EQ(dependentVariables(collection, 11), (std::vector<int>{12, 13}));
    EXPECT_EQ(deleteDerivedVariable(collection, 1), 1);
    EXPECT_EQ(collection.totalVariableCount, 12);
    EXPECT_EQ(collection.nMacros, 2);
    EXPECT_EQ(collection.formulas[0], "#1 2 +");
    EXPECT_EQ(collection.formulas[1], "#1 3 +");
    EXPECT_EQ(collection.formulas[2], "");
    EXPECT_EQ(variable(11).intParam, 0);
    EXPECT_EQ(variable(12).intParam, 1);
    EXPECT_EQ(sources(11), std::vector<int>{3});
    EXPECT_EQ(sources(12), std::vector<int>{11});
    EXPECT_EQ(variable(12).position, 12);
    EXPECT_EQ(collection.timeOrigins[11], 7);
    EXPECT_EQ(collection.criteria.sampleVariable, 12);
    EXPECT_EQ(collection::requiredVariables(collection.criteria), (std::vector<int>{2, 11}));
}

TEST_F(Setup, ARangeOfADeletedVariableIsNone)
{
    ASSERT_EQ(add("Latitude"), 11);
    collection.criteria.sampleVariable = 11;
    EXPECT_EQ(deleteDerivedVariable(collection, 1), 1);
    EXPECT_EQ(collection.criteria.sampleVariable, 0);
    EXPECT_EQ(deleteDerivedVariable(collection, 1), 0);
    EXPECT_EQ(deleteDerivedVariable(collection, 0), 0);
}

TEST_F(Setup, DerivedVariablesComeBackWithNewNumbers)
{
    settler.variables = {1};
    ASSERT_EQ(add("Pressure(Depth)"), 11);
    ASSERT_EQ(expression("#1 2 +", {3}), 12);
    ASSERT_EQ(expression("#1 3 +", {12}), 13);
    ASSERT_EQ(expression("#1 4 +", {4}), 14);
    const DERIVEDSET set = derivedSet(collection);
    // Salinity moves to 2, depth stays, all others go.
    collection.variableCount = 2;
    const std::vector<int> newNumbers{0, 1, 0, 2, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(restoreDerived(collection, set, newNumbers), (std::vector<int>{3, 4, 5, 0}));
    EXPECT_EQ(collection.totalVariableCount, 5);
    EXPECT_EQ(sources(4), std::vector<int>{2});
    EXPECT_EQ(sources(5), std::vector<int>{4});
    EXPECT_EQ(collection.nMacros, 2);
    EXPECT_EQ(collection.formulas[1], "#1 3 +");
}

TEST_F(Setup, ResettingAsksForEachRecordedRole)
{
    recordKeys();
    settler.variables = {1, std::nullopt, 4};
    EXPECT_EQ(resetKeyVariables(collection, settler, user), 1);
    EXPECT_EQ(settler.titles[0], "Resetting Variable IDs ... - Identify Depth [m]");
    EXPECT_EQ(settler.proposals, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(idFile(), "Depth [m]=1\nTemperature [C]=2\nSalinity [psu]=4\n");
}

TEST_F(Setup, ResettingAsksForNumbersThatAreNoVariablesToo)
{
    write(collection.path + ".idv", "Depth [m]=77\nno key\n=3\nSalinity [psu]=3\n");
    settler.variables = {1, 3};
    EXPECT_EQ(resetKeyVariables(collection, settler, user), 1);
    EXPECT_EQ(settler.proposals, (std::vector<int>{0, 3}));
    EXPECT_EQ(recordedVariable(collection, "Depth [m]"), 1);
}

TEST_F(Setup, ResettingTellsWhatCantBeNoted)
{
    ASSERT_EQ(add("Latitude"), 11);
    recordKeys();
    settler.variables = {11};
    const std::string before = idFile();
    EXPECT_EQ(resetKeyVariables(collection, settler, user), 0);
    EXPECT_EQ(user.messages,
              std::vector<std::string>{
                  "Resetting Variable IDs ...: Depth [m]: only a stored variable can play a role."});
    settler.titles.clear();
    collection.writable = false;
    EXPECT_EQ(resetKeyVariables(collection, settler, user), 0);
    EXPECT_EQ(user.messages.size(), 2u);
    EXPECT_TRUE(settler.titles.empty()) << "nothing is asked that can't be noted";
    EXPECT_EQ(idFile(), before);
}

TEST_F(Setup, AnIdentificationOnItsOwnIsNotedAtOnce)
{
    settler.variables = {3};
    EXPECT_EQ(identifyVariable(collection, "Flows", "Salinity [psu]", true, settler), 3);
    EXPECT_EQ(identifyVariable(collection, "Flows", "Salinity [psu]", true, settler), 3);
    EXPECT_EQ(settler.titles, std::vector<std::string>{"Flows - Identify Salinity [psu]"});
    EXPECT_EQ(identifyVariable(collection, "Flows", "Salinity [psu]", false, settler), 0) << "cancelled";
    EXPECT_EQ(idFile(), "Salinity [psu]=3\n");
}

TEST_F(Setup, OnlyRolesAreRecordable)
{
    EXPECT_FALSE(isRecordable(idRatio, "Numerator"));
    EXPECT_FALSE(isRecordable(idTime, "Time variable..."));
    EXPECT_FALSE(isRecordable(idVerticalIntegral, "Variable"));
    EXPECT_TRUE(isRecordable(idVerticalIntegral, "Depth [m]"));
    EXPECT_TRUE(isRecordable(idMacro, "Variable"));
}

TEST_F(Setup, ParametersTellWhatTheRolesLeaveOpen)
{
    RParameterSettler parameters({"4", "1000"}, user);
    ASSERT_EQ(addBy(parameters, "Vertical Integral"), 11);
    EXPECT_EQ(sources(11), (std::vector<int>{1, 4}));
    EXPECT_FLOAT_EQ(variable(11).param, 1000);
    EXPECT_EQ(user.notes, std::vector<std::string>{"Depth [m]: taken to be variable 1, Depth [m]"});
}

TEST_F(Setup, ParametersBeyondTheQuestionsAreRoles)
{
    RParameterSettler parameters({"10", "2", "Salinity", "500"}, user);
    ASSERT_EQ(addBy(parameters, "Potential Temperature"), 11);
    EXPECT_EQ(sources(11), (std::vector<int>{10, 2, 3}));
    EXPECT_TRUE(user.notes.empty());
}

TEST_F(Setup, ParametersForAllRolesMeanTheSameWhateverIsRecorded)
{
    for (int i = 0; i < 2; ++i) { // the first time nothing is recorded
        RParameterSettler parameters({"1", "2", "Salinity", "500"}, user);
        ASSERT_EQ(addBy(parameters, "Potential Temperature"), 11 + i) << parameters.fault();
        EXPECT_EQ(sources(11 + i), (std::vector<int>{1, 2, 3}));
    }
    const std::string recorded = idFile();
    RParameterSettler other({"1", "10", "3", "500"}, user); // another temperature, this time only
    ASSERT_EQ(addBy(other, "Potential Temperature"), 13);
    EXPECT_EQ(sources(13), (std::vector<int>{1, 10, 3}));
    EXPECT_EQ(idFile(), recorded);
}

TEST_F(Setup, ParametersForTheRolesThatAreNotRecorded)
{
    ASSERT_TRUE(recordVariable(collection, "Depth [m]", 1));
    ASSERT_TRUE(recordVariable(collection, "Salinity [psu]", 3));
    RParameterSettler parameters({"10", "500"}, user);
    ASSERT_EQ(addBy(parameters, "Potential Temperature"), 11);
    EXPECT_EQ(sources(11), (std::vector<int>{1, 10, 3}));
}

TEST_F(Setup, ParametersForOpenRolesMayBeRepeatedWhenTheyAreRecorded)
{
    ASSERT_TRUE(recordVariable(collection, "Depth [m]", 1));
    ASSERT_TRUE(recordVariable(collection, "Salinity [psu]", 3));
    for (int i = 0; i < 2; ++i) { // the second time the temperature is recorded too
        RParameterSettler parameters({"10", "500"}, user);
        ASSERT_EQ(addBy(parameters, "Potential Temperature"), 11 + i) << parameters.fault();
        EXPECT_EQ(sources(11 + i), (std::vector<int>{1, 10, 3}));
        EXPECT_FLOAT_EQ(variable(11 + i).param, 500);
    }
    RParameterSettler other({"2", "500"}, user); // that isn't what is recorded
    EXPECT_EQ(addBy(other, "Potential Temperature"), 0);
    EXPECT_FALSE(other.fault().empty());
}

TEST_F(Setup, ADerivedPotentialTemperatureIsTheLikelyOne)
{
    RParameterSettler first({}, user), second({}, user);
    ASSERT_EQ(addBy(first, "Potential Temperature"), 11);
    ASSERT_EQ(addBy(second, "in situ Temperature(z,Tp,s)"), 12) << second.fault();
    EXPECT_EQ(sources(12), (std::vector<int>{1, 11, 3}));
}

TEST_F(Setup, AnEqualNameIsLikelierThanALabelThatContainsTheKey)
{
    for (int v = 1; v <= 3; ++v) {
        const char* const labels[] = {"", "Bottom Depth [m]", "Pot. Temperature [C]",
                                      "Bottle Salinity [psu]"};
        collection::setLabel(collection.variables.at(static_cast<std::size_t>(v)), labels[v]);
    }
    for (const char* const label : {"depth [m]", "Temperature [degC]", "Salinity [psu]"}) addOwn(label);
    RParameterSettler parameters({}, user);
    ASSERT_EQ(addBy(parameters, "Sound Speed"), 14) << parameters.fault();
    EXPECT_EQ(sources(14), (std::vector<int>{11, 12, 13}));
}

TEST_F(Setup, ALabelThatOnlyContainsTheKeyIsMarkedButNeverTaken)
{
    collection::setLabel(collection.variables.at(2), "Pot. Temperature [C]");
    settler.variables = {1, 2, 3};
    ASSERT_EQ(add("Sound Speed"), 11);
    EXPECT_EQ(settler.proposals, (std::vector<int>{1, 2, 3}));
    std::filesystem::remove(collection.path + ".idv");
    RParameterSettler parameters({}, user);
    EXPECT_EQ(addBy(parameters, "Sound Speed"), 0);
    EXPECT_EQ(parameters.fault(), "Temperature [C] isn't identified: set_key tells which stored variable it "
                                  "is, or parameters tell all roles.");
    EXPECT_EQ(idFile(), "");
}

TEST_F(Setup, APotentialTemperatureIsLikelyOneReferredToTheSurface)
{
    const auto proposed = [&](std::string_view key) {
        const PROPOSAL proposal =
            proposedVariable(std::span(collection.variables)
                                 .first(static_cast<std::size_t>(collection.totalVariableCount) + 1),
                             key);
        return std::pair(proposal.variable, proposal.isSure);
    };
    constexpr std::string_view key = "Potential Temperature [C]";
    EXPECT_EQ(proposed(key), std::pair(0, false));
    RParameterSettler deep({"1000"}, user), surface({"0"}, user);
    ASSERT_EQ(addBy(deep, "Potential Temperature"), 11);
    EXPECT_EQ(proposed(key), std::pair(11, false)); // another quantity
    EXPECT_EQ(proposed(potentialTemperatureKey), std::pair(11, true));
    ASSERT_EQ(addBy(surface, "Potential Temperature"), 12);
    EXPECT_EQ(proposed(key), std::pair(12, true));
    EXPECT_EQ(proposed(potentialTemperatureKey), std::pair(12, true));
}

TEST_F(Setup, ANumberWithoutAParameterTakesItsPreset)
{
    RParameterSettler parameters({}, user);
    ASSERT_EQ(addBy(parameters, "Potential Temperature"), 11);
    EXPECT_EQ(label(11), "Tpot-0 [°C]");
}

TEST_F(Setup, FaultyParametersChangeNothing)
{
    const std::vector<std::tuple<const char*, std::vector<std::string>, const char*>> cases{
        {"Ratio", {"4"}, "Denominator: a parameter must tell the variable."},
        {"Ratio", {"4", "nothing"}, "Denominator: there is no variable \"nothing\"."},
        {"Ratio", {"4", "3", "few"}, "Denominator absolute-value limit: \"few\" is no number."},
        {"Latitude", {"4"}, "There is no question for the parameter \"4\"."},
        {"CFC-12 Saturation",
         {},
         "CFC-12 [pmol/kg] isn't identified: set_key tells which stored variable it is, or parameters tell "
         "all roles."},
        {"Pressure(Depth)",
         {"1", "2"},
         "It takes 0 parameters, or 1 with a variable for each of its roles, not 2."},
        {"Potential Density",
         {"1", "2", "3"},
         "It takes 1 parameters, or 4 with a variable for each of its roles, not 3."},
    };
    for (const auto& [row, texts, fault] : cases) {
        RParameterSettler parameters(texts, user);
        EXPECT_EQ(addBy(parameters, row), 0);
        EXPECT_EQ(parameters.fault(), fault);
    }
    EXPECT_EQ(collection.totalVariableCount, 10);
    EXPECT_EQ(idFile(), "");
    EXPECT_TRUE(user.notes.empty());
}

TEST_F(Setup, ParametersAreTheInputsOfAnExpression)
{
    RParameterSettler parameters({"Salinity", "4"}, user);
    parameters.giveExpression({"Sum [x]", 8, 3, "#1 #2 +", {}});
    ASSERT_EQ(addBy(parameters, "Expression"), 11);
    EXPECT_EQ(sources(11), (std::vector<int>{3, 4}));
}

const char* const macroText = "NVQ4.0 Macro\nSome words\n"
                              ">|--->----------------------------------------------------------|>--|\n"
                              "     Sum [x]                                                      9.4\n"
                              "#1   Salinity [psu]                                              \n"
                              "#2   Oxygen [umol/kg]                                            \n"
                              "\n#1 #2 +\n";

TEST_F(Setup, AMacroThatIsTooLongIsLoadedUpToALineThatIsTold)
{
    std::string text = macroText;
    for (int i = 0; i < 60; ++i) text += "1 + 1 + 1 +\n";
    const std::string path = folder + "/long.mac";
    ASSERT_TRUE(common::writeFile(path, text));
    RParameterSettler parameters({"3", "4"}, user);
    parameters.giveMacroFile(path);
    ASSERT_EQ(addBy(parameters, "Macro File"), 11) << parameters.fault();
    EXPECT_EQ(user.messages, std::vector<std::string>{
                                 "Loading Macro: " + path +
                                 ": the formula is too long; its line 42 and what follows is left out"});
}

TEST_F(Setup, AnInputWithoutATextIsAskedForAndNotRecorded)
{
    const std::string path = folder + "/bare.mac";
    ASSERT_TRUE(common::writeFile(
        path, "NVQ4.0 Macro\n>|--->----------------------------------------------------------|>--|\n"
              "                                                                  8.2\n#1\n\n#1 1 +\n"));
    RParameterSettler none({}, user);
    none.giveMacroFile(path);
    EXPECT_EQ(addBy(none, "Macro File"), 0);
    EXPECT_EQ(none.fault(), "#1: a parameter must tell the variable.");
    RParameterSettler one({"3"}, user);
    one.giveMacroFile(path);
    ASSERT_EQ(addBy(one, "Macro File"), 11);
    EXPECT_EQ(label(11), "bare"); // the file's name, as it gives no label
    EXPECT_EQ(idFile(), "");
}

TEST_F(Setup, ParametersOfAMacroAreItsInputsWhateverIsRecorded)
{
    const std::string path = folder + "/sum.mac";
    write(path, macroText);
    const auto load = [&](std::vector<std::string> inputs) {
        RParameterSettler parameters(std::move(inputs), user);
        parameters.giveMacroFile(path);
        const int number = addBy(parameters, "Macro File");
        return number > 0 ? std::to_string(number) : parameters.fault();
    };
    EXPECT_EQ(load({"4", "10"}), "11");
    EXPECT_EQ(load({"4", "10"}), "12");
    EXPECT_EQ(sources(12), (std::vector<int>{4, 10}));
    EXPECT_EQ(load({"3", "4"}), "13");
    EXPECT_EQ(sources(13), (std::vector<int>{3, 4}));
    write(collection.path + ".idv", "Oxygen [umol/kg]=10\n");
    EXPECT_EQ(load({"4"}), "The macro has 2 inputs: parameters tell all of them or none, not 1.");
    EXPECT_EQ(load({}), "14");
    EXPECT_EQ(sources(14), (std::vector<int>{3, 10}));
}

TEST_F(Setup, AMacroBindsItsInputsAndKeepsItsFormat)
{
    settler.macroFile = folder + "/sum.mac";
    write(settler.macroFile, macroText);
    settler.variables = {3, 4};
    ASSERT_EQ(add("Macro File"), 11);
    EXPECT_EQ(settler.titles[0], "Loading Macro - Identify Salinity [psu]");
    EXPECT_EQ(sources(11), (std::vector<int>{3, 4}));
    EXPECT_EQ(collection.formulas[0], "#1 #2 + ");
    EXPECT_EQ(label(11), "Sum [x]");
    EXPECT_EQ(macroFormat.width, 9);
    EXPECT_EQ(macroFormat.decimals, 4);
    EXPECT_EQ(idFile(), "Salinity [psu]=3\nOxygen [umol/kg]=4\n");
    EXPECT_EQ(user.statusTexts, std::vector<std::string>{"Loading Macro sum.mac ..."});
    EXPECT_EQ(user.busy, 0);
}

TEST_F(Setup, AMacroWithoutAFormatTakesThatOfTheLastOne)
{
    settler.macroFile = folder + "/plain.mac";
    write(settler.macroFile, "NVQ4.0 Macro\n>|--->\n     Plain [x]\n\n1 2 +\n");
    macroFormat = {12, 4};
    ASSERT_EQ(add("Macro File"), 11);
    EXPECT_EQ(variable(11).width, 12);
    EXPECT_EQ(variable(11).decimals, 4);
}

TEST_F(Setup, ACancelledInputEndsTheLoadingOfAMacro)
{
    settler.macroFile = folder + "/sum.mac";
    write(settler.macroFile, macroText);
    settler.variables = {3};
    EXPECT_EQ(add("Macro File"), 0);
    EXPECT_EQ(collection.nMacros, 0);
    EXPECT_EQ(idFile(), "");
}

TEST_F(Setup, AFaultyFormulaOfAMacroLoadsWithAMessage)
{
    settler.macroFile = folder + "/sum.mac";
    write(settler.macroFile, common::replaceAll(macroText, "#1 #2 +", "#1 plus"));
    settler.variables = {3, 4};
    EXPECT_EQ(add("Macro File"), 11);
    ASSERT_EQ(user.messages.size(), 1u);
    EXPECT_EQ(user.messages[0].find("Loading Macro: "), 0u);
    EXPECT_NE(user.messages[0].find("sum.mac"), std::string::npos);
    EXPECT_NE(user.messages[0].find("plus"), std::string::npos);
}

TEST_F(Setup, WhatIsNoMacroIsRefused)
{
    settler.macroFile = folder + "/sum.mac";
    write(settler.macroFile, "Hello\n");
    EXPECT_EQ(add("Macro File"), 0);
    ASSERT_EQ(user.messages.size(), 1u);
    EXPECT_EQ(user.messages[0], "Loading Macro: Not a valid NVQ macro!\n\n" + settler.macroFile +
                                    ":1: the file doesn't begin with \"NVQ4.0\"");
    settler.macroFile = folder + "/none.mac";
    EXPECT_EQ(add("Macro File"), 0);
    EXPECT_EQ(user.messages[1], "Loading Macro: " + settler.macroFile + ": the file can't be read");
}

} // namespace
} // namespace variables
