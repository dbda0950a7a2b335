#include "export/spreadsheet.h"

#include <algorithm>
#include <cmath>

#include "common/files.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "export/numberformat.h"
#include "export/stationexport.h"

namespace exporting {
namespace {

using collection::RCollection;
using collection::STATIONDATA;
using collection::STATIONHDR;
using common::format;
using common::MISSING_VALUE;

constexpr EXPORTTEXTS texts{"Exporting Station-Data ...", "Exporting Station-Data ...",
                            "Really Want to Abort and Delete Export File?",
                            "%d Stations Exported to File\n\n%s"};
constexpr std::string_view metaLabels =
    "Cruise\tStation\tType\tmon/day/yr\thh:mm\tLon (°E)\tLat (°N)\tBot. Depth [m]";
constexpr std::size_t flushSize = std::size_t{1} << 20;
constexpr std::string_view missingFlag = "8";

// A text without characters that would divide its field.
std::string withoutControls(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

// One that begins with a quote would lose it to a reader that takes quotes away.
std::string fieldOf(std::string_view label)
{
    const std::string field = withoutControls(common::labelToUtf8(label));
    if (!field.starts_with('"')) return field;
    return '"' + common::replaceAll(field, "\"", "\"\"") + '"';
}

// The fields that stand in front of every line of a station.
std::string metaFields(const STATIONHDR& header)
{
    std::string text =
        fieldOf(common::fieldText(header.cruise)) + '\t' + fieldOf(common::fieldText(header.station)) + '\t' +
        fieldOf(common::fieldText(header.type)) +
        format("\t%d/%d/%d\t%02d:%02d\t", header.month, header.day, header.year, header.hour, header.minute);
    appendG(text, eastLongitude(header.longitude));
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

// What is no number is no data.
bool isValue(float value)
{
    return value != MISSING_VALUE && std::isfinite(value);
}

// A value that "%g" would make the mark of a missing one, though it is none.
bool looksMissing(float value)
{
    return value >= -1.000005e10f && value <= -9.999995e9f;
}

char* putSample(char* out, float value, std::uint8_t flag)
{
    *out++ = '\t';
    out = looksMissing(value) ? putExact(out, value) : putG(out, value);
    *out++ = '\t';
    return putByte(out, flag);
}
constexpr std::size_t largestSample = 2 + largestG + largestByte;

std::string missingFields(const std::string& missingText)
{
    const std::string trimmed(common::trimLabel(withoutControls(missingText)));
    if (trimmed.empty()) return "\t\t";
    return "\t" + trimmed + "\t" + std::string(missingFlag);
}

// The file, written in pieces.
class RSpreadsheetSink final : public RStationSink {
public:
    RSpreadsheetSink(const RCollection& collection, const std::string& path,
                     const std::vector<int>& variables, const std::string& missingText)
        : file_(path), variables_(variables), missingText_(missingText),
          text_(spreadsheetHeaderLine(collection, variables))
    {
    }
    [[nodiscard]] bool write(const STATIONDATA& station) override
    {
        if (file_.stream() == nullptr) return false;
        appendStation(text_, station, variables_, missingText_);
        return text_.size() < flushSize || flush();
    }
    [[nodiscard]] bool commit() override { return file_.stream() != nullptr && flush() && file_.commit(); }

private:
    bool flush()
    {
        const bool good = std::fwrite(text_.data(), 1, text_.size(), file_.stream()) == text_.size();
        text_.clear();
        return good;
    }

    common::RReplacementFile file_;
    const std::vector<int>& variables_;
    const std::string& missingText_;
    std::string text_;
};

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
    const std::string missing = missingFields(missingText);
    const std::vector<COLUMN> columns = columnsOf(station, variables);
    std::string line = metaFields(station.header); // what stands in front stays there for all levels
    const std::size_t metaLength = line.size();
    line.resize(metaLength + columns.size() * std::max(largestSample, missing.size()) + 1);
    for (std::size_t k = 0; k < static_cast<std::size_t>(station.levels()); ++k) {
        char* out = line.data() + metaLength;
        for (const COLUMN& column : columns) {
            if (column.values != nullptr && isValue(column.values[k])) {
                out = putSample(out, column.values[k], column.flags[k]);
            } else {
                out = std::copy(missing.begin(), missing.end(), out);
            }
        }
        *out++ = '\n';
        text.append(line.data(), static_cast<std::size_t>(out - line.data()));
    }
}

bool exportSpreadsheet(RCollection& collection, STATIONDATA& station, const std::string& path,
                       const SPREADSHEETOPTIONS& options, common::RUser& user)
{
    if (!acceptsSampleSelection(collection, user)) return false;
    const std::vector<int> variables = chosenVariables(collection, options.variables);
    RSpreadsheetSink sink(collection, path, variables, options.missingText);
    return exportStations({collection, station, variables, path, texts, user}, sink) == ExportEnd::complete;
}

} // namespace exporting
