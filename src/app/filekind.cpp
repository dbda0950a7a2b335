#include "app/filekind.h"

#include <array>

#include "common/files.h"

namespace app {
namespace {

struct KINDROW {
    std::string_view part;
    FileKind kind;
};
// The first row that is found decides.
constexpr auto kinds = std::to_array<KINDROW>({{".var", FileKind::collection},
                                               {".o3x", FileKind::oldListing},
                                               {".ol", FileKind::archiveListing},
                                               {".o4x", FileKind::listing},
                                               {".sum", FileKind::stationSummary},
                                               {".txt", FileKind::spreadsheet},
                                               {".cdf", FileKind::netCdf},
                                               {".nc", FileKind::netCdf}});

struct ARCHIVEROW {
    std::string_view part;
    Archive archive;
};
constexpr auto archives = std::to_array<ARCHIVEROW>({{".gz", Archive::gzip},
                                                     {".GZ", Archive::gzip},
                                                     {".zip", Archive::zip},
                                                     {".ZIP", Archive::zip},
                                                     {".tgz", Archive::tarGzip},
                                                     {".TGZ", Archive::tarGzip},
                                                     {".tar", Archive::tar},
                                                     {".TAR", Archive::tar}});

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

} // namespace

FileKind fileKind(std::string_view path)
{
    if (path.empty()) return FileKind::nothing;
    for (const KINDROW& row : kinds) {
        if (contains(path, row.part)) return row.kind;
    }
    return FileKind::unknown;
}

bool makesCollection(FileKind kind)
{
    return kind == FileKind::archiveListing || kind == FileKind::oldListing || kind == FileKind::listing ||
           kind == FileKind::stationSummary || kind == FileKind::spreadsheet;
}

std::optional<importing::Format> importFormat(FileKind kind)
{
    switch (kind) {
    case FileKind::spreadsheet:
        return importing::Format::spreadsheet;
    case FileKind::oldListing:
        return importing::Format::listing3;
    case FileKind::listing:
        return importing::Format::listing4;
    default:
        return std::nullopt;
    }
}

const char* fileKindName(FileKind kind)
{
    switch (kind) {
    case FileKind::nothing:
        return "";
    case FileKind::collection:
        return "collection";
    case FileKind::archiveListing:
        return "World Ocean Atlas listing";
    case FileKind::oldListing:
        return "3.0 listing";
    case FileKind::listing:
        return "4.x listing";
    case FileKind::stationSummary:
        return "station summary";
    case FileKind::spreadsheet:
        return "spreadsheet";
    case FileKind::netCdf:
        return "netCDF file";
    case FileKind::unknown:
        break;
    }
    return "unknown";
}

Archive archiveClass(std::string_view path)
{
    for (const ARCHIVEROW& row : archives) {
        if (contains(path, row.part)) return row.archive;
    }
    return Archive::none;
}

std::vector<ARGUMENT> readArguments(std::span<const std::string> arguments)
{
    std::vector<ARGUMENT> steps;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (contains(arguments[i], "-q")) {
            steps.push_back({ARGUMENT::quit, {}});
        } else if (i == 0) {
            continue;
        } else if (contains(arguments[i], "-x")) {
            ++i;
            steps.push_back({ARGUMENT::commandFile, i < arguments.size() ? arguments[i] : std::string()});
        } else {
            steps.push_back({ARGUMENT::file, arguments[i]});
        }
    }
    return steps;
}

std::string withDefaultExtension(const std::string& path)
{
    return common::splitPath(path).extension.empty() ? path + ".var" : path;
}

} // namespace app
