#pragma once

#include "render/Panel.h"
#include "render/Stereographic.h"

#include <string>
#include <vector>

namespace Tool {

/// A map of a part of the Earth in a panel, true to scale in its middle.
class SurroundingsMap {
public:
    /// `middle` is shown in the middle of the panel, which is `width` kilometres wide.
    SurroundingsMap(Svg& svg, const Panel& panel, const Stereographic& projection, const Position& middle,
                    double width);

    /// Sea and land; without a coast the panel stays white.
    void DrawLand(bool has_coast);
    void DrawGraticule();
    void DrawOutline(const std::vector<Position>& outline);
    /// Longitude and latitude in two lines, on the side that is away from the middle of the map.
    void DrawCorner(const Position& place, bool is_first);
    void DrawRing();
    void DrawScaleBar();
    /// The frame, and the labels of the graticule where there is no other text.
    void DrawFrame();

private:
    struct Label {
        Position at;
        std::string text;
    };

    Position At(const Position& place) const;
    Position Onto(const Position& plane) const;
    std::vector<Position> Onto(const std::vector<Position>& places) const;
    void DrawMeridians(const Position& least, const Position& most, double step);
    void DrawParallels(const Position& least, const Position& most, double step);
    void DrawLine(const std::vector<Position>& places, const std::string& label, bool is_meridian);

    Svg& svg_;
    Labels labels_;
    std::vector<Label> graticule_labels_;
    Panel panel_;
    Stereographic projection_;
    Position middle_;  ///< on the plane
    double scale_;     ///< units of the drawing per Earth radius
};

}  // namespace Tool
