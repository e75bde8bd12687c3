#include "render/SurroundingsMap.h"

#include "render/Coast.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>

namespace Tool {

namespace {

constexpr double kTurn = 360.0;
constexpr double kPole = 90.0;

/// Whether a place is inside a ring, whatever turn the ring's longitudes are in.
bool IsInside(CoastRing ring, const Position& place) {
    if (std::fabs(ring.back().x - ring.front().x) > kTurn / 2) {
        ring.push_back({ring.back().x, -kPole});  // the only pole on land
        ring.push_back({ring.front().x, -kPole});
    }
    bool is_inside = false;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const Position& a = ring[i];
        const Position& b = ring[(i + 1) % ring.size()];
        if ((a.y > place.y) == (b.y > place.y)) continue;
        const double x = a.x + (b.x - a.x) * (place.y - a.y) / (b.y - a.y);
        // Every turn in which the crossing is east of the place changes sides.
        if (static_cast<long>(std::floor((x - place.x) / kTurn)) % 2 != 0) is_inside = !is_inside;
    }
    return is_inside;
}

/// The largest of 1, 2, 5, 10 ... that is not above a value.
double RoundStep(double value) {
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    const double lead = value / power;
    return (lead >= 5.0 ? 5.0 : lead >= 2.0 ? 2.0 : 1.0) * power;
}

double GraticuleStep(double span) {
    constexpr double kLines = 4.0;
    for (const double step : {30.0, 15.0, 10.0})
        if (span / kLines >= step) return step;
    return RoundStep(std::max(span / kLines, 1e-9));
}

std::string DegreesText(double degrees, int decimals, const char* positive, const char* negative) {
    const std::string text = Tellurion::PrintFixed(std::fabs(degrees), decimals);
    const bool is_zero = Tellurion::ParseDouble(text) == 0.0;
    return text + "°" + (is_zero ? "" : degrees < 0.0 ? negative : positive);
}

std::string LongitudeText(double longitude, int decimals) {
    return DegreesText(std::remainder(longitude, kTurn), decimals, " E", " W");
}

std::string LatitudeText(double latitude, int decimals) {
    return DegreesText(latitude, decimals, " N", " S");
}

int DecimalsOf(double step) {
    return static_cast<int>(std::clamp(std::ceil(-std::log10(step) - 1e-9), 0.0, 9.0));
}

}  // namespace

SurroundingsMap::SurroundingsMap(Svg& svg, const Panel& panel, const Stereographic& projection,
                                 const Position& middle, double width)
    : svg_(svg),
      labels_(svg),
      panel_(panel),
      projection_(projection),
      middle_(middle),
      scale_(panel.width / (width / kEarthRadius)) {}

Position SurroundingsMap::Onto(const Position& plane) const {
    const Position centre = panel_.Middle();
    return {centre.x + (plane.x - middle_.x) * scale_, centre.y - (plane.y - middle_.y) * scale_};
}

Position SurroundingsMap::At(const Position& place) const {
    return Onto(projection_.Forward(place));
}

std::vector<Position> SurroundingsMap::Onto(const std::vector<Position>& places) const {
    std::vector<Position> line;
    line.reserve(places.size());
    for (const Position& place : places)
        line.push_back(At(place));
    return line;
}

/// Where the opposite of the centre is on land, a ring around it has its inside outside on the
/// plane: the far ends of the plane are land.
void SurroundingsMap::DrawLand(bool has_coast) {
    svg_.Rectangle({panel_.left, panel_.top}, panel_.width, panel_.height, has_coast ? "sea" : "plate");
    if (!has_coast) return;
    const Position centre = projection_.Inverse({0.0, 0.0});
    const Position opposite{centre.x + kTurn / 2, -centre.y};
    bool is_inverted = false;
    std::vector<std::vector<Position>> areas;
    std::vector<std::vector<Position>> shores;
    for (const CoastRing& ring : ReadCoast(CoastScale::Of50Million)) {
        if (IsInside(ring, opposite)) is_inverted = !is_inverted;
        std::vector<Position> line = Thinned(Onto(ring));
        line.push_back(line.front());
        for (auto& part : ClippedLine(line, panel_))
            shores.push_back(std::move(part));
        line = ClippedArea(std::move(line), panel_);
        if (line.size() > 2) areas.push_back(std::move(line));
    }
    if (is_inverted)
        areas.push_back({{panel_.left, panel_.top},
                         {panel_.Right(), panel_.top},
                         {panel_.Right(), panel_.Bottom()},
                         {panel_.left, panel_.Bottom()}});
    svg_.Area(areas, "land");
    svg_.Lines(shores, "shore");
}

void SurroundingsMap::DrawGraticule() {
    constexpr int kSamples = 24;
    Position least = projection_.Inverse(middle_);
    Position most = least;
    const auto add = [&](const Position& place) {
        least = {std::min(least.x, place.x), std::min(least.y, place.y)};
        most = {std::max(most.x, place.x), std::max(most.y, place.y)};
    };
    for (int i = 0; i <= kSamples; ++i)
        for (int k = 0; k <= kSamples; ++k)
            add(projection_.Inverse({middle_.x + (i * 1.0 / kSamples - 0.5) * panel_.width / scale_,
                                     middle_.y + (k * 1.0 / kSamples - 0.5) * panel_.height / scale_}));
    const double longitude = projection_.Inverse({0.0, 0.0}).x;
    for (const double pole : {-kPole, kPole}) {
        if (!panel_.Contains(At({longitude, pole}))) continue;
        add({longitude - kTurn / 2, pole});
        add({longitude + kTurn / 2, pole});
    }
    DrawMeridians(least, most, GraticuleStep(most.x - least.x));
    DrawParallels(least, most, GraticuleStep(most.y - least.y));
}

