#pragma once

#include "read/Conversion.h"

#include <string>
#include <vector>

namespace Tool {

/// A drawing put together shape by shape; the style of a shape is a class of the style sheet.
class Svg {
public:
    Svg(double width, double height) : width_(width), height_(height) {}

    void Polygon(const std::vector<Position>& corners, const char* style);
    void Rectangle(const Position& upper_left, double width, double height, const char* style);
    void Line(const Position& from, const Position& to, const char* style);
    void Circle(const Position& centre, double radius, const char* style);
    void Text(const Position& at, const std::string& text, const char* style);
    /// The drawing ends there.
    void CutBelow(double height) { height_ = height; }
    /// The whole file.
    std::string ToText() const;

private:
    double width_;
    double height_;
    std::string shapes_;
};

}  // namespace Tool
