#pragma once

// The records of what is on the canvas: data windows, the map and its layers, and the view as a whole.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QRect>

#include "collection/rcollection.h"
#include "common/installation.h"
#include "graphics/projection.h"

namespace graphics {

enum Mode : int { modeMap = -1, modeStation = 0, modeScatter = 1, modeSection = 2, modeSurface = 3 };
inline constexpr int modeCount = 4;
[[nodiscard]] const char* modeName(int mode);                       // "MAP", "STATION", ...; "" for any other
[[nodiscard]] std::optional<int> modeByName(std::string_view name); // case ignored

enum PlotStyle : std::int32_t {
    styleDots = 0,
    styleQuickGridding = 1,
    styleVgGridding = 2,
    styleNumbers = 4,
    styleArrows = 6
};

struct DATAWINDOW {
    std::int32_t exists = 0, complete = 0, toDraw = 0;
    std::array<std::int32_t, 4> plotRect{}; // left, top, right, bottom in pixels, set when drawn
    std::int32_t xVar = 0;                  // variable; negative for a reversed axis
    float xMin = 0, xMax = 1, xLen = 0, xOrg = 0,
          xPix = 0; // range; plot size and origin in cm; pixels per unit
    std::int32_t yVar = 0;
    float yMin = 0, yMax = 1, yLen = 0, yOrg = 0, yPix = 0;
    float boxLen = 0, boxOrgX = 0, boxHeight = 0, boxOrgY = 0; // layout box, cm
    std::int32_t zVar = 0;                                     // colour variable, 0 for none
    float zMin = 0, zMax = 1;
    float mapLo = -0.1f, mapHi = 0.1f; // colour mapping
    float dotSize = 0.9f, symbolSize = 1.6f;
    std::int32_t lineThickness = 1; // of profiles; negative: symbols on every station
    std::int32_t style = styleDots;
    std::int32_t grid = 1;
    float xScale = 2.0f, yScale = 2.0f; // per mill
    std::int32_t isopycnals = 0;
    float refPressure = 0;
    char palette[84] = "Nvq.pal";
    std::int32_t background = 31, axisColor = 0, colorBar = 1, isoColor = 8;
    std::int32_t autoLabels = 1;
};

// What a window's plot is made with beyond its record.
struct PLOTOPTIONS {
    std::int32_t dotColor = 1;  // palette index of points without a colour variable
    std::int32_t allPoints = 0; // every point goes behind the coloured ones
    std::int32_t allPointsColor = 8;
    float allPointsSize = 0.5f; // mm
};

// An entry of a base map layer list.
struct LAYERENTRY {
    char name[84] = "";                           // file name, with ".cdt"
    std::int32_t lineColor = -1;                  // palette index; -1 none, -2 automatic
    std::int32_t lineType = 0, lineThickness = 0; // indices of the drawing layer's tables
    std::int32_t fillColor = -2;
};
static_assert(sizeof(LAYERENTRY) == 100);

enum LayerKind : int {
    layerPreBathymetry = 0,
    layerBathymetry = 1,
    layerPreCoastlines = 2,
    layerCoastlines = 3,
    layerPreTopography = 4,
    layerTopography = 5,
    layerPostTopography = 6
};
inline constexpr int layerKinds = 7, maxLayerEntries = 50;

struct MAPWINDOW {
    std::int32_t exists = 1, complete = 0, toDraw = 1;
    std::array<std::int32_t, 4> plotRect{};
    MAPGEOMETRY geometry; // domain, projection, projected bounds, size and origin
    double fullLonMin = 0, fullLonMax = 360, fullLatMin = -90, fullLatMax = 90; // those of the collection
    BOX box;
    std::string layerSet = "GlobHR/";
    std::array<std::vector<LAYERENTRY>, layerKinds> layers;
    char palette[84] = "Nvq.pal";
    std::int32_t dotColor = 1;
    float dotSize = 0.7f;
    std::int32_t background = 31, axisColor = 0, colorBar = 0, grid = 1;
    std::int32_t annotation = 0; // 0 none, 1 station labels, 2 cruise and station labels
    float annotationSize = 10.0f;
};

struct PSSETTINGS {
    bool landscape = true, fitToPage = true, showMap = true, showCollectionInfo = true;
};

// All that a picture of a collection is made of.
struct GRAPHICSSETUP {
    int mode = modeStation;
    MAPWINDOW map;
    std::array<std::array<DATAWINDOW, common::maxDataWindows>, modeCount> windows;
    std::array<std::array<PLOTOPTIONS, common::maxDataWindows>, modeCount> options;
    std::array<std::int32_t, modeCount> windowCount{};
    std::array<BOX, modeCount + 1> mapBoxes{}; // where the map stands in each mode; index mode + 1
    PSSETTINGS postScript;
    // Each window's rectangle with its labels, in canvas pixels, as of the last redraw; index 0 is the map.
    std::array<QRect, common::maxDataWindows + 1> regions{};

