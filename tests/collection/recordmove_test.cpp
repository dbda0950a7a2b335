#include "collection/recordmove.h"

#include <cstring>

#include <gtest/gtest.h>

namespace collection {
namespace {

// A file in memory, one of whose writes fails after half of its bytes.
struct FaultyFile {
    std::vector<std::byte> bytes;
    int failingWrite = -1; // from 1; none
    int writes = 0;

    bool read(std::int64_t offset, std::span<std::byte> out) const
    {
        if (static_cast<std::size_t>(offset) + out.size() > bytes.size()) return false;
        std::memcpy(out.data(), bytes.data() + offset, out.size());
        return true;
    }
    bool write(std::int64_t offset, std::span<const std::byte> in)
    {
        const bool fails = ++writes == failingWrite;
        const std::size_t length = fails ? in.size() / 2 : in.size();
        bytes.resize(std::max(bytes.size(), static_cast<std::size_t>(offset) + length));
        std::memcpy(bytes.data() + offset, in.data(), length);
        return !fails;
    }
    bool truncate(std::int64_t size)
    {
        bytes.resize(static_cast<std::size_t>(size));
        return true;
    }
};

constexpr int count = 10000; // more than two moves
constexpr std::int64_t start = 6;

// Records of eight bytes, each of which holds its number twice.
FaultyFile table()
{
    FaultyFile file;
    file.bytes.resize(start + 8 * count);
    for (int n = 1; n <= count; ++n) {
        const int record[2] = {n, n};
        std::memcpy(file.bytes.data() + start + 8 * (n - 1), record, sizeof record);
    }
    return file;
}

bool replace(FaultyFile& file, int number)
{
    const int replacement[2] = {-1, -1};
    return RRecordMove(file, start, 8, count).replace(number, std::as_bytes(std::span(replacement)));
}

TEST(RecordMove, LaterRecordsMoveDownAndTheReplacementIsLast)
{
    for (const int number : {1, 2, 4096, 4097, 9999, 10000}) {
        FaultyFile file = table();
        ASSERT_TRUE(replace(file, number));
        ASSERT_EQ(file.bytes.size(), table().bytes.size());
        for (int n = 1; n <= count; ++n) {
            int record[2];
            std::memcpy(record, file.bytes.data() + start + 8 * (n - 1), sizeof record);
            ASSERT_EQ(record[0], n == count ? -1 : n < number ? n : n + 1);
            ASSERT_EQ(record[1], record[0]);
        }
    }
}

TEST(RecordMove, AFailureAtAnyWriteLeavesTheTableAsItWas)
{
    for (const int number : {1, 3000, 9999}) {
        FaultyFile whole = table();
        ASSERT_TRUE(replace(whole, number));
        for (int failing = 1; failing <= whole.writes; ++failing) {
            FaultyFile file = table();
            file.failingWrite = failing;
            EXPECT_FALSE(replace(file, number));
            EXPECT_TRUE(file.bytes == table().bytes) << number << ' ' << failing;
        }
    }
}

} // namespace
} // namespace collection
