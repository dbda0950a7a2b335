#pragma once

// A polygon that many points are tested against.

#include <array>
#include <cstdint>
#include <vector>

#include "collection/selectioncriteria.h"

namespace selection {

// How many vertices a polygon has, whatever its record says.
[[nodiscard]] std::size_t vertexCount(const collection::DOMAINPOLYGON& polygon);

// Where a vertex goes that has the longitude of a point.
[[nodiscard]] float nudged(float longitude);

// Whether an edge counts as above the point: the point's longitude lies between those of its ends, and its
// latitude there is the point's or larger.
[[nodiscard]] inline bool edgeCounts(double x1, double y1, double x2, double y2, float x, float y)
{
    if (x1 == x2 || (x1 < x) == (x2 < x)) return false;
    return y1 + (x - x1) * (y2 - y1) / (x2 - x1) >= y;
}

// Gives the answers of pointInPolygon, and leaves the same vertices in the record, for the edges and vertices
// near the point's longitude only: these are kept in bands. The record must outlive it, and nobody else may
// change it meanwhile.
class RPolygonScan {
public:
    explicit RPolygonScan(collection::DOMAINPOLYGON& polygon);
    // Moves the vertices that have the longitude x.
    void nudge(float x);
    // Whether a point is inside whose longitude was given to nudge().
    [[nodiscard]] bool contains(float x, float y) const;

private:
    static constexpr std::size_t bandCount = 1024;
    using Members = std::vector<std::uint16_t>;

    [[nodiscard]] std::size_t bandOf(float x) const;
    void setBands();
    void placeEdge(std::size_t edge);
    void moveVertex(std::size_t vertex);

    collection::DOMAINPOLYGON& polygon_;
    std::size_t count_;
    float west_ = 0, bandsADegree_ = 0;
    std::array<Members, bandCount> edges_, vertices_; // an edge goes by its second vertex
};

} // namespace selection
