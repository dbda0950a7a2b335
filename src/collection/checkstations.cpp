#include "collection/checkstations.h"

#include <algorithm>
#include <array>
#include <optional>

#include "collection/blockfile.h"
#include "collection/blockorder.h"
#include "collection/cruisetable.h"
#include "collection/stationrecord.h"
#include "common/byteorder.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr std::string_view abortQuestion = "Really Want to Abort?", title = "Check Collection";

// What can be wrong with a station, in the order in which it is told.
enum Fault : std::size_t {
    openLabel,
    badPosition,
    badLevels,
    badCounts,
    badCells,
    badBlock,
    offGlobe,
    badTime,
    noType,
    badDepth,
    sharedBlock,
    unreadable,
    notFinite,
    otherCounts,
    largeFlags,
    faultCount
};

struct FAULTTEXT {
    FINDING::Kind kind;
    std::string_view suffix, text;
};
constexpr std::array<FAULTTEXT, faultCount> faultTexts = {{
    {FINDING::inconsistency, ".hob", "a label or the type has no end in its field"},
    {FINDING::inconsistency, ".hob", "a position or depth is no number"},
    {FINDING::inconsistency, ".hob", "no levels"},
    {FINDING::inconsistency, ".hob",
     "a variable has more values than the station has levels, or fewer than none"},
    {FINDING::inconsistency, ".hob", "the number of cells isn't that of levels and variables, or too large"},
    {FINDING::inconsistency, ".hob", "the data block doesn't lie inside the .dob file"},
    {FINDING::inconsistency, ".hob", "the position isn't on the globe"},
    {FINDING::inconsistency, ".hob", "date or time can't be"},
    {FINDING::inconsistency, ".hob", "the type isn't a letter"},
    {FINDING::inconsistency, ".hob", "the deepest sample isn't the last value of the primary variable"},
    {FINDING::inconsistency, ".dob", "the data block shares bytes with that of another station"},
    {FINDING::inconsistency, ".dob", "the data block can't be read"},
    {FINDING::inconsistency, ".dob", "values that are no finite numbers"},
    {FINDING::inconsistency, ".dob", "a count of values in the header isn't that of the data block"},
    {FINDING::remark, ".dob", "quality flags above 8, which no limit tells apart"},
}};

Fault faultOf(RecordFault fault)
{
    switch (fault) {
    case RecordFault::levels:
        return badLevels;
    case RecordFault::counts:
        return badCounts;
    case RecordFault::cells:
        return badCells;
    case RecordFault::block:
        return badBlock;
    default:
        return badPosition;
    }
}

bool isOnGlobe(const STATIONHDR& header)
{
    return header.longitude >= 0 && header.longitude <= 360 && header.latitude >= -90 &&
           header.latitude <= 90;
}

// A part that is 0 or -1 isn't known.
bool isTime(const STATIONHDR& header)
{
    const auto within = [](int value, int largest) { return value >= -1 && value <= largest; };
    return within(header.month, 12) && within(header.day, 31) && within(header.hour, 24) &&
           within(header.minute, 60);
}

bool isTypeLetter(const STATIONHDR& header)
{
    const auto letter = static_cast<unsigned char>(header.type[0]);
    return letter > ' ' && letter != 127;
}

class RStationCheck {
public:
    RStationCheck(const STATIONCHECK& check, RFindings& findings, common::RUser& user)
        : check_(check), findings_(findings), user_(user), isHydrographic_(check.description.type == "HYD"),
          told_(check.description.stationCount)
    {
        form_.variableCount = check.description.variableCount;
        if (check.wantsEntries) table_.emplace(form_.variableCount);
    }

    STATIONSUMMARY run()
    {
        summary_.opened = open();
        if (!summary_.opened) return std::move(summary_);
        checkTableSize();
        scan();
        tellFaults();
        if (summary_.complete) checkLayout();
        takeEntries();
        return std::move(summary_);
    }

private:
    // --- the files as wholes

