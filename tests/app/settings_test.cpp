#include "app/settings.h"

#include <algorithm>

#include <gtest/gtest.h>

#include <QString>
#include <QtGlobal>

#include "common/files.h"
#include "temporarydirectory.h"

namespace {

using app::RSettingsFile;
using app::SETTINGS;

std::vector<std::string>& warnings()
{
    static std::vector<std::string> all;
    return all;
}

void keepWarning(QtMsgType, const QMessageLogContext&, const QString& text)
{
    warnings().push_back(text.toStdString());
}

class RWarningCatcher {
public:
    RWarningCatcher() : old_(qInstallMessageHandler(keepWarning)) { warnings().clear(); }
    ~RWarningCatcher() { qInstallMessageHandler(old_); }

private:
    QtMessageHandler old_;
};

SETTINGS settingsFrom(std::string_view text)
{
    RSettingsFile file;
    file.parse(text);
    SETTINGS settings;
    app::readSettings(file, settings);
    return settings;
}

TEST(SettingsFile, ReadsGroupsAndKeys)
{
    RSettingsFile file;
    file.parse("  [Setup]\n NVQMPHOME =  /opt/nvq = new \n\n[Font]\nfontName = Times\n");
    file.setGroup("Setup");
    EXPECT_EQ(file.value("NVQMPHOME", "none"), "/opt/nvq = new"); // only the first "=" splits
    EXPECT_EQ(file.value("NVQMPTEMP", "none"), "none");
    file.setGroup("Font");
    EXPECT_EQ(file.value("fontName", ""), "Times");
}

TEST(SettingsFile, KeyLineOutsideAGroupWarnsAndIsSkipped)
{
    const RWarningCatcher catcher;
    RSettingsFile file;
    file.parse("a = 1\n[G]\nb = 2\n");
    ASSERT_EQ(warnings().size(), 1u);
    EXPECT_EQ(warnings()[0], "line `a = 1' out of group");
    file.setGroup("G");
    EXPECT_EQ(file.value("b", 0), 2);
    EXPECT_EQ(file.value("a", 7), 7);
}

TEST(SettingsFile, LineWithoutEqualsWarns)
{
    const RWarningCatcher catcher;
    RSettingsFile file;
    file.parse("[G]\nnonsense\n");
    ASSERT_EQ(warnings().size(), 1u);
    EXPECT_EQ(warnings()[0], "corrupted line `nonsense' in group `G'");
}

TEST(SettingsFile, MissingFileWarnsAndChangesNothing)
{
    const RWarningCatcher catcher;
    RSettingsFile file;
    EXPECT_FALSE(file.read("/nowhere/.nvq"));
    ASSERT_EQ(warnings().size(), 1u);
    EXPECT_EQ(warnings()[0], "could not open for reading `/nowhere/.nvq'");
}

TEST(SettingsFile, UnwritablePlaceWarns)
{
    const RWarningCatcher catcher;
    RSettingsFile file;
    EXPECT_FALSE(file.write("/nowhere/.nvq"));
    ASSERT_EQ(warnings().size(), 1u);
    EXPECT_EQ(warnings()[0], "could not open for writing `/nowhere/.nvq'");
}

TEST(SettingsFile, OperationWithoutAGroupWarns)
{
    const RWarningCatcher catcher;
    RSettingsFile file;
    EXPECT_EQ(file.value("a", 3), 3);
    file.setValue("a", 4);
    ASSERT_EQ(warnings().size(), 2u);
    EXPECT_EQ(warnings()[0], "no group set");
}

TEST(SettingsFile, WhatIsWrittenReadsBack)
{
    const testing_support::RTemporaryDirectory folder;
    SETTINGS settings;
    settings.left = -7;
    settings.width = 900;
    settings.showMaximized = true;
    settings.fontScaleFac = 1.25f;
    settings.fontSizesKnown = true;
    settings.fontName = "Liberation Sans";
    settings.recentFiles[0] = "/data/a b.var";
    RSettingsFile out;
    app::storeSettings(settings, out);
    ASSERT_TRUE(out.write(folder.file(".nvq")));
    RSettingsFile in;
    ASSERT_TRUE(in.read(folder.file(".nvq")));
    SETTINGS back;
    app::readSettings(in, back);
    EXPECT_EQ(back.left, -7);
    EXPECT_EQ(back.width, 900);
    EXPECT_TRUE(back.showMaximized);
    EXPECT_FLOAT_EQ(back.fontScaleFac, 1.25f);
    EXPECT_EQ(back.fontName, "Liberation Sans");
    EXPECT_EQ(back.recentFiles[0], "/data/a b.var");
}

TEST(SettingsFile, SetupGroupIsKeptAndStandsFirst)
{
    RSettingsFile file;
    file.parse("[Setup]\nNVQMPHOME = /opt/nvq/\n[Other]\nx = 1\n");
    app::storeSettings(SETTINGS(), file);
    const std::string text = file.text();
    EXPECT_TRUE(text.starts_with("[Setup]\nNVQMPHOME = /opt/nvq/\n"));
    EXPECT_NE(text.find("[Other]\nx = 1\n"), std::string::npos);
    EXPECT_LT(text.find("[Geometry]"), text.find("[Settings]"));
    EXPECT_LT(text.find("[Settings]"), text.find("[Font]"));
    EXPECT_LT(text.find("[Font]"), text.find("[Recent Files]"));
}

TEST(Settings, DefaultsStandWithoutAFile)
{
    const SETTINGS settings = settingsFrom("");
    EXPECT_EQ(settings.setup.home, "_unknown_");
    EXPECT_EQ(settings.left, 10);
    EXPECT_EQ(settings.width, 620);
    EXPECT_EQ(settings.height, 460);
    EXPECT_EQ(settings.gazetteer, "GazetteerGEBCO.gzt");
    EXPECT_EQ(settings.fontName, "Arial");
    EXPECT_EQ(settings.psFontName, "Helvetica-BoldOblique");
    EXPECT_EQ(settings.fontWeight, 3);
    EXPECT_EQ(settings.fontItalic, 1);
}

TEST(Settings, SmallGazetteerMarkerReadsAsDefault)
{
    EXPECT_FLOAT_EQ(settingsFrom("[Settings]\nGazetteerMarkerSize = 0.05\n").gazetteerMarkerSize, 0.8f);
    EXPECT_FLOAT_EQ(settingsFrom("[Settings]\nGazetteerMarkerSize = 0.1\n").gazetteerMarkerSize, 0.1f);
}

TEST(SettingsFile, GroupsAreWrittenInTheirOrder)
{
    RSettingsFile file;
    file.parse("[Font]\nfontName = Times\n[Mine]\nx = 1\n[Geometry]\nLeft = 3\n");
    SETTINGS settings;
    app::readSettings(file, settings);
    app::storeSetup({"/opt/nvq/", "", "ann", "box"}, file);
    app::storeSettings(settings, file);
    const std::string text = file.text();
    std::vector<std::size_t> places;
    for (const char* const group : {"[Setup]\nNVQMPHOME = /opt/nvq/\nNVQMPTEMP = \nNVQMPUSER = ann\n"
                                    "NVQMPHOST = box\n",
                                    "[Geometry]\nLeft = 3\n", "[Settings]\n", "[Font]\nfontName = Times\n",
                                    "[Recent Files]\n", "[Mine]\nx = 1\n"})
        places.push_back(text.find(group));
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
    EXPECT_NE(places.back(), std::string::npos);
}

TEST(Settings, EmptySetupValuesReadBackAsEmpty)
{
    const SETTINGS settings = settingsFrom("[Setup]\nNVQMPHOME = /opt/nvq/\nNVQMPTEMP = \n");
    EXPECT_EQ(settings.setup.home, "/opt/nvq/");
    EXPECT_EQ(settings.setup.temp, "");
}

TEST(Settings, FontScaleFollowsTheScreenButNotBelowItsLimit)
{
    EXPECT_FLOAT_EQ(app::defaultFontScale(2160, 17), 2160 * 0.013f / 17);
    EXPECT_FLOAT_EQ(app::defaultFontScale(1080, 17), 0.85f);
    EXPECT_FLOAT_EQ(app::defaultFontScale(1080, 0), 0.85f);
}

TEST(Settings, TextPointsAreEightTimesTheScaleTruncated)
{
    EXPECT_EQ(app::defaultTextPoints(1.65f), 13);
    EXPECT_EQ(app::defaultTextPoints(1.0f), 8);
    EXPECT_EQ(app::defaultTextPoints(0.85f), 8);
}

TEST(Settings, SizesThatNoScreenGaveAreNotKept)
{
    RSettingsFile file;
    app::storeSettings(SETTINGS(), file);
    EXPECT_EQ(file.text().find("fontScaleFac"), std::string::npos);
    EXPECT_EQ(file.text().find("txtFontPtSize"), std::string::npos);
    SETTINGS settings = settingsFrom("[Font]\nfontScaleFac = 1.5\n");
    EXPECT_TRUE(settings.fontSizesKnown);
    app::storeSettings(settings, file);
    EXPECT_NE(file.text().find("fontScaleFac = 1.5\n"), std::string::npos);
    EXPECT_NE(file.text().find("txtFontPtSize = 8\n"), std::string::npos);
}

TEST(Settings, FontIsChosenAmongTheInstalledOnes)
{
    const std::vector<std::string> installed = {"DejaVu Sans", "Liberation Sans"};
    EXPECT_EQ(app::installedFamily("liberation sans", "DejaVu Sans", installed), "Liberation Sans");
    EXPECT_EQ(app::installedFamily("Arial", "Liberation Sans", installed), "Liberation Sans");
    EXPECT_EQ(app::installedFamily("Arial", "Helvetica", installed), "DejaVu Sans");
    EXPECT_EQ(app::installedFamily("Arial", "Helvetica", {}), "Arial");
}

TEST(Settings, ImpossibleNumbersLeaveTheDefaults)
{
    const SETTINGS settings = settingsFrom("[Geometry]\nWidth = -3\nHeight = tall\n"
                                           "[Font]\nfontWeight = 9\nfontScaleFac = 0\ntxtFontPtSize = -2\n");
    EXPECT_EQ(settings.width, 620);
    EXPECT_EQ(settings.height, 460);
    EXPECT_EQ(settings.fontWeight, 3);
    EXPECT_GT(settings.fontScaleFac, 0);
    EXPECT_EQ(settings.txtFontPtSize, 8);
}

TEST(Settings, PathStandsInTheHomeDirectory)
{
    EXPECT_EQ(app::settingsPath("/home/ann"), "/home/ann/.nvq");
    EXPECT_EQ(app::settingsPath("/home/ann/"), "/home/ann/.nvq");
}

TEST(RecentFiles, NewestFirstOnceAndAtMostEight)
{
    std::array<std::string, app::recentFileCount> files;
    for (int i = 0; i < 10; ++i) app::addRecentFile(files, "/c" + std::to_string(i) + ".var");
    EXPECT_EQ(files[0], "/c9.var");
    EXPECT_EQ(files[7], "/c2.var");
    app::addRecentFile(files, "/c5.var");
    EXPECT_EQ(files[0], "/c5.var");
    EXPECT_EQ(files[1], "/c9.var");
    EXPECT_EQ(files[7], "/c2.var");
}

TEST(RecentFiles, GapsInTheFileAreClosed)
{
    const SETTINGS settings = settingsFrom("[Recent Files]\nFile0 = \nFile2 = /a.var\nFile5 = /b.var\n");
    EXPECT_EQ(settings.recentFiles[0], "/a.var");
    EXPECT_EQ(settings.recentFiles[1], "/b.var");
    EXPECT_EQ(settings.recentFiles[2], "");
}

TEST(SettingsFile, AnyBytesAreRead)
{
    const RWarningCatcher catcher;
    std::string junk;
    for (int i = 0; i < 2000; ++i) junk += static_cast<char>(i * 37 % 256);
    RSettingsFile file;
    file.parse(junk + "[" + junk + "\n=\n[]\n= =\n");
    RSettingsFile again;
    again.parse(file.text());
    EXPECT_EQ(again.text(), file.text());
}

} // namespace
