#include "import/association.h"

#include <string>

#include "common/text.h"

namespace importing {
namespace {

using collection::VARINFO;
using common::fieldText;

struct FIXEDLINK {
    std::string_view name;
    std::size_t target;
};
constexpr FIXEDLINK fixedLinks[] = {{"CTDPRS", 1}, {"CTDTMP", 2}, {"SALNTY", 3}};

struct SECONDLINK {
    std::string_view name, first; // `first` is what it stands in for
    std::size_t target;
    int SECONDCHOICES::*place;
};
constexpr SECONDLINK secondLinks[] = {{"CTDSAL", "SALNTY", 3, &SECONDCHOICES::salinity},
                                      {"CTDOXY", "OXYGEN", 4, &SECONDCHOICES::oxygen}};

void clearLinks(std::span<VARINFO> sources, std::span<VARINFO> targets)
{
    for (VARINFO& source : sources) source.assoc = 0;
    for (VARINFO& target : targets) target.assocSource = 0;
}

void link(std::span<VARINFO> sources, std::size_t source, std::span<VARINFO> targets, std::size_t target)
{
    sources[source].assoc = static_cast<int>(target);
    sources[source].scale = 1;
    sources[source].offset = 0;
    targets[target].assocSource = static_cast<int>(source);
}

std::string upperName(const VARINFO& variable)
{
    return common::toUpper(fieldText(variable.shortLabel));
}

bool isFree(std::span<const VARINFO> targets, std::size_t target)
{
    return target < targets.size() && targets[target].assocSource == 0;
}

bool linkByLabel(std::span<VARINFO> sources, std::size_t source, std::span<VARINFO> targets)
{
    const std::string_view label = fieldText(sources[source].label);
    for (std::size_t target = 1; target < targets.size(); ++target) {
        if (!isFree(targets, target) || !common::equalsIgnoreCase(label, fieldText(targets[target].label)))
            continue;
        link(sources, source, targets, target);
        return true;
    }
    return false;
}

// Gives a source that is still free to the target that its name stands for.
void linkByName(std::span<VARINFO> sources, std::size_t source, std::span<VARINFO> targets)
{
    const std::string name = upperName(sources[source]);
    for (const FIXEDLINK& fixed : fixedLinks) {
        if (name == fixed.name && isFree(targets, fixed.target)) link(sources, source, targets, fixed.target);
    }
}

// A second choice stands beside the first one of its own kind, never beside another variable. The target's
// own link is left alone.
void noteSecond(std::span<VARINFO> sources, std::size_t source, std::span<const VARINFO> targets,
                SECONDCHOICES& second)
{
    const std::string name = upperName(sources[source]);
    for (const SECONDLINK& choice : secondLinks) {
        if (name != choice.name || choice.target >= targets.size() || second.*choice.place != 0) continue;
        const int first = targets[choice.target].assocSource;
        if (first != 0 && upperName(sources[static_cast<std::size_t>(first)]) != choice.first) continue;
        sources[source].assoc = static_cast<int>(choice.target);
        sources[source].scale = 1;
        sources[source].offset = 0;
        second.*choice.place = static_cast<int>(source);
    }
}

// The first free source named `name` goes to a target that nothing else feeds.
void linkReversing(std::span<VARINFO> sources, std::span<VARINFO> targets, std::size_t target,
                   std::string_view name)
{
    if (!isFree(targets, target)) return;
    for (std::size_t source = 1; source < sources.size(); ++source) {
        if (sources[source].assoc != 0 || upperName(sources[source]) != name) continue;
        link(sources, source, targets, target);
        return;
    }
}

} // namespace

ASSOCIATIONRESULT associateByLabel(std::span<VARINFO> sources, std::span<VARINFO> targets)
{
    ASSOCIATIONRESULT result;
    clearLinks(sources, targets);
    for (std::size_t source = 1; source < sources.size(); ++source) {
        if (linkByLabel(sources, source, targets)) ++result.matched;
    }
    const auto forEachFree = [&](auto&& settle) {
        for (std::size_t source = 1; source < sources.size(); ++source) {
            if (sources[source].assoc == 0) settle(source);
        }
    };
    forEachFree([&](std::size_t source) { linkByName(sources, source, targets); });
    forEachFree([&](std::size_t source) { noteSecond(sources, source, targets, result.second); });
    linkReversing(sources, targets, 1, "REVPRS");
    linkReversing(sources, targets, 2, "REVTMP");
    return result;
}

void associateByNumber(std::span<VARINFO> sources, std::span<VARINFO> targets)
{
    clearLinks(sources, targets);
    for (std::size_t i = 1; i < std::min(sources.size(), targets.size()); ++i) link(sources, i, targets, i);
}

} // namespace importing
