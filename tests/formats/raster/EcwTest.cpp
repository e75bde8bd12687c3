// ECW through the entry point, by name and by type, and JPEG 2000 by name as far as the
// ECW reader can report it.

#include <ogr_spatialref.h>

#include "GdalFiles.h"
#include "HeaderFiles.h"
#include "Outcomes.h"

#include <cmath>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using HeaderFiles::Ecw2;
using HeaderFiles::Ecw3;
using HeaderFiles::GeoBox;
using HeaderFiles::GeoTags;
using HeaderFiles::Placed;

const ReadTable kReads(EReferenceType::ECW, ".ecw", "BRefECW::Read");
const Six kCorner = {10, 0, 500000, 0, -10, 4100000};

TEST(Ecw, FindsTheSystemOfItsNames) {
    const std::tuple<const char*, const char*, const char*> names[] = {
        {" WGS84 ", " GEODETIC", "EPSG:4326"},   {"RAW", "RAW", "none"},
        {"WGS84", "NUTM33", "EPSG:32633"},       {"NAD83", "NAD83", "EPSG:4269"},
        {"epsg:4269", "epsg:4269", "EPSG:4269"}, {"", "", "none"},
        {"ABCDEFGHIJKLMNOP", "RAW", "none"},     {"WGS84", "NOWHERE", "none"}};
    for (const auto& [datum, projection, code] : names)
        kReads.Places(datum, Ecw2({.datum = datum, .projection = projection}), kCorner, code);
    // The sign of the step in y means nothing.
    kReads.Places("step_upward", Ecw2({.step_y = 30}), {10, 0, 500000, 0, -30, 4100000});
    // By its tags; half a pixel outward.
    kReads.Places("version_three", Ecw3(Placed({1024, 0, 1, 1, 1025, 0, 1, 2, 3072, 0, 1, 32633})),
                  {10, 0, 499995, 0, -10, 4100005}, "EPSG:32633");
    kReads.Places("version_three_by_names",
                  Ecw3(Placed({1026, 34737, 44, 0}, "ERDAS Ermapper projection (GEODETIC, NAD27)|")), kCorner,
                  "EPSG:4267");
}

TEST(Ecw, ReadFailuresStateWhatAndWhere) {
    const char* const no_info = "Could not read ViewFileInfo.";
    const char* const cannot_open = "Could not open the reference file <%> for reading.";
    const std::string zero = "File <%> is an invalid ECW file.  CellIncrementX and/or CellIncrementY is zero";
    const std::string good = Ecw2({}), unknown = Ecw2({.datum = "WGS84", .projection = "NOWHERE"});
    // The step is reported as it is stored in the file, with its own sign.
    const std::string small = Ecw2({1e-310, 2.5, 5, 6, "WGS84", "RAW"});
    kReads.Fails(unknown, kInvalidSystem, "Failed to get the coordinate system.");
    kReads.Fails(small, kInvalidTransform,
                 "Failed creating Affine(0.000000 0.000000 5.000000 0.000000 2.500000 6.000000)");
    kReads.Ends("unknown_name", unknown, kNoSystem, {0, true});
    kReads.Ends("step_too_small", small, kNoFit, {0, false, true});
    const std::vector<std::string> log = {
        "BRefECW::Read Failure CellIncrementX and/or CellIncrementY is zero!"};
    kReads.Fails(Ecw2({.step_x = 0}), kInvalidFile, zero, log);
    kReads.Fails(Ecw2({.step_y = 0, .datum = "WGS84"}), kInvalidFile, zero, log);
    kReads.Ends("step_of_zero", Ecw2({.step_x = 0}), {kNoReference, kInvalidFile, kInvalidFile});
    kReads.Ends("zero_with_a_system", Ecw2({.step_y = 0, .datum = "WGS84"}), kByNameAlone, {0, false, true});
    for (const std::string& content :
         {Ecw2({.x = std::nan("")}), Ecw2({.step_x = HUGE_VAL}), Ecw2({.columns = 0})}) {
        kReads.Fails(content, kInvalidFile, no_info);
        kReads.Ends("no_info", content, kRefused);
    }
    for (const std::string& content :
         {Ecw2({.units = 'x'}), Ecw2({.bands = 0}), good.substr(0, 88), std::string(),
          "; across\n1 ewe\n" + std::string(100, 'x'),
          HeaderFiles::Box("ecw ", std::string("\x0A\x0D\x87\x0A\0\0\0\4", 8))}) {
        kReads.Fails(content, kNoAccess, cannot_open);
        kReads.Ends("not_an_image", content, {kUnsupported, kNoAccess, kNoAccess});
    }
    kReads.Ends("plain_pixels_from_zero", Ecw2({1, 1, 0, 0}), {kUnsupported, "", ""});
    kReads.Ends("version_three_without_tags", Ecw3({}).substr(0, 40), {kUnsupported, "", ""});
}

