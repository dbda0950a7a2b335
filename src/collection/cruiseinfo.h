#pragma once

#include <cstdint>

namespace collection {

// One entry of the inventory: the stations of one cruise label and one station type.
struct CRUISEINFO {
    char cruise[21];
    char station[21]; // the first station's label
    char type[2];
    std::int32_t stationCount;
    std::int32_t firstLabel, lastLabel;   // numeric station labels; 99999999 and 0 if there is none
    std::int32_t firstNumber, lastNumber; // internal station numbers
    float lonMin, latMin, lonMax, latMax;
    double dateMin, dateMax;      // year * 10000 + month * 100 + day
    std::int32_t valueCounts[51]; // index 0 is the count of variable 1; 1 in each if read from file
};
static_assert(sizeof(CRUISEINFO) == 304);

} // namespace collection
