#pragma once

// Stations of all kinds that a collection can hold, made with a fixed seed.

#include <random>
#include <set>
#include <string>

#include "collection/rcollection.h"

namespace testing_support {

struct RANDOMSTATIONS {
    unsigned seed = 1;
    int stations = 30;
    int mostLevels = 30;   // of a station
    bool anyFloat = false; // all finite values; otherwise those that six digits tell
};

class RRandomStations {
public:
    explicit RRandomStations(const RANDOMSTATIONS& kind) : kind_(kind), random_(kind.seed) {}

    // Another station, unlike all before in its labels. Levels stand in the order of variable 1.
    void fill(collection::STATIONDATA& station, int variables, int levels);
    // A number of levels; the limits come more often.
    [[nodiscard]] int levels();
    // All of them, appended to a collection that is open for writing.
    void fillCollection(collection::RCollection& collection);

private:
    int between(int first, int last) { return std::uniform_int_distribution<int>(first, last)(random_); }
    [[nodiscard]] std::string label(std::size_t bytes);
    [[nodiscard]] float value();
    [[nodiscard]] float floatOfSixDigits();
    void fillHeader(collection::STATIONHDR& header);
    void fillValues(collection::STATIONDATA& station, int levels, double missingShare, std::size_t& cell);

    RANDOMSTATIONS kind_;
    std::mt19937 random_;
    std::set<std::string> keys_;
};

} // namespace testing_support
