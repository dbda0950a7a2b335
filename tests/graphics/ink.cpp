#include "graphics/ink.h"

#include <algorithm>
#include <vector>

namespace testing_support {
namespace {

bool isInk(QRgb pixel)
{
    return qGray(pixel) < 200;
}

struct MASK {
    int width, height;
    std::vector<char> ink;
    [[nodiscard]] char at(int x, int y) const
    {
        if (x < 0 || y < 0 || x >= width || y >= height) return 0;
        return ink[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                   static_cast<std::size_t>(x)];
    }
};

MASK maskOf(const QImage& image)
{
    MASK mask{image.width(), image.height(), {}};
    for (int y = 0; y < mask.height; ++y) {
        for (int x = 0; x < mask.width; ++x) mask.ink.push_back(isInk(image.pixel(x, y)) ? 1 : 0);
    }
    return mask;
}

// Each pixel takes the largest value within reach, along one axis.
MASK grown(const MASK& mask, int dx, int dy, int reach)
{
    MASK result{mask.width, mask.height, {}};
    for (int y = 0; y < mask.height; ++y) {
        for (int x = 0; x < mask.width; ++x) {
            char value = 0;
            for (int i = -reach; i <= reach; ++i) value = std::max(value, mask.at(x + i * dx, y + i * dy));
            result.ink.push_back(value);
        }
    }
    return result;
}

} // namespace

double inkCovered(const QImage& a, const QImage& b, int reach)
{
    const MASK mine = maskOf(a), theirs = grown(grown(maskOf(b), 1, 0, reach), 0, 1, reach);
    double ink = 0, met = 0;
    for (int y = 0; y < mine.height; ++y) {
        for (int x = 0; x < mine.width; ++x) {
            ink += mine.at(x, y);
            met += mine.at(x, y) && theirs.at(x, y);
        }
    }
    return ink > 0 ? met / ink : 0;
}

int inkIn(const QImage& image, const QRect& area)
{
    int count = 0;
    const QRect inside = area.intersected(image.rect());
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) count += isInk(image.pixel(x, y));
    }
    return count;
}

} // namespace testing_support
