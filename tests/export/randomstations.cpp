#include "randomstations.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "common/text.h"
#include "common/textcoding.h"

namespace testing_support {
namespace {

constexpr float missing = common::MISSING_VALUE;

} // namespace

// A label as the label rule leaves it: ASCII, Latin-1, UTF-8 of two and three bytes, numbers.
std::string RRandomStations::label(std::size_t bytes)
{
    static constexpr std::array<std::u16string_view, 4> alphabets = {
        u"abcXYZ 019_-+.,:;/\\'()[]{}<>~!@#$%^&*=|?\"x", u"ÅØéüß°µÿ¡ Ab1", u"λΩЖя Ő1a", u"0123456789.-"};
    const std::u16string_view alphabet = alphabets[static_cast<std::size_t>(between(0, 3))];
    QString text;
    const int length = between(0, 3) == 0 ? static_cast<int>(bytes) : between(0, static_cast<int>(bytes));
    for (int i = 0; i < length; ++i)
        text += QChar(alphabet[static_cast<std::size_t>(between(0, static_cast<int>(alphabet.size()) - 1))]);
    std::string cut = common::encodeLabel(text, bytes);
    // What the rule takes away may uncover more of it.
    for (std::string trimmed; trimmed != cut; trimmed = common::trimLabel(cut)) cut = common::trimLabel(cut);
    return cut;
}

float RRandomStations::floatOfSixDigits()
{
    const std::string text = common::format("%de%d", between(-999999, 999999),
                                            between(0, 4) > 0 ? between(-6, 0) : between(-42, 32));
    const float number = std::strtof(text.c_str(), nullptr);
    return std::isnormal(number) ? number : 0.0f;
}

float RRandomStations::value()
{
    if (!kind_.anyFloat) return floatOfSixDigits();
    using Limits = std::numeric_limits<float>;
    static constexpr std::array<float, 16> special = {
        0.0f,          -0.0f,
        Limits::max(), Limits::lowest(),
        Limits::min(), Limits::denorm_min(),
        999999.5f,     9999995.0f,
        1e-4f,         9.999995e-5f,
        1e10f,         std::nextafter(missing, 0.0f),
        -1.000001e10f, -9.99999e9f,
        16777217.0f,   std::nextafter(missing, Limits::lowest())};
    if (between(0, 9) == 0) return special[static_cast<std::size_t>(between(0, 15))];
    const float any = std::bit_cast<float>(static_cast<std::uint32_t>(random_()));
    return std::isfinite(any) ? any : floatOfSixDigits();
}

void RRandomStations::fillHeader(collection::STATIONHDR& header)
{
    static constexpr std::array<const char*, 6> types = {"B", "C", "X", "q", "7", "\xC9"};
    do {
        common::copyText(header.cruise, label(20));
        common::copyText(header.station, label(20));
        common::copyText(header.type, types[static_cast<std::size_t>(between(0, 5))]);
    } while (!keys_.insert(std::string(header.cruise) + '\t' + header.station + '\t' + header.type).second);
    header.longitude = static_cast<float>(between(0, 35999)) / 100;
    header.latitude = static_cast<float>(between(-9000, 9000)) / 100;
    header.bottomDepth =
        static_cast<float>(between(0, 3) == 0 ? between(-999999, 999999) : between(0, 11000));
    header.month = static_cast<std::int16_t>(between(1, 12));
    header.day = static_cast<std::int16_t>(between(1, 31));
    header.year = static_cast<std::int16_t>(between(0, 5) == 0 ? between(100, 32767) : between(1899, 2100));
    header.hour = static_cast<std::int16_t>(between(0, 23));
    header.minute = static_cast<std::int16_t>(between(0, 59));
}

void RRandomStations::fillValues(collection::STATIONDATA& station, int levels, double missingShare,
                                 std::size_t& cell)
{
    std::bernoulli_distribution isMissing(missingShare);
    for (int k = 0; k < levels; ++k, ++cell) {
        station.values[cell] = isMissing(random_) ? missing : value();
        station.flags[cell] = static_cast<std::uint8_t>(between(0, 255));
    }
}

int RRandomStations::levels()
{
    switch (between(0, 9)) {
    case 0:
        return 1;
    case 1:
        return between(249, 252);
    default:
        return between(1, kind_.mostLevels);
    }
}

void RRandomStations::fill(collection::STATIONDATA& station, int variables, int levels)
{
    static constexpr std::array<double, 4> shares = {0, 0.1, 0.5, 1};
    station.clear();
    fillHeader(station.header);
    std::size_t cell = 0;
    for (int v = 1; v <= variables; ++v) {
        station.offset.at(static_cast<std::size_t>(v)) = static_cast<std::int32_t>(cell);
        const bool often = v > 1 || between(0, 4) == 0;
        fillValues(station, levels, often ? shares[static_cast<std::size_t>(between(0, 3))] : 0, cell);
    }
    std::sort(station.values.get(), station.values.get() + levels);
    for (std::size_t i = 0; i < cell; ++i) {
        if (station.values[i] == missing) station.flags[i] = collection::flagUnknown;
    }
    station.levelCount[1] = static_cast<std::int16_t>(levels);
    station.header.valueCount = static_cast<std::int32_t>(cell);
}

void RRandomStations::fillCollection(collection::RCollection& collection)
{
    collection::STATIONDATA station;
    for (int i = 0; i < kind_.stations; ++i) {
        fill(station, collection.variableCount, levels());
        ASSERT_EQ(collection.writeStation(0, station, false), collection::WriteResult::ok);
    }
}

} // namespace testing_support
