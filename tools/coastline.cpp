#include "coastline.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include <shapefil.h>

#include "common/files.h"
#include "common/text.h"

namespace tools {
namespace {

struct ShapeFileCloser {
    void operator()(SHPInfo* file) const { SHPClose(file); }
};
struct ShapeCloser {
    void operator()(SHPObject* shape) const { SHPDestroyObject(shape); }
};

// Part i of a shape as a closed ring without repeated points; empty if it is no ring.
RING ringOf(const SHPObject& shape, int part)
{
    const int from = shape.panPartStart[part];
    const int to = part + 1 < shape.nParts ? shape.panPartStart[part + 1] : shape.nVertices;
    RING ring;
    for (int i = std::max(from, 0); i < std::min(to, shape.nVertices); ++i) {
        const POINT p{shape.padfX[i], shape.padfY[i]};
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return {};
        if (ring.empty() || ring.back() != p) ring.push_back(p);
    }
    if (!ring.empty() && ring.front() != ring.back()) ring.push_back(ring.front());
    return ring.size() < 4 ? RING{} : ring;
}

// Outer rings run clockwise, holes anticlockwise; a hole belongs to the outer ring of its shape around it.
std::vector<POLYGON> polygonsOf(const SHPObject& shape)
{
    std::vector<POLYGON> polygons;
    std::vector<RING> holes;
    for (int part = 0; part < shape.nParts; ++part) {
        RING ring = ringOf(shape, part);
        if (ring.empty()) continue;
        if (signedArea(ring) <= 0)
            polygons.push_back({std::move(ring), {}});
        else
            holes.push_back(std::move(ring));
    }
    if (polygons.empty()) return polygons;
    for (RING& hole : holes) {
        const auto around = [&](const POLYGON& polygon) { return contains(polygon.outer, hole[0]); };
        auto owner = std::find_if(polygons.begin(), polygons.end(), around);
        if (owner == polygons.end()) owner = polygons.begin();
        owner->holes.push_back(std::move(hole));
    }
    return polygons;
}

void snap(RING& ring)
{
    for (POINT& p : ring) {
        if (std::abs(std::abs(p.x) - 180) < 1e-3) p.x = std::copysign(180, p.x);
        if (std::abs(p.x) < 1e-9) p.x = 0;
        if (p.y < -89.99) p.y = -90;
    }
}

POLYGON shifted(POLYGON polygon, double by)
{
    const auto shift = [by](RING& ring) {
        for (POINT& p : ring) p.x += by;
    };
    shift(polygon.outer);
    for (RING& hole : polygon.holes) shift(hole);
    return polygon;
}

// One snapped polygon of -180 to 180 as polygons of 0 to 360.
std::vector<POLYGON> turned(const RGeos& geos, const POLYGON& polygon)
{
    const BOX box = boundsOf(polygon.outer);
    if (box.xmin >= 0) return {polygon};
    if (box.xmax <= 0) return {shifted(polygon, 360)};
    std::vector<POLYGON> out = geos.clipped(polygon, {0, -91, 181, 91});
    for (POLYGON& part : geos.clipped(polygon, {-181, -91, 0, 91}))
        out.push_back(shifted(std::move(part), 360));
    return out;
}

bool touchesDateLine(const POLYGON& polygon)
{
    return std::any_of(polygon.outer.begin(), polygon.outer.end(), [](POINT p) { return p.x == 180; });
}

} // namespace

std::optional<std::vector<POLYGON>> readLand(const RGeos& geos, const std::string& path, std::string& error)
{
    const std::unique_ptr<SHPInfo, ShapeFileCloser> file(
        common::fileExists(path) ? SHPOpen(path.c_str(), "rb") : nullptr);
    int count = 0, type = 0;
    if (file) SHPGetInfo(file.get(), &count, &type, nullptr, nullptr);
    if (!file || type != SHPT_POLYGON) {
        error = path + (file ? ": holds no polygons" : ": can't be opened as a shapefile");
        return std::nullopt;
    }
    std::vector<POLYGON> land;
    for (int i = 0; i < count; ++i) {
        const std::unique_ptr<SHPObject, ShapeCloser> shape(SHPReadObject(file.get(), i));
        if (!shape) {
            error = path + common::format(": shape %d can't be read", i);
            return std::nullopt;
        }
        if (shape->nVertices == 0) continue; // a null shape
        for (POLYGON& polygon : polygonsOf(*shape))
            for (POLYGON& valid : geos.repaired(polygon)) land.push_back(std::move(valid));
    }
    return land;
}

std::vector<POLYGON> toEastLongitudes(const RGeos& geos, std::span<const POLYGON> polygons)
{
    std::vector<POLYGON> out, atDateLine;
    for (POLYGON polygon : polygons) {
        snap(polygon.outer);
        for (RING& hole : polygon.holes) snap(hole);
        for (const POLYGON& valid : geos.repaired(polygon))
            for (POLYGON& part : turned(geos, valid))
                (touchesDateLine(part) ? atDateLine : out).push_back(std::move(part));
    }
    for (POLYGON& joined : geos.united(atDateLine)) out.push_back(std::move(joined));
    return out;
}

} // namespace tools
