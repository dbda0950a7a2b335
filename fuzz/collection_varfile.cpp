// The description of a collection: whatever is accepted keeps its limits and survives being written again.

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "collection/cruisetable.h"
#include "collection/varfile.h"
#include "common/text.h"

namespace {

using collection::VARDESCRIPTION;
using collection::VARFAULT;
using collection::VarFileResult;

void require(bool condition)
{
    if (!condition) std::abort();
}

void checkLimits(const VARDESCRIPTION& description)
{
    require(description.stationCount >= 0);
    require(description.variableCount >= 0 && description.variableCount <= common::maxVariables);
    require(!description.name.empty() && description.name.find('/') == std::string::npos);
    for (int v = 1; v <= description.variableCount; ++v) {
        const collection::VARINFO& variable = description.variables.at(static_cast<std::size_t>(v));
        require(variable.decimals >= 0 && variable.decimals <= 4);
        require(variable.width >= variable.decimals + 3 && variable.width <= variable.decimals + 15);
        require(std::memchr(variable.label, 0, sizeof variable.label));
        require(std::memchr(variable.plainLabel, 0, sizeof variable.plainLabel));
        require(std::memchr(variable.shortLabel, 0, sizeof variable.shortLabel));
    }
}

// Written and read, a description stays what it is from the second time on.
void checkRoundTrip(const VARDESCRIPTION& first)
{
    const auto write = [](const VARDESCRIPTION& d) {
        return formatVarFile(d.name, d.type, d.stationCount, d.variableCount, d.variables);
    };
    VARDESCRIPTION second, third;
    VARFAULT fault;
    require(parseVarFile(write(first), second, fault) == VarFileResult::ok);
    require(second.stationCount == first.stationCount && second.variableCount == first.variableCount);
    require(parseVarFile(write(second), third, fault) == VarFileResult::ok);
    require(write(third) == write(second));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    VARDESCRIPTION description;
    VARFAULT fault;
    if (parseVarFile(text, description, fault) == VarFileResult::ok) {
        require(fault.text.empty());
        checkLimits(description);
        checkRoundTrip(description);
    } else {
        require(!fault.text.empty() && fault.line >= 1 && fault.line <= 5);
        require(description.name.empty() && description.variableCount == 0);
    }
    collection::INVENTORY inventory;
    if (collection::parseInventory(text, inventory)) {
        for (const auto& entry : inventory.entries) {
            require(entry.firstNumber >= 1 && entry.lastNumber <= inventory.stations);
        }
    }
    return 0;
}
