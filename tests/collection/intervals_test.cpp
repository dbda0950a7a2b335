#include "collection/intervals.h"

#include <random>
#include <set>

#include <gtest/gtest.h>

namespace collection {
namespace {

using Gaps = std::vector<RIntervals::Interval>;

TEST(Intervals, AllIsAGapAtFirst)
{
    const RIntervals set;
    EXPECT_EQ(set.gaps(3, 9), (Gaps{{3, 9}}));
    EXPECT_EQ(set.gaps(3, 3), Gaps());
    EXPECT_EQ(set.gaps(9, 3), Gaps());
}

TEST(Intervals, GapsAreWhatLiesBetween)
{
    RIntervals set;
    set.add(10, 20);
    set.add(30, 40);
    EXPECT_EQ(set.gaps(0, 50), (Gaps{{0, 10}, {20, 30}, {40, 50}}));
    EXPECT_EQ(set.gaps(10, 20), Gaps());
    EXPECT_EQ(set.gaps(15, 35), (Gaps{{20, 30}}));
    EXPECT_EQ(set.gaps(20, 30), (Gaps{{20, 30}}));
    EXPECT_EQ(set.gaps(5, 10), (Gaps{{5, 10}}));
    set.add(20, 30);
    EXPECT_EQ(set.gaps(0, 50), (Gaps{{0, 10}, {40, 50}}));
    set.add(25, 5); // nothing
    EXPECT_EQ(set.gaps(0, 50), (Gaps{{0, 10}, {40, 50}}));
}

TEST(Intervals, AnyMixAgreesWithASetOfPlaces)
{
    std::mt19937 random(99);
    for (int round = 0; round < 200; ++round) {
        RIntervals set;
        std::set<std::int64_t> model;
        for (int i = 0; i < 30; ++i) {
            const auto begin = static_cast<std::int64_t>(random() % 100);
            const auto end = begin + static_cast<std::int64_t>(random() % 15);
            std::set<std::int64_t> missing, found;
            for (std::int64_t at = begin; at < end; ++at) {
                if (model.count(at) == 0) missing.insert(at);
            }
            for (const auto& gap : set.gaps(begin, end)) {
                ASSERT_LT(gap.first, gap.second);
                for (std::int64_t at = gap.first; at < gap.second; ++at) ASSERT_TRUE(found.insert(at).second);
            }
            ASSERT_TRUE(found == missing);
            set.add(begin, end);
            model.insert(missing.begin(), missing.end());
        }
    }
}

} // namespace
} // namespace collection
