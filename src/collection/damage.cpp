#include "collection/damage.h"

#include "common/text.h"

namespace collection {

void RDamageReport::add(int number)
{
    ++count_;
    if (count_ - 1 > inRuns_) return; // a number was left out already
    if (!runs_.empty() && runs_.back().second + 1 == number) {
        runs_.back().second = number;
    } else if (runs_.size() < runsTold) {
        runs_.emplace_back(number, number);
    } else {
        return;
    }
    ++inRuns_;
}

std::string RDamageReport::numbers() const
{
    std::string text;
    for (const auto& run : runs_) {
        if (!text.empty()) text += ", ";
        text += run.first == run.second ? common::format("%d", run.first)
                                        : common::format("%d to %d", run.first, run.second);
    }
    if (count_ > inRuns_) text += common::format(" and %d more", count_ - inRuns_);
    return text;
}

void RDamageReport::tell(const std::string& path, common::RUser& user) const
{
    if (count_ == 0) return;
    user.note(path + ".hob, " + path + ".dob: damaged, left out " + (count_ == 1 ? "station " : "stations ") +
              numbers());
}

} // namespace collection
