#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "graphics/cdt.h"
#include "mapsupport.h"

using namespace graphics;
using namespace testing_support;

namespace {

struct READING {
    CDTSCAN scan;
    std::vector<SHAPE> shapes;
    std::vector<bool> closed;
};

READING read(const std::string& bytes)
{
    READING r;
    std::FILE* const file = std::tmpfile();
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::rewind(file);
    r.scan = scanCdt(file, [&r](const CDTRECORD& record) {
        r.shapes.push_back(
            {{record.lon.begin(), record.lon.end()}, {record.lat.begin(), record.lat.end()}, record.outline});
        r.closed.push_back(record.closed());
        return true;
    });
    std::fclose(file);
    return r;
}

SHAPE longShape(int n)
{
    SHAPE s;
    for (int i = 0; i < n; ++i) {
        s.lon.push_back(float(i % 360));
        s.lat.push_back(float(i % 90));
    }
    return s;
}

std::string header(std::int32_t n, std::int32_t m)
{
    std::string out;
    appendWord(out, &n, false);
    appendWord(out, &m, false);
    return out;
}

} // namespace

TEST(ScanCdt, RecordsComeOutAsTheyStand)
{
    SHAPE open{{1, 2, 3}, {4, 5, 6}, 2};
    const READING r = read(cdtBytes({box(10, 20, -5, 5), open}));
    ASSERT_EQ(r.shapes.size(), 2U);
    EXPECT_EQ(r.scan.records, 2);
    EXPECT_EQ(r.scan.damage, CdtDamage::none);
    EXPECT_EQ(r.shapes[0].outline, 5);
    EXPECT_TRUE(r.closed[0]);
    EXPECT_EQ(r.shapes[1].lon, open.lon);
    EXPECT_EQ(r.shapes[1].lat, open.lat);
    EXPECT_EQ(r.shapes[1].outline, 2);
    EXPECT_FALSE(r.closed[1]);
}

TEST(ScanCdt, OtherByteOrderReadsTheSame)
{
    const std::vector<SHAPE> world = smallWorld();
    const READING a = read(cdtBytes(world)), b = read(cdtBytes(world, true));
    ASSERT_EQ(a.shapes.size(), world.size());
    ASSERT_EQ(b.shapes.size(), world.size());
    for (std::size_t i = 0; i < world.size(); ++i) {
        EXPECT_EQ(a.shapes[i].lon, b.shapes[i].lon);
        EXPECT_EQ(a.shapes[i].lat, b.shapes[i].lat);
        EXPECT_EQ(a.shapes[i].outline, b.shapes[i].outline);
    }
}

TEST(ScanCdt, ByteOrderIsFoundForEveryRecord)
{
    const SHAPE a = box(1, 2, 3, 4);
    const READING r = read(cdtRecord(a) + cdtRecord(a, true) + cdtRecord(a));
    ASSERT_EQ(r.shapes.size(), 3U);
    EXPECT_EQ(r.shapes[1].lon, a.lon);
}

TEST(ScanCdt, Polygon1500IsAcceptedAnd1501EndsTheFile)
{
    EXPECT_EQ(read(cdtRecord(longShape(1500))).shapes.size(), 1U);
    const std::string first = cdtRecord(box(0, 1, 0, 1));
    const READING r = read(first + cdtRecord(longShape(1501)) + first);
    EXPECT_EQ(r.shapes.size(), 1U);
    EXPECT_EQ(r.scan.damage, CdtDamage::badCount);
    EXPECT_EQ(r.scan.offset, std::int64_t(first.size()));
}

TEST(ScanCdt, ImpossibleCountsEndTheFile)
{
    for (std::int32_t n : {0, -1, 1501, 0x01020304, std::numeric_limits<std::int32_t>::max()}) {
        const READING r = read(header(n, 0) + std::string(64, '\1'));
        EXPECT_TRUE(r.shapes.empty()) << n;
        EXPECT_EQ(r.scan.damage, CdtDamage::badCount) << n;
        EXPECT_EQ(r.scan.offset, 0) << n;
    }
}

TEST(ScanCdt, ImpossibleOutlineLeavesOneRecordOut)
{
    SHAPE bad = box(0, 1, 0, 1);
    for (int m : {-2, 6, 100000}) {
        bad.outline = m;
        std::string bytes = cdtRecord(box(5, 6, 5, 6));
        const auto at = std::int64_t(bytes.size());
        if (m < 0) {
            bytes += header(5, m) + cdtRecord(bad).substr(8);
        } else {
            bytes += cdtRecord(bad);
        }
        const READING r = read(bytes + cdtRecord(box(7, 8, 7, 8)));
        ASSERT_EQ(r.shapes.size(), 2U) << m;
        EXPECT_EQ(r.shapes[1].lon[0], 7);
        EXPECT_EQ(r.scan.damage, CdtDamage::badOutline);
        EXPECT_EQ(r.scan.offset, at);
    }
}

TEST(ScanCdt, PositionsThatAreNoneLeaveOneRecordOut)
{
    const float infinity = std::numeric_limits<float>::infinity();
    for (float value : {std::nanf(""), infinity, -infinity, 1.1e4f, -3e30f}) {
        SHAPE bad = box(0, 1, 0, 1);
        bad.lat[2] = value;
        const READING r = read(cdtRecord(bad) + cdtRecord(box(7, 8, 7, 8)));
        ASSERT_EQ(r.shapes.size(), 1U) << value;
        EXPECT_EQ(r.scan.damage, CdtDamage::badPosition);
        EXPECT_EQ(r.scan.offset, 0);
    }
}

TEST(ScanCdt, FileCutAnywhereGivesTheRecordsBefore)
{
    const std::string whole = cdtBytes({box(0, 1, 0, 1), box(2, 3, 2, 3)});
    const std::size_t record = whole.size() / 2;
    for (std::size_t n = 0; n < whole.size(); ++n) {
        const READING r = read(whole.substr(0, n));
        EXPECT_EQ(r.shapes.size(), n / record) << n;
        const bool clean = n % record == 0;
        EXPECT_EQ(r.scan.damage, clean ? CdtDamage::none : CdtDamage::truncated) << n;
        EXPECT_EQ(r.scan.offset, clean ? 0 : std::int64_t(n / record * record)) << n;
    }
}

TEST(ScanCdt, VisitorEndsTheReading)
{
    RTemporaryDirectory folder;
    writeBytes(folder.file("a.cdt"), cdtBytes(smallWorld()));
    int seen = 0;
    EXPECT_EQ(readCdtFile(folder.file("a.cdt"), [&seen](const CDTRECORD&) { return ++seen < 3; }), 3);
    EXPECT_EQ(readCdtFile(folder.file("none.cdt"), [](const CDTRECORD&) { return true; }), -1);
}

TEST(CdtDamageText, EveryDamageHasWords)
{
    for (int i = 1; i <= int(CdtDamage::truncated); ++i) EXPECT_STRNE(cdtDamageText(CdtDamage(i)), "");
    EXPECT_STREQ(cdtDamageText(CdtDamage::none), "");
}
