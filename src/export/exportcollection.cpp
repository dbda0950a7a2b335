#include "export/exportcollection.h"

#include <algorithm>
#include <cstring>

#include "collection/collectionfiles.h"
#include "collection/collectionlock.h"
#include "collection/leftovers.h"
#include "collection/sidefiles.h"
#include "collection/stationrecord.h"
#include "collection/variableids.h"
#include "common/files.h"
#include "common/text.h"
#include "export/stationexport.h"

namespace exporting {
namespace {

using collection::RCollection;
using collection::STATIONDATA;

constexpr EXPORTTEXTS texts{"Exporting data to collection ...", "Exporting data to collection ...",
                            "Really Want to Abort and Delete Export Collection?",
                            "%d Stations Exported to Collection\n\n%s"};
constexpr std::int64_t largestIds = 1 << 20; // bytes

std::string targetPath(const std::string& target)
{
    const std::string path = common::absolutePath(target);
    const std::size_t start = path.rfind('/') + 1;
    return path.substr(0, start) + collection::collectionName(path.substr(start));
}

// Chosen variables in the order of the collection: its primary variable stays in front.
std::vector<int> variablesInOrder(const RCollection& collection, const std::vector<int>& wanted)
{
    std::vector<int> variables = chosenVariables(collection, wanted);
    std::sort(variables.begin(), variables.end());
    return variables;
}

// Something that is no file stands under a name that the new collection needs.
std::string obstacleAt(const std::string& path)
{
    for (const std::string_view suffix : collection::replacedSuffixes) {
        const std::string file = path + std::string(suffix);
        if (common::existsAtAll(file) && !common::fileExists(file)) return file + " is in the way.";
    }
    return {};
}

// What is in front of the chosen variables where a station lacks the first of them.
void fillMissing(STATIONDATA& station, std::size_t levels)
{
    std::fill_n(station.values.get(), levels, common::MISSING_VALUE);
    std::fill_n(station.flags.get(), levels, collection::flagUnknown);
}

// The new collection. Its files come and go within one change, so that they are there as a whole or not at
// all, and what stood under the name comes back.
class RCollectionSink final : public RStationSink {
public:
    RCollectionSink(const RCollection& source, const std::vector<int>& variables, common::RUser& user)
        : source_(source), variables_(variables), user_(user)
    {
    }
    ~RCollectionSink() override { target_.rollBackChange(); }
    RCollectionSink(const RCollectionSink&) = delete;
    RCollectionSink& operator=(const RCollectionSink&) = delete;

    // Makes the empty collection. Says why it can't be made; nothing if it is there.
    [[nodiscard]] std::string make(const std::string& path)
    {
        const common::PATHPARTS parts = common::splitPath(path + ".var");
        target_.directory = parts.directory;
        target_.name = parts.baseName;
        target_.path = path;
        std::string reason = takePlace();
        if (!reason.empty()) return reason;
        describe();
        user_.status("Opening " + target_.name + " ...");
        if (!makeFiles()) return "Its files can't be written. The disk may be full.";
        return {};
    }
    [[nodiscard]] bool write(const STATIONDATA& station) override
    {
        take(station);
        const collection::WriteResult result = target_.writeStation(0, station_, false);
        isFull_ = result == collection::WriteResult::full;
        return result == collection::WriteResult::ok;
    }
    [[nodiscard]] bool commit() override
    {
        if (!target_.flushStationFiles()) return false;
        target_.readInventory(true, user_);
        if (!target_.commitChange()) return false;
        // Behind this line no import takes the place of the collection unasked.
        target_.addLogLine(
            common::format("EXPORT%6d Stations %s.var", target_.stationCount, source_.path.c_str()));
        return true;
    }
    [[nodiscard]] std::string fault() const override
    {
        const std::string file = target_.path + ".var";
        return "Collection " + file + " could not be made!\n\n" +
               (isFull_ ? "It can't hold more than 2 GiB."
                        : "Its files can't be written. The disk may be full.");
    }

private:
    // Marks the place as ours and puts right what stands there. Says why it can't be had.
    std::string takePlace()
    {
        const std::string& path = target_.path;
        if (!common::directoryExists(target_.directory)) return target_.directory + " does not exist.";
        if (collection::isSameCollection(path, source_.path)) return "It is the open collection itself.";
        if (std::string obstacle = obstacleAt(path); !obstacle.empty()) return obstacle;
        if (!collection::filesAreWritable(path, target_.directory, false))
            return std::string(collection::writeProtectedText);
        std::string holder;
        if (!lock_.acquire(path, &holder))
            return "It is open for writing in another NVQ session" +
                   (holder.empty() ? "!" : " (" + holder + ")!");
        collection::removeLeftovers(path);
        const collection::RECOVERY recovery = collection::recoverCollection(path);
        if (recovery.result != collection::RecoveryResult::failed) return {};
        return "A change of it was cut off, and its journal " + collection::journalPath(path) +
               " can't be used: " + recovery.fault;
    }

