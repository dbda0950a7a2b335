#pragma once

// Reads the stations of a spreadsheet whose layout is known.

#include <memory>
#include <span>
#include <string>

#include "common/user.h"
#include "import/conversions.h"
#include "import/spreadsheet.h"
#include "import/stationreader.h"

namespace importing {

class RSpreadsheetReader : public RStationReader {
public:
    // `targets` are the collection's variables, index 0 of it is no variable; their links into the header's
    // sources decide what is read. Notices go to `user`.
    RSpreadsheetReader(const SPREADSHEETHEADER& header, std::span<const collection::VARINFO> targets,
                       KEYVARIABLES keys, common::RUser& user);
    ~RSpreadsheetReader() override;

    // False if the file can't be read.
    [[nodiscard]] bool open(const std::string& path);
    [[nodiscard]] std::int64_t size() const; // bytes of the file

    // A station with more levels than a station can hold is told and passed over; of one with too many cells
    // the first variables that fit are delivered, which is told too.
    [[nodiscard]] std::int64_t readStation(collection::STATIONDATA& station) override;
    [[nodiscard]] int lineNumber() const override;
    [[nodiscard]] std::string_view currentLine() const override;
    [[nodiscard]] const READACCOUNT& account() const override;
    // True if what was left of the file when the reading ended is not blank: a station's header was refused,
    // or a line was too short. That was told.
    [[nodiscard]] bool endedEarly() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace importing
