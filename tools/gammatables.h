#pragma once

// The atlas of neutral density, from the netCDF form in which its authors give it to the two files that the
// program reads.

#include <optional>
#include <string>

#include "variables/seawater/neutral.h"

namespace tools {

// Nothing, with what is wrong in `error`, if the file can't be read, lacks a variable, or holds what can't be
// true. It has lon (90), lat (45), pressure (33), n and iocean (lat, lon), s, t, gamma and a (lat, lon,
// pressure).
[[nodiscard]] std::optional<seawater::GAMMAATLAS> readGammaTables(const std::string& path,
                                                                  std::string& error);

// Writes "llp.fdt" and "stga.fdt" into a folder that is there, in the host's byte order: both, or on failure
// what was there before.
[[nodiscard]] bool writeGammaTables(const std::string& folder, const seawater::GAMMAATLAS& atlas);

} // namespace tools
