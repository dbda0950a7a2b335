#include "import/metadefaults.h"

#include <cmath>

#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "import/datefields.h"

namespace importing {
namespace {

template <std::size_t N>
std::string setLabel(char (&field)[N], std::string_view text)
{
    const std::string label = common::labelFromFile(common::trimLabel(text), true);
    if (label.size() >= N) return common::format("is longer than %d bytes", static_cast<int>(N) - 1);
    common::copyText(field, label);
    return {};
}

std::string setDate(SPREADSHEETDESC& desc, std::string_view text)
{
    variables::HEADERTIME date;
    if (!scanDate(text, date) || date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31)
        return "is no date (mm/dd/yyyy)";
    desc.defYear = static_cast<std::int16_t>(date.year);
    desc.defMonth = static_cast<std::int16_t>(date.month);
    desc.defDay = static_cast<std::int16_t>(date.day);
    return {};
}

std::string setTime(SPREADSHEETDESC& desc, std::string_view text)
{
    std::string_view rest = common::trimBlanks(text);
    int hour = 0, minute = 0;
    const bool hasHour = common::takeInt(rest, hour) && rest.starts_with(':');
    if (hasHour) rest.remove_prefix(1);
    if (!hasHour || !common::takeInt(rest, minute) || !rest.empty() || hour < 0 || hour > 23 || minute < 0 ||
        minute > 59)
        return "is no time (hh:mm)";
    desc.defHour = static_cast<std::int16_t>(hour);
    desc.defMinute = static_cast<std::int16_t>(minute);
    return {};
}

std::string setNumber(float& number, std::string_view text, double largest)
{
    std::string plain(text);
    if (const std::size_t comma = plain.find(','); comma != std::string::npos) plain[comma] = '.';
    const auto value = common::parseDouble(plain);
    if (!value) return "is no number";
    if (!(std::abs(*value) <= largest)) return common::format("is not within %g and %g", -largest, largest);
    number = static_cast<float>(*value);
    return {};
}

} // namespace

std::string setMetaDefault(SPREADSHEETDESC& desc, int meta, std::string_view text)
{
    switch (meta) {
    case metaCruise:
        return setLabel(desc.defCruise, text);
    case metaStation:
        return setLabel(desc.defStation, text);
    case metaType:
        return setLabel(desc.defType, text);
    case metaDate:
        return setDate(desc, text);
    case metaTime:
        return setTime(desc, text);
    case metaLongitude:
        return setNumber(desc.defLon, text, 360);
    case metaLatitude:
        return setNumber(desc.defLat, text, 90);
    default:
        return setNumber(desc.defBotDepth, text, 1e6);
    }
}

} // namespace importing
