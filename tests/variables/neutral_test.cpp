// Neutral density against the atlas of its authors. The atlas isn't part of the sources: where it is missing,
// these tests are skipped, and neutralsynthetic_test tries the same code with an atlas of its own.

#include <cstdlib>

#include <gtest/gtest.h>

#include "variables/gammaatlas.h"
#include "variables/seawater/neutral.h"

namespace {

using namespace seawater;

constexpr double missing = -1e10;

std::string atlasFolder()
{
    const char* const named = std::getenv("NVQ_SHARED_DATA");
    return std::string(named ? named : NVQ_SOURCE_DIR "/../shared/data") + "/gamma_n/";
}

class NeutralDensity : public testing::Test {
protected:
    void SetUp() override
    {
        std::string fault;
        static const auto loaded = variables::loadGammaAtlas(atlasFolder(), fault);
        if (!loaded) GTEST_SKIP() << "no atlas: " << fault;
        atlas = loaded.get();
    }
    // Status, label, and errors of one sample.
    struct LABEL {
        int status = 0;
        double gamma = missing, low = missing, high = missing;
    };
    [[nodiscard]] LABEL labelOf(double longitude, double latitude, float p, float s, float t) const
    {
        LABEL label;
        label.status = neutralDensity(*atlas, {&s, 1}, {&t, 1}, {&p, 1}, longitude, latitude,
                                      {&label.gamma, 1}, {&label.low, 1}, {&label.high, 1}, missing);
        return label;
    }
    const GAMMAATLAS* atlas = nullptr;
};

struct CHECKROW {
    const char* what;
    double longitude, latitude;
    float pressure, salinity, temperature;
    double gamma, low, high;
};

// Labels and errors that the authors' routines give for casts of several oceans.
constexpr CHECKROW checkRows[] = {
    {"example 1", 187.3170, -41.6667, 1, 35.0660f, 12.2500f, 26.657205, 0.001347, 0.001347},
    {"example 194", 187.3170, -41.6667, 194, 35.0250f, 11.6900f, 26.741491, 0.000609, 0.000609},
    {"example 872", 187.3170, -41.6667, 872, 34.4520f, 6.0400f, 27.260381, 0.000500, 0.000500},
    {"example 1647", 187.3170, -41.6667, 1647, 34.5790f, 2.7800f, 27.798448, 0.000500, 0.000500},
    {"example 3000", 187.3170, -41.6667, 3000, 34.7290f, 1.3800f, 28.117360, 0.000504, 0.000504},
    {"P10 26", 146.7153, 2.0000, 299, 34.7396f, 10.2831f, 26.782813, 0.000500, 0.000500},
    {"A23 43", -30.8327, -57.8015, 3609, 34.6597f, -0.0493f, 28.318460, 0.007647, 0.000828},
    {"Atlantic 12", -32.5300, -1.9733, 706.30f, 34.4580f, 5.0500f, 27.393303, 0.000500, 0.000500},
    {"137 E 6", 136.9000, 29.9667, 1204.90f, 34.4620f, 2.9900f, 27.668469, 0.000500, 0.000500},
    {"Timor Sea", 126.0000, -9.5000, 842.60f, 34.5380f, 5.0000f, 27.461530, 0.093167, 0.000500},
    {"densest", 300.0000, 30.0000, 5025.40f, 34.6480f, -0.4700f, 28.352256, 0.001879, 0.005792},
};

TEST_F(NeutralDensity, AgreesWithTheCheckValues)
{
    for (const CHECKROW& row : checkRows) {
        const LABEL label = labelOf(row.longitude, row.latitude, row.pressure, row.salinity, row.temperature);
        EXPECT_EQ(label.status, 0) << row.what;
        EXPECT_NEAR(label.gamma, row.gamma, 1e-5) << row.what;
        EXPECT_NEAR(label.low, row.low, 2e-6) << row.what;
        EXPECT_NEAR(label.high, row.high, 2e-6) << row.what;
    }
}

TEST_F(NeutralDensity, OnLandIsAFailure)
{
    const LABEL label = labelOf(40, 30, 3609, 34.6597f, -0.0493f);
    EXPECT_EQ(label.status, 1);
    EXPECT_EQ(label.gamma, missing);
}

// The published example: 187.317 E, 41.6667 S.
struct EXAMPLE {
    std::vector<float> pressure{1,   48,   97,   145,  194,  291,  388,  485,  581,  678,  775,  872,
                                969, 1066, 1260, 1454, 1647, 1841, 2020, 2216, 2413, 2611, 2878, 3000};
    std::vector<float> salinity{35.066f, 35.086f, 35.089f, 35.078f, 35.025f, 34.851f, 34.696f, 34.572f,
                                34.531f, 34.509f, 34.496f, 34.452f, 34.458f, 34.456f, 34.488f, 34.536f,
                                34.579f, 34.612f, 34.642f, 34.657f, 34.685f, 34.707f, 34.720f, 34.729f};
    std::vector<float> temperature{12.25f, 12.21f, 12.09f, 11.99f, 11.69f, 10.54f, 9.35f,  8.36f,
                                   7.86f,  7.43f,  6.87f,  6.04f,  5.50f,  4.90f,  4.04f,  3.29f,
                                   2.78f,  2.45f,  2.211f, 2.011f, 1.894f, 1.788f, 1.554f, 1.380f};
    std::vector<double> gamma, low, high;
    int status = -1;
    void label(const GAMMAATLAS& atlas, double longitude = 187.317, double latitude = -41.6667)
    {
        gamma.assign(pressure.size(), 0);
        low = high = gamma;
        status = neutralDensity(atlas, salinity, temperature, pressure, longitude, latitude, gamma, low, high,
                                missing);
    }
};
constexpr double published[] = {26.6572, 26.6828, 26.7110, 26.7232, 26.7415, 26.8255, 26.9187, 26.9898,
                                27.0391, 27.0892, 27.1666, 27.2604, 27.3436, 27.4216, 27.5573, 27.6982,
                                27.7984, 27.8663, 27.9202, 27.9593, 27.9979, 28.0317, 28.0799, 28.1174};

TEST_F(NeutralDensity, AgreesWithThePublishedExampleToAllItsDigits)
{
    constexpr double halfADigit = 0.00005, ofTheInput = 2e-6; // samples are of single precision
    EXAMPLE example;
    example.label(*atlas);
    EXPECT_EQ(example.status, 0);
    for (std::size_t n = 0; n < std::size(published); ++n)
        EXPECT_NEAR(example.gamma[n], published[n], halfADigit + ofTheInput) << example.pressure[n];
}

TEST_F(NeutralDensity, IsTheSameWestOfGreenwich)
{
    const LABEL west = labelOf(-30.8327, -57.8015, 3609, 34.6597f, -0.0493f);
    const LABEL east = labelOf(329.1673, -57.8015, 3609, 34.6597f, -0.0493f);
    EXPECT_NEAR(west.gamma, east.gamma, 1e-9);
}

// The water of the example at every fourth degree: where there is a label it grows with depth, as density
// does.
TEST_F(NeutralDensity, LabelsOfAStableCastGrowWithDepthAllOverTheWorld)
{
    EXAMPLE example;
    int stations = 0, leaps = 0;
    for (double longitude = 2; longitude < 360; longitude += 12) {
        for (double latitude = -76; latitude <= 64; latitude += 7) {
            example.label(*atlas, longitude, latitude);
            if (example.status != 0) continue;
            ++stations;
            double last = 0;
            bool leapt = false;
            for (const double gamma : example.gamma) {
                if (gamma == missing) continue;
                leapt = leapt || gamma <= last;
                last = gamma;
            }
            leaps += leapt;
        }
    }
    EXPECT_GT(stations, 200);
    EXPECT_LE(leaps, stations / 100);
}

} // namespace
