#pragma once

// The gridded relief: a binary file of heights in metres.
//
//   char[8] "ETOPO01", int32 reserved, float32 cells per degree of longitude, int32 cells per row,
//   float32 south edge plus 90, float32 cells per degree of latitude, int32 reserved, int32 reserved
//   then rows of int16 from south to north, each from 0 to 360 degrees east

#include <cstdint>
#include <cstdio>
#include <string>

#include "common/files.h"

namespace graphics {

struct ETOPOHEADER {
    char magic[8];
    std::int32_t reserved1;
    float cellsPerLon;
    std::int32_t cellsPerRow; // 1 to 6999
    float southEdge;          // south edge of the data plus 90, degrees
    float cellsPerLat;
    std::int32_t reserved2;
    bool swap; // of the file; not stored
};
// Opens a file and checks its header against its size. Null, with `header` untouched, if it isn't one.
[[nodiscard]] common::FilePtr OpenEtopo(const std::string& path, ETOPOHEADER& header);
// Height in metres of the cell at a position in degrees; 0 where the file holds none.
[[nodiscard]] float EtopoHeight(std::FILE* file, const ETOPOHEADER& header, double lon, double lat);

} // namespace graphics
