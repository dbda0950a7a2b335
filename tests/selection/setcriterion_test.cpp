#include "selection/setcriterion.h"

#include <cstring>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/text.h"
#include "selection/criteria.h"
#include "temporarydirectory.h"

namespace selection {
namespace {

using collection::DOMAINPOLYGON;
using collection::SELECTIONCRITERIA;
using testing::ElementsAre;
using testing::HasSubstr;

class SetCriterion : public testing::Test {
protected:
    SetCriterion()
    {
        for (const char* const label :
             {"", "Depth [m]", "Temperature [~$m~#C]", "d18O:x [1]", "Sauerstoff \xB5", "Sigma-0 [kg/m^3]"}) {
            variables.push_back(collection::emptyVariable(static_cast<int>(variables.size())));
            collection::setLabel(variables.back(), label);
        }
    }
    // Sets it; what is wrong.
    std::string set(std::string_view key, std::string_view value)
    {
        return setCriterion({criteria, polygon, variables, 4}, key, value);
    }
    // True if it is refused, with nothing changed and a word about the key and `word`.
    testing::AssertionResult refuses(std::string_view key, std::string_view value, const std::string& word)
    {
        const SELECTIONCRITERIA before = criteria;
        const std::string wrong = set(key, value);
        if (wrong.empty()) return testing::AssertionFailure() << key << "=" << value << " is taken";
        if (wrong.find(word) == std::string::npos || wrong.find(key) == std::string::npos)
            return testing::AssertionFailure() << key << "=" << value << " says: " << wrong;
        if (std::memcmp(&before, &criteria, sizeof before) != 0)
            return testing::AssertionFailure() << key << "=" << value << " changes something";
        return testing::AssertionSuccess();
    }
    std::string months(std::string_view value)
    {
        const std::string wrong = set("month", value);
        return wrong.empty() ? criteria.months : wrong;
    }
    std::vector<float> lon(std::string_view value)
    {
        EXPECT_EQ(set("lon", value), "");
        return {criteria.lonMin, criteria.lonMax};
    }
    // Whether a longitude of 0 to 360 lies in the domain.
    bool holds(float longitude)
    {
        const float x = longitudeIn(longitude, criteria.lonMin, criteria.lonMax);
        return x >= criteria.lonMin && x <= criteria.lonMax;
    }

