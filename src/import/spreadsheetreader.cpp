#include "import/spreadsheetreader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <vector>

#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "import/fieldscan.h"
#include "import/filetail.h"
#include "import/headercheck.h"
#include "import/linereader.h"
#include "import/metafields.h"
#include "import/quotedline.h"

namespace importing {
namespace {

using collection::STATIONDATA;
using collection::STATIONHDR;
using collection::VARINFO;
using common::format;
using common::MISSING_VALUE;

constexpr std::string_view caption = "NVQ Data Import";
constexpr std::size_t growth = 500;             // levels by which the sample buffers grow
constexpr int mostCells = common::maxCells - 1; // of a station that is read
constexpr int mostBottleLevels = 250;

// One field of a line that is wanted.
struct STEP {
    int column;
    int target;  // variable of the collection
    bool isFlag; // the quality flag of the target, else its value
};

// The samples of one variable of the station being read.
struct SAMPLES {
    std::vector<float> values; // as many as there is room for; unused ones are missing
    std::vector<std::uint8_t> flags;
    int count = 0; // non-missing values
};

// What is to be read, and what stands in every line.
struct PLAN {
    std::vector<STEP> steps; // by column, the value in front of its flag
    std::vector<std::pair<int, float>> defaults;
    int firstColumn = 0; // of the steps
};

PLAN planOf(std::span<const VARINFO> sources, std::span<const VARINFO> targets)
{
    PLAN plan;
    for (std::size_t v = 1; v < targets.size(); ++v) {
        const int target = static_cast<int>(v);
        const int number = targets[v].assocSource;
        if (number == -1 && v < sources.size()) plan.defaults.emplace_back(target, sources[v].defaultValue);
        if (number < 1 || number >= static_cast<int>(sources.size())) continue;
        const VARINFO& source = sources[static_cast<std::size_t>(number)];
        plan.steps.push_back({source.column, target, false});
        if (source.qfColumn > 0) plan.steps.push_back({source.qfColumn, target, true});
    }
    std::stable_sort(plan.steps.begin(), plan.steps.end(),
                     [](const STEP& a, const STEP& b) { return a.column < b.column; });
    if (!plan.steps.empty()) plan.firstColumn = plan.steps.front().column;
    return plan;
}

// Texts that stand for no value, and are no fault.
bool meansNoValue(std::string_view text)
{
    std::string word = common::toLower(text);
    if (word.starts_with('-') || word.starts_with('+')) word.erase(0, 1);
    return word.starts_with("nan") || word == "inf" || word == "infinity";
}

std::int64_t valuesIn(const STATIONDATA& station)
{
    const float* const values = station.values.get();
    return station.header.valueCount - std::count(values, values + station.header.valueCount, MISSING_VALUE);
}

} // namespace

struct RSpreadsheetReader::State {
    State(const SPREADSHEETHEADER& h, std::span<const VARINFO> t, KEYVARIABLES k, common::RUser& u)
        : header(h), desc(header.desc), targets(t), keys(k), user(u), plan(planOf(header.sources, targets)),
          separator(desc.sepChars), samples(targets.size()),
          lastMeta(*std::max_element(desc.metaColumn.begin(), desc.metaColumn.end())),
          fileIsUtf8(header.fileIsUtf8)
    {
        // Lines of one station begin with the same bytes: then nothing of their metadata is read again.
        comparesBytes = desc.sepChars != ' ' && lastMeta >= 0 && plan.firstColumn > lastMeta;
    }

    // --- lines
    bool takeLine();
    bool parseLine();
    bool skipToData();
    bool restIsBlank();
    bool countRest();
    void noteRest();
    [[nodiscard]] bool sameBytes() const
    {
        return metaLength > 0 && separator == metaSeparator && line.size() >= metaLength &&
               std::memcmp(line.data(), metaBytes.data(), metaLength) == 0;
    }

    // --- account
    void count(std::int64_t READACCOUNT::*kind, std::int64_t number)
    {
        account.lines += number;
        account.*kind += number;
    }
    [[nodiscard]] std::int64_t valuesRead() const;
    void countDelivered(const STATIONDATA& station);
    void countRefused();
    void noteUnreadable(const STEP& step, const char* p, const char* end);
    void notePartly(const STEP& step, const char* begin, const char* stop, const char* end);
    [[nodiscard]] std::string placeOf(const STEP& step, std::string_view text) const;
    [[nodiscard]] std::string shortened(std::string_view text) const
    {
        constexpr std::size_t shown = 60;
        return utf8(common::cutAtCharacter(text, shown));
    }
    void noteCutLabel();
    void noteCutLines();
    [[nodiscard]] std::string utf8(std::string_view text) const
    {
        return common::labelToUtf8(common::labelFromFile(text, fileIsUtf8));
    }

