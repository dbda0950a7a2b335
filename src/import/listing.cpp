#include "import/listing.h"

#include <algorithm>
#include <cstdint>

#include "collection/varfile.h"
#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "import/columns.h"
#include "import/linereader.h"

namespace importing {
namespace {

constexpr std::string_view firstLine = "NVQ4.0 Listing";
constexpr std::size_t valueColumn = 12, formatColumn = 60;

bool hasFormat(std::string_view line, std::size_t at)
{
    std::string_view rest = line.substr(std::min(at, line.size()));
    int width = 0, decimals = 0;
    if (!common::takeInt(rest, width) || !rest.starts_with('.')) return false;
    rest.remove_prefix(1);
    return !rest.starts_with(' ') && common::takeInt(rest, decimals) && width >= 0 && decimals >= 0;
}

// The variable of a label and a format "8.2", which is brought into its limits.
collection::VARINFO variableOf(std::string_view label, std::string_view format, int number)
{
    const std::string line = std::string(formatColumn, ' ').append(format);
    collection::VARINFO variable = collection::parseVariableLine(line, number);
    collection::setLabel(variable, common::labelFromFile(label, common::isValidUtf8(label)));
    variable.column = number;
    return variable;
}

// The lines of a description, and what is wrong with them.
class RDescriptionLines {
public:
    RDescriptionLines(const std::string& path, std::string& fault) : path_(path), fault_(fault) {}

protected:
    [[nodiscard]] bool open() { return reader_.open(path_) || refuse("can't be read"); }
    [[nodiscard]] bool refuse(const std::string& what) { return refuse(reader_.lineNumber(), what); }
    [[nodiscard]] bool refuse(int line, const std::string& what)
    {
        fault_ = common::format("%s:%d: %s", path_.c_str(), std::max(1, line), what.c_str());
        return false;
    }

    // `what`: what the line should hold.
    [[nodiscard]] bool next(const char* what)
    {
        using Result = RLineReader::Result;
        const Result result = reader_.next(line_);
        if (result == Result::tooLong) return refuse(reader_.lineNumber() + 1, "the line is too long");
        if (result == Result::failed) return refuse(reader_.lineNumber() + 1, "can't be read");
        if (result == Result::end) return refuse(std::string("the file ends before the ") + what);
        return true;
    }

    // Takes a count that stands at the front of `text`.
    [[nodiscard]] bool takeCount(std::string_view text, const char* of, int most, int& count)
    {
        int number = 0;
        if (!common::takeInt(text, number) || number < 0)
            return refuse(std::string("no valid number of ") + of);
        if (number > most) {
            return refuse(common::format("%d %s, but a collection has at most %d", number, of, most));
        }
        count = number;
        return true;
    }

    const std::string& path_;
    std::string& fault_;
    RLineReader reader_;
    std::string_view line_;
    int variableCount_ = 0;
};

class RListingHeaderReader : public RDescriptionLines {
public:
    using RDescriptionLines::RDescriptionLines;

    [[nodiscard]] bool read(LISTINGHEADER& header)
    {
        return open() && readFirstLine() && readText("name", header.name) && readType(header) &&
               readCount("stations", INT32_MAX, header.stationCount) &&
               readCount("variables", common::maxVariables, variableCount_) && readVariables(header) &&
               skipToData(header);
    }

private:
    [[nodiscard]] bool readFirstLine()
    {
        if (!next("first line")) return false;
        return line_.starts_with(firstLine) || refuse("Import File is not of .o4x Format!");
    }

    // What stands behind a line's heading.
    [[nodiscard]] bool readValue(const char* what)
    {
        if (!next(what)) return false;
        line_ =
            common::trimBlanks(line_.size() > valueColumn ? line_.substr(valueColumn) : std::string_view());
        return true;
    }

    [[nodiscard]] bool readText(const char* what, std::string& text)
    {
        if (!readValue(what)) return false;
        text = common::labelFromFile(line_, common::isValidUtf8(line_));
        return true;
    }

    [[nodiscard]] bool readType(LISTINGHEADER& header)
    {
        std::string type;
        if (!readText("type", type)) return false;
        if (!type.empty()) header.type = type.substr(0, type.find(' '));
        return true;
    }

    [[nodiscard]] bool readCount(const char* of, int most, int& count)
    {
        const std::string what = std::string("number of ") + of;
        return readValue(what.c_str()) && takeCount(line_, of, most, count);
    }

    [[nodiscard]] bool readVariables(LISTINGHEADER& header)
    {
        header.variables.assign(1, collection::emptyVariable(0));
        for (int v = 1; v <= variableCount_; ++v) {
            const std::string what = "label of variable " + std::to_string(v);
            do {
                if (!next(what.c_str())) return false;
            } while (v == 1 && common::trimBlanks(line_).empty());
            if (!readVariable(v, header)) return false;
        }
        return true;
    }

