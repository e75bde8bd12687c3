#include "render/Panel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace Tool {

namespace {

/// One edge of a panel: positive distances are inside.
struct Edge {
    bool is_across = false;  ///< measured along x
    double at = 0.0;
    double sign = 1.0;

    double DistanceOf(const Position& position) const {
        return sign * ((is_across ? position.x : position.y) - at);
    }
};

std::array<Edge, 4> EdgesOf(const Panel& panel) {
    return {Edge{true, panel.left, 1.0}, Edge{true, panel.Right(), -1.0}, Edge{false, panel.top, 1.0},
            Edge{false, panel.Bottom(), -1.0}};
}

Position Between(const Position& a, const Position& b, double share) {
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
}

/// The part of a segment that is inside, as shares of its length.
std::optional<std::pair<double, double>> InsideOf(const Position& a, const Position& b, const Panel& panel) {
    double first = 0.0;
    double last = 1.0;
    for (const Edge& edge : EdgesOf(panel)) {
        const double from = edge.DistanceOf(a);
        const double to = edge.DistanceOf(b);
        if (from < 0.0 && to < 0.0) return std::nullopt;
        if (from < 0.0) first = std::max(first, from / (from - to));
        if (to < 0.0) last = std::min(last, from / (from - to));
    }
    return first <= last ? std::optional(std::pair(first, last)) : std::nullopt;
}

}  // namespace

std::vector<Position> ClippedArea(std::vector<Position> ring, const Panel& panel) {
    for (const Edge& edge : EdgesOf(panel)) {
        std::vector<Position> inside;
        for (std::size_t i = 0; i < ring.size(); ++i) {
            const Position& a = ring[i];
            const Position& b = ring[(i + 1) % ring.size()];
            const double from = edge.DistanceOf(a);
            const double to = edge.DistanceOf(b);
            if (from >= 0.0) inside.push_back(a);
            if ((from < 0.0) != (to < 0.0)) inside.push_back(Between(a, b, from / (from - to)));
        }
        ring = std::move(inside);
    }
    return ring;
}

std::vector<std::vector<Position>> ClippedLine(const std::vector<Position>& line, const Panel& panel) {
    std::vector<std::vector<Position>> parts;
    bool goes_on = false;
    for (std::size_t i = 1; i < line.size(); ++i) {
        const auto inside = InsideOf(line[i - 1], line[i], panel);
        if (inside) {
            if (!goes_on || inside->first > 0.0)
                parts.push_back({Between(line[i - 1], line[i], inside->first)});
            parts.back().push_back(Between(line[i - 1], line[i], inside->second));
        }
        goes_on = inside && inside->second >= 1.0;
    }
    return parts;
}

std::vector<Position> Thinned(const std::vector<Position>& line) {
    constexpr double kSeen = 0.4;
    std::vector<Position> thinned;
    for (const Position& at : line)
        if (thinned.empty() || std::hypot(at.x - thinned.back().x, at.y - thinned.back().y) >= kSeen)
            thinned.push_back(at);
    return thinned;
}

bool Labels::Add(const Position& at, const std::string& text, const char* style, Svg::Anchor anchor) {
    return Add(at, std::vector{text}, style, anchor);
}

bool Labels::Add(const Position& at, const std::vector<std::string>& lines, const char* style,
                 Svg::Anchor anchor) {
    constexpr double kAbove = 9.0;
    double width = 0.0;
    for (const std::string& line : lines)
        width = std::max(width, WidthOf(line));
    const double shift = anchor == Svg::Anchor::Start ? 0.0 : anchor == Svg::Anchor::End ? width : width / 2;
    const Panel box{at.x - shift, at.y - kAbove, width,
                    kLineHeight * static_cast<double>(lines.size()) - 1.0};
    if (std::ranges::any_of(used_, [&](const Panel& other) { return other.Overlaps(box); })) return false;
    used_.push_back(box);
    double y = at.y;
    for (const std::string& line : lines) {
        svg_.Text({at.x, y}, line, style, anchor);
        y += kLineHeight;
    }
    return true;
}

}  // namespace Tool
