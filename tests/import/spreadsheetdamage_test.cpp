// Spreadsheets that were damaged at random: reading them ends, keeps the limits, and is repeatable.

#include <random>

#include <gtest/gtest.h>

#include "import/headercheck.h"
#include "import/linereader.h"
#include "import/spreadsheetfixture.h"

namespace {

using namespace importing;
using namespace testing_support;

std::string goodFile()
{
    std::string text = metaHeader + "\tDepth [m]\tQF\tTemperature [°C]\tQF\tSalinity\tQF\n";
    for (int i = 0; i < 12; ++i)
        text += line(std::to_string(i / 4), common::format("%d.5\t0\t%d,25\t4\t%de-2\t8", i, i, 3000 + i));
    return text;
}

std::string damaged(std::string text, std::mt19937& random)
{
    constexpr std::string_view bytes = "\"\t\n\r\0 ;/,.-+e0123456789\xFF\xC3\x80";
    for (unsigned i = 0; i < 1 + random() % 8; ++i) {
        const std::size_t at = random() % text.size();
        const std::size_t length = std::min<std::size_t>(random() % 40, text.size() - at);
        switch (random() % 4) {
        case 0:
            text[at] = bytes[random() % bytes.size()];
            break;
        case 1:
            text.erase(at, length);
            break;
        case 2:
            text.insert(random() % text.size(), text.substr(at, length));
            break;
        default:
            text.insert(at, 1 + random() % 3, bytes[random() % bytes.size()]);
            break;
        }
        if (text.empty()) text = "x";
    }
    return text;
}

void expectSound(const READSTATION& station)
{
    const int levels = station.counts[1];
    ASSERT_GE(levels, 1);
    for (std::size_t v = 1; v < station.values.size(); ++v) {
        ASSERT_TRUE(station.values[v].empty() ||
                    station.values[v].size() == static_cast<std::size_t>(levels));
        ASSERT_LE(station.counts[v], levels);
    }
    collection::STATIONHDR header = station.header;
    std::string message;
    ASSERT_TRUE(checkHeader(header, message)) << message;
}

// Every line and every value is accounted for.
void expectAccount(const RSpreadsheetFixture& file, const std::string& content)
{
    expectSums(file.account);
    std::int64_t levels = 0, values = 0;
    for (const READSTATION& station : file.stations) {
        levels += station.counts[1];
        for (const std::vector<float>& column : station.values)
            values += std::count_if(column.begin(), column.end(),
                                    [](float value) { return value != common::MISSING_VALUE; });
    }
    ASSERT_EQ(file.account.dataLines, levels);
    ASSERT_EQ(file.account.valuesDelivered, values);
    if (file.account.lines == 0) return; // the header did not pass
    importing::RLineReader lines;
    ASSERT_TRUE(lines.open(file.path()));
    std::string_view text;
    while (lines.next(text) == importing::RLineReader::Result::line) {
    }
    ASSERT_EQ(file.account.lines, lines.lineNumber()) << content;
}

TEST(DamagedSpreadsheet, RandomDamageKeepsTheLimitsAndReadsTheSameTwice)
{
    const std::string good = goodFile();
    std::mt19937 random(99);
    int withStations = 0;
    for (int round = 0; round < 3000; ++round) {
        const std::string content = damaged(good, random);
        RSpreadsheetFixture first, second;
        first.read(content);
        second.read(content);
        ASSERT_EQ(first.stations, second.stations) << round;
        ASSERT_LE(first.bytes, static_cast<std::int64_t>(content.size()));
        for (const READSTATION& station : first.stations) expectSound(station);
        expectAccount(first, content);
        ASSERT_FALSE(HasFatalFailure()) << round;
        withStations += first.stations.empty() ? 0 : 1;
    }
    EXPECT_GT(withStations, 500); // the damage leaves something to read
}

} // namespace
