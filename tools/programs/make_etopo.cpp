// Makes the relief grid of the section bottom from the gridded relief.

#include "command.h"
#include "common/files.h"
#include "etopogrid.h"
#include "packagedfile.h"

int main(int argc, char** argv)
{
    using namespace tools;
    constexpr const char* name = "make_etopo";
    if (argc != 3) return fail(name, "usage: make_etopo RELIEF.cdf ETOPOFILE");
    const std::string source = argv[1], target = argv[2];
    if (const std::string complaint = complaintAbout(source); !complaint.empty())
        return fail(name, complaint);
    std::string error;
    const auto relief = readRelief(source, error);
    if (!relief) return fail(name, error);
    const bool written = makeDirectory(common::splitPath(target).directory) && writeEtopo(target, *relief);
    return written ? 0 : fail(name, target + ": can't be written");
}
