#pragma once

// A station in memory with derived variables, for the tests of calculators: no file is made.

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "collection/rcollection.h"
#include "samplecollection.h"
#include "variables/derivation.h"

namespace testing_support {

// One station of a collection whose variables are the columns, all of the same length; an empty column is a
// variable without data.
class RDerivedStation {
public:
    explicit RDerivedStation(const std::vector<std::vector<float>>& columns, float latitude = 30)
    {
        setColumns(columns, 0);
        place(station, 0, latitude);
        collection.neededMask.fill(1);
    }

    // Adds a derived variable and returns its number; source 0 is none. compute() then computes it.
    int add(int id, std::initializer_list<int> sources, float param = 0, int intParam = 0)
    {
        const int number = ++collection.totalVariableCount;
        collection::VARINFO variable = collection::emptyVariable(number);
        variable.id = id;
        variable.param = param;
        variable.intParam = intParam;
        variable.nSources = static_cast<std::int32_t>(sources.size());
        std::copy(sources.begin(), sources.end(), variable.sources);
        collection.variables.at(static_cast<std::size_t>(number)) = variable;
        return number;
    }

    // Computes all derived variables, as a load does.
    void compute() { variables::RDerivation(with).computeDerived(station); }

    // The flags of a stored variable, from the first level on.
    void setFlags(int number, const std::vector<int>& flags)
    {
        for (std::size_t k = 0; k < flags.size(); ++k)
            station.flags[cellOf(number) + k] = static_cast<std::uint8_t>(flags[k]);
    }

    // What a variable has in the station.
    [[nodiscard]] bool isAbsent(int number) const { return offsetOf(number) < 0; }
    [[nodiscard]] int count(int number) const
    {
        return station.levelCount.at(static_cast<std::size_t>(number));
    }
    [[nodiscard]] float value(int number, int level = 0) const
    {
        return collection::valueAt(station, number, level, missing);
    }
    [[nodiscard]] std::vector<float> values(int number) const
    {
        std::vector<float> result;
        for (int k = 0; k < station.levels(); ++k) result.push_back(value(number, k));
        return result;
    }
    [[nodiscard]] std::vector<int> flags(int number) const
    {
        std::vector<int> result;
        for (int k = 0; k < station.levels(); ++k) result.push_back(collection::flagAt(station, number, k));
        return result;
    }

    collection::RCollection collection;
    collection::STATIONDATA station;
    variables::SURROUNDINGS with;

protected:
    // Takes other columns, whose flags are all the same; the header is emptied, and derived variables go.
    void setColumns(const std::vector<std::vector<float>>& columns, std::uint8_t flag)
    {
        fillStation(station, columns, flag);
        station.collection = &collection;
        collection.variableCount = collection.totalVariableCount = static_cast<int>(columns.size());
        for (int v = 1; v <= collection.variableCount; ++v) {
            collection.variables.at(static_cast<std::size_t>(v)) = collection::emptyVariable(v);
            countValues(v);
        }
    }

private:
    [[nodiscard]] std::int32_t offsetOf(int number) const
    {
        return station.offset.at(static_cast<std::size_t>(number));
    }
    [[nodiscard]] std::size_t cellOf(int number) const { return static_cast<std::size_t>(offsetOf(number)); }

    // As a load finds it: the count of levels for the first variable, else that of the values.
    void countValues(int number)
    {
        if (number == 1 || isAbsent(number)) return;
        const float* block = station.values.get() + offsetOf(number);
        station.levelCount.at(static_cast<std::size_t>(number)) = static_cast<std::int16_t>(
            station.levels() - std::count(block, block + station.levels(), missing));
    }
};

} // namespace testing_support
