#include "app/position.h"

#include <cmath>
#include <cstdlib>

#include "common/text.h"
#include "common/textcoding.h"
#include "graphics/drawing.h"

namespace app {
namespace {

// Where a pixel lies between the edges of a plot area, 0 to 1 in both directions; false outside.
bool fractionsOf(const std::array<std::int32_t, 4>& area, QPoint pixel, double& u, double& v)
{
    const auto [left, top, right, bottom] = area;
    if (right <= left || bottom <= top) return false;
    u = static_cast<double>(pixel.x() - left) / (right - left);
    v = static_cast<double>(bottom - pixel.y()) / (bottom - top);
    return u >= 0 && u <= 1 && v >= 0 && v <= 1;
}

double between(double low, double high, double fraction)
{
    return low + fraction * (high - low);
}

double rounded(double value, const collection::RCollection& collection, int variable)
{
    const auto number = static_cast<std::size_t>(std::abs(variable));
    const int decimals = number < collection.variables.size() ? collection.variables[number].decimals : 2;
    const double scale = std::pow(10.0, std::clamp(decimals, 0, 9));
    return std::round(value * scale) / scale;
}

// A hundredth of a degree is finer than any pixel.
double hundredths(double degrees)
{
    return std::round(degrees * 100) / 100;
}

std::string mapText(const graphics::MAPWINDOW& map, double u, double v)
{
    const graphics::MAPGEOMETRY& g = map.geometry;
    double lon = between(g.umin, g.umax, u), lat = between(g.vmin, g.vmax, v);
    if (g.id != graphics::projectionDefault) {
        if (!graphics::InsideProjection(lon, lat)) return {};
        graphics::UnprojectPoint(lon, lat);
    }
    return "Map:  " + common::labelToUtf8(graphics::longitudeLabel(hundredths(lon))) + "/" +
           common::labelToUtf8(graphics::latitudeLabel(hundredths(lat)));
}

} // namespace

std::string positionText(graphics::GRAPHICSSETUP& setup, const collection::RCollection& collection,
                         QPoint pixel)
{
    double u = 0, v = 0;
    for (int n = 1; n <= setup.count(); ++n) {
        const graphics::DATAWINDOW& w = setup.window(n);
        if (!w.exists || !fractionsOf(w.plotRect, pixel, u, v)) continue;
        return common::format("Win %d:  %g/%g", n, rounded(between(w.xMin, w.xMax, u), collection, w.xVar),
                              rounded(between(w.yMin, w.yMax, v), collection, w.yVar));
    }
    return fractionsOf(setup.map.plotRect, pixel, u, v) ? mapText(setup.map, u, v) : std::string();
}

} // namespace app
