#include "read/RasterFrame.h"

#include <MapAnchor/BGdalAccess.h>
#include <Tellurion/BFileUtilities.h>

#include <algorithm>
#include <cmath>

using MapAnchor::BGdalAccess;
using Tellurion::BFileUtilities;
using Tellurion::BPointPair;
using Tellurion::BString;

namespace {

constexpr const char* kRasterExtensions[] = {"tif", "TIF", "jpg", "JPG", "png",  "PNG",  "jp2", "JP2", "bmp",
                                             "BMP", "gif", "GIF", "img", "tiff", "jpeg", "kap", "KAP"};

bool SetSizeFrom(const std::string& file, ReadResult& result) {
    long width = 0;
    long height = 0;
    if (!BGdalAccess::GetRasterSize(BString(file), width, height)) return false;
    result.width = width;
    result.height = height;
    return true;
}

bool HasRasterExtension(const std::string& file) {
    const BString extension = BFileUtilities::GetExtension(BString(file));
    return std::any_of(std::begin(kRasterExtensions), std::end(kRasterExtensions),
                       [&](const char* known) { return extension == BString("." + std::string(known)); });
}

bool IsSidecar(const ReadResult& result) {
    return result.is_sidecar && !HasRasterExtension(result.used_file);
}

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

void FindRasterSize(ReadResult& result) {
    if (result.width || !result.Ok()) return;
    if (!IsSidecar(result)) {
        SetSizeFrom(result.used_file, result);
        return;
    }
    const BString sidecar(result.used_file);
    for (const char* extension : kRasterExtensions) {
        const BString raster = BFileUtilities::ChangeExtension(sidecar, extension);
        if (BFileUtilities::Exists(raster) && SetSizeFrom(raster.StdStr(), result)) return;
    }
}

RasterFrame FrameOf(const ReadResult& result, long width, long height) {
    const double edge = result.centre_anchored ? -0.5 : 0.0;
    return {edge, edge, edge + static_cast<double>(width), edge + static_cast<double>(height)};
}

std::optional<RasterFrame> FrameOf(ReadResult& result) {
    FindRasterSize(result);
    if (result.width) return FrameOf(result, *result.width, *result.height);
    const auto frame = FrameOfPoints(result);
    if (frame)
        result.diagnostics.push_back({false,
                                      "the raster's size is not known, see --size: the area of the control "
                                      "points stands for it",
                                      "size-unknown"});
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