    // --- samples
    void growTo(std::size_t levels);
    void clearSamples();
    void storeLine();
    void storeFields(const char* p, int column);
    void storeBlankSeparated();
    void storeField(const STEP& step, char divider, const char*& p, const char* end);

    // --- stations
    std::int64_t readStation(STATIONDATA& station);
    bool readLevels();
    void moveSamples(STATIONDATA& station);
    void tooManyLevels();
    void refuseHeader(const std::string& fault);

    static constexpr std::int64_t notLooked = -2;
    const SPREADSHEETHEADER header;
    const SPREADSHEETDESC& desc;
    const std::span<const VARINFO> targets;
    const KEYVARIABLES keys;
    common::RUser& user;
    const PLAN plan;

    std::string path;
    RLineReader lines;
    std::string_view line; // the line in hand; empty if there is none
    std::string unquoted;  // what `line` refers to where a field was quoted
    char separator;        // of the line in hand
    bool hasLine = false;  // a line is in hand that was parsed and belongs to the next station
    ReadCode failure = readEnd;
    std::int64_t lineStart = 0; // bytes of the file in front of the line in hand
    std::int64_t counted = 0;   // bytes that were returned

    STATIONHDR lineHeader{}; // of the line in hand
    STATIONHDR stationHeader{};
    std::string metaBytes;      // what the line in hand, or one before it of the same station, begins with
    std::size_t metaLength = 0; // 0: not to be compared
    char metaSeparator = 0;     // of metaBytes
    std::string lineLabels;     // whole, of the line in hand; empty where none is cut
    std::string stationLabels;  // of the first line of the station
    bool labelCut = false;      // a label of the line in hand may be longer than its field
    std::int64_t lastFilled = notLooked; // where the file's last byte is that is no blank
    bool comparesBytes = false;

