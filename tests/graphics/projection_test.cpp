#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "graphics/projection.h"

using namespace graphics;

namespace {

constexpr BOX page{20, 1, 10, 2};

MAPGEOMETRY domain(int id, double lonMin, double lonMax, double latMin, double latMax, double lon0 = 180,
                   double lat0 = 0)
{
    return {.lonMin = lonMin,
            .lonMax = lonMax,
            .lon0 = lon0,
            .latMin = latMin,
            .latMax = latMax,
            .lat0 = lat0,
            .id = id};
}

MAPGEOMETRY setUp(MAPGEOMETRY m)
{
    SetupMapWindow(m, page);
    return m;
}

struct PLACE {
    double x, y;
};
PLACE project(double lon, double lat)
{
    ProjectPoint(lon, lat);
    return {lon, lat};
}
PLACE unproject(double u, double v)
{
    UnprojectPoint(u, v);
    return {u, v};
}

// Largest distance on the globe, in degrees, between a position and its way there and back.
double roundTrip(const std::vector<PLACE>& places)
{
    constexpr double degree = std::numbers::pi / 180;
    double worst = 0;
    for (const PLACE& a : places) {
        const PLACE w = project(a.x, a.y), b = unproject(w.x, w.y);
        const double c = std::sin(a.y * degree) * std::sin(b.y * degree) +
                         std::cos(a.y * degree) * std::cos(b.y * degree) * std::cos((a.x - b.x) * degree);
        worst = std::max(worst, std::acos(std::min(c, 1.0)) / degree);
    }
    return worst;
}

std::vector<PLACE> grid(double lon0, double lonHalf, double latMin, double latMax)
{
    std::vector<PLACE> places;
    for (double lon = lon0 - lonHalf; lon <= lon0 + lonHalf; lon += 7)
        for (double lat = latMin; lat <= latMax; lat += 4) places.push_back({lon, lat});
    return places;
}

} // namespace

// --- the domain rule

TEST(NormalizeDomain, RangeFrom350To370BecomesMinus10To10)
{
    double a = 350, b = 370, c = -20, d = 20;
    EXPECT_TRUE(NormalizeDomain(a, b, c, d));
    EXPECT_EQ(a, -10);
    EXPECT_EQ(b, 10);
}

TEST(NormalizeDomain, RangeFromMinus200ToMinus100Becomes160To260)
{
    double a = -200, b = -100, c = -20, d = 20;
    EXPECT_TRUE(NormalizeDomain(a, b, c, d));
    EXPECT_EQ(a, 160);
    EXPECT_EQ(b, 260);
}

TEST(NormalizeDomain, LegalDomainStays)
{
    double a = -30, b = 30, c = -90, d = 90;
    EXPECT_FALSE(NormalizeDomain(a, b, c, d));
    EXPECT_EQ(a, -30);
    EXPECT_EQ(b, 30);
}

TEST(NormalizeDomain, ReversedTooWideAndBeyondThePolesIsMended)
{
    double a = 400, b = 0, c = -95, d = 99;
    EXPECT_TRUE(NormalizeDomain(a, b, c, d));
    EXPECT_EQ(a, 0);
    EXPECT_EQ(b, 360);
    EXPECT_EQ(c, -90);
    EXPECT_EQ(d, 90);
}

// --- set-up

TEST(SetupMapWindow, DefaultMapHasTheAspectOfItsMeanLatitude)
{
    const MAPGEOMETRY m = setUp(domain(0, 0, 60, 30, 90));
    EXPECT_FLOAT_EQ(m.umin, 0);
    EXPECT_FLOAT_EQ(m.vmax, 90);
    EXPECT_NEAR(m.xlen / m.ylen, 0.5, 1e-4); // cos 60
    EXPECT_FLOAT_EQ(m.ylen, 10);
    EXPECT_NEAR(m.xorg + m.xlen / 2, 1 + 10, 1e-5);
    EXPECT_FLOAT_EQ(m.yorg, 2);
    EXPECT_EQ(m.lon0, 30);
}

