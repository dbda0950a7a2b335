#pragma once

#include <string>
#include <utility>
#include <vector>

#include "common/user.h"

namespace collection {

// The stations that an operation found damaged. They are told in one line at its end.
class RDamageReport {
public:
    void add(int number);
    [[nodiscard]] int count() const { return count_; }
    // "3, 5 to 9 and 12 more"; empty if there is none. Numbers as they came, runs drawn together.
    [[nodiscard]] std::string numbers() const;
    // One note that names the files and the stations; nothing if there is none. path: without extension.
    void tell(const std::string& path, common::RUser& user) const;

private:
    static constexpr std::size_t runsTold = 20;
    std::vector<std::pair<int, int>> runs_; // first and last numbers, at most runsTold
    int count_ = 0, inRuns_ = 0;
};

} // namespace collection
