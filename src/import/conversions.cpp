#include "import/conversions.h"

#include <cmath>

#include "variables/seawater/adiabat.h"
#include "variables/seawater/pressure.h"

namespace importing {
namespace {

using collection::STATIONDATA;
using collection::VARINFO;
using common::MISSING_VALUE;

// The samples of variable v; empty if it has none.
std::span<float> samplesOf(STATIONDATA& station, int v)
{
    if (v < 1 || v > common::maxVariables || station.offset[static_cast<std::size_t>(v)] < 0) return {};
    return {station.values.get() + station.offset[static_cast<std::size_t>(v)],
            static_cast<std::size_t>(station.levels())};
}

template <typename Convert>
void convertEach(std::span<float> samples, Convert&& convert)
{
    for (float& sample : samples) {
        if (sample == MISSING_VALUE) continue;
        const auto converted = static_cast<float>(convert(sample));
        sample = std::isfinite(converted) ? converted : MISSING_VALUE;
    }
}

bool isSpecial(const VARINFO& source)
{
    return source.offset == MISSING_VALUE;
}

void applyLinear(STATIONDATA& station, const VARINFO& source, int v)
{
    if (isSpecial(source) || (source.scale == 1 && source.offset == 0)) return;
    convertEach(samplesOf(station, v), [&](float x) { return source.scale * x + source.offset; });
}

void applyPressure(STATIONDATA& station, const VARINFO& source, int v)
{
    if (!isSpecial(source)) return;
    const float latitude = station.header.latitude;
    if (source.scale == pressureToDepth)
        convertEach(samplesOf(station, v), [&](float p) { return seawater::depthFromPressure(p, latitude); });
    if (source.scale == depthToPressure)
        convertEach(samplesOf(station, v), [&](float z) { return seawater::pressureFromDepth(z, latitude); });
}

void applyTemperature(STATIONDATA& station, const VARINFO& source, int v, KEYVARIABLES keys)
{
    if (!isSpecial(source) || source.scale != potentialToTemperature) return;
    const std::span<float> temperature = samplesOf(station, v);
    const std::span<float> depth = samplesOf(station, keys.depth);
    const std::span<float> salinity = samplesOf(station, keys.salinity);
    std::size_t k = 0;
    const auto inSitu = [&](float theta, float z, float s) {
        if (theta == MISSING_VALUE || z == MISSING_VALUE || s == MISSING_VALUE) return MISSING_VALUE;
        const auto p = static_cast<float>(seawater::pressureFromDepth(z, station.header.latitude));
        const auto t = static_cast<float>(seawater::potentialTemperature(0, theta, s, p));
        return std::isfinite(t) ? t : MISSING_VALUE;
    };
    for (float& theta : temperature) {
        theta = inSitu(theta, depth.empty() ? MISSING_VALUE : depth[k],
                       salinity.empty() ? MISSING_VALUE : salinity[k]);
        ++k;
    }
}

} // namespace

void applyConversions(STATIONDATA& station, std::span<const VARINFO> sources,
                      std::span<const VARINFO> targets, KEYVARIABLES keys)
{
    const auto forEachLink = [&](auto&& apply) {
        for (std::size_t v = 1; v < targets.size(); ++v) {
            const auto source = static_cast<std::size_t>(std::max(0, targets[v].assocSource));
            if (source > 0 && source < sources.size()) apply(sources[source], static_cast<int>(v));
        }
    };
    forEachLink([&](const VARINFO& source, int v) { applyLinear(station, source, v); });
    forEachLink([&](const VARINFO& source, int v) { applyPressure(station, source, v); });
    forEachLink([&](const VARINFO& source, int v) { applyTemperature(station, source, v, keys); });
}

} // namespace importing
