#include "common/text.h"
#include "operations.h"
#include "samplecollection.h"

namespace reliability {
namespace {

bool editHeader(ROpenCollection& open, int number, float depth)
{
    collection::STATIONHDR header;
    if (!open.collection.readStationHeader(number, header, nullptr)) return false;
    header.bottomDepth = depth;
    common::copyText(header.station, "N" + std::to_string(number));
    return open.collection.writeStationHeader(number, header, nullptr);
}

bool store(ROpenCollection& open, int number, int levels, float seed)
{
    testing_support::fillStation(open.station, testing_support::profile(levels, 4, seed));
    testing_support::label(open.station, "A", "77");
    testing_support::place(open.station, 30, -20);
    if (number >= 1 && number <= open.collection.stationCount)
        return open.collection.writeStation(number, open.station, false) == collection::WriteResult::ok;
    // The description has to tell of a new one.
    if (!open.collection.beginChange("STORE")) return false;
    if (open.collection.writeStation(0, open.station, false) == collection::WriteResult::ok)
        return open.collection.commitChange();
    open.collection.rollBackChange();
    return false;
}

// Two headers and a station in one change.
bool editTogether(ROpenCollection& open)
{
    if (!open.collection.beginChange("EDIT")) return false;
    if (!editHeader(open, 1, 111) || !editHeader(open, 9, 999) || !store(open, 3, 2, 70)) {
        open.collection.rollBackChange();
        return false;
    }
    return open.collection.commitChange();
}

OPERATION plain(const std::string& name, std::function<bool(ROpenCollection&)> run)
{
    OPERATION operation;
    operation.name = name;
    operation.run = std::move(run);
    operation.speaks = false;
    return operation;
}

// What a user may do in one sitting.
OPERATION series()
{
    OPERATION operation =
        plain("SeriesOfChanges", [](ROpenCollection& open) { return store(open, 4, 26, 82); });
    operation.first = {
        [](ROpenCollection& open) { return editHeader(open, 2, 77); },
        [](ROpenCollection& open) { return open.collection.deleteStation(3, open.user) == 1; },
        [](ROpenCollection& open) { return store(open, 1, 40, 81); },
        [](ROpenCollection& open) { return open.collection.sortAndCondense(open.station, open.user); },
        [](ROpenCollection& open) { return editHeader(open, 5, 99); },
    };
    return operation;
}

} // namespace

std::vector<OPERATION> stationOperations()
{
    return {
        plain("HeaderEdit", [](ROpenCollection& open) { return editHeader(open, 4, 1234); }),
        plain("OverwriteOfAStation", [](ROpenCollection& open) { return store(open, 1, 8, 71); }),
        plain("GrowthOfTheLastStation",
              [](ROpenCollection& open) { return store(open, open.collection.stationCount, 30, 72); }),
        plain("GrowthOfAStation", [](ROpenCollection& open) { return store(open, 2, 31, 73); }),
        plain("EditsInOneChange", editTogether),
        series(),
    };
}

} // namespace reliability
