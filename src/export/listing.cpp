#include "export/listing.h"

#include <algorithm>
#include <charconv>
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
using collection::VARINFO;
using common::fieldText;
using common::format;
using common::MISSING_VALUE;

// What the two versions differ in.
struct LAYOUT {
    EXPORTTEXTS texts;
    std::size_t labelWidth;         // of cruise and station
    const char* countFormat;        // of levels and variables in a station's header
    int mostLevels;                 // that the field holds
    const char* numberFormat;       // of the variables' numbers
    std::string_view missing;       // a value that there isn't, in its column
    bool hasFlags;                  // behind each value
    std::size_t variableLabelWidth; // in the description
};

constexpr LAYOUT layout3{{"Exporting to .o3x file ...", "Exporting data to .o3x file ...",
                          "Really Want to Abort and Delete Export File?",
                          "%d Stations Exported to .o3x File\n\n%s"},
                         10,
                         " %4d %3d\n",
                         9999,
                         "%13d",
                         "   -1.0e+010",
                         false,
                         25};
constexpr LAYOUT layout4{{"Exporting to .o4x file ...", "Exporting data to .o4x file ...",
                          "Really Want to Abort and Delete Export File?",
                          "%d Stations Exported to .o4x File\n\n%s"},
                         20,
                         "%5d %3d\n",
                         common::maxLevels,
                         "%15d",
                         "      -1e+10",
                         true,
                         60};

constexpr std::size_t flushSize = std::size_t{1} << 20;
constexpr std::size_t valueWidth = 12, positionWidth = 7, depthWidth = 5;
constexpr int significantDigits = 7;
constexpr int firstYear = 1900, lastYear = 2200; // that a listing's import takes
constexpr std::string_view descriptionStart = "Collection:";

const LAYOUT& layoutOf(ListingForm form)
{
    return form == ListingForm::version3 ? layout3 : layout4;
}

void appendRight(std::string& text, std::string_view field, std::size_t width)
{
    text.append(width - std::min(width, field.size()), ' ').append(field);
}

void appendLeft(std::string& text, std::string_view field, std::size_t width)
{
    text.append(field).append(width - std::min(width, field.size()), ' ');
}

// --- numbers

// True for a value other than the missing one that seven digits would make the same.
bool looksMissing(float value)
{
    return std::abs(value - common::MISSING_VALUE) <= 1e4f;
}

// A value as "%12.7g".
void appendValue(std::string& text, float value)
{
    char buffer[64];
    if (looksMissing(value)) {
        appendRight(text, {buffer, static_cast<std::size_t>(putExact(buffer, value) - buffer)}, valueWidth);
        return;
    }
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(value),
                                      std::chars_format::general, significantDigits);
    appendRight(text, {buffer, static_cast<std::size_t>(result.ptr - buffer)}, valueWidth);
}

// Degrees as "%7.3f".
void appendDegrees(std::string& text, float degrees)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(degrees),
                                      std::chars_format::fixed, 3);
    appendRight(text, {buffer, static_cast<std::size_t>(result.ptr - buffer)}, positionWidth);
}

// A number with as many digits as fit into five columns: "1.2e5".
std::string shortForm(double value)
{
    std::string text;
    for (int decimals = 2; decimals >= 0; --decimals) {
        char buffer[400];
        const auto result =
            std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, decimals);
        text.assign(buffer, result.ptr);
        text = common::replaceAll(common::replaceAll(text, "e+0", "e"), "e+", "e");
        if (text.size() <= depthWidth) break;
    }
    return text;
}

// A depth as a whole number, cut behind the point; one that has no room there as a number with an exponent.
std::string depthText(float depth)
{
    constexpr double lowest = -9999, highest = 99999;
    const double whole = std::trunc(static_cast<double>(depth));
    return whole >= lowest && whole <= highest ? std::to_string(static_cast<int>(whole)) : shortForm(whole);
}

// --- what there is to tell at the end

// Something that happened to several stations or labels.
struct REMARK {
    int count = 0;
    std::string first;
    void add(const std::string& what)
    {
        if (++count == 1) first = what;
    }
};

struct REMARKS {
    REMARK leftOut, cutLabels, roundedDepths;
};

