#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "graphics/plots.h"
#include "graphics/plotvalues.h"
#include "graphics/preparewindow.h"
#include "selection/selectedlist.h"

namespace graphics {

namespace {

struct RANGE {
    float low = 1.0e10f, high = -1.0e10f;
    [[nodiscard]] bool found() const { return low <= high; }
};
constexpr float largestPlotted = 1.0e30f; // beyond it the arithmetic of the axes would overflow
using RANGES = std::array<RANGE, 51>;     // by variable number

void widen(RANGE& range, const collection::STATIONDATA& station, int variable)
{
    const std::int32_t offset = station.offset[static_cast<std::size_t>(variable)];
    if (offset < 0) return;
    const float* const first = station.values.get() + offset;
    for (const float* value = first; value != first + station.levels(); ++value) {
        if (*value == common::MISSING_VALUE || !(std::abs(*value) <= largestPlotted)) continue;
        range.low = std::min(range.low, *value);
        range.high = std::max(range.high, *value);
    }
}

// False if the user broke off.
bool scanRanges(PLOTCONTEXT& context, std::span<const int> variables, RANGES& ranges)
{
    const std::vector<selection::SELECTEDSTATION> list = selection::readSelectedList(context.collection);
    const std::size_t step = std::max<std::size_t>(list.size() / 20, 100);
    const common::RBusyGuard busy(context.user, abortable("Finding Data Ranges ..."));
    RStationScan scan(context.collection, context.station, variables, context.user);
    for (std::size_t i = 0; i < list.size(); ++i) {
        if ((i + 1) % step == 0) {
            context.user.setProgress(100.0 * static_cast<double>(i + 1) / static_cast<double>(list.size()));
            if (context.user.abortRequested()) return false;
        }
        if (!scan.load(list[i].number)) continue;
        for (const int v : variables) widen(ranges[static_cast<std::size_t>(v)], context.station, v);
    }
    return true;
}

std::vector<int> windowsOf(GRAPHICSSETUP& setup, int number)
{
    std::vector<int> numbers;
    for (int n = 1; n <= setup.count(); ++n) {
        if ((number == 0 || n == number) && setup.window(n).exists) numbers.push_back(n);
    }
    return numbers;
}

void applyRange(PLOTCONTEXT& context, int variable, const RANGE& range)
{
    collection::VARINFO& info = context.collection.variables[static_cast<std::size_t>(variable)];
    info.rangeMin = range.low;
    info.rangeMax = range.high;
    const TICS tics = ChooseTics(range.low, range.high);
    ApplyRangeToTwins(context.setup, variable, tics.lo, tics.hi);
}

} // namespace

void fullRanges(PLOTCONTEXT& context, int number)
{
    const int most = std::min(context.collection.totalVariableCount, common::maxVariables);
    std::vector<int> variables = variablesOf(context.setup, windowsOf(context.setup, number));
    std::sort(variables.begin(), variables.end());
    variables.erase(std::unique(variables.begin(), variables.end()), variables.end());
    std::erase_if(variables, [most](int v) { return v > most; });
    if (variables.empty()) return;
    refreshSelection(context);
    RANGES ranges;
    if (!scanRanges(context, variables, ranges)) return;
    for (const int v : variables) {
        const RANGE& range = ranges[static_cast<std::size_t>(v)];
        if (range.found()) applyRange(context, v, range);
    }
}

} // namespace graphics
