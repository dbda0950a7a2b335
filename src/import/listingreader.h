#pragma once

// Reads the stations of a listing whose variables are known.

#include <memory>
#include <span>
#include <string>

#include "common/user.h"
#include "import/conversions.h"
#include "import/listing.h"
#include "import/stationreader.h"

namespace importing {

class RListingReader : public RStationReader {
public:
    static constexpr int mostLevels = 20000; // of a station that is read

    // `targets` are the collection's variables, index 0 of it is no variable; their links into the header's
    // variables decide what is read. Questions and notices go to `user`.
    RListingReader(ListingForm form, const LISTINGHEADER& header,
                   std::span<const collection::VARINFO> targets, KEYVARIABLES keys, common::RUser& user);
    ~RListingReader() override;

    // False if the file can't be read.
    [[nodiscard]] bool open(const std::string& path);

    // Of a station with more levels or variables than can be taken the first ones are delivered, if the user
    // agrees. One without levels is passed over.
    [[nodiscard]] std::int64_t readStation(collection::STATIONDATA& station) override;
    [[nodiscard]] int lineNumber() const override;
    // Of a 4.x header that can't be read, the reason in front of it.
    [[nodiscard]] std::string_view currentLine() const override;
    [[nodiscard]] const READACCOUNT& account() const override;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace importing