TEST(SetupMapWindow, GlobeFillsTheWidthOfTheBox)
{
    MAPGEOMETRY m = domain(0, 0, 360, -90, 90);
    EXPECT_FALSE(SetupMapWindow(m, page));
    EXPECT_FLOAT_EQ(m.xlen, 20);
    EXPECT_FLOAT_EQ(m.ylen, 10);
}

TEST(SetupMapWindow, NorthPolarMapBelowTheEquatorStartsAtATenth)
{
    MAPGEOMETRY m = domain(projectionNorthPolar, 0, 360, -30, 90);
    EXPECT_TRUE(SetupMapWindow(m, page));
    EXPECT_DOUBLE_EQ(m.latMin, 0.1);
    EXPECT_DOUBLE_EQ(m.latMax, 90);
    EXPECT_NEAR(m.umin, -1, 2e-3);
    EXPECT_NEAR(m.vmax, 1, 2e-3);
    EXPECT_NEAR(m.xlen, m.ylen, 0.02);
}

TEST(SetupMapWindow, NorthPolarMapOfTheSouthBecomesTheHemisphere)
{
    const MAPGEOMETRY m = setUp(domain(projectionNorthPolar, 0, 60, -60, -30, 30));
    EXPECT_DOUBLE_EQ(m.latMin, 0.1);
    EXPECT_DOUBLE_EQ(m.latMax, 90);
    EXPECT_DOUBLE_EQ(m.lonMax - m.lonMin, 360);
}

TEST(SetupMapWindow, SouthPolarMapOfTheNorthBecomesTheHemisphere)
{
    const MAPGEOMETRY m = setUp(domain(projectionSouthPolar, 0, 60, 30, 60, 30));
    EXPECT_DOUBLE_EQ(m.latMin, -90);
    EXPECT_DOUBLE_EQ(m.latMax, -0.1);
    EXPECT_DOUBLE_EQ(m.lonMax - m.lonMin, 360);
}

TEST(SetupMapWindow, EquatorialMapKeepsWithinItsHemisphere)
{
    MAPGEOMETRY m = domain(projectionEquatorial, 80, 280, -90, 90, 180);
    EXPECT_TRUE(SetupMapWindow(m, page));
    EXPECT_DOUBLE_EQ(m.lonMin, 180 - 89.99);
    EXPECT_DOUBLE_EQ(m.lonMax, 180 + 89.99);
    EXPECT_NEAR(m.umax, 1, 1e-5);
}

TEST(SetupMapWindow, WholeCircleLiesAroundTheCentreOfAnEquatorialMap)
{
    const MAPGEOMETRY m = setUp(domain(projectionEquatorial, 0, 360, -90, 90, 20));
    EXPECT_NEAR(m.lon0, 20, 1e-9);
    EXPECT_NEAR(m.lonMin, 20 - 89.99, 1e-9);
}

TEST(SetupMapWindow, MollweideGlobeIsTwiceAsWideAsHigh)
{
    const MAPGEOMETRY m = setUp(domain(projectionMollweide, -180, 180, -90, 90, 0));
    EXPECT_DOUBLE_EQ(m.lonMin, -179.99);
    EXPECT_DOUBLE_EQ(m.lonMax, 179.99);
    EXPECT_NEAR(m.umax, 2.845, 0.005);
    EXPECT_NEAR(m.vmax, 1.417, 0.005);
    EXPECT_NEAR(m.xlen / m.ylen, 2, 0.02);
}

