#pragma once

// The criteria that the form of the selection works on, without its widgets.

#include <span>
#include <string_view>
#include <vector>

#include <QString>
#include <QStringList>

#include "collection/selectioncriteria.h"
#include "collection/varinfo.h"
#include "selection/selectedlist.h"

namespace dialogs {

// What is typed into a field of its own. The bounds of labels as numbers are taken together, see takeNumbers.
enum class CriterionField {
    cruise,
    labelFrom,
    labelTo,
    internalFrom,
    internalTo,
    dayFrom,
    dayTo,
    yearFrom,
    yearTo,
    bottomFrom,
    bottomTo,
    lastFrom,
    lastTo,
    sampleFrom,
    sampleTo,
    south,
    north
};

// A field as it is shown; a bound that is no limit is empty.
[[nodiscard]] QString criterionText(const collection::SELECTIONCRITERIA& criteria, CriterionField field);
// Takes what a field holds. Without a text there is no limit (latitudes stay); what can't be read or is out
// of its range leaves the old value. A field that shows what is in force changes nothing, not even by
// rounding.
void takeCriterion(collection::SELECTIONCRITERIA& criteria, CriterionField field, const QString& text);

// The bounds of labels as numbers. One bound alone is enough; without any, labels needn't be numbers.
[[nodiscard]] QString numberFromText(const collection::SELECTIONCRITERIA& criteria);
[[nodiscard]] QString numberToText(const collection::SELECTIONCRITERIA& criteria);
void takeNumbers(collection::SELECTIONCRITERIA& criteria, const QString& from, const QString& to);

// The longitudes of the domain; where east is below west they run over 0 or the date line.
[[nodiscard]] QString westText(const collection::SELECTIONCRITERIA& criteria);
[[nodiscard]] QString eastText(const collection::SELECTIONCRITERIA& criteria);
void takeLongitudes(collection::SELECTIONCRITERIA& criteria, const QString& west, const QString& east);
void setDomain(collection::SELECTIONCRITERIA& criteria, const selection::MAPDOMAIN& domain); // no polygon

// Months are numbered from 0 here.
[[nodiscard]] bool monthIsSelected(const collection::SELECTIONCRITERIA& criteria, int month);
void selectMonth(collection::SELECTIONCRITERIA& criteria, int month, bool selected);
void selectSeason(collection::SELECTIONCRITERIA& criteria, std::string_view season); // see criteriawords.h

// What the buttons "Relax" do.
void relaxAvailability(collection::SELECTIONCRITERIA& criteria);
void relaxDate(collection::SELECTIONCRITERIA& criteria); // years 1900 to 2100
void relaxNames(collection::SELECTIONCRITERIA& criteria);
void relaxSamples(collection::SELECTIONCRITERIA& criteria);

// The variable of the sample range, 0 for none. A new one brings the range of its values.
void setSampleVariable(collection::SELECTIONCRITERIA& criteria,
                       std::span<const collection::VARINFO> variables, int variable);
// "1: Depth [m]" for variables 1 to the end of the span; entry 0 is none.
[[nodiscard]] QStringList variableLines(std::span<const collection::VARINFO> variables);
// "Values are 0 to 5500"; empty if that isn't known.
[[nodiscard]] QString valuesText(std::span<const collection::VARINFO> variables, int variable);

[[nodiscard]] QString polygonText(const collection::SELECTIONCRITERIA& criteria,
                                  const collection::DOMAINPOLYGON& polygon);
// Why the criteria can't select any station or sample, empty if they may.
[[nodiscard]] QString contradiction(const collection::SELECTIONCRITERIA& criteria);

} // namespace dialogs
