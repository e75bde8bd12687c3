// ECW through the front door, by name and by type, and JPEG 2000 by name as far as the
// ECW reader tells it.

#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include "GdalFiles.h"
#include "HeaderFiles.h"
#include "LogCapture.h"
#include "References.h"
#include "Roads.h"
#include "TempFolder.h"

#include <cmath>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using HeaderFiles::Ecw;
using HeaderFiles::GeoTags;
using HeaderFiles::Placed;
using Six = std::array<double, 6>;

constexpr auto kEcw = EReferenceType::ECW;
constexpr unsigned int kStrictTransform = BMapAnchor::kStrictTransform;
constexpr unsigned int kStrictCoordSys = BMapAnchor::kStrictCoordSys;

std::string CodeOf(const BGeoReference& reference) {
    return reference.HasCoordSys() ? reference.CoordSys->ToEPSGCode().StdStr() : "";
}

struct NameCase {
    const char* name;
    const char* datum;
    const char* projection;
    const char* code;
};

TEST(Ecw, NamesLeadToTheSystem) {
    const NameCase cases[] = {
        {"geodetic", "WGS84", "GEODETIC", "EPSG:4326"},
        {"plain_pixels", "RAW", "RAW", ""},
        {"no_projection", "WGS84", "RAW", "EPSG:4326"},
        {"empty_projection", "NAD27", "", "EPSG:4267"},
        {"datum_repeated", "NAD83", "NAD83", "EPSG:4269"},
        {"both_empty", "", "", ""},
        {"blanks_around", " WGS84 ", " GEODETIC", "EPSG:4326"},
        {"projected", "WGS84", "NUTM33", "EPSG:32633"},
        {"code_twice", "EPSG:3067", "EPSG:3067", "EPSG:3067"},
        {"code_in_small_letters", "epsg:4269", "epsg:4269", "EPSG:4269"},
        {"name_of_sixteen_letters", "ABCDEFGHIJKLMNOP", "RAW", ""},
        {"unknown_projection", "WGS84", "NOWHERE", ""},
    };
    const TempFolder folder;
    for (const NameCase& c : cases) {
        SCOPED_TRACE(c.name);
        const auto file =
            folder.Write("a.ecw", HeaderFiles::Ecw2({.datum = c.datum, .projection = c.projection}));
        BGeoReference named;
        EXPECT_EQ(Roads::Read(file, named).type, "");
        EXPECT_EQ(CodeOf(named), c.code);
        EXPECT_EQ(References::Terms(named), (Six{10, 0, 500000, 0, -10, 4100000}));
        BGeoReference typed;
        EXPECT_EQ(Roads::Read(kEcw, file, typed).type, "");
        EXPECT_EQ(CodeOf(typed), c.code);
        EXPECT_EQ(References::Terms(typed), References::Terms(named));
    }
}

// A system that is asked for and not found is a failure only where strictness says so.
TEST(Ecw, StrictnessDecidesOnUnknownNames) {
    const TempFolder folder;
    const auto file = folder.Write("a.ecw", HeaderFiles::Ecw2({.datum = "WGS84", .projection = "NOWHERE"}));
    BGeoReference reference;
    const Thrown thrown = Roads::Read(kEcw, file, reference, kStrictCoordSys);
    EXPECT_EQ(thrown.type, "BGeoReferenceInvalidCoordSysException");
    EXPECT_EQ(thrown.source, "BRefECW::Read");
    EXPECT_EQ(thrown.detail, "Failed to get the coordinate system.");
    EXPECT_EQ(Roads::Read(kEcw, file, reference, kStrictTransform).type, "");
    const auto raw = folder.Write("raw.ecw", HeaderFiles::Ecw2({}));
    EXPECT_EQ(Roads::Read(kEcw, raw, reference, Roads::kStrict).type, "");
}

