#include "render/PlainArea.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace Tool {
namespace {

constexpr double kHalfTurn = 180.0;

/// 1 where the line goes around its middle once, counterclockwise and never back, -1 where it does
/// so clockwise, else 0. Such a line does not cross itself.
int WayAround(const std::vector<Position>& line) {
    Position middle{0.0, 0.0};
    for (const Position& position : line) {
        middle.x += position.x / static_cast<double>(line.size());
        middle.y += position.y / static_cast<double>(line.size());
    }
    double angle = 0.0;
    double side = 0.0;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const Position from{line[i].x - middle.x, line[i].y - middle.y};
        const Position to{line[i + 1].x - middle.x, line[i + 1].y - middle.y};
        if (from.x == to.x && from.y == to.y) continue;
        const double step = std::atan2(from.x * to.y - from.y * to.x, from.x * to.x + from.y * to.y);
        if (step == 0.0 || step * side < 0.0) return 0;
        side = step;
        angle += step;
    }
    const bool is_once = std::fabs(std::fabs(angle) - 2 * std::numbers::pi) < 1.0;
    return !is_once ? 0 : angle > 0.0 ? 1 : -1;
}

}  // namespace

double RoundedDegrees(double degrees) {
    constexpr double kPerDegree = 1e9;
    return std::round(degrees * kPerDegree) / kPerDegree + 0.0;  // no negative zero
}

std::vector<Position> RoundedRing(const std::vector<Position>& line) {
    std::vector<Position> ring;
    for (const Position& exact : line) {
        const Position position{RoundedDegrees(exact.x), RoundedDegrees(exact.y)};
        if (ring.empty() || ring.back().x != position.x || ring.back().y != position.y)
            ring.push_back(position);
    }
    constexpr std::size_t kTriangle = 4;
    return ring.size() >= kTriangle ? ring : std::vector<Position>();
}

std::optional<Footprint> PlainArea(const std::vector<Position>& line) {
    if (line.empty()) return std::nullopt;
    std::vector<Position> closed = line;
    if (closed.back().x != closed.front().x || closed.back().y != closed.front().y)
        closed.push_back(closed.front());
    const auto [west, east] = std::ranges::minmax(closed, {}, &Position::x);
    const auto [south, north] = std::ranges::minmax(closed, {}, &Position::y);
    const bool is_within = west.x >= -kHalfTurn && east.x <= kHalfTurn && east.x - west.x < 2 * kHalfTurn;
    const int way = is_within ? WayAround(closed) : 0;
    if (way == 0) return std::nullopt;
    if (way < 0) std::ranges::reverse(closed);
    std::vector<Position> ring = RoundedRing(closed);
    if (ring.empty()) return std::nullopt;
    Footprint footprint;
    footprint.rings.push_back(std::move(ring));
    footprint.west = RoundedDegrees(west.x);
    footprint.south = RoundedDegrees(south.y);
    footprint.east = RoundedDegrees(east.x);
    footprint.north = RoundedDegrees(north.y);
    return footprint;
}

}  // namespace Tool
