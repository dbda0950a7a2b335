#include "variables/formula.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"

namespace variables {
namespace {

enum Op : std::int32_t {
    opInput,
    opNumber,
    opTime,
    opDayOfYear,
    opLongitude,
    opLatitude,
    opAdd,
    opMultiply,
    opSubtract,
    opDivide,
    opPower,
    opSquareRoot,
    opLogarithm,
    opExponential,
    opSine,
    opCosine,
    opMinimum,
    opMaximum
};

struct WORDROW {
    std::string_view word;
    Op op;
    int takes; // values from the stack; it always leaves one
};

constexpr std::array<WORDROW, 16> words = {{{"%t", opTime, 0},
                                            {"%d", opDayOfYear, 0},
                                            {"%x", opLongitude, 0},
                                            {"%y", opLatitude, 0},
                                            {"+", opAdd, 2},
                                            {"*", opMultiply, 2},
                                            {"-", opSubtract, 2},
                                            {"/", opDivide, 2},
                                            {"**", opPower, 2},
                                            {"sqrt", opSquareRoot, 1},
                                            {"ln", opLogarithm, 1},
                                            {"exp", opExponential, 1},
                                            {"sin", opSine, 1},
                                            {"cos", opCosine, 1},
                                            {"min", opMinimum, 2},
                                            {"max", opMaximum, 2}}};

bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The next word; empty behind the last.
std::string_view takeWord(std::string_view& rest)
{
    const auto begin = std::find_if_not(rest.begin(), rest.end(), isBlank);
    const auto end = std::find_if(begin, rest.end(), isBlank);
    const std::string_view word(begin, end);
    rest = std::string_view(end, rest.end());
    return word;
}

// The number at the front of a word, as "%f" reads it; `rest` is what stands behind it.
bool readNumber(std::string_view word, float& value, std::string_view& rest)
{
    rest = word;
    const bool negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) rest.remove_prefix(1);
    if (rest.starts_with("0x") || rest.starts_with("0X")) {
        const auto [end, error] =
            std::from_chars(rest.data() + 2, rest.data() + rest.size(), value, std::chars_format::hex);
        if (error != std::errc() || !std::isfinite(value)) return false;
        if (negative) value = -value;
        rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
        return true;
    }
    rest = word;
    return common::takeFloat(rest, value);
}

// A word as evaluation takes it, and what whoever defines a formula may not write.
struct MEANING {
    Op op = opNumber;
    int takes = 0, input = 0;
    float value = 0;
    bool known = false;  // it can be evaluated
    bool proper = false; // nothing stands in it that would be passed over
};

MEANING meaningOfInput(std::string_view word, int inputs)
{
    MEANING meaning;
    meaning.op = opInput;
    std::string_view rest = word.substr(1);
    meaning.known = common::takeInt(rest, meaning.input) && meaning.input >= 1 && meaning.input <= inputs;
    meaning.proper = word == common::format("#%d", meaning.input);
    return meaning;
}

MEANING meaningOf(std::string_view word, int inputs)
{
    if (word.find('#') != std::string_view::npos) return meaningOfInput(word, inputs);
    for (const WORDROW& row : words) {
        if (row.word == word) return {row.op, row.takes, 0, 0, true, true};
    }
    MEANING meaning;
    std::string_view rest;
    meaning.known = readNumber(word, meaning.value, rest);
    meaning.proper = meaning.known && rest.empty();
    return meaning;
}

// A word for a message: not too long, and nothing that moves the cursor.
std::string shown(std::string_view word)
{
    constexpr std::size_t longest = 40;
    std::string text = common::labelToUtf8(common::cutAtCharacter(word, longest));
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < 32 || c == 127) c = '?';
    }
    return "\"" + text + (word.size() > longest ? "...\"" : "\"");
}

std::string inputFault(const MEANING& meaning, int inputs)
{
    if (!meaning.proper) return "an input is written as #1, #2 and so on";
    if (meaning.input < 1) return "inputs are numbered from 1";
    return inputs == 0 ? "the formula has no inputs" : common::format("the last input is #%d", inputs);
}

std::string wordFault(const MEANING& meaning, int inputs, int values)
{
    if (meaning.op == opInput && !(meaning.known && meaning.proper)) return inputFault(meaning, inputs);
    if (!meaning.proper) return "neither an operator, an operand nor a number";
    if (values < meaning.takes)
        return common::format("takes %d value%s, and %s there", meaning.takes, meaning.takes == 1 ? "" : "s",
                              values == 0 ? "none is" : "only one is");
    return {};
}

// --- columns of samples

constexpr std::size_t blockLength = 256; // so that a few columns stay in the nearest cache

enum Sample : std::uint8_t { samplePresent, sampleEnded, sampleMissing };

template <typename F>
void apply(float* a, std::size_t n, F function)
{
    for (std::size_t i = 0; i < n; ++i) a[i] = static_cast<float>(function(static_cast<double>(a[i])));
}

template <typename F>
void combine(float* a, const float* b, std::size_t n, F function)
{
    for (std::size_t i = 0; i < n; ++i) a[i] = function(a[i], b[i]);
}

float powerOf(float a, float b)
{
    return static_cast<float>(std::pow(static_cast<double>(a), static_cast<double>(b)));
}

} // namespace

STATIONTERMS stationTerms(const collection::STATIONHDR& header)
{
    constexpr float yearsPerDay = 0.002739726f;
    STATIONTERMS terms;
    terms.dayOfYear = static_cast<float>(header.day - 30 + header.month * 30);
    // In double precision: next to the year itself a float has no more than an hour.
    terms.time = static_cast<float>(header.year + static_cast<double>(terms.dayOfYear) * yearsPerDay - 1900);
    terms.longitude = header.longitude;
    terms.latitude = header.latitude;
    return terms;
}

