// A process that works on a collection is killed before each of its calls that change files, one after the
// other, and in the middle of each write. Whatever it leaves behind, the next opening finds the collection
// as it was or as it was to be.

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "common/files.h"
#include "common/text.h"
#include "faults.h"
#include "operations.h"
#include "tracedchild.h"

namespace reliability {
namespace {

constexpr int mostCalls = 5000; // an operation that makes more is out of hand

class Deaths : public testing::TestWithParam<CASE> {};

// Kills a process before its n-th call. False if it came to its end instead. `expected`: after, if it had
// said by then that the operation is done.
bool dieAt(const RScene& scene, int n, std::string& call, RScene::Expected& expected)
{
    expected = RScene::Expected::either;
    RTracedChild child(scene.work(), [&scene] { return scene.workThrough(scene.work()); });
    for (int i = 0; i < n; ++i) {
        if (!child.toNextCall()) return false;
        if (child.call().path == scene.work() + RScene::doneMark) expected = RScene::Expected::after;
    }
    call = child.call().name + " " + child.call().path;
    return true;
}

bool tracingWorks(const RScene& scene)
{
    const RTracedChild child(scene.work(), [] { return 0; });
    return child.isTraced();
}

// Puts back what the second half of a write has overwritten.
void takeBackHalf(const FILECALL& call, const std::string& before, std::int64_t oldSize)
{
    const std::int64_t half = call.offset + call.result / 2;
    const std::string old =
        half < static_cast<std::int64_t>(before.size()) ? before.substr(static_cast<std::size_t>(half)) : "";
    const int file = ::open(call.path.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(file, 0) << call.path;
    ASSERT_EQ(::pwrite(file, old.data(), old.size(), half), static_cast<ssize_t>(old.size()));
    ASSERT_EQ(::ftruncate(file, std::max(oldSize, half)), 0);
    ::close(file);
}

// Kills a process in the middle of its n-th call if that is a write. -1: it came to its end; 0: no write.
int dieWithin(const RScene& scene, int n, std::string& name)
{
    RTracedChild child(scene.work(), [&scene] { return scene.workThrough(scene.work()); });
    for (int i = 0; i < n; ++i) {
        if (!child.toNextCall()) return -1;
    }
    const FILECALL& call = child.call();
    if (call.kind != FILECALL::write || call.length < 2) return 0;
    name = "half of " + call.name + " " + call.path;
    const std::string before = common::readFile(call.path).value_or("");
    const std::int64_t size = common::fileSize(call.path);
    if (!child.finishCall()) return -1;
    child.kill();
    takeBackHalf(child.call(), before, size);
    return 1;
}

std::string faultOf(const RScene& scene, RScene::Expected expected = RScene::Expected::either)
{
    return scene.faultOf(scene.examine(scene.work()), expected);
}

TEST_P(Deaths, BeforeEveryCallThatChangesFiles)
{
    RScene scene(GetParam());
    if (!tracingWorks(scene)) GTEST_SKIP() << "processes can't be traced here";
    RFaults faults;
    int n = 1;
    for (; n < mostCalls; ++n) {
        scene.reset();
        std::string call;
        RScene::Expected expected{};
        if (!dieAt(scene, n, call, expected)) break;
        faults.note(common::format("killed before call %d, %s", n, call.c_str()), faultOf(scene, expected));
    }
    RecordProperty("calls", n - 1);
    std::printf("%d deaths\n", n - 1);
    EXPECT_GT(n, 3) << "no call was seen";
    EXPECT_LT(n, mostCalls);
}

TEST_P(Deaths, InTheMiddleOfEveryWrite)
{
    RScene scene(GetParam());
    if (!tracingWorks(scene)) GTEST_SKIP() << "processes can't be traced here";
    RFaults faults;
    int writes = 0;
    for (int n = 1; n < mostCalls; ++n) {
        scene.reset();
        std::string call;
        const int died = dieWithin(scene, n, call);
        if (died < 0) break;
        if (died == 0) continue;
        ++writes;
        faults.note(common::format("killed within call %d, %s", n, call.c_str()), faultOf(scene));
    }
    EXPECT_GT(writes, 0);
}

// The process that clears up is killed, too, at each of its calls.
TEST_P(Deaths, OfTheOpeningThatClearsUp)
{
    RScene scene(GetParam());
    if (!tracingWorks(scene)) GTEST_SKIP() << "processes can't be traced here";
    RFaults faults;
    const std::string wreck = scene.folder("wreck");
    int deaths = 0;
    for (int n = 2; n < mostCalls; n += 5) {
        scene.reset();
        std::string first;
        RScene::Expected expected{};
        if (!dieAt(scene, n, first, expected)) break;
        copyFolder(scene.work(), wreck);
        for (int m = 1; m < mostCalls; ++m) {
            copyFolder(wreck, scene.work());
            RTracedChild opening(scene.work(), [&scene] {
                static_cast<void>(scene.examine(scene.work()));
                return 0;
            });
            int i = 0;
            while (i < m && opening.toNextCall()) ++i;
            if (i < m) break;
            const std::string call = opening.call().name + " " + opening.call().path;
            opening.kill();
            ++deaths;
            faults.note(common::format("killed before call %d, %s, and the opening before call %d, %s", n,
                                       first.c_str(), m, call.c_str()),
                        faultOf(scene, expected));
        }
    }
    std::printf("%d deaths\n", deaths);
    EXPECT_GT(deaths, 0);
}

INSTANTIATE_TEST_SUITE_P(Operations, Deaths, testing::ValuesIn(allCases()),
                         [](const auto& test) { return nameOf(test.param); });

} // namespace
} // namespace reliability
