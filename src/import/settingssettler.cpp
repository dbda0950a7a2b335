#include <algorithm>

#include "common/text.h"
#include "common/textcoding.h"
#include "import/conversions.h"
#include "import/importsettings.h"
#include "import/metadefaults.h"
#include "variables/timeconversions.h"

namespace importing {
namespace {

using collection::VARINFO;
using common::format;

// What a station can't do without, in a file that isn't in the standard layout.
constexpr int neededMetas[] = {metaDate, metaLongitude, metaLatitude};

constexpr std::size_t index(int meta)
{
    return static_cast<std::size_t>(meta);
}

std::string shortLabel(std::string_view label)
{
    return collection::shortLabelOf(label);
}

// The column with this label, whole or without its units, or of this number from 1; -1 if there is none.
int columnNamed(std::span<const std::string> labels, std::string_view text)
{
    const auto find = [&](auto&& form) {
        const auto found = std::find_if(labels.begin(), labels.end(), [&](const std::string& label) {
            return !label.empty() && common::equalsIgnoreCase(form(label), text);
        });
        return found == labels.end() ? -1 : static_cast<int>(found - labels.begin());
    };
    if (const int column = find([](const std::string& label) { return label; }); column >= 0) return column;
    if (const int column = find([](const std::string& label) { return shortLabel(label); }); column >= 0)
        return column;
    const auto number = common::parseInt(text);
    return number && *number >= 1 && *number <= static_cast<int>(labels.size()) ? *number - 1 : -1;
}

int variableNamed(std::span<const VARINFO> variables, const std::string& text)
{
    return collection::findVariable(variables, static_cast<int>(variables.size()) - 1, text);
}

void unlink(std::span<VARINFO> sources, std::span<VARINFO> targets, int source, int target)
{
    for (VARINFO& other : targets) {
        if (other.assocSource == source) other.assocSource = 0;
    }
    const int old = targets[index(target)].assocSource;
    if (old > 0 && old < static_cast<int>(sources.size())) sources[index(old)].assoc = 0;
}

void link(std::span<VARINFO> sources, std::span<VARINFO> targets, int source, int target,
          const CHOSENCONVERSION& conversion)
{
    unlink(sources, targets, source, target);
    sources[index(source)].assoc = target;
    sources[index(source)].scale = conversion.a;
    sources[index(source)].offset = conversion.b;
    targets[index(target)].assocSource = source;
}

// A potential temperature is converted by depth and salinity.
bool isPossible(const IMPORTCHOICES& choices, const CHOSENCONVERSION& conversion)
{
    if (conversion.row != potentialTemperatureRow || !choices.identify) return true;
    const std::string_view task = variableConversions[potentialTemperatureRow].label;
    return choices.identify(task, "Depth [m]") > 0 && choices.identify(task, "Salinity [psu]") > 0;
}

} // namespace

bool RSettingsSettler::refuse(const std::string& why)
{
    user_.about("NVQ Data Import", format("File %s: %s", path_.c_str(), why.c_str()));
    return false;
}

void RSettingsSettler::prepare(const std::string& path, SPREADSHEETDESC& desc)
{
    path_ = path;
    if (settings_.separator) setSeparator(desc, *settings_.separator);
    desc.headerLine = settings_.headerLine.value_or(desc.headerLine);
    desc.firstDataLine = settings_.firstDataLine.value_or(desc.headerLine + 1);
    desc.missingValue = settings_.missing.value_or(desc.missingValue);
    for (int meta = 0; meta < metaCount; ++meta) {
        const auto& text = settings_.defaults[index(meta)];
        if (text) static_cast<void>(setMetaDefault(desc, meta, *text)); // was looked at when it was set
    }
}

// Tells everything that would have to be given.
bool RSettingsSettler::refuseLayout(const SPREADSHEETDESC& desc, std::span<const std::string> labels)
{
    SPREADSHEETDESC found = desc;
    std::vector<int> missing;
    std::string keys;
    if (!settings_.separator) keys += ", sep";
    if (!settings_.headerLine) keys += ", header_line";
    static_cast<void>(findMetaColumns(found, labels, false, false));
    if (!arrangeColumns(found, labels)) return false;
    for (int meta = 0; meta < metaCount; ++meta) {
        if (meta == metaTime || found.metaColumn[index(meta)] >= 0 || settings_.defaults[index(meta)])
            continue;
        missing.push_back(meta);
        if (std::find(std::begin(neededMetas), std::end(neededMetas), meta) != std::end(neededMetas))
            keys.append(", default_").append(metaNames[index(meta)]);
    }
    std::string text = format("File %s is not a spreadsheet in the standard layout.\n\n", path_.c_str());
    if (!settings_.separator) text += "Header line, first data line and column separator";
    if (!settings_.separator && !missing.empty()) text += ", and columns or defaults for ";
    if (settings_.separator) text += "Columns or defaults for ";
    text += namesOf(missing);
    if (!settings_.separator && !missing.empty()) text += ",";
    text += " would have to be given by a user.\n\nset_import settles them: ";
    user_.about("NVQ Data Import", text + keys.substr(2) + ".");
    return false;
}

bool RSettingsSettler::settleProperties(SPREADSHEETDESC& desc, std::span<const std::string> firstLines)
{
    if (settings_.separator) return true;
    const std::string& line = firstLines[index(desc.headerLine) - 1];
    for (std::size_t i = 0; i < separators.size(); ++i) {
        if (!isStandardLayout(splitLabels(line, separators[i].character, true))) continue;
        setSeparator(desc, static_cast<int>(i));
        user_.note(format("%s: column separator %s", path_.c_str(), std::string(separators[i].name).c_str()));
        return true;
    }
    return refuseLayout(desc, splitLabels(line, desc.sepChars, true));
}

bool RSettingsSettler::arrange(const ASSOCIATIONSETTING& association, SPREADSHEETDESC& desc,
                               std::span<const std::string> labels)
{
    const int meta = metaNamed(association.target);
    const int column = columnNamed(labels, association.source);
    if (column < 0)
        return refuse("set_import assoc: there is no column " + common::quoted(association.source));
    const std::string& label = labels[index(column)];
    const int since = meta == metaDate || meta == metaTime ? variables::sinceRowOf(label) : -1;
    const int row = association.conversion.row == variables::identityRow ? since : association.conversion.row;
    double referenceDay = 0;
    if (row >= variables::daysSinceRow && !variables::referenceDayOf(label, referenceDay))
        return refuse("set_import assoc: the label of column " + common::quoted(label) +
                      " holds no date behind \"since\"");
    assignColumn(desc, meta, column);
    desc.convId[index(meta)] = row;
    desc.convA[index(meta)] = association.conversion.a;
    desc.convB[index(meta)] = association.conversion.b;
    desc.referenceDay[index(meta)] = referenceDay;
    return true;
}

bool RSettingsSettler::arrangeColumns(SPREADSHEETDESC& desc, std::span<const std::string> labels)
{
    return std::all_of(settings_.associations.begin(), settings_.associations.end(),
                       [&](const ASSOCIATIONSETTING& association) {
                           return metaNamed(association.target) < 0 || arrange(association, desc, labels);
                       });
}

bool RSettingsSettler::settleHeaderVariables(SPREADSHEETDESC& desc, std::span<const std::string> labels)
{
    if (isStandardLayout(labels)) return true; // what it lacks has a default
    const bool complete = std::all_of(std::begin(neededMetas), std::end(neededMetas), [&](int meta) {
        return desc.metaColumn[index(meta)] >= 0 || settings_.defaults[index(meta)].has_value();
    });
    return complete || refuseLayout(desc, labels);
}

bool RSettingsSettler::associate(IMPORTCHOICES& choices)
{
    std::vector<int> given;
    for (const ASSOCIATIONSETTING& association : settings_.associations) {
        if (metaNamed(association.target) >= 0) {
            if (choices.mayUseDefaults) continue; // a spreadsheet, whose columns are arranged
            return refuse("set_import assoc: only a spreadsheet has a column for " +
                          common::quoted(association.target));
        }
        const int source = variableNamed(choices.sources, association.source);
        if (source == 0)
            return refuse("set_import assoc: there is no source variable " +
                          common::quoted(association.source));
        const int target = variableNamed(choices.targets, association.target);
        if (target == 0)
            return refuse("set_import assoc: the collection has no variable " +
                          common::quoted(association.target));
        for (const int number : {source, -target}) { // they share a list by their sign
            if (std::find(given.begin(), given.end(), number) != given.end())
                return refuse("set_import assoc: " +
                              common::quoted(number > 0 ? association.source : association.target) +
                              " is associated twice");
            given.push_back(number);
        }
        if (!isPossible(choices, association.conversion))
            return refuse("set_import assoc: " + common::quoted(association.target) +
                          " needs to know which variables are \"Depth [m]\" and \"Salinity [psu]\"");
        link(choices.sources, choices.targets, source, target, association.conversion);
    }
    return true;
}

bool RSettingsSettler::associateCruises(IMPORTCHOICES& choices)
{
    const std::vector<CRUISEASSOCIATION> inventory = choices.cruises;
    for (const CRUISEASSOCIATION& cruise : settings_.cruises) {
        bool found = false;
        for (const CRUISEASSOCIATION& entry : inventory) {
            if (entry.name != cruise.name || (!cruise.type.empty() && entry.type != cruise.type)) continue;
            choices.cruises.push_back({cruise.sourceLabel, entry.type, entry.name});
            found = true;
        }
        if (!found)
            return refuse("set_import cruise: the collection has no cruise " +
                          common::quoted(common::labelToUtf8(cruise.name)));
    }
    return true;
}

bool RSettingsSettler::settleImport(IMPORTCHOICES& choices)
{
    path_ = choices.file;
    choices.checkExisting = settings_.check.value_or(choices.checkExisting);
    return associate(choices) && associateCruises(choices);
}

int RSettingsSettler::identify(std::string_view, std::string_view meaning, std::span<const VARINFO> variables)
{
    const int number = variableNamed(variables, std::string(meaning));
    if (number > 0) return number;
    const std::string word = common::toLower(meaning);
    for (std::size_t v = 1; v < variables.size(); ++v) {
        const std::string label = common::toLower(common::labelToUtf8(common::fieldText(variables[v].label)));
        if (label.find(word) != std::string::npos) return static_cast<int>(v);
    }
    return 0;
}

std::optional<std::string> RSettingsSettler::chooseDescription(std::string_view, const std::string& proposal)
{
    return proposal;
}

} // namespace importing
