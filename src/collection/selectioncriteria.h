#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace collection {

// All station and sample criteria in one record. It is compared byte by byte, so that unused bytes are kept
// zero: always start from defaultCriteria().
struct SELECTIONCRITERIA {
    char cruisePattern[21]; // wildcard for the cruise label
    char stationType[2];    // "*", "B", "C", "X"
    char stationLabelFrom[21], stationLabelTo[21];
    char unused[3];                        // leaves no padding in the record
    std::int32_t internalMin, internalMax; // station numbers
    std::int32_t dayMin, dayMax;
    std::int32_t yearMin, yearMax;
    std::int32_t qualityLimit;   // largest acceptable flag: 0, 1, 4, or 8 for all
    std::int32_t sampleVariable; // variable of the sample range, 0 for none
    float sampleMin, sampleMax;
    std::int32_t bottomMin, bottomMax;       // m
    std::int32_t lastDepthMin, lastDepthMax; // m
    char months[13];                         // one character a month: "+" selected, blank not
    char requiredMask[51];                   // "+" for each variable that a station must have
    std::int32_t requiredList[50];           // the same as numbers
    std::int32_t requiredCount;
    std::int32_t reservedFlags[2];                   // no effect on selection
    float lonMin, lonMax, latMin, latMax;            // degrees, inclusive; lonMin may be negative
    std::int32_t usePolygon;                         // 1 if the domain is a polygon too
    std::int32_t stationNumberMin, stationNumberMax; // both 0 or above to take effect
};

static_assert(sizeof(SELECTIONCRITERIA) == 428 && offsetof(SELECTIONCRITERIA, internalMin) == 68 &&
              offsetof(SELECTIONCRITERIA, requiredList) == 188);

// Closed polygon of a domain, in map coordinates; the last vertex repeats the first.
struct DOMAINPOLYGON {
    std::int32_t nPoints = 0;
    std::array<float, 1500> lon{}, lat{};
};

// Limits that admit everything.
inline constexpr std::int32_t anyYear = 9999999, anyDepth = 9999999, anyNumber = 99999999; // also negative
inline constexpr std::string_view lastLabelBound = "zzzzzzzzzzzzzzzzzzzz";

// The defaults on the whole globe: every station is selected, no value is blanked (quality limit 8).
[[nodiscard]] SELECTIONCRITERIA defaultCriteria();

// The variables of which a station must have a value stand three times in the record: as marks, as numbers,
// and as the count of these. They are set together here: each number once, in ascending order; numbers
// outside 1 to 50 are left out.
void setRequiredVariables(SELECTIONCRITERIA& criteria, std::span<const int> variables);
[[nodiscard]] std::vector<int> requiredVariables(const SELECTIONCRITERIA& criteria);

} // namespace collection
