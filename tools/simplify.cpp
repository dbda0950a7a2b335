#include "simplify.h"

#include <algorithm>
#include <cmath>

namespace tools {
namespace {

// A ring as chains between its points on the chart's edges; one closed chain if it has none.
void appendChains(const RING& ring, std::vector<CHAIN>& out)
{
    const auto fixed = [](POINT p) { return onChartEdge(p); };
    RING turned(ring.begin(), ring.end() - 1);
    const auto first = std::find_if(turned.begin(), turned.end(), fixed);
    if (first != turned.end()) std::rotate(turned.begin(), first, turned.end());
    turned.push_back(turned.front());
    CHAIN chain{turned.front()};
    for (std::size_t i = 1; i < turned.size(); ++i) {
        chain.push_back(turned[i]);
        if (!fixed(turned[i]) && i + 1 < turned.size()) continue;
        out.push_back(std::move(chain));
        chain = {turned[i]};
    }
}

// Takes chains from the front of `rest` until they close a ring.
RING takeRing(std::span<const CHAIN>& rest, std::size_t chains)
{
    RING ring = rest[0];
    for (std::size_t i = 1; i < chains; ++i) ring.insert(ring.end(), rest[i].begin() + 1, rest[i].end());
    rest = rest.subspan(chains);
    return ring;
}

bool isArea(const RING& ring)
{
    return ring.size() >= 4 && std::abs(signedArea(ring)) > 1e-12;
}

struct RINGCHAINS {
    const RING* ring;
    std::size_t chains;
};

} // namespace

std::vector<POLYGON> simplify(const RGeos& geos, std::span<const POLYGON> polygons, double tolerance)
{
    if (tolerance <= 0) return {polygons.begin(), polygons.end()};
    std::vector<CHAIN> chains;
    std::vector<RINGCHAINS> rings;
    const auto add = [&](const RING& ring) {
        const std::size_t before = chains.size();
        appendChains(ring, chains);
        rings.push_back({&ring, chains.size() - before});
    };
    for (const POLYGON& polygon : polygons) {
        add(polygon.outer);
        for (const RING& hole : polygon.holes) add(hole);
    }
    const std::vector<CHAIN> thin = geos.simplified(chains, tolerance);
    if (thin.size() != chains.size()) return {};

    std::span<const CHAIN> rest = thin;
    auto next = rings.begin();
    const auto take = [&]() {
        RING ring = takeRing(rest, next->chains);
        if (!isArea(ring)) ring = *next->ring; // too small to thin
        ++next;
        return ring;
    };
    std::vector<POLYGON> out;
    for (const POLYGON& polygon : polygons) {
        POLYGON thinned{take(), {}};
        for (std::size_t i = 0; i < polygon.holes.size(); ++i) thinned.holes.push_back(take());
        for (POLYGON& part : geos.repaired(thinned)) out.push_back(std::move(part));
    }
    return out;
}

} // namespace tools
