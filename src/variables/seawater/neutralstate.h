#pragma once

// The equation of state of the neutral density procedure, in double precision throughout. It is the one that
// the labels of the atlas were made with.

namespace seawater {

// Water at a place: practical salinity, temperature in situ [degC, IPTS-68], pressure [dbar].
struct WATER {
    double salinity = 0, temperature = 0, pressure = 0;
};

// Temperature [degC] of water that is moved without exchange of heat to `pressure` [dbar].
// Source: Fofonoff (1977) over the lapse rate of Bryden (1973). Check: of {40, 40, 10000} at 0, 36.89073.
[[nodiscard]] double temperatureAt(const WATER& water, double pressure);

// Density anomaly [kg/m3 - 1000] in situ.
// Source: EOS-80 in the form of the specific volume anomaly, Fofonoff and Millard (1983). Check: of {40, 40,
// 10000}, 59.82037.
[[nodiscard]] double sigmaOf(const WATER& water);

// Density anomaly [kg/m3 - 1000] of water that is moved without exchange of heat to `pressure` [dbar].
[[nodiscard]] double sigmaAt(const WATER& water, double pressure);

} // namespace seawater
