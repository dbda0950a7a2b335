#include "selection/polygonscan.h"

#include <algorithm>
#include <cmath>

namespace selection {
namespace {

void addOnce(std::vector<std::uint16_t>& members, std::size_t member)
{
    const auto number = static_cast<std::uint16_t>(member);
    if (std::find(members.begin(), members.end(), number) == members.end()) members.push_back(number);
}

} // namespace

std::size_t vertexCount(const collection::DOMAINPOLYGON& polygon)
{
    return static_cast<std::size_t>(
        std::clamp(polygon.nPoints, 0, static_cast<std::int32_t>(polygon.lon.size())));
}

float nudged(float longitude)
{
    constexpr float step = 1e-6f;
    return longitude == 0 ? step : longitude * (1 + step);
}

RPolygonScan::RPolygonScan(collection::DOMAINPOLYGON& polygon)
    : polygon_(polygon), count_(vertexCount(polygon))
{
    setBands();
    for (std::size_t i = 0; i < count_; ++i)
        vertices_[bandOf(polygon_.lon[i])].push_back(static_cast<std::uint16_t>(i));
    for (std::size_t i = 1; i < count_; ++i) placeEdge(i);
}

// Bands of equal width over all finite longitudes.
void RPolygonScan::setBands()
{
    float west = INFINITY, east = -INFINITY;
    for (std::size_t i = 0; i < count_; ++i) {
        if (!std::isfinite(polygon_.lon[i])) continue;
        west = std::min(west, polygon_.lon[i]);
        east = std::max(east, polygon_.lon[i]);
    }
    if (!(west < east)) return; // one band
    west_ = west;
    bandsADegree_ = static_cast<float>(bandCount) / (east - west);
}

// Never decreasing with x, which is all that the answers need of it: an edge is in the bands of its ends and
// in those between.
std::size_t RPolygonScan::bandOf(float x) const
{
    const float place = (x - west_) * bandsADegree_;
    if (!(place > 0)) return 0;
    return place < static_cast<float>(bandCount) ? static_cast<std::size_t>(place) : bandCount - 1;
}

// An edge with an end that is no number never counts.
void RPolygonScan::placeEdge(std::size_t edge)
{
    const float a = polygon_.lon[edge - 1], b = polygon_.lon[edge];
    if (std::isnan(a) || std::isnan(b)) return;
    const std::size_t last = bandOf(std::max(a, b));
    for (std::size_t band = bandOf(std::min(a, b)); band <= last; ++band)
        edges_[band].push_back(static_cast<std::uint16_t>(edge));
}

void RPolygonScan::nudge(float x)
{
    const Members& near = vertices_[bandOf(x)];
    for (std::size_t i = 0; i < near.size(); ++i) {
        if (polygon_.lon[near[i]] == x) moveVertex(near[i]);
    }
}

// What a vertex leaves behind in a band does no harm there: each one is asked for its place.
void RPolygonScan::moveVertex(std::size_t vertex)
{
    float& longitude = polygon_.lon[vertex];
    const std::size_t from = bandOf(longitude);
    longitude = nudged(longitude);
    const std::size_t to = bandOf(longitude);
    if (from == to) return;
    addOnce(vertices_[to], vertex);
    for (std::size_t band = std::min(from, to); band <= std::max(from, to); ++band) {
        if (vertex > 0) addOnce(edges_[band], vertex);
        if (vertex + 1 < count_) addOnce(edges_[band], vertex + 1);
    }
}

bool RPolygonScan::contains(float x, float y) const
{
    bool inside = false;
    for (const std::size_t edge : edges_[bandOf(x)]) {
        if (edgeCounts(polygon_.lon[edge - 1], polygon_.lat[edge - 1], polygon_.lon[edge], polygon_.lat[edge],
                       x, y)) {
            inside = !inside;
        }
    }
    return inside;
}

} // namespace selection
