#include "import/listing.h"

#include <algorithm>
#include <cstdint>

#include "collection/varfile.h"
#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "import/linereader.h"

namespace importing {
namespace {

constexpr std::string_view firstLine = "NVQ4.0 Listing";
constexpr std::size_t valueColumn = 12, formatColumn = 60;

// Bytes of `line` in front of a column, where each character has one column.
std::size_t bytesToColumn(std::string_view line, std::size_t column)
{
    std::size_t at = 0;
    for (; at < line.size(); ++at) {
        const bool begins = (static_cast<unsigned char>(line[at]) & 0xc0) != 0x80;
        if (begins && column-- == 0) break;
    }
    return at;
}

bool hasFormat(std::string_view line, std::size_t at)
{
    std::string_view rest = line.substr(std::min(at, line.size()));
    int width = 0, decimals = 0;
    if (!common::takeInt(rest, width) || !rest.starts_with('.')) return false;
    rest.remove_prefix(1);
    return !rest.starts_with(' ') && common::takeInt(rest, decimals) && width >= 0 && decimals >= 0;
}

class RListingHeaderReader {
public:
    RListingHeaderReader(const std::string& path, std::string& fault) : path_(path), fault_(fault) {}

    [[nodiscard]] bool read(LISTINGHEADER& header)
    {
        if (!reader_.open(path_)) return refuse("can't be read");
        return readFirstLine() && readText("name", header.name) && readType(header) &&
               readCount("stations", INT32_MAX, header.stationCount) &&
               readCount("variables", common::maxVariables, variableCount_) && readVariables(header) &&
               skipToData(header);
    }

private:
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
        text = label(line_);
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
        if (!readValue(what.c_str())) return false;
        int number = 0;
        if (!common::takeInt(line_, number) || number < 0) return refuse("no valid " + what);
        if (number > most) {
            return refuse(common::format("%d %s, but a collection has at most %d", number, of, most));
        }
        count = number;
        return true;
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
        if (!hasFormat(line_, at) && reader_.isUtf8()) at = bytesToColumn(line_, formatColumn);
        if (!hasFormat(line_, at)) {
            return refuse(
                common::format("no format behind the label of variable %d of %d", number, variableCount_));
        }
        const std::string text = label(common::trimBlanks(line_.substr(0, at)));
        const std::string line = std::string(formatColumn, ' ').append(line_.substr(at));
        collection::VARINFO variable = collection::parseVariableLine(line, number);
        collection::setLabel(variable, text);
        header.variables.push_back(variable);
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

    // The file's bytes as those of a record.
    [[nodiscard]] std::string label(std::string_view bytes)
    {
        if (reader_.isUtf8() && !common::isValidUtf8(bytes)) reader_.setLatin1();
        return common::labelFromFile(bytes, reader_.isUtf8());
    }

    const std::string& path_;
    std::string& fault_;
    RLineReader reader_;
    std::string_view line_;
    int variableCount_ = 0;
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

} // namespace importing