    std::vector<SAMPLES> samples; // by target; index 0 is not used
    std::size_t room = 0;         // levels in the buffers
    std::int64_t levels = 0;      // of the station being read, also beyond the limit
    std::size_t slot = 0;         // of the line in hand in the buffers
    const int lastMeta;
    bool fileIsUtf8;
    bool begun = false, endedEarly = false;
    int stationsRead = 0;
    READACCOUNT account;
};

// Takes a line into hand. False at the end of the file, at a line that is too short, and after an error.
bool RSpreadsheetReader::State::takeLine()
{
    lineStart = lines.bytesRead();
    hasLine = false;
    line = {};
    separator = desc.sepChars;
    const RLineReader::Result result = lines.next(line);
    if (result == RLineReader::Result::line) {
        const bool mayBeQuoted = lines.mayHoldQuotes() && line.find('"') != std::string_view::npos;
        if (mayBeQuoted && unquoteLine(line, desc.sepChars, unquoted)) {
            line = unquoted;
            separator = fieldMark;
        }
        return true;
    }
    noteCutLines();
    if (result != RLineReader::Result::end) failure = readBadData;
    if (result == RLineReader::Result::tooLong) count(&READACCOUNT::refusedLines, 1);
    return false;
}

// Reads the metadata of the line in hand. False if the line has too few fields, or nothing but blank lines is
// left, which both end the file.
bool RSpreadsheetReader::State::parseLine()
{
    const METASPLIT split = splitMeta(desc, line, separator);
    if (split.fields.count < std::max(1, std::min(desc.nMeta, lastMeta + 1))) {
        noteRest();
        return false;
    }
    const auto& text = split.fields.text;
    labelCut = text[metaCruise].size() > common::labelLength ||
               text[metaStation].size() > common::labelLength || text[metaType].size() > 1;
    lineHeader = headerOf(desc, split.fields, stationsRead + 1, fileIsUtf8);
    const bool cuts = labelCut && !firstCutLabel(split.fields, fileIsUtf8).empty();
    lineLabels = cuts ? wholeLabels(split.fields) : std::string();
    metaLength = comparesBytes ? split.length : 0;
    metaBytes.assign(line.substr(0, metaLength));
    metaSeparator = separator;
    return true;
}

// True if the line in hand and all that follow hold nothing but separators and blanks. They are counted then.
bool RSpreadsheetReader::State::restIsBlank()
{
    const auto isBlank = [&](char c) {
        return static_cast<unsigned char>(c) <= 32 || c == 127 || c == separator;
    };
    if (!std::all_of(line.begin(), line.end(), isBlank)) return false;
    if (lastFilled == notLooked) lastFilled = lastFilledByte(path, desc.sepChars);
    if (lineStart <= lastFilled) return false;
    static_cast<void>(countRest());
    return true;
}

// Counts the line in hand and all that follow as refused or blank, and reads them for nothing else. True if
// any of them was not blank.
bool RSpreadsheetReader::State::countRest()
{
    bool any = false;
    RLineReader::Result result = RLineReader::Result::line;
    while (result == RLineReader::Result::line) {
        const bool blank = std::all_of(line.begin(), line.end(), [&](char c) {
            return static_cast<unsigned char>(c) <= 32 || c == 127 || c == desc.sepChars;
        });
        count(blank ? &READACCOUNT::blankLines : &READACCOUNT::refusedLines, 1);
        any = any || !blank;
        result = lines.next(line);
    }
    if (result == RLineReader::Result::tooLong) count(&READACCOUNT::refusedLines, 1);
    noteCutLines();
    line = {};
    return any;
}

// The line in hand ended the reading: says so unless nothing but blank lines follows.
void RSpreadsheetReader::State::noteRest()
{
    const int number = lines.lineNumber();
    if (!countRest()) return;
    endedEarly = true;
    user.note(format("%s:%d: the line has fewer than %d fields; it and what follows is not read",
                     path.c_str(), number, std::max(1, desc.nMeta)));
}

bool RSpreadsheetReader::State::skipToData()
{
    begun = true;
    while (lines.lineNumber() < desc.firstDataLine - 1) {
        if (!takeLine()) return false;
        count(&READACCOUNT::headerLines, 1);
    }
    return takeLine() && !restIsBlank() && parseLine();
}

std::int64_t RSpreadsheetReader::State::valuesRead() const
{
    std::int64_t sum = 0;
    for (std::size_t v = 1; v < samples.size(); ++v) sum += samples[v].count;
    return sum;
}

void RSpreadsheetReader::State::countDelivered(const STATIONDATA& station)
{
    const std::int64_t read = valuesRead(), delivered = valuesIn(station);
    count(&READACCOUNT::dataLines, levels);
    account.valuesRead += read;
    account.valuesDelivered += delivered;
    account.valuesRefused += read - delivered;
    clearSamples();
}

// The station being read, which is not delivered.
void RSpreadsheetReader::State::countRefused()
{
    const std::int64_t read = valuesRead();
    count(&READACCOUNT::refusedLines, levels);
    account.valuesRead += read;
    account.valuesRefused += read;
    ++account.stationsRefused;
    clearSamples();
}

void RSpreadsheetReader::State::noteUnreadable(const STEP& step, const char* p, const char* end)
{
    const std::string_view text =
        common::trimBlanks(std::string_view(p, static_cast<std::size_t>(std::find(p, end, separator) - p)));
    if (text.empty() || meansNoValue(text)) return;
    if (++account.unreadable == 1) account.firstUnreadable = placeOf(step, text);
}

// The line in hand, the column and the text of one of its fields.
std::string RSpreadsheetReader::State::placeOf(const STEP& step, std::string_view text) const
{
    const auto column = static_cast<std::size_t>(step.column);
    const std::string label = column < header.labels.size() ? header.labels[column] : std::string();
    return format("line %d, column \"%s\": \"%s\"", lines.lineNumber(), label.c_str(),
                  shortened(text).c_str());
}

// A number was read that ends in front of `stop`: text behind it in the field was not.
void RSpreadsheetReader::State::notePartly(const STEP& step, const char* begin, const char* stop,
                                           const char* end)
{
    const char* const fieldEnd = std::find(stop, end, separator);
    const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= 32 || c == 127; };
    if (std::all_of(stop, fieldEnd, isBlank)) return;
    if (++account.partly > 1) return;
    const auto between = [](const char* from, const char* to) {
        return common::trimBlanks(std::string_view(from, static_cast<std::size_t>(to - from)));
    };
    account.firstPartly =
        placeOf(step, between(begin, fieldEnd)) + ", read up to \"" + shortened(between(begin, stop)) + "\"";
}

// Notes a label of the line in hand, which begins a station, that does not fit its field.
void RSpreadsheetReader::State::noteCutLabel()
{
    if (!labelCut) return;
    const std::string label = firstCutLabel(splitMeta(desc, line, separator).fields, fileIsUtf8);
    if (label.empty()) return;
    if (++account.labelsCut == 1) account.firstCut = label;
}

// Lines of which only the front was read; known when the file was read to its end.
void RSpreadsheetReader::State::noteCutLines()
{
    account.linesCut = lines.linesCut();
    account.firstCutLine = lines.firstCut();
}

