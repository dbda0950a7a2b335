// The colour bar of the base map: a box for every depth and height.

#include <algorithm>
#include <cstdlib>

#include "common/text.h"
#include "graphics/basemap.h"
#include "graphics/palette.h"

namespace graphics {

namespace {

constexpr float gapCm = 0.35f, smallestGap = 0.03f; // smallest gap as a part of the map's width
constexpr float smallestFont = 7;
constexpr std::size_t manyBoxes = 16;
constexpr float labelGap = 0.075f; // of a box's width

struct BARBOX {
    int color;
    std::string label; // empty for none
};

// "500m.cdt" gives "500 m"; a name that doesn't start with a number gives nothing.
std::string labelOf(const LAYERENTRY& entry)
{
    std::string_view name = common::cutExtension(common::fieldText(entry.name));
    int number = 0;
    return common::takeInt(name, number) ? common::format("%d m", number) : std::string();
}

void addEntries(const MAPWINDOW& map, int kind, std::vector<BARBOX>& boxes)
{
    const auto& list = map.layers[std::size_t(kind)];
    for (std::size_t i = 0; i < list.size(); ++i)
        boxes.push_back({layerFillColor(map, kind, int(i), true), labelOf(list[i])});
}

std::vector<BARBOX> barBoxes(const MAPWINDOW& map)
{
    std::vector<BARBOX> boxes;
    addEntries(map, layerBathymetry, boxes);
    if (map.layers[layerTopography].empty()) return boxes;
    boxes.push_back({colorLandLow, "0m"});
    addEntries(map, layerTopography, boxes);
    return boxes;
}

struct BARSHAPE {
    float left, right, bottom, step, font; // user units, points
};

BARSHAPE shapeOf(const MAPGEOMETRY& g, std::size_t boxes, float fontSize)
{
    const float width = g.umax - g.umin;
    const float gap = static_cast<float>(mapColorBarGap(g)) / g.xlen * width;
    float font = std::max(0.75f * fontSize, smallestFont);
    if (boxes > manyBoxes) font *= 0.75f;
    return {g.umax + gap, g.umax + 2 * gap, g.vmin, (g.vmax - g.vmin) / float(boxes), font};
}

void paintBox(QPainter& p, const BARSHAPE& s, const BARBOX& box, float y0, float y1)
{
    const QRect r(QPoint(pixelX(s.left), pixelY(y1)), QPoint(pixelX(s.right), pixelY(y0)));
    p.setPen(QPen(Qt::black, 1));
    p.setBrush(box.color < 0 ? QBrush(Qt::NoBrush) : QBrush(paletteColor(box.color)));
    p.drawRect(r);
}

void writeBox(std::FILE* ps, const BARSHAPE& s, const BARBOX& box, float y0, float y1)
{
    WritePsColor(ps, box.color < 0 ? colorWhite : box.color);
    std::fprintf(ps, "np %g %g M %g %g L\n", s.left, y0, s.right, y0);
    std::fprintf(ps, "%g %g L %g %g L %g %g L\n", s.right, y1, s.left, y1, s.left, y0);
    std::fputs("Fill 0 setgray stroke\n\n", ps);
}

void drawLabel(QPainter* p, std::FILE* ps, const BARSHAPE& s, const std::string& label, float y)
{
    if (label.empty()) return;
    const float x = s.right + labelGap * (s.right - s.left);
    if (p) DrawLabel(p, nullptr, label, x, y, 0, s.font);
    if (ps) std::fprintf(ps, "(%s) %g %g showstring\n", psString(label).c_str(), x, y);
}

} // namespace

double mapColorBarGap(const MAPGEOMETRY& g)
{
    return std::max(gapCm, smallestGap * g.xlen);
}

void DrawMapColorBar(QPainter* p, std::FILE* ps, const MAPWINDOW& map, float fontSize)
{
    const std::vector<BARBOX> boxes = barBoxes(map);
    if (boxes.empty()) return;
    const RDrawStateGuard guard(p);
    const BARSHAPE s = shapeOf(map.geometry, boxes.size(), fontSize);
    SetClip(p, false);
    SetColor(p, colorBlack);
    SetFill(p, false);
    SetLabelOrigin(p, 8);
    if (ps)
        std::fprintf(ps,
                     "\n%%%%PS-OBJECT: MapColorBar begin\nsolid_line\nvery_thin_line\n"
                     "/fill? false def /stroke? false def /lorg 8 def %g SetMyFont\n",
                     s.font);
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const float y0 = s.bottom + float(i) * s.step, y1 = y0 + s.step;
        if (p) paintBox(*p, s, boxes[i], y0, y1);
        if (ps) writeBox(ps, s, boxes[i], y0, y1);
        drawLabel(p, ps, s, boxes[i].label, (y0 + y1) / 2);
    }
    if (ps) std::fputs("/lorg 0 def\n%%PS-OBJECT: MapColorBar end\n\n", ps);
}

} // namespace graphics
