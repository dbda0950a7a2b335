#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <unordered_set>

#include "app/session.h"
#include "common/files.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "graphics/palette.h"

namespace app {
namespace {

struct AXISRANGE {
    int variable = 0; // negative: reversed
    float low = 0, high = 1;
};
std::array<AXISRANGE, 3> axesOf(const graphics::DATAWINDOW& w)
{
    return {{{w.xVar, w.xMin, w.xMax}, {w.yVar, w.yMin, w.yMax}, {w.zVar, w.zMin, w.zMax}}};
}

void setAxes(graphics::DATAWINDOW& w, const std::array<AXISRANGE, 3>& axes)
{
    w.xMin = axes[0].low;
    w.xMax = axes[0].high;
    w.yMin = axes[1].low;
    w.yMax = axes[1].high;
    w.zMin = axes[2].low;
    w.zMax = axes[2].high;
}

// Takes the range of a twin axis of another window.
void takeTwinRange(AXISRANGE& axis, const graphics::DATAWINDOW& other)
{
    for (const AXISRANGE& twin : axesOf(other)) {
        if (axis.variable == 0 || std::abs(twin.variable) != std::abs(axis.variable)) continue;
        const bool turned = (twin.variable < 0) != (axis.variable < 0);
        axis.low = turned ? twin.high : twin.low;
        axis.high = turned ? twin.low : twin.high;
        return;
    }
}

bool isKnownStyle(int style)
{
    return style == graphics::styleDots || style == graphics::styleNumbers;
}

bool isFutureStyle(int style)
{
    return style == graphics::styleQuickGridding || style == graphics::styleVgGridding ||
           style == graphics::styleArrows;
}

} // namespace

std::string RSession::openFault() const
{
    return collection.isOpen ? std::string() : "no collection is open";
}

std::string RSession::windowFault(int window) const
{
    if (!collection.isOpen) return openFault();
    if (window >= 1 && window <= setup.count()) return {};
    return common::format("there is no data window %d in %s mode", window, graphics::modeName(setup.mode));
}

void RSession::viewChanged()
{
    collection.configChanged = true;
    invalidate();
}

std::string RSession::setMode(int mode)
{
    if (!collection.isOpen) return openFault();
    if (mode == setup.mode) return {};
    if (mode > graphics::modeScatter)
        return std::string(graphics::modeName(mode)) + " mode can't be drawn by this version yet";
    selection::clearPlotted(collection);
    graphics::switchMode(setup, mode);
    viewChanged();
    view_.statusChanged();
    return {};
}

std::string RSession::useLayout(std::string_view menuText)
{
    if (!collection.isOpen) return openFault();
    if (!graphics::useLayout(setup, menuText)) return "there is no layout " + common::quoted(menuText);
    viewChanged();
    return {};
}

int RSession::variableOf(std::string_view text) const
{
    const std::string label = common::labelFromFile(common::trimBlanks(text), common::isValidUtf8(text));
    return collection::findVariable(collection.variables, collection.totalVariableCount, label);
}

int RSession::variableNamed(std::string_view text) const
{
    const bool reversed = text.starts_with('-');
    if (reversed) text.remove_prefix(1);
    const int number = variableOf(text);
    return reversed ? -number : number;
}

std::string RSession::setWindow(int window, std::string_view x, std::string_view y,
                                std::optional<std::string_view> z)
{
    if (std::string fault = windowFault(window); !fault.empty()) return fault;
    const int xVariable = variableNamed(x), yVariable = variableNamed(y);
    const bool color = z && *z != "0";
    const int zVariable = color ? variableNamed(*z) : 0;
    if (xVariable == 0) return "there is no variable " + common::quoted(x);
    if (yVariable == 0) return "there is no variable " + common::quoted(y);
    if (color && zVariable == 0) return "there is no variable " + common::quoted(*z);
    findRanges(); // so that the new axes find the ranges of their twins
    if (!graphics::setWindowVariables(setup, window, xVariable, yVariable, zVariable)) return windowFault(0);
    ranged_[static_cast<std::size_t>(setup.mode)].reset(static_cast<std::size_t>(window));
    viewChanged();
    return {};
}

// Ranges of the windows that have none yet: from the data, without touching those of other windows.
void RSession::findRanges()
{
    if (!collection.isOpen || setup.mode < 0) return;
    auto& ranged = ranged_[static_cast<std::size_t>(setup.mode)];
    if (ranged.none()) {
        graphics::PLOTCONTEXT context = plotContext();
        graphics::fullRanges(context, 0);
    }
    for (int n = 1; n <= setup.count(); ++n) {
        if (!setup.window(n).exists || ranged.test(static_cast<std::size_t>(n))) continue;
        if (ranged.any()) findRangesOf(n);
    }
    for (int n = 1; n <= setup.count(); ++n)
        ranged.set(static_cast<std::size_t>(n), setup.window(n).exists != 0);
}

void RSession::findRangesOf(int window)
{
    const auto before = setup.windows[static_cast<std::size_t>(setup.mode)];
    graphics::PLOTCONTEXT context = plotContext();
    graphics::fullRanges(context, window);
    std::array<AXISRANGE, 3> axes = axesOf(setup.window(window));
    const auto& ranged = ranged_[static_cast<std::size_t>(setup.mode)];
    for (int n = 1; n <= setup.count(); ++n) {
        if (n == window) continue;
        const graphics::DATAWINDOW& old = before[static_cast<std::size_t>(n - 1)];
        setup.window(n) = old;
        if (!old.exists || !ranged.test(static_cast<std::size_t>(n))) continue;
        for (AXISRANGE& axis : axes) takeTwinRange(axis, old);
    }
    setAxes(setup.window(window), axes);
}

std::string RSession::setRange(int window, int axis, float low, float high)
{
    if (std::string fault = windowFault(window); !fault.empty()) return fault;
    findRanges();
    const int variable = axesOf(setup.window(window))[static_cast<std::size_t>(axis)].variable;
    if (variable == 0)
        return common::format("window %d has no %s", window, axis == 2 ? "colour variable" : "variables");
    if (graphics::ApplyRangeToTwins(setup, std::abs(variable), low, high)) viewChanged();
    return {};
}

std::string RSession::fullRange(std::optional<int> window)
{
    if (std::string fault = window ? windowFault(*window) : openFault(); !fault.empty()) return fault;
    if (setup.mode < 0) return {};
    findRanges();
    graphics::PLOTCONTEXT context = plotContext();
    graphics::fullRanges(context, window.value_or(0));
    viewChanged();
    return {};
}

std::string RSession::setStyle(int window, int style, std::optional<float> dotSize)
{
    if (std::string fault = windowFault(window); !fault.empty()) return fault;
    if (isFutureStyle(style))
        return common::format("plot style %d can't be drawn by this version yet", style);
    if (!isKnownStyle(style)) return common::format("there is no plot style %d", style);
    graphics::DATAWINDOW& w = setup.window(window);
    w.style = style;
    if (dotSize) w.dotSize = w.symbolSize = *dotSize;
    w.toDraw = w.exists;
    viewChanged();
    return {};
}

std::string RSession::setPalette(int window, std::string_view name)
{
    if (std::string fault = window == 0 ? openFault() : windowFault(window); !fault.empty()) return fault;
    std::array<char, sizeof(graphics::DATAWINDOW::palette)> field{};
    common::copyText(field, name);
    if (name.empty() || common::fieldText(field) != name ||
        !common::fileExists(graphics::PalettePath(installation, name)))
        return "there is no palette " + common::quoted(name);
    if (window == 0) {
        common::copyText(setup.map.palette, name);
        setup.map.toDraw = 1;
    } else {
        common::copyText(setup.window(window).palette, name);
        setup.window(window).toDraw = setup.window(window).exists;
    }
    viewChanged();
    return {};
}

std::string RSession::setDomain(double lonMin, double lonMax, double latMin, double latMax,
                                std::optional<int> projection, std::optional<std::pair<double, double>> pole)
{
    if (!collection.isOpen) return openFault();
    if (!(lonMin < lonMax) || lonMax - lonMin > 360 || lonMin < -360 || lonMax > 720)
        return common::format("longitudes %g to %g are no domain", lonMin, lonMax);
    if (!(latMin < latMax) || latMin < -90 || latMax > 90)
        return common::format("latitudes %g to %g are no domain", latMin, latMax);
    const int id = projection.value_or(setup.map.geometry.id);
    if (id < graphics::projectionDefault || id > graphics::projectionObliqueMollweide)
        return common::format("there is no projection %d", id);
    if (pole && (std::abs(pole->first) > 360 || std::abs(pole->second) > 90))
        return common::format("%g, %g is no position of a pole", pole->first, pole->second);
    graphics::MAPGEOMETRY& map = setup.map.geometry;
    map.id = id;
    map.lonMin = lonMin;
    map.lonMax = lonMax;
    map.latMin = latMin;
    map.latMax = latMax;
    map.lon0 = pole ? pole->first : (lonMin + lonMax) / 2;
    const double typed = pole ? pole->second : (latMin + latMax) / 2;
    map.lat0 = graphics::PoleLatitudeFor(id, latMin, latMax, typed);
    graphics::markAllToDraw(setup);
    collection.configChanged = true;
    listChanged();
    return {};
}

std::string RSession::plotStation(std::optional<int> number)
{
    if (!collection.isOpen) return openFault();
    if (setup.mode > graphics::modeStation)
        return std::string("stations are plotted one by one in STATION mode, not in ") +
               graphics::modeName(setup.mode);
    std::unordered_set<int> plotted;
    for (const selection::SELECTEDSTATION& station : selection::readPlottedList(collection))
        plotted.insert(station.number);
    bool found = false;
    for (const selection::SELECTEDSTATION& station : selection::readSelectedList(collection)) {
        if (number && station.number != *number) continue;
        found = true;
        if (!plotted.insert(station.number).second) continue;
        if (!selection::appendPlotted(collection, station)) return "the list of plotted stations can't grow";
    }
    if (number && !found) return common::format("station %d isn't among the selected stations", *number);
    graphics::markAllToDraw(setup);
    viewChanged();
    view_.statusChanged();
    return {};
}

} // namespace app
