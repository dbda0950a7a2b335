#pragma once

// The limits and marks that every floor agrees on. They are part of the file formats.

namespace common {

// Marks "no data" in every stored and computed value; tested by equality. Bit pattern 0xD01502F9.
inline constexpr float MISSING_VALUE = -1.0e10f;

inline constexpr int maxVariables = 50;   // collection and derived variables together, numbered from 1
inline constexpr int variableSlots = 54;  // entries of the table of variables; entry 0 is no variable
inline constexpr int maxFormulas = 10;    // formulas of expression and macro variables
inline constexpr int formulaLength = 500; // bytes of a formula
inline constexpr int maxCells = 100000;   // float cells of one station, over all variables
inline constexpr int maxLevels = 32767;   // what the int16 counts of a stored header can hold
inline constexpr int labelLength = 20;    // bytes of a cruise or station label
inline constexpr int maxDataWindows = 20; // data windows of one mode
inline constexpr int noQualityLimit = 8;  // a quality limit that refuses nothing

} // namespace common
