#include "app/packedfiles.h"

#include <algorithm>
#include <array>

#include "common/files.h"
#include "common/text.h"

namespace app {
namespace {

std::string fileName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

bool holds(std::span<const std::string> files, const std::string& path)
{
    return std::find(files.begin(), files.end(), path) != files.end();
}

// Its own name counts, not the folders above it. Hidden files are what some packers add about the others.
FileKind kindOf(const std::string& path)
{
    const std::string name = fileName(path);
    return name.starts_with('.') ? FileKind::unknown : fileKind(name);
}

bool isWholeCollection(std::span<const std::string> files, const std::string& path)
{
    const std::string base(common::cutExtension(path));
    return path.ends_with(".var") && holds(files, base + ".hob") && holds(files, base + ".dob");
}

PACKEDCHOICE opened(const std::string& path)
{
    return {kindOf(path), path, {}, {}};
}

PACKEDCHOICE byNetCdfRule(const std::string& archiveName, const std::string& directory,
                          std::span<const std::string> files)
{
    PACKEDCHOICE choice{FileKind::netCdf, directory + netCdfName(archiveName), {}, {}};
    if (files.size() == 1 && files[0] != choice.path) choice.rename = files[0];
    return choice;
}

} // namespace

std::string netCdfName(const std::string& archiveName)
{
    const std::string name(common::cutExtension(archiveName));
    constexpr auto marks = std::to_array<std::string_view>({".nc", ".NC", ".cdf", ".CDF"});
    const auto isIn = [&](std::string_view mark) { return name.find(mark) != std::string::npos; };
    return std::any_of(marks.begin(), marks.end(), isIn) ? name : name + ".nc";
}

PACKEDCHOICE choosePacked(const std::string& archiveName, const std::string& directory,
                          std::span<const std::string> files)
{
    std::vector<std::string> known, collections;
    for (const std::string& file : files) {
        const FileKind kind = kindOf(file);
        if (kind != FileKind::unknown && kind != FileKind::nothing) known.push_back(file);
        if (kind == FileKind::collection && isWholeCollection(files, file)) collections.push_back(file);
    }
    if (collections.size() == 1) return opened(collections[0]);
    if (known.size() == 1) return opened(known[0]);
    if (known.empty() || holds(files, directory + netCdfName(archiveName)))
        return byNetCdfRule(archiveName, directory, files);
    PACKEDCHOICE choice;
    choice.several = std::move(known);
    return choice;
}

} // namespace app
