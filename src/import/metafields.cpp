#include "import/metafields.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "import/datefields.h"
#include "import/fieldscan.h"
#include "variables/timeconversions.h"

namespace importing {
namespace {

using collection::STATIONHDR;
using common::MISSING_VALUE;

constexpr std::size_t index(int meta)
{
    return static_cast<std::size_t>(meta);
}

std::int16_t clampedShort(std::int64_t value)
{
    constexpr std::int64_t largest = std::numeric_limits<std::int16_t>::max();
    return static_cast<std::int16_t>(std::clamp(value, -largest, largest));
}

// A label by the label rule; cut and then trimmed again, for the cut may end in a blank.
template <std::size_t N>
void setLabelField(char (&field)[N], std::string_view text, bool& fileIsUtf8)
{
    const std::string_view trimmed = common::trimLabel(text);
    if (fileIsUtf8 && !common::isValidUtf8(trimmed)) fileIsUtf8 = false;
    common::copyText(field, common::labelFromFile(trimmed, fileIsUtf8));
    const std::string kept(common::trimLabel(common::fieldText(field)));
    common::copyText(field, kept);
}

// A number scanned like the data: the first comma may stand for a point.
bool scanField(std::string_view field, double& value)
{
    const std::string line(field); // gives the byte behind the field that the scanner wants
    const char* p = line.data();
    return scanDouble(p, line.data() + line.size(), '\n', value);
}

bool scanField(std::string_view field, float& value)
{
    const std::string line(field);
    const char* p = line.data();
    return scanFloat(p, line.data() + line.size(), '\n', value);
}

// Reads the date or the time column by its conversion.
void convertField(const SPREADSHEETDESC& desc, int meta, std::string_view text, variables::HEADERTIME& time)
{
    double x = 0;
    if (scanField(text, x) &&
        variables::convertHeaderTime(desc.convId[index(meta)], x, desc.referenceDay[index(meta)], time))
        return;
    if (meta == metaDate) time = {};
}

variables::HEADERTIME timeOf(const SPREADSHEETDESC& desc, const METAFIELDS& fields)
{
    variables::HEADERTIME time{desc.defYear, desc.defMonth, desc.defDay, desc.defHour, desc.defMinute};
    for (const int meta : {metaDate, metaTime}) {
        if (desc.metaColumn[index(meta)] < 0) continue;
        // The label rule would take digits of a year such as 14.07.2010.
        const std::string_view text = common::trimBlanks(fields.text[index(meta)]);
        if (desc.convId[index(meta)] > variables::linearRow) {
            convertField(desc, meta, text, time);
        } else if (meta == metaTime) {
            if (!scanTime(text, time)) time.hour = time.minute = -1;
        } else if (!scanDate(text, time)) {
            time = {0, 0, 0, desc.defHour, desc.defMinute};
        }
    }
    return time;
}

float bottomDepthOf(const SPREADSHEETDESC& desc, const METAFIELDS& fields)
{
    constexpr std::size_t meta = metaBottomDepth;
    if (desc.metaColumn[meta] < 0) return desc.defBotDepth;
    float value = 0;
    if (!scanField(fields.text[meta], value)) return 0;
    if (desc.convId[meta] != variables::linearRow) return value;
    return desc.convA[meta] * value + desc.convB[meta];
}

// What may stand behind a position's number: nothing, a degree sign, a letter of its hemisphere. False for
// anything else, such as minutes: a number that means something else is no position.
bool takeHemisphere(std::string_view rest, char positive, char negative, float& value)
{
    rest = common::trimBlanks(rest);
    for (const std::string_view degree : {"\xC2\xB0", "\xB0"}) {
        if (rest.starts_with(degree)) rest = common::trimBlanks(rest.substr(degree.size()));
    }
    if (rest.empty()) return true;
    const char letter = common::toUpper(rest)[0];
    if (rest.size() > 1 || (letter != positive && letter != negative) || value < 0) return false;
    if (letter == negative) value = -value;
    return true;
}

// Degrees of the column `meta`, with `hemispheres` as "EW" or "NS".
float positionOf(const SPREADSHEETDESC& desc, const METAFIELDS& fields, int meta, float standard,
                 std::string_view hemispheres)
{
    if (desc.metaColumn[index(meta)] < 0) return standard;
    const std::string field(fields.text[index(meta)]);
    const char* p = field.data();
    const char* const end = p + field.size();
    float value = 0;
    if (!scanFloat(p, end, '\n', value) || !takeHemisphere({p, end}, hemispheres[0], hemispheres[1], value))
        return MISSING_VALUE;
    if (desc.convId[index(meta)] != variables::linearRow) return value;
    return desc.convA[index(meta)] * value + desc.convB[index(meta)];
}

float wrappedLongitude(float longitude)
{
    if (longitude < 0 && longitude >= -360) longitude += 360;
    return longitude == 360 ? 0 : longitude;
}

void setLabels(const SPREADSHEETDESC& desc, const METAFIELDS& fields, int runningNumber, bool& fileIsUtf8,
               STATIONHDR& header)
{
    std::memcpy(header.cruise, desc.defCruise, sizeof header.cruise);
    std::memcpy(header.station, desc.defStation, sizeof header.station);
    std::memcpy(header.type, desc.defType, sizeof header.type);
    if (desc.metaColumn[metaCruise] >= 0) setLabelField(header.cruise, fields.text[metaCruise], fileIsUtf8);
    if (desc.metaColumn[metaType] >= 0) setLabelField(header.type, fields.text[metaType], fileIsUtf8);
    if (desc.metaColumn[metaStation] >= 0)
        setLabelField(header.station, fields.text[metaStation], fileIsUtf8);
    if (isLabelledByNumber(desc)) labelByNumber(header, runningNumber);
}

} // namespace

bool isLabelledByNumber(const SPREADSHEETDESC& desc)
{
    return desc.metaColumn[metaStation] < 0 && desc.defStation[0] == '\0';
}

void labelByNumber(STATIONHDR& header, int runningNumber)
{
    common::copyText(header.station, common::format("%d", runningNumber));
}

METASPLIT splitMeta(const SPREADSHEETDESC& desc, std::string_view line, char separator)
{
    METASPLIT split;
    std::array<std::string_view, maxColumns + 1> columns;
    const int last = *std::max_element(desc.metaColumn.begin(), desc.metaColumn.end());
    const auto wanted = static_cast<std::size_t>(std::max(last + 1, 1));
    split.fields.count = common::splitFields(line, separator, std::span(columns).first(wanted));
    for (int meta = 0; meta < metaCount; ++meta) {
        const int column = desc.metaColumn[index(meta)];
        if (column >= 0 && column < split.fields.count)
            split.fields.text[index(meta)] = columns[index(column)];
    }
    if (split.fields.count == last + 1 && last >= 0) {
        const std::string_view field = columns[index(last)];
        const auto length = static_cast<std::size_t>(field.data() + field.size() - line.data());
        if (length < line.size()) split.length = length + 1;
    }
    return split;
}

STATIONHDR headerOf(const SPREADSHEETDESC& desc, const METAFIELDS& fields, int runningNumber,
                    bool& fileIsUtf8)
{
    STATIONHDR header{};
    setLabels(desc, fields, runningNumber, fileIsUtf8, header);
    variables::HEADERTIME time = timeOf(desc, fields);
    if (clampedShort(time.year) != time.year) time = {}; // no date, and never another one
    header.year = clampedShort(time.year);
    header.month = clampedShort(time.month);
    header.day = clampedShort(time.day);
    header.hour = clampedShort(time.hour);
    header.minute = clampedShort(time.minute);
    header.longitude = wrappedLongitude(positionOf(desc, fields, metaLongitude, desc.defLon, "EW"));
    header.latitude = positionOf(desc, fields, metaLatitude, desc.defLat, "NS");
    header.bottomDepth = bottomDepthOf(desc, fields);
    return header;
}

std::string firstCutLabel(const METAFIELDS& fields, bool fileIsUtf8)
{
    constexpr std::pair<Meta, std::size_t> rooms[] = {
        {metaCruise, common::labelLength}, {metaStation, common::labelLength}, {metaType, 1}};
    for (const auto& [meta, room] : rooms) {
        const std::string label =
            common::labelFromFile(common::trimLabel(fields.text[index(meta)]), fileIsUtf8);
        if (label.size() > room) return common::labelToUtf8(label);
    }
    return {};
}

std::string wholeLabels(const METAFIELDS& fields)
{
    std::string labels;
    for (const int meta : {metaCruise, metaStation, metaType})
        labels.append(common::trimLabel(fields.text[index(meta)])).push_back('\0');
    return labels;
}

std::vector<int> faultyMetas(const STATIONHDR& header, const SPREADSHEETDESC& desc)
{
    std::vector<int> faulty;
    const bool badDate = header.month < 1 || header.month > 12 || header.day < 1 || header.day > 31;
    const bool badTime = header.hour < 0 || header.hour > 23 || header.minute < 0 || header.minute > 59;
    const int timeColumn = desc.metaColumn[metaTime] >= 0 ? metaTime : metaDate;
    if (badDate || (badTime && timeColumn == metaDate)) faulty.push_back(metaDate);
    if (badTime && timeColumn == metaTime) faulty.push_back(metaTime);
    if (!(std::abs(header.longitude) <= 360)) faulty.push_back(metaLongitude);
    if (!(std::abs(header.latitude) <= 90)) faulty.push_back(metaLatitude);
    return faulty;
}

bool isSameStation(const STATIONHDR& a, const STATIONHDR& b)
{
    return a.longitude == b.longitude && a.latitude == b.latitude && a.day == b.day && a.month == b.month &&
           a.year == b.year && std::strcmp(a.station, b.station) == 0 &&
           std::strcmp(a.cruise, b.cruise) == 0 && std::strcmp(a.type, b.type) == 0;
}

} // namespace importing
