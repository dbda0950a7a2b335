#pragma once

#include "selection/criteria.h"
#include "variables/derivation.h"

namespace app {

// The stages of a load, as the program joins them to a collection.
class RProgramStages : public selection::RSelectionStages {
public:
    explicit RProgramStages(const variables::SURROUNDINGS& surroundings) : derivation_(surroundings) {}
    void computeDerived(collection::STATIONDATA& station) override { derivation_.computeDerived(station); }
    // Variables that were computed for a station, since the beginning.
    [[nodiscard]] std::int64_t calculations() const { return derivation_.calculations(); }

private:
    variables::RDerivation derivation_;
};

} // namespace app
