#include <gtest/gtest.h>

#include "RunTool.h"

#include <filesystem>

namespace {

constexpr const char* kWorldFile = "0.5\n0\n0\n-0.5\n676000.25\n5241999.75\n";
constexpr const char* kWritten =
    "0.500000000000\n0.000000000000\n0.000000000000\n-0.500000000000\n676000.250000000000\n5241999."
    "750000000000\n";

TEST(Convert, SavesOrLeavesWhatThereIs) {
    const ToolFolder folder;
    folder.Write("map.tfw", kWorldFile);
    folder.Write("map.prj", PrjOf("32632"));
    folder.ExpectRun("convert --dry-run %map.tfw %copy.jgw", 0, "",
                     {"would write " + (folder / "copy.jgw\nwould write ") + (folder / "copy.prj\n")});
    folder.ExpectFile("copy.jgw", "");
    folder.ExpectFile("copy.prj", "");
    folder.ExpectRun("convert --json %map.tfw %copy.jgw", 0,
                     R"("written":["%copy.jgw","%copy.prj"],"referenceType":"WLD")");
    folder.ExpectFile("copy.jgw", kWritten);
    folder.ExpectRun("--json %copy.jgw", 0, R"("coordSys":{"epsg":"EPSG:32632"})");
    folder.Write("old.jgw", "old");
    folder.ExpectRun("convert %map.tfw %old.jgw", 2);
    folder.ExpectFile("old.jgw", "old");
    // The prj that would be written beside it counts as well.
    folder.Write("other.prj", "old");
    folder.ExpectRun("convert %map.tfw %other.wld", 2, "", {"other.prj"});
    folder.ExpectFile("other.wld", "");
    folder.ExpectRun("convert --overwrite %map.tfw %old.jgw", 0);
    folder.ExpectFile("old.jgw", kWritten);
    // One file under two names.
    std::filesystem::create_hard_link(folder / "map.tfw", folder / "link.tfw");
    folder.ExpectRun("convert --overwrite %map.tfw %link.tfw", 2);
    folder.ExpectFile("map.tfw", kWorldFile);
    folder.ExpectRun("convert --to wld %map.tfw %plain.txt", 3, "", {"coordinate system is not saved"});
    folder.ExpectFile("plain.txt", kWritten);
    for (const auto& [words, status] : {std::pair{"%map.tfw %new.jpg", 5},
                                        {"%map.tfw %new", 5},
                                        {"%map.tfw %missing/new.tfw", 2},
                                        {"--to sid %map.tfw %new.sid", 5},
                                        {"%none.tfw %new.tfw", 2}})
        folder.ExpectRun(std::string("convert ") + words, status);
    for (const char* name : {"plain.prj", "new.jpg", "new", "new.tfw"})
        folder.ExpectFile(name, "");
}

TEST(Convert, AFullDiskIsReported) {
    const ToolFolder folder;
    folder.Write("map.tfw", kWorldFile);
    folder.Write("map.prj", PrjOf("4326"));
    for (const char* link : {"full.tfw", "half.prj"})
        std::filesystem::create_symlink("/dev/full", folder / link);
    folder.ExpectRun("convert --overwrite --json %map.tfw %full.tfw", 2,
                     R"("error":{"type":"BGeoReferenceWriteException"})", {"full.tfw>"});
    // The library ignores a prj that cannot be written; the tool warns.
    folder.ExpectRun("convert --overwrite %map.tfw %half.tfw", 3, "", {"half.prj"});
    folder.ExpectFile("half.tfw", kWritten);
}

}  // namespace
