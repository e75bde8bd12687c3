// CADRG frames: the walk to the coverage and what is made of it.

#include "raster/cadrg/BRefCADRG.h"

#include "ChartFiles.h"
#include "Reading.h"

#include <limits>

namespace MapAnchor {
namespace {

using namespace Tellurion;

template <class Change>
FrameFile With(Change change) {
    FrameFile frame;
    change(frame);
    return frame;
}

TEST(Cadrg, StartsAtTheCentreOfTheTopLeftPixel) {
    const TempFolder folder;
    const LogCapture log;
    // Up from a level south edge; the north-west corner counts only above a sloped one.
    const Six level = {0.002, 0, -100 + 0.001, 0, -0.001, (10.0 - 0.0005) + 1.536};
    const Six from_north = {0.002, 0, -100 + 0.001, 0, -0.001, 11.5 - 0.0005};
    const auto expect = [&](const FrameFile& frame, const Six& terms) {
        const std::string file = folder.Write("frame.on1", frame.Bytes());
        EXPECT_EQ(ReadByName(file).kind, "CADRG");
        BGeoReference typed;
        EXPECT_EQ(ReadTyped<BRefCADRG>(file, Roads::kStrict, typed).type, "");
        for (const BGeoReference& reference : {Good(file), typed}) {
            EXPECT_EQ(References::Terms(reference), terms);
            EXPECT_EQ(CodeOf(reference), "EPSG:4326");
        }
    };
    expect({}, level);
    expect(With([](FrameFile& f) { f.big_endian = false; }), level);
    expect(With([](FrameFile& f) { f.coverage[6] = 10.0 + 2e-7; }), from_north);
    expect(With([](FrameFile& f) { f.tag_text = "rpfHDR"; }), level);
    expect(With([](FrameFile& f) { f.bare = true; }), level);
    expect(With([](FrameFile& f) { f.coverage[4] = 95.0; }), level);  // not asked for
    EXPECT_NEAR(level[5], 11.5355, 1e-14);
}

TEST(Cadrg, FailsAtEachStepWithTheStepsMessage) {
    const TempFolder folder;
    const LogCapture log;
    const auto expect = [&](const char* fault, void (*spoil)(FrameFile & frame)) {
        const std::string file = folder.Write("frame.on1", With(spoil).Bytes());
        BGeoReference reference;
        ExpectThrown(ReadTyped<BRefCADRG>(file, 0, reference), kInvalidFile, "BRefCADRG::Read",
                     "File <" + file + "> is an invalid CADRG file.  " + fault);
        EXPECT_FALSE(BRefCADRG::Read(BString(file), reference)) << fault;
        EXPECT_FALSE(reference.HasMathTransform() || reference.HasCoordSys()) << fault;
    };
    const char* const header = "Could not index to the end of the Header.";
    const char* const size = "Could not read the entire Component section.";
    const char* const coverage = "Coverage Section not found.";
    const char* const globe = "Coverage area in invalid (outside of +-90 +-180).";
    const char* const extent = "Invalid Coverage area.";
    expect(header, [](FrameFile& f) { f.tag_text = "XPFHDR"; });
    expect(header, [](FrameFile& f) { f.tag = 3; });  // a tag in the first four bytes is none
    expect(header, [](FrameFile& f) { f.header_length = 65535; });
    expect("Could not index to the File Location Section.", [](FrameFile& f) { f.location_at = 0xFFFFFFF0; });
    expect("Could not index to the Component Location Section.",
           [](FrameFile& f) { f.table_offset = 0xFFFFFFFF; });
    expect(size, [](FrameFile& f) { f.records = 261; });
    expect(size, [](FrameFile& f) { f.records = f.record_length = 65535; });
    expect(coverage, [](FrameFile& f) { f.records = 0; });
    expect(coverage, [](FrameFile& f) { f.record_length = 0; });
    expect(coverage, [](FrameFile& f) { f.record_length = 1; });
    expect(coverage, [](FrameFile& f) { f.coverage_id = 129; });
    expect(coverage, [](FrameFile& f) { f.coverage_at = 0xFFFFFFFF; });
    expect(globe, [](FrameFile& f) { f.coverage[0] = 90.5; });
    expect(globe, [](FrameFile& f) { f.coverage[7] = -180.5; });
    expect(globe, [](FrameFile& f) { f.coverage[6] = std::numeric_limits<double>::quiet_NaN(); });
    expect(extent, [](FrameFile& f) { f.coverage[2] = f.coverage[0]; });
    expect(extent, [](FrameFile& f) { f.coverage[4] = f.coverage[6]; });
    expect(extent, [](FrameFile& f) { f.coverage[5] = f.coverage[1]; });
    expect(extent, [](FrameFile& f) { f.coverage[3] = f.coverage[7]; });
    EXPECT_TRUE(log.lines.empty());
}

TEST(Cadrg, KeepsTheSystemWithoutAnAffineAndIsReadOnly) {
    const TempFolder folder;
    const FrameFile flat = With([](FrameFile& f) { f.coverage[11] = 0.0; });
    ExpectSystemAlone<BRefCADRG>(
        "CADRG", folder.Write("frame.on1", flat.Bytes()),
        "Failed creating Affine(0.000000 0.000000 -100.000000 0.000000 -0.001000 11.535500)");
}

}  // namespace
}  // namespace MapAnchor
