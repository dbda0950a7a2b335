// Polygon files: any bytes are read without harm, and what comes out can be cut, projected and put on a grid.

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "graphics/cdt.h"
#include "graphics/gridpath.h"
#include "graphics/mappath.h"

namespace {

using namespace graphics;

void require(bool condition)
{
    if (!condition) std::abort();
}

void put(std::span<const POINT2D> points, RGridPath& path)
{
    path.clear();
    for (const POINT2D& w : points) {
        require(std::isfinite(w.x) && std::isfinite(w.y));
        path.add({int(w.x * 100), int(w.y * 100)});
    }
}

// The first byte chooses projection and centre.
MAPGEOMETRY mapFor(std::uint8_t choice)
{
    MAPGEOMETRY map{.lonMin = -180,
                    .lonMax = 180,
                    .lon0 = (choice >> 3) * 12.5 - 180,
                    .lat0 = (choice >> 4) * 11.0 - 80,
                    .id = choice % 7};
    SetupMapWindow(map, {10, 0, 10, 0});
    return map;
}

void draw(const CDTRECORD& record, RMapPaths& paths)
{
    require(!record.lon.empty() && record.lon.size() <= std::size_t(maxCdtPoints));
    require(record.outline >= 0 && std::size_t(record.outline) <= record.lon.size());
    RGridPath path;
    if (record.closed())
        paths.addRing(record.lon, record.lat, [&path](std::span<const POINT2D> ring) {
            put(ring, path);
            path.close();
            path.simplify(0.75, true);
        });
    const auto m = std::size_t(record.outline);
    paths.addLine(record.lon.first(m), record.lat.first(m), [&path](std::span<const POINT2D> line) {
        put(line, path);
        path.simplify(0.75, false);
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) return 0;
    RMapPaths paths(mapFor(data[0]));
    std::FILE* const file = fmemopen(const_cast<std::uint8_t*>(data + 1), size - 1, "rb");
    if (!file) return 0;
    int records = 0;
    const CDTSCAN scan = scanCdt(file, [&](const CDTRECORD& record) {
        draw(record, paths);
        return ++records < 50;
    });
    require(scan.records == records && scan.offset >= 0 && scan.offset <= std::int64_t(size));
    std::fclose(file);
    return 0;
}
