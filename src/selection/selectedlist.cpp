#include "selection/selectedlist.h"

#include <algorithm>
#include <unistd.h>
#include <unordered_map>

#include "collection/damage.h"
#include "common/text.h"
#include "selection/criteria.h"

namespace selection {
namespace {

using collection::RCollection;

constexpr std::string_view abortQuestion = "Really Want to Abort?";

// Whether the cruise label of a station matches the pattern; each label is matched once.
class RCruiseFilter {
public:
    explicit RCruiseFilter(std::string_view pattern) : pattern_(pattern), all_(pattern == "*") {}
    bool passes(const char (&cruise)[21])
    {
        if (all_) return true;
        const std::string_view label = common::fieldText(cruise);
        if (!known_ || label != last_) {
            last_ = label;
            lastPasses_ = lookUp();
            known_ = true;
        }
        return lastPasses_;
    }

private:
    bool lookUp()
    {
        const auto [entry, isNew] = answers_.try_emplace(last_, false);
        if (isNew) entry->second = matchesWildcard(pattern_, last_);
        return entry->second;
    }

    std::string_view pattern_;
    bool all_, known_ = false, lastPasses_ = false;
    std::string last_;
    std::unordered_map<std::string, bool> answers_;
};

bool startList(std::FILE* file)
{
    return file && std::fflush(file) == 0 && ::ftruncate(::fileno(file), 0) == 0 &&
           std::fseek(file, 0, SEEK_SET) == 0;
}

bool readRecords(std::FILE* file, std::int64_t first, std::span<SELECTEDSTATION> records)
{
    constexpr auto size = static_cast<off_t>(sizeof(SELECTEDSTATION));
    return file && ::fseeko(file, first * size, SEEK_SET) == 0 &&
           std::fread(records.data(), sizeof(SELECTEDSTATION), records.size(), file) == records.size();
}

std::vector<SELECTEDSTATION> readWholeList(std::FILE* file, int count)
{
    std::vector<SELECTEDSTATION> records;
    // The file says how many there can be; the count, how many there are.
    const std::int64_t held =
        file ? common::fileSize(file) / static_cast<std::int64_t>(sizeof(SELECTEDSTATION)) : 0;
    records.resize(
        static_cast<std::size_t>(std::clamp<std::int64_t>(count, 0, std::max<std::int64_t>(held, 0))));
    if (!readRecords(file, 0, records)) records.clear();
    return records;
}

// One building of the list.
class RListBuilder {
public:
    RListBuilder(RCollection& collection, const LISTBUILD& build, std::string_view title, common::RUser& user)
        : collection_(collection), build_(build), title_(title), user_(user),
          test_(collection.criteria, collection.polygon),
          cruises_(common::fieldText(collection.criteria.cruisePattern)),
          groupSize_(std::max(100, collection.stationCount / 100))
    {
        group_.reserve(static_cast<std::size_t>(std::min(groupSize_, collection.stationCount)));
    }

    int run()
    {
        collection_.selectedStationCount = 0;
        if (!startList(collection_.valFile.get())) return 0;
        const bool read = collection_.scanHeaders(
            1, collection_.stationCount,
            [this](int number, const auto& header, const auto& counts) {
                return visit(number, header, counts);
            },
            [this](int number) { damaged_.add(number); });
        finishGroup();
        if (std::fflush(collection_.valFile.get()) != 0) {
            collection_.selectedStationCount = 0;
            good_ = false;
        }
        if (!good_) user_.note("The list of selected stations can't be written to " + listName());
        if (!read) user_.note(collection_.path + ".hob: can't be read to its end");
        damaged_.tell(collection_.path, user_);
        return collection_.selectedStationCount;
    }

private:
    bool visit(int number, const collection::STATIONHDR& header, const collection::LEVELCOUNTS& counts)
    {
        consider(number, header, counts);
        if (number % groupSize_ != 0) return true;
        finishGroup();
        user_.setProgress(100.0 * number / collection_.stationCount);
        return good_ && !user_.askAbort(abortQuestion, title_);
    }

    void consider(int number, const collection::STATIONHDR& header, const collection::LEVELCOUNTS& counts)
    {
        if (!test_.passes(number, header, counts) || !cruises_.passes(header.cruise)) return;
        SELECTEDSTATION record = stationOn(build_.domain, number, header);
        if (!isWithin(build_.domain, record)) return;
        if (!build_.place || build_.place(record)) group_.push_back(record);
    }

    [[nodiscard]] std::string listName() const
    {
        return collection_.tempDirectory + collection_.tempId + ".val";
    }

    void finishGroup()
    {
        if (group_.empty()) return;
        good_ = std::fwrite(group_.data(), sizeof(SELECTEDSTATION), group_.size(),
                            collection_.valFile.get()) == group_.size();
        if (good_) collection_.selectedStationCount += static_cast<int>(group_.size());
        if (good_ && build_.group) build_.group(group_);
        group_.clear();
    }

    RCollection& collection_;
    const LISTBUILD& build_;
    std::string_view title_;
    common::RUser& user_;
    RStationTest test_;
    RCruiseFilter cruises_;
    int groupSize_;
    bool good_ = true; // the list could be written so far
    std::vector<SELECTEDSTATION> group_;
    collection::RDamageReport damaged_;
};

} // namespace

SELECTEDSTATION stationOn(const MAPDOMAIN& domain, int number, const collection::STATIONHDR& header)
{
    return {number, 0, 0, longitudeIn(header.longitude, domain.lonMin, static_cast<float>(domain.lonMax)),
            header.latitude};
}

bool isWithin(const MAPDOMAIN& domain, const SELECTEDSTATION& station)
{
    return station.longitude >= static_cast<float>(domain.lonMin) &&
           station.longitude <= static_cast<float>(domain.lonMax) &&
           station.latitude >= static_cast<float>(domain.latMin) &&
           station.latitude <= static_cast<float>(domain.latMax);
}

int buildSelectedList(RCollection& collection, const LISTBUILD& build, std::string_view title,
                      common::RUser& user)
{
    return RListBuilder(collection, build, title, user).run();
}

bool readSelected(const RCollection& collection, int position, SELECTEDSTATION& record)
{
    if (position < 1 || position > collection.selectedStationCount) return false;
    return readRecords(collection.valFile.get(), position - 1, std::span(&record, 1));
}

std::vector<SELECTEDSTATION> readSelectedList(const RCollection& collection)
{
    return readWholeList(collection.valFile.get(), collection.selectedStationCount);
}

bool appendPlotted(RCollection& collection, const SELECTEDSTATION& record)
{
    std::FILE* const file = collection.selFile.get();
    constexpr auto size = static_cast<off_t>(sizeof record);
    if (!file || ::fseeko(file, collection.plottedStationCount * size, SEEK_SET) != 0) return false;
    if (std::fwrite(&record, sizeof record, 1, file) != 1 || std::fflush(file) != 0) return false;
    ++collection.plottedStationCount;
    return true;
}

std::vector<SELECTEDSTATION> readPlottedList(const RCollection& collection)
{
    return readWholeList(collection.selFile.get(), collection.plottedStationCount);
}

void clearPlotted(RCollection& collection)
{
    collection.plottedStationCount = 0;
    static_cast<void>(startList(collection.selFile.get()));
}

} // namespace selection
