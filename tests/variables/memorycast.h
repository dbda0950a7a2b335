#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <vector>

#include "derivedfixture.h"

namespace testing_support {

// A station whose header and columns are set one after the other.
class RMemoryCast : public RDerivedStation {
public:
    RMemoryCast() : RDerivedStation(std::vector<std::vector<float>>(1)) { station.header = {}; }

    // The stored variables, the first of which is the depth; the header stays.
    void store(const std::vector<std::vector<float>>& columns, std::uint8_t flag = 0)
    {
        const collection::STATIONHDR header = station.header;
        setColumns(columns, flag);
        const std::int32_t used = station.header.valueCount;
        station.header = header;
        station.header.valueCount = used;
    }

    // The values of a variable; nothing if it is absent.
    [[nodiscard]] std::optional<std::vector<float>> present(int number) const
    {
        if (isAbsent(number)) return std::nullopt;
        return values(number);
    }
    [[nodiscard]] int flag(int number, int level) const { return collection::flagAt(station, number, level); }

    // Adds and computes one variable of the stored ones.
    std::optional<std::vector<float>> derived(int id, std::initializer_list<int> sources, float param = 0,
                                              int intParam = 0)
    {
        const int number = add(id, sources, param, intParam);
        compute();
        return present(number);
    }
};

} // namespace testing_support
