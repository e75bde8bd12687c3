#include <gtest/gtest.h>

#include "RunTool.h"

#include <ogr_geometry.h>

#include <algorithm>
#include <memory>

namespace {

using nlohmann::json;

struct FootprintCase {
    const char* name;
    const char* epsg;
    std::string lines;  ///< of the world file, of a raster of a hundred pixels each way
    int parts;
    std::vector<double> box;  ///< west, south, east, north
    double area;              ///< in square degrees
};

// Boxes and areas follow from the corners; those of curved edges were computed with PROJ
// from five thousand points per edge.
const FootprintCase kCases[] = {
    {"plain", "4326", "0.1 0 0 -0.1 10.05 49.95", 1, {10, 40, 20, 50}, 100},
    {"south_up", "4326", "0.1 0 0 0.1 10.05 40.05", 1, {10, 40, 20, 50}, 100},
    {"whole_earth", "4326", "3.6 0 0 -1.8 -178.2 89.1", 1, {-180, -90, 180, 90}, 64800},
    {"from_greenwich_on", "4326", "3.6 0 0 -1.8 1.8 89.1", 1, {-180, -90, 180, 90}, 64800},
    {"across_the_antimeridian", "4326", "0.1 0 0 -0.1 175.05 49.95", 2, {175, 40, -175, 50}, 100},
    {"beyond_it", "4326", "0.1 0 0 -0.1 190.05 49.95", 1, {-170, 40, -160, 50}, 100},
    {"up_to_it", "4326", "0.1 0 0 -0.1 170.05 49.95", 1, {170, 40, 180, 50}, 100},
    {"north_pole_inside", "3995", "2e4 0 0 -2e4 -990000 990000", 1, {-180, 77.0374, 180, 90}, 3708.26},
    {"pole_off_the_middle", "3995", "2e4 0 0 -2e4 -190000 990000", 1, {-180, 71.2119, 180, 90}, 3114.93},
    {"south_pole_inside", "3031", "2e4 0 0 -2e4 -990000 990000", 1, {-180, -90, 180, -77.0374}, 3708.26},
    {"pole_beside", "3995", "1e4 0 0 -1e4 505000 505000", 1, {45.5787, 75.4932, 135.5673, 85.4005}, 543.99},
    {"curved", "3035", "1e4 0 0 -1e4 3505000 3995000", 1, {-4.1121, 49.5384, 13.1151, 59.1008}, 139.113},
};

TEST(Footprint, CoversTheAreaOnTheEarth) {
    const TempFolder folder;
    for (FootprintCase c : kCases) {
        SCOPED_TRACE(c.name);
        std::replace(c.lines.begin(), c.lines.end(), ' ', '\n');
        const std::string file = folder.Write("map.tfw", c.lines);
        folder.Write("map.prj", PrjOf(c.epsg));
        const ToolRun run = RunTool({"footprint", "--size", "100x100", file});
        ASSERT_EQ(run.status, 0) << run.err;
        const json feature = json::parse(run.out)["features"].at(0);
        const std::unique_ptr<OGRGeometry> area(
            OGRGeometryFactory::createFromGeoJson(feature["geometry"].dump().c_str()));
        ASSERT_TRUE(area && area->IsValid()) << run.out;
        EXPECT_EQ(feature["geometry"]["type"], c.parts == 1 ? "Polygon" : "MultiPolygon");
        const std::unique_ptr<OGRGeometry> parts(OGRGeometryFactory::forceToMultiPolygon(area->clone()));
        double square_degrees = 0.0;
        for (const OGRPolygon* part : *parts->toMultiPolygon()) {
            square_degrees += part->get_Area();
            EXPECT_FALSE(part->getExteriorRing()->isClockwise());
            OGREnvelope extent;
            part->getEnvelope(&extent);
            EXPECT_TRUE(extent.MinX >= -180 && extent.MaxX <= 180) << run.out;
        }
        EXPECT_EQ(parts->toMultiPolygon()->getNumGeometries(), c.parts);
        EXPECT_NEAR(square_degrees, c.area, c.area * 1e-3);
        for (std::size_t side = 0; side < c.box.size(); ++side)
            EXPECT_NEAR(feature["bbox"][side].get<double>(), c.box[side], 1e-3) << side;
    }
}

}  // namespace
