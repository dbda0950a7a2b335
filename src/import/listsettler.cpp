#include "import/listsettler.h"

#include <algorithm>
#include <cstring>

#include "common/files.h"
#include "common/text.h"

namespace importing {
namespace {

using collection::VARINFO;
using common::fieldText;

bool haveEqualLabels(std::span<const VARINFO> a, std::span<const VARINFO> b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const VARINFO& x, const VARINFO& y) {
        return fieldText(x.label) == fieldText(y.label);
    });
}

void copyLinks(std::span<const VARINFO> from, std::span<VARINFO> to)
{
    for (std::size_t v = 0; v < to.size(); ++v) {
        to[v].assoc = from[v].assoc;
        to[v].assocSource = from[v].assocSource;
        to[v].scale = from[v].scale;
        to[v].offset = from[v].offset;
        to[v].defaultValue = from[v].defaultValue;
    }
}

} // namespace

bool RListSettler::settleProperties(SPREADSHEETDESC& desc, std::span<const std::string> firstLines)
{
    const std::string line = firstLines.empty() ? std::string() : firstLines.front();
    if (properties_ && line == propertiesLine_) {
        desc.sepChars = properties_->sepChars;
        desc.sepIndex = properties_->sepIndex;
        desc.headerLine = properties_->headerLine;
        desc.firstDataLine = properties_->firstDataLine;
        desc.missingValue = properties_->missingValue;
        return true;
    }
    if (!settler_.settleProperties(desc, firstLines)) return false;
    propertiesLine_ = line;
    properties_ = desc;
    return true;
}

bool RListSettler::settleHeaderVariables(SPREADSHEETDESC& desc, std::span<const std::string> labels)
{
    if (headerVariables_ && std::equal(labels.begin(), labels.end(), labels_.begin(), labels_.end())) {
        const SPREADSHEETDESC own = desc;
        desc = *headerVariables_;
        desc.sepChars = own.sepChars;
        desc.sepIndex = own.sepIndex;
        desc.headerLine = own.headerLine;
        desc.firstDataLine = own.firstDataLine;
        desc.missingValue = own.missingValue;
        if (keepsCruise_) std::memcpy(desc.defCruise, own.defCruise, sizeof desc.defCruise);
        return true;
    }
    const std::string cruise(fieldText(desc.defCruise));
    if (!settler_.settleHeaderVariables(desc, labels)) return false;
    keepsCruise_ = fieldText(desc.defCruise) == cruise;
    labels_.assign(labels.begin(), labels.end());
    headerVariables_ = desc;
    return true;
}

bool RListSettler::settleImport(IMPORTCHOICES& choices)
{
    if (import_ && haveEqualLabels(import_->sources, choices.sources)) {
        choices.mode = import_->choices.mode;
        choices.checkExisting = import_->choices.checkExisting;
        choices.cruises = import_->choices.cruises;
        copyLinks(import_->sources, choices.sources);
        copyLinks(import_->targets, choices.targets);
        return true;
    }
    if (import_) { // they hold for the whole list until they are changed
        choices.mode = import_->choices.mode;
        choices.checkExisting = import_->choices.checkExisting;
        choices.cruises = import_->choices.cruises;
    }
    if (!settler_.settleImport(choices)) return false;
    import_ = SETTLEDIMPORT{choices,
                            {choices.sources.begin(), choices.sources.end()},
                            {choices.targets.begin(), choices.targets.end()}};
    return true;
}

int RListSettler::identify(std::string_view task, std::string_view meaning,
                           std::span<const VARINFO> variables)
{
    return settler_.identify(task, meaning, variables);
}

std::optional<std::string> RListSettler::chooseDescription(std::string_view listing,
                                                           const std::string& proposal)
{
    if (besideEach_ && common::fileExists(proposal)) return proposal;
    if (!besideEach_ && !description_.empty()) return description_;
    std::optional<std::string> chosen = settler_.chooseDescription(listing, proposal);
    if (chosen && *chosen == proposal) besideEach_ = true;
    if (chosen && !besideEach_) description_ = *chosen;
    return chosen;
}

} // namespace importing
