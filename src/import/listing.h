#pragma once

// The description at the head of a 4.x listing (`.o4x`).

#include <string>
#include <vector>

#include "collection/varinfo.h"

namespace importing {

struct LISTINGHEADER {
    std::string name;         // of the collection that was listed
    std::string type = "HYD"; // of the collection
    int stationCount = 0;
    std::vector<collection::VARINFO> variables; // numbered from 1; index 0 is no variable
    int lineCount = 0;                          // lines of the header
};

// False, with `fault` as "<file>:<line>: <what>", if the file can't be read or isn't of the form.
[[nodiscard]] bool readListingHeader(const std::string& path, LISTINGHEADER& header, std::string& fault);

} // namespace importing
