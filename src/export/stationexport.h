#pragma once

// What all exports of stations share: the way through the selected stations, progress, ESC, and what is told
// at the end. Where the stations go is a sink.

#include <string>
#include <string_view>
#include <vector>

#include "collection/rcollection.h"
#include "common/user.h"

namespace exporting {

// Takes the stations of an export, one after the other.
class RStationSink {
public:
    virtual ~RStationSink() = default;
    // False for a station that the form can't hold: it is left out and not counted, and the sink tells why.
    [[nodiscard]] virtual bool canTake(const collection::STATIONDATA&) { return true; }
    // A loaded station with at least one level and one of the variables. False if no more can be taken.
    [[nodiscard]] virtual bool write(const collection::STATIONDATA& station) = 0;
    // All stations were written: what was made takes its place. False if it can't. Without a call nothing
    // stays of the export.
    [[nodiscard]] virtual bool commit() = 0;
    // What to tell when one of these returned false; empty: that the file can't be written.
    [[nodiscard]] virtual std::string fault() const { return {}; }
};

struct EXPORTTEXTS {
    std::string_view caption;       // "Exporting Station-Data ..."
    std::string_view busy;          // the same or another text, in front of "     ESC aborts"
    std::string_view abortQuestion; // "Really Want to Abort and Delete Export File?"
    std::string_view report;        // "%d Stations Exported to File\n\n%s", count and path
};

struct EXPORTJOB {
    collection::RCollection& collection;
    collection::STATIONDATA& station;  // the buffer; the station that it holds is loaded again afterwards
    const std::vector<int>& variables; // the chosen ones, of all variables of the collection
    const std::string& path;           // for messages
    const EXPORTTEXTS& texts;
    common::RUser& user;
};

enum class ExportEnd : int { complete, aborted, unwritable };

// Runs through the stations of the selected list, in its order, with quality limit, derived variables and
// sample range applied; those left without a level or without a chosen variable are passed over. Stations
// that can't be read are left out and told in one note. Reports, or tells why there is no export.
[[nodiscard]] ExportEnd exportStations(const EXPORTJOB& job, RStationSink& sink);

// True unless a sample range is in force and the user, who is asked, declines. Where nobody can be asked it
// is true.
[[nodiscard]] bool acceptsSampleSelection(const collection::RCollection& collection, common::RUser& user);

// `wanted` without numbers that are no variables, and each of them once; if it is empty, all variables of the
// collection itself.
[[nodiscard]] std::vector<int> chosenVariables(const collection::RCollection& collection,
                                               const std::vector<int>& wanted);

// True if the station has a value block of one of the variables.
[[nodiscard]] bool holdsAny(const collection::STATIONDATA& station, const std::vector<int>& variables);

// Degrees 0 to 360 of any longitude above -360.
[[nodiscard]] float eastLongitude(float longitude);

} // namespace exporting
