// What world files, RSF, TAB and ERS share: files that do not open, disks that are full,
// and points that are made from a transform.

#include "Outcomes.h"

#include <unistd.h>

namespace MapAnchor {
namespace {

using namespace Tellurion;

struct Sidecar {
    EReferenceType type;
    std::string name;
    const char* by_name;  ///< the detail when a save by name cannot open the file "%"
    const char* by_type = by_name;
    bool logs_by_type = true;
};
const Sidecar kSidecars[] = {
    {EReferenceType::WLD, "WLD", "WLD write could not open file", "Couldn't open WLD file <%> for writing."},
    {EReferenceType::RSF, "RSF", "Couldn't open RSF file <%> for writing."},
    {EReferenceType::TAB, "TAB", "TAB write could not open file", "Couldn't open TAB file <%> for writing."},
    {EReferenceType::ERS, "ERS", "ERS write could not open file",
     "Could not open the reference file <%> for writing.", false}};

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

TEST_P(Sidecars, NameAFileThatDoesNotOpenAndReportAFullDisk) {
    BGeoReference back;
    ExpectThrown(Roads::Read(type, folder / ".", back), kNoAccess, read,
                 "Could not open the reference file <" + (folder / ".") + "> for reading.");
    const std::string file = File("missing/map"), full = File("full");
    const std::string line = write + " Failed to open file <" + file + ">";
    ExpectThrown(Roads::Save(file, reference), kNoAccess, write, Filled(GetParam().by_name, '%', file));
    EXPECT_EQ(log.lines.at(0), line);
    ExpectThrown(Roads::Save(type, file, reference), kNoAccess, write, Filled(GetParam().by_type, '%', file));
    EXPECT_EQ(log.lines.at(2) == line, GetParam().logs_by_type) << log.lines.at(2);
    ASSERT_EQ(symlink("/dev/full", full.c_str()), 0);
    for (const Thrown& thrown : {Roads::Save(full, reference), Roads::Save(type, full, reference)})
        ExpectThrown(thrown, kWriteFailure, write,
                     "Failed writing " + GetParam().name + " file <" + full + ">: No space left on device.");
}

INSTANTIATE_TEST_SUITE_P(All, Sidecars, testing::ValuesIn(kSidecars),
                         [](const auto& row) { return row.param.name; });

class PointSidecars : public Sidecars {};

TEST_P(PointSidecars, WriteTheCornerPixelsOfATransformAlone) {
    const std::string file = File("map");
    const std::string by_name = Written(file, reference);
    EXPECT_EQ(PointsOf(Good(file)),
              "NW: 0 0 100 300 0\nNE: 199 0 498 300 0\nSE: 199 99 498 102 0\nSW: 0 99 100 102 0\n");
    EXPECT_EQ(Written(type, file, reference, 0), by_name);
    EXPECT_EQ(Roads::Save(file, BGeoReference()).type, kUnsupported);
    EXPECT_EQ(log.lines,
              std::vector<std::string>{write + " Reference type requires valid Ground Control Points or a "
                                               "MathTransform to generate them."});
    EXPECT_EQ(TempFolder::Slurp(file), "");
    ExpectThrown(Roads::Save(type, file, References::Breaking(), BMapAnchor::kStrictTransform),
                 kInvalidTransform, write,
                 "Can't write " + GetParam().name + " file <" + file +
                     ">.  When generating GCP's an exception (message no value here (source)) was thrown.");
    // Without strictness the corners before the failure are written.
    Written(type, file, References::Breaking(), 0);
    EXPECT_EQ(Good(file).PointPairVector.size(), 2U);
    EXPECT_EQ(Roads::Save(file, References::Breaking()).type, "BGeoCalcException");
}

INSTANTIATE_TEST_SUITE_P(All, PointSidecars, testing::Values(kSidecars[1], kSidecars[2]),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace MapAnchor
