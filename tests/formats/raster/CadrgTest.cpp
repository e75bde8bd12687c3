// CADRG frames: the walk to the coverage and what is made of it.

#include "raster/BRefCADRG.h"

#include <gtest/gtest.h>

#include "ChartFiles.h"
#include "LogCapture.h"
#include "Reading.h"
#include "TempFolder.h"

#include <limits>

namespace MapAnchor {
namespace {

using namespace Tellurion;

const std::string kInvalid = "BGeoReferenceInvalidReferenceFileException";

Thrown ReadTyped(const std::string& file, unsigned int flags, BGeoReference& reference) {
    return WhatIsThrown([&] { BRefCADRG::Read(BString(file), flags, reference); });
}

TEST(Cadrg, StartsAtTheCentreOfTheTopLeftPixel) {
    const TempFolder folder;
    const LogCapture log;
    FrameFile little;
    little.big_endian = false;
    FrameFile sloped;
    sloped.coverage[6] = 10.0 + 2e-7;
    FrameFile mixed_case;
    mixed_case.tag_text = "rpfHDR";
    FrameFile bare;
    bare.bare = true;
    FrameFile bare_little = little;
    bare_little.bare = true;
    FrameFile far;
    far.coverage[4] = 95.0;  // the north-east corner is not asked
    // From a level south edge up; the north-west corner counts only above a sloped one.
    const Terms level = {0.002, 0, -100 + 0.001, 0, -0.001, (10.0 - 0.0005) + 1.536};
    const Terms from_north = {0.002, 0, -100 + 0.001, 0, -0.001, 11.5 - 0.0005};
    const struct {
        const char* name;
        FrameFile frame;
        Terms terms;
    } cases[] = {{"big_endian", {}, level},
                 {"little_endian", little, level},
                 {"sloped", sloped, from_north},
                 {"mixed_case", mixed_case, level},
                 {"bare", bare, level},
                 {"bare_little", bare_little, level},
                 {"far", far, level}};
    for (const auto& test : cases) {
        const std::string file = folder.Write("frame.on1", test.frame.Bytes());
        const NamedRead read = ReadByName(file);
        EXPECT_EQ(read.thrown.type, "") << test.name;
        EXPECT_EQ(read.kind, "CADRG") << test.name;
        EXPECT_EQ(TermsOf(read.reference), test.terms) << test.name;
        EXPECT_EQ(EpsgOf(read.reference), "EPSG:4326") << test.name;
        EXPECT_TRUE(read.reference.PointPairVector.empty());
        BGeoReference typed;
        EXPECT_EQ(ReadTyped(file, kStrict, typed).type, "") << test.name;
        EXPECT_EQ(TermsOf(typed), test.terms) << test.name;
        EXPECT_EQ(EpsgOf(typed), "EPSG:4326") << test.name;
    }
    EXPECT_NEAR(level[5], 11.5355, 1e-14);
}

struct FaultCase {
    const char* name;
    void (*spoil)(FrameFile& frame);
    const char* fault;
};

TEST(Cadrg, EachStepOfTheWalkFailsWithItsOwnWords) {
    const char* const header = "Could not index to the end of the Header.";
    const char* const location = "Could not index to the File Location Section.";
    const char* const table = "Could not index to the Component Location Section.";
    const char* const size = "Could not read the entire Component section.";
    const char* const coverage = "Coverage Section not found.";
    const char* const globe = "Coverage area in invalid (outside of +-90 +-180).";
    const char* const extent = "Invalid Coverage area.";
    const FaultCase cases[] = {
        {"no_tag", [](FrameFile& f) { f.tag_text = "XPFHDR"; }, header},
        {"tag_at_three_is_not_seen", [](FrameFile& f) { f.tag = 3; }, header},
        {"header_beyond_the_file", [](FrameFile& f) { f.header_length = 65535; }, header},
        {"location_beyond_the_file", [](FrameFile& f) { f.location_at = 0xFFFFFFF0; }, location},
        {"table_beyond_the_file", [](FrameFile& f) { f.table_offset = 0xFFFFFFFF; }, table},
        {"table_too_large", [](FrameFile& f) { f.records = 261; }, size},
        {"table_of_four_gigabytes", [](FrameFile& f) { f.records = f.record_length = 65535; }, size},
        {"table_cut_by_the_end", [](FrameFile& f) { f.records = 100; }, size},
        {"no_records", [](FrameFile& f) { f.records = 0; }, coverage},
        {"records_of_no_length", [](FrameFile& f) { f.record_length = 0; }, coverage},
        {"records_of_one_byte", [](FrameFile& f) { f.record_length = 1; }, coverage},
        {"no_coverage_record", [](FrameFile& f) { f.coverage_id = 129; }, coverage},
        {"coverage_beyond_the_file", [](FrameFile& f) { f.coverage_at = 0xFFFFFFFF; }, coverage},
        {"latitude_beyond_the_pole", [](FrameFile& f) { f.coverage[0] = 90.5; }, globe},
        {"longitude_beyond_the_date_line", [](FrameFile& f) { f.coverage[7] = -180.5; }, globe},
        {"latitude_that_is_no_number",
         [](FrameFile& f) { f.coverage[6] = std::numeric_limits<double>::quiet_NaN(); }, globe},
        {"no_height_in_the_west", [](FrameFile& f) { f.coverage[2] = f.coverage[0]; }, extent},
        {"no_height_in_the_east", [](FrameFile& f) { f.coverage[4] = f.coverage[6]; }, extent},
        {"no_width_in_the_north", [](FrameFile& f) { f.coverage[5] = f.coverage[1]; }, extent},
        {"no_width_in_the_south", [](FrameFile& f) { f.coverage[3] = f.coverage[7]; }, extent},
    };
    const TempFolder folder;
    const LogCapture log;
    for (const FaultCase& test : cases) {
        FrameFile frame;
        test.spoil(frame);
        const std::string file = folder.Write("frame.on1", frame.Bytes());
        BGeoReference reference;
        const Thrown thrown = ReadTyped(file, 0, reference);
        EXPECT_EQ(thrown.type, kInvalid) << test.name;
        EXPECT_EQ(thrown.source, "BRefCADRG::Read");
        EXPECT_EQ(thrown.detail, "File <" + file + "> is an invalid CADRG file.  " + test.fault) << test.name;
        EXPECT_FALSE(BRefCADRG::Read(BString(file), reference)) << test.name;
        EXPECT_FALSE(reference.HasMathTransform() || reference.HasCoordSys()) << test.name;
    }
    EXPECT_TRUE(log.lines.empty());
}

TEST(Cadrg, AnIntervalThatMakesNoAffine) {
    const TempFolder folder;
    LogCapture log;
    FrameFile flat;
    flat.coverage[11] = 0.0;
    const std::string file = folder.Write("frame.on1", flat.Bytes());
    BGeoReference reference;
    EXPECT_EQ(ReadTyped(file, BMapAnchor::kStrictCoordSys, reference).type, "");
    EXPECT_FALSE(reference.HasMathTransform());
    EXPECT_TRUE(reference.HasCoordSys());
    const Thrown thrown = ReadTyped(file, BMapAnchor::kStrictTransform, reference);
    EXPECT_EQ(thrown.type, "BGeoReferenceInvalidTransformException");
    EXPECT_EQ(thrown.source, "BRefCADRG::Read");
    EXPECT_EQ(thrown.detail,
              "Failed creating Affine(0.000000 0.000000 -100.000000 0.000000 -0.001000 11.535500)");
    BGeoReference tolerant;
    EXPECT_TRUE(BRefCADRG::Read(BString(file), tolerant));
    EXPECT_FALSE(tolerant.HasMathTransform());
    EXPECT_TRUE(tolerant.HasCoordSys());
    EXPECT_TRUE(log.lines.empty());
}

TEST(Cadrg, RefusesToBeWrittenAndNamesAFileThatDoesNotOpen) {
    const TempFolder folder;
    BGeoReference reference;
    const unsigned int flags = 0;
    for (const Thrown& thrown : {WhatIsThrown([&] { BRefCADRG::Write(BString("x"), reference); }),
                                 WhatIsThrown([&] { BRefCADRG::Write(BString("x"), flags, reference); })}) {
        EXPECT_EQ(thrown.type, "BGeoReferenceNotSupportedException");
        EXPECT_EQ(thrown.source, "BrefCADRG::Write");
        EXPECT_EQ(thrown.detail, "Writing of CADRG file types is not supported.");
    }
    const Thrown thrown = ReadTyped(folder / ".", 0, reference);
    EXPECT_EQ(thrown.type, "BFileAccessException");
    EXPECT_EQ(thrown.detail, "Could not open the reference file <" + (folder / ".") + "> for reading.");
    EXPECT_FALSE(BRefCADRG::Read(BString(folder / "missing"), reference));
}

}  // namespace
}  // namespace MapAnchor
