#include "geos.h"

#include <geos_c.h>

namespace tools {

struct RGeos::STATE {
    GEOSContextHandle_t handle = nullptr;
    bool failed = false;
    std::string complaint; // the latest
    std::string message;   // the one that came with the first failure
};

namespace {

struct GeometryDeleter {
    GEOSContextHandle_t handle = nullptr;
    void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy_r(handle, geometry); }
};
using GeometryPtr = std::unique_ptr<GEOSGeometry, GeometryDeleter>;

void keepComplaint(const char* message, void* complaint)
{
    *static_cast<std::string*>(complaint) = message;
}

GeometryPtr own(GEOSContextHandle_t handle, GEOSGeometry* geometry)
{
    return {geometry, GeometryDeleter{handle}};
}

GEOSCoordSequence* sequenceOf(GEOSContextHandle_t handle, std::span<const POINT> points)
{
    static_assert(sizeof(POINT) == 2 * sizeof(double));
    return GEOSCoordSeq_copyFromBuffer_r(handle, &points.front().x, unsigned(points.size()), 0, 0);
}

GEOSGeometry* ringGeometry(GEOSContextHandle_t handle, const RING& ring)
{
    return GEOSGeom_createLinearRing_r(handle, sequenceOf(handle, ring));
}

GeometryPtr polygonGeometry(GEOSContextHandle_t handle, const POLYGON& polygon)
{
    std::vector<GEOSGeometry*> holes;
    for (const RING& hole : polygon.holes) holes.push_back(ringGeometry(handle, hole));
    return own(handle, GEOSGeom_createPolygon_r(handle, ringGeometry(handle, polygon.outer), holes.data(),
                                                unsigned(holes.size())));
}

GeometryPtr collectionGeometry(GEOSContextHandle_t handle, int type, std::vector<GEOSGeometry*> parts)
{
    return own(handle, GEOSGeom_createCollection_r(handle, type, parts.data(), unsigned(parts.size())));
}

CHAIN pointsOf(GEOSContextHandle_t handle, const GEOSGeometry* line)
{
    const GEOSCoordSequence* sequence = GEOSGeom_getCoordSeq_r(handle, line);
    unsigned size = 0;
    if (!sequence || !GEOSCoordSeq_getSize_r(handle, sequence, &size) || size == 0) return {};
    CHAIN points(size);
    if (!GEOSCoordSeq_copyToBuffer_r(handle, sequence, &points.front().x, 0, 0)) return {};
    return points;
}

POLYGON polygonOf(GEOSContextHandle_t handle, const GEOSGeometry* geometry)
{
    POLYGON polygon{pointsOf(handle, GEOSGetExteriorRing_r(handle, geometry)), {}};
    const int holes = GEOSGetNumInteriorRings_r(handle, geometry);
    for (int i = 0; i < holes; ++i)
        polygon.holes.push_back(pointsOf(handle, GEOSGetInteriorRingN_r(handle, geometry, i)));
    return polygon;
}

// Appends the polygons among the parts; an overlay also gives lines and points where areas only touch.
void appendPolygons(GEOSContextHandle_t handle, const GEOSGeometry* geometry, std::vector<POLYGON>& out)
{
    const int type = GEOSGeomTypeId_r(handle, geometry);
    if (type == GEOS_POLYGON) {
        if (GEOSisEmpty_r(handle, geometry) == 0) out.push_back(polygonOf(handle, geometry));
        return;
    }
    if (type != GEOS_MULTIPOLYGON && type != GEOS_GEOMETRYCOLLECTION) return;
    const int parts = GEOSGetNumGeometries_r(handle, geometry);
    for (int i = 0; i < parts; ++i) appendPolygons(handle, GEOSGetGeometryN_r(handle, geometry, i), out);
}

template <typename State>
std::vector<POLYGON> polygonsFrom(State& state, const GeometryPtr& geometry)
{
    std::vector<POLYGON> out;
    if (geometry) {
        appendPolygons(state.handle, geometry.get(), out);
    } else if (!state.failed) {
        state.failed = true;
        state.message = state.complaint;
    }
    return out;
}

} // namespace

