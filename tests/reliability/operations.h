#pragma once

// The operations that change collections, each with the collection that it starts from.

#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "folder.h"

namespace reliability {

struct OPERATION {
    std::string name;
    // Makes the collections in a folder; null: the sample.
    std::function<void(const std::string& folder, std::string_view magic)> prepare;
    // False if nothing was done, which was told. The collection "sample" is open.
    std::function<bool(ROpenCollection&)> run;
    std::vector<std::string> collections{"sample"}; // that the folder may hold
    std::map<std::string, std::string> inputs{};    // other files of the folder and their bytes
    // It is a series of changes, the last of which is `run`: each state between two of them is good, too.
    std::vector<std::function<bool(ROpenCollection&)>> first{};
    // A further state that is good when it is cut off, from the old and the new one.
    std::function<Contents(const Contents&, const Contents&)> halfway{};
    // The user takes it back.
    bool changesNothing = false;
    // What it did is safe on the disk when it says so.
    bool isDurable = true;
    // It closes the collection before it begins, and finds the files as they are then.
    bool closesFirst = false;
    // It writes another collection than the open one, from what that holds in memory and open files.
    bool onlyReads = false;
    // It says for itself why it failed.
    bool speaks = true;
};

[[nodiscard]] std::vector<OPERATION> importOperations();
[[nodiscard]] std::vector<OPERATION> stationOperations();
[[nodiscard]] std::vector<OPERATION> maintenanceOperations();
[[nodiscard]] std::vector<OPERATION> familyOperations();
[[nodiscard]] std::vector<OPERATION> allOperations();

// One operation on collections of one magic.
struct CASE {
    OPERATION operation;
    std::string magic;
};
[[nodiscard]] std::vector<CASE> allCases();
[[nodiscard]] std::string nameOf(const CASE& given);
inline std::ostream& operator<<(std::ostream& out, const CASE& given)
{
    return out << nameOf(given);
}

// Where a case is worked through: "start" has what it starts from, "work" is changed, "tmp" has the program's
// temporary files.
class RScene {
public:
    explicit RScene(const CASE& given);

    [[nodiscard]] const std::string& work() const { return work_; }
    [[nodiscard]] const std::string& start() const { return start_; }
    [[nodiscard]] std::string folder(const std::string& name) const { return directory_.file(name) + "/"; }
    void reset() const { copyFolder(start_, work_); }
    // What a process does that opens the collection, runs the operation and closes it again.
    enum Exit { done = 0, refused = 1, silent = 2, otherwiseInMemory = 3, notOpened = 4 };
    [[nodiscard]] int workThrough(const std::string& folder) const { return workThrough(folder, allSteps); }
    // It removes a file of this name, which isn't there, when the operation says that it is done.
    static constexpr const char* doneMark = "done_mark";
    [[nodiscard]] EXAMINATION examine(const std::string& folder) const;
    // Empty if the state is a good one and nothing else is wrong. What an operation has said to be done can't
    // be undone any more, and what it has refused stays as it was.
    enum class Expected { either, before, after };
    [[nodiscard]] std::string faultOf(const EXAMINATION& examination,
                                      Expected expected = Expected::either) const;
    [[nodiscard]] bool isDurable() const { return case_.operation.isDurable; }

    [[nodiscard]] const Contents& oldState() const { return old_; }
    [[nodiscard]] const Contents& newState() const { return new_; }
    // What the last process that worked through the case has told.
    [[nodiscard]] std::string told() const;

private:
    static constexpr std::size_t allSteps = 1000;
    [[nodiscard]] int workThrough(const std::string& folder, std::size_t steps) const;
    // Lets a process of its own do the first steps; the state behind them.
    [[nodiscard]] Contents stateAfter(std::size_t steps);
    [[nodiscard]] bool isBetween(const Contents& contents) const;

    std::vector<Contents> between_; // good states of a series
    CASE case_;
    testing_support::RTemporaryDirectory directory_;
    std::string start_, work_;
    Contents old_, new_;
    std::vector<std::string> otherFiles_;
    struct Page; // memory that the processes share
    std::shared_ptr<Page> page_;
};

} // namespace reliability
