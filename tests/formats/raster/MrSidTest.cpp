// MrSID through the front door, by name and by type, and JPEG 2000 as the class reads it.

#include "raster/BRefMrSID.h"

#include <gtest/gtest.h>

#include "HeaderFiles.h"
#include "LogCapture.h"
#include "References.h"
#include "Roads.h"
#include "TempFolder.h"

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
using Six = std::array<double, 6>;

constexpr auto kSid = EReferenceType::MrSID;
constexpr const char* kWkt =
    "GEOGCS[\"NAD27\",DATUM[\"North_American_Datum_1927\",SPHEROID[\"Clarke 1866\",6378206.4,"
    "294.978698213898]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433],"
    "AUTHORITY[\"EPSG\",\"4267\"]]";
const Six kCentre = {10, 0, 500005, 0, -10, 4099995};
const std::string kPlace = SidPlace(500005, 4099995, 10, 10);

std::string CodeOf(const BGeoReference& reference) {
    return reference.HasCoordSys() ? reference.CoordSys->ToEPSGCode().StdStr() : "";
}

struct SidCase {
    const char* name;
    std::string bytes;
    Six terms;
    const char* code;
};

// x and y are those of the first pixel's centre, and stay what they are.
TEST(MrSid, PositionAndSystem) {
    const std::string rotations =
        HeaderFiles::SidNumber("IMAGE::X_ROTATION", 2) + HeaderFiles::SidNumber("IMAGE::Y_ROTATION", 3);
    const std::vector<double> chunk = {1000, 2000, 9000, 9000, 5, 6};
    const SidCase cases[] = {
        {"second_generation", Sid2(kPlace), kCentre, ""},
        {"third_generation", Sid3(kPlace), kCentre, ""},
        {"fourth_generation", Sid3(kPlace, {}, 4), kCentre, ""},
        {"chunk_with_its_sign", Sid3(kPlace, chunk), {5, 0, 1000, 0, 6, 2000}, ""},
        {"chunk_that_is_not_finite", Sid3(kPlace, {1, 2, 3, 4, 5, std::nan("")}), kCentre, ""},
        {"resolution_with_a_sign", Sid2(SidPlace(500005, 4099995, 10, -10)), kCentre, ""},
        {"rotation", Sid2(kPlace + rotations), {10, 2, 500005, 3, -10, 4099995}, ""},
        {"projected_key", Sid2(kPlace + SidShort(kSidProjected, 32633)), kCentre, "EPSG:32633"},
        {"geographic_key", Sid2(kPlace + SidShort(kSidGeographic, 4267)), kCentre, "EPSG:4267"},
        {"projected_key_wins", Sid2(kPlace + SidShort(kSidGeographic, 4267) + SidShort(kSidProjected, 32633)),
         kCentre, "EPSG:32633"},
        {"user_defined_wins_as_well",
         Sid2(kPlace + SidShort(kSidGeographic, 4267) + SidShort(kSidProjected, 32767)), kCentre, ""},
        {"key_of_another_type",
         Sid2(kPlace + HeaderFiles::SidRecord(kSidProjected, 3, 1, std::string("\0\0\x7F\x79", 4))), kCentre,
         ""},
        {"text_in_place_of_the_driver", Sid3(kPlace + SidText("IMAGE::WKT", kWkt)), kCentre, "EPSG:4267"},
        {"key_before_the_text", Sid3(SidShort(kSidProjected, 32633) + SidText("IMAGE::WKT", kWkt) + kPlace),
         kCentre, "EPSG:32633"},
        {"records_before_a_broken_one", Sid2(kPlace + "rubbish"), kCentre, ""},
        {"letters_of_the_other_case", "MSID" + Sid2(kPlace).substr(4), kCentre, ""},
    };
    const TempFolder folder;
    for (const SidCase& c : cases) {
        SCOPED_TRACE(c.name);
        const auto file = folder.Write("a.sid", c.bytes);
        BGeoReference named;
        BGeoReference typed;
        ASSERT_EQ(Roads::Read(file, named).type, "");
        ASSERT_EQ(Roads::Read(kSid, file, typed).type, "");
        EXPECT_EQ(References::Terms(named), c.terms);
        EXPECT_EQ(References::Terms(typed), c.terms);
        EXPECT_EQ(CodeOf(named), c.code);
        EXPECT_EQ(CodeOf(typed), c.code);
    }
}