RGeos::RGeos() : state_(std::make_unique<STATE>())
{
    state_->handle = GEOS_init_r();
    GEOSContext_setErrorMessageHandler_r(state_->handle, keepComplaint, &state_->complaint);
}

RGeos::~RGeos()
{
    GEOS_finish_r(state_->handle);
}

bool RGeos::failed() const
{
    return state_->failed;
}

const std::string& RGeos::message() const
{
    return state_->message;
}

std::vector<POLYGON> RGeos::repaired(const POLYGON& polygon) const
{
    const GeometryPtr geometry = polygonGeometry(state_->handle, polygon);
    if (geometry && GEOSisValid_r(state_->handle, geometry.get()) == 1) return {polygon};
    if (!geometry) return polygonsFrom(*state_, geometry);
    return polygonsFrom(*state_, own(state_->handle, GEOSMakeValid_r(state_->handle, geometry.get())));
}

std::vector<POLYGON> RGeos::clipped(const POLYGON& polygon, const BOX& box) const
{
    const GEOSContextHandle_t handle = state_->handle;
    const GeometryPtr geometry = polygonGeometry(handle, polygon);
    const GeometryPtr window = polygonGeometry(handle, {rectangle(box), {}});
    if (!geometry || !window) return polygonsFrom(*state_, nullptr);
    GeometryPtr result = own(handle, GEOSIntersection_r(handle, geometry.get(), window.get()));
    if (!result) {
        const GeometryPtr valid = own(handle, GEOSMakeValid_r(handle, geometry.get()));
        if (valid) result = own(handle, GEOSIntersection_r(handle, valid.get(), window.get()));
    }
    return polygonsFrom(*state_, result);
}

std::vector<POLYGON> RGeos::united(std::span<const POLYGON> polygons) const
{
    std::vector<GEOSGeometry*> parts;
    for (const POLYGON& polygon : polygons)
        parts.push_back(polygonGeometry(state_->handle, polygon).release());
    const GeometryPtr all = collectionGeometry(state_->handle, GEOS_GEOMETRYCOLLECTION, std::move(parts));
    if (!all) return polygonsFrom(*state_, nullptr);
    return polygonsFrom(*state_, own(state_->handle, GEOSUnaryUnion_r(state_->handle, all.get())));
}

std::vector<POLYGON> RGeos::enclosed(std::span<const RING> rings) const
{
    std::vector<GEOSGeometry*> parts;
    for (const RING& ring : rings) parts.push_back(ringGeometry(state_->handle, ring));
    const GeometryPtr all = collectionGeometry(state_->handle, GEOS_GEOMETRYCOLLECTION, std::move(parts));
    if (!all) return polygonsFrom(*state_, nullptr);
    return polygonsFrom(*state_, own(state_->handle, GEOSBuildArea_r(state_->handle, all.get())));
}

std::vector<CHAIN> RGeos::simplified(std::span<const CHAIN> chains, double tolerance) const
{
    const GEOSContextHandle_t handle = state_->handle;
    std::vector<GEOSGeometry*> parts;
    for (const CHAIN& chain : chains)
        parts.push_back(GEOSGeom_createLineString_r(handle, sequenceOf(handle, chain)));
    const GeometryPtr all = collectionGeometry(handle, GEOS_MULTILINESTRING, std::move(parts));
    const GeometryPtr thin =
        all ? own(handle, GEOSTopologyPreserveSimplify_r(handle, all.get(), tolerance)) : nullptr;
    std::vector<CHAIN> out;
    out.reserve(chains.size());
    const int count = thin ? GEOSGetNumGeometries_r(handle, thin.get()) : 0;
    for (int i = 0; i < count; ++i)
        out.push_back(pointsOf(handle, GEOSGetGeometryN_r(handle, thin.get(), i)));
    if (out.size() != chains.size()) (void)polygonsFrom(*state_, nullptr);
    return out;
}

} // namespace tools
