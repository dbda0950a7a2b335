#include "dialogs/pairedlists.h"

#include <gtest/gtest.h>

namespace {

using dialogs::RPairedLists;

constexpr int none = RPairedLists::none, byDefault = RPairedLists::byDefault;

// Sources 0 to 3; targets 0 to 2. Source 1 and target 0 are a pair.
class PairedLists : public testing::Test {
protected:
    RPairedLists lists{{none, 0, none, none}, {1, none, none}};
};

TEST_F(PairedLists, NothingIsSelectedAtFirst)
{
    EXPECT_EQ(lists.source(), none);
    EXPECT_EQ(lists.target(), none);
    EXPECT_FALSE(lists.mayJoin());
    EXPECT_FALSE(lists.mayUndo());
    EXPECT_FALSE(lists.mayUseDefault());
}

TEST_F(PairedLists, SelectingALineSelectsItsPartner)
{
    lists.selectSource(1);
    EXPECT_EQ(lists.target(), 0);
    lists.selectSource(2);
    lists.selectTarget(0);
    EXPECT_EQ(lists.source(), 1);
}

TEST_F(PairedLists, AFreeLineLeavesTheOtherSelection)
{
    lists.selectTarget(2);
    lists.selectSource(3);
    EXPECT_EQ(lists.target(), 2);
    EXPECT_EQ(lists.source(), 3);
}

TEST_F(PairedLists, TwoFreeLinesMayBeJoined)
{
    lists.selectSource(2);
    EXPECT_FALSE(lists.mayJoin());
    lists.selectTarget(1);
    EXPECT_TRUE(lists.mayJoin());
    EXPECT_FALSE(lists.mayUndo());
    lists.join();
    EXPECT_EQ(lists.targetOf(2), 1);
    EXPECT_EQ(lists.sourceOf(1), 2);
    EXPECT_FALSE(lists.mayJoin());
    EXPECT_TRUE(lists.mayUndo());
}

TEST_F(PairedLists, APairMayOnlyBeUndone)
{
    lists.selectSource(1);
    EXPECT_FALSE(lists.mayJoin());
    EXPECT_TRUE(lists.mayUndo());
    lists.undo();
    EXPECT_EQ(lists.targetOf(1), none);
    EXPECT_EQ(lists.sourceOf(0), none);
    EXPECT_TRUE(lists.mayJoin());
}

TEST_F(PairedLists, UndoFromTheTargetFreesBothToo)
{
    lists.selectTarget(0);
    lists.undo();
    EXPECT_EQ(lists.targetOf(1), none);
    EXPECT_EQ(lists.sourceOf(0), none);
}

TEST_F(PairedLists, JoiningTakesEarlierPairsApart)
{
    lists.selectTarget(0);
    lists.selectSource(2); // free; the target isn't
    ASSERT_TRUE(lists.mayJoin());
    lists.join();
    EXPECT_EQ(lists.targetOf(1), none);
    EXPECT_EQ(lists.targetOf(2), 0);
    EXPECT_EQ(lists.sourceOf(0), 2);
}

TEST_F(PairedLists, JoiningWithoutASelectionDoesNothing)
{
    lists.selectTarget(1);
    lists.join();
    EXPECT_EQ(lists.sourceOf(1), none);
}

TEST_F(PairedLists, OnlyAFreeTargetMayUseItsDefault)
{
    lists.selectTarget(0);
    EXPECT_FALSE(lists.mayUseDefault());
    lists.useDefault();
    EXPECT_EQ(lists.sourceOf(0), 1);
    lists.selectTarget(2);
    EXPECT_TRUE(lists.mayUseDefault());
    lists.useDefault();
    EXPECT_EQ(lists.sourceOf(2), byDefault);
    EXPECT_FALSE(lists.mayUseDefault());
}

TEST_F(PairedLists, ADefaultCanBeUndone)
{
    lists.selectTarget(2);
    lists.useDefault();
    EXPECT_TRUE(lists.mayUndo());
    lists.undo();
    EXPECT_EQ(lists.sourceOf(2), none);
}

TEST_F(PairedLists, ASourceThatOnlyPointsToATargetLeavesItAlone)
{
    RPairedLists choice({1, 0, 0}, {1, none}); // source 0 points to a free target, 2 to that of source 1
    choice.selectSource(2);
    EXPECT_EQ(choice.target(), 0);
    choice.undo();
    EXPECT_EQ(choice.targetOf(2), none);
    EXPECT_EQ(choice.sourceOf(0), 1);
    choice.selectSource(0);
    EXPECT_EQ(choice.target(), 1);
    EXPECT_EQ(choice.sourceOf(1), none);
}

TEST_F(PairedLists, LinksThatLeadNowhereAreNone)
{
    const RPairedLists wrong({7, -5}, {9, byDefault});
    EXPECT_EQ(wrong.targetOf(0), none);
    EXPECT_EQ(wrong.targetOf(1), none);
    EXPECT_EQ(wrong.sourceOf(0), none);
    EXPECT_EQ(wrong.sourceOf(1), byDefault);
}

TEST_F(PairedLists, RowsThatAreNotThereSelectNothing)
{
    lists.selectSource(4);
    EXPECT_EQ(lists.source(), none);
    lists.selectTarget(-1);
    EXPECT_EQ(lists.target(), none);
}

} // namespace
