#include "variables/seawater/profile.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace seawater {
namespace {

constexpr float farAway = 1.0e10f;
constexpr double leastSpan = 0.3;        // of the points of a fit, in widths of the window
constexpr double limitTolerance = 1e-5;  // of a window's limits, in its widths
constexpr std::size_t largeWindow = 128; // points; larger windows are summed up from blocks
constexpr std::size_t blockSize = 32;    // points

// The profile as it is fitted: x ascends strictly.
struct POINTS {
    std::vector<float> x, y;
};

bool isUsable(float value, float missing)
{
    return value != missing && std::isfinite(value);
}

std::vector<std::size_t> usableInOrder(std::span<const float> x, std::span<const float> y, float missing)
{
    std::vector<std::size_t> order;
    order.reserve(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (isUsable(x[i], missing) && isUsable(y[i], missing)) order.push_back(i);
    }
    const auto isBefore = [&](std::size_t a, std::size_t b) { return x[a] < x[b]; };
    if (!std::is_sorted(order.begin(), order.end(), isBefore))
        std::stable_sort(order.begin(), order.end(), isBefore);
    return order;
}

POINTS pointsOf(std::span<const float> x, std::span<const float> y, float missing)
{
    const std::vector<std::size_t> order = usableInOrder(x, y, missing);
    POINTS points;
    points.x.reserve(order.size());
    points.y.reserve(order.size());
    for (const std::size_t i : order) {
        if (!points.x.empty() && points.x.back() == x[i]) {
            points.y.back() = static_cast<float>((static_cast<double>(points.y.back()) + y[i]) / 2);
        } else {
            points.x.push_back(x[i]);
            points.y.push_back(y[i]);
        }
    }
    return points;
}

// Mean and moments about it: two sets are joined without loss, however far from zero they lie.
struct MOMENTS {
    double n = 0, x = 0, y = 0, xx = 0, xy = 0;
};

MOMENTS joined(const MOMENTS& a, const MOMENTS& b)
{
    if (a.n == 0) return b;
    if (b.n == 0) return a;
    const double n = a.n + b.n, dx = b.x - a.x, dy = b.y - a.y, weight = a.n * b.n / n;
    return {n, a.x + dx * b.n / n, a.y + dy * b.n / n, a.xx + b.xx + dx * dx * weight,
            a.xy + b.xy + dx * dy * weight};
}

// Of the points first to end - 1.
MOMENTS directMoments(const POINTS& points, std::size_t first, std::size_t end)
{
    MOMENTS sum;
    sum.n = static_cast<double>(end - first);
    if (first == end) return sum;
    for (std::size_t i = first; i < end; ++i) {
        sum.x += points.x[i];
        sum.y += points.y[i];
    }
    sum.x /= sum.n;
    sum.y /= sum.n;
    for (std::size_t i = first; i < end; ++i) {
        const double dx = points.x[i] - sum.x;
        sum.xx += dx * dx;
        sum.xy += dx * (points.y[i] - sum.y);
    }
    return sum;
}

// Moments of any run of points: a short one directly, a long one from a tree over blocks of points, so that
// its cost doesn't grow with its length.
class RWindowSums {
public:
    explicit RWindowSums(const POINTS& points) : points_(points) {}

    [[nodiscard]] MOMENTS of(std::size_t first, std::size_t end)
    {
        if (end - first <= largeWindow) return directMoments(points_, first, end);
        if (tree_.empty()) build();
        const std::size_t firstBlock = (first + blockSize - 1) / blockSize, endBlock = end / blockSize;
        const MOMENTS front = directMoments(points_, first, firstBlock * blockSize);
        const MOMENTS back = directMoments(points_, endBlock * blockSize, end);
        return joined(joined(front, ofBlocks(firstBlock, endBlock)), back);
    }

private:
    // Node i has the children 2i and 2i + 1; the blocks are the last `blocks_` nodes.
    void build()
    {
        blocks_ = points_.x.size() / blockSize;
        tree_.resize(2 * blocks_);
        for (std::size_t b = 0; b < blocks_; ++b)
            tree_[blocks_ + b] = directMoments(points_, b * blockSize, (b + 1) * blockSize);
        for (std::size_t node = blocks_ - 1; node > 0; --node)
            tree_[node] = joined(tree_[2 * node], tree_[2 * node + 1]);
    }

    [[nodiscard]] MOMENTS ofBlocks(std::size_t first, std::size_t end) const
    {
        MOMENTS sum;
        for (first += blocks_, end += blocks_; first < end; first /= 2, end /= 2) {
            if (first % 2 != 0) sum = joined(sum, tree_[first++]);
            if (end % 2 != 0) sum = joined(sum, tree_[--end]);
        }
        return sum;
    }

