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

/// A system, and the object through which it is changed.
struct Changed {
    explicit Changed(const char* epsg) : system(BCoordSys::FromEPSGCode(epsg)) {}
    CProjectedCoordSys& Object() const { return dynamic_cast<CProjectedCoordSys&>(*system->GetGCCoordSys()); }
    CParameterCollection& Parameters() const { return Object().GetProjection().GetParameters(); }
    void SetFalseEasting(double metres) const {
        ML::CLinearValue easting = Parameters().GetLinearValue(kValFalseEasting);
        easting.SetInternal(metres);
        Parameters().SetLinearValue(kValFalseEasting, easting);
    }
    void SetDatum(const char* name) const {
        Object().SetGeodeticCoordSys(*CDataSource::Instance().GetGeodeticCoordSysNonThrow("ERMapper", name));
    }
    Tellurion::BPoint At(double longitude, double latitude) const {
        return system->ConvertFromGeodetic({longitude, latitude, 0.0});
    }
    const std::unique_ptr<BCoordSys> system;
};

TEST(CProjectedCoordSys, ShowsItsParts) {
    const Changed california("2230");  // NAD83 / California zone 6 (ftUS)
    const CProjectedCoordSys& object = california.Object();
    EXPECT_EQ(object.GetProjection().GetKind(), 9802);
    const CParameterCollection& parameters = object.GetProjection().GetParameters();
    EXPECT_EQ(parameters.Count(), 6U);
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

TEST(CProjectedCoordSys, ChangesTheSystemWithItsParts) {
    const Changed feet("32612"), moved("32612"), by_system("32612"), by_datum("32612"), known("26712");
    const Tellurion::BPoint before = feet.At(-110, 45);
    feet.Object().SetProjectedPoint(*CDataSource::Instance().GetProjectedPoint("GC", "4497"));
    EXPECT_EQ(feet.system->GetUnits()->GetName(), BString("US survey foot"));
    ML::CLinearValue easting;
    easting.SetUnits(feet.Object().GetProjectedPoint().GetEast().GetUnits());
    easting.SetInternal(500000.0);
    feet.Parameters().SetLinearValue(kValFalseEasting, easting);
    EXPECT_NEAR(feet.At(-110, 45).x, before.x * 3937.0 / 1200.0, 1e-5);
    EXPECT_NEAR(feet.At(-110, 45).y, before.y * 3937.0 / 1200.0, 1e-5);
    EXPECT_NE(feet.system->ToEPSGCode(), BString("EPSG:32612"));

    moved.SetFalseEasting(600000.0);
    EXPECT_NEAR(moved.At(-111, 0).x, 600000.0, 1e-6);
    // A parameter that is not a length stays.
    moved.Parameters().SetLinearValue("CENTRAL_MERIDIAN",
                                      moved.Parameters().GetLinearValue(kValFalseEasting));
    EXPECT_NEAR(moved.At(-111, 0).x, 600000.0, 1e-6);

    by_system.SetDatum("NAD27");
    *by_datum.Object().GetHorizontalDatum() =
        *CDataSource::Instance().GetHorizontalDatumNonThrow("ERMapper", "NAD27");
    for (const Changed* changed : {&by_system, &by_datum}) {
        EXPECT_EQ(changed->system->ToEPSGCode(), BString("EPSG:26712"));
        EXPECT_NEAR(changed->At(-110, 45).y, known.At(-110, 45).y, 1e-6);
    }
    EXPECT_EQ(Changed("32612").system->ToEPSGCode(), BString("EPSG:32612"));
}

TEST(CProjectedCoordSys, GoesWithACopyOfTheSystem) {
    const Changed changed("32612");
    changed.SetDatum("NAD27");
    changed.Object().SetName("mine");
    const BCoordSys copy(*changed.system);
    changed.Object().SetName("another");
    EXPECT_EQ(copy.GetName(), BString("mine"));
    EXPECT_EQ(changed.system->GetName(), BString("another"));
}

TEST(CProjection, ComparesWithinRounding) {
    const auto projection = [](const char* epsg) {
        return std::as_const(Changed(epsg).Object()).GetProjection();
    };
    EXPECT_TRUE(projection("32612").IsNearlyEqual(projection("26712")));
    // Another meridian, another hemisphere, another method; and a grid in feet, whatever
    // the ground says.
    for (const auto& [a, b] :
         {std::pair{"32612", "32613"}, {"32612", "32712"}, {"3857", "3395"}, {"2230", "26946"}})
        EXPECT_FALSE(projection(a).IsNearlyEqual(projection(b))) << a << ' ' << b;
    const Changed moved("32612");
    moved.SetFalseEasting(500000.001);
    EXPECT_TRUE(moved.Object().GetProjection().IsNearlyEqual(projection("32612")));
    EXPECT_FALSE(moved.Object().GetProjection().IsEqual(projection("32612")));
    moved.SetFalseEasting(500000.01);
    EXPECT_FALSE(moved.Object().GetProjection().IsNearlyEqual(projection("32612")));
}

}  // namespace
}  // namespace GeoCalc::CS
