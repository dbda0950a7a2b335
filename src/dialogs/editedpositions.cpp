#include "dialogs/editedpositions.h"

#include <algorithm>
#include <numeric>

namespace dialogs {

void moveToPosition(std::span<collection::VARINFO> variables, int number, int position)
{
    const int count = static_cast<int>(variables.size()) - 1;
    if (number < 1 || number > count) return;
    const int from = variables[static_cast<std::size_t>(number)].position;
    const int to = std::clamp(position, 1, count);
    for (collection::VARINFO& variable : variables.subspan(1)) {
        if (variable.position > from && variable.position <= to)
            --variable.position;
        else if (variable.position < from && variable.position >= to)
            ++variable.position;
    }
    variables[static_cast<std::size_t>(number)].position = to;
}

void settlePositions(std::span<collection::VARINFO> variables)
{
    int position = 0;
    for (const int number : numbersByPosition(variables))
        variables[static_cast<std::size_t>(number)].position = ++position;
}

std::vector<int> numbersByPosition(std::span<const collection::VARINFO> variables)
{
    std::vector<int> numbers(variables.empty() ? 0 : variables.size() - 1);
    std::iota(numbers.begin(), numbers.end(), 1);
    std::stable_sort(numbers.begin(), numbers.end(), [&](int a, int b) {
        return variables[static_cast<std::size_t>(a)].position <
               variables[static_cast<std::size_t>(b)].position;
    });
    return numbers;
}

} // namespace dialogs
