// Any bytes as the header of a listing: what comes out keeps the limits of a collection.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "common/limits.h"
#include "import/listing.h"

namespace {

void require(bool holds)
{
    if (!holds) std::abort();
}

void checkVariable(const collection::VARINFO& variable, int number)
{
    require(variable.position == number);
    require(variable.decimals >= 0 && variable.decimals <= 4);
    require(variable.width >= variable.decimals + 3 && variable.width <= variable.decimals + 15);
    require(std::memchr(variable.label, 0, sizeof variable.label) != nullptr);
    require(std::memchr(variable.plainLabel, 0, sizeof variable.plainLabel) != nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const int file = ::memfd_create("listing", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    require(::ftruncate(file, 0) == 0 && ::pwrite(file, data, size, 0) == static_cast<ssize_t>(size));
    importing::LISTINGHEADER header;
    header.name = "before";
    std::string fault;
    if (!importing::readListingHeader(path, header, fault)) {
        require(fault.starts_with(path + ":") && header.name == "before" && header.variables.empty());
        return 0;
    }
    require(fault.empty() && header.stationCount >= 0 && !header.type.empty());
    require(!header.variables.empty() && header.variables.size() <= common::maxVariables + 1);
    for (std::size_t v = 1; v < header.variables.size(); ++v)
        checkVariable(header.variables[v], static_cast<int>(v));
    require(header.lineCount >= 4 + static_cast<int>(header.variables.size()));
    return 0;
}
