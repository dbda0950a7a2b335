#pragma once

// The one projection of the process, the rules that keep a map domain legal for it, and the domain's outline.

#include <array>
#include <span>

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

void ProjectPoint(float& x, float& y);   // degrees to plane; nothing for id 0
void UnprojectPoint(float& x, float& y); // plane to degrees; nothing for id 0
[[nodiscard]] bool IsVisible(double lon, double lat);
[[nodiscard]] bool InsideProjection(double u, double v);
[[nodiscard]] double HalfWidth(double lat);
[[nodiscard]] double PoleLatitudeFor(int id, double latMin, double latMax, double typed);

// Swaps, limits and shifts a domain; true if anything changed.
bool NormalizeDomain(double& lonMin, double& lonMax, double& latMin, double& latMax);
void ProjectedBounds(double lonMin, double lonMax, double latMin, double latMax, float& umin, float& umax,
                     float& vmin, float& vmax);
// Fills the domain's projected outline in at most x.size() points; returns how many.
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

// Limits of the domain that a rectangle of the plane covers.
void DomainOfRectangle(double u0, double u1, double v0, double v1, double& lonMin, double& lonMax,
                       double& latMin, double& latMax);

} // namespace graphics
