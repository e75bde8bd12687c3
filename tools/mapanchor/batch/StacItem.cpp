#include "batch/StacItem.h"

#include <Tellurion/Numbers.h>
#include <Tellurion/Printable.h>

#include <sys/stat.h>
#include <ctime>

namespace Tool {

namespace {

std::string FileTime(const std::string& file) {
    struct stat status {};
    std::tm parts{};
    if (stat(file.c_str(), &status) != 0 || !gmtime_r(&status.st_mtime, &parts))
        return "1970-01-01T00:00:00Z";
    constexpr std::size_t kRoom = 32;
    std::string text(kRoom, '\0');
    text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts));
    return text;
}

/// The order of the extension: rows of a matrix, not GDAL's.
Json MatrixOf(const Json& geo_transform) {
    const auto& g = geo_transform;
    return Json::array({g[1], g[2], g[0], g[4], g[5], g[3]});
}

void PutProjection(const ReadResult& result, Json& properties) {
    const Json row = JsonWithoutPoints(result);
    properties["proj:epsg"] = nullptr;  // the extension wants it said
    if (result.reference.HasCoordSys()) {
        const Tellurion::BCoordSys& system = *result.reference.CoordSys;
        constexpr std::size_t kPrefix = sizeof("EPSG:") - 1;
        const std::string code = system.ToEPSGCode().StdStr();
        if (code.size() > kPrefix) properties["proj:epsg"] = Tellurion::ParseLong(code.substr(kPrefix));
        if (const std::string text = system.ToWKT2().StdStr(); !text.empty()) properties["proj:wkt2"] = text;
    }
    if (result.width) properties["proj:shape"] = {*result.height, *result.width};
    if (row.contains("geoTransform")) properties["proj:transform"] = MatrixOf(row["geoTransform"]);
}

}  // namespace

Json StacItem(const ReadResult& result, const std::optional<Footprint>& footprint) {
    constexpr const char* kProjection = "https://stac-extensions.github.io/projection/v1.1.0/schema.json";
    Json properties = {{"datetime", FileTime(result.file)}, {"mapanchor:ok", result.Ok()}};
    if (!result.kind.empty()) properties["mapanchor:referenceType"] = result.kind;
    if (result.failure)
        properties["mapanchor:error"] = RenderJson(*result.failure);
    else
        PutProjection(result, properties);
    Json item = {{"type", "Feature"}, {"stac_version", "1.0.0"}};
    item["stac_extensions"] = result.failure ? Json::array() : Json::array({kProjection});
    // Names that are not UTF-8 stay apart.
    const std::string name = Tellurion::IsUtf8(result.file) ? result.file : PercentText(result.file);
    item["id"] = name;
    if (footprint) item["bbox"] = BoxJson(*footprint);
    item["geometry"] = GeometryJson(footprint);
    item["properties"] = std::move(properties);
    item["links"] = Json::array();
    item["assets"] = {{"data", {{"href", name}, {"roles", {"data"}}}}};
    return item;
}

}  // namespace Tool
