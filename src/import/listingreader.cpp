#include "import/listingreader.h"

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <vector>

#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "import/columns.h"
#include "import/fieldscan.h"
#include "import/linereader.h"

namespace importing {
namespace {

using collection::STATIONDATA;
using collection::STATIONHDR;
using collection::VARINFO;
using common::format;
using common::MISSING_VALUE;

constexpr std::string_view caption = "NVQ Data Import";
constexpr int firstYear = 1900, lastYear = 2200;

struct FIELD {
    std::size_t column, width;
    const char* name; // in messages
};

// Where the fields of a station's header stand.
struct LAYOUT {
    FIELD cruise, station, type, month, day, year, longitude, latitude, bottomDepth, lastDepth, levels,
        variables;
    bool hasFlags;     // behind each value
    bool givesReasons; // why a header can't be read
};

constexpr LAYOUT layout3{{2, 10, "cruise label"},
                         {13, 10, "station label"},
                         {24, 1, "station type"},
                         {26, 2, "month"},
                         {29, 2, "day"},
                         {32, 4, "year"},
                         {37, 7, "longitude"},
                         {45, 7, "latitude"},
                         {53, 6, "bottom depth"},
                         {59, 6, "deepest depth"},
                         {65, 4, "nlvls"},
                         {70, 3, "ncols"},
                         false,
                         false};
constexpr LAYOUT layout4{{2, 20, "cruise label"},
                         {23, 20, "station label"},
                         {44, 1, "station type"},
                         {46, 2, "month"},
                         {49, 2, "day"},
                         {52, 4, "year"},
                         {57, 7, "longitude"},
                         {65, 7, "latitude"},
                         {73, 6, "bottom depth"},
                         {79, 5, "deepest depth"},
                         {84, 5, "nlvls"},
                         {90, 3, "ncols"},
                         true,
                         true};

struct LABELS {
    std::string cruise, station;
    [[nodiscard]] std::string forMessage(const char* between) const
    {
        return common::labelToUtf8(cruise) + between + common::labelToUtf8(station);
    }
};

// A station's header line as it stands there.
struct HEADERLINE {
    LABELS labels;
    std::string type;
    int month = 0, day = 0, year = 0, levels = 0, variables = 0;
    float longitude = 0, latitude = 0, bottomDepth = 0, lastDepth = 0;
};

// Takes a header line apart. Remembers the field that it stopped at.
class RHeaderScan {
public:
    RHeaderScan(const LAYOUT& layout, std::string_view line)
        : layout_(layout), line_(line), columns_(line, areCharacters(layout, line))
    {
    }

    [[nodiscard]] bool scan(HEADERLINE& header)
    {
        const LAYOUT& at = layout_;
        if (!line_.starts_with("# ")) return false;
        return takeLabel(at.cruise, header.labels.cruise) && takeLabel(at.station, header.labels.station) &&
               takeLabel(at.type, header.type) && take(at.month, header.month) && takeSlash(at.day) &&
               take(at.day, header.day) && takeSlash(at.year) && take(at.year, header.year) &&
               take(at.longitude, header.longitude) && take(at.latitude, header.latitude) &&
               take(at.bottomDepth, header.bottomDepth) && take(at.lastDepth, header.lastDepth) &&
               takeCount(at.levels, header.levels) && takeCount(at.variables, header.variables);
    }
    [[nodiscard]] std::string reason() const
    {
        if (stopped_ == nullptr) return "reason: stopped at character 1 (not a header line).";
        return format("reason: stopped at character %d (%s).", static_cast<int>(stopped_->column) + 1,
                      stopped_->name);
    }

private:
    static bool hasSlash(const RColumns& columns, const FIELD& behind)
    {
        return columns.field(behind.column - 1, 1) == "/";
    }
    // A file that an editor has turned into UTF-8 has its slashes at characters, not at bytes.
    static bool areCharacters(const LAYOUT& layout, std::string_view line)
    {
        const RColumns bytes(line, false);
        return !(hasSlash(bytes, layout.day) && hasSlash(bytes, layout.year)) && hasWideCharacters(line);
    }

