#pragma once

// The one projection of the process, the rules that keep a map domain legal for it, and the domain's outline.

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace graphics {

enum ProjectionId : int {
    projectionDefault = 0,
    projectionNorthPolar = 1,
    projectionEquatorial = 2,
    projectionSouthPolar = 3,
    projectionMollweide = 4,
    projectionOblique = 5,
    projectionObliqueMollweide = 6
};
[[nodiscard]] const char* projectionName(int id); // "" outside the table

struct PROJECTION {
    int id = projectionDefault;
    double lon0 = 180, lat0 = 0; // centre longitude, pole (centre) latitude, degrees
    double sinLat0 = 0, cosLat0 = 1;
    double lonMin = 0, lonMax = 360, latMin = -90, latMax = 90; // as last given to the map setup
    std::array<double, 181> halfWidth{}; // visible half-width per degree of latitude from -90
};
[[nodiscard]] PROJECTION& projection();

// Degrees to plane, in place; nothing for id 0. The plane is a unit disc for ids 1, 2, 3 and 5, an ellipse of
// semi-axes 2.83 and 1.41 for 4 and 6. What a projection can't show lands on its edge.
void ProjectPoint(float& x, float& y);
void ProjectPoint(double& x, double& y);
// Plane to degrees, in place; nothing for id 0. Positions outside the disc or ellipse are taken onto its
// edge.
void UnprojectPoint(float& x, float& y);
void UnprojectPoint(double& x, double& y);
// False if the oblique orthographic projection hides the position behind the globe.
[[nodiscard]] bool IsVisible(double lon, double lat);
// False outside the projected disc or ellipse.
[[nodiscard]] bool InsideProjection(double u, double v);
// Visible half-width in degrees of longitude at a latitude, interpolated; 0 to 180, for the oblique map only.
[[nodiscard]] double HalfWidth(double lat);
// Longitude relative to the centre meridian in degrees, -180 to 180.
[[nodiscard]] double fromCentre(double lon);
// Pole latitude that belongs to a choice of projection; `typed` where the user's own stands.
[[nodiscard]] double PoleLatitudeFor(int id, double latMin, double latMax, double typed);

// Brings a domain into the legal range: swaps reversed longitudes, limits the span to 360 degrees, shifts
// both longitudes by 360 where they are both negative or the east end exceeds 360, clamps the latitudes. True
// if anything changed.
bool NormalizeDomain(double& lonMin, double& lonMax, double& latMin, double& latMax);
// Limits in the plane of a domain's outline.
void ProjectedBounds(double lonMin, double lonMax, double latMin, double latMax, float& umin, float& umax,
                     float& vmin, float& vmax);
// Fills the domain's projected outline in at most x.size() points; returns how many, 0 if fewer than 5 are
// offered. The outline is closed.
int MapOutline(std::span<float> x, std::span<float> y, int id, double lonMin, double lonMax, double latMin,
               double latMax);

// A map in its box. `domain` and `bounds` change.
struct MAPGEOMETRY {
    float umin = 0, umax = 360, vmin = -90, vmax = 90; // projected bounds (out)
    float xlen = 0, xorg = 0, ylen = 0, yorg = 0;      // size and origin in cm (out)
    double lonMin = 0, lonMax = 360, lon0 = 180, latMin = -90, latMax = 90, lat0 = 0; // degrees (in and out)
    int id = projectionDefault; // in and out: 5 may become 1 or 3
};
struct BOX {
    float width = 0, x = 0, height = 0, y = 0; // cm
};
// Sets the global projection, legalises the domain, computes bounds and the largest size of the map's aspect
// that fits the box. True if the domain had to be changed.
bool SetupMapWindow(MAPGEOMETRY& map, const BOX& box);

// Limits of the domain that a rectangle of the plane covers, in degrees.
void DomainOfRectangle(double u0, double u1, double v0, double v1, double& lonMin, double& lonMax,
                       double& latMin, double& latMax);

// The line of a projection file "map.prj": id and centre longitude. Reading changes nothing unless both are
// there.
[[nodiscard]] std::string projectionLine(int id, double lon0);
[[nodiscard]] bool parseProjectionLine(std::string_view text, int& id, double& lon0);

} // namespace graphics
