#include "graphics/imagefiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include <QBuffer>
#include <QImageWriter>
#include <gif_lib.h>

#include "common/files.h"
#include "graphics/plots.h"

namespace graphics {

namespace {

constexpr int maxColors = 256;

struct COLORCOUNT {
    QRgb color;
    std::int64_t pixels;
};
using HISTOGRAM = std::vector<COLORCOUNT>;

// At `bits` bits a component; a cell stands for the mean of its colours.
class RColorTable {
public:
    explicit RColorTable(int bits) : shift_(8 - bits), cells_(std::size_t{1} << (3 * bits)) {}
    [[nodiscard]] std::size_t cell(QRgb color) const
    {
        const int bits = 8 - shift_;
        const auto part = [this](int component) { return static_cast<std::size_t>(component >> shift_); };
        return (part(qRed(color)) << (2 * bits)) | (part(qGreen(color)) << bits) | part(qBlue(color));
    }
    void count(const QImage& image)
    {
        for (int y = 0; y < image.height(); ++y) {
            const auto* const line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
            for (int x = 0; x < image.width(); ++x) add(line[x]);
        }
    }
    [[nodiscard]] HISTOGRAM histogram() const
    {
        HISTOGRAM colors;
        for (const CELL& c : cells_) {
            if (c.pixels == 0) continue;
            const auto mean = [&c](std::int64_t sum) {
                return static_cast<int>((sum + c.pixels / 2) / c.pixels);
            };
            colors.push_back({qRgb(mean(c.red), mean(c.green), mean(c.blue)), c.pixels});
        }
        return colors;
    }

private:
    struct CELL {
        std::int64_t pixels = 0, red = 0, green = 0, blue = 0;
    };
    void add(QRgb color)
    {
        CELL& c = cells_[cell(color)];
        ++c.pixels;
        c.red += qRed(color);
        c.green += qGreen(color);
        c.blue += qBlue(color);
    }
    int shift_;
    std::vector<CELL> cells_;
};

// --- median cut

int component(QRgb color, int axis)
{
    return axis == 0 ? qRed(color) : axis == 1 ? qGreen(color) : qBlue(color);
}

struct CUTBOX {
    HISTOGRAM::iterator first, last;
    std::int64_t pixels = 0;
    int axis = 0, width = 0; // the component with the widest range
};

CUTBOX makeBox(HISTOGRAM::iterator first, HISTOGRAM::iterator last)
{
    CUTBOX box{first, last};
    std::array<int, 3> low{255, 255, 255}, high{0, 0, 0};
    for (auto c = first; c != last; ++c) {
        box.pixels += c->pixels;
        for (int axis = 0; axis < 3; ++axis) {
            const auto a = static_cast<std::size_t>(axis);
            low[a] = std::min(low[a], component(c->color, axis));
            high[a] = std::max(high[a], component(c->color, axis));
        }
    }
    for (int axis = 0; axis < 3; ++axis) {
        const auto a = static_cast<std::size_t>(axis);
        if (high[a] - low[a] <= box.width) continue;
        box.width = high[a] - low[a];
        box.axis = axis;
    }
    return box;
}

// At the median of the pixels, but so that both halves hold a colour.
HISTOGRAM::iterator medianOf(CUTBOX& box)
{
    std::sort(box.first, box.last, [axis = box.axis](const COLORCOUNT& a, const COLORCOUNT& b) {
        const int ca = component(a.color, axis), cb = component(b.color, axis);
        return ca != cb ? ca < cb : a.color < b.color;
    });
    std::int64_t pixels = 0;
    auto middle = box.first;
    while (middle + 1 != box.last && 2 * pixels < box.pixels) pixels += (middle++)->pixels;
    return middle == box.first ? middle + 1 : middle;
}

// A wide box is worth cutting even if few pixels are in it: lines and letters are small and must keep theirs.
double worth(const CUTBOX& box)
{
    return box.width == 0 ? 0 : box.width * box.width * std::max<double>(1, std::sqrt(box.pixels));
}

QRgb meanColor(const CUTBOX& box)
{
    double red = 0, green = 0, blue = 0;
    for (auto c = box.first; c != box.last; ++c) {
        const auto weight = c->pixels;
        red += weight * qRed(c->color);
        green += weight * qGreen(c->color);
        blue += weight * qBlue(c->color);
    }
    const auto n = box.pixels;
    return qRgb(qRound(red / n), qRound(green / n), qRound(blue / n));
}

std::vector<CUTBOX> cut(HISTOGRAM& colors)
{
    std::vector<CUTBOX> boxes{makeBox(colors.begin(), colors.end())};
    while (static_cast<int>(boxes.size()) < maxColors) {
        const auto widest = std::max_element(
            boxes.begin(), boxes.end(), [](const CUTBOX& a, const CUTBOX& b) { return worth(a) < worth(b); });
        if (widest->width == 0) break;
        const CUTBOX whole = *widest;
        const auto middle = medianOf(*widest);
        *widest = makeBox(whole.first, middle);
        boxes.push_back(makeBox(middle, whole.last));
    }
    return boxes;
}

// --- reduction

// The distinct colours in the order they first appear; none if there are more than fit.
std::vector<QRgb> distinctColors(const QImage& image)
{
    std::vector<QRgb> colors;
    std::unordered_map<QRgb, int> known;
    QRgb last = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if (!colors.empty() && line[x] == last) continue;
            last = line[x];
            if (!known.try_emplace(last, 0).second) continue;
            if (static_cast<int>(colors.size()) == maxColors) return {};
            colors.push_back(last);
        }
    }
    return colors;
}

