#pragma once

// The findings of a check as they come. Files are told by their names, without directory.

#include <string>
#include <string_view>

#include "collection/check.h"
#include "collection/damage.h"

namespace collection {

class RFindings {
public:
    explicit RFindings(std::string name) : name_(std::move(name)) {} // of the collection

    // About the file of a suffix as a whole, or about one line of it.
    void add(FINDING::Kind kind, std::string_view suffix, const std::string& text);
    void addLine(FINDING::Kind kind, std::string_view suffix, int line, const std::string& text);
    // What many stations or lines share, in one text; nothing if `where` is empty. unit: "station" or "line".
    void addShared(FINDING::Kind kind, std::string_view suffix, std::string_view unit,
                   const RDamageReport& where, std::string_view text);
    // About a file that isn't one of the collection's own.
    void addOther(FINDING::Kind kind, const std::string& text);

    [[nodiscard]] std::vector<FINDING> take() { return std::move(findings_); }

private:
    std::string name_;
    std::vector<FINDING> findings_;
};

} // namespace collection
