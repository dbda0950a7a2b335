#pragma once

// Which source variable feeds which variable of the collection, settled without a user.

#include <span>

#include "collection/varinfo.h"

namespace importing {

// Sources that stand in where the first source of a level is missing; 0 if there is none.
struct SECONDCHOICES {
    int salinity = 0, oxygen = 0;
};

struct ASSOCIATIONRESULT {
    int matched = 0; // sources that found a target of the same label
    SECONDCHOICES second;
};

// Links sources and targets: first those of equal labels, case ignored, then, among what is still free, by
// the known names of WHP files. A second choice has its target in `assoc` without being that target's source.
// A target has one source, the first that fits. Index 0 of both spans is no variable. All earlier links are
// cleared.
ASSOCIATIONRESULT associateByLabel(std::span<collection::VARINFO> sources,
                                   std::span<collection::VARINFO> targets);

// Links each source with the target of its own number: for a collection whose variables have the labels of
// the sources.
void associateByNumber(std::span<collection::VARINFO> sources, std::span<collection::VARINFO> targets);

} // namespace importing
