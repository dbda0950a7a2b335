#include "variables/histories.h"

#include "common/files.h"
#include "common/text.h"

namespace variables {
namespace {

constexpr std::int64_t largestFile = 1 << 20; // bytes

// Appends the row of a line; false if it gives none, or there is no room.
bool takeRow(std::string_view line, ATMHISTORY& table)
{
    float year = 0, north = 0, south = 0;
    if (table.n >= maxHistoryRows || !common::takeFloat(line, year) || !common::takeFloat(line, north) ||
        !common::takeFloat(line, south))
        return false;
    const auto row = static_cast<std::size_t>(table.n++);
    table.years[row] = year;
    table.northern[row] = north;
    table.southern[row] = south;
    return true;
}

// The last year comes behind that before it.
bool ascends(const ATMHISTORY& table)
{
    const auto n = static_cast<std::size_t>(table.n);
    return n < 2 || table.years[n - 1] > table.years[n - 2];
}

// The first line of `rest` with text, from line `number` on; 0 if all are blank.
int firstText(std::string_view rest, int number)
{
    for (; !rest.empty(); ++number) {
        if (common::takeLine(rest).find_first_not_of(" \t\r") != std::string_view::npos) return number;
    }
    return 0;
}

} // namespace

ATMHISTORY parseHistory(std::string_view content, std::vector<HISTORYFAULT>* faults)
{
    ATMHISTORY table;
    std::vector<HISTORYFAULT> found;
    (void)common::takeLine(content);
    int number = 2;
    for (std::string_view rest = content; !rest.empty() && takeRow(common::takeLine(rest), table); ++number) {
        content = rest;
        if (found.empty() && !ascends(table))
            found.push_back({number, "the year isn't later than that of the line before"});
    }
    if (table.n == 0) found.push_back({1, "there are no lines \"year north south\" behind the heading"});
    const int leftOut = firstText(content, number);
    if (table.n > 0 && leftOut > 0)
        found.push_back({leftOut, table.n < maxHistoryRows
                                      ? "the history ends in front of this line, which is no \"year north "
                                        "south\" or stands behind a blank one"
                                      : "a history has 200 lines; this one and what follows is left out"});
    if (faults) *faults = std::move(found);
    return table;
}

std::vector<std::string> loadHistories(const std::string& atmhistFolder, ATMHISTORIES& histories)
{
    std::vector<std::string> told;
    for (std::size_t gas = 0; gas < historyFiles.size(); ++gas) {
        const std::string path = atmhistFolder + std::string(historyFiles[gas]);
        const auto content = common::readFile(path, largestFile);
        std::vector<HISTORYFAULT> faults;
        histories[gas] = content ? parseHistory(*content, &faults) : ATMHISTORY{};
        if (!content && common::fileSize(path) >= 0) told.push_back(path + ": can't be read");
        for (const HISTORYFAULT& fault : faults)
            told.push_back(path + ":" + std::to_string(fault.line) + ": " + fault.text);
    }
    return told;
}

} // namespace variables
