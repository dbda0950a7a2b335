#include "variables/histories.h"

#include "common/files.h"
#include "common/text.h"

namespace variables {
namespace {

constexpr std::int64_t largestFile = 1 << 20; // bytes

} // namespace

ATMHISTORY parseHistory(std::string_view content)
{
    ATMHISTORY table;
    (void)common::takeLine(content);
    while (!content.empty() && table.n < maxHistoryRows) {
        std::string_view line = common::takeLine(content);
        float year = 0, north = 0, south = 0;
        if (!common::takeFloat(line, year) || !common::takeFloat(line, north) ||
            !common::takeFloat(line, south))
            break;
        const auto row = static_cast<std::size_t>(table.n++);
        table.years[row] = year;
        table.northern[row] = north;
        table.southern[row] = south;
    }
    return table;
}

void loadHistories(const std::string& atmhistFolder, ATMHISTORIES& histories)
{
    for (std::size_t gas = 0; gas < historyFiles.size(); ++gas) {
        const auto content = common::readFile(atmhistFolder + std::string(historyFiles[gas]), largestFile);
        histories[gas] = content ? parseHistory(*content) : ATMHISTORY{};
    }
}

} // namespace variables
