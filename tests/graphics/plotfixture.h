#pragma once

// A small section of made-up casts, open and selected, with all that a picture needs.

#include <cmath>
#include <string>
#include <vector>

#include "common/files.h"
#include "common/installation.h"
#include "graphics/plots.h"
#include "samplecollection.h"
#include "selection/selectedlist.h"

namespace testing_support {

class RPlotFixture {
public:
    static constexpr int variables = 4; // depth, temperature, salinity, oxygen

    explicit RPlotFixture(int stations = 10, int levels = 26, const std::string& type = "B")
    {
        graphics::drawState() = {}; // whatever other tests left
        for (int i = 0; i < stations; ++i) addCast(i, stations, levels, type);
        installation.include = std::string(NVQ_SOURCE_DIR) + "/data/include/";
        installation.coast = sample.directory.file("coast/"); // not there: a map without layers
        installation.palettes = sample.directory.file("palettes/");
        installation.user = "jdoe";
        installation.temp = sample.directory.path();
        EXPECT_TRUE(collection().openTemporaryFiles());
        graphics::setDefaultSetup(setup, collection(), installation);
    }

    void addCast(int i, int stations, int levels, const std::string& type)
    {
        const double share = stations > 1 ? static_cast<double>(i) / (stations - 1) : 0.5;
        const double latitude = -60 + 120 * share, warmth = std::cos(latitude * 3.14159265 / 180);
        std::vector<std::vector<float>> columns(variables);
        for (int k = 0; k < levels; ++k) {
            const double depth = 5000.0 * k / std::max(levels - 1, 1), fade = std::exp(-depth / 700);
            columns[0].push_back(static_cast<float>(depth));
            columns[1].push_back(static_cast<float>(1.5 + 24 * warmth * warmth * fade));
            columns[2].push_back(
                static_cast<float>(34.7 + 1.8 * warmth * fade - 0.5 * std::sin(depth / 900) * fade));
            columns[3].push_back(
                static_cast<float>(250 - 120 * std::exp(-std::pow((depth - 800) / 600, 2)) * warmth));
        }
        fillStation(sample.station, columns);
        label(sample.station, "A16", std::to_string(i + 1), type);
        place(sample.station, 335, static_cast<float>(latitude));
        EXPECT_EQ(collection().writeStation(0, sample.station, false), collection::WriteResult::ok);
    }

    void plotAll()
    {
        graphics::PLOTCONTEXT c = context();
        graphics::refreshSelection(c);
        selection::clearPlotted(collection());
        for (const auto& record : selection::readSelectedList(collection())) {
            EXPECT_TRUE(selection::appendPlotted(collection(), record));
        }
    }

    [[nodiscard]] std::string content(const std::string& name) const
    {
        return common::readFile(sample.directory.file(name)).value_or("");
    }

    [[nodiscard]] collection::RCollection& collection() { return sample.collection; }
    [[nodiscard]] RScriptedUser& user() { return sample.user; }
    [[nodiscard]] graphics::PLOTCONTEXT context()
    {
        return {collection(), sample.station, setup, user(), installation, {}, "Nvq Test", "1.0", ""};
    }

    RSampleCollection sample{variables};
    common::INSTALLATION installation;
    graphics::GRAPHICSSETUP setup;
};

} // namespace testing_support
