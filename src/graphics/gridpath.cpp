#include "graphics/gridpath.h"

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
