// Makes the spreadsheets of the demonstration from a gridded climatology and the gridded relief.

#include "command.h"
#include "common/files.h"
#include "demodata.h"
#include "packagedfile.h"

namespace {

constexpr const char* about =
    "The stations in this folder are no casts. They are columns of a gridded climatology: annual means of\n"
    "temperature and salinity on 20 levels after S. Levitus (1982), Climatological Atlas of the World "
    "Ocean,\n"
    "NOAA Professional Paper 13. Their dates (1 July 1982) are nominal. Bottom depths are those of the "
    "ETOPO5\n"
    "relief at the station, or the deepest level where that lies deeper.\n"
    "\n"
    "atlantic_section.txt  the columns along 25.5 W from 74.5 S to 66.5 N\n"
    "global_means.txt      one column every 5 degrees\n";

bool write(const std::string& path, const std::string& text)
{
    common::RReplacementFile file(path);
    return file.stream() && std::fwrite(text.data(), 1, text.size(), file.stream()) == text.size() &&
           file.commit();
}

} // namespace

int main(int argc, char** argv)
{
    using namespace tools;
    constexpr const char* name = "make_demo";
    if (argc != 4) return fail(name, "usage: make_demo CLIMATOLOGY.cdf RELIEF.cdf DIRECTORY");
    for (const char* source : {argv[1], argv[2]})
        if (const std::string complaint = complaintAbout(source); !complaint.empty())
            return fail(name, complaint);
    std::string error;
    const auto climatology = readClimatology(argv[1], error);
    const auto relief = climatology ? readRelief(argv[2], error) : std::nullopt;
    if (!relief) return fail(name, error);

    const std::string directory = std::string(argv[3]) + "/";
    const bool written =
        makeDirectory(directory) && write(directory + "README.txt", about) &&
        write(directory + "atlantic_section.txt",
              spreadsheet(*climatology, *relief, meridian(-25.5, -74.5, 66.5), "Gridded mean 25.5 W")) &&
        write(directory + "global_means.txt",
              spreadsheet(*climatology, *relief, globe(5), "Gridded mean globe"));
    return written ? 0 : fail(name, directory + ": can't be written");
}
