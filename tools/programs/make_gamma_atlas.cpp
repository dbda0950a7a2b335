// Makes the atlas of neutral density for the program from the netCDF file of its authors. Users run it.

#include "command.h"
#include "gammatables.h"

int main(int argc, char** argv)
{
    using namespace tools;
    constexpr const char* name = "make_gamma_atlas";
    if (argc != 3) return fail(name, "usage: make_gamma_atlas ATLAS.nc FOLDER");
    const std::string source = argv[1], folder = argv[2];
    std::string error;
    const auto atlas = readGammaTables(source, error);
    if (!atlas) return fail(name, error);
    if (!makeDirectory(folder)) return fail(name, folder + ": can't be made");
    return writeGammaTables(folder, *atlas) ? 0 : fail(name, folder + ": can't be written to");
}
