#include <gtest/gtest.h>

#include "RunTool.h"
#include "SchemaCheck.h"

#include <filesystem>
#include <regex>

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

const std::regex kTime(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)");

/// The rules of STAC 1.0 and of its projection extension.
constexpr const char* kRules = R"({
    "type": "object",
    "required": ["type", "stac_version", "stac_extensions", "id", "geometry", "properties", "links", "assets"],
    "properties": {
        "type": {"const": "Feature"},
        "stac_version": {"const": "1.0.0"},
        "stac_extensions": {"type": "array", "items": {
            "const": "https://stac-extensions.github.io/projection/v1.1.0/schema.json"}},
        "id": {"type": "string"},
        "bbox": {"type": "array", "items": {"type": "number"}, "minItems": 4, "maxItems": 4},
        "properties": {"required": ["datetime"], "additionalProperties": false, "properties": {
            "datetime": {"type": "string"},
            "mapanchor:ok": {"type": "boolean"},
            "mapanchor:referenceType": {"type": "string"},
            "mapanchor:error": {"type": "object"},
            "proj:epsg": {},
            "proj:wkt2": {"type": "string"},
            "proj:shape": {"type": "array", "items": {"type": "integer"}, "minItems": 2, "maxItems": 2},
            "proj:transform": {"type": "array", "items": {"type": "number"}, "minItems": 6, "maxItems": 6}}},
        "links": {"type": "array", "maxItems": 0},
        "assets": {"required": ["data"], "properties": {
            "data": {"required": ["href"], "properties": {"href": {"type": "string"}}}}}}})";

struct StacCase {
    std::string file;
    const char* content;
    const char* system = "";
    const char* geometry = "";  ///< its type; empty for none
    const char* epsg = "";      ///< the member; empty without the projection extension
};

TEST(StacItem, KeepsTheRulesOfStac) {
    const StacCase cases[] = {
        {"rotated.tfw", "10\n3\n3\n-10\n500000\n5000000\n", "32633", "Polygon", "32633"},
        {"across.tfw", "0.1\n0\n0\n-0.1\n175.05\n-15.05\n", "4326", "MultiPolygon", "4326"},
        {"nowhere.tfw", "1\n0\n0\n-1\n0\n0\n", "", "", "null"},
        {"bad.tab", "no table"},
        {"missing.tfw", ""},
        {"placed.tfw", "0.1\n0\n0\n-0.1\n10.05\n49.95\n", "4326", "Polygon", "4326"},
    };
    const ToolFolder folder;
    json item;
    for (const StacCase& test : cases) {
        SCOPED_TRACE(test.file);
        if (*test.content) folder.Write(test.file, test.content);
        if (*test.system) folder.Write(fs::path(test.file).replace_extension("prj"), PrjOf(test.system));
        const ToolRun run = RunTool({"batch", "--to", "stac", "--size", "100x50", folder / test.file});
        item = json::parse(run.out);
        const json& properties = item["properties"];
        EXPECT_EQ(SchemaFault(item, kRules), "") << run.out;
        EXPECT_EQ(item["geometry"].is_null() ? "" : item["geometry"]["type"], test.geometry);
        EXPECT_EQ(item.contains("bbox"), *test.geometry != '\0');
        EXPECT_EQ(item["stac_extensions"].empty(), *test.epsg == '\0');
        EXPECT_EQ(properties.contains("proj:epsg") ? properties["proj:epsg"].dump() : "", test.epsg);
        EXPECT_EQ(properties.contains("mapanchor:error"), *test.epsg == '\0');
        EXPECT_TRUE(std::regex_match(properties["datetime"].get<std::string>(), kTime)) << run.out;
    }
    EXPECT_EQ(item["bbox"], json({10.0, 45.0, 20.0, 50.0}));
    const json& placed = item["properties"];
    EXPECT_EQ(placed["proj:shape"], json({50, 100})) << "rows come first";
    EXPECT_NEAR(placed["proj:transform"][2].get<double>(), 10.0, 1e-12);
    EXPECT_NEAR(placed["proj:transform"][5].get<double>(), 50.0, 1e-12);
    EXPECT_EQ(placed["proj:wkt2"].get<std::string>().find("GEOGCRS["), 0U);
}

}  // namespace
