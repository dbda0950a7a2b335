#pragma once

// Defaults of the metavariables as text, and their names in settings.

#include <string>
#include <string_view>

#include "import/spreadsheet.h"

namespace importing {

// By Meta: "default_" and one of them is the key of a setting.
inline constexpr std::array<std::string_view, metaCount> metaNames = {"cruise", "station", "type", "date",
                                                                      "time",   "lon",     "lat",  "bottom"};

// Sets the default of a metavariable. Returns what is wrong with `text`, empty if nothing is; then `desc` is
// as it was.
[[nodiscard]] std::string setMetaDefault(SPREADSHEETDESC& desc, int meta, std::string_view text);

} // namespace importing
