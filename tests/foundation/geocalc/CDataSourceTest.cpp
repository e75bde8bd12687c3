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
    const CDataSource::Objects objects = Source().Search(CDataSource::kProjectedCoordSys);
    EXPECT_GT(objects.size(), 6000U);
    std::vector<std::u16string> codes;
    std::size_t names = 0;
    for (const auto& object : objects) {
        codes.push_back(object->GetIdentifiers().GetCode(kValGc).GetUnits());
        names += object->GetIdentifiers().Exists("ERMapper");
    }
    EXPECT_EQ(names, 1186U);
    std::ranges::sort(codes);
    EXPECT_EQ(std::ranges::adjacent_find(codes), codes.end());
    EXPECT_FALSE(codes.front().empty());
    EXPECT_TRUE(Source().Search(0x1000).empty());
}

TEST(CDataSource, MakesASystemOfEveryName) {
    for (const auto& row : Source().GetERMapperNames().Projections()) {
        const auto definition = Source().Find("ERMapper", BString(std::string(row.name)));
        ASSERT_TRUE(definition) << row.name;
        EXPECT_EQ(BCoordSys(definition).GetKind(), BCoordSys::kKindProjected) << row.name;
    }
    for (const auto& row : Source().GetERMapperNames().Datums())
        EXPECT_TRUE(Source().GetHorizontalDatumNonThrow("ERMapper", BString(std::string(row.name))))
            << row.name;
}

TEST(CDataSource, KnowsPointsByTheirKind) {
    struct Case {
        const char* code;
        int kind;
        double units_per_metre;
    };
    constexpr Case kCases[] = {{"4400", 2, 1.0},
                               {"4497", 2, 3937.0 / 1200.0},
                               {"PROJECTED_POINT_METERS", 1, 1.0},
                               {"PROJECTED_POINT_USFEET", 1, 3937.0 / 1200.0}};
    for (const Case& c : kCases) {
        const auto point = Source().GetProjectedPoint(kValGc, c.code);
        ASSERT_TRUE(point) << c.code;
        EXPECT_EQ(point->GetKind(), c.kind) << c.code;
        EXPECT_EQ(point->GetEast().GetUnits()->GetUnitsPerMeter(), c.units_per_metre) << c.code;
    }
    EXPECT_FALSE(Source().GetProjectedPoint(kValGc, "4401"));
    EXPECT_FALSE(Source().GetProjectedPoint("EPSG", "4400"));
}

TEST(CDataSource, TellsDatumsWithASystemFromThoseOfAnEllipsoid) {
    EXPECT_TRUE(Source().GetGeodeticCoordSysNonThrow("ERMapper", "NAD27"));
    EXPECT_TRUE(Source().GetGeodeticCoordSysNonThrow("ERMapper", "EPSG:27700"));
    EXPECT_FALSE(Source().GetGeodeticCoordSysNonThrow("ERMapper", "NUTM12"));
    EXPECT_FALSE(Source().GetGeodeticCoordSysNonThrow("ERMapper", "NAD27MTR"));
    EXPECT_TRUE(Source().GetHorizontalDatumNonThrow("ERMapper", "NAD27MTR"));
    for (const char* name : {"", "RAW", "NOWHERE", "EPSG:0", "EPSG:5703"}) {
        EXPECT_FALSE(Source().GetGeodeticCoordSysNonThrow("ERMapper", name)) << name;
        EXPECT_FALSE(Source().GetHorizontalDatumNonThrow("ERMapper", name)) << name;
    }
}

TEST(CDataSource, TurnsAxesInFeetIntoMetres) {
    const auto datum = Source().GetHorizontalDatumNonThrow("ERMapper", "NAD27AFT");
    ASSERT_TRUE(datum);
    const std::string wkt = BCoordSys(datum->GetGeodetic()).ToWKT().StdStr();
    EXPECT_NE(wkt.find(",6378206.39"), std::string::npos) << wkt;
}

TEST(CDataSource, PutsCurrentSystemsBeforeDeprecatedOnes) {
    const Ptr system(BCoordSys::FromEPSGCode("2199"));  // Albanian 1987 / Gauss Kruger zone 4, withdrawn
    const auto found = Source().Equivalent(*system->GetGCCoordSys());
    ASSERT_GE(found.size(), 2U);
    EXPECT_EQ(found.front().GetIssuerCode("EPSG"), BString("2462"));
    EXPECT_EQ(found.front().GetStatus() & CEquivalent::kDeprecated, 0);
    const auto old = std::ranges::find_if(
        found, [](const CEquivalent& entry) { return entry.GetIssuerCode("EPSG") == BString("2199"); });
    ASSERT_NE(old, found.end());
    EXPECT_NE(old->GetStatus() & CEquivalent::kDeprecated, 0);
}

TEST(CDataSource, ForgivesRoundedNumbersWhenAskedTo) {
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

TEST(CDataSource, KeepsWhatIsStored) {
    const Ptr system(BCoordSys::FromEPSGCode("32612"));
    auto& object = dynamic_cast<CS::CProjectedCoordSys&>(*system->GetGCCoordSys());
    object.GetIdentifiers().RemoveAll();
    EXPECT_FALSE(Source().PutSerializable(CDataSource::kProjectedCoordSys, object, true, true));
    object.SetGeodeticCoordSys(*Source().GetGeodeticCoordSysNonThrow("ERMapper", "SAD69"));
    object.SetName("kept");
    object.GetIdentifiers().Add(kValGc, "kept");
    EXPECT_FALSE(Source().PutSerializable(1, object, true, true));
    EXPECT_TRUE(Source().PutSerializable(CDataSource::kProjectedCoordSys, object, true, true));
    EXPECT_FALSE(Source().PutSerializable(CDataSource::kProjectedCoordSys, object, false, true));
    EXPECT_TRUE(Source().PutSerializable(CDataSource::kProjectedCoordSys, object, true, true));
    // A copy: what happens to the object afterwards is its own affair.
    object.SetName("changed");
    const auto found = Source().Find(kValGc, "kept");
    ASSERT_TRUE(found);
    EXPECT_EQ(BCoordSys(found).GetName(), BString("kept"));
    const auto same = Source().Equivalent(object);
    ASSERT_EQ(same.size(), 1U);
    EXPECT_EQ(same.front().GetIssuerCode(kValGc), BString("kept"));
}

}  // namespace
}  // namespace GeoCalc::DB
