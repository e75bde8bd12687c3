#include "render/Outline.h"

#include <cmath>

namespace Tool {

namespace {

constexpr double kTurn = 360.0;

struct Station {
    Position pixel;
    std::optional<Position> place;
};

Position Halfway(const Position& a, const Position& b) {
    return {(a.x + b.x) / 2, (a.y + b.y) / 2};
}

/// The place on the turn that is nearest to `before`.
Position Unwound(Position place, const Position& before) {
    place.x = before.x + std::remainder(place.x - before.x, kTurn);
    return place;
}

class Tracer {
public:
    explicit Tracer(const PlaceOf& place_of) : place_of_(place_of) {}

    Station At(const Position& pixel) const { return {pixel, place_of_(pixel)}; }
    void Add(const Station& station) {
        if (!station.place) return;
        line_.push_back(line_.empty() ? *station.place : Unwound(*station.place, line_.back()));
    }
    /// Adds the points between two stations and the second one.
    void Walk(const Station& from, const Station& to, int depth = 0) {
        const Station middle = At(Halfway(from.pixel, to.pixel));
        if (!IsFineEnough(from, middle, to, depth)) {
            Walk(from, middle, depth + 1);
            Walk(middle, to, depth + 1);
        } else {
            Add(to);
        }
    }
    std::vector<Position> TakeLine() { return std::move(line_); }

private:
    /// Near a pole a short way may be half a turn, which must not be taken for the other half.
    static bool IsFineEnough(const Station& from, const Station& middle, const Station& to, int depth) {
        constexpr int kLeastDepth = 3;
        constexpr int kMostDepth = 6;
        constexpr int kMostDepthNearPole = 14;
        constexpr double kWide = 60.0;
        constexpr double kStraight = 1e-7;  // of a degree: a centimetre
        if (depth < kLeastDepth) return false;
        if (!from.place || !middle.place || !to.place) return depth >= kMostDepth;
        const Position there = Unwound(*middle.place, *from.place);
        const Position end = Unwound(*to.place, there);
        if (std::fabs(end.x - from.place->x) > kWide) return depth >= kMostDepthNearPole;
        const Position chord = Halfway(*from.place, end);
        return depth >= kMostDepth || std::hypot(there.x - chord.x, there.y - chord.y) <= kStraight;
    }

    const PlaceOf& place_of_;
    std::vector<Position> line_;
};

}  // namespace

std::vector<Position> TraceOutline(const RasterFrame& frame, const PlaceOf& place_of) {
    Tracer tracer(place_of);
    const Station corners[] = {tracer.At(frame.At(0, 0)), tracer.At(frame.At(0, 1)),
                               tracer.At(frame.At(1, 1)), tracer.At(frame.At(1, 0))};
    tracer.Add(corners[0]);
    for (std::size_t i = 0; i < std::size(corners); ++i)
        tracer.Walk(corners[i], corners[(i + 1) % std::size(corners)]);
    std::vector<Position> line = tracer.TakeLine();
    if (!line.empty() && !corners[0].place) line.push_back(Unwound(line.front(), line.back()));
    return line;
}

}  // namespace Tool