TEST(SetupMapWindow, ObliqueGlobeShowsTheWholeDisc)
{
    const MAPGEOMETRY m = setUp(domain(projectionOblique, 0, 360, -90, 90, -30, 40));
    EXPECT_EQ(m.id, projectionOblique);
    EXPECT_NEAR(m.lonMax - m.lonMin, 360, 1e-9);
    EXPECT_NEAR(std::remainder(m.lon0 + 30, 360), 0, 1e-9);
    EXPECT_NEAR(m.latMin, -50, 0.1);
    EXPECT_EQ(m.latMax, 90);
    EXPECT_NEAR(m.umin, -1, 1e-3);
    EXPECT_NEAR(m.vmax, 1, 1e-3);
}

TEST(SetupMapWindow, ObliqueMapAlmostAtTheEquatorStaysCentred)
{
    const MAPGEOMETRY m = setUp(domain(projectionOblique, -180, 180, -90, 90, 10, 0.1));
    EXPECT_EQ(m.id, projectionOblique);
    EXPECT_NEAR(m.lon0, 10, 1e-6);
    EXPECT_NEAR(m.lonMin + m.lonMax, 20, 1e-6);
}

TEST(SetupMapWindow, ObliqueMapNearAPoleBecomesPolar)
{
    MAPGEOMETRY m = domain(projectionOblique, 0, 360, -90, 90, 0, 89);
    EXPECT_TRUE(SetupMapWindow(m, page));
    EXPECT_EQ(m.id, projectionNorthPolar);
    EXPECT_EQ(m.lat0, 90);
    m = setUp(domain(projectionOblique, 0, 360, -90, 90, 0, -88));
    EXPECT_EQ(m.id, projectionSouthPolar);
    EXPECT_LT(m.latMax, -0.09);
}

TEST(SetupMapWindow, RegionalObliqueMapKeepsItsDomain)
{
    MAPGEOMETRY m = domain(projectionOblique, -20, 40, 30, 75, 10, 55);
    EXPECT_FALSE(SetupMapWindow(m, page));
    EXPECT_EQ(m.lonMin, -20);
    EXPECT_EQ(m.latMax, 75);
    EXPECT_EQ(projection().lonMax, 40);
}

TEST(SetupMapWindow, ObliqueMapFollowsADomainAwayFromItsCentre)
{
    const MAPGEOMETRY m = setUp(domain(projectionOblique, 100, 160, 10, 40, 10, 20));
    EXPECT_NEAR(m.lon0, 130, 1e-9);
    EXPECT_EQ(m.lonMin, 100);
    EXPECT_EQ(m.lonMax, 160);
}

TEST(SetupMapWindow, SecondSetUpChangesNothing)
{
    for (int id = 0; id <= 6; ++id)
        for (double lon0 : {-150.0, -20.0, 0.0, 75.0, 200.0})
            for (double lat0 : {-90.0, -60.0, 0.0, 33.0, 90.0}) {
                MAPGEOMETRY m = setUp(domain(id, -180, 180, -90, 90, lon0, lat0));
                const MAPGEOMETRY once = m;
                SetupMapWindow(m, page);
                EXPECT_EQ(m.id, once.id) << id << " " << lon0 << " " << lat0;
                EXPECT_NEAR(m.lonMin, once.lonMin, 1e-6) << id << " " << lon0 << " " << lat0;
                EXPECT_NEAR(m.latMin, once.latMin, 0.05) << id << " " << lon0 << " " << lat0;
                EXPECT_NEAR(m.lon0, once.lon0, 1e-6) << id << " " << lon0 << " " << lat0;
            }
}