std::string formulaFault(std::string_view text, int inputs)
{
    if (text.size() > common::formulaLength)
        return common::format("The formula is longer than %d characters.", common::formulaLength);
    int values = 0, place = 0;
    for (std::string_view rest = text, word = takeWord(rest); !word.empty(); word = takeWord(rest)) {
        ++place;
        const MEANING meaning = meaningOf(word, inputs);
        const std::string fault = wordFault(meaning, inputs, values);
        if (!fault.empty())
            return common::format("Word %d, %s: %s.", place, shown(word).c_str(), fault.c_str());
        values += 1 - meaning.takes;
    }
    if (place == 0) return "The formula is empty.";
    if (values > 1)
        return common::format("The formula leaves %d values behind its last word; it must leave one.",
                              values);
    return {};
}

RFormula::RFormula(std::string_view text, int inputs) : text_(text), inputs_(std::max(inputs, 0))
{
    std::size_t values = 0;
    if (text.size() > common::formulaLength) return;
    for (std::string_view rest = text, word = takeWord(rest); !word.empty(); word = takeWord(rest)) {
        const MEANING meaning = meaningOf(word, inputs_);
        const auto takes = static_cast<std::size_t>(meaning.takes);
        if (!meaning.known || values < takes) return;
        values += 1 - takes;
        depth_ = std::max(depth_, values);
        steps_.push_back({meaning.op, meaning.input - 1, meaning.value});
    }
    isFaulty_ = steps_.empty();
}

// Samples first to first + length, and the columns of values that they are computed in.
struct RFormula::BLOCK {
    explicit BLOCK(std::size_t depth) : columns(depth * blockLength) {}

    void begin(std::size_t firstSample, std::size_t count)
    {
        first = firstSample;
        length = count;
        used = 0;
        samples.fill(samplePresent);
    }
    [[nodiscard]] float* column(std::size_t fromTop) { return &columns[(used - 1 - fromTop) * blockLength]; }
    void push(float value)
    {
        ++used;
        std::fill_n(column(0), length, value);
    }
    void push(std::span<const float> values)
    {
        ++used;
        std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(first), length, column(0));
    }
    template <typename F>
    void binary(F function)
    {
        combine(column(1), column(0), length, function);
        --used;
    }
    template <typename F>
    void unary(F function)
    {
        apply(column(0), length, function);
    }
    void divide()
    {
        const float* const divisor = column(0);
        for (std::size_t i = 0; i < length; ++i) {
            if (divisor[i] == 0) samples[i] = std::max<std::uint8_t>(samples[i], sampleEnded);
        }
        binary([](float a, float b) { return a / b; });
    }
    // Samples that lack an input.
    void markMissing(std::span<const float> values)
    {
        for (std::size_t i = 0; i < length; ++i) {
            if (values[first + i] == common::MISSING_VALUE) samples[i] = sampleMissing;
        }
    }

    std::vector<float> columns;
    std::array<std::uint8_t, blockLength> samples{};
    std::size_t first = 0, length = 0, used = 0;
};

void RFormula::run(BLOCK& block, std::span<const std::span<const float>> inputs,
                   const STATIONTERMS& terms) const
{
    for (const STEP& step : steps_) {
        switch (step.op) {
        case opInput:
            block.push(inputs[static_cast<std::size_t>(step.input)]);
            break;
        case opNumber:
            block.push(step.value);
            break;
        case opTime:
            block.push(terms.time);
            break;
        case opDayOfYear:
            block.push(terms.dayOfYear);
            break;
        case opLongitude:
            block.push(terms.longitude);
            break;
        case opLatitude:
            block.push(terms.latitude);
            break;
        case opAdd:
            block.binary([](float a, float b) { return a + b; });
            break;
        case opMultiply:
            block.binary([](float a, float b) { return a * b; });
            break;
        case opSubtract:
            block.binary([](float a, float b) { return a - b; });
            break;
        case opDivide:
            block.divide();
            break;
        case opPower:
            block.binary(powerOf);
            break;
        case opSquareRoot:
            block.unary([](double a) { return std::sqrt(a); });
            break;
        case opLogarithm:
            block.unary([](double a) { return std::log(a); });
            break;
        case opExponential:
            block.unary([](double a) { return std::exp(a); });
            break;
        case opSine:
            block.unary([](double a) { return std::sin(a); });
            break;
        case opCosine:
            block.unary([](double a) { return std::cos(a); });
            break;
        case opMinimum:
            block.binary([](float a, float b) { return b < a ? b : a; });
            break;
        case opMaximum:
            block.binary([](float a, float b) { return b > a ? b : a; });
            break;
        default:
            break;
        }
    }
}

int RFormula::evaluate(std::span<const std::span<const float>> inputs, const STATIONTERMS& terms,
                       std::span<float> out) const
{
    BLOCK block(isFaulty_ ? 0 : depth_);
    int count = 0;
    for (std::size_t first = 0; first < out.size(); first += blockLength) {
        block.begin(first, std::min(blockLength, out.size() - first));
        for (const std::span<const float> values : inputs.first(static_cast<std::size_t>(inputs_)))
            block.markMissing(values);
        if (!isFaulty_) run(block, inputs, terms);
        const float* const results = isFaulty_ ? nullptr : block.column(0);
        for (std::size_t i = 0; i < block.length; ++i) {
            const bool isResult = results && block.samples[i] == samplePresent && std::isfinite(results[i]);
            out[first + i] = isResult ? results[i] : common::MISSING_VALUE;
            count += block.samples[i] != sampleMissing;
        }
    }
    return count;
}

} // namespace variables
