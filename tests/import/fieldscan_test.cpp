#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "import/fieldscan.h"

namespace {

using namespace importing;

struct SCANNED {
    bool found = false;
    float value = 0;
    std::size_t length = 0;
};

SCANNED scan(const std::string& field, char separator = '\t')
{
    SCANNED result;
    const char* p = field.data();
    result.found = scanFloat(p, field.data() + field.size(), separator, result.value);
    result.length = static_cast<std::size_t>(p - field.data());
    return result;
}

bool sameBits(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

void expectLikeFromChars(const std::string& text)
{
    float expected = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), expected);
    ASSERT_EQ(error, std::errc{}) << text;
    const SCANNED result = scan(text);
    ASSERT_TRUE(result.found) << text;
    ASSERT_TRUE(sameBits(result.value, expected)) << text << ": " << result.value << ", not " << expected;
}

std::string randomDecimal(std::mt19937& random)
{
    const int whole = static_cast<int>(random() % 12), fraction = static_cast<int>(random() % 12);
    std::string text = random() % 3 == 0 ? "-" : "";
    for (int i = 0; i < whole; ++i) text += static_cast<char>('0' + random() % 10);
    if (whole == 0 || random() % 4 != 0) {
        text += '.';
        for (int i = 0; i < fraction + (whole == 0); ++i) text += static_cast<char>('0' + random() % 10);
    }
    if (random() % 20 == 0) text += "e" + std::to_string(static_cast<int>(random() % 40) - 20);
    return text;
}

TEST(ScanFloat, RandomDecimalsAreRoundedLikeTheLibrary)
{
    std::mt19937 random(20240501);
    for (int i = 0; i < 3000000; ++i) {
        expectLikeFromChars(randomDecimal(random));
        if (HasFatalFailure()) return;
    }
}

// The decimals of halfway points and of their neighbours: where two roundings could go wrong.
TEST(ScanFloat, DecimalsAroundHalfwayPointsAreRoundedOnce)
{
    std::mt19937 random(7);
    for (int i = 0; i < 1000000; ++i) {
        const auto bits = static_cast<std::uint32_t>(0x30000000 + random() % 0x20000000);
        float lower = 0;
        std::memcpy(&lower, &bits, sizeof lower);
        const double middle =
            (static_cast<double>(lower) + static_cast<double>(std::nextafterf(lower, INFINITY))) / 2;
        char text[64];
        const int digits = 9 + static_cast<int>(random() % 9);
        const auto end =
            std::to_chars(text, text + sizeof text, middle, std::chars_format::fixed, digits).ptr;
        expectLikeFromChars(std::string(text, end));
        if (HasFatalFailure()) return;
    }
}

TEST(ScanFloat, TheFirstCommaStandsForAPoint)
{
    EXPECT_FLOAT_EQ(scan("1,5").value, 1.5f);
    EXPECT_FLOAT_EQ(scan("-0,25").value, -0.25f);
    EXPECT_FLOAT_EQ(scan("1,5e2").value, 150.0f);
    EXPECT_FLOAT_EQ(scan(",5").value, 0.5f);
}

TEST(ScanFloat, ASecondCommaEndsTheNumber)
{
    const SCANNED result = scan("1,000,5");
    EXPECT_TRUE(result.found);
    EXPECT_EQ(result.value, 1.0f);
    EXPECT_EQ(result.length, 5u);
}

TEST(ScanFloat, TextThatIsNoNumberIsNotTaken)
{
    for (const char* text : {"", "x", "-", "+", ".", ",", "e5", "inf", "nan", "- 5", "--5", "+-5", "-inf"})
        EXPECT_FALSE(scan(text).found) << text;
}

TEST(ScanFloat, TakesTheNumberInFrontOfOtherText)
{
    EXPECT_EQ(scan("12abc").value, 12.0f);
    EXPECT_EQ(scan("0x10").value, 0.0f);
    EXPECT_EQ(scan("  +3.5 ").value, 3.5f);
    EXPECT_EQ(scan("1e").value, 1.0f);
}

TEST(ScanFloat, BeyondTheRangeOfFloatThereIsNoValueAndBelowItZero)
{
    EXPECT_FALSE(scan("1e39").found);
    EXPECT_FALSE(scan("-1e400").found);
    EXPECT_TRUE(scan("1e-60").found);
    EXPECT_EQ(scan("1e-60").value, 0.0f);
    EXPECT_FLOAT_EQ(scan("1e-40").value, 1e-40f);
    EXPECT_TRUE(sameBits(scan("3.4028235e38").value, 3.4028235e38f));
}

TEST(ScanFloat, ManyDigitsAreRead)
{
    EXPECT_FLOAT_EQ(scan("0.00000000000000000000000000001").value, 1e-29f);
    EXPECT_FLOAT_EQ(scan("12345678901234567890123456789").value, 1.2345679e28f);
    EXPECT_FLOAT_EQ(scan(std::string(5000, '0') + "7.5").value, 7.5f);
}

TEST(ScanFloat, StaysWithinItsField)
{
    EXPECT_FALSE(scan("\t5").found);
    const SCANNED result = scan("1e\t5");
    EXPECT_EQ(result.value, 1.0f);
    EXPECT_LE(result.length, 2u);
    EXPECT_EQ(scan("1;5", ';').length, 1u);
}

TEST(ScanInt, ReadsWhatPercentDReads)
{
    const auto number = [](const std::string& field, int otherwise) {
        const char* p = field.data();
        int value = otherwise;
        return scanInt(p, field.data() + field.size(), '\t', value) ? value : otherwise;
    };
    EXPECT_EQ(number("8", -1), 8);
    EXPECT_EQ(number(" 4.7", -1), 4);
    EXPECT_EQ(number("-3", 99), -3);
    EXPECT_EQ(number("+2", 99), 2);
    EXPECT_EQ(number("2147483647", -1), 2147483647);
    EXPECT_EQ(number("2147483648", -1), -1);
    EXPECT_EQ(number("99999999999999999999999999", -1), -1);
    EXPECT_EQ(number("", -1), -1);
    EXPECT_EQ(number("x", -1), -1);
}

TEST(ScanDouble, KeepsTheDigitsOfADate)
{
    const std::string field = "20240131,75";
    const char* p = field.data();
    double value = 0;
    ASSERT_TRUE(scanDouble(p, field.data() + field.size(), '\t', value));
    EXPECT_EQ(value, 20240131.75);
}

} // namespace