TEST(SetupMapWindow, AnyNumbersGiveAMapOfSomeSize)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> number(-800, 800), small(-1, 1);
    for (int i = 0; i < 5000; ++i) {
        MAPGEOMETRY m = domain(int(random() % 9) - 1, number(random), number(random), number(random),
                               number(random), number(random), number(random));
        if (i % 3 == 0) m.lonMax = m.lonMin;
        if (i % 5 == 0) m.latMax = m.latMin + small(random) * 1e-6;
        if (i % 7 == 0) m.lon0 = std::numeric_limits<double>::quiet_NaN();
        if (i % 11 == 0) m.latMin = std::numeric_limits<double>::infinity();
        SetupMapWindow(m, page);
        ASSERT_GE(m.id, 0);
        ASSERT_LE(m.id, 6);
        ASSERT_LT(m.lonMin, m.lonMax) << i;
        ASSERT_LT(m.latMin, m.latMax) << i;
        ASSERT_LT(m.umin, m.umax) << i << " id " << m.id;
        ASSERT_LT(m.vmin, m.vmax) << i << " id " << m.id;
        ASSERT_GT(m.xlen, 0) << i;
        ASSERT_GT(m.ylen, 0) << i;
        ASSERT_LE(m.xlen, page.width * 1.0001f) << i;
        ASSERT_LE(m.ylen, page.height * 1.0001f) << i;
        ASSERT_LE(m.lonMax - m.lonMin, 360.0 + 1e-9);
        ASSERT_GE(m.latMin, -90.0 - 1e-9);
        ASSERT_LE(m.latMax, 90.0 + 1e-9);
    }
}

// --- forward

TEST(ProjectPoint, DefaultProjectionLeavesDegrees)
{
    setUp(domain(0, 0, 360, -90, 90));
    float x = 12.5f, y = -33;
    ProjectPoint(x, y);
    EXPECT_EQ(x, 12.5f);
    EXPECT_EQ(y, -33);
    UnprojectPoint(x, y);
    EXPECT_EQ(x, 12.5f);
}

TEST(ProjectPoint, NorthPolarPutsTheCentreMeridianBelowThePole)
{
    const MAPGEOMETRY m = setUp(domain(projectionNorthPolar, -180, 180, 0.1, 90, 0));
    ASSERT_EQ(m.lon0, 0);
    EXPECT_NEAR(project(0, 60).y, -0.5, 1e-12);
    EXPECT_NEAR(project(90, 60).x, 0.5, 1e-12);
    EXPECT_NEAR(project(90, -40).x, std::cos(0.01 * std::numbers::pi / 180), 1e-12);
}

TEST(ProjectPoint, SouthPolarPutsTheCentreMeridianAboveThePole)
{
    setUp(domain(projectionSouthPolar, -180, 180, -90, -0.1, 0));
    EXPECT_NEAR(project(0, -60).y, 0.5, 1e-12);
    EXPECT_NEAR(project(-90, -60).x, -0.5, 1e-12);
    EXPECT_NEAR(project(-90, 40).x, -std::cos(0.01 * std::numbers::pi / 180), 1e-12);
}

TEST(ProjectPoint, EquatorialLimitsTheLongitude)
{
    setUp(domain(projectionEquatorial, -89, 89, -90, 90, 0));
    EXPECT_NEAR(project(30, 0).x, 0.5, 1e-12);
    EXPECT_NEAR(project(30, 30).y, 0.5, 1e-12);
    EXPECT_NEAR(project(150, 0).x, 1, 1e-7);
    EXPECT_NEAR(project(-150, 0).x, -1, 1e-7);
}

TEST(ProjectPoint, MollweideFollowsThePolynomials)
{
    setUp(domain(projectionMollweide, -180, 180, -90, 90, 0));
    const PLACE w = project(90, 40);
    EXPECT_NEAR(w.y, 0.01928310553799 * 40 - 2.918286130898466e-07 * 64000 - 1.785287864372062e-11 * 1.024e8,
                1e-12);
    EXPECT_NEAR(w.y, 0.7508, 0.003); // Mollweide's own value
    EXPECT_NEAR(project(180, 0).x, 179.99 * std::numbers::pi / 180 * 0.90560600567451, 1e-12);
    EXPECT_EQ(project(-200, 10).x, project(-179.99, 10).x);
}

