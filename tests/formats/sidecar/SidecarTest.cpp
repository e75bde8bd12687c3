// What world files, RSF, TAB and ERS share: files that do not open, disks that are full,
// and points that are made of a transform.

#include "Outcomes.h"

#include <unistd.h>

namespace MapAnchor {
namespace {

using namespace Tellurion;

struct Sidecar {
    EReferenceType type;
    std::string name;
    const char* by_name;  ///< the detail when a save by name cannot open the file "%"
    const char* by_type;
    bool logs_by_type = true;
};
const Sidecar kSidecars[] = {
    {EReferenceType::WLD, "WLD", "WLD write could not open file", "Couldn't open WLD file <%> for writing."},
    {EReferenceType::RSF, "RSF", "Couldn't open RSF file <%> for writing.",
     "Couldn't open RSF file <%> for writing."},
    {EReferenceType::TAB, "TAB", "TAB write could not open file", "Couldn't open TAB file <%> for writing."},
    {EReferenceType::ERS, "ERS", "ERS write could not open file",
     "Could not open the reference file <%> for writing.", false},
};

class Sidecars : public testing::TestWithParam<Sidecar> {
protected:
    std::string File(const char* stem) const {
        return folder / (stem + ("." + (GetParam().type == EReferenceType::WLD ? "tfw" : GetParam().name)));
    }
    const std::string read = "BRef" + GetParam().name + "::Read";
    const std::string write = "BRef" + GetParam().name + "::Write";
    const EReferenceType type = GetParam().type;
    const BGeoReference reference = References::WithAffine(2, 0, 100, 0, -2, 300);
    const TempFolder folder;
    LogCapture log;
};

TEST_P(Sidecars, AFileThatDoesNotOpenIsNamed) {
    BGeoReference back;
    ExpectThrown(
        Roads::Read(type, folder / ".", back),
        {kNoAccess, read, "Could not open the reference file <" + (folder / ".") + "> for reading."});
    const std::string file = File("missing/map");
    const std::string line = write + " Failed to open file <" + file + ">";
    log.lines.clear();
    ExpectThrown(Roads::Save(file, reference), {kNoAccess, write, Filled(GetParam().by_name, '%', file)});
    EXPECT_EQ(log.lines.at(0), line);
    ExpectThrown(Roads::Save(type, file, reference),
                 {kNoAccess, write, Filled(GetParam().by_type, '%', file)});
    EXPECT_EQ(log.lines.at(2) == line, GetParam().logs_by_type) << log.lines.at(2);
}

// The disk fills up behind the writer's back: both roads must tell.
TEST_P(Sidecars, AFullDeviceIsNeverSilent) {
    const std::string file = File("full");
    ASSERT_EQ(symlink("/dev/full", file.c_str()), 0);
    const Thrown failed = {kWriteFailure, write,
                           "Failed writing " + GetParam().name + " file <" + file + ">."};
    ExpectThrown(Roads::Save(file, reference), failed);
    ExpectThrown(Roads::Save(type, file, reference), failed);
}

INSTANTIATE_TEST_SUITE_P(All, Sidecars, testing::ValuesIn(kSidecars),
                         [](const auto& row) { return row.param.name; });

class PointSidecars : public Sidecars {};

TEST_P(PointSidecars, ATransformAloneGivesTheCornerPixels) {
    const std::string file = File("map");
    const auto expect_corners = [&] {
        BGeoReference back;
        EXPECT_EQ(Roads::Read(file, back).type, "");
        std::vector<std::array<double, 4>> corners;
        std::string names;
        for (const BPointPair& pair : back.PointPairVector) {
            corners.push_back({static_cast<double>(pair.Column), static_cast<double>(pair.Row), pair.World.x,
                               pair.World.y});
            names += pair.Name.StdStr();
        }
        EXPECT_EQ(corners,
                  (std::vector<std::array<double, 4>>{
                      {0, 0, 100, 300}, {199, 0, 498, 300}, {199, 99, 498, 102}, {0, 99, 100, 102}}));
        EXPECT_EQ(names, "NWNESESW");
    };
    EXPECT_EQ(Roads::Save(file, reference).type, "");
    expect_corners();
    const std::string by_name = TempFolder::Slurp(file);
    EXPECT_EQ(Roads::Save(type, file, reference).type, "");
    EXPECT_EQ(TempFolder::Slurp(file), by_name);
}

TEST_P(PointSidecars, WithoutPointsOrWithATransformThatBreaks) {
    const std::string file = File("map");
    EXPECT_EQ(Roads::Save(file, BGeoReference()).type, kUnsupported);
    EXPECT_EQ(log.lines,
              std::vector<std::string>{write + " Reference type requires valid Ground Control Points or a "
                                               "MathTransform to generate them."});
    EXPECT_EQ(TempFolder::Slurp(file), "");
    ExpectThrown(Roads::Save(type, file, References::Breaking(), BMapAnchor::kStrictTransform),
                 {kInvalidTransform, write,
                  "Can't write " + GetParam().name + " file <" + file +
                      ">.  When generating GCP's an exception (message no value here (source)) was thrown."});
    // Without strictness the corners before the break are written.
    EXPECT_EQ(Roads::Save(type, file, References::Breaking()).type, "");
    BGeoReference back;
    EXPECT_EQ(Roads::Read(file, back).type, "");
    EXPECT_EQ(back.PointPairVector.size(), 2U);
    EXPECT_EQ(Roads::Save(file, References::Breaking()).type, "BGeoCalcException");
}

INSTANTIATE_TEST_SUITE_P(All, PointSidecars, testing::Values(kSidecars[1], kSidecars[2]),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace MapAnchor
