#pragma once

// What tells the variables of a listing: the head of a 4.x listing (`.o4x`), the description beside a 3.0
// listing (`.o3x`).

#include <string>
#include <vector>

#include "collection/varinfo.h"

namespace importing {

enum class ListingForm : int { version3 = 3, version4 = 4 };

struct LISTINGHEADER {
    std::string name;         // of the collection that was listed
    std::string type = "HYD"; // of the collection
    int stationCount = 0;
    // Numbered from 1; index 0 is no variable. `column` is the number that a variable has in the listing.
    std::vector<collection::VARINFO> variables;
    int lineCount = 0;       // lines of the header, 0 if it is a file of its own
    std::string description; // path of that file
};

// False, with `fault` as "<file>:<line>: <what>", if the file can't be read or isn't of the form.
[[nodiscard]] bool readListingHeader(const std::string& path, LISTINGHEADER& header, std::string& fault);
// The same of the description of a 3.0 listing.
[[nodiscard]] bool readListingDescription(const std::string& path, LISTINGHEADER& header, std::string& fault);

} // namespace importing
