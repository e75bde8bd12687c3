#include "ControlPointParsers.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace MapAnchor {

using Json = nlohmann::json;
using Tellurion::BControlPoint;
using Tellurion::BString;

namespace {

std::string Where(std::size_t feature) {
    return "feature " + std::to_string(feature + 1) + " ";
}

bool NumbersIn(const Json& list, double& first, double& second) {
    if (!list.is_array() || list.size() < 2 || !list[0].is_number() || !list[1].is_number()) return false;
    first = list[0].get<double>();
    second = list[1].get<double>();
    return std::isfinite(first) && std::isfinite(second);
}

const Json& Member(const Json& object, const char* name) {
    static const Json nothing;
    if (!object.is_object()) return nothing;
    const auto found = object.find(name);
    return found == object.end() ? nothing : *found;
}

/// The pixel by the names of properties, or by the pair of an annotation.
bool PixelIn(const Json& properties, BControlPoint& point) {
    for (const char* pair : {"resourceCoords", "pixelCoords"})
        if (NumbersIn(Member(properties, pair), point.Column, point.Row)) return true;
    bool column = false;
    bool row = false;
    for (const auto& [key, value] : properties.items()) {
        if (!value.is_number()) continue;
        const PointField field = PointFieldOf(key);
        if (field == PointField::Pixel || field == PointField::X) {
            point.Column = value.get<double>();
            column = true;
        } else if (field == PointField::Line || field == PointField::MinusLine || field == PointField::Y) {
            point.Row = value.get<double>();
            row = true;
        }
    }
    return column && row;
}

void NameIn(const Json& properties, BControlPoint& point) {
    for (const auto& [key, value] : properties.items())
        if (PointFieldOf(key) == PointField::Name && (value.is_string() || value.is_number()))
            point.Name = BString(value.is_string() ? value.get<std::string>() : value.dump());
        else if (PointFieldOf(key) == PointField::Enabled)
            point.Enabled = !(value == false || value == 0);
}

BControlPoint PointOf(const Json& feature, std::size_t number) {
    BControlPoint point;
    const Json& coordinates = Member(Member(feature, "geometry"), "coordinates");
    if (Member(Member(feature, "geometry"), "type") != "Point" ||
        !NumbersIn(coordinates, point.World.x, point.World.y))
        throw PointFault{0, 0, Where(number) + "is not a point with coordinates"};
    if (coordinates.size() > 2 && coordinates[2].is_number()) point.World.z = coordinates[2].get<double>();
    const Json& properties = Member(feature, "properties");
    if (!properties.is_object() || !PixelIn(properties, point))
        throw PointFault{0, 0, Where(number) + "has no pixel: give it the properties pixel and line"};
    NameIn(properties, point);
    return point;
}

void TakeFeatures(const Json& collection, BControlPointFile& file) {
    const Json& features = Member(collection, "features");
    if (!features.is_array()) throw PointFault{0, 0, "there are no features"};
    for (std::size_t i = 0; i < features.size(); ++i)
        file.Points.push_back(PointOf(features[i], i));
    const Json& system = Member(Member(Member(collection, "crs"), "properties"), "name");
    file.CoordSys = system.is_string() ? BString(system.get<std::string>()) : BString("EPSG:4326");
}

void TakeAnnotation(const Json& annotation, BControlPointFile& file) {
    file.Format = BControlPointFile::EFormat::Iiif;
    TakeFeatures(Member(annotation, "body"), file);
    const Json& source = Member(Member(annotation, "target"), "source");
    for (auto [name, size] : {std::pair{"width", &file.Width}, {"height", &file.Height}})
        if (Member(source, name).is_number_integer()) *size = Member(source, name).get<long>();
}

Json Parse(std::string_view text) {
    try {
        return Json::parse(text);
    } catch (const Json::parse_error& error) {
        const std::string_view before =
            text.substr(0, std::min<std::size_t>(error.byte ? error.byte - 1 : 0, text.size()));
        const auto line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
        const std::size_t start = before.rfind('\n');
        throw PointFault{line, before.size() - (start == std::string_view::npos ? 0 : start + 1) + 1,
                         "this is not valid JSON"};
    } catch (const Json::exception&) {
        throw PointFault{0, 0, "a number is out of range"};
    }
}

}  // namespace

void ParsePointJson(std::string_view text, BControlPointFile& file) {
    const Json json = Parse(text);
    file.Format = BControlPointFile::EFormat::GeoJson;
    if (Member(json, "type") == "FeatureCollection") return TakeFeatures(json, file);
    if (Member(json, "type") == "Annotation") return TakeAnnotation(json, file);
    const Json& items = Member(json, "items");
    if (Member(json, "type") == "AnnotationPage" && items.is_array() && !items.empty()) {
        if (items.size() > 1)
            file.Warnings.emplace_back("the file has several annotations; the first is taken");
        return TakeAnnotation(items[0], file);
    }
    throw PointFault{0, 0, "this is neither a GeoJSON feature collection nor a georeference annotation"};
}

std::string FormatPointJson(const BControlPointFile& file) {
    Json features = Json::array();
    for (const BControlPoint& point : file.Points) {
        Json properties = {{"pixel", point.Column}, {"line", point.Row}, {"enabled", point.Enabled}};
        if (!point.Name.IsEmpty()) properties["name"] = point.Name.StdStr();
        Json coordinates = {point.World.x, point.World.y};
        if (point.World.z != 0) coordinates.push_back(point.World.z);
        features.push_back({{"type", "Feature"},
                            {"properties", properties},
                            {"geometry", {{"type", "Point"}, {"coordinates", coordinates}}}});
    }
    Json json = {{"type", "FeatureCollection"}, {"features", features}};
    if (!file.CoordSys.IsEmpty())
        json["crs"] = {{"type", "name"}, {"properties", {{"name", file.CoordSys.StdStr()}}}};
    return json.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace MapAnchor
