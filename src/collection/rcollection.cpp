#include "collection/rcollection.h"

#include "collection/stationstreams.h"

namespace collection {
namespace {

void resetVariables(std::array<VARINFO, common::variableSlots>& variables)
{
    for (int v = 0; v < common::variableSlots; ++v) variables[static_cast<std::size_t>(v)] = emptyVariable(v);
}

} // namespace

RCollection::RCollection() : files_(std::make_unique<Files>())
{
    resetVariables(variables);
    forgetDerived();
}

RCollection::~RCollection()
{
    rollBackChange();
    closeTemporaryFiles();
}

void RCollection::reset()
{
    rollBackChange();
    closeStationFiles();
    closeTemporaryFiles();
    for (std::string* const text : {&name, &extension, &directory, &path, &configName, &tempId, &newMagic})
        text->clear();
    type = "HYD";
    writable = sectionDefined = configChanged = isTemporaryFile = writeBehind = false;
    stationCount = selectedStationCount = plottedStationCount = 0;
    cruiseCount = selectedCruiseCount = sampleCount = 0;
    variableCount = totalVariableCount = 0;
    headerRecordSize = 80;
    currentStation = currentSample = 0;
    resetVariables(variables);
    forgetDerived();
    cruises.clear();
    selectedCruises.clear();
    criteria = defaultCriteria();
    polygon = {};
    qualityLimit = common::noQualityLimit;
}

void RCollection::forgetDerived()
{
    totalVariableCount = variableCount;
    for (int v = variableCount + 1; v < common::variableSlots; ++v)
        variables[static_cast<std::size_t>(v)] = emptyVariable(v);
    nMacros = 0;
    formulas.fill({});
    timeOrigins.fill(0);
    neededMask.fill(1);
}

} // namespace collection
