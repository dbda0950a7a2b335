#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "export/numberformat.h"

namespace {

std::string written(float value)
{
    std::string text;
    exporting::appendG(text, value);
    return text;
}

std::string printed(float value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    return text;
}

TEST(AppendG, AgreesWithPrintfOnRandomBits)
{
    std::mt19937 random(3);
    for (int i = 0; i < 1000000; ++i) {
        const auto bits = static_cast<std::uint32_t>(random());
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        ASSERT_EQ(written(value), printed(value)) << bits;
    }
}

TEST(AppendG, AgreesWithPrintfOnMeasuredValues)
{
    std::mt19937 random(4);
    for (int i = 0; i < 2000000; ++i) {
        const double scale = std::pow(10.0, static_cast<double>(random() % 12) - 5.0);
        const auto value =
            static_cast<float>((static_cast<double>(random() % 20000001) - 1e7) * 1e-7 * scale);
        ASSERT_EQ(written(value), printed(value));
    }
}

TEST(AppendG, RoundsExactHalvesToEvenAndCarries)
{
    for (const float value : {0.5f, 1.5f, 100000.5f, 100001.5f, 999999.5f, 999999.4375f, 99999.95f, 9.999995f,
                              0.9999995f, 0.00009999995f, 0.0001f, 1e6f, 123456.5f, 123457.5f, 1.0f / 3})
        EXPECT_EQ(written(value), printed(value));
}

TEST(AppendG, WritesEdgesLikePrintf)
{
    for (const float value : {0.0f, -0.0f, 1.0f, -1.0f, 10.0f, 100000.0f, 999999.0f, -1e10f, 1e-4f, 9.9e-5f,
                              std::numeric_limits<float>::max(), std::numeric_limits<float>::denorm_min()})
        EXPECT_EQ(written(value), printed(value));
}

TEST(AppendG, AgreesWithPrintfOnBothSidesOfEveryPowerOfTen)
{
    for (float power = 1e-6f; power < 1e8f; power *= 10) {
        float below = power, above = power;
        for (int i = 0; i < 200; ++i) {
            ASSERT_EQ(written(below), printed(below));
            ASSERT_EQ(written(-above), printed(-above));
            below = std::nextafter(below, 0.0f);
            above = std::nextafter(above, 1e9f);
        }
    }
}

TEST(PutByte, WritesEveryByte)
{
    for (int i = 0; i < 256; ++i) {
        char text[exporting::largestByte];
        char* const end = exporting::putByte(text, static_cast<unsigned char>(i));
        EXPECT_EQ(std::string(text, end), std::to_string(i));
    }
}

TEST(PutExact, WritesEnoughDigitsToReadTheSameFloatAgain)
{
    std::mt19937 random(5);
    for (int i = 0; i < 100000; ++i) {
        const auto bits = static_cast<std::uint32_t>(random());
        float value = 0, read = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        char text[exporting::largestG];
        char* const end = exporting::putExact(text, value);
        ASSERT_EQ(std::from_chars(text, end, read).ec, std::errc{});
        ASSERT_EQ(read, value);
    }
}

} // namespace
