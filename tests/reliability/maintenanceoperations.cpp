#include <span>

#include "operations.h"

namespace reliability {
namespace {

OPERATION plain(const std::string& name, std::function<bool(ROpenCollection&)> run)
{
    OPERATION operation;
    operation.name = name;
    operation.run = std::move(run);
    return operation;
}

// Variables in another order, one dropped, one new, one of another format.
bool changeVariables(ROpenCollection& open)
{
    std::vector<collection::VARINFO> variables{collection::emptyVariable(0)};
    for (const int old : {1, 4, 0, 2}) {
        const int number = static_cast<int>(variables.size());
        collection::VARINFO variable = old > 0 ? open.collection.variables[static_cast<std::size_t>(old)]
                                               : collection::emptyVariable(number);
        if (old == 0) collection::setLabel(variable, "New [1]");
        variable.position = number;
        variable.assocSource = old;
        variable.decimals = 3;
        variables.push_back(variable);
    }
    return open.collection.changeVariableSet(open.station, variables, open.user);
}

bool deleteCruise(ROpenCollection& open, std::string_view cruise)
{
    open.select(cruise);
    return open.collection.deleteSelectedStations(open.user) > 0;
}

// ESC at the fourth station, and yes.
OPERATION sortThatIsAborted()
{
    OPERATION operation = plain("SortThatIsAborted", [](ROpenCollection& open) {
        open.user.abortAfter = 4;
        return !open.collection.sortAndCondense(open.station, open.user);
    });
    operation.changesNothing = true;
    return operation;
}

} // namespace

std::vector<OPERATION> maintenanceOperations()
{
    return {
        plain("SortAndCondense",
              [](ROpenCollection& open) { return open.collection.sortAndCondense(open.station, open.user); }),
        sortThatIsAborted(),
        plain("ChangeOfVariables", changeVariables),
        plain("DeletionOfSelectedStations", [](ROpenCollection& open) { return deleteCruise(open, "A"); }),
        plain("DeletionOfAllStations", [](ROpenCollection& open) { return deleteCruise(open, "*"); }),
        plain("DeletionOfEmptyStations",
              [](ROpenCollection& open) { return open.collection.deleteEmptyStations(open.user) > 0; }),
        plain("DeletionOfTheFirstStation",
              [](ROpenCollection& open) { return open.collection.deleteStation(1, open.user) == 1; }),
        plain("DeletionOfTheLastStation",
              [](ROpenCollection& open) {
                  return open.collection.deleteStation(open.collection.stationCount, open.user) == 1;
              }),
    };
}

} // namespace reliability
