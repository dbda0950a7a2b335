#include "variables/setupquestions.h"

#include <array>

namespace variables {
namespace {

using Kind = SETUPQUESTION::Kind;

constexpr std::array<std::string_view, 5> tracerKeys{
    "CFC-11 [pmol/kg]", "CFC-12 [pmol/kg]", "CFC-10 [pmol/kg]", "CFC-113 [pmol/kg]", "CH4 [nmol/kg]"};

bool isCarbonate(int id)
{
    return id >= idPH && id <= idCO3;
}

bool isVertical(int id)
{
    return id == idVerticalDerivative || id == idVerticalIntegral || id == idSecondDerivative;
}

class RQuestionList {
public:
    RQuestionList(const collection::RCollection& collection, const DRVVAR& row)
        : collection_(collection), row_(row)
    {
    }
    void addVariable(std::string_view key, int source)
    {
        const bool isRole = isRecordable(row_.id, key);
        questions_.push_back({isRole ? Kind::role : Kind::variable, std::string(key), source,
                              isRole ? recordedVariable(collection_, key) : 0, ""});
    }
    void addNumber(std::string prompt) { questions_.push_back({Kind::number, std::move(prompt), 0, 0, "0"}); }
    void addSpecial();
    void addKeys();
    void addRest();
    [[nodiscard]] std::vector<SETUPQUESTION> take() { return std::move(questions_); }

private:
    const collection::RCollection& collection_;
    const DRVVAR& row_;
    std::vector<SETUPQUESTION> questions_;
};

// What stands before depth, temperature and salinity.
void RQuestionList::addSpecial()
{
    if (row_.id == idOxygenSaturation) addVariable("Oxygen [umol/kg]", 4);
    if (const int gas = gasOf(row_.id); gas >= 0) addVariable(tracerKeys[static_cast<std::size_t>(gas)], 4);
    if (row_.id == idRatio) addVariable("Numerator", 1);
    if (isVertical(row_.id)) addVariable("Variable", 2);
}

void RQuestionList::addKeys()
{
    if (row_.needsDepth) addVariable("Depth [m]", 1);
    if (row_.needsTemperature)
        addVariable(row_.id == idInSituTemperature ? potentialTemperatureKey : "Temperature [C]", 2);
    if (row_.needsSalinity) addVariable("Salinity [psu]", 3);
}

void RQuestionList::addRest()
{
    if (row_.id >= idPotentialTemperature && row_.id <= idDynamicHeight)
        addNumber(std::string(row_.label) + " - Enter Ref. Press. [db]:");
    if (row_.id == idVerticalIntegral) addNumber(std::string(row_.label) + " - Enter Integration Start [m]:");
    if (row_.id == idRatio) {
        addVariable("Denominator", 2);
        addNumber("Denominator absolute-value limit:");
    }
    if (isCarbonate(row_.id)) {
        addVariable("TCO2 [umol/kg]", 4);
        addVariable("TALK [uequ/kg]", 5);
    }
    if (row_.id == idDepth) addVariable("Pressure [db]", 1);
    if (row_.id == idTime || row_.id == idDayOfYear) addVariable("Time variable...", 1);
}

} // namespace

std::vector<SETUPQUESTION> setupQuestions(const collection::RCollection& collection, const DRVVAR& row)
{
    RQuestionList list(collection, row);
    list.addSpecial();
    list.addKeys();
    list.addRest();
    return list.take();
}

int gasOf(int id)
{
    if (id == idFirstSaturation || id == idFirstSaturation + 1) return id - idFirstSaturation;
    if (id >= idCfc10Saturation && id < idFirstPartialPressure) return id - idCfc10Saturation + 2;
    if (id >= idFirstPartialPressure && id <= idLastPartialPressure) return id - idFirstPartialPressure;
    return -1;
}

int sourceCountOf(int id)
{
    if (id == idOxygenSaturation || gasOf(id) >= 0) return 4;
    if (isCarbonate(id)) return 5;
    if (id == idRatio || isVertical(id)) return 2;
    if (id == idPressure || id == idDepth || id == idTime || id == idDayOfYear) return 1;
    if (id == idStationNumber || id == idCruiseNumber || (id >= idHeaderTime && id <= idLatitude)) return 0;
    return 3;
}

} // namespace variables
