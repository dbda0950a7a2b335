#pragma once

// The consistency check of a closed or open collection: reads its files and changes nothing.

#include <cstdint>
#include <string>
#include <vector>

#include "common/user.h"

namespace collection {

struct FINDING {
    enum Kind {
        inconsistency, // the files contradict each other or themselves
        remark         // worth knowing, harmless
    } kind = inconsistency;
    std::string text; // names the file, and the station or the line
};

struct CHECKRESULT {
    std::vector<FINDING> findings; // in the order of the files; equal ones are drawn together
    int inconsistencies = 0;
    bool complete = true; // false if the user broke the check off
    int stationCount = 0; // of the description
    std::int64_t dataBytes = 0,
                 deadBytes = 0; // of the `.dob` file: up to the end of its last block, and unused
    double percentFull = 0;     // of what a header can point to, 2 GiB
};

// basePath: without extension. Speaks only through progress, and ESC.
[[nodiscard]] CHECKRESULT checkCollection(const std::string& basePath, common::RUser& user);

} // namespace collection
