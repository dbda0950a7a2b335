#include "import/spreadsheet.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <optional>

#include "common/files.h"
#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "import/importsettings.h"
#include "import/linereader.h"
#include "import/quotedline.h"
#include "variables/timeconversions.h"

namespace importing {
namespace {

using collection::VARINFO;
using common::format;

constexpr std::string_view caption = "NVQ Data Import";
constexpr int linesOffered = 50;       // among which a user looks for the header line
constexpr int maxHeaderLine = 1000000; // of a file that was described by a user

bool matchesInOrder(std::span<const std::string> labels, int skipped)
{
    int wanted = skipped == 0 ? 1 : 0;
    for (const std::string& label : labels) {
        if (wanted == metaCount) break;
        if (!common::equalsIgnoreCase(label, metaLabels[static_cast<std::size_t>(wanted)])) continue;
        if (++wanted == skipped) ++wanted;
    }
    return wanted == metaCount;
}

bool looksLike(int meta, const std::string& label)
{
    const std::string lower = common::toLower(label);
    const auto holds = [&](std::string_view part) { return lower.find(part) != std::string::npos; };
    switch (meta) {
    case metaDate:
        return variables::sinceRowOf(label) >= 0;
    case metaLongitude:
        return holds("degree_e") || holds("degrees_e");
    case metaLatitude:
        return holds("degree_n") || holds("degrees_n");
    default:
        return false;
    }
}

// The column of a metavariable, -1 if there is none.
int columnOf(const SPREADSHEETDESC& desc, std::span<const std::string> labels, int meta, bool loosely)
{
    const auto isFree = [&](std::size_t column) { return desc.role[column] < 0; };
    for (std::size_t column = 0; column < labels.size(); ++column) {
        if (isFree(column) &&
            common::equalsIgnoreCase(labels[column], metaLabels[static_cast<std::size_t>(meta)]))
            return static_cast<int>(column);
    }
    for (std::size_t column = 0; loosely && column < labels.size(); ++column) {
        if (isFree(column) && looksLike(meta, labels[column])) return static_cast<int>(column);
    }
    return -1;
}

bool mustBeSettled(int meta, bool standard, bool timeWanted)
{
    if (meta == metaTime) return !standard && timeWanted;
    return meta != metaDate || !standard;
}

// The metavariables without a column that a user has to settle.
std::vector<int> unsettledMetas(const SPREADSHEETDESC& desc, bool standard, bool timeWanted)
{
    std::vector<int> unsettled;
    for (int meta = 0; meta < metaCount; ++meta) {
        if (desc.metaColumn[static_cast<std::size_t>(meta)] < 0 && mustBeSettled(meta, standard, timeWanted))
            unsettled.push_back(meta);
    }
    return unsettled;
}

bool isFlagLabel(std::string_view label)
{
    return label == "QF" || label.starts_with("QF:");
}

// The lines of a file up to its header line, as far as they were needed.
class RHeaderLines {
public:
    [[nodiscard]] bool open(const std::string& path) { return reader_.open(path); }
    [[nodiscard]] bool isUtf8() const { return reader_.isUtf8(); }
    [[nodiscard]] std::int64_t size() const { return reader_.size(); }
    [[nodiscard]] bool tooLong() const { return tooLong_; }

    // Line `number` from 1; null if the file has no such line.
    [[nodiscard]] const std::string* line(int number)
    {
        while (static_cast<int>(lines_.size()) < number && takeLine()) {
        }
        const bool exists = number >= 1 && number <= static_cast<int>(lines_.size());
        return exists ? &lines_[static_cast<std::size_t>(number - 1)] : nullptr;
    }

    // The first 50 lines, and all up to the header line.
    [[nodiscard]] std::vector<std::string> firstLines(int headerLine)
    {
        const int wanted = std::max(linesOffered, headerLine);
        (void)line(wanted);
        std::vector<std::string> shown;
        for (std::size_t i = 0; i < std::min(static_cast<std::size_t>(wanted), lines_.size()); ++i)
            shown.push_back(
                common::labelToUtf8(common::labelFromFile(lines_[i], common::isValidUtf8(lines_[i]))));
        return shown;
    }

private:
    bool takeLine()
    {
        std::string_view text;
        const RLineReader::Result result = reader_.next(text);
        tooLong_ = tooLong_ || result == RLineReader::Result::tooLong;
        if (result == RLineReader::Result::line) lines_.emplace_back(text);
        return result == RLineReader::Result::line;
    }

