#include "import/headercheck.h"

#include <cmath>

#include "common/text.h"

namespace importing {

bool checkHeader(collection::STATIONHDR& header, std::string& message)
{
    const std::size_t before = message.size();
    if (header.month < 1 || header.month > 12 || header.day < 1 || header.day > 31)
        message += common::format("Invalid date %02d/%02d/%04d (mm/dd/yyyy).\n", header.month, header.day,
                                  header.year);
    if (header.hour == 24 && header.minute == 0) header.hour = 0;
    if (header.hour < 0 || header.hour > 23 || header.minute < 0 || header.minute > 59)
        message += common::format("Invalid time %02d:%02d (hh.sMM).\n", header.hour, header.minute);
    // Written so that a not-a-number is refused.
    if (!(std::abs(header.longitude) <= 360) || !(std::abs(header.latitude) <= 90))
        message +=
            common::format("Invalid location %g/%g (lon/lat).\n", static_cast<double>(header.longitude),
                           static_cast<double>(header.latitude));
    return message.size() == before;
}

} // namespace importing
