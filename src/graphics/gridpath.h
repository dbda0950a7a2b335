#pragma once

// Paths of whole numbers: pixels of a painter, or the overlay grid of a PostScript map. Steps of nothing and
// stations on a straight way are left out, so that a path draws the same with far fewer points.

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace graphics {

struct GRIDPOINT {
    int x = 0, y = 0;
    friend bool operator==(const GRIDPOINT&, const GRIDPOINT&) = default;
};

class RGridPath {
public:
    void clear() { points_.clear(); }
    void add(GRIDPOINT w);
    // Takes the ends of a ring together, whose last point leads back to its first.
    void close();
    // Leaves out points from which the way that remains strays by at most `tolerance` (Douglas and Peucker,
    // 1973). A ring keeps at least three points if it has them.
    void simplify(double tolerance, bool ring);
    [[nodiscard]] const std::vector<GRIDPOINT>& points() const { return points_; }
    // True if a filled ring of these points covers nothing.
    [[nodiscard]] bool isFlat() const { return points_.size() < 3; }

private:
    void markNeeded(std::size_t first, std::size_t last, double tolerance);

    std::vector<GRIDPOINT> points_;
    std::vector<char> needed_;                               // scratch of simplify
    std::vector<std::pair<std::size_t, std::size_t>> spans_; // the same
};

// Collects paths as PostScript text and writes it in large pieces.
class RGridPathWriter {
public:
    explicit RGridPathWriter(std::FILE* ps) : ps_(ps) {}
    ~RGridPathWriter() { flush(); }
    RGridPathWriter(const RGridPathWriter&) = delete;
    RGridPathWriter& operator=(const RGridPathWriter&) = delete;

    void fill(const RGridPath& ring);   // nothing for a flat ring
    void stroke(const RGridPath& line); // a line of one point becomes a dot of one grid step
    void flush();

private:
    void path(const std::vector<GRIDPOINT>& points);
    void numbers(int a, int b, const char* procedure);

    std::FILE* ps_;
    std::string text_;
};

} // namespace graphics
