// Makes the bathymetry and topography files of a layer set from the gridded relief.

#include <span>

#include "cdtrecords.h"
#include "command.h"
#include "common/text.h"
#include "packagedfile.h"
#include "relief.h"

namespace {

using namespace tools;

// One file for each step; an empty text, or what went wrong.
std::string writeSteps(const GRID& grid, std::span<const int> steps, int sign, const std::string& directory,
                       const RESOLUTION& resolution)
{
    for (const int step : steps) {
        const RGeos geos;
        const auto polygons = areaAbove(geos, grid, sign * step, resolution);
        const auto shapes = cdtShapes(geos, polygons, resolution.cut);
        const std::string path = directory + common::format("%dm.cdt", step);
        if (geos.failed()) return path + ": " + geos.message();
        if (!writeCdt(path, shapes)) return path + ": can't be written";
    }
    return {};
}

} // namespace

int main(int argc, char** argv)
{
    constexpr const char* name = "make_relief";
    const RESOLUTION* resolution = argc == 4 ? resolutionNamed(argv[1]) : nullptr;
    if (!resolution) return fail(name, "usage: make_relief low|high RELIEF.cdf SETDIRECTORY");
    const std::string source = argv[2];
    const std::string bathymetry = std::string(argv[3]) + "/bathymetry/";
    const std::string topography = std::string(argv[3]) + "/topography/";
    if (const std::string complaint = complaintAbout(source); !complaint.empty())
        return fail(name, complaint);
    if (!makeDirectory(bathymetry) || !makeDirectory(topography))
        return fail(name, "can't make the directories");

    std::string error;
    const auto relief = readRelief(source, error);
    if (!relief) return fail(name, error);
    const GRID grid =
        closedGlobe(resolution->reliefFactor > 1 ? boxMean(*relief, resolution->reliefFactor) : *relief);
    if (!writeCdt(bathymetry + "Backgrd.cdt", globeShapes({30, 1})))
        return fail(name, bathymetry + "Backgrd.cdt: can't be written");
    error = writeSteps(grid, bathymetrySteps, -1, bathymetry, *resolution);
    if (error.empty()) error = writeSteps(grid, topographySteps, 1, topography, *resolution);
    return error.empty() ? 0 : fail(name, error);
}
