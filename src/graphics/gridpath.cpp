#include "graphics/gridpath.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace graphics {

namespace {

constexpr std::size_t pieceBytes = 1 << 16;

// True if b lies on the straight way from a to c.
bool isOnTheWay(GRIDPOINT a, GRIDPOINT b, GRIDPOINT c)
{
    const std::int64_t dx = std::int64_t(b.x) - a.x, dy = std::int64_t(b.y) - a.y;
    const std::int64_t ex = std::int64_t(c.x) - b.x, ey = std::int64_t(c.y) - b.y;
    return dx * ey == dy * ex && dx * ex + dy * ey >= 0;
}

// Square of the distance of w from the stretch between a and b.
double strayed(GRIDPOINT w, GRIDPOINT a, GRIDPOINT b)
{
    const double dx = b.x - a.x, dy = b.y - a.y, px = w.x - a.x, py = w.y - a.y;
    const double length = dx * dx + dy * dy;
    const double t = length > 0 ? std::clamp((px * dx + py * dy) / length, 0.0, 1.0) : 0;
    return (px - t * dx) * (px - t * dx) + (py - t * dy) * (py - t * dy);
}

} // namespace

void RGridPath::add(GRIDPOINT w)
{
    const std::size_t n = points_.size();
    if (n > 0 && points_[n - 1] == w) return;
    if (n > 1 && isOnTheWay(points_[n - 2], points_[n - 1], w))
        points_[n - 1] = w;
    else
        points_.push_back(w);
}

void RGridPath::close()
{
    while (points_.size() > 1 && points_.front() == points_.back()) points_.pop_back();
}

void RGridPath::simplify(double tolerance, bool ring)
{
    if (points_.size() < 4) return;
    if (ring) points_.push_back(points_.front());
    needed_.assign(points_.size(), 0);
    markNeeded(0, points_.size() - 1, tolerance);
    if (ring) points_.pop_back();
    const auto count = std::count(needed_.begin(), needed_.begin() + std::ptrdiff_t(points_.size()), 1);
    if (ring && count < 3) return;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < points_.size(); ++i)
        if (needed_[i]) points_[kept++] = points_[i];
    points_.resize(kept);
}

void RGridPath::markNeeded(std::size_t first, std::size_t last, double tolerance)
{
    needed_[first] = needed_[last] = 1;
    spans_.assign(1, {first, last});
    while (!spans_.empty()) {
        const auto span = spans_.back();
        spans_.pop_back();
        double most = tolerance * tolerance;
        std::size_t at = 0;
        for (std::size_t i = span.first + 1; i < span.second; ++i) {
            const double d = strayed(points_[i], points_[span.first], points_[span.second]);
            if (d > most) most = d, at = i;
        }
        if (at == 0) continue;
        needed_[at] = 1;
        spans_.emplace_back(span.first, at);
        spans_.emplace_back(at, span.second);
    }
}

void RGridPathWriter::fill(const RGridPath& ring)
{
    if (ring.isFlat()) return;
    path(ring.points());
    text_ += "Fill\n";
}

void RGridPathWriter::stroke(const RGridPath& line)
{
    if (line.points().empty()) return;
    path(line.points());
    if (line.points().size() == 1) numbers(1, 0, "R\n");
    text_ += "stroke\n";
}

void RGridPathWriter::path(const std::vector<GRIDPOINT>& points)
{
    if (text_.size() > pieceBytes) flush();
    text_ += "\nnp\n";
    numbers(points[0].x, points[0].y, "M\n");
    for (std::size_t i = 1; i < points.size(); ++i)
        numbers(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y, "R\n");
}

void RGridPathWriter::numbers(int a, int b, const char* procedure)
{
    char digits[32];
    char* end = std::to_chars(digits, digits + 14, a).ptr;
    *end++ = ' ';
    end = std::to_chars(end, end + 14, b).ptr;
    *end++ = ' ';
    text_.append(digits, end);
    text_ += procedure;
}

void RGridPathWriter::flush()
{
    std::fwrite(text_.data(), 1, text_.size(), ps_);
    text_.clear();
}

} // namespace graphics
