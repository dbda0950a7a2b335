// The drivers of STATION and SCATTER mode and of the map, on both sinks.

#include "graphics/plots.h"

#include <gtest/gtest.h>

#include "common/text.h"
#include "graphics/mapplot.h"
#include "graphics/palette.h"
#include "graphics/plotfixture.h"
#include "graphics/plotpictures.h"
#include "graphics/preparewindow.h"
#include "graphics/scenes.h"

namespace {

using namespace graphics;
using testing_support::countOf;
using testing_support::pageText;
using testing_support::pixelsOtherThan;
using testing_support::RPlotFixture;
using testing_support::RTestCanvas;

QRect plotOf(const DATAWINDOW& w)
{
    return {QPoint(w.plotRect[0], w.plotRect[1]), QPoint(w.plotRect[2], w.plotRect[3])};
}

// --- STATION

struct STATIONFIXTURE : RPlotFixture {
    explicit STATIONFIXTURE(int stations = 10, const std::string& type = "B")
        : RPlotFixture(stations, 6, type), c(context())
    {
        plotAll();
        fullRanges(c, 0);
    }
    std::string postScript()
    {
        return pageText([&](QPainter*, std::FILE* ps) { WriteStationWindows(ps, c); });
    }
    void onlyWindow(int number)
    {
        for (int n = 1; n <= setup.count(); ++n) setup.window(n).toDraw = n == number ? 1 : 0;
    }
    PLOTCONTEXT c;
};

TEST(StationPlot, WithoutStationsOrWindowsNothingIsDrawn)
{
    STATIONFIXTURE f;
    for (int n = 1; n <= f.setup.count(); ++n) f.setup.window(n).exists = 0;
    EXPECT_EQ(f.postScript(), "");
    STATIONFIXTURE g;
    selection::clearPlotted(g.collection());
    EXPECT_EQ(g.postScript(), "");
    EXPECT_EQ(g.setup.window(1).toDraw, 1);
}

TEST(StationPlot, EachWindowIsABlockWithItsMarkers)
{
    STATIONFIXTURE f;
    const std::string ps = f.postScript();
    for (const char* const marker : {"\n%%PS-WINDOW: NVQ4.0_Window_2 begin\n",
                                     "\n%%PS-WINDOW: NVQ_Window_2 end\n\n", "NVQ4.0_Window_4 begin\n"}) {
        EXPECT_EQ(countOf(ps, marker), 1) << marker;
    }
    EXPECT_EQ(countOf(ps, "NVQ4.0_Window_5"), 0); // doesn't exist
    EXPECT_EQ(countOf(ps, "\n%%PS-OBJECT: Profiles begin\ngsave dousrclip\n"), 4);
    EXPECT_EQ(countOf(ps, "\ngrestore\n%%PS-OBJECT: Profiles end\n\n"), 4);
    EXPECT_EQ(countOf(ps, "%%PS-OBJECT: ColorTable begin"), 4);
    EXPECT_EQ(countOf(ps, "%%PS-OBJECT: WindowFrame start"), 4);
    EXPECT_EQ(countOf(ps, "/frame? true def 0 setgray\n"), 4);
}

TEST(StationPlot, TheUserSystemCarriesTheDataValues)
{
    STATIONFIXTURE f;
    f.onlyWindow(1);
    DATAWINDOW& w = f.setup.window(1);
    w.xMin = -1.5f;
    w.xMax = 27;
    w.yMin = 5000;
    w.yMax = 0;
    EXPECT_NE(f.postScript().find("-1.5 27 7 2.6 5000 0 3.4 15.8 UsrSys\n\n"), std::string::npos);
}

TEST(StationPlot, BottleStationsHaveSymbolsAndOthersHaveLines)
{
    STATIONFIXTURE bottles(3, "B"), casts(3, "C");
    bottles.onlyWindow(1);
    casts.onlyWindow(1);
    EXPECT_EQ(countOf(bottles.postScript(), " 2.3 dotr\n"), 6); // the first station's levels
    EXPECT_EQ(countOf(casts.postScript(), " 2.3 "), 0);
}

TEST(StationPlot, ANegativeThicknessGivesEveryStationSymbols)
{
    STATIONFIXTURE f(2, "C");
    f.onlyWindow(1);
    f.setup.window(1).lineThickness = -2;
    const std::string ps = f.postScript();
    EXPECT_EQ(countOf(ps, " 2.3 dotr\n"), 6);
    EXPECT_EQ(countOf(ps, "medium_line"), 2);
}

TEST(StationPlot, AStationWithoutTheVariableDrawsNothingAndUsesUpItsColor)
{
    STATIONFIXTURE f(3);
    collection::STATIONDATA& s = f.sample.station;
    ASSERT_EQ(f.collection().loadStation(2, s, false), collection::LoadResult::ok);
    testing_support::fillStation(s, {{0, 10}, {}, {35, 36}, {200, 210}});
    testing_support::label(s, "A16", "2", "B");
    testing_support::place(s, 335, 0);
    ASSERT_EQ(f.collection().writeStation(2, s, false), collection::WriteResult::ok);
    f.plotAll();
    f.onlyWindow(1); // temperature
    const std::string ps = f.postScript();
    EXPECT_EQ(countOf(ps, "np\n"), 2);
    EXPECT_EQ(countOf(ps, " 2.3 dotr\n"), 6);
    EXPECT_EQ(countOf(ps, " 2.3 square\n"), 0);
    EXPECT_EQ(countOf(ps, " 2.3 diam\n"), 6); // the third station has the third symbol
}

TEST(StationPlot, TheCycleBeginsAnewInEachWindow)
{
    STATIONFIXTURE f(2);
    EXPECT_EQ(countOf(f.postScript(), " 2.3 dotr\n"), 4 * 6);
}

TEST(StationPlot, FillIsWrittenForEachStation)
{
    STATIONFIXTURE f(9);
    f.onlyWindow(1);
    const std::string ps = f.postScript();
    const std::string profiles =
        ps.substr(ps.find("Profiles begin"), ps.find("Profiles end") - ps.find("Profiles begin"));
    EXPECT_EQ(countOf(profiles, "/fill? false def\n"), 8);
    EXPECT_EQ(countOf(profiles, "/fill? true def\n"), 1);
}

TEST(StationPlot, ADamagedStationIsToldOnceAndTheOthersAreDrawn)
{
    STATIONFIXTURE f(3);
    ASSERT_EQ(f.sample.reopen(), collection::OpenFilesResult::ok); // nothing of it is in memory
    const std::string data = f.sample.bytes(".dob");
    f.sample.setBytes(".dob", std::string_view(data).substr(0, data.size() - 8));
    f.user().notes.clear();
    const std::string ps = f.postScript();
    EXPECT_EQ(f.user().notes.size(), 1u);
    EXPECT_EQ(countOf(ps, " 2.3 square\n"), 4 * 6);
}

TEST(StationPlot, ThePainterClearsToDrawAndMarksTheWindowComplete)
{
    STATIONFIXTURE f;
    RTestCanvas canvas;
    PlotStationMode(&canvas.painter, f.c, true);
    EXPECT_EQ(f.setup.window(1).toDraw, 0);
    EXPECT_EQ(f.setup.window(1).complete, 1);
    EXPECT_GT(pixelsOtherThan(canvas.image, plotOf(f.setup.window(1)), qRgb(255, 255, 255)), 500);
}

TEST(StationPlot, StatusNamesTheWorkAndHowToEndIt)
{
    STATIONFIXTURE f;
    f.user().statusTexts.clear();
    static_cast<void>(f.postScript());
    ASSERT_FALSE(f.user().statusTexts.empty());
    EXPECT_EQ(f.user().statusTexts.front(), "Plotting Station(s) ...     ESC aborts");
    EXPECT_EQ(f.user().busy, 0);
}

TEST(StationPlot, EscEndsBetweenWindowsAndTheOthersStayToDraw)
{
    STATIONFIXTURE f;
    RTestCanvas canvas;
    f.user().abortAfter = 1;
    PlotStationMode(&canvas.painter, f.c, true);
    EXPECT_EQ(f.setup.window(1).toDraw, 0);
    EXPECT_EQ(f.setup.window(2).toDraw, 1);
}

TEST(StationPlot, AnEqualRangeIsMovedApart)
{
    STATIONFIXTURE f;
    f.onlyWindow(1);
    f.setup.window(1).xMin = f.setup.window(1).xMax = 5;
    EXPECT_NE(f.postScript().find("4 6 7 2.6 "), std::string::npos);
}

TEST(StationPlot, AnObsoleteStyleBecomesDots)
{
    STATIONFIXTURE f;
    f.setup.window(1).style = 3;
    static_cast<void>(f.postScript());
    EXPECT_EQ(f.setup.window(1).style, styleDots);
}

TEST(StationPlot, NoBackgroundIsNotPainted)
{
    STATIONFIXTURE f;
    f.onlyWindow(1);
    EXPECT_EQ(countOf(f.postScript(), "NVQ_WindowBackground begin"), 1);
    f.setup.window(1).background = -1;
    EXPECT_EQ(countOf(f.postScript(), "NVQ_WindowBackground"), 0);
}

TEST(StationPlot, AnAxisColorBelowZeroStillShowsTheData)
{
    STATIONFIXTURE f;
    f.onlyWindow(1);
    f.setup.window(1).axisColor = -1;
    const std::string ps = f.postScript();
    EXPECT_EQ(countOf(ps, "xaxlabl"), 0);
    EXPECT_GT(countOf(ps, " 2.3 dotr\n"), 0);
}

// --- SCATTER

struct SCATTERFIXTURE : RPlotFixture {
    SCATTERFIXTURE() : RPlotFixture(10, 6), c(context())
    {
        switchMode(setup, modeScatter);
        fullRanges(c, 0);
    }
    std::string postScript()
    {
        return pageText([&](QPainter*, std::FILE* ps) { WriteDataWindows(ps, c); });
    }
    PLOTCONTEXT c;
};

TEST(ScatterPlot, EveryWindowShowsEverySample)
{
    SCATTERFIXTURE f;
    const std::string ps = f.postScript();
    EXPECT_EQ(countOf(ps, "%%PS-OBJECT: NVQ_ScatterData begin"), 4);
    EXPECT_EQ(countOf(ps, " e\n"), 4 * 60);
    EXPECT_EQ(countOf(ps, "NVQ4.0_Window_5"), 0);
}

TEST(ScatterPlot, WithColorTheBarComesFirst)
{
    SCATTERFIXTURE f;
    ASSERT_TRUE(setWindowVariables(f.setup, 1, 3, 2, -1));
    fullRanges(f.c, 1);
    const std::string ps = f.postScript();
    EXPECT_EQ(countOf(ps, "%%PS-OBJECT: ColorBar begin"), 1);
    EXPECT_LT(ps.find("ColorBar begin"), ps.find("NVQ_ScatterData begin"));
    EXPECT_EQ(countOf(ps, " d\n"), 60);
}

TEST(ScatterPlot, WithoutSelectedStationsNothingIsDrawn)
{
    SCATTERFIXTURE f;
    f.setup.map.geometry.latMin = 80;
    refreshSelection(f.c);
    EXPECT_EQ(f.collection().selectedStationCount, 0);
    EXPECT_EQ(f.postScript(), "");
}

TEST(ScatterPlot, BothSinksMarkTheSamePlaces)
{
    SCATTERFIXTURE f;
    RTestCanvas canvas;
    f.setup.window(3).grid = 0;
    const std::string ps = f.postScript();
    PlotScatterMode(&canvas.painter, f.c, true);
    const DATAWINDOW& w = f.setup.window(3);
    SetUsrSys(w.xMin, w.xMax, w.xLen, w.xOrg, w.yMin, w.yMax, w.yLen, w.yOrg);
    std::string_view rest = std::string_view(ps).substr(ps.find("NVQ4.0_Window_3"));
    rest = rest.substr(rest.find("setlinewidth\n") + 13);
    const QColor dot = paletteColor(1);
    for (int i = 0; i < 60; ++i) {
        float x = 0, y = 0;
        ASSERT_TRUE(common::takeFloat(rest, x));
        ASSERT_TRUE(common::takeFloat(rest, y));
        rest = rest.substr(rest.find('\n') + 1);
        if (!plotOf(w).adjusted(2, 2, -2, -2).contains(pixelX(x), pixelY(y))) continue; // frame above
        EXPECT_EQ(canvas.image.pixelColor(pixelX(x), pixelY(y)), dot) << x << ' ' << y;
    }
}

TEST(ScatterPlot, EscWhileLoadingDrawsNothing)
{
    RPlotFixture f(300, 2);
    PLOTCONTEXT c = f.context();
    switchMode(f.setup, modeScatter);
    refreshSelection(c);
    f.user().abortAfter = 1;
    EXPECT_EQ(pageText([&](QPainter*, std::FILE* ps) { WriteDataWindows(ps, c); }), "");
    EXPECT_EQ(f.user().busy, 0);
}

// --- map

struct MAPFIXTURE : RPlotFixture {
    explicit MAPFIXTURE(int stations = 10) : RPlotFixture(stations, 2), c(context())
    {
        switchMode(setup, modeMap);
        c.mapCache = &cache;
    }
    std::string postScript()
    {
        refreshSelection(c);
        return pageText([&](QPainter*, std::FILE* ps) { WriteMapWindow(ps, c); });
    }
    int dots(const QImage& image)
    {
        return testing_support::pixelsOf(image, mapArea(), paletteColor(setup.map.dotColor).rgb());
    }
    QRect mapArea() const
    {
        const auto& r = setup.map.plotRect;
        return {QPoint(r[0], r[1]), QPoint(r[2], r[3])};
    }
    MAPCACHE cache;
    PLOTCONTEXT c;
};

TEST(MapPlot, TheFullFormBuildsTheListWithPixels)
{
    MAPFIXTURE f;
    f.setup.map.grid = 0;
    RTestCanvas canvas;
    PlotMap(&canvas.painter, f.c, true);
    const auto list = selection::readSelectedList(f.collection());
    ASSERT_EQ(list.size(), 10u);
    for (const auto& station : list) {
        EXPECT_FLOAT_EQ(station.longitude, 335);
        EXPECT_TRUE(f.mapArea().contains(station.pixelX, station.pixelY));
        EXPECT_EQ(canvas.image.pixelColor(station.pixelX, station.pixelY), paletteColor(1));
    }
    EXPECT_EQ(f.setup.map.toDraw, 0);
    EXPECT_EQ(f.setup.map.complete, 1);
    EXPECT_FALSE(f.cache.picture.isNull());
}

TEST(MapPlot, AMapFromMinusThirtyShowsStationsOfTheEast)
{
    MAPFIXTURE f;
    f.setup.map.geometry.lonMin = -60;
    f.setup.map.geometry.lonMax = 60;
    RTestCanvas canvas;
    PlotMap(&canvas.painter, f.c, true);
    const auto list = selection::readSelectedList(f.collection());
    ASSERT_EQ(list.size(), 10u);
    EXPECT_FLOAT_EQ(list[0].longitude, -25);
    EXPECT_TRUE(f.mapArea().contains(list[0].pixelX, list[0].pixelY));
}

TEST(MapPlot, StationsBehindTheGlobeAreSelectedButNotShown)
{
    MAPFIXTURE f;
    f.setup.map.geometry.id = projectionOblique;
    f.setup.map.geometry.lon0 = 155; // the other side of 335
    f.setup.map.geometry.lat0 = 30;
    f.setup.map.geometry.lonMin = -25;
    f.setup.map.geometry.lonMax = 335;
    const std::string ps = f.postScript();
    int hidden = 0;
    for (const auto& station : selection::readSelectedList(f.collection())) {
        hidden += station.pixelX == -1 ? 1 : 0;
    }
    EXPECT_GT(hidden, 0);
    EXPECT_EQ(countOf(ps, " D\n"), f.collection().selectedStationCount - hidden);
}

TEST(MapPlot, WithoutAStationTheUserIsTold)
{
    MAPFIXTURE f;
    f.setup.map.geometry.latMin = 80;
    RTestCanvas canvas;
    PlotMap(&canvas.painter, f.c, true);
    ASSERT_EQ(f.user().messages.size(), 1u);
    EXPECT_EQ(f.user().messages[0], "Drawing Station-Map ...: No Valid Station Found!\n\nUse\n "
                                    "Configuration->Selection Criteria to Open Criteria\n\nor select\n "
                                    "Global Map from the Map-Menu.");
}

TEST(MapPlot, AnEmptyCollectionNeedsNoMessage)
{
    MAPFIXTURE f(0);
    RTestCanvas canvas;
    PlotMap(&canvas.painter, f.c, true);
    EXPECT_TRUE(f.user().messages.empty());
}

TEST(MapPlot, EscLeavesAPartialMapAndALaterRedrawStartsAnew)
{
    MAPFIXTURE f(450);
    RTestCanvas canvas;
    f.user().abortAfter = 1;
    PlotMap(&canvas.painter, f.c, true);
    EXPECT_NE(f.user().messages.at(0).find("Really Want to Abort?"), std::string::npos);
    EXPECT_EQ(f.setup.map.toDraw, 1);
    const int partial = f.collection().selectedStationCount;
    EXPECT_GT(partial, 0);
    EXPECT_LT(partial, 450);
    f.user().setAbort(false);
    PlotMap(&canvas.painter, f.c, true);
    EXPECT_EQ(f.collection().selectedStationCount, 450);
    EXPECT_EQ(f.setup.map.toDraw, 0);
}

TEST(MapPlot, ThePartialFormCopiesTheStoredPictureBack)
{
    MAPFIXTURE f;
    RTestCanvas canvas;
    PlotMap(&canvas.painter, f.c, true);
    const QImage before = canvas.image.copy();
    canvas.painter.setClipping(false);
    canvas.painter.fillRect(f.mapArea(), Qt::black);
    PlotMap(&canvas.painter, f.c, false);
    EXPECT_EQ(canvas.image, before);
}

TEST(MapPlot, WithoutAStoredPictureThePartialFormDrawsAnew)
{
    MAPFIXTURE f;
    RTestCanvas canvas, second;
    PlotMap(&canvas.painter, f.c, true);
    f.cache = MAPCACHE{};
    PlotMap(&second.painter, f.c, false);
    EXPECT_EQ(f.dots(second.image), f.dots(canvas.image));
}

TEST(MapPlot, PlottedStationsGetTheSymbolsOfTheirProfiles)
{
    MAPFIXTURE f;
    f.plotAll();
    switchMode(f.setup, modeStation);
    const std::string ps = f.postScript();
    const std::size_t begin = ps.find("StationPositions begin");
    const std::string stations = ps.substr(begin, ps.find("StationPositions end") - begin);
    EXPECT_EQ(countOf(stations, " D\n"), 10);
    EXPECT_EQ(countOf(stations, "/fill? false def "), 8); // one round of symbols
    EXPECT_EQ(countOf(stations, " 2.3 dotr\n"), 2);
    EXPECT_EQ(countOf(stations, " 2.3 square\n"), 2);
    EXPECT_EQ(countOf(stations, " 2.3 plusr\n"), 1);
    switchMode(f.setup, modeScatter);
    EXPECT_EQ(countOf(f.postScript(), " 2.3 "), 0);
}

TEST(MapPlot, PlottedStationsOutsideTheMapHaveNoMark)
{
    MAPFIXTURE f;
    f.plotAll();
    f.setup.map.geometry.latMax = 0; // five of ten
    f.setup.map.geometry.lonMin = -60;
    f.setup.map.geometry.lonMax = 60;
    f.setup.map.toDraw = 1;
    const std::string ps = f.postScript();
    EXPECT_EQ(countOf(ps, " D\n"), 5);
    EXPECT_EQ(countOf(ps, " 2.3 "), 5);
    RTestCanvas canvas;
    PlotMap(&canvas.painter, f.c, true);
    DrawMapMarks(&canvas.painter, f.c);
    EXPECT_GT(testing_support::pixelsOf(canvas.image, f.mapArea(), paletteColor(4).rgb()), 0);
    EXPECT_EQ(testing_support::pixelsOf(canvas.image, f.mapArea(), paletteColor(12).rgb()), 0);
}

TEST(MapPlot, MarksOnThePainterHaveTheCyclesColors)
{
    MAPFIXTURE f;
    switchMode(f.setup, modeStation);
    f.plotAll();
    RTestCanvas canvas;
    PlotMap(&canvas.painter, f.c, true);
    const int before = testing_support::pixelsOf(canvas.image, f.mapArea(), paletteColor(4).rgb());
    DrawMapMarks(&canvas.painter, f.c);
    EXPECT_GT(testing_support::pixelsOf(canvas.image, f.mapArea(), paletteColor(4).rgb()), before);
}

TEST(MapPlot, StationDotsAreOneObjectOnTheOverlayGrid)
{
    MAPFIXTURE f;
    const std::string ps = f.postScript();
    EXPECT_EQ(countOf(ps, "\n%%PS-WINDOW: NVQ_MapWindow begin\n"), 1);
    EXPECT_EQ(countOf(ps, "%%PS-WINDOW: NVQ_MapWindow end\n\n"), 1);
    EXPECT_EQ(countOf(ps, "\n%%PS-OBJECT: StationPositions begin\n"), 1);
    EXPECT_NE(ps.find("/D { 0.910 dotr } bind def\n0 5000 "), std::string::npos);
    EXPECT_NE(ps.find("/fill? true def /stroke? false def very_thin_line\n4652 833 D\n"), std::string::npos)
        << ps;
    EXPECT_EQ(countOf(ps, " D\n"), 10);
    EXPECT_LT(ps.find("PSBaseMap2 end"), ps.find("StationPositions begin"));
    EXPECT_LT(ps.find("StationPositions end"), ps.find("%saving unclipped status"));
}

TEST(MapPlot, StationLabelsByTheAnnotationMode)
{
    MAPFIXTURE f;
    EXPECT_EQ(countOf(f.postScript(), "showstring"), 0);
    f.setup.map.annotation = 1;
    EXPECT_NE(f.postScript().find("10 SetMyFont /fill? false def /lorg 6 def\n(1) 46"), std::string::npos);
    f.setup.map.annotation = 2;
    EXPECT_NE(f.postScript().find("(A16 10) "), std::string::npos);
    RTestCanvas plain, labelled;
    f.setup.map.annotation = 0;
    PlotMap(&plain.painter, f.c, true);
    f.setup.map.annotation = 2;
    PlotMap(&labelled.painter, f.c, true);
    EXPECT_GT(pixelsOtherThan(labelled.image, f.mapArea(), qRgb(255, 255, 255)),
              pixelsOtherThan(plain.image, f.mapArea(), qRgb(255, 255, 255)) + 100);
}

TEST(MapPlot, StationLabelsStayOnTheMap)
{
    MAPFIXTURE f; // ten stations from 60 S to 60 N along 25 W
    f.setup.map.geometry.lonMin = -90;
    f.setup.map.geometry.lonMax = -22;
    f.setup.map.geometry.latMin = -80;
    f.setup.map.geometry.latMax = 62;
    RTestCanvas plain, labelled;
    PlotMap(&plain.painter, f.c, true);
    f.setup.map.annotation = 2;
    PlotMap(&labelled.painter, f.c, true);
    int inside = 0;
    for (int y = 0; y < plain.image.height(); ++y) {
        for (int x = 0; x < plain.image.width(); ++x) {
            if (plain.image.pixel(x, y) == labelled.image.pixel(x, y)) continue;
            ++inside;
            EXPECT_TRUE(f.mapArea().contains(x, y)) << x << ' ' << y;
        }
    }
    EXPECT_GT(inside, 500);
    const std::string ps = f.postScript();
    EXPECT_NE(ps.find("/lorg 4 def\n(A16 1) "), std::string::npos);
    EXPECT_NE(ps.find("/lorg 3 def\n(A16 10) "), std::string::npos);
    f.setup.map.geometry.lonMin = -90; // they were brought into 0 to 360
    f.setup.map.geometry.lonMax = 20;
    f.setup.map.toDraw = 1;
    EXPECT_NE(f.postScript().find("/lorg 5 def\n(A16 10) "), std::string::npos);
}

TEST(MapPlot, RefreshingBuildsTheListOnlyForAMapThatIsToBeDrawn)
{
    MAPFIXTURE f;
    refreshSelection(f.c);
    EXPECT_EQ(f.collection().selectedStationCount, 10);
    f.setup.map.toDraw = 0;
    f.setup.map.geometry.latMin = 0;
    refreshSelection(f.c);
    EXPECT_EQ(f.collection().selectedStationCount, 10);
    f.setup.map.toDraw = 1;
    refreshSelection(f.c);
    EXPECT_EQ(f.collection().selectedStationCount, 5);
}

// --- the whole canvas

TEST(Redraw, DrawsTheMapThenTheWindowsAndKeepsTheirRegions)
{
    RPlotFixture f;
    PLOTCONTEXT c = f.context();
    int repaints = 0;
    c.repaint = [&] { ++repaints; };
    f.plotAll();
    fullRanges(c, 0);
    RTestCanvas canvas;
    RedrawCanvas(&canvas.painter, c, true);
    EXPECT_EQ(f.setup.map.toDraw, 0);
    EXPECT_GE(repaints, 5);
    for (const int n : {0, 1, 2, 3, 4}) {
        const QRect region = f.setup.regions[static_cast<std::size_t>(n)];
        EXPECT_GT(region.width(), 250) << n;
        EXPECT_GT(pixelsOtherThan(canvas.image, region, qRgb(255, 255, 255)), 1000) << n;
    }
    EXPECT_TRUE(f.setup.regions[5].isNull());
    EXPECT_TRUE(f.setup.regions[1].contains(plotOf(f.setup.window(1))));
}

TEST(Redraw, AClickBetweenTheWindowsIsOnTheCanvas)
{
    RPlotFixture f;
    PLOTCONTEXT c = f.context();
    EXPECT_EQ(windowAt(f.setup, QPoint(500, 300)), -1); // nothing has been drawn
    f.plotAll();
    RTestCanvas canvas;
    RedrawCanvas(&canvas.painter, c, true);
    for (int n = 1; n <= 4; ++n) EXPECT_EQ(windowAt(f.setup, plotOf(f.setup.window(n)).center()), n);
    EXPECT_EQ(windowAt(f.setup, f.setup.regions[0].center()), 0);
    EXPECT_EQ(windowAt(f.setup, QPoint(1, 1)), -1);
    EXPECT_EQ(windowAt(f.setup, QPoint(1150, 400)), -1); // the fifth window's place, which doesn't exist
}

TEST(Redraw, EverythingStandsInsideTheRegions)
{
    for (const int mode : {modeMap, modeStation, modeScatter}) {
        RPlotFixture f;
        PLOTCONTEXT c = f.context();
        f.plotAll();
        switchMode(f.setup, mode);
        if (mode == modeScatter) {
            ASSERT_TRUE(useLayout(f.setup, "SCATTER 2 Win"));
            ASSERT_TRUE(setWindowVariables(f.setup, 1, 3, 2, -1));
        }
        fullRanges(c, 0);
        RTestCanvas canvas;
        RedrawCanvas(&canvas.painter, c, true);
        canvas.painter.setClipping(false);
        for (const QRect& region : f.setup.regions) canvas.painter.fillRect(region, Qt::white);
        EXPECT_EQ(pixelsOtherThan(canvas.image, canvas.image.rect(), qRgb(255, 255, 255)), 0) << mode;
    }
}

TEST(Redraw, OnlyWhatIsMarkedIsDrawnAgain)
{
    RPlotFixture f;
    PLOTCONTEXT c = f.context();
    MAPCACHE cache;
    c.mapCache = &cache;
    f.plotAll();
    fullRanges(c, 0);
    RTestCanvas canvas;
    RedrawCanvas(&canvas.painter, c, true);
    const QImage before = canvas.image.copy();
    f.setup.window(2).toDraw = 1;
    f.user().statusTexts.clear();
    RedrawCanvas(&canvas.painter, c, false);
    EXPECT_EQ(f.setup.window(2).toDraw, 0);
    EXPECT_EQ(canvas.image.copy(f.setup.regions[3]), before.copy(f.setup.regions[3]));
    EXPECT_EQ(canvas.image.copy(f.setup.regions[2]), before.copy(f.setup.regions[2]));
    for (const std::string& text : f.user().statusTexts) {
        EXPECT_EQ(text.find("Drawing Station-Map"), std::string::npos);
    }
}

TEST(Redraw, TheStateOfDrawingComesBack)
{
    RPlotFixture f;
    PLOTCONTEXT c = f.context();
    f.plotAll();
    const USRSYS usr = usrSys();
    const int color = drawState().color[0];
    RTestCanvas canvas;
    RedrawCanvas(&canvas.painter, c, true);
    EXPECT_EQ(usrSys().x.userMax, usr.x.userMax);
    EXPECT_EQ(drawState().color[0], color);
}

TEST(Redraw, AfterAnAbortOfTheMapTheWindowsAreNotDrawn)
{
    RPlotFixture f(300, 2);
    PLOTCONTEXT c = f.context();
    f.plotAll();
    markAllToDraw(f.setup);
    f.user().abortAfter = 1;
    RTestCanvas canvas;
    RedrawCanvas(&canvas.painter, c, true);
    EXPECT_EQ(f.setup.window(1).toDraw, 1);
}

} // namespace