    bool open()
    {
        const bool hasHob = hob_.open(check_.basePath + ".hob", RBlockFile::Mode::read);
        const bool hasDob = dob_.open(check_.basePath + ".dob", RBlockFile::Mode::read);
        const bool holdsNothing = (hasHob || isMissing(".hob")) && hob_.size() < magicSize &&
                                  (hasDob || isMissing(".dob")) && dob_.size() == 0;
        if (told_ == 0 && holdsNothing) return false; // the next opening makes them
        if (!hasHob) findings_.add(FINDING::inconsistency, ".hob", "is missing or can't be read");
        if (!hasDob) findings_.add(FINDING::inconsistency, ".dob", "is missing or can't be read");
        form_.dataSize = dob_.size();
        return hasHob && readMagic() && hasDob;
    }

    [[nodiscard]] bool isMissing(const char* suffix) const
    {
        return common::fileSize(check_.basePath + suffix) < 0;
    }

    bool readMagic()
    {
        const std::byte* const bytes = hob_.view(0, magicSize);
        const std::string_view magic(reinterpret_cast<const char*>(bytes), bytes ? magicSize : 0);
        if (magic != littleEndianMagic && magic != bigEndianMagic) {
            findings_.add(FINDING::inconsistency, ".hob",
                          bytes ? "doesn't begin like a header table" : "ends before its first header");
            return false;
        }
        form_.foreignTimeOrder = magic == bigEndianMagic;
        form_.swapBytes = (magic == littleEndianMagic) != common::hostIsLittleEndian;
        summary_.swapBytes = form_.swapBytes;
        return true;
    }

    void checkTableSize()
    {
        const std::int64_t size = hob_.size() - magicSize, needed = std::int64_t{told_} * form_.recordSize();
        summary_.records = static_cast<int>(std::min<std::int64_t>(told_, size / form_.recordSize()));
        if (size < needed) {
            findings_.add(FINDING::inconsistency, ".hob",
                          common::format("ends behind the header of station %d, but the description tells of "
                                         "%d stations",
                                         summary_.records, told_));
        } else if (told_ == 0 && size >= form_.recordSize()) {
            findings_.add(
                FINDING::inconsistency, ".hob",
                common::format("holds %lld headers, but the description tells of no stations; such a "
                               "collection isn't opened",
                               static_cast<long long>(size / form_.recordSize())));
        } else if (size > needed) {
            findings_.add(FINDING::remark, ".hob",
                          common::format("%lld bytes behind the last header are not in use",
                                         static_cast<long long>(size - needed)));
        }
    }

    // --- the pass

    void scan()
    {
        const common::RBusyGuard busy(user_, "Checking collection ..." + std::string(common::escAborts));
        constexpr int recordsABlock = 4096;
        const int step = std::max(100, summary_.records / 20);
        const auto size = static_cast<std::size_t>(form_.recordSize());
        std::vector<std::byte> block;
        for (int first = 1; first <= summary_.records; first += recordsABlock) {
            const int count = std::min(recordsABlock, summary_.records - first + 1);
            block.resize(static_cast<std::size_t>(count) * size);
            const std::int64_t place = magicSize + std::int64_t{first - 1} * form_.recordSize();
            if (!hob_.read(place, block)) {
                findings_.add(FINDING::inconsistency, ".hob",
                              common::format("can't be read behind station %d", first - 1));
                return;
            }
            for (int i = 0; i < count; ++i) {
                checkRecord(first + i, block.data() + static_cast<std::size_t>(i) * size);
                if ((first + i) % step == 0 && isAborted(first + i)) return;
            }
            if (first > summary_.records - count) return; // the next one may not fit an int
        }
    }

    bool isAborted(int number)
    {
        user_.setProgress(100.0 * number / summary_.records);
        summary_.complete = !user_.askAbort(abortQuestion, title);
        return !summary_.complete;
    }

    void report(Fault fault, int number) { faults_[fault].add(number); }

    void checkRecord(int number, const std::byte* record)
    {
        if (!labelsEnd(record)) report(openLabel, number);
        if (check_.wantsEntryOf) summary_.entryOf.push_back(-1);
        const RecordFault fault = examineRecord(record, form_, header_, counts_);
        if (fault != RecordFault::none) {
            report(faultOf(fault), number);
            return;
        }
        if (!isOnGlobe(header_)) report(offGlobe, number);
        if (!isTime(header_)) report(badTime, number);
        if (!isTypeLetter(header_)) report(noType, number);
        order_.add(number, header_.dataOffset, std::int64_t{bytesACell} * header_.valueCount);
        if (table_) {
            const int entry = table_->add(number, header_, counts_);
            if (check_.wantsEntryOf) summary_.entryOf.back() = entry;
        }
        checkCells(number);
    }

