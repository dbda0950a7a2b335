#include "collection/rewriting.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <new>
#include <vector>

#include "collection/blockfile.h"
#include "collection/damage.h"
#include "collection/stationrecord.h"
#include "collection/varfile.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr std::string_view abortQuestion = "Really want to abort?";
constexpr auto targetSuffixes = std::to_array<std::string_view>({".var", ".hob", ".dob", ".cfl", ".idv"});

std::vector<std::string> targetFiles()
{
    std::vector<std::string> names;
    for (const std::string_view suffix : targetSuffixes) {
        names.emplace_back(targetName);
        names.back() += suffix;
    }
    return names;
}

// Anything that stands under a name: a link to nowhere counts too.
bool isTaken(const std::string& file)
{
    std::error_code error;
    return std::filesystem::symlink_status(file, error).type() != std::filesystem::file_type::not_found;
}

FILEACTION renaming(std::string from, std::string to)
{
    return {.kind = FILEACTION::rename, .from = std::move(from), .to = std::move(to)};
}

FILEACTION removal(std::string name)
{
    return {.kind = FILEACTION::remove, .from = std::move(name), .to = {}};
}

} // namespace

RViewKeeper::RViewKeeper(RCollection& collection, bool withVariables)
    : collection_(collection), withVariables_(withVariables), criteria_(collection.criteria),
      qualityLimit_(collection.qualityLimit), currentStation_(collection.currentStation),
      currentSample_(collection.currentSample), variableCount_(collection.variableCount),
      totalVariableCount_(collection.totalVariableCount), variables_(collection.variables),
      neededMask_(collection.neededMask)
{
}

RViewKeeper::~RViewKeeper()
{
    collection_.criteria = criteria_;
    collection_.qualityLimit = qualityLimit_;
    collection_.currentStation = currentStation_;
    collection_.currentSample = currentSample_;
    if (!withVariables_ || collection_.variableCount != variableCount_) return;
    collection_.variables = variables_;
    collection_.totalVariableCount = totalVariableCount_;
    collection_.neededMask = neededMask_;
}

RStationKeeper::RStationKeeper(RCollection& collection, STATIONDATA& station)
    : collection_(collection), station_(station),
      number_(station.collection == &collection ? station.number : 0)
{
}

RStationKeeper::~RStationKeeper()
{
    const bool loads =
        !changed_ && number_ > 0 && collection_.loadStation(number_, station_, true) == LoadResult::ok;
    if (!loads) station_.clear();
}

bool busyWith(std::string_view title, common::RUser& user, const std::function<bool()>& operation)
{
    const common::RBusyGuard busy(user, std::string(title).append(common::escAborts));
    user.setAbort(false);
    bool done = false;
    try {
        done = operation();
    } catch (const std::bad_alloc&) {
        user.about(title, "There is not enough memory.\n\nThe collection is as it was.");
    }
    user.setAbort(false);
    return done;
}

bool writeNotedFile(const std::string& file, std::string_view bytes)
{
    RBlockFile stream;
    return stream.open(file, RBlockFile::Mode::create) && stream.write(0, std::as_bytes(std::span(bytes))) &&
           stream.sync();
}

RRewriting::RRewriting(RCollection& source, std::string_view title, common::RUser& user)
    : source_(source), title_(title), user_(user)
{
}

RRewriting::~RRewriting()
{
    target_.closeStationFiles();
    if (begun_) source_.rollBackChange();
}

std::string RRewriting::fileOf(std::string_view suffix) const
{
    return source_.directory + std::string(targetName) + std::string(suffix);
}

bool RRewriting::refuse(std::string_view text) const
{
    user_.about(title_, text);
    return false;
}

void RRewriting::tellFewer() const
{
    user_.about(title_, "Sorted collection contains fewer stations than source!\n\n"
                        "Original source collection will be kept.");
}

// Files of the target that no journal of ours names are another collection's, or are being made by another
// program at this moment.
bool RRewriting::isPlaceFree() const
{
    for (const std::string_view suffix : targetSuffixes) {
        const std::string file = fileOf(suffix);
        if (isTaken(file)) {
            return refuse(file + " exists already. It belongs to another collection, or to an operation that "
                                 "was cut off.\n\nOpen that collection, or rename the file, and try again.");
        }
    }
    return true;
}

