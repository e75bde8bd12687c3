// The search for four control points that stand for a transform, and the text of Web Mercator.

#include "export/CGCPSampler.h"
#include "export/WebMercatorText.h"

#include <Tellurion/BCoordSys.h>

#include <gtest/gtest.h>

#include <array>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using VellumLib::CGCPSampler;
using VellumLib::CPDFPathPoint;
using Places = std::vector<std::pair<double, double>>;

CPDFPathPoint PointAt(double x, double y) {
    return {x, y, 0, 0, 0, 0};
}

/// Accepts the box of one number and notes where the boxes were.
class CountingSampler : public CGCPSampler {
public:
    explicit CountingSampler(std::size_t accept = 0) : accept_(accept) {}
    Places boxes;

protected:
    CPDFPathPoint PixelToWorld(const CPDFPathPoint& pixel) override { return pixel; }
    bool RejectBox() override {
        boxes.emplace_back(GetPixelPoints()[0].x, GetPixelPoints()[0].y);
        return boxes.size() != accept_;
    }

private:
    std::size_t accept_;
};

TEST(GcpSampler, SearchesFromTheMiddleBoxToTheRightThenToTheLeft) {
    CountingSampler middle(1);
    ASSERT_TRUE(middle.Sample(PointAt(0, 500), PointAt(1000, 0)));
    Places pixels;
    for (const CPDFPathPoint& pixel : middle.GetPixelPoints())
        pixels.emplace_back(pixel.x, pixel.y);
    EXPECT_EQ(pixels, (Places{{400, 200}, {600, 300}, {400, 300}, {600, 200}}));

    CountingSampler none;
    EXPECT_FALSE(none.Sample(PointAt(0, 500), PointAt(1000, 0)));
    EXPECT_TRUE(none.GetPixelPoints().empty() && none.GetWorldPoints().empty());
    // Rows run down, so that the steps down and up leave the raster at once.
    EXPECT_EQ(none.boxes, (Places{{400, 200},
                                  {600, 200},
                                  {800, 200},
                                  {1000, 200},
                                  {500, 200},
                                  {300, 200},
                                  {100, 200},
                                  {500, 200},
                                  {500, 250}}));
}

TEST(GcpSampler, TheSearchEnds) {
    // A box without extent ends it, and so does the largest raster.
    const std::array<double, 3> cases[] = {{4, 100, 1},   {100, 4, 1},          {0, 0, 1},
                                           {1e300, 3, 1}, {0x1p62, 0x1p62, 30}, {-0x1p62, -0x1p62, 30}};
    for (const auto& [width, height, most] : cases) {
        CountingSampler sampler;
        EXPECT_FALSE(sampler.Sample(PointAt(0, height), PointAt(width, 0))) << width << " x " << height;
        EXPECT_LE(static_cast<double>(sampler.boxes.size()), most) << width << " x " << height;
    }
}

TEST(WebMercatorText, BecomesAMercatorOnASphere) {
    const std::unique_ptr<BCoordSys> system(BCoordSys::FromEPSGCode("3857"));
    const std::string text = RewriteWebMercator(system->ToPRJ()).StdStr();
    const std::string start =
        "PROJCS[\"WGS_1984_Web_Mercator\",GEOGCS[\"GCS_WGS_1984_Major_Auxiliary_Sphere\","
        "DATUM[\"D_WGS_1984_Major_Auxiliary_Sphere\",SPHEROID[\"WGS_1984_Major_Auxiliary_Sphere\"";
    EXPECT_EQ(text.substr(0, start.size()), start);
    EXPECT_NE(text.find("PROJECTION[\"Mercator\"]"), std::string::npos);
    EXPECT_EQ(text.find("Auxiliary_Sphere_Type"), std::string::npos);
    // Its coordinates are those of Web Mercator.
    const std::unique_ptr<BCoordSys> again(BCoordSys::FromWKT(text.c_str()));
    ASSERT_TRUE(again);
    const BPoint expected = system->ConvertFromGeodetic({11.4, 47.3, 0});
    const BPoint found = again->ConvertFromGeodetic({11.4, 47.3, 0});
    EXPECT_NEAR(found.x, expected.x, 1e-3);
    EXPECT_NEAR(found.y, expected.y, 1e-3);
    EXPECT_EQ(RewriteWebMercator("PROJCS[\"D_WGS_1984\"]").StdStr(), "PROJCS[\"D_WGS_1984\"]");
}

}  // namespace
}  // namespace MapAnchor
