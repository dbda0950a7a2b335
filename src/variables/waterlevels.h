#pragma once

// The water at the levels of a station, as the calculators from depth, temperature and salinity see it.

#include <cstddef>
#include <span>

#include "variables/derivation.h"
#include "variables/seawater/adiabat.h"
#include "variables/seawater/pressure.h"

namespace variables {

class RWaterLevels {
public:
    // Of sources 1 to 3 and the latitude of the station.
    explicit RWaterLevels(const CALCULATION& calculation)
        : depths_(calculation.source(1)), temperatures_(calculation.source(2)),
          salinities_(calculation.source(3)), pressures_(calculation.station.header.latitude)
    {
    }

    // Whether all three have data in the station; nothing below may be asked if not.
    [[nodiscard]] bool areThere() const
    {
        return !depths_.empty() && !temperatures_.empty() && !salinities_.empty();
    }
    // Whether all three are within their windows at a level.
    [[nodiscard]] bool areUsable(std::size_t level) const
    {
        return isDepth(depths_[level]) && isTemperature(temperatures_[level]) &&
               isSalinity(salinities_[level]);
    }

    [[nodiscard]] float temperature(std::size_t level) const { return temperatures_[level]; } // degC
    [[nodiscard]] float salinity(std::size_t level) const { return salinities_[level]; }
    // dbar
    [[nodiscard]] float pressure(std::size_t level) const
    {
        return static_cast<float>(pressures_.pressure(depths_[level]));
    }
    // degC, at a reference pressure [dbar]
    [[nodiscard]] float potentialTemperature(std::size_t level, float referencePressure) const
    {
        return static_cast<float>(seawater::potentialTemperature(pressure(level), temperature(level),
                                                                 salinity(level), referencePressure));
    }

private:
    std::span<const float> depths_, temperatures_, salinities_;
    seawater::RPressureAtLatitude pressures_;
};

} // namespace variables
