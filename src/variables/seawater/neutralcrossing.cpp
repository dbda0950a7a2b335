#include "variables/seawater/neutralcrossing.h"

#include <cmath>
#include <optional>

namespace seawater {
namespace {

constexpr double densityTolerance = 5e-5;  // kg/m3
constexpr double pressureTolerance = 5e-3; // dbar
constexpr int maxIterations = 10, maxHalvings = 20;
constexpr std::size_t maxCrossings = 50;

// An interval of pressure, and how much denser the cast is than the sample at its ends; the signs differ.
struct BRACKET {
    std::size_t level = 0;
    double upper = 0, lower = 0, atUpper = 0, atLower = 0;
};

// By halves. Nothing if the density doesn't come near enough to that of the sample.
template <typename Excess>
std::optional<WATER> halved(const ATLASCAST& cast, BRACKET b, const Excess& excess)
{
    for (int n = 0; n <= maxHalvings; ++n) {
        const double middle = 0.5 * (b.upper + b.lower);
        const WATER water = cast.waterAt(middle, b.level);
        const double e = excess(water);
        const bool above = b.atUpper * e < 0;
        (above ? b.lower : b.upper) = middle;
        (above ? b.atLower : b.atUpper) = e;
        if (e == 0 || (std::abs(e) <= densityTolerance && b.lower - b.upper <= pressureTolerance))
            return water;
    }
    return std::nullopt;
}

// How fast the excess falls with pressure at a point, from the two halves of the interval.
double slopeByHalves(const BRACKET& b, double p, double e)
{
    const double aboveIt = (b.atUpper - e) / (p - b.upper), belowIt = (e - b.atLower) / (b.lower - p);
    const double middleAbove = 0.5 * (b.upper + p), middleBelow = 0.5 * (p + b.lower);
    return aboveIt + (belowIt - aboveIt) * (p - middleAbove) / (middleBelow - middleAbove);
}

// By Newton's steps, and by halves where these leave the interval or don't end.
template <typename Excess>
std::optional<WATER> refined(const ATLASCAST& cast, const BRACKET& b, const Excess& excess)
{
    double p = b.upper - b.atUpper * (b.lower - b.upper) / (b.atLower - b.atUpper);
    double lastP = 0, lastE = 0;
    for (int n = 1; n <= maxIterations; ++n) {
        const WATER water = cast.waterAt(p, b.level);
        const double e = excess(water);
        double slope = n == 1 ? 0 : -(e - lastE) / (p - lastP);
        if (slope == 0) slope = slopeByHalves(b, p, e);
        const double next = p + e / slope;
        if (!(next > b.upper && next < b.lower)) break;
        if (std::abs(e) <= densityTolerance && std::abs(next - p) <= pressureTolerance) return water;
        lastP = p;
        lastE = e;
        p = next;
    }
    return halved(cast, b, excess);
}

// Gives every meeting, from the top, until `take` has enough of them. `e` holds the excess at the levels,
// `excess` tells that of water between them.
template <typename Excess, typename Take>
void findMeetings(const ATLASCAST& cast, const std::array<double, atlasLevels>& e, const Excess& excess,
                  const Take& take)
{
    const std::size_t last = cast.levels - 1;
    for (std::size_t k = 0; k <= last; ++k) {
        if (e[k] == 0 && !take(cast.water[k])) return;
        if (k == last || !(e[k] * e[k + 1] < 0)) continue;
        const auto water = refined(cast, {k, cast.pressure(k), cast.pressure(k + 1), e[k], e[k + 1]}, excess);
        if (water && !take(*water)) return;
    }
}

} // namespace

NEUTRALSAMPLE neutralSample(const WATER& water, const GAMMAATLAS& atlas, std::size_t levels)
{
    NEUTRALSAMPLE sample;
    sample.water = water;
    sample.potentialTemperature = temperatureAt(water, 0);
    for (std::size_t k = 0; k < levels; ++k)
        sample.middleSigma[k] = sigmaAt(water, 0.5 * (water.pressure + atlas.pressures[k]));
    return sample;
}

Meeting neutralCrossing(const NEUTRALSAMPLE& sample, const ATLASCAST& cast, WATER& at)
{
    std::array<double, atlasLevels> e; // filled as far as it is read
    for (std::size_t k = 0; k < cast.levels; ++k) {
        const double middle = 0.5 * (sample.water.pressure + cast.pressure(k));
        e[k] = sigmaAt(cast.water[k], middle) - sample.middleSigma[k];
    }
    const auto excess = [&](const WATER& water) {
        const double middle = 0.5 * (sample.water.pressure + water.pressure);
        return sigmaAt(water, middle) - sigmaAt(sample.water, middle);
    };
    int count = 0;
    findMeetings(cast, e, excess, [&](const WATER& water) {
        at = water;
        return ++count < 2;
    });
    return count == 0 ? Meeting::none : count == 1 ? Meeting::one : Meeting::several;
}

std::vector<double> insituCrossings(const NEUTRALSAMPLE& sample, const ATLASCAST& cast)
{
    std::array<double, atlasLevels> e;
    for (std::size_t k = 0; k < cast.levels; ++k)
        e[k] = cast.sigma[k] - sigmaAt(sample.water, cast.pressure(k));
    const auto excess = [&](const WATER& water) {
        return sigmaOf(water) - sigmaAt(sample.water, water.pressure);
    };
    std::vector<double> pressures;
    findMeetings(cast, e, excess, [&](const WATER& water) {
        pressures.push_back(water.pressure);
        return pressures.size() < maxCrossings;
    });
    return pressures;
}

} // namespace seawater
