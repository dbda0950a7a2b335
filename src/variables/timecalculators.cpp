#include "common/calendar.h"
#include "variables/calculators.h"
#include "variables/registry.h"
#include "variables/timeconversions.h"

namespace variables {
namespace {

using common::MISSING_VALUE;

HEADERTIME timeOf(const collection::STATIONHDR& header)
{
    return {header.year, header.month, header.day, header.hour, header.minute};
}

// A day outside of its month is one of a neighbouring month.
HEADERTIME normalized(HEADERTIME time)
{
    const common::CALENDARDATE date = common::dateOfDay(common::dayNumber(time.year, time.month, time.day));
    time.year = date.year;
    time.month = date.month;
    time.day = date.day;
    return time;
}

// result(time) of each value that can be decoded. All levels count as present.
template <typename Result>
int decodeAll(const CALCULATION& calculation, Result result)
{
    const auto source = calculation.source(1);
    const auto flags = calculation.sourceFlags(1);
    if (source.empty()) return absent;
    const double origin = calculation.collection().timeOrigins[static_cast<std::size_t>(calculation.number)];
    for (std::size_t k = 0; k < source.size(); ++k) {
        HEADERTIME time = timeOf(calculation.station.header);
        const bool isDecoded =
            source[k] != MISSING_VALUE && decodeTime(source[k], calculation.variable.intParam, origin, time);
        calculation.values[k] = isDecoded ? cellOf(result(normalized(time))) : MISSING_VALUE;
        calculation.flags[k] = flags[k];
    }
    return static_cast<int>(source.size());
}

int timeOfVariable(const CALCULATION& calculation)
{
    return decodeAll(calculation, [](const HEADERTIME& time) {
        return yearFraction(time.month, time.day, time.year, time.hour, time.minute);
    });
}

int dayOfVariable(const CALCULATION& calculation)
{
    return decodeAll(calculation, [](const HEADERTIME& time) {
        return static_cast<double>(dayOfYear(time.month, time.day, time.year));
    });
}

} // namespace

std::span<const CALCULATORROW> timeCalculators()
{
    static constexpr CALCULATORROW rows[] = {{idTime, timeOfVariable}, {idDayOfYear, dayOfVariable}};
    return rows;
}

} // namespace variables
