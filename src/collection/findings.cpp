#include "collection/findings.h"

#include "common/text.h"

namespace collection {

void RFindings::addOther(FINDING::Kind kind, const std::string& text)
{
    findings_.push_back({kind, text});
}

void RFindings::add(FINDING::Kind kind, std::string_view suffix, const std::string& text)
{
    addOther(kind, name_ + std::string(suffix) + ": " + text);
}

void RFindings::addLine(FINDING::Kind kind, std::string_view suffix, int line, const std::string& text)
{
    add(kind, suffix, common::format("line %d: ", line) + text);
}

void RFindings::addShared(FINDING::Kind kind, std::string_view suffix, std::string_view unit,
                          const RDamageReport& where, std::string_view text)
{
    if (where.count() == 0) return;
    std::string all(unit);
    all += where.count() == 1 ? " " : "s ";
    all += where.numbers();
    add(kind, suffix, all.append(": ").append(text));
}

} // namespace collection