    SELECTIONCRITERIA criteria = collection::defaultCriteria();
    DOMAINPOLYGON polygon;
    std::vector<collection::VARINFO> variables;
};

TEST_F(SetCriterion, AnUnknownKeyIsRefused)
{
    EXPECT_TRUE(refuses("colour", "red", "there is no criterion"));
    EXPECT_TRUE(refuses("Cruise", "A", "there is no criterion"));
}

TEST_F(SetCriterion, CruiseIsAPatternOfAtMost20Characters)
{
    EXPECT_EQ(set("cruise", "A2[0-9]*"), "");
    EXPECT_STREQ(criteria.cruisePattern, "A2[0-9]*");
    EXPECT_EQ(set("cruise", "12345678901234567890"), "");
    EXPECT_TRUE(refuses("cruise", "123456789012345678901", "20 characters"));
    EXPECT_EQ(set("cruise", ""), "");
    EXPECT_STREQ(criteria.cruisePattern, "*");
}

TEST_F(SetCriterion, LabelsAreStoredAsRecordsHoldThem)
{
    EXPECT_EQ(set("cruise", "M\u00E9t\u00E9or"), "");
    EXPECT_STREQ(criteria.cruisePattern, "M\xE9t\xE9or");
    EXPECT_EQ(set("cruise", "M\xE9t\xE9or"), "");
    EXPECT_STREQ(criteria.cruisePattern, "M\xE9t\xE9or");
    EXPECT_EQ(set("label_to", "\u03A3"), "");
    EXPECT_STREQ(criteria.stationLabelTo, "\u03A3");
}

TEST_F(SetCriterion, AShorterLabelLeavesNothingOfTheLongerOne)
{
    EXPECT_EQ(set("cruise", "ABCDEFGH"), "");
    EXPECT_EQ(set("cruise", "A"), "");
    SELECTIONCRITERIA other = collection::defaultCriteria();
    common::copyText(other.cruisePattern, "A");
    EXPECT_FALSE(stationCriteriaDiffer(criteria, other));
}

TEST_F(SetCriterion, TypesGoByLetterOrWord)
{
    for (const auto& [value, type] : {std::pair{"B", "B"},
                                      {"c", "C"},
                                      {"xbt", "X"},
                                      {"Bottle", "B"},
                                      {"CTD", "C"},
                                      {"*", "*"},
                                      {"any", "*"}}) {
        EXPECT_EQ(set("type", value), "");
        EXPECT_STREQ(criteria.stationType, type) << value;
    }
    EXPECT_TRUE(refuses("type", "Q", "no station type"));
    EXPECT_TRUE(refuses("type", "BC", "no station type"));
    EXPECT_TRUE(refuses("type", "", "no station type"));
}

TEST_F(SetCriterion, LabelBounds)
{
    EXPECT_EQ(set("label_from", "9"), "");
    EXPECT_EQ(set("label_to", "12"), "");
    EXPECT_STREQ(criteria.stationLabelFrom, "9");
    EXPECT_STREQ(criteria.stationLabelTo, "12");
    EXPECT_EQ(set("label_from", ""), "");
    EXPECT_EQ(set("label_to", ""), "");
    EXPECT_FALSE(stationCriteriaDiffer(criteria, collection::defaultCriteria()));
    EXPECT_TRUE(refuses("label_from", std::string(21, 'x'), "20 characters"));
}

TEST_F(SetCriterion, OneNumberBoundAloneTakesEffectToo)
{
    EXPECT_EQ(set("number_from", "5"), "");
    EXPECT_EQ(criteria.stationNumberMin, 5);
    EXPECT_EQ(criteria.stationNumberMax, anyLabelNumber);
    EXPECT_EQ(set("number_to", "70"), "");
    EXPECT_EQ(criteria.stationNumberMin, 5);
    EXPECT_EQ(criteria.stationNumberMax, 70);
    EXPECT_EQ(set("number_from", ""), "");
    EXPECT_EQ(criteria.stationNumberMin, 0);
    EXPECT_EQ(set("number_to", ""), "");
    EXPECT_EQ(criteria.stationNumberMin, -1);
    EXPECT_EQ(criteria.stationNumberMax, -1);
}

TEST_F(SetCriterion, NumberFrom0WantsLabelsThatAreNumbers)
{
    EXPECT_EQ(set("number_from", "0"), "");
    EXPECT_EQ(criteria.stationNumberMin, 0);
    EXPECT_EQ(criteria.stationNumberMax, anyLabelNumber);
    EXPECT_TRUE(refuses("number_from", "-1", "isn't within"));
    EXPECT_TRUE(refuses("number_to", "A1", "\"A1\" doesn't read as a whole number"));
    EXPECT_TRUE(refuses("number_to", "99999999999", "doesn't read"));
}

TEST_F(SetCriterion, RangesMayLackEitherEnd)
{
    EXPECT_EQ(set("year", "1990:1995"), "");
    EXPECT_EQ(criteria.yearMin, 1990);
    EXPECT_EQ(criteria.yearMax, 1995);
    EXPECT_EQ(set("year", "2001:"), "");
    EXPECT_EQ(criteria.yearMin, 2001);
    EXPECT_EQ(criteria.yearMax, collection::anyYear);
    EXPECT_EQ(set("year", " : -3 "), "");
    EXPECT_EQ(criteria.yearMin, -collection::anyYear);
    EXPECT_EQ(criteria.yearMax, -3);
    EXPECT_EQ(set("year", "1999"), "");
    EXPECT_EQ(criteria.yearMin, 1999);
    EXPECT_EQ(criteria.yearMax, 1999);
    EXPECT_EQ(set("year", ":"), "");
    EXPECT_FALSE(stationCriteriaDiffer(criteria, collection::defaultCriteria()));
}

TEST_F(SetCriterion, NegativeNumbersInRanges)
{
    EXPECT_EQ(set("year", "-500:-100"), "");
    EXPECT_EQ(criteria.yearMin, -500);
    EXPECT_EQ(criteria.yearMax, -100);
    EXPECT_EQ(set("bottom", "-10:+20"), "");
    EXPECT_EQ(criteria.bottomMin, -10);
    EXPECT_EQ(criteria.bottomMax, 20);
}

TEST_F(SetCriterion, RangesThatReadAsNothingAreRefused)
{
    for (const char* const key : {"station", "day", "year", "bottom", "last_depth"}) {
        EXPECT_TRUE(refuses(key, "", "range"));
        EXPECT_TRUE(refuses(key, "a:b", "\"a\" doesn't read as a whole number"));
        EXPECT_TRUE(refuses(key, "1:2:3", "doesn't read"));
        EXPECT_TRUE(refuses(key, "1.5:2", "doesn't read"));
        EXPECT_TRUE(refuses(key, "7:5", "7 is above 5"));
        EXPECT_TRUE(refuses(key, "1-5", "doesn't read"));
        EXPECT_TRUE(refuses(key, "1:2147483647", "isn't within"));
    }
}

TEST_F(SetCriterion, InternalNumbersBeginWith1)
{
    EXPECT_EQ(set("station", "5:9"), "");
    EXPECT_EQ(criteria.internalMin, 5);
    EXPECT_EQ(criteria.internalMax, 9);
    EXPECT_EQ(set("station", "3:"), "");
    EXPECT_EQ(criteria.internalMax, collection::anyNumber);
    EXPECT_TRUE(refuses("station", "0:9", "isn't within"));
}

TEST_F(SetCriterion, DaysAre0To31)
{
    EXPECT_EQ(set("day", "0:"), "");
    EXPECT_EQ(criteria.dayMin, 0);
    EXPECT_EQ(criteria.dayMax, 31);
    EXPECT_EQ(set("day", ":10"), "");
    EXPECT_EQ(criteria.dayMin, 1);
    EXPECT_TRUE(refuses("day", "32", "isn't within 0 to 31"));
}

TEST_F(SetCriterion, DepthsOfTheBottomAndOfTheLastSample)
{
    EXPECT_EQ(set("bottom", "1000:"), "");
    EXPECT_EQ(set("last_depth", ":500"), "");
    EXPECT_EQ(criteria.bottomMin, 1000);
    EXPECT_EQ(criteria.bottomMax, collection::anyDepth);
    EXPECT_EQ(criteria.lastDepthMin, -collection::anyDepth);
    EXPECT_EQ(criteria.lastDepthMax, 500);
}

TEST_F(SetCriterion, MonthsByNumberNameAndRange)
{
    EXPECT_EQ(months("1:3"), "+++         ");
    EXPECT_EQ(months("7"), "      +     ");
    EXPECT_EQ(months("July"), "      +     ");
    EXPECT_EQ(months("jun:Sept"), "     ++++   ");
    EXPECT_EQ(months("10:"), "         +++");
    EXPECT_EQ(months(":2"), "++          ");
    EXPECT_EQ(months("2,4, 6:7 ,dec"), " + + ++    +");
}

TEST_F(SetCriterion, MonthsRunOverTheNewYear)
{
    EXPECT_EQ(months("11:2"), "++        ++");
    EXPECT_EQ(months("dec:nov"), "++++++++++++");
}

TEST_F(SetCriterion, MonthsBySeason)
{
    EXPECT_EQ(months("winter"), "+++         ");
    EXPECT_EQ(months("spring"), "   +++      ");
    EXPECT_EQ(months("Summer"), "      +++   ");
    EXPECT_EQ(months("fall"), "         +++");
    EXPECT_EQ(months("autumn"), "         +++");
    EXPECT_EQ(months("winter,summer,12"), "+++   +++  +");
    EXPECT_EQ(months("all"), "++++++++++++");
}

TEST_F(SetCriterion, WhatIsNoMonthIsRefused)
{
    for (const char* const value :
         {"", "0", "13", "ju", "Janvier", "1:13", "1,,2", "1:2:3", "winter:3", "-1"})
        EXPECT_TRUE(refuses("month", value, "is no month")) << value;
}

TEST_F(SetCriterion, LongitudesAsTheyStand)
{
    EXPECT_THAT(lon("10:60"), ElementsAre(10, 60));
    EXPECT_THAT(lon("-30:20"), ElementsAre(-30, 20));
    EXPECT_THAT(lon("-180:180"), ElementsAre(-180, 180));
    EXPECT_THAT(lon("0:360"), ElementsAre(0, 360));
    EXPECT_THAT(lon("-20.5"), ElementsAre(-20.5f, -20.5f));
}

TEST_F(SetCriterion, LongitudesOver0AndTheDateLine)
{
    EXPECT_THAT(lon("350:20"), ElementsAre(-10, 20));
    EXPECT_THAT(lon("350:370"), ElementsAre(-10, 10));
    EXPECT_THAT(lon("170:-170"), ElementsAre(-190, -170));
    EXPECT_TRUE(holds(175) && holds(190) && holds(170));
    EXPECT_FALSE(holds(169) || holds(191) || holds(0));
    EXPECT_THAT(lon("170:190"), ElementsAre(170, 190));
    EXPECT_TRUE(holds(180) && !holds(195));
    EXPECT_THAT(lon("-100:-150"), ElementsAre(-100, 210));
    EXPECT_TRUE(holds(0) && holds(200) && holds(265) && !holds(250));
    EXPECT_THAT(lon("-170:-160"), ElementsAre(-170, -160));
    EXPECT_TRUE(holds(195) && !holds(0) && !holds(360));
    EXPECT_THAT(lon("360"), ElementsAre(0, 0));
    EXPECT_THAT(lon("350:360"), ElementsAre(-10, 0));
    EXPECT_TRUE(holds(350) && holds(0) && !holds(349));
}

TEST_F(SetCriterion, LongitudesWithoutAnEndReachToThatOfTheGlobe)
{
    EXPECT_THAT(lon(":20"), ElementsAre(-180, 20));
    EXPECT_THAT(lon("-20:"), ElementsAre(-20, 180));
    EXPECT_THAT(lon("20:"), ElementsAre(-340, 0)); // 20 to 360, where stations have 0
    EXPECT_TRUE(holds(20) && holds(200) && holds(359) && holds(0));
    EXPECT_FALSE(holds(19) || holds(1));
    EXPECT_THAT(lon("200:"), ElementsAre(-160, 0));
    EXPECT_THAT(lon(":200"), ElementsAre(0, 200));
    EXPECT_THAT(lon(":"), ElementsAre(0, 360));
}

TEST_F(SetCriterion, LongitudesThatAreNoneAreRefused)
{
    EXPECT_TRUE(refuses("lon", "", "missing"));
    EXPECT_TRUE(refuses("lon", "west:20", "\"west\" doesn't read as a number"));
    EXPECT_TRUE(refuses("lon", "-400:0", "isn't within"));
    EXPECT_TRUE(refuses("lon", "-100:300", "wider than 360"));
    EXPECT_TRUE(refuses("lon", "nan:20", "doesn't read"));
    EXPECT_TRUE(refuses("lon", "1:2:3", "doesn't read"));
}

TEST_F(SetCriterion, Latitudes)
{
    EXPECT_EQ(set("lat", "-60.5:-30"), "");
    EXPECT_EQ(criteria.latMin, -60.5f);
    EXPECT_EQ(criteria.latMax, -30);
    EXPECT_EQ(set("lat", "10:"), "");
    EXPECT_EQ(criteria.latMax, 90);
    EXPECT_TRUE(refuses("lat", "60:40", "60 is above 40"));
    EXPECT_TRUE(refuses("lat", "-91:0", "isn't within -90 to 90"));
    EXPECT_TRUE(refuses("lat", "", "missing"));
}

TEST_F(SetCriterion, QualityByNumberOrWord)
{
    for (const auto& [value, limit] : {std::pair{"0", 0},
                                       {"1", 1},
                                       {"4", 4},
                                       {"8", 8},
                                       {"good", 0},
                                       {"Unknown", 1},
                                       {"questionable", 4},
                                       {"all", 8},
                                       {"good/unkn", 1},
                                       {"good/unkn/quest", 4}}) {
        EXPECT_EQ(set("quality", value), "");
        EXPECT_EQ(criteria.qualityLimit, limit) << value;
    }
    EXPECT_TRUE(refuses("quality", "2", "is no quality"));
    EXPECT_TRUE(refuses("quality", "better", "is no quality"));
    EXPECT_TRUE(refuses("quality", "", "is no quality"));
}

TEST_F(SetCriterion, SampleRangeByNumberAndLabel)
{
    EXPECT_EQ(set("sample", "2:-1.5:30"), "");
    EXPECT_EQ(criteria.sampleVariable, 2);
    EXPECT_EQ(criteria.sampleMin, -1.5f);
    EXPECT_EQ(criteria.sampleMax, 30);
    EXPECT_EQ(set("sample", "depth:100:0"), "");
    EXPECT_EQ(criteria.sampleVariable, 1);
    EXPECT_EQ(criteria.sampleMin, 100);
    EXPECT_EQ(criteria.sampleMax, 0);
    EXPECT_EQ(set("sample", "Sauerstoff \u00B5:1:2"), "");
    EXPECT_EQ(criteria.sampleVariable, 4);
    EXPECT_EQ(set("sample", "none"), "");
    EXPECT_FALSE(sampleCriteriaDiffer(criteria, collection::defaultCriteria()));
}

TEST_F(SetCriterion, SampleRangeOfADerivedVariable)
{
    EXPECT_EQ(set("sample", "Sigma-0:26:27"), "");
    EXPECT_EQ(criteria.sampleVariable, 5);
}

TEST_F(SetCriterion, SampleLabelsMayHoldAColonAndQuotes)
{
    EXPECT_EQ(set("sample", "d18O:x:0:1"), "");
    EXPECT_EQ(criteria.sampleVariable, 3);
    EXPECT_EQ(set("sample", "\"d18O:x [1]\":0:1"), "");
    EXPECT_EQ(criteria.sampleVariable, 3);
    EXPECT_EQ(criteria.sampleMax, 1);
}

TEST_F(SetCriterion, SampleRangeWithoutAnEndHasNoLimitThere)
{
    EXPECT_EQ(set("sample", "2:5:"), "");
    EXPECT_EQ(criteria.sampleMin, 5);
    EXPECT_EQ(criteria.sampleMax, std::numeric_limits<float>::max());
    EXPECT_EQ(set("sample", "2::5"), "");
    EXPECT_EQ(criteria.sampleMin, -std::numeric_limits<float>::max());
}

TEST_F(SetCriterion, SampleRangesThatReadAsNothingAreRefused)
{
    EXPECT_TRUE(refuses("sample", "", "variable:minimum:maximum"));
    EXPECT_TRUE(refuses("sample", "2", "variable:minimum:maximum"));
    EXPECT_TRUE(refuses("sample", "2:5", "variable:minimum:maximum"));
    EXPECT_TRUE(refuses("sample", "Iron:0:5", "there is no variable \"Iron\""));
    EXPECT_TRUE(refuses("sample", "9:0:5", "there is no variable \"9\""));
    EXPECT_TRUE(refuses("sample", "0:0:5", "there is no variable \"0\""));
    EXPECT_TRUE(refuses("sample", "2:a:5", "doesn't read as a number"));
    EXPECT_TRUE(refuses("sample", "2:0:inf", "doesn't read as a number"));
    EXPECT_TRUE(refuses("sample", "\"2:0:5", "variable:minimum:maximum"));
    EXPECT_TRUE(refuses("sample", "::", "there is no variable"));
}

TEST_F(SetCriterion, RequiredVariablesAreMaskListAndCount)
{
    EXPECT_EQ(set("require", "Temperature:1"), "");
    EXPECT_EQ(criteria.requiredCount, 2);
    EXPECT_EQ(criteria.requiredList[0], 1);
    EXPECT_EQ(criteria.requiredList[1], 2);
    EXPECT_EQ(std::string(criteria.requiredMask), "++" + std::string(48, ' '));
    EXPECT_EQ(set("require", "4"), "");
    EXPECT_EQ(criteria.requiredCount, 1);
    EXPECT_EQ(criteria.requiredList[0], 4);
    EXPECT_EQ(criteria.requiredList[1], 0);
    EXPECT_EQ(std::string(criteria.requiredMask), "   +" + std::string(46, ' '));
    EXPECT_EQ(set("require", "none"), "");
    EXPECT_FALSE(stationCriteriaDiffer(criteria, collection::defaultCriteria()));
}

TEST_F(SetCriterion, ARequiredVariableCountsOnce)
{
    EXPECT_EQ(set("require", "2:Temperature:2"), "");
    EXPECT_THAT(collection::requiredVariables(criteria), ElementsAre(2));
}

TEST_F(SetCriterion, RequiredLabelsMayHoldAColonAndQuotes)
{
    EXPECT_EQ(set("require", "Depth:d18O:x:Temperature"), "");
    EXPECT_THAT(collection::requiredVariables(criteria), ElementsAre(1, 2, 3));
    EXPECT_EQ(set("require", "\"d18O:x\":\"Depth [m]\""), "");
    EXPECT_THAT(collection::requiredVariables(criteria), ElementsAre(1, 3));
}

TEST_F(SetCriterion, RequiredVariablesThatThereAreNoneOfAreRefused)
{
    EXPECT_TRUE(refuses("require", "", "missing"));
    EXPECT_TRUE(refuses("require", "Depth:Iron", "there is no variable \"Iron\""));
    EXPECT_TRUE(refuses("require", "Depth:", "there is no variable \"\""));
    EXPECT_TRUE(refuses("require", "7", "there is no variable \"7\""));
    EXPECT_TRUE(refuses("require", "Depth:Sigma-0", "\"Sigma-0 [kg/m^3]\" is derived"));
}

TEST_F(SetCriterion, PolygonOfAFileIsTheDomain)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string file = directory.path() + "p.txt";
    ASSERT_TRUE(common::writeFile(file, "-30 10\n20 10\n20 40\n"));
    EXPECT_EQ(set("polygon", file), "");
    EXPECT_EQ(criteria.usePolygon, 1);
    EXPECT_EQ(polygon.nPoints, 4);
    EXPECT_EQ(criteria.lonMin, -30);
    EXPECT_EQ(criteria.lonMax, 20);
    EXPECT_EQ(criteria.latMin, 10);
    EXPECT_EQ(criteria.latMax, 40);
    EXPECT_EQ(set("polygon", "none"), "");
    EXPECT_EQ(criteria.usePolygon, 0);
    EXPECT_EQ(criteria.lonMin, 0); // the rectangle around it goes as well
    EXPECT_EQ(criteria.lonMax, 360);
    EXPECT_EQ(criteria.latMin, -90);
    EXPECT_EQ(criteria.latMax, 90);
}

TEST_F(SetCriterion, APolygonThatCantBeReadChangesNothing)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string file = directory.path() + "p.txt";
    ASSERT_TRUE(common::writeFile(file, "1 2\n3 x\n"));
    EXPECT_TRUE(refuses("polygon", file, file + ":2: the latitude \"x\" doesn't read as a number"));
    EXPECT_TRUE(refuses("polygon", directory.path() + "none.txt", "can't be read"));
    EXPECT_TRUE(refuses("polygon", "", "missing"));
    EXPECT_EQ(polygon.nPoints, 0);
}

