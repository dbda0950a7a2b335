// Gives a collection another list of variables.

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "collection/rewriting.h"
#include "collection/variableids.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr std::string_view title = "Changing collection variable set ...";

// origins[v]: number of the old variable that the new one v takes its data from, 0 for none.
using ORIGINS = std::vector<int>;

bool refuse(common::RUser& user, std::string_view text)
{
    user.about(title, text);
    return false;
}

bool areUsable(std::span<const VARINFO> variables, int oldCount, common::RUser& user)
{
    if (variables.size() < 2) return refuse(user, "A collection needs at least one variable.");
    if (variables.size() - 1 > common::maxVariables)
        return refuse(user, "Maximum number of variables reached!");
    for (std::size_t v = 1; v < variables.size(); ++v) {
        if (variables[v].assocSource > oldCount) {
            return refuse(user, common::format("Variable %zu takes its data from variable %d, but the "
                                               "collection has %d variables.",
                                               v, static_cast<int>(variables[v].assocSource), oldCount));
        }
    }
    return true;
}

ORIGINS originsOf(std::span<const VARINFO> variables)
{
    ORIGINS origins;
    for (const VARINFO& variable : variables) origins.push_back(std::max(0, variable.assocSource));
    origins[0] = 0;
    return origins;
}

// The list as the new description holds it: numbered, without links.
std::vector<VARINFO> cleanList(std::span<const VARINFO> variables)
{
    std::vector<VARINFO> list;
    for (const VARINFO& variable : variables) {
        list.push_back(emptyVariable(static_cast<int>(list.size())));
        setLabel(list.back(), common::fieldText(variable.label));
        list.back().width = variable.width;
        list.back().decimals = variable.decimals;
    }
    return list;
}

// The first new variable that takes its data from an old one; 0 if none does.
int newNumberOf(int old, const ORIGINS& origins)
{
    const auto place = std::find(origins.begin() + 1, origins.end(), old);
    return old < 1 || place == origins.end() ? 0 : static_cast<int>(place - origins.begin());
}

// Criteria that name variables follow them; those of a variable that is gone are given up.
void followVariables(SELECTIONCRITERIA& criteria, const ORIGINS& origins)
{
    if (const int old = criteria.sampleVariable; old > 0) criteria.sampleVariable = newNumberOf(old, origins);
    std::vector<int> required = requiredVariables(criteria);
    for (int& variable : required) variable = newNumberOf(variable, origins);
    setRequiredVariables(criteria, required); // without the zeros
}

// Puts the blocks of a station in the order of the new list.
class RRearrangement {
public:
    explicit RRearrangement(ORIGINS origins) : origins_(std::move(origins)) {}

    // False if the station has more cells than one can have.
    bool operator()(STATIONDATA& station)
    {
        const int levels = station.levels();
        const auto oldOffsets = station.offset;
        const auto cells = static_cast<std::size_t>(station.header.valueCount);
        values_.assign(station.values.get(), station.values.get() + cells);
        flags_.assign(station.flags.get(), station.flags.get() + cells);
        station.levelCount.fill(0);
        station.offset.fill(-1);
        int running = 0;
        for (std::size_t v = 1; v < origins_.size(); ++v) {
            const int old = origins_[v];
            const int from = old > 0 ? oldOffsets[static_cast<std::size_t>(old)] : -1;
            if (from < 0) continue;
            if (running + levels > station.capacity) return false;
            copyBlock(station, from, running, levels);
            station.levelCount[v] = static_cast<std::int16_t>(levels);
            station.offset[v] = running;
            running += levels;
        }
        station.header.valueCount = running;
        return true;
    }

private:
    void copyBlock(STATIONDATA& station, int from, int to, int levels) const
    {
        const auto count = static_cast<std::size_t>(levels);
        std::memcpy(station.values.get() + to, values_.data() + from, count * sizeof(float));
        std::memcpy(station.flags.get() + to, flags_.data() + from, count);
    }

    const ORIGINS origins_;
    std::vector<float> values_;
    std::vector<std::uint8_t> flags_;
};

bool rewrite(RCollection& source, std::span<const VARINFO> newVariables, STATIONDATA& station,
             common::RUser& user)
{
    constexpr std::int64_t largest = 1 << 20;
    const ORIGINS origins = originsOf(newVariables);
    RRewriting rewriting(source, title, user);
    if (!rewriting.begin("CHANGEVARSET", cleanList(newVariables))) return false;
    if (const auto ids = common::readFile(source.path + ".idv", largest))
        rewriting.setVariableIds(renumberedVariableIds(*ids, origins));
    const RRewriting::CARRIAGE carriage = {.count = source.stationCount,
                                           .numberOf = [](int i) { return i + 1; },
                                           .prepare = RRearrangement(origins),
                                           .sort = true};
    return rewriting.carryOver(carriage, station) && rewriting.replaceSource();
}

} // namespace

bool RCollection::changeVariableSet(STATIONDATA& station, std::span<const VARINFO> newVariables,
                                    common::RUser& user)
{
    if (kind != 1 || !areUsable(newVariables, variableCount, user)) return false;
    const ORIGINS origins = originsOf(newVariables);
    RStationKeeper loaded(*this, station);
    {
        const RViewKeeper view(*this, false);
        criteria = defaultCriteria();
        if (!busyWith(title, user, [&] { return rewrite(*this, newVariables, station, user); })) return false;
    }
    loaded.noteChange();
    followVariables(criteria, origins);
    neededMask.fill(1);
    addLogLine("CHANGEVARSET");
    readInventory(true, user);
    return true;
}

} // namespace collection