    [[nodiscard]] bool stopAt(const FIELD& field)
    {
        stopped_ = &field;
        return false;
    }
    [[nodiscard]] bool takeSlash(const FIELD& behind) { return hasSlash(columns_, behind) || stopAt(behind); }
    [[nodiscard]] bool takeLabel(const FIELD& field, std::string& label)
    {
        const std::string_view bytes = columns_.field(field.column, field.width);
        if (bytes.empty()) return stopAt(field); // the line ends before it
        label = common::labelFromFile(common::trimLabel(bytes), common::isValidUtf8(bytes));
        return true;
    }
    [[nodiscard]] bool take(const FIELD& field, int& value)
    {
        const std::optional<int> read = common::parseInt(columns_.field(field.column, field.width));
        value = read.value_or(0);
        return read || stopAt(field);
    }
    [[nodiscard]] bool take(const FIELD& field, float& value)
    {
        std::string_view rest = common::trimBlanks(columns_.field(field.column, field.width));
        return (common::takeFloat(rest, value) && rest.empty()) || stopAt(field);
    }
    [[nodiscard]] bool takeCount(const FIELD& field, int& value)
    {
        return take(field, value) && (value >= 0 || stopAt(field));
    }

    const LAYOUT& layout_;
    const std::string_view line_;
    const RColumns columns_;
    const FIELD* stopped_ = nullptr;
};

// --- numbers that stand one after the other

const char* skipBlanks(const char* p, const char* end)
{
    while (p != end && (*p == ' ' || *p == '\t' || *p == '\v' || *p == '\f')) ++p;
    return p;
}

// A number may be followed by the sign of the next one.
bool endsNumber(const char* p, const char* end)
{
    return p == end || *p == ' ' || *p == '\t' || *p == '\v' || *p == '\f' || *p == '-' || *p == '+';
}

bool takeValue(const char*& p, const char* end, float& value)
{
    p = skipBlanks(p, end);
    const char* const start = p;
    // A comma is no point here.
    return scanFloat(p, end, ' ', value) && endsNumber(p, end) && std::find(start, p, ',') == p;
}

bool takeInteger(const char*& p, const char* end, int& value)
{
    p = skipBlanks(p, end);
    return scanInt(p, end, ' ', value) && endsNumber(p, end);
}

constexpr int largestFlag = 255;

// One level of all columns.
struct ROW {
    std::array<float, common::maxVariables> values;
    std::array<int, common::maxVariables> flags;

    bool hasMore = false; // behind the columns

    // Returns how many columns could be read of so many.
    std::size_t read(std::string_view line, std::size_t columns, bool withFlags)
    {
        hasMore = false;
        const char* p = line.data();
        const char* const end = p + line.size();
        for (std::size_t i = 0; i < columns; ++i) {
            if (!takeValue(p, end, values[i])) return i;
            if (!withFlags) continue;
            if (!takeInteger(p, end, flags[i]) || flags[i] < 0 || flags[i] > largestFlag) return i;
        }
        hasMore = skipBlanks(p, end) != end;
        return columns;
    }
};

// The samples of one target in the station that is being read.
struct BLOCK {
    std::size_t target;
    std::optional<std::size_t> column; // of the file's line; none: all are missing
    int count = 0;                     // of values
};

} // namespace

struct RListingReader::State {
    State(ListingForm f, const LISTINGHEADER& h, std::span<const VARINFO> t, KEYVARIABLES k, common::RUser& u)
        : layout(f == ListingForm::version3 ? layout3 : layout4), header(h), targets(t), keys(k), user(u)
    {
    }

    // --- lines
    bool takeLine();
    bool skipHeader();
    bool findStation();

    // --- a station's head
    std::int64_t readHead();
    bool isValid() const;
    bool keepsFirst(const std::string& what) const;
    bool agreesToLimits();
    bool readNumbers();
    void noteUnknown(int number);
    void noteRest();
    int usedTargets() const;

    // --- its levels
    void makeBlocks();
    bool readLevels(STATIONDATA& station);
    void place(STATIONDATA& station, std::size_t level);
    void countRefused();

    // --- the station
    std::int64_t readStation(STATIONDATA& station);
    std::int64_t readNextStation(STATIONDATA& station);
    std::int64_t refuse(std::int64_t code);
    void passOver();
    void setHeader(STATIONHDR& to);
    std::int64_t finish(STATIONDATA& station);
    void dropEmptyBlocks(STATIONDATA& station);

    const LAYOUT& layout;
    const LISTINGHEADER header;
    const std::span<const VARINFO> targets;
    const KEYVARIABLES keys;
    common::RUser& user;

