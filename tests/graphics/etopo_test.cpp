#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "graphics/etopo.h"
#include "mapsupport.h"

using namespace graphics;
using namespace testing_support;

namespace {

struct GRIDFILE {
    float perLon = 1, south = 0, perLat = 1;
    std::int32_t row = 360;
    int rows = 181;
};

// Heights that tell their cell: row * 100 + column for small grids, else the low bits of it.
std::string etopoBytes(const GRIDFILE& g, bool swapped = false)
{
    std::string out("ETOPO01\0", 8);
    const std::int32_t reserved = 0;
    appendWord(out, &reserved, swapped);
    appendWord(out, &g.perLon, swapped);
    appendWord(out, &g.row, swapped);
    appendWord(out, &g.south, swapped);
    appendWord(out, &g.perLat, swapped);
    appendWord(out, &reserved, swapped);
    appendWord(out, &reserved, swapped);
    for (int r = 0; r < g.rows; ++r)
        for (int c = 0; c < g.row; ++c) {
            const auto height = std::int16_t(r * 100 + c - 9000);
            const char* bytes = reinterpret_cast<const char*>(&height);
            out += swapped ? std::string{bytes[1], bytes[0]} : std::string(bytes, 2);
        }
    return out;
}

class Etopo : public testing::Test {
protected:
    bool open(const std::string& bytes)
    {
        writeBytes(folder.file("e.cdt"), bytes);
        file = OpenEtopo(folder.file("e.cdt"), header);
        return file != nullptr;
    }
    [[nodiscard]] float at(double lon, double lat) { return EtopoHeight(file.get(), header, lon, lat); }

    RTemporaryDirectory folder;
    ETOPOHEADER header{};
    common::FilePtr file;
};

} // namespace

TEST_F(Etopo, HeightIsThatOfTheCellNorthEastOfItsNode)
{
    ASSERT_TRUE(open(etopoBytes({})));
    EXPECT_FALSE(header.swap);
    EXPECT_EQ(at(0, -90), -9000);
    EXPECT_EQ(at(10.9, -89.1), -8990);
    EXPECT_EQ(at(10.9, -88.9), -8890);
    EXPECT_EQ(at(7, 90), 180 * 100 + 7 - 9000);
}

TEST_F(Etopo, OtherByteOrderGivesTheSameHeights)
{
    ASSERT_TRUE(open(etopoBytes({}, true)));
    EXPECT_TRUE(header.swap);
    EXPECT_EQ(header.cellsPerRow, 360);
    EXPECT_EQ(header.cellsPerLon, 1);
    EXPECT_EQ(at(10.9, -88.9), -8890);
}

TEST_F(Etopo, LongitudesAreBroughtIntoTheRow)
{
    ASSERT_TRUE(open(etopoBytes({})));
    EXPECT_EQ(at(-350, 0), at(10, 0));
    EXPECT_EQ(at(370, 0), at(10, 0));
    EXPECT_EQ(at(360, 0), at(0, 0));
    EXPECT_EQ(at(-0.5, 0), at(359.5, 0));
}

TEST_F(Etopo, LatitudesAreLimited)
{
    ASSERT_TRUE(open(etopoBytes({1, 30, 1, 360, 151})));
    EXPECT_EQ(at(3, -90), at(3, -60));
    EXPECT_EQ(at(3, 200), at(3, 90));
    EXPECT_EQ(at(3, -58.5), 100 + 3 - 9000);
}

TEST_F(Etopo, NowhereIsZero)
{
    ASSERT_TRUE(open(etopoBytes({1, 0, 1, 360, 180}))); // the row at the pole is not there
    EXPECT_EQ(at(3, 90), 0);
    EXPECT_EQ(at(-1e9, 0), 0);
    EXPECT_EQ(at(1e300, 0), 0);
    EXPECT_EQ(at(std::nan(""), 0), 0);
    EXPECT_EQ(at(0, std::numeric_limits<double>::infinity()), 0);
    EXPECT_EQ(EtopoHeight(nullptr, header, 0, 0), 0);
    ASSERT_TRUE(open(etopoBytes({2, 0, 1, 360, 180}))); // half a circle
    EXPECT_EQ(at(200, 0), 0);
}

TEST_F(Etopo, RefusesWhatIsNone)
{
    header.cellsPerRow = 77;
    EXPECT_FALSE(OpenEtopo(folder.file("none.cdt"), header));
    EXPECT_FALSE(open(""));
    EXPECT_FALSE(open("ETOPO01"));
    std::string bytes = etopoBytes({});
    bytes[3] = 'Q';
    EXPECT_FALSE(open(bytes));
    for (std::int32_t row : {0, -5, 7000, 1 << 24}) EXPECT_FALSE(open(etopoBytes({1, 0, 1, row, 0}))) << row;
    for (float bad : {0.0f, -1.0f, 1e9f, std::nanf("")}) {
        EXPECT_FALSE(open(etopoBytes({bad, 0, 1, 360, 181}))) << bad;
        EXPECT_FALSE(open(etopoBytes({1, 0, bad, 360, 181}))) << bad;
    }
    EXPECT_FALSE(open(etopoBytes({1, 500, 1, 360, 181})));
    EXPECT_EQ(header.cellsPerRow, 77); // untouched
}

TEST_F(Etopo, RefusesAFileThatIsTooShortForItsHeader)
{
    EXPECT_FALSE(open(etopoBytes({1, 0, 1, 360, 179})));
    EXPECT_FALSE(open(etopoBytes({}).substr(0, 36)));
    EXPECT_FALSE(open(etopoBytes({100, 0, 100, 6999, 1})));
    EXPECT_TRUE(open(etopoBytes({1, 0, 1, 360, 180})));
}
