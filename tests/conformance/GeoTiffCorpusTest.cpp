// Every raster of the corpus against what GDAL is known to say of it.

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>
#include <Tellurion/BLinearUnit.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <map>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using nlohmann::json;

const std::filesystem::path kCorpus = MAPANCHOR_CORPUS;

/// Where our EPSG code is another than the text's, on purpose.
struct CodeDifference {
    const char* code;
    const char* reason;
};
constexpr CodeDifference kWorldMercator = {"EPSG:3395",
                                           "the text has no code; its terms are World Mercator's"};
const std::map<std::string, CodeDifference> kCodes = {
    {"WGS_1984_Web_Mercator.tif", {"EPSG:3857", "102113 is a number of ESRI's; it is Web Mercator"}},
    {"image1.tif", kWorldMercator},
    {"image2.tif", kWorldMercator},
    {"image4.tif", kWorldMercator},
    {"image5.tif", kWorldMercator},
    {"image7.tif", kWorldMercator},
    {"projection_3856.tif", {"EPSG:3857", "the text has no code; it is Web Mercator"}},
    {"spaf27_correct.tif", {"EPSG:26746", "the text has no code; its name and terms are zone VI's"}},
    {"pixel_per_line.asc", {"EPSG:3578", "the text has no code; its terms are Yukon Albers'"}},
};

std::string ExpectedCode(const std::string& name, const json& answer) {
    if (const auto found = kCodes.find(name); found != kCodes.end()) return found->second.code;
    return answer.contains("epsg") ? "EPSG:" + std::to_string(answer["epsg"].get<int>()) : "";
}

/// Of the units in the corpus only "m" is one of the labels that bands are read for.
std::string ExpectedUnit(const json& answer) {
    return answer.value("bandUnit", "") == "m" ? "metre" : "";
}

void ExpectPosition(const BGeoReference& reference, const json& answer) {
    if (answer.contains("gcps")) {
        const json& points = answer["gcps"];
        ASSERT_EQ(reference.PointPairVector.size(), points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            const BPointPair& pair = reference.PointPairVector[i];
            EXPECT_EQ(pair.Name.StdStr(), points[i][0].get<std::string>());
            EXPECT_EQ(pair.Column, static_cast<int>(points[i][1].get<double>()));
            EXPECT_EQ(pair.Row, static_cast<int>(points[i][2].get<double>()));
            EXPECT_EQ(json({pair.World.x, pair.World.y, pair.World.z}),
                      json({points[i][3], points[i][4], points[i][5]}));
        }
        return;
    }
    EXPECT_TRUE(reference.PointPairVector.empty());
    ASSERT_EQ(reference.HasMathTransform(), answer.contains("geoTransform"));
    if (!reference.HasMathTransform()) return;
    double a, b, c, d, e, f;
    reference.MathTransform->GetAffineParameters(a, b, c, d, e, f);
    EXPECT_EQ(json({c, a, b, f, d, e}), answer["geoTransform"]);
}

void ExpectAnswer(const std::string& name, const BGeoReference& reference, const json& answer) {
    ExpectPosition(reference, answer);
    EXPECT_EQ(reference.HasCoordSys(), answer.contains("wkt"));
    EXPECT_EQ(reference.HasCoordSys() ? reference.CoordSys->ToEPSGCode().StdStr() : "",
              ExpectedCode(name, answer));
    EXPECT_EQ(reference.IsPixelAsPointRegistered(), answer.value("areaOrPoint", "") == "Point");
    EXPECT_EQ(reference.HasVerticalUnit() ? reference.GetVerticalUnit()->GetName().StdStr() : "",
              ExpectedUnit(answer));
}

class RasterCorpus : public testing::TestWithParam<const char*> {};

TEST_P(RasterCorpus, EveryFileByBothRoads) {
    const std::filesystem::path folder = kCorpus / GetParam();
    const auto expected = json::parse(std::ifstream(folder / "expected.json"));
    ASSERT_FALSE(expected.empty());
    for (const auto& [name, answer] : expected.items()) {
        SCOPED_TRACE(name);
        const BString file((folder / name).string());
        BGeoReference by_type;
        ASSERT_NO_THROW(BMapAnchor::Read(EReferenceType::GeoTIFF, file, by_type, 0, 0,
                                         EMathTransformType::Affine, BMapAnchor::kStrictTransform, nullptr));
        ExpectAnswer(name, by_type, answer);
        const bool holds_something = answer.contains("wkt") || answer.contains("geoTransform");
        BGeoReference by_name;
        BString used;
        const auto read_by_name = [&] {
            BMapAnchor::Read(file, by_name, used, 0, 0, EMathTransformType::Affine, nullptr);
        };
        if (!holds_something) {
            EXPECT_THROW(read_by_name(), BException);
            continue;
        }
        ASSERT_NO_THROW(read_by_name());
        ExpectAnswer(name, by_name, answer);
    }
}

INSTANTIATE_TEST_SUITE_P(Folders, RasterCorpus, testing::Values("tif", "dted", "dem", "asc"),
                         [](const auto& param_info) { return std::string(param_info.param); });

}  // namespace
}  // namespace MapAnchor