// A code that leads nowhere is a failure only with strictness, and only when nothing
// else names a system.
TEST(MrSid, AnUnknownCodeMayBeMadeUpFor) {
    const TempFolder folder;
    const std::string unknown = kPlace + SidShort(kSidProjected, 9);
    const auto file = folder.Write("a.sid", Sid2(unknown));
    BGeoReference reference;
    const Thrown thrown = Roads::Read(kSid, file, reference, BMapAnchor::kStrictCoordSys);
    EXPECT_EQ(thrown.type, "BGeoReferenceInvalidCoordSysException");
    EXPECT_EQ(thrown.source, "BRefMrSID::Read");
    EXPECT_EQ(thrown.detail, "Could not find EPSG system 9.");
    ASSERT_EQ(Roads::Read(kSid, file, reference, BMapAnchor::kStrictTransform).type, "");
    EXPECT_EQ(CodeOf(reference), "");
    const auto named = folder.Write("b.sid", Sid2(unknown + SidText("IMAGE::WKT", kWkt)));
    ASSERT_EQ(Roads::Read(kSid, named, reference, BMapAnchor::kStrictCoordSys).type, "");
    EXPECT_EQ(CodeOf(reference), "EPSG:4267");
    // Without a key nothing was promised.
    EXPECT_EQ(Roads::Read(kSid, folder.Write("c.sid", Sid2(kPlace)), reference, Roads::kStrict).type, "");
}

TEST(MrSid, WithoutAPosition) {
    const TempFolder folder;
    const auto file = folder.Write("a.sid", Sid2(SidShort(kSidProjected, 32633)));
    BGeoReference reference;
    const LogCapture log;
    const Thrown thrown = Roads::Read(kSid, file, reference);
    EXPECT_EQ(thrown.type, "BGeoReferenceInvalidReferenceFileException");
    EXPECT_EQ(thrown.detail, "File <" + file + "> is an invalid MrSID file.  XRes and/or YRes is zero");
    EXPECT_EQ(log.lines, std::vector<std::string>{"BRefMrSID::Read Failure XRes and/or YRes is zero!"});
    ASSERT_EQ(Roads::Read(file, reference).type, "");
    EXPECT_EQ(CodeOf(reference), "EPSG:32633");
    EXPECT_FALSE(reference.HasMathTransform());
    // By name the world files beside it count, .sdw before .wld, as of the centre.
    folder.Write("a.wld", "3\n0\n0\n-3\n7\n8\n");
    ASSERT_EQ(Roads::Read(file, reference).type, "");
    EXPECT_EQ(References::Terms(reference), (Six{3, 0, 7, 0, -3, 8}));
    folder.Write("a.sdw", "2\n0.5\n-0.25\n-4\n101\n198\n");
    BGeoReference again;
    ASSERT_EQ(Roads::Read(file, again).type, "");
    EXPECT_EQ(References::Terms(again), (Six{2, -0.25, 101, 0.5, -4, 198}));
    // Named itself, it is a world file like others.
    ASSERT_EQ(Roads::Read(folder / "a.sdw", again).type, "");
    EXPECT_EQ(References::Terms(again), (Six{2, -0.25, 100, 0.5, -4, 200}));
}

TEST(MrSid, FaultsOfTheFile) {
    const std::string good = Sid2(kPlace);
    std::string many_levels = good;
    many_levels[11] = '\x7F';
    std::string beyond = good;
    beyond[41] = '\x7F';
    const struct {
        const char* name;
        std::string bytes;
        const char* typed;
        const char* named;
    } cases[] = {
        {"other_name", "msix" + good.substr(4), "BFileAccessException", "BUnsupportedFileTypeException"},
        {"thirty_one_bytes", good.substr(0, 31), "BFileAccessException", "BUnsupportedFileTypeException"},
        {"jpeg_2000", HeaderFiles::Jp2(HeaderFiles::Placed({3072, 0, 1, 32633})), "BFileAccessException", ""},
        {"more_levels_than_an_image_has", many_levels, "BGeoReferenceInvalidReferenceFileException",
         "BFileContentNotValidException"},
        {"metadata_beyond_the_end", beyond, "BGeoReferenceInvalidReferenceFileException",
         "BFileContentNotValidException"},
        {"broken_record_in_the_fourth_generation", Sid3(kPlace + "rubbish", {}, 4),
         "BGeoReferenceInvalidReferenceFileException", "BFileContentNotValidException"},
        {"resolution_that_is_not_finite", Sid2(SidPlace(1, 2, HUGE_VAL, 3)),
         "BGeoReferenceInvalidReferenceFileException", "BFileContentNotValidException"},
    };
    const TempFolder folder;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const LogCapture log;
        const auto file = folder.Write("a.sid", c.bytes);
        BGeoReference reference;
        EXPECT_EQ(Roads::Read(kSid, file, reference).type, c.typed);
        EXPECT_EQ(Roads::Read(file, reference).type, c.named);
    }
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

TEST(MrSid, IsNeverSaved) {
    const TempFolder folder;
    const Thrown thrown = Roads::Save(kSid, folder / "a.sid", References::WithAffine(1, 0, 0, 0, -1, 0));
    EXPECT_EQ(thrown.type, "BGeoReferenceNotSupportedException");
    EXPECT_EQ(thrown.source, "BrefMrSID::Write");
    EXPECT_EQ(thrown.detail, "MrSID raster image files canot be writen using this method.");
}

}  // namespace
}  // namespace MapAnchor
