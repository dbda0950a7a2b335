#pragma once

// Tables of what a numeric function gives, for parametrised tests.

#include <array>
#include <ostream>

#include <gtest/gtest.h>

namespace testing_support {

// One value: the arguments in the order of the function.
struct CHECK {
    std::array<float, 4> in;
    double expected, tolerance;
};

inline std::ostream& operator<<(std::ostream& out, const CHECK& check)
{
    for (const float argument : check.in) out << argument << ' ';
    return out << "-> " << check.expected;
}

// A row of a printed table: salinity, pressure [dbar], and the values at these temperatures [degC].
inline constexpr std::array<float, 5> rowTemperatures = {0, 10, 20, 30, 40};
struct ROW {
    float salinity, pressure;
    std::array<double, 5> expected;
};

inline std::ostream& operator<<(std::ostream& out, const ROW& row)
{
    return out << "S " << row.salinity << " p " << row.pressure;
}

// Compares a row with valueAt(temperature).
template <typename ValueAt>
void expectRow(const ROW& row, double tolerance, ValueAt valueAt)
{
    for (std::size_t i = 0; i < rowTemperatures.size(); ++i)
        EXPECT_NEAR(valueAt(rowTemperatures.at(i)), row.expected.at(i), tolerance)
            << "temperature " << rowTemperatures.at(i);
}

} // namespace testing_support
