#include <gtest/gtest.h>

#include "RunTool.h"
#include "TempFolder.h"

#include <algorithm>
#include <regex>
#include <set>

namespace {

using nlohmann::json;

constexpr const char* kProjection = "https://stac-extensions.github.io/projection/v1.1.0/schema.json";

/// Closed, and counterclockwise where it is an outer one.
bool IsOuterRing(const json& ring) {
    double twice_area = 0.0;
    for (std::size_t i = 0; i + 1 < ring.size(); ++i)
        twice_area += ring[i][0].get<double>() * ring[i + 1][1].get<double>() -
                      ring[i + 1][0].get<double>() * ring[i][1].get<double>();
    return ring.size() >= 4 && ring.front() == ring.back() && twice_area > 0.0;
}

bool IsArea(const json& geometry) {
    if (geometry.is_null()) return true;
    if (geometry["type"] == "Polygon") return IsOuterRing(geometry["coordinates"].at(0));
    return geometry["type"] == "MultiPolygon" && !geometry["coordinates"].empty() &&
           IsOuterRing(geometry["coordinates"].at(0).at(0));
}

bool IsNumbers(const json& list, const std::set<std::size_t>& sizes) {
    return list.is_array() && sizes.count(list.size()) == 1 &&
           std::all_of(list.begin(), list.end(), [](const json& n) { return n.is_number(); });
}

bool IsBox(const json& box) {
    return IsNumbers(box, {4}) && box[1] <= box[3] && box[1] >= -90.0 && box[3] <= 90.0 && box[0] >= -180.0 &&
           box[2] <= 180.0;
}

bool IsTime(const json& time) {
    static const std::regex form(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)");
    return time.is_string() && std::regex_match(time.get<std::string>(), form);
}

bool AreLinks(const json& list) {
    return list.is_array() && std::all_of(list.begin(), list.end(), [](const json& link) {
               return link.value("href", "") != "" && link.value("rel", "") != "";
           });
}

bool AreAssets(const json& assets) {
    return assets.is_object() && std::all_of(assets.begin(), assets.end(), [](const json& asset) {
               return asset.value("href", "") != "" &&
                      (!asset.contains("roles") || asset["roles"].is_array());
           });
}

/// The fields of the projection extension, which are there when it is announced alone.
void AppendProjectionFaults(const json& item, std::vector<std::string>& faults) {
    const auto& extensions = item["stac_extensions"];
    const bool announced = std::find(extensions.begin(), extensions.end(), kProjection) != extensions.end();
    const json& p = item["properties"];
    for (const auto& [key, value] : p.items()) {
        static const std::set<std::string> known = {"proj:epsg", "proj:wkt2", "proj:shape", "proj:transform"};
        if (key.rfind("proj:", 0) == 0 && (!announced || known.count(key) == 0)) faults.push_back(key);
    }
    if (!announced) return;
    const auto require = [&](const char* key, bool holds) {
        if (!holds) faults.emplace_back(key);
    };
    require("proj:epsg",
            p.contains("proj:epsg") && (p["proj:epsg"].is_null() || p["proj:epsg"].is_number_integer()));
    require("proj:wkt2", !p.contains("proj:wkt2") || p["proj:wkt2"].is_string());
    require("proj:shape", !p.contains("proj:shape") || IsNumbers(p["proj:shape"], {2}));
    require("proj:transform", !p.contains("proj:transform") || IsNumbers(p["proj:transform"], {6, 9}));
}

/// The members of an item that break a rule of STAC 1.0.
std::vector<std::string> Faults(const json& item) {
    for (const char* member :
         {"type", "stac_version", "stac_extensions", "id", "geometry", "properties", "links", "assets"})
        if (!item.contains(member)) return {member};
    std::vector<std::string> faults;
    const auto require = [&](const char* member, bool holds) {
        if (!holds) faults.emplace_back(member);
    };
    require("type", item["type"] == "Feature");
    require("stac_version", item["stac_version"] == "1.0.0");
    require("id", item["id"].is_string() && item["id"] != "");
    require("geometry", IsArea(item["geometry"]));
    require("bbox", item["geometry"].is_null() ? !item.contains("bbox")
                                               : item.contains("bbox") && IsBox(item["bbox"]));
    require("datetime", item["properties"].contains("datetime") && IsTime(item["properties"]["datetime"]));
    require("links", AreLinks(item["links"]));
    require("assets", AreAssets(item["assets"]));
    AppendProjectionFaults(item, faults);
    return faults;
}

class StacItem : public testing::Test {
protected:
    json ItemOf(const std::string& file, const std::string& size = "100x50") const {
        const ToolRun run = RunTool({"batch", "--to", "stac", "--size", size, file});
        const json item = json::parse(run.out, nullptr, false);
        EXPECT_TRUE(item.is_object()) << run.out << run.err;
        return item;
    }
    std::string Place(const std::string& name, const char* numbers, const std::string& epsg) const {
        folder.Write(name + ".prj",
                     RunTool({"crs", "--json", epsg}).Objects().at(0)["mapanchor"]["texts"]["prj"]);
        return folder.Write(name + ".tfw", numbers);
    }

