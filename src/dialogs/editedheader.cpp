#include "dialogs/editedheader.h"

#include <algorithm>

#include "common/text.h"
#include "common/textcoding.h"
#include "dialogs/enterednumber.h"
#include "dialogs/formparts.h"
#include "variables/timeconversions.h"

namespace dialogs {
namespace {

using importing::SPREADSHEETDESC;

constexpr std::array<const char*, importing::metaCount> prompts = {
    "Enter Default Cruise Label:",      "Enter Default Station Label:", "Enter Default Station Type:",
    "Enter Default Date (mm/dd/yyyy):", "Enter Default Time (hh.sMM):", "Enter Default Longitude (°E):",
    "Enter Default Latitude (°N):",     "Enter Default Bot. Depth [m]:"};

constexpr float deepest = 20000; // m, of any sea floor, and highest

std::size_t index(int row)
{
    return static_cast<std::size_t>(row);
}

std::span<const std::string> readableColumns(std::span<const std::string> labels)
{
    return labels.first(std::min<std::size_t>(labels.size(), importing::maxColumns));
}

std::vector<int> rolesOf(const SPREADSHEETDESC& desc, std::size_t columns)
{
    return {desc.role.begin(), desc.role.begin() + static_cast<std::ptrdiff_t>(columns)};
}

bool isDateOrTime(int meta)
{
    return meta == importing::metaDate || meta == importing::metaTime;
}

bool countsSince(int id)
{
    return id >= variables::daysSinceRow && id <= variables::secondsSinceRow;
}

QString prefixed(bool joined, const QString& line)
{
    return (joined ? QStringLiteral("* ") : QStringLiteral("  ")) + line;
}

// Whole numbers divided by `mark`, and nothing else.
bool scanNumbers(std::string_view text, char mark, std::span<int> numbers)
{
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i > 0) {
            if (!text.starts_with(mark)) return false;
            text.remove_prefix(1);
        }
        if (!common::takeInt(text, numbers[i])) return false;
    }
    return common::trimBlanks(text).empty();
}

bool setLabel(std::span<char> field, const QString& text)
{
    const std::string bytes = common::encodeLabel(text.trimmed(), field.size() - 1);
    common::copyText(field, common::trimLabel(bytes));
    return true;
}

bool setNumber(float& field, const QString& text, float smallest, float largest)
{
    const std::optional<float> value = numberOf(text);
    if (!value || *value < smallest || *value > largest) return false;
    field = *value;
    return true;
}

QString labelText(std::span<const char> field)
{
    return common::decodeLabel(common::fieldText(field));
}

} // namespace

REditedHeader::REditedHeader(const SPREADSHEETDESC& desc, std::span<const std::string> labels)
    : desc_(desc), labels_(readableColumns(labels).begin(), readableColumns(labels).end()),
      pairs_(rolesOf(desc, labels_.size()), {desc.metaColumn.begin(), desc.metaColumn.end()})
{
}

SPREADSHEETDESC REditedHeader::desc() const
{
    SPREADSHEETDESC desc = desc_;
    desc.role.fill(-1);
    desc.nMeta = 0;
    for (int meta = 0; meta < importing::metaCount; ++meta) {
        const int column = pairs_.sourceOf(meta);
        desc.metaColumn[index(meta)] = column;
        if (column >= 0) {
            desc.role[index(column)] = meta;
            ++desc.nMeta;
        } else {
            desc.convId[index(meta)] = -1;
        }
    }
    return desc;
}

// --- what the lists show

QString REditedHeader::sourceName(int row) const
{
    return fromUtf8(labels_[index(row)]);
}

QString REditedHeader::targetName(int row) const
{
    return fromUtf8(importing::metaLabels[index(row)]);
}

QStringList REditedHeader::sourceLines() const
{
    QStringList lines;
    for (int row = 0; row < pairs_.sourceCount(); ++row)
        lines += prefixed(pairs_.isSourceJoined(row), QStringLiteral("%1: ").arg(row + 1) + sourceName(row));
    return lines;
}

QStringList REditedHeader::targetLines() const
{
    QStringList lines;
    for (int row = 0; row < pairs_.targetCount(); ++row)
        lines += prefixed(pairs_.isTargetJoined(row), targetName(row));
    return lines;
}

QString REditedHeader::conversionText(int meta) const
{
    const int id = desc_.convId[index(meta)];
    if (id == variables::linearRow)
        return QStringLiteral(" (%1 x + %2)")
            .arg(numberText(desc_.convA[index(meta)]), numberText(desc_.convB[index(meta)]));
    for (const variables::HEADERROW& row : variables::headerRows) {
        if (row.id == id && id > variables::linearRow)
            return QStringLiteral(" (") + fromUtf8(common::trimBlanks(row.source)) + QStringLiteral(")");
    }
    return {};
}

QString REditedHeader::linkText() const
{
    const int meta = pairs_.target();
    if (meta == RPairedLists::none) return {};
    const int column = pairs_.sourceOf(meta);
    if (column >= 0)
        return QStringLiteral("%1 is read from column %2")
            .arg(targetName(meta), QString::number(column + 1) + conversionText(meta));
    const QString value = defaultText(meta);
    if (value.isEmpty() && meta == importing::metaStation)
        return QStringLiteral("Stations are labelled by their running number");
    return QStringLiteral("%1 is %2 for all stations").arg(targetName(meta), value);
}

