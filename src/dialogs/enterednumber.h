#pragma once

// Numbers in the fields of forms, in no language.

#include <optional>

#include <QString>

namespace dialogs {

// A number as a form shows it, such as "0", "-1.5" or "43.53".
[[nodiscard]] QString numberText(double value);

// The number that a field holds, with a point or a comma; nothing if it holds anything else, or a number that
// is too large to be stored.
[[nodiscard]] std::optional<float> numberOf(const QString& text);

} // namespace dialogs
