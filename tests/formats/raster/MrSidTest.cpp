// MrSID through the front door, by name and by type, and JPEG 2000 as the class reads it.

#include "raster/BRefMrSID.h"

#include "HeaderFiles.h"
#include "Outcomes.h"

#include <cmath>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using HeaderFiles::kSidGeographic;
using HeaderFiles::kSidProjected;
using HeaderFiles::Sid2;
using HeaderFiles::Sid3;
using HeaderFiles::SidPlace;
using HeaderFiles::SidShort;
using HeaderFiles::SidText;

constexpr auto kSid = EReferenceType::MrSID;
constexpr const char* kWkt =
    "GEOGCS[\"NAD27\",DATUM[\"North_American_Datum_1927\",SPHEROID[\"Clarke 1866\",6378206.4,"
    "294.978698213898]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433],"
    "AUTHORITY[\"EPSG\",\"4267\"]]";
const Six kCentre = {10, 0, 500005, 0, -10, 4099995};
const std::string kPlace = SidPlace(500005, 4099995, 10, 10);

// x and y are those of the first pixel's centre, and stay what they are.
TEST(MrSid, PositionAndSystem) {
    const std::string rotations =
        HeaderFiles::SidNumber("IMAGE::X_ROTATION", 2) + HeaderFiles::SidNumber("IMAGE::Y_ROTATION", 3);
    const std::vector<double> chunk = {1000, 2000, 9000, 9000, 5, 6};
    ExpectPlaces(
        kSid, ".sid",
        {
            {"second_generation", Sid2(kPlace), kCentre},
            {"third_generation", Sid3(kPlace), kCentre},
            {"fourth_generation", Sid3(kPlace, {}, 4), kCentre},
            {"chunk_with_its_sign", Sid3(kPlace, chunk), {5, 0, 1000, 0, 6, 2000}},
            {"chunk_that_is_not_finite", Sid3(kPlace, {1, 2, 3, 4, 5, std::nan("")}), kCentre},
            {"resolution_with_a_sign", Sid2(SidPlace(500005, 4099995, 10, -10)), kCentre},
            {"rotation", Sid2(kPlace + rotations), {10, 2, 500005, 3, -10, 4099995}},
            {"projected_key", Sid2(kPlace + SidShort(kSidProjected, 32633)), kCentre, "EPSG:32633"},
            {"geographic_key", Sid2(kPlace + SidShort(kSidGeographic, 4267)), kCentre, "EPSG:4267"},
            {"projected_key_wins",
             Sid2(kPlace + SidShort(kSidGeographic, 4267) + SidShort(kSidProjected, 32633)), kCentre,
             "EPSG:32633"},
            {"user_defined_wins_as_well",
             Sid2(kPlace + SidShort(kSidGeographic, 4267) + SidShort(kSidProjected, 32767)), kCentre},
            {"key_of_another_type",
             Sid2(kPlace + HeaderFiles::SidRecord(kSidProjected, 3, 1, std::string("\0\0\x7F\x79", 4))),
             kCentre, "none"},
            {"text_in_place_of_the_driver", Sid3(kPlace + SidText("IMAGE::WKT", kWkt)), kCentre, "EPSG:4267"},
            {"key_before_the_text",
             Sid3(SidShort(kSidProjected, 32633) + SidText("IMAGE::WKT", kWkt) + kPlace), kCentre,
             "EPSG:32633"},
            {"records_before_a_broken_one", Sid2(kPlace + "rubbish"), kCentre},
            {"letters_of_the_other_case", "MSID" + Sid2(kPlace).substr(4), kCentre},
        });
}

