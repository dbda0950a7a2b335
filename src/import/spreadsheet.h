#pragma once

// The spreadsheet: one sample a line, the station's metadata repeated in every line. This unit describes such
// a file and finds out its layout from its first lines.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "collection/varinfo.h"
#include "common/user.h"

namespace importing {

inline constexpr int maxColumns = 107; // one more is read if it holds the flags of the last of them
inline constexpr int metaCount = 8;

// What a station's header takes from a line, in the order of the standard layout.
enum Meta : int {
    metaCruise,
    metaStation,
    metaType,
    metaDate,
    metaTime,
    metaLongitude,
    metaLatitude,
    metaBottomDepth
};
inline constexpr std::array<std::string_view, metaCount> metaLabels = {
    "Cruise", "Station", "Type", "mon/day/yr", "hh:mm", "Lon (°E)", "Lat (°N)", "Bot. Depth [m]"};

struct SEPARATORROW {
    char character;
    std::string_view name;
};
inline constexpr std::array<SEPARATORROW, 4> separators = {
    {{'\t', "TAB"}, {';', ";"}, {' ', "SPACE"}, {'/', "/"}}};

struct SPREADSHEETDESC {
    char sepChars;
    int sepIndex;
    int headerLine;                             // number of the column labels' line, from 1
    int firstDataLine;                          // number of the first data line
    std::array<int, maxColumns> role;           // -1 data or unknown, else a Meta
    std::array<int, metaCount> metaColumn;      // column of each metavariable from 0, -1 none
    int nMeta;                                  // metavariables that have a column
    std::array<int, metaCount> convId;          // row of timeconversions.h, -1 none
    std::array<float, metaCount> convA, convB;  // constants of the linear conversion
    std::array<double, metaCount> referenceDay; // origin of a "since" conversion, a day number
    float missingValue;                         // stands for no value in the file
    char defCruise[21], defStation[21], defType[2];
    float defLon, defLat, defBotDepth;
    std::int16_t defDay, defMonth, defYear, defHour, defMinute;
};

// What is known about a file when its header has been read. Index 0 of `sources` is no variable.
struct SPREADSHEETHEADER {
    SPREADSHEETDESC desc{};
    std::vector<std::string> labels; // of the columns, as UTF-8
    std::vector<collection::VARINFO> sources;
    bool standardLayout = false;
    bool fileIsUtf8 = true;

    [[nodiscard]] int sourceCount() const
    {
        return sources.empty() ? 0 : static_cast<int>(sources.size()) - 1;
    }
};

// Settles what the file itself does not tell; false if the user cancels the import.
class RSpreadsheetSettler {
public:
    virtual ~RSpreadsheetSettler() = default;
    // False if all answers were given beforehand: then false is a failure, which was told, and no cancel.
    [[nodiscard]] virtual bool asks() const { return true; }
    // What is known beforehand, put into the description of a file that was not looked at yet.
    virtual void prepare(const std::string& /*path*/, SPREADSHEETDESC& /*desc*/) {}
    // Separator, header line, first data line and missing value of a file in no standard layout. `firstLines`
    // are the first 50 lines, or more if the header line lies behind them, as UTF-8.
    [[nodiscard]] virtual bool settleProperties(SPREADSHEETDESC& desc,
                                                std::span<const std::string> firstLines) = 0;
    // The columns of the metavariables as they were found, in any file. `labels` are the column labels, as
    // UTF-8.
    [[nodiscard]] virtual bool arrangeColumns(SPREADSHEETDESC& /*desc*/,
                                              std::span<const std::string> /*labels*/)
    {
        return true;
    }
    // Columns, conversions and defaults of the metavariables, where some have no column.
    [[nodiscard]] virtual bool settleHeaderVariables(SPREADSHEETDESC& desc,
                                                     std::span<const std::string> labels) = 0;
};

enum class HeaderResult : int {
    ok = 0,
    cancelled = 1,
    unreadable = 2,
    empty = 3,
    badLine = 4,
    unsettled = 5
};

// Reads the layout of a file. With `settler` null nothing is settled and nobody is asked: the other
// separators are tried, columns that a standard layout lacks take their defaults, both with a note, and a
// file in no standard layout is refused with one message that tells what would have to be given. Every
// failure but a cancel has been told.
[[nodiscard]] HeaderResult readSpreadsheetHeader(const std::string& path, RSpreadsheetSettler* settler,
                                                 common::RUser& user, SPREADSHEETHEADER& header);

// --- the steps of it

void setSeparator(SPREADSHEETDESC& desc, int index); // a place in `separators`

// Everything as it is before a file was looked at; defaults for its stations: the cruise label from the
// file's name, the date of today.
[[nodiscard]] SPREADSHEETDESC defaultDescription(std::string_view path);

// The cruise label of a file that holds none: from its name, at most 20 bytes; "unknown Cruise" without a
// name.
[[nodiscard]] std::string cruiseLabelOf(std::string_view path);

// The labels of a header line as UTF-8, without quotes and trimmed by the label rule; at most 107.
[[nodiscard]] std::vector<std::string> splitLabels(std::string_view line, char separator, bool fileIsUtf8);

// True if at least 7 of the 8 labels stand in their order among at least 8 columns, case ignored.
[[nodiscard]] bool isStandardLayout(std::span<const std::string> labels);

// Finds the columns of the metavariables and sets metaColumn, role, nMeta and, for a date that is a count
// since some day, its conversion. Only outside the standard layout looser tests apply. Returns the Meta
// values without a column that a user has to settle: the time only if `timeWanted` outside the standard
// layout, the date not in the standard layout.
std::vector<int> findMetaColumns(SPREADSHEETDESC& desc, std::span<const std::string> labels, bool standard,
                                 bool timeWanted);

// Gives a metavariable a column, which loses the role that it had.
void assignColumn(SPREADSHEETDESC& desc, int meta, int column);

// The names of metavariables, in quotes and divided by commas.
[[nodiscard]] std::string namesOf(std::span<const int> metas);

// The source variables of the columns without a role, at most 50. Index 0 of the result is no variable.
[[nodiscard]] std::vector<collection::VARINFO> sourcesOf(const SPREADSHEETDESC& desc,
                                                         std::span<const std::string> labels);

} // namespace importing
