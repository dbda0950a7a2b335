#pragma once

// Polygon files (`.cdt`): a plain sequence of records in either byte order, without a file header.
//
//   int32 n            number of points, 1 to 1500
//   int32 m            the first m points are the outline, 0 to n
//   n x (float32 longitude, float32 latitude), degrees

#include <cstdint>
#include <cstdio>
#include <functional>
#include <span>
#include <string>

namespace graphics {

inline constexpr int maxCdtPoints = 1500;

// One polygon of a `.cdt` file, degrees.
struct CDTRECORD {
    std::span<const float> lon, lat; // n points, 1 to 1500
    int outline = 0;                 // the first `outline` points are stroked
    [[nodiscard]] bool closed() const { return lon.front() == lon.back() && lat.front() == lat.back(); }
};
using CdtVisitor = std::function<bool(const CDTRECORD&)>; // false ends the reading

enum class CdtDamage : int { none = 0, badCount = 1, badOutline = 2, badPosition = 3, truncated = 4 };
[[nodiscard]] const char* cdtDamageText(CdtDamage damage);

struct CDTSCAN {
    int records = 0;                    // visited
    CdtDamage damage = CdtDamage::none; // the first one found
    std::int64_t offset = 0;            // byte offset of the record with that damage
};
// The core: reads from where the stream stands, record by record through fixed buffers. A record that ends
// early, or has an impossible count in both byte orders, ends the reading; one with an impossible outline or
// position is left out.
CDTSCAN scanCdt(std::FILE* file, const CdtVisitor& visit);

// The same for a file by its path. Returns the number of records visited, -1 if the file can't be opened.
int readCdtFile(const std::string& path, const CdtVisitor& visit);

} // namespace graphics
