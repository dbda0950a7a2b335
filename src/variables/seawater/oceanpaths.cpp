// Which waters are connected: oceanPathsConnected of neutral.h.

#include "variables/seawater/neutral.h"

namespace seawater {
namespace {

constexpr bool isWithin(double value, double low, double high)
{
    return value >= low && value <= high;
}

constexpr bool isAroundJapan(double lon, double lat)
{
    return isWithin(lon, 129.87, 142.83) && isWithin(lat, 32.75, 53.58);
}

// Behind the islands: on or above both lines along them.
constexpr bool isBehindJapan(double lon, double lat)
{
    return lat - 0.44095248 * lon + 24.516497 >= 0 && lat - 6.585348 * lon + 887.0053 >= 0;
}

// Pacific, Indian and Atlantic have two numbers each.
constexpr int basin(int ocean)
{
    return (ocean + 1) / 2;
}

constexpr int southPacificAndAtlantic = 12, southIndianAndPacific = 8; // products of their numbers

bool oceansConnected(double lon1, double lon2, double latitude, int ocean1, int ocean2, double pressure)
{
    const int product = ocean1 * ocean2;
    // South America lies between.
    if (latitude <= -20) return !(latitude >= -48 && product == southPacificAndAtlantic);
    if (basin(ocean1) == basin(ocean2)) return true;
    return product == southIndianAndPacific && pressure <= 1200 && isWithin(lon1, 124, 132) &&
           isWithin(lon2, 124, 132);
}

} // namespace

bool oceanPathsConnected(double lon1, double lat1, int ocean1, double lon2, double lat2, int ocean2,
                         double pressure)
{
    if (ocean1 == ocean2) return true;
    const double latitude = 0.5 * (lat1 + lat2);
    // The Antarctic Peninsula lies between.
    if (ocean1 * ocean2 == southPacificAndAtlantic && latitude < -60) return false;
    if (isAroundJapan(lon1, lat1) || isAroundJapan(lon2, lat2))
        return isBehindJapan(lon1, lat1) == isBehindJapan(lon2, lat2);
    return oceansConnected(lon1, lon2, latitude, ocean1, ocean2, pressure);
}

} // namespace seawater
