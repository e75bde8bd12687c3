#pragma once

#include "render/Svg.h"

#include <vector>

namespace Tool {

/// A rectangle of a drawing that shows a part of a plane; y grows downwards.
struct Panel {
    double left = 0.0;
    double top = 0.0;
    double width = 0.0;
    double height = 0.0;

    double Right() const { return left + width; }
    double Bottom() const { return top + height; }
    Position Middle() const { return {left + width / 2, top + height / 2}; }
    bool Contains(const Position& at) const {
        return at.x >= left && at.x <= Right() && at.y >= top && at.y <= Bottom();
    }
    bool Overlaps(const Panel& other) const {
        return left < other.Right() && other.left < Right() && top < other.Bottom() && other.top < Bottom();
    }
};

/// The part of an area that is inside. Parts that are connected outside are connected along the edge.
std::vector<Position> ClippedArea(std::vector<Position> ring, const Panel& panel);
/// The parts of a line that are inside.
std::vector<std::vector<Position>> ClippedLine(const std::vector<Position>& line, const Panel& panel);

/// Without the points that are too near to the one before to be seen.
std::vector<Position> Thinned(const std::vector<Position>& line);

/// The texts of a drawing, of which none is printed on another.
class Labels {
public:
    explicit Labels(Svg& svg) : svg_(svg) {}

    /// False, with nothing drawn, where there is another.
    bool Add(const Position& at, const std::string& text, const char* style,
             Svg::Anchor anchor = Svg::Anchor::Start);
    /// Several lines, of which each is below the one before; all or none.
    bool Add(const Position& at, const std::vector<std::string>& lines, const char* style,
             Svg::Anchor anchor = Svg::Anchor::Start);
    /// Keeps texts out of there.
    void Keep(const Panel& panel) { used_.push_back(panel); }

    static constexpr double kLineHeight = 12.0;

private:
    Svg& svg_;
    std::vector<Panel> used_;
};

}  // namespace Tool