void SurroundingsMap::DrawMeridians(const Position& least, const Position& most, double step) {
    constexpr int kParts = 64;
    constexpr double kMostPole = 89.999;
    const double last = std::min(std::floor(most.x / step), std::ceil(least.x / step) + kTurn / step - 1);
    const double south = std::max(least.y - step, -kMostPole);
    const double north = std::min(most.y + step, kMostPole);
    // NOLINTNEXTLINE(clang-analyzer-security.FloatLoopCounter): whole numbers of any size
    for (double i = std::ceil(least.x / step); i <= last; ++i) {
        std::vector<Position> line;
        for (int k = 0; k <= kParts; ++k)
            line.push_back({i * step, south + (north - south) * k / kParts});
        DrawLine(line, LongitudeText(i * step, DecimalsOf(step)), true);
    }
}

void SurroundingsMap::DrawParallels(const Position& least, const Position& most, double step) {
    constexpr int kParts = 180;
    // NOLINTNEXTLINE(clang-analyzer-security.FloatLoopCounter): whole numbers of any size
    for (double i = std::ceil(least.y / step); i <= std::floor(most.y / step); ++i) {
        if (std::fabs(i * step) >= kPole) continue;
        std::vector<Position> line;
        for (int k = 0; k <= kParts; ++k)
            line.push_back({least.x + (most.x - least.x) * k / kParts, i * step});
        DrawLine(line, LatitudeText(i * step, DecimalsOf(step)), false);
    }
}

/// Meridians have their label at the lower edge of the panel, parallels at the left one.
void SurroundingsMap::DrawLine(const std::vector<Position>& places, const std::string& label,
                               bool is_meridian) {
    constexpr double kNear = 1.0;
    constexpr double kGap = 4.0;
    for (const auto& part : ClippedLine(Onto(places), panel_)) {
        svg_.Polyline(part, "grid");
        for (const Position& end : {part.front(), part.back()}) {
            if (is_meridian && end.y > panel_.Bottom() - kNear)
                graticule_labels_.push_back({{end.x + kGap / 2, panel_.Bottom() - kGap}, label});
            else if (!is_meridian && end.x < panel_.left + kNear)
                graticule_labels_.push_back({{panel_.left + kGap, end.y - kGap / 2}, label});
        }
    }
}

void SurroundingsMap::DrawOutline(const std::vector<Position>& outline) {
    const std::vector<Position> area = ClippedArea(Onto(outline), panel_);
    if (area.size() > 2) svg_.Polygon(area, "area");
}

void SurroundingsMap::DrawCorner(const Position& place, bool is_first) {
    constexpr double kGap = 5.0;
    constexpr double kRadius = 3.0;
    const Position at = At(place);
    const Position centre = panel_.Middle();
    if (!panel_.Contains(at)) return;
    if (is_first) svg_.Circle(at, kRadius, "first");
    // Enough digits for a thousandth of the panel.
    const int decimals = DecimalsOf(panel_.width / scale_ / kDegree / 1000);
    const std::vector<std::string> lines = {LongitudeText(place.x, decimals),
                                            LatitudeText(place.y, decimals)};
    const bool is_left = at.x < centre.x;
    const bool is_above = at.y < centre.y;
    const auto anchor = is_left ? Svg::Anchor::End : Svg::Anchor::Start;
    Position text{at.x + (is_left ? -kGap : kGap),
                  at.y + (is_above ? -kGap - Labels::kLineHeight : kGap + Labels::kLineHeight)};
    constexpr int kTries = 4;  // where another label is, further away
    for (int i = 0; i < kTries && !labels_.Add(text, lines, "corner", anchor); ++i)
        text.y += is_above ? -Labels::kLineHeight : Labels::kLineHeight;
}

void SurroundingsMap::DrawRing() {
    constexpr double kRadius = 9.0;
    svg_.Circle(panel_.Middle(), kRadius, "ring");
}

void SurroundingsMap::DrawScaleBar() {
    constexpr double kShare = 0.25;
    constexpr double kGap = 10.0;
    constexpr double kBar = 3.0;
    constexpr double kPlate = 22.0;
    constexpr double kMetres = 1000.0;
    const double length = RoundStep(panel_.width * kShare / scale_ * kEarthRadius);
    const double width = length / kEarthRadius * scale_;
    std::string text = length >= 1.0 ? Tellurion::PrintShortest(length) + " km"
                                     : Tellurion::PrintShortest(length * kMetres) + " m";
    constexpr double kWide = 2000.0;  // the scale differs much from place to place
    if (length >= kWide) text += " in the middle";
    const double plate = std::max(width, WidthOf(text));
    const Position corner{panel_.Right() - kGap - plate, panel_.top + kGap};
    const Panel behind{corner.x - kGap / 2, corner.y - kGap / 2, plate + kGap, kPlate + kGap / 2};
    svg_.Rectangle({behind.left, behind.top}, behind.width, behind.height, "plate");
    labels_.Keep(behind);
    svg_.Text({corner.x + plate / 2, corner.y + kGap}, text, "label", Svg::Anchor::Middle);
    svg_.Rectangle({corner.x + (plate - width) / 2, corner.y + kPlate - kGap}, width, kBar, "bar");
}

void SurroundingsMap::DrawFrame() {
    for (const auto& [at, text] : graticule_labels_)
        if (at.x + WidthOf(text) <= panel_.Right()) labels_.Add(at, text, "small");
    svg_.Rectangle({panel_.left, panel_.top}, panel_.width, panel_.height, "frame");
}

}  // namespace Tool
