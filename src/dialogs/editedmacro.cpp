#include "dialogs/editedmacro.h"

#include <algorithm>

#include "common/files.h"
#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "dialogs/editedexpression.h"
#include "dialogs/editedvariables.h"
#include "variables/formula.h"

namespace dialogs {
namespace {

std::string linesOf(QString text)
{
    return common::encodeLabel(text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")), std::string::npos);
}

// A line that the joining of a formula passes over.
bool hasShortLine(std::string_view expression)
{
    while (!expression.empty()) {
        if (common::trimBlanks(common::takeLine(expression)).size() == 1) return true;
    }
    return false;
}

} // namespace

REditedMacro::REditedMacro(variables::MACRO macro, std::string path)
    : macro_(std::move(macro)), path_(std::move(path))
{
}

template <typename T>
void REditedMacro::change(T& field, const T& value)
{
    if (field == value) return;
    field = value;
    dirty_ = true;
}

QString REditedMacro::fileName() const
{
    if (path_.empty()) return QStringLiteral("NewMacro.mac");
    const common::PATHPARTS parts = common::splitPath(path_);
    return QString::fromStdString(parts.baseName + parts.extension);
}

QString REditedMacro::label() const
{
    return common::decodeLabel(macro_.label);
}

QString REditedMacro::expression() const
{
    return common::decodeLabel(macro_.expression);
}

QString REditedMacro::comment() const
{
    QString text = common::decodeLabel(macro_.comment);
    if (text.endsWith(QLatin1Char('\n'))) text.chop(1);
    return text;
}

QStringList REditedMacro::inputLines() const
{
    QStringList lines;
    for (int i = 0; i < macro_.nInputs; ++i) {
        lines += QStringLiteral("#%1 ").arg(i + 1) +
                 common::decodeLabel(macro_.inputs[static_cast<std::size_t>(i)]);
    }
    return lines;
}

void REditedMacro::setLabel(const QString& text)
{
    change(macro_.label, labelFrom(text));
}

void REditedMacro::setFormat(const QString& widthText, const QString& decimalsText)
{
    int width = macro_.width, decimals = macro_.decimals;
    takeFormat(widthText, decimalsText, width, decimals);
    change(macro_.width, width);
    change(macro_.decimals, decimals);
}

void REditedMacro::setExpression(const QString& text)
{
    change(macro_.expression, linesOf(text));
}

void REditedMacro::setComment(const QString& text)
{
    std::string lines = linesOf(text);
    if (!lines.empty() && !lines.ends_with('\n')) lines += '\n';
    change(macro_.comment, lines);
}

bool REditedMacro::addInput(const QString& text)
{
    const std::string input = labelFrom(text);
    if (input.empty() || macro_.nInputs >= variables::maxMacroInputs) return false;
    macro_.inputs[static_cast<std::size_t>(macro_.nInputs++)] = input;
    dirty_ = true;
    return true;
}

bool REditedMacro::removeInput(int row)
{
    if (row < 0 || row >= macro_.nInputs) return false;
    std::rotate(macro_.inputs.begin() + row, macro_.inputs.begin() + row + 1, macro_.inputs.end());
    macro_.inputs.back().clear();
    --macro_.nInputs;
    dirty_ = true;
    return true;
}

QString REditedMacro::obstacle() const
{
    const auto tooLong = [](const char* what, std::size_t length, std::size_t most) {
        return QString::fromStdString(
            common::format("The %s has %zu bytes; a macro file holds %zu.", what, length, most));
    };
    constexpr auto mostFormula = static_cast<std::size_t>(common::formulaLength) - 1;
    if (macro_.expression.size() > mostFormula)
        return tooLong("expression", macro_.expression.size(), mostFormula);
    if (macro_.comment.size() > variables::longestMacroComment)
        return tooLong("comment", macro_.comment.size(), variables::longestMacroComment);
    return {};
}

QString REditedMacro::fault() const
{
    if (macro_.label.empty()) return QStringLiteral("The macro has no label.");
    std::string text = variables::formulaFault(variables::joinedFormula(macro_.expression), macro_.nInputs);
    if (!text.empty() && hasShortLine(macro_.expression))
        text += "\n\nLines of one character are passed over when the macro is loaded.";
    return QString::fromStdString(text);
}

bool REditedMacro::save(const std::string& path)
{
    if (!variables::writeMacroFile(path, macro_)) return false;
    path_ = path;
    dirty_ = false;
    return true;
}

} // namespace dialogs
