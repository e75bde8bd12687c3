// Every raster of the corpus against what GDAL is known to say of it.

#include <Tellurion/BLinearUnit.h>

#include "Corpus.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

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

std::string ExpectedCode(const std::string& name, const Json& answer) {
    if (const auto found = kCodes.find(name); found != kCodes.end()) return found->second.code;
    if (!answer.contains("wkt")) return "none";
    return answer.contains("epsg") ? "EPSG:" + std::to_string(answer["epsg"].get<int>()) : "";
}

void ExpectPosition(const BGeoReference& reference, const Json& answer) {
    Json points = Json::array();
    for (const BPointPair& p : reference.PointPairVector)
        points.push_back({p.Name.StdStr(), p.Column, p.Row, p.World.x, p.World.y, p.World.z});
    Json expected = answer.value("gcps", Json::array());
    for (Json& point : expected)
        for (const std::size_t whole : {1U, 2U})
            point[whole] = static_cast<int>(point[whole].get<double>());
    EXPECT_EQ(points, expected);
    if (!points.empty()) return;
    ASSERT_EQ(reference.HasMathTransform(), answer.contains("geoTransform"));
    if (!reference.HasMathTransform()) return;
    EXPECT_EQ(References::Terms(reference), TermsOfGdal(answer["geoTransform"]));
}

void ExpectAnswer(const std::string& name, const BGeoReference& reference, const Json& answer) {
    ExpectPosition(reference, answer);
    EXPECT_EQ(CodeOf(reference), ExpectedCode(name, answer));
    EXPECT_EQ(reference.IsPixelAsPointRegistered(), answer.value("areaOrPoint", "") == "Point");
    // Of the units in the corpus only "m" is one of the labels that bands are read for.
    EXPECT_EQ(reference.HasVerticalUnit() ? reference.GetVerticalUnit()->GetName().StdStr() : "",
              answer.value("bandUnit", "") == "m" ? "metre" : "");
}

class RasterCorpus : public testing::TestWithParam<const char*> {};

TEST_P(RasterCorpus, EveryFileByBothRoads) {
    ForEachAnswer(GetParam(), [](const std::filesystem::path& file, const Json& answer) {
        BGeoReference by_name, by_type;
        ASSERT_EQ(Roads::Read(EReferenceType::GeoTIFF, file, by_type, BMapAnchor::kStrictTransform).type, "");
        ExpectAnswer(file.filename(), by_type, answer);
        const bool holds_something = answer.contains("wkt") || answer.contains("geoTransform");
        ASSERT_EQ(Roads::Read(file, by_name).type.empty(), holds_something);
        if (holds_something) ExpectAnswer(file.filename(), by_name, answer);
    });
}

INSTANTIATE_TEST_SUITE_P(Folders, RasterCorpus, testing::Values("tif", "dted", "dem", "asc"),
                         [](const auto& param_info) { return std::string(param_info.param); });

}  // namespace
}  // namespace MapAnchor
