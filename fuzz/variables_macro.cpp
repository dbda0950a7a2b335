// Macro files and their formulas: whatever the bytes are, a macro that is read reads back from what is
// written as the same, and its formula evaluates, block by block as sample by sample.

#include <cmath>
#include <cstdint>
#include <string_view>
#include <vector>

#include "common/limits.h"
#include "fuzzsupport.h"
#include "variables/formula.h"
#include "variables/macrofile.h"

namespace {

using fuzzing::require;
using variables::MACRO;

void checkFields(const MACRO& macro)
{
    require(macro.nInputs >= 0 && macro.nInputs <= variables::maxMacroInputs);
    require(macro.decimals >= 0 && macro.decimals <= 4);
    require(macro.width >= macro.decimals + 3 && macro.width <= macro.decimals + 15);
    require(macro.label.size() <= 60);
    require(macro.comment.size() <= variables::longestMacroComment);
    for (const std::string& input : macro.inputs) require(input.size() <= 60);
}

// The second time at the latest: by then all is in the form in which it is stored.
void checkAgain(const MACRO& macro)
{
    MACRO again, third;
    variables::MACROFAULT fault;
    require(variables::parseMacro(variables::formatMacro(macro), again, fault));
    require(again.nInputs == macro.nInputs && again.width == macro.width);
    require(variables::parseMacro(variables::formatMacro(again), third, fault));
    require(third.nInputs == again.nInputs && third.decimals == again.decimals);
}

void checkFormula(std::string_view text, int inputs)
{
    constexpr std::size_t samples = 300;
    const variables::RFormula formula(text, inputs);
    std::vector<std::vector<float>> columns;
    std::vector<std::span<const float>> all;
    for (int i = 0; i < inputs; ++i) {
        std::vector<float> column(samples);
        for (std::size_t k = 0; k < samples; ++k)
            column[k] = static_cast<float>(static_cast<int>(k % 7) - 3) * static_cast<float>(i + 1);
        column[5] = common::MISSING_VALUE;
        columns.push_back(std::move(column));
    }
    for (const std::vector<float>& column : columns) all.emplace_back(column);
    const variables::STATIONTERMS terms{95.5f, 200, 30, -10};
    std::vector<float> out(samples), one(1);
    require(formula.evaluate(all, terms, out) == static_cast<int>(inputs > 0 ? samples - 1 : samples));
    for (std::size_t k = 0; k < samples; k += 37) {
        std::vector<std::span<const float>> single;
        for (const std::span<const float> column : all) single.push_back(column.subspan(k, 1));
        require(formula.evaluate(single, terms, one) >= 0);
        require(one[0] == out[k] && std::isfinite(one[0]));
    }
    const std::string fault = variables::formulaFault(text, inputs);
    require(fault.size() < 300);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view content(reinterpret_cast<const char*>(data), size);
    MACRO macro;
    variables::MACROFAULT fault;
    if (variables::parseMacro(content, macro, fault)) {
        checkFields(macro);
        checkAgain(macro);
        const std::string formula = variables::joinedFormula(macro.expression);
        require(formula.size() < static_cast<std::size_t>(common::formulaLength));
        checkFormula(formula, macro.nInputs);
    } else {
        require(fault.line >= 1 && !fault.text.empty() && fault.text.size() < 300);
    }
    checkFormula(content, 2);
    return 0;
}