// --- pairs and conversions

void REditedHeader::clearConversion(int meta)
{
    desc_.convId[index(meta)] = -1;
    desc_.convA[index(meta)] = 1;
    desc_.convB[index(meta)] = 0;
    desc_.referenceDay[index(meta)] = 0;
}

void REditedHeader::associate()
{
    if (pairs_.source() == RPairedLists::none || pairs_.target() == RPairedLists::none) return;
    const int named = namedRow();
    if (named >= 0 && !needsOrigin(named)) return convert(named);
    pairs_.join();
    clearConversion(pairs_.target());
}

bool REditedHeader::mayConvert() const
{
    return pairs_.mayJoin() && pairs_.target() >= importing::metaDate;
}

int REditedHeader::namedRow() const
{
    if (pairs_.source() == RPairedLists::none || pairs_.target() != importing::metaDate) return -1;
    return variables::sinceRowOf(labels_[index(pairs_.source())]);
}

bool REditedHeader::isRowPossible(int id) const
{
    if (id == variables::identityRow) return true;
    return isDateOrTime(pairs_.target()) == (id != variables::linearRow);
}

bool REditedHeader::needsOrigin(int id) const
{
    double day = 0;
    return countsSince(id) && !variables::referenceDayOf(labels_[index(pairs_.source())], day);
}

void REditedHeader::convert(int id, float a, float b)
{
    if (pairs_.source() == RPairedLists::none || pairs_.target() == RPairedLists::none) return;
    pairs_.join();
    const int meta = pairs_.target();
    clearConversion(meta);
    desc_.convId[index(meta)] = id;
    desc_.convA[index(meta)] = a;
    desc_.convB[index(meta)] = b;
    double day = 0;
    if (countsSince(id) && variables::referenceDayOf(labels_[index(pairs_.source())], day))
        desc_.referenceDay[index(meta)] = day;
}

bool REditedHeader::convertFrom(int id, const QString& origin)
{
    double day = 0;
    if (!variables::referenceDayOf("days since " + origin.trimmed().toStdString(), day)) return false;
    convert(id);
    desc_.referenceDay[index(pairs_.target())] = day;
    return true;
}

// --- defaults

QString REditedHeader::defaultPrompt(int meta)
{
    return QString::fromUtf8(prompts[index(meta)]);
}

QString REditedHeader::defaultText(int meta) const
{
    switch (meta) {
    case importing::metaCruise:
        return labelText(desc_.defCruise);
    case importing::metaStation:
        return labelText(desc_.defStation);
    case importing::metaType:
        return labelText(desc_.defType);
    case importing::metaDate:
        return QString::fromStdString(
            common::format("%02d/%02d/%4d", desc_.defMonth, desc_.defDay, desc_.defYear));
    case importing::metaTime:
        return QString::fromStdString(common::format("%02d:%02d", desc_.defHour, desc_.defMinute));
    case importing::metaLongitude:
        return numberText(desc_.defLon);
    case importing::metaLatitude:
        return numberText(desc_.defLat);
    default:
        return numberText(desc_.defBotDepth);
    }
}

// As in the lines of data, a year of two digits is one of the last century.
bool REditedHeader::setDate(std::string_view text)
{
    constexpr int lastYear = 9999;
    std::array<int, 3> date{};
    if (!scanNumbers(text, '/', date)) return false;
    const auto [month, day, typed] = date;
    const int year = typed >= 0 && typed < 100 ? typed + 1900 : typed;
    if (month < 1 || month > 12 || day < 1 || day > 31 || year < 0 || year > lastYear) return false;
    desc_.defMonth = static_cast<std::int16_t>(month);
    desc_.defDay = static_cast<std::int16_t>(day);
    desc_.defYear = static_cast<std::int16_t>(year);
    return true;
}

bool REditedHeader::setTime(std::string_view text)
{
    std::array<int, 2> time{};
    if (!scanNumbers(text, ':', time)) return false;
    const auto [hour, minute] = time;
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59) return false;
    desc_.defHour = static_cast<std::int16_t>(hour);
    desc_.defMinute = static_cast<std::int16_t>(minute);
    return true;
}

bool REditedHeader::setDefault(int meta, const QString& text)
{
    switch (meta) {
    case importing::metaCruise:
        return setLabel(desc_.defCruise, text);
    case importing::metaStation:
        return setLabel(desc_.defStation, text);
    case importing::metaType:
        return setLabel(desc_.defType, text);
    case importing::metaDate:
        return setDate(text.toStdString());
    case importing::metaTime:
        return setTime(text.toStdString());
    case importing::metaLongitude:
        return setNumber(desc_.defLon, text, -360, 360);
    case importing::metaLatitude:
        return setNumber(desc_.defLat, text, -90, 90);
    default:
        return setNumber(desc_.defBotDepth, text, -deepest, deepest);
    }
}

} // namespace dialogs
