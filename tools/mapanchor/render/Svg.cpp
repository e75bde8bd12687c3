#include "render/Svg.h"

#include <Tellurion/Numbers.h>
#include <Tellurion/Printable.h>
#include <Tellurion/XmlText.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Tool {

namespace {

constexpr const char* kStyle =
    "text{font:11px sans-serif;fill:#333}.title{font-weight:bold;font-size:14px}"
    ".small{font-size:9px;fill:#678}.fact{fill:#777}.corner{font-size:10px;fill:#700}"
    ".sea{fill:#eef5fa;stroke:none}.land{fill:#e3dfcc;stroke:none}.shore{fill:none;stroke:#a59f86;stroke-"
    "width:.6}"
    ".grid{fill:none;stroke:#9db2c2;stroke-width:.5}.frame{fill:none;stroke:#99a}"
    ".area{fill:#d33;fill-opacity:.3;stroke:#b00}.ring{fill:none;stroke:#b00;stroke-width:1.5}"
    ".raster{fill:#fafafa;stroke:#333}.edge{fill:none;stroke:#333}.first{fill:#b00}"
    ".label{paint-order:stroke;stroke:#fff;stroke-opacity:.85;stroke-width:3px;stroke-linejoin:round}"
    ".point{fill:#06c;stroke:#fff}.unused{fill:#fff;stroke:#06c}"
    ".arrow{stroke:#d50;stroke-width:1.5}.head{fill:#d50}"
    ".box{fill:none;stroke:#777;stroke-dasharray:4 2}.map{fill:#888;fill-opacity:.15;stroke:#555}"
    ".plate{fill:#fff;fill-opacity:.8;stroke:none}.bar{fill:#333}";

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
std::string Base64(const std::string& bytes) {
    constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        for (std::size_t k = 0; k < 4; ++k)
            text += i + k > bytes.size() ? '=' : kDigits[group >> (18 - 6 * k) & 63];
    }
    return text;
}

const char* AnchorAttribute(Svg::Anchor anchor) {
    switch (anchor) {
        case Svg::Anchor::Middle:
            return " text-anchor=\"middle\"";
        case Svg::Anchor::End:
            return " text-anchor=\"end\"";
        default:
            return "";
    }
}

std::string Points(const std::vector<Position>& positions) {
    std::string points;
    for (const Position& position : positions)
        points += (points.empty() ? "" : " ") + Number(position.x) + "," + Number(position.y);
    return points;
}

/// Where the next character of a UTF-8 text begins.
std::size_t AfterCharacter(const std::string& text, std::size_t at) {
    do
        ++at;
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80);
    return at;
}

/// East Asian characters, from U+1100 on, are about twice as wide as others.
double WidthOfCharacter(const std::string& text, std::size_t at) {
    constexpr double kWidth = 6.2;
    const auto lead = static_cast<unsigned char>(text[at]);
    const bool is_wide = lead > 0xE1 || (lead == 0xE1 && at + 1 < text.size() &&
                                         static_cast<unsigned char>(text[at + 1]) >= 0x84);
    return is_wide ? 2 * kWidth : kWidth;
}

}  // namespace

double WidthOf(const std::string& text) {
    double width = 0.0;
    for (std::size_t at = 0; at < text.size(); at = AfterCharacter(text, at))
        width += WidthOfCharacter(text, at);
    return width;
}

std::string FittedText(const std::string& text, double width) {
    const std::string whole = Tellurion::Printable(text);
    if (WidthOf(whole) <= width) return whole;
    std::string head;
    std::size_t at = 0;
    for (double used = 0.0; at < whole.size() && used < width / 2; at = AfterCharacter(whole, at))
        used += WidthOfCharacter(whole, at);
    head = whole.substr(0, at);
    std::size_t tail = at;
    while (tail < whole.size() && WidthOf(head) + WidthOf(whole.substr(tail)) > width)
        tail = AfterCharacter(whole, tail);
    return head + "…" + whole.substr(tail);
}

void Svg::Polygon(const std::vector<Position>& corners, const char* style) {
    shapes_ += "<polygon points=\"" + Points(corners) + "\"" + Class(style) + "/>\n";
}

void Svg::Polyline(const std::vector<Position>& points, const char* style) {
    shapes_ += "<polyline points=\"" + Points(points) + "\"" + Class(style) + "/>\n";
}

void Svg::Area(const std::vector<std::vector<Position>>& rings, const char* style) {
    std::string path;
    for (const auto& ring : rings)
        if (!ring.empty()) path += "M" + Points(ring) + "Z";
    if (!path.empty()) shapes_ += "<path fill-rule=\"evenodd\" d=\"" + path + "\"" + Class(style) + "/>\n";
}

void Svg::Lines(const std::vector<std::vector<Position>>& lines, const char* style) {
    std::string path;
    for (const auto& line : lines)
        path += "M" + Points(line);
    if (!path.empty()) shapes_ += "<path d=\"" + path + "\"" + Class(style) + "/>\n";
}

void Svg::Arrow(const Position& from, const Position& to) {
    constexpr double kHead = 7.0;
    constexpr double kHalfHead = 3.0;
    Line(from, to, "arrow");
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    if (!(length > 1.0)) return;
    const double head = std::min(kHead, length);
    const Position along{(to.x - from.x) / length, (to.y - from.y) / length};
    const Position back{to.x - along.x * head, to.y - along.y * head};
    Polygon({to,
             {back.x - along.y * kHalfHead, back.y + along.x * kHalfHead},
             {back.x + along.y * kHalfHead, back.y - along.x * kHalfHead}},
            "head");
}

void Svg::Picture(const Position& upper_left, double width, double height, const std::string& png) {
    shapes_ += "<image" + Attribute("x", upper_left.x) + Attribute("y", upper_left.y) +
               Attribute("width", width) + Attribute("height", height) + " preserveAspectRatio=\"none\"" +
               Class("picture") +
               " xmlns:xlink=\"http://www.w3.org/1999/xlink\" xlink:href=\"data:image/png;base64," +
               Base64(png) + "\"/>\n";
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

void Svg::Text(const Position& at, const std::string& text, const char* style, Anchor anchor) {
    shapes_ += "<text" + Attribute("x", at.x) + Attribute("y", at.y) + Class(style) +
               AnchorAttribute(anchor) + ">" + Tellurion::XmlEscaped(Tellurion::Printable(text)) +
               "</text>\n";
}

std::string Svg::ToText() const {
    const std::string size = Number(width_) + " " + Number(height_);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + size + "\"" +
           Attribute("width", width_) + Attribute("height", height_) + ">\n<style>" + kStyle + "</style>\n" +
           shapes_ + "</svg>\n";
}

}  // namespace Tool