    const POINTS& points_;
    std::vector<MOMENTS> tree_;
    std::size_t blocks_ = 0;
};

// Index of the first element for which isBelow is false, where it is true for a front part. The search widens
// from `hint`: next to nothing where the last answer is near.
template <typename IsBelow>
std::size_t partitionNear(std::span<const float> x, std::size_t hint, IsBelow isBelow)
{
    std::size_t low = hint, high = hint, step = 1;
    while (low > 0 && !isBelow(x[low - 1])) {
        high = low - 1;
        low = low > step ? low - step : 0;
        step *= 2;
    }
    step = 1;
    while (high < x.size() && isBelow(x[high])) {
        low = high + 1;
        high = std::min(high + step, x.size());
        step *= 2;
    }
    const auto begin = x.begin();
    return static_cast<std::size_t>(std::partition_point(begin + static_cast<std::ptrdiff_t>(low),
                                                         begin + static_cast<std::ptrdiff_t>(high), isBelow) -
                                    begin);
}

struct RUN {
    std::size_t first = 0, end = 0; // points first to end - 1
};

struct WINDOW {
    double low = 0, high = 0;
    [[nodiscard]] double width() const { return high - low; }
};

// The window of target j; there are two or more.
WINDOW windowOf(std::span<const float> t, std::size_t j, const INTERPOLATION& range)
{
    const auto distance = [&](std::size_t a, std::size_t b) {
        return std::abs(static_cast<double>(t[a]) - t[b]);
    };
    const std::size_t last = t.size() - 1;
    const double f = j == 0      ? distance(1, 0)
                     : j == last ? distance(last, last - 1)
                                 : distance(j + 1, j - 1) / 2;
    const double at = t[j];
    if (at > range.xMax) return {range.xMax - 2 * f, range.xMax};
    if (at < range.xMin) return {range.xMin, range.xMin + 2 * f};
    return {at - f, at + f};
}

// One call: where the last target was found speeds up the search for the next.
class RInterpolator {
public:
    RInterpolator(const POINTS& points, std::span<const float> t, const INTERPOLATION& range)
        : points_(points), t_(t), range_(range), sums_(points)
    {
    }

    // False if the points around target j are too close together.
    [[nodiscard]] bool interpolate(std::size_t j, double& value, double& proximity)
    {
        double width = 1;
        RUN run;
        if (t_.size() > 1) {
            const WINDOW window = windowOf(t_, j, range_);
            width = window.width();
            run = inside(window);
        }
        if (run.end < run.first + 2) run = bracket(t_[j]);
        if (!widen(run, width)) return false;
        const MOMENTS sums = sums_.of(run.first, run.end);
        value = sums.y + sums.xy / sums.xx * (t_[j] - sums.x);
        const double distance = nearest(run, t_[j]);
        proximity = distance == 0 ? 0 : std::min<double>(distance / width, farAway);
        return true;
    }

private:
    [[nodiscard]] RUN inside(const WINDOW& window)
    {
        const double tolerance = limitTolerance * window.width();
        const double low = window.low - tolerance, high = window.high + tolerance;
        firstHint_ = partitionNear(points_.x, firstHint_, [&](float x) { return x < low; });
        endHint_ = partitionNear(points_.x, endHint_, [&](float x) { return x <= high; });
        return {firstHint_, endHint_};
    }

    // The points on both sides of the target, or the two at the end that it lies beyond.
    [[nodiscard]] RUN bracket(float t)
    {
        hint_ = partitionNear(points_.x, hint_, [&](float x) { return x <= t; });
        const std::size_t above = std::clamp<std::size_t>(hint_, 1, points_.x.size() - 1);
        return {above - 1, above + 1};
    }

    [[nodiscard]] bool widen(RUN& run, double width) const
    {
        const auto span = [&] { return static_cast<double>(points_.x[run.end - 1]) - points_.x[run.first]; };
        while (span() < leastSpan * width) {
            if (run.first == 0 && run.end == points_.x.size()) return false;
            if (run.first > 0) --run.first;
            if (run.end < points_.x.size()) ++run.end;
        }
        return true;
    }

    [[nodiscard]] double nearest(const RUN& run, float t)
    {
        hint_ = partitionNear(points_.x, hint_, [&](float x) { return x < t; });
        const auto distance = [&](std::size_t i) { return std::abs(static_cast<double>(points_.x[i]) - t); };
        const std::size_t above = std::clamp(hint_, run.first, run.end - 1);
        return above > run.first ? std::min(distance(above), distance(above - 1)) : distance(above);
    }

    const POINTS& points_;
    std::span<const float> t_;
    const INTERPOLATION& range_;
    RWindowSums sums_;
    std::size_t firstHint_ = 0, endHint_ = 0, hint_ = 0;
};

void noteInside(std::span<const float> t, float missing, INTERPOLATION& result)
{
    for (std::size_t j = 0; j < t.size(); ++j) {
        if (!isUsable(t[j], missing)) continue;
        if (result.firstInside < 0 && t[j] >= result.xMin) result.firstInside = static_cast<int>(j);
        if (t[j] <= result.xMax) result.lastInside = static_cast<int>(j);
    }
}

} // namespace

void stretchedGrid(std::array<float, stretchedPoints>& out, float lowest, float highest, float factor)
{
    std::array<double, stretchedPoints> grid{};
    double step = 1;
    for (std::size_t i = 1; i < grid.size(); ++i, step *= factor) grid[i] = grid[i - 1] + step;
    const double range = std::max(static_cast<double>(highest) - lowest, 1.0);
    for (std::size_t i = 0; i < grid.size(); ++i)
        out[i] = static_cast<float>(grid[i] * 1.1 * range / grid.back() + lowest - 0.05 * range);
}

INTERPOLATION interpolateProfile(std::span<const float> x, std::span<const float> y, float missing,
                                 std::span<const float> t, std::span<float> out, float* proximity)
{
    std::fill(out.begin(), out.end(), missing);
    if (proximity) std::fill_n(proximity, t.size(), farAway);
    INTERPOLATION result;
    const POINTS points = pointsOf(x, y, missing);
    if (points.x.size() < 2) return result;
    result = {0, points.x.front(), points.x.back(), -1, -2};
    noteInside(t, missing, result);
    RInterpolator interpolator(points, t, result);
    for (std::size_t j = 0; j < t.size(); ++j) {
        double value = 0, distance = 0;
        if (!isUsable(t[j], missing) || !interpolator.interpolate(j, value, distance)) continue;
        const auto cell = static_cast<float>(value);
        if (std::isfinite(cell)) out[j] = cell;
        if (proximity) proximity[j] = static_cast<float>(distance);
    }
    return result;
}

} // namespace seawater
