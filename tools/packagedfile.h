#pragma once

#include <array>
#include <string>
#include <string_view>

namespace tools {

// A file of a data package that the converters know. Another file of the same name may mean other things, and
// isn't touched.
struct PACKAGEDFILE {
    std::string_view name;   // behind the last separator
    std::string_view sha256; // its first 16 hexadecimal digits
};
inline constexpr std::array<PACKAGEDFILE, 5> packagedFiles = {{
    {"ne_50m_land.shp", "7ee1c4fb9965fdf3"},
    {"ne_10m_land.shp", "e723e2607efb4395"},
    {"etopo5.cdf", "1455d5e5feebd183"},
    {"levitus_climatology.cdf", "6cf0c43e2b5b790a"},
    {"ocean_atlas_subset.nc", "598e82c3689272fd"},
}};

[[nodiscard]] std::string sha256Of(const std::string& path); // 64 digits; empty if it can't be read

// Empty if `path` is one of the known files, with the known content; otherwise what is wrong.
[[nodiscard]] std::string complaintAbout(const std::string& path);

} // namespace tools
