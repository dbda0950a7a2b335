// Each call of an operation that changes files is refused by the system, one after the other: once, or from
// there on, as on a full disk. The operation says so, and the collection is as before; or it is done all the
// same, and then wholly.

#include <algorithm>
#include <cerrno>

#include <gtest/gtest.h>

#include "common/files.h"
#include "common/text.h"
#include "faults.h"
#include "operations.h"
#include "tracedchild.h"

namespace reliability {
namespace {

constexpr int mostCalls = 5000;

struct REFUSAL {
    const char* name;
    int error;
    bool fromThereOn;
};

class Refusals : public testing::TestWithParam<CASE> {};

// A full disk has room for nothing new; what is there can be overwritten, names can be changed and taken
// away.
bool needsRoom(const FILECALL& call)
{
    if (call.kind == FILECALL::write) return call.offset + call.length > common::fileSize(call.path);
    return call.kind == FILECALL::make && call.file == 0;
}

// Refuses the n-th call of a process. False if it made fewer. `exit` is how it ended, `call` what was
// refused.
bool refuseAt(const RScene& scene, int n, const REFUSAL& refusal, int& exit, std::string& call)
{
    RTracedChild child(scene.work(), [&scene] { return scene.workThrough(scene.work()); });
    int count = 0;
    while (child.toNextCall()) {
        const bool applies = refusal.error != ENOSPC || needsRoom(child.call());
        count += applies ? 1 : 0;
        if (!applies || count < n || (count > n && !refusal.fromThereOn)) continue;
        if (count == n) call = child.call().name + " " + child.call().path;
        EXPECT_TRUE(child.refuseCall(refusal.error));
    }
    exit = child.exitCode();
    return count >= n;
}

// A file that could not be taken away because that very call was refused.
bool isRest(const std::string& fault)
{
    return fault.starts_with("left behind: ") && (fault.ends_with(".tmp") || fault.ends_with(".lck"));
}

std::string faultOf(const RScene& scene, int exit, const REFUSAL& refusal)
{
    EXAMINATION examination = scene.examine(scene.work());
    auto& faults = examination.faults;
    if (refusal.error == EIO)
        faults.erase(std::remove_if(faults.begin(), faults.end(), isRest), faults.end());
    // Who can't write a word any more can't take one back: the next opening decides, and shows one of the
    // two.
    if (refusal.error == EIO && refusal.fromThereOn && exit != RScene::done && exit >= 0)
        return scene.faultOf(examination);
    switch (exit) {
    case RScene::done:
        return scene.faultOf(examination, RScene::Expected::after);
    case RScene::refused:
    case RScene::notOpened:
        return scene.faultOf(examination, RScene::Expected::before);
    case RScene::silent:
        return "it failed without a word\n" + scene.faultOf(examination, RScene::Expected::before);
    case RScene::otherwiseInMemory:
        return "the open collection isn't what the files hold\n" + scene.faultOf(examination);
    default:
        return "it crashed\n" + scene.faultOf(examination);
    }
}

void refuseAll(const RScene& scene, const REFUSAL& refusal)
{
    int done = 0, refused = 0;
    RFaults faults;
    for (int n = 1; n < mostCalls; ++n) {
        scene.reset();
        int exit = -1;
        std::string call;
        if (!refuseAt(scene, n, refusal, exit, call)) break;
        ++(exit == RScene::done ? done : refused);
        const std::string fault = faultOf(scene, exit, refusal);
        faults.note(
            common::format("%s at call %d, %s (%s)", refusal.name, n, call.c_str(), scene.told().c_str()),
            fault);
    }
    std::printf("%s: done %d times, refused %d times\n", refusal.name, done, refused);
    EXPECT_GT(done + refused, 0);
}

TEST_P(Refusals, OfEveryCallAreToldAndChangeNothing)
{
    const RScene scene(GetParam());
    const RTracedChild probe(scene.work(), [] { return 0; });
    if (!probe.isTraced() || !RTracedChild::canRefuse()) GTEST_SKIP() << "calls can't be refused here";
    for (const REFUSAL& refusal :
         {REFUSAL{"disk full", ENOSPC, true}, REFUSAL{"disk full once", ENOSPC, false},
          REFUSAL{"disk error", EIO, false}, REFUSAL{"disk dead", EIO, true}})
        refuseAll(scene, refusal);
}

INSTANTIATE_TEST_SUITE_P(Operations, Refusals, testing::ValuesIn(allCases()),
                         [](const auto& test) { return nameOf(test.param); });

} // namespace
} // namespace reliability
