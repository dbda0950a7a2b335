#include "variables/seawater/carbonate.h"

#include <cmath>
#include <numbers>
#include <optional>
#include <utility>

namespace seawater {
namespace {

struct WATER {
    double carbon, alkalinity, boron; // totals [mol/kg]
    double k1, k2;                    // of carbonic acid
    double water, boric;              // constants of water and of boric acid
};

double powerOfTen(double exponent)
{
    return std::exp(exponent * std::numbers::ln10);
}

WATER waterOf(double t, double s, double carbon, double alkalinity)
{
    const double kelvin = t + 273.15;
    const double log = std::log(kelvin);
    const double rootS = std::sqrt(s);
    const double pk1 = 6320.18 / kelvin - 126.3405 + 19.568 * log +
                       (19.894 - 840.39 / kelvin - 3.0189 * log) * rootS + 0.00679 * s;
    const double pk2 = 5143.69 / kelvin - 90.1833 + 14.613 * log +
                       (17.176 - 690.59 / kelvin - 2.6719 * log) * rootS + 0.02169 * s;
    const double pkWater = 3441.0 / kelvin + 2.241 - 0.09415 * rootS;
    const double pkBoric = 1030.5 / kelvin + 5.5076 - 0.015469 * s + 0.00015339 * s * s;
    return {carbon * 1e-6,    alkalinity * 1e-6,    s * 1.17314285e-05,  powerOfTen(-pk1),
            powerOfTen(-pk2), powerOfTen(-pkWater), powerOfTen(-pkBoric)};
}

// Solubility of CO2 [mol/(kg atm)].
double solubilityOfCO2(double t, double s)
{
    const double kelvin = t + 273.15;
    return std::exp(9345.17 / kelvin - 60.2409 + 23.3585 * std::log(kelvin / 100.0) +
                    s * (0.023517 - 0.00023656 * kelvin + 4.7036e-7 * kelvin * kelvin));
}

// The alkalinity less that of the species [mol/kg]. It falls while the pH rises, from plus to minus infinity,
// so that there is always one root.
double alkalinityExcess(const WATER& water, double pH)
{
    const double h = powerOfTen(-pH);
    const double first = water.k1 / h;
    const double second = water.k2 / h;
    return water.alkalinity - water.carbon * first * (1.0 + 2.0 * second) / (1.0 + first * (1.0 + second)) -
           water.boron / (1.0 + h / water.boric) - water.water / h + h;
}

// The search for the root. `low` has an excess above 0, `high` one below; `last` and `previous` are the last
// two points. Every evaluation counts.
class RRootSearch {
public:
    explicit RRootSearch(const WATER& water) : water_(water) {}
    std::optional<double> find();

private:
    struct POINT {
        double pH, excess;
    };
    static constexpr int maxEvaluations = 100;
    static constexpr double tolerance = 1e-16; // mol/kg

    bool evaluate(double pH); // false: no evaluation is left
    bool expand();
    [[nodiscard]] double nextStep() const;

    const WATER& water_;
    int evaluations_ = 0;
    POINT low_{}, high_{}, last_{}, previous_{};
};

bool RRootSearch::evaluate(double pH)
{
    if (evaluations_ == maxEvaluations) return false;
    ++evaluations_;
    previous_ = std::exchange(last_, POINT{pH, alkalinityExcess(water_, pH)});
    return true;
}

// Widens the interval by steps that double until the sign changes within it.
bool RRootSearch::expand()
{
    if (!evaluate(6.0)) return false;
    low_ = last_;
    if (!evaluate(10.0)) return false;
    high_ = last_;
    for (double step = 1.0; low_.excess < 0; step *= 2) {
        high_ = low_;
        if (!evaluate(low_.pH - step)) return false;
        low_ = last_;
    }
    for (double step = 1.0; high_.excess > 0; step *= 2) {
        low_ = high_;
        if (!evaluate(high_.pH + step)) return false;
        high_ = last_;
    }
    return true;
}

// A secant through the last two points, or the middle of the interval where the secant leaves it or the last
// step has done little.
double RRootSearch::nextStep() const
{
    const double middle = 0.5 * (low_.pH + high_.pH);
    if (std::abs(last_.excess) > 0.5 * std::abs(previous_.excess) && evaluations_ > 2) return middle;
    const double secant =
        last_.pH - last_.excess * (last_.pH - previous_.pH) / (last_.excess - previous_.excess);
    return secant > low_.pH && secant < high_.pH ? secant : middle;
}

// Double precision may have no pH whose excess is within the tolerance: then the root lies between two
// neighbours, and either will do.
std::optional<double> RRootSearch::find()
{
    if (!expand()) return std::nullopt;
    while (std::abs(last_.excess) > tolerance) {
        const double pH = nextStep();
        if (pH <= low_.pH || pH >= high_.pH) return last_.pH;
        if (!evaluate(pH)) return std::nullopt;
        (last_.excess > 0 ? low_ : high_) = last_;
    }
    return last_.pH;
}

// Written so that no number passes that isn't one.
bool isWithin(float x, float lowest, float highest)
{
    return x >= lowest && x <= highest;
}

CARBONATE speciesOf(const WATER& water, double solubility, double pH)
{
    const double h = powerOfTen(-pH);
    const double k1 = water.k1, k2 = water.k2;
    CARBONATE result{};
    result.pH = pH;
    result.CO2 = water.carbon / (1.0 + k1 / h + k1 * k2 / (h * h)) * 1e6;
    result.HCO3 = water.carbon / (1.0 + h / k1 + k2 / h) * 1e6;
    result.CO3 = water.carbon / (1.0 + h / k2 + h * h / (k1 * k2)) * 1e6;
    result.pCO2 = result.CO2 / solubility;
    return result;
}

} // namespace

CARBONATE carbonateSystem(float temperature, float salinity, float totalCarbon, float alkalinity,
                          double missing)
{
    const CARBONATE nothing{missing, missing, missing, missing, missing};
    if (!isWithin(temperature, -2.5f, 45) || !isWithin(salinity, 0, 42) || !isWithin(totalCarbon, 0, 4000) ||
        !isWithin(alkalinity, 0, 4000))
        return nothing;
    const WATER water = waterOf(temperature, salinity, totalCarbon, alkalinity);
    const std::optional<double> pH = RRootSearch(water).find();
    return pH ? speciesOf(water, solubilityOfCO2(temperature, salinity), *pH) : nothing;
}

} // namespace seawater
