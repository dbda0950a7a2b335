#include "dialogs/enterednumber.h"

#include <cmath>

#include "common/text.h"

namespace dialogs {

QString numberText(double value)
{
    return QString::fromStdString(common::formatG(value));
}

std::optional<float> numberOf(const QString& text)
{
    QString typed = text;
    if (typed.count(QLatin1Char(',')) == 1) typed.replace(QLatin1Char(','), QLatin1Char('.'));
    const std::optional<double> number = common::parseDouble(typed.toStdString());
    if (!number) return std::nullopt;
    const auto value = static_cast<float>(*number);
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

} // namespace dialogs