TEST(ProjectPoint, ObliqueCentreIsTheMiddleAndNorthIsUp)
{
    setUp(domain(projectionOblique, -180, 180, -90, 90, 20, 45));
    EXPECT_NEAR(project(20, 45).x, 0, 1e-12);
    EXPECT_NEAR(project(20, 45).y, 0, 1e-12);
    EXPECT_NEAR(project(20, 90).y, std::sqrt(0.5), 1e-12);
    EXPECT_NEAR(project(380, 75).y, 0.5, 1e-12); // a turn further is the same place
}

TEST(ProjectPoint, ObliqueFarSideLandsOnTheUnitCircle)
{
    setUp(domain(projectionOblique, -180, 180, -90, 90, 20, 45));
    for (const PLACE& far : std::vector<PLACE>{{200, -45}, {200, -40}, {170, -60}, {250, -30}, {20, -80}}) {
        const PLACE w = project(far.x, far.y);
        EXPECT_NEAR(std::hypot(w.x, w.y), 1, 1e-9) << far.x << " " << far.y;
        EXPECT_FALSE(IsVisible(far.x, far.y)) << far.x << " " << far.y;
    }
    EXPECT_LT(project(20, -80).y, 0); // towards the south, not at its mirror position
    EXPECT_TRUE(IsVisible(20, 45));
    EXPECT_TRUE(IsVisible(200, 80));
}

TEST(ProjectPoint, ObliqueMollweideIsInsideItsEllipseAndContinuous)
{
    const MAPGEOMETRY m = setUp(domain(projectionObliqueMollweide, -180, 180, -90, 90, 0));
    EXPECT_NEAR(m.vmax, 2.845, 0.01);
    EXPECT_NEAR(m.umax, 1.417, 0.01);
    for (const PLACE& a : grid(0, 179, -89, 89)) {
        const PLACE w = project(a.x, a.y);
        EXPECT_LE(std::hypot(w.x / 1.4174, w.y / 2.85), 1.02) << a.x << " " << a.y;
    }
    EXPECT_NEAR(project(0, 0).x, -1.417, 0.005);
    EXPECT_NEAR(project(90, 0).x, 0, 1e-9);
    EXPECT_NEAR(project(0, 90).y, project(120, 90).y, 1e-9);
    EXPECT_NEAR(project(-30, -30).y, -project(-30, 30).y, 1e-9); // south of the cut lies below
}

// --- inverse

TEST(UnprojectPoint, UndoesEveryProjection)
{
    setUp(domain(projectionNorthPolar, -180, 180, 0.1, 90, 0));
    EXPECT_LT(roundTrip(grid(0, 179.5, 1, 88)), 1e-5);
    setUp(domain(projectionSouthPolar, -180, 180, -90, -0.1, 0));
    EXPECT_LT(roundTrip(grid(0, 180, -88, -1)), 1e-5);
    setUp(domain(projectionEquatorial, -89.9, 89.9, -90, 90, 0));
    EXPECT_LT(roundTrip(grid(0, 88, -85, 85)), 1e-5);
    setUp(domain(projectionMollweide, -180, 180, -90, 90, 0));
    EXPECT_LT(roundTrip(grid(0, 175, -80, 80)), 1.6); // forward is a polynomial fit, inverse exact
    setUp(domain(projectionOblique, -180, 180, -90, 90, 20, 45));
    EXPECT_LT(roundTrip(grid(20, 80, 10, 80)), 1e-5);
    setUp(domain(projectionOblique, -180, 180, -90, 90, -120, -30));
    EXPECT_LT(roundTrip(grid(-120, 50, -80, 20)), 1e-5);
}

TEST(UnprojectPoint, PolarFarMeridianKeepsItsLatitude)
{
    setUp(domain(projectionNorthPolar, -180, 180, 0.1, 90, 0));
    EXPECT_NEAR(unproject(0, 0.5).y, 60, 1e-6);
    EXPECT_NEAR(std::abs(unproject(0, 0.5).x), 180, 1e-9);
    setUp(domain(projectionSouthPolar, -180, 180, -90, -0.1, 0));
    EXPECT_NEAR(unproject(0, -0.5).y, -60, 1e-6);
}

