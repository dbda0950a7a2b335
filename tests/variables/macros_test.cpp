// The macro files of the installation: each against its published formula, written out here anew.

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>

#include <gtest/gtest.h>

#include "variables/formula.h"
#include "variables/macrofile.h"

namespace variables {
namespace {

const std::string folder = NVQ_SOURCE_DIR "/data/macros/";

using Values = std::vector<double>; // those of #1, #2 and so on

MACRO macroOf(const std::string& name)
{
    MACRO macro;
    MACROFAULT fault;
    EXPECT_TRUE(readMacroFile(folder + name + ".mac", macro, fault)) << fault.line << ": " << fault.text;
    return macro;
}

double valueOf(const MACRO& macro, const Values& at)
{
    std::vector<float> cells(at.begin(), at.end());
    std::vector<std::span<const float>> inputs;
    for (const float& cell : cells) inputs.emplace_back(&cell, 1);
    float value = 0;
    EXPECT_EQ(RFormula(joinedFormula(macro.expression), macro.nInputs)
                  .evaluate(inputs, STATIONTERMS(), std::span(&value, 1)),
              1);
    return static_cast<double>(value);
}

// --- published formulas

// Garcia and Gordon (1992), coefficients for the data of Benson and Krause; umol/kg.
double oxygenSaturation(double theta, double salinity)
{
    const double ts = std::log((298.15 - theta) / (273.15 + theta));
    return std::exp(
        5.80871 + 3.20291 * ts + 4.17887 * std::pow(ts, 2) + 5.10006 * std::pow(ts, 3) -
        9.86643e-2 * std::pow(ts, 4) + 3.80369 * std::pow(ts, 5) +
        salinity * (-7.01577e-3 - 7.70028e-3 * ts - 1.13864e-2 * ts * ts - 9.51519e-3 * std::pow(ts, 3)) -
        2.75915e-7 * salinity * salinity);
}

// Flament (2002), table of b(i, j) for theta^i (S - 35)^j; kg/m3.
double spiciness(double theta, double salinity)
{
    static const double b[6][5] = {{0, 7.7442e-1, -5.85e-3, -9.84e-4, -2.06e-4},
                                   {5.1655e-2, 2.034e-3, -2.742e-4, -8.5e-6, 1.36e-5},
                                   {6.64783e-3, -2.4681e-4, -1.428e-5, 3.337e-5, 7.894e-6},
                                   {-5.4023e-5, 7.326e-6, 7.0036e-6, -3.0412e-6, -1.0853e-6},
                                   {3.949e-7, -3.029e-8, -3.8209e-7, 1.0012e-7, 4.7133e-8},
                                   {-6.36e-10, -1.309e-9, 6.048e-9, -1.1409e-9, -6.676e-10}};
    double sum = 0;
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j < 5; ++j) sum += b[i][j] * std::pow(theta, i) * std::pow(salinity - 35, j);
    }
    return sum;
}

// McDougall (1987), alpha / beta of potential temperature; psu/C at p in db.
double alphaOverBeta(double theta, double salinity, double p)
{
    const double s = salinity - 35, t2 = theta * theta;
    return 0.665157e-1 + 0.170907e-1 * theta - 0.203814e-3 * t2 + 0.298357e-5 * t2 * theta -
           0.255019e-7 * t2 * t2 +
           s * (0.378110e-2 - 0.846960e-4 * theta - 0.164759e-6 * p - 0.251520e-11 * p * p) -
           0.678662e-5 * s * s + p * (0.380374e-4 - 0.933746e-6 * theta + 0.791325e-8 * t2) +
           0.512857e-12 * p * p * t2 - 0.302285e-13 * p * p * p;
}

TEST(InstalledMacros, TheReferencesGiveThePublishedValues)
{
    EXPECT_NEAR(oxygenSaturation(10, 35), 274.610, 0.001);
    EXPECT_NEAR(spiciness(15, 33), 0.54458641375, 1e-11);
    EXPECT_NEAR(alphaOverBeta(10, 40, 4000), 0.34763, 0.00001);
}

struct REFERENCE {
    const char* name;
    std::function<double(const Values&)> formula;
    std::vector<Values> points;
    double tolerance; // in units of the result
};

