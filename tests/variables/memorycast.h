#pragma once

// A station in memory whose derived variables are computed, for the tests of calculators.

#include <cmath>
#include <initializer_list>
#include <optional>
#include <vector>

#include "samplecollection.h"
#include "variables/derivation.h"

namespace testing_support {

class RMemoryCast {
public:
    RMemoryCast() { station.collection = &collection; }

    // The stored variables, the first of which is the depth.
    void store(const std::vector<std::vector<float>>& columns, std::uint8_t flag = 0)
    {
        const collection::STATIONHDR header = station.header;
        fillStation(station, columns, flag);
        const std::int32_t used = station.header.valueCount;
        station.header = header;
        station.header.valueCount = used;
        station.collection = &collection;
        collection.variableCount = collection.totalVariableCount = static_cast<int>(columns.size());
        for (std::size_t v = 2; v <= columns.size(); ++v) {
            int count = 0;
            for (const float value : columns[v - 1]) count += value != missing ? 1 : 0;
            station.levelCount.at(v) = static_cast<std::int16_t>(count);
        }
    }

    // Adds a variable. Returns its number.
    int derive(int id, std::initializer_list<int> sources, float param = 0, int intParam = 0)
    {
        const int number = ++collection.totalVariableCount;
        collection::VARINFO& variable = collection.variables.at(static_cast<std::size_t>(number));
        variable = collection::emptyVariable(number);
        variable.id = id;
        variable.param = param;
        variable.intParam = intParam;
        for (const int source : sources) variable.sources[variable.nSources++] = source;
        return number;
    }

    void compute()
    {
        collection.neededMask.fill(1);
        variables::RDerivation(with).computeDerived(station);
    }

    // The values of a variable; nothing if it is absent.
    [[nodiscard]] std::optional<std::vector<float>> values(int number) const
    {
        const std::int32_t offset = station.offset.at(static_cast<std::size_t>(number));
        if (offset < 0) return std::nullopt;
        return std::vector<float>(station.values.get() + offset,
                                  station.values.get() + offset + station.levels());
    }
    [[nodiscard]] int count(int number) const
    {
        return station.levelCount.at(static_cast<std::size_t>(number));
    }
    [[nodiscard]] int flag(int number, int level) const { return collection::flagAt(station, number, level); }

    // Computes one variable of the stored ones.
    std::optional<std::vector<float>> derived(int id, std::initializer_list<int> sources, float param = 0,
                                              int intParam = 0)
    {
        const int number = derive(id, sources, param, intParam);
        compute();
        return values(number);
    }

    collection::RCollection collection;
    collection::STATIONDATA station;
    variables::SURROUNDINGS with;
};

} // namespace testing_support