    RLineReader reader_;
    std::vector<std::string> lines_;
    bool tooLong_ = false;
};

// Everything that settling a header works on.
struct SETTLING {
    const std::string& path;
    RHeaderLines& lines;
    RSpreadsheetSettler& settler;
    common::RUser& user;
    SPREADSHEETHEADER& header;

    // The labels of the header line under a separator; empty if the file has no such line.
    [[nodiscard]] std::vector<std::string> labelsUnder(char separator) const
    {
        const std::string* const line = lines.line(header.desc.headerLine);
        return line ? splitLabels(*line, separator, common::isValidUtf8(*line)) : std::vector<std::string>();
    }

    // The label of the column behind the last that holds variables; nothing if there is none.
    [[nodiscard]] std::optional<std::string> labelBeyond() const
    {
        const std::string* const line = lines.line(header.desc.headerLine);
        std::array<std::string_view, maxColumns + 1> fields;
        std::string buffer;
        if (!line || splitQuoted(*line, header.desc.sepChars, buffer, fields) <= maxColumns) return {};
        return std::string(common::trimLabel(fields.back()));
    }

    // Columns of the header line, at most two beyond those of variables.
    [[nodiscard]] int columnCount() const
    {
        const std::string* const line = lines.line(header.desc.headerLine);
        std::array<std::string_view, maxColumns + 2> fields;
        std::string buffer;
        return line ? splitQuoted(*line, header.desc.sepChars, buffer, fields) : 0;
    }
};

HeaderResult fail(const SETTLING& settling, HeaderResult result, const std::string& text)
{
    settling.user.about(caption, text);
    return result;
}

HeaderResult refusedBy(const RSpreadsheetSettler& settler)
{
    return settler.asks() ? HeaderResult::cancelled : HeaderResult::unsettled;
}

HeaderResult settleProperties(SETTLING& settling)
{
    SPREADSHEETDESC& desc = settling.header.desc;
    const std::vector<std::string> shown = settling.lines.firstLines(desc.headerLine);
    if (!settling.settler.settleProperties(desc, shown)) return refusedBy(settling.settler);
    desc.headerLine = std::clamp(desc.headerLine, 1, maxHeaderLine);
    desc.firstDataLine = std::clamp(desc.firstDataLine, 1, maxHeaderLine);
    settling.header.labels = settling.labelsUnder(desc.sepChars);
    // Where a user was asked, the user's word is that it is not.
    if (!settling.settler.asks()) settling.header.standardLayout = isStandardLayout(settling.header.labels);
    return HeaderResult::ok;
}

void noteAbsent(const SETTLING& settling)
{
    std::vector<int> absent;
    for (int meta = 0; meta < metaCount; ++meta) {
        if (settling.header.desc.metaColumn[static_cast<std::size_t>(meta)] < 0) absent.push_back(meta);
    }
    if (!absent.empty())
        settling.user.note(format("%s: no column %s, read with the default", settling.path.c_str(),
                                  namesOf(absent).c_str()));
}

HeaderResult settleColumns(SETTLING& settling)
{
    SPREADSHEETHEADER& header = settling.header;
    static_cast<void>(findMetaColumns(header.desc, header.labels, header.standardLayout, false));
    if (!settling.settler.arrangeColumns(header.desc, header.labels)) return refusedBy(settling.settler);
    const std::vector<int> missing = unsettledMetas(header.desc, header.standardLayout, false);
    if (!missing.empty() && !settling.settler.settleHeaderVariables(header.desc, header.labels))
        return refusedBy(settling.settler);
    if (missing.empty() || !settling.settler.asks()) noteAbsent(settling);
    return HeaderResult::ok;
}

HeaderResult badHeaderLine(const SETTLING& settling)
{
    const int number = settling.header.desc.headerLine;
    return fail(settling, HeaderResult::badLine,
                settling.lines.tooLong()
                    ? format("Could not interpret header line %d.\n\n", number)
                    : format("File %s has no line %d, which should hold the labels of its columns.",
                             settling.path.c_str(), number));
}

// What of the header line nothing will be read from, or not as it stands there.
void noteLosses(const SETTLING& settling)
{
    const SPREADSHEETHEADER& header = settling.header;
    const auto tell = [&](const std::string& text) {
        settling.user.note(format("%s:%d: %s", settling.path.c_str(), header.desc.headerLine, text.c_str()));
    };
    const int lastColumn = header.sources.back().qfColumn == maxColumns ? maxColumns + 1 : maxColumns;
    if (settling.columnCount() > lastColumn)
        tell(format("columns beyond number %d are not read", lastColumn));
    int sources = 0;
    for (std::size_t column = 0; column < header.labels.size(); ++column) {
        const std::string& label = header.labels[column];
        if (header.desc.role[column] >= 0 || label.empty() || isFlagLabel(label)) continue;
        if (++sources == common::maxVariables + 1)
            tell(format("column %d \"%s\" and those behind it are not read: a file has at most %d variables",
                        static_cast<int>(column) + 1, label.c_str(), common::maxVariables));
        if (sources > common::maxVariables) break;
        if (common::labelFromFile(label, true).size() >= sizeof VARINFO{}.label)
            tell(
                format("the label of column %d is cut: \"%s\"", static_cast<int>(column) + 1, label.c_str()));
    }
}

// The flags of a variable in the last column: fifty variables with flags have one column more than is read.
void takeLastFlags(const SETTLING& settling)
{
    VARINFO& last = settling.header.sources.back();
    if (settling.header.sources.size() < 2 || last.column != maxColumns - 1) return;
    const std::optional<std::string> label = settling.labelBeyond();
    if (label && isFlagLabel(*label)) last.qfColumn = maxColumns;
}

// Such a line is no chance: it tells the coding of the file, whatever single bytes of its labels are.
bool isUtf8BeyondAscii(const std::string& line)
{
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 128; };
    return common::isValidUtf8(line) && !std::all_of(line.begin(), line.end(), isAscii);
}

HeaderResult settle(SETTLING& settling)
{
    SPREADSHEETHEADER& header = settling.header;
    settling.settler.prepare(settling.path, header.desc);
    header.labels = settling.labelsUnder(header.desc.sepChars);
    if (settling.lines.line(header.desc.headerLine) == nullptr) return badHeaderLine(settling);
    header.standardLayout = isStandardLayout(header.labels);
    if (!header.standardLayout) {
        if (const HeaderResult result = settleProperties(settling); result != HeaderResult::ok) return result;
        if (settling.lines.line(header.desc.headerLine) == nullptr) return badHeaderLine(settling);
    }
    if (const HeaderResult result = settleColumns(settling); result != HeaderResult::ok) return result;
    header.sources = sourcesOf(header.desc, header.labels);
    takeLastFlags(settling);
    noteLosses(settling);
    header.fileIsUtf8 = header.fileIsUtf8 || isUtf8BeyondAscii(*settling.lines.line(header.desc.headerLine));
    return HeaderResult::ok;
}

} // namespace

