#include "export/stationexport.h"

#include <algorithm>
#include <new>
#include <numeric>

#include "collection/damage.h"
#include "common/text.h"
#include "selection/criteria.h"
#include "selection/selectedlist.h"
#include "variables/needed.h"

namespace exporting {
namespace {

using collection::RCollection;
using collection::STATIONDATA;

constexpr std::size_t largestProgressStep = 100; // stations between two looks at the keyboard

bool sampleSelectionIsActive(const RCollection& collection)
{
    const int variable = collection.criteria.sampleVariable;
    return variable >= 1 && variable <= collection.totalVariableCount;
}

// Puts the mask of needed variables back.
class RNeededGuard {
public:
    RNeededGuard(RCollection& collection, const std::vector<int>& variables)
        : collection_(collection), saved_(collection.neededMask)
    {
        variables::needVariables(collection, variables);
    }
    ~RNeededGuard() { collection_.neededMask = saved_; }
    RNeededGuard(const RNeededGuard&) = delete;
    RNeededGuard& operator=(const RNeededGuard&) = delete;

private:
    RCollection& collection_;
    const decltype(RCollection::neededMask) saved_;
};

struct RUN {
    const EXPORTJOB& job;
    RStationSink& sink;
    collection::RDamageReport damaged;
    int written = 0;
};

// False if the sink can't take more.
bool writeStation(RUN& run, int number)
{
    const EXPORTJOB& job = run.job;
    if (job.collection.loadStation(number, job.station, true) != collection::LoadResult::ok) {
        run.damaged.add(number);
        return true;
    }
    if (sampleSelectionIsActive(job.collection))
        selection::compressToSampleRange(job.station, job.collection.criteria);
    if (job.station.levels() < 1 || !holdsAny(job.station, job.variables)) return true;
    if (!run.sink.canTake(job.station)) return true;
    ++run.written;
    return run.sink.write(job.station);
}

ExportEnd writeAll(RUN& run)
{
    const EXPORTJOB& job = run.job;
    const std::vector<selection::SELECTEDSTATION> list = selection::readSelectedList(job.collection);
    const std::size_t step = std::clamp<std::size_t>(list.size() / 200, 1, largestProgressStep);
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (i % step == 0)
            job.user.setProgress(100.0 * static_cast<double>(i) / static_cast<double>(list.size()));
        if (job.user.askAbort(job.texts.abortQuestion, job.texts.caption)) return ExportEnd::aborted;
        if (!writeStation(run, list[i].number)) return ExportEnd::unwritable;
    }
    return run.sink.commit() ? ExportEnd::complete : ExportEnd::unwritable;
}

// The texts of a report have one number and one path in them.
std::string reportText(std::string_view pattern, int count, const std::string& path)
{
    return common::replaceAll(common::replaceAll(pattern, "%d", std::to_string(count)), "%s", path);
}

} // namespace

bool acceptsSampleSelection(const RCollection& collection, common::RUser& user)
{
    if (!sampleSelectionIsActive(collection) || !user.interactive()) return true;
    return user.question("Sample selection warning ...",
                         "Sample selection criteria are currently in effect.\n"
                         "Only selected samples are written to the export file!\n\nContinue?") ==
           common::Answer::yes;
}

std::vector<int> chosenVariables(const RCollection& collection, const std::vector<int>& wanted)
{
    std::vector<int> variables;
    if (wanted.empty()) {
        variables.resize(static_cast<std::size_t>(collection.variableCount));
        std::iota(variables.begin(), variables.end(), 1);
        return variables;
    }
    const int last = std::min(collection.totalVariableCount, common::maxVariables);
    std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(variables), [&](int v) {
        return v >= 1 && v <= last && std::find(variables.begin(), variables.end(), v) == variables.end();
    });
    return variables;
}

bool holdsAny(const STATIONDATA& station, const std::vector<int>& variables)
{
    return std::any_of(variables.begin(), variables.end(),
                       [&](int v) { return station.offset[static_cast<std::size_t>(v)] >= 0; });
}

float eastLongitude(float longitude)
{
    return longitude < 0 ? longitude + 360 : longitude;
}

ExportEnd exportStations(const EXPORTJOB& job, RStationSink& sink)
{
    const int current = job.station.number;
    RUN run{job, sink, {}, 0};
    ExportEnd end = ExportEnd::unwritable;
    std::string fault;
    try {
        const RNeededGuard needed(job.collection, job.variables);
        const common::RBusyGuard busy(job.user, std::string(job.texts.busy).append(common::escAborts));
        end = writeAll(run);
        if (end == ExportEnd::unwritable) fault = sink.fault();
    } catch (const std::bad_alloc&) {
        fault = "There is not enough memory.";
    }
    if (current > 0 && job.collection.loadStation(current, job.station, true) != collection::LoadResult::ok)
        job.station.clear();
    run.damaged.tell(job.collection.path, job.user);
    if (fault.empty()) fault = "Could not write file " + job.path + "!";
    if (end == ExportEnd::unwritable) job.user.about(job.texts.caption, fault);
    if (end == ExportEnd::aborted) job.user.setAbort(false);
    if (end == ExportEnd::complete && job.user.interactive())
        job.user.about(job.texts.caption, reportText(job.texts.report, run.written, job.path));
    return end;
}

} // namespace exporting
