// Saving into a GeoTIFF: GDAL alone reports afterwards what the file holds.

#include <Tellurion/BIdentifier.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/QuietProj.h>

#include "GeoTiffRoads.h"
#include "SmallDisk.h"

#include <filesystem>
#include <thread>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using namespace GdalFiles;

std::string CodeOf(const OGRSpatialReference* system) {
    const char* code = system ? system->GetAuthorityCode(nullptr) : nullptr;
    return code ? code : "";
}

std::string RegistrationOf(const std::string& file) {
    const Dataset raster = Open(file);
    const char* word = raster->GetMetadataItem("AREA_OR_POINT", "");
    return word ? word : "";
}

// Rotated, a quarter turn, feet, degrees, large numbers, rows to the north, heights above the
// ellipsoid, and both axes to the south.
const std::pair<const char*, Six> kPlaces[] = {
    {"32633", {9.5, 2.25, 500000.1, 2.125, -9.75, 4100000.7}},
    {"32633", {0, 0.3, 500000.1, -0.3, 0, 4100000.7}},
    {"2277", {1.0 / 3, 0, 2345678.9, 0, -1.0 / 3, 9876543.21}},
    {"4326", {1.0 / 3600, 0, -122.123456789012, 0, -1.0 / 3600, 45.3}},
    {"3857", {152.8740565703525, 0, -20037508.342789244, 0, -152.8740565703525, 20037508.342789244}},
    {"32733", {10, 0, 500000, 0, 10, 4100000}},
    {"4979", {0.1, 0, 9, 0, -0.1, 48}},
    {"32661", {10, 0, 2000000, 0, -10, 2000000}},
    {"", {0.1, 0, 0.7, 0, -0.1, 0.9}}};

TEST_F(GeoTiff, IsSavedToTheLastBit) {
    for (const auto& [epsg, t] : kPlaces)
        for (const bool by_name : kBothRoads) {
            SCOPED_TRACE(epsg + std::string(by_name ? " by name" : " by type"));
            const std::string file = MakeTiff(folder / "map.tif", 3);
            const auto pixels = Pixels(file);
            BGeoReference reference = References::WithAffine(t[0], t[1], t[2], t[3], t[4], t[5]);
            if (*epsg) References::SetSystem(reference, epsg);
            reference.SetPixelAsPointRegistered(by_name);
            ASSERT_EQ(Save(by_name, file, reference).type, "");
            const Dataset raster = Open(file);
            Six gt{};
            EXPECT_EQ(raster->GetGeoTransform(gt.data()), CE_None);
            EXPECT_EQ(gt, (Six{t[2], t[0], t[1], t[5], t[3], t[4]}));
            EXPECT_EQ(CodeOf(raster->GetSpatialRef()), epsg);
            // GDAL itself takes a raster with a system for area registered.
            EXPECT_EQ(RegistrationOf(file), by_name ? "Point" : *epsg ? "Area" : "");
            EXPECT_EQ(Pixels(file), pixels);
            EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "."), {}), 1);
            EXPECT_EQ(References::Terms(Good(kTiff, file)), t);
        }
    // A registration that is there stays.
    BGeoReference point = plain;
    point.SetPixelAsPointRegistered(true);
    const std::string file =
        folder.Write("area.tif", Vrt("<Metadata><MDI key=\"AREA_OR_POINT\">Area</MDI></Metadata>"));
    ASSERT_EQ(Roads::Save(kTiff, file, point).type, "");
    EXPECT_EQ(RegistrationOf(file), "Area");
}

