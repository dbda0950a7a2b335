#pragma once

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/text.h"

namespace reliability {

// Collects what went wrong in many cases and tells each fault once, with the first case and how many there
// were.
class RFaults {
public:
    ~RFaults()
    {
        for (const std::string& kind : order_) {
            const ENTRY& entry = entries_[kind];
            ADD_FAILURE() << entry.where
                          << (entry.count > 1 ? common::format(" (and %d more)", entry.count - 1) : "")
                          << ":\n"
                          << entry.fault;
        }
    }
    void note(const std::string& where, const std::string& fault)
    {
        if (fault.empty()) return;
        const std::string kind = withoutNumbers(fault);
        ENTRY& entry = entries_[kind];
        if (entry.count++ > 0) return;
        entry.where = where;
        entry.fault = fault;
        order_.push_back(kind);
    }

private:
    struct ENTRY {
        std::string where, fault;
        int count = 0;
    };
    static std::string withoutNumbers(const std::string& text)
    {
        std::string kind;
        bool afterDigit = false; // numbers are decimal or hexadecimal
        for (const char c : text) {
            const bool digit = (c >= '0' && c <= '9') || (afterDigit && c >= 'a' && c <= 'f');
            afterDigit = digit;
            if (!digit) kind += c;
        }
        return kind;
    }
    std::map<std::string, ENTRY> entries_;
    std::vector<std::string> order_;
};

} // namespace reliability
