#include "render/Views.h"

#include <algorithm>
#include <cmath>

namespace Tool {

namespace {

constexpr double kPerDegree = kViewWidth / 360.0;
constexpr int kGraticule = 30;

using Shore = std::vector<Position>;

/// Land to within a few degrees: enough to see which continent is meant.
const std::vector<Shore>& Land() {
    static const std::vector<Shore> land = {
        // North America, Greenland, South America
        {{-168, 65}, {-157, 71}, {-125, 70}, {-95, 72},  {-82, 68},  {-94, 60},  {-93, 57},
         {-82, 53},  {-78, 52},  {-77, 62},  {-65, 58},  {-56, 52},  {-66, 45},  {-70, 42},
         {-76, 35},  {-81, 31},  {-80, 25},  {-84, 30},  {-97, 27},  {-97, 20},  {-87, 21},
         {-88, 16},  {-83, 10},  {-78, 8},   {-85, 11},  {-105, 20}, {-112, 29}, {-117, 33},
         {-124, 40}, {-124, 48}, {-135, 58}, {-150, 60}, {-165, 55}, {-162, 60}},
        {{-73, 78}, {-60, 82}, {-30, 83}, {-20, 75}, {-25, 70}, {-43, 60}, {-52, 65}, {-55, 70}},
        {{-78, 8},
         {-72, 12},
         {-60, 9},
         {-50, 0},
         {-35, -6},
         {-39, -15},
         {-48, -27},
         {-58, -36},
         {-65, -42},
         {-69, -53},
         {-75, -50},
         {-73, -37},
         {-70, -18},
         {-81, -5},
         {-80, 2}},
        // Africa, Madagascar
        {{-6, 36},
         {10, 37},
         {20, 32},
         {33, 31},
         {37, 22},
         {43, 12},
         {51, 12},
         {40, -3},
         {40, -15},
         {33, -27},
         {20, -35},
         {12, -18},
         {13, -5},
         {9, 4},
         {-8, 5},
         {-17, 15},
         {-13, 27}},
        {{44, -25}, {44, -17}, {49, -12}, {50, -16}, {47, -25}},
        // Europe and Asia
        {{-9, 37},  {-9, 43},  {-2, 43},  {-4, 48},  {4, 52},   {8, 57},   {10, 54},  {20, 55},  {24, 59},
         {30, 60},  {22, 61},  {25, 65},  {17, 61},  {18, 59},  {13, 55},  {5, 59},   {6, 62},   {15, 68},
         {28, 71},  {42, 67},  {60, 69},  {75, 72},  {105, 77}, {140, 73}, {180, 69}, {180, 65}, {163, 58},
         {157, 51}, {156, 57}, {163, 62}, {143, 59}, {135, 54}, {141, 52}, {130, 42}, {127, 35}, {122, 40},
         {118, 38}, {122, 31}, {110, 21}, {106, 10}, {100, 13}, {104, 1},  {98, 9},   {94, 17},  {89, 22},
         {80, 15},  {77, 8},   {73, 20},  {66, 25},  {57, 26},  {50, 30},  {48, 29},  {56, 24},  {59, 22},
         {45, 13},  {43, 13},  {35, 28},  {35, 36},  {27, 37},  {26, 40},  {40, 42},  {38, 46},  {31, 46},
         {23, 38},  {20, 40},  {13, 45},  {18, 40},  {16, 38},  {9, 44},   {3, 43},   {-2, 37}},
        {{-5, 50}, {1, 51}, {0, 53}, {-3, 58}, {-6, 57}, {-3, 54}},
        {{-24, 65}, {-15, 66}, {-15, 64}, {-22, 64}},
        {{130, 32}, {136, 34}, {141, 36}, {141, 41}, {145, 44}, {141, 45}, {139, 38}},
        // Islands of the south east, Australia, New Zealand
        {{95, 5}, {104, -2}, {106, -6}, {101, -3}},
        {{109, 1}, {117, 7}, {116, -4}, {110, -3}},
        {{131, -1}, {141, -3}, {150, -10}, {138, -8}},
        {{114, -22},
         {122, -18},
         {131, -12},
         {136, -12},
         {140, -17},
         {142, -11},
         {153, -26},
         {150, -37},
         {140, -38},
         {131, -32},
         {115, -34}},
        {{167, -46}, {172, -41}, {173, -35}, {178, -38}, {174, -41}, {171, -45}},
        // Antarctica
        {{-180, -78},
         {-150, -77},
         {-100, -72},
         {-60, -64},
         {-60, -75},
         {-20, -72},
         {40, -69},
         {90, -66},
         {140, -67},
         {170, -72},
         {180, -78},
         {180, -90},
         {-180, -90}}};
    return land;
}

class World {
public:
    World(Svg& svg, double top) : svg_(svg), top_(top) {}

    void DrawGraticule() const {
        for (int longitude = -180; longitude <= 180; longitude += kGraticule) {
            svg_.Line(At({longitude * 1.0, 90}), At({longitude * 1.0, -90}), "grid");
            svg_.Text(At({longitude - 5.0, -97}), std::to_string(longitude), "label");
        }
        for (int latitude = -60; latitude <= 60; latitude += kGraticule) {
            svg_.Line(At({-180, latitude * 1.0}), At({180, latitude * 1.0}), "grid");
            svg_.Text(At({-179, latitude + 1.0}), std::to_string(latitude), "label");
        }
    }
    void DrawShapes(const std::vector<std::vector<Position>>& shapes, const char* style) const {
        for (const auto& shape : shapes) {
            std::vector<Position> corners;
            corners.reserve(shape.size());
            for (const Position& corner : shape)
                corners.push_back(At(corner));
            svg_.Polygon(corners, style);
        }
    }
    void DrawSea() const { svg_.Rectangle(At({-180, 90}), kViewWidth, kViewWidth / 2, "sea"); }
    /// A small area would be lost on the map.
    void DrawRing(const Footprint& area) const {
        constexpr double kSmall = 6.0;  // degrees
        constexpr double kRadius = 9.0;
        const double width = area.west <= area.east ? area.east - area.west : area.east - area.west + 360.0;
        if (std::max(width, area.north - area.south) > kSmall) return;
        svg_.Circle(At({area.west + width / 2, (area.south + area.north) / 2}), kRadius, "ring");
    }

private:
    Position At(const Position& place) const {
        return {kMargin + (place.x + 180.0) * kPerDegree, top_ + (90.0 - place.y) * kPerDegree};
    }

    Svg& svg_;
    double top_;
};

}  // namespace

double DrawWorld(Svg& svg, double top, const std::optional<Footprint>& footprint) {
    const World world(svg, top);
    world.DrawSea();
    world.DrawShapes(Land(), "land");
    world.DrawGraticule();
    if (footprint) {
        world.DrawShapes(footprint->rings, "area");
        world.DrawRing(*footprint);
    }
    return kViewWidth / 2 + 2 * kLine;
}

}  // namespace Tool
