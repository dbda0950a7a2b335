#pragma once

#include <string_view>

#include <QWidget>

namespace dialogs {

// The topics that forms have help for.
inline constexpr std::string_view selectionHelp = "IDH_SELECTION_CRITERIA";
inline constexpr std::string_view importHelp = "IDH_IMPDAT_DIALOG";
inline constexpr std::string_view derivedHelp = "IDH_DERIVED_VARIABLES";
inline constexpr std::string_view spreadsheetHelp = "IDH_IMPDAT_SPREADSHT";

// What a form is for and how it is used; empty for an unknown topic.
[[nodiscard]] std::string_view helpText(std::string_view topic);

// Shows it in a box over the form.
void showHelp(QWidget* over, std::string_view topic);

} // namespace dialogs
