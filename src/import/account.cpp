#include "import/account.h"

#include <algorithm>

#include "common/text.h"

namespace importing {
namespace {

using common::format;

constexpr std::size_t namedStations = 5;

using Parts = std::vector<std::string>;

std::string joined(const Parts& parts, std::string_view separator)
{
    std::string text;
    for (const std::string& part : parts) text.append(text.empty() ? "" : separator).append(part);
    return text;
}

std::string counted(std::int64_t count, std::string_view what)
{
    return format("%lld ", static_cast<long long>(count)).append(what);
}

// A part that is left out if it is nothing.
void add(Parts& parts, std::int64_t count, std::string_view what)
{
    if (count != 0) parts.push_back(counted(count, what));
}

std::string_view wordOf(ImportMode mode)
{
    return mode == ImportMode::update ? "updated" : "merged";
}

Parts linesOf(const READACCOUNT& read)
{
    Parts parts{counted(read.lines, "read")};
    add(parts, read.headerLines, "of headers");
    add(parts, read.dataLines, "of data");
    add(parts, read.blankLines, "blank");
    add(parts, read.refusedLines, "refused");
    return parts;
}

Parts stationsOf(const READACCOUNT& read, const STOREACCOUNT& stored, ImportMode mode)
{
    Parts parts{counted(std::int64_t{stored.delivered} + read.stationsRefused, "read")};
    if (mode == ImportMode::addReplace) {
        parts.push_back(counted(stored.added, "added"));
        parts.push_back(counted(stored.replaced, "replaced"));
    } else {
        parts.push_back(counted(stored.merged, wordOf(mode)));
    }
    add(parts, read.stationsRefused, "refused");
    add(parts, stored.kept, "kept as they were");
    add(parts, stored.notFound, "not in the collection");
    add(parts, stored.tooLarge, "too large when merged");
    add(parts, stored.unreadable, "unreadable in the collection");
    add(parts, stored.unwritten, "not written");
    add(parts, stored.undone, "undone");
    return parts;
}

Parts valuesOf(const READACCOUNT& read, const STOREACCOUNT& stored, ImportMode mode)
{
    Parts parts{counted(read.valuesRead, "read")};
    const std::int64_t made = stored.valuesDelivered - read.valuesDelivered;
    if (made > 0) parts.push_back(counted(made, "more by defaults and conversions"));
    if (made < 0) parts.push_back(counted(-made, "less by conversions"));
    parts.push_back(counted(stored.valuesStored, "stored"));
    if (mode == ImportMode::merge) parts.push_back(counted(stored.valuesAveraged, "averaged"));
    add(parts, stored.valuesMatched, "levels there already");
    add(parts, read.valuesRefused, "refused");
    add(parts, stored.valuesDropped, "dropped");
    return parts;
}

// What is told of single things.
Parts remarksOf(const READACCOUNT& read, const STOREACCOUNT& stored)
{
    Parts parts;
    if (stored.notFound > 0) {
        const int others = stored.notFound - static_cast<int>(stored.firstNotFound.size());
        parts.push_back("Not in the collection: " + joined(stored.firstNotFound, ", "));
        if (others > 0) parts.back() += format(" and %d more", others);
    }
    if (read.unreadable > 0) {
        parts.push_back(
            format("Fields without a number: %lld, the first in ", static_cast<long long>(read.unreadable)) +
            read.firstUnreadable);
    }
    if (read.partly > 0) {
        parts.push_back(format("Fields that are only partly a number: %lld, the first in ",
                               static_cast<long long>(read.partly)) +
                        read.firstPartly);
    }
    if (read.linesCut > 0)
        parts.push_back(format("Lines with text behind a line end of another kind, which is not read: %d, "
                               "the first line %d",
                               read.linesCut, read.firstCutLine));
    if (read.labelsCut > 0)
        parts.push_back(format("Stations with a cut label: %d, the first ", read.labelsCut) + read.firstCut);
    return parts;
}

Parts sentencesOf(const READACCOUNT& read, const STOREACCOUNT& stored, ImportMode mode)
{
    Parts parts = {"Lines: " + joined(linesOf(read), ", "),
                   "Stations: " + joined(stationsOf(read, stored, mode), ", "),
                   "Values: " + joined(valuesOf(read, stored, mode), ", ")};
    for (std::string& remark : remarksOf(read, stored)) parts.push_back(std::move(remark));
    return parts;
}

void keepFirst(std::string& first, const std::string& other)
{
    if (first.empty()) first = other;
}

} // namespace

READACCOUNT& operator+=(READACCOUNT& sum, const READACCOUNT& more)
{
    sum.lines += more.lines;
    sum.headerLines += more.headerLines;
    sum.dataLines += more.dataLines;
    sum.blankLines += more.blankLines;
    sum.refusedLines += more.refusedLines;
    sum.valuesRead += more.valuesRead;
    sum.valuesDelivered += more.valuesDelivered;
    sum.valuesRefused += more.valuesRefused;
    sum.unreadable += more.unreadable;
    keepFirst(sum.firstUnreadable, more.firstUnreadable);
    sum.partly += more.partly;
    keepFirst(sum.firstPartly, more.firstPartly);
    sum.linesCut += more.linesCut;
    if (sum.firstCutLine == 0) sum.firstCutLine = more.firstCutLine;
    sum.stationsRefused += more.stationsRefused;
    sum.labelsCut += more.labelsCut;
    keepFirst(sum.firstCut, more.firstCut);
    return sum;
}

STOREACCOUNT& operator+=(STOREACCOUNT& sum, const STOREACCOUNT& more)
{
    sum.delivered += more.delivered;
    sum.added += more.added;
    sum.replaced += more.replaced;
    sum.merged += more.merged;
    sum.kept += more.kept;
    for (const std::string& label : more.firstNotFound) addNotFound(sum, label);
    sum.notFound += more.notFound - static_cast<int>(more.firstNotFound.size());
    sum.tooLarge += more.tooLarge;
    sum.unreadable += more.unreadable;
    sum.unwritten += more.unwritten;
    sum.undone += more.undone;
    sum.valuesDelivered += more.valuesDelivered;
    sum.valuesStored += more.valuesStored;
    sum.valuesAveraged += more.valuesAveraged;
    sum.valuesMatched += more.valuesMatched;
    sum.valuesDropped += more.valuesDropped;
    return sum;
}

void addNotFound(STOREACCOUNT& account, std::string_view label)
{
    ++account.notFound;
    if (account.firstNotFound.size() < namedStations) account.firstNotFound.emplace_back(label);
}

void takeBack(STOREACCOUNT& account)
{
    account.undone += account.added + account.replaced + account.merged;
    account.added = account.replaced = account.merged = 0;
    account.valuesDropped += account.valuesStored + account.valuesAveraged + account.valuesMatched;
    account.valuesStored = account.valuesAveraged = account.valuesMatched = 0;
}

std::string accountText(const READACCOUNT& read, const STOREACCOUNT& stored, ImportMode mode)
{
    return joined(sentencesOf(read, stored, mode), ".\n") + ".";
}

std::string accountLine(const READACCOUNT& read, const STOREACCOUNT& stored, ImportMode mode)
{
    return "ACCOUNT " + joined(sentencesOf(read, stored, mode), "; ");
}

} // namespace importing
