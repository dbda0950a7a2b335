#include "collection/variablesets.h"

#include <algorithm>
#include <iterator>
#include <span>

#include <QString>

#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"

namespace collection {
namespace {

constexpr std::size_t labelBytes = sizeof(VARINFO::label) - 1;

// A label as a source file writes it, UTF-8, and how its values are shown.
struct SETVARIABLE {
    std::string_view label;
    int width, decimals;
};

constexpr std::string_view timeLabel = "Time [days since 1900-1-1 0:0:0]";

constexpr SETVARIABLE manualVariables[] = {
    {"Depth [m]", 8, 2},
    {"Temperature [°C]", 8, 2},
    {"Salinity [psu]", 8, 3},
};

// Decimals are those that the exchange format prescribes for each parameter; the first four make the set of
// a CTD.
constexpr SETVARIABLE whpVariables[] = {
    {"DEPTH [M]", 8, 1},        {"TEMPERATURE [°C]", 9, 4},
    {"SALNTY [PSS-78]", 9, 4},  {"OXYGEN [UMOL/KG]", 8, 1},
    {"PHSPHT [UMOL/KG]", 8, 2}, {"SILCAT [UMOL/KG]", 8, 2},
    {"NITRAT [UMOL/KG]", 8, 2}, {"NITRIT [UMOL/KG]", 8, 2},
    {"CFC-11 [PMOL/KG]", 8, 3}, {"CFC-12 [PMOL/KG]", 8, 3},
    {"CCL4 [PMOL/KG]", 8, 3},   {"CFC113 [PMOL/KG]", 8, 3},
    {"TRITUM [TU]", 8, 3},      {"DELHE3 [PERCNT]", 8, 2},
    {"HELIUM [NMOL/KG]", 9, 4}, {"NEON [NMOL/KG]", 8, 3},
    {"ALKALI [UMOL/KG]", 8, 1}, {"TCARBN [UMOL/KG]", 8, 1},
    {"PCO2TMP [DEG C]", 8, 2},  {"PCO2 [UATM]", 8, 1},
    {"PHTEMP [DEG C]", 8, 2},   {"PH []", 9, 4},
    {"DELC14 [/MILLE]", 8, 1},  {"DELC13 [/MILLE]", 8, 2},
    {"O18/O16 [/MILLE]", 8, 2}, {"KR-85 [DM/MG]", 8, 2},
    {"ARGON [UMOL/KG]", 8, 2},  {"AR-39 [PCTMOD]", 8, 1},
    {"RA-228 [DM/.1MG]", 8, 2}, {"RA-226 [DM/.1MG]", 8, 2},
    {"SR-90 [DM/.1MG]", 8, 2},  {"DOC [UMOL/KG]", 8, 2},
    {"DON [UMOL/KG]", 8, 2},    {"POC [UG/KG]", 8, 3},
    {"PON [UG/KG]", 8, 3},      {"NH4 [UMOL/KG]", 8, 2},
    {"CHLORA [UG/KG]", 8, 2},   {"CASTNO []", 8, 0},
    {"SAMPNO []", 8, 0},
};
static_assert(std::size(whpVariables) == 39);
constexpr std::size_t whpCtdCount = 4;

constexpr SETVARIABLE driftVariables[] = {
    {timeLabel, 12, 4},
    {"Longitude [°E]", 9, 3},
    {"Latitude [°N]", 9, 3},
    {"U [cm s~^-~^1]", 8, 2},
    {"V [cm s~^-~^1]", 8, 2},
    {"Temperature [°C]", 8, 3},
    {"Longitude Error [°]", 9, 4},
    {"Latitude Error [°]", 9, 4},
    {"Drogue Indicator", 8, 0},
};
constexpr SETVARIABLE floatPressure = {"Pressure [dbar]", 8, 1};
constexpr std::size_t floatCount = 7;

constexpr SETVARIABLE adcpVariables[] = {
    {"Depth [m]", 8, 2},
    {"Eastward Abs. Current Velocity (hourly mean) [m/s]", 8, 3},
    {"Northward Abs. Current Velocity (hourly mean) [m/s]", 8, 3},
};

constexpr SETVARIABLE currentMeterVariables[] = {
    {timeLabel, 12, 4},
    {"Speed [cm s~^-~^1]", 8, 2},
    {"Direction (toward) [degrees,clockwise from N]", 8, 1},
    {"U [cm s~^-~^1]", 8, 2},
    {"V [cm s~^-~^1]", 8, 2},
    {"Pressure [db]", 8, 1},
    {"Temperature [C]", 8, 3},
    {"Salinity [psu]", 8, 3},
};

constexpr SETVARIABLE seaLevelVariables[] = {{timeLabel, 12, 4}, {"Sea Level [m]", 8, 3}};

// The first seven make the shorter set of the older archives.
constexpr SETVARIABLE databaseVariables[] = {
    {"Depth [m]", 8, 2},
    {"Temperature [°C]", 8, 3},
    {"Salinity [psu]", 8, 3},
    {"Oxygen [ml/l]", 8, 2},
    {"Phosphate [~$m~#mol/l]", 8, 2},
    {"Silicate [~$m~#mol/l]", 8, 2},
    {"Nitrate [~$m~#mol/l]", 8, 2},
    {"Nitrite [~$m~#mol/l]", 8, 2},
    {"pH []", 8, 2},
    {"Chlorophyll [~$m~#g/l]", 8, 2},
    {"Plankton/Biomass []", 8, 2},
    {"Alkalinity [meq/l]", 8, 3},
    {"NO2+NO3 [~$m~#mol/l]", 8, 2},
    {"pCO~_2 [~$m~#atm]", 8, 1},
    {"tCO~_2 [mmol/l]", 8, 3},
};
constexpr std::size_t woa94Count = 7;

std::vector<SETVARIABLE> subsurfaceFloatVariables()
{
    std::vector<SETVARIABLE> list(std::begin(driftVariables), std::begin(driftVariables) + floatCount);
    list.back() = floatPressure;
    return list;
}

VARINFO makeVariable(int number, const SETVARIABLE& entry)
{
    VARINFO variable = emptyVariable(number);
    const QString label = QString::fromUtf8(entry.label.data(), static_cast<qsizetype>(entry.label.size()));
    setLabel(variable, common::encodeLabel(label, labelBytes));
    variable.width = entry.width;
    variable.decimals = entry.decimals;
    return variable;
}

std::vector<VARINFO> makeList(std::span<const SETVARIABLE> entries)
{
    std::vector<VARINFO> list = {emptyVariable(0)};
    list.reserve(entries.size() + 1);
    for (const SETVARIABLE& entry : entries)
        list.push_back(makeVariable(static_cast<int>(list.size()), entry));
    return list;
}

} // namespace

int variableSetOf(std::string_view entry)
{
    const auto row =
        std::find_if(variableSets.begin(), variableSets.end(), [entry](const VARIABLESETROW& candidate) {
            return common::equalsIgnoreCase(candidate.entry, common::trimBlanks(entry));
        });
    return row == variableSets.end() ? 0 : row->number;
}

std::vector<VARINFO> variablesOfSet(int set)
{
    switch (set) {
    case setManual:
        return makeList(manualVariables);
    case setWhpBottle:
        return makeList(whpVariables);
    case setWhpCtd:
        return makeList(std::span(whpVariables).first(whpCtdCount));
    case setSurfaceVelocity:
        return makeList(driftVariables);
    case setAdcp:
        return makeList(adcpVariables);
    case setSubsurfaceFloat:
        return makeList(subsurfaceFloatVariables());
    case setCurrentMeter:
        return makeList(currentMeterVariables);
    case setSeaLevel:
        return makeList(seaLevelVariables);
    case setWorldOceanDatabase:
        return makeList(databaseVariables);
    case setWoa94:
        return makeList(std::span(databaseVariables).first(woa94Count));
    default:
        return {};
    }
}

} // namespace collection
