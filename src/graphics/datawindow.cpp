#include "graphics/datawindow.h"

#include <algorithm>
#include <cstdlib>

#include "common/text.h"
#include "graphics/layouts.h"

namespace graphics {

namespace {

constexpr std::array<const char*, modeCount + 1> modeNames = {"MAP", "STATION", "SCATTER", "SECTION",
                                                              "SURFACE"};

// Place of a mode in a table that begins with the map's.
std::size_t placeOf(int mode)
{
    const int place = mode - modeMap;
    return static_cast<std::size_t>(place);
}

// --- default variables

struct KEYVARIABLES {
    int count = 0;                     // variables in all
    int temperature = 0, salinity = 0; // 0 if the collection has none
    bool primaryIsTime = false;        // then it runs to the right, not downward
};

int findByWord(const collection::RCollection& collection, std::initializer_list<const char*> words)
{
    for (const char* const word : words) {
        for (int v = 2; v <= collection.totalVariableCount; ++v) {
            const auto& label = collection.variables[static_cast<std::size_t>(v)].shortLabel;
            if (common::toLower(common::fieldText(label)).find(word) != std::string::npos) return v;
        }
    }
    return 0;
}

KEYVARIABLES keyVariables(const collection::RCollection& collection)
{
    KEYVARIABLES key;
    key.count = std::min(collection.totalVariableCount, common::maxVariables);
    key.temperature = findByWord(collection, {"tpot", "potential temp", "theta", "temp", "tmp"});
    key.salinity = findByWord(collection, {"salin", "salt", "sal", "psal"});
    const std::string primary = common::toLower(common::fieldText(collection.variables[1].shortLabel));
    for (const char* const word : {"time", "date", "year", "day", "decimal"}) {
        key.primaryIsTime = key.primaryIsTime || primary.find(word) != std::string::npos;
    }
    return key;
}

// Variable v against the primary one: downward for a depth or pressure, to the right for a time.
void setProfile(DATAWINDOW& window, int v, const KEYVARIABLES& key)
{
    window.xVar = key.primaryIsTime ? 1 : v;
    window.yVar = key.primaryIsTime ? v : -1;
}

void setTemperatureSalinity(DATAWINDOW& window, const KEYVARIABLES& key)
{
    window.xVar = key.salinity;
    window.yVar = key.temperature;
}

using WINDOWS = std::array<DATAWINDOW, common::maxDataWindows>;

// STATION: a profile of each variable, then temperature against salinity. SCATTER: the other way round.
void setPropertyPlots(WINDOWS& windows, const KEYVARIABLES& key, bool diagramFirst)
{
    const bool diagram = key.temperature > 0 && key.salinity > 0;
    std::size_t next = 0;
    if (diagram && diagramFirst) setTemperatureSalinity(windows[next++], key);
    for (int v = 2; v <= key.count && next < windows.size(); ++v) setProfile(windows[next++], v, key);
    if (diagram && !diagramFirst && next < windows.size()) setTemperatureSalinity(windows[next], key);
}

// SECTION: each variable as colour over distance and depth.
void setSectionPlots(WINDOWS& windows, const KEYVARIABLES& key)
{
    for (int v = 2; v <= key.count && v - 2 < common::maxDataWindows; ++v) {
        DATAWINDOW& window = windows[static_cast<std::size_t>(v - 2)];
        window.yVar = -1;
        window.zVar = v;
    }
}

// SURFACE windows count in iso-surface variables: 1 and 2 are longitude and latitude, those of the collection
// begin behind the four that always exist, and a new collection has at most eight.
constexpr int isoLongitude = 1, isoLatitude = 2, fixedIsoVariables = 4, defaultIsoVariables = 8;

void setSurfacePlots(WINDOWS& windows, const KEYVARIABLES& key)
{
    const int isoVariables = std::min(defaultIsoVariables, key.count + 3);
    for (int v = fixedIsoVariables + 1; v <= isoVariables; ++v) {
        DATAWINDOW& window = windows[static_cast<std::size_t>(v - fixedIsoVariables - 1)];
        window.xVar = isoLongitude;
        window.yVar = isoLatitude;
        window.zVar = v;
    }
}

void setDefaultVariables(GRAPHICSSETUP& setup, const collection::RCollection& collection)
{
    for (int mode = 0; mode < modeCount; ++mode) {
        setup.windows[static_cast<std::size_t>(mode)].fill(defaultWindow(mode));
    }
    const KEYVARIABLES key = keyVariables(collection);
    if (key.count < 2) return;
    setPropertyPlots(setup.windows[modeStation], key, false);
    setPropertyPlots(setup.windows[modeScatter], key, true);
    setSectionPlots(setup.windows[modeSection], key);
    setSurfacePlots(setup.windows[modeSurface], key);
}

void setFullDomain(MAPWINDOW& map, const collection::RCollection& collection)
{
    if (collection.cruises.empty()) return;
    map.fullLonMin = map.fullLatMin = 1e10;
    map.fullLonMax = map.fullLatMax = -1e10;
    for (const collection::CRUISEINFO& cruise : collection.cruises) {
        map.fullLonMin = std::min<double>(map.fullLonMin, cruise.lonMin);
        map.fullLonMax = std::max<double>(map.fullLonMax, cruise.lonMax);
        map.fullLatMin = std::min<double>(map.fullLatMin, cruise.latMin);
        map.fullLatMax = std::max<double>(map.fullLatMax, cruise.latMax);
    }
}

// --- twins

bool setAxisRange(int axisVariable, int variable, float low, float high, float& axisMin, float& axisMax)
{
    if (axisVariable == 0 || std::abs(axisVariable) != variable) return false;
    if (axisVariable < 0) std::swap(low, high);
    if (axisMin == low && axisMax == high) return false;
    axisMin = low;
    axisMax = high;
    return true;
}

} // namespace

const char* modeName(int mode)
{
    return mode < modeMap || mode >= modeCount ? "" : modeNames[placeOf(mode)];
}

std::optional<int> modeByName(std::string_view name)
{
    for (int mode = modeMap; mode < modeCount; ++mode) {
        if (common::equalsIgnoreCase(modeName(mode), common::trimBlanks(name))) return mode;
    }
    return std::nullopt;
}

void markAllToDraw(GRAPHICSSETUP& setup)
{
    setup.map.toDraw = 1;
    for (int n = 1; n <= setup.count(); ++n) setup.window(n).toDraw = setup.window(n).exists;
}

DATAWINDOW defaultWindow(int mode)
{
    constexpr float profileSymbolSize = 2.3f;
    DATAWINDOW window;
    if (mode == modeStation || mode == modeScatter) window.symbolSize = profileSymbolSize;
    return window;
}

bool hasVariables(int mode, const DATAWINDOW& window)
{
    return window.yVar != 0 && (window.xVar != 0 || mode == modeSection);
}

bool setWindowVariables(GRAPHICSSETUP& setup, int number, int x, int y, int z)
{
    if (number < 1 || number > setup.count()) return false;
    DATAWINDOW& window = setup.window(number);
    window.xVar = x;
    window.yVar = y;
    window.zVar = z;
    window.exists = hasVariables(setup.mode, window) ? 1 : 0;
    window.toDraw = window.exists;
    window.complete = 0;
    return true;
}

void setDefaultSetup(GRAPHICSSETUP& setup, const collection::RCollection& collection,
                     const common::INSTALLATION& installation)
{
    constexpr int netcdfKind = 2;
    const PSSETTINGS postScript = setup.postScript; // the user's, not the collection's
    setup = GRAPHICSSETUP{};
    setup.postScript = postScript;
    setDefaultVariables(setup, collection);
    setFullDomain(setup.map, collection);
    setDefaultLayers(setup.map, installation);
    for (int mode = 0; mode < modeCount; ++mode) {
        applyLayout(setup, defaultLayout(mode, collection.kind == netcdfKind));
    }
    setup.mapBoxes[0] = fullMapBox();
    switchMode(setup, modeStation);
}

void switchMode(GRAPHICSSETUP& setup, int mode)
{
    setup.mode = mode;
    setup.map.box = setup.mapBoxes[placeOf(mode)];
    setup.regions.fill(QRect());
    markAllToDraw(setup);
}

bool ApplyRangeToTwins(GRAPHICSSETUP& setup, int variable, float low, float high)
{
    bool anyChanged = false;
    for (int n = 1; n <= setup.count(); ++n) {
        DATAWINDOW& w = setup.window(n);
        if (!w.exists) continue;
        bool changed = setAxisRange(w.xVar, variable, low, high, w.xMin, w.xMax);
        changed = setAxisRange(w.yVar, variable, low, high, w.yMin, w.yMax) || changed;
        changed = setAxisRange(w.zVar, variable, low, high, w.zMin, w.zMax) || changed;
        if (changed) w.toDraw = 1;
        anyChanged = anyChanged || changed;
    }
    return anyChanged;
}

int windowAt(const GRAPHICSSETUP& setup, const QPoint& pixel)
{
    for (int n = setup.count(); n >= 0; --n) {
        if (setup.regions[static_cast<std::size_t>(n)].contains(pixel)) return n;
    }
    return -1;
}

bool IsMapWindow(const GRAPHICSSETUP& setup, int number)
{
    if (number == 0) return true;
    if (setup.mode != modeSurface || number < 1 || number > setup.count()) return false;
    const DATAWINDOW& window = setup.windows[modeSurface][static_cast<std::size_t>(number - 1)];
    return std::abs(window.xVar) == isoLongitude && std::abs(window.yVar) == isoLatitude;
}

} // namespace graphics
