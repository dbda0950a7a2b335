#pragma once

// Small worlds for tests of maps: polygons, their files, and the question whether a place is land.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <string>
#include <vector>

#include <QImage>
#include <QPainter>

#include "common/byteorder.h"
#include "graphics/basemap.h"
#include "graphics/palette.h"
#include "scripteduser.h"
#include "temporarydirectory.h"

namespace testing_support {

struct SHAPE {
    std::vector<float> lon, lat;
    int outline = -1; // all points
};

inline void appendWord(std::string& out, const void* word, bool swapped)
{
    char bytes[4];
    std::memcpy(bytes, word, 4);
    if (swapped) std::reverse(bytes, bytes + 4);
    out.append(bytes, 4);
}

// One record in the host's byte order, or in the other one.
inline std::string cdtRecord(const SHAPE& shape, bool swapped = false)
{
    std::string out;
    const auto n = std::int32_t(shape.lon.size());
    const std::int32_t m = shape.outline < 0 ? n : shape.outline;
    appendWord(out, &n, swapped);
    appendWord(out, &m, swapped);
    for (std::size_t i = 0; i < shape.lon.size(); ++i) {
        appendWord(out, &shape.lon[i], swapped);
        appendWord(out, &shape.lat[i], swapped);
    }
    return out;
}

inline std::string cdtBytes(const std::vector<SHAPE>& shapes, bool swapped = false)
{
    std::string out;
    for (const SHAPE& shape : shapes) out += cdtRecord(shape, swapped);
    return out;
}

inline void writeBytes(const std::string& path, const std::string& bytes)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string readBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline SHAPE box(float x0, float x1, float y0, float y1)
{
    return {{x0, x1, x1, x0, x0}, {y0, y0, y1, y1, y0}, -1};
}

// Adds points to the straight way to (x, y), one each degree.
inline void lineTo(SHAPE& s, double x, double y)
{
    const double x0 = s.lon.back(), y0 = s.lat.back();
    const int n = std::max(1, int(std::ceil(std::max(std::abs(x - x0), std::abs(y - y0)))));
    for (int i = 1; i <= n; ++i) {
        s.lon.push_back(float(x0 + (x - x0) * i / n));
        s.lat.push_back(float(y0 + (y - y0) * i / n));
    }
}

inline SHAPE polygon(const std::vector<std::pair<double, double>>& corners)
{
    SHAPE s{{float(corners[0].first)}, {float(corners[0].second)}, -1};
    for (std::size_t i = 1; i < corners.size(); ++i) lineTo(s, corners[i].first, corners[i].second);
    lineTo(s, corners[0].first, corners[0].second);
    return s;
}

// A cap around a pole with a wavy coast, closed along the pole's line.
inline SHAPE cap(double pole, double coast, double wave)
{
    SHAPE s{{0}, {float(coast)}, -1};
    for (int lon = 1; lon <= 360; ++lon) {
        s.lon.push_back(float(lon));
        s.lat.push_back(float(coast + wave * std::sin(lon * 5 * std::numbers::pi / 180)));
    }
    s.outline = int(s.lon.size());
    lineTo(s, 360, pole);
    lineTo(s, 0, pole);
    lineTo(s, 0, coast);
    return s;
}

// Continents in 0 to 360: one on each side of the prime meridian, concave ones across the date line and
// elsewhere, both poles, and some islands.
inline std::vector<SHAPE> smallWorld()
{
    return {
        polygon({{0, -25}, {35, -15}, {25, 10}, {45, 30}, {0, 35}}),
        polygon({{360, -25}, {360, 35}, {345, 20}, {335, 5}, {350, -5}}),
        polygon({{150, -15}, {180, 20}, {215, -10}, {225, 45}, {200, 35}, {180, 60}, {160, 25}, {148, 50}}),
        polygon({{60, 5}, {80, 25}, {95, 0}, {130, 40}, {110, 72}, {55, 75}}),
        polygon({{270, -55}, {300, -35}, {325, -5}, {290, 12}, {278, -10}}),
        cap(-90, -72, 4),
        cap(90, 82, 3),
        box(240, 246, 20, 26),
        box(100, 112, -40, -28)};
}

inline bool isInside(const SHAPE& s, double x, double y)
{
    bool inside = false;
    for (std::size_t i = 0, j = s.lon.size() - 1; i < s.lon.size(); j = i++)
        if ((s.lat[i] > y) != (s.lat[j] > y) &&
            x < double(s.lon[j] - s.lon[i]) * (y - s.lat[i]) / double(s.lat[j] - s.lat[i]) + s.lon[i])
            inside = !inside;
    return inside;
}

inline bool isNear(const SHAPE& s, double x, double y)
{
    const auto [x0, x1] = std::minmax_element(s.lon.begin(), s.lon.end());
    const auto [y0, y1] = std::minmax_element(s.lat.begin(), s.lat.end());
    return x >= *x0 && x <= *x1 && y >= *y0 && y <= *y1;
}

inline bool isLand(const std::vector<SHAPE>& world, double lon, double lat)
{
    const double x = lon - 360 * std::floor(lon / 360);
    const double y = std::clamp(lat, -89.9999, 89.9999);
    return std::any_of(world.begin(), world.end(),
                       [&](const SHAPE& s) { return isNear(s, x, y) && isInside(s, x, y); });
}

// A folder with a layer set "GlobLR/", a user that keeps notes, and a map without frame and stamp.
class RMapWorld {
public:
    RMapWorld()
    {
        installation.root = folder.path();
        installation.coast = folder.file("coast/");
        installation.palettes = folder.file("palettes/");
        graphics::LoadPalette("");
        graphics::drawState() = {};
    }
    ~RMapWorld()
    {
        graphics::palette() = palette_;
        graphics::projection() = projection_;
    }
    RMapWorld(const RMapWorld&) = delete;
    RMapWorld& operator=(const RMapWorld&) = delete;
    [[nodiscard]] std::string layer(const std::string& name) const
    {
        return installation.coast + "GlobLR/" + name;
    }
    [[nodiscard]] graphics::BASEMAPCONTEXT context(bool onCanvas = true)
    {
        return {installation, user, onCanvas};
    }
    // The coast only, filled, in the whole of a canvas of 20 by 20 cm but for a border.
    [[nodiscard]] graphics::MAPWINDOW map(int id, double lonMin, double lonMax, double latMin, double latMax,
                                          double lon0 = 0, double lat0 = 0) const
    {
        graphics::MAPWINDOW m;
        graphics::setDefaultLayers(m, installation);
        m.layers[graphics::layerBathymetry].clear();
        m.layers[graphics::layerCoastlines][0].lineColor = -1;
        m.layers[graphics::layerCoastlines][0].fillColor = land;
        m.background = sea;
        m.axisColor = -1;
        m.box = {18, 1, 18, 1};
        m.geometry.id = id;
        m.geometry.lonMin = lonMin;
        m.geometry.lonMax = lonMax;
        m.geometry.latMin = latMin;
        m.geometry.latMax = latMax;
        m.geometry.lon0 = lon0;
        m.geometry.lat0 = lat0;
        return m;
    }
    [[nodiscard]] static QImage paper(float pixelsPerCm = 20)
    {
        graphics::DEVICE& d = graphics::drawState().device;
        d.pixelsPerCm = pixelsPerCm;
        d.widthCm = d.heightCm = 20;
        d.widthPx = d.heightPx = int(20 * pixelsPerCm);
        QImage image(d.widthPx, d.heightPx, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        return image;
    }
    QImage paint(graphics::MAPWINDOW& m, bool onCanvas = true)
    {
        QImage image = paper();
        QPainter p(&image);
        const graphics::BASEMAPCONTEXT c = context(onCanvas);
        graphics::BaseMapBack(&p, c, m);
        graphics::BaseMapFront(&p, c, m);
        graphics::BaseMapTop(&p, c, m);
        return image;
    }
    // What one of the PostScript blocks, or any drawing, writes.
    template <class Draw>
    [[nodiscard]] std::string written(Draw draw) const
    {
        const std::string path = folder.file("written.ps");
        std::FILE* ps = std::fopen(path.c_str(), "wb");
        draw(ps);
        std::fclose(ps);
        return readBytes(path);
    }

    static constexpr int land = 2, sea = 31;
    RTemporaryDirectory folder;
    common::INSTALLATION installation;
    RScriptedUser user;

private: // what other tests find again
    const graphics::RDrawStateGuard state_{nullptr};
    const graphics::PALETTE palette_ = graphics::palette();
    const graphics::PROJECTION projection_ = graphics::projection();
};

} // namespace testing_support