    void checkCells(int number)
    {
        const auto cells = static_cast<std::size_t>(header_.valueCount);
        const std::byte* const block = dob_.view(header_.dataOffset, bytesACell * cells);
        if (!block) {
            report(unreadable, number);
            return;
        }
        if (!unpackCells(block, cells, form_.swapBytes, values_.get(), flags_.get()))
            report(notFinite, number);
        if (!countsAgree()) report(otherCounts, number);
        if (isHydrographic_ && !depthAgrees()) report(badDepth, number);
        unsigned largest = 0;
        for (std::size_t i = 0; i < cells; ++i) largest = std::max<unsigned>(largest, flags_[i]);
        if (largest > flagBad) report(largeFlags, number);
    }

    [[nodiscard]] bool countsAgree() const
    {
        const int levels = counts_[1];
        const float* block = values_.get();
        for (int v = 2; v <= form_.variableCount; ++v) {
            const int told = counts_[static_cast<std::size_t>(v)];
            if (told == 0) continue;
            block += levels;
            int there = 0;
            for (int k = 0; k < levels; ++k) there += block[k] != common::MISSING_VALUE;
            if (there != told) return false;
        }
        return true;
    }

    [[nodiscard]] bool depthAgrees() const
    {
        const float last = values_[static_cast<std::size_t>(counts_[1] - 1)];
        return header_.lastSampleDepth == (last == common::MISSING_VALUE ? 0.0f : last);
    }

    // --- what comes out

    void tellFaults()
    {
        for (std::size_t fault = 0; fault < faultCount; ++fault) {
            const FAULTTEXT& text = faultTexts[fault];
            if (fault == sharedBlock && summary_.complete) layout_ = order_.layout();
            findings_.addShared(text.kind, text.suffix, "station",
                                fault == sharedBlock ? layout_.overlapping : faults_[fault], text.text);
        }
    }

    void checkLayout()
    {
        summary_.dataBytes = layout_.dataBytes;
        summary_.deadBytes = layout_.dataBytes - layout_.usedBytes;
        const bool lastIsKnown = order_.lastNumber() == summary_.records; // its header has no fault
        if (lastIsKnown && layout_.lastNumber != summary_.records) {
            findings_.add(FINDING::inconsistency, ".dob",
                          common::format("the block of the last station, %d, isn't the last one: that of "
                                         "station %d reaches farther",
                                         summary_.records, layout_.lastNumber));
        }
        if (summary_.deadBytes > 0) {
            findings_.add(FINDING::remark, ".dob",
                          common::format("%lld of %lld bytes are dead space",
                                         static_cast<long long>(summary_.deadBytes),
                                         static_cast<long long>(summary_.dataBytes)));
        }
        if (dob_.size() > summary_.dataBytes) {
            findings_.add(FINDING::remark, ".dob",
                          common::format("%lld bytes behind the last block are not in use",
                                         static_cast<long long>(dob_.size() - summary_.dataBytes)));
        }
    }

    void takeEntries()
    {
        if (!table_ || !summary_.complete) return;
        std::vector<std::int32_t> places;
        summary_.entries = table_->takeSorted(&places);
        for (std::int32_t& entry : summary_.entryOf)
            entry = entry < 0 ? 0 : places[static_cast<std::size_t>(entry)];
    }

    const STATIONCHECK& check_;
    RFindings& findings_;
    common::RUser& user_;
    const bool isHydrographic_;
    const int told_; // stations, by the description
    RBlockFile hob_, dob_;
    RECORDFORM form_;
    STATIONHDR header_{};
    LEVELCOUNTS counts_{};
    std::unique_ptr<float[]> values_ = std::make_unique<float[]>(common::maxCells);
    std::unique_ptr<std::uint8_t[]> flags_ = std::make_unique<std::uint8_t[]>(common::maxCells);
    std::array<RDamageReport, faultCount> faults_;
    RBlockOrder order_;
    RBlockOrder::LAYOUT layout_;
    std::optional<RCruiseTable> table_;
    STATIONSUMMARY summary_;
};

} // namespace

STATIONSUMMARY checkStationFiles(const STATIONCHECK& check, RFindings& findings, common::RUser& user)
{
    return RStationCheck(check, findings, user).run();
}

} // namespace collection
