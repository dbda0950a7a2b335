#pragma once

// Formulas in reverse Polish notation over the inputs of a variable, compiled once and evaluated for whole
// blocks of samples. Words are separated by blanks:
//   #n                        input n at the sample
//   %t %d %x %y               time, day of the year, longitude, latitude of the station
//   + * - / **                pop b, pop a, push a op b
//   sqrt ln exp sin cos       of the top of the stack; radians, natural logarithm
//   min max                   pop b, pop a, push the smaller or the larger
//   anything else             a number
// Arithmetic is in single precision; functions are computed in double precision and rounded back. The top of
// the stack is the result.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "collection/stationdata.h"

namespace variables {

// What %t, %d, %x and %y stand for.
struct STATIONTERMS {
    float time = 0;      // years since 1900, with `dayOfYear` / 365
    float dayOfYear = 0; // day - 30 + 30 month: 361 on 31 December
    float longitude = 0, latitude = 0;
};
[[nodiscard]] STATIONTERMS stationTerms(const collection::STATIONHDR& header);

// What is wrong with a formula, for whoever defines it: an unknown word, too few values on the stack, more
// than one left at the end, an input outside 1 to `inputs`, no word at all, 500 bytes and more. Names the
// word and its place in the formula; empty if nothing is wrong.
[[nodiscard]] std::string formulaFault(std::string_view text, int inputs);

// Evaluations keep nothing in it: one formula serves any number of threads.
class RFormula {
public:
    RFormula() = default;
    // Compiles any text. More than one value left is no fault here; where a value, a number or an input isn't
    // there, all samples are missing, but count.
    RFormula(std::string_view text, int inputs);
    [[nodiscard]] const std::string& text() const { return text_; }
    [[nodiscard]] int inputs() const { return inputs_; }

    // Evaluates out.size() samples. inputs[n - 1] holds those of #n, at least as many; all of inputs() must
    // be there. A sample with a missing input is missing, whether the formula uses it or not; so is one that
    // divides by zero or whose result isn't finite. Returns how many samples count as present: those without
    // a missing input.
    int evaluate(std::span<const std::span<const float>> inputs, const STATIONTERMS& terms,
                 std::span<float> out) const;

private:
    struct STEP {
        std::int32_t op = 0, input = 0;
        float value = 0;
    };
    struct BLOCK;
    void run(BLOCK& block, std::span<const std::span<const float>> inputs, const STATIONTERMS& terms) const;

    std::string text_;
    int inputs_ = 0;
    std::size_t depth_ = 0; // the most values on the stack
    bool isFaulty_ = true;
    std::vector<STEP> steps_;
};

} // namespace variables
