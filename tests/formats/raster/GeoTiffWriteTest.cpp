// Saving into a GeoTIFF: GDAL alone says afterwards what the file holds.

#include <Tellurion/BIdentifier.h>
#include <Tellurion/BLinearUnit.h>

#include "GeoTiffRoads.h"
#include "SmallDisk.h"

#include <filesystem>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using namespace GdalFiles;

Six GeoTransformOf(GDALDataset& raster) {
    Six gt{};
    EXPECT_EQ(raster.GetGeoTransform(gt.data()), CE_None);
    return gt;
}

std::string CodeOf(const OGRSpatialReference* system) {
    const char* code = system ? system->GetAuthorityCode(nullptr) : nullptr;
    return code ? code : "";
}

std::string RegistrationOf(GDALDataset& raster) {
    const char* word = raster.GetMetadataItem("AREA_OR_POINT", "");
    return word ? word : "";
}

constexpr struct {
    const char* name;
    Six terms;  ///< a, b, c, d, e, f
    const char* epsg;
    bool point = false;
} kPlaces[] = {
    {"rotated_utm", {9.5, 2.25, 500000.1, 2.125, -9.75, 4100000.7}, "32633"},
    {"quarter_turn", {0, 0.3, 500000.1, -0.3, 0, 4100000.7}, "32633"},
    {"state_plane_feet", {1.0 / 3, 0, 2345678.9, 0, -1.0 / 3, 9876543.21}, "2277"},
    {"geographic", {1.0 / 3600, 0, -122.123456789012, 0, -1.0 / 3600, 45.3}, "4326"},
    {"web_mercator",
     {152.8740565703525, 0, -20037508.342789244, 0, -152.8740565703525, 20037508.342789244},
     "3857"},
    {"polar", {1000.1, 0, -3850000.3, 0, -1000.1, 5850000.7}, "3413"},
    {"south_up", {10, 0, 500000, 0, 10, 4100000}, "32733"},
    {"pixel_is_point", {10, 0, 500000, 0, -10, 4100000}, "32633", true},
    {"no_system", {0.1, 0, 0.7, 0, -0.1, 0.9}, ""},
};

TEST_F(GeoTiff, GdalReadsWhatWasSavedToTheLastBit) {
    for (const auto& test : kPlaces) {
        for (const bool by_name : kBothRoads) {
            SCOPED_TRACE(std::string(test.name) + (by_name ? " by name" : " by type"));
            const std::string file = MakeTiff(folder / "map.tif", 3);
            const auto pixels = Pixels(file);
            const Six& t = test.terms;
            BGeoReference reference = References::WithAffine(t[0], t[1], t[2], t[3], t[4], t[5]);
            if (*test.epsg) References::SetSystem(reference, test.epsg);
            reference.SetPixelAsPointRegistered(test.point);
            ASSERT_EQ(Save(by_name, file, reference).type, "");
            const Dataset raster = Open(file);
            EXPECT_EQ(GeoTransformOf(*raster), (Six{t[2], t[0], t[1], t[5], t[3], t[4]}));
            EXPECT_EQ(CodeOf(raster->GetSpatialRef()), test.epsg);
            // GDAL itself takes a raster with a system for area registered.
            EXPECT_EQ(RegistrationOf(*raster), test.point ? "Point" : *test.epsg ? "Area" : "");
            EXPECT_EQ(Pixels(file), pixels);
            EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "."), {}), 1);
            EXPECT_EQ(References::Terms(Good(kTiff, file)), t);
        }
    }
}

