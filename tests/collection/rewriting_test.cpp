#include "collection/rewriting.h"

#include <new>

#include <gtest/gtest.h>

#include "scripteduser.h"

namespace {

TEST(BusyWith, MemoryThatRunsOutIsToldAndEndsTheBusyState)
{
    testing_support::RScriptedUser user;
    EXPECT_FALSE(
        collection::busyWith("Deleting stations ...", user, []() -> bool { throw std::bad_alloc(); }));
    ASSERT_EQ(user.messages.size(), 1U);
    EXPECT_EQ(user.messages[0],
              "Deleting stations ...: There is not enough memory.\n\nThe collection is as it was.");
    EXPECT_EQ(user.busy, 0);
    EXPECT_TRUE(collection::busyWith("x", user, [] { return true; }));
}

} // namespace
