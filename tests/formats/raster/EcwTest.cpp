// ECW through the front door, by name and by type, and JPEG 2000 by name as far as the
// ECW reader tells it.

#include <ogr_spatialref.h>

#include "GdalFiles.h"
#include "HeaderFiles.h"
#include "Outcomes.h"

#include <cmath>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using HeaderFiles::Ecw;
using HeaderFiles::GeoTags;
using HeaderFiles::Placed;

constexpr auto kEcw = EReferenceType::ECW;
const Six kCorner = {10, 0, 500000, 0, -10, 4100000};

TEST(Ecw, NamesLeadToTheSystem) {
    const auto named = [](const char* name, const char* datum, const char* projection,
                          const char* code = "none") {
        return PlaceCase{name, HeaderFiles::Ecw2({.datum = datum, .projection = projection}), kCorner, code};
    };
    ExpectPlaces(
        kEcw, ".ecw",
        {named("geodetic", "WGS84", "GEODETIC", "EPSG:4326"),
         named("plain_pixels", "RAW", "RAW"),
         named("no_projection", "WGS84", "RAW", "EPSG:4326"),
         named("empty_projection", "NAD27", "", "EPSG:4267"),
         named("datum_repeated", "NAD83", "NAD83", "EPSG:4269"),
         named("both_empty", "", ""),
         named("blanks_around", " WGS84 ", " GEODETIC", "EPSG:4326"),
         named("projected", "WGS84", "NUTM33", "EPSG:32633"),
         named("code_twice", "EPSG:3067", "EPSG:3067", "EPSG:3067"),
         named("code_in_small_letters", "epsg:4269", "epsg:4269", "EPSG:4269"),
         named("name_of_sixteen_letters", "ABCDEFGHIJKLMNOP", "RAW"),
         named("unknown_projection", "WGS84", "NOWHERE"),
         // The sign of the step in y means nothing.
         {"step_upward", HeaderFiles::Ecw2({.step_y = 30}), {10, 0, 500000, 0, -30, 4100000}},
         // By its tags; half a pixel outward.
         {"version_three",
          HeaderFiles::Ecw3(Placed({1024, 0, 1, 1, 1025, 0, 1, 2, 3072, 0, 1, 32633})),
          {10, 0, 499995, 0, -10, 4100005},
          "EPSG:32633"},
         {"version_three_by_names",
          HeaderFiles::Ecw3(Placed({1026, 34737, 44, 0}, "ERDAS Ermapper projection (GEODETIC, NAD27)|")),
          kCorner, "EPSG:4267"}});
}

// What strictness asks for is a failure where it is not found; the step is told as it
// stands in the file, with its own sign.
TEST(Ecw, StrictnessDecides) {
    const std::string unknown = HeaderFiles::Ecw2({.datum = "WGS84", .projection = "NOWHERE"});
    const std::string small = HeaderFiles::Ecw2({1e-310, 2.5, 5, 6, "WGS84", "RAW"});
    ExpectFailures(kEcw, ".ecw",
                   {{"unknown_name",
                     unknown,
                     {kInvalidSystem, "BRefECW::Read", "Failed to get the coordinate system."},
                     {},
                     BMapAnchor::kStrictCoordSys},
                    {"step_too_small",
                     small,
                     {kInvalidTransform, "BRefECW::Read",
                      "Failed creating Affine(0.000000 0.000000 5.000000 0.000000 2.500000 6.000000)"}}});
    ExpectRoads(kEcw, ".ecw",
                {{"plain_pixels", HeaderFiles::Ecw2({}), kTaken, {0, true}},
                 {"unknown_name", unknown, kNoSystem, {0, true}},
                 {"step_too_small", small, kNoFit, {0, false, true}}});
}

