#include "collection/selectioncriteria.h"

#include <algorithm>
#include <cstring>

#include "common/limits.h"
#include "common/text.h"

namespace collection {
namespace {

void setStationDefaults(SELECTIONCRITERIA& criteria)
{
    common::copyText(criteria.cruisePattern, "*");
    common::copyText(criteria.stationType, "*");
    common::copyText(criteria.stationLabelTo, lastLabelBound);
    criteria.internalMin = 1;
    criteria.internalMax = anyNumber;
    criteria.dayMin = 1;
    criteria.dayMax = 31;
    criteria.yearMin = -anyYear;
    criteria.yearMax = anyYear;
    criteria.bottomMin = criteria.lastDepthMin = -anyDepth;
    criteria.bottomMax = criteria.lastDepthMax = anyDepth;
    common::copyText(criteria.months, "++++++++++++");
    criteria.stationNumberMin = criteria.stationNumberMax = -1;
}

} // namespace

SELECTIONCRITERIA defaultCriteria()
{
    SELECTIONCRITERIA criteria;
    std::memset(&criteria, 0, sizeof criteria);
    setStationDefaults(criteria);
    criteria.qualityLimit = common::noQualityLimit;
    std::memset(criteria.requiredMask, ' ', sizeof criteria.requiredMask - 1);
    criteria.reservedFlags[0] = criteria.reservedFlags[1] = 1;
    criteria.lonMax = 360;
    criteria.latMin = -90;
    criteria.latMax = 90;
    return criteria;
}

void setRequiredVariables(SELECTIONCRITERIA& criteria, std::span<const int> variables)
{
    std::fill_n(criteria.requiredMask, common::maxVariables, ' ');
    for (const int v : variables) {
        if (v >= 1 && v <= common::maxVariables) criteria.requiredMask[v - 1] = '+';
    }
    std::fill(std::begin(criteria.requiredList), std::end(criteria.requiredList), 0);
    criteria.requiredCount = 0;
    for (int v = 1; v <= common::maxVariables; ++v) {
        if (criteria.requiredMask[v - 1] == '+') criteria.requiredList[criteria.requiredCount++] = v;
    }
}

std::vector<int> requiredVariables(const SELECTIONCRITERIA& criteria)
{
    const int count = std::clamp(criteria.requiredCount, 0, common::maxVariables);
    return {criteria.requiredList, criteria.requiredList + count};
}

} // namespace collection
