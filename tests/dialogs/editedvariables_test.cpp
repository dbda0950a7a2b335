#include "dialogs/editedvariables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/limits.h"

namespace {

using dialogs::VariableList;
using testing::ElementsAre;

VariableList listOf(std::initializer_list<const char*> labels)
{
    VariableList list{collection::emptyVariable(0)};
    for (const char* const label : labels) {
        list.push_back(collection::emptyVariable(static_cast<int>(list.size())));
        collection::setLabel(list.back(), label);
        list.back().assocSource = static_cast<int>(list.size()) - 1;
    }
    return list;
}

std::vector<std::string> labels(const VariableList& list)
{
    std::vector<std::string> all;
    for (std::size_t v = 1; v < list.size(); ++v) all.push_back(dialogs::labelOf(list[v]).toStdString());
    return all;
}

std::string renamed(const QString& text)
{
    collection::VARINFO variable = collection::emptyVariable(1);
    dialogs::renameVariable(variable, text);
    return variable.label;
}

TEST(EditedVariables, NewOneStandsBehindTheCurrentAndTakesNoData)
{
    VariableList list = listOf({"a", "b"});
    EXPECT_EQ(dialogs::addVariable(list, 1), 2);
    EXPECT_THAT(labels(list), ElementsAre("a", "New Variable []", "b"));
    EXPECT_EQ(list[2].assocSource, 0);
    EXPECT_EQ(list[3].assocSource, 2);
    EXPECT_EQ(list[3].position, 3);
    EXPECT_EQ(dialogs::addVariable(list, 99), 4);
    EXPECT_EQ(dialogs::addVariable(list, 0), 1);
}

TEST(EditedVariables, FiftyAreAcceptedTheNextIsNot)
{
    VariableList list;
    for (int i = 1; i <= common::maxVariables; ++i) EXPECT_EQ(dialogs::addVariable(list, i), i);
    EXPECT_EQ(dialogs::addVariable(list, 1), 0);
    EXPECT_EQ(dialogs::variableCountOf(list), 50);
}

TEST(EditedVariables, LastOneStays)
{
    VariableList list = listOf({"a", "b"});
    EXPECT_FALSE(dialogs::removeVariable(list, 3));
    EXPECT_TRUE(dialogs::removeVariable(list, 1));
    EXPECT_THAT(labels(list), ElementsAre("b"));
    EXPECT_EQ(list[1].position, 1);
    EXPECT_FALSE(dialogs::removeVariable(list, 1));
    EXPECT_FALSE(dialogs::removeVariable(list, 0));
}

TEST(EditedVariables, MovedOneTakesItsSourceAlong)
{
    VariableList list = listOf({"a", "b", "c"});
    EXPECT_TRUE(dialogs::moveVariable(list, 3, -1));
    EXPECT_THAT(labels(list), ElementsAre("a", "c", "b"));
    EXPECT_EQ(list[2].assocSource, 3);
    EXPECT_EQ(list[2].position, 2);
    EXPECT_FALSE(dialogs::moveVariable(list, 1, -1));
    EXPECT_FALSE(dialogs::moveVariable(list, 3, 1));
}

TEST(EditedVariables, LabelIsLatin1WhereItFits)
{
    EXPECT_EQ(renamed(QStringLiteral(" Temperature [°C] ")), "Temperature [\xB0"
                                                             "C]");
    EXPECT_EQ(renamed(QStringLiteral("Σ-2")), "Σ-2");
    EXPECT_EQ(renamed(QStringLiteral("a\tb\nc")), "a b c");
}

TEST(EditedVariables, LabelIsCutAtSixtyBytesAndAWholeCharacter)
{
    EXPECT_EQ(renamed(QString(80, QLatin1Char('x'))), std::string(60, 'x'));
    const std::string cut = renamed(QString(59, QLatin1Char('x')) + QStringLiteral("Σ"));
    EXPECT_EQ(cut, std::string(59, 'x'));
}

TEST(EditedVariables, RenamingSetsAllFormsOfTheLabel)
{
    collection::VARINFO variable = collection::emptyVariable(1);
    dialogs::renameVariable(variable, QStringLiteral("NO~_3 [~$m~#mol/l]"));
    EXPECT_STREQ(variable.plainLabel, "NO3 [umol/l]");
    EXPECT_STREQ(variable.shortLabel, "NO~_3");
    EXPECT_EQ(dialogs::plainOf(variable).toStdString(), "NO3 [umol/l]");
}

TEST(EditedVariables, FormatIsWidthAndDecimals)
{
    collection::VARINFO variable = collection::emptyVariable(1);
    EXPECT_EQ(dialogs::formatOf(variable).toStdString(), "8.2");
    EXPECT_TRUE(dialogs::setFormat(variable, QStringLiteral(" 10.3 ")));
    EXPECT_EQ(dialogs::formatOf(variable).toStdString(), "10.3");
    EXPECT_TRUE(dialogs::setFormat(variable, QStringLiteral("7")));
    EXPECT_EQ(dialogs::formatOf(variable).toStdString(), "7.0");
}

TEST(EditedVariables, FormatBeyondTheLimitsIsTheLimit)
{
    collection::VARINFO variable = collection::emptyVariable(1);
    for (const auto& [typed, taken] : {std::pair("1.2", "5.2"), std::pair("99.2", "17.2"),
                                       std::pair("8.9", "8.4"), std::pair("0.0", "3.0")}) {
        EXPECT_TRUE(dialogs::setFormat(variable, QLatin1StringView(typed)));
        EXPECT_EQ(dialogs::formatOf(variable).toStdString(), taken);
    }
}

TEST(EditedVariables, WhatIsNoFormatChangesNothing)
{
    collection::VARINFO variable = collection::emptyVariable(1);
    for (const char* const typed : {"", "wide", "8.", ".2", "8.2.1", "-8.2", "8,2", "8.-1", "1e2.1"}) {
        EXPECT_FALSE(dialogs::setFormat(variable, QLatin1StringView(typed))) << typed;
        EXPECT_EQ(dialogs::formatOf(variable).toStdString(), "8.2");
    }
}

TEST(EditedVariables, SameLabelsAreFoundWhateverTheirCase)
{
    EXPECT_EQ(dialogs::sameLabels(listOf({"a", "b", "A"})), std::pair(1, 3));
    EXPECT_EQ(dialogs::sameLabels(listOf({"a", "b"})), std::pair(0, 0));
    EXPECT_EQ(dialogs::sameLabels({}), std::pair(0, 0));
}

TEST(EditedVariables, FirstWithoutALabel)
{
    EXPECT_EQ(dialogs::unlabelled(listOf({"a", ""})), 2);
    EXPECT_EQ(dialogs::unlabelled(listOf({"a"})), 0);
}

TEST(EditedVariables, LostAreThoseThatNobodyTakes)
{
    VariableList list = listOf({"a", "b", "c"});
    EXPECT_THAT(dialogs::lostVariables(list, 3), testing::IsEmpty());
    list[1].assocSource = 2; // b twice, a no more
    list[3].assocSource = 0;
    EXPECT_THAT(dialogs::lostVariables(list, 3), ElementsAre(1, 3));
    EXPECT_THAT(dialogs::lostVariables(list, 0), testing::IsEmpty());
    EXPECT_THAT(dialogs::lostVariables({}, 2), ElementsAre(1, 2));
}

} // namespace
