#include "dialogs/help.h"

#include <array>

#include "dialogs/boxes.h"
#include "dialogs/formparts.h"

namespace dialogs {
namespace {

struct HELPROW {
    std::string_view topic, text;
};
constexpr auto topics = std::to_array<HELPROW>({
    {importHelp,
     "Each variable of the collection takes its values from one variable of the source file. Variables of "
     "the "
     "same label are associated already.\n\n"
     "Select a line in each list and press Associate to take the values as they are, or Convert to change "
     "units on the way. Undo takes the association of the selected line back. Use Default gives a variable "
     "without a source one value for all samples.\n\n"
     "*  associated\n"
     "+  takes its default value\n\n"
     "Add/Replace stores every station, and asks about those that are there. Merge and Update only change "
     "stations that are there: Merge takes the mean where both have a value, Update takes the new one.\n\n"
     "Cruise Label Association: if the stations of a cruise carry another label in the file, select the "
     "cruise and enter that label."},
    {selectionHelp,
     "Only stations that satisfy all criteria take part in plots, lists and exports, and of these only the "
     "samples that satisfy those of the page Samples.\n\n"
     "An empty field is no limit. A number that can't be read leaves the old one.\n\n"
     "Station labels between two bounds have as many letters as one of them, or a number in between: 10 lies "
     "between 9 and 12, 100 doesn't.\n\n"
     "A file of a polygon has a line with longitude and latitude for each corner. The domain becomes the "
     "polygon and the rectangle around it.\n\n"
     "Values whose quality is not accepted count as missing; so do, outside the range of a variable, all "
     "values of a sample but the first variable's."},
    {derivedHelp,
     "Derived variables are computed whenever a station is loaded; the collection's files hold none of their "
     "values. Everything that takes a variable takes them too.\n\n"
     "Select a kind and press Add. Questions may follow: which variable is the depth, for instance. The "
     "answer "
     "is kept, so that it is asked once for each collection.\n\n"
     "Delete takes the selected variable out, and with it all that are computed from it."},
    {spreadsheetHelp,
     "A spreadsheet holds one sample a line; its columns are divided by one character. One line holds the "
     "labels of the columns. The properties are right when the list of column labels shows one label a "
     "line.\n\n"
     "The position, date and labels of a station stand in columns of each of its lines. Select such a column "
     "and what it means, and press Associate, or Convert if a date or time is written as a number. Set "
     "Default gives the value for all stations of a file that has no such column."},
});

} // namespace

std::string_view helpText(std::string_view topic)
{
    for (const HELPROW& row : topics) {
        if (row.topic == topic) return row.text;
    }
    return {};
}

void showHelp(QWidget* over, std::string_view topic)
{
    tell(over, over->windowTitle(), fromUtf8(helpText(topic)));
}

} // namespace dialogs