std::string remarksText(const REMARKS& remarks)
{
    std::string text;
    const auto append = [&](const REMARK& remark, const char* what) {
        if (remark.count == 0) return;
        text += format("%s%d %s, the first:\n%s", text.empty() ? "" : "\n\n", remark.count, what,
                       remark.first.c_str());
    };
    append(remarks.leftOut, "stations were left out, because a listing can't hold them");
    append(remarks.cutLabels, "labels were cut, because they are longer than their column");
    append(remarks.roundedDepths, "depths were rounded, because they are longer than their column");
    return text;
}

std::string nameOf(const STATIONHDR& header)
{
    return common::labelToUtf8(fieldText(header.cruise)) + "  - " +
           common::labelToUtf8(fieldText(header.station));
}

// --- labels

std::string withoutControls(std::string_view label)
{
    std::string clean(label);
    std::replace_if(
        clean.begin(), clean.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return clean;
}

// A label as it goes into a column of so many bytes.
std::string columnLabel(std::string_view label, std::size_t width, REMARK& cut)
{
    std::string whole = withoutControls(label);
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    const bool plain = std::all_of(whole.begin(), whole.end(), isAscii);
    if (!plain) whole = common::encodeLabel(common::decodeLabel(whole), std::string::npos);
    if (whole.size() <= width) return whole;
    cut.add(common::labelToUtf8(label));
    return plain ? whole.substr(0, width) : common::encodeLabel(common::decodeLabel(whole), width);
}

// --- stations

// Why a listing can't hold a station; empty if it can.
std::string obstacleOf(const STATIONDATA& station, const LAYOUT& layout)
{
    const STATIONHDR& h = station.header;
    if (h.month < 1 || h.month > 12 || h.day < 1 || h.day > 31 || h.year < firstYear || h.year > lastYear) {
        return format("date %02d/%02d/%04d (mm/dd/yyyy, years %d to %d)", h.month, h.day, h.year, firstYear,
                      lastYear);
    }
    const float longitude = eastLongitude(h.longitude);
    if (!(longitude >= 0 && longitude <= 360 && std::abs(h.latitude) <= 90)) {
        return "position " + common::formatG(static_cast<double>(h.longitude)) + "/" +
               common::formatG(static_cast<double>(h.latitude)) + " (lon/lat)";
    }
    if (station.levels() > layout.mostLevels)
        return format("%d levels (at most %d)", station.levels(), layout.mostLevels);
    return {};
}

// A chosen variable that has values in the station in hand.
struct COLUMN {
    int number; // in the description
    const float* values;
    const std::uint8_t* flags;
};

bool isValue(float value)
{
    return value != MISSING_VALUE && std::isfinite(value);
}

std::vector<COLUMN> columnsOf(const STATIONDATA& station, const std::vector<int>& variables)
{
    std::vector<COLUMN> columns;
    for (std::size_t i = 0; i < variables.size(); ++i) {
        const int offset = station.offset[static_cast<std::size_t>(variables[i])];
        if (offset < 0) continue;
        const float* const values = station.values.get() + offset;
        if (!std::any_of(values, values + station.levels(), isValue)) continue;
        columns.push_back({static_cast<int>(i) + 1, values, station.flags.get() + offset});
    }
    return columns;
}

void appendNumbers(std::string& text, const std::vector<COLUMN>& columns, const LAYOUT& layout)
{
    for (const COLUMN& column : columns) text += format(layout.numberFormat, column.number);
    text += '\n';
}

void appendLevel(std::string& text, const std::vector<COLUMN>& columns, std::size_t level,
                 const LAYOUT& layout)
{
    for (const COLUMN& column : columns) {
        const float value = column.values[level];
        text += ' ';
        if (isValue(value)) {
            appendValue(text, value);
        } else {
            text += layout.missing;
        }
        if (!layout.hasFlags) continue;
        text += ' ';
        text += std::to_string(column.flags[level]);
    }
    text += '\n';
}

std::string shortName(const std::string& path)
{
    const common::PATHPARTS parts = common::splitPath(path);
    return parts.baseName + parts.extension;
}

std::string descriptionPath(const std::string& listing)
{
    const common::PATHPARTS parts = common::splitPath(listing);
    return parts.directory + parts.baseName + ".var";
}

bool put(std::FILE* file, std::string_view text)
{
    return std::fwrite(text.data(), 1, text.size(), file) == text.size();
}

// --- the files

// What both versions share: stations one after the other in a file that is written in pieces.
class RListingSink : public RStationSink {
public:
    RListingSink(const RCollection& collection, const std::string& path, const std::vector<int>& variables,
                 const LAYOUT& layout)
        : collection_(collection), variables_(variables), layout_(layout), file_(path)
    {
    }
    [[nodiscard]] bool canTake(const STATIONDATA& station) override
    {
        if (columnsOf(station, variables_).empty()) return false; // the quality limit left nothing
        const std::string obstacle = obstacleOf(station, layout_);
        if (!obstacle.empty()) remarks_.leftOut.add(nameOf(station.header) + ": " + obstacle);
        return obstacle.empty();
    }
    [[nodiscard]] bool write(const STATIONDATA& station) override
    {
        if (file_.stream() == nullptr) return false;
        const std::vector<COLUMN> columns = columnsOf(station, variables_);
        ++stationCount_;
        appendHeader(station, static_cast<int>(columns.size()));
        appendNumbers(text_, columns, layout_);
        for (std::size_t k = 0; k < static_cast<std::size_t>(station.levels()); ++k)
            appendLevel(text_, columns, k, layout_);
        return text_.size() < flushSize || flush();
    }
    [[nodiscard]] const REMARKS& remarks() const { return remarks_; }

protected:
    [[nodiscard]] const VARINFO& variable(std::size_t chosen) const
    {
        return collection_.variables[static_cast<std::size_t>(variables_[chosen])];
    }
    [[nodiscard]] std::string variableLabel(std::size_t chosen)
    {
        return columnLabel(fieldText(variable(chosen).label), layout_.variableLabelWidth, remarks_.cutLabels);
    }
    bool flush()
    {
        const bool good = put(file_.stream(), text_);
        text_.clear();
        return good;
    }

    const RCollection& collection_;
    const std::vector<int>& variables_;
    const LAYOUT& layout_;
    common::RReplacementFile file_;
    std::string text_;
    int stationCount_ = 0;
    REMARKS remarks_;

private:
    void appendHeader(const STATIONDATA& station, int variableCount)
    {
        const STATIONHDR& h = station.header;
        const std::string type = withoutControls(fieldText(h.type));
        text_ += "# ";
        appendLeft(text_, columnLabel(fieldText(h.cruise), layout_.labelWidth, remarks_.cutLabels),
                   layout_.labelWidth);
        text_ += ' ';
        appendRight(text_, columnLabel(fieldText(h.station), layout_.labelWidth, remarks_.cutLabels),
                    layout_.labelWidth);
        text_ += ' ';
        appendLeft(text_, std::string_view(type).substr(0, 1), 1);
        text_ += format(" %2d/%2d/%4d ", h.month, h.day, h.year);
        appendDegrees(text_, eastLongitude(h.longitude));
        text_ += ' ';
        appendDegrees(text_, h.latitude);
        appendDepth(h, h.bottomDepth);
        appendDepth(h, h.lastSampleDepth);
        text_ += format(layout_.countFormat, station.levels(), variableCount);
    }

    void appendDepth(const STATIONHDR& header, float depth)
    {
        const std::string written = depthText(depth);
        const std::optional<double> read = common::parseDouble(written);
        if (static_cast<float>(read.value_or(0)) != std::trunc(depth))
            remarks_.roundedDepths.add(nameOf(header) + ": " + common::formatG(static_cast<double>(depth)) +
                                       " as " + written);
        text_ += ' ';
        appendRight(text_, written, depthWidth);
    }
};

// Version 4 has everything in one file. The number of stations is put in at the end.
class RListing4Sink final : public RListingSink {
public:
    RListing4Sink(const RCollection& collection, const std::string& path, const std::vector<int>& variables)
        : RListingSink(collection, path, variables, layout4)
    {
        text_ = "NVQ4.0 Listing\n File Name: " + withoutControls(shortName(path)) +
                format("\n      Type: %3s\n     Nstat: ", withoutControls(collection.type).c_str());
        countOffset_ = static_cast<long>(text_.size());
        text_ += format("%-8d\n Variables: %-2d\n\n", 0, static_cast<int>(variables.size()));
        for (std::size_t i = 0; i < variables.size(); ++i) {
            appendLeft(text_, variableLabel(i), layout_.variableLabelWidth);
            text_ += format("%2d.%1d\n", variable(i).width, variable(i).decimals);
        }
        text_ += '\n';
    }
    [[nodiscard]] bool commit() override
    {
        std::FILE* const file = file_.stream();
        return file != nullptr && flush() && std::fseek(file, countOffset_, SEEK_SET) == 0 &&
               put(file, format("%-8d", stationCount_)) && file_.commit();
    }

private:
    long countOffset_ = 0;
};

// Version 3 has its description in a second file, which is written when the number of stations is known.
class RListing3Sink final : public RListingSink {
public:
    RListing3Sink(const RCollection& collection, const std::string& path, const std::vector<int>& variables)
        : RListingSink(collection, path, variables, layout3), descriptionPath_(descriptionPath(path)),
          description_(descriptionPath_)
    {
    }
    [[nodiscard]] bool commit() override
    {
        if (file_.stream() == nullptr || !flush() || !file_.prepare()) return false;
        descriptionFailed_ = !prepareDescription();
        return !descriptionFailed_ && placeBoth();
    }
    [[nodiscard]] std::string fault() const override
    {
        return descriptionFailed_ ? "Could not write file " + descriptionPath_ + "!" : std::string();
    }

private:
    std::string descriptionText()
    {
        std::string text =
            format("Collection: %-8s  Type: %-3s  Nvar: %3d  Nstat: %5d\n"
                   "------------........--------...--------...---------.....\n"
                   "No.  Variable                 Min     Max     Start   Tic     Ltic    Form\n"
                   ".+---.-----------------------+.------+.------+.------+.------+.------+-.+-+\n",
                   withoutControls(collection_.name).c_str(), withoutControls(collection_.type).c_str(),
                   static_cast<int>(variables_.size()), stationCount_);
        for (std::size_t i = 0; i < variables_.size(); ++i) {
            text += format("%2d   ", static_cast<int>(i) + 1);
            appendLeft(text, variableLabel(i), layout_.variableLabelWidth);
            text += "     0.0     0.0     0.0    1.00    1.00";
            text += format("%3d.%1d\n", variable(i).width, variable(i).decimals);
        }
        return text;
    }

    bool prepareDescription()
    {
        std::FILE* const file = description_.stream();
        return file != nullptr && put(file, descriptionText()) && description_.prepare();
    }

    // Should the second one fail against all odds, the first one goes back.
    bool placeBoth()
    {
        const bool replaces = common::fileExists(descriptionPath_);
        const std::optional<std::string> old = common::readFile(descriptionPath_);
        if ((replaces && !old) || !description_.commit()) return false;
        if (file_.commit()) return true;
        if (!replaces) {
            std::remove(descriptionPath_.c_str());
        } else {
            static_cast<void>(common::writeFile(descriptionPath_, *old));
        }
        return false;
    }

    const std::string descriptionPath_;
    common::RReplacementFile description_;
    bool descriptionFailed_ = false;
};

// The description of a 3.0 listing has the name that a collection's has, and must not replace one.
bool mayPlaceDescription(const std::string& path, common::RUser& user)
{
    const std::string description = descriptionPath(path);
    const auto refuse = [&](const char* why) {
        user.about(layout3.texts.caption, format("Could not write file %s!\n\n%s", description.c_str(), why));
        return false;
    };
    if (description == path) return refuse("The listing itself can't have this name.");
    if (!common::existsAtAll(description)) return true;
    const common::FilePtr file =
        common::fileExists(description) ? common::openFile(description, "rb") : nullptr;
    std::string start(descriptionStart.size(), '\0');
    const bool isOfListing = file && std::fread(start.data(), 1, start.size(), file.get()) == start.size() &&
                             start == descriptionStart;
    return isOfListing || refuse("It would replace a file that is not the description of a 3.0 listing.");
}

} // namespace

bool exportListing(ListingForm form, RCollection& collection, STATIONDATA& station, const std::string& path,
                   const std::vector<int>& variables, common::RUser& user)
{
    if (!acceptsSampleSelection(collection, user)) return false;
    if (form == ListingForm::version3 && !mayPlaceDescription(path, user)) return false;
    const std::vector<int> chosen = chosenVariables(collection, variables);
    const EXPORTTEXTS& texts = layoutOf(form).texts;
    const auto run = [&](RListingSink&& sink) {
        const EXPORTJOB job{collection, station, chosen, path, texts, user};
        if (exportStations(job, sink) != ExportEnd::complete) return false;
        if (const std::string remarks = remarksText(sink.remarks()); !remarks.empty())
            user.about(texts.caption, path + "\n\n" + remarks);
        return true;
    };
    return form == ListingForm::version3 ? run(RListing3Sink(collection, path, chosen))
                                         : run(RListing4Sink(collection, path, chosen));
}

} // namespace exporting