TEST(UnprojectPoint, PolarCentreCountsAsAPlaceBesideIt)
{
    setUp(domain(projectionNorthPolar, -180, 180, 0.1, 90, 0));
    const PLACE centre = unproject(0.003, -0.004), beside = unproject(0.05, 0.05);
    EXPECT_DOUBLE_EQ(centre.x, beside.x);
    EXPECT_DOUBLE_EQ(centre.y, beside.y);
    EXPECT_NEAR(centre.y, 90 - std::asin(std::hypot(0.05, 0.05)) * 180 / std::numbers::pi, 1e-9);
}

TEST(UnprojectPoint, OutsideTheDiscIsTakenOntoItsEdge)
{
    for (int id : {1, 2, 3, 4, 5, 6}) {
        setUp(domain(id, -180, 180, -90, 90, 0, 30));
        for (const PLACE& far : std::vector<PLACE>{{9, 9}, {-9, 3}, {0, -40}, {50, 0}}) {
            const PLACE w = unproject(far.x, far.y);
            EXPECT_TRUE(std::isfinite(w.x) && std::isfinite(w.y)) << id;
            EXPECT_LE(std::abs(w.y), 90) << id;
        }
    }
}

TEST(UnprojectPoint, ObliqueMollweideHasTheInverseOfMollweide)
{
    setUp(domain(projectionMollweide, -180, 180, -90, 90, 0));
    const PLACE plain = unproject(0.7, 0.3);
    setUp(domain(projectionObliqueMollweide, -180, 180, -90, 90, 0));
    const PLACE turned = unproject(0.7, 0.3);
    EXPECT_DOUBLE_EQ(plain.x, turned.x);
    EXPECT_DOUBLE_EQ(plain.y, turned.y);
}

// --- visibility

TEST(InsideProjection, KnowsDiscAndEllipse)
{
    setUp(domain(projectionOblique, -180, 180, -90, 90, 0, 30));
    EXPECT_TRUE(InsideProjection(0.7, 0.7));
    EXPECT_FALSE(InsideProjection(0.71, 0.71));
    setUp(domain(projectionMollweide, -180, 180, -90, 90, 0));
    EXPECT_TRUE(InsideProjection(2.7, 0.3));
    EXPECT_FALSE(InsideProjection(0.3, 1.42));
    setUp(domain(0, -180, 180, -90, 90, 0));
    EXPECT_TRUE(InsideProjection(1000, 1000));
}

TEST(HalfWidth, FollowsTheHorizonAndOpensAtThePole)
{
    setUp(domain(projectionOblique, -180, 180, -90, 90, 0, 30));
    EXPECT_EQ(HalfWidth(90), 180);
    EXPECT_EQ(HalfWidth(75), 180);
    EXPECT_EQ(HalfWidth(-75), 0);
    EXPECT_NEAR(HalfWidth(0), 90, 1.5);
    // cos d = -tan lat tan lat0
    const double expected =
        std::acos(-std::tan(std::numbers::pi / 6) * std::tan(std::numbers::pi / 6)) * 180 / std::numbers::pi;
    EXPECT_NEAR(HalfWidth(30), expected, 2);
}

TEST(IsVisible, IsTrueInEveryOtherProjection)
{
    for (int id : {0, 1, 2, 3, 4, 6}) {
        setUp(domain(id, -180, 180, -90, 90, 0, 0));
        EXPECT_TRUE(IsVisible(179, -60)) << id;
    }
}

// --- outline

TEST(MapOutline, FourPointsAreNoOutline)
{
    std::vector<float> x(4), y(4);
    EXPECT_EQ(MapOutline(x, y, 0, 0, 10, 0, 10), 0);
}

