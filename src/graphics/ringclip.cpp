#include "graphics/ringclip.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace graphics {

namespace {

// Keeps what lies on one side of a vertical or horizontal border.
struct SIDE {
    double POINT2D::*across; // the coordinate that is limited
    double POINT2D::*along;  // the other one
    double limit;
    double sign; // 1 keeps values below the limit, -1 those above

    // Above 0 inside. Points on the border are outside, so that a ring that only touches it is either kept
    // whole or vanishes.
    [[nodiscard]] double depth(const POINT2D& w) const { return sign * (limit - w.*across); }
    [[nodiscard]] POINT2D crossing(const POINT2D& a, const POINT2D& b) const
    {
        const double da = depth(a), t = da / (da - depth(b));
        POINT2D w;
        w.*across = limit;
        w.*along = a.*along + (b.*along - a.*along) * t;
        return w;
    }
};

struct CHAIN { // a stretch of the ring inside the border, with both its crossings
    PATH2D points;
    std::size_t next = 0; // the chain that goes on from its end
};
struct CROSSING {
    double at;
    std::size_t chain;
    bool isEnd;
};

// Index of a point on the outside whose successor is inside, or the ring's size.
std::size_t firstEntry(const PATH2D& ring, const SIDE& side)
{
    for (std::size_t i = 0; i < ring.size(); ++i)
        if (side.depth(ring[i]) <= 0 && side.depth(ring[(i + 1) % ring.size()]) > 0) return i;
    return ring.size();
}

std::vector<CHAIN> chainsInside(const PATH2D& ring, const SIDE& side, std::size_t start)
{
    std::vector<CHAIN> chains;
    const std::size_t n = ring.size();
    for (std::size_t k = 0; k < n; ++k) {
        const POINT2D &a = ring[(start + k) % n], &b = ring[(start + k + 1) % n];
        const bool from = side.depth(a) > 0, to = side.depth(b) > 0;
        if (!from && to) chains.emplace_back().points.push_back(side.crossing(a, b));
        if (to) chains.back().points.push_back(b);
        if (from && !to) chains.back().points.push_back(side.crossing(a, b));
    }
    return chains;
}

// The crossings in their order along the border; of equal ones those that pair with their neighbour.
std::vector<CROSSING> sortedCrossings(const std::vector<CHAIN>& chains, const SIDE& side)
{
    std::vector<CROSSING> all;
    for (std::size_t i = 0; i < chains.size(); ++i) {
        all.push_back({chains[i].points.front().*side.along, i, false});
        all.push_back({chains[i].points.back().*side.along, i, true});
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const CROSSING& a, const CROSSING& b) { return a.at < b.at; });
    for (std::size_t i = 0; i + 1 < all.size(); i += 2) {
        std::size_t j = i + 1;
        while (j < all.size() && all[j].isEnd == all[i].isEnd && all[j].at == all[i + 1].at) ++j;
        if (j < all.size() && all[j].at == all[i + 1].at) std::swap(all[i + 1], all[j]);
    }
    return all;
}

// A ring without crossings of its own enters and leaves by turns along the border: neighbours belong
// together. False if they don't.
bool linkChains(std::vector<CHAIN>& chains, const SIDE& side)
{
    const std::vector<CROSSING> all = sortedCrossings(chains, side);
    for (std::size_t i = 0; i + 1 < all.size(); i += 2) {
        if (all[i].isEnd == all[i + 1].isEnd) return false;
        const CROSSING& end = all[i].isEnd ? all[i] : all[i + 1];
        const CROSSING& begin = all[i].isEnd ? all[i + 1] : all[i];
        chains[end.chain].next = begin.chain;
    }
    return true;
}

void joinInOrder(std::vector<CHAIN>& chains)
{
    for (std::size_t i = 0; i < chains.size(); ++i) chains[i].next = (i + 1) % chains.size();
}

void collectRings(std::vector<CHAIN>& chains, std::vector<PATH2D>& out)
{
    std::vector<bool> used(chains.size(), false);
    for (std::size_t i = 0; i < chains.size(); ++i) {
        PATH2D ring;
        for (std::size_t k = i; !used[k]; k = chains[k].next) {
            used[k] = true;
            ring.insert(ring.end(), chains[k].points.begin(), chains[k].points.end());
        }
        if (ring.size() > 2) out.push_back(std::move(ring));
    }
}

void clipAtSide(PATH2D&& ring, const SIDE& side, std::vector<PATH2D>& out)
{
    const auto isInside = [&side](const POINT2D& w) { return side.depth(w) >= 0; };
    if (std::all_of(ring.begin(), ring.end(), isInside)) {
        out.push_back(std::move(ring));
        return;
    }
    const std::size_t start = firstEntry(ring, side);
    if (start == ring.size()) return;
    std::vector<CHAIN> chains = chainsInside(ring, side, start);
    if (!linkChains(chains, side)) joinInOrder(chains);
    collectRings(chains, out);
}

// Part of the way from a to b that lies inside, as fractions; false if none.
bool partInside(const POINT2D& a, const POINT2D& b, const RECT2D& r, double& t0, double& t1)
{
    t0 = 0;
    t1 = 1;
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double p[4] = {-dx, dx, -dy, dy}, q[4] = {a.x - r.xmin, r.xmax - a.x, a.y - r.ymin, r.ymax - a.y};
    for (int i = 0; i < 4; ++i) {
        if (p[i] == 0 && q[i] < 0) return false;
        if (p[i] == 0) continue;
        if (p[i] < 0)
            t0 = std::max(t0, q[i] / p[i]);
        else
            t1 = std::min(t1, q[i] / p[i]);
    }
    return t0 <= t1;
}

POINT2D between(const POINT2D& a, const POINT2D& b, double t)
{
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

} // namespace

RECT2D intersection(const RECT2D& a, const RECT2D& b)
{
    return {std::max(a.xmin, b.xmin), std::min(a.xmax, b.xmax), std::max(a.ymin, b.ymin),
            std::min(a.ymax, b.ymax)};
}

std::vector<PATH2D> clipRing(const PATH2D& ring, const RECT2D& rect)
{
    const SIDE sides[] = {{&POINT2D::x, &POINT2D::y, rect.xmin, -1},
                          {&POINT2D::x, &POINT2D::y, rect.xmax, 1},
                          {&POINT2D::y, &POINT2D::x, rect.ymin, -1},
                          {&POINT2D::y, &POINT2D::x, rect.ymax, 1}};
    std::vector<PATH2D> rings{ring}, next;
    for (const SIDE& side : sides) {
        next.clear();
        for (PATH2D& r : rings) clipAtSide(std::move(r), side, next);
        rings.swap(next);
    }
    return rings;
}

void clipLine(const PATH2D& line, const RECT2D& rect, const std::function<void(const PATH2D&)>& emit)
{
    PATH2D piece;
    const auto finish = [&piece, &emit] {
        if (piece.size() > 1) emit(piece);
        piece.clear();
    };
    for (std::size_t i = 1; i < line.size(); ++i) {
        double t0 = 0, t1 = 1;
        if (!partInside(line[i - 1], line[i], rect, t0, t1)) {
            finish();
            continue;
        }
        if (t0 > 0) finish();
        if (piece.empty()) piece.push_back(between(line[i - 1], line[i], t0));
        piece.push_back(t1 < 1 ? between(line[i - 1], line[i], t1) : line[i]);
        if (t1 < 1) finish();
    }
    finish();
}

} // namespace graphics
