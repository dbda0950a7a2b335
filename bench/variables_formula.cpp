// Formulas of five operators over casts of different lengths.

#include <benchmark/benchmark.h>

#include <cmath>
#include <string>
#include <vector>

#include "common/limits.h"
#include "variables/formula.h"

namespace {

struct SAMPLES {
    std::vector<float> a, b, c, out;
};

// Every hundredth sample lacks an input.
SAMPLES samplesOf(std::size_t count)
{
    SAMPLES samples;
    for (std::size_t i = 0; i < count; ++i) {
        const auto n = static_cast<float>(i % 1000);
        samples.a.push_back(i % 100 == 99 ? common::MISSING_VALUE : 1 + n / 100);
        samples.b.push_back(35 + n / 1000);
        samples.c.push_back(2 + n / 500);
    }
    samples.out.resize(count);
    return samples;
}

void run(benchmark::State& state, const std::string& text, float (*expected)(float, float, float))
{
    SAMPLES samples = samplesOf(static_cast<std::size_t>(state.range(0)));
    const variables::RFormula formula(text, 3);
    const std::vector<std::span<const float>> inputs{samples.a, samples.b, samples.c};
    const int counted = formula.evaluate(inputs, {}, samples.out);
    const std::size_t last = samples.out.size() - 2;
    if (counted != static_cast<int>(samples.out.size() - samples.out.size() / 100) ||
        samples.out[last] != expected(samples.a[last], samples.b[last], samples.c[last])) {
        state.SkipWithError("wrong answer");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(formula.evaluate(inputs, {}, samples.out));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_fiveOperators(benchmark::State& state)
{
    run(state, "#1 #2 16 * - 2.9 + .87 * #3 /",
        [](float a, float b, float c) { return (a - b * 16 + 2.9f) * .87f / c; });
}
BENCHMARK(BM_fiveOperators)->Arg(30)->Arg(300)->Arg(3000)->Arg(30000)->Arg(300000);

void BM_fiveOperatorsWithFunctions(benchmark::State& state)
{
    run(state, "#1 ln #2 * exp #3 / sqrt", [](float a, float b, float c) {
        const auto rounded = [](double value) { return static_cast<float>(value); };
        return rounded(std::sqrt(double{rounded(std::exp(double{rounded(std::log(double{a})) * b})) / c}));
    });
}
BENCHMARK(BM_fiveOperatorsWithFunctions)->Arg(30)->Arg(3000)->Arg(300000);

void BM_longPolynomial(benchmark::State& state)
{
    // 32 operators.
    const std::string inner = "-.6676e-9 #1 * 4.7133e-8 + #1 * -1.0853e-6 + #1 * 7894e-9 + #1 * 136e-7 + ";
    run(state, inner + "#2 35 - * " + inner + "+ #2 35 - * " + inner + "+", [](float a, float b, float) {
        const float part = (((-.6676e-9f * a + 4.7133e-8f) * a + -1.0853e-6f) * a + 7894e-9f) * a + 136e-7f;
        return (part * (b - 35) + part) * (b - 35) + part;
    });
}
BENCHMARK(BM_longPolynomial)->Arg(3000)->Arg(300000);

} // namespace
