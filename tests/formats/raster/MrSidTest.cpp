// MrSID through the entry point, by name and by type, and JPEG 2000 as the class reads it.

#include "raster/mrsid/BRefMrSID.h"

#include "HeaderFiles.h"
#include "Outcomes.h"

#include <cmath>

namespace MapAnchor {
namespace {

using namespace Tellurion;
using namespace HeaderFiles;

const ReadTable kReads(EReferenceType::MrSID, ".sid", "BRefMrSID::Read");
const Six kCentre = {10, 0, 500005, 0, -10, 4099995};
const std::string kPlace = SidPlace(500005, 4099995, 10, 10);
const std::string kUtm = SidShort(kSidProjected, 32633), kNad27 = SidShort(kSidGeographic, 4267);
const std::string kUnknown = SidShort(kSidProjected, 9);
const std::string kText =
    SidText("IMAGE::WKT",
            "GEOGCS[\"NAD27\",DATUM[\"North_American_Datum_1927\",SPHEROID[\"Clarke 1866\",6378206.4,"
            "294.978698213898]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433],"
            "AUTHORITY[\"EPSG\",\"4267\"]]");

// x and y are those of the first pixel's centre, and stay what they are.
TEST(MrSid, ReadsPositionAndSystem) {
    const std::string rotations = SidNumber("IMAGE::X_ROTATION", 2) + SidNumber("IMAGE::Y_ROTATION", 3);
    kReads.Places("second_generation", Sid2(kPlace), kCentre);
    kReads.Places("third_generation", Sid3(kPlace), kCentre);
    kReads.Places("fourth_generation", Sid3(kPlace, {}, 4), kCentre);
    kReads.Places("chunk_with_its_sign", Sid3(kPlace, {1000, 2000, 9000, 9000, 5, 6}),
                  {5, 0, 1000, 0, 6, 2000});
    kReads.Places("chunk_that_is_not_finite", Sid3(kPlace, {1, 2, 3, 4, 5, std::nan("")}), kCentre);
    kReads.Places("resolution_with_a_sign", Sid2(SidPlace(500005, 4099995, 10, -10)), kCentre);
    kReads.Places("rotation", Sid2(kPlace + rotations), {10, 2, 500005, 3, -10, 4099995});
    kReads.Places("projected_key_wins", Sid2(kPlace + kNad27 + kUtm), kCentre, "EPSG:32633");
    kReads.Places("user_defined_wins_as_well", Sid2(kPlace + kNad27 + SidShort(kSidProjected, 32767)),
                  kCentre);
    kReads.Places("geographic_key", Sid2(kPlace + kNad27), kCentre, "EPSG:4267");
    kReads.Places("key_of_another_type",
                  Sid2(kPlace + SidRecord(kSidProjected, 3, 1, std::string("\0\0\x7F\x79", 4))), kCentre);
    kReads.Places("text_in_place_of_the_driver", Sid3(kPlace + kText), kCentre, "EPSG:4267");
    kReads.Places("key_before_the_text", Sid3(kUtm + kText + kPlace), kCentre, "EPSG:32633");
    kReads.Places("records_before_a_broken_one", Sid2(kPlace + "rubbish"), kCentre);
    kReads.Places("letters_of_the_other_case", "MSID" + Sid2(kPlace).substr(4), kCentre);
}

// An unknown code is a failure only with strictness, and only when nothing else names a
// system; without a position there is nothing by type.
TEST(MrSid, ReadFailuresStateWhatIsWrong) {
    std::string many_levels = Sid2(kPlace), beyond = Sid2(kPlace);
    many_levels[11] = beyond[41] = '\x7F';
    constexpr Ends kBroken{kNoReference, kInvalidFile, kInvalidFile};
    constexpr Ends kNoImage{kUnsupported, kNoAccess, kNoAccess};
    kReads.Fails(Sid2(kPlace + kUnknown), kInvalidSystem, "Could not find EPSG system 9.");
    kReads.Fails(Sid2(kUtm), kInvalidFile, "File <%> is an invalid MrSID file.  XRes and/or YRes is zero",
                 {"BRefMrSID::Read Failure XRes and/or YRes is zero!"});
    kReads.Ends("unknown_code", Sid2(kPlace + kUnknown), kNoSystem, {0, true});
    kReads.Ends("text_beside_an_unknown_code", Sid2(kPlace + kUnknown + kText), kTaken, {0, true, true});
    kReads.Ends("without_a_position", Sid2(kUtm), kByNameAlone, {0, false, true});
    kReads.Ends("other_name", "msix" + Sid2(kPlace).substr(4), kNoImage);
    kReads.Ends("thirty_one_bytes", Sid2(kPlace).substr(0, 31), kNoImage);
    kReads.Ends("jpeg_2000", Jp2(Placed({3072, 0, 1, 32633})), {"", kNoAccess, kNoAccess}, {0, true, true});
    kReads.Ends("more_levels_than_an_image_has", many_levels, kBroken);
    kReads.Ends("metadata_beyond_the_end", beyond, kBroken);
    kReads.Ends("broken_record_in_the_fourth_generation", Sid3(kPlace + "rubbish", {}, 4), kBroken);
    kReads.Ends("resolution_that_is_not_finite", Sid2(SidPlace(1, 2, HUGE_VAL, 3)), kBroken);
}

TEST(MrSid, ReadsWorldFilesAndJpeg2000FromTheCentre) {
    const TempFolder folder;
    const auto file = folder.Write("a.sid", Sid2(kUtm));
    const auto terms_of = [](const std::string& path) { return References::Terms(Good(path)); };
    folder.Write("a.wld", "3\n0\n0\n-3\n7\n8\n");
    EXPECT_EQ(terms_of(file), (Six{3, 0, 7, 0, -3, 8}));
    // .sdw before .wld; named itself, it is a world file like others.
    folder.Write("a.sdw", "2\n0.5\n-0.25\n-4\n101\n198\n");
    EXPECT_EQ(terms_of(file), (Six{2, -0.25, 101, 0.5, -4, 198}));
    EXPECT_EQ(terms_of(folder / "a.sdw"), (Six{2, -0.25, 100, 0.5, -4, 200}));
    const auto image = folder.Write("a.jp2", Jp2(Placed({1024, 0, 1, 1, 3072, 0, 1, 32633})));
    BGeoReference reference;
    ASSERT_TRUE(BRefMrSID::Read(BString(image), reference));
    EXPECT_EQ(References::Terms(reference), kCentre);
    EXPECT_EQ(CodeOf(reference), "EPSG:32633");
    EXPECT_FALSE(BRefMrSID::Read(BString(folder.Write("b.jp2", "no image")), reference));
}

}  // namespace
}  // namespace MapAnchor
