#include "render/Feature.h"

namespace Tool {

using Tellurion::BString;

namespace {

Json RingJson(const std::vector<Position>& ring) {
    Json positions = Json::array();
    for (const Position& position : ring)
        positions.push_back({position.x, position.y});
    return positions;
}

Json Properties(const ReadResult& result) {
    Json properties = JsonAbout(result.file);
    properties["ok"] = result.Ok();
    if (result.failure) properties["error"] = RenderJson(*result.failure);
    if (!result.kind.empty()) properties["referenceType"] = result.kind;
    if (result.width) properties["size"] = {*result.width, *result.height};
    if (result.reference.HasCoordSys()) {
        const BString code = result.reference.CoordSys->ToEPSGCode();
        if (!code.IsEmpty()) properties["epsg"] = code.StdStr();
    }
    if (!result.diagnostics.empty()) properties["diagnostics"] = RenderJson(result.diagnostics);
    return properties;
}

}  // namespace

Json GeometryJson(const std::optional<Footprint>& footprint) {
    if (!footprint) return nullptr;
    Json polygons = Json::array();
    for (const auto& ring : footprint->rings)
        polygons.push_back(Json::array({RingJson(ring)}));
    const bool is_one = polygons.size() == 1;
    return {{"type", is_one ? "Polygon" : "MultiPolygon"}, {"coordinates", is_one ? polygons[0] : polygons}};
}

Json BoxJson(const Footprint& footprint) {
    return Json::array({footprint.west, footprint.south, footprint.east, footprint.north});
}

Json FeatureJson(const ReadResult& result, const std::optional<Footprint>& footprint) {
    Json feature = {{"type", "Feature"}};
    if (footprint) feature["bbox"] = BoxJson(*footprint);
    feature["geometry"] = GeometryJson(footprint);
    feature["properties"] = Properties(result);
    return feature;
}

}  // namespace Tool
