#include "dialogs/hvarassoc.h"

#include <QInputDialog>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialogs/deflinconversion.h"
#include "dialogs/selconversion.h"
#include "nextdialog.h"
#include "variables.h"
#include "variables/timeconversions.h"

namespace {

using dialogs::hvarassocDlg;
using importing::SPREADSHEETDESC;
using testing::ElementsAre;
using testing_support::answerNext;
using testing_support::BOX;
using testing_support::child;
using testing_support::linesOf;
using testing_support::withNext;

enum Row { cruise, station, type, date, time, longitude, latitude, bottom };

class HeaderVariables : public testing::Test {
protected:
    // With the columns that were found by their labels.
    void open(const std::vector<std::string>& labels)
    {
        SPREADSHEETDESC desc = importing::defaultDescription("/data/sea.txt");
        desc.defYear = 2024;
        desc.defMonth = 7;
        desc.defDay = 4;
        (void)importing::findMetaColumns(desc, labels, false, false);
        dialog = std::make_unique<hvarassocDlg>(desc, labels);
        dialog->show();
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    QListWidget& list(const char* name) { return child<QListWidget>(*dialog, name); }
    bool isOn(const char* button) { return child<QPushButton>(*dialog, button).isEnabled(); }
    void press(const char* button) { child<QPushButton>(*dialog, button).click(); }
    void select(int column, int meta)
    {
        if (meta >= 0) list("targets").setCurrentRow(meta);
        if (column >= 0) list("sources").setCurrentRow(column);
    }
    std::string hint() { return child<QLabel>(*dialog, "hint").text().toStdString(); }
    void takeRow(int row)
    {
        withNext<dialogs::selconversionDlg>([row](auto& conversions) {
            child<QListWidget>(conversions, "rows").setCurrentRow(row);
            conversions.processOK();
        });
    }
    // Answers the next one-line dialog; what it asked and proposed.
    void enter(const char* text)
    {
        withNext<QDialog>([this, text](QDialog& line) {
            auto* const field = line.findChild<QLineEdit*>();
            prompt = line.findChild<QLabel*>()->text().toStdString();
            preset = field->text().toStdString();
            field->setText(QString::fromUtf8(text));
            line.accept();
        });
    }
    void setDefault(int meta, const char* text)
    {
        select(-1, meta);
        ASSERT_TRUE(isOn("PB_Default"));
        enter(text);
        press("PB_Default");
    }

    std::unique_ptr<hvarassocDlg> dialog;
    std::string prompt, preset;
};

TEST_F(HeaderVariables, ShowsColumnsWithTheirNumbersAndWhatTheyMean)
{
    open({"station", "x", "Cruise"});
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Header Variable Association");
    EXPECT_THAT(linesOf(list("sources")), ElementsAre("* 1: station", "  2: x", "* 3: Cruise"));
    EXPECT_THAT(linesOf(list("targets")),
                ElementsAre("* Cruise", "* Station", "  Type", "  mon/day/yr", "  hh:mm", "  Lon (°E)",
                            "  Lat (°N)", "  Bot. Depth [m]"));
}

TEST_F(HeaderVariables, AssociatesAndUndoesAColumn)
{
    open({"east", "north", "t"});
    select(0, longitude);
    press("PB_Associate");
    SPREADSHEETDESC desc = dialog->desc();
    EXPECT_EQ(desc.metaColumn[longitude], 0);
    EXPECT_EQ(desc.role[0], longitude);
    EXPECT_EQ(desc.convId[longitude], -1);
    EXPECT_EQ(desc.nMeta, 1);
    EXPECT_THAT(linesOf(list("sources")), ElementsAre("* 1: east", "  2: north", "  3: t"));
    EXPECT_EQ(hint(), "Lon (°E) is read from column 1");
    press("PB_Undo");
    desc = dialog->desc();
    EXPECT_EQ(desc.metaColumn[longitude], -1);
    EXPECT_EQ(desc.role[0], -1);
    EXPECT_EQ(desc.nMeta, 0);
}

TEST_F(HeaderVariables, OnlyDatesTimesAndNumbersCanBeConverted)
{
    open({"a"});
    for (int meta = 0; meta < importing::metaCount; ++meta) {
        select(0, meta);
        EXPECT_TRUE(isOn("PB_Associate"));
        EXPECT_EQ(isOn("PB_Convert"), meta >= date) << meta;
    }
}

TEST_F(HeaderVariables, TheTwentyTwoConversionsAreOffered)
{
    open({"day"});
    select(0, date);
    std::string title;
    std::size_t rows = 0;
    withNext<dialogs::selconversionDlg>([&](auto& conversions) {
        title = conversions.windowTitle().toStdString();
        rows = linesOf(child<QListWidget>(conversions, "rows")).size();
        conversions.reject();
    });
    press("PB_Convert");
    EXPECT_EQ(title, "Conversion day -> mon/day/yr");
    EXPECT_EQ(rows, 22U);
    EXPECT_EQ(dialog->desc().metaColumn[date], -1); // cancelled
}

TEST_F(HeaderVariables, AConversionIsStoredByItsId)
{
    open({"day"});
    select(0, date);
    takeRow(3); // "day as %Y%m%d", the second of id 2
    press("PB_Convert");
    EXPECT_EQ(dialog->desc().convId[date], 2);
    EXPECT_EQ(dialog->desc().metaColumn[date], 0);
}

TEST_F(HeaderVariables, ADateThatCountsSinceSomeDayTakesItsConversionWithoutAsking)
{
    open({"x", "HOURS since 2000-01-02"});
    EXPECT_EQ(dialog->desc().convId[date], variables::hoursSinceRow); // found by its label
    select(-1, date);
    EXPECT_EQ(hint(), "mon/day/yr is read from column 2 (hours since yyyy-mm-dd hh:mm:ss)");
    press("PB_Undo");
    EXPECT_EQ(dialog->desc().convId[date], -1);
    press("PB_Convert"); // no dialog comes up
    EXPECT_EQ(dialog->desc().convId[date], variables::hoursSinceRow);
    double day = 0;
    ASSERT_TRUE(variables::referenceDayOf("hours since 2000-01-02", day));
    EXPECT_EQ(dialog->desc().referenceDay[date], day);
    press("PB_Undo");
    press("PB_Associate"); // as a plain date nothing could be read
    EXPECT_EQ(dialog->desc().convId[date], variables::hoursSinceRow);
    EXPECT_EQ(dialog->desc().referenceDay[date], day);
}

TEST_F(HeaderVariables, AnOriginThatTheLabelDoesNotTellIsAsked)
{
    open({"days"});
    select(0, date);
    takeRow(18); // days since
    withNext<QInputDialog>([](QInputDialog& line) {
        EXPECT_EQ(line.textValue().toStdString(), "1950-01-01 00:00:00");
        line.setTextValue(QStringLiteral("1970-01-01 12:00:00"));
        line.accept();
    });
    press("PB_Convert");
    double day = 0;
    ASSERT_TRUE(variables::referenceDayOf("days since 1970-01-01 12:00:00", day));
    EXPECT_EQ(dialog->desc().convId[date], variables::daysSinceRow);
    EXPECT_EQ(dialog->desc().referenceDay[date], day);
}

TEST_F(HeaderVariables, AnOriginThatIsNoDateIsTold)
{
    open({"days"});
    select(0, date);
    takeRow(18);
    withNext<QInputDialog>([](QInputDialog& line) {
        line.setTextValue(QStringLiteral("long ago"));
        line.accept();
    });
    BOX said;
    answerNext("&OK", &said);
    press("PB_Convert");
    EXPECT_EQ(said.text, "This is no date: long ago");
    EXPECT_EQ(dialog->desc().metaColumn[date], -1);
}

TEST_F(HeaderVariables, GeneralLinearAsksForItsNumbers)
{
    open({"fathoms"});
    select(0, bottom);
    takeRow(1);
    withNext<dialogs::deflinconversionDlg>([](auto& numbers) {
        child<QLineEdit>(numbers, "a").setText(QStringLiteral("1.8288"));
        numbers.processOK();
    });
    press("PB_Convert");
    EXPECT_EQ(dialog->desc().convId[bottom], 1);
    EXPECT_EQ(dialog->desc().convA[bottom], 1.8288f);
    EXPECT_EQ(dialog->desc().convB[bottom], 0);
    EXPECT_EQ(hint(), "Bot. Depth [m] is read from column 1 (1.8288 x + 0)");
}

TEST_F(HeaderVariables, AConversionThatGivesNothingForTheTargetIsRefused)
{
    open({"a"});
    for (const auto& [meta, row] : {std::pair(longitude, 2), std::pair(date, 1)}) {
        select(0, meta);
        takeRow(row);
        BOX said;
        answerNext("&OK", &said);
        press("PB_Convert");
        EXPECT_NE(said.text.find("gives no value"), std::string::npos);
        EXPECT_EQ(dialog->desc().nMeta, 0);
    }
}

// --- defaults

TEST_F(HeaderVariables, DefaultsAreAskedWithTheirPrompts)
{
    open({"a"});
    setDefault(cruise, "Süd 12345678901234567890");
    EXPECT_EQ(prompt, "Enter Default Cruise Label:");
    EXPECT_EQ(preset, "sea");
    setDefault(station, "7.50");
    EXPECT_EQ(prompt, "Enter Default Station Label:");
    setDefault(type, "Bottle");
    EXPECT_EQ(prompt, "Enter Default Station Type:");
    EXPECT_EQ(preset, "*");
    setDefault(date, "12/31/99");
    EXPECT_EQ(prompt, "Enter Default Date (mm/dd/yyyy):");
    EXPECT_EQ(preset, "07/04/2024");
    setDefault(time, "7:5");
    EXPECT_EQ(prompt, "Enter Default Time (hh.sMM):");
    EXPECT_EQ(preset, "00:00");
    setDefault(longitude, "-12,5");
    EXPECT_EQ(prompt, "Enter Default Longitude (°E):");
    setDefault(latitude, "54.25");
    EXPECT_EQ(prompt, "Enter Default Latitude (°N):");
    setDefault(bottom, "4000");
    EXPECT_EQ(prompt, "Enter Default Bot. Depth [m]:");
    const SPREADSHEETDESC desc = dialog->desc();
    EXPECT_STREQ(desc.defCruise, "S\xFC"
                                 "d 1234567890123456");
    EXPECT_STREQ(desc.defStation, "7.5"); // by the rule of labels
    EXPECT_STREQ(desc.defType, "B");
    EXPECT_THAT((std::vector<int>{desc.defYear, desc.defMonth, desc.defDay, desc.defHour, desc.defMinute}),
                ElementsAre(1999, 12, 31, 7, 5));
    EXPECT_EQ(desc.defLon, -12.5f);
    EXPECT_EQ(desc.defLat, 54.25f);
    EXPECT_EQ(desc.defBotDepth, 4000);
}

TEST_F(HeaderVariables, WhatDoesNotReadAsTheDefaultIsToldAndChangesNothing)
{
    open({"a"});
    const std::vector<std::pair<int, const char*>> wrong = {
        {date, "13/01/2000"}, {date, "2000-01-01"}, {date, "1/2/3/4"}, {date, "1/2"},     {date, "1/32/2000"},
        {time, "24:00"},      {time, "noon"},       {time, "12"},      {longitude, "E9"}, {longitude, "361"},
        {latitude, "90.5"},   {latitude, ""},       {bottom, "nan"},   {bottom, "1e30"}};
    const SPREADSHEETDESC before = dialog->desc();
    for (const auto& [meta, text] : wrong) {
        BOX said;
        answerNext("&OK", &said);
        setDefault(meta, text);
        EXPECT_NE(said.text.find("This is no value for"), std::string::npos) << text;
    }
    const SPREADSHEETDESC after = dialog->desc();
    EXPECT_EQ(after.defMonth, before.defMonth);
    EXPECT_EQ(after.defHour, before.defHour);
    EXPECT_EQ(after.defLon, before.defLon);
    EXPECT_EQ(after.defLat, before.defLat);
    EXPECT_EQ(after.defBotDepth, before.defBotDepth);
}

TEST_F(HeaderVariables, AColumnNeedsNoDefault)
{
    open({"Cruise"});
    select(-1, cruise);
    EXPECT_FALSE(isOn("PB_Default"));
    select(-1, latitude);
    EXPECT_TRUE(isOn("PB_Default"));
    EXPECT_EQ(hint(), "Lat (°N) is 0 for all stations");
    select(-1, station);
    EXPECT_EQ(hint(), "Stations are labelled by their running number");
}

TEST_F(HeaderVariables, MoreColumnsThanCanBeReadAreNotOffered)
{
    open(std::vector<std::string>(300, "a"));
    EXPECT_EQ(list("sources").count(), importing::maxColumns);
}

TEST_F(HeaderVariables, LabelsOfFilesAreShownAsTheyAre)
{
    open({"<b>x</b> &y", std::string(5000, 'z')});
    EXPECT_EQ(list("sources").item(0)->text().toStdString(), "  1: <b>x</b> &y");
    EXPECT_LE(list("sources").item(1)->text().size(), 1000);
    EXPECT_LE(dialog->width(), 1000);
}

TEST_F(HeaderVariables, EnterTakesAndEscapeDoesNot)
{
    open({"a"});
    QTest::keyClick(&list("targets"), Qt::Key_Return);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    open({"a"});
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
}

} // namespace
