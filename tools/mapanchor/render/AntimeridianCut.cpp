#include "render/AntimeridianCut.h"

#include "render/PlainArea.h"

#include <MapAnchor/BQuietGdal.h>

#include <ogr_geometry.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace Tool {

namespace {

constexpr double kTurn = 360.0;
constexpr double kHalfTurn = 180.0;

OGRPolygon ToPolygon(const std::vector<Position>& line) {
    OGRLinearRing ring;
    ring.setNumPoints(static_cast<int>(line.size()), FALSE);
    for (std::size_t i = 0; i < line.size(); ++i)
        ring.setPoint(static_cast<int>(i), line[i].x, line[i].y);
    ring.closeRings();
    OGRPolygon polygon;
    polygon.addRing(&ring);
    return polygon;
}

OGRPolygon Strip(double west, double east) {
    constexpr double kBeyondPole = 100.0;
    return ToPolygon({{west, -kBeyondPole}, {east, -kBeyondPole}, {east, kBeyondPole}, {west, kBeyondPole}});
}

void AddRing(const OGRPolygon& polygon, double shift, Footprint& footprint) {
    std::unique_ptr<OGRLinearRing> ring(polygon.getExteriorRing()->clone());
    if (ring->isClockwise()) ring->reversePoints();
    std::vector<Position> positions;
    for (const OGRPoint& point : *ring)
        positions.push_back({point.getX() + shift, point.getY()});
    positions = RoundedRing(positions);
    if (!positions.empty()) footprint.rings.push_back(std::move(positions));
}

void AddRings(const OGRGeometry& geometry, double shift, Footprint& footprint) {
    const auto kind = wkbFlatten(geometry.getGeometryType());
    if (kind == wkbPolygon && !geometry.IsEmpty()) return AddRing(*geometry.toPolygon(), shift, footprint);
    if (!OGR_GT_IsSubClassOf(kind, wkbGeometryCollection)) return;
    for (const OGRGeometry* part : *geometry.toGeometryCollection())
        AddRings(*part, shift, footprint);
}

/// Parts that touch along a meridian become one.
void AddUnion(const OGRMultiPolygon& parts, Footprint& footprint) {
    const std::unique_ptr<OGRGeometry> whole(parts.UnionCascaded());
    if (whole) AddRings(*whole, 0.0, footprint);
}

void Shift(OGRGeometry& geometry, double shift, OGRMultiPolygon& parts) {
    Footprint moved;
    AddRings(geometry, shift, moved);
    for (const auto& ring : moved.rings) {
        const OGRPolygon part = ToPolygon(ring);
        parts.addGeometry(&part);
    }
}

/// False when the outline crosses itself, so that nothing can be cut.
bool Cut(const OGRPolygon& area, const OGREnvelope& extent, Footprint& footprint) {
    const auto turn_of = [](double longitude) { return std::floor((longitude + kHalfTurn) / kTurn); };
    const double most_east = std::min(extent.MaxX, extent.MinX + kTurn);  // nothing is drawn twice
    OGRMultiPolygon parts;
    // NOLINTNEXTLINE(clang-analyzer-security.FloatLoopCounter): whole numbers of any size
    for (double turn = turn_of(extent.MinX); turn <= turn_of(extent.MaxX); ++turn) {
        const double west = std::max(extent.MinX, turn * kTurn - kHalfTurn);
        const double east = std::min(most_east, turn * kTurn + kHalfTurn);
        if (west >= east) continue;
        const OGRPolygon strip = Strip(west, east);
        const std::unique_ptr<OGRGeometry> part(area.Intersection(&strip));
        if (!part) return false;
        Shift(*part, -turn * kTurn, parts);
    }
    AddUnion(parts, footprint);
    return true;
}

void SetBox(const OGREnvelope& extent, Footprint& footprint) {
    footprint.south = RoundedDegrees(extent.MinY);
    footprint.north = RoundedDegrees(extent.MaxY);
    footprint.west = -kHalfTurn;
    footprint.east = kHalfTurn;
    if (extent.MaxX - extent.MinX >= kTurn) return;
    const double shift = -kTurn * std::floor((extent.MinX + kHalfTurn) / kTurn);
    footprint.west = RoundedDegrees(extent.MinX + shift);
    footprint.east = RoundedDegrees(extent.MaxX + shift);
    if (footprint.east > kHalfTurn) footprint.east = RoundedDegrees(footprint.east - kTurn);
}

OGRMultiPolygon ToGeometry(const Footprint& footprint) {
    OGRMultiPolygon area;
    for (const auto& ring : footprint.rings) {
        OGRLinearRing line;
        line.setNumPoints(static_cast<int>(ring.size()), FALSE);
        for (std::size_t i = 0; i < ring.size(); ++i)
            line.setPoint(static_cast<int>(i), ring[i].x, ring[i].y);
        OGRPolygon polygon;
        polygon.addRing(&line);
        area.addGeometry(&polygon);
    }
    return area;
}

}  // namespace

std::optional<Footprint> CutAtAntimeridian(const std::vector<Position>& line) {
    const MapAnchor::BQuietGdal quiet;
    const OGRPolygon area = ToPolygon(line);
    OGREnvelope extent;
    area.getEnvelope(&extent);
    Footprint footprint;
    SetBox(extent, footprint);
    // An outline that goes around the Earth again and again is none.
    constexpr double kMostTurns = 3.0;
    if (extent.MaxX - extent.MinX > kMostTurns * kTurn || !area.IsValid()) return std::nullopt;
    if (extent.MinX >= -kHalfTurn && extent.MaxX <= kHalfTurn)
        AddRings(area, 0.0, footprint);
    else if (!Cut(area, extent, footprint))
        return std::nullopt;
    return footprint.rings.empty() ? std::nullopt : std::optional(std::move(footprint));
}

bool Contains(const Footprint& outer, const Footprint& inner) {
    constexpr double kMillimetre = 1e-8;
    const MapAnchor::BQuietGdal quiet;
    const OGRMultiPolygon area = ToGeometry(outer);
    const OGRMultiPolygon part = ToGeometry(inner);
    const std::unique_ptr<OGRGeometry> wider(area.Buffer(kMillimetre));
    return wider && wider->Contains(&part);
}

}  // namespace Tool
