#include "graphics/plotvalues.h"

#include <algorithm>
#include <cstdlib>

#include "variables/needed.h"

namespace graphics {

namespace {

std::vector<int> sortedNumbers(std::span<const int> variables, int count)
{
    std::vector<int> numbers;
    for (const int variable : variables) {
        const int v = std::abs(variable);
        if (v >= 1 && v <= count) numbers.push_back(v);
    }
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

void appendStation(PLOTVALUES& out, const collection::STATIONDATA& station)
{
    const int levels = station.levels();
    out.stations.push_back({station.number, levels, station.header.type[0]});
    for (const int v : out.variables) {
        const std::int32_t offset = station.offset[static_cast<std::size_t>(v)];
        if (offset < 0 || levels <= 0) {
            out.starts.push_back(-1);
            continue;
        }
        out.starts.push_back(static_cast<std::int64_t>(out.values.size()));
        const float* const first = station.values.get() + offset;
        out.values.insert(out.values.end(), first, first + levels);
    }
}

void appendDamaged(PLOTVALUES& out, int number)
{
    out.stations.push_back({number, 0, '*'});
    out.starts.insert(out.starts.end(), out.variables.size(), -1);
}

} // namespace

RStationScan::RStationScan(collection::RCollection& collection, collection::STATIONDATA& station,
                           std::span<const int> variables, common::RUser& user)
    : collection_(collection), station_(station), user_(user), savedMask_(collection.neededMask)
{
    variables::needVariables(collection_, variables);
}

RStationScan::~RStationScan()
{
    collection_.neededMask = savedMask_;
    damaged_.tell(collection_.path, user_);
}

bool RStationScan::load(int number)
{
    const bool loaded = collection_.loadStation(number, station_, true) == collection::LoadResult::ok;
    if (!loaded) damaged_.add(number);
    return loaded;
}

std::span<const float> PLOTVALUES::column(std::size_t i, int variable) const
{
    const auto place = std::lower_bound(variables.begin(), variables.end(), std::abs(variable));
    if (place == variables.end() || *place != std::abs(variable)) return {};
    const std::int64_t start =
        starts[i * variables.size() + static_cast<std::size_t>(place - variables.begin())];
    if (start < 0) return {};
    return std::span<const float>(values).subspan(static_cast<std::size_t>(start),
                                                  static_cast<std::size_t>(stations[i].levels));
}

bool loadPlotValues(collection::RCollection& collection, collection::STATIONDATA& station,
                    std::span<const selection::SELECTEDSTATION> list, std::span<const int> variables,
                    double share, common::RUser& user, PLOTVALUES& out)
{
    out = PLOTVALUES{};
    out.variables = sortedNumbers(variables, std::min(collection.totalVariableCount, common::maxVariables));
    RStationScan scan(collection, station, out.variables, user);
    const std::size_t step = std::max<std::size_t>(list.size() / 20, 100);
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (scan.load(list[i].number)) {
            appendStation(out, station);
        } else {
            appendDamaged(out, list[i].number);
        }
        if ((i + 1) % step != 0) continue;
        user.setProgress(share * static_cast<double>(i + 1) / static_cast<double>(list.size()));
        if (user.abortRequested()) return false;
    }
    return true;
}

} // namespace graphics