// With heights, an epoch, and beyond version 1 of well-known text; for the first time in a thread
// while PROJ is silenced in another.
TEST_F(GeoTiff, SavesTheWholeSystem) {
    const std::string unit = ",ANGLEUNIT[\"degree\",0.0174532925199433]";
    const std::string pole =
        "GEOGCRS[\"turned pole\",BASEGEOGCRS[\"WGS 84\",DATUM[\"World Geodetic System 1984\","
        "ELLIPSOID[\"WGS 84\",6378137,298.257223563]]],DERIVINGCONVERSION[\"turned pole\","
        "METHOD[\"PROJ ob_tran o_proj=longlat\"],PARAMETER[\"o_lat_p\",52" +
        unit + "],PARAMETER[\"o_lon_p\",-30" + unit + "],PARAMETER[\"lon_0\",-25" + unit +
        "]],CS[ellipsoidal,2],AXIS[\"latitude\",north],AXIS[\"longitude\",east]" + unit + "]";
    const std::unique_ptr<BCoordSys> itrf(BCoordSys::FromText("EPSG:9000"));
    const std::string epoch = "COORDINATEMETADATA[" + itrf->ToWKT2().StdStr() + ",EPOCH[2021.25]]";
    const QuietProj quiet;
    for (const std::string& text : {std::string("EPSG:7415"), std::string("EPSG:8857"), epoch, pole})
        for (const bool by_name : kBothRoads) {
            SCOPED_TRACE(text);
            const std::string file = MakeTiff(folder / "map.tif");
            BGeoReference reference = plain;
            reference.SetCoordSys(BSharedPtr<BCoordSys>(BCoordSys::FromText(BString(text))));
            std::thread([&] {
                EXPECT_EQ(Save(by_name, file, reference).type, "");
                const BGeoReference back = Good(kTiff, file);
                ASSERT_TRUE(back.HasCoordSys());
                EXPECT_TRUE(back.CoordSys->IsSame(*reference.CoordSys)) << back.CoordSys->ToWKT2().StdStr();
                EXPECT_EQ(back.CoordSys->GetCoordinateEpoch(), reference.CoordSys->GetCoordinateEpoch());
            }).join();
            std::filesystem::remove(file + ".aux.xml");
        }
}

BGeoReference WithPoints(bool with_transform = false) {
    const std::vector<BPointPair> pairs = {{0, 0, 500000.1, 4100000.2, 3, "north west", true},
                                           {20, 0, 500200, 4100000, 0, "", true},
                                           {7, 7, 1, 1, 1, "switched off", false},
                                           {0, 10, 500000, 4099900, 0, "three", true}};
    BGeoReference reference = References::WithPoints(pairs);
    if (with_transform)
        reference.SetMathTransform(BMathTransform(EMathTransformType::Affine, pairs, 20, 10, true));
    References::SetSystem(reference, "32633");
    return reference;
}

TEST_F(GeoTiff, SavesEnabledPointsInPlaceOfATransform) {
    for (const bool by_name : kBothRoads) {
        const std::string file = MakeTiff(folder / "map.tif", 1, [](GDALDataset& raster) {
            double old[6] = {1, 2, 0, 3, 0, -4};
            raster.SetGeoTransform(old);
        });
        const auto pixels = Pixels(file);
        ASSERT_EQ(Save(by_name, file, WithPoints(true)).type, "");
        const Dataset raster = Open(file);
        double gt[6];
        EXPECT_NE(raster->GetGeoTransform(gt), CE_None);
        ASSERT_EQ(raster->GetGCPCount(), 3);
        const GDAL_GCP* points = raster->GetGCPs();
        EXPECT_EQ(points[0].dfGCPX, 500000.1);
        EXPECT_EQ(points[0].dfGCPY, 4100000.2);
        EXPECT_EQ(points[0].dfGCPZ, 3);
        EXPECT_EQ(points[1].dfGCPPixel, 20);
        EXPECT_EQ(points[2].dfGCPLine, 10);
        EXPECT_EQ(CodeOf(raster->GetGCPSpatialRef()), "32633");
        EXPECT_EQ(Pixels(file), pixels);
    }
    // A form that keeps names.
    const std::string file = folder.Write("named.tif", Vrt(""));
    ASSERT_EQ(Roads::Save(file, WithPoints()).type, "");
    EXPECT_STREQ(Open(file)->GetGCPs()[0].pszId, "north west");
}

BSharedPtr<BLinearUnit> UnitOf(const char* code) {
    return BLinearUnit::GetLinearUnit(BIdentifier("GC", code));
}

