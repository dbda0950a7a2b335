// A collection goes through a long life of operations, of which many are cut off: by a kill, by a failure of
// the power. What one of them leaves behind, the next ones have to live with.

#include <filesystem>
#include <random>

#include <unistd.h>

#include <gtest/gtest.h>

#include "common/files.h"
#include "common/text.h"
#include "disk.h"
#include "operations.h"
#include "process.h"
#include "rounds.h"

namespace reliability {
namespace {

constexpr int steps = 150;

class Chains : public testing::TestWithParam<std::tuple<std::string, int>> {
protected:
    Chains()
    {
        for (const std::string& folder : {work, trial}) std::filesystem::create_directories(folder);
        makeSample(work, "sample", std::get<0>(GetParam()));
        for (const auto& list : {importOperations(), stationOperations(), maintenanceOperations()}) {
            for (const OPERATION& operation : list) {
                if (!operation.prepare) operations.push_back(operation);
            }
        }
    }

    static int doWork(const std::string& folder, const OPERATION& operation)
    {
        ROpenCollection open(folder, "sample");
        return open.isOpen() && operation.run(open) ? 0 : 1;
    }
    Contents look(const std::string& folder)
    {
        const EXAMINATION examination = examine(folder, names, inputs);
        for (const std::string& text : examination.faults) faults += text + "\n";
        return examination.contents;
    }
    // The state that the operation leads to when nothing disturbs it.
    Contents undisturbed(const OPERATION& operation)
    {
        copyFolder(work, trial);
        static_cast<void>(inProcess([&] { return std::to_string(doWork(trial, operation)); }));
        return look(trial);
    }
    // Lets it run, to its end or to a random call. Returns what was done.
    std::string disturb(const OPERATION& operation)
    {
        const unsigned choice = random() % 4;
        const int last = choice == 0 ? 100000 : std::uniform_int_distribution<int>(1, 60)(random);
        RDisk disk(work);
        int calls = 0;
        {
            RTracedChild child(work, [&] { return doWork(work, operation); });
            if (!child.isTraced()) return {};
            while (calls < last && child.toNextCall()) {
                if (++calls == last) break;
                child.finishCall();
                EXPECT_TRUE(disk.add(child.call())) << child.call().name;
            }
        }
        if (choice < 2) return common::format("%s, killed at call %d", operation.name.c_str(), calls);
        disk.restore(disk.callCount(), RDisk::Loss::random, random, trial);
        copyFolder(trial, work);
        return common::format("%s, power lost at call %d", operation.name.c_str(), calls);
    }

    const testing_support::RTemporaryDirectory directory;
    const std::string work = directory.file("work/"), trial = directory.file("trial/");
    const std::vector<std::string> names{"sample"}, inputs{"casts.txt"};
    std::vector<OPERATION> operations;
    std::mt19937 random{static_cast<unsigned>(std::get<1>(GetParam()))};
    std::string faults;
};

TEST_P(Chains, OfOperationsThatAreCutOffKeepTheCollectionWhole)
{
    Contents state = look(work);
    std::string history;
    int changes = 0;
    for (int step = 0; step < steps * rounds() && faults.empty(); ++step) {
        const OPERATION& operation = operations[random() % operations.size()];
        const auto input = operation.inputs.find("casts.txt");
        if (input != operation.inputs.end()) {
            ASSERT_TRUE(common::writeFile(work + "casts.txt", input->second));
        }
        const Contents after = undisturbed(operation);
        if (!faults.empty()) history += operation.name + ", undisturbed\n";
        const std::string what = disturb(operation);
        if (what.empty()) GTEST_SKIP() << "processes can't be traced here";
        history += common::format("%d: ", step) + what + "\n";
        const Contents found = look(work);
        if (found != state && found != after)
            faults += "neither old nor new state: " + describe(found) + "\n  old " + describe(state) +
                      "\n  new " + describe(after) + "\n";
        changes += found != state ? 1 : 0;
        state = found;
    }
    EXPECT_EQ(faults, "") << history;
    EXPECT_GT(changes, steps / 10);
}

INSTANTIATE_TEST_SUITE_P(Lives, Chains,
                         testing::Combine(testing::Values("NVQ4.0", "NVQsol"), testing::Values(1, 2, 3)),
                         [](const auto& test) {
                             return (std::get<0>(test.param) == "NVQsol" ? "BigEndian" : "LittleEndian") +
                                    std::to_string(std::get<1>(test.param));
                         });

} // namespace
} // namespace reliability
