#include "dialogs/editedspreadsheet.h"

#include <algorithm>

#include "dialogs/enterednumber.h"
#include "dialogs/formparts.h"

namespace dialogs {
namespace {

constexpr std::size_t linesShown = 9;
constexpr QChar tabMark(0x2192); // an arrow, told from blanks

int lineNumber(int line)
{
    return line < 2 ? 1 : line;
}

} // namespace

REditedSpreadsheet::REditedSpreadsheet(const importing::SPREADSHEETDESC& desc,
                                       std::span<const std::string> firstLines)
    : desc_(desc), firstLines_(firstLines.begin(), firstLines.end())
{
}

void REditedSpreadsheet::setHeaderLine(int line)
{
    desc_.headerLine = lineNumber(line);
    if (desc_.firstDataLine <= desc_.headerLine) desc_.firstDataLine = desc_.headerLine + 1;
}

void REditedSpreadsheet::setFirstDataLine(int line)
{
    desc_.firstDataLine = lineNumber(line);
}

void REditedSpreadsheet::setSeparator(int index)
{
    if (index < 0 || index >= static_cast<int>(importing::separators.size())) return;
    desc_.sepIndex = index;
    desc_.sepChars = importing::separators[static_cast<std::size_t>(index)].character;
}

bool REditedSpreadsheet::setMissingValue(const QString& text)
{
    const std::optional<float> value = numberOf(text);
    if (value) desc_.missingValue = *value;
    return value.has_value();
}

QStringList REditedSpreadsheet::lines() const
{
    QStringList lines;
    for (std::size_t i = 0; i < std::min(linesShown, firstLines_.size()); ++i)
        lines += QStringLiteral("%1: ").arg(static_cast<int>(i) + 1) +
                 fromUtf8(firstLines_[i]).replace(QLatin1Char('\t'), tabMark);
    return lines;
}

bool REditedSpreadsheet::knowsHeaderLine() const
{
    return desc_.headerLine <= static_cast<int>(firstLines_.size());
}

QStringList REditedSpreadsheet::labels() const
{
    QStringList labels;
    if (!knowsHeaderLine()) return labels;
    const std::string& line = firstLines_[static_cast<std::size_t>(desc_.headerLine - 1)];
    for (const std::string& label : importing::splitLabels(line, desc_.sepChars, true))
        labels += fromUtf8(label);
    return labels;
}

} // namespace dialogs