TEST_F(GeoTiff, SavesTheVerticalUnitByTypeIntoABandWithoutColour) {
    const std::string band = VrtBand(1, ""), gray = VrtBand(1, "<ColorInterp>Gray</ColorInterp>");
    for (const auto& [label, code] : kUnits) {
        BGeoReference reference = plain;
        reference.SetVerticalUnit(UnitOf(code));
        const auto saved = [&](const std::string& bands, bool by_name) {
            const std::string file = folder.Write("map.tif", VrtText("", bands));
            EXPECT_EQ(Save(by_name, file, reference).type, "");
            return std::string(Open(file)->GetRasterBand(1)->GetUnitType());
        };
        EXPECT_EQ(saved(band, false), label);
        EXPECT_EQ(saved(band, true) + saved(gray, false) + saved(band + VrtBand(2, ""), false), "") << code;
    }
}

TEST_F(GeoTiff, NamesWhatGdalRefuses) {
    const std::string write = "BRefGeoTIFF::Write";
    BGeoReference points = WithPoints();
    const std::tuple<const char*, const BGeoReference*, const char*, const char*> cases[] = {
        {"ODDRASTER no-points", &points, "Failed to set GCP's", "Error in SetGCP's."},
        {"ODDRASTER no-transform", &plain, "Failed to set Transform", "Error in SetTransform."},
        {"ODDRASTER no-system", &points, "Failed to set Projection", "Error in SetProjection."}};
    for (const auto& [content, reference, message, detail] : cases) {
        const std::string file = folder.Write("odd.tif", content);
        for (const bool by_name : kBothRoads)
            ExpectThrown(Save(by_name, file, *reference), "BException", write, detail);
        EXPECT_NE(log.lines.back().find(message), std::string::npos) << log.lines.back();
    }
    // By name a vertical unit that is accepted makes up for points that are not.
    points.SetVerticalUnit(UnitOf("METERS"));
    const std::string odd = folder.Write("d.tif", "ODDRASTER no-points");
    EXPECT_EQ(Roads::Save(odd, points).type, "");
    EXPECT_EQ(Roads::Save(kTiff, odd, points).type, "BException");

    const std::string none = folder / "none.tif",
                      starved = folder.Write("starved.tif", "ODDRASTER no-memory");
    log.lines.clear();
    ExpectThrown(Roads::Save(none, plain), kNoAccess, write, "GeoTIFF write could not open file");
    EXPECT_EQ(log.lines.at(0), "BRefGeoTIFF::Write Failed to open file <" + none + ">");
    ExpectThrown(Roads::Save(kTiff, none, plain), kNoAccess, write,
                 "GeoTIFF write could not open file <" + none + ">.");
    EXPECT_FALSE(std::filesystem::exists(none));
    ExpectThrown(Roads::Save(kTiff, starved, plain), "BResourceException", write, "not a byte left");
    EXPECT_EQ(Roads::Save(starved, plain).type, "");
    // A failure at the close is not hidden by what comes after.
    const std::string closing = folder.Write("closing.tif", "ODDRASTER no-close");
    for (const bool by_name : kBothRoads)
        ExpectThrown(Save(by_name, closing, plain), kWriteFailure, write,
                     "Failed writing GeoTIFF file <" + closing + ">: the cable was pulled");
}

TEST_F(GeoTiff, ReportsASystemThatCannotBeSavedWhenStrict) {
    const std::string file = MakeTiff(folder / "map.tif"), before = TempFolder::Slurp(file);
    EXPECT_EQ(Roads::Save(file, BGeoReference()).type, kUnsupported);
    EXPECT_EQ(Roads::Save(kTiff, file, BGeoReference(), Roads::kStrict).type, "");
    EXPECT_EQ(TempFolder::Slurp(file), before);
    BGeoReference reference = plain;
    const auto strict = [&](const std::string& wkt) {
        reference.SetCoordSys(BSharedPtr<BCoordSys>(BCoordSys::FromWKT(BString(wkt))));
        return Roads::Save(kTiff, file, reference, BMapAnchor::kStrictCoordSys);
    };
    // A local system is saved, and still does not place the raster on the Earth.
    ExpectThrown(strict("LOCAL_CS[\"the yard\",UNIT[\"metre\",1]]"), kInvalidSystem, "BRefGeoTIFF::Write",
                 "Unable to save Coordinate System <the yard> to GeoTIFF file <" + file + ">");
    EXPECT_EQ(References::Terms(Good(file))[0], 1);
}

