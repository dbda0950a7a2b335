// Any bytes as a 4.x listing, read to its end.

#include <cstdint>

#include "listingchecks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string path = fuzzing::directory() + "casts.o4x";
    fuzzing::put(path, {reinterpret_cast<const char*>(data), size});
    importing::LISTINGHEADER header;
    std::string fault;
    if (!importing::readListingHeader(path, header, fault)) {
        fuzzing::require(fault.starts_with(path + ":") && header.variables.empty());
        return 0;
    }
    fuzzing::checkVariables(header);
    fuzzing::readListingTwice(importing::ListingForm::version4, header, path);
    return 0;
}
