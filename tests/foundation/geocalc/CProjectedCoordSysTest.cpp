#include <GeoCalc/CProjectedCoordSys.h>

#include <GeoCalc/CDataSource.h>
#include <Tellurion/BCoordSys.h>
#include <Tellurion/BUnit.h>

#include <gtest/gtest.h>

#include <memory>

namespace GeoCalc::CS {
namespace {

using DB::CDataSource;
using Tellurion::BCoordSys;
using Tellurion::BString;
using Ptr = std::unique_ptr<BCoordSys>;

CProjectedCoordSys& ObjectOf(const Ptr& system) {
    return dynamic_cast<CProjectedCoordSys&>(*system->GetGCCoordSys());
}

void SetFalseEasting(CParameterCollection& parameters, double metres) {
    ML::CLinearValue easting = parameters.GetLinearValue(kValFalseEasting);
    easting.SetInternal(metres);
    parameters.SetLinearValue(kValFalseEasting, easting);
}

const CDataSource& Source() {
    return CDataSource::Instance();
}

TEST(CProjectedCoordSys, TellsItsParts) {
    const Ptr system(BCoordSys::FromEPSGCode("2230"));  // NAD83 / California zone 6 (ftUS)
    const CProjectedCoordSys& object = ObjectOf(system);
    EXPECT_EQ(object.GetProjection().GetKind(), 9802);
    const CParameterCollection& parameters = object.GetProjection().GetParameters();
    EXPECT_EQ(parameters.Count(), 6U);
    EXPECT_TRUE(parameters.Exists(kValFalseEasting) && parameters.Exists(kValFalseNorthing));
    EXPECT_NEAR(parameters.GetLinearValue(kValFalseEasting).GetValue(), 6561666.667, 1e-6);
    EXPECT_NEAR(parameters.GetLinearValue(kValFalseEasting).GetInternal(), 2000000.0, 1e-3);
    EXPECT_FALSE(parameters.Exists("SCALE_FACTOR"));
    EXPECT_EQ(object.GetProjectedPoint().GetKind(), ML::CProjectedPoint::kEpsg);
    EXPECT_EQ(object.GetIdentifiers().GetCode(kValGc), BString("EPSG:2230"));
    const CHorizontalDatum& datum = object.GetGeodeticCoordSys().GetHorizontalDatum();
    EXPECT_EQ(datum.GetName(), BString("North American Datum 1983"));
    EXPECT_EQ(datum.GetIdentifiers().GetCode("EPSG"), BString("6269"));
    EXPECT_EQ(datum.GetIdentifiers().GetCode("ERMapper"), BString("NAD83"));
}

TEST(CProjectedCoordSys, ChangesTheSystemWithItsUnit) {
    const Ptr system(BCoordSys::FromEPSGCode("32612"));
    const Tellurion::BPoint before = system->ConvertFromGeodetic({-110.0, 45.0, 0.0});
    CProjectedCoordSys& object = ObjectOf(system);
    object.SetProjectedPoint(*Source().GetProjectedPoint("GC", "4497"));
    EXPECT_EQ(system->GetUnits()->GetName(), BString("US survey foot"));
    ML::CLinearValue easting;
    easting.SetUnits(object.GetProjectedPoint().GetEast().GetUnits());
    easting.SetInternal(500000.0);
    object.GetProjection().GetParameters().SetLinearValue(kValFalseEasting, easting);
    const Tellurion::BPoint after = system->ConvertFromGeodetic({-110.0, 45.0, 0.0});
    EXPECT_NEAR(after.x, before.x * 3937.0 / 1200.0, 1e-5);
    EXPECT_NEAR(after.y, before.y * 3937.0 / 1200.0, 1e-5);
    EXPECT_NE(system->ToEPSGCode(), BString("EPSG:32612"));
}

TEST(CProjectedCoordSys, ChangesTheSystemWithItsFalseOrigin) {
    const Ptr system(BCoordSys::FromEPSGCode("32612"));
    CParameterCollection& parameters = ObjectOf(system).GetProjection().GetParameters();
    SetFalseEasting(parameters, 600000.0);
    EXPECT_NEAR(system->ConvertFromGeodetic({-111.0, 0.0, 0.0}).x, 600000.0, 1e-6);
    // What is no length stays.
    parameters.SetLinearValue("CENTRAL_MERIDIAN", parameters.GetLinearValue(kValFalseEasting));
    EXPECT_NEAR(system->ConvertFromGeodetic({-111.0, 0.0, 0.0}).x, 600000.0, 1e-6);
}

TEST(CProjectedCoordSys, ChangesTheSystemWithItsDatum) {
    const Ptr by_system(BCoordSys::FromEPSGCode("32612"));
    ObjectOf(by_system).SetGeodeticCoordSys(*Source().GetGeodeticCoordSysNonThrow("ERMapper", "NAD27"));
    const Ptr by_datum(BCoordSys::FromEPSGCode("32612"));
    *ObjectOf(by_datum).GetHorizontalDatum() = *Source().GetHorizontalDatumNonThrow("ERMapper", "NAD27");
    const Ptr known(BCoordSys::FromEPSGCode("26712"));
    for (const Ptr& system : {std::cref(by_system), std::cref(by_datum)}) {
        EXPECT_EQ(system->ToEPSGCode(), BString("EPSG:26712"));
        EXPECT_NEAR(system->ConvertFromGeodetic({-110.0, 45.0, 0.0}).y,
                    known->ConvertFromGeodetic({-110.0, 45.0, 0.0}).y, 1e-6);
    }
    EXPECT_EQ(Ptr(BCoordSys::FromEPSGCode("32612"))->ToEPSGCode(), BString("EPSG:32612"));
}

TEST(CProjectedCoordSys, GoesWithACopyOfTheSystem) {
    const Ptr system(BCoordSys::FromEPSGCode("32612"));
    ObjectOf(system).SetGeodeticCoordSys(*Source().GetGeodeticCoordSysNonThrow("ERMapper", "NAD27"));
    ObjectOf(system).SetName("mine");
    const BCoordSys copy(*system);
    EXPECT_EQ(copy.GetName(), BString("mine"));
    ObjectOf(system).SetName("another");
    EXPECT_EQ(copy.GetName(), BString("mine"));
    EXPECT_EQ(system->GetName(), BString("another"));
}

TEST(CLinearValue, KeepsItsLengthInAnotherUnit) {
    ML::CLinearValue value;
    value.SetInternal(600000.0);
    value.SetUnits(Tellurion::BLinearUnit::GetLinearUnit({"GC", "USFEET"}));
    EXPECT_NEAR(value.GetValue(), 1968500.0, 1e-8);
    EXPECT_NEAR(value.GetInternal(), 600000.0, 1e-9);
}

TEST(CProjection, IsNearlyEqualWithinRounding) {
    const auto projection = [](const char* epsg) {
        const Ptr system(BCoordSys::FromEPSGCode(epsg));
        return std::as_const(ObjectOf(system)).GetProjection();
    };
    EXPECT_TRUE(projection("32612").IsNearlyEqual(projection("26712")));
    EXPECT_FALSE(projection("32612").IsNearlyEqual(projection("32613")));
    EXPECT_FALSE(projection("32612").IsNearlyEqual(projection("32712")));
    // A grid in feet is not the one in metres, whatever the ground says.
    EXPECT_FALSE(projection("2230").IsNearlyEqual(projection("26946")));
    EXPECT_FALSE(projection("3857").IsNearlyEqual(projection("3395")));
    PJ::CProjection moved = projection("32612");
    SetFalseEasting(moved.GetParameters(), 500000.001);
    EXPECT_TRUE(moved.IsNearlyEqual(projection("32612")));
    EXPECT_FALSE(moved.IsEqual(projection("32612")));
    SetFalseEasting(moved.GetParameters(), 500000.01);
    EXPECT_FALSE(moved.IsNearlyEqual(projection("32612")));
}

}  // namespace
}  // namespace GeoCalc::CS