    std::string path;
    RLineReader lines;
    std::string_view line;
    std::string message; // instead of the line, for messages
    bool begun = false, lineIsMissing = false;
    std::int64_t counted = 0; // bytes that were returned
    READACCOUNT account;
    bool toldUnknown = false, toldEmpty = false, toldRest = false;

    // the station in hand
    HEADERLINE head;
    std::int64_t linesBefore = 0;                     // lines in front of it
    std::size_t kept = 0;                             // levels
    std::size_t columns = 0;                          // that are read of each line
    std::vector<std::optional<std::size_t>> columnOf; // by the header's variables
    std::vector<BLOCK> blocks;
    ROW row;
    std::int64_t valuesRead = 0, valuesKept = 0;
};

// --- lines

bool RListingReader::State::takeLine()
{
    const RLineReader::Result result = lines.next(line);
    lineIsMissing = result != RLineReader::Result::line;
    if (lineIsMissing) line = {};
    if (!lineIsMissing) ++account.lines;
    return !lineIsMissing;
}

bool RListingReader::State::skipHeader()
{
    begun = true;
    while (lines.lineNumber() < header.lineCount) {
        if (!takeLine()) return false;
        ++account.headerLines;
    }
    return true;
}

// Takes the header line of the next station. False at the end of the file.
bool RListingReader::State::findStation()
{
    for (;;) {
        linesBefore = account.lines;
        const RLineReader::Result result = lines.next(line);
        lineIsMissing = result != RLineReader::Result::line;
        if (result == RLineReader::Result::end) {
            line = {};
            lineIsMissing = false;
            return false;
        }
        if (lineIsMissing) {
            line = {};
            return true;
        }
        ++account.lines;
        if (!common::trimBlanks(line).empty()) return true;
        ++account.blankLines;
    }
}

// --- a station's head

// The date and the position; what is wrong with them is told.
bool RListingReader::State::isValid() const
{
    const std::string labels = head.labels.forMessage(" ");
    if (head.day < 1 || head.day > 31 || head.month < 1 || head.month > 12 || head.year < firstYear ||
        head.year > lastYear) {
        user.about(caption, format("Invalid Date (mm/dd/yyyy) %d/%d/%d for Station\n\n%s\n\nImport will be "
                                   "aborted...",
                                   head.month, head.day, head.year, labels.c_str()));
        return false;
    }
    const float east = head.longitude < 0 ? head.longitude + 360 : head.longitude;
    if (east < 0 || east > 360 || head.latitude < -90 || head.latitude > 90) {
        user.about(caption,
                   format("Invalid Position for Station\n\n%s\n\nImport will be aborted...", labels.c_str()));
        return false;
    }
    return true;
}

bool RListingReader::State::keepsFirst(const std::string& what) const
{
    constexpr auto buttons = std::to_array<std::string_view>({"&OK", "&Cancel"});
    return user.choose(caption, what, buttons, 0, 1) == 0;
}

// Variable 1 has a block in every station.
int RListingReader::State::usedTargets() const
{
    int used = 0;
    for (std::size_t v = 1; v < targets.size(); ++v) {
        if (v == 1 || targets[v].assocSource > 0) ++used;
    }
    return used;
}

// Asks about what a station can't hold. False if the user cancels.
bool RListingReader::State::agreesToLimits()
{
    const std::string labels = head.labels.forMessage(" -- ");
    int levels = head.levels;
    if (levels > mostLevels) {
        if (!keepsFirst(format("More than %d levels! Station: %s clipped.", mostLevels, labels.c_str())))
            return false;
        levels = mostLevels;
    }
    if (head.variables > common::maxVariables &&
        !keepsFirst(
            format("More than %d variables! Station: %s clipped.", common::maxVariables, labels.c_str()))) {
        return false;
    }
    const int room = common::maxCells / usedTargets() - 1;
    if (room < levels) {
        if (!keepsFirst(format("Station: %s truncated to first %d of %d levels..", labels.c_str(), room,
                               head.levels))) {
            return false;
        }
        levels = room;
    }
    kept = static_cast<std::size_t>(levels);
    columns = static_cast<std::size_t>(std::min(head.variables, common::maxVariables));
    return true;
}

void RListingReader::State::noteUnknown(int number)
{
    if (!toldUnknown)
        user.note(format("%s:%d: variable %d is not described; its values are not read", path.c_str(),
                         lines.lineNumber(), number));
    toldUnknown = true;
}

// The line of variable numbers: which column of the levels is which variable. False if it can't be read.
bool RListingReader::State::readNumbers()
{
    columnOf.assign(header.variables.size(), std::nullopt);
    if (!takeLine()) return false;
    const char* p = line.data();
    const char* const end = p + line.size();
    for (std::size_t i = 0; i < columns; ++i) {
        int number = 0;
        if (!takeInteger(p, end, number)) return false;
        const auto variable = std::find_if(header.variables.begin() + 1, header.variables.end(),
                                           [&](const VARINFO& v) { return v.column == number; });
        if (variable == header.variables.end()) {
            noteUnknown(number);
            continue;
        }
        std::optional<std::size_t>& column =
            columnOf[static_cast<std::size_t>(variable - header.variables.begin())];
        if (column) return false; // twice the same
        column = i;
    }
    return true;
}

// Reads what stands in front of the levels. A ReadCode, or 1 if all is well.
std::int64_t RListingReader::State::readHead()
{
    head = {};
    RHeaderScan scan(layout, line);
    if (!scan.scan(head)) {
        if (layout.givesReasons) message = scan.reason() + "\n\n" + std::string(line);
        return readBadHeader;
    }
    if (!isValid()) return readBadHeader;
    if (!agreesToLimits()) return readCancelled;
    return readNumbers() ? 1 : readBadHeader;
}

// --- its levels

void RListingReader::State::makeBlocks()
{
    blocks.clear();
    for (std::size_t v = 1; v < targets.size(); ++v) {
        const int source = targets[v].assocSource;
        const bool isFed = source > 0 && static_cast<std::size_t>(source) < columnOf.size();
        const std::optional<std::size_t> column =
            isFed ? columnOf[static_cast<std::size_t>(source)] : std::nullopt;
        if (v == 1 || column) blocks.push_back({v, column, 0});
    }
    valuesRead = valuesKept = 0;
}

void RListingReader::State::place(STATIONDATA& station, std::size_t level)
{
    std::size_t cell = level;
    for (BLOCK& block : blocks) {
        const float value = block.column ? row.values[*block.column] : MISSING_VALUE;
        const bool isThere = value != MISSING_VALUE;
        station.values[cell] = value;
        station.flags[cell] = isThere && layout.hasFlags ? static_cast<std::uint8_t>(row.flags[*block.column])
                                                         : collection::flagUnknown;
        block.count += isThere ? 1 : 0;
        valuesRead += isThere ? 1 : 0;
        valuesKept += isThere ? 1 : 0;
        cell += kept;
    }
}

void RListingReader::State::noteRest()
{
    if (!toldRest)
        user.note(
            format("%s:%d: the line holds more than the station's %d variables; what is behind them is not "
                   "read, here and in all such lines",
                   path.c_str(), lines.lineNumber(), static_cast<int>(columns)));
    toldRest = true;
}

// The values of a line that is beyond the limits.
void RListingReader::State::countRefused()
{
    const std::size_t read = row.read(line, columns, layout.hasFlags);
    for (const BLOCK& block : blocks)
        valuesRead += block.column && *block.column < read && row.values[*block.column] != MISSING_VALUE;
}

bool RListingReader::State::readLevels(STATIONDATA& station)
{
    const auto levels = static_cast<std::size_t>(head.levels);
    for (std::size_t level = 0; level < levels; ++level) {
        if (!takeLine()) return false;
        if (level >= kept) {
            countRefused();
            continue;
        }
        if (row.read(line, columns, layout.hasFlags) < columns) return false;
        if (row.hasMore && static_cast<std::size_t>(head.variables) == columns) noteRest();
        place(station, level);
    }
    return true;
}

// --- the station

// The station in hand is not delivered.
std::int64_t RListingReader::State::refuse(std::int64_t code)
{
    account.refusedLines += account.lines - linesBefore;
    account.valuesRead += valuesRead;
    account.valuesRefused += valuesRead;
    valuesRead = valuesKept = 0;
    ++account.stationsRefused;
    return code;
}

void RListingReader::State::passOver()
{
    if (!toldEmpty)
        user.note(format("%s:%d: a station without levels is passed over, as are all of them: %s",
                         path.c_str(), lines.lineNumber(), head.labels.forMessage("  - ").c_str()));
    toldEmpty = true;
    refuse(readEnd);
}

void RListingReader::State::setHeader(STATIONHDR& to)
{
    common::copyText(to.cruise, head.labels.cruise);
    common::copyText(to.station, head.labels.station);
    common::copyText(to.type, head.type.empty() ? "*" : head.type);
    to.month = static_cast<std::int16_t>(head.month);
    to.day = static_cast<std::int16_t>(head.day);
    to.year = static_cast<std::int16_t>(head.year);
    to.longitude = head.longitude < 0 ? head.longitude + 360 : head.longitude;
    if (to.longitude >= 360) to.longitude = 0;
    to.latitude = head.latitude;
    to.bottomDepth = head.bottomDepth;
    to.lastSampleDepth = head.lastDepth;
    const bool isCut = common::fieldText(to.cruise) != head.labels.cruise ||
                       common::fieldText(to.station) != head.labels.station;
    if (isCut && ++account.labelsCut == 1) account.firstCut = head.labels.forMessage("  - ");
}

// Only variables with values have a block.
void RListingReader::State::dropEmptyBlocks(STATIONDATA& station)
{
    std::size_t from = 0, to = 0;
    for (const BLOCK& block : blocks) {
        const bool isFirst = block.target == 1;
        if (isFirst || block.count > 0) {
            std::copy_n(station.values.get() + from, kept, station.values.get() + to);
            std::copy_n(station.flags.get() + from, kept, station.flags.get() + to);
            station.offset[block.target] = static_cast<std::int32_t>(to);
            station.levelCount[block.target] =
                static_cast<std::int16_t>(isFirst ? static_cast<int>(kept) : block.count);
            to += kept;
        }
        from += kept;
    }
    station.header.valueCount = static_cast<std::int32_t>(to);
}

// Delivers the station in hand.
std::int64_t RListingReader::State::finish(STATIONDATA& station)
{
    setHeader(station.header);
    dropEmptyBlocks(station);
    applyConversions(station, header.variables, targets, keys);
    account.headerLines += 2;
    account.dataLines += static_cast<std::int64_t>(kept);
    account.refusedLines += head.levels - static_cast<std::int64_t>(kept);
    account.valuesRead += valuesRead;
    account.valuesDelivered += valuesKept;
    account.valuesRefused += valuesRead - valuesKept;
    const std::int64_t consumed = lines.bytesRead() - counted;
    counted += consumed;
    return consumed;
}

// A number of bytes, a ReadCode, or nothing if the station was passed over.
std::int64_t RListingReader::State::readNextStation(STATIONDATA& station)
{
    valuesRead = valuesKept = 0;
    if (!findStation()) return readEnd;
    const std::int64_t code = readHead();
    if (code <= 0) return refuse(code);
    if (head.levels == 0) {
        passOver();
        return 1;
    }
    station.clear();
    makeBlocks();
    return readLevels(station) ? finish(station) : refuse(readBadData);
}

std::int64_t RListingReader::State::readStation(STATIONDATA& station)
{
    message.clear();
    if (targets.size() < 2 || header.variables.empty()) return readEnd;
    if (!begun && !skipHeader()) return readBadHeader;
    std::int64_t code = 0;
    do {
        head = {};
        code = readNextStation(station);
    } while (code > 0 && head.levels == 0);
    return code;
}

// --- the class

RListingReader::RListingReader(ListingForm form, const LISTINGHEADER& header,
                               std::span<const VARINFO> targets, KEYVARIABLES keys, common::RUser& user)
    : state_(std::make_unique<State>(form, header, targets, keys, user))
{
}

RListingReader::~RListingReader() = default;

bool RListingReader::open(const std::string& path)
{
    state_->path = path;
    return state_->lines.open(path);
}

std::int64_t RListingReader::readStation(STATIONDATA& station)
{
    try {
        return state_->readStation(station);
    } catch (const std::bad_alloc&) {
        return readNoMemory;
    }
}

int RListingReader::lineNumber() const
{
    return state_->lines.lineNumber() + (state_->lineIsMissing ? 1 : 0);
}

std::string_view RListingReader::currentLine() const
{
    return state_->message.empty() ? state_->line : std::string_view(state_->message);
}

const READACCOUNT& RListingReader::account() const
{
    return state_->account;
}

} // namespace importing