BGeoReference WithPoints(bool with_transform) {
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

TEST_F(GeoTiff, PointsAreSavedInThePlaceOfATransform) {
    for (const bool by_name : kBothRoads) {
        const std::string file = MakeTiff(folder / "map.tif", 1, [](GDALDataset& raster) {
            double old[6] = {1, 2, 0, 3, 0, -4};
            raster.SetGeoTransform(old);
        });
        const auto pixels = Pixels(file);
        const BGeoReference reference = WithPoints(true);
        ASSERT_EQ(Save(by_name, file, reference).type, "");
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
    ASSERT_EQ(Roads::Save(file, WithPoints(false)).type, "");
    EXPECT_STREQ(Open(file)->GetGCPs()[0].pszId, "north west");
}

TEST_F(GeoTiff, PointsThatAreAllSwitchedOffAreNone) {
    BGeoReference reference = WithPoints(false);
    for (BPointPair& pair : reference.PointPairVector)
        pair.Enabled = false;
    const std::string file = MakeTiff(folder / "map.tif");
    EXPECT_EQ(Roads::Save(file, reference).type, "");
    EXPECT_EQ(Open(file)->GetGCPCount(), 0);
    EXPECT_EQ(CodeOf(Open(file)->GetSpatialRef()), "32633");
}

TEST_F(GeoTiff, ARegistrationThatIsThereStays) {
    for (const char* word : {"Area", "Raster"}) {
        const std::string file = folder.Write("map.tif", Vrt("<Metadata><MDI key=\"AREA_OR_POINT\">" +
                                                             std::string(word) + "</MDI></Metadata>"));
        BGeoReference reference = plain;
        reference.SetPixelAsPointRegistered(true);
        ASSERT_EQ(Roads::Save(kTiff, file, reference).type, "");
        EXPECT_EQ(RegistrationOf(*Open(file)), word);
    }
    const std::string file = folder.Write("bare.tif", Vrt(""));
    ASSERT_EQ(Roads::Save(kTiff, file, plain).type, "");
    EXPECT_EQ(RegistrationOf(*Open(file)), "");
}

TEST_F(GeoTiff, TheVerticalUnitIsSavedByTypeIntoABandWithoutColour) {
    const std::pair<const char*, const char*> units[] = {
        {"METERS", "m"}, {"INTERNATIONAL FEET", "ft"}, {"USFEET", "sft"}, {"INTERNATIONAL YARDS", "yd"},
        {"YARD", "syd"}, {"FATHOM", "fath"},           {"RODS", "rd"},    {"KILOMETERS", ""},
    };
    const std::string band = VrtBand(1, "");
    const std::string gray = VrtBand(1, "<ColorInterp>Gray</ColorInterp>");
    for (const auto& [code, label] : units) {
        SCOPED_TRACE(code);
        BGeoReference reference = plain;
        reference.SetVerticalUnit(BLinearUnit::GetLinearUnit(BIdentifier(BString("GC"), BString(code))));
        ASSERT_TRUE(reference.HasVerticalUnit());
        const auto saved = [&](const std::string& bands, bool by_name) {
            const std::string file = folder.Write("map.tif", VrtText("", bands));
            EXPECT_EQ(Save(by_name, file, reference).type, "");
            return std::string(Open(file)->GetRasterBand(1)->GetUnitType());
        };
        EXPECT_EQ(saved(band, false), label);
        EXPECT_EQ(saved(band, true), "");
        EXPECT_EQ(saved(gray, false), "");
        EXPECT_EQ(saved(band + VrtBand(2, ""), false), "");
    }
}

TEST_F(GeoTiff, WhatGdalRefusesIsNamed) {
    BGeoReference reference = WithPoints(false);
    const struct {
        const char* content;
        const BGeoReference& reference;
        const char* message;
        const char* detail;
    } cases[] = {
        {"ODDRASTER no-points", reference, "Failed to set GCP's", "Error in SetGCP's."},
        {"ODDRASTER no-transform", plain, "Failed to set Transform", "Error in SetTransform."},
        {"ODDRASTER no-system", reference, "Failed to set Projection", "Error in SetProjection."},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.content);
        const std::string file = folder.Write("odd.tif", test.content);
        for (const bool by_name : kBothRoads)
            ExpectThrown(Save(by_name, file, test.reference),
                         {"BException", "BRefGeoTIFF::Write", test.detail});
        try {
            BMapAnchor::Save(BString(file), test.reference, 20, 10, BString(), nullptr);
        } catch (const BException& error) {
            EXPECT_EQ(error.GetMessageText(), BString(test.message));
        }
    }
    EXPECT_EQ(Roads::Save(folder / "odd.tif", plain).type, "");  // has no system to refuse

    // By name a vertical unit that is taken makes up for points that are not.
    reference.SetVerticalUnit(BLinearUnit::GetLinearUnit(BIdentifier(BString("GC"), BString("METERS"))));
    const std::string odd = folder.Write("d.tif", "ODDRASTER no-points");
    EXPECT_EQ(Roads::Save(odd, reference).type, "");
    EXPECT_EQ(Roads::Save(kTiff, odd, reference).type, "BException");
}

TEST_F(GeoTiff, FilesThatDoNotOpenForWriting) {
    const std::string none = folder / "none.tif";
    ExpectThrown(Roads::Save(none, plain),
                 {kNoAccess, "BRefGeoTIFF::Write", "GeoTIFF write could not open file"});
    ASSERT_EQ(log.lines.size(), 2U);
    EXPECT_EQ(log.lines[0], "BRefGeoTIFF::Write Failed to open file <" + none + ">");
    ExpectThrown(Roads::Save(kTiff, none, plain),
                 {kNoAccess, "BRefGeoTIFF::Write", "GeoTIFF write could not open file <" + none + ">."});
    EXPECT_FALSE(std::filesystem::exists(none));

    const std::string starved = folder.Write("starved.tif", "ODDRASTER no-memory");
    ExpectThrown(Roads::Save(kTiff, starved, plain),
                 {"BResourceException", "BRefGeoTIFF::Write", "not a byte left"});
    EXPECT_EQ(Roads::Save(starved, plain).type, "");
}

BSharedPtr<BCoordSys> SystemOf(const std::string& wkt) {
    return BSharedPtr<BCoordSys>(BCoordSys::FromWKT(BString(wkt)));
}

TEST_F(GeoTiff, ASystemThatCannotBeSavedIsAFaultForTheStrict) {
    BGeoReference reference = plain;
    // No text of the older kind tells a derived geographic system.
    reference.SetCoordSys(SystemOf(
        "GEOGCRS[\"turned pole\",BASEGEOGCRS[\"WGS 84\",DATUM[\"World Geodetic System 1984\","
        "ELLIPSOID[\"WGS 84\",6378137,298.257223563]]],DERIVINGCONVERSION[\"turned pole\","
        "METHOD[\"PROJ ob_tran o_proj=longlat\"],PARAMETER[\"o_lat_p\",52,ANGLEUNIT[\"degree\","
        "0.0174532925199433]],PARAMETER[\"o_lon_p\",-30,ANGLEUNIT[\"degree\",0.0174532925199433]],"
        "PARAMETER[\"lon_0\",-25,ANGLEUNIT[\"degree\",0.0174532925199433]]],CS[ellipsoidal,2],"
        "AXIS[\"latitude\",north],AXIS[\"longitude\",east],ANGLEUNIT[\"degree\",0.0174532925199433]]"));
    ASSERT_TRUE(reference.HasCoordSys());
    ASSERT_TRUE(reference.CoordSys->ToWKT().IsEmpty());
    const std::string file = MakeTiff(folder / "map.tif");
    ExpectThrown(Roads::Save(kTiff, file, reference, BMapAnchor::kStrictCoordSys),
                 {kInvalidSystem, "BRefGeoTIFF::Write",
                  "Couldn't generate a valid WKT string from CoordSys <turned pole>"});
    EXPECT_EQ(Roads::Save(kTiff, file, reference, BMapAnchor::kStrictTransform).type, "");
    EXPECT_EQ(Roads::Save(file, reference).type, "");

    // A local system is saved, and is still none that places the raster on the Earth.
    reference.SetCoordSys(SystemOf("LOCAL_CS[\"the yard\",UNIT[\"metre\",1]]"));
    ASSERT_TRUE(reference.HasCoordSys());
    ExpectThrown(Roads::Save(kTiff, file, reference, BMapAnchor::kStrictCoordSys),
                 {kInvalidSystem, "BRefGeoTIFF::Write",
                  "Unable to save Coordinate System <the yard> to GeoTIFF file <" + file + ">"});
    EXPECT_EQ(GeoTransformOf(*Open(file))[1], 1);
}

TEST_F(GeoTiff, NothingToSaveIsNoSaveByName) {
    const std::string file = MakeTiff(folder / "map.tif");
    const std::string before = TempFolder::Slurp(file);
    EXPECT_EQ(Roads::Save(file, BGeoReference()).type, kUnsupported);
    EXPECT_EQ(Roads::Save(kTiff, file, BGeoReference(), Roads::kStrict).type, "");
    EXPECT_EQ(TempFolder::Slurp(file), before);
}

TEST_F(GeoTiff, AFailureAtTheCloseIsNotHiddenByWhatComesAfter) {
    const std::string file = folder.Write("map.tif", "ODDRASTER no-close");
    for (const bool by_name : kBothRoads)
        ExpectThrown(Save(by_name, file, plain),
                     {kWriteFailure, "BRefGeoTIFF::Write",
                      "Failed writing GeoTIFF file <" + file + ">: the cable was pulled"});
}

/// A raster on a small disk of its own.
class GeoTiffOnSmallDisk : public GeoTiff {
protected:
    void SetUp() override {
        if (!disk.IsMounted()) GTEST_SKIP() << "only root can have a small disk";
    }
    /// Fills the disk but for that many bytes.
    void FillUp(std::size_t leave) const {
        std::ofstream out(own / "ballast", std::ios::binary);
        while (out.put('x'))
            out.flush();
        out.close();
        const auto size = std::filesystem::file_size(own / "ballast");
        std::filesystem::resize_file(own / "ballast", size > leave ? size - leave : 0);
    }

    const TempFolder own;
    const SmallDisk disk{own / ".", "64k"};
    const std::string file = own / "map.tif";
};

/// Whose records do not find room in the last page of a small file.
BGeoReference ManyPoints() {
    std::vector<BPointPair> pairs;
    for (long i = 0; i < 1000; ++i)
        pairs.emplace_back(i % 20, i / 20, 500000.0 + static_cast<double>(i), 4100000.0, 0.0, "", true);
    BGeoReference reference = References::WithPoints(pairs);
    References::SetSystem(reference, "32633");
    return reference;
}

TEST_F(GeoTiffOnSmallDisk, AFullDiskLeavesTheRasterAsItWas) {
    MakeTiff(file);
    const std::string before = TempFolder::Slurp(file);
    for (const std::size_t leave : {0U, 4096U, 16384U}) {
        FillUp(leave);
        for (const bool by_name : kBothRoads) {
            const Thrown thrown = Save(by_name, file, ManyPoints());
            EXPECT_EQ(thrown.type, kWriteFailure) << leave;
            EXPECT_TRUE(thrown.detail.starts_with("Failed writing GeoTIFF file <" + file + ">: "));
            EXPECT_TRUE(TempFolder::Slurp(file) == before) << leave;
        }
        std::filesystem::remove(own / "ballast");
    }
    EXPECT_EQ(Roads::Save(kTiff, file, ManyPoints(), Roads::kStrict).type, "");
    EXPECT_EQ(Open(file)->GetGCPCount(), 1000);
}

// What GDAL keeps beside a raster goes before what the raster holds: a save changes it too.
TEST_F(GeoTiffOnSmallDisk, AFullDiskLeavesTheMetadataBesideTheRasterAsItWas) {
    // Little is left of the file's last page, so that the disk is full for it.
    MakeTiff(file, 1, [](GDALDataset& raster) {
        raster.SetMetadataItem("TIFFTAG_IMAGEDESCRIPTION", std::string(3700, 'x').c_str());
    });
    ASSERT_GT(std::filesystem::file_size(file) % 4096, 3900U);
    const std::string metadata =
        "<PAMDataset><GeoTransform>1,2,3,4,5,6</GeoTransform><Metadata><MDI key=\"of\">" +
        std::string(6000, 'x') + "</MDI></Metadata></PAMDataset>\n";
    own.Write("map.tif.aux.xml", metadata);
    const auto pixels = Pixels(file);
    BGeoReference reference = References::WithAffine(10, 0, 500000, 0, -10, 4100000);
    References::SetSystem(reference, "32633");
    FillUp(0);
    for (const bool by_name : kBothRoads) {
        EXPECT_EQ(Save(by_name, file, reference).type, kWriteFailure);
        EXPECT_EQ(TempFolder::Slurp(own / "map.tif.aux.xml"), metadata);
        EXPECT_EQ(Pixels(file), pixels);
    }
    std::filesystem::remove(own / "ballast");
    EXPECT_EQ(Roads::Save(kTiff, file, reference, Roads::kStrict).type, "");
    EXPECT_EQ(GeoTransformOf(*Open(file))[1], 10);
    EXPECT_STREQ(Open(file)->GetMetadataItem("of"), std::string(6000, 'x').c_str());
}

TEST_F(GeoTiffOnSmallDisk, AReadOnlyDiskRefuses) {
    MakeTiff(file);
    const std::string before = TempFolder::Slurp(file);
    ASSERT_TRUE(disk.MakeReadOnly());
    for (const bool by_name : kBothRoads)
        EXPECT_EQ(Save(by_name, file, plain).type, kNoAccess);
    EXPECT_TRUE(TempFolder::Slurp(file) == before);
}

/// `tiff` with one value below 65536 of its directory replaced.
std::string WithValue(std::string tiff, const char (&tag_and_type)[4], char value) {
    const std::size_t entry = tiff.find(tag_and_type + std::string("\0\1\0\0\0", 5));
    EXPECT_NE(entry, std::string::npos) << "no such entry";
    if (entry != std::string::npos) tiff.replace(entry + 8, 2, {value, '\0'});
    return tiff;
}

// GDAL opens all of them. libtiff crashes on the first; of the others, what is written
// would be read as pixels.
TEST_F(GeoTiff, ARasterThatCannotBeWrittenSafelyStays) {
    const std::string file = MakeTiff(folder / "map.tif");
    const std::string whole = TempFolder::Slurp(file);
    for (const std::string& content : {WithValue(whole, "\x16\x01\x03", 1), whole.substr(0, whole.size() - 9),
                                       WithValue(whole, "\x11\x01\x04", 0)}) {
        folder.Write("map.tif", content);
        for (const bool by_name : kBothRoads)
            EXPECT_EQ(Save(by_name, file, plain).type, "BGeoReferenceWriteException");
        EXPECT_TRUE(TempFolder::Slurp(file) == content);
    }
}

}  // namespace
}  // namespace MapAnchor