void setSeparator(SPREADSHEETDESC& desc, int index)
{
    desc.sepIndex = index;
    desc.sepChars = separators[static_cast<std::size_t>(index)].character;
}

void assignColumn(SPREADSHEETDESC& desc, int meta, int column)
{
    const auto slot = static_cast<std::size_t>(meta);
    int& role = desc.role[static_cast<std::size_t>(column)];
    if (desc.metaColumn[slot] >= 0) desc.role[static_cast<std::size_t>(desc.metaColumn[slot])] = -1;
    if (role >= 0) {
        desc.metaColumn[static_cast<std::size_t>(role)] = -1;
        desc.convId[static_cast<std::size_t>(role)] = -1;
    }
    role = meta;
    desc.metaColumn[slot] = column;
    desc.convId[slot] = -1;
    desc.nMeta = static_cast<int>(
        std::count_if(desc.metaColumn.begin(), desc.metaColumn.end(), [](int taken) { return taken >= 0; }));
}

std::string namesOf(std::span<const int> metas)
{
    std::string names;
    for (const int meta : metas) {
        if (!names.empty()) names += ", ";
        names.append("\"").append(metaLabels[static_cast<std::size_t>(meta)]).append("\"");
    }
    return names;
}

std::string cruiseLabelOf(std::string_view path)
{
    std::string name = common::labelFromFile(common::splitPath(path).baseName, true);
    std::string_view label = common::cutAtCharacter(name, 35);
    if (label.starts_with("NVQ_")) label.remove_prefix(4);
    if (label.empty()) return "unknown Cruise";
    return std::string(common::trimLabel(common::cutAtCharacter(label, common::labelLength)));
}

