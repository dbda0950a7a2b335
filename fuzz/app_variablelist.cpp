// Any bytes as a list of variables: what comes out fits a collection, and what is refused is named with its
// line.

#include <cstdlib>

#include "app/variablelist.h"
#include "common/limits.h"
#include "common/text.h"

namespace {

void require(bool truth)
{
    if (!truth) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int oldCount = 7;
    std::string fault;
    const auto variables = app::parseVariableList(std::string_view(reinterpret_cast<const char*>(data), size),
                                                  "f", oldCount, fault);
    require(variables.empty() != fault.empty());
    require(fault.empty() || fault.starts_with("f:"));
    require(variables.size() != 1 && variables.size() <= common::maxVariables + 1);
    for (std::size_t v = 1; v < variables.size(); ++v) {
        const collection::VARINFO& variable = variables[v];
        require(!common::fieldText(variable.label).empty());
        require(variable.decimals >= 0 && variable.decimals <= 4);
        require(variable.width >= variable.decimals + 3 && variable.width <= variable.decimals + 15);
        require(variable.assocSource >= 0 && variable.assocSource <= oldCount);
    }
    return 0;
}