    void describe()
    {
        target_.type = source_.type;
        target_.userName = source_.userName;
        target_.hostName = source_.hostName;
        target_.writable = true;
        if (source_.kind == 1)
            target_.newMagic =
                source_.foreignTimeOrder ? collection::bigEndianMagic : collection::littleEndianMagic;
        target_.variableCount = static_cast<int>(variables_.size());
        for (std::size_t i = 0; i < variables_.size(); ++i) {
            const collection::VARINFO& from = source_.variables[static_cast<std::size_t>(variables_[i])];
            collection::VARINFO& to = target_.variables[i + 1];
            to = collection::emptyVariable(static_cast<int>(i) + 1);
            collection::setLabel(to, common::fieldText(from.label));
            to.width = from.width;
            to.decimals = from.decimals;
        }
    }

    bool makeFiles()
    {
        return target_.beginChange("CREATE") && target_.setFilesAside(collection::replacedSuffixes) &&
               target_.createEmptyFiles() && writeVariableIds() &&
               target_.openStationFiles(target_.path, user_) == collection::OpenFilesResult::ok;
    }

    // The roles of the variables that came along.
    bool writeVariableIds() const
    {
        std::vector<int> origins = {0};
        for (const int v : variables_) origins.push_back(v <= source_.variableCount ? v : 0);
        const auto old = common::readFile(source_.path + ".idv", largestIds);
        const std::string ids = collection::renumberedVariableIds(old.value_or(std::string()), origins);
        return ids.empty() || common::writeFile(target_.path + ".idv", ids);
    }

    // The chosen variables of a station under their new numbers.
    void take(const STATIONDATA& station)
    {
        const auto levels = static_cast<std::size_t>(station.levels());
        station_.clear();
        station_.header = station.header;
        station_.levelCount[1] = station.levelCount[1];
        std::size_t end = 0;
        for (std::size_t i = 0; i < variables_.size(); ++i) {
            const std::int32_t from = station.offset[static_cast<std::size_t>(variables_[i])];
            if (from < 0 && i > 0) continue;
            if (from < 0) {
                fillMissing(station_, levels);
            } else {
                std::memcpy(station_.values.get() + end, station.values.get() + from, levels * sizeof(float));
                std::memcpy(station_.flags.get() + end, station.flags.get() + from, levels);
            }
            station_.offset[i + 1] = static_cast<std::int32_t>(end);
            end += levels;
        }
        station_.header.valueCount = static_cast<std::int32_t>(end);
    }

    const RCollection& source_;
    const std::vector<int>& variables_;
    common::RUser& user_;
    collection::RCollectionLock lock_; // outlasts the change
    RCollection target_;
    STATIONDATA station_;
    bool isFull_ = false;
};

} // namespace

bool exportCollection(RCollection& collection, STATIONDATA& station, const std::string& target,
                      const std::vector<int>& variables, common::RUser& user)
{
    if (!acceptsSampleSelection(collection, user)) return false;
    const std::vector<int> chosen = variablesInOrder(collection, variables);
    const std::string path = targetPath(target), file = path + ".var";
    RCollectionSink sink(collection, chosen, user);
    const std::string reason = chosen.empty() ? "It needs at least one variable." : sink.make(path);
    if (!reason.empty()) {
        user.about(texts.caption, "Collection " + file + " could not be made!\n\n" + reason);
        return false;
    }
    return exportStations({collection, station, chosen, file, texts, user}, sink) == ExportEnd::complete;
}

} // namespace exporting