TEST(Jpeg2000, IsPlacedByItsBoxes) {
    const ReadTable reads(EReferenceType::ECW, ".jp2", "");
    const GeoTags utm = Placed({1024, 0, 1, 1, 3072, 0, 1, 32633, 2048, 0, 1, 4326});
    const std::string raw = GeoBox({{1, 1, 0}, {0, 0, 0, 0, 0, 0}, {}, {1025, 0, 1, 1}, ""});
    const std::string citation = "szProjection:\t\tGEODETIC\r\nszDatum:\tNAD83\r\n|";
    const std::string stream = HeaderFiles::Box("jp2c", std::string(5000, 'x'));
    const std::string start = HeaderFiles::Jp2Start(), good = GeoBox(utm);
    const std::string free_box = HeaderFiles::Bytes().U32(1).Text("free").Big(std::uint64_t{20}).U32(7).text;
    const GeoTags names = Placed({1026, 34737, static_cast<int>(citation.size()), 0}, citation);
    const char* const code = "EPSG:32633";
    std::string tie_again = GeoBox(Placed({3072, 0, 1, 32633}, std::string(48, '7')));
    tie_again.replace(tie_again.find("\xB1\x87"), 2, "\x82\x84");
    reads.Places("a_tag_that_comes_again", start + tie_again, kCorner, code);
    reads.Places("behind_the_code_stream", start + stream + good, kCorner, code);
    reads.Places("code_stream_cut_off", start + good + stream.substr(0, 100), kCorner, code);
    reads.Places("bad_box_before_the_good", start + raw + good, kCorner, code);
    reads.Places("length_in_64_bits", start + free_box + good, kCorner, code);
    reads.Places("last_box_without_length", start + std::string(4, '\0') + good.substr(4), kCorner, code);
    reads.Places("names_in_the_citation", start + GeoBox(names), kCorner, "EPSG:4269");
    // What the ECW reader cannot report the next reader does, from the centre of the pixel.
    GeoTags rotated = {
        {}, {}, {8, 6, 0, 1000, 6, -8, 0, 2000, 0, 0, 0, 0, 0, 0, 0, 1}, {3072, 0, 1, 32633}, ""};
    GeoTags south = rotated;
    south.matrix = {8, 0, 0, 1000, 0, 8, 0, 2000, 0, 0, 0, 0, 0, 0, 0, 1};
    const TempFolder folder;
    const BGeoReference reference = Good(folder.Write("a.jp2", HeaderFiles::Jp2(rotated)));
    EXPECT_EQ(References::Terms(reference), (Six{8, 6, 1007, 6, -8, 1999}));
    EXPECT_EQ(CodeOf(reference), "EPSG:32633");
    EXPECT_EQ(References::Terms(Good(folder.Write("b.jp2", HeaderFiles::Jp2(south)))),
              (Six{8, 0, 1004, 0, 8, 2004}));
    EXPECT_FALSE(Good(EReferenceType::ECW, folder / "a.jp2", 0).HasMathTransform());
}

// What is beside the image overrules its boxes, a system without a code as well.
TEST(Jpeg2000, IsOverruledByTheAuxiliaryFile) {
    const TempFolder folder;
    const std::string file = folder / "a.jp2";
    const std::string tiff = GdalFiles::MakeTiff(folder / "a.tif");
    EXPECT_EQ(Roads::Save(tiff, References::Of("32633", kCorner)).type, "");
    auto* const driver = GetGDALDriverManager()->GetDriverByName("JP2OpenJPEG");
    ASSERT_TRUE(driver);
    ASSERT_TRUE(GdalFiles::Dataset(
        driver->CreateCopy(file.c_str(), GdalFiles::Open(tiff).get(), 0, nullptr, nullptr, nullptr)));
    const std::tuple<const char*, const char*, Six> cases[] = {
        {"<GeoTransform>7,2,0,9,0,-2</GeoTransform>", "EPSG:32633", {2, 0, 7, 0, -2, 9}},
        {"<SRS>EPSG:32634</SRS>", "EPSG:32634", kCorner},
        {"<SRS>+proj=laea +lat_0=50 +lon_0=17</SRS>", "none", kCorner},
        {"", "EPSG:32633", kCorner}};
    for (const auto& [content, code, terms] : cases) {
        folder.Write("a.jp2.aux.xml", "<PAMDataset>" + std::string(content) + "</PAMDataset>");
        const BGeoReference reference = Good(file);
        EXPECT_EQ(CodeOf(reference), code) << content;
        EXPECT_EQ(References::Terms(reference), terms) << content;
    }
}

}  // namespace
}  // namespace MapAnchor
