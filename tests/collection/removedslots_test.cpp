#include "collection/removedslots.h"

#include <numeric>
#include <random>

#include <gtest/gtest.h>

namespace collection {
namespace {

TEST(RemovedSlots, WithoutAnyNumbersAreSlots)
{
    const RRemovedSlots removed;
    EXPECT_TRUE(removed.isEmpty());
    EXPECT_EQ(removed.slotOf(1), 1);
    EXPECT_EQ(removed.slotOf(1000000), 1000000);
}

TEST(RemovedSlots, LaterNumbersDecrease)
{
    RRemovedSlots removed;
    removed.remove(3);
    EXPECT_EQ(removed.slotOf(2), 2);
    EXPECT_EQ(removed.slotOf(3), 4);
    removed.remove(3); // the one in slot 4
    EXPECT_EQ(removed.slotOf(2), 2);
    EXPECT_EQ(removed.slotOf(3), 5);
    removed.remove(1);
    EXPECT_EQ(removed.slotOf(1), 2);
    EXPECT_EQ(removed.slotOf(2), 5);
    EXPECT_EQ(removed.slots(), (std::vector<int>{1, 3, 4}));
}

TEST(RemovedSlots, AnyMixAgreesWithAList)
{
    std::mt19937 random(7);
    RRemovedSlots removed;
    std::vector<int> slots(500); // by number - 1
    std::iota(slots.begin(), slots.end(), 1);
    int last = 500;
    for (int i = 0; i < 400; ++i) {
        const int number = 1 + static_cast<int>(random() % slots.size());
        removed.remove(number);
        slots.erase(slots.begin() + number - 1);
        slots.push_back(++last); // a station that moved to the end
        for (std::size_t n = 0; n < slots.size(); n += 1 + random() % 20)
            ASSERT_EQ(removed.slotOf(static_cast<int>(n) + 1), slots[n]);
        ASSERT_EQ(removed.slotOf(static_cast<int>(slots.size()) + 1), last + 1);
    }
    EXPECT_EQ(removed.count(), 400);
}

} // namespace
} // namespace collection
