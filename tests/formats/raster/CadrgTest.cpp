// CADRG frames: the walk to the coverage and what is made of it.

#include "raster/BRefCADRG.h"

#include "ChartFiles.h"
#include "Reading.h"

#include <limits>

namespace MapAnchor {
namespace {

using namespace Tellurion;

TEST(Cadrg, StartsAtTheCentreOfTheTopLeftPixel) {
    const TempFolder folder;
    const LogCapture log;
    const auto with = [](auto change) {
        FrameFile frame;
        change(frame);
        return frame;
    };
    // From a level south edge up; the north-west corner counts only above a sloped one.
    const Six level = {0.002, 0, -100 + 0.001, 0, -0.001, (10.0 - 0.0005) + 1.536};
    const Six from_north = {0.002, 0, -100 + 0.001, 0, -0.001, 11.5 - 0.0005};
    const struct {
        const char* name;
        FrameFile frame;
        Six terms;
    } cases[] = {{"big_endian", {}, level},
                 {"little_endian", with([](FrameFile& f) { f.big_endian = false; }), level},
                 {"sloped", with([](FrameFile& f) { f.coverage[6] = 10.0 + 2e-7; }), from_north},
                 {"mixed_case", with([](FrameFile& f) { f.tag_text = "rpfHDR"; }), level},
                 {"bare", with([](FrameFile& f) { f.bare = true; }), level},
                 {"bare_little", with([](FrameFile& f) {
                      f.bare = true;
                      f.big_endian = false;
                  }),
                  level},
                 {"north_east_corner_is_not_asked", with([](FrameFile& f) { f.coverage[4] = 95.0; }), level}};
    for (const auto& test : cases) {
        const std::string file = folder.Write("frame.on1", test.frame.Bytes());
        NamedRead read = ReadByName(file);
        EXPECT_EQ(read.kind, "CADRG") << test.name;
        BGeoReference typed;
        EXPECT_EQ(ReadTyped<BRefCADRG>(file, Roads::kStrict, typed).type, "") << test.name;
        for (const BGeoReference* reference : {&read.reference, &typed}) {
            EXPECT_EQ(References::Terms(*reference), test.terms) << test.name;
            EXPECT_EQ(CodeOf(*reference), "EPSG:4326") << test.name;
            EXPECT_TRUE(reference->PointPairVector.empty());
        }
    }
    EXPECT_NEAR(level[5], 11.5355, 1e-14);
}

TEST(Cadrg, EachStepOfTheWalkFailsWithItsOwnWords) {
    const char* const header = "Could not index to the end of the Header.";
    const char* const location = "Could not index to the File Location Section.";
    const char* const table = "Could not index to the Component Location Section.";
    const char* const size = "Could not read the entire Component section.";
    const char* const coverage = "Coverage Section not found.";
    const char* const globe = "Coverage area in invalid (outside of +-90 +-180).";
    const char* const extent = "Invalid Coverage area.";
    const struct {
        const char* name;
        void (*spoil)(FrameFile& frame);
        const char* fault;
    } cases[] = {
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
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        FrameFile frame;
        test.spoil(frame);
        const std::string file = folder.Write("frame.on1", frame.Bytes());
        BGeoReference reference;
        ExpectThrown(ReadTyped<BRefCADRG>(file, 0, reference),
                     {kInvalidFile, "BRefCADRG::Read",
                      "File <" + file + "> is an invalid CADRG file.  " + test.fault});
        EXPECT_FALSE(BRefCADRG::Read(BString(file), reference)) << test.name;
        EXPECT_FALSE(reference.HasMathTransform() || reference.HasCoordSys()) << test.name;
    }
    EXPECT_TRUE(log.lines.empty());
}

TEST(Cadrg, AnIntervalThatMakesNoAffine) {
    const TempFolder folder;
    FrameFile flat;
    flat.coverage[11] = 0.0;
    ExpectSystemAlone<BRefCADRG>(
        folder.Write("frame.on1", flat.Bytes()),
        {kInvalidTransform, "BRefCADRG::Read",
         "Failed creating Affine(0.000000 0.000000 -100.000000 0.000000 -0.001000 11.535500)"});
}

TEST(Cadrg, IsReadOnly) {
    ExpectReadOnly<BRefCADRG>("CADRG");
    BGeoReference reference;
    EXPECT_FALSE(BRefCADRG::Read(BString("/nowhere/at/all"), reference));
}

}  // namespace
}  // namespace MapAnchor
