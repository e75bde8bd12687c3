// Every raster of the corpus against what GDAL is known to report of it.

#include <Tellurion/BLinearUnit.h>

#include "Corpus.h"

namespace MapAnchor {
namespace {

using namespace Tellurion;

/// Where our EPSG code is another than the text's, on purpose: mostly the text has no
/// code, and its terms are those of the system; 102113 is a number of ESRI's.
const Texts kCodes = {{"projection_3856.tif", "EPSG:3857"}, {"WGS_1984_Web_Mercator.tif", "EPSG:3857"},
                      {"image5.tif", "EPSG:3395"},          {"image1.tif", "EPSG:3395"},
                      {"image7.tif", "EPSG:3395"},          {"image2.tif", "EPSG:3395"},
                      {"spaf27_correct.tif", "EPSG:26746"}, {"image4.tif", "EPSG:3395"},
                      {"pixel_per_line.asc", "EPSG:3578"},  {"citation_mixedcase.tif", "EPSG:2913"},
                      {"stereo_up.tif", "EPSG:5041"}};

std::string ExpectedCode(const std::string& name, const Json& answer) {
    if (const auto found = kCodes.find(name); found != kCodes.end()) return found->second;
    if (!answer.contains("wkt")) return "none";
    return answer.contains("epsg") ? "EPSG:" + std::to_string(answer["epsg"].get<int>()) : "";
}

void ExpectAnswer(const std::string& name, const BGeoReference& reference, const Json& answer) {
    Json points = Json::array(), expected = answer.value("gcps", Json::array());
    for (const BPointPair& p : reference.PointPairVector)
        points.push_back({p.Name.StdStr(), p.Column, p.Row, p.World.x, p.World.y, p.World.z});
    for (Json& point : expected)
        for (const std::size_t whole : {1U, 2U})
            point[whole] = static_cast<int>(point[whole].get<double>());
    EXPECT_EQ(points, expected);
    if (points.empty()) {
        ASSERT_EQ(reference.HasMathTransform(), answer.contains("geoTransform"));
    }
    if (points.empty() && reference.HasMathTransform()) {
        EXPECT_EQ(References::Terms(reference), TermsOfGdal(answer["geoTransform"]));
    }
    EXPECT_EQ(CodeOf(reference), ExpectedCode(name, answer));
    EXPECT_EQ(reference.IsPixelAsPointRegistered(), answer.value("areaOrPoint", "") == "Point");
    // Of the units in the corpus only "m" is one of the labels that bands are read for.
    EXPECT_EQ(reference.HasVerticalUnit() ? reference.GetVerticalUnit()->GetName().StdStr() : "",
              answer.value("bandUnit", "") == "m" ? "metre" : "");
}

TEST(RasterCorpus, EveryFileByNameAndByType) {
    for (const char* folder : {"tif", "dted", "dem", "asc"})
        ForEachAnswer(folder, [](const Path& file, const Json& answer) {
            BGeoReference by_name;
            ExpectAnswer(file.filename(), Good(EReferenceType::GeoTIFF, file, BMapAnchor::kStrictTransform),
                         answer);
            const bool holds_something = answer.contains("wkt") || answer.contains("geoTransform");
            ASSERT_EQ(Roads::Read(file, by_name).type.empty(), holds_something);
            if (holds_something) ExpectAnswer(file.filename(), by_name, answer);
        });
}

}  // namespace
}  // namespace MapAnchor
