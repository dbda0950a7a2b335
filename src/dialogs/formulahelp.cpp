#include "dialogs/formulahelp.h"

#include "dialogs/formparts.h"

namespace dialogs {

void addFormulaHelp(QBoxLayout& column, QWidget* parent)
{
    for (const char* const help : {operatorHelp, operandHelp}) {
        QLabel* const line = makeTextLabel(help == operatorHelp ? "operators" : "operands", parent);
        line->setText(QLatin1StringView(help));
        column.addWidget(line);
    }
}

} // namespace dialogs
