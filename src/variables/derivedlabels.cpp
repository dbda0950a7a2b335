#include "variables/derivedlabels.h"

#include <algorithm>
#include <cmath>

#include "common/text.h"
#include "common/textcoding.h"

namespace variables {
namespace {

// All labels are put together as UTF-8, since those of sources may be of either coding.
std::string labelOf(const collection::RCollection& collection, int number)
{
    return common::labelToUtf8(
        common::fieldText(collection.variables[static_cast<std::size_t>(number)].label));
}

std::string shortLabel(const collection::RCollection& collection, int number)
{
    return collection::shortLabelOf(labelOf(collection, number));
}

// A label without units gets those of the suffix alone.
std::string withUnits(std::string label, const std::string& suffix)
{
    const std::size_t bracket = label.rfind(']');
    if (bracket == std::string::npos) return label + " [" + suffix;
    return label.substr(0, bracket) + suffix;
}

std::string integralLabel(const std::string& label)
{
    const std::size_t units = label.find('[');
    const std::string name = collection::shortLabelOf(label) + " dz ";
    return "~$\u00f2~#" +
           withUnits(units == std::string::npos ? name + "[]" : name + label.substr(units), "*km]");
}

std::string utf8Label(const collection::RCollection& collection, const DRVVAR& row,
                      std::span<const int> sources, float param)
{
    const int whole = static_cast<int>(std::clamp(param, -2.0e9f, 2.0e9f));
    switch (row.id) {
    case idPotentialTemperature:
        return common::format("Tpot-%d [°C]", whole);
    case idPotentialDensity:
        return common::format("Sigma-%d [kg/m~^3]", whole);
    case idDynamicHeight:
        return common::format("Dyn.Ht.-%d [dyn m]", whole);
    case idNeutralDensity:
        return std::string(row.label) + " ~$g~#~^n " + std::string(row.units);
    case idRatio:
        return "Ratio " + shortLabel(collection, sources[0]) + "/" + shortLabel(collection, sources[1]);
    case idVerticalDerivative:
        return withUnits("d/dz " + labelOf(collection, sources[1]), "/km]");
    case idSecondDerivative:
        return withUnits("d~^2/dz~^2 " + labelOf(collection, sources[1]), "/km~^2]");
    case idVerticalIntegral:
        return integralLabel(labelOf(collection, sources[1]));
    default:
        return std::string(row.label) + " " + std::string(row.units);
    }
}

} // namespace

std::string derivedLabel(const collection::RCollection& collection, const DRVVAR& row,
                         std::span<const int> sources, float param)
{
    return common::labelFromFile(utf8Label(collection, row, sources, param), true);
}

} // namespace variables