TEST(Ecw, TheSignOfTheStepInYMeansNothing) {
    const TempFolder folder;
    for (const double step : {30.0, -30.0}) {
        BGeoReference reference;
        ASSERT_EQ(Roads::Read(folder.Write("a.ecw", HeaderFiles::Ecw2({.step_y = step})), reference).type,
                  "");
        EXPECT_EQ(References::Terms(reference)[4], -30.0);
    }
}

struct FaultCase {
    const char* name;
    std::string bytes;
    const char* typed;   ///< what is thrown by type without flags; empty for success
    const char* detail;  ///< its detail, "%" for the file
    const char* named;
};

TEST(Ecw, FaultsOfTheFile) {
    constexpr const char* kInvalid = "BGeoReferenceInvalidReferenceFileException";
    constexpr const char* kAccess = "BFileAccessException";
    constexpr const char* kUnsupported = "BUnsupportedFileTypeException";
    constexpr const char* kNoInfo = "Could not read ViewFileInfo.";
    constexpr const char* kCannotOpen = "Could not open the reference file <%> for reading.";
    constexpr const char* kZero =
        "File <%> is an invalid ECW file.  CellIncrementX and/or CellIncrementY is zero";
    const std::string good = HeaderFiles::Ecw2({});
    const FaultCase cases[] = {
        {"step_of_zero", HeaderFiles::Ecw2({.step_x = 0}), kInvalid, kZero, "BFileContentNotValidException"},
        {"step_of_zero_with_a_system", HeaderFiles::Ecw2({.step_y = 0, .datum = "WGS84"}), kInvalid, kZero,
         ""},
        {"plain_pixels_from_zero", HeaderFiles::Ecw2({1, 1, 0, 0}), "", "", kUnsupported},
        {"not_a_number", HeaderFiles::Ecw2({.x = std::nan("")}), kInvalid, kNoInfo, kUnsupported},
        {"infinite_step", HeaderFiles::Ecw2({.step_x = HUGE_VAL}), kInvalid, kNoInfo, kUnsupported},
        {"no_columns", HeaderFiles::Ecw2({.columns = 0}), kInvalid, kNoInfo, kUnsupported},
        {"no_bands", HeaderFiles::Ecw2({.bands = 0}), kAccess, kCannotOpen, kUnsupported},
        {"units_of_no_image", HeaderFiles::Ecw2({.units = 'x'}), kAccess, kCannotOpen, kUnsupported},
        {"one_byte_short", good.substr(0, 88), kAccess, kCannotOpen, kUnsupported},
        {"crossword", "; across\n1 ewe\n" + std::string(100, 'x'), kAccess, kCannotOpen, kUnsupported},
        {"empty", "", kAccess, kCannotOpen, kUnsupported},
        {"version_four", HeaderFiles::Box("ecw ", std::string("\x0A\x0D\x87\x0A\0\0\0\4", 8)), kAccess,
         kCannotOpen, kUnsupported},
        {"version_three_without_tags", HeaderFiles::Ecw3({}).substr(0, 40), "", "", kUnsupported},
    };
    const TempFolder folder;
    for (const FaultCase& c : cases) {
        SCOPED_TRACE(c.name);
        const LogCapture log;
        const auto file = folder.Write("a.ecw", c.bytes);
        BGeoReference reference;
        const Thrown typed = Roads::Read(kEcw, file, reference);
        EXPECT_EQ(typed.type, c.typed);
        std::string detail = c.detail;
        if (const auto at = detail.find('%'); at != std::string::npos) detail.replace(at, 1, file);
        EXPECT_EQ(typed.detail, detail);
        EXPECT_FALSE(reference.HasMathTransform());
        EXPECT_EQ(log.lines.size(), c.detail == kZero ? 1U : 0U);
        EXPECT_EQ(Roads::Read(file, reference).type, c.named);
    }
}

