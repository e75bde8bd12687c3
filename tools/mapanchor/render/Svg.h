#pragma once

#include "read/Conversion.h"

#include <string>
#include <vector>

namespace Tool {

/// A drawing put together shape by shape; the style of a shape is a class of the style sheet.
class Svg {
public:
    /// Where a text is from its position.
    enum class Anchor { Start, Middle, End };

    Svg(double width, double height) : width_(width), height_(height) {}

    void Polygon(const std::vector<Position>& corners, const char* style);
    /// One area of several rings: what an even number of them surround is outside.
    void Area(const std::vector<std::vector<Position>>& rings, const char* style);
    void Polyline(const std::vector<Position>& points, const char* style);
    void Lines(const std::vector<std::vector<Position>>& lines, const char* style);
    void Rectangle(const Position& upper_left, double width, double height, const char* style);
    void Line(const Position& from, const Position& to, const char* style);
    /// A line with a head at `to`.
    void Arrow(const Position& from, const Position& to);
    void Circle(const Position& centre, double radius, const char* style);
    void Text(const Position& at, const std::string& text, const char* style, Anchor anchor = Anchor::Start);
    /// The bytes of a PNG file, stretched to the rectangle.
    void Picture(const Position& upper_left, double width, double height, const std::string& png);
    /// The drawing ends there.
    void CutBelow(double height) { height_ = height; }
    /// The whole file.
    std::string ToText() const;

private:
    double width_;
    double height_;
    std::string shapes_;
};

/// About how wide a text is drawn.
double WidthOf(const std::string& text);
/// The text, or its beginning and its end where it is wider.
std::string FittedText(const std::string& text, double width);

}  // namespace Tool