bool RRewriting::begin(std::string_view operation, std::span<const VARINFO> variables)
{
    if (!lock_.acquire(source_.directory + std::string(targetName))) {
        return refuse("Another program is rewriting a collection in " + source_.directory +
                      "\n\nTry again when it is done.");
    }
    if (!isPlaceFree()) return false;
    if (!source_.beginChange(operation)) {
        return refuse(source_.path + ".hob: the collection can't be changed. It is write-protected, or its "
                                     "files are no longer the ones that were opened.");
    }
    begun_ = true;
    if (!source_.noteMadeFiles(targetFiles())) {
        return refuse(journalPath(source_.path) + " can't be written.");
    }
    return makeTarget(variables);
}

bool RRewriting::makeTarget(std::span<const VARINFO> variables)
{
    target_.directory = source_.directory;
    target_.name = targetName;
    target_.path = fileOf({});
    target_.type = source_.type;
    target_.writable = target_.writeBehind = true;
    target_.newMagic = source_.foreignTimeOrder ? bigEndianMagic : littleEndianMagic;
    target_.qualityLimit = common::noQualityLimit;
    const int count = static_cast<int>(variables.size()) - 1;
    if (!writeNotedFile(fileOf(".var"), formatVarFile(targetName, target_.type, 0, count, variables))) {
        return refuse(fileOf(".var") + " can't be written. The disk may be full.");
    }
    user_.status("Opening " + target_.name + " ...");
    return target_.openStationFiles(target_.path, user_) == OpenFilesResult::ok;
}

bool RRewriting::carryOver(const CARRIAGE& carriage, STATIONDATA& station)
{
    const int step = std::clamp(carriage.count / 200, 1, 100);
    for (int i = 0; i < carriage.count; ++i) {
        if (i % step == 0) user_.setProgress(100.0 * i / carriage.count);
        if (user_.askAbort(abortQuestion, title_)) return false;
        if (!carryOne(carriage.numberOf(i), carriage, station)) return false;
    }
    return true;
}

bool RRewriting::carryOne(int number, const CARRIAGE& carriage, STATIONDATA& station)
{
    if (source_.loadStation(number, station, false) != LoadResult::ok) {
        RDamageReport damaged;
        damaged.add(number);
        damaged.tell(source_.path, user_);
        tellFewer();
        return false;
    }
    const WriteResult result = carriage.prepare && !carriage.prepare(station)
                                   ? WriteResult::tooLarge
                                   : target_.writeStation(0, station, carriage.sort);
    switch (result) {
    case WriteResult::ok:
        return true;
    case WriteResult::badHeader:
    case WriteResult::noLevels:
    case WriteResult::tooLarge:
        user_.note(
            common::format("%s: station %d can't be stored in the new form", source_.path.c_str(), number));
        tellFewer();
        return false;
    case WriteResult::full:
        return refuse(fileOf(".dob") + " is full: it can't hold more than 2 GiB.\n\n"
                                       "The collection is as it was.");
    default:
        return refuse(fileOf(".dob") + " or .hob can't be written. The disk may be full.\n\n"
                                       "The collection is as it was.");
    }
}

void RRewriting::setVariableIds(std::string text)
{
    variableIds_ = std::move(text);
    newVariableIds_ = true;
}

// All of the target on the disk, under the name that it will have.
bool RRewriting::finishTarget()
{
    const std::string description = formatVarFile(source_.name, target_.type, target_.stationCount,
                                                  target_.variableCount, target_.variables);
    bool written = target_.flushStationFiles();
    target_.closeStationFiles();
    written = written && writeNotedFile(fileOf(".var"), description);
    if (written && !variableIds_.empty()) written = writeNotedFile(fileOf(".idv"), variableIds_);
    return written || refuse(fileOf(".hob") + ", .dob or .var can't be written. The disk may be full.\n\n"
                                              "The collection is as it was.");
}

bool RRewriting::replaceSource()
{
    const int count = target_.stationCount;
    if (count < source_.stationCount) {
        tellFewer();
        return false;
    }
    if (!finishTarget()) return false;
    const std::string from(targetName), to = source_.name;
    std::vector<FILEACTION> actions = {renaming(from + ".hob", to + ".hob"),
                                       renaming(from + ".dob", to + ".dob"), removal(from + ".cfl")};
    // what was made from the old headers is never newer than the new ones
    for (const char* const suffix : {".inv", ".cid"}) actions.push_back(removal(to + suffix));
    if (newVariableIds_) {
        actions.push_back(variableIds_.empty() ? removal(to + ".idv") : renaming(from + ".idv", to + ".idv"));
    }
    // Last: as long as it stands under the target's name it says whose the target is.
    actions.push_back(renaming(from + ".var", to + ".var"));
    bool done = false;
    begun_ = false;
    if (source_.commitReplacement(actions, count, user_, &done) || done) return true;
    return refuse(source_.path + ".hob and .dob can't be replaced.\n\nThe collection is as it was.");
}

} // namespace collection
