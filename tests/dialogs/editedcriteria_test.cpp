#include "dialogs/editedcriteria.h"

#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/text.h"
#include "selection/setcriterion.h"

namespace {

using collection::SELECTIONCRITERIA;
using dialogs::CriterionField;
using testing::ElementsAre;

constexpr CriterionField allFields[] = {
    CriterionField::cruise,       CriterionField::labelFrom,  CriterionField::labelTo,
    CriterionField::internalFrom, CriterionField::internalTo, CriterionField::dayFrom,
    CriterionField::dayTo,        CriterionField::yearFrom,   CriterionField::yearTo,
    CriterionField::bottomFrom,   CriterionField::bottomTo,   CriterionField::lastFrom,
    CriterionField::lastTo,       CriterionField::sampleFrom, CriterionField::sampleTo,
    CriterionField::south,        CriterionField::north};

bool areSame(const SELECTIONCRITERIA& a, const SELECTIONCRITERIA& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

class EditedCriteria : public testing::Test {
protected:
    EditedCriteria()
    {
        for (const char* const label : {"", "Depth [m]", "NO~_3 [~$m~#mol/l]", "Sigma-0 [kg/m^3]"}) {
            variables.push_back(collection::emptyVariable(static_cast<int>(variables.size())));
            collection::setLabel(variables.back(), label);
        }
        variables[1].rangeMin = 0;
        variables[1].rangeMax = 5500.5f;
    }
    void take(CriterionField field, const char* text)
    {
        dialogs::takeCriterion(criteria, field, QString::fromUtf8(text));
    }
    std::string shown(CriterionField field) { return dialogs::criterionText(criteria, field).toStdString(); }
    std::pair<int, int> numbers(const char* from, const char* to)
    {
        dialogs::takeNumbers(criteria, QString::fromUtf8(from), QString::fromUtf8(to));
        return {criteria.stationNumberMin, criteria.stationNumberMax};
    }
    std::pair<float, float> longitudes(const char* west, const char* east)
    {
        dialogs::takeLongitudes(criteria, QString::fromUtf8(west), QString::fromUtf8(east));
        return {criteria.lonMin, criteria.lonMax};
    }
    SELECTIONCRITERIA criteria = collection::defaultCriteria();
    std::vector<collection::VARINFO> variables;
};

TEST_F(EditedCriteria, WhatIsShownAndTakenBackChangesNothing)
{
    for (int round = 0; round < 2; ++round) {
        const SELECTIONCRITERIA before = criteria;
        for (const CriterionField field : allFields)
            dialogs::takeCriterion(criteria, field, dialogs::criterionText(criteria, field));
        dialogs::takeNumbers(criteria, dialogs::numberFromText(criteria), dialogs::numberToText(criteria));
        dialogs::takeLongitudes(criteria, dialogs::westText(criteria), dialogs::eastText(criteria));
        EXPECT_TRUE(areSame(before, criteria));
        // Numbers of more digits than are shown.
        criteria.lonMin = -30.123456f;
        criteria.latMax = 60.987654f;
        criteria.sampleVariable = 1;
        criteria.sampleMin = 35.123456f;
        criteria.sampleMax = selection::anyValue;
        criteria.stationNumberMin = 3;
        criteria.stationNumberMax = selection::anyLabelNumber;
    }
}

TEST_F(EditedCriteria, BoundsThatAreNoLimitsAreEmpty)
{
    for (const CriterionField field :
         {CriterionField::labelFrom, CriterionField::labelTo, CriterionField::internalTo,
          CriterionField::yearFrom, CriterionField::yearTo, CriterionField::bottomFrom,
          CriterionField::lastTo, CriterionField::sampleFrom})
        EXPECT_EQ(shown(field), "");
    EXPECT_EQ(shown(CriterionField::cruise), "*");
    EXPECT_EQ(shown(CriterionField::dayTo), "31");
    EXPECT_EQ(shown(CriterionField::internalFrom), "1");
}

TEST_F(EditedCriteria, AnEmptyFieldIsNoLimit)
{
    const SELECTIONCRITERIA before = criteria;
    for (const auto& [field, text] : {std::pair{CriterionField::yearFrom, "1990"},
                                      {CriterionField::dayTo, "5"},
                                      {CriterionField::labelTo, "99"},
                                      {CriterionField::cruise, "A*"},
                                      {CriterionField::bottomTo, "-7"}}) {
        take(field, text);
        EXPECT_EQ(shown(field), text);
        take(field, " ");
    }
    EXPECT_TRUE(areSame(before, criteria));
}

TEST_F(EditedCriteria, BadNumbersLeaveTheOldValue)
{
    take(CriterionField::yearFrom, "1990");
    take(CriterionField::dayFrom, "10");
    const SELECTIONCRITERIA before = criteria;
    for (const char* const bad : {"abc", "12x", "1.5", "99999999999", "-", "1 2"}) {
        take(CriterionField::yearFrom, bad);
        take(CriterionField::dayFrom, bad);
        take(CriterionField::internalFrom, bad);
    }
    take(CriterionField::dayFrom, "32");
    take(CriterionField::internalFrom, "0");
    take(CriterionField::north, "91");
    take(CriterionField::north, "");
    take(CriterionField::south, "x");
    take(CriterionField::sampleFrom, "5"); // without a variable
    EXPECT_TRUE(areSame(before, criteria));
}

TEST_F(EditedCriteria, LabelsHave20BytesAndTheirCoding)
{
    take(CriterionField::cruise, " M\u00E9t\u00E9or ");
    EXPECT_STREQ(criteria.cruisePattern, "M\xE9t\xE9or");
    EXPECT_EQ(shown(CriterionField::cruise), "M\u00E9t\u00E9or");
    take(CriterionField::cruise, "123456789012345678901");
    EXPECT_STREQ(criteria.cruisePattern, "12345678901234567890");
}

TEST_F(EditedCriteria, LabelsAsNumbersNeedOneBoundOnly)
{
    EXPECT_EQ(numbers("5", ""), std::pair(5, selection::anyLabelNumber));
    EXPECT_EQ(dialogs::numberToText(criteria), QString());
    EXPECT_EQ(numbers("", "9"), std::pair(0, 9));
    EXPECT_EQ(numbers("0", "9x"), std::pair(0, 9));
    EXPECT_EQ(numbers("-3", "12"), std::pair(0, 12));
    EXPECT_EQ(numbers("", ""), std::pair(-1, -1));
    EXPECT_EQ(numbers("0", ""), std::pair(0, selection::anyLabelNumber));
    EXPECT_EQ(numbers("", ""), std::pair(-1, -1));
    EXPECT_EQ(numbers("x", ""), std::pair(-1, -1));
}

TEST_F(EditedCriteria, LongitudesRunOver0AndStayWhereTheyCantBeRead)
{
    EXPECT_EQ(longitudes("350", "20"), std::pair(-10.0f, 20.0f));
    EXPECT_EQ(longitudes("-30,5", "20"), std::pair(-30.5f, 20.0f));
    EXPECT_EQ(longitudes("west", "30"), std::pair(-30.5f, 30.0f));
    EXPECT_EQ(longitudes("", "9999"), std::pair(-30.5f, 30.0f));
    EXPECT_EQ(longitudes("-300", "300"), std::pair(-30.5f, 30.0f));
}

TEST_F(EditedCriteria, DomainOfAMapDropsThePolygon)
{
    criteria.usePolygon = 1;
    dialogs::setDomain(criteria, {-30, 20, -10, 60});
    EXPECT_EQ(criteria.usePolygon, 0);
    EXPECT_EQ(criteria.lonMin, -30);
    EXPECT_EQ(criteria.latMax, 60);
}

TEST_F(EditedCriteria, RelaxingTheDateTakesYears1900To2100)
{
    criteria.dayMin = 5;
    criteria.months[3] = ' ';
    dialogs::relaxDate(criteria);
    EXPECT_EQ(criteria.dayMin, 1);
    EXPECT_EQ(criteria.dayMax, 31);
    EXPECT_EQ(criteria.yearMin, 1900);
    EXPECT_EQ(criteria.yearMax, 2100);
    EXPECT_STREQ(criteria.months, "++++++++++++");
}

TEST_F(EditedCriteria, RelaxingTheNamesKeepsTheType)
{
    take(CriterionField::cruise, "A");
    take(CriterionField::labelFrom, "1");
    take(CriterionField::labelTo, "2");
    criteria.stationType[0] = 'B';
    dialogs::relaxNames(criteria);
    EXPECT_STREQ(criteria.cruisePattern, "*");
    EXPECT_STREQ(criteria.stationLabelFrom, "");
    EXPECT_STREQ(criteria.stationLabelTo, "zzzzzzzzzzzzzzzzzzzz");
    EXPECT_STREQ(criteria.stationType, "B");
}

TEST_F(EditedCriteria, RelaxingSamplesAndAvailabilityGivesTheDefaults)
{
    const SELECTIONCRITERIA before = criteria;
    collection::setRequiredVariables(criteria, std::vector<int>{1, 2});
    dialogs::setSampleVariable(criteria, variables, 1);
    criteria.qualityLimit = 0;
    dialogs::relaxAvailability(criteria);
    dialogs::relaxSamples(criteria);
    EXPECT_TRUE(areSame(before, criteria));
}

TEST_F(EditedCriteria, SeasonsSetThreeMonths)
{
    dialogs::selectSeason(criteria, "fall");
    EXPECT_STREQ(criteria.months, "         +++");
    dialogs::selectMonth(criteria, 0, true);
    dialogs::selectMonth(criteria, 11, false);
    dialogs::selectMonth(criteria, 12, true);
    EXPECT_STREQ(criteria.months, "+        ++ ");
    EXPECT_TRUE(dialogs::monthIsSelected(criteria, 0));
    EXPECT_FALSE(dialogs::monthIsSelected(criteria, 11));
}

TEST_F(EditedCriteria, ANewSampleVariableBringsTheRangeOfItsValues)
{
    dialogs::setSampleVariable(criteria, variables, 1);
    EXPECT_EQ(criteria.sampleMin, 0);
    EXPECT_EQ(criteria.sampleMax, 5500.5f);
    take(CriterionField::sampleTo, "100");
    dialogs::setSampleVariable(criteria, variables, 1); // the same
    EXPECT_EQ(criteria.sampleMax, 100);
    dialogs::setSampleVariable(criteria, variables, 3); // values not known
    EXPECT_EQ(shown(CriterionField::sampleFrom), "");
    EXPECT_EQ(criteria.sampleMin, -selection::anyValue);
    take(CriterionField::sampleFrom, "26,5");
    EXPECT_EQ(criteria.sampleMin, 26.5f);
    dialogs::setSampleVariable(criteria, variables, 0);
    EXPECT_TRUE(areSame(criteria, collection::defaultCriteria()));
    dialogs::setSampleVariable(criteria, variables, 77);
    EXPECT_EQ(criteria.sampleVariable, 0);
}

TEST_F(EditedCriteria, VariablesAreShownWithoutMarkup)
{
    EXPECT_THAT(dialogs::variableLines(variables),
                ElementsAre(QStringLiteral("1: Depth [m]"), QStringLiteral("2: NO3 [umol/l]"),
                            QStringLiteral("3: Sigma-0 [kg/m^3]")));
    EXPECT_EQ(dialogs::valuesText(variables, 1), QStringLiteral("Values are 0 to 5500.5"));
    EXPECT_EQ(dialogs::valuesText(variables, 2), QString());
    EXPECT_EQ(dialogs::valuesText(variables, 0), QString());
}

TEST_F(EditedCriteria, ContradictionsAreTold)
{
    const auto told = [](auto change) {
        SELECTIONCRITERIA one = collection::defaultCriteria();
        change(one);
        return dialogs::contradiction(one).toStdString();
    };
    using testing::HasSubstr;
    EXPECT_EQ(told([](auto&) {}), "");
    EXPECT_THAT(told([](auto& c) { c.dayMin = 20, c.dayMax = 10; }), HasSubstr("the days end"));
    EXPECT_THAT(told([](auto& c) { c.yearMin = 2000, c.yearMax = 1990; }), HasSubstr("the years end"));
    EXPECT_THAT(told([](auto& c) { c.internalMax = 0; }), HasSubstr("internal numbers"));
    EXPECT_THAT(told([](auto& c) { common::copyText(c.months, "            "); }), HasSubstr("no month"));
    EXPECT_THAT(told([](auto& c) { c.latMin = 50, c.latMax = 40; }), HasSubstr("southern end"));
    EXPECT_THAT(told([](auto& c) { c.bottomMin = 5, c.bottomMax = 4; }), HasSubstr("bottom depths"));
    EXPECT_THAT(told([](auto& c) { c.lastDepthMin = 5, c.lastDepthMax = 4; }), HasSubstr("last sample"));
    EXPECT_THAT(told([](auto& c) { c.stationNumberMin = 5, c.stationNumberMax = 4; }),
                HasSubstr("as numbers"));
    EXPECT_THAT(told([](auto& c) {
                    common::copyText(c.stationLabelFrom, "100");
                    common::copyText(c.stationLabelTo, "99");
                }),
                HasSubstr("longer than the last"));
}

TEST_F(EditedCriteria, PolygonIsToldWithItsCorners)
{
    collection::DOMAINPOLYGON polygon;
    polygon.nPoints = 8;
    EXPECT_THAT(dialogs::polygonText(criteria, polygon).toStdString(), testing::StartsWith("No polygon"));
    criteria.usePolygon = 1;
    EXPECT_THAT(dialogs::polygonText(criteria, polygon).toStdString(), testing::HasSubstr("7 corners"));
}

} // namespace
