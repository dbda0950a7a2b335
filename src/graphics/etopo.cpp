#include "graphics/etopo.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "common/byteorder.h"

namespace graphics {

namespace {

constexpr std::size_t readBytes = 32;    // of the header
constexpr std::int64_t headerBytes = 36; // before the heights
constexpr int maxCellsPerRow = 6999;

static_assert(offsetof(ETOPOHEADER, reserved1) == 8 && offsetof(ETOPOHEADER, cellsPerRow) == 16 &&
              offsetof(ETOPOHEADER, cellsPerLat) == 24 && offsetof(ETOPOHEADER, swap) == readBytes);

bool isRowLength(std::int32_t cells)
{
    return cells >= 1 && cells <= maxCellsPerRow;
}

bool isDensity(float cellsPerDegree)
{
    return cellsPerDegree > 0 && cellsPerDegree <= maxCellsPerRow; // false for NaN
}

// Unpacks the first 32 bytes; false if they are not those of such a file.
bool unpackHeader(const char* bytes, ETOPOHEADER& h)
{
    h = {};
    std::memcpy(&h, bytes, readBytes);
    if (std::memcmp(h.magic, "ETOPO01", sizeof h.magic) != 0) return false;
    h.swap = !isRowLength(h.cellsPerRow);
    if (h.swap) {
        char* const words = reinterpret_cast<char*>(&h) + offsetof(ETOPOHEADER, reserved1);
        common::reverseBytes(words, 6, 4, words);
    }
    return isRowLength(h.cellsPerRow) && isDensity(h.cellsPerLon) && isDensity(h.cellsPerLat) &&
           h.southEdge >= -1 && h.southEdge < 180;
}

// The rows that lie whole below the pole must be there.
bool holdsRows(const ETOPOHEADER& h, std::int64_t size)
{
    const double rows = std::max(1.0, std::floor((180.0 - h.southEdge) * h.cellsPerLat));
    return double(size - headerBytes) >= rows * h.cellsPerRow * 2;
}

} // namespace

common::FilePtr OpenEtopo(const std::string& path, ETOPOHEADER& header)
{
    common::FilePtr file = common::openFile(path, "rb");
    char bytes[readBytes];
    if (!file || std::fread(bytes, 1, readBytes, file.get()) != readBytes) return nullptr;
    ETOPOHEADER h;
    if (!unpackHeader(bytes, h) || !holdsRows(h, common::fileSize(file.get()))) return nullptr;
    header = h;
    return file;
}

float EtopoHeight(std::FILE* file, const ETOPOHEADER& header, double lon, double lat)
{
    if (!file || !std::isfinite(lon) || !std::isfinite(lat)) return 0;
    const double south = header.southEdge - 90.0;
    const double row = std::trunc((std::clamp(lat, south, 90.0) - south) * header.cellsPerLat);
    if (lon < 0) lon += 360;
    if (lon >= 360) lon -= 360;
    const double column = std::trunc(header.cellsPerLon * lon);
    if (column < 0 || column >= header.cellsPerRow) return 0;
    const auto cell = std::int64_t(row) * header.cellsPerRow + std::int64_t(column);
    std::int16_t height = 0;
    if (fseeko(file, off_t(cell * 2 + headerBytes), SEEK_SET) != 0) return 0;
    if (std::fread(&height, sizeof height, 1, file) != 1) return 0;
    if (header.swap) common::reverseBytes(&height, 1, sizeof height, &height);
    return height;
}

} // namespace graphics
