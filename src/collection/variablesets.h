#pragma once

// The sets of variables that a new collection can be made with.

#include <array>
#include <string_view>
#include <vector>

#include "collection/varinfo.h"

namespace collection {

enum VariableSet : int {
    setTemplate = 1,
    setWhpBottle = 2,
    setWoa94 = 3,
    setWorldOceanDatabase = 4,
    setManual = 5,
    setCurrentMeter = 6,
    setSeaLevel = 7,
    setSurfaceVelocity = 8,
    setWhpCtd = 9,
    setSubsurfaceFloat = 10,
    setAdcp = 11
};

struct VARIABLESETROW {
    std::string_view entry; // as the creation dialog shows it, UTF-8
    int number;             // a VariableSet
};
// In the order of the dialog.
inline constexpr auto variableSets = std::to_array<VARIABLESETROW>({
    {"user specifies variables manually", setManual},
    {".var, .o4x or .txt file as template", setTemplate},
    {"WOCE WHP Bottle variables", setWhpBottle},
    {"WOCE WHP CTD variables", setWhpCtd},
    {"WOCE Surface Velocity variables", setSurfaceVelocity},
    {"WOCE ADCP variables", setAdcp},
    {"WOCE Subsurface Float variables", setSubsurfaceFloat},
    {"WOCE Current Meter variables", setCurrentMeter},
    {"WOCE Sea Level variables", setSeaLevel},
    {"World Ocean Database variables", setWorldOceanDatabase},
    {"WOA94/SD2 variables", setWoa94},
});

// The number of an entry by its text, case and blanks at the ends ignored; 0 if there is none.
[[nodiscard]] int variableSetOf(std::string_view entry);

// The variables of a set, numbered from 1; index 0 is no variable. For setManual the three that the editor
// starts with; empty for setTemplate.
[[nodiscard]] std::vector<VARINFO> variablesOfSet(int set);

} // namespace collection
