#include "variables/seawater/neutral.h"

#include <algorithm>
#include <cmath>

#include "variables/seawater/neutralextension.h"

namespace seawater {
namespace {

constexpr double leastError = 0.0005; // kg/m3

// The second error where compressibility bends the path: towards the label of water of equal density in situ.
void addErrorInsitu(CASTLABEL& label, const NEUTRALSAMPLE& sample, const ATLASCAST& cast, double pressure)
{
    const std::vector<double> found = insituCrossings(sample, cast);
    if (found.empty()) return;
    const std::size_t middle = (1 + found.size()) / 2 - 1;
    const double there = sample.water.pressure <= found[middle] ? found.front() : found.back();
    const double gamma = cast.gammaAt(there);
    if (there <= pressure)
        label.byMixLow = label.gamma - gamma;
    else
        label.byMixHigh = gamma - label.gamma;
}

// Where density in situ may mislead: in the south, and where dense water comes to the surface.
bool hasSecondError(const ATLASCAST& cast)
{
    return cast.latitude <= -60 || cast.gamma[0] >= 26.845;
}

CASTLABEL labelAtCrossing(const NEUTRALSAMPLE& sample, const ATLASCAST& cast, const WATER& at)
{
    CASTLABEL label;
    label.gamma = cast.gammaAt(at.pressure);
    const std::size_t k = cast.intervalOf(at.pressure);
    const double ratio = (cast.gamma[k + 1] - cast.gamma[k]) / cast.step[k];
    const double density = 1000 + sigmaOf(at);
    const double pressures = at.pressure - sample.water.pressure;
    const double temperatures = temperatureAt(at, 0) - sample.potentialTemperature;
    label.alongPath = density * ratio * thermobaric * std::abs(pressures * temperatures) / 6;
    if (!std::isfinite(label.alongPath)) label.alongPath = 0; // no stratification at all
    if (!hasSecondError(cast)) return label;
    const double stratification = cast.step[k] / (density * (cast.pressure(k + 1) - cast.pressure(k)));
    const double q = thermobaric * temperatures / stratification;
    if (std::abs(q) <= 0.1)
        (pressures * temperatures >= 0 ? label.byMixHigh : label.byMixLow) = 3 * label.alongPath / (1 - q);
    else
        addErrorInsitu(label, sample, cast, at.pressure);
    return label;
}

// The label of a cast, and the share of its weight that it deserves.
CASTLABEL labelOfCast(const NEUTRALSAMPLE& sample, const ATLASCAST& cast, double& share)
{
    WATER at;
    share = 1;
    switch (neutralCrossing(sample, cast, at)) {
    case Meeting::one:
        return labelAtCrossing(sample, cast, at);
    case Meeting::several:
        return {};
    case Meeting::none:
        break;
    }
    const CASTLABEL label = labelBeyondCast(sample, cast);
    const double beyond = label.gamma - cast.gamma[cast.levels - 1];
    if (beyond > 0) share = 1 - std::min(0.3, beyond) / 0.3;
    return label;
}

// The mean over the casts.
class RLabelMean {
public:
    void add(const CASTLABEL& label, double weight)
    {
        gamma_ += weight * label.gamma;
        alongPath_ += weight * label.alongPath;
        weight_ += weight;
        low_ = std::max(low_, label.byMixLow);
        high_ = std::max(high_, label.byMixHigh);
        kept_[count_++] = {weight, label.gamma};
    }
    [[nodiscard]] bool valid() const { return weight_ > 0; }
    [[nodiscard]] double gamma() const { return gamma_ / weight_; }
    [[nodiscard]] double errorLow() const { return std::max(commonError(), low_); }
    [[nodiscard]] double errorHigh() const { return std::max(commonError(), high_); }

private:
    // What the casts are apart, and the error along the path.
    [[nodiscard]] double commonError() const
    {
        double apart = 0;
        for (std::size_t n = 0; n < count_; ++n)
            apart += kept_[n].weight * std::abs(kept_[n].gamma - gamma());
        return std::max({leastError, alongPath_ / weight_, apart / weight_});
    }

    struct KEPT {
        double weight = 0, gamma = 0;
    };
    double gamma_ = 0, alongPath_ = 0, weight_ = 0, low_ = 0, high_ = 0;
    std::array<KEPT, 4> kept_{};
    std::size_t count_ = 0;
};

// A station: where it lies and what the atlas has around it.
struct STATIONPLACE {
    double longitude = 0, latitude = 0;
    NEIGHBOURHOOD around;
    std::size_t levels = 0; // of the deepest cast
};

RLabelMean labelOf(const WATER& water, const STATIONPLACE& place, const GAMMAATLAS& atlas)
{
    const NEUTRALSAMPLE sample = neutralSample(water, atlas, place.levels);
    RLabelMean mean;
    for (const ATLASCAST& cast : place.around.casts) {
        double share = 1;
        const CASTLABEL label = labelOfCast(sample, cast, share);
        if (!label.valid()) continue;
        // Water that isn't connected gives no label, but tells how wrong one may be.
        const bool connected = oceanPathsConnected(place.longitude, place.latitude, place.around.ocean,
                                                   cast.longitude, cast.latitude, cast.ocean, water.pressure);
        mean.add(label, connected ? cast.weight * share : 0);
    }
    return mean;
}

bool isUsable(float salinity, float temperature, float pressure)
{
    return salinity >= 0 && salinity <= 42 && temperature >= -2.5f && temperature <= 40 && pressure >= 0 &&
           pressure <= 10000;
}

} // namespace

int neutralDensity(const GAMMAATLAS& atlas, std::span<const float> salinity,
                   std::span<const float> temperature, std::span<const float> pressure, double longitude,
                   double latitude, std::span<double> gamma, std::span<double> errorLow,
                   std::span<double> errorHigh, double missing)
{
    const std::size_t samples = salinity.size();
    for (const std::span<double> result : {gamma, errorLow, errorHigh})
        std::ranges::fill(result.first(samples), missing);
    if (longitude < 0) longitude += 360;
    if (!(longitude >= 0 && longitude <= 360 && latitude >= -80 && latitude <= 64)) return 1;
    if (longitude == 360) longitude = 0;
    if (atlas.casts.size() != std::size_t{atlasCells} * 4 * atlasLevels) return 1;
    STATIONPLACE place{longitude, latitude, castsAround(atlas, longitude, latitude)};
    for (const ATLASCAST& cast : place.around.casts) place.levels = std::max(place.levels, cast.levels);
    if (place.around.casts.empty()) return 1;

    int status = 1;
    for (std::size_t n = 0; n < samples; ++n) {
        if (!isUsable(salinity[n], temperature[n], pressure[n])) continue;
        const RLabelMean mean = labelOf({salinity[n], temperature[n], pressure[n]}, place, atlas);
        if (!mean.valid()) continue;
        gamma[n] = mean.gamma();
        errorLow[n] = mean.errorLow();
        errorHigh[n] = mean.errorHigh();
        status = 0;
    }
    return status;
}

} // namespace seawater
