#include "render/Coast.h"
#include "render/Views.h"

#include <algorithm>
#include <cmath>

namespace Tool {

namespace {

constexpr double kWidth = 360.0;
constexpr double kPerDegree = kWidth / 360.0;
constexpr int kGraticule = 30;
constexpr int kLabelled = 60;

class World {
public:
    World(Svg& svg, double top) : svg_(svg), panel_{kMargin, top, kWidth, kWidth / 2} {}

    void Draw() const {
        svg_.Rectangle({panel_.left, panel_.top}, panel_.width, panel_.height, "sea");
        DrawLand();
        for (int longitude = -180; longitude <= 180; longitude += kGraticule) {
            svg_.Line(At({longitude * 1.0, 90}), At({longitude * 1.0, -90}), "grid");
            if (longitude % kLabelled == 0)
                svg_.Text({At({longitude * 1.0, 0}).x, panel_.Bottom() + 10}, std::to_string(longitude),
                          "small", Svg::Anchor::Middle);
        }
        for (int latitude = -60; latitude <= 60; latitude += kGraticule) {
            svg_.Line(At({-180, latitude * 1.0}), At({180, latitude * 1.0}), "grid");
            svg_.Text({panel_.left - 2, At({0, latitude * 1.0}).y + 3}, std::to_string(latitude), "small",
                      Svg::Anchor::End);
        }
    }
    void DrawAreas(const std::vector<std::vector<Position>>& shapes) const {
        for (const auto& shape : shapes)
            svg_.Polygon(OnPanel(shape, 0.0), "area");
    }
    /// A small area would be lost on the map.
    void DrawRing(const Position& place) const {
        constexpr double kRadius = 8.0;
        svg_.Circle(At({std::remainder(place.x, 360.0), place.y}), kRadius, "ring");
    }
    void DrawFrame() const {
        svg_.Rectangle({panel_.left, panel_.top}, panel_.width, panel_.height, "frame");
    }

private:
    Position At(const Position& place) const {
        return {panel_.left + (place.x + 180.0) * kPerDegree, panel_.top + (90.0 - place.y) * kPerDegree};
    }
    std::vector<Position> OnPanel(const std::vector<Position>& places, double shift) const {
        std::vector<Position> corners;
        corners.reserve(places.size());
        for (const Position& place : places)
            corners.push_back(At({place.x + shift, place.y}));
        return corners;
    }
    /// Rings run on past the antimeridian, so that they are drawn a turn to the east, too.
    void DrawLand() const {
        std::vector<std::vector<Position>> areas;
        std::vector<std::vector<Position>> shores;
        for (CoastRing& ring : ReadCoast(CoastScale::Of110Million)) {
            if (std::fabs(ring.back().x - ring.front().x) > 180.0) {
                ring.push_back({ring.back().x, -90.0});  // the only pole on land
                ring.push_back({ring.front().x, -90.0});
            }
            for (const double shift : {0.0, 360.0}) {
                std::vector<Position> line = Thinned(OnPanel(ring, shift));
                auto area = ClippedArea(line, panel_);
                line.push_back(line.front());
                for (auto& part : ClippedLine(line, panel_))
                    shores.push_back(std::move(part));
                if (area.size() > 2) areas.push_back(std::move(area));
            }
        }
        svg_.Area(areas, "land");
        svg_.Lines(shores, "shore");
    }

    Svg& svg_;
    Panel panel_;
};

std::optional<Position> MiddleOfSmall(const Footprint& area) {
    constexpr double kSmall = 8.0;  // degrees
    const double width = area.west <= area.east ? area.east - area.west : area.east - area.west + 360.0;
    if (std::max(width, area.north - area.south) > kSmall) return std::nullopt;
    return Position{area.west + width / 2, (area.south + area.north) / 2};
}

}  // namespace

std::optional<Position> PreviewSubject::PlaceAt(const Position& pixel) const {
    const auto world = to_place ? WorldAt(result, pixel) : std::nullopt;
    return world ? to_place->Convert(*world) : std::nullopt;
}

double DrawWorld(Svg& svg, double top, const PreviewSubject& subject) {
    constexpr double kGap = 24.0;
    constexpr double kPole = 90.0;
    const double right = kMargin + kViewWidth;
    // Without an area, at least one pixel may have a place.
    const auto place = subject.footprint ? MiddleOfSmall(*subject.footprint) : subject.PlaceAt({0.0, 0.0});
    const bool is_on_earth = subject.footprint || (place && std::fabs(place->y) <= kPole);
    if (!is_on_earth) return DrawFacts(svg, kMargin, right, top, subject) + kLine;
    const World world(svg, top);
    world.Draw();
    if (subject.footprint) world.DrawAreas(subject.footprint->rings);
    if (place) world.DrawRing(*place);
    world.DrawFrame();
    const double facts = DrawFacts(svg, kMargin + kWidth + kGap, right, top, subject);
    return std::max(facts, kWidth / 2 + kLine) + kLine;
}

}  // namespace Tool