    // In a file that was turned into UTF-8, columns are characters.
    [[nodiscard]] bool readVariable(int number, LISTINGHEADER& header)
    {
        std::size_t at = formatColumn;
        if (!hasFormat(line_, at) && hasWideCharacters(line_)) at = bytesToColumn(line_, formatColumn);
        if (!hasFormat(line_, at)) {
            return refuse(
                common::format("no format behind the label of variable %d of %d", number, variableCount_));
        }
        header.variables.push_back(
            variableOf(common::trimBlanks(line_.substr(0, at)), line_.substr(at), number));
        return true;
    }

    // Over the empty lines in front of the first station.
    [[nodiscard]] bool skipToData(LISTINGHEADER& header)
    {
        using Result = RLineReader::Result;
        do {
            header.lineCount = reader_.lineNumber();
        } while (reader_.next(line_) == Result::line && common::trimBlanks(line_).empty());
        return true;
    }
};

// A 3.0 listing's description: counts in the first line, headings, and a line a variable.
class RDescriptionReader : public RDescriptionLines {
public:
    using RDescriptionLines::RDescriptionLines;

    [[nodiscard]] bool read(LISTINGHEADER& header)
    {
        return open() && readFirstLine(header) && next("headings") && next("headings") && next("headings") &&
               readVariables(header);
    }

private:
    [[nodiscard]] bool readFirstLine(LISTINGHEADER& header)
    {
        if (!next("first line")) return false;
        const std::size_t variables = line_.rfind(variablesWord), stations = line_.rfind(stationsWord);
        if (!line_.starts_with(nameWord) || variables == std::string_view::npos ||
            stations == std::string_view::npos || stations < variables) {
            return refuse("no description of a 3.0 listing");
        }
        readNameAndType(line_.substr(nameWord.size(), variables - nameWord.size()), header);
        return takeCount(line_.substr(variables + variablesWord.size()), "variables", common::maxVariables,
                         variableCount_) &&
               takeCount(line_.substr(stations + stationsWord.size()), "stations", INT32_MAX,
                         header.stationCount);
    }

    static void readNameAndType(std::string_view text, LISTINGHEADER& header)
    {
        const std::size_t word = text.rfind(typeWord);
        const std::string_view name = common::trimBlanks(text.substr(0, word));
        header.name = common::labelFromFile(name, common::isValidUtf8(name));
        if (word == std::string_view::npos) return;
        const std::string_view type = common::trimBlanks(text.substr(word + typeWord.size()));
        if (!type.empty()) header.type = type.substr(0, type.find(' '));
    }

    [[nodiscard]] bool readVariables(LISTINGHEADER& header)
    {
        header.variables.assign(1, collection::emptyVariable(0));
        for (int v = 1; v <= variableCount_; ++v) {
            const std::string what = "line of variable " + std::to_string(v);
            if (!next(what.c_str()) || !readVariable(v, header)) return false;
        }
        return true;
    }

    [[nodiscard]] bool readVariable(int place, LISTINGHEADER& header)
    {
        std::string_view rest = line_;
        int number = 0;
        if (!common::takeInt(rest, number) || number < 1)
            return refuse(common::format("no number of variable %d of %d", place, variableCount_));
        for (const collection::VARINFO& other : header.variables) {
            if (other.column == number) return refuse(common::format("a second variable %d", number));
        }
        RColumns columns(line_, false);
        std::string_view format = formatBehindRanges(columns.rest(rangesColumn));
        if (format.empty() && hasWideCharacters(line_)) {
            columns = RColumns(line_, true);
            format = formatBehindRanges(columns.rest(rangesColumn));
        }
        if (format.empty())
            return refuse(common::format("no ranges and format behind the label of variable %d", number));
        const std::string_view label = columns.field(labelColumn, rangesColumn - labelColumn);
        header.variables.push_back(variableOf(common::trimBlanks(label), format, place));
        header.variables.back().column = number;
        return true;
    }

    // Empty if there are not five numbers and a format.
    [[nodiscard]] static std::string_view formatBehindRanges(std::string_view text)
    {
        float range = 0;
        for (int i = 0; i < 5; ++i) {
            if (!common::takeFloat(text, range)) return {};
        }
        text = common::trimBlanks(text);
        const bool isLast = text.find(' ') == std::string_view::npos;
        return isLast && hasFormat(text, 0) ? text : std::string_view();
    }

    static constexpr std::string_view nameWord = "Collection:", typeWord = "Type:", variablesWord = "Nvar:",
                                      stationsWord = "Nstat:";
    static constexpr std::size_t labelColumn = 5, rangesColumn = 30;
};

} // namespace

bool readListingHeader(const std::string& path, LISTINGHEADER& header, std::string& fault)
{
    LISTINGHEADER read;
    fault.clear();
    if (!RListingHeaderReader(path, fault).read(read)) return false;
    header = std::move(read);
    return true;
}

bool readListingDescription(const std::string& path, LISTINGHEADER& header, std::string& fault)
{
    LISTINGHEADER read;
    read.description = path;
    fault.clear();
    if (!RDescriptionReader(path, fault).read(read)) return false;
    header = std::move(read);
    return true;
}

} // namespace importing
