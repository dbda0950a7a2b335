#pragma once

// The reference atlas of neutral density on the disk: the files "llp.fdt" and "stga.fdt" of the folder
// "gamma_n/", in the host's byte order.

#include <memory>
#include <string>

#include "variables/seawater/neutral.h"

namespace variables {

// The atlas of a folder; null, with what is wrong in `fault`, if a file is missing, has another size, or
// holds what can't be true. "llp.fdt" may stand between the marks of its length that some programs write.
[[nodiscard]] std::shared_ptr<const seawater::GAMMAATLAS> loadGammaAtlas(const std::string& directory,
                                                                         std::string& fault);

// What of an atlas in memory can't be true; empty if it may be believed.
[[nodiscard]] std::string faultOfAtlas(const seawater::GAMMAATLAS& atlas);

} // namespace variables
