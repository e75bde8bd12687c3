#include "read/RasterFrame.h"
#include "read/RemarkIds.h"

#include <algorithm>
#include <cmath>

namespace Tool {

using Tellurion::BPointPair;

namespace {

template <class Visit>
void ForEachUsedPoint(const ReadResult& result, Visit visit) {
    for (const BPointPair& pair : result.reference.PointPairVector)
        if (pair.Enabled) visit(static_cast<double>(pair.Column), static_cast<double>(pair.Row));
}

std::optional<RasterFrame> FrameOfPoints(const ReadResult& result) {
    constexpr double kFar = 1e300;
    RasterFrame frame{kFar, kFar, -kFar, -kFar};
    ForEachUsedPoint(result, [&frame](double column, double row) {
        frame.left = std::min(frame.left, column);
        frame.right = std::max(frame.right, column);
        frame.top = std::min(frame.top, row);
        frame.bottom = std::max(frame.bottom, row);
    });
    return frame.left < frame.right && frame.top < frame.bottom ? std::optional(frame) : std::nullopt;
}

}  // namespace

RasterFrame FrameOf(const ReadResult& result, long width, long height) {
    const double edge = result.centre_anchored ? -0.5 : 0.0;
    return {edge, edge, edge + static_cast<double>(width), edge + static_cast<double>(height)};
}

std::optional<RasterFrame> FrameOf(ReadResult& result) {
    if (result.width) return FrameOf(result, *result.width, *result.height);
    const auto frame = FrameOfPoints(result);
    if (frame)
        result.diagnostics.push_back({false,
                                      "the raster's size is not known, see --size: the area of the control "
                                      "points stands for it",
                                      RemarkId::kSizeUnknown});
    return frame;
}

std::optional<Position> WorldAt(const ReadResult& result, const Position& pixel) {
    Position world = pixel;
    if (!result.reference.HasMathTransform() ||
        !result.reference.MathTransform->ConvertSourceToTarget(world.x, world.y))
        return std::nullopt;
    return std::isfinite(world.x) && std::isfinite(world.y) ? std::optional(world) : std::nullopt;
}

std::optional<Position> PixelAt(const ReadResult& result, const Position& world) {
    Position pixel = world;
    if (!result.reference.HasMathTransform() ||
        !result.reference.MathTransform->ConvertTargetToSource(pixel.x, pixel.y))
        return std::nullopt;
    return std::isfinite(pixel.x) && std::isfinite(pixel.y) ? std::optional(pixel) : std::nullopt;
}

}  // namespace Tool
