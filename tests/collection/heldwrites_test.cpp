#include "collection/heldwrites.h"

#include <map>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace collection {
namespace {

std::span<const std::byte> bytesOf(std::string_view text)
{
    return std::as_bytes(std::span(text));
}

// What lies over a file of the content `file`, as far as it is known.
std::string over(const RHeldWrites& held, const std::string& file, std::int64_t offset, std::size_t length)
{
    std::string out(length, '?');
    const std::size_t got = static_cast<std::size_t>(offset) < file.size()
                                ? file.copy(out.data(), length, static_cast<std::size_t>(offset))
                                : 0;
    const auto bytes = std::as_writable_bytes(std::span(out));
    out.resize(held.overlay(offset, bytes, got));
    return out;
}

TEST(HeldWrites, NothingHeldChangesNothing)
{
    const RHeldWrites held;
    EXPECT_TRUE(held.isEmpty());
    EXPECT_EQ(over(held, "0123456789", 2, 4), "2345");
    EXPECT_EQ(over(held, "0123456789", 8, 4), "89");
    EXPECT_EQ(over(held, "0123456789", 20, 4), "");
}

TEST(HeldWrites, LaterBytesHold)
{
    RHeldWrites held;
    held.put(2, bytesOf("abcd"));
    EXPECT_EQ(over(held, "0123456789", 0, 10), "01abcd6789");
    held.put(3, bytesOf("X"));
    held.put(5, bytesOf("YYY"));
    held.put(1, bytesOf("ZZ"));
    EXPECT_EQ(over(held, "0123456789", 0, 10), "0ZZXcYYY89");
    EXPECT_EQ(over(held, "0123456789", 4, 2), "cY");
}

TEST(HeldWrites, BytesThatGoOnAreOnePiece)
{
    RHeldWrites held;
    for (int i = 0; i < 100; ++i) held.put(10 + 4 * i, bytesOf("abcd"));
    EXPECT_EQ(held.pieces(), 1U);
    EXPECT_EQ(held.bytes(), 400U);
    held.put(500, bytesOf("x"));
    held.put(410, bytesOf("y"));
    EXPECT_EQ(held.pieces(), 3U);
    held.clear();
    EXPECT_TRUE(held.isEmpty());
    EXPECT_EQ(held.bytes(), 0U);
}

TEST(HeldWrites, BehindAGapNothingIsKnown)
{
    RHeldWrites held;
    held.put(12, bytesOf("ab"));
    EXPECT_EQ(over(held, "0123456789", 8, 10), "89");
    held.put(10, bytesOf("xy"));
    EXPECT_EQ(over(held, "0123456789", 8, 10), "89xyab");
    EXPECT_EQ(over(held, "0123456789", 13, 5), "b");
}

TEST(HeldWrites, PiecesComeInOrderUntilOneIsRefused)
{
    RHeldWrites held;
    held.put(30, bytesOf("c"));
    held.put(10, bytesOf("a"));
    held.put(20, bytesOf("b"));
    std::string seen;
    EXPECT_TRUE(held.forEach([&](std::int64_t offset, std::span<const std::byte> bytes) {
        seen += std::to_string(offset) + static_cast<char>(bytes[0]);
        return true;
    }));
    EXPECT_EQ(seen, "10a20b30c");
    int visits = 0;
    EXPECT_FALSE(held.forEach([&](std::int64_t, std::span<const std::byte>) { return ++visits < 2; }));
    EXPECT_EQ(visits, 2);
}

TEST(HeldWrites, AnyMixAgreesWithAMap)
{
    constexpr unsigned seed = 31337;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 50; ++round) {
        RHeldWrites held;
        std::map<std::int64_t, char> model;
        std::int64_t at = 0;
        for (int i = 0; i < 100; ++i) {
            std::string bytes(random() % 12, '\0');
            for (char& c : bytes) c = static_cast<char>('a' + random() % 26);
            at = random() % 3 == 0 ? at : static_cast<std::int64_t>(random() % 100);
            held.put(at, bytesOf(bytes));
            for (const char c : bytes) model[at++] = c;
        }
        std::map<std::int64_t, char> found;
        std::int64_t end = -1;
        EXPECT_TRUE(held.forEach([&](std::int64_t offset, std::span<const std::byte> bytes) {
            EXPECT_GE(offset, end);
            for (const std::byte byte : bytes) found[offset++] = static_cast<char>(byte);
            end = offset;
            return true;
        }));
        ASSERT_TRUE(found == model);
        std::string file(60, '.'), expected = file;
        for (const auto& [offset, c] : model) {
            if (offset < 60) expected[static_cast<std::size_t>(offset)] = c;
        }
        for (std::int64_t offset = 0; offset < 50; offset += 7)
            ASSERT_EQ(over(held, file, offset, 10), expected.substr(static_cast<std::size_t>(offset), 10));
    }
}

} // namespace
} // namespace collection