SPREADSHEETDESC defaultDescription(std::string_view path)
{
    SPREADSHEETDESC desc{};
    setSeparator(desc, 0);
    desc.headerLine = 1;
    desc.firstDataLine = 2;
    desc.role.fill(-1);
    desc.metaColumn.fill(-1);
    desc.convId.fill(-1);
    desc.convA.fill(1);
    desc.missingValue = common::MISSING_VALUE;
    common::copyText(desc.defCruise, cruiseLabelOf(path));
    common::copyText(desc.defType, "*");
    const std::time_t now = std::time(nullptr);
    std::tm today{};
    ::localtime_r(&now, &today);
    desc.defDay = static_cast<std::int16_t>(today.tm_mday);
    desc.defMonth = static_cast<std::int16_t>(today.tm_mon + 1);
    desc.defYear = static_cast<std::int16_t>(today.tm_year + 1900);
    return desc;
}

std::vector<std::string> splitLabels(std::string_view line, char separator, bool fileIsUtf8)
{
    std::array<std::string_view, maxColumns> fields;
    std::string buffer;
    const int count = splitQuoted(line, separator, buffer, fields);
    std::vector<std::string> labels;
    for (int i = 0; i < count; ++i) {
        const std::string_view trimmed = common::trimLabel(fields[static_cast<std::size_t>(i)]);
        labels.push_back(common::labelToUtf8(common::labelFromFile(trimmed, fileIsUtf8)));
    }
    return labels;
}

bool isStandardLayout(std::span<const std::string> labels)
{
    if (labels.size() < metaCount) return false;
    for (int skipped = -1; skipped < metaCount; ++skipped) {
        if (matchesInOrder(labels, skipped)) return true;
    }
    return false;
}

std::vector<int> findMetaColumns(SPREADSHEETDESC& desc, std::span<const std::string> labels, bool standard,
                                 bool timeWanted)
{
    desc.role.fill(-1);
    desc.nMeta = 0;
    labels = labels.first(std::min<std::size_t>(labels.size(), maxColumns));
    for (int meta = 0; meta < metaCount; ++meta) {
        const auto slot = static_cast<std::size_t>(meta);
        const int column = columnOf(desc, labels, meta, !standard);
        desc.metaColumn[slot] = column;
        if (column < 0) continue;
        ++desc.nMeta;
        desc.role[static_cast<std::size_t>(column)] = meta;
        const std::string& label = labels[static_cast<std::size_t>(column)];
        if (meta != metaDate || common::equalsIgnoreCase(label, metaLabels[slot])) continue;
        desc.convId[slot] = variables::sinceRowOf(label);
        if (!variables::referenceDayOf(label, desc.referenceDay[slot])) desc.referenceDay[slot] = 0;
    }
    return unsettledMetas(desc, standard, timeWanted);
}

std::vector<VARINFO> sourcesOf(const SPREADSHEETDESC& desc, std::span<const std::string> labels)
{
    std::vector<VARINFO> sources(1, collection::emptyVariable(0));
    for (std::size_t column = 0; column < std::min<std::size_t>(labels.size(), maxColumns); ++column) {
        const std::string& label = labels[column];
        if (desc.role[column] >= 0 || label.empty()) continue;
        if (isFlagLabel(label)) {
            if (sources.size() > 1) sources.back().qfColumn = static_cast<int>(column);
            continue;
        }
        if (sources.size() > common::maxVariables) break;
        VARINFO source = collection::emptyVariable(static_cast<int>(sources.size()));
        collection::setLabel(source, common::labelFromFile(label, true));
        source.column = static_cast<int>(column);
        source.defaultValue = common::MISSING_VALUE;
        sources.push_back(source);
    }
    return sources;
}

HeaderResult readSpreadsheetHeader(const std::string& path, RSpreadsheetSettler* settler, common::RUser& user,
                                   SPREADSHEETHEADER& header)
{
    RHeaderLines lines;
    header = {};
    header.desc = defaultDescription(path);
    const IMPORTSETTINGS nothing;
    RSettingsSettler nobody(nothing, user);
    SETTLING settling{path, lines, settler ? *settler : nobody, user, header};
    if (!common::fileExists(path))
        return fail(settling, HeaderResult::unreadable, format("File %s not found!", path.c_str()));
    if (!lines.open(path))
        return fail(settling, HeaderResult::unreadable, format("File %s can not be read!", path.c_str()));
    header.fileIsUtf8 = lines.isUtf8();
    if (lines.line(1) == nullptr && !lines.tooLong())
        return fail(settling, HeaderResult::empty, format("File %s is empty!", path.c_str()));
    return settle(settling);
}

} // namespace importing
