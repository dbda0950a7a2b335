#include "export/spreadsheet.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "collection/damage.h"
#include "common/files.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "export/numberformat.h"
#include "selection/criteria.h"
#include "selection/selectedlist.h"
#include "variables/needed.h"

namespace exporting {
namespace {

using collection::RCollection;
using collection::STATIONDATA;
using collection::STATIONHDR;
using common::Answer;
using common::format;
using common::MISSING_VALUE;

constexpr std::string_view caption = "Exporting Station-Data ...";
constexpr std::string_view metaLabels =
    "Cruise\tStation\tType\tmon/day/yr\thh:mm\tLon (°E)\tLat (°N)\tBot. Depth [m]";
constexpr std::size_t flushSize = std::size_t{1} << 20;
constexpr std::string_view missingFlag = "8";
constexpr int smallestProgressStep = 100;

// A label as a field: in UTF-8, and without characters that would divide it.
std::string fieldOf(std::string_view label)
{
    std::string field = common::labelToUtf8(label);
    std::replace_if(
        field.begin(), field.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return field;
}

// The fields that stand in front of every line of a station.
std::string metaFields(const STATIONHDR& header)
{
    std::string text =
        fieldOf(common::fieldText(header.cruise)) + '\t' + fieldOf(common::fieldText(header.station)) + '\t' +
        fieldOf(common::fieldText(header.type)) +
        format("\t%d/%d/%d\t%02d:%02d\t", header.month, header.day, header.year, header.hour, header.minute);
    appendG(text, header.longitude < 0 ? header.longitude + 360 : header.longitude);
    text += '\t';
    appendG(text, header.latitude);
    const double bottom = std::clamp(static_cast<double>(header.bottomDepth), -2e9, 2e9);
    return text + format("\t%d", std::isnan(bottom) ? 0 : static_cast<int>(bottom));
}

// One chosen variable of the station in hand; values null if the station has none.
struct COLUMN {
    const float* values;
    const std::uint8_t* flags;
};

std::vector<COLUMN> columnsOf(const STATIONDATA& station, const std::vector<int>& variables)
{
    std::vector<COLUMN> columns;
    for (const int v : variables) {
        const int offset = station.offset[static_cast<std::size_t>(v)];
        columns.push_back(offset < 0 ? COLUMN{nullptr, nullptr}
                                     : COLUMN{station.values.get() + offset, station.flags.get() + offset});
    }
    return columns;
}

void appendSample(std::string& text, float value, std::uint8_t flag)
{
    text += '\t';
    appendG(text, value);
    text += '\t';
    appendByte(text, flag);
}

std::string missingFields(const std::string& missingText)
{
    const std::string_view trimmed = common::trimLabel(missingText);
    if (trimmed.empty()) return "\t\t";
    return "\t" + std::string(trimmed) + "\t" + std::string(missingFlag);
}

bool sampleSelectionIsActive(const RCollection& collection)
{
    const int variable = collection.criteria.sampleVariable;
    return variable >= 1 && variable <= collection.totalVariableCount;
}

bool acceptsSampleSelection(const RCollection& collection, common::RUser& user)
{
    if (!sampleSelectionIsActive(collection) || !user.interactive()) return true;
    return user.question("Sample selection warning ...",
                         "Sample selection criteria are currently in effect.\n"
                         "Only selected samples are written to the export file!\n\nContinue?") == Answer::yes;
}

std::vector<int> chosenVariables(const RCollection& collection, const SPREADSHEETOPTIONS& options)
{
    std::vector<int> variables;
    if (options.variables.empty()) {
        variables.resize(static_cast<std::size_t>(collection.variableCount));
        std::iota(variables.begin(), variables.end(), 1);
        return variables;
    }
    std::copy_if(options.variables.begin(), options.variables.end(), std::back_inserter(variables),
                 [&](int v) { return v >= 1 && v <= collection.totalVariableCount; });
    return variables;
}

bool holdsAny(const STATIONDATA& station, const std::vector<int>& variables)
{
    return std::any_of(variables.begin(), variables.end(),
                       [&](int v) { return station.offset[static_cast<std::size_t>(v)] >= 0; });
}

// Puts the mask of needed variables back.
class RNeededGuard {
public:
    RNeededGuard(RCollection& collection, const std::vector<int>& variables)
        : collection_(collection), saved_(collection.neededMask)
    {
        variables::needVariables(collection, variables);
    }
    ~RNeededGuard() { collection_.neededMask = saved_; }
    RNeededGuard(const RNeededGuard&) = delete;
    RNeededGuard& operator=(const RNeededGuard&) = delete;

private:
    RCollection& collection_;
    const decltype(RCollection::neededMask) saved_;
};

struct EXPORT {
    RCollection& collection;
    STATIONDATA& station;
    std::FILE* file;
    const std::vector<int>& variables;
    const std::string& missingText;
    common::RUser& user;
    std::string text;
    collection::RDamageReport damaged;
    int written = 0;
};

bool flush(EXPORT& run)
{
    const bool good = std::fwrite(run.text.data(), 1, run.text.size(), run.file) == run.text.size();
    run.text.clear();
    return good;
}

// False if the file can't take more.
bool writeStation(EXPORT& run, int number)
{
    if (run.collection.loadStation(number, run.station, true) != collection::LoadResult::ok) {
        run.damaged.add(number);
        return true;
    }
    if (sampleSelectionIsActive(run.collection))
        selection::compressToSampleRange(run.station, run.collection.criteria);
    if (run.station.levels() < 1 || !holdsAny(run.station, run.variables)) return true;
    appendStation(run.text, run.station, run.variables, run.missingText);
    ++run.written;
    return run.text.size() < flushSize || flush(run);
}

enum class Outcome { complete, aborted, unwritable };

Outcome writeAll(EXPORT& run)
{
    const std::vector<selection::SELECTEDSTATION> list = selection::readSelectedList(run.collection);
    const std::size_t step = std::max<std::size_t>(smallestProgressStep, list.size() / 20);
    run.text = spreadsheetHeaderLine(run.collection, run.variables);
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (i % step == 0)
            run.user.setProgress(100.0 * static_cast<double>(i) / static_cast<double>(list.size()));
        if (run.user.askAbort("Really Want to Abort and Delete Export File?", caption))
            return Outcome::aborted;
        if (!writeStation(run, list[i].number)) return Outcome::unwritable;
    }
    return flush(run) ? Outcome::complete : Outcome::unwritable;
}

} // namespace

std::string spreadsheetHeaderLine(const RCollection& collection, const std::vector<int>& variables)
{
    std::string line(metaLabels);
    for (const int v : variables) {
        const collection::VARINFO& variable = collection.variables[static_cast<std::size_t>(v)];
        line += '\t' + fieldOf(common::fieldText(variable.label)) + "\tQF";
    }
    return line + '\n';
}

void appendStation(std::string& text, const STATIONDATA& station, const std::vector<int>& variables,
                   const std::string& missingText)
{
    const std::string meta = metaFields(station.header);
    const std::string missing = missingFields(missingText);
    const std::vector<COLUMN> columns = columnsOf(station, variables);
    for (std::size_t k = 0; k < static_cast<std::size_t>(station.levels()); ++k) {
        text += meta;
        for (const COLUMN& column : columns) {
            if (column.values != nullptr && column.values[k] != MISSING_VALUE) {
                appendSample(text, column.values[k], column.flags[k]);
            } else {
                text += missing;
            }
        }
        text += '\n';
    }
}

bool exportSpreadsheet(RCollection& collection, STATIONDATA& station, const std::string& path,
                       const SPREADSHEETOPTIONS& options, common::RUser& user)
{
    if (!acceptsSampleSelection(collection, user)) return false;
    const std::vector<int> variables = chosenVariables(collection, options);
    const int current = station.number;
    common::RReplacementFile file(path);
    Outcome outcome = Outcome::unwritable;
    EXPORT run{collection, station, file.stream(), variables, options.missingText, user, {}, {}, 0};
    if (file.stream() != nullptr) {
        const RNeededGuard needed(collection, variables);
        const common::RBusyGuard busy(user, std::string(caption).append(common::escAborts));
        outcome = writeAll(run);
        if (outcome == Outcome::complete && !file.commit()) outcome = Outcome::unwritable;
    }
    if (current > 0 && collection.loadStation(current, station, true) != collection::LoadResult::ok)
        station.clear();
    run.damaged.tell(collection.path, user);
    if (outcome == Outcome::unwritable) user.about(caption, format("Could not write file %s!", path.c_str()));
    if (outcome == Outcome::aborted) user.setAbort(false);
    if (outcome == Outcome::complete && user.interactive())
        user.about(caption, format("%d Stations Exported to File\n\n%s", run.written, path.c_str()));
    return outcome == Outcome::complete;
}

} // namespace exporting