TEST(Ecw, FaultsOfTheFile) {
    const std::string no_info = "Could not read ViewFileInfo.";
    const std::string cannot_open = "Could not open the reference file <%> for reading.";
    const std::string zero = "File <%> is an invalid ECW file.  CellIncrementX and/or CellIncrementY is zero";
    const std::string good = HeaderFiles::Ecw2({});
    const struct {
        const char* name;
        std::string bytes;
        std::string detail;  ///< by type
        const char* named = kUnsupported;
    } cases[] = {
        {"step_of_zero", HeaderFiles::Ecw2({.step_x = 0}), zero, kNoReference},
        {"step_of_zero_with_a_system", HeaderFiles::Ecw2({.step_y = 0, .datum = "WGS84"}), zero, ""},
        {"not_a_number", HeaderFiles::Ecw2({.x = std::nan("")}), no_info},
        {"infinite_step", HeaderFiles::Ecw2({.step_x = HUGE_VAL}), no_info},
        {"no_columns", HeaderFiles::Ecw2({.columns = 0}), no_info},
        {"no_bands", HeaderFiles::Ecw2({.bands = 0}), cannot_open},
        {"units_of_no_image", HeaderFiles::Ecw2({.units = 'x'}), cannot_open},
        {"one_byte_short", good.substr(0, 88), cannot_open},
        {"crossword", "; across\n1 ewe\n" + std::string(100, 'x'), cannot_open},
        {"empty", "", cannot_open},
        {"version_four", HeaderFiles::Box("ecw ", std::string("\x0A\x0D\x87\x0A\0\0\0\4", 8)), cannot_open},
    };
    std::vector<FailureCase> by_type;
    std::vector<RoadCase> roads = {
        {"plain_pixels_from_zero", HeaderFiles::Ecw2({1, 1, 0, 0}), {kUnsupported, "", ""}},
        {"version_three_without_tags", HeaderFiles::Ecw3({}).substr(0, 40), {kUnsupported, "", ""}}};
    for (const auto& c : cases) {
        const char* type = c.detail == cannot_open ? kNoAccess : kInvalidFile;
        by_type.push_back({c.name, c.bytes, {type, "BRefECW::Read", c.detail}});
        if (c.detail == zero)
            by_type.back().log = {"BRefECW::Read Failure CellIncrementX and/or CellIncrementY is zero!"};
        roads.push_back({c.name, c.bytes, {c.named, type, type}, {0, false, true}});
    }
    ExpectFailures(kEcw, ".ecw", by_type);
    ExpectRoads(kEcw, ".ecw", roads);
}

TEST(Jpeg2000, BoxesThatPlaceTheImage) {
    const GeoTags utm = Placed({1024, 0, 1, 1, 3072, 0, 1, 32633, 2048, 0, 1, 4326});
    const GeoTags raw = {{1, 1, 0}, {0, 0, 0, 0, 0, 0}, {}, {1025, 0, 1, 1}, ""};
    const std::string citation = "szProjection:\t\tGEODETIC\r\nszDatum:\tNAD83\r\n|";
    const std::string stream = HeaderFiles::Box("jp2c", std::string(5000, 'x'));
    const std::string good = HeaderFiles::GeoBox(utm);
    const std::string free_box = HeaderFiles::Bytes().U32(1).Text("free").Big(std::uint64_t{20}).U32(7).text;
    const std::string start = HeaderFiles::Jp2Start();
    const GeoTags names = Placed({1026, 34737, static_cast<int>(citation.size()), 0}, citation);
    const char* const code = "EPSG:32633";
    std::string tie_again = HeaderFiles::GeoBox(Placed({3072, 0, 1, 32633}, std::string(48, '7')));
    tie_again.replace(tie_again.find("\xB1\x87"), 2, "\x82\x84");
    ExpectPlaces(kEcw, ".jp2",
                 {{"a_tag_that_comes_again", start + tie_again, kCorner, code},
                  {"one_box", start + good, kCorner, code},
                  {"behind_the_code_stream", start + stream + good, kCorner, code},
                  {"code_stream_cut_off", start + good + stream.substr(0, 100), kCorner, code},
                  {"bad_box_before_the_good", start + HeaderFiles::GeoBox(raw) + good, kCorner, code},
                  {"good_box_before_the_bad", start + good + HeaderFiles::GeoBox(raw), kCorner, code},
                  {"length_in_64_bits", start + free_box + good, kCorner, code},
                  {"last_box_without_length", start + std::string(4, '\0') + good.substr(4), kCorner, code},
                  {"names_in_the_citation", start + HeaderFiles::GeoBox(names), kCorner, "EPSG:4269"}});
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
    const BGeoReference reference = Good(folder.Write("a.jp2", HeaderFiles::Jp2(rotated)));
    EXPECT_EQ(References::Terms(reference), (Six{8, 6, 1007, 6, -8, 1999}));
    EXPECT_EQ(CodeOf(reference), "EPSG:32633");
    EXPECT_EQ(References::Terms(Good(folder.Write("b.jp2", HeaderFiles::Jp2(north)))),
              (Six{8, 0, 1004, 0, 8, 2004}));
    EXPECT_FALSE(Good(kEcw, folder / "a.jp2", 0).HasMathTransform());
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
    const struct {
        const char* name;
        const char* content;
        const char* code;
        Six terms;
    } cases[] = {
        {"terms", "<GeoTransform>7,2,0,9,0,-2</GeoTransform>", "EPSG:32633", {2, 0, 7, 0, -2, 9}},
        {"system_with_a_code", "<SRS>EPSG:32634</SRS>", "EPSG:32634", kCorner},
        {"system_without_a_code", "<SRS>+proj=laea +lat_0=50 +lon_0=17</SRS>", "none", kCorner},
        {"nothing", "", "EPSG:32633", kCorner},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        folder.Write("a.jp2.aux.xml", "<PAMDataset>" + std::string(c.content) + "</PAMDataset>");
        const BGeoReference reference = Good(file);
        EXPECT_EQ(CodeOf(reference), c.code);
        EXPECT_EQ(References::Terms(reference), c.terms);
    }
}

}  // namespace
}  // namespace MapAnchor