void RSpreadsheetReader::State::growTo(std::size_t wanted)
{
    if (wanted <= room) return;
    const std::size_t size = std::max(wanted, room + std::max(growth, room));
    for (std::size_t v = 1; v < samples.size(); ++v) {
        samples[v].values.resize(size, MISSING_VALUE);
        samples[v].flags.resize(size, collection::flagUnknown);
    }
    room = size;
}

void RSpreadsheetReader::State::clearSamples()
{
    const auto used = static_cast<std::ptrdiff_t>(std::min<std::int64_t>(levels, common::maxLevels));
    for (std::size_t v = 1; v < samples.size(); ++v) {
        std::fill(samples[v].values.begin(), samples[v].values.begin() + used, MISSING_VALUE);
        std::fill(samples[v].flags.begin(), samples[v].flags.begin() + used, collection::flagUnknown);
        samples[v].count = 0;
    }
    levels = 0;
}

inline void RSpreadsheetReader::State::storeField(const STEP& step, char divider, const char*& p,
                                                  const char* end)
{
    SAMPLES& sample = samples[static_cast<std::size_t>(step.target)];
    const std::size_t level = slot;
    if (step.isFlag) {
        if (sample.values[level] == MISSING_VALUE) return;
        int flag = p != end ? *p - '0' : -1; // one digit is what nearly all flags are
        const bool oneDigit = flag >= 0 && flag <= 9 && (p + 1 == end || p[1] == divider);
        if (oneDigit || scanInt(p, end, divider, flag))
            sample.flags[level] = static_cast<std::uint8_t>(flag & 0xFF);
        return;
    }
    if (p == end || *p == divider) return;
    const char* const begin = p;
    float value = 0;
    if (!scanFloat(p, end, divider, value)) return noteUnreadable(step, p, end);
    if (p != end && *p != divider) notePartly(step, begin, p, end);
    if (value == desc.missingValue || value == MISSING_VALUE) return;
    sample.values[level] = value;
    ++sample.count;
}

// Stores the wanted fields of a line from `p` on, where `column` begins.
void RSpreadsheetReader::State::storeFields(const char* p, int column)
{
    const char* const end = line.data() + line.size();
    const char divider = separator;
    const char* field = p;
    for (const STEP& step : plan.steps) {
        while (column < step.column) {
            while (p != end && *p != divider) ++p;
            if (p == end) return;
            field = ++p;
            ++column;
        }
        p = field; // two targets may share a column
        storeField(step, divider, p, end);
    }
}

// The same where runs of blanks divide the fields.
void RSpreadsheetReader::State::storeBlankSeparated()
{
    std::array<std::string_view, maxColumns + 1> fields;
    const int count = common::splitFields(line, ' ', fields);
    for (const STEP& step : plan.steps) {
        if (step.column >= count) return;
        const std::string_view field = fields[static_cast<std::size_t>(step.column)];
        const char* p = field.data();
        storeField(step, ' ', p, field.data() + field.size());
    }
}

// Adds the line in hand to the station as its next level.
void RSpreadsheetReader::State::storeLine()
{
    // Beyond the last level nothing is kept; the numbers are read to be counted.
    slot = static_cast<std::size_t>(std::min<std::int64_t>(levels, common::maxLevels - 1));
    growTo(slot + 1);
    for (const auto& [target, value] : plan.defaults) {
        SAMPLES& sample = samples[static_cast<std::size_t>(target)];
        sample.values[slot] = value;
        if (value != MISSING_VALUE) ++sample.count;
    }
    if (separator == ' ') {
        storeBlankSeparated();
    } else if (metaLength > 0) {
        storeFields(line.data() + metaLength, lastMeta + 1);
    } else {
        storeFields(line.data(), 0);
    }
    ++levels;
}

// Reads the levels of the station that the line in hand begins. False after an error.
bool RSpreadsheetReader::State::readLevels()
{
    clearSamples();
    stationHeader = lineHeader;
    stationLabels = lineLabels;
    noteCutLabel();
    for (;;) {
        storeLine();
        if (!takeLine()) return failure == readEnd;
        if (restIsBlank()) return true;
        if (sameBytes()) continue;
        if (!parseLine()) return true;
        if (!isSameStation(stationHeader, lineHeader) || lineLabels != stationLabels) break;
    }
    hasLine = true;
    return true;
}