    // Windows of the current mode; none in MAP mode.
    [[nodiscard]] int count() const { return mode < 0 ? 0 : windowCount[static_cast<std::size_t>(mode)]; }
    [[nodiscard]] DATAWINDOW& window(int number)
    {
        return windows[static_cast<std::size_t>(mode)][static_cast<std::size_t>(number - 1)];
    }
    [[nodiscard]] PLOTOPTIONS& optionsOf(int number)
    {
        return options[static_cast<std::size_t>(mode)][static_cast<std::size_t>(number - 1)];
    }
};

// Every window of the mode, and the map, needs a plot.
void markAllToDraw(GRAPHICSSETUP& setup);
// A window with its default settings in a mode, without variables and without a place.
[[nodiscard]] DATAWINDOW defaultWindow(int mode);
// A window can be drawn when it has variables; in SECTION mode x may be 0, the section distance.
[[nodiscard]] bool hasVariables(int mode, const DATAWINDOW& window);
// Gives window `number` of the mode its variables and makes it exist; its ranges are for fullRanges to find.
// False, with nothing changed, if there is no such window in the layout.
[[nodiscard]] bool setWindowVariables(GRAPHICSSETUP& setup, int number, int x, int y, int z);

// Default layer lists; the set is "GlobHR/" if its "World.cdt" exists, else "GlobLR/".
void setDefaultLayers(MAPWINDOW& map, const common::INSTALLATION& installation);

// Default set-up of a newly opened collection: map on the whole globe, windows of all modes with default
// variables from the collection, mode STATION. Ranges are set by fullRanges.
void setDefaultSetup(GRAPHICSSETUP& setup, const collection::RCollection& collection,
                     const common::INSTALLATION& installation);

// Goes to another mode (modeMap to modeSurface): the map takes its place in that mode, all is to be drawn.
void switchMode(GRAPHICSSETUP& setup, int mode);

// A layout template by its menu text ("SCATTER 2 Win", case ignored): the window count and boxes of its mode
// and the map's box in it, which counts at once if that is the mode in force. The mode isn't changed. False
// if there is no such template.
[[nodiscard]] bool useLayout(GRAPHICSSETUP& setup, std::string_view menuText);
[[nodiscard]] std::vector<std::string> layoutNames();

// Writes the pair into every x, y or z axis of the mode's windows with this variable, exchanged on a reversed
// axis. A window whose limits really changed is marked toDraw. True if any changed.
bool ApplyRangeToTwins(GRAPHICSSETUP& setup, int variable, float low, float high);

// The window at a pixel of the canvas by the regions of the last redraw: its number, 0 for the map, -1
// between the windows.
[[nodiscard]] int windowAt(const GRAPHICSSETUP& setup, const QPoint& pixel);

// True for window 0, and in SURFACE mode for windows with longitude and latitude axes.
[[nodiscard]] bool IsMapWindow(const GRAPHICSSETUP& setup, int number);

} // namespace graphics
