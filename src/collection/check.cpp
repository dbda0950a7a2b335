#include "collection/check.h"

#include <algorithm>

#include "collection/checkinventory.h"
#include "collection/checksidefiles.h"
#include "collection/checkstations.h"
#include "common/files.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr double largestData = 2147483648.0; // bytes, what the offset of a header can point to
constexpr double nearlyFull = 90;            // percent

// False, after a finding, if the description can't be read.
bool readDescription(const std::string& basePath, std::string& text, VARDESCRIPTION& description,
                     RFindings& findings)
{
    constexpr auto bad = FINDING::inconsistency;
    const std::string file = basePath + ".var";
    const auto bytes = common::readFile(file, largestDescription);
    if (!bytes) {
        findings.add(bad, ".var", common::fileSize(file) < 0 ? "is missing" : "can't be read");
        return false;
    }
    VARFAULT fault;
    if (parseVarFile(*bytes, description, fault) != VarFileResult::ok) {
        findings.addLine(bad, ".var", fault.line, fault.text);
        return false;
    }
    text = *bytes;
    return true;
}

// The station files are looked for under the name that the description tells. Those of a collection that was
// given another name without it are still beside it.
std::string stationFilesOf(const std::string& basePath, const std::string& told, RFindings& findings)
{
    const std::string directory = common::splitPath(basePath).directory;
    const std::string name = basePath.substr(directory.size());
    if (told == name) return basePath;
    findings.addLine(FINDING::inconsistency, ".var", 2,
                     "tells of the name " + told + ", so that the files of this name are opened");
    return common::fileSize(basePath + ".hob") >= 0 ? basePath : directory + told;
}

void checkFullness(CHECKRESULT& result, RFindings& findings)
{
    result.percentFull = 100 * static_cast<double>(result.dataBytes) / largestData;
    if (result.percentFull >= nearlyFull) {
        findings.add(FINDING::remark, ".dob",
                     common::format("%.0f %% of what a collection can hold", result.percentFull));
    }
}

void checkStations(const std::string& basePath, const VARDESCRIPTION& description, CHECKRESULT& result,
                   RFindings& findings, common::RUser& user)
{
    STATIONCHECK check{basePath, description};
    check.wantsEntryOf = cruiseIndicesCount(basePath, description.stationCount);
    check.wantsEntries = check.wantsEntryOf || inventoryCounts(basePath);
    const STATIONSUMMARY summary = checkStationFiles(check, findings, user);
    result.complete = summary.complete;
    result.dataBytes = summary.dataBytes;
    result.deadBytes = summary.deadBytes;
    if (!summary.complete) return;
    checkFullness(result, findings);
    checkInventoryFile(check, summary, findings);
    checkCruiseIndices(check, summary, findings);
}

} // namespace

CHECKRESULT checkCollection(const std::string& basePath, common::RUser& user)
{
    CHECKRESULT result;
    RFindings findings(basePath.substr(basePath.rfind('/') + 1));
    VARDESCRIPTION description;
    std::string text;
    if (readDescription(basePath, text, description, findings)) {
        result.stationCount = description.stationCount;
        checkDescriptionLines(text, description, findings);
        const std::string files = stationFilesOf(basePath, description.name, findings);
        checkStations(files, description, result, findings, user);
        checkVariableIds(files, description.variableCount, findings);
    }
    checkLastFiles(basePath, findings);
    checkMarks(basePath, findings);
    result.findings = findings.take();
    result.inconsistencies = static_cast<int>(
        std::count_if(result.findings.begin(), result.findings.end(),
                      [](const FINDING& finding) { return finding.kind == FINDING::inconsistency; }));
    return result;
}

} // namespace collection
