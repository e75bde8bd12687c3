#pragma once

#include <Tellurion/BMathTransform.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

struct Place {
    double x, y;
};
/// A known transform, from (0..1, 0..1) over the raster, row down, to about the same.
using Warp = Place (*)(double u, double v);

/// Where the target of a warp is placed on the Earth.
struct World {
    double left, top, width, height;
};
constexpr World kUtm = {512345.678, 5412345.678, 5000.0, 4000.0};
constexpr World kGeographic = {11.123456789, 48.987654321, 0.07, 0.04};

constexpr unsigned int kWidth = 10000;
constexpr unsigned int kHeight = 8000;

inline Place Truth(Warp warp, const World& world, double column, double row) {
    const Place place = warp(column / kWidth, row / kHeight);
    return {world.left + world.width * place.x, world.top - world.height * place.y};
}

inline Tellurion::BPointPair PointAt(long column, long row, const Place& world, bool enabled = true) {
    return {column, row, world.x, world.y, 0.0, "", enabled};
}

inline Tellurion::BPointPair PointOn(Warp warp, const World& world, long column, long row) {
    return PointAt(column, row, Truth(warp, world, static_cast<double>(column), static_cast<double>(row)));
}

/// A grid of points over the raster, each moved by a few pixels from its node.
inline std::vector<Tellurion::BPointPair> GridOn(Warp warp, const World& world, int per_axis) {
    std::mt19937 random(5);
    std::vector<Tellurion::BPointPair> pairs;
    for (int i = 0; i < per_axis * per_axis; ++i) {
        const long column = i % per_axis * 9600L / (per_axis - 1) + static_cast<long>(random() % 400);
        const long row = i / per_axis * 7600L / (per_axis - 1) + static_cast<long>(random() % 400);
        pairs.push_back(PointOn(warp, world, column, row));
    }
    return pairs;
}

/// The transform maps the pixel to its place and back, each within its bound.
inline void ExpectMeets(const Tellurion::BTransform& transform, const Place& pixel, const Place& world,
                        const Place& world_bound, double pixel_bound) {
    SCOPED_TRACE(testing::Message() << "pixel " << pixel.x << " " << pixel.y);
    double x = pixel.x, y = pixel.y;
    ASSERT_TRUE(transform.ConvertSourceToTarget(x, y));
    EXPECT_NEAR(x, world.x, world_bound.x);
    EXPECT_NEAR(y, world.y, world_bound.y);
    ASSERT_TRUE(transform.ConvertTargetToSource(x, y));
    EXPECT_NEAR(x, pixel.x, pixel_bound);
    EXPECT_NEAR(y, pixel.y, pixel_bound);
}

inline void ExpectMeetsAll(const Tellurion::BTransform& transform,
                           const std::vector<Tellurion::BPointPair>& pairs, double world_bound,
                           double pixel_bound) {
    for (const auto& pair : pairs)
        ExpectMeets(transform, {static_cast<double>(pair.Column), static_cast<double>(pair.Row)},
                    {pair.World.x, pair.World.y}, {world_bound, world_bound}, pixel_bound);
}

/// Where there is no value the numbers stay as they were, even those that are none.
using Conversion = bool (Tellurion::BTransform::*)(double&, double&) const;
inline void ExpectNone(const Tellurion::BTransform& transform, Conversion convert, const Place& at) {
    double x = at.x, y = at.y;
    EXPECT_FALSE((transform.*convert)(x, y)) << "at " << at.x << " " << at.y;
    EXPECT_TRUE((x == at.x || std::isnan(at.x)) && (y == at.y || std::isnan(at.y)));
}
constexpr Conversion kToTarget = &Tellurion::BTransform::ConvertSourceToTarget;
constexpr Conversion kToSource = &Tellurion::BTransform::ConvertTargetToSource;
