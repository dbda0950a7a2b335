#include "import/spreadsheet.h"

#include <algorithm>
#include <chrono>
#include <ctime>

#include "common/files.h"
#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "import/headerconversions.h"
#include "import/linereader.h"

namespace importing {
namespace {

using collection::VARINFO;
using common::format;

constexpr std::string_view caption = "NVQ Data Import";
constexpr std::size_t linesShown = 9;
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
        return sinceRowOf(label) >= 0;
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

std::string namesOf(std::span<const int> metas)
{
    std::string names;
    for (const int meta : metas) {
        if (!names.empty()) names += ", ";
        names.append("\"").append(metaLabels[static_cast<std::size_t>(meta)]).append("\"");
    }
    return names;
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

    [[nodiscard]] std::vector<std::string> firstLines()
    {
        (void)line(static_cast<int>(linesShown));
        std::vector<std::string> shown;
        for (std::size_t i = 0; i < std::min(linesShown, lines_.size()); ++i)
            shown.push_back(common::labelToUtf8(common::labelFromFile(lines_[i], isUtf8())));
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
    RSpreadsheetSettler* settler;
    common::RUser& user;
    SPREADSHEETHEADER& header;
    std::vector<std::string> labels;

    // The labels of the header line under a separator; empty if the file has no such line.
    [[nodiscard]] std::vector<std::string> labelsUnder(char separator) const
    {
        const std::string* const line = lines.line(header.desc.headerLine);
        return line ? splitLabels(*line, separator, lines.isUtf8()) : std::vector<std::string>();
    }
};

HeaderResult fail(const SETTLING& settling, HeaderResult result, const std::string& text)
{
    settling.user.about(caption, text);
    return result;
}

void setSeparator(SPREADSHEETDESC& desc, int index)
{
    desc.sepIndex = index;
    desc.sepChars = separators[static_cast<std::size_t>(index)].character;
}

// Looks for a separator under which the first line is a header in the standard layout.
bool findSeparator(SETTLING& settling)
{
    for (std::size_t i = 0; i < separators.size(); ++i) {
        std::vector<std::string> labels = settling.labelsUnder(separators[i].character);
        if (!isStandardLayout(labels)) continue;
        setSeparator(settling.header.desc, static_cast<int>(i));
        settling.labels = std::move(labels);
        if (i > 0)
            settling.user.note(format("%s: column separator %s", settling.path.c_str(),
                                      std::string(separators[i].name).c_str()));
        return true;
    }
    return false;
}

// What a user would have to give for a file that is not in the standard layout.
std::string refusal(const SETTLING& settling)
{
    SPREADSHEETDESC desc = settling.header.desc;
    const std::vector<int> missing = findMetaColumns(desc, settling.labels, false, false);
    std::string text = format(
        "File %s is not a spreadsheet in the standard layout.\n\nHeader line, first data line and column "
        "separator",
        settling.path.c_str());
    if (!missing.empty()) text += ", and columns or defaults for " + namesOf(missing) + ",";
    return text + " would have to be given by a user.";
}

HeaderResult settleProperties(SETTLING& settling)
{
    SPREADSHEETDESC& desc = settling.header.desc;
    if (settling.settler == nullptr) {
        if (findSeparator(settling)) {
            settling.header.standardLayout = true;
            return HeaderResult::ok;
        }
        return fail(settling, HeaderResult::unsettled, refusal(settling));
    }
    const std::vector<std::string> shown = settling.lines.firstLines();
    if (!settling.settler->settleProperties(desc, shown)) return HeaderResult::cancelled;
    desc.headerLine = std::clamp(desc.headerLine, 1, maxHeaderLine);
    desc.firstDataLine = std::clamp(desc.firstDataLine, 1, maxHeaderLine);
    settling.labels = settling.labelsUnder(desc.sepChars);
    return HeaderResult::ok;
}

HeaderResult settleColumns(SETTLING& settling)
{
    SPREADSHEETHEADER& header = settling.header;
    const std::vector<int> missing =
        findMetaColumns(header.desc, settling.labels, header.standardLayout, false);
    if (settling.settler != nullptr) {
        const bool goOn =
            missing.empty() || settling.settler->settleHeaderVariables(header.desc, settling.labels);
        return goOn ? HeaderResult::ok : HeaderResult::cancelled;
    }
    std::vector<int> absent;
    for (int meta = 0; meta < metaCount; ++meta) {
        if (header.desc.metaColumn[static_cast<std::size_t>(meta)] < 0) absent.push_back(meta);
    }
    if (!absent.empty())
        settling.user.note(format("%s: no column %s, read with the default", settling.path.c_str(),
                                  namesOf(absent).c_str()));
    return HeaderResult::ok;
}

HeaderResult settle(SETTLING& settling)
{
    settling.labels = settling.labelsUnder(settling.header.desc.sepChars);
    if (settling.lines.tooLong())
        return fail(settling, HeaderResult::badLine,
                    format("Could not interpret header line %d.\n\n", settling.header.desc.headerLine));
    settling.header.standardLayout = isStandardLayout(settling.labels);
    if (!settling.header.standardLayout) {
        if (const HeaderResult result = settleProperties(settling); result != HeaderResult::ok) return result;
    }
    if (const HeaderResult result = settleColumns(settling); result != HeaderResult::ok) return result;
    settling.header.sources = sourcesOf(settling.header.desc, settling.labels);
    return HeaderResult::ok;
}

} // namespace

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
    const int count = common::splitFields(line, separator, fields);
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
    std::vector<int> missing;
    desc.role.fill(-1);
    desc.nMeta = 0;
    labels = labels.first(std::min<std::size_t>(labels.size(), maxColumns));
    for (int meta = 0; meta < metaCount; ++meta) {
        const auto slot = static_cast<std::size_t>(meta);
        const int column = columnOf(desc, labels, meta, !standard);
        desc.metaColumn[slot] = column;
        if (column < 0) {
            if (mustBeSettled(meta, standard, timeWanted)) missing.push_back(meta);
            continue;
        }
        ++desc.nMeta;
        desc.role[static_cast<std::size_t>(column)] = meta;
        const std::string& label = labels[static_cast<std::size_t>(column)];
        if (meta != metaDate || common::equalsIgnoreCase(label, metaLabels[slot])) continue;
        desc.convId[slot] = sinceRowOf(label);
        if (!referenceDayOf(label, desc.referenceDay[slot])) desc.referenceDay[slot] = 0;
    }
    return missing;
}

std::vector<VARINFO> sourcesOf(const SPREADSHEETDESC& desc, std::span<const std::string> labels)
{
    std::vector<VARINFO> sources(1, collection::emptyVariable(0));
    for (std::size_t column = 0; column < std::min<std::size_t>(labels.size(), maxColumns); ++column) {
        const std::string& label = labels[column];
        if (desc.role[column] >= 0 || label.empty()) continue;
        if (label == "QF" || label.starts_with("QF:")) {
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
    SETTLING settling{path, lines, settler, user, header, {}};
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
