// Files of polygons: whatever the bytes are, what comes out is closed, has 3 to 1499 corners on the globe,
// reads back as itself, and holds the same points in bands as edge by edge.

#include <cmath>
#include <cstdint>
#include <span>
#include <string>

#include "common/text.h"
#include "fuzzsupport.h"
#include "selection/criteria.h"
#include "selection/polygonfile.h"

namespace {

using collection::DOMAINPOLYGON;
using fuzzing::require;

void checkWhole(const DOMAINPOLYGON& polygon)
{
    require(polygon.nPoints >= 4 && polygon.nPoints <= 1500);
    const auto last = static_cast<std::size_t>(polygon.nPoints - 1);
    require(polygon.lon[0] == polygon.lon[last] && polygon.lat[0] == polygon.lat[last]);
    for (std::size_t i = 0; i <= last; ++i) {
        require(polygon.lon[i] >= -360 && polygon.lon[i] <= 360);
        require(polygon.lat[i] >= -90 && polygon.lat[i] <= 90);
    }
}

void checkAgain(const DOMAINPOLYGON& polygon)
{
    std::string text, fault;
    for (std::size_t i = 0; i < static_cast<std::size_t>(polygon.nPoints); ++i)
        text += common::format("%.9g %.9g\n", double{polygon.lon[i]}, double{polygon.lat[i]});
    DOMAINPOLYGON again;
    require(selection::parsePolygon(text, again, fault));
    require(again.nPoints == polygon.nPoints && again.lon == polygon.lon && again.lat == polygon.lat);
}

void checkBands(DOMAINPOLYGON polygon)
{
    constexpr std::size_t points = 40;
    DOMAINPOLYGON prepared = polygon;
    selection::RPolygonScan scan(prepared);
    const auto n = static_cast<std::size_t>(polygon.nPoints);
    for (std::size_t i = 0; i < points; ++i) {
        const float x = i % 2 == 0 ? polygon.lon[i % n] : polygon.lon[i % n] + 0.3f;
        const float y = polygon.lat[i * 7 % n] + static_cast<float>(i % 3) - 1;
        const bool inside =
            selection::pointInPolygon(std::span(polygon.lon).first(n), std::span(polygon.lat).first(n), x, y);
        scan.nudge(x);
        require(scan.contains(x, y) == inside);
        require(prepared.lon == polygon.lon);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view content(reinterpret_cast<const char*>(data), size);
    DOMAINPOLYGON polygon;
    std::string fault;
    if (selection::parsePolygon(content, polygon, fault)) {
        require(fault.empty());
        checkWhole(polygon);
        checkAgain(polygon);
        checkBands(polygon);
    } else {
        require(!fault.empty() && fault.size() < 300 && polygon.nPoints == 0);
    }
    return 0;
}
