// Makes the coastline file of a layer set from a shapefile of land polygons.

#include "cdtrecords.h"
#include "coastline.h"
#include "command.h"
#include "packagedfile.h"
#include "simplify.h"

int main(int argc, char** argv)
{
    using namespace tools;
    constexpr const char* name = "make_coast";
    const RESOLUTION* resolution = argc == 4 ? resolutionNamed(argv[1]) : nullptr;
    if (!resolution) return fail(name, "usage: make_coast low|high LAND.shp SETDIRECTORY");
    const std::string source = argv[2], directory = std::string(argv[3]) + "/";
    if (const std::string complaint = complaintAbout(source); !complaint.empty())
        return fail(name, complaint);

    const RGeos geos;
    std::string error;
    const auto land = readLand(geos, source, error);
    if (!land) return fail(name, error);
    const auto polygons = simplify(geos, toEastLongitudes(geos, *land), resolution->coastTolerance);
    const auto shapes = cdtShapes(geos, polygons, resolution->cut);
    if (geos.failed()) return fail(name, source + ": " + geos.message());
    if (!makeDirectory(directory + "overlays") || !writeCdt(directory + "World.cdt", shapes))
        return fail(name, directory + "World.cdt: can't be written");
}
