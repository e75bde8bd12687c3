#include <GeoCalc/CDataSource.h>

#include <Tellurion/BCoordSys.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace GeoCalc::DB {
namespace {

using Tellurion::BCoordSys;
using Tellurion::BString;
using Ptr = std::unique_ptr<BCoordSys>;

CDataSource& Source() {
    return CDataSource::Instance();
}

TEST(CDataSource, ListsEverySystemUnderACodeOfItsOwn) {
    std::vector<std::u16string> codes;
    std::ptrdiff_t names = 0;
    for (const auto& object : Source().Search(CDataSource::kProjectedCoordSys)) {
        codes.push_back(object->GetIdentifiers().GetCode(kValGc).GetUnits());
        names += object->GetIdentifiers().Exists("ERMapper");
    }
    EXPECT_GT(codes.size(), 6000U);
    EXPECT_EQ(names, 1186);
    std::ranges::sort(codes);
    EXPECT_EQ(std::ranges::adjacent_find(codes), codes.end());
    EXPECT_FALSE(codes.front().empty());
    EXPECT_TRUE(Source().Search(0x1000).empty());
    // Each name can be made into what it names.
    for (const auto& row : Source().GetERMapperNames().Projections()) {
        const auto definition = Source().Find("ERMapper", BString(std::string(row.name)));
        ASSERT_TRUE(definition) << row.name;
        EXPECT_EQ(BCoordSys(definition).GetKind(), BCoordSys::kKindProjected) << row.name;
    }
    for (const auto& row : Source().GetERMapperNames().Datums())
        EXPECT_TRUE(Source().GetHorizontalDatumNonThrow("ERMapper", BString(std::string(row.name))))
            << row.name;
}

TEST(CDataSource, FindsPointsAndDatumsByTheirCodes) {
    const std::tuple<const char*, int, double> points[] = {{"4400", 2, 1.0},
                                                           {"4497", 2, 3937.0 / 1200.0},
                                                           {"PROJECTED_POINT_METERS", 1, 1.0},
                                                           {"PROJECTED_POINT_USFEET", 1, 3937.0 / 1200.0}};
    for (const auto& [code, kind, units_per_metre] : points) {
        const auto point = Source().GetProjectedPoint(kValGc, code);
        ASSERT_TRUE(point) << code;
        EXPECT_EQ(point->GetKind(), kind) << code;
        EXPECT_EQ(point->GetEast().GetUnits()->GetUnitsPerMeter(), units_per_metre) << code;
    }
    EXPECT_FALSE(Source().GetProjectedPoint(kValGc, "4401") || Source().GetProjectedPoint("EPSG", "4400"));
    // Whether a name stands for a geodetic system and for a datum; one may be an ellipsoid alone.
    const std::tuple<const char*, bool, bool> datums[] = {
        {"NAD27", true, true},     {"EPSG:27700", true, true}, {"NUTM12", false, false},
        {"NAD27MTR", false, true}, {"", false, false},         {"RAW", false, false},
        {"EPSG:0", false, false},  {"EPSG:5703", false, false}};
    for (const auto& [name, geodetic, datum] : datums) {
        EXPECT_EQ(Source().GetGeodeticCoordSysNonThrow("ERMapper", name) != nullptr, geodetic) << name;
        EXPECT_EQ(Source().GetHorizontalDatumNonThrow("ERMapper", name) != nullptr, datum) << name;
    }
    // Axes in feet are turned into metres.
    const auto feet = Source().GetHorizontalDatumNonThrow("ERMapper", "NAD27AFT");
    EXPECT_NE(BCoordSys(feet->GetGeodetic()).ToWKT().StdStr().find(",6378206.39"), std::string::npos);
}

TEST(CDataSource, PutsCurrentSystemsBeforeDeprecatedOnes) {
    const Ptr system(BCoordSys::FromEPSGCode("2199"));  // Albanian 1987 / Gauss Kruger zone 4, withdrawn
    const auto found = Source().Equivalent(*system->GetGCCoordSys());
    ASSERT_GE(found.size(), 2U);
    EXPECT_EQ(found.front().GetIssuerCode("EPSG"), BString("2462"));
    for (const CEquivalent& entry : found)
        EXPECT_EQ((entry.GetStatus() & CEquivalent::kDeprecated) != 0,
                  entry.GetIssuerCode("EPSG") == BString("2199"));
}

TEST(CDataSource, IgnoresRoundingOnRequestAlone) {
    const Ptr system(BCoordSys::FromEPSGCode("32612"));
    auto& object = dynamic_cast<CS::CProjectedCoordSys&>(*system->GetGCCoordSys());
    CParameterCollection& parameters = object.GetProjection().GetParameters();
    ML::CLinearValue easting = parameters.GetLinearValue(kValFalseEasting);
    easting.SetInternal(500000.001);
    parameters.SetLinearValue(kValFalseEasting, easting);
    EXPECT_TRUE(Source().Equivalent(object).empty());
    const auto found = Source().EquivalentLessRestrictive(object);
    ASSERT_FALSE(found.empty());
    EXPECT_EQ(found.front().GetIssuerCode(kValGc), BString("EPSG:32612"));
}

TEST(CDataSource, KeepsACopyOfWhatIsStored) {
    const Ptr system(BCoordSys::FromEPSGCode("32612"));
    auto& object = dynamic_cast<CS::CProjectedCoordSys&>(*system->GetGCCoordSys());
    const auto put = [&](int type, bool overwrite) {
        return Source().PutSerializable(type, object, overwrite, true);
    };
    object.GetIdentifiers().RemoveAll();
    EXPECT_FALSE(put(CDataSource::kProjectedCoordSys, true));
    object.SetGeodeticCoordSys(*Source().GetGeodeticCoordSysNonThrow("ERMapper", "SAD69"));
    object.SetName("kept");
    object.GetIdentifiers().Add(kValGc, "kept");
    EXPECT_FALSE(put(1, true));
    EXPECT_TRUE(put(CDataSource::kProjectedCoordSys, true));
    EXPECT_FALSE(put(CDataSource::kProjectedCoordSys, false));
    object.SetName("changed");
    EXPECT_EQ(BCoordSys(Source().Find(kValGc, "kept")).GetName(), BString("kept"));
    const auto same = Source().Equivalent(object);
    ASSERT_EQ(same.size(), 1U);
    EXPECT_EQ(same.front().GetIssuerCode(kValGc), BString("kept"));
}

}  // namespace
}  // namespace GeoCalc::DB
