#include "collection/selectioncriteria.h"

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

} // namespace collection
