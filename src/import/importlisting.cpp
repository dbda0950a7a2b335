#include "import/importlisting.h"

#include <algorithm>

#include "common/files.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "import/listingreader.h"

namespace importing {
namespace {

using collection::RCollection;
using collection::STATIONDATA;
using collection::VARINFO;
using common::fieldText;
using common::format;

constexpr std::string_view caption = "NVQ Data Import", openingCaption = "Opening .o4x file ...";
constexpr std::string_view notOfFormat = "Import File is not of .o4x Format!";
constexpr std::size_t describedWidth = 25; // of a label in the description of a 3.0 listing

std::string shortName(const std::string& path)
{
    const common::PATHPARTS parts = common::splitPath(path);
    return parts.baseName + parts.extension;
}

ListingForm formOf(Format form)
{
    return form == Format::listing3 ? ListingForm::version3 : ListingForm::version4;
}

enum class HeaderEnd { ok, cancelled, failed };

HeaderEnd readHeader4(const std::string& path, LISTINGHEADER& header, common::RUser& user)
{
    std::string fault;
    if (readListingHeader(path, header, fault)) return HeaderEnd::ok;
    if (fault.ends_with(notOfFormat)) fault = std::string(notOfFormat) + "\n\n" + path;
    user.about(openingCaption, fault);
    return HeaderEnd::failed;
}

// The description stands beside the listing unless the settler knows better.
HeaderEnd readHeader3(const std::string& path, RImportSettler* settler, LISTINGHEADER& header,
                      common::RUser& user)
{
    const common::PATHPARTS parts = common::splitPath(path);
    std::string description = parts.directory + parts.baseName + ".var";
    if (settler != nullptr) {
        const std::optional<std::string> chosen = settler->chooseDescription(path, description);
        if (!chosen) return HeaderEnd::cancelled;
        description = *chosen;
    }
    if (!common::fileExists(description)) {
        user.about(caption, format("File %s not found!\n\nIt describes the variables of %s.",
                                   description.c_str(), path.c_str()));
        return HeaderEnd::failed;
    }
    std::string fault;
    if (readListingDescription(description, header, fault)) return HeaderEnd::ok;
    user.about(caption, fault);
    return HeaderEnd::failed;
}

HeaderEnd readHeader(Format form, const std::string& path, RImportSettler* settler, LISTINGHEADER& header,
                     common::RUser& user)
{
    return form == Format::listing3 ? readHeader3(path, settler, header, user)
                                    : readHeader4(path, header, user);
}

// The label as the description of a 3.0 listing has it.
std::string describedLabel(const VARINFO& variable)
{
    const std::string_view label = fieldText(variable.label);
    if (label.size() <= describedWidth) return std::string(label);
    const std::string cut = common::encodeLabel(common::decodeLabel(label), describedWidth);
    return std::string(common::trimBlanks(cut));
}

// Labels that were cut in the description become whole again where only one target can be meant.
void completeLabels(std::span<VARINFO> sources, std::span<const VARINFO> targets)
{
    for (std::size_t i = 1; i < sources.size(); ++i) {
        const auto isMeant = [&](const VARINFO& target) {
            return describedLabel(target) == fieldText(sources[i].label);
        };
        const auto first = std::find_if(targets.begin() + 1, targets.end(), isMeant);
        if (first == targets.end() || std::any_of(first + 1, targets.end(), isMeant)) continue;
        collection::setLabel(sources[i], fieldText(first->label));
    }
}

// Says so if the file has not as many stations as it tells.
void noteCount(const std::string& path, const LISTINGHEADER& header, const RListingReader& reader,
               const RImportRun& run, common::RUser& user)
{
    const int found = run.state.stationsRead + reader.account().stationsRefused;
    if (run.state.aborted || run.state.failed || found == header.stationCount) return;
    const std::string& teller = header.description.empty() ? path : header.description;
    user.note(format("%s: %d stations are announced, but there are %d", teller.c_str(), header.stationCount,
                     found));
}

} // namespace

IMPORTRESULT importListing(Format form, RCollection& collection, STATIONDATA& station,
                           const std::string& path, const IMPORTOPTIONS& options, common::RUser& user)
{
    IMPORTRESULT result;
    if (!canImport(collection, user)) return {ImportEnd::failed, 0, 0};
    RImportRun run(collection, user, options.run);
    run.state.mode = options.mode;
    run.state.checkExisting = options.checkExisting;
    LISTINGHEADER header = options.listing.value_or(LISTINGHEADER{});
    if (!options.listing) {
        const HeaderEnd read = readHeader(form, path, options.settler, header, user);
        if (read == HeaderEnd::cancelled) return {ImportEnd::cancelled, 0, 0};
        if (read != HeaderEnd::ok) return {ImportEnd::failed, 0, 0};
    }
    if (form == Format::listing3) completeLabels(header.variables, targetsOf(collection));
    if (!settleImport(collection, {path, header.variables, false}, options, run, result, user)) return result;

    RListingReader reader(formOf(form), header, targetsOf(collection),
                          keyVariables(collection, header.variables, options.settler), user);
    // A 3.0 listing without stations is an empty file.
    const bool mayBeEmpty = form == Format::listing3;
    if (!reader.open(path) ||
        (run.openImport(path, shortName(path), header.lineCount, run.state.mode, mayBeEmpty) == 0 &&
         (!mayBeEmpty || run.state.failed))) {
        if (!run.state.failed) user.about(caption, format("File %s can not be read!", path.c_str()));
        return {ImportEnd::failed, 0, 0};
    }
    const std::int64_t code = importStations(reader, run, station);
    if (code == readEnd) noteCount(path, header, reader, run, user);
    run.closeImport(true);
    return resultOf(run, code);
}

bool listingVariables(Format form, const std::string& path, RImportSettler* settler, RCollection& target,
                      LISTINGHEADER& header, common::RUser& user)
{
    if (readHeader(form, path, settler, header, user) != HeaderEnd::ok) return false;
    if (header.variables.size() < 2) {
        user.about(caption, format("File %s has no variables.",
                                   (header.description.empty() ? path : header.description).c_str()));
        return false;
    }
    for (std::size_t v = 0; v < target.variables.size(); ++v)
        target.variables[v] = collection::emptyVariable(static_cast<int>(v));
    std::copy(header.variables.begin() + 1, header.variables.end(), target.variables.begin() + 1);
    target.variableCount = target.totalVariableCount = static_cast<int>(header.variables.size()) - 1;
    target.headerRecordSize = 80 + 2 * target.variableCount;
    target.stationCount = 0;
    target.type = header.type;
    return true;
}

} // namespace importing
