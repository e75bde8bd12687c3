// Geospatial PDF at the command line: what a page tells, and an existing PDF georeferenced in place.

#include "PagePdf.h"
#include "PlainPdf.h"
#include "RunTool.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <algorithm>
#include <filesystem>
#include <utility>

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

constexpr const char* kWorldFile = "2\n0\n0\n-2\n676001\n5241999\n";

class PdfInPlace : public testing::Test {
protected:
    PdfInPlace() {
        folder.Write("map.tfw", kWorldFile);
        folder.Write("map.prj", PrjOf("32632"));
    }
    ToolRun Run(const std::string& options, const std::string& target = "map.pdf",
                const std::string& source = "map.tfw") const {
        return RunTool(Words("convert %" + source + " %" + target + " " + options, folder / ""));
    }
    /// The names in the folder, without what the fixture put there.
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder / ""))
            if (entry.path().stem() != "map" || entry.path().extension() == ".pdf")
                names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    const TempFolder folder;
    const std::string original = RichPdf(720, 360);
};

struct Fit {
    const char* name;
    const char* options;
    std::vector<long> size;
    const char* warning;  ///< part of it; null for none
};

// Without a size the raster is the page at the resolution, and without a resolution the
// raster of that size fills the page.
TEST_F(PdfInPlace, SizeAndResolution) {
    const Fit fits[] = {
        {"page_at_72", "", {720, 360}, nullptr},
        {"page_at_300", "--dpi 300", {3000, 1500}, nullptr},
        {"size_fills_the_page", "--size 3000x1500", {3000, 1500}, nullptr},
        {"size_at_dpi", "--size 1440x720 --dpi 144", {1440, 720}, nullptr},
        {"too_small", "--size 360x180 --dpi 72", {360, 180}, "does not fill the page"},
        {"other_shape", "--size 3000x3000", {3000, 3000}, "does not fill the page"},
    };
    for (const Fit& fit : fits) {
        SCOPED_TRACE(fit.name);
        folder.Write("map.pdf", original);
        const ToolRun run = Run(std::string("--overwrite --verify --json ") + fit.options);
        const json object = run.Objects().at(0);
        const json ours = object["mapanchor"];
        EXPECT_EQ(object["size"], json(fit.size));
        EXPECT_EQ(ours["written"], json::array({folder / "map.pdf"}));
        EXPECT_EQ(ours["coordSys"]["epsg"], "EPSG:32632");
        EXPECT_EQ(ours["points"].size(), 4U);
        EXPECT_EQ(run.status, fit.warning ? 3 : 0) << run.out;
        EXPECT_EQ(ours["diagnostics"].empty(), !fit.warning) << run.out;
        if (fit.warning) {
            EXPECT_NE(ours["diagnostics"].dump().find(fit.warning), std::string::npos);
            continue;
        }
        EXPECT_LT(ours["closeness"]["pixels"].get<double>(), 1e-3);
        EXPECT_LT(ours["closeness"]["metres"].get<double>(), 1e-2);
        const json back =
            RunTool({"--json", "--size", "720x360", folder / "map.pdf"}).Objects().at(0)["geoTransform"];
        EXPECT_NEAR(back[0].get<double>(), 676000, 1e-2);
        EXPECT_NEAR(back[1].get<double>(), 2.0 * static_cast<double>(fit.size[0]) / 720, 1e-4);
    }
}

