#include "dialogs/variablesettler.h"

#include "common/text.h"
#include "common/textcoding.h"
#include "dialogs/boxes.h"
#include "dialogs/filename.h"
#include "dialogs/formparts.h"
#include "dialogs/identifyvar.h"
#include "dialogs/lineinput.h"
#include "dialogs/selconversion.h"
#include "dialogs/setupexpression.h"
#include "variables/timeconversions.h"

namespace dialogs {
namespace {

std::span<const collection::VARINFO> variablesOf(const collection::RCollection& collection)
{
    return std::span(collection.variables).first(static_cast<std::size_t>(collection.totalVariableCount) + 1);
}

// A question for a line that has to be read as something.
struct LINEQUESTION {
    QString title, prompt, preset;
    bool (*reads)(const std::string& line);
    const char* fault; // behind the quoted line
};

// Asks again, with what was typed, until the line reads or the user cancels.
std::optional<std::string> askUntilItReads(QWidget* over, const LINEQUESTION& question)
{
    QString typed = question.preset;
    while (const std::optional<QString> line = askLine(over, question.title, question.prompt, typed)) {
        if (question.reads(line->toStdString())) return line->toStdString();
        tell(over, question.title,
             u'"' + *line + QLatin1StringView("\" ") + QLatin1StringView(question.fault));
        typed = *line;
    }
    return std::nullopt;
}

bool isNumber(const std::string& line)
{
    float value = 0;
    std::string_view rest = line;
    return common::takeFloat(rest, value);
}

bool isOrigin(const std::string& line)
{
    double day = 0;
    return variables::referenceDayOf("since " + line, day);
}

} // namespace

std::optional<int> RDialogVariableSettler::identify(const variables::IDENTIFICATION& question,
                                                    const collection::RCollection& collection)
{
    identifyvarDlg dialog(fromUtf8(question.task), common::decodeLabel(question.keyText),
                          variablesOf(collection), parent_, question.proposed);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.variable();
}

std::optional<std::string> RDialogVariableSettler::askNumber(std::string_view title, std::string_view prompt,
                                                             std::string_view preset)
{
    return askUntilItReads(parent_,
                           {fromUtf8(title), fromUtf8(prompt), fromUtf8(preset), isNumber, "is no number."});
}

std::optional<int> RDialogVariableSettler::chooseTimeForm(std::string_view label, std::string_view target)
{
    QStringList rows;
    for (const variables::HEADERROW& row : variables::timeRows)
        rows += fromUtf8(variables::headerRowLabel(row, target));
    selconversionDlg dialog(fromUtf8(label), fromUtf8(target), rows, 0, parent_);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return variables::timeRows.at(static_cast<std::size_t>(dialog.row())).id;
}

std::optional<std::string> RDialogVariableSettler::askOrigin(std::string_view label)
{
    return askUntilItReads(parent_, {inTitle(fromUtf8(label)),
                                     QStringLiteral("Origin of the times (yyyy-mm-dd hh:mm:ss):"),
                                     QStringLiteral("1950-01-01 00:00:00"), isOrigin,
                                     "is no date of the form yyyy-mm-dd hh:mm:ss."});
}

std::optional<variables::EXPRESSIONDEFINITION>
RDialogVariableSettler::defineExpression(const collection::RCollection& collection)
{
    setupexpressionDlg dialog(variablesOf(collection), parent_);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.definition();
}

std::string RDialogVariableSettler::chooseMacroFile(const std::string& folder)
{
    return askOpenName(parent_, QStringLiteral("Select Macro File ..."),
                       QStringLiteral("Macro Files (*.mac)"), QString::fromStdString(folder))
        .toStdString();
}

} // namespace dialogs
