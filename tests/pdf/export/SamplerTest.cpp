// Four control points that stand for a transform, and the texts that go with them.

#include "export/BMapAnchorGCPSampler.h"
#include "export/WebMercatorText.h"

#include <gtest/gtest.h>

#include "References.h"

#include <array>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using VellumLib::CGCPSampler;
using VellumLib::CPDFPathPoint;

CPDFPathPoint PointAt(double x, double y) {
    return {x, y, 0, 0, 0, 0};
}

/// Accepts the box of one number and notes where the boxes were.
class CountingSampler : public CGCPSampler {
public:
    explicit CountingSampler(std::size_t accept) : accept_(accept) {}
    std::vector<std::pair<double, double>> boxes;

protected:
    CPDFPathPoint PixelToWorld(const CPDFPathPoint& pixel) override { return pixel; }
    bool RejectBox() override {
        boxes.emplace_back(GetPixelPoints()[0].x, GetPixelPoints()[0].y);
        return boxes.size() != accept_;
    }

private:
    std::size_t accept_;
};

TEST(GcpSampler, TakesTheMiddleBoxAcrossItsDiagonal) {
    CountingSampler sampler(1);
    ASSERT_TRUE(sampler.Sample(PointAt(0, 500), PointAt(1000, 0)));
    std::vector<std::pair<double, double>> pixels;
    for (const CPDFPathPoint& pixel : sampler.GetPixelPoints())
        pixels.emplace_back(pixel.x, pixel.y);
    const std::vector<std::pair<double, double>> expected = {{400, 200}, {600, 300}, {400, 300}, {600, 200}};
    EXPECT_EQ(pixels, expected);
}

TEST(GcpSampler, SearchesRightThenLeftAndOneBoxAtTheCentre) {
    CountingSampler sampler(0);
    EXPECT_FALSE(sampler.Sample(PointAt(0, 500), PointAt(1000, 0)));
    EXPECT_TRUE(sampler.GetPixelPoints().empty());
    EXPECT_TRUE(sampler.GetWorldPoints().empty());
    // Rows run down, so that the steps down and up leave the raster at once.
    const std::vector<std::pair<double, double>> expected = {{400, 200},  {600, 200}, {800, 200},
                                                             {1000, 200}, {500, 200}, {300, 200},
                                                             {100, 200},  {500, 200}, {500, 250}};
    EXPECT_EQ(sampler.boxes, expected);
}

TEST(GcpSampler, ABoxWithoutExtentEndsTheSearch) {
    for (const auto& [width, height] : {std::pair{4.0, 100.0}, {100.0, 4.0}, {0.0, 0.0}, {1e300, 3.0}}) {
        CountingSampler sampler(0);
        EXPECT_FALSE(sampler.Sample(PointAt(0, height), PointAt(width, 0))) << width << " x " << height;
        EXPECT_EQ(sampler.boxes.size(), 1U);
    }
}

TEST(GcpSampler, SearchesNoFurtherThanARasterGoes) {
    for (const double far : {0x1p62, -0x1p62}) {
        CountingSampler sampler(0);
        EXPECT_FALSE(sampler.Sample(PointAt(0, far), PointAt(far, 0)));
        EXPECT_LT(sampler.boxes.size(), 30U) << far;
    }
}

struct AffineCase {
    const char* name;
    const char* epsg;
    std::array<double, 6> terms;
    double width, height;
};

// The four points carry the affine to a millionth of the raster's extent.
TEST(GcpSampler, PointsCarryTheTransform) {
    const AffineCase cases[] = {
        {"utm_north", "32632", {0.5, 0, 676000, 0, -0.5, 5242000}, 2000, 1000},
        {"utm_south", "32755", {30, 0, 500000, 0, -30, 6000000}, 10, 10},
        {"rotated", "32632", {3, 4, 676000, 4, -3, 5242000}, 300, 200},
        {"rotated_the_other_way", "32632", {3, 4, 676000, -4, 3, 5242000}, 300, 200},
        {"feet", "2277", {2, 0, 2500000, 0, -2, 10000000}, 30000, 15000},
        {"geographic", "4326", {0.001, 0, 11, 0, -0.001, 47}, 500, 400},
        {"web_mercator", "3857", {10, 0, 1200000, 0, -10, 6000000}, 500, 400},
        {"polar", "3031", {1000, 0, -3000000, 0, -1000, 3000000}, 6000, 6000},
    };
    for (const AffineCase& test : cases) {
        SCOPED_TRACE(test.name);
        const auto& t = test.terms;
        const BGeoReference reference = References::Of(test.epsg, t);
        const bool projected = reference.CoordSys->GetKind() == BCoordSys::kKindProjected;
        BMapAnchorGCPSampler sampler(reference, projected);
        ASSERT_TRUE(sampler.Sample(PointAt(0, test.height), PointAt(test.width, 0)));
        ASSERT_EQ(sampler.GetPixelPoints().size(), 4U);
        for (std::size_t i = 0; i < 4; ++i) {
            const CPDFPathPoint& pixel = sampler.GetPixelPoints()[i];
            BPoint world(sampler.GetWorldPoints()[i].x, sampler.GetWorldPoints()[i].y, 0);
            if (projected) world = reference.CoordSys->ConvertFromGeodetic(world);
            const double extent = std::abs(t[0]) * test.width + std::abs(t[1]) * test.height;
            EXPECT_NEAR(world.x, t[0] * pixel.x + t[1] * pixel.y + t[2], 1e-6 * extent);
            EXPECT_NEAR(world.y, t[3] * pixel.x + t[4] * pixel.y + t[5], 1e-6 * extent);
        }
    }
}

TEST(WebMercatorText, BecomesAMercatorOnASphere) {
    const std::unique_ptr<BCoordSys> system(BCoordSys::FromEPSGCode("3857"));
    const std::string text = RewriteWebMercator(system->ToPRJ()).StdStr();
    EXPECT_EQ(text.rfind("PROJCS[\"WGS_1984_Web_Mercator\",GEOGCS[\"GCS_WGS_1984_Major_Auxiliary_Sphere\","
                         "DATUM[\"D_WGS_1984_Major_Auxiliary_Sphere\","
                         "SPHEROID[\"WGS_1984_Major_Auxiliary_Sphere\"",
                         0),
              0U)
        << text;
    EXPECT_NE(text.find("PROJECTION[\"Mercator\"]"), std::string::npos);
    EXPECT_EQ(text.find("Auxiliary_Sphere_Type"), std::string::npos);
    // What comes out is Web Mercator by its coordinates.
    const std::unique_ptr<BCoordSys> again(BCoordSys::FromWKT(text.c_str()));
    ASSERT_TRUE(again);
    const BPoint place(11.4, 47.3, 0);
    const BPoint expected = system->ConvertFromGeodetic(place);
    const BPoint there = again->ConvertFromGeodetic(place);
    EXPECT_NEAR(there.x, expected.x, 1e-3);
    EXPECT_NEAR(there.y, expected.y, 1e-3);
    const BString other = "PROJCS[\"D_WGS_1984\"]";
    EXPECT_EQ(RewriteWebMercator(other).StdStr(), other.StdStr());
}

}  // namespace
}  // namespace MapAnchor
