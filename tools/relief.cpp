#include "relief.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

#include "netcdffile.h"

namespace tools {
namespace {

constexpr int reliefRows = 2161, reliefColumns = 4320;

// --- box means

// Sum of a row's nodes around a column; the two outermost count half, since they are shared with the next
// box.
double weightedRow(const GRID& grid, int row, int column, int half)
{
    double sum = 0;
    for (int d = -half; d <= half; ++d) {
        const int c = (column + d + grid.columns) % grid.columns;
        sum += grid.at(row, c) * (std::abs(d) == half ? 0.5 : 1.0);
    }
    return sum;
}

float meanAround(const GRID& grid, int row, int column, int factor)
{
    const int half = factor / 2;
    double sum = 0, weights = 0;
    for (int d = -half; d <= half; ++d) {
        if (row + d < 0 || row + d >= grid.rows) continue;
        const double weight = std::abs(d) == half ? 0.5 : 1.0;
        sum += weight * weightedRow(grid, row + d, column, half);
        weights += weight * factor;
    }
    return float(std::lround(sum / weights));
}

// --- contours by marching squares

// The nodes with one more row and column around them that lie below every level. Edge ids: of the node at the
// edge's south-western end, doubled, plus one for the edge that runs north.
class RContour {
public:
    RContour(const GRID& grid, double level)
        : grid_(grid), level_(level), width_(grid.columns + 2),
          next_(std::size_t(2) * std::size_t(width_) * std::size_t(grid.rows + 2), -1)
    {
        for (int r = -1; r < grid_.rows; ++r)
            for (int c = -1; c < grid_.columns; ++c) linkCell(r, c);
    }

    std::vector<RING> rings()
    {
        std::vector<RING> out;
        for (std::size_t edge = 0; edge < next_.size(); ++edge) {
            if (next_[edge] < 0) continue;
            RING ring = trace(std::int32_t(edge));
            if (ring.size() >= 4) out.push_back(std::move(ring));
        }
        return out;
    }

private:
    bool inside(int r, int c) const { return r >= 0 && c >= 0 && r < grid_.rows && c < grid_.columns; }
    bool high(int r, int c) const { return inside(r, c) && grid_.at(r, c) > level_; }
    std::int32_t node(int r, int c) const { return 2 * ((r + 1) * width_ + c + 1); }

    // Joins the crossings on the cell's edges, with the high side on the left.
    void linkCell(int r, int c)
    {
        const std::array<bool, 4> corner = {high(r, c), high(r, c + 1), high(r + 1, c + 1), high(r + 1, c)};
        if (corner[0] == corner[1] && corner[1] == corner[2] && corner[2] == corner[3]) return;
        const std::array<std::int32_t, 4> edge = {node(r, c), node(r, c + 1) + 1, node(r + 1, c),
                                                  node(r, c) + 1};
        const int toward =
            isSaddle(corner) && !highMiddle(r, c) ? 3 : 1; // separates or joins the high corners
        for (int i = 0; i < 4; ++i) {
            if (!corner[std::size_t(i)] || corner[std::size_t((i + 1) % 4)]) continue; // only where it leaves
            int j = (i + toward) % 4;
            while (corner[std::size_t(j)] == corner[std::size_t((j + 1) % 4)]) j = (j + toward) % 4;
            next_[std::size_t(edge[std::size_t(i)])] = edge[std::size_t(j)];
        }
    }

    static bool isSaddle(const std::array<bool, 4>& corner)
    {
        return corner[0] == corner[2] && corner[1] == corner[3];
    }

    bool highMiddle(int r, int c) const
    {
        if (!inside(r, c) || !inside(r + 1, c + 1)) return false;
        return (grid_.at(r, c) + grid_.at(r, c + 1) + grid_.at(r + 1, c) + grid_.at(r + 1, c + 1)) / 4 >
               level_;
    }

    // Where the level crosses an edge; towards the row or column around the grid, on the grid's border.
    POINT crossing(std::int32_t edge) const
    {
        const int r = edge / 2 / width_ - 1, c = edge / 2 % width_ - 1;
        const bool north = (edge & 1) != 0;
        const int r2 = r + (north ? 1 : 0), c2 = c + (north ? 0 : 1);
        double t = inside(r, c) ? 0 : 1;
        if (inside(r, c) && inside(r2, c2))
            t = (level_ - grid_.at(r, c)) / (grid_.at(r2, c2) - grid_.at(r, c));
        return {grid_.x0 + (c + (north ? 0 : t)) * grid_.step, grid_.y0 + (r + (north ? t : 0)) * grid_.step};
    }

    RING trace(std::int32_t start)
    {
        RING ring;
        std::int32_t edge = start;
        while (next_[std::size_t(edge)] >= 0) {
            append(ring, crossing(edge));
            edge = std::exchange(next_[std::size_t(edge)], -1);
        }
        append(ring, crossing(edge)); // back at the start
        return ring;
    }

    // Runs along the chart's edge keep only their ends.
    static void append(RING& ring, POINT p)
    {
        if (!ring.empty() && ring.back() == p) return;
        const std::size_t n = ring.size();
        if (n >= 2 && onChartEdge(ring[n - 2], ring[n - 1]) && onChartEdge(ring[n - 1], p) &&
            (ring[n - 2].x == p.x || ring[n - 2].y == p.y))
            ring.back() = p;
        else
            ring.push_back(p);
    }

    const GRID& grid_;
    const double level_;
    const int width_;
    std::vector<std::int32_t> next_;
};

} // namespace

std::optional<GRID> readRelief(const std::string& path, std::string& error)
{
    RNetcdfFile file(path);
    std::vector<float> heights = file.floats("ROSE", {reliefRows, reliefColumns});
    if (!file.error().empty()) {
        error = path + ": " + file.error();
        return std::nullopt;
    }
    const auto odd = [](float h) { return !(h > -12000 && h < 9000) || h != std::floor(h); };
    if (std::any_of(heights.begin(), heights.end(), odd)) {
        error = path + ": holds something else than heights in whole metres";
        return std::nullopt;
    }
    return GRID{reliefRows, reliefColumns, 0, -90, 1.0 / 12, std::move(heights)};
}

GRID boxMean(const GRID& relief, int factor)
{
    GRID mean{(relief.rows - 1) / factor + 1,
              relief.columns / factor,
              relief.x0,
              relief.y0,
              relief.step * factor,
              {}};
    for (int r = 0; r < mean.rows; ++r)
        for (int c = 0; c < mean.columns; ++c)
            mean.heights.push_back(meanAround(relief, r * factor, c * factor, factor));
    return mean;
}

GRID closedGlobe(const GRID& relief)
{
    GRID closed = relief;
    closed.columns = relief.columns + 1;
    closed.heights.clear();
    for (int r = 0; r < relief.rows; ++r) {
        const auto row = relief.heights.begin() + std::ptrdiff_t(r) * relief.columns;
        closed.heights.insert(closed.heights.end(), row, row + relief.columns);
        closed.heights.push_back(*row);
    }
    return closed;
}

std::vector<RING> contourRings(const GRID& grid, double level)
{
    return RContour(grid, level).rings();
}

} // namespace tools
