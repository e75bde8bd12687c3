#include "RunTool.h"

#include <MapAnchor/BGdalAccess.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

namespace {

/// A folder with the two libraries and no module, in which the tool finds them.
class Libraries : public TempFolder {
public:
    Libraries() {
        for (const char* name : {"libTellurion.so.0", "libMapAnchor.so.0"})
            std::filesystem::create_symlink(std::string(MAPANCHOR_LIBRARIES "/") + name, *this / name);
    }
    void AddModule(const std::string& name, const std::string& file) const {
        std::filesystem::create_symlink(file, *this / ("libmapanchor-" + name + ".so.0"));
    }
    ToolRun Run(const std::vector<std::string>& words) const {
        return RunTool(words, {.environment = {{"LD_LIBRARY_PATH", *this / ""}}});
    }
    /// The same, with the objects that the dynamic linker maps on stderr.
    ToolRun RunListed(const std::vector<std::string>& words) const {
        return RunTool(words, {.environment = {{"LD_LIBRARY_PATH", *this / ""}, {"LD_DEBUG", "files"}}});
    }
};

const std::string kWorldFile = MAPANCHOR_SOURCES "/examples/innsbruck.tfw";

TEST(Modules, AreNotMappedByWhatDoesNotNeedThem) {
    const TempFolder folder;
    const std::string without_system = folder.Write("a.tfw", "2\n0\n0\n-2\n11\n49\n");
    const std::vector<std::pair<std::vector<std::string>, bool>> commands = {
        {{"ext", "tif"}, false},
        {{"info", without_system}, false},
        {{"formats"}, false},
        {{"info", kWorldFile}, true},
        {{"crs", "EPSG:25832"}, true}};
    const Libraries libraries;
    for (const auto& [words, has_system] : commands) {
        const ToolRun run = libraries.RunListed(words);
        EXPECT_EQ(run.status, 0) << words.front();
        EXPECT_NE(run.err.find("libTellurion"), std::string::npos) << "the list has what is mapped";
        EXPECT_EQ(run.err.find("libproj") != std::string::npos, has_system) << words.front();
        for (const char* library : {"libgdal", "libpodofo", "libQt5", "libX11", "libGL", "libmapanchor-"})
            EXPECT_EQ(run.err.find(library), std::string::npos) << words.front() << " maps " << library;
    }
}

TEST(Modules, NoLibraryIsTakenFromTheCurrentFolder) {
    const TempFolder folder;
    folder.Write("libstdc++.so.6", "a library of somebody else");
    const ToolRun run = RunTool({"-c", "cd '" + folder / "" + "' && exec " MAPANCHOR_TOOL " ext tif"},
                                {.program = "/bin/sh"});
    EXPECT_EQ(run.status, 0) << run.err;
}

TEST(Modules, ThatAreMissingAreNamedWithTheRemedy) {
    const Libraries libraries;
    const TempFolder folder;
    const std::string raster = folder.Write("a.tif", "II*");
    const std::string pdf = folder.Write("a.pdf", "%PDF-1.7\n");
    for (const auto& [file, module] : {std::pair(raster, "gdal"), std::pair(pdf, "pdf")}) {
        const ToolRun run = libraries.Run({"info", file});
        EXPECT_EQ(run.status, 5) << run.err;
        const std::string name = std::string("libmapanchor-") + module + ".so.0";
        EXPECT_NE(run.err.find(libraries / name + ">, which is not installed"), std::string::npos) << run.err;
        EXPECT_NE(run.err.find(std::string("install the package libmapanchor0-") + module),
                  std::string::npos);
    }
    EXPECT_EQ(libraries.Run({"info", "/vsizip/a.zip/a.tfw"}).status, 5);
    // Only an area that is cut at the antimeridian needs GDAL.
    EXPECT_EQ(libraries.Run({"footprint", "--size", "10x10", kWorldFile}).status, 0);
    const std::string fiji = folder.Write("fiji.tfw", "1\n0\n0\n-1\n175\n-15\n");
    folder.Write("fiji.prj", RunTool({"crs", "--to", "esri", "EPSG:4326"}).out);
    EXPECT_NE(libraries.Run({"footprint", "--size", "10x10", fiji}).err.find("libmapanchor-tool.so.0"),
              std::string::npos);
}

// Without PROJ no system is read, and none is left out in silence.
TEST(Modules, APROJThatCannotBeLoadedFailsWhatNeedsIt) {
    if (!*MAPANCHOR_PROJ) GTEST_SKIP() << "PROJ is linked";
    const Libraries libraries;
    libraries.Write(MAPANCHOR_PROJ, "no library");
    const TempFolder folder;
    const std::string without_system = folder.Write("a.tfw", "2\n0\n0\n-2\n11\n49\n");
    EXPECT_EQ(libraries.Run({"info", without_system}).status, 0);
    for (const auto& [words, status] : {std::pair(std::vector<std::string>{"info", kWorldFile}, 5),
                                        {{"crs", "EPSG:25832"}, 2},
                                        {{"info", "--crs", "EPSG:25832", without_system}, 64}}) {
        const ToolRun run = libraries.Run(words);
        EXPECT_EQ(run.status, status) << run.err;
        EXPECT_NE(run.err.find("need PROJ, but the library <" MAPANCHOR_PROJ "> cannot be used: "),
                  std::string::npos)
            << run.err;
    }
    EXPECT_NE(libraries.Run({"batch", kWorldFile}).out.find("\"ok\":false"), std::string::npos);
}

TEST(Modules, OfAnotherVersionAreRefused) {
    const Libraries libraries;
    libraries.AddModule("gdal", MAPANCHOR_FOREIGN_MODULE);
    libraries.AddModule("pdf", kWorldFile);
    const TempFolder folder;
    const ToolRun other = libraries.Run({"info", folder.Write("a.tif", "II*")});
    EXPECT_EQ(other.status, 5);
    EXPECT_NE(other.err.find("libmapanchor-gdal.so.0> is of version 0.0.0"), std::string::npos) << other.err;
    const ToolRun broken = libraries.Run({"info", folder.Write("a.pdf", "%PDF-1.7\n")});
    EXPECT_EQ(broken.status, 5);
    EXPECT_NE(broken.err.find("cannot be loaded: "), std::string::npos) << broken.err;
}

TEST(Modules, AreLoadedOnceByThreadsThatAskAtTheSameTime) {
    std::atomic<int> waiting{4};
    std::atomic<int> found{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (--waiting; waiting > 0;)
                std::this_thread::yield();
            long width = 0, height = 0;
            found += MapAnchor::BGdalAccess::GetRasterSize(MAPANCHOR_SOURCES "/fuzz/seeds/geotiff/utm.tif",
                                                           width, height);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(found, 4);
}

}  // namespace
