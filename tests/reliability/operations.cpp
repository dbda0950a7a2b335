#include "operations.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "common/files.h"
#include "tracedchild.h"

namespace reliability {
namespace {

constexpr std::size_t pageSize = 64 * 1024;

void addAll(std::vector<OPERATION>& all, std::vector<OPERATION> more)
{
    all.insert(all.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

} // namespace

struct RScene::Page {
    Page()
        : text(static_cast<char*>(
              ::mmap(nullptr, pageSize, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
    }
    ~Page() { ::munmap(text, pageSize); }
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    void set(const std::string& told) const
    {
        const std::size_t length = std::min(told.size(), pageSize - 1);
        std::memcpy(text, told.data(), length);
        text[length] = '\0';
    }
    char* text;
};

std::vector<OPERATION> allOperations()
{
    std::vector<OPERATION> all = importOperations();
    addAll(all, stationOperations());
    addAll(all, maintenanceOperations());
    addAll(all, familyOperations());
    return all;
}

std::vector<CASE> allCases()
{
    std::vector<CASE> cases;
    for (const OPERATION& operation : allOperations()) {
        for (const char* const magic : {"NVQ4.0", "NVQsol"}) cases.push_back({operation, magic});
    }
    return cases;
}

std::string nameOf(const CASE& given)
{
    return given.operation.name + (given.magic == "NVQsol" ? "_BigEndian" : "_LittleEndian");
}

RScene::RScene(const CASE& given)
    : case_(given), start_(folder("start")), work_(folder("work")), page_(std::make_shared<Page>())
{
    std::filesystem::create_directories(start_);
    const OPERATION& operation = case_.operation;
    if (operation.prepare) {
        operation.prepare(start_, case_.magic);
    } else {
        makeSample(start_, "sample", case_.magic);
    }
    for (const auto& [name, bytes] : operation.inputs) {
        EXPECT_TRUE(common::writeFile(start_ + name, bytes));
        otherFiles_.push_back(name);
    }
    reset();
    const EXAMINATION before = examine(work_);
    EXPECT_EQ(before.faults, std::vector<std::string>());
    old_ = before.contents;
    for (std::size_t steps = 1; steps <= operation.first.size(); ++steps)
        between_.push_back(stateAfter(steps));
    new_ = stateAfter(allSteps);
    if (operation.halfway) between_.push_back(operation.halfway(old_, new_));
    EXPECT_EQ(old_ == new_, operation.changesNothing)
        << "old " << describe(old_) << ", new " << describe(new_);
}

Contents RScene::stateAfter(std::size_t steps)
{
    reset();
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) ::_exit(workThrough(work_, steps));
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == done)
        << "the operation fails undisturbed: " << status << " " << told();
    const EXAMINATION after = examine(work_);
    EXPECT_EQ(after.faults, std::vector<std::string>());
    return after.contents;
}

int RScene::workThrough(const std::string& folder, std::size_t steps) const
{
    page_->set({});
    ROpenCollection open(folder, "sample");
    if (!open.isOpen()) {
        page_->set(open.told());
        return open.told().empty() ? silent : notOpened;
    }
    bool good = true;
    for (std::size_t i = 0; good && i < std::min(steps, case_.operation.first.size()); ++i)
        good = case_.operation.first[i](open);
    if (good && steps == allSteps) good = case_.operation.run(open);
    page_->set(open.told());
    if (good) ::unlink((folder + doneMark).c_str());
    if (!good && case_.operation.speaks && open.told().empty()) return silent;
    if (steps == allSteps && open.isOpen() && !new_.empty()) {
        Contents now = good ? new_ : old_;
        now[open.collection.name] = contentOf(open.collection);
        if (now != (good ? new_ : old_) && (good || !isBetween(now))) return otherwiseInMemory;
    }
    open.close();
    return good ? done : refused;
}

bool RScene::isBetween(const Contents& contents) const
{
    return std::find(between_.begin(), between_.end(), contents) != between_.end();
}

EXAMINATION RScene::examine(const std::string& folder) const
{
    return reliability::examine(folder, case_.operation.collections, otherFiles_);
}

std::string RScene::faultOf(const EXAMINATION& examination, Expected expected) const
{
    std::string fault;
    for (const std::string& text : examination.faults) fault += text + "\n";
    const Contents& found = examination.contents;
    const bool isOld = found == old_, isNew = found == new_;
    const bool good = expected == Expected::before  ? isOld || isBetween(found)
                      : expected == Expected::after ? isNew || (case_.operation.halfway && isBetween(found))
                                                    : isOld || isNew || isBetween(found);
    if (good) return fault;
    fault += isOld   ? "the old state, though it was done\n"
             : isNew ? "the new state, though it was refused\n"
                     : "neither old nor new state: " + describe(found) + "\n  old " + describe(old_) +
                           "\n  new " + describe(new_) + "\n";
    return fault;
}

std::string RScene::told() const
{
    return page_->text;
}

} // namespace reliability
