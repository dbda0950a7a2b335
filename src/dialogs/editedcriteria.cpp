#include "dialogs/editedcriteria.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>

#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "dialogs/enterednumber.h"
#include "dialogs/formparts.h"
#include "selection/criteriawords.h"
#include "selection/setcriterion.h"

namespace dialogs {
namespace {

using collection::anyDepth;
using collection::anyNumber;
using collection::anyYear;
using collection::SELECTIONCRITERIA;
using collection::VARINFO;
using selection::anyLabelNumber;
using selection::anyValue;

constexpr int monthsAYear = 12;

// --- labels

QString labelText(std::span<const char> field, std::string_view any)
{
    const std::string_view label = common::fieldText(field);
    return label == any ? QString() : common::decodeLabel(label);
}

void takeLabel(std::span<char> field, const QString& text, std::string_view any)
{
    const std::string label = common::encodeLabel(text.trimmed(), common::labelLength);
    common::copyText(field, label.empty() ? any : std::string_view(label));
}

// --- whole numbers

struct NUMBERFIELD {
    CriterionField field;
    std::int32_t SELECTIONCRITERIA::*value;
    std::int32_t low, high;
    std::int32_t none; // no limit
    bool showsNone;    // it reads well as a number
};
constexpr auto numberFields = std::to_array<NUMBERFIELD>({
    {CriterionField::internalFrom, &SELECTIONCRITERIA::internalMin, 1, anyNumber, 1, true},
    {CriterionField::internalTo, &SELECTIONCRITERIA::internalMax, 1, anyNumber, anyNumber, false},
    {CriterionField::dayFrom, &SELECTIONCRITERIA::dayMin, 0, 31, 1, true},
    {CriterionField::dayTo, &SELECTIONCRITERIA::dayMax, 0, 31, 31, true},
    {CriterionField::yearFrom, &SELECTIONCRITERIA::yearMin, -anyYear, anyYear, -anyYear, false},
    {CriterionField::yearTo, &SELECTIONCRITERIA::yearMax, -anyYear, anyYear, anyYear, false},
    {CriterionField::bottomFrom, &SELECTIONCRITERIA::bottomMin, -anyDepth, anyDepth, -anyDepth, false},
    {CriterionField::bottomTo, &SELECTIONCRITERIA::bottomMax, -anyDepth, anyDepth, anyDepth, false},
    {CriterionField::lastFrom, &SELECTIONCRITERIA::lastDepthMin, -anyDepth, anyDepth, -anyDepth, false},
    {CriterionField::lastTo, &SELECTIONCRITERIA::lastDepthMax, -anyDepth, anyDepth, anyDepth, false},
});

const NUMBERFIELD* numberField(CriterionField field)
{
    const auto* const found = std::find_if(numberFields.begin(), numberFields.end(),
                                           [field](const NUMBERFIELD& one) { return one.field == field; });
    return found == numberFields.end() ? nullptr : found;
}

std::optional<int> wholeNumber(const QString& text, int low, int high)
{
    const std::optional<int> number = common::parseInt(text.toStdString());
    return number && *number >= low && *number <= high ? number : std::nullopt;
}

void takeWhole(SELECTIONCRITERIA& criteria, const NUMBERFIELD& row, const QString& text)
{
    if (text.trimmed().isEmpty()) {
        criteria.*row.value = row.none;
    } else if (const std::optional<int> number = wholeNumber(text, row.low, row.high)) {
        criteria.*row.value = *number;
    }
}

// --- numbers with decimals

QString valueText(float value)
{
    return std::abs(value) == anyValue ? QString() : numberText(value);
}

void takeSampleBound(float& bound, const QString& text, float none)
{
    if (text.trimmed().isEmpty()) {
        bound = none;
    } else if (const std::optional<float> number = numberOf(text)) {
        bound = *number;
    }
}

void takeLatitude(float& latitude, const QString& text)
{
    const std::optional<float> number = numberOf(text);
    if (number && *number >= -90 && *number <= 90) latitude = *number;
}

bool numbersCount(const SELECTIONCRITERIA& criteria)
{
    return criteria.stationNumberMin >= 0 && criteria.stationNumberMax >= 0;
}

// What a bound of labels as numbers is; the old one where the text can't be read.
std::int32_t numberBound(const QString& text, std::int32_t none, std::int32_t old)
{
    if (text.trimmed().isEmpty()) return none;
    return wholeNumber(text, 0, anyLabelNumber).value_or(old);
}

bool isKnown(std::span<const VARINFO> variables, int variable)
{
    return variable >= 1 && variable < static_cast<int>(variables.size());
}

const VARINFO* rangedVariable(std::span<const VARINFO> variables, int variable)
{
    if (!isKnown(variables, variable)) return nullptr;
    const VARINFO& info = variables[static_cast<std::size_t>(variable)];
    return info.rangeMin <= info.rangeMax && info.rangeMin > common::MISSING_VALUE ? &info : nullptr;
}

} // namespace

// --- fields

QString criterionText(const SELECTIONCRITERIA& criteria, CriterionField field)
{
    if (const NUMBERFIELD* const row = numberField(field)) {
        const std::int32_t value = criteria.*row->value;
        return value == row->none && !row->showsNone ? QString() : QString::number(value);
    }
    switch (field) {
    case CriterionField::cruise:
        return common::decodeLabel(common::fieldText(criteria.cruisePattern));
    case CriterionField::labelFrom:
        return labelText(criteria.stationLabelFrom, "");
    case CriterionField::labelTo:
        return labelText(criteria.stationLabelTo, collection::lastLabelBound);
    case CriterionField::south:
        return numberText(criteria.latMin);
    case CriterionField::north:
        return numberText(criteria.latMax);
    case CriterionField::sampleFrom:
        return criteria.sampleVariable > 0 ? valueText(criteria.sampleMin) : QString();
    case CriterionField::sampleTo:
        return criteria.sampleVariable > 0 ? valueText(criteria.sampleMax) : QString();
    default:
        return {};
    }
}

void takeCriterion(SELECTIONCRITERIA& criteria, CriterionField field, const QString& text)
{
    if (text == criterionText(criteria, field)) return;
    if (const NUMBERFIELD* const row = numberField(field)) return takeWhole(criteria, *row, text);
    switch (field) {
    case CriterionField::cruise:
        return takeLabel(criteria.cruisePattern, text, "*");
    case CriterionField::labelFrom:
        return takeLabel(criteria.stationLabelFrom, text, "");
    case CriterionField::labelTo:
        return takeLabel(criteria.stationLabelTo, text, collection::lastLabelBound);
    case CriterionField::south:
        return takeLatitude(criteria.latMin, text);
    case CriterionField::north:
        return takeLatitude(criteria.latMax, text);
    case CriterionField::sampleFrom:
        if (criteria.sampleVariable > 0) takeSampleBound(criteria.sampleMin, text, -anyValue);
        return;
    case CriterionField::sampleTo:
        if (criteria.sampleVariable > 0) takeSampleBound(criteria.sampleMax, text, anyValue);
        return;
    default:
        return;
    }
}

// --- labels as numbers

QString numberFromText(const SELECTIONCRITERIA& criteria)
{
    return numbersCount(criteria) ? QString::number(criteria.stationNumberMin) : QString();
}

QString numberToText(const SELECTIONCRITERIA& criteria)
{
    const bool bounded = numbersCount(criteria) && criteria.stationNumberMax < anyLabelNumber;
    return bounded ? QString::number(criteria.stationNumberMax) : QString();
}

void takeNumbers(SELECTIONCRITERIA& criteria, const QString& from, const QString& to)
{
    if (from == numberFromText(criteria) && to == numberToText(criteria)) return;
    const bool counted = numbersCount(criteria);
    const std::int32_t low = numberBound(from, -1, counted ? criteria.stationNumberMin : -1);
    const std::int32_t high = numberBound(to, -1, counted ? criteria.stationNumberMax : -1);
    const bool counts = low >= 0 || high >= 0;
    criteria.stationNumberMin = counts ? std::max(low, 0) : -1;
    criteria.stationNumberMax = !counts ? -1 : high >= 0 ? high : anyLabelNumber;
}

// --- domain

QString westText(const SELECTIONCRITERIA& criteria)
{
    return numberText(criteria.lonMin);
}

QString eastText(const SELECTIONCRITERIA& criteria)
{
    return numberText(criteria.lonMax);
}

void takeLongitudes(SELECTIONCRITERIA& criteria, const QString& west, const QString& east)
{
    constexpr float farthest = 720;
    const auto bound = [](const QString& text, const QString& shown, float old) {
        if (text == shown) return old;
        const std::optional<float> number = numberOf(text);
        return number && std::abs(*number) <= farthest ? *number : old;
    };
    const float newWest = bound(west, westText(criteria), criteria.lonMin);
    const float newEast = bound(east, eastText(criteria), criteria.lonMax);
    if (newWest == criteria.lonMin && newEast == criteria.lonMax) return;
    static_cast<void>(selection::setLongitudes(criteria, newWest, newEast)); // the old ones stay
}

void setDomain(SELECTIONCRITERIA& criteria, const selection::MAPDOMAIN& domain)
{
    criteria.lonMin = static_cast<float>(domain.lonMin);
    criteria.lonMax = static_cast<float>(domain.lonMax);
    criteria.latMin = static_cast<float>(domain.latMin);
    criteria.latMax = static_cast<float>(domain.latMax);
    criteria.usePolygon = 0;
}

// --- months

bool monthIsSelected(const SELECTIONCRITERIA& criteria, int month)
{
    return month >= 0 && month < monthsAYear && criteria.months[month] == '+';
}

void selectMonth(SELECTIONCRITERIA& criteria, int month, bool selected)
{
    if (month >= 0 && month < monthsAYear) criteria.months[month] = selected ? '+' : ' ';
}

void selectSeason(SELECTIONCRITERIA& criteria, std::string_view season)
{
    const std::string_view mask = selection::seasonMonths(season);
    if (!mask.empty()) common::copyText(criteria.months, mask);
}

// --- relaxing

void relaxAvailability(SELECTIONCRITERIA& criteria)
{
    collection::setRequiredVariables(criteria, {});
}

void relaxDate(SELECTIONCRITERIA& criteria)
{
    criteria.dayMin = 1;
    criteria.dayMax = 31;
    criteria.yearMin = 1900;
    criteria.yearMax = 2100;
    selectSeason(criteria, "all");
}

void relaxNames(SELECTIONCRITERIA& criteria)
{
    common::copyText(criteria.cruisePattern, "*");
    common::copyText(criteria.stationLabelFrom, "");
    common::copyText(criteria.stationLabelTo, collection::lastLabelBound);
}

void relaxSamples(SELECTIONCRITERIA& criteria)
{
    criteria.qualityLimit = common::noQualityLimit;
    criteria.sampleVariable = 0;
    criteria.sampleMin = criteria.sampleMax = 0;
}

// --- variables

void setSampleVariable(SELECTIONCRITERIA& criteria, std::span<const VARINFO> variables, int variable)
{
    if (variable == criteria.sampleVariable) return;
    criteria.sampleVariable = isKnown(variables, variable) ? variable : 0;
    criteria.sampleMin = criteria.sampleMax = 0;
    if (criteria.sampleVariable == 0) return;
    const VARINFO* const ranged = rangedVariable(variables, variable);
    criteria.sampleMin = ranged ? ranged->rangeMin : -anyValue;
    criteria.sampleMax = ranged ? ranged->rangeMax : anyValue;
}

QStringList variableLines(std::span<const VARINFO> variables)
{
    QStringList lines;
    for (std::size_t v = 1; v < variables.size(); ++v)
        lines += QString::number(v) + QStringLiteral(": ") +
                 common::decodeLabel(common::fieldText(variables[v].plainLabel));
    return lines;
}

QString valuesText(std::span<const VARINFO> variables, int variable)
{
    const VARINFO* const ranged = rangedVariable(variables, variable);
    if (!ranged) return {};
    return QStringLiteral("Values are %1 to %2")
        .arg(numberText(ranged->rangeMin), numberText(ranged->rangeMax));
}

// --- what is told

QString polygonText(const SELECTIONCRITERIA& criteria, const collection::DOMAINPOLYGON& polygon)
{
    if (criteria.usePolygon != 1) return QStringLiteral("No polygon: the whole rectangle");
    const int corners = std::max(0, polygon.nPoints - 1);
    return QStringLiteral("Inside a polygon of %1 corners too").arg(corners);
}

QString contradiction(const SELECTIONCRITERIA& criteria)
{
    const auto none = [](const char* what) {
        return QStringLiteral("No station can be selected: ") + fromUtf8(what);
    };
    if (criteria.internalMin > criteria.internalMax)
        return none("the internal numbers end before they begin.");
    if (numbersCount(criteria) && criteria.stationNumberMin > criteria.stationNumberMax)
        return none("the labels as numbers end before they begin.");
    const auto length = [](std::span<const char> label) { return common::fieldText(label).size(); };
    if (!numbersCount(criteria) && length(criteria.stationLabelFrom) > length(criteria.stationLabelTo))
        return none("the first label is longer than the last one.");
    if (criteria.dayMin > criteria.dayMax) return none("the days end before they begin.");
    if (criteria.yearMin > criteria.yearMax) return none("the years end before they begin.");
    if (!std::memchr(criteria.months, '+', monthsAYear)) return none("no month is selected.");
    if (criteria.latMin > criteria.latMax) return none("the southern end lies north of the northern one.");
    if (criteria.bottomMin > criteria.bottomMax) return none("the bottom depths end before they begin.");
    if (criteria.lastDepthMin > criteria.lastDepthMax)
        return none("the last sample depths end before they begin.");
    return {};
}

} // namespace dialogs
