#pragma once

// Two lists whose lines are joined in pairs, without their widgets: which lines are selected, which belong to
// each other, and what may be done with them.

#include <vector>

namespace dialogs {

class RPairedLists {
public:
    // In place of a row.
    static constexpr int none = -1, byDefault = -2;

    // For each source the row of its target, for each target that of its source; `byDefault` for a target
    // that takes a default value. A source may point to a target that takes another one or none.
    RPairedLists(std::vector<int> targetOfSource, std::vector<int> sourceOfTarget);

    // Selects a line, and its partner if it has one; `none` takes the selection away.
    void selectSource(int row);
    void selectTarget(int row);
    [[nodiscard]] int source() const { return source_; }
    [[nodiscard]] int target() const { return target_; }

    [[nodiscard]] int sourceCount() const { return static_cast<int>(targetOf_.size()); }
    [[nodiscard]] int targetCount() const { return static_cast<int>(sourceOf_.size()); }
    [[nodiscard]] int targetOf(int source) const { return targetOf_[static_cast<std::size_t>(source)]; }
    [[nodiscard]] int sourceOf(int target) const { return sourceOf_[static_cast<std::size_t>(target)]; }
    [[nodiscard]] bool isSourceJoined(int source) const { return targetOf(source) != none; }
    [[nodiscard]] bool isTargetJoined(int target) const { return sourceOf(target) >= 0; }

    // A line is selected in each list, and the one that was selected last is free.
    [[nodiscard]] bool mayJoin() const;
    // The line that was selected last belongs to another or takes its default value.
    [[nodiscard]] bool mayUndo() const;
    // A free target is selected.
    [[nodiscard]] bool mayUseDefault() const;

    // Joins the selected lines; earlier pairs of either are taken apart. Does nothing if a line is missing.
    void join();
    // Frees the line that was selected last, and its partner.
    void undo();
    // The selected target takes its default value.
    void useDefault();

private:
    [[nodiscard]] bool isFree() const;
    void freeSource(int source);
    void freeTarget(int target);

    std::vector<int> targetOf_, sourceOf_;
    int source_ = none, target_ = none;
    bool sourceIsLast_ = true;
};

} // namespace dialogs
