#include "dialogs/editedimport.h"

#include <algorithm>

#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "dialogs/editedvariables.h"
#include "dialogs/enterednumber.h"
#include "dialogs/formparts.h"
#include "import/conversions.h"

namespace dialogs {
namespace {

using collection::VARINFO;
using importing::CRUISEASSOCIATION;
using importing::ImportMode;

std::size_t index(int row)
{
    return static_cast<std::size_t>(row);
}

std::vector<VARINFO> variablesOf(std::span<const VARINFO> list)
{
    if (list.empty()) return {};
    return {list.begin() + 1, list.end()};
}

std::vector<int> rowsOf(std::span<const VARINFO> list, std::int32_t VARINFO::*link)
{
    std::vector<int> rows;
    for (std::size_t v = 1; v < list.size(); ++v) {
        const int partner = list[v].*link;
        rows.push_back(partner < 0 ? RPairedLists::byDefault : partner - 1);
    }
    return rows;
}

int numberOfRow(int row)
{
    return row == RPairedLists::byDefault ? -1 : row + 1;
}

QString conversionText(float scale, float offset)
{
    for (const importing::CONVERSIONROW& row : importing::variableConversions) {
        if (row.id != 0 && row.a == scale && row.b == offset && row.id != importing::generalLinearRow)
            return QStringLiteral(" (") + fromUtf8(row.label) + QStringLiteral(")");
    }
    if (scale == 1 && offset == 0) return {};
    return QStringLiteral(" (%1 x + %2)").arg(numberText(scale), numberText(offset));
}

} // namespace

REditedImport::REditedImport(const importing::IMPORTCHOICES& choices)
    : mode_(choices.mode), check_(choices.checkExisting), emptyCollection_(choices.emptyCollection),
      mayUseDefaults_(choices.mayUseDefaults), cruises_(choices.cruises),
      sources_(variablesOf(choices.sources)), targets_(variablesOf(choices.targets)),
      pairs_(rowsOf(choices.sources, &VARINFO::assoc), rowsOf(choices.targets, &VARINFO::assocSource))
{
}

// --- mode

bool REditedImport::checksExisting() const
{
    return check_ || mode_ != ImportMode::addReplace;
}

bool REditedImport::isModePossible() const
{
    return mode_ == ImportMode::addReplace || !emptyCollection_;
}

// --- cruises

// The type is told where stations of more than one stand under the same label.
QStringList REditedImport::cruiseLines() const
{
    QStringList lines;
    for (const CRUISEASSOCIATION& cruise : cruises_) {
        const bool several = std::count_if(cruises_.begin(), cruises_.end(),
                                           [&](const auto& other) { return other.name == cruise.name; }) > 1;
        QString line = common::decodeLabel(cruise.name);
        if (several) line += QStringLiteral("  (type %1)").arg(common::decodeLabel(cruise.type));
        lines += line;
    }
    return lines;
}

QString REditedImport::sourceLabel(int cruise) const
{
    return common::decodeLabel(cruises_[index(cruise)].sourceLabel);
}

// As readers take labels from a file, so that the two are equal.
void REditedImport::setSourceLabel(int cruise, const QString& label)
{
    const std::string bytes = common::encodeLabel(label.trimmed(), common::labelLength);
    cruises_[index(cruise)].sourceLabel = common::trimLabel(bytes);
}

// --- variables

QString REditedImport::sourceName(int row) const
{
    return plainOf(sources_[index(row)]);
}

QString REditedImport::targetName(int row) const
{
    return plainOf(targets_[index(row)]);
}

QStringList REditedImport::sourceLines() const
{
    QStringList lines;
    for (int row = 0; row < pairs_.sourceCount(); ++row)
        lines += (pairs_.isSourceJoined(row) ? QStringLiteral("* ") : QStringLiteral("  ")) + sourceName(row);
    return lines;
}

QStringList REditedImport::targetLines() const
{
    QStringList lines;
    for (int row = 0; row < pairs_.targetCount(); ++row) {
        QString prefix = QStringLiteral("  ");
        if (pairs_.sourceOf(row) == RPairedLists::byDefault) prefix = QStringLiteral("+ ");
        if (pairs_.isTargetJoined(row)) prefix = QStringLiteral("* ");
        lines += prefix + targetName(row);
    }
    return lines;
}

QString REditedImport::linkText() const
{
    const int target = pairs_.target();
    if (target == RPairedLists::none) return {};
    const int source = pairs_.sourceOf(target);
    if (source == RPairedLists::none) return {};
    const QString name = targetName(target) + QStringLiteral(" takes ");
    if (source == RPairedLists::byDefault)
        return name + QStringLiteral("its default value ") + numberText(defaultValue(target));
    const VARINFO& taken = sources_[index(source)];
    return name + sourceName(source) + conversionText(taken.scale, taken.offset);
}

void REditedImport::associate(float scale, float offset)
{
    if (pairs_.source() == RPairedLists::none || pairs_.target() == RPairedLists::none) return;
    pairs_.join();
    VARINFO& source = sources_[index(pairs_.source())];
    source.scale = scale;
    source.offset = offset;
}

float REditedImport::defaultValue(int target) const
{
    return targets_[index(target)].defaultValue;
}

void REditedImport::useDefault(float value)
{
    if (!mayUseDefault()) return;
    targets_[index(pairs_.target())].defaultValue = value;
    pairs_.useDefault();
}

void REditedImport::store(importing::IMPORTCHOICES& choices) const
{
    choices.mode = mode_;
    choices.checkExisting = checksExisting();
    choices.cruises = cruises_;
    for (int row = 0; row < pairs_.sourceCount(); ++row) {
        VARINFO& source = choices.sources[index(row) + 1];
        source.assoc = numberOfRow(pairs_.targetOf(row));
        source.scale = sources_[index(row)].scale;
        source.offset = sources_[index(row)].offset;
    }
    for (int row = 0; row < pairs_.targetCount(); ++row) {
        VARINFO& target = choices.targets[index(row) + 1];
        target.assocSource = numberOfRow(pairs_.sourceOf(row));
        target.defaultValue = targets_[index(row)].defaultValue;
    }
}

} // namespace dialogs