const std::vector<REFERENCE>& references()
{
    const std::vector<Values> nutrients = {{30.5, 2.1}, {0.02, 0.4}, {44, 3.2}};
    const std::vector<Values> withOxygen = {{30.5, 150}, {0.02, 210.5}, {2.1, 5}};
    static const std::vector<REFERENCE> all = {
        {"aou",
         [](const Values& v) { return oxygenSaturation(v[1], v[2]) - v[0]; },
         {{200, 10, 35}, {320, -1.8, 34.5}, {5, 28, 36.5}, {250, 25, 5}},
         1e-3},
        {"oxygen_ml_l",
         [](const Values& v) { return v[0] * (1 + v[1] / 1000) / 44.6596; },
         {{200, 27.5}, {320, 22.1}, {0, 28}},
         1e-5},
        {"nstar_1997", [](const Values& v) { return (v[0] - 16 * v[1] + 2.9) * 0.87; }, nutrients, 1e-5},
        {"nstar_2001", [](const Values& v) { return v[0] - 16 * v[1] + 2.9; }, nutrients, 1e-5},
        {"pstar", [](const Values& v) { return v[0] - v[1] / 16; }, nutrients, 1e-5},
        {"excess_nitrogen", [](const Values& v) { return v[0] - 16 * v[1]; }, nutrients, 1e-5},
        {"no", [](const Values& v) { return 9 * v[0] + v[1]; }, withOxygen, 1e-4},
        {"po", [](const Values& v) { return 135 * v[0] + v[1]; }, withOxygen, 1e-3},
        {"po4star", [](const Values& v) { return v[0] + v[1] / 175 - 1.95; }, withOxygen, 1e-5},
        {"sistar", [](const Values& v) { return v[0] - v[1]; }, nutrients, 1e-5},
        {"preformed_phosphate", [](const Values& v) { return v[0] - v[1] / 138; }, withOxygen, 1e-5},
        {"preformed_nitrate", [](const Values& v) { return v[0] - v[1] * 16 / 138; }, withOxygen, 1e-5},
        {"talk_normalised",
         [](const Values& v) { return v[0] * 35 / v[1]; },
         {{2300, 34.9}, {2400.5, 37}},
         1e-3},
        {"tco2_normalised",
         [](const Values& v) { return v[0] * 35 / v[1]; },
         {{2100, 34.9}, {1950.5, 37}},
         1e-3},
        {"potential_alkalinity",
         [](const Values& v) { return (v[0] + v[1]) * 35 / v[2]; },
         {{2300, 30, 34.9}, {2400.5, 0, 37}},
         1e-3},
        {"spiciness",
         [](const Values& v) { return spiciness(v[0], v[1]); },
         {{15, 33}, {-1.5, 34.2}, {2, 34.7}, {28, 36.5}, {10, 39}},
         1e-5},
        {"density_ratio",
         [](const Values& v) { return alphaOverBeta(v[0], v[1], v[2]) * v[3] / v[4]; },
         {{10, 40, 4000, 1, 1}, {2, 34.7, 5000, -3, 0.2}, {20, 36, 100, -12.5, -2.1}},
         1e-4}};
    return all;
}

TEST(InstalledMacros, AgreeWithTheirPublishedFormulas)
{
    for (const REFERENCE& reference : references()) {
        const MACRO macro = macroOf(reference.name);
        for (const Values& at : reference.points) {
            ASSERT_EQ(at.size(), static_cast<std::size_t>(macro.nInputs)) << reference.name;
            EXPECT_NEAR(valueOf(macro, at), reference.formula(at), reference.tolerance) << reference.name;
        }
    }
}

TEST(InstalledMacros, AllAreCompared)
{
    std::set<std::string> files, compared;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".mac") files.insert(entry.path().stem());
    }
    for (const REFERENCE& reference : references()) compared.insert(reference.name);
    EXPECT_EQ(files, compared);
    EXPECT_GE(files.size(), 10u);
}

TEST(InstalledMacros, AreRightNameTheirSourceAndAreAsTheEditorWritesThem)
{
    for (const REFERENCE& reference : references()) {
        const MACRO macro = macroOf(reference.name);
        EXPECT_EQ(formulaFault(joinedFormula(macro.expression), macro.nInputs), "") << reference.name;
        EXPECT_NE(macro.comment.find("Source"), std::string::npos) << reference.name;
        std::ifstream file(folder + reference.name + ".mac");
        const std::string content((std::istreambuf_iterator<char>(file)), {});
        EXPECT_EQ(formatMacro(macro), content) << reference.name;
        EXPECT_EQ(content.find_first_of("\r\t"), std::string::npos) << reference.name;
    }
}

} // namespace
} // namespace variables
