#include "render/Svg.h"

#include <Tellurion/Numbers.h>
#include <Tellurion/Printable.h>

namespace Tool {

namespace {

constexpr const char* kStyle =
    "text{font:11px sans-serif;fill:#333}.title{font-weight:bold;font-size:14px}"
    ".sea{fill:#eef5fa;stroke:#99a}.land{fill:#d9d6c3;stroke:none}.grid{stroke:#b8c4cc;stroke-width:.5}"
    ".area{fill:#d33;fill-opacity:.35;stroke:#b00}.ring{fill:none;stroke:#b00;stroke-width:1.5}"
    ".raster{fill:#fafafa;stroke:#333}.point{fill:#06c}.unused{fill:none;stroke:#06c}"
    ".arrow{stroke:#d60;stroke-width:1.5}.box{fill:none;stroke:#777;stroke-dasharray:4 2}"
    ".map{fill:#888;fill-opacity:.15;stroke:#555}";

std::string Number(double value) {
    return Tellurion::PrintFixed(value, 2);
}

std::string Attribute(const char* name, double value) {
    return " " + std::string(name) + "=\"" + Number(value) + "\"";
}

std::string Class(const char* style) {
    return " class=\"" + std::string(style) + "\"";
}

/// Well-formed whatever the bytes are: XML forbids most of what is not printable.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : Tellurion::Printable(text)) {
        if (c == '<')
            escaped += "&lt;";
        else if (c == '>')
            escaped += "&gt;";
        else if (c == '&')
            escaped += "&amp;";
        else
            escaped += c;
    }
    return escaped;
}

}  // namespace

void Svg::Polygon(const std::vector<Position>& corners, const char* style) {
    std::string points;
    for (const Position& corner : corners)
        points += (points.empty() ? "" : " ") + Number(corner.x) + "," + Number(corner.y);
    shapes_ += "<polygon points=\"" + points + "\"" + Class(style) + "/>\n";
}

void Svg::Rectangle(const Position& upper_left, double width, double height, const char* style) {
    shapes_ += "<rect" + Attribute("x", upper_left.x) + Attribute("y", upper_left.y) +
               Attribute("width", width) + Attribute("height", height) + Class(style) + "/>\n";
}

void Svg::Line(const Position& from, const Position& to, const char* style) {
    shapes_ += "<line" + Attribute("x1", from.x) + Attribute("y1", from.y) + Attribute("x2", to.x) +
               Attribute("y2", to.y) + Class(style) + "/>\n";
}

void Svg::Circle(const Position& centre, double radius, const char* style) {
    shapes_ += "<circle" + Attribute("cx", centre.x) + Attribute("cy", centre.y) + Attribute("r", radius) +
               Class(style) + "/>\n";
}

void Svg::Text(const Position& at, const std::string& text, const char* style) {
    shapes_ += "<text" + Attribute("x", at.x) + Attribute("y", at.y) + Class(style) + ">" + Escaped(text) +
               "</text>\n";
}

std::string Svg::ToText() const {
    const std::string size = Number(width_) + " " + Number(height_);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + size + "\"" +
           Attribute("width", width_) + Attribute("height", height_) + ">\n<style>" + kStyle + "</style>\n" +
           shapes_ + "</svg>\n";
}

}  // namespace Tool
