#include "variables/timesetup.h"

#include "common/text.h"
#include "common/textcoding.h"
#include "variables/timeconversions.h"

namespace variables {
namespace {

std::string labelOf(const collection::RCollection& collection, int variable)
{
    return common::labelToUtf8(
        common::fieldText(collection.variables[static_cast<std::size_t>(variable)].label));
}

} // namespace

bool settleTime(const collection::RCollection& collection, int variable, const DRVVAR& row,
                const SETUPTOOLS& tools, TIMEREADING& reading)
{
    const std::string label = labelOf(collection, variable);
    reading.form = timeFormOf(label);
    if (reading.form < 0) {
        const auto form =
            tools.settler.chooseTimeForm(label, row.id == idTime ? yearTarget : dayOfYearTarget);
        if (!form || !givesDate(*form)) return false;
        reading.form = *form;
    }
    if (reading.form < daysSinceRow || referenceDayOf(label, reading.origin)) return true;
    const auto origin = tools.settler.askOrigin(label);
    if (!origin) return false;
    if (referenceDayOf("since " + *origin, reading.origin)) return true;
    tools.user.about(row.label, "\"" + *origin + "\" is no date of the form yyyy-mm-dd hh:mm:ss.");
    return false;
}

void warnOfCells(const collection::RCollection& collection, int variable, const DRVVAR& row,
                 const TIMEREADING& reading, common::RUser& user)
{
    if (!exceedsCell(reading.form)) return;
    user.about(
        row.label,
        labelOf(collection, variable) +
            ": dates as YYYYMMDD are larger than the numbers that a cell holds exactly (16777216). Days "
            "may be off by one, and parts of days are lost. Days since an origin are exact.");
}

} // namespace variables
