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
    neededMask.fill(1);
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
    neededMask.fill(1);
    cruises.clear();
    selectedCruises.clear();
    criteria = defaultCriteria();
    polygon = {};
    qualityLimit = common::noQualityLimit;
}

} // namespace collection
