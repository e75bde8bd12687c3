#include "export/CGCPSampler.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>

namespace VellumLib {
namespace {

constexpr double kMost = std::numeric_limits<std::int32_t>::max();

std::int32_t Extent(double from, double to) {
    const double extent = std::abs(to - from);
    return extent < kMost ? static_cast<std::int32_t>(extent) : static_cast<std::int32_t>(kMost);
}

/// No raster is larger; a search across what is would not end.
CPDFPathPoint WithinRasters(const CPDFPathPoint& point) {
    CPDFPathPoint within;
    within.x = std::clamp(point.x, -kMost, kMost);
    within.y = std::clamp(point.y, -kMost, kMost);
    return within;
}

CPDFPathPoint PointAt(std::int64_t x, std::int64_t y) {
    CPDFPathPoint point;
    point.x = static_cast<double>(x);
    point.y = static_cast<double>(y);
    return point;
}

/// Where the box goes next: to the right of the middle, then from the centre to the
/// left, down and up. A raster whose rows run down ends the last two after one step.
class BoxWalk {
public:
    BoxWalk(const CPDFPathPoint& first, const CPDFPathPoint& second, std::int64_t width, std::int64_t height,
            std::int64_t centre_x, std::int64_t centre_y)
        : first_(WithinRasters(first)),
          second_(WithinRasters(second)),
          width_(width),
          height_(height),
          centre_x_(centre_x),
          centre_y_(centre_y),
          x_(centre_x - width / 2),
          y_(centre_y - height / 2) {}

    std::int64_t X() const { return x_; }
    std::int64_t Y() const { return y_; }

    /// False at the end of the search. A box without extent has nowhere to go.
    bool Step() {
        if (width_ <= 0 || height_ <= 0) return false;
        switch (state_) {
            case 0:
                return StepAlong(x_, width_, centre_x_, static_cast<double>(x_ + width_) > second_.x);
            case 1:
                return StepAlong(x_, -width_, centre_x_, static_cast<double>(x_ - width_) < first_.x);
            case 2:
                return StepAlong(y_, height_, centre_y_, static_cast<double>(y_ + height_) > second_.y);
            default:
                y_ -= height_;
                return static_cast<double>(y_) >= first_.y;
        }
    }

private:
    bool StepAlong(std::int64_t& position, std::int64_t step, std::int64_t centre, bool leaves) {
        position = leaves ? centre : position + step;
        if (leaves) ++state_;
        return true;
    }

    CPDFPathPoint first_;
    CPDFPathPoint second_;
    std::int64_t width_;
    std::int64_t height_;
    std::int64_t centre_x_;
    std::int64_t centre_y_;
    std::int64_t x_;
    std::int64_t y_;
    int state_ = 0;
};

}  // namespace

CGCPSampler::~CGCPSampler() = default;

bool CGCPSampler::RejectBox() {
    return false;
}

bool CGCPSampler::Sample(const CPDFPathPoint& first, const CPDFPathPoint& second) {
    raster_width_ = Extent(first.x, second.x);
    raster_height_ = Extent(first.y, second.y);
    const auto width = static_cast<std::int64_t>(raster_width_ * box_fraction_);
    const auto height = static_cast<std::int64_t>(raster_height_ * box_fraction_);
    BoxWalk walk(first, second, width, height, raster_width_ / 2, raster_height_ / 2);
    do {
        if (TryBox(walk.X(), walk.Y(), width, height)) return true;
        pixel_points_.clear();
        world_points_.clear();
    } while (walk.Step());
    return false;
}

bool CGCPSampler::TryBox(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height) {
    try {
        for (const CPDFPathPoint& pixel :
             {PointAt(x, y), PointAt(x + width, y + height), PointAt(x, y + height), PointAt(x + width, y)}) {
            const CPDFPathPoint world = PixelToWorld(pixel);
            pixel_points_.push_back(pixel);
            world_points_.push_back(world);
        }
        return !RejectBox();
    } catch (const std::exception&) {
        return false;  // a place that the transform cannot reach
    }
}

}  // namespace VellumLib