TEST(MapOutline, DefaultProjectionHasFiveCorners)
{
    setUp(domain(0, 0, 10, 20, 30));
    std::vector<float> x(361), y(361);
    ASSERT_EQ(MapOutline(x, y, 0, 0, 10, 20, 30), 5);
    EXPECT_EQ(x[1], 10);
    EXPECT_EQ(y[1], 20);
    EXPECT_EQ(x[3], 0);
    EXPECT_EQ(y[3], 30);
    EXPECT_EQ(x[4], 0);
    EXPECT_EQ(y[4], 20);
}

TEST(MapOutline, SidesGetAQuarterOfThePointsEach)
{
    setUp(domain(projectionMollweide, -180, 180, -90, 90, 0));
    std::vector<float> x(361), y(361);
    EXPECT_EQ(MapOutline(x, y, projectionMollweide, -100, 100, -60, 60), 1 + 4 * 89);
    EXPECT_EQ(x[0], x[356]);
    EXPECT_EQ(y[0], y[356]);
    EXPECT_LT(y[0], 0);
    EXPECT_LT(x[0], x[89]); // the lower side goes right
    EXPECT_EQ(MapOutline(std::span(x).first(181), y, projectionMollweide, -100, 100, -60, 60), 1 + 4 * 44);
    EXPECT_EQ(MapOutline(std::span(x).first(5), y, projectionMollweide, -100, 100, -60, 60), 1);
}

TEST(MapOutline, PolarMapsAreBoundedByOneParallel)
{
    std::vector<float> x(361), y(361);
    const MAPGEOMETRY n = setUp(domain(projectionNorthPolar, -180, 180, 40, 90, 0));
    ASSERT_EQ(MapOutline(x, y, n.id, n.lonMin, n.lonMax, n.latMin, n.latMax), 361);
    for (int i = 0; i < 361; ++i)
        EXPECT_NEAR(std::hypot(x[std::size_t(i)], y[std::size_t(i)]), std::cos(40 * std::numbers::pi / 180),
                    1e-6);
    const MAPGEOMETRY s = setUp(domain(projectionSouthPolar, -180, 180, -90, -50, 0));
    ASSERT_EQ(MapOutline(x, y, s.id, s.lonMin, s.lonMax, s.latMin, s.latMax), 361);
    EXPECT_NEAR(std::hypot(x[7], y[7]), std::cos(50 * std::numbers::pi / 180), 1e-6);
}

TEST(MapOutline, ObliqueGlobeIsTheUnitCircle)
{
    std::vector<float> x(361), y(361);
    for (double lat0 : {-70.0, -10.0, 0.0, 50.0}) {
        const MAPGEOMETRY m = setUp(domain(projectionOblique, -180, 180, -90, 90, 33, lat0));
        const auto n =
            static_cast<std::size_t>(MapOutline(x, y, m.id, m.lonMin, m.lonMax, m.latMin, m.latMax));
        ASSERT_EQ(n, lat0 == 0 ? 357u : 361u); // half a globe is bounded by its four sides
        for (std::size_t i = 0; i < n; ++i) EXPECT_NEAR(std::hypot(x[i], y[i]), 1, 2e-3) << lat0 << " " << i;
        EXPECT_NEAR(x[0], x[n - 1], 1e-4);
    }
}

TEST(MapOutline, HalfAnObliqueGlobeReachesItsPole)
{
    std::vector<float> x(361), y(361);
    for (double lat0 : {20.0, -20.0}) {
        const MAPGEOMETRY m = setUp(domain(projectionOblique, 120, 300, -90, 90, 210, lat0));
        ASSERT_EQ(m.id, projectionOblique);
        const double pole = std::cos(20 * std::numbers::pi / 180);
        EXPECT_NEAR(lat0 > 0 ? m.vmax : -m.vmin, pole, 1e-3) << lat0;
        EXPECT_NEAR(lat0 > 0 ? m.vmin : -m.vmax, -1, 2e-3) << lat0;
        EXPECT_NEAR(m.umin, -1, 2e-3) << lat0;
        EXPECT_NEAR(m.umax, 1, 2e-3) << lat0;
        const auto n =
            static_cast<std::size_t>(MapOutline(x, y, m.id, m.lonMin, m.lonMax, m.latMin, m.latMax));
        ASSERT_EQ(n, 357u);
        for (std::size_t i = 0; i < n; ++i) {
            // Up to the equator the edge is the horizon, beyond it the meridian 90 degrees from the centre.
            const double v = lat0 > 0 ? y[i] : -y[i];
            EXPECT_NEAR(std::hypot(x[i], v < 0 ? v : v / pole), 1, 2e-3) << lat0 << " " << i;
        }
    }
}

