#include <Tellurion/BFileUtilities.h>

#include <gtest/gtest.h>

#include "TempFolder.h"

#include <unistd.h>

namespace Tellurion {
namespace {

struct PathCase {
    const char* path;
    const char* extension;
    const char* to_prj;
    const char* name;
    const char* base;
};

TEST(BFileUtilities, TakesPathsApart) {
    const PathCase cases[] = {
        {"map.tfw", ".tfw", "map.prj", "map.tfw", "map"},
        {"/a.b/map", "", "/a.b/map.prj", "map", "map"},
        {"/a.b/map.v2.TIF", ".TIF", "/a.b/map.v2.prj", "map.v2.TIF", "map.v2"},
        {"map.", "", "map.prj", "map.", "map."},
        {"dir/.tfw", ".tfw", "dir/.prj", ".tfw", ""},
        {"", "", ".prj", "", ""},
        {"\303\234ber/K\xC3\xA4rnten.jgw", ".jgw", "\303\234ber/K\xC3\xA4rnten.prj", "K\xC3\xA4rnten.jgw",
         "K\xC3\xA4rnten"},
    };
    for (const PathCase& test : cases) {
        const BString path(test.path);
        EXPECT_EQ(BFileUtilities::GetExtension(path), BString(test.extension)) << test.path;
        EXPECT_EQ(BFileUtilities::ChangeExtension(path, "prj"), BString(test.to_prj)) << test.path;
        EXPECT_EQ(BFileUtilities::GetFileName(path), BString(test.name)) << test.path;
        EXPECT_EQ(BFileUtilities::GetBasename(path), BString(test.base)) << test.path;
    }
}

TEST(BFileUtilities, CompletesAndFindsPaths) {
    const TempFolder folder;
    const std::string file = folder.Write("here.txt", "");
    EXPECT_TRUE(BFileUtilities::Exists(BString(file)));
    EXPECT_FALSE(BFileUtilities::Exists(BString(folder / "nowhere.txt")));
    EXPECT_EQ(BFileUtilities::CompletePath(BString(file)), BString(file));
    char* current = get_current_dir_name();
    EXPECT_EQ(BFileUtilities::CompletePath("x.tfw"), BString(std::string(current) + "/x.tfw"));
    std::free(current);
}

}  // namespace
}  // namespace Tellurion
