#include "export/ViewportText.h"

#include "export/UnitNames.h"
#include "objects/PdfText.h"

#include <algorithm>
#include <initializer_list>

namespace MapAnchor {

using PoDoFo::PdfReference;
using Tellurion::BString;
using VellumLib::PreciseDigits;

namespace {

std::string Numbers(const std::vector<double>& numbers) {
    std::string text = "[";
    for (const double number : numbers)
        text.append(" ").append(PreciseDigits(number));
    return text.append(" ]");
}

}  // namespace

std::string ReferenceText(const PdfReference& reference) {
    return std::to_string(reference.ObjectNumber()) + " " + std::to_string(reference.GenerationNumber()) +
           " R";
}

std::string StringText(const BString& text) {
    const std::u16string& units = text.GetUnits();
    const bool ascii = std::ranges::all_of(units, [](char16_t unit) { return unit >= 0x20 && unit < 0x7F; });
    std::string out = ascii ? "(" : "<FEFF";
    for (const char16_t unit : units) {
        if (ascii) {
            if (unit == '(' || unit == ')' || unit == '\\') out += '\\';
            out += static_cast<char>(unit);
            continue;
        }
        for (int shift = 12; shift >= 0; shift -= 4)
            out += "0123456789ABCDEF"[unit >> shift & 0xF];
    }
    return out + (ascii ? ")" : ">");
}

std::string ViewportText(const MapToWrite& map, const PdfReference& measure) {
    const double shrunk = std::min(1.0, kLongestEdge / std::max(map.width, map.height));
    const std::string box = Numbers({map.origin[0], map.origin[1], map.origin[0] + map.width * shrunk,
                                     map.origin[1] + map.height * shrunk});
    return "<< /Type /Viewport /Name " + StringText(map.name) + " /BBox " + box + " /Measure " +
           ReferenceText(measure) + " >>";
}

std::string MeasureText(const MapToWrite& map, const PdfReference& system) {
    std::vector<double> local;
    std::vector<double> ground;
    for (std::size_t i = 0; i < map.points.pixels.size(); ++i) {
        const auto& pixel = map.points.pixels[i];
        const auto& world = map.points.worlds[i];
        local.insert(local.end(), {pixel.x / map.width, 1.0 - pixel.y / map.height});
        ground.insert(ground.end(), {world.y, world.x});
    }
    const VellumLib::UnitNames& units =
        VellumLib::UnitNamesOf(QString::fromUtf8(std::string(map.unit_name.Utf8()).c_str()));
    const std::string linear(units.linear);
    return "<< /Type /Measure /Subtype /GEO /Bounds [ 0 0 0 1 1 1 1 0 ] /GCS " + ReferenceText(system) +
           "\n/GPTS " + Numbers(ground) + "\n/LPTS " + Numbers(local) + "\n/PDU [ /" + linear + " /" +
           units.area + " /" + units.angular + " ] >>";
}

std::string SystemText(const MapToWrite& map) {
    const std::string type = map.projected ? "PROJCS" : "GEOGCS";
    std::string text = "<< /Type /" + type;
    const std::string code = map.system_code.StdStr();
    const std::string number = code.substr(std::min(code.size(), code.find(':') + 1));
    if (!number.empty() && number.size() < 10 && number.find_first_not_of("0123456789") == std::string::npos)
        text += " /EPSG " + number;
    return text + " /WKT " + StringText(map.system_text) + " >>";
}

}  // namespace MapAnchor