    const TempFolder folder;
};

TEST_F(StacItem, KeepsTheRulesOfStac) {
    const std::string file = Place("placed", "0.1\n0\n0\n-0.1\n10.05\n49.95\n", "4326");
    struct Row {
        const char* what;
        std::string file;
        bool placed;
        bool projected;  ///< has something of the projection extension
    };
    const Row rows[] = {
        {"north up in degrees", file, true, true},
        {"rotated in metres", Place("rotated", "10\n3\n3\n-10\n500000\n5000000\n", "32633"), true, true},
        {"across the antimeridian", Place("across", "0.1\n0\n0\n-0.1\n175.05\n-15.05\n", "4326"), true, true},
        {"without a system", folder.Write("nowhere.tfw", "1\n0\n0\n-1\n0\n0\n"), false, true},
        {"not read", folder.Write("bad.tab", "no table"), false, false},
        {"not there", folder / "none.tfw", false, false},
    };
    for (const Row& row : rows) {
        const json item = ItemOf(row.file);
        EXPECT_EQ(Faults(item), std::vector<std::string>()) << row.what << item;
        EXPECT_EQ(!item["geometry"].is_null(), row.placed) << row.what << item;
        EXPECT_EQ(item["properties"].contains("proj:epsg"), row.projected) << row.what;
    }
    const json placed = ItemOf(file)["properties"];
    EXPECT_EQ(placed["proj:shape"], json({50, 100})) << "rows come first";
    EXPECT_NEAR(placed["proj:transform"][5].get<double>(), 50.0, 1e-12);
    EXPECT_TRUE(ItemOf(rows[3].file)["properties"]["proj:epsg"].is_null());
}

TEST_F(StacItem, TheRulesTellABrokenOne) {
    const json good = ItemOf(Place("placed", "0.1\n0\n0\n-0.1\n10.05\n49.95\n", "4326"));
    const auto broken = [&](const char* pointer, const json& value) {
        json item = good;
        item[json::json_pointer(pointer)] = value;
        return Faults(item);
    };
    EXPECT_EQ(broken("/geometry", nullptr), std::vector<std::string>{"bbox"});
    EXPECT_EQ(broken("/bbox", {1, 2, 3}), std::vector<std::string>{"bbox"});
    EXPECT_EQ(broken("/properties/datetime", "today"), std::vector<std::string>{"datetime"});
    EXPECT_EQ(broken("/properties/proj:code", "EPSG:4326"), std::vector<std::string>{"proj:code"});
    EXPECT_EQ(broken("/properties/proj:transform", {1, 2}), std::vector<std::string>{"proj:transform"});
    EXPECT_EQ(broken("/stac_version", "1.1.0"), std::vector<std::string>{"stac_version"});
}

}  // namespace
