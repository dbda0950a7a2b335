// Any bytes as a 3.0 listing with its description: the description, a byte 1, the listing.

#include <algorithm>
#include <cstdint>

#include "listingchecks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string listing = fuzzing::directory() + "casts.o3x";
    static const std::string description = fuzzing::directory() + "casts.var";
    const std::string_view all(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(all.find('\1'), size);
    fuzzing::put(description, all.substr(0, end));
    fuzzing::put(listing, all.substr(std::min(end + 1, size)));
    importing::LISTINGHEADER header;
    std::string fault;
    if (!importing::readListingDescription(description, header, fault)) {
        fuzzing::require(fault.starts_with(description + ":") && header.variables.empty());
        return 0;
    }
    fuzzing::checkVariables(header);
    fuzzing::require(header.description == description && header.lineCount == 0);
    fuzzing::readListingTwice(importing::ListingForm::version3, header, listing);
    return 0;
}
