#pragma once

// The protocol by which a collection is rewritten: a second collection, the target, is made beside it,
// filled, flushed, and put into its places in one step. Until that step the source is not touched; whatever
// goes wrong before it leaves the source as it was and no file of the target.

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "collection/collectionlock.h"
#include "collection/rcollection.h"

namespace collection {

// The base name of every target. Its files are made in the source's directory.
inline constexpr std::string_view targetName = "TRG";

// What of an open collection doesn't come from its files, kept while they are opened anew.
class [[nodiscard]] RViewKeeper {
public:
    // The derived variables are kept too if the stored ones stay the same.
    RViewKeeper(RCollection& collection, bool withVariables);
    ~RViewKeeper();
    RViewKeeper(const RViewKeeper&) = delete;
    RViewKeeper& operator=(const RViewKeeper&) = delete;

private:
    RCollection& collection_;
    const bool withVariables_;
    const SELECTIONCRITERIA criteria_;
    const int qualityLimit_, currentStation_, currentSample_;
    const int variableCount_, totalVariableCount_;
    const std::array<VARINFO, common::variableSlots> variables_;
    const std::array<std::int32_t, 51> neededMask_;
};

// The caller's buffer after an operation that used it: what it held if the collection is as before, otherwise
// nothing.
class [[nodiscard]] RStationKeeper {
public:
    RStationKeeper(RCollection& collection, STATIONDATA& station);
    ~RStationKeeper();
    RStationKeeper(const RStationKeeper&) = delete;
    RStationKeeper& operator=(const RStationKeeper&) = delete;
    void noteChange() { changed_ = true; } // of the collection

private:
    RCollection& collection_;
    STATIONDATA& station_;
    const int number_;
    bool changed_ = false;
};

// Runs an operation that ESC can break off within a busy state of its own. Gives back its result; false,
// after a message, if memory ran out: the operation takes back what it did on every way out.
[[nodiscard]] bool busyWith(std::string_view title, common::RUser& user,
                            const std::function<bool()>& operation);

// Makes `bytes` the content of a file at its final name, on the disk. For files that a journal names already.
[[nodiscard]] bool writeNotedFile(const std::string& file, std::string_view bytes);

class RRewriting {
public:
    // title: of the messages, and the text of the busy state.
    RRewriting(RCollection& source, std::string_view title, common::RUser& user);
    ~RRewriting(); // undoes what was not put in place
    RRewriting(const RRewriting&) = delete;
    RRewriting& operator=(const RRewriting&) = delete;

    // Makes the empty target with these variables (index 0 is no variable). operation: for the journal. False
    // after a message.
    [[nodiscard]] bool begin(std::string_view operation, std::span<const VARINFO> variables);

    // Carries stations over: the i-th of `count` is the source's station numberOf(i), loaded into `station`
    // and changed by prepare, which says whether it can be stored. sort: levels in the order of variable 1.
    // False if not all came over, after a message unless the user broke it off.
    struct CARRIAGE {
        int count = 0;
        std::function<int(int)> numberOf;
        std::function<bool(STATIONDATA&)> prepare; // null: as it is
        bool sort = false;
    };
    [[nodiscard]] bool carryOver(const CARRIAGE& carriage, STATIONDATA& station);

    // The key variables of the new files, the text of an `.idv` file; by default the old ones stay.
    void setVariableIds(std::string text);

    // Puts the target in the place of the source. False after a message. True with a source that isn't open
    // if its new files can't be opened.
    [[nodiscard]] bool replaceSource();

    // The message of a result that lacks stations.
    void tellFewer() const;

private:
    [[nodiscard]] bool refuse(std::string_view text) const;
    [[nodiscard]] bool isPlaceFree() const;
    [[nodiscard]] bool makeTarget(std::span<const VARINFO> variables);
    [[nodiscard]] bool carryOne(int number, const CARRIAGE& carriage, STATIONDATA& station);
    [[nodiscard]] bool finishTarget();
    [[nodiscard]] std::string fileOf(std::string_view suffix) const;

    RCollection& source_;
    RCollection target_;
    RCollectionLock lock_;
    const std::string title_;
    common::RUser& user_;
    std::string variableIds_;
    bool newVariableIds_ = false;
    bool begun_ = false;
};

} // namespace collection
