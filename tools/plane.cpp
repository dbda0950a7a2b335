#include "plane.h"

#include <algorithm>
#include <cmath>

namespace tools {

BOX boundsOf(std::span<const POINT> points)
{
    BOX box{points[0].x, points[0].y, points[0].x, points[0].y};
    for (const POINT& p : points) {
        box.xmin = std::min(box.xmin, p.x);
        box.xmax = std::max(box.xmax, p.x);
        box.ymin = std::min(box.ymin, p.y);
        box.ymax = std::max(box.ymax, p.y);
    }
    return box;
}

double signedArea(std::span<const POINT> ring)
{
    double twice = 0;
    for (std::size_t i = 1; i < ring.size(); ++i) {
        // About the first point, so that small rings far from the origin keep their digits.
        twice += (ring[i - 1].x - ring[0].x) * (ring[i].y - ring[0].y) -
                 (ring[i].x - ring[0].x) * (ring[i - 1].y - ring[0].y);
    }
    return twice / 2;
}

double areaOf(const POLYGON& polygon)
{
    double area = std::abs(signedArea(polygon.outer));
    for (const RING& hole : polygon.holes) area -= std::abs(signedArea(hole));
    return area;
}

std::size_t pointCount(const POLYGON& polygon)
{
    std::size_t count = polygon.outer.size();
    for (const RING& hole : polygon.holes) count += hole.size();
    return count;
}

bool contains(std::span<const POINT> ring, POINT point)
{
    bool inside = false;
    for (std::size_t i = 1; i < ring.size(); ++i) {
        const POINT a = ring[i - 1], b = ring[i];
        if ((a.y > point.y) == (b.y > point.y)) continue;
        if (point.x < a.x + (point.y - a.y) / (b.y - a.y) * (b.x - a.x)) inside = !inside;
    }
    return inside;
}

RING rectangle(const BOX& box)
{
    return {{box.xmin, box.ymin},
            {box.xmax, box.ymin},
            {box.xmax, box.ymax},
            {box.xmin, box.ymax},
            {box.xmin, box.ymin}};
}

bool onChartEdge(POINT a, POINT b)
{
    return (a.x == b.x && (a.x == 0 || a.x == 360)) || (a.y == b.y && std::abs(a.y) == 90);
}

bool onChartEdge(POINT a)
{
    return onChartEdge(a, a);
}

} // namespace tools
