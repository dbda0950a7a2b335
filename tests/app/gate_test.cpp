#include "app/gate.h"

#include <fstream>

#include <gtest/gtest.h>

#include "app/commandhelp.h"
#include "temporarydirectory.h"

namespace {

using app::GATESTATE;

GATESTATE openCollection()
{
    GATESTATE s;
    s.state = app::stateReady;
    s.open = s.writable = true;
    s.stale = false;
    s.kind = 1;
    s.stationCount = s.selectedStationCount = 3;
    s.windowCount = 6;
    return s;
}

bool enabled(int id, const GATESTATE& s, int sub = 0)
{
    return app::isCommandEnabled(id, s, sub);
}

TEST(Gate, NothingOpen_NewAndOpenEnabledCloseGrey)
{
    const GATESTATE idle;
    EXPECT_TRUE(enabled(40001, idle));
    EXPECT_TRUE(enabled(40002, idle));
    EXPECT_FALSE(enabled(40005, idle));
    EXPECT_TRUE(enabled(40016, idle));
}

TEST(Gate, ReadOnlyCollection_CopyWorksMoveDeleteInventoryGrey)
{
    GATESTATE s = openCollection();
    s.writable = false;
    EXPECT_TRUE(enabled(40101, s));
    EXPECT_FALSE(enabled(40102, s));
    EXPECT_FALSE(enabled(40103, s));
    EXPECT_FALSE(enabled(40501, s));
}

TEST(Gate, NetCdfCollection_NoCopyNoImport)
{
    GATESTATE s = openCollection();
    s.kind = 2;
    s.writable = false;
    EXPECT_FALSE(enabled(40101, s));
    for (int id = 40305; id <= 40335; ++id) EXPECT_FALSE(enabled(id, s)) << id;
}

TEST(Gate, IdWithoutARuleIsAlwaysEnabled)
{
    GATESTATE busy;
    busy.state = app::stateBusy;
    for (const int id : {40946, 40207, 40512, 40821, 40994, 0, -1, 99999})
        EXPECT_TRUE(enabled(id, busy)) << id;
}

TEST(Gate, TwoIdsAreAlwaysRefused)
{
    EXPECT_FALSE(enabled(40004, openCollection()));
    EXPECT_FALSE(enabled(40312, openCollection()));
}

TEST(Gate, MapMode_ExportPlotValuesGrey)
{
    GATESTATE s = openCollection();
    EXPECT_TRUE(enabled(40405, s));
    s.mode = -1;
    EXPECT_FALSE(enabled(40405, s));
}

TEST(Gate, BusyAndLayoutRefuseOpenAndExit)
{
    GATESTATE s = openCollection();
    for (const int state : {app::stateLayout, app::stateBusy}) {
        s.state = state;
        for (const int id : {40001, 40002, 40008, 40015, 40016}) EXPECT_FALSE(enabled(id, s)) << id;
    }
    s.state = app::stateOutliers;
    EXPECT_TRUE(enabled(40016, s));
}

TEST(Gate, SaveScreenNeedsADrawingOrTheMap)
{
    GATESTATE s = openCollection();
    EXPECT_TRUE(enabled(40007, s, -1));
    s.stale = true;
    EXPECT_FALSE(enabled(40007, s, -1));
    EXPECT_TRUE(enabled(40007, s, 0));
    s.mode = -1; // the map alone counts as drawn
    EXPECT_TRUE(enabled(40007, s, -1));
    s.open = false;
    EXPECT_FALSE(enabled(40007, s, 0));
}

TEST(Gate, ModeCommandRefusedForTheCurrentMode)
{
    GATESTATE s = openCollection();
    for (int mode = -1; mode <= 3; ++mode) {
        s.mode = mode;
        for (int id = 40700; id <= 40704; ++id)
            EXPECT_EQ(enabled(id, s), id != mode + 40701) << id << " in mode " << mode;
    }
}

TEST(Gate, SpreadsheetExportNeedsSelectedStations)
{
    GATESTATE s = openCollection();
    EXPECT_TRUE(enabled(40403, s));
    s.selectedStationCount = 0;
    EXPECT_FALSE(enabled(40403, s));
}

TEST(Gate, SideFilesMustExist)
{
    const testing_support::RTemporaryDirectory folder;
    GATESTATE s = openCollection();
    s.basePath = folder.file("c");
    EXPECT_FALSE(enabled(40506, s));
    std::ofstream(folder.file("c.log")) << "x";
    EXPECT_TRUE(enabled(40506, s));
    EXPECT_FALSE(enabled(40507, s));
    EXPECT_FALSE(enabled(40511, s));
    EXPECT_FALSE(enabled(40206, s));
}

TEST(Gate, ForeignTypeRefusesFormatImports)
{
    GATESTATE s = openCollection();
    s.type = "XYZ";
    EXPECT_FALSE(enabled(40307, s));
    EXPECT_TRUE(enabled(40313, s));
}

TEST(Gate, LayoutModeCountsWindows)
{
    GATESTATE s = openCollection();
    s.state = app::stateLayout;
    EXPECT_TRUE(enabled(40923, s, 1));
    EXPECT_TRUE(enabled(40924, s, 1));
    s.windowCount = 1;
    EXPECT_FALSE(enabled(40923, s, 1));
    s.windowCount = 20;
    EXPECT_FALSE(enabled(40924, s, 1));
    EXPECT_FALSE(enabled(40922, s, -1));
}

TEST(CommandHelp, KnownAndUnknown)
{
    EXPECT_STREQ(app::commandHelp(40016), "Exits NVQ.");
    EXPECT_STREQ(app::commandHelp(40999), "Redraws current or all window(s).");
    EXPECT_STREQ(app::commandHelp(40946), "No help available on this item.");
}

} // namespace
