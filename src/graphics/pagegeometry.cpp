#include "graphics/pagegeometry.h"

#include <algorithm>
#include <cmath>

namespace graphics {

namespace {

struct PAGE {
    double xOffset, yOffset; // cm
    double scale;
    EXTENT area; // points
};
constexpr PAGE portraitPage = {4.0, 15.0, 0.6, {40, 40, 568, 800}};
constexpr PAGE landscapePage = {2.0, 2.0, 0.9, {40, 40, 800, 560}};

constexpr double turnedEdge = 598; // points: the foot of a turned page
constexpr double rightLimit = 590, topLimit = 835;

// What is added to an offset, cm, so that the extent stands in the middle of the page area.
double centring(double areaLow, double areaHigh, double low, double high, double factor, double newScale,
                double oldScale)
{
    const double edge = (areaHigh - areaLow - factor * (high - low)) / 2 + areaLow;
    return (edge / newScale - low / oldScale) / pointsPerCm;
}

PAGEGEOMETRY fitted(PAGEGEOMETRY page, const EXTENT& area, const EXTENT& region)
{
    const EXTENT r = pagePoints(page, region);
    if (r.empty()) return page;
    const double factor = std::min((area.right - area.left) / (r.right - r.left),
                                   (area.top - area.bottom) / (r.top - r.bottom));
    const double scale = page.scale * factor;
    page.xOffset += centring(area.left, area.right, r.left, r.right, factor, scale, page.scale);
    page.yOffset += centring(area.bottom, area.top, r.bottom, r.top, factor, scale, page.scale);
    page.scale = scale;
    return page;
}

// Whole points around the box; what lies within a thousandth of a whole point is that point.
int downward(double points)
{
    return static_cast<int>(std::floor(points + 1e-3));
}
int upward(double points)
{
    return static_cast<int>(std::ceil(points - 1e-3));
}

} // namespace

PAGEGEOMETRY pageGeometry(const PSSETTINGS& settings, const EXTENT& region, double canvasWidth,
                          double canvasHeight)
{
    const PAGE& from = settings.landscape ? landscapePage : portraitPage;
    PAGEGEOMETRY page{settings.landscape, from.scale, from.xOffset, from.yOffset};
    if (settings.fitToPage) return fitted(page, from.area, region);
    page.scale /= std::max(canvasWidth / referenceWidth, canvasHeight / referenceHeight);
    return page;
}

EXTENT pagePoints(const PAGEGEOMETRY& page, const EXTENT& region)
{
    const double k = page.scale * pointsPerCm;
    return {k * (region.left + page.xOffset), k * (region.bottom + page.yOffset),
            k * (region.right + page.xOffset), k * (region.top + page.yOffset)};
}

PAGEBOX boundingBox(const PAGEGEOMETRY& page, const EXTENT& points)
{
    EXTENT box = points;
    if (page.landscape)
        box = {turnedEdge - points.top, points.left, turnedEdge - points.bottom, points.right};
    return {std::max(downward(box.left), 0), std::max(downward(box.bottom), 0),
            upward(std::min(box.right, rightLimit)), upward(std::min(box.top, topLimit))};
}

} // namespace graphics
