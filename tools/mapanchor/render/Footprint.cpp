#include "render/Footprint.h"

#include "read/RasterFrame.h"
#include "read/RemarkIds.h"
#include "render/AntimeridianCut.h"
#include "render/Outline.h"
#include "render/PlainArea.h"

#include <Tellurion/BUnsupportedFileTypeException.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace Tool {

using Tellurion::BCoordSys;
using Tellurion::BString;

namespace {

constexpr double kTurn = 360.0;
constexpr double kHalfTurn = 180.0;
constexpr double kPole = 90.0;

struct NoFootprint {
    std::string why;
};

Conversion ToWgs84(const BCoordSys& system) {
    const std::unique_ptr<BCoordSys> wgs84(BCoordSys::FromEPSGCode(BString("EPSG:4326")));
    if (!wgs84) throw NoFootprint{"the coordinate system database has no WGS 84"};
    return {system, *wgs84};
}

Conversion FromWgs84(const BCoordSys& system) {
    const std::unique_ptr<BCoordSys> wgs84(BCoordSys::FromEPSGCode(BString("EPSG:4326")));
    return {*wgs84, system};
}

bool ShowsPole(const ReadResult& result, const RasterFrame& frame, double latitude) {
    const auto world = FromWgs84(*result.reference.CoordSys).Convert({0.0, latitude});
    const auto pixel = world ? PixelAt(result, *world) : std::nullopt;
    return pixel && frame.Contains(*pixel);
}

double MeanLatitude(const std::vector<Position>& line) {
    double sum = 0.0;
    for (const Position& position : line)
        sum += position.y;
    return sum / static_cast<double>(line.size());
}

/// An outline that goes once around the Earth holds a pole: the way there and back
/// along one meridian makes it an area of the plane.
void CloseOverPole(const ReadResult& result, const RasterFrame& frame, std::vector<Position>& line) {
    const bool shows_north = ShowsPole(result, frame, kPole);
    const bool shows_south = ShowsPole(result, frame, -kPole);
    const bool north = shows_north != shows_south ? shows_north : MeanLatitude(line) > 0.0;
    const Position first = line.front();
    const Position last = line.back();
    line.push_back({last.x, north ? kPole : -kPole});
    line.push_back({first.x, north ? kPole : -kPole});
    line.push_back(first);
}

std::optional<Footprint> AreaOf(const std::vector<Position>& line) {
    auto plain = PlainArea(line);
    return plain ? plain : CutAtAntimeridian(line);
}

Footprint MakeFootprint(ReadResult& result) {
    if (!result.reference.HasMathTransform()) throw NoFootprint{"there is no transform"};
    if (!result.reference.HasCoordSys()) throw NoFootprint{"there is no coordinate system"};
    const auto frame = FrameOf(result);
    if (!frame) throw NoFootprint{"the raster's size is not known, see --size"};
    const Conversion to_wgs84 = ToWgs84(*result.reference.CoordSys);
    if (!to_wgs84.IsPossible()) throw NoFootprint{"the coordinate system has no place on the Earth"};
    std::vector<Position> line = TraceOutline(*frame, [&](const Position& pixel) {
        const auto world = WorldAt(result, pixel);
        return world ? to_wgs84.Convert(*world) : std::nullopt;
    });
    constexpr std::size_t kLeastCorners = 4;
    if (line.size() < kLeastCorners) throw NoFootprint{"the outline has no positions on the Earth"};
    if (std::fabs(line.back().x - line.front().x) > kHalfTurn) CloseOverPole(result, *frame, line);
    auto footprint = [&line] {
        try {
            return AreaOf(line);
        } catch (const Tellurion::BUnsupportedFileTypeException& missing) {
            throw NoFootprint{missing.GetDetail().StdStr()};
        }
    }();
    if (!footprint) throw NoFootprint{"the outline crosses itself or has no area"};
    return *footprint;
}

}  // namespace

std::optional<Footprint> FootprintOf(ReadResult& result) {
    if (!result.Ok()) return std::nullopt;
    try {
        return MakeFootprint(result);
    } catch (const NoFootprint& none) {
        result.diagnostics.push_back({false, "there is no footprint: " + none.why, RemarkId::kNoFootprint});
        return std::nullopt;
    }
}

std::optional<Footprint> FootprintOfBox(double west, double south, double east, double north) {
    const auto is_longitude = [](double x) { return std::fabs(x) <= kHalfTurn; };
    if (!is_longitude(west) || !is_longitude(east) || !(-kPole <= south && south < north && north <= kPole))
        return std::nullopt;
    if (east <= west) east += kTurn;
    return AreaOf({{west, south}, {east, south}, {east, north}, {west, north}, {west, south}});
}

}  // namespace Tool
