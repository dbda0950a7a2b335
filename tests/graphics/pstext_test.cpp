#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "graphics/pstext.h"

namespace {

std::string fast(double value)
{
    char text[graphics::numberTextSize];
    return {text, static_cast<std::size_t>(graphics::writeNumber(text, value))};
}

std::string reference(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

TEST(WriteNumber, EdgeValuesReadAsPrintfWritesThem)
{
    for (const double value :
         {0.0,           -0.0,        1.0,       -1.0,          0.1,      0.5,      1e-4,     9.9999949e-5,
          9.9999951e-5,  99999.95,    999999.0,  999999.4,      999999.5, 1e6,      123456.5, 123457.5,
          0.00012345650, 1234565e-1,  2.5e-5,    1e300,         -1e-300,  1e-310,   100000.0, -28.35,
          359.9999999,   0.099999951, 0.0999999, 9.99999499999, 9.999995, 99.99995, 999.9995, 9999.995}) {
        EXPECT_EQ(fast(value), reference(value)) << value;
    }
    EXPECT_EQ(fast(HUGE_VAL), reference(HUGE_VAL));
}

TEST(WriteNumber, AnyBitPatternReadsAsPrintfWritesIt)
{
    constexpr unsigned seed = 20251;
    std::mt19937_64 random(seed);
    for (int i = 0; i < 200000; ++i) {
        const std::uint64_t bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isnan(value)) continue;
        ASSERT_EQ(fast(value), reference(value)) << "seed " << seed << ", bits " << bits;
    }
}

TEST(WriteNumber, CoordinatesReadAsPrintfWritesThem)
{
    constexpr unsigned seed = 7;
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> exponent(-5, 7), sign(-1, 1);
    for (int i = 0; i < 400000; ++i) {
        const double value = std::copysign(std::pow(10.0, exponent(random)), sign(random));
        ASSERT_EQ(fast(value), reference(value)) << "seed " << seed;
        const auto single = static_cast<float>(value);
        ASSERT_EQ(fast(single), reference(single)) << "seed " << seed;
    }
}

TEST(WriteNumber, DecimalFractionsAtTheRoundingEdgeReadAsPrintfWritesThem)
{
    for (int mantissa = 1000000; mantissa < 10000000; mantissa += 7905) { // seven digits, the last is a 5
        const double value = (mantissa / 10 * 10 + 5) * 1e-4;
        ASSERT_EQ(fast(value), reference(value));
        ASSERT_EQ(fast(value * 1e-3), reference(value * 1e-3));
    }
}

TEST(RPsWriter, LongOutputArrivesWhole)
{
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    std::string expected;
    {
        graphics::RPsWriter out(file);
        for (int i = 0; i < 20000; ++i) {
            out.point(i * 0.5, -i, "M").gridPoint(i, 2 * i, "R");
            expected += reference(i * 0.5) + " " + std::to_string(-i) + " M\n" + std::to_string(i) + " " +
                        std::to_string(2 * i) + " R\n";
        }
        const std::string large(40000, 'x');
        out.text(large);
        expected += large;
    }
    std::string read(expected.size() + 1, '\0');
    std::rewind(file);
    read.resize(std::fread(read.data(), 1, read.size(), file));
    std::fclose(file);
    EXPECT_EQ(read, expected);
}

TEST(RPsWriter, NoStream_TakesTextAndKeepsNothing)
{
    graphics::RPsWriter out(nullptr);
    for (int i = 0; i < 5000; ++i) out.number(i).text(std::string(100, ' '));
    SUCCEED();
}

} // namespace
