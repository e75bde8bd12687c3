#include "render/Stereographic.h"

#include <algorithm>
#include <cmath>

namespace Tool {

namespace {

constexpr double kCosineOfCircle = -0.866;  // 150 degrees from the centre

}  // namespace

Stereographic::Stereographic(const Position& centre)
    : centre_(centre), sin_(std::sin(centre.y * kDegree)), cos_(std::cos(centre.y * kDegree)) {}

double Stereographic::CosineTo(const Position& place) const {
    return sin_ * std::sin(place.y * kDegree) +
           cos_ * std::cos(place.y * kDegree) * std::cos((place.x - centre_.x) * kDegree);
}

double Stereographic::AngleTo(const Position& place) const {
    return std::acos(std::clamp(CosineTo(place), -1.0, 1.0)) / kDegree;
}

Position Stereographic::Forward(const Position& place) const {
    const double turn = (place.x - centre_.x) * kDegree;
    const double sine = std::sin(place.y * kDegree);
    const double cosine = std::cos(place.y * kDegree);
    const double east = cosine * std::sin(turn);
    const double north = cos_ * sine - sin_ * cosine * std::cos(turn);
    const double near = sin_ * sine + cos_ * cosine * std::cos(turn);
    if (near >= kCosineOfCircle) return {2.0 * east / (1.0 + near), 2.0 * north / (1.0 + near)};
    const double radius = 2.0 * std::sqrt((1.0 - kCosineOfCircle) / (1.0 + kCosineOfCircle));
    const double length = std::hypot(east, north);
    return length > 0.0 ? Position{east / length * radius, north / length * radius} : Position{0.0, radius};
}

Position Stereographic::Inverse(const Position& at) const {
    const double radius = std::hypot(at.x, at.y);
    if (!(radius > 0.0)) return centre_;
    const double angle = 2.0 * std::atan(radius / 2.0);
    const double latitude =
        std::asin(std::clamp(std::cos(angle) * sin_ + at.y * std::sin(angle) * cos_ / radius, -1.0, 1.0));
    const double turn =
        std::atan2(at.x * std::sin(angle), radius * cos_ * std::cos(angle) - at.y * sin_ * std::sin(angle));
    return {centre_.x + turn / kDegree, latitude / kDegree};
}

}  // namespace Tool
