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

// Sources that are known by name. False if the name isn't one of them.
bool linkByName(std::span<VARINFO> sources, std::size_t source, std::span<VARINFO> targets,
                SECONDCHOICES& second)
{
    const std::string name = upperName(sources[source]);
    for (const FIXEDLINK& fixed : fixedLinks) {
        if (name != fixed.name || fixed.target >= targets.size()) continue;
        link(sources, source, targets, fixed.target);
        return true;
    }
    if (name != "CTDSAL" && name != "CTDOXY") return false;
    const bool isSalinity = name == "CTDSAL";
    sources[source].assoc = isSalinity ? 3 : 4;
    (isSalinity ? second.salinity : second.oxygen) = static_cast<int>(source);
    return true;
}

bool linkByLabel(std::span<VARINFO> sources, std::size_t source, std::span<VARINFO> targets)
{
    for (std::size_t target = 1; target < targets.size(); ++target) {
        if (!common::equalsIgnoreCase(fieldText(sources[source].label), fieldText(targets[target].label)))
            continue;
        link(sources, source, targets, target);
        return true;
    }
    return false;
}

// The first source named `name` goes to a target that nothing else feeds.
void linkReversing(std::span<VARINFO> sources, std::span<VARINFO> targets, std::size_t target,
                   std::string_view name)
{
    if (target >= targets.size() || targets[target].assocSource != 0) return;
    for (std::size_t source = 1; source < sources.size(); ++source) {
        if (upperName(sources[source]) != name) continue;
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
        if (linkByName(sources, source, targets, result.second)) continue;
        if (linkByLabel(sources, source, targets)) ++result.matched;
    }
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