// On a small disk of its own. What GDAL keeps beside a raster goes before what the raster
// holds, so a save changes it too.
TEST_F(GeoTiff, AFullDiskLeavesTheRasterAndItsMetadataAsTheyWere) {
    const TempFolder own;
    const SmallDisk disk(own / ".", "64k");
    if (!disk.IsMounted()) GTEST_SKIP() << "only root can have a small disk";
    // Little is left of the file's last page, so that the disk is full for it.
    const auto make = [](const std::string& name, std::size_t letters) {
        return MakeTiff(name, 1, [letters](GDALDataset& raster) {
            raster.SetMetadataItem("TIFFTAG_IMAGEDESCRIPTION", std::string(letters, 'x').c_str());
        });
    };
    const std::size_t size = std::filesystem::file_size(make(folder / "size.tif", 100)) % 4096;
    const std::string file = make(own / "map.tif", 100 + (4096 + 4000 - size) % 4096);
    ASSERT_GT(std::filesystem::file_size(file) % 4096, 3900U);
    const std::string metadata =
        "<PAMDataset><GeoTransform>1,2,3,4,5,6</GeoTransform><Metadata><MDI key=\"of\">" +
        std::string(6000, 'x') + "</MDI></Metadata></PAMDataset>\n";
    own.Write("map.tif.aux.xml", metadata);
    const std::string before = TempFolder::Slurp(file);
    const BGeoReference reference = References::Of("32633", {10, 0, 500000, 0, -10, 4100000});
    std::ofstream ballast(own / "ballast", std::ios::binary);
    while (ballast.put('x'))
        ballast.flush();
    ballast.close();
    for (const bool by_name : kBothRoads) {
        const Thrown thrown = Save(by_name, file, reference);
        EXPECT_EQ(thrown.type, kWriteFailure);
        EXPECT_TRUE(thrown.detail.starts_with("Failed writing GeoTIFF file <" + file + ">: "));
        EXPECT_TRUE(TempFolder::Slurp(file) == before);
        EXPECT_EQ(TempFolder::Slurp(own / "map.tif.aux.xml"), metadata);
    }
    std::filesystem::remove(own / "ballast");
    EXPECT_EQ(Roads::Save(kTiff, file, reference, Roads::kStrict).type, "");
    EXPECT_EQ(References::Terms(Good(file))[0], 10);
    EXPECT_STREQ(Open(file)->GetMetadataItem("of"), std::string(6000, 'x').c_str());
    ASSERT_TRUE(disk.MakeReadOnly());
    EXPECT_EQ(Save(true, file, plain).type, kNoAccess);
}

/// `tiff` with one value below 65536 of its directory replaced.
std::string WithValue(std::string tiff, const char (&tag_and_type)[4], char value) {
    const std::size_t entry = tiff.find(tag_and_type + std::string("\0\1\0\0\0", 5));
    EXPECT_NE(entry, std::string::npos) << "no such entry";
    if (entry != std::string::npos) tiff.replace(entry + 8, 2, {value, '\0'});
    return tiff;
}

// GDAL opens all of them. libtiff crashes on the first and the last; of the others, what is
// written would be read as pixels.
TEST_F(GeoTiff, ARasterThatCannotBeWrittenSafelyStays) {
    const std::string file = MakeTiff(folder / "map.tif");
    const std::string whole = TempFolder::Slurp(file);
    std::string offsets_as_text = whole;
    offsets_as_text.replace(whole.find("\x11\x01\x04") + 2, 1, "\x02");
    for (const std::string& content : {WithValue(whole, "\x16\x01\x03", 1), whole.substr(0, whole.size() - 9),
                                       WithValue(whole, "\x11\x01\x04", 0), offsets_as_text}) {
        folder.Write("map.tif", content);
        for (const bool by_name : kBothRoads)
            EXPECT_EQ(Save(by_name, file, plain).type, "BGeoReferenceWriteException");
        EXPECT_TRUE(TempFolder::Slurp(file) == content);
    }
}

}  // namespace
}  // namespace MapAnchor
