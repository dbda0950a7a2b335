#include "dialogs/variablerows.h"

#include <algorithm>

#include "dialogs/editedpositions.h"
#include "dialogs/editedvariables.h"

namespace dialogs {

RVariableRows::RVariableRows(std::span<const collection::VARINFO> variables, int first)
    : numbers_(numbersByPosition(variables))
{
    std::erase_if(numbers_, [first](int number) { return number < first; });
    for (const int number : numbers_) lines_ += plainOf(variables[static_cast<std::size_t>(number)]);
}

int RVariableRows::numberOf(int row) const
{
    return row < 0 || row >= count() ? 0 : numbers_[static_cast<std::size_t>(row)];
}

int RVariableRows::rowOf(int number) const
{
    const auto place = std::find(numbers_.begin(), numbers_.end(), number);
    return place == numbers_.end() ? -1 : static_cast<int>(place - numbers_.begin());
}

} // namespace dialogs
