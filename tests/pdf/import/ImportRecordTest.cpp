// What the LGIDict importer makes of its numbers, without a file.

#include "ParameterImport.h"

#include <gtest/gtest.h>

#include <cmath>

namespace VellumLib {
namespace {

using Pair = CMeasureDictionaryData::Pair;

TEST(Neatline, AreaDoesNotDependOnTheDirection) {
    const std::vector<Pair> clockwise = {{0, 0}, {0, 10}, {4, 10}, {4, 0}};
    const std::vector<Pair> other_way(clockwise.rbegin(), clockwise.rend());
    EXPECT_EQ(NeatlineArea(clockwise), 40.0);
    EXPECT_EQ(NeatlineArea(other_way), 40.0);
    EXPECT_EQ(NeatlineArea({{3, 4}}), 0.0);
    EXPECT_EQ(NeatlineArea({}), 0.0);
}

CMeasureDictionaryData ImportOf(ParameterImport& import) {
    import.PageWidth = 600;
    import.PageHeight = 800;
    import.Import();
    EXPECT_EQ(import.GetMeasures().size(), 1U);
    return import.GetMeasures().at(0);
}

TEST(LGIRecord, PointsBecomeFractionsOfTheNeatline) {
    ParameterImport import({{kProjectionType, "GEODETIC"}, {kDatum, "WGE"}});
    import.Neatline = {{100, 200}, {100, 600}, {300, 600}, { 300, 200 }};
    import.Registration = {{.PageX = 150, .PageY = 500, .WorldY = 47, .WorldX = 11 }};
    const CMeasureDictionaryData record = ImportOf(import);
    EXPECT_EQ(record.BBox, (std::vector<double>{100, 200, 300, 600}));
    EXPECT_EQ(record.Bounds, import.Neatline);
    EXPECT_EQ(record.GPTS, (std::vector<Pair>{{47, 11}}));
    EXPECT_EQ(record.LPTS, (std::vector<Pair>{{0.25, 0.75}}));
    EXPECT_TRUE(record.GPTSInCoordSys);
    EXPECT_EQ(record.CoordSys.EPSG, 0);
    EXPECT_TRUE(record.CTM.empty());
}

TEST(LGIRecord, WithoutANeatlineTheBoxIsTurnedInsideOut) {
    ParameterImport import({{kProjectionType, "GEODETIC"}, {kDatum, "WGE"}});
    import.Registration = {{.PageX = 150, .PageY = 400, .WorldY = 0, .WorldX = 0 }};
    const CMeasureDictionaryData record = ImportOf(import);
    EXPECT_EQ(record.BBox, (std::vector<double>{600, 800, 0, 0}));
    EXPECT_EQ(record.LPTS, (std::vector<Pair>{{0.75, 0.5}}));
}

TEST(LGIRecord, NeatlineWithoutWidthLeavesNoFraction) {
    ParameterImport import({{kProjectionType, "GEODETIC"}, {kDatum, "WGE"}});
    import.Neatline = {{100, 200}, { 100, 600 }};
    import.Registration = {{.PageX = 150, .PageY = 400, .WorldY = 0, .WorldX = 0 }};
    EXPECT_FALSE(std::isfinite(ImportOf(import).LPTS.at(0).first));
}

}  // namespace
}  // namespace VellumLib