// A code that leads nowhere is a failure only with strictness, and only when nothing
// else names a system; without a position there is nothing by type.
TEST(MrSid, FailuresSayWhatIsWrong) {
    const std::string unknown = Sid2(kPlace + SidShort(kSidProjected, 9));
    const std::string nowhere = Sid2(SidShort(kSidProjected, 32633));
    ExpectFailures(
        kSid, ".sid",
        {{"unknown_code",
          unknown,
          {kInvalidSystem, "BRefMrSID::Read", "Could not find EPSG system 9."},
          {},
          BMapAnchor::kStrictCoordSys},
         {"without_a_position",
          nowhere,
          {kInvalidFile, "BRefMrSID::Read", "File <%> is an invalid MrSID file.  XRes and/or YRes is zero"},
          {"BRefMrSID::Read Failure XRes and/or YRes is zero!"}}});
    std::string many_levels = Sid2(kPlace);
    many_levels[11] = '\x7F';
    std::string beyond = Sid2(kPlace);
    beyond[41] = '\x7F';
    constexpr Holds kPlacedWithSystem{0, true, true};
    constexpr Ends kBroken{kNoReference, kInvalidFile, kInvalidFile};
    constexpr Ends kNoImage{kUnsupported, kNoAccess, kNoAccess};
    ExpectRoads(
        kSid, ".sid",
        {{"unknown_code", unknown, kNoSystem, {0, true}},
         {"text_beside_an_unknown_code",
          Sid2(kPlace + SidShort(kSidProjected, 9) + SidText("IMAGE::WKT", kWkt)), kTaken, kPlacedWithSystem},
         {"no_key_promises_nothing", Sid2(kPlace), kTaken, {0, true}},
         {"without_a_position", nowhere, {"", kInvalidFile, kInvalidFile}, {0, false, true}},
         {"other_name", "msix" + Sid2(kPlace).substr(4), kNoImage},
         {"thirty_one_bytes", Sid2(kPlace).substr(0, 31), kNoImage},
         {"jpeg_2000",
          HeaderFiles::Jp2(HeaderFiles::Placed({3072, 0, 1, 32633})),
          {"", kNoAccess, kNoAccess},
          kPlacedWithSystem},
         {"more_levels_than_an_image_has", many_levels, kBroken},
         {"metadata_beyond_the_end", beyond, kBroken},
         {"broken_record_in_the_fourth_generation", Sid3(kPlace + "rubbish", {}, 4), kBroken},
         {"resolution_that_is_not_finite", Sid2(SidPlace(1, 2, HUGE_VAL, 3)), kBroken}});
}

// By name the world files beside it count, .sdw before .wld, as of the centre.
TEST(MrSid, WorldFilesPlaceWhatHasNoPosition) {
    const TempFolder folder;
    const auto file = folder.Write("a.sid", Sid2(SidShort(kSidProjected, 32633)));
    const auto terms_of = [](const std::string& path) { return References::Terms(Good(path)); };
    folder.Write("a.wld", "3\n0\n0\n-3\n7\n8\n");
    EXPECT_EQ(terms_of(file), (Six{3, 0, 7, 0, -3, 8}));
    folder.Write("a.sdw", "2\n0.5\n-0.25\n-4\n101\n198\n");
    EXPECT_EQ(terms_of(file), (Six{2, -0.25, 101, 0.5, -4, 198}));
    // Named itself, it is a world file like others.
    EXPECT_EQ(terms_of(folder / "a.sdw"), (Six{2, -0.25, 100, 0.5, -4, 200}));
}

// The class reads JPEG 2000 by name: from the centre, with the keys of the GeoTIFF box.
TEST(MrSid, ReadsJpeg2000FromTheCentre) {
    const TempFolder folder;
    const auto file =
        folder.Write("a.jp2", HeaderFiles::Jp2(HeaderFiles::Placed({1024, 0, 1, 1, 3072, 0, 1, 32633})));
    BGeoReference reference;
    ASSERT_TRUE(BRefMrSID::Read(BString(file), reference));
    EXPECT_EQ(References::Terms(reference), kCentre);
    EXPECT_EQ(CodeOf(reference), "EPSG:32633");
    BGeoReference none;
    EXPECT_FALSE(BRefMrSID::Read(BString(folder.Write("b.jp2", "no image")), none));
}

}  // namespace
}  // namespace MapAnchor
