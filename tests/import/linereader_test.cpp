#include <fstream>

#include <gtest/gtest.h>

#include "import/linereader.h"
#include "temporarydirectory.h"

namespace {

using importing::RLineReader;

struct LINES {
    std::vector<std::string> lines;
    RLineReader::Result end = RLineReader::Result::failed;
    std::int64_t bytes = 0;
    bool utf8 = false;
    std::pair<int, int> cuts; // how many, and the first line
};

LINES linesOf(const std::string& content)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string path = directory.file("lines.txt");
    std::ofstream(path, std::ios::binary) << content;
    RLineReader reader;
    EXPECT_TRUE(reader.open(path));
    LINES result;
    std::string_view line;
    while ((result.end = reader.next(line)) == RLineReader::Result::line) {
        result.lines.emplace_back(line);
        EXPECT_EQ(reader.lineNumber(), static_cast<int>(result.lines.size()));
        EXPECT_TRUE(*(line.data() + line.size()) == '\n' || *(line.data() + line.size()) == '\r');
    }
    result.bytes = reader.bytesRead();
    result.utf8 = reader.isUtf8();
    result.cuts = {reader.linesCut(), reader.firstCut()};
    return result;
}

using Lines = std::vector<std::string>;

TEST(LineReader, LineFeedsEndLines)
{
    EXPECT_EQ(linesOf("a\nb\n\nc\n").lines, (Lines{"a", "b", "", "c"}));
}

TEST(LineReader, CarriageReturnAndLineFeedEndALine)
{
    EXPECT_EQ(linesOf("a\r\nb\r\n").lines, (Lines{"a", "b"}));
}

TEST(LineReader, BareCarriageReturnsEndLinesIfTheFirstLineEndIsOne)
{
    EXPECT_EQ(linesOf("a\rb\r\rc").lines, (Lines{"a", "b", "", "c"}));
    EXPECT_EQ(linesOf("a\rb\r\nc\r").lines, (Lines{"a", "b", "c"}));
}

TEST(LineReader, ALineIsCutAtItsFirstCarriageReturn)
{
    EXPECT_EQ(linesOf("a\nb\rc\nd\n").lines, (Lines{"a", "b", "d"}));
}

TEST(LineReader, TextBehindACutIsCountedWithItsFirstLine)
{
    EXPECT_EQ(linesOf("a\nb\rc\nd\re\n").cuts, (std::pair{2, 2}));
    EXPECT_EQ(linesOf("a\rb\nc\r").cuts, (std::pair{1, 2}));
    EXPECT_EQ(linesOf("a\r\nb\r\r\nc\n").cuts, (std::pair{0, 0}));
    EXPECT_EQ(linesOf("a\rb\r\nc\r").cuts, (std::pair{0, 0}));
}

TEST(LineReader, TheLastLineNeedsNoEnd)
{
    EXPECT_EQ(linesOf("a\nb").lines, (Lines{"a", "b"}));
    EXPECT_EQ(linesOf("").lines, Lines{});
    EXPECT_EQ(linesOf("\n").lines, Lines{""});
}

TEST(LineReader, AMarkOfUtf8IsSkipped)
{
    const LINES read = linesOf("\xEF\xBB\xBF"
                               "a\n");
    EXPECT_EQ(read.lines, Lines{"a"});
    EXPECT_EQ(read.bytes, 5);
}

TEST(LineReader, TellsUtf8FromLatin1)
{
    EXPECT_TRUE(linesOf("10 °C\n").utf8);
    EXPECT_FALSE(linesOf("10 \xB0"
                         "C\n")
                     .utf8);
    EXPECT_TRUE(linesOf(std::string((1 << 20) + (1 << 18) - 1, 'x') + "°" + std::string(2000, '\n')).utf8);
}

TEST(LineReader, LinesOfEveryLengthAroundTheBlockSizeComeOutWhole)
{
    std::string content;
    Lines expected;
    for (std::size_t length : {1, 262143, 262144, 262145, 5, 1048574, 1048575, 3, 700000, 700000, 2}) {
        expected.emplace_back(length, static_cast<char>('a' + length % 26));
        content += expected.back() + "\n";
    }
    const LINES read = linesOf(content);
    EXPECT_EQ(read.lines, expected);
    EXPECT_EQ(read.end, RLineReader::Result::end);
    EXPECT_EQ(read.bytes, static_cast<std::int64_t>(content.size()));
}

TEST(LineReader, ALineBeyondAMebibyteIsRefused)
{
    const LINES read = linesOf("a\n" + std::string(RLineReader::maxLine, 'x') + "\nb\n");
    EXPECT_EQ(read.lines, Lines{"a"});
    EXPECT_EQ(read.end, RLineReader::Result::tooLong);
    EXPECT_EQ(linesOf(std::string(3 << 20, 'x')).end, RLineReader::Result::tooLong);
}

TEST(LineReader, DoesNotOpenADirectoryOrNothing)
{
    const testing_support::RTemporaryDirectory directory;
    RLineReader reader;
    EXPECT_FALSE(reader.open(directory.path()));
    EXPECT_FALSE(reader.open(directory.file("nothing")));
}

} // namespace
