// The power fails while a process works on a collection: the disk holds what was flushed, and any part of the
// rest. Whatever that is, the next opening finds the collection as it was or as it was to be.

#include <cstdlib>

#include <gtest/gtest.h>

#include "common/text.h"
#include "disk.h"
#include "faults.h"
#include "operations.h"
#include "rounds.h"

namespace reliability {
namespace {

class PowerLoss : public testing::TestWithParam<CASE> {};

struct RECORD {
    int done = 0; // the call at which the operation said that it is done
    std::vector<std::string> calls;
};

// Lets a process work through the case and notes all that it does. False where it can't be watched.
bool record(const RScene& scene, RDisk& disk, RECORD& record)
{
    RTracedChild child(scene.work(), [&scene] { return scene.workThrough(scene.work()); });
    if (!child.isTraced()) return false;
    while (child.toNextCall()) {
        child.finishCall();
        const FILECALL& call = child.call();
        EXPECT_TRUE(disk.add(call)) << "can't follow " << call.name << " " << call.path;
        record.calls.push_back(call.name + " " + call.path);
        if (call.path == scene.work() + RScene::doneMark) record.done = disk.callCount();
    }
    EXPECT_EQ(child.exitCode(), RScene::done) << scene.told();
    return true;
}

const char* nameOf(RDisk::Loss loss)
{
    switch (loss) {
    case RDisk::Loss::everything:
        return "all that wasn't flushed";
    case RDisk::Loss::namesOnly:
        return "names that weren't flushed";
    case RDisk::Loss::bytesOnly:
        return "bytes that weren't flushed";
    case RDisk::Loss::random:
        break;
    }
    return "some of what wasn't flushed";
}

TEST_P(PowerLoss, LeavesTheOldOrTheNewState)
{
    RScene scene(GetParam());
    scene.reset();
    RDisk disk(scene.work());
    RECORD recorded;
    if (!record(scene, disk, recorded)) GTEST_SKIP() << "processes can't be traced here";
    ASSERT_GT(recorded.done, 0);
    std::vector<RDisk::Loss> losses{RDisk::Loss::everything, RDisk::Loss::namesOnly, RDisk::Loss::bytesOnly};
    losses.insert(losses.end(), static_cast<std::size_t>(3 * rounds()), RDisk::Loss::random);
    std::mt19937 random(20240607);
    const std::string crashed = scene.folder("crashed");
    int count = 0;
    RFaults faults;
    for (int calls = 0; calls <= disk.callCount(); ++calls) {
        for (const RDisk::Loss loss : losses) {
            disk.restore(calls, loss, random, crashed);
            const auto expected = calls >= recorded.done && scene.isDurable() ? RScene::Expected::after
                                                                              : RScene::Expected::either;
            const std::string fault = scene.faultOf(scene.examine(crashed), expected);
            ++count;
            const std::string last = calls > 0 ? recorded.calls[static_cast<std::size_t>(calls - 1)] : "none";
            faults.note(common::format("the power fails behind call %d, %s, and takes %s", calls,
                                       last.c_str(), nameOf(loss)),
                        fault);
        }
    }
    std::printf("%d failures of the power at %d calls\n", count, disk.callCount());
}

INSTANTIATE_TEST_SUITE_P(Operations, PowerLoss, testing::ValuesIn(allCases()),
                         [](const auto& test) { return nameOf(test.param); });

} // namespace
} // namespace reliability
