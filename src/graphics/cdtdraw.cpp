// Draws polygon files on both sinks.

#include <algorithm>
#include <optional>

#include "common/text.h"
#include "graphics/basemap.h"
#include "graphics/drawingpen.h"
#include "graphics/gridpath.h"
#include "graphics/mappath.h"

namespace graphics {

namespace {

// Linear map of the plane onto the pixels of the user system in force, or onto the overlay grid.
struct GRIDAXIS {
    double origin = 0, scale = 1, start = 0;
    [[nodiscard]] int at(double w) const
    {
        return int(std::clamp((w - origin) * scale + start, -32760.0, 32760.0));
    }
};
struct GRID {
    GRIDAXIS x, y;
    [[nodiscard]] GRIDPOINT at(const POINT2D& w) const { return {x.at(w.x), y.at(w.y)}; }
};

GRIDAXIS pixels(const USRAXIS& axis)
{
    return {axis.userMin, axis.pixelsPerUnit, axis.lowPx};
}

GRIDAXIS overlay(double low, double high)
{
    return {low, overlayGrid / (high - low), 0};
}

class RPainterSink {
public:
    explicit RPainterSink(QPainter& p)
        : p_(p), grid_{pixels(usrSys().x), pixels(usrSys().y)}, line_(currentPen(drawState().penWidth))
    {
    }
    [[nodiscard]] const GRID& grid() const { return grid_; }

    // The pen in the colour of the brush covers the seams between the pieces of a cut polygon, and makes
    // islands below the size of a pixel visible.
    void fill(const RGridPath& ring)
    {
        use(QPen(drawState().currentColor, 1), drawState().currentColor);
        if (ring.isFlat()) return draw(ring);
        copy(ring);
        p_.drawPolygon(points_.data(), int(points_.size()));
    }
    void stroke(const RGridPath& line)
    {
        use(line_, Qt::NoBrush);
        draw(line);
    }

private:
    void use(const QPen& pen, const QBrush& brush)
    {
        if (p_.pen() != pen) p_.setPen(pen);
        if (p_.brush() != brush) p_.setBrush(brush);
    }
    void copy(const RGridPath& path)
    {
        points_.clear();
        for (const GRIDPOINT& w : path.points()) points_.emplace_back(w.x, w.y);
    }
    void draw(const RGridPath& line)
    {
        copy(line);
        if (points_.size() == 1)
            p_.drawPoint(points_[0]);
        else
            p_.drawPolyline(points_.data(), int(points_.size()));
    }

    QPainter& p_;
    GRID grid_;
    QPen line_;
    std::vector<QPoint> points_;
};

class RPostScriptSink {
    static constexpr double tolerance = 0.75; // grid steps, 0.03 mm on a page

public:
    RPostScriptSink(std::FILE* ps, const MAPGEOMETRY& map)
        : grid_{overlay(map.umin, map.umax), overlay(map.vmin, map.vmax)}, writer_(ps),
          straight_(map.id == projectionDefault)
    {
    }
    [[nodiscard]] const GRID& grid() const { return grid_; }
    // The pieces of a polygon that was cut for the file meet along meridians and parallels: straight in the
    // default projection, where they stay as they are, but curves in any other.
    void fill(RGridPath& ring)
    {
        if (straight_) ring.simplify(tolerance, true);
        writer_.fill(ring);
    }
    void stroke(RGridPath& line)
    {
        line.simplify(tolerance, false);
        writer_.stroke(line);
    }

private:
    GRID grid_;
    RGridPathWriter writer_;
    bool straight_;
};

template <class Sink>
class RRecordDrawer {
public:
    RRecordDrawer(Sink& sink, const MAPGEOMETRY& map) : sink_(sink), paths_(map) {}

    void fill(const CDTRECORD& record)
    {
        paths_.addRing(record.lon, record.lat, [this](std::span<const POINT2D> ring) {
            load(ring);
            path_.close();
            sink_.fill(path_);
        });
    }
    void line(const CDTRECORD& record)
    {
        const auto m = std::size_t(record.outline);
        paths_.addLine(record.lon.first(m), record.lat.first(m), [this](std::span<const POINT2D> line) {
            load(line);
            sink_.stroke(path_);
        });
    }

private:
    void load(std::span<const POINT2D> points)
    {
        path_.clear();
        for (const POINT2D& w : points) path_.add(sink_.grid().at(w));
    }

    Sink& sink_;
    RMapPaths paths_;
    RGridPath path_;
};

template <class Sink>
CDTSCAN drawFile(std::FILE* file, Sink& sink, const MAPGEOMETRY& map, bool fill, bool line)
{
    RRecordDrawer<Sink> drawer(sink, map);
    return scanCdt(file, [&](const CDTRECORD& record) {
        if (fill && record.closed()) drawer.fill(record);
        if (line) drawer.line(record);
        return true;
    });
}

CDTSCAN paintFile(QPainter& p, std::FILE* file, const MAPGEOMETRY& map, bool fill, bool line)
{
    p.save();
    RPainterSink sink(p);
    const CDTSCAN scan = drawFile(file, sink, map, fill, line);
    p.restore();
    return scan;
}

CDTSCAN writeFile(std::FILE* ps, std::FILE* file, const std::string& path, const MAPGEOMETRY& map, bool fill,
                  bool line)
{
    std::string name = path; // a marker is one line
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '\n' || c == '\r'; }, '?');
    std::fprintf(ps, "\n%%%%PS-OBJECT: CDT=%s begin\n\n", name.c_str());
    beginOverlayGrid(ps, map);
    CDTSCAN scan;
    {
        RPostScriptSink sink(ps, map);
        scan = drawFile(file, sink, map, fill, line);
    }
    endOverlayGrid(ps, map);
    std::fprintf(ps, "\n%%%%PS-OBJECT: CDT=%s end\n", name.c_str());
    return scan;
}

} // namespace

CDTSCAN DrawCdtFile(QPainter* p, std::FILE* ps, const std::string& path, const MAPGEOMETRY& map, bool fill,
                    bool line)
{
    const common::FilePtr file = common::openFile(path, "rb");
    if (!file) return {};
    CDTSCAN scan;
    if (p) scan = paintFile(*p, file.get(), map, fill, line);
    if (p && ps) std::rewind(file.get());
    if (ps) scan = writeFile(ps, file.get(), path, map, fill, line);
    return scan;
}

} // namespace graphics