// The failure tells the step as it stands in the file, with its own sign.
TEST(Ecw, StepsTooSmallForATransform) {
    const TempFolder folder;
    const auto file = folder.Write("a.ecw", HeaderFiles::Ecw2({1e-310, 2.5, 5, 6, "WGS84", "RAW"}));
    BGeoReference reference;
    const Thrown thrown = Roads::Read(kEcw, file, reference, kStrictTransform);
    EXPECT_EQ(thrown.type, "BGeoReferenceInvalidTransformException");
    EXPECT_EQ(thrown.detail, "Failed creating Affine(0.000000 0.000000 5.000000 0.000000 2.500000 6.000000)");
    ASSERT_EQ(Roads::Read(kEcw, file, reference).type, "");
    EXPECT_FALSE(reference.HasMathTransform());
    EXPECT_EQ(CodeOf(reference), "EPSG:4326");
}

TEST(Ecw, VersionThreeByItsTags) {
    const TempFolder folder;
    BGeoReference coded;
    const GeoTags point = Placed({1024, 0, 1, 1, 1025, 0, 1, 2, 3072, 0, 1, 32633});
    ASSERT_EQ(Roads::Read(folder.Write("a.ecw", HeaderFiles::Ecw3(point)), coded).type, "");
    EXPECT_EQ(CodeOf(coded), "EPSG:32633");
    EXPECT_EQ(References::Terms(coded), (Six{10, 0, 499995, 0, -10, 4100005}));  // half a pixel outward
    BGeoReference named;
    const GeoTags names = Placed({1026, 34737, 44, 0}, "ERDAS Ermapper projection (GEODETIC, NAD27)|");
    ASSERT_EQ(Roads::Read(folder.Write("b.ecw", HeaderFiles::Ecw3(names)), named).type, "");
    EXPECT_EQ(CodeOf(named), "EPSG:4267");
}

