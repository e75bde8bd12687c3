#include <Tellurion/BFileUtilities.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace Tellurion {

TEST(BFileUtilities, SplitsPaths) {
    const struct {
        const char *path, *extension, *to_prj, *name, *base;
    } cases[] = {{"map.tfw", ".tfw", "map.prj", "map.tfw", "map"},
                 {"/a.b/map", "", "/a.b/map.prj", "map", "map"},
                 {"/a.b/map.v2.TIF", ".TIF", "/a.b/map.v2.prj", "map.v2.TIF", "map.v2"},
                 {"map.", "", "map.prj", "map.", "map."},
                 {"dir/.tfw", ".tfw", "dir/.prj", ".tfw", ""},
                 {"", "", ".prj", "", ""},
                 {"\303\234/\xC3\xA4.jgw", ".jgw", "\303\234/\xC3\xA4.prj", "\xC3\xA4.jgw", "\xC3\xA4"}};
    for (const auto& test : cases) {
        EXPECT_EQ(BFileUtilities::GetExtension(test.path), BString(test.extension)) << test.path;
        EXPECT_EQ(BFileUtilities::ChangeExtension(test.path, "prj"), BString(test.to_prj)) << test.path;
        EXPECT_EQ(BFileUtilities::GetFileName(test.path), BString(test.name)) << test.path;
        EXPECT_EQ(BFileUtilities::GetBasename(test.path), BString(test.base)) << test.path;
    }
    const std::string current = std::filesystem::current_path();
    EXPECT_EQ(BFileUtilities::CompletePath("x.tfw"), BString(current + "/x.tfw"));
    EXPECT_EQ(BFileUtilities::CompletePath("/x.tfw"), BString("/x.tfw"));
    EXPECT_TRUE(BFileUtilities::Exists(BString(current)));
    EXPECT_FALSE(BFileUtilities::Exists(BString(current + "/no such file")));
}

}  // namespace Tellurion
