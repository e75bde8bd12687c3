#include <gtest/gtest.h>

#include "RunTool.h"
#include "TempFolder.h"

#include <unistd.h>
#include <filesystem>

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

constexpr const char* kWorldFile = "0.5\n0\n0\n-0.5\n676000.25\n5241999.75\n";
constexpr const char* kWritten =
    "0.500000000000\n0.000000000000\n0.000000000000\n-0.500000000000\n676000.250000000000\n5241999."
    "750000000000\n";
class Convert : public testing::Test {
protected:
    Convert() {
        folder.Write("map.tfw", kWorldFile);
        folder.Write("map.prj", PrjOf("4326"));
    }
    ToolRun Run(const std::vector<std::string>& options, const std::string& target) const {
        std::vector<std::string> words = {"convert", folder / "map.tfw", folder / target};
        words.insert(words.end(), options.begin(), options.end());
        return RunTool(words);
    }
    bool Has(const std::string& name) const { return fs::exists(folder / name); }

    const TempFolder folder;
};

TEST_F(Convert, SavesTheReferenceWithItsPrj) {
    const ToolRun run = Run({"--json"}, "copy.jgw");
    EXPECT_EQ(run.status, 0) << run.out;
    const json ours = run.Ours();
    EXPECT_EQ(ours["written"], json::array({folder / "copy.jgw", folder / "copy.prj"}));
    EXPECT_EQ(ours["referenceType"], "WLD");
    EXPECT_EQ(TempFolder::Slurp(folder / "copy.jgw"), kWritten);
    const json back = RunTool({"--json", folder / "copy.jgw"}).Ours();
    EXPECT_EQ(back["coordSys"]["epsg"], "EPSG:4326");
}

TEST_F(Convert, NothingIsReplacedUnasked) {
    folder.Write("old.jgw", "old");
    EXPECT_EQ(Run({}, "old.jgw").status, 2);
    EXPECT_EQ(TempFolder::Slurp(folder / "old.jgw"), "old");
    // The prj that would be written beside it counts as well.
    folder.Write("other.prj", "old");
    const ToolRun run = Run({}, "other.wld");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("other.prj"), std::string::npos);
    EXPECT_FALSE(Has("other.wld"));
    EXPECT_EQ(Run({"--overwrite"}, "old.jgw").status, 0);
    EXPECT_EQ(TempFolder::Slurp(folder / "old.jgw"), kWritten);
    // Source and target are one file, even by another name.
    fs::create_hard_link(folder / "map.tfw", folder / "link.tfw");
    EXPECT_EQ(Run({"--overwrite"}, "link.tfw").status, 2);
    EXPECT_EQ(TempFolder::Slurp(folder / "map.tfw"), kWorldFile);
}

TEST_F(Convert, ADryRunTouchesNothing) {
    const ToolRun run = Run({"--dry-run"}, "copy.jgw");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out,
              "would write " + (folder / "copy.jgw") + "\nwould write " + (folder / "copy.prj") + "\n");
    EXPECT_FALSE(Has("copy.jgw") || Has("copy.prj"));
}

TEST_F(Convert, ByTypeTheSystemIsLostAndThatIsSaid) {
    const ToolRun run = Run({"--to", "wld", "--json"}, "copy.txt");
    EXPECT_EQ(run.status, 3);
    EXPECT_NE(run.Ours()["diagnostics"].dump().find("coordinate system is not saved"), std::string::npos);
    EXPECT_EQ(TempFolder::Slurp(folder / "copy.txt"), kWritten);
    EXPECT_FALSE(Has("copy.prj"));
}

TEST_F(Convert, TargetsThatCannotBeSaved) {
    EXPECT_EQ(Run({}, "copy.jpg").status, 5);
    EXPECT_EQ(Run({}, "copy").status, 5);
    EXPECT_FALSE(Has("copy.jpg") || Has("copy"));
    EXPECT_EQ(Run({}, "missing/copy.tfw").status, 2);
    EXPECT_EQ(Run({"--to", "sid"}, "copy.sid").status, 5);
    EXPECT_EQ(RunTool({"convert", folder / "none.tfw", folder / "copy.tfw"}).status, 2);
    EXPECT_FALSE(Has("copy.tfw"));
}

TEST_F(Convert, AFullDiskLeavesNoHalfAndIsSaid) {
    ASSERT_EQ(symlink("/dev/full", (folder / "full.tfw").c_str()), 0);
    const ToolRun run = Run({"--overwrite", "--json"}, "full.tfw");
    EXPECT_EQ(run.status, 2);
    const json ours = run.Ours();
    EXPECT_EQ(ours["error"]["type"], "BGeoReferenceWriteException");
    EXPECT_NE(ours["error"]["detail"].get<std::string>().find("full.tfw"), std::string::npos);
}

// A prj that cannot be written is no failure of the library, but a person hears of it.
TEST_F(Convert, APrjThatCannotBeWrittenIsAWarning) {
    ASSERT_EQ(symlink("/dev/full", (folder / "half.prj").c_str()), 0);
    const ToolRun run = Run({"--overwrite", "--json"}, "half.tfw");
    EXPECT_EQ(run.status, 3);
    EXPECT_NE(run.Ours()["diagnostics"].dump().find("half.prj"), std::string::npos);
    EXPECT_EQ(TempFolder::Slurp(folder / "half.tfw"), kWritten);
}

}  // namespace
