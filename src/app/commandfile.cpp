#include "app/commandfile.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "app/derivedwords.h"
#include "app/gate.h"
#include "common/text.h"

namespace app {
namespace {

constexpr int maxFields = 50;
constexpr float smallestRange = 1e-30f; // below it a scale in a picture would pass the largest number
constexpr double largestDot = 100;

// What became of a line.
struct OUTCOME {
    bool leave = false;  // the file ends here
    std::string message; // empty: nothing to say
};

// --- fields

std::string doesNotRead(std::string_view what, std::string_view field)
{
    return std::string(what) + " " + common::quoted(field) + " doesn't read as a number";
}

// Takes numbers from fields; keeps the first thing that is wrong.
class RFieldReader {
public:
    explicit RFieldReader(Fields fields) : fields_(fields) {}

    bool has(std::size_t i) const { return i < fields_.size() && !fields_[i].empty(); }
    std::string text(std::size_t i) const
    {
        return i < fields_.size() ? std::string(fields_[i]) : std::string();
    }
    int integer(std::size_t i, std::string_view what)
    {
        const std::optional<int> value = common::parseInt(fields_[i]);
        if (!value) complain(doesNotRead(what, fields_[i]));
        return value.value_or(0);
    }
    double number(std::size_t i, std::string_view what)
    {
        const std::optional<double> value = common::parseDouble(fields_[i]);
        if (!value || !(std::abs(*value) < 1e10)) complain(doesNotRead(what, fields_[i]));
        return value.value_or(0);
    }
    RANGE range(std::size_t i, std::string_view axis)
    {
        const std::string name(axis);
        const RANGE both{static_cast<float>(number(i, name + " minimum")),
                         static_cast<float>(number(i + 1, name + " maximum"))};
        if (!(both.first < both.second)) complain(name + " minimum must be below " + name + " maximum");
        if (both.second - both.first < smallestRange) complain(name + " minimum and maximum are too close");
        return both;
    }
    void complain(std::string_view what)
    {
        if (wrong_.empty()) wrong_ = what;
    }
    [[nodiscard]] const std::string& wrong() const { return wrong_; }

private:
    Fields fields_;
    std::string wrong_;
};

// --- the commands known by their first word

std::string runSetMode(Fields fields, RCommandTarget& target)
{
    constexpr auto names =
        std::to_array<std::string_view>({"MAP", "STATION", "SCATTER", "SECTION", "SURFACE"});
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (common::equalsIgnoreCase(fields[0], names[i])) return target.setMode(static_cast<int>(i) - 1);
    }
    return "there is no mode " + common::quoted(fields[0]);
}

std::string runUseLayout(Fields fields, RCommandTarget& target)
{
    return target.useLayout(fields[0]);
}

// A variable with its sign, which may stand in front of the quotes.
std::string signedVariable(std::string_view text)
{
    const bool reversed = text.starts_with('-');
    return (reversed ? "-" : "") + withoutQuotes(text.substr(reversed ? 1 : 0));
}

std::string runSetWindow(Fields fields, RCommandTarget& target)
{
    RFieldReader reader(fields);
    WINDOWVARIABLES variables{
        reader.integer(0, "window"), signedVariable(fields[1]), signedVariable(fields[2]), {}};
    if (reader.has(3)) variables.z = signedVariable(fields[3]);
    return reader.wrong().empty() ? target.setWindow(variables) : reader.wrong();
}

std::string runSetRange(Fields fields, RCommandTarget& target)
{
    RFieldReader reader(fields);
    WINDOWRANGES ranges{reader.integer(0, "window"), reader.range(1, "x"), reader.range(3, "y"), {}};
    if (fields.size() == 6) reader.complain("z minimum stands without z maximum");
    if (fields.size() == 7) ranges.z = reader.range(5, "z");
    return reader.wrong().empty() ? target.setRange(ranges) : reader.wrong();
}

std::string runFullRange(Fields fields, RCommandTarget& target)
{
    if (fields.empty()) return target.fullRange(std::nullopt);
    RFieldReader reader(fields);
    const int window = reader.integer(0, "window");
    return reader.wrong().empty() ? target.fullRange(window) : reader.wrong();
}

std::string runSetStyle(Fields fields, RCommandTarget& target)
{
    RFieldReader reader(fields);
    WINDOWSTYLE style{reader.integer(0, "window"), reader.integer(1, "plot style"), {}};
    if (fields.size() == 3) style.dotSize = static_cast<float>(reader.number(2, "dot size"));
    if (style.dotSize && !(*style.dotSize >= 0)) reader.complain("dot size is below 0");
    if (style.dotSize && *style.dotSize > largestDot)
        reader.complain(common::format("dot size is above %g", largestDot));
    return reader.wrong().empty() ? target.setStyle(style) : reader.wrong();
}

std::string runSetPalette(Fields fields, RCommandTarget& target)
{
    RFieldReader reader(fields);
    const int window = reader.integer(0, "window");
    return reader.wrong().empty() ? target.setPalette(window, fields[1]) : reader.wrong();
}

std::string runSetDomain(Fields fields, RCommandTarget& target)
{
    RFieldReader reader(fields);
    DOMAINCHOICE domain{reader.number(0, "smallest longitude"),
                        reader.number(1, "largest longitude"),
                        reader.number(2, "smallest latitude"),
                        reader.number(3, "largest latitude"),
                        {},
                        {}};
    if (fields.size() > 4) domain.projection = reader.integer(4, "projection");
    if (fields.size() == 6) reader.complain("pole longitude stands without pole latitude");
    if (fields.size() == 7)
        domain.pole = {reader.number(5, "pole longitude"), reader.number(6, "pole latitude")};
    return reader.wrong().empty() ? target.setDomain(domain) : reader.wrong();
}

std::string runPlotStation(Fields fields, RCommandTarget& target)
{
    if (common::equalsIgnoreCase(fields[0], "all")) return target.plotStation(std::nullopt);
    RFieldReader reader(fields);
    const int number = reader.integer(0, "station");
    return reader.wrong().empty() ? target.plotStation(number) : reader.wrong();
}

// --- data in and out

constexpr auto resetWord = std::to_array<std::string_view>({"reset"}); // stands without a value

std::string runSetImport(Fields fields, RCommandTarget& target)
{
    constexpr auto pairs = std::to_array<std::string_view>({"assoc", "cruise"});
    std::vector<KEYVALUE> settings;
    std::string wrong = readKeyValues(fields[0], {pairs, resetWord}, settings);
    return wrong.empty() ? target.setImport(settings) : wrong;
}

std::string runSelect(Fields fields, RCommandTarget& target)
{
    std::vector<KEYVALUE> criteria;
    std::string wrong = readKeyValues(fields[0], {{}, resetWord}, criteria);
    return wrong.empty() ? target.select(criteria) : wrong;
}

std::string cleanQuotedPath(std::string_view text)
{
    return cleanPath(withoutQuotes(text));
}

// The word behind the last comma, if it is one, else the path goes to its end.
importing::ImportMode takeMode(std::string_view& path)
{
    using importing::ImportMode;
    constexpr auto modes = std::to_array<std::pair<std::string_view, ImportMode>>(
        {{"add", ImportMode::addReplace}, {"merge", ImportMode::merge}, {"update", ImportMode::update}});
    const std::size_t comma = path.rfind(',');
    if (comma == std::string_view::npos) return ImportMode::addReplace;
    const std::string_view word = common::trimBlanks(path.substr(comma + 1));
    for (const auto& [name, mode] : modes) {
        if (word != name) continue;
        path = path.substr(0, comma);
        return mode;
    }
    return ImportMode::addReplace;
}

std::string runImportFile(Fields fields, RCommandTarget& target)
{
    const auto& formats = importing::importFormats;
    const auto row = std::find_if(formats.begin(), formats.end(),
                                  [&](const auto& format) { return format.word == fields[0]; });
    if (row == formats.end())
        return "there is no format " + common::quoted(fields[0]) + " (spreadsheet, o4x, o3x)";
    if (std::string wrong = target.refusal(row->commandId); !wrong.empty()) return wrong;
    std::string_view path = fields[1];
    const importing::ImportMode mode = takeMode(path);
    const FILEIMPORT file{row->format, cleanQuotedPath(path), mode};
    return file.path.empty() ? "names no file" : target.importFile(file);
}

std::string runExportListing(Fields fields, RCommandTarget& target)
{
    using exporting::ListingForm;
    if (fields[0] != "o3x" && fields[0] != "o4x")
        return "there is no format " + common::quoted(fields[0]) + " (o3x, o4x)";
    const bool old = fields[0] == "o3x";
    if (std::string wrong = target.refusal(old ? cmdExportListing3 : cmdExportListing4); !wrong.empty())
        return wrong;
    const std::string path = cleanQuotedPath(fields[1]);
    if (path.empty()) return "names no file";
    return target.exportListing(old ? ListingForm::version3 : ListingForm::version4, path);
}

std::string runExportCollection(Fields fields, RCommandTarget& target)
{
    return target.exportCollection(cleanQuotedPath(fields[0]));
}

std::string runExportSpreadsheet(Fields fields, RCommandTarget& target)
{
    std::string_view rest = fields[0];
    TABLEEXPORT table;
    std::string wrong = takeField(rest, table.path);
    if (wrong.empty()) wrong = takeField(rest, table.missingText);
    if (wrong.empty()) wrong = readWords(rest, table.variables);
    if (!wrong.empty()) return wrong;
    table.path = cleanPath(table.path);
    return table.path.empty() ? "names no file" : target.exportSpreadsheet(table);
}

// --- the collection as a whole

std::string runCreateCollection(Fields fields, RCommandTarget& target)
{
    if (fields[0].empty()) return "names no collection";
    if (fields[1].empty()) return "names no set of variables";
    return target.createCollection(cleanPath(fields[0]), std::string(fields[1]));
}

std::string runCopyCollection(Fields fields, RCommandTarget& target)
{
    return target.copyCollection(cleanPath(fields[0]));
}

std::string runMoveCollection(Fields fields, RCommandTarget& target)
{
    return target.moveCollection(cleanPath(fields[0]));
}

std::string runDeleteCollection(Fields, RCommandTarget& target)
{
    return target.deleteCollection();
}

std::string runSortCondense(Fields, RCommandTarget& target)
{
    return target.sortAndCondense();
}

std::string runChangeVariables(Fields fields, RCommandTarget& target)
{
    return target.changeVariables(cleanPath(fields[0]));
}

std::string runDeleteSelected(Fields, RCommandTarget& target)
{
    return target.deleteSelected();
}

std::string runDeleteEmpty(Fields, RCommandTarget& target)
{
    return target.deleteEmpty();
}

std::string runDeleteStation(Fields fields, RCommandTarget& target)
{
    RFieldReader reader(fields);
    const int number = reader.integer(0, "station");
    if (number < 1) reader.complain("station numbers begin at 1");
    return reader.wrong().empty() ? target.deleteStation(number) : reader.wrong();
}

std::string runLogComment(Fields fields, RCommandTarget& target)
{
    return target.addLogComment(fields[0]);
}

std::string runClose(Fields, RCommandTarget& target)
{
    return target.closeCollection();
}

std::string runCheckCollection(Fields fields, RCommandTarget& target)
{
    return target.checkCollection(fields.empty() ? std::string() : cleanPath(fields[0]));
}

enum class Split {
    whole, // the text is one field
    pair,  // two, divided by the first comma
    list   // fields, divided by commas outside quotes
};

struct WORDROW {
    std::string_view word;
    Split split;
    int fewest, most; // fields
    std::string (*run)(Fields fields, RCommandTarget& target);
    int commandId = 0; // of the gate, 0 for none
};
constexpr auto wordRows = std::to_array<WORDROW>({
    {"set_mode", Split::whole, 1, 1, runSetMode},
    {"use_layout", Split::whole, 1, 1, runUseLayout},
    {"set_window", Split::list, 3, 4, runSetWindow},
    {"set_range", Split::list, 5, 7, runSetRange},
    {"full_range", Split::list, 0, 1, runFullRange},
    {"set_style", Split::list, 2, 3, runSetStyle},
    {"set_palette", Split::list, 2, 2, runSetPalette},
    {"set_domain", Split::list, 4, 7, runSetDomain},
    {"plot_station", Split::list, 1, 1, runPlotStation},
    {"set_import", Split::whole, 1, 1, runSetImport},
    {"select", Split::whole, 1, 1, runSelect, cmdSelectionCriteria},
    {"import_file", Split::pair, 2, 2, runImportFile},
    {"export_listing", Split::pair, 2, 2, runExportListing},
    {"export_collection", Split::whole, 1, 1, runExportCollection, cmdExportCollection},
    {"export_spreadsheet", Split::whole, 1, 1, runExportSpreadsheet, cmdExportSpreadsheet},
    {"set_key", Split::whole, 1, 1, runSetKey, cmdDerivedVariables},
    {"add_derived", Split::whole, 1, 1, runAddDerived, cmdDerivedVariables},
    {"add_expression", Split::whole, 1, 1, runAddExpression, cmdDerivedVariables},
    {"add_macro", Split::whole, 1, 1, runAddMacro, cmdDerivedVariables},
    {"delete_derived", Split::whole, 1, 1, runDeleteDerived, cmdDerivedVariables},
    {"create_collection", Split::pair, 2, 2, runCreateCollection},
    {"copy_collection", Split::whole, 1, 1, runCopyCollection, cmdCopy},
    {"move_collection", Split::whole, 1, 1, runMoveCollection, cmdMove},
    {"delete_collection", Split::whole, 0, 0, runDeleteCollection, cmdDelete},
    {"sort_condense", Split::whole, 0, 0, runSortCondense, cmdSortAndCondense},
    {"change_variables", Split::whole, 1, 1, runChangeVariables, cmdChangeVariables},
    {"delete_selected", Split::whole, 0, 0, runDeleteSelected, cmdDeleteSelected},
    {"delete_empty", Split::whole, 0, 0, runDeleteEmpty, cmdDeleteEmpty},
    {"delete_station", Split::list, 1, 1, runDeleteStation, cmdDeleteCurrent},
    {"log_comment", Split::whole, 1, 1, runLogComment, cmdLogComment},
    {"check_collection", Split::whole, 0, 1, runCheckCollection},
    {"close", Split::whole, 0, 0, runClose, cmdClose},
});

std::string fieldCount(int count)
{
    return common::format(count == 1 ? "%d field" : "%d fields", count);
}

// Up to the first comma outside quotes; a quote that isn't closed is none.
std::size_t fieldLength(std::string_view text)
{
    std::size_t from = 0;
    for (;;) {
        const std::size_t comma = std::min(text.find(',', from), text.size());
        const std::size_t open = text.substr(0, comma).find('"', from);
        const std::size_t close = open == std::string_view::npos ? open : text.find('"', open + 1);
        if (close == std::string_view::npos) return comma;
        from = close + 1;
    }
}

std::vector<std::string_view> splitArguments(std::string_view text, Split split)
{
    text = common::trimBlanks(text);
    if (text.empty()) return {};
    if (split == Split::whole) return {text};
    std::vector<std::string_view> fields;
    for (;;) {
        const bool last = split == Split::pair && fields.size() == 1;
        const std::size_t comma = last                   ? text.size()
                                  : split == Split::list ? fieldLength(text)
                                                         : std::min(text.find(','), text.size());
        fields.push_back(common::trimBlanks(text.substr(0, comma)));
        if (comma == text.size()) return fields;
        text.remove_prefix(comma + 1);
    }
}

OUTCOME runWordRow(const WORDROW& row, std::string_view rest, RCommandTarget& target)
{
    const std::vector<std::string_view> fields = splitArguments(rest, row.split);
    const int count = static_cast<int>(std::min<std::size_t>(fields.size(), 1000));
    const std::string word(row.word), but = ", not " + std::to_string(count);
    if (count < row.fewest) return {true, word + " needs " + fieldCount(row.fewest) + but};
    if (count > row.most) return {true, word + " takes " + fieldCount(row.most) + but};
    std::string wrong = row.commandId == 0 ? std::string() : target.refusal(row.commandId);
    if (wrong.empty()) wrong = row.run(fields, target);
    if (wrong.empty()) return {};
    return {true, word + (wrong == toldFault ? " " : ": ") + wrong};
}

std::optional<OUTCOME> runByFirstWord(std::string_view line, RCommandTarget& target)
{
    const std::string_view text = common::trimBlanks(line);
    const std::string_view word = text.substr(0, text.find_first_of(" \t"));
    const auto same = [word](const WORDROW& row) { return row.word == word; };
    const auto row = std::find_if(wordRows.begin(), wordRows.end(), same);
    if (row == wordRows.end()) return std::nullopt;
    return runWordRow(*row, text.substr(word.size()), target);
}

// --- the commands known by a keyword anywhere in the line

OUTCOME result(std::string_view keyword, bool good)
{
    if (good) return {};
    return {true, std::string(keyword) + " failed"};
}

OUTCOME runOpenCollection(std::string_view text, RCommandTarget& target)
{
    return result("open_collection", target.openCollection(cleanPath(text)));
}

OUTCOME runLoadConfiguration(std::string_view text, RCommandTarget& target)
{
    return result("load_cfg", target.loadConfiguration(cleanPath(text)));
}

OUTCOME runExportGraphics(std::string_view text, RCommandTarget& target)
{
    std::array<std::string_view, maxFields> fields;
    common::splitFields(common::trimBlanks(text), ',', fields);
    const std::optional<int> window = common::parseInt(fields[0]), dpi = common::parseInt(fields[2]);
    if (!window) return {false, "export_graphics: " + doesNotRead("window", fields[0]) + ", line skipped"};
    if (!dpi) return {false, "export_graphics: " + doesNotRead("resolution", fields[2]) + ", line skipped"};
    return result("export_graphics", target.exportGraphics(*window, cleanPath(fields[1]), *dpi));
}

OUTCOME runExportData(std::string_view text, RCommandTarget& target)
{
    return result("export_data", target.exportData(cleanPath(text)));
}

OUTCOME runQuit(std::string_view, RCommandTarget& target)
{
    target.quit();
    return {};
}

struct KEYWORDROW {
    std::string_view keyword;
    int commandId; // of the gate, 0 for none
    OUTCOME (*run)(std::string_view text, RCommandTarget& target);
};
constexpr auto keywordRows = std::to_array<KEYWORDROW>({
    {"open_collection", 0, runOpenCollection},
    {"load_cfg", cmdLoadConfiguration, runLoadConfiguration},
    {"export_graphics", cmdSaveScreen, runExportGraphics},
    {"export_data", cmdExportSpreadsheet, runExportData},
    {"quit", cmdExit, runQuit},
});

// The first keyword of the line that the gate lets pass takes the line.
OUTCOME runByKeyword(std::string_view line, RCommandTarget& target)
{
    std::string_view refused;
    for (const KEYWORDROW& row : keywordRows) {
        const std::size_t at = line.find(row.keyword);
        if (at == std::string_view::npos) continue;
        if (row.commandId == 0 || target.isAllowed(row.commandId))
            return row.run(line.substr(at + row.keyword.size()), target);
        if (refused.empty()) refused = row.keyword;
    }
    if (refused.empty()) return {};
    return {false, std::string(refused) + " isn't possible now, line skipped"};
}

// A comment begins at "#" outside quotes. In a label "~#" is a mark, in a formula "#" with a digit behind it
// is an input.
std::string_view withoutComment(std::string_view line)
{
    constexpr std::string_view digits = "0123456789";
    const bool holdsFormula = common::trimBlanks(line).starts_with("add_expression");
    for (std::size_t at = line.find('#'); at != std::string_view::npos; at = line.find('#', at + 1)) {
        const std::string_view before = line.substr(0, at), behind = line.substr(at + 1);
        const bool inQuotes = std::count(before.begin(), before.end(), '"') % 2 != 0 &&
                              behind.find('"') != std::string_view::npos;
        const bool isInput =
            holdsFormula && !behind.empty() && digits.find(behind.front()) != std::string_view::npos;
        if (!inQuotes && !isInput && !before.ends_with('~')) return before;
    }
    return line;
}

OUTCOME runLine(std::string_view line, RCommandTarget& target)
{
    line = line.substr(0, line.find('\r'));
    line = withoutComment(line);
    if (std::optional<OUTCOME> outcome = runByFirstWord(line, target)) return *outcome;
    return runByKeyword(line, target);
}

} // namespace

bool runCommands(std::string_view content, std::string_view name, RCommandTarget& target,
                 const std::function<void(std::string_view)>& note)
{
    constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
    if (content.starts_with(byteOrderMark)) content.remove_prefix(byteOrderMark.size());
    for (int number = 1; !content.empty(); ++number) {
        const std::size_t end = std::min(content.find('\n'), content.size());
        const OUTCOME outcome = end > longestCommandLine ? OUTCOME{true, "the line is longer than 1 MiB"}
                                                         : runLine(content.substr(0, end), target);
        content.remove_prefix(std::min(end + 1, content.size()));
        const auto say = [&](std::string_view what) {
            note(std::string(name) + ":" + std::to_string(number) + ": " + std::string(what));
        };
        if (!outcome.message.empty()) say(outcome.message);
        if (outcome.leave) return false;
        if (target.isAborted()) {
            say("aborted");
            return false;
        }
    }
    return true;
}

} // namespace app