// --- what differs

TEST(CriteriaChange, EachFieldIsTheStationsOrTheSamples)
{
    const SELECTIONCRITERIA base = collection::defaultCriteria();
    const auto differ = [&](auto change) {
        SELECTIONCRITERIA other = base;
        change(other);
        return std::pair(stationCriteriaDiffer(base, other), sampleCriteriaDiffer(base, other));
    };
    const std::pair stations(true, false), samples(false, true);
    EXPECT_EQ(differ([](auto&) {}), std::pair(false, false));
    EXPECT_EQ(differ([](auto& c) { c.cruisePattern[0] = 'A'; }), stations);
    EXPECT_EQ(differ([](auto& c) { c.stationType[0] = 'B'; }), stations);
    EXPECT_EQ(differ([](auto& c) { c.stationLabelTo[19] = 0; }), stations);
    EXPECT_EQ(differ([](auto& c) { c.yearMax = 2000; }), stations);
    EXPECT_EQ(differ([](auto& c) { c.bottomMin = 0; }), stations);
    EXPECT_EQ(differ([](auto& c) { c.months[11] = ' '; }), stations);
    EXPECT_EQ(differ([](auto& c) { c.requiredCount = 1; }), stations);
    EXPECT_EQ(differ([](auto& c) { c.latMax = 80; }), stations);
    EXPECT_EQ(differ([](auto& c) { c.usePolygon = 1; }), stations);
    EXPECT_EQ(differ([](auto& c) { c.stationNumberMax = 7; }), stations);
    EXPECT_EQ(differ([](auto& c) { c.qualityLimit = 4; }), samples);
    EXPECT_EQ(differ([](auto& c) { c.sampleVariable = 1; }), samples);
    EXPECT_EQ(differ([](auto& c) { c.sampleMin = -1; }), samples);
    EXPECT_EQ(differ([](auto& c) { c.sampleMax = 1; }), samples);
}