template <typename IndexOf>
QImage indexed(const QImage& image, const std::vector<QRgb>& colors, IndexOf indexOf)
{
    QImage out(image.size(), QImage::Format_Indexed8);
    out.setColorTable(QList<QRgb>(colors.begin(), colors.end()));
    for (int y = 0; y < image.height(); ++y) {
        const auto* const from = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        uchar* const to = out.scanLine(y);
        for (int x = 0; x < image.width(); ++x) to[x] = static_cast<uchar>(indexOf(from[x]));
    }
    return out;
}

QImage exactly(const QImage& image, const std::vector<QRgb>& colors)
{
    std::unordered_map<QRgb, int> indices;
    for (std::size_t i = 0; i < colors.size(); ++i) indices.emplace(colors[i], static_cast<int>(i));
    QRgb last = colors.front();
    int lastIndex = 0;
    return indexed(image, colors, [&](QRgb color) {
        if (color != last) {
            last = color;
            lastIndex = indices.at(color);
        }
        return lastIndex;
    });
}

QImage byMedianCut(const QImage& image)
{
    constexpr int bits = 6;
    RColorTable table(bits);
    table.count(image);
    HISTOGRAM colors = table.histogram();
    const std::vector<CUTBOX> boxes = cut(colors);
    std::vector<QRgb> palette;
    std::vector<int> indexOfCell(std::size_t{1} << (3 * bits));
    for (const CUTBOX& box : boxes) {
        for (auto c = box.first; c != box.last; ++c) {
            indexOfCell[table.cell(c->color)] = static_cast<int>(palette.size());
        }
        palette.push_back(meanColor(box));
    }
    return indexed(image, palette, [&](QRgb color) { return indexOfCell[table.cell(color)]; });
}

// --- GIF

int appendBytes(GifFileType* gif, const GifByteType* bytes, int count)
{
    auto* const out = static_cast<std::string*>(gif->UserData);
    out->append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
    return count;
}

using COLORMAP = std::unique_ptr<ColorMapObject, decltype(&GifFreeMapObject)>;

COLORMAP colorMap(const QImage& image)
{
    const QList<QRgb> table = image.colorTable();
    int size = 2;
    while (size < table.size()) size *= 2;
    COLORMAP map(GifMakeMapObject(size, nullptr), &GifFreeMapObject);
    if (!map) return map;
    std::fill_n(map->Colors, size, GifColorType{0, 0, 0});
    for (qsizetype i = 0; i < table.size(); ++i) {
        map->Colors[i] = {static_cast<GifByteType>(qRed(table[i])),
                          static_cast<GifByteType>(qGreen(table[i])),
                          static_cast<GifByteType>(qBlue(table[i]))};
    }
    return map;
}

bool putPicture(GifFileType* gif, const QImage& image, const ColorMapObject* map)
{
    constexpr int colorResolution = 8;
    if (EGifPutScreenDesc(gif, image.width(), image.height(), colorResolution, 0, map) == GIF_ERROR)
        return false;
    if (EGifPutImageDesc(gif, 0, 0, image.width(), image.height(), false, nullptr) == GIF_ERROR) return false;
    for (int y = 0; y < image.height(); ++y) {
        auto* const line = const_cast<GifPixelType*>(image.constScanLine(y)); // only read
        if (EGifPutLine(gif, line, image.width()) == GIF_ERROR) return false;
    }
    return true;
}

} // namespace

QImage reduceColors(const QImage& image)
{
    const QImage source = image.convertToFormat(QImage::Format_RGB32);
    if (source.isNull()) return {};
    const std::vector<QRgb> colors = distinctColors(source);
    return colors.empty() ? byMedianCut(source) : exactly(source, colors);
}

std::string encodeGif(const QImage& image)
{
    constexpr int longestSide = 65535;
    if (image.isNull() || image.width() > longestSide || image.height() > longestSide) return {};
    const QImage reduced = reduceColors(image);
    const COLORMAP map = colorMap(reduced);
    std::string bytes;
    int error = 0;
    GifFileType* const gif = EGifOpen(&bytes, appendBytes, &error);
    if (!gif) return {};
    const bool put = map && putPicture(gif, reduced, map.get());
    const bool closed = EGifCloseFile(gif, &error) == GIF_OK;
    return put && closed ? bytes : std::string();
}

std::string encodeImage(const QImage& image, const char* format)
{
    QBuffer buffer;
    QImageWriter writer(&buffer, format);
    constexpr int jpegQuality = 92;
    if (QByteArray(format) == "JPEG") writer.setQuality(jpegQuality);
    if (!buffer.open(QIODevice::WriteOnly) || !writer.write(image)) return {};
    return buffer.data().toStdString();
}

bool writeGif(const QImage& image, const std::string& path)
{
    const std::string bytes = encodeGif(image);
    return !bytes.empty() && common::writeFile(path, bytes);
}

} // namespace graphics