TEST_F(PdfInPlace, TheOriginalIsKeptWhenAsked) {
    folder.Write("map.pdf", original);
    fs::permissions(folder / "map.pdf", fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(Run("--overwrite --backup").status, 0);
    const std::string first = TempFolder::Slurp(folder / "map.pdf");
    EXPECT_EQ(TempFolder::Slurp(folder / "map.pdf.bak"), original);
    const ToolRun again = Run("--overwrite --backup");
    EXPECT_EQ(again.status, 3);
    EXPECT_NE(again.err.find("the reference that the page has already is replaced"), std::string::npos);
    EXPECT_EQ(TempFolder::Slurp(folder / "map.pdf.bak.1"), first);
    EXPECT_EQ(fs::status(folder / "map.pdf").permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(Names(), (std::vector<std::string>{"map.pdf", "map.pdf.bak", "map.pdf.bak.1"}));
}

TEST_F(PdfInPlace, ADryRunTellsAllAndTouchesNothing) {
    folder.Write("map.pdf", original);
    const auto then = fs::last_write_time(folder / "");
    const ToolRun run = Run("--overwrite --dry-run --verify --backup --dpi 144");
    EXPECT_EQ(run.status, 0) << run.err;
    for (const char* part :
         {"would write ", "EPSG:32632", "676000", "media box 0 0 720 360", "off at the corners"})
        EXPECT_NE(run.out.find(part), std::string::npos) << run.out;
    EXPECT_EQ(TempFolder::Slurp(folder / "map.pdf"), original);
    EXPECT_EQ(fs::last_write_time(folder / ""), then);
    EXPECT_EQ(Names(), std::vector<std::string>{"map.pdf"});
}

TEST_F(PdfInPlace, AnEndingInCapitalsAndALinkStayWhatTheyAre) {
    folder.Write("MAP.PDF", original);
    fs::create_hard_link(folder / "MAP.PDF", folder / "other");
    ASSERT_EQ(symlink("MAP.PDF", (folder / "link.pdf").c_str()), 0);
    EXPECT_EQ(Run("--overwrite", "link.pdf").status, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "link.pdf"));
    EXPECT_EQ(Run("--overwrite", "MAP.PDF").status, 3);
    EXPECT_TRUE(fs::equivalent(folder / "MAP.PDF", folder / "other"));
    EXPECT_EQ(Names(), (std::vector<std::string>{"MAP.PDF", "link.pdf", "other"}));
}

TEST_F(PdfInPlace, APdfIsASourceAsWell) {
    folder.Write("map.pdf", original);
    folder.Write("other.pdf", original);
    ASSERT_EQ(Run("--overwrite").status, 0);
    const ToolRun run = Run("--overwrite --verify --json", "other.pdf", "map.pdf");
    EXPECT_EQ(run.status, 0) << run.out;
    EXPECT_LT(run.Ours()["closeness"]["pixels"].get<double>(), 1e-3);
}

struct Refusal {
    const char* name;
    std::string content;  ///< "-" for no file
    const char* source;
    const char* options;
    int status;
    const char* words;
};

TEST_F(PdfInPlace, RefusedWithoutTouchingTheFile) {
    folder.Write("bare.tfw", kWorldFile);
    // Eastings of this system have the number of their zone before them.
    folder.Write("far.tfw", kWorldFile);
    folder.Write("far.prj", PrjOf("2663"));
    const std::string encrypted =
        PlainPdf({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                  "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>",
                  "<< /Filter /Standard /V 1 /R 2 /O (12345678901234567890123456789012) /U "
                  "(12345678901234567890123456789012) /P -4 >>"},
                 "/Encrypt 4 0 R /ID [(1234567890123456) (1234567890123456)]");
    const Refusal refusals[] = {
        {"not_asked_for", original, "map.tfw", "", 2, "--overwrite georeferences it in place"},
        {"missing", "-", "map.tfw", "--overwrite", 2, "does NOT exist; a reference is saved into a PDF"},
        {"no_pdf", "this is no PDF", "map.tfw", "--overwrite", 2, "is no PDF that can be read"},
        {"cut_short", original.substr(0, 300), "map.tfw", "--overwrite", 2, "is no PDF that can be read"},
        {"encrypted", encrypted, "map.tfw", "--overwrite", 5, "is encrypted"},
        {"no_system", original, "bare.tfw", "--overwrite", 2, "Coordinate system is required"},
        {"no_box", PagePdf("").Text(), "map.tfw", "--overwrite", 2, "has no media box of its own"},
        {"no_source", original, "none.tfw", "--overwrite", 2, "does NOT exist"},
        {"raster_too_small", original, "map.tfw", "--overwrite --size 4x4", 2,
         "too small to tell them apart"},
        {"off_the_earth", original, "far.tfw", "--overwrite", 2, "have no longitude and latitude"},
    };
    for (const Refusal& refusal : refusals) {
        SCOPED_TRACE(refusal.name);
        fs::remove(folder / "map.pdf");
        if (refusal.content != "-") folder.Write("map.pdf", refusal.content);
        for (const char* dry : {"", " --dry-run"}) {
            const ToolRun run = Run(std::string(refusal.options) + dry, "map.pdf", refusal.source);
            EXPECT_EQ(run.status, refusal.status);
            EXPECT_NE(run.err.find(refusal.words), std::string::npos) << run.err;
            EXPECT_EQ(run.err.find(".mapanchor-"), std::string::npos)
                << "words of the workplace: " << run.err;
            EXPECT_EQ(run.out, "");
            const bool missing = refusal.content == "-";
            EXPECT_EQ(TempFolder::Slurp(folder / "map.pdf"), missing ? "" : refusal.content);
            EXPECT_EQ(Names().size(), missing ? 3U : 4U) << "with the other sources";
        }
    }
    EXPECT_EQ(Run("--verify", "copy.tfw").status, 64);
}

const std::string kDict =
    "<< /CTM [(2) (0) (0) (2) (400000) (5200000)] /Neatline [(0) (0) (0) (800) (600) (800) (600) (0)] "
    "/Description (Main) /Projection << /Type /P /ProjectionType (UT) /Datum (WGE) /Zone 33 /Hemisphere (N) "
    ">> >>";
const std::string kInset =
    "<< /CTM [(1) (0) (0) (1) (0) (0)] /Neatline [(0) (0) (0) (10) (10) (10) (10) (0)] /Description (Inset) "
    "/Projection << /Type /P /ProjectionType (GEODETIC) /Datum (WGE) >> >>";

std::string PageWith(const std::string& dicts, const std::string& more = "") {
    return PagePdf("/MediaBox [0 0 600 800] " + more + " /LGIDict " + dicts).Text();
}

TEST(PdfInfo, PageAtSeventyTwoDotsUnlessTold) {
    const TempFolder folder;
    const std::string file = folder.Write("map.pdf", PageWith("[" + kDict + "]"));
    const auto plain = RunTool({"info", "--json", file});
    EXPECT_EQ(plain.status, 0) << plain.err;
    const auto object = plain.Objects().at(0);
    EXPECT_EQ(object["size"], (json{600, 800}));
    EXPECT_EQ(object["geoTransform"], (json{400000, 2, 0, 5201600, 0, -2}));
    EXPECT_EQ(object["mapanchor"]["referenceType"], "PDF");
    EXPECT_EQ(object["mapanchor"]["pdfPage"]["maps"][0]["name"], "Main");
    EXPECT_EQ(object["mapanchor"]["pdfPage"]["maps"][0]["area"], 480000);
    const auto finer = RunTool({"info", "--json", "--dpi", "144", file}).Objects().at(0);
    EXPECT_EQ(finer["size"], (json{1200, 1600}));
    EXPECT_EQ(finer["geoTransform"][1], 1);
    const auto sized = RunTool({"info", "--json", "--size", "300x400", file}).Objects().at(0);
    EXPECT_EQ(sized["geoTransform"][1], 4);
}

TEST(PdfInfo, OtherMapsAndARotationAreWarnings) {
    const TempFolder folder;
    const std::string file = folder.Write("map.pdf", PageWith("[" + kInset + kDict + "]", "/Rotate 90"));
    const auto run = RunTool({"info", file});
    EXPECT_EQ(run.status, 3);
    EXPECT_NE(run.err.find("other maps, which are not read: \"Inset\""), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("turned by 90 degrees"), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("media box 0 0 600 800"), std::string::npos) << run.out;
    const auto maps = RunTool({"info", "--json", file}).Objects().at(0)["mapanchor"]["pdfPage"]["maps"];
    EXPECT_EQ(maps[0]["inUse"], false);
    EXPECT_EQ(maps[1]["inUse"], true);
}

TEST(PdfInfo, BoxByName) {
    const TempFolder folder;
    const std::string file =
        folder.Write("map.pdf", PageWith("[" + kDict + "]", "/CropBox [100 100 400 300]"));
    for (const auto& [box, size] : {std::pair{"crop", json{300, 200}}, {"trim", json{600, 800}}})
        EXPECT_EQ(RunTool({"info", "--json", "--pdf-box", box, file}).Objects().at(0)["size"], size) << box;
}

TEST(PdfInfo, RefusedFormsAreExplained) {
    const TempFolder folder;
    const auto single = RunTool({"info", folder.Write("single.pdf", PageWith(kDict))});
    EXPECT_EQ(single.status, 2);
    EXPECT_NE(single.err.find("The key LGIDict is not of type Array."), std::string::npos) << single.err;
    EXPECT_NE(single.err.find("one dictionary stands in its place"), std::string::npos) << single.err;
    const auto none = RunTool({"info", folder.Write("none.pdf", PagePdf("/MediaBox [0 0 9 9]").Text())});
    EXPECT_EQ(none.status, 4);
    EXPECT_NE(none.err.find("No Geospatial data found"), std::string::npos) << none.err;
}

TEST(PdfConvert, ToAWorldFileOfThePage) {
    const TempFolder folder;
    const std::string file = folder.Write("map.pdf", PageWith("[" + kDict + "]"));
    const std::string out = folder / "map.tfw";
    EXPECT_NE(RunTool({"convert", file, out}).status, 2);
    EXPECT_TRUE(TempFolder::Slurp(out).starts_with("2.0000000")) << TempFolder::Slurp(out);
}

}  // namespace