// Moves the samples into the station's blocks, variable by variable.
void RSpreadsheetReader::State::moveSamples(STATIONDATA& station)
{
    const int count = static_cast<int>(levels);
    int total = 0;
    for (std::size_t v = 1; v < samples.size(); ++v) {
        if (v > 1 && samples[v].count == 0) continue;
        if (total + count > mostCells) {
            user.about(format("Variable %d and following omitted!", static_cast<int>(v)),
                       format("Too many data points for Station %s %s",
                              common::labelToUtf8(stationHeader.cruise).c_str(),
                              common::labelToUtf8(stationHeader.station).c_str()));
            break;
        }
        std::copy_n(samples[v].values.data(), count, station.values.get() + total);
        std::copy_n(samples[v].flags.data(), count, station.flags.get() + total);
        station.offset[v] = total;
        station.levelCount[v] = static_cast<std::int16_t>(v == 1 ? count : samples[v].count);
        total += count;
    }
    station.header.valueCount = total;
}

void RSpreadsheetReader::State::tooManyLevels()
{
    user.about("Station not stored!", format("Too many data points for Station %s %s",
                                             common::labelToUtf8(stationHeader.cruise).c_str(),
                                             common::labelToUtf8(stationHeader.station).c_str()));
}

// Tells why the line in hand can't begin a station, and which of its fields are at fault. That ends the
// reading.
void RSpreadsheetReader::State::refuseHeader(const std::string& fault)
{
    const int number = lines.lineNumber();
    std::string text = format("Line %d: %s\nImport will be aborted.\n", number, fault.c_str());
    const METAFIELDS fields = splitMeta(desc, line, separator).fields;
    for (const int meta : faultyMetas(lineHeader, desc)) {
        const auto place = static_cast<std::size_t>(meta);
        const int column = desc.metaColumn[place];
        const std::string name = column >= 0 && column < static_cast<int>(header.labels.size())
                                     ? header.labels[static_cast<std::size_t>(column)]
                                     : std::string(metaLabels[place]);
        constexpr std::size_t shown = 60;
        text += format("\n%s:%d: ", path.c_str(), number);
        text += column < 0 ? format("default of \"%s\"", name.c_str())
                           : format("column %d \"%s\" holds \"%s\"", column + 1, name.c_str(),
                                    utf8(common::cutAtCharacter(fields.text[place], shown)).c_str());
    }
    user.about(caption, text);
    ++account.stationsRefused;
    static_cast<void>(countRest());
    hasLine = false;
    endedEarly = true;
}

std::int64_t RSpreadsheetReader::State::readStation(STATIONDATA& station)
{
    if (targets.size() < 2) return readEnd; // without a variable there are no levels
    for (;;) {
        if (!begun) hasLine = skipToData();
        if (!hasLine) return failure;
        std::string fault;
        if (!checkHeader(lineHeader, fault)) {
            refuseHeader(fault);
            return readEnd;
        }
        if (!readLevels()) {
            countRefused();
            return failure;
        }
        ++stationsRead;
        // The line in hand was compared under the number of the station that it ended.
        if (isLabelledByNumber(desc)) labelByNumber(lineHeader, stationsRead + 1);
        if (levels <= common::maxLevels) break;
        tooManyLevels();
        countRefused();
    }
    station.clear();
    station.header = stationHeader;
    moveSamples(station);
    if (station.header.type[0] == '*' || station.header.type[0] == '\0')
        common::copyText(station.header.type, levels <= mostBottleLevels ? "B" : "C");
    applyConversions(station, header.sources, targets, keys);
    countDelivered(station);
    const std::int64_t consumed = (hasLine ? lineStart : lines.bytesRead()) - counted;
    counted += consumed;
    return consumed;
}

RSpreadsheetReader::RSpreadsheetReader(const SPREADSHEETHEADER& header, std::span<const VARINFO> targets,
                                       KEYVARIABLES keys, common::RUser& user)
    : state_(std::make_unique<State>(header, targets, keys, user))
{
}

RSpreadsheetReader::~RSpreadsheetReader() = default;

bool RSpreadsheetReader::open(const std::string& path)
{
    state_->path = path;
    return state_->lines.open(path);
}

std::int64_t RSpreadsheetReader::size() const
{
    return state_->lines.size();
}

std::int64_t RSpreadsheetReader::readStation(STATIONDATA& station)
{
    try {
        return state_->readStation(station);
    } catch (const std::bad_alloc&) {
        state_->countRefused();
        state_->hasLine = false;
        return state_->failure = readNoMemory;
    }
}

int RSpreadsheetReader::lineNumber() const
{
    return state_->lines.lineNumber() + (state_->failure != readEnd ? 1 : 0);
}

std::string_view RSpreadsheetReader::currentLine() const
{
    return state_->line;
}

const READACCOUNT& RSpreadsheetReader::account() const
{
    return state_->account;
}

bool RSpreadsheetReader::endedEarly() const
{
    return state_->endedEarly;
}

} // namespace importing