TEST(CriteriaChange, APolygonCountsOnlyWhereItIsUsed)
{
    SELECTIONCRITERIA criteria = collection::defaultCriteria();
    DOMAINPOLYGON a, b;
    a.nPoints = b.nPoints = 4;
    b.lat[2] = 1;
    EXPECT_FALSE(changeBetween(criteria, a, criteria, b).any());
    criteria.usePolygon = 1;
    EXPECT_TRUE(changeBetween(criteria, a, criteria, b).stations);
    b.lat[2] = 0;
    b.lat[4] = 1; // behind its end
    EXPECT_FALSE(changeBetween(criteria, a, criteria, b).any());
}

TEST(CriteriaChange, PutInForceSetsTheQualityLimitAndMarksTheConfiguration)
{
    collection::RCollection collection;
    SELECTIONCRITERIA criteria = collection.criteria;
    EXPECT_FALSE(putInForce(collection, criteria, collection.polygon).any());
    EXPECT_FALSE(collection.configChanged);
    criteria.qualityLimit = 4;
    const CRITERIACHANGE change = putInForce(collection, criteria, collection.polygon);
    EXPECT_TRUE(change.samples && !change.stations);
    EXPECT_EQ(collection.qualityLimit, 4);
    EXPECT_EQ(collection.criteria.qualityLimit, 4);
    EXPECT_TRUE(collection.configChanged);
}

TEST(CriteriaChange, ALimitThatIsOutOfStepIsBroughtIntoForce)
{
    collection::RCollection collection;
    collection.qualityLimit = 1;
    EXPECT_TRUE(putInForce(collection, collection.criteria, collection.polygon).samples);
    EXPECT_EQ(collection.qualityLimit, 8);
}

} // namespace
} // namespace selection
