// What is selected of the open collection.

#include "app/session.h"
#include "common/text.h"
#include "selection/cruisestations.h"
#include "selection/setcriterion.h"

namespace app {
selection::MAPDOMAIN RSession::mapDomain() const
{
    const graphics::MAPGEOMETRY& map = setup.map.geometry;
    return {map.lonMin, map.lonMax, map.latMin, map.latMax};
}

// The list is built anew if other stations are selected, and the picture drawn if anything is.
void RSession::takeCriteria(const EDITEDCRITERIA& edited)
{
    const selection::CRITERIACHANGE change =
        selection::putInForce(collection, edited.criteria, edited.polygon);
    if (!change.any()) return;
    if (change.stations) {
        listChanged();
    } else {
        invalidate();
    }
    view_.statusChanged();
    tellSelected();
}

void RSession::tellSelected()
{
    tellDone(common::format("%s.var: %d of %d stations selected", collection.path.c_str(),
                            collection.selectedStationCount, collection.stationCount));
}

std::string RSession::select(std::span<const KEYVALUE> pairs)
{
    if (!collection.isOpen) return openFault();
    EDITEDCRITERIA edited{collection.criteria, collection.polygon};
    const auto count = static_cast<std::size_t>(collection.totalVariableCount);
    for (const KEYVALUE& pair : pairs) {
        if (pair.key == "reset") {
            selection::resetSelection(edited.criteria, mapDomain(), collection.kind);
            continue;
        }
        const bool isPath = pair.key == "polygon";
        const std::string value = isPath ? common::replaceAll(pair.value, "\\", "/") : pair.value;
        std::string wrong = selection::setCriterion({edited.criteria, edited.polygon,
                                                     std::span(collection.variables).first(count + 1),
                                                     collection.variableCount},
                                                    pair.key, value);
        if (!wrong.empty()) return wrong;
    }
    takeCriteria(edited);
    return {};
}

bool RSession::editSelection()
{
    EDITEDCRITERIA edited{collection.criteria, collection.polygon};
    if (!view_.editCriteria(edited)) return false;
    takeCriteria(edited);
    return true;
}

} // namespace app