// --- rectangles of the plane

TEST(DomainOfRectangle, GivesBackTheDomainOfADefaultMap)
{
    setUp(domain(0, -50, 50, -50, 50));
    double a = 0, b = 0, c = 0, d = 0;
    DomainOfRectangle(30, 10, -5, 20, a, b, c, d);
    EXPECT_EQ(a, 10);
    EXPECT_EQ(b, 30);
    EXPECT_EQ(c, -5);
    EXPECT_EQ(d, 20);
}

TEST(DomainOfRectangle, StaysContiguousAcrossThePolarSeam)
{
    setUp(domain(projectionNorthPolar, -180, 180, 0.1, 90, 0));
    double a = 0, b = 0, c = 0, d = 0;
    DomainOfRectangle(-0.1, 0.1, 0.5, 0.6, a, b, c, d);
    EXPECT_LT(b - a, 30);
    EXPECT_NEAR((a + b) / 2, -180, 1);
    setUp(domain(projectionSouthPolar, -180, 180, -90, -0.1, 0));
    DomainOfRectangle(-0.1, 0.1, -0.6, -0.5, a, b, c, d);
    EXPECT_LT(b - a, 30);
}

TEST(DomainOfRectangle, AroundThePoleTakesAllLongitudes)
{
    setUp(domain(projectionNorthPolar, -180, 180, 0.1, 90, 0));
    double a = 0, b = 0, c = 0, d = 0;
    DomainOfRectangle(-0.5, 0.4, -0.3, 0.3, a, b, c, d);
    EXPECT_EQ(a, -180);
    EXPECT_EQ(b, 180);
    EXPECT_EQ(d, 90);
    EXPECT_LT(c, 60);
}

// --- small things

TEST(PoleLatitudeFor, FollowsTheProjection)
{
    EXPECT_EQ(PoleLatitudeFor(0, 10, 30, 7), 20);
    EXPECT_EQ(PoleLatitudeFor(1, 10, 30, 7), 90);
    EXPECT_EQ(PoleLatitudeFor(2, 10, 30, 7), 0);
    EXPECT_EQ(PoleLatitudeFor(3, 10, 30, 7), -90);
    EXPECT_EQ(PoleLatitudeFor(4, 10, 30, 7), 0);
    EXPECT_EQ(PoleLatitudeFor(5, 10, 30, 7), 7);
}

TEST(ProjectionName, IsEmptyOutsideTheTable)
{
    EXPECT_STREQ(projectionName(5), "Orthographic (Oblique)");
    EXPECT_STREQ(projectionName(7), "");
    EXPECT_STREQ(projectionName(-1), "");
}

TEST(ProjectionLine, IsReadBackOnlyWhenComplete)
{
    EXPECT_EQ(projectionLine(4, -30.5), "4 -30.5\n");
    int id = 2;
    double lon0 = 7;
    EXPECT_FALSE(parseProjectionLine("4\n", id, lon0));
    EXPECT_FALSE(parseProjectionLine("", id, lon0));
    EXPECT_EQ(id, 2);
    EXPECT_EQ(lon0, 7);
    EXPECT_TRUE(parseProjectionLine("4 -30.5\n", id, lon0));
    EXPECT_EQ(id, 4);
    EXPECT_EQ(lon0, -30.5);
}
