#include "dialogs/pairedlists.h"

namespace dialogs {
namespace {

bool isRow(int row, const std::vector<int>& list)
{
    return row >= 0 && row < static_cast<int>(list.size());
}

int& at(std::vector<int>& list, int row)
{
    return list[static_cast<std::size_t>(row)];
}

} // namespace

RPairedLists::RPairedLists(std::vector<int> targetOfSource, std::vector<int> sourceOfTarget)
    : targetOf_(std::move(targetOfSource)), sourceOf_(std::move(sourceOfTarget))
{
    for (int& target : targetOf_) {
        if (!isRow(target, sourceOf_)) target = none;
    }
    for (int& source : sourceOf_) {
        if (source != byDefault && !isRow(source, targetOf_)) source = none;
    }
}

void RPairedLists::selectSource(int row)
{
    source_ = isRow(row, targetOf_) ? row : none;
    sourceIsLast_ = true;
    if (source_ != none && isSourceJoined(source_)) target_ = targetOf(source_);
}

void RPairedLists::selectTarget(int row)
{
    target_ = isRow(row, sourceOf_) ? row : none;
    sourceIsLast_ = false;
    if (target_ != none && isTargetJoined(target_)) source_ = sourceOf(target_);
}

// The line that was selected last belongs to nothing.
bool RPairedLists::isFree() const
{
    return sourceIsLast_ ? !isSourceJoined(source_) : sourceOf(target_) == none;
}

bool RPairedLists::mayJoin() const
{
    return source_ != none && target_ != none && isFree();
}

bool RPairedLists::mayUndo() const
{
    return (sourceIsLast_ ? source_ : target_) != none && !isFree();
}

bool RPairedLists::mayUseDefault() const
{
    return target_ != none && sourceOf(target_) == none;
}

void RPairedLists::freeSource(int source)
{
    const int target = targetOf(source);
    at(targetOf_, source) = none;
    if (target != none && sourceOf(target) == source) at(sourceOf_, target) = none;
}

void RPairedLists::freeTarget(int target)
{
    const int source = sourceOf(target);
    at(sourceOf_, target) = none;
    if (source >= 0 && targetOf(source) == target) at(targetOf_, source) = none;
}

void RPairedLists::join()
{
    if (source_ == none || target_ == none) return;
    freeSource(source_);
    freeTarget(target_);
    at(targetOf_, source_) = target_;
    at(sourceOf_, target_) = source_;
}

void RPairedLists::undo()
{
    if (!mayUndo()) return;
    if (sourceIsLast_) {
        freeSource(source_);
    } else {
        freeTarget(target_);
    }
}

void RPairedLists::useDefault()
{
    if (!mayUseDefault()) return;
    at(sourceOf_, target_) = byDefault;
    sourceIsLast_ = false;
}

} // namespace dialogs
