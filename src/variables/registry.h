#pragma once

// The kinds of derived variables that can be added, as the list of the program shows them.

#include <array>
#include <cstdint>
#include <string_view>

namespace variables {

// A row of the table.
struct DRVVAR {
    std::string_view label; // with drawing markup, in UTF-8
    std::string_view units; // with their brackets
    std::int32_t width, decimals;
    std::int32_t needsDepth, needsTemperature, needsSalinity; // 1: the set-up asks for that key variable
    std::int32_t qualifier;
    float resolution, resolution2;
    std::int32_t id; // of the calculator
};

inline constexpr int derivedRowCount = 43;
using DERIVEDROWS = std::array<DRVVAR, derivedRowCount>;

// Calculators, by their ids; 32 to 39 are unused.
enum CalculatorId : std::int32_t {
    idPressure = 0,
    idPotentialTemperature = 1,
    idPotentialDensity = 2,
    idDynamicHeight = 3,
    idBruntVaisala = 4,
    idSoundSpeed = 5,
    idOxygenSaturation = 6,
    idFirstSaturation = 7, // CFC-11, then CFC-12; the others from 24 on
    idRatio = 9,
    idVerticalDerivative = 10,
    idVerticalIntegral = 11,
    idMacro = 12,
    idHeaderTime = 13,
    idHeaderDayOfYear = 14,
    idLongitude = 15,
    idLatitude = 16,
    idPatches = 17,
    idDifference = 18,
    idPH = 19,
    idPCO2 = 20,
    idCO2 = 21,
    idHCO3 = 22,
    idCO3 = 23,
    idCfc10Saturation = 24,      // to CH4, 26
    idFirstPartialPressure = 27, // CFC-11, CFC-12, CFC-10, CFC-113, CH4
    idLastPartialPressure = 31,
    idDepth = 40,
    idStationNumber = 41,
    idFreezingTemperature = 42,
    idSpecificHeat = 43,
    idNeutralDensity = 44,
    idExpression = 45,
    idCruiseNumber = 46,
    idInSituTemperature = 47,
    idTime = 48,
    idDayOfYear = 49,
    idSecondDerivative = 50,
    calculatorEnd = 51
};

// The table in its order, which is that of the alphabet.
[[nodiscard]] const DERIVEDROWS& derivedRows();

// Index of the row with this label, case ignored; -1 if there is none.
[[nodiscard]] int findDerivedRow(std::string_view label);
[[nodiscard]] int rowOfCalculator(int id); // -1 if there is none

} // namespace variables