TEST(Jpeg2000, BoxesThatPlaceTheImage) {
    const TempFolder folder;
    const GeoTags utm = Placed({1024, 0, 1, 1, 3072, 0, 1, 32633, 2048, 0, 1, 4326});
    const GeoTags raw = {{1, 1, 0}, {0, 0, 0, 0, 0, 0}, {}, {1025, 0, 1, 1}, ""};
    const std::string citation = "szProjection:\t\tGEODETIC\r\nszDatum:\tNAD83\r\n|";
    const std::string stream = HeaderFiles::Box("jp2c", std::string(5000, 'x'));
    const struct {
        const char* name;
        std::string boxes;
        const char* code;
    } cases[] = {
        {"one_box", HeaderFiles::GeoBox(utm), "EPSG:32633"},
        {"behind_the_code_stream", stream + HeaderFiles::GeoBox(utm), "EPSG:32633"},
        {"code_stream_cut_off", HeaderFiles::GeoBox(utm) + stream.substr(0, 100), "EPSG:32633"},
        {"bad_box_before_the_good", HeaderFiles::GeoBox(raw) + HeaderFiles::GeoBox(utm), "EPSG:32633"},
        {"good_box_before_the_bad", HeaderFiles::GeoBox(utm) + HeaderFiles::GeoBox(raw), "EPSG:32633"},
        {"length_in_64_bits",
         HeaderFiles::Bytes().U32(1).Text("free").Big(std::uint64_t{20}).U32(7).text +
             HeaderFiles::GeoBox(utm),
         "EPSG:32633"},
        {"last_box_without_length", std::string(4, '\0') + HeaderFiles::GeoBox(utm).substr(4), "EPSG:32633"},
        {"names_in_the_citation",
         HeaderFiles::GeoBox(Placed({1026, 34737, static_cast<int>(citation.size()), 0}, citation)),
         "EPSG:4269"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        BGeoReference reference;
        ASSERT_EQ(Roads::Read(folder.Write("a.jp2", HeaderFiles::Jp2Start() + c.boxes), reference).type, "");
        EXPECT_EQ(CodeOf(reference), c.code);
        EXPECT_EQ(References::Terms(reference), (Six{10, 0, 500000, 0, -10, 4100000}));
    }
}

// What the ECW reader cannot say the next reader says, from the centre of the pixel.
TEST(Jpeg2000, RotatedImagesStartAtTheCentre) {
    const TempFolder folder;
    GeoTags rotated = Placed({3072, 0, 1, 32633});
    rotated.scale.clear();
    rotated.tie.clear();
    rotated.matrix = {8, 6, 0, 1000, 6, -8, 0, 2000, 0, 0, 0, 0, 0, 0, 0, 1};
    GeoTags north = rotated;
    north.matrix = {8, 0, 0, 1000, 0, 8, 0, 2000, 0, 0, 0, 0, 0, 0, 0, 1};
    BGeoReference reference;
    ASSERT_EQ(Roads::Read(folder.Write("a.jp2", HeaderFiles::Jp2(rotated)), reference).type, "");
    EXPECT_EQ(References::Terms(reference), (Six{8, 6, 1007, 6, -8, 1999}));
    EXPECT_EQ(CodeOf(reference), "EPSG:32633");
    ASSERT_EQ(Roads::Read(folder.Write("b.jp2", HeaderFiles::Jp2(north)), reference).type, "");
    EXPECT_EQ(References::Terms(reference), (Six{8, 0, 1004, 0, 8, 2004}));
    BGeoReference by_type;
    EXPECT_EQ(Roads::Read(kEcw, folder / "a.jp2", by_type).type, "");
    EXPECT_FALSE(by_type.HasMathTransform());
}

// What lies beside the image overrules its boxes, a system that no code names as well.
TEST(Jpeg2000, TheAuxiliaryFileGoesBeforeTheBoxes) {
    const TempFolder folder;
    GDALAllRegister();
    const std::string file = folder / "a.jp2";
    const std::string tiff = GdalFiles::MakeTiff(folder / "a.tif", 1, [](GDALDataset& raster) {
        double terms[6] = {500000, 10, 0, 4100000, 0, -10};
        OGRSpatialReference system;
        system.importFromEPSG(32633);
        raster.SetGeoTransform(terms);
        raster.SetSpatialRef(&system);
    });
    auto* const driver = GetGDALDriverManager()->GetDriverByName("JP2OpenJPEG");
    ASSERT_TRUE(driver);
    ASSERT_TRUE(GdalFiles::Dataset(
        driver->CreateCopy(file.c_str(), GdalFiles::Open(tiff).get(), 0, nullptr, nullptr, nullptr)));
    const Six own = {10, 0, 500000, 0, -10, 4100000};
    const struct {
        const char* name;
        const char* content;
        const char* code;
        Six terms;
    } cases[] = {
        {"terms", "<GeoTransform>7,2,0,9,0,-2</GeoTransform>", "EPSG:32633", {2, 0, 7, 0, -2, 9}},
        {"system_with_a_code", "<SRS>EPSG:32634</SRS>", "EPSG:32634", own},
        {"system_without_a_code", "<SRS>+proj=laea +lat_0=50 +lon_0=17</SRS>", "", own},
        {"nothing", "", "EPSG:32633", own},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        folder.Write("a.jp2.aux.xml", "<PAMDataset>" + std::string(c.content) + "</PAMDataset>");
        BGeoReference reference;
        ASSERT_EQ(Roads::Read(file, reference).type, "");
        EXPECT_EQ(CodeOf(reference), c.code);
        EXPECT_EQ(References::Terms(reference), c.terms);
    }
}

TEST(Ecw, IsNeverSaved) {
    const TempFolder folder;
    const Thrown thrown = Roads::Save(kEcw, folder / "a.ecw", References::WithAffine(1, 0, 0, 0, -1, 0));
    EXPECT_EQ(thrown.type, "BGeoReferenceNotSupportedException");
    EXPECT_EQ(thrown.source, "BrefECW::Write");
    EXPECT_EQ(thrown.detail, "ECW raster image files canot be writen using this method.");
}

}  // namespace
}  // namespace MapAnchor
